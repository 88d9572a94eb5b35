// Textures at a million places: as functions, and point by point behind a node of arithmetic.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include <maya/MDoubleArray.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "bench.h"
#include "plain_texture.h"

namespace {

constexpr plain::Tiling kTiling{{7, 5}, {0.25f, 0.5f}};

MObject node(const char* name)
{
    MSelectionList list;
    list.add(name);
    MObject out;
    list.getDependNode(0, out);
    return out;
}

/// Places all over the texture, in no order.
void fill(MDoubleArray& u, MDoubleArray& v)
{
    unsigned state = 1;
    const auto next = [&] { return double((state = state * 1664525u + 1013904223u) >> 8) / double(1 << 24); };
    for (unsigned i = 0; i < u.length(); ++i)
        u[i] = next(), v[i] = next();
}

/// Evaluates b.color1 at n places and runs `plainLoop` on the same. Counters: nanoseconds a place of both, their ratio.
template <class F>
void sampled(benchmark::State& state, F&& plainLoop)
{
    const unsigned n = unsigned(state.range(0));
    MDoubleArray   u(n), v(n);
    fill(u, v);
    const MObject       b = node("b"), attribute = MFnDependencyNode(b).attribute("color1");
    std::vector<double> plainColors(size_t(n) * 3);
    MVectorArray        colors;
    double              graph = 0, plainTime = 0;
    for (auto _ : state) {
        const double start = bench::now();
        if (!MDynamicsUtil::evalDynamics2dTexture(b, attribute, u, v, &colors, nullptr))
            state.SkipWithError("no texture");
        const double middle = bench::now();
        plainLoop(&u[0], &v[0], n, plainColors.data());
        graph += middle - start;
        plainTime += bench::now() - middle;
    }
    for (unsigned i = 0; i < n; i += n / 97 + 1)
        if (std::abs(colors[i].x - plainColors[3 * i]) > 1e-5)
            state.SkipWithError("the loops differ");
    const double points = double(n) * double(state.iterations());
    state.counters["ns"] = graph / points * 1e9;
    state.counters["plain_ns"] = plainTime / points * 1e9;
    state.counters["ratio"] = graph / plainTime;
}

const char* const kPlaced = "file -f -new; createNode place2dTexture -n p; setAttr p.repeatUV 7 5; setAttr p.offset 0.25 0.5; createNode blendColors -n b;";

void checker(benchmark::State& state)
{
    bench::start();
    bench::mel(std::string(kPlaced) + "createNode checker -n t; connectAttr p.outUV t.uvCoord; connectAttr t.outColor b.color1");
    sampled(state, [](const double* u, const double* v, size_t n, double* out) { plain::checker(kTiling, u, v, n, out); });
}
BENCHMARK(checker)->Name("texture/checker")->Arg(1000000)->Unit(benchmark::kMillisecond);

void behindNode(benchmark::State& state)
{
    bench::start();
    bench::mel(std::string(kPlaced) + "createNode checker -n t; connectAttr p.outUV t.uvCoord; createNode clamp -n r;"
               "setAttr r.max 1 1 1; connectAttr t.outColor r.input; connectAttr r.output b.color1");
    sampled(state, [](const double* u, const double* v, size_t n, double* out) { plain::checker(kTiling, u, v, n, out); });
}
BENCHMARK(behindNode)->Name("texture/checkerBehindNode")->Arg(100000)->Unit(benchmark::kMillisecond);

void image(benchmark::State& state)
{
    bench::start();
    plain::Bitmap bitmap{512, 256, {}};
    bitmap.rgba.resize(size_t(512) * 256 * 4, 255);
    const std::string path = (std::filesystem::temp_directory_path() / "mirk_bench.ppm").string();
    std::ofstream     out(path, std::ios::binary);
    out << "P6 512 256 255\n";
    for (size_t i = 0; i < size_t(512) * 256; ++i)
        for (size_t c = 0; c < 3; ++c)
            out.put(char(bitmap.rgba[i * 4 + c] = uint8_t(i * (c + 3) * 2654435761u >> 24)));
    out.close();
    bench::mel(std::string(kPlaced) + "createNode file -n t; setAttr t.ftn -type \"string\" \"" + path +
               "\"; connectAttr p.outUV t.uvCoord; connectAttr t.outColor b.color1");
    sampled(state, [&](const double* u, const double* v, size_t n, double* colors) { plain::image(bitmap, kTiling, u, v, n, colors); });
    std::filesystem::remove(path);
}
BENCHMARK(image)->Name("texture/file")->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

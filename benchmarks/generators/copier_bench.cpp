// The copier through the graph: ten thousand copies of a mesh of 200 vertices, evaluated again after the positions moved,
// beside the plain loop of plain_copies.h. Counters: points a second of both, the loop also into memory that is fresh,
// and ours over the loop's.
#include <benchmark/benchmark.h>

#include <maya/MFloatArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench.h"
#include "plain_copies.h"

namespace {

constexpr unsigned kCopies = 10000;

MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name.c_str());
    list.getPlug(0, result);
    return result;
}

void vectors(const char* name, double from, double to, unsigned seed)
{
    std::mt19937                           random(seed);
    std::uniform_real_distribution<double> draw(from, to);
    MVectorArray                           values(kCopies);
    for (unsigned i = 0; i < kCopies; ++i)
        values[i] = MVector(draw(random), draw(random), draw(random));
    plug(name).setMObject(MFnVectorArrayData().create(values));
}

plain::Mesh flatten(const char* name, bool uvs)
{
    MObject     data = plug(name).asMObject();
    MFnMesh     fn(data);
    MIntArray   counts, connects, uvCounts, ids;
    MFloatArray u, v;
    plain::Mesh mesh;
    mesh.points.assign(fn.getRawPoints(), fn.getRawPoints() + 3 * fn.numVertices());
    fn.getVertices(counts, connects);
    mesh.counts.assign(&counts[0], &counts[0] + counts.length());
    mesh.connects.assign(&connects[0], &connects[0] + connects.length());
    if (!uvs)
        return mesh;
    fn.getUVs(u, v);
    fn.getAssignedUVs(uvCounts, ids);
    for (unsigned i = 0; i < u.length(); ++i)
        mesh.uvs.insert(mesh.uvs.end(), {u[i], v[i]});
    mesh.uvIds.assign(&ids[0], &ids[0] + ids.length());
    return mesh;
}

template <class F>
double bestOf(int runs, F&& f)
{
    double best = 1e30;
    for (int run = 0; run < runs; ++run) {
        const double start = bench::now();
        f();
        best = std::min(best, bench::now() - start);
    }
    return best;
}

void scene(bool oriented, bool dressed)
{
    bench::mel("file -f -new; polySphere -sx 18 -sy 12 -n ball; createNode network -n given; createNode copier -n c;"
               "connectAttr ballShape.outMesh c.inputMesh[0];");
    for (const char* name : {"pos", "aim", "up", "scl", "rgb"})
        bench::mel(std::string("addAttr -ln ") + name + " -dt vectorArray given;");
    vectors("given.pos", -100, 100, 1);
    vectors("given.aim", -1, 1, 2);
    vectors("given.up", -1, 1, 3);
    vectors("given.scl", 0.5, 2, 4);
    vectors("given.rgb", 0, 1, 5);
    bench::mel("connectAttr given.pos c.posArray;");
    if (oriented)
        bench::mel("connectAttr given.aim c.aimArray; connectAttr given.up c.upArray; connectAttr given.scl c.scaleArray;");
    if (dressed)
        bench::mel("connectAttr given.rgb c.rgbArray; setAttr c.inheritVertexColor 1; setAttr c.toggleUV 1;");
}

void Copies(benchmark::State& state)
{
    const bool oriented = state.range(0) > 0, dressed = state.range(1) > 0;
    scene(oriented, dressed);
    const plain::Mesh         source = flatten("ballShape.outMesh", dressed);
    const std::vector<double> matrices(12 * kCopies, 0.5);
    const std::vector<float>  colors(dressed ? 4 * kCopies : 0, 0.5f);
    const double              points = double(source.points.size() / 3) * kCopies;
    plain::Mesh               kept;
    kept.reserve(source, kCopies);

    const MPlug out = plug("c.outputMesh");
    out.asMObject();
    double   best = 1e30, loop = 1e30, fresh = 1e30;
    unsigned seed = 10;
    for (auto _ : state) {
        vectors("given.pos", -100, 100, ++seed);
        best = std::min(best, bestOf(1, [&] { benchmark::DoNotOptimize(out.asMObject()); }));
        loop = std::min(loop, bestOf(1, [&] { plain::copyMesh(source, matrices, colors, kept); }));
        fresh = std::min(fresh, bestOf(1, [&] {
            plain::Mesh made;
            made.reserve(source, kCopies);
            plain::copyMesh(source, matrices, colors, made);
        }));
    }
    state.counters["points/s"] = points / best;
    state.counters["plain/s"] = points / loop;
    state.counters["plain_fresh/s"] = points / fresh;
    state.counters["of_plain"] = loop / best;
}

BENCHMARK(Copies)->ArgNames({"oriented", "dressed"})->Args({0, 0})->Args({1, 0})->Args({1, 1})->Iterations(15)->Unit(benchmark::kMillisecond);

} // namespace

// The links of a web through the search and through the node, beside comparing all pairs (plain_webs.h). Counters: both
// times, how many times as fast, and whether the links are the same.
#include <benchmark/benchmark.h>

#include <maya/MFnVectorArrayData.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>

#include "bench.h"
#include "generators/linkSearch.h"
#include "generators/plain_webs.h"

namespace {

constexpr int kCount = 20000;

/// Of all threads: work that is shared out is not for free.
double processSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

/// In a cube; `neighbors`: how many are within a distance of 1 on average.
std::vector<double> points(double neighbors)
{
    const double        side = std::cbrt(kCount * 4.18879 / neighbors);
    std::mt19937        random(1);
    std::vector<double> xyz(3 * kCount);
    for (double& x : xyz)
        x = side * (random() / 4294967296.0);
    return xyz;
}

bool isSame(const web::Links& links, const std::vector<int>& pairs)
{
    std::size_t at = 0;
    for (std::size_t i = 0; i < links.pointCount(); ++i) {
        for (std::size_t n = links.first[i]; n < links.first[i + 1]; ++n, at += 2)
            if (at + 1 >= pairs.size() || pairs[at] != int(i) || pairs[at + 1] != links.to[n])
                return false;
    }
    return at == pairs.size();
}

/// Neighbours within reach, and links a point may start.
void CocoonLinks(benchmark::State& state)
{
    const std::vector<double> xyz = points(double(state.range(0)));
    const int                 perPoint = int(state.range(1));
    std::vector<int>          pairs;
    pairs.reserve(std::size_t(kCount) * kCount / 4);
    double     best = 1e30, plainBest = 1e30;
    web::Links links;
    for (auto _ : state) {
        const double start = processSeconds();
        links = web::linksWithin(xyz.data(), kCount, nullptr, 0, {0.0, 1.0, perPoint});
        best = std::min(best, processSeconds() - start);
        plainBest = std::min(plainBest, plain::linkPoints(xyz, 0.0, 1.0, perPoint, pairs));
    }
    state.counters["ms"] = 1e3 * best;
    state.counters["plain_ms"] = 1e3 * plainBest;
    state.counters["times"] = plainBest / best;
    state.counters["links"] = double(links.size());
    state.counters["same"] = isSame(links, pairs);
}

/// An evaluation of the node that makes its lines, tubes and instances.
void CocoonNode(benchmark::State& state)
{
    const std::vector<double> xyz = points(8.0);
    MVectorArray              vectors;
    for (std::size_t i = 0; i < kCount; ++i)
        vectors.append(MVector(&xyz[3 * i]));
    bench::mel("file -force -new; createNode network -name n; addAttr -longName p -dataType vectorArray n; createNode cocoon -name c;"
               "connectAttr n.p c.inPositionPP; setAttr c.linksMesh 1; setAttr c.linksInstances 1; setAttr c.segments "
               + std::to_string(state.range(0)));
    MSelectionList list;
    MPlug          in, out;
    list.add("n.p");
    list.add("c.outLinksMesh");
    list.getPlug(0, in);
    list.getPlug(1, out);
    const MObject data = MFnVectorArrayData().create(vectors);
    for (auto _ : state) {
        in.setMObject(data);
        benchmark::DoNotOptimize(out.asMObject().isNull());
    }
}

} // namespace

BENCHMARK(CocoonLinks)->ArgNames({"neighbors", "perPoint"})->Args({8, 3})->Args({8, 0})->Args({64, 3})->Args({2000, 3})->Args({2000, 0})->Args({80000, 3})->Args({80000, 0})->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(CocoonNode)->ArgName("segments")->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond)->Iterations(3);

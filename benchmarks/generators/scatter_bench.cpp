// scatter through the graph on the bunny. Counters: throws a second of the node; of the ray library called directly with the
// same rays, or of a plain grid given the same points; and the node's rate over that.
#include <benchmark/benchmark.h>

#include <maya/MBoundingBox.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "bench.h"
#include "plain_scatter.h"

namespace {

constexpr unsigned int kThrows = 100000;
constexpr unsigned int kSeed = 12345;

MPlug plug(const char* name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name);
    list.getPlug(0, result);
    return result;
}

/// Seconds of this thread alone: the machine may have other work.
double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

/// `s` throws at the bunny; without its file at a sphere. The mesh is `m`.
void build(const std::string& settings)
{
    const char* path = "/usr/share/glmark2/models/bunny.obj";
    const bool  there = std::ifstream(path).good();
    bench::mel(std::string("file -force -new;") +
               (there ? std::string("file -i -type \"OBJ\" \"") + path + "\"; string $shapes[] = `ls -type mesh`; rename $shapes[0] m;"
                      : std::string("polySphere -sx 190 -sy 190 -name ball; rename `listRelatives -shapes ball` m;")) +
               "createNode scatter -name s; connectAttr m.worldMesh[0] s.inGeometry; setAttr s.pointDensity " +
               std::to_string(kThrows) + "; setAttr s.maxNumberOfPoints 10000000;" + settings);
}

/// Seconds of one evaluation with the seed; the points come to `points`.
double evaluate(MVectorArray& points)
{
    plug("s.seed").setInt(int(kSeed) + 1);
    plug("s.seed").setInt(int(kSeed));
    MPlug         out = plug("s.outPositionPP");
    const double  start = threadSeconds();
    const MObject data = out.asMObject();
    const double  seconds = threadSeconds() - start;
    points = MFnVectorArrayData(data).array();
    return seconds;
}

/// The best time of each, and the median of what one round gives: both of a round share the mood of the machine.
struct Rounds
{
    void add(double seconds, double plainSeconds)
    {
        best = std::min(best, seconds);
        bestPlain = std::min(bestPlain, plainSeconds);
        ratios.push_back(plainSeconds / seconds);
    }
    void report(benchmark::State& state, double points)
    {
        const auto   middle = ratios.begin() + std::ptrdiff_t(ratios.size() / 2);
        const double throws = plug("s.pointDensity").asInt();
        std::nth_element(ratios.begin(), middle, ratios.end());
        state.counters["rate/s"] = throws / best;
        state.counters["plain/s"] = throws / bestPlain;
        state.counters["of_plain"] = *middle;
        state.counters["points"] = points;
    }
    double              best = 1e30, bestPlain = 1e30;
    std::vector<double> ratios;
};

void ScatterRays(benchmark::State& state)
{
    build("setAttr s.scatterMode " + std::to_string(state.range(0)));
    MSelectionList list;
    list.add("m");
    MObject node;
    list.getDependNode(0, node);
    const MBoundingBox        box = MFnDagNode(node).boundingBox();
    const double              low[3] = {box.min().x, box.min().y, box.min().z}, high[3] = {box.max().x, box.max().y, box.max().z};
    MObject                   mesh = plug("m.outMesh").asMObject();
    MFnMesh                   fn(mesh);
    MIntArray                 counts, corners;
    fn.getTriangles(counts, corners);
    std::vector<unsigned int> triangles;
    for (unsigned int i = 0; i < corners.length(); ++i)
        triangles.push_back(unsigned(corners[i]));
    const float*            raw = fn.getRawPoints();
    const plain::RayLibrary library({raw, raw + 3 * fn.numVertices()}, triangles);
    std::vector<plain::Ray> rays(kThrows);
    std::vector<float>      params(kThrows);
    plain::drawRays(kSeed, low, high, rays);

    MVectorArray points;
    evaluate(points);   // builds the tree
    Rounds      rounds;
    std::size_t hits = 0;
    for (auto _ : state) {
        const double ours = evaluate(points), start = threadSeconds();
        hits = library.shoot(rays, params);
        rounds.add(ours, threadSeconds() - start);
    }
    rounds.report(state, points.length());
    state.counters["plain_hits"] = double(hits);
}

/// On the surface with a spacing that refuses some; the plain grid has the points without spacing given.
void ScatterSpacing(benchmark::State& state)
{
    const double spacing = 0.0012;
    build("setAttr s.scatterMode 1; setAttr s.pointDensity " + std::to_string(state.range(0)));
    MVectorArray points;
    const double bare = evaluate(points);
    std::vector<float> all;
    for (unsigned int i = 0; i < points.length(); ++i)
        for (unsigned int k = 0; k < 3; ++k)
            all.push_back(float(points[i][k]));
    plug("s.minPointToPointDistance").setDouble(spacing);
    Rounds      rounds;
    std::size_t left = 0;
    for (auto _ : state) {
        const double ours = evaluate(points), start = threadSeconds();
        left = plain::spaced(all, float(spacing));
        rounds.add(ours, bare + threadSeconds() - start);
    }
    rounds.report(state, points.length());
    state.counters["plain_points"] = double(left);
}

} // namespace

BENCHMARK(ScatterRays)->ArgName("mode")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK(ScatterSpacing)->ArgName("throws")->Arg(50000)->Arg(200000)->Arg(800000)->Unit(benchmark::kMillisecond)->Iterations(3);

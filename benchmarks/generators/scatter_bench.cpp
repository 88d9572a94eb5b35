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

void report(benchmark::State& state, double seconds, double plainSeconds, double points)
{
    state.counters["rate/s"] = plug("s.pointDensity").asInt() / seconds;
    state.counters["plain/s"] = plug("s.pointDensity").asInt() / plainSeconds;
    state.counters["of_plain"] = plainSeconds / seconds;
    state.counters["points"] = points;
}

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
    double      best = 1e30, bestPlain = 1e30;
    std::size_t hits = 0;
    for (auto _ : state) {
        best = std::min(best, evaluate(points));
        const double start = threadSeconds();
        hits = library.shoot(rays, params);
        bestPlain = std::min(bestPlain, threadSeconds() - start);
    }
    report(state, best, bestPlain, points.length());
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
    double      best = 1e30, bestPlain = 1e30;
    std::size_t left = 0;
    for (auto _ : state) {
        best = std::min(best, evaluate(points));
        const double start = threadSeconds();
        left = plain::spaced(all, float(spacing));
        bestPlain = std::min(bestPlain, threadSeconds() - start);
    }
    report(state, best, bare + bestPlain, points.length());
    state.counters["plain_points"] = double(left);
}

} // namespace

BENCHMARK(ScatterRays)->ArgName("mode")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK(ScatterSpacing)->ArgName("throws")->Arg(50000)->Arg(200000)->Arg(800000)->Unit(benchmark::kMillisecond)->Iterations(3);

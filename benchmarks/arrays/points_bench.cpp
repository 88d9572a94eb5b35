// The array nodes through the graph on a mesh of a million vertices, beside the plain loops of plain_points.h.
// Counters: the time of the plain loop, the ratio to it, points a second of both.
#include <benchmark/benchmark.h>

#include <maya/MGlobal.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "plain_points.h"

namespace {

constexpr std::size_t kSide = 1000;

using Clock = std::chrono::steady_clock;

double seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

/// The median time of seven runs.
template <class F>
double timeOf(F&& f)
{
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        const auto start = Clock::now();
        f();
        times.push_back(seconds(start));
    }
    std::nth_element(times.begin(), times.begin() + 3, times.end());
    return times[3];
}

MPlug plug(const char* name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name);
    list.getPlug(0, result);
    return result;
}

/// A grid `p` of kSide * kSide vertices with colours, a reader `r` of it and a writer `w` fed by the reader.
void buildScene()
{
    const std::string divisions = std::to_string(kSide - 1);
    MGlobal::executeCommand(
        ("file -force -new; polyPlane -subdivisionsX " + divisions + " -subdivisionsY " + divisions + " -name p;"
         "polyColorPerVertex -rgb 0.2 0.4 0.6 -alpha 1 p; createNode pointAttributeToArray -name r;"
         "connectAttr p.worldMesh[0] r.inGeometry; setAttr r.pointPosition 1; setAttr r.pointNormal 1;"
         "setAttr r.pointColor 1; setAttr r.mapData 1; createNode arrayToPointAttribute -name w;"
         "connectAttr p.worldMesh[0] w.inGeometry; connectAttr r.outPositionPP w.inPositionPP;"
         "connectAttr r.outRgbaPP w.inRgbaPP; setAttr w.positions 1; setAttr w.colors 1").c_str());
}

/// Times pulls of `output`, dirtied through `input`, an int that changes nothing in the result.
void pull(benchmark::State& state, const char* input, const char* output, double plainSeconds)
{
    MPlug        in = plug(input), out = plug(output);
    int          value = 0;
    double       total = 0.0;
    out.asMObject();   // derived tables of the mesh are there, as they are for the plain loop
    for (auto _ : state) {
        in.setInt(++value);
        const auto    start = Clock::now();
        const MObject data = out.asMObject();
        total += seconds(start);
        benchmark::DoNotOptimize(data.isNull());
    }
    const double mean = total / static_cast<double>(state.iterations());
    constexpr double points = static_cast<double>(kSide * kSide);
    state.counters["plain_ms"] = 1e3 * plainSeconds;
    state.counters["plain_points/s"] = points / plainSeconds;
    state.counters["points/s"] = points / mean;
    state.counters["ratio"] = mean / plainSeconds;
}

void PointAttributeToArray(benchmark::State& state)
{
    const plain::Grid grid(kSide);
    plain::Arrays     arrays(grid);
    const double      plainSeconds = timeOf([&] { plain::readPoints(grid, arrays); });
    buildScene();
    pull(state, "r.groupId", "r.outPositionPP", plainSeconds);
}

void ArrayToPointAttribute(benchmark::State& state)
{
    plain::Grid         grid(kSide);
    const plain::Arrays arrays(grid);
    const double        plainSeconds = timeOf([&] { plain::writePoints(arrays, grid); });
    buildScene();
    pull(state, "w.groupId", "w.outGeometry", plainSeconds);
}

} // namespace

BENCHMARK(PointAttributeToArray)->Unit(benchmark::kMillisecond);
BENCHMARK(ArrayToPointAttribute)->Unit(benchmark::kMillisecond);

// uvsToPointsOnMesh: a hundred thousand points by their UVs on a mesh of a hundred thousand polygons, beside the plain
// walk over all polygons with the host's look-up, which a few points are enough to time. The places found must agree.
#include <benchmark/benchmark.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>

#include <random>
#include <string>

#include "bench.h"

namespace {

constexpr unsigned kSide = 316, kWalked = 40;   // 99 856 polygons; points that walk the plain way

MPlug plug(const char* name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name);
    list.getPlug(0, result);
    return result;
}

/// True and the place on the first polygon in order that has the UV.
bool walk(const MFnMesh& mesh, float2& uv, float tolerance, MPoint& found)
{
    const int count = mesh.numPolygons();
    for (int polygon = 0; polygon < count; ++polygon)
        if (mesh.getPointAtUV(polygon, found, uv, MSpace::kWorld, nullptr, tolerance))
            return true;
    return false;
}

void UvsToPointsOnMesh(benchmark::State& state)
{
    const std::string side = std::to_string(kSide);
    bench::mel("file -force -new; polyPlane -subdivisionsX " + side + " -subdivisionsY " + side + " -name p;"
               "createNode uvsToPointsOnMesh -name n; connectAttr p.worldMesh[0] n.inReferenceMesh;"
               "connectAttr p.worldMesh[0] n.inGeometry; setAttr n.meshUVsFrom 1;"
               "createNode network -name s; addAttr -longName d -dataType \"doubleArray\" s; connectAttr s.d n.inMapPP");
    const unsigned pointCount = (kSide + 1) * (kSide + 1);
    std::mt19937   random(1);
    MDoubleArray   uvs(2 * pointCount);
    for (unsigned i = 0; i < uvs.length(); ++i)
        uvs[i] = double(random() % 1000001) / 1e6;
    const MObject map = MFnDoubleArrayData().create(uvs);
    const auto    tolerance = static_cast<float>(state.range(0)) * 1e-3f;
    plug("n.tolerance").setFloat(tolerance);

    MPlug   in = plug("s.d"), out = plug("n.outGeometry");
    MObject reference = plug("p.worldMesh[0]").asMObject();
    double  seconds = 0.0;
    int     runs = 0;
    for (auto _ : state) {
        in.setMObject(map);
        const double  start = bench::now();
        const MObject result = out.asMObject();
        const double  time = bench::now() - start;
        benchmark::DoNotOptimize(result.isNull());
        state.SetIterationTime(time);
        seconds += time;
        ++runs;
    }

    MObject     moved = out.asMObject();
    MPointArray points;
    MFnMesh(moved).getPoints(points);
    const MFnMesh mesh(reference);
    const double  start = bench::now();
    int           different = 0;
    for (unsigned i = 0; i < kWalked; ++i) {
        const unsigned at = i * (pointCount / kWalked);
        float2         uv = {float(uvs[2 * at]), float(uvs[2 * at + 1])};
        MPoint         found;
        different += !walk(mesh, uv, tolerance, found) || float(found.x) != float(points[at].x) ||
                     float(found.y) != float(points[at].y) || float(found.z) != float(points[at].z);
    }
    const double plain = (bench::now() - start) / kWalked * pointCount;
    state.counters["plain_s"] = plain;
    state.counters["times_as_fast"] = plain / (seconds / runs);
    state.counters["different"] = different;
    bench::mel("file -force -new");
}

} // namespace

// tolerances in thousandths of a UV unit
BENCHMARK(UvsToPointsOnMesh)->Arg(10)->Arg(1)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

// attributeTransfer through the graph on a mesh of a million points, beside the plain loops of plain_volumes.h in the
// same run. Counters, in processor time of all threads: the plain loop, how many times faster the node is, points a
// second of both.
#include <benchmark/benchmark.h>

#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <time.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench.h"
#include "plain_volumes.h"
#include "volumes/influence.h"

namespace {

constexpr std::size_t kSide = 1000, kCount = kSide * kSide;
constexpr double      kExtent = 20.0;   ///< of the grid along x and z

/// Processor time of all threads: other programs on the machine do not count.
double now()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

double timeOf(int runs, const std::function<void()>& f)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        const double start = now();
        f();
        times.push_back(now() - start);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name.c_str());
    list.getPlug(0, result);
    return result;
}

MFloatPointArray gridPoints()
{
    MFloatPointArray points(kCount);
    for (unsigned i = 0; i < kCount; ++i) {
        const double x = kExtent * (double(i % kSide) / (kSide - 1) - 0.5);
        const double z = kExtent * (double(i / kSide) / (kSide - 1) - 0.5);
        points[i] = MFloatPoint(float(x), float(0.3 * std::sin(x) * std::cos(z)), float(z));
    }
    return points;
}

MObject gridMesh()
{
    MIntArray counts, corners;
    for (int z = 0; z + 1 < int(kSide); ++z) {
        for (int x = 0; x + 1 < int(kSide); ++x) {
            const int a = z * int(kSide) + x;
            counts.append(4);
            for (const int corner : {a, a + 1, a + 1 + int(kSide), a + int(kSide)})
                corners.append(corner);
        }
    }
    MFnMeshData data;
    MObject     owner = data.create();
    MFnMesh().create(int(kCount), int(counts.length()), gridPoints(), counts, corners, owner);
    return owner;
}

plain::Transfer plainGrid()
{
    plain::Transfer        t(kCount);
    const MFloatPointArray points = gridPoints();
    for (unsigned i = 0; i < kCount; ++i) {
        t.points[3 * i] = points[i].x;
        t.points[3 * i + 1] = points[i].y;
        t.points[3 * i + 2] = points[i].z;
    }
    return t;
}

/// 8 spheres, 4 cubes, 4 capsules on a 4 x 4 raster over the grid.
std::vector<plain::Volume> volumes(double size)
{
    std::vector<plain::Volume> out;
    for (int i = 0; i < 16; ++i) {
        const double x = kExtent * ((i % 4 + 0.5) / 4 - 0.5), z = kExtent * ((i / 4 + 0.5) / 4 - 0.5);
        out.push_back({i < 8 ? 0 : i < 12 ? 1 : 2, x, 0.1 * i, z, size});
    }
    return out;
}

/// A node `t` on the grid with weight, colour and position on, and the volumes connected.
void build(const std::vector<plain::Volume>& volumes, int update, bool moving = false)
{
    static const MObject mesh = gridMesh();
    bench::mel("file -force -new;");
    bench::meshSource("grid", mesh, moving);
    bench::mel("createNode attributeTransfer -name t; connectAttr grid.outMesh t.inGeometry; setAttr t.weight 1;"
               "setAttr t.color 1; setAttr t.position 1; setAttr t.kernel[0].kernel_Interp 1;"
               "setAttr t.update " + std::to_string(update));
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        const plain::Volume& v = volumes[i];
        const std::string    b = "b" + std::to_string(i), s = std::to_string(v.size);
        bench::mel("createNode transform -name " + b + "; createNode boundingObject -name " + b + "Shape -parent " + b +
                   "; connectAttr " + b + ".worldMatrix[0] " + b + "Shape.inParentMatrix; setAttr " + b +
                   "Shape.type " + std::to_string(v.kind) + "; setAttr " + b + ".scale " + s + " " + s + " " + s +
                   "; setAttr " + b + ".translate " + std::to_string(v.x) + " " + std::to_string(v.y) + " " +
                   std::to_string(v.z) + "; connectAttr " + b + "Shape.outData.outParentMatrix t.boundingObjects[" +
                   std::to_string(i) + "].boundParentMatrix; connectAttr " + b + "Shape.outData t.boundingObjects[" +
                   std::to_string(i) + "]");
    }
}

/// The mean time of pulling `output` after `input` was set to a new number.
double pull(benchmark::State& state, const std::string& input, const std::string& output, double from = 0.0,
            double step = 1.0)
{
    MPlug  in = plug(input), out = plug(output);
    double total = 0.0, value = from;
    out.asMObject();
    for (auto _ : state) {
        in.setDouble(value += step);
        const double start = now();
        out.asMObject();
        total += now() - start;
    }
    return total / double(state.iterations());
}

void report(benchmark::State& state, double plainSeconds, double seconds)
{
    state.counters["plain_ms"] = 1e3 * plainSeconds;
    state.counters["plain_points/s"] = double(kCount) / plainSeconds;
    state.counters["points/s"] = double(kCount) / seconds;
    state.counters["times_faster"] = plainSeconds / seconds;
}

/// Volumes that each reach a tenth of the points and more: arrays only, or the geometry as well.
void TransferLargeVolumes(benchmark::State& state)
{
    const auto      v = volumes(4.5);
    plain::Transfer t = plainGrid();
    const double    plainSeconds = timeOf(3, [&] { plain::transfer(v, t); });
    build(v, int(state.range(0)));
    report(state, plainSeconds, pull(state, "grid.tick", state.range(0) == 1 ? "t.outGeometry" : "t.outWeightPP"));
}

/// Volumes that reach a hundredth of the points each, beside the same node with none.
void TransferSmallVolumes(benchmark::State& state)
{
    const auto   v = volumes(1.13);
    double       none = 0.0;
    build({}, 2);
    MPlug tick = plug("grid.tick"), out = plug("t.outWeightPP");
    none = timeOf(7, [&] { tick.setDouble(tick.asDouble() + 1.0); out.asMObject(); });
    build(v, 2);
    const double seconds = pull(state, "grid.tick", "t.outWeightPP");
    state.counters["none_ms"] = 1e3 * none;
    state.counters["against_none"] = seconds / none;
}

std::vector<volume::Volume> asVolumes(const std::vector<plain::Volume>& plain)
{
    std::vector<volume::Volume> out;
    for (const plain::Volume& p : plain) {
        volume::Volume v;
        v.envelope = 1.0;
        v.kind = static_cast<volume::Kind>(p.kind);
        const double at[3] = {p.x, p.y, p.z};
        for (int i = 0; i < 3; ++i) {
            v.matrix.m[i][i] = p.size, v.matrix.m[3][i] = at[i];
            v.inverse.m[i][i] = 1.0 / p.size, v.inverse.m[3][i] = -at[i] / p.size;
        }
        setBox(v);
        out.push_back(v);
    }
    return out;
}

/// Influences of all points into a table a block; the candidates are counted.
std::size_t search(const std::vector<volume::Volume>& volumes, const volume::Cloud& cloud, const std::vector<float>& xyz)
{
    const volume::Box             everywhere{{-1e9, -1e9, -1e9}, {1e9, 1e9, 1e9}};
    const volume::InfluenceSearch search(volumes, cloud, everywhere);
    volume::InfluenceTable        table(5, volume::PointBlock::kCapacity);
    volume::PointBlock            block;
    volume::Candidates            found;
    std::vector<int>              near;
    std::size_t                   total = 0;
    for (std::size_t from = 0; from < xyz.size() / 3; from += std::size_t(block.count)) {
        block.count = int(std::min<std::size_t>(volume::PointBlock::kCapacity, xyz.size() / 3 - from));
        for (int i = 0; i < block.count; ++i) {
            const float* p = &xyz[3 * (from + std::size_t(i))];
            block.x[i] = p[0], block.y[i] = p[1], block.z[i] = p[2];
        }
        block.bound();
        search.volumesNear(block.box, near);
        if (near.empty())
            continue;
        table.clear();
        for (const int v : near) {
            search.find(v, block, found);
            for (std::size_t k = 0; k < found.size(); ++k)
                table.offer(found.point[k], found.d[k], v, found.cloud[k]);
            total += found.size();
        }
    }
    return total;
}

void SearchSmallVolumes(benchmark::State& state)
{
    const auto      v = volumes(1.13);
    plain::Transfer t = plainGrid();
    const double    plainSeconds = timeOf(3, [&] { plain::findInfluences(v, t); });
    const auto      ours = asVolumes(v);
    double          total = 0.0;
    for (auto _ : state) {
        const double start = now();
        benchmark::DoNotOptimize(search(ours, {}, t.points));
        total += now() - start;
    }
    report(state, plainSeconds, total / double(state.iterations()));
}

/// A cloud of 100 000 spheres over the grid, each point in about three. The plain loop is timed on a hundredth of the
/// points.
void TransferCloud(benchmark::State& state)
{
    constexpr unsigned kSpheres = 100000;
    plain::Transfer    t = plainGrid();
    plain::Spheres     cloud{{}, 0.08};
    std::mt19937       random(1);
    MVectorArray       centers(kSpheres);
    for (unsigned j = 0; j < kSpheres; ++j) {
        const auto real = [&] { return kExtent * (double(random()) / 4294967296.0 - 0.5); };
        const double x = real(), z = real();
        centers[j] = MVector(x, 0.3 * std::sin(x) * std::cos(z), z);
        cloud.centers.insert(cloud.centers.end(), {centers[j].x, centers[j].y, centers[j].z});
    }
    const double plainSeconds = 100.0 * timeOf(1, [&] { plain::findInfluences(cloud, kCount / 100, t); });
    build({{0, 0, 0, 0, 1}}, 2);
    bench::mel("createNode network -name a; addAttr -longName v -dataType vectorArray a; setAttr b0Shape.type 3;"
               "connectAttr a.v b0Shape.inParticlePositionPP; setAttr b0Shape.pointRadius 0.08");
    plug("a.v").setMObject(MFnVectorArrayData().create(centers));
    report(state, plainSeconds, pull(state, "grid.tick", "t.outWeightPP"));
}

/// One of 16 small volumes is moved over a still mesh; beside it the evaluation after the mesh has changed. Everything
/// on and shown; the same with normals; the weight array alone.
void DragOneVolume(benchmark::State& state)
{
    const char* const what[] = {"setAttr t.normal 0;", "setAttr t.normal 1;",
                                "setAttr t.position 0; setAttr t.color 0; setAttr t.update 2;"};
    build(volumes(1.13), 0, true);
    bench::mel(std::string(what[state.range(0)]) + "createNode mesh -name shown; connectAttr t.outGeometry shown.inMesh");
    const std::string output = state.range(0) == 2 ? "t.outWeightPP" : "shown.outMesh";
    MPlug             tick = plug("grid.tick"), out = plug(output);
    const double      changed = timeOf(5, [&] { tick.setDouble(tick.asDouble() + 0.001); out.asMObject(); });
    const double      seconds = pull(state, "b5.translateX", output, 0.0, 0.01);
    state.counters["mesh_changed_ms"] = 1e3 * changed;
    state.counters["share"] = seconds / changed;
}

} // namespace

BENCHMARK(TransferLargeVolumes)->Arg(2)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->ArgName("update");
BENCHMARK(TransferSmallVolumes)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchSmallVolumes)->Unit(benchmark::kMillisecond);
BENCHMARK(TransferCloud)->Unit(benchmark::kMillisecond);
BENCHMARK(DragOneVolume)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->ArgName("what");

// Rays, closest points, neighbours and paths through the interface and the nodes, beside the libraries called directly
// (plain_spatial.h). Counters: rates of both, and ours over theirs.
#include <benchmark/benchmark.h>

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "bench.h"
#include "data/mobject.h"
#include "io/obj.h"
#include "../../tests/support/primitives.h"
#include "plain_spatial.h"

namespace {

MPlug plug(const char* name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name);
    list.getPlug(0, result);
    return result;
}

struct Flat { std::vector<float> points; std::vector<unsigned int> triangles; };

Flat flatten(MFnMesh& fn)
{
    Flat         flat;
    const float* raw = fn.getRawPoints();
    MIntArray    counts, vertices;
    fn.getTriangles(counts, vertices);
    flat.points.assign(raw, raw + 3 * fn.numVertices());
    for (unsigned i = 0; i < vertices.length(); ++i)
        flat.triangles.push_back(unsigned(vertices[i]));
    return flat;
}

MObject dataOf(mirk::Ref<mirk::MeshBody> body) { return mirk::wrap(mirk::make<mirk::MeshData>(std::move(body))); }

/// The bunny; without its file a sphere of about its size.
MObject bunny()
{
    const char*                  path = "/usr/share/glmark2/models/bunny.obj";
    std::ifstream                in(path, std::ios::binary);
    std::vector<mirk::NamedMesh> meshes;
    std::string                  error;
    if (in && mirk::parseObj({std::istreambuf_iterator<char>(in), {}}, path, meshes, error) && !meshes.empty())
        return dataOf(meshes[0].body);
    return dataOf(mirk::primitives::sphere(0.8, 190, 190));
}

/// Uniform in a box half again as large as that of the points.
class Around
{
public:
    explicit Around(const std::vector<float>& points) : random_(1)
    {
        for (int k = 0; k < 3; ++k)
            low_[k] = 1e30f, high_[k] = -1e30f;
        for (size_t i = 0; i < points.size(); ++i) {
            low_[i % 3] = std::min(low_[i % 3], points[i]);
            high_[i % 3] = std::max(high_[i % 3], points[i]);
        }
    }
    float next(int axis, float by)
    {
        const float t = float(random_()) / 4294967296.0f, grown = by * (high_[axis] - low_[axis]);
        return low_[axis] - grown + t * (high_[axis] - low_[axis] + 2 * grown);
    }

private:
    std::mt19937 random_;
    float        low_[3], high_[3];
};

void report(benchmark::State& state, double count, double seconds, double plainSeconds)
{
    state.counters["rate/s"] = count / seconds;
    state.counters["plain/s"] = count / plainSeconds;
    state.counters["of_plain"] = plainSeconds / seconds;
}

/// Seconds of this thread alone: the machine may have other work.
double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

/// Of all threads together: work that is shared out is not for free.
double processSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

/// Runs both in turn and keeps the best of each.
template <class Ours, class Plain>
void race(benchmark::State& state, double count, Ours ours, Plain plain)
{
    double best = 1e30, bestPlain = 1e30;
    for (auto _ : state) {
        const double a = threadSeconds();
        ours();
        const double b = threadSeconds();
        plain();
        best = std::min(best, b - a);
        bestPlain = std::min(bestPlain, threadSeconds() - b);
    }
    report(state, count, best, bestPlain);
}

void ClosestIntersection(benchmark::State& state)
{
    MFnMesh                 fn(bunny());
    const Flat              flat = flatten(fn);
    const plain::RayLibrary library(flat.points, flat.triangles);
    Around                  around(flat.points);
    std::vector<plain::Ray> rays(1000000);
    for (plain::Ray& r : rays)
        for (int k = 0; k < 3; ++k) {
            r.from[k] = around.next(k, 0.5f);
            r.along[k] = around.next(k, 0.0f) - r.from[k];
        }
    std::vector<float>    params(rays.size());
    size_t                hits = 0, plainHits = 0;
    MMeshIsectAccelParams accel = MFnMesh::autoUniformGridParams();
    const auto            ours = [&] {
        hits = 0;
        for (const plain::Ray& r : rays) {
            MFloatPoint hit;
            float       param, b1, b2;
            int         face, triangle;
            hits += fn.closestIntersection(MFloatPoint(r.from[0], r.from[1], r.from[2]), MFloatVector(r.along), nullptr, nullptr,
                                           false, MSpace::kObject, 1e6f, false, &accel, hit, &param, &face, &triangle, &b1, &b2);
        }
    };
    ours();
    race(state, double(rays.size()), ours, [&] { plainHits = library.shoot(rays, params); });
    state.counters["hits"] = double(hits);
    state.counters["plain_hits"] = double(plainHits);
    state.SetLabel(fn.cachedIntersectionAcceleratorInfo().asChar());
}

void ClosestPoint(benchmark::State& state)
{
    MObject                 mesh = bunny();
    MFnMesh                 fn(mesh);
    const Flat              flat = flatten(fn);
    const plain::RayLibrary library(flat.points, flat.triangles);
    Around                  around(flat.points);
    std::vector<float>      queries, distances(200000);
    for (size_t i = 0; i < distances.size(); ++i)
        for (int k = 0; k < 3; ++k)
            queries.push_back(around.next(k, 0.25f));
    MMeshIntersector intersector;
    intersector.create(mesh);
    double     worst = 0;
    const auto ours = [&](bool check) {
        MPointOnMesh info;
        for (size_t i = 0; i < distances.size(); ++i) {
            const MPoint p(queries[3 * i], queries[3 * i + 1], queries[3 * i + 2]);
            intersector.getClosestPoint(p, info);
            if (check)
                worst = std::max(worst, std::fabs(MPoint(info.getPoint()).distanceTo(p) - double(distances[i])));
        }
    };
    race(state, double(distances.size()), [&] { ours(false); }, [&] { library.nearest(queries, distances); });
    ours(true);
    state.counters["difference"] = worst;
}

void KdTree(benchmark::State& state)
{
    constexpr unsigned  n = 200000, k = 5;
    std::mt19937        random(2);
    std::vector<double> points, queries, distances(n * k);
    for (unsigned i = 0; i < 3 * n; ++i)
        points.push_back(random() / 4294967296.0);
    for (unsigned i = 0; i < 3 * n; ++i)
        queries.push_back(random() / 4294967296.0);
    const auto vectors = [](const std::vector<double>& xyz) {
        MVectorArray a;
        a.setLength(unsigned(xyz.size() / 3));
        for (unsigned i = 0; i < a.length(); ++i)
            a[i] = MVector(&xyz[3 * i]);
        return MFnVectorArrayData().create(a);
    };
    const MObject tree = vectors(points), asked = vectors(queries);
    bench::mel("file -force -new; createNode network -name n; addAttr -longName t -dataType vectorArray n;"
               "addAttr -longName q -dataType vectorArray n; createNode kdTree -name k; connectAttr n.t k.inGeometry;"
               "connectAttr n.q k.inGeometry2; setAttr k.outputMappingData 1");
    MPlug in = plug("n.t"), out = plug("k.outAveragePositionPP");
    plug("n.q").setMObject(asked);
    double best = 1e30, bestPlain = 1e30;
    for (auto _ : state) {
        in.setMObject(tree);
        const double  start = processSeconds();
        const MObject data = out.asMObject();
        best = std::min(best, processSeconds() - start);
        benchmark::DoNotOptimize(data.isNull());
        bestPlain = std::min(bestPlain, plain::nearestNeighbors(points, queries, k, 50, distances));
    }
    report(state, n, best, bestPlain);   // ours with building the tree, theirs without
}

void ShortestPath(benchmark::State& state)
{
    const bool sphere = state.range(0) != 0;
    MObject    mesh = dataOf(sphere ? mirk::primitives::sphere(1.0, 400, 251) : mirk::primitives::plane(316.0, 316.0, 316, 316));
    MFnMesh    fn(mesh);
    const Flat flat = flatten(fn);
    std::vector<int> edges, pairs;
    for (int e = 0; e < fn.numEdges(); ++e) {
        int2 ends;
        fn.getEdgeVertices(e, ends);
        edges.insert(edges.end(), {ends[0], ends[1]});
    }
    std::mt19937 random(3);
    std::string  text;
    for (int i = 0; i < 100; ++i) {
        const int a = int(random() % unsigned(fn.numVertices())), b = int(random() % unsigned(fn.numVertices()));
        pairs.insert(pairs.end(), {a, b});
        text += std::to_string(a) + ":" + std::to_string(b) + " ";
    }
    bench::mel("file -force -new");
    bench::meshSource("m", mesh);
    bench::mel("createNode shortestPath -name s; connectAttr m.outMesh s.inMesh; setAttr s.mode 2");
    MPlug expression = plug("s.expression"), out = plug("s.outCounts");
    out.asMObject();   // the graph is read
    bool spare = false;
    race(state, 100.0,
         [&] {
             expression.setString((text + ((spare = !spare) ? " " : "")).c_str());
             benchmark::DoNotOptimize(out.asMObject().isNull());
         },
         [&] { benchmark::DoNotOptimize(plain::shortestPaths(flat.points, edges, pairs).size()); });
    state.counters["vertices"] = fn.numVertices();
}

} // namespace

BENCHMARK(ClosestIntersection)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(ClosestPoint)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(KdTree)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(ShortestPath)->ArgName("sphere")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

// componentGroup with four bounding objects on a million faces, through the graph, beside the plain loop of
// plain_components.h. Counters: the time of the plain loop, the ratio to it, faces a second of both, faces selected.
#include <benchmark/benchmark.h>

#include <maya/MFnComponentListData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../bench.h"
#include "plain_components.h"

namespace {

constexpr int kSide = 1000;

struct Place
{
    double x, z, size;
    bool   cube, contained;
};
constexpr Place kPlaces[] = {{-0.200713, 0.100291, 0.200337, false, true},
                             {0.200519, 0.200873, 0.150211, false, false},
                             {0.100463, -0.300137, 0.100419, true, true},
                             {-0.300241, -0.200671, 0.120359, true, false}};

MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name.c_str());
    list.getPlug(0, result);
    return result;
}

std::vector<plain::Bound> plainBounds()
{
    std::vector<plain::Bound> bounds;
    for (const Place& p : kPlaces) {
        const double s = 1.0 / p.size;
        bounds.push_back({{s, 0, 0, 0, 0, s, 0, 0, 0, 0, s, 0, -p.x * s, 0, -p.z * s, 1}, p.cube, p.contained});
    }
    return bounds;
}

/// A bounding object under a transform, on element `index` of g.
void addBound(const Place& p, int index)
{
    const std::string i = std::to_string(index), size = std::to_string(p.size);
    const std::string b = "b" + i, t = "t" + i;
    bench::mel("createNode transform -name " + t + "; createNode boundingObject -name " + b + " -parent " + t);
    bench::mel("setAttr " + t + ".translate " + std::to_string(p.x) + " 0 " + std::to_string(p.z));
    bench::mel("setAttr " + t + ".scale " + size + " " + size + " " + size);
    bench::mel("setAttr " + b + ".type " + std::to_string(p.cube));
    bench::mel("setAttr " + b + ".contained " + std::to_string(p.contained));
    bench::mel("connectAttr " + t + ".worldMatrix[0] " + b + ".inParentMatrix");
    bench::mel("connectAttr " + b + ".outData g.boundingObjects[" + i + "]");
}

void buildScene()
{
    const std::string side = std::to_string(kSide);
    bench::mel("file -force -new; polyPlane -width 1 -height 1 -subdivisionsX " + side + " -subdivisionsY " + side +
               " -name p; createNode componentGroup -name g; connectAttr p.worldMesh[0] g.inGeometry;"
               "setAttr g.componentType 2");
    int i = 0;
    for (const Place& p : kPlaces)
        addBound(p, i++);
}

unsigned int selectedCount(MPlug& out)
{
    MObject                    data = out.asMObject();
    const MFnComponentListData list(data);
    return list.length() > 0 ? unsigned(MFnSingleIndexedComponent(list[0]).elementCount()) : 0;
}

void ComponentGroupBounds(benchmark::State& state)
{
    const plain::FaceGrid            grid(kSide);
    const std::vector<plain::Bound>  bounds = plainBounds();
    std::vector<int>                 faces(std::size_t(kSide) * kSide);
    std::vector<double>              times;
    std::size_t                      found = 0;
    for (int run = 0; run < 7; ++run) {
        const double start = bench::now();
        benchmark::DoNotOptimize(found = plain::facesInside(grid, bounds, faces));
        times.push_back(bench::now() - start);
    }
    std::nth_element(times.begin(), times.begin() + 3, times.end());
    const double plainSeconds = times[3];

    buildScene();
    MPlug  dirty = plug("g.inMessage"), out = plug("g.outComponents");
    int    value = 0;
    double total = 0.0;
    unsigned int selected = selectedCount(out);
    for (auto _ : state) {
        dirty.setInt(++value);
        const double  start = bench::now();
        const MObject data = out.asMObject();
        total += bench::now() - start;
        benchmark::DoNotOptimize(data.isNull());
    }
    const double mean = total / double(state.iterations());
    state.counters["plain_ms"] = 1e3 * plainSeconds;
    state.counters["plain_faces/s"] = kSide * kSide / plainSeconds;
    state.counters["faces/s"] = kSide * kSide / mean;
    state.counters["ratio"] = mean / plainSeconds;
    state.counters["selected"] = selected;
    if (selected != found)
        state.SkipWithError(("the plain loop selects " + std::to_string(found) + " faces").c_str());
}

} // namespace

BENCHMARK(ComponentGroupBounds)->Unit(benchmark::kMillisecond);

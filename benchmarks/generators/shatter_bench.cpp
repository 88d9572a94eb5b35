// A closed mesh into Voronoi cells: through the node with the host's polygon nodes, and the same planes in flat arrays.
// Counters: cells a second of both, and ours over theirs.
#include <benchmark/benchmark.h>

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench.h"
#include "generators/voronoi.h"
#include "plain_shatter.h"

namespace {

/// An icosahedron, each triangle in four as often as told, on the unit sphere.
struct Sphere
{
    std::vector<std::array<double, 3>> points;
    std::vector<std::array<int, 3>>    triangles;

    explicit Sphere(int subdivisions)
    {
        const double g = (1 + std::sqrt(5.0)) / 2;
        for (const auto& p : {std::array<double, 3>{-1, g, 0}, {1, g, 0}, {-1, -g, 0}, {1, -g, 0}, {0, -1, g}, {0, 1, g},
                              {0, -1, -g}, {0, 1, -g}, {g, 0, -1}, {g, 0, 1}, {-g, 0, -1}, {-g, 0, 1}})
            add(p);
        triangles = {{0, 11, 5}, {0, 5, 1}, {0, 1, 7}, {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                     {3, 9, 4}, {3, 4, 2}, {3, 2, 6}, {3, 6, 8}, {3, 8, 9}, {4, 9, 5}, {2, 4, 11}, {6, 2, 10}, {8, 6, 7}, {9, 8, 1}};
        for (int k = 0; k < subdivisions; ++k)
            divide();
    }

private:
    int add(std::array<double, 3> p)
    {
        const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
        points.push_back({p[0] / length, p[1] / length, p[2] / length});
        return int(points.size()) - 1;
    }
    void divide()
    {
        std::map<std::pair<int, int>, int> middles;
        const auto middle = [&](int a, int b) {
            const auto [it, isNew] = middles.emplace(std::minmax(a, b), 0);
            if (isNew) {
                const auto p = points[std::size_t(a)], q = points[std::size_t(b)];
                it->second = add({p[0] + q[0], p[1] + q[1], p[2] + q[2]});
            }
            return it->second;
        };
        std::vector<std::array<int, 3>> finer;
        for (const auto& [a, b, c] : triangles) {
            const int ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
            finer.insert(finer.end(), {{a, ab, ca}, {ab, b, bc}, {ca, bc, c}, {ab, bc, ca}});
        }
        triangles = std::move(finer);
    }
};

MObject meshOf(const Sphere& sphere)
{
    MPointArray points;
    MIntArray   counts, corners;
    for (const auto& p : sphere.points)
        points.append(MPoint(p[0], p[1], p[2]));
    for (const auto& t : sphere.triangles) {
        counts.append(3);
        for (int v : t)
            corners.append(v);
    }
    MFnMeshData data;
    MObject     mesh = data.create();
    MFnMesh().create(int(points.length()), int(counts.length()), points, counts, corners, mesh);
    return mesh;
}

/// In the sphere.
std::vector<double> cellPoints(int count)
{
    std::mt19937                           random(1);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::vector<double>                    points;
    while (int(points.size()) < 3 * count) {
        const double p[3] = {unit(random), unit(random), unit(random)};
        if (p[0] * p[0] + p[1] * p[1] + p[2] * p[2] < 0.9)
            points.insert(points.end(), p, p + 3);
    }
    return points;
}

std::vector<std::vector<plain::HalfSpace>> halfSpaces(const std::vector<double>& points)
{
    std::vector<std::vector<plain::HalfSpace>> cells;
    for (const auto& [i, others] : voronoi::neighborsInSpace(points).neighbors) {
        cells.emplace_back();
        for (int j : others) {
            plain::HalfSpace side;
            for (std::size_t c = 0; c < 3; ++c) {
                side.normal[c] = float(points[3 * std::size_t(i) + c] - points[3 * std::size_t(j) + c]);
                side.center[c] = float(0.5 * (points[3 * std::size_t(i) + c] + points[3 * std::size_t(j) + c]));
            }
            cells.back().push_back(side);
        }
    }
    return cells;
}

/// Of all threads of this process: the machine may have other work.
double processSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

void Shatter(benchmark::State& state)
{
    const int                 cellCount = int(state.range(0));
    const Sphere              sphere(int(state.range(1)));
    const std::vector<double> points = cellPoints(cellCount);
    const auto                cells = halfSpaces(points);
    std::vector<float>        flat;
    for (const auto& t : sphere.triangles)
        for (int v : t)
            for (double c : sphere.points[std::size_t(v)])
                flat.push_back(float(c));
    plain::Cutter cutter(flat);

    std::string values;
    for (double p : points)
        values += " " + std::to_string(p);
    bench::mel("file -f -new");
    bench::meshSource("ball", meshOf(sphere));
    bench::mel("createNode network -n cells; addAttr -ln p -dt vectorArray; setAttr cells.p -type vectorArray "
               + std::to_string(cellCount) + values);
    bench::mel("createNode shatter -n s; setAttr s.printStatus 0; connectAttr ball.outMesh s.inGeometry;"
               "connectAttr cells.p s.inPositionPP; setAttr s.autoEvaluate 1");
    MSelectionList list;
    MPlug          out;
    list.add("s.outGeometry");
    list.getPlug(0, out);

    double best = 1e30, bestPlain = 1e30;
    int    tick = 0;
    for (auto _ : state) {
        bench::mel("setAttr ball.tick " + std::to_string(++tick));
        const double  a = processSeconds();
        const MObject shards = out.asMObject();
        const double  b = processSeconds();
        std::size_t   faces = 0;
        for (const auto& sides : cells)
            faces += cutter.cell(sides).sizes.size();
        bestPlain = std::min(bestPlain, processSeconds() - b);
        best = std::min(best, b - a);
        // the caps come on top: a face for each pair of cells that meet inside
        if (std::size_t(MFnMesh(shards).numPolygons()) < faces) {
            state.SkipWithError("faces are missing");
            break;
        }
    }
    state.counters["cells/s"] = double(cellCount) / best;
    state.counters["plain/s"] = double(cellCount) / bestPlain;
    state.counters["of_plain"] = bestPlain / best;
}
BENCHMARK(Shatter)->Args({100, 4})->Args({30, 4})->Args({1000, 4})->Unit(benchmark::kMillisecond);

}  // namespace

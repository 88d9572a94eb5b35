// A solid of 5 120 triangles cut into 100 Voronoi cells: the mesh work of polyCut and polyCloseBorder alone, beside a clip
// of bare polygons (plain_cut.h). Counters: cells a second of both, plain over ours, cuts a cell.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "mesh/close_border.h"
#include "mesh/cut.h"
#include "../../tests/support/primitives.h"
#include "plain_cut.h"

namespace {

using mirk::MeshBody;
using mirk::Ref;
using mirk::Vec3;

/// Processor seconds: the machine may have other work.
double seconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

struct Plane { Vec3 center, normal; };

/// For each point the planes half way to those others that bound its cell, in the order of the others.
std::vector<std::vector<Plane>> voronoi(int count)
{
    std::mt19937                           random(3);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<Vec3>                      points;
    while (int(points.size()) < count)
        if (const Vec3 p(uniform(random), uniform(random), uniform(random)); dot(p, p) < 1)
            points.push_back(p);
    const Ref<MeshBody> box = mirk::primitives::cube(40, 40, 40, 1, 1, 1);
    plain::Soup         whole, next;
    for (int f = 0; f < box->faceCount(); ++f) {
        whole.sizes.push_back(box->topology().faceSize(f));
        for (int v : box->topology().face(f))
            whole.corners.insert(whole.corners.end(), box->points() + 3 * v, box->points() + 3 * v + 3);
    }
    std::vector<std::vector<Plane>> cells(points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        plain::Soup        cell = whole;
        std::vector<Plane> all;
        for (size_t j = 0; j < points.size(); ++j)
            if (j != i) {
                const Vec3 v = points[i] - points[j];
                all.push_back({(points[i] + points[j]) * 0.5, v * (1 / length(v))});
                const double n[3] = {all.back().normal.x, all.back().normal.y, all.back().normal.z};
                plain::clipConvex(cell, n, dot(all.back().normal, all.back().center), next);
                std::swap(cell, next);
            }
        for (const Plane& p : all) {   // those that hold a face of the cell
            const float* c = cell.corners.data();
            for (int size : cell.sizes) {
                bool in = true;
                for (int k = 0; k < size; ++k)
                    in &= std::fabs(dot(Vec3(c + 3 * k) - p.center, p.normal)) < 1e-4;
                if (in) {
                    cells[i].push_back(p);
                    break;
                }
                c += 3 * size;
            }
        }
    }
    return cells;
}

/// 5 120 triangles with UVs, round.
Ref<MeshBody> ball()
{
    const Ref<MeshBody> quads = mirk::primitives::sphere(1, 64, 41);
    std::vector<float>  points(quads->points(), quads->points() + 3 * quads->vertexCount());
    const auto&         t = quads->topology();
    const auto&         corners = quads->triangles();
    std::vector<int>    counts(corners.size() / 3, 3), connects;
    auto                ids = mirk::make<mirk::Buffer<int>>();
    for (int c : corners) {
        connects.push_back(t.connects()[size_t(c)]);
        ids->push(quads->uvSets().sets[0].id(c));
    }
    auto body = mirk::make<MeshBody>();
    body->reset(mirk::make<mirk::Buffer<float>>(points.data(), points.size()),
                mirk::Topology::create(quads->vertexCount(), counts.data(), counts.size(), connects.data(), connects.size()));
    body->writeUVSet(0).uvs = quads->uvSets().sets[0].uvs;
    body->assignUVs(0, ids);
    return body;
}

double plainCells(const MeshBody& mesh, const std::vector<std::vector<Plane>>& cells, double& taken)
{
    plain::Soup whole, now, next;
    for (int f = 0; f < mesh.faceCount(); ++f) {
        whole.sizes.push_back(mesh.topology().faceSize(f));
        for (int v : mesh.topology().face(f))
            whole.corners.insert(whole.corners.end(), mesh.points() + 3 * v, mesh.points() + 3 * v + 3);
    }
    double       total = 0;
    const double begin = seconds();
    for (const auto& planes : cells) {
        const plain::Soup* from = &whole;
        for (const Plane& p : planes) {
            const double n[3] = {p.normal.x, p.normal.y, p.normal.z};
            plain::clipConvex(*from, n, dot(p.normal, p.center), next);
            std::swap(now, next);
            from = &now;
        }
        total += plain::volume(*from);
    }
    taken = seconds() - begin;
    return total;
}

double volume(const MeshBody& m)
{
    double sum = 0;
    for (int f = 0; f < m.faceCount(); ++f) {
        const auto face = m.topology().face(f);
        for (size_t k = 1; k + 1 < face.size(); ++k)
            sum += dot(Vec3(m.points() + 3 * face[0]), cross(Vec3(m.points() + 3 * face[k]), Vec3(m.points() + 3 * face[k + 1])));
    }
    return sum / 6;
}

void voronoiCells(benchmark::State& state, bool closed)
{
    const auto          cells = voronoi(100);
    const Ref<MeshBody> mesh = ball();
    size_t              cuts = 0;
    for (const auto& planes : cells)
        cuts += planes.size();
    double plainBest = 1e30, best = 1e30;
    for (auto _ : state) {
        double taken = 0, total = 0;
        const double expected = plainCells(*mesh, cells, taken);
        plainBest = std::min(plainBest, taken);
        const double begin = seconds();
        for (const auto& planes : cells) {
            Ref<MeshBody> now = mesh;
            for (const Plane& p : planes) {
                mirk::PlaneCut cut;
                cut.center = p.center;
                cut.normal = p.normal;
                cut.behind = mirk::PlaneCut::drop;
                if (Ref<MeshBody> after = mirk::cutByPlane(*now, cut))
                    now = std::move(after);
                if (closed)
                    if (Ref<MeshBody> after = mirk::closeBorder(*now))
                        now = std::move(after);
            }
            total += volume(*now);
        }
        best = std::min(best, seconds() - begin);
        if (closed && std::fabs(total - expected) > 1e-4)
            std::abort();
    }
    state.counters["cells/s"] = double(cells.size()) / best;
    state.counters["plain cells/s"] = double(cells.size()) / plainBest;
    state.counters["ratio"] = best / plainBest;
    state.counters["cuts"] = double(cuts) / double(cells.size());
}

BENCHMARK_CAPTURE(voronoiCells, cut_and_close, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(voronoiCells, cut_only, false)->Unit(benchmark::kMillisecond);

}  // namespace

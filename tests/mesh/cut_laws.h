// What the tests of cuts measure: volumes, areas, closedness; and the meshes they are made on.
#pragma once
#include <map>
#include <random>

#include "mesh/close_border.h"
#include "mesh/cut.h"
#include "mesh/mesh_helpers.h"
#include "mesh/rebuild.h"

namespace mirk::test {

inline Vec3 pointOf(const MeshBody& m, int v) { return Vec3(m.points() + 3 * v); }

/// By fans around each face's first vertex: right for faces that are flat, whatever their outline.
inline double volume(const MeshBody& m)
{
    double sum = 0;
    for (int f = 0; f < m.faceCount(); ++f) {
        const auto face = m.topology().face(f);
        for (size_t k = 1; k + 1 < face.size(); ++k)
            sum += dot(pointOf(m, face[0]), cross(pointOf(m, face[k]), pointOf(m, face[k + 1]))) / 6;
    }
    return sum;
}

/// Area of all faces, along their own normals.
inline double surfaceArea(const MeshBody& m)
{
    double sum = 0;
    for (int f = 0; f < m.faceCount(); ++f)
        sum += length(areaVector(m.topology(), m.points(), f));
    return sum;
}

/// Signed area of the faces in the plane of the current UVs; faces without them count nothing.
inline double uvArea(const MeshBody& m)
{
    const UVSet& set = m.uvSets().sets[size_t(m.uvSets().current)];
    double       sum = 0;
    for (int f = 0; f < m.faceCount(); ++f)
        for (int c = m.topology().first(f); c < m.topology().first(f + 1); ++c) {
            const int a = set.id(c), b = set.id(m.topology().next(c, f));
            if (a < 0 || b < 0)
                break;
            const F2 p = (*set.uvs)[size_t(a)], q = (*set.uvs)[size_t(b)];
            sum += 0.5 * (double(p.u) * q.v - double(q.u) * p.v);
        }
    return sum;
}

/// Edges that are not passed once in each direction.
inline int openEdges(const MeshBody& m)
{
    std::map<std::pair<int, int>, int> uses;
    const Topology& t = m.topology();
    for (int f = 0; f < t.faceCount(); ++f)
        for (int c = t.first(f); c < t.first(f + 1); ++c)
            ++uses[{t.connects()[size_t(c)], t.connects()[size_t(t.next(c, f))]}];
    int open = 0;
    for (const auto& [edge, count] : uses) {
        const auto back = uses.find({edge.second, edge.first});
        open += count != 1 || back == uses.end() || back->second != 1;
    }
    return open;
}

inline int unusedVertices(const MeshBody& m)
{
    std::vector<char> used(size_t(m.vertexCount()), 0);
    for (int v : m.topology().connects())
        used[size_t(v)] = 1;
    return int(std::count(used.begin(), used.end(), 0));
}

inline Ref<MeshBody> bodyFrom(const Points& points, const Faces& faces)
{
    return Ref<MeshBody>(&bodyOf(meshOf(points, faces)));
}

/// A sphere of 20 * 4^levels triangles.
inline Ref<MeshBody> icosphere(int levels)
{
    const double p = (1 + std::sqrt(5.0)) / 2;
    Points points = {{-1, p, 0}, {1, p, 0}, {-1, -p, 0}, {1, -p, 0}, {0, -1, p}, {0, 1, p}, {0, -1, -p}, {0, 1, -p}, {p, 0, -1}, {p, 0, 1}, {-p, 0, -1}, {-p, 0, 1}};
    Faces  faces = {{0, 11, 5}, {0, 5, 1}, {0, 1, 7}, {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                    {3, 9, 4}, {3, 4, 2}, {3, 2, 6}, {3, 6, 8}, {3, 8, 9}, {4, 9, 5}, {2, 4, 11}, {6, 2, 10}, {8, 6, 7}, {9, 8, 1}};
    for (int l = 0; l < levels; ++l) {
        std::map<std::pair<int, int>, int> middles;
        const auto middle = [&](int a, int b) {
            const auto [it, fresh] = middles.insert({std::minmax(a, b), int(points.size())});
            if (fresh)
                points.push_back({(points[size_t(a)][0] + points[size_t(b)][0]) / 2, (points[size_t(a)][1] + points[size_t(b)][1]) / 2,
                                  (points[size_t(a)][2] + points[size_t(b)][2]) / 2});
            return it->second;
        };
        Faces finer;
        for (const auto& f : faces) {
            const int a = middle(f[0], f[1]), b = middle(f[1], f[2]), c = middle(f[2], f[0]);
            finer.insert(finer.end(), {{f[0], a, c}, {f[1], b, a}, {f[2], c, b}, {a, b, c}});
        }
        faces = finer;
    }
    for (auto& q : points) {
        const double l = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2]);
        q = {q[0] / l, q[1] / l, q[2] / l};
    }
    return bodyFrom(points, faces);
}

/// The cut side, closed if `close`; the mesh itself where nothing is cut.
inline Ref<MeshBody> front(const Ref<MeshBody>& m, const PlaneCut& cut, bool close = true)
{
    Ref<MeshBody> out = cutByPlane(*m, cut);
    out = out ? out : m;
    const Ref<MeshBody> closed = close ? closeBorder(*out) : Ref<MeshBody>();
    return closed ? closed : out;
}

inline PlaneCut dropping(const Vec3& center, const Vec3& normal)
{
    PlaneCut c;
    c.center = center;
    c.normal = normal;
    c.behind = PlaneCut::drop;
    return c;
}

inline Vec3 randomDirection(std::mt19937& random)
{
    std::normal_distribution<double> n;
    Vec3 v(n(random), n(random), n(random));
    return v * (1 / length(v));
}

}  // namespace mirk::test

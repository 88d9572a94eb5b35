// Normals and tangents of meshes.
#include <cmath>
#include <numeric>

#include "mesh/mesh.h"
#include "mesh/vector3.h"

namespace mirk {

Vec3 areaVector(const Topology& t, const float* points, int f)
{
    const auto face = t.face(f);
    const Vec3 origin(points + 3 * face[0]);
    Vec3 sum;
    for (size_t k = 1; k + 1 < face.size(); ++k)
        sum += cross(Vec3(points + 3 * face[k]) - origin, Vec3(points + 3 * face[k + 1]) - origin);
    return sum * 0.5;
}

namespace {

Ref<Buffer<F3>> buildFaceNormals(const Topology& t, const float* points)
{
    auto normals = make<Buffer<F3>>(size_t(t.faceCount()));
    for (int f = 0; f < t.faceCount(); ++f)
        (*normals)[f] = unit(areaVector(t, points, f));
    return normals;
}

/// Angle of a face at a corner.
float cornerAngle(const Topology& t, const float* points, int corner, int face)
{
    const Buffer<int>& v = t.connects();
    const Vec3 p(points + 3 * v[corner]);
    const Vec3 a = Vec3(points + 3 * v[t.next(corner, face)]) - p;
    const Vec3 b = Vec3(points + 3 * v[t.previous(corner, face)]) - p;
    return float(std::atan2(length(cross(a, b)), dot(a, b)));
}

Ref<Buffer<F3>> buildVertexNormals(const Topology& t, const float* points, const Buffer<F3>& faceNormals, bool weighted)
{
    auto normals = make<Buffer<F3>>(size_t(t.vertexCount()), F3{});
    Buffer<F3>& n = *normals;
    for (int f = 0; f < t.faceCount(); ++f)
        for (int c = t.first(f); c < t.first(f + 1); ++c) {
            const float w = weighted ? cornerAngle(t, points, c, f) : 1.0f;
            F3& sum = n[t.connects()[c]];
            for (int k = 0; k < 3; ++k)
                sum.v[k] += w * faceNormals[f].v[k];
        }
    for (F3& sum : n)
        sum = unit(Vec3(sum.v));
    return normals;
}

}  // namespace

const Buffer<F3>& MeshBody::faceNormals() const
{
    return surface_->faceNormals.get([this] { return buildFaceNormals(*topology_, points()); });
}

const Buffer<int>& MeshBody::triangles() const
{
    return surface_->triangles.get([this] { return triangulate(*topology_, points()); });
}

const Buffer<F3>& MeshBody::vertexNormals(bool weighted) const
{
    if (locked_) {
        auto& lazy = weighted ? shading_->verticesWeighted : shading_->vertices;
        return lazy.get([&] { return vertexNormalsWithLocks(weighted); });
    }
    auto& lazy = weighted ? surface_->vertexNormalsWeighted : surface_->vertexNormals;
    return lazy.get([&] { return buildVertexNormals(*topology_, points(), faceNormals(), weighted); });
}

Ref<Buffer<F3>> MeshBody::vertexNormalsWithLocks(bool weighted) const
{
    auto normals = buildVertexNormals(*topology_, points(), faceNormals(), weighted);
    Buffer<F3>& n = *normals;
    for (size_t v = 0; v < locked_->vertexLocked.size(); ++v)
        if (locked_->vertexLocked[v])
            n[v] = locked_->vertex[v];
    if (locked_->cornerLocked.empty())
        return normals;
    // a vertex with a locked corner has the mean of its corners' normals
    const CornerNormals& corners = cornerNormals();
    for (int v = 0; v < vertexCount(); ++v) {
        bool any = false;
        Vec3 sum;
        for (int c : topology_->vertexCorners()[v]) {
            any |= locked_->cornerLocked[c] != 0;
            sum += Vec3(corners.at(c).v);
        }
        if (any)
            n[v] = unit(sum);
    }
    return normals;
}

const CornerNormals& MeshBody::cornerNormals() const
{
    return shading_->corners.get([this] { return buildCornerNormals(); });
}

namespace {

/// The corners of one vertex, joined where their faces meet in a smooth edge.
class Fan
{
public:
    Fan(const MeshBody& body, const Topology& t, std::span<const int> corners) : parent_(corners.size())
    {
        std::iota(parent_.begin(), parent_.end(), 0);
        const EdgeTable& edges = t.edges();
        for (size_t i = 0; i < corners.size(); ++i) {
            const int c = corners[i], f = t.cornerFaces()[c];
            edges_.push_back({edges.ofCorner[c], int(i)});
            edges_.push_back({edges.ofCorner[t.previous(c, f)], int(i)});
        }
        std::sort(edges_.begin(), edges_.end());
        for (size_t i = 1; i < edges_.size(); ++i)
            if (edges_[i].first == edges_[i - 1].first && body.edgeSmooth(edges_[i].first))
                parent_[size_t(root(edges_[i].second))] = root(edges_[i - 1].second);
    }
    int root(int i)
    {
        for (; parent_[size_t(i)] != i; i = parent_[size_t(i)])
            parent_[size_t(i)] = parent_[size_t(parent_[size_t(i)])];
        return i;
    }

private:
    std::vector<int>                 parent_;
    std::vector<std::pair<int, int>> edges_;
};

}  // namespace

Ref<CornerNormals> MeshBody::buildCornerNormals() const
{
    const Topology& t = *topology_;
    auto result = make<CornerNormals>();
    result->ids.resize(size_t(t.cornerCount()));
    if (!anyHard() && !locked_) {   // one normal a vertex
        const Buffer<F3>& n = vertexNormals(true);
        result->table.resize(n.size());
        std::copy(n.begin(), n.end(), result->table.begin());
        std::copy(t.connects().begin(), t.connects().end(), result->ids.begin());
        return result;
    }
    const Buffer<F3>& faces = faceNormals();
    const bool lockedVertices = locked_ && !locked_->vertexLocked.empty();
    const bool lockedCorners = locked_ && !locked_->cornerLocked.empty();
    std::vector<int> idOfRoot;
    std::vector<Vec3> sums;
    for (int v = 0; v < t.vertexCount(); ++v) {
        const auto corners = t.vertexCorners()[v];
        if (lockedVertices && locked_->vertexLocked[v]) {
            result->table.push(locked_->vertex[v]);
            for (int c : corners)
                result->ids[c] = int(result->table.size()) - 1;
        } else {
            Fan fan(*this, t, corners);
            idOfRoot.assign(corners.size(), -1);
            sums.assign(corners.size(), Vec3());
            for (size_t i = 0; i < corners.size(); ++i) {
                const int f = t.cornerFaces()[corners[i]];
                sums[size_t(fan.root(int(i)))] += Vec3(faces[f].v) * double(cornerAngle(t, points(), corners[i], f));
            }
            for (size_t i = 0; i < corners.size(); ++i) {
                const size_t root = size_t(fan.root(int(i)));
                if (idOfRoot[root] < 0) {
                    idOfRoot[root] = int(result->table.size());
                    result->table.push(unit(sums[root]));
                }
                result->ids[corners[i]] = idOfRoot[root];
            }
        }
        if (lockedCorners)
            for (int c : corners)
                if (locked_->cornerLocked[c]) {
                    result->ids[c] = int(result->table.size());
                    result->table.push(locked_->corner[c]);
                }
    }
    return result;
}

const Tangents& MeshBody::tangents(int set) const
{
    const UVSet& uvSet = uvSets_->sets[size_t(set)];
    TangentCache& cache = *tangents_;
    const auto find = [&]() -> const Tangents* {
        for (auto* e = cache.head.load(std::memory_order_acquire); e; e = e->next)
            if (e->set == uvSet.name)
                return e->value.get();
        return nullptr;
    };
    if (const Tangents* found = find())
        return *found;
    const std::lock_guard<std::mutex> lock(cache.mutex);
    if (const Tangents* found = find())
        return *found;
    auto* entry = new TangentCache::Entry{uvSet.name, buildTangents(uvSet), cache.head.load(std::memory_order_relaxed)};
    cache.head.store(entry, std::memory_order_release);
    return *entry->value;
}

namespace {

struct Gradient { Vec3 u, v; double area = 0; };

/// Directions in which U and V grow in the triangle of three corners; zero if its UVs have no area.
Gradient uvGradient(const UVSet& set, const Buffer<int>& connects, const float* points, int c0, int c1, int c2)
{
    const int i0 = set.id(c0), i1 = set.id(c1), i2 = set.id(c2);
    if (i0 < 0 || i1 < 0 || i2 < 0)
        return {};
    const Vec3 p0(points + 3 * connects[c0]);
    const Vec3 e1 = Vec3(points + 3 * connects[c1]) - p0, e2 = Vec3(points + 3 * connects[c2]) - p0;
    const F2 w0 = (*set.uvs)[i0], w1 = (*set.uvs)[i1], w2 = (*set.uvs)[i2];
    const double u1 = double(w1.u) - w0.u, v1 = double(w1.v) - w0.v, u2 = double(w2.u) - w0.u, v2 = double(w2.v) - w0.v;
    const double area = u1 * v2 - u2 * v1;
    if (area == 0 || !std::isfinite(area))
        return {};
    return {(e1 * v2 - e2 * v1) * (1 / area), (e2 * u1 - e1 * u2) * (1 / area), area};
}

}  // namespace

Ref<Tangents> MeshBody::buildTangents(const UVSet& set) const
{
    const Topology& t = *topology_;
    const CornerNormals& normals = cornerNormals();
    auto result = make<Tangents>();
    result->tangents.resize(size_t(t.cornerCount()));
    result->binormals.resize(size_t(t.cornerCount()));
    for (int f = 0; f < t.faceCount(); ++f)
        for (int c = t.first(f); c < t.first(f + 1); ++c) {
            Gradient g = uvGradient(set, t.connects(), points(), t.previous(c, f), c, t.next(c, f));
            for (int k = t.first(f) + 1; g.area == 0 && k + 1 < t.first(f + 1); ++k)   // a corner without angle
                g = uvGradient(set, t.connects(), points(), t.first(f), k, k + 1);
            const Vec3 n(normals.at(c).v);
            const Vec3 tangent(unit(g.u - n * dot(n, g.u)).v);
            Vec3 binormal = cross(n, tangent);
            if (dot(binormal, g.v) < 0)   // mirrored UVs
                binormal = binormal * -1.0;
            result->tangents[c] = tangent.f3();
            result->binormals[c] = unit(binormal);
        }
    return result;
}

}  // namespace mirk

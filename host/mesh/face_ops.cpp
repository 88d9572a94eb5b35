#include "mesh/face_ops.h"

#include <algorithm>
#include <unordered_set>

#include "mesh/face_plan.h"

namespace mirk {

namespace {

/// Vertices with two edges are links between two neighbours; taking one out links its neighbours.
class LinkRemoval
{
public:
    explicit LinkRemoval(const Topology& t) : t_(t), gone(size_t(t.vertexCount()), 0), links_(size_t(t.vertexCount())), sizes_(size_t(t.faceCount()))
    {
        for (int v = 0; v < t.vertexCount(); ++v)
            links_[size_t(v)] = linkOf(v);
        for (int f = 0; f < t.faceCount(); ++f)
            sizes_[size_t(f)] = t.faceSize(f);
    }

    bool remove(int v)
    {
        const Link link = links_[size_t(v)];
        if (link.a < 0 || edgeBetween(link.a, link.b) || !facesCanSpare(v))
            return false;
        for (int c : t_.vertexCorners()[v])
            --sizes_[size_t(t_.cornerFaces()[size_t(c)])];
        relink(link.a, v, link.b);
        relink(link.b, v, link.a);
        made_.erase(key(link.a, v));
        made_.erase(key(link.b, v));
        made_.insert(key(link.a, link.b));
        gone[size_t(v)] = 1;
        return true;
    }

private:
    struct Link { int a = -1, b = -1; };

    const Topology& t_;

public:
    Buffer<uint8_t> gone;

private:
    Link linkOf(int v) const
    {
        Link link;
        for (int c : t_.vertexCorners()[v]) {
            const int f = t_.cornerFaces()[size_t(c)];
            for (int n : {t_.connects()[size_t(t_.previous(c, f))], t_.connects()[size_t(t_.next(c, f))]}) {
                if (n == v)
                    return {};
                if (link.a < 0 || link.a == n)
                    link.a = n;
                else if (link.b < 0 || link.b == n)
                    link.b = n;
                else
                    return {};
            }
        }
        return link.b < 0 ? Link() : link;
    }

    static uint64_t key(int a, int b) { return uint64_t(std::min(a, b)) << 32 | uint32_t(std::max(a, b)); }

    bool edgeBetween(int a, int b) const
    {
        if (made_.count(key(a, b)))
            return true;
        if (t_.vertexCorners()[a].size() > t_.vertexCorners()[b].size())
            std::swap(a, b);
        for (int c : t_.vertexCorners()[a]) {
            const int f = t_.cornerFaces()[size_t(c)];
            if (t_.connects()[size_t(t_.previous(c, f))] == b || t_.connects()[size_t(t_.next(c, f))] == b)
                return true;
        }
        return false;
    }

    bool facesCanSpare(int v) const
    {
        int last = -1, uses = 0;
        for (int c : t_.vertexCorners()[v]) {   // ascending: those of one face follow each other
            const int f = t_.cornerFaces()[size_t(c)];
            uses = f == last ? uses + 1 : 1;
            last = f;
            if (sizes_[size_t(f)] - uses < 3)
                return false;
        }
        return true;
    }

    void relink(int vertex, int from, int to)
    {
        Link& l = links_[size_t(vertex)];
        (l.a == from ? l.a : l.b == from ? l.b : from) = to;
    }

    std::vector<Link>            links_;
    std::vector<int>             sizes_;
    std::unordered_set<uint64_t> made_;   // edges that were not there before
};

/// Locked normals of faces that turned over, in the new mesh: corner k of a face is the old corner size - k.
void turnLockedNormals(const MeshBody& old, const ElementSet& faces, MeshBody& to)
{
    const LockedNormals* l = old.locked();
    if (!l)
        return;
    const Topology&  t = old.topology();
    const auto       turned = [](const F3& n) { return F3{{-n.v[0], -n.v[1], -n.v[2]}}; };
    std::vector<F3>  normals;
    std::vector<int> places;
    for (int v = 0; v < t.vertexCount() && !l->vertexLocked.empty(); ++v) {
        bool all = l->vertexLocked[size_t(v)] != 0;
        for (int c : t.vertexCorners()[v])
            all = all && faces.has(t.cornerFaces()[size_t(c)]);
        if (all)
            normals.push_back(turned(l->vertex[size_t(v)])), places.push_back(v);
    }
    const Ref<LockedNormals> corners = make<LockedNormals>(*to.locked());   // locking vertices takes locks off corners
    to.lockVertexNormals(normals.data(), places.data(), places.size());
    normals.clear(), places.clear();
    for (int c = 0; c < t.cornerCount() && !corners->cornerLocked.empty(); ++c)
        if (corners->cornerLocked[size_t(c)]) {
            places.push_back(c);
            normals.push_back(faces.has(t.cornerFaces()[size_t(c)]) ? turned(corners->corner[size_t(c)]) : corners->corner[size_t(c)]);
        }
    to.lockCornerNormals(normals.data(), places.data(), places.size());
}

}  // namespace

Ref<MeshBody> deleteVertices(const MeshBody& mesh, const ElementSet& vertices)
{
    const Topology& t = mesh.topology();
    LinkRemoval     links(t);
    bool            any = false;
    for (int v = 0; v < t.vertexCount(); ++v)
        any |= vertices.has(v) && links.remove(v);
    if (!any)
        return {};
    FacePlan plan(mesh);
    for (int f = 0; f < t.faceCount(); ++f) {
        for (int c = t.first(f); c < t.first(f + 1); ++c)
            if (const int v = t.connects()[size_t(c)]; !links.gone[size_t(v)])
                plan.corner(v, c, c);
        plan.endFace(f);
    }
    return plan.finish(mesh.points());
}

Ref<MeshBody> deleteFaces(const MeshBody& mesh, const ElementSet& faces)
{
    if (faces.empty())
        return {};
    FacePlan plan(mesh);
    for (int f = 0; f < mesh.faceCount(); ++f)
        if (!faces.has(f))
            plan.face(f);
    return plan.finish(mesh.points());
}

Ref<MeshBody> extractFaces(const MeshBody& mesh, std::span<const int> faces)
{
    FacePlan plan(mesh);
    for (int f : faces)
        plan.face(f);
    const Buffer<uint8_t> gone(size_t(mesh.vertexCount()), uint8_t(1));
    return plan.finish(mesh.points(), gone.data());
}

Ref<MeshBody> reverseFaces(const MeshBody& mesh, const ElementSet& faces)
{
    if (faces.empty())
        return {};
    const Topology& t = mesh.topology();
    FacePlan        plan(mesh);
    for (int f = 0; f < t.faceCount(); ++f) {
        if (!faces.has(f)) {
            plan.face(f);
            continue;
        }
        const int first = t.first(f);
        for (int k = 0, n = t.faceSize(f); k < n; ++k) {
            const int c = first + (n - k) % n;
            plan.corner(t.connects()[size_t(c)], c, t.previous(c, f));
        }
        plan.endFace(f);
    }
    Ref<MeshBody> to = plan.finish(mesh.points());
    if (to)
        turnLockedNormals(mesh, faces, *to);
    return to;
}

Ref<MeshBody> conformFaces(const MeshBody& mesh, const ElementSet& faces)
{
    const Topology&  t = mesh.topology();
    ElementSet       turned(t.faceCount());
    std::vector<int> side(size_t(t.faceCount()), -1);   // 0 as the piece's first face, 1 against it
    std::vector<int> piece;
    for (int start = 0; start < t.faceCount(); ++start) {
        if (side[size_t(start)] >= 0 || !faces.has(start))
            continue;
        piece.assign(1, start);
        side[size_t(start)] = 0;
        size_t against = 0;
        for (size_t i = 0; i < piece.size(); ++i) {
            const int f = piece[i];
            for (int c = t.first(f); c < t.first(f + 1); ++c) {
                const auto corners = t.edgeCorners()[t.edges().ofCorner[size_t(c)]];
                if (corners.size() != 2)
                    continue;
                const int other = corners[corners[0] == c], g = t.cornerFaces()[size_t(other)];
                if (!faces.has(g) || side[size_t(g)] >= 0)
                    continue;
                const bool same = t.connects()[size_t(other)] == t.connects()[size_t(c)];   // both start there: opposed faces
                side[size_t(g)] = side[size_t(f)] ^ int(same);
                against += size_t(side[size_t(g)]);
                piece.push_back(g);
            }
        }
        const int few = 2 * against > piece.size() ? 0 : 1;
        for (int f : piece)
            if (side[size_t(f)] == few)
                turned.insert(f);
    }
    return reverseFaces(mesh, turned);
}

Ref<MeshBody> triangulateFaces(const MeshBody& mesh, const ElementSet& faces)
{
    const Topology& t = mesh.topology();
    bool            any = false;
    for (int f = 0; f < t.faceCount() && !any; ++f)
        any = t.faceSize(f) > 3 && faces.has(f);
    if (!any)
        return {};
    FacePlan           plan(mesh);
    const Buffer<int>& triangles = mesh.triangles();
    for (int f = 0; f < t.faceCount(); ++f) {
        if (t.faceSize(f) == 3 || !faces.has(f)) {
            plan.face(f);
            continue;
        }
        for (int i = firstTriangle(t, f); i < firstTriangle(t, f + 1); ++i) {
            for (int k = 0; k < 3; ++k) {
                const int c = triangles[size_t(3 * i + k)], next = triangles[size_t(3 * i + (k + 1) % 3)];
                plan.corner(t.connects()[size_t(c)], c, t.next(c, f) == next ? c : MeshPlan::none);
            }
            plan.endFace(f);
        }
    }
    return plan.finish(mesh.points());
}

}  // namespace mirk

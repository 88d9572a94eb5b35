#include "mesh/elements.h"

#include <algorithm>

namespace mirk {

namespace {

/// Calls `visit` with each component; with a null list, and for a complete component of `kind`, the set is all.
template <class Visit>
ElementSet collect(int count, const ComponentListData* list, MFn::Type kind, Visit&& visit)
{
    ElementSet out(count, !list);
    for (size_t i = 0; list && i < list->list.size() && !out.all(); ++i) {
        const Component& c = *list->list[i];
        if (c.apiType() == kind && c.complete && c.indices.empty())
            out.setAll();
        else
            visit(c, out);
    }
    return out;
}

/// The faces and vertices of a vertex-face component that the mesh has.
template <class Visit>
void eachCorner(const Topology& t, const Component& c, Visit&& visit)
{
    for (size_t k = 0; k + 1 < c.indices.size(); k += 2)
        if (const int face = c.indices[k + 1]; face >= 0 && face < t.faceCount())
            if (const int corner = t.cornerAt(face, c.indices[k]); corner >= 0)
                visit(face, corner);
}

}  // namespace

std::vector<int> elementsOf(const Component& c, int count)
{
    std::vector<int> out;
    if (c.complete && c.indices.empty())
        for (int i = 0; i < count; ++i)
            out.push_back(i);
    else
        for (int i : c.indices)
            if (i >= 0 && i < count)
                out.push_back(i);
    return out;
}

bool ElementSet::empty() const
{
    return all_ ? count_ == 0 : std::find(in_.begin(), in_.end(), 1) == in_.end();
}

std::vector<int> ElementSet::sorted() const
{
    std::vector<int> out;
    for (int i = 0; i < count_; ++i)
        if (has(i))
            out.push_back(i);
    return out;
}

ElementSet verticesNamed(const MeshBody& mesh, const ComponentListData* list)
{
    const Topology& t = mesh.topology();
    return collect(t.vertexCount(), list, MFn::kMeshVertComponent, [&](const Component& c, ElementSet& out) {
        switch (c.apiType()) {
        case MFn::kMeshVertComponent:
            out.insertAll(elementsOf(c, t.vertexCount()));
            break;
        case MFn::kMeshEdgeComponent:
            for (int e : elementsOf(c, t.edgeCount()))
                out.insert(t.edges().edges[size_t(e)].a), out.insert(t.edges().edges[size_t(e)].b);
            break;
        case MFn::kMeshPolygonComponent:
            for (int f : elementsOf(c, t.faceCount()))
                out.insertAll(t.face(f));
            break;
        case MFn::kMeshVtxFaceComponent:
            eachCorner(t, c, [&](int, int corner) { out.insert(t.connects()[size_t(corner)]); });
            break;
        default: break;
        }
    });
}

ElementSet edgesNamed(const MeshBody& mesh, const ComponentListData* list)
{
    const Topology& t = mesh.topology();
    return collect(t.edgeCount(), list, MFn::kMeshEdgeComponent, [&](const Component& c, ElementSet& out) {
        if (c.apiType() == MFn::kMeshEdgeComponent)
            out.insertAll(elementsOf(c, t.edgeCount()));
        else if (c.apiType() == MFn::kMeshPolygonComponent)
            for (int f : elementsOf(c, t.faceCount()))
                for (int corner = t.first(f); corner < t.first(f + 1); ++corner)
                    out.insert(t.edges().ofCorner[size_t(corner)]);
    });
}

ElementSet facesNamed(const MeshBody& mesh, const ComponentListData* list)
{
    const Topology& t = mesh.topology();
    return collect(t.faceCount(), list, MFn::kMeshPolygonComponent, [&](const Component& c, ElementSet& out) {
        if (c.apiType() == MFn::kMeshPolygonComponent)
            out.insertAll(elementsOf(c, t.faceCount()));
        else if (c.apiType() == MFn::kMeshVtxFaceComponent)
            eachCorner(t, c, [&](int face, int) { out.insert(face); });
    });
}

ElementSet cornersNamed(const MeshBody& mesh, const ComponentListData* list)
{
    const Topology& t = mesh.topology();
    const auto at = [&](int v, ElementSet& out) { out.insertAll(t.vertexCorners()[v]); };
    return collect(t.cornerCount(), list, MFn::kInvalid, [&](const Component& c, ElementSet& out) {
        switch (c.apiType()) {
        case MFn::kMeshVertComponent:
            for (int v : elementsOf(c, t.vertexCount()))
                at(v, out);
            break;
        case MFn::kMeshEdgeComponent:
            for (int e : elementsOf(c, t.edgeCount()))
                at(t.edges().edges[size_t(e)].a, out), at(t.edges().edges[size_t(e)].b, out);
            break;
        case MFn::kMeshPolygonComponent:
            for (int f : elementsOf(c, t.faceCount()))
                for (int corner = t.first(f); corner < t.first(f + 1); ++corner)
                    out.insert(corner);
            break;
        case MFn::kMeshVtxFaceComponent:
            eachCorner(t, c, [&](int, int corner) { out.insert(corner); });
            break;
        default: break;
        }
    });
}

}  // namespace mirk

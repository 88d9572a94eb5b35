#include "volumes/componentMarks.h"

#include <algorithm>

namespace {

bool marked(const Marks& marks, int i)
{
    return i >= 0 && static_cast<std::size_t>(i) < marks.size() && marks[static_cast<std::size_t>(i)];
}

void mark(Marks& marks, int i)
{
    if (i >= 0 && static_cast<std::size_t>(i) < marks.size())
        marks[static_cast<std::size_t>(i)] = 1;
}

Marks noMarks(int count) { return Marks(static_cast<std::size_t>(std::max(count, 0)), 0); }

/// Calls f(face, first corner, end of corners); faces of a table that is not filled have no corners.
template <class F>
void eachFace(const MeshTables& mesh, const std::vector<int>& corners, F&& f)
{
    for (int face = 0; face < mesh.faceCount(); ++face) {
        const auto i = static_cast<std::size_t>(face);
        const auto end = std::min(static_cast<std::size_t>(mesh.faceFirst[i + 1]), corners.size());
        f(i, std::min(static_cast<std::size_t>(mesh.faceFirst[i]), end), end);
    }
}

/// CVs of a curve: its ribbon has two vertices a CV.
Marks cvsOfRibbon(int count, const Marks& vertices)
{
    Marks cvs = noMarks(count);
    for (std::size_t v = 0; v < vertices.size(); ++v)
        if (vertices[v])
            mark(cvs, static_cast<int>(v / 2));
    return cvs;
}

Marks fitted(Marks marks, int count)
{
    marks.resize(static_cast<std::size_t>(std::max(count, 0)), 0);
    return marks;
}

} // namespace

PositionLists positionsIn(const std::vector<int>& of, int count)
{
    PositionLists lists;
    lists.first.assign(static_cast<std::size_t>(count) + 1, 0);
    const auto within = [count](int i) { return i >= 0 && i < count; };
    for (int i : of)
        if (within(i))
            ++lists.first[static_cast<std::size_t>(i) + 1];
    for (std::size_t i = 1; i < lists.first.size(); ++i)
        lists.first[i] += lists.first[i - 1];
    lists.items.resize(static_cast<std::size_t>(lists.first.back()));
    std::vector<int> next(lists.first.begin(), lists.first.end() - 1);
    for (std::size_t p = 0; p < of.size(); ++p)
        if (within(of[p]))
            lists.items[static_cast<std::size_t>(next[static_cast<std::size_t>(of[p])]++)] = static_cast<int>(p);
    return lists;
}

Marks facesWithAny(const MeshTables& mesh, const std::vector<int>& corners, const Marks& items)
{
    Marks faces = noMarks(mesh.faceCount());
    eachFace(mesh, corners, [&](std::size_t face, std::size_t c, std::size_t end) {
        for (; c < end; ++c)
            faces[face] |= static_cast<unsigned char>(marked(items, corners[c]));
    });
    return faces;
}

Marks facesWithAll(const MeshTables& mesh, const std::vector<int>& corners, const Marks& items)
{
    Marks faces = noMarks(mesh.faceCount());
    eachFace(mesh, corners, [&](std::size_t face, std::size_t c, std::size_t end) {
        bool all = c < end;
        for (; c < end; ++c)
            all = all && marked(items, corners[c]);
        faces[face] = all;
    });
    return faces;
}

Marks edgesWithAny(const MeshTables& mesh, const Marks& vertices)
{
    Marks edges = noMarks(mesh.edgeCount);
    for (std::size_t e = 0; e < edges.size(); ++e)
        edges[e] = marked(vertices, mesh.edgeVertices[2 * e]) || marked(vertices, mesh.edgeVertices[2 * e + 1]);
    return edges;
}

Marks edgesWithBoth(const MeshTables& mesh, const Marks& vertices)
{
    Marks edges = noMarks(mesh.edgeCount);
    for (std::size_t e = 0; e < edges.size(); ++e)
        edges[e] = marked(vertices, mesh.edgeVertices[2 * e]) && marked(vertices, mesh.edgeVertices[2 * e + 1]);
    return edges;
}

Marks verticesOfEdges(const MeshTables& mesh, const Marks& edges)
{
    Marks vertices = noMarks(mesh.vertexCount);
    for (std::size_t p = 0; p < mesh.edgeVertices.size(); ++p)
        if (marked(edges, static_cast<int>(p / 2)))
            mark(vertices, mesh.edgeVertices[p]);
    return vertices;
}

Marks itemsOfFaces(const MeshTables& mesh, const std::vector<int>& corners, int count, const Marks& faces)
{
    Marks items = noMarks(count);
    eachFace(mesh, corners, [&](std::size_t face, std::size_t c, std::size_t end) {
        for (; c < end && marked(faces, static_cast<int>(face)); ++c)
            mark(items, corners[c]);
    });
    return items;
}

Marks uvsOfVertices(const MeshTables& mesh, const Marks& vertices)
{
    Marks uvs = noMarks(mesh.uvCount);
    for (std::size_t c = 0; c < mesh.cornerUVs.size(); ++c)
        if (marked(vertices, mesh.cornerVertices[c]))
            mark(uvs, mesh.cornerUVs[c]);
    return uvs;
}

Marks verticesOfUVs(const MeshTables& mesh, const Marks& uvs)
{
    Marks vertices = noMarks(mesh.vertexCount);
    for (std::size_t c = 0; c < mesh.cornerUVs.size(); ++c)
        if (marked(uvs, mesh.cornerUVs[c]))
            mark(vertices, mesh.cornerVertices[c]);
    return vertices;
}

Marks fromVertices(const MeshTables& mesh, ComponentKind kind, int count, const Marks& vertices)
{
    switch (kind) {
    case ComponentKind::kEdge:    return fitted(edgesWithAny(mesh, vertices), count);
    case ComponentKind::kFace:    return fitted(facesWithAny(mesh, mesh.cornerVertices, vertices), count);
    case ComponentKind::kMap:     return fitted(uvsOfVertices(mesh, vertices), count);
    case ComponentKind::kCurveCV: return cvsOfRibbon(count, vertices);
    default:                      return fitted(vertices, count);
    }
}

Marks fromEdges(const MeshTables& mesh, ComponentKind kind, int count, const Marks& edges)
{
    switch (kind) {
    case ComponentKind::kEdge: return fitted(edges, count);
    case ComponentKind::kFace: return fitted(facesWithAny(mesh, mesh.cornerEdges, edges), count);
    default:                   return fromVertices(mesh, kind, count, verticesOfEdges(mesh, edges));
    }
}

Marks fromFaces(const MeshTables& mesh, ComponentKind kind, int count, const Marks& faces)
{
    switch (kind) {
    case ComponentKind::kEdge:
        return fitted(itemsOfFaces(mesh, mesh.cornerEdges, mesh.edgeCount, faces), count);
    case ComponentKind::kFace:
        return fitted(faces, count);
    default:
        return fromVertices(mesh, kind, count, itemsOfFaces(mesh, mesh.cornerVertices, mesh.vertexCount, faces));
    }
}

void addMarks(Marks& to, const Marks& from)
{
    const std::size_t n = std::min(to.size(), from.size());
    for (std::size_t i = 0; i < n; ++i)
        to[i] |= from[i];
}

std::vector<int> indicesOf(const Marks& marks)
{
    std::vector<int> indices;
    indices.reserve(static_cast<std::size_t>(std::count(marks.begin(), marks.end(), 1)));
    for (std::size_t i = 0; i < marks.size(); ++i)
        if (marks[i])
            indices.push_back(static_cast<int>(i));
    return indices;
}

// Which components of a mesh belong to which, in bulk: a selection is one mark a component, and the tables of a mesh
// carry marks from one kind of component to another without a query a component. No host header.
#pragma once
#include <cstddef>
#include <vector>

/// One entry a component: 0, or 1 for a selected one.
using Marks = std::vector<unsigned char>;

/// What an index counts. The values are those of the attribute `componentType`.
enum class ComponentKind : short { kVertex = 0, kEdge = 1, kFace = 2, kMap = 3, kCurveCV = 4, kSurfaceCV = 5 };

/// Flat tables of a mesh. A corner is a vertex of a face; corners are numbered along the faces, and corner k of a face
/// also names its k-th edge. Edges and UVs are empty until somebody needs them.
struct MeshTables
{
    int              vertexCount = 0, edgeCount = 0, uvCount = 0;
    std::vector<int> faceFirst{0};      ///< first corner of each face, and the number of corners
    std::vector<int> cornerVertices;
    std::vector<int> cornerEdges;
    std::vector<int> cornerUVs;         ///< -1 for a corner without UV
    std::vector<int> edgeVertices;      ///< two an edge

    int faceCount() const { return static_cast<int>(faceFirst.size()) - 1; }
};

/// Lists of positions, one list an item: those of `item` are items[first[item]] to items[first[item + 1]], ascending.
struct PositionLists
{
    std::vector<int> first, items;
};
/// Where each of `count` items stands in `of`; values outside are passed over.
PositionLists positionsIn(const std::vector<int>& of, int count);

// Marks of one kind from marks of another. `corners` is the corner table that the given marks belong to.
Marks facesWithAny(const MeshTables& mesh, const std::vector<int>& corners, const Marks& items);
Marks facesWithAll(const MeshTables& mesh, const std::vector<int>& corners, const Marks& items);
Marks edgesWithAny(const MeshTables& mesh, const Marks& vertices);
Marks edgesWithBoth(const MeshTables& mesh, const Marks& vertices);
Marks verticesOfEdges(const MeshTables& mesh, const Marks& edges);
/// The `count` items that stand at the corners of marked faces.
Marks itemsOfFaces(const MeshTables& mesh, const std::vector<int>& corners, int count, const Marks& faces);
Marks uvsOfVertices(const MeshTables& mesh, const Marks& vertices);
Marks verticesOfUVs(const MeshTables& mesh, const Marks& uvs);

/// `count` components of the kind that have something to do with the marked vertices, edges or faces. The two vertices
/// of a curve's ribbon at a CV stand for it; the vertices of a surface's mesh are its CVs.
Marks fromVertices(const MeshTables& mesh, ComponentKind kind, int count, const Marks& vertices);
Marks fromEdges(const MeshTables& mesh, ComponentKind kind, int count, const Marks& edges);
Marks fromFaces(const MeshTables& mesh, ComponentKind kind, int count, const Marks& faces);

/// Marks of the first operand grow by those of the second, of the same length.
void addMarks(Marks& to, const Marks& from);
/// Indices of the marks, ascending.
std::vector<int> indicesOf(const Marks& marks);

// Which vertices make which faces, and the tables that follow from it. Immutable once made, shared by all holders.
//
// A corner is a face vertex: corners are numbered along the faces, so corner `first(f) + k` is the k-th vertex of face f
// and also stands for the face's k-th edge, which runs from there to the next vertex.
#pragma once
#include <span>
#include <string>

#include "data/buffer.h"
#include "mesh/lazy.h"

namespace mirk {

/// Lists of numbers, one list an item.
struct Lists : Counted<Lists>
{
    Buffer<int> first;   ///< n + 1 offsets into items
    Buffer<int> items;
    std::span<const int> operator[](int i) const
    {
        return {items.data() + first[i], static_cast<size_t>(first[i + 1] - first[i])};
    }
    int count() const { return first.empty() ? 0 : static_cast<int>(first.size()) - 1; }
};

/// Edges, numbered in the order of their first appearance along the faces.
struct EdgeTable : Counted<EdgeTable>
{
    struct Edge { int a, b; };   ///< vertices, in the direction of the first face
    Buffer<Edge> edges;
    Buffer<int>  ofCorner;
    int count() const { return static_cast<int>(edges.size()); }
};

/// Pieces of faces that hang together by shared vertices, numbered by their first faces.
struct FaceShells : Counted<FaceShells>
{
    Buffer<int> ofFace;
    Ref<Lists>  faces;   ///< of each shell, ascending
    int count() const { return faces->count(); }
};

class Topology : public Counted<Topology>
{
public:
    /// No vertices and no faces.
    Topology();
    /// Null, and the reason in `why`, for a face of less than three vertices, an index outside [0, vertexCount) or counts
    /// that do not add up to the number of connects.
    static Ref<Topology> create(int vertexCount, const int* counts, size_t faceCount, const int* connects,
                                size_t cornerCount, std::string* why = nullptr);
    /// The first faces of another, which has no more vertices, and then those given.
    static Ref<Topology> extended(const Topology& base, int baseFaces, int vertexCount, const int* counts, size_t faceCount,
                                  const int* connects, size_t cornerCount, std::string* why = nullptr);

    int vertexCount() const { return vertexCount_; }
    int faceCount() const { return static_cast<int>(offsets_.size()) - 1; }
    int cornerCount() const { return static_cast<int>(connects_.size()); }
    /// First corner of a face; of the face count, the number of corners.
    int first(int face) const { return offsets_[face]; }
    int faceSize(int face) const { return offsets_[face + 1] - offsets_[face]; }
    std::span<const int> face(int f) const { return {connects_.data() + first(f), static_cast<size_t>(faceSize(f))}; }
    const Buffer<int>& connects() const { return connects_; }
    const Buffer<int>& offsets() const { return offsets_; }   ///< faceCount + 1
    int next(int corner, int face) const { return corner + 1 == first(face + 1) ? first(face) : corner + 1; }
    int previous(int corner, int face) const { return corner == first(face) ? first(face + 1) - 1 : corner - 1; }
    /// The corner of a face at a vertex; -1 if the face does not have it.
    int cornerAt(int face, int vertex) const;

    // derived tables, built when first asked for
    const EdgeTable&   edges() const;
    const Buffer<int>& cornerFaces() const;    ///< the face of each corner
    const Lists&       vertexCorners() const;  ///< ascending
    const Lists&       vertexEdges() const;    ///< ascending
    const Lists&       edgeCorners() const;    ///< ascending; one a face that has the edge
    const FaceShells&  shells() const;
    int edgeCount() const { return edges().count(); }
    /// The edge between two vertices; -1 if there is none.
    int  edgeBetween(int a, int b) const;
    bool onBoundary(int edge) const { return edgeCorners()[edge].size() < 2; }
    /// Ascending corners whose edge no other face has.
    const Buffer<int>& border() const;
    /// Tells the border of a topology that was just made, so that nobody needs to number edges for it. A maker may list
    /// one corner for each time an edge is passed more often in one direction than in the other.
    void publishBorder(Ref<Buffer<int>> border) const { border_.get([&] { return std::move(border); }); }

private:
    int         vertexCount_ = 0;
    Buffer<int> offsets_, connects_;

    Lazy<EdgeTable>   edges_;
    Lazy<Buffer<int>> cornerFaces_, border_;
    Lazy<Lists>       vertexCorners_, vertexEdges_, edgeCorners_;
    Lazy<FaceShells>  shells_;
};

/// Triangles of the faces: face f has those from `first(f) - 2 f` on, faceSize - 2 of them, three corners each.
/// Convex faces are fans around their first vertex; others are cut at ears in the plane of the face.
Ref<Buffer<int>> triangulate(const Topology& topology, const float* points);
/// True if no corner of the face turns inward. Points of the face exist.
bool convexFace(const Topology& topology, const float* points, int face);
inline int firstTriangle(const Topology& t, int face) { return t.first(face) - 2 * face; }

}  // namespace mirk

// Elements of a mesh that components name.
#pragma once
#include <vector>

#include "mesh/mesh.h"

namespace mirk {

/// Indices of one component that lie below `count`, as they stand there; a complete component gives all.
std::vector<int> elementsOf(const Component& component, int count);

/// Vertices, edges or faces of a mesh: all, or those that were put in.
class ElementSet
{
public:
    explicit ElementSet(int count, bool all = false) : count_(count), all_(all), in_(all ? 0 : size_t(count), 0) {}
    void insert(int i) { if (!all_) in_[size_t(i)] = 1; }
    template <class Range> void insertAll(const Range& range)
    {
        for (int i : range)
            insert(i);
    }
    void setAll() { all_ = true; }
    bool has(int i) const { return all_ || in_[size_t(i)]; }
    /// True if they were put in as a whole; single ones may be all as well.
    bool all() const { return all_; }
    bool empty() const;
    std::vector<int> sorted() const;

private:
    int               count_;
    bool              all_;
    std::vector<char> in_;
};

// What a component list names of a mesh; a null list names all. Elements that the mesh does not have are passed over.
/// Vertices; those of edges, faces and vertex faces too.
ElementSet verticesNamed(const MeshBody& mesh, const ComponentListData* list);
/// Edges, and those around the faces named.
ElementSet edgesNamed(const MeshBody& mesh, const ComponentListData* list);
/// Faces, and those of vertex faces.
ElementSet facesNamed(const MeshBody& mesh, const ComponentListData* list);
/// Corners: those at vertices and at the ends of edges, of faces, and vertex faces.
ElementSet cornersNamed(const MeshBody& mesh, const ComponentListData* list);

}  // namespace mirk

// A mesh made from another: faces cut, joined, taken away or added. What hangs on the old mesh is carried over to the new
// one: UV and colour sets, hard edges, locked normals, object groups, matrix. What it does not have costs nothing.
#pragma once
#include <string>

#include "mesh/mesh.h"

namespace mirk {

/// Points and faces of a new mesh, and where each of its elements comes from in the old one.
///
/// A source is the number of an old element, `none`, or blend(i) for the i-th blend. Vertices, corners and faces below
/// the kept numbers are those of the old mesh, in place: their entries are left out of the lists here, points apart, so
/// that list entry 0 belongs to element `kept`. Faces are kept with all their corners; then no vertex goes.
struct MeshPlan
{
    struct Blend { int a, b; float t; };   ///< of two old elements: a at t = 0, b at 1
    static constexpr int none = -1;
    static constexpr int blend(int i) { return -2 - i; }
    static constexpr int blendAt(int source) { return -2 - source; }

    Ref<Buffer<float>> points = make<Buffer<float>>();   ///< x, y, z of each vertex
    Buffer<int>        counts, connects;

    int keptVertices = 0, keptCorners = 0, keptFaces = 0;
    Buffer<int>   vertexSource, cornerSource;
    Buffer<Blend> vertexBlends, cornerBlends;   ///< corner blends of one vertex that mean the same run the same way
    Buffer<int>   faceSource;                   ///< never a blend
    Buffer<int>   edgeSource;   ///< of a corner's edge: an old corner whose edge it lies on, or none
    Buffer<int>   hard;         ///< new corners whose edges are hard, whatever they were; both sides of an edge
    Ref<Buffer<int>> border;    ///< of the new mesh, see Topology::publishBorder; null if it is not known
};

/// The new mesh. UVs and colours with ids are shared where the sources share them, at blends as well, and those that no
/// corner uses any more go. A blend of which one end has no UV has none; one end without colour takes the other's; it is
/// locked if both normals are. Corners without a source are free, at locked vertices too. A component of a group keeps what comes from its members (of vertices that are blends
/// both); groups of vertex faces lose what is not kept. Null, with the reason in `why`, if the faces are malformed or
/// the lists have not one entry an element; sources have to exist.
Ref<MeshBody> rebuild(const MeshBody& old, MeshPlan&& plan, std::string* why = nullptr);

}  // namespace mirk

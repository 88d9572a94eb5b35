// Operations on faces and vertices of one mesh. Each returns the new mesh, or null where nothing changes.
#pragma once
#include "mesh/elements.h"

namespace mirk {

/// Takes out those of the named vertices that have just two edges, which become one. One that a triangle needs, or whose
/// neighbours have an edge already, stays. In ascending order: of a loose quad one vertex goes.
Ref<MeshBody> deleteVertices(const MeshBody& mesh, const ElementSet& vertices);
/// Takes out faces with the vertices that no other face has.
Ref<MeshBody> deleteFaces(const MeshBody& mesh, const ElementSet& faces);
/// The faces named alone, with the vertices they have.
Ref<MeshBody> extractFaces(const MeshBody& mesh, std::span<const int> faces);
/// Turns the named faces over; their first vertices stay first. Locked normals of their corners turn too, those of
/// vertices if all faces of the vertex turn.
Ref<MeshBody> reverseFaces(const MeshBody& mesh, const ElementSet& faces);
/// Turns over those of the named faces that stand against most of their piece, a piece being faces that hang together by
/// edges with two faces of the set.
Ref<MeshBody> conformFaces(const MeshBody& mesh, const ElementSet& faces);
/// Faces of more than three vertices become triangles (see triangulate()) in their place; the new edges are smooth.
Ref<MeshBody> triangulateFaces(const MeshBody& mesh, const ElementSet& faces);

}  // namespace mirk

// Holes of a mesh closed with faces.
#pragma once
#include "mesh/elements.h"

namespace mirk {

/// The mesh with one face over each loop of border edges, which runs against the faces along the border; null if there
/// is no loop. `edges` null means all loops, else those that have one of the edges.
///
/// Loops are simple: where a border passes a vertex more than once it is split there. Border edges that make no loop
/// stay open; where faces do not agree on a direction the loop goes against most of them, and stays open if there is no
/// majority. The new edges, which the faces
/// had as border, become hard; corners of the new faces have no UVs and, in sets that colour corners, no colour. A new
/// face is in the groups of the face along the loop's first edge.
Ref<MeshBody> closeBorder(const MeshBody& mesh, const ElementSet* edges = nullptr);

}  // namespace mirk

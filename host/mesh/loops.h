// Runs of edges over a mesh, as selections follow them.
#pragma once
#include <vector>

#include "mesh/topology.h"

namespace mirk {

// The edge exists. Edges come in the order of the walk: of a closed run from the edge on, of an open one from end to end.
/// Goes straight on at vertices of four edges inside, and along the border at a border.
std::vector<int> edgeLoop(const Topology& topology, int edge);
/// Goes across quads to the opposite edge.
std::vector<int> edgeRing(const Topology& topology, int edge);
/// The border that an edge is on, over vertices where two border edges meet; empty for an edge that is on none.
std::vector<int> edgeBorder(const Topology& topology, int edge);

}  // namespace mirk

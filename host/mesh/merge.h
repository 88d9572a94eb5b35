// Vertices that lie together become one.
#pragma once
#include "mesh/elements.h"
#include "mesh/space.h"

namespace mirk {

/// Clusters of points: two points belong together if they are no further apart than `distance`, directly or over others.
/// Time is about linear in the number of points.
///
/// @param points    three numbers a point; a point that is not finite stays alone
/// @param count     number of points
/// @param distance  with a relative slack of 1e-6, for what is stored in single precision; up to 1e-30 (and below zero)
///                  only equal points belong together; NaN: none
/// @return          for each point the lowest index of its cluster; empty if every point stays alone
Buffer<int> clusters(const double* points, int count, double distance);

/// Merges the named vertices by clusters, measured through `space`. A merged vertex is the lowest of its cluster, at the
/// mean of their points. Edges that shrink to a point go, faces left with less than three vertices go, and a face that
/// now visits a vertex twice is split there. `alwaysTwo`: if just two vertices are named they merge at any distance.
/// Null if nothing merges.
Ref<MeshBody> mergeVertices(const MeshBody& mesh, const ElementSet& vertices, double distance, bool alwaysTwo, const SpaceMatrix& space);

}  // namespace mirk

// Meshes cut along a plane.
#pragma once
#include "mesh/elements.h"
#include "mesh/vector3.h"

namespace mirk {

struct PlaneCut
{
    Vec3 center, normal;   ///< in the space of the points; the normal of any length
    enum Behind { keep, drop, moveApart };
    Behind behind = keep;  ///< what happens to the side away from the normal
    Vec3   offset;         ///< moveApart: where it goes; it shares no vertices with the rest then
};

/// The mesh with faces cut where the plane crosses them; null if nothing changes. `faces` null means all, others stay
/// as they are.
///
/// Points nearer to the plane than 2^-21 of the largest coordinate lie on it; edges that have one point on each side
/// get one new vertex, whichever faces share them. So what was closed has, whatever rounding does, a border of closed
/// loops in the plane, and the two sides of a cut add up to the whole. A face that lies in the plane belongs to the
/// side that it bounds from outside: its normal points away from it. Concave faces give several pieces. Where `drop`
/// changes a face, all vertices go that no face uses then. Faces with a point that is not finite stay whole; a plane
/// that is not finite changes nothing.
/// `drop` on all faces tells the new topology its border (see Topology::publishBorder).
Ref<MeshBody> cutByPlane(const MeshBody& mesh, const PlaneCut& cut, const ElementSet* faces = nullptr);

}  // namespace mirk

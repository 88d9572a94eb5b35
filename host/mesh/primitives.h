// The basic polygon shapes, with UVs, in the host's vertex and face order. Y is up, the centre is the origin.
#pragma once
#include "mesh/mesh.h"

namespace mirk::primitives {

// Sizes in scene units. Subdivisions below the least that makes sense are raised to it. Null if the mesh would have
// more than 2^28 face vertices.

/// Edges between the six sides are hard. Vertices run row by row along x: up the front (+z), back over the top, down the
/// back, forward below; then the inner ones of the right (+x) and left side.
Ref<MeshBody> cube(double width, double height, double depth, int sx, int sy, int sz);
/// In the xz plane, facing +y; rows along x from -x, the first row at +z.
Ref<MeshBody> plane(double width, double height, int sx, int sy);
/// Rings from the south pole up, the poles last. `sx` around the axis (at least 3), `sy` from pole to pole (at least 2).
Ref<MeshBody> sphere(double radius, int sx, int sy);
/// Rings from the bottom up, the cap centres last. `sz` rings on each cap; 0 makes a cap one face without a centre.
/// Edges between side and caps are hard.
Ref<MeshBody> cylinder(double radius, double height, int sx, int sy, int sz);
/// As the cylinder, with the tip last.
Ref<MeshBody> cone(double radius, double height, int sx, int sy, int sz);
/// `radius` to the middle of the tube; `sx` around the axis, `sy` around the tube, both at least 3. Rings run from the
/// inside below to the outside and back above.
Ref<MeshBody> torus(double radius, double sectionRadius, int sx, int sy);

}  // namespace mirk::primitives

// The host's polygon primitives as mesh bodies, without a node around them.
#pragma once
#include "nodes/poly_shapes.h"

namespace mirk::primitives {

inline Ref<MeshBody> bodyOf(const poly::Shape& shape)
{
    std::string why;
    const Ref<MeshData> mesh = poly::toMesh(shape, true, why);
    return mesh ? mesh->body : Ref<MeshBody>();
}

inline Ref<MeshBody> cube(double width, double height, double depth, int sx, int sy, int sz)
{
    return bodyOf(poly::cube(width, height, depth, sx, sy, sz));
}
inline Ref<MeshBody> plane(double width, double height, int sx, int sy) { return bodyOf(poly::plane(width, height, sx, sy)); }
inline Ref<MeshBody> sphere(double radius, int sx, int sy) { return bodyOf(poly::sphere(radius, sx, sy)); }
inline Ref<MeshBody> cylinder(double radius, double height, int sx, int sy, int sz)
{
    return bodyOf(poly::cylinder(radius, height, sx, sy, sz));
}
inline Ref<MeshBody> cone(double radius, double height, int sx, int sy, int sz) { return bodyOf(poly::cone(radius, height, sx, sy, sz)); }
inline Ref<MeshBody> torus(double radius, double sectionRadius, int sx, int sy) { return bodyOf(poly::torus(radius, sectionRadius, 0, sx, sy)); }

}  // namespace mirk::primitives

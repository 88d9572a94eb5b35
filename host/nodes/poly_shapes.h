// The polygon primitives as plain arrays, centred at the origin, standing on Y. Orders of vertices and faces are those
// that scripts expect of the host: rings from below, counter-clockwise seen from above, poles last.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "data/data.h"
#include "mesh/mesh.h"

namespace mirk::poly {

struct Shape
{
    std::vector<double> points;                     ///< x, y, z of each vertex
    std::vector<int>    counts, connects, uvIds;    ///< uvIds: one a corner
    std::vector<float>  u, v;
    std::vector<uint8_t> sides;                     ///< one a face, below 8; edges between two of them are hard. Empty: none are
    size_t vertexCount() const { return points.size() / 3; }
};

/// Lengths in scene units; subdivisions are at least 1, those of caps at least 0 (a cap of 0 is one polygon).
Shape cube(double width, double height, double depth, int sw, int sh, int sd);
Shape plane(double width, double height, int sw, int sh);
Shape sphere(double radius, int aroundAxis, int alongHeight);
Shape cylinder(double radius, double height, int aroundAxis, int alongHeight, int caps);
Shape cone(double radius, double height, int aroundAxis, int alongHeight, int caps);
Shape torus(double radius, double sectionRadius, double twist, int aroundAxis, int aroundSection);

/// Turns Y to the axis; an axis of no length leaves it.
void turnTo(Shape& shape, const double axis[3]);
/// The mesh; null and a reason if the arrays make none.
Ref<MeshData> toMesh(const Shape& shape, bool withUVs, std::string& why);

}  // namespace mirk::poly

// Simple shapes as flat arrays: triangles with normals, and the lines that outline them.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

namespace mirk::view {

using Vec3 = std::array<double, 3>;

/// Right-handed axes of unit length about an origin.
struct Axes
{
    Vec3 origin{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
};

/// Axes with y along `up`, and x as near to `right` as a right angle allows; any right angle if `right` is zero or along
/// `up`. A zero `up` gives the world's axes.
Axes axesAlong(const Vec3& origin, const Vec3& up, const Vec3& right = {0, 0, 0});

/// What a shape is made of: `lines` has 2 indices a line, `triangles` 3 a triangle, counter-clockwise seen from outside.
struct Shape
{
    std::vector<float>    positions, normals;   ///< 3 a vertex
    std::vector<uint32_t> triangles, lines;
};

/// A point of a profile that turns about y: distance from the axis, height, and the normal in the same plane.
struct ProfilePoint
{
    double radius, height, normalRadius, normalHeight;
};

/// Turns a profile, which runs from the bottom up. Lines are a ring at each point and one line a division along the
/// profile. Two points at one place make a sharp edge. Divisions are kept between 3 and 512.
Shape revolve(const Axes& axes, const std::vector<ProfilePoint>& profile, int divisions);

Shape sphere(const Axes& axes, double radius, int axisDivisions, int heightDivisions);
Shape cone(const Axes& axes, double radius, double height, int divisions);         ///< base at the origin
Shape cylinder(const Axes& axes, double radius, double height, int divisions);     ///< origin in the middle
Shape capsule(const Axes& axes, double radius, double height, int axisDivisions, int heightDivisions);
Shape box(const Axes& axes, double halfX, double halfY, double halfZ);
Shape rectangle(const Axes& axes, double halfX, double halfY);                     ///< in x and y, normal z
/// In x and z, normal y, `angle` radians from x towards -z (counter-clockwise about y). A full turn is closed.
Shape sector(const Axes& axes, double radius, double angle, int divisions);

}  // namespace mirk::view

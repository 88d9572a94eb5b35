#include "view/shapes.h"

#include <algorithm>
#include <cmath>

namespace mirk::view {

namespace {

constexpr double kPi = 3.14159265358979323846;

Vec3   cross(const Vec3& a, const Vec3& b) { return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]}; }
double length(const Vec3& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }
Vec3   scaled(const Vec3& v, double s) { return {v[0] * s, v[1] * s, v[2] * s}; }

void addVertex(Shape& shape, const Axes& a, const Vec3& p, const Vec3& n)
{
    for (int c = 0; c < 3; ++c) {
        shape.positions.push_back(float(a.origin[c] + p[0] * a.x[c] + p[1] * a.y[c] + p[2] * a.z[c]));
        shape.normals.push_back(float(n[0] * a.x[c] + n[1] * a.y[c] + n[2] * a.z[c]));
    }
}

void add(std::vector<uint32_t>& to, std::initializer_list<size_t> indices)
{
    for (const size_t i : indices)
        to.push_back(static_cast<uint32_t>(i));
}

/// A quarter circle or more as profile points, angles from the equator.
void addArc(std::vector<ProfilePoint>& profile, double radius, double middle, double from, double to, int steps)
{
    for (int i = 0; i <= steps; ++i) {
        const double t = from + (to - from) * i / steps;
        // at the poles exactly on the axis, so that no ring is drawn there
        const double c = std::fabs(std::fabs(t) - kPi / 2) < 1e-9 ? 0 : std::cos(t);
        profile.push_back({radius * c, middle + radius * std::sin(t), c, std::sin(t)});
    }
}

}  // namespace

Axes axesAlong(const Vec3& origin, const Vec3& up, const Vec3& right)
{
    Axes axes;
    axes.origin = origin;
    const double size = length(up);
    if (!(size > 0) || !std::isfinite(size))
        return axes;
    axes.y = scaled(up, 1 / size);
    Vec3 z = cross(right, axes.y);
    if (!(length(z) > 1e-9 * length(right)) || !std::isfinite(length(z))) {
        const Vec3 other = std::fabs(axes.y[0]) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 0, -1};
        z = cross(other, axes.y);
    }
    axes.z = scaled(z, 1 / length(z));
    axes.x = cross(axes.y, axes.z);
    return axes;
}

Shape revolve(const Axes& axes, const std::vector<ProfilePoint>& profile, int divisions)
{
    const size_t n = static_cast<size_t>(std::clamp(divisions, 3, 512)), row = n + 1;
    Shape shape;
    for (const ProfilePoint& p : profile)
        for (size_t i = 0; i <= n; ++i) {
            const double t = 2 * kPi * double(i % n) / double(n), c = std::cos(t), s = -std::sin(t);
            addVertex(shape, axes, {p.radius * c, p.height, p.radius * s}, {p.normalRadius * c, p.normalHeight, p.normalRadius * s});
        }
    for (size_t r = 0; r < profile.size(); ++r) {
        const bool sameAsLast = r && profile[r].radius == profile[r - 1].radius && profile[r].height == profile[r - 1].height;
        for (size_t i = 0; i < n; ++i) {
            const size_t a = r * row + i;
            if (profile[r].radius > 0 && !sameAsLast)
                add(shape.lines, {a, a + 1});
            if (r == 0 || sameAsLast)
                continue;
            add(shape.lines, {a - row, a});
            if (profile[r - 1].radius > 0)
                add(shape.triangles, {a - row, a - row + 1, a + 1});
            if (profile[r].radius > 0)
                add(shape.triangles, {a - row, a + 1, a});
        }
    }
    return shape;
}

Shape sphere(const Axes& axes, double radius, int axisDivisions, int heightDivisions)
{
    std::vector<ProfilePoint> profile;
    addArc(profile, radius, 0, -kPi / 2, kPi / 2, std::clamp(heightDivisions, 2, 512));
    return revolve(axes, profile, axisDivisions);
}

Shape cone(const Axes& axes, double radius, double height, int divisions)
{
    const double slant = std::hypot(radius, height), nr = slant > 0 ? height / slant : 1, nh = slant > 0 ? radius / slant : 0;
    Shape shape = revolve(axes, {{0, 0, 0, -1}, {radius, 0, 0, -1}, {radius, 0, nr, nh}, {0, height, nr, nh}}, divisions);
    return shape;
}

Shape cylinder(const Axes& axes, double radius, double height, int divisions)
{
    const double h = height / 2;
    return revolve(axes, {{0, -h, 0, -1}, {radius, -h, 0, -1}, {radius, -h, 1, 0}, {radius, h, 1, 0}, {radius, h, 0, 1}, {0, h, 0, 1}}, divisions);
}

Shape capsule(const Axes& axes, double radius, double height, int axisDivisions, int heightDivisions)
{
    std::vector<ProfilePoint> profile;
    const int quarter = std::clamp(heightDivisions, 2, 512) / 2;
    addArc(profile, radius, -height / 2, -kPi / 2, 0, quarter);
    addArc(profile, radius, height / 2, 0, kPi / 2, quarter);
    return revolve(axes, profile, axisDivisions);
}

Shape box(const Axes& axes, double halfX, double halfY, double halfZ)
{
    const Vec3 half{halfX, halfY, halfZ};
    Shape shape;
    for (int axis = 0; axis < 3; ++axis)
        for (const double side : {-1.0, 1.0}) {
            const int u = (axis + 1) % 3, v = (axis + 2) % 3;
            const size_t first = shape.positions.size() / 3;
            Vec3 normal{0, 0, 0};
            normal[axis] = side;
            for (const auto& [a, b] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}) {
                Vec3 p{0, 0, 0};
                p[axis] = side * half[axis];
                p[u] = a * side * half[u];   // mirrored on the far side: the turn stays counter-clockwise
                p[v] = b * half[v];
                addVertex(shape, axes, p, normal);
            }
            add(shape.triangles, {first, first + 1, first + 2, first, first + 2, first + 3});
            // each edge once: all four of the faces across x, the two along x of the faces across y
            if (axis == 0)
                add(shape.lines, {first, first + 1, first + 1, first + 2, first + 2, first + 3, first + 3, first});
            else if (axis == 1)
                add(shape.lines, {first + 1, first + 2, first + 3, first});
        }
    return shape;
}

Shape rectangle(const Axes& axes, double halfX, double halfY)
{
    Shape shape;
    for (const auto& [a, b] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
        addVertex(shape, axes, {a * halfX, b * halfY, 0}, {0, 0, 1});
    shape.triangles = {0, 1, 2, 0, 2, 3};
    shape.lines = {0, 1, 1, 2, 2, 3, 3, 0};
    return shape;
}

Shape sector(const Axes& axes, double radius, double angle, int divisions)
{
    const size_t n = static_cast<size_t>(std::clamp(divisions, 3, 512));
    Shape shape;
    addVertex(shape, axes, {0, 0, 0}, {0, 1, 0});
    for (size_t i = 0; i <= n; ++i) {
        const double t = angle * double(i) / double(n);
        addVertex(shape, axes, {radius * std::cos(t), 0, -radius * std::sin(t)}, {0, 1, 0});
        if (i) {
            add(shape.triangles, {0, i, i + 1});
            add(shape.lines, {i, i + 1});
        }
    }
    return shape;
}

}  // namespace mirk::view

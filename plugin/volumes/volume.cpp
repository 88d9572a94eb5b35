#include "volumes/volume.h"

#include <algorithm>

namespace volume {

namespace {

double ellipsoidDistance(Vec p, Vec radii)
{
    const double x = p.x / radii.x, y = p.y / radii.y, z = p.z / radii.z;
    return std::sqrt(x * x + y * y + z * z);
}

double barrelDistance(const Capsule& c, Vec p) { return barrelDistance(c, p.x, p.y, p.z); }
double topDistance(const Capsule& c, Vec p) { return ellipsoidDistance({p.x, p.y - c.top, p.z}, c.topScale); }
double bottomDistance(const Capsule& c, Vec p) { return ellipsoidDistance({p.x, p.y + c.bottom, p.z}, c.bottomScale); }

bool within(double value, double limit) { return value >= -limit && value <= limit; }

/// The part of the capsule that judges a point.
Region regionOf(const Capsule& c, Vec p)
{
    if (p.y >= -c.bottom && p.y <= c.top) {
        const bool near = within(p.x, std::max(c.bottomScale.x, c.topScale.x)) &&
                          within(p.z, std::max(c.bottomScale.z, c.topScale.z));
        return near ? Region::kBarrel : Region::kNone;
    }
    if (p.y > c.top && within(p.x, c.topScale.x) && within(p.z, c.topScale.z) && p.y <= c.top + c.topScale.y)
        return Region::kTopCap;
    // the limits are those of scale x below and of the positive offset above: the distance decides in ordinary cases,
    // and where it does not scenes rely on it
    if (within(p.x, c.bottomScale.x) && within(p.z, c.bottomScale.z) && p.y >= -c.bottomScale.x - c.bottomScale.y &&
        p.y < c.bottom)
        return Region::kBottomCap;
    return Region::kNone;
}

Region regionHolding(const Volume& volume, Vec point, Vec& local, bool homogeneous)
{
    Region region = Region::kNone;
    local = transformPoint(point, volume.inverse, homogeneous);
    capsuleDistance(volume.capsule, local, &region);
    return region;
}

Vec capCenter(const Volume& volume, Region region, bool homogeneous)
{
    const double y = region == Region::kTopCap ? volume.capsule.top : -volume.capsule.bottom;
    return transformPoint({0.0, y, 0.0}, volume.matrix, homogeneous);
}

} // namespace

Vec normalized(Vec v)
{
    const double squared = lengthSquared(v);
    return squared > 1e-20 ? v * (1.0 / std::sqrt(squared)) : v;
}

Vec transformVector(Vec v, const Matrix& matrix)
{
    const auto& m = matrix.m;
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0], v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
}

Vec transformPoint(Vec p, const Matrix& matrix, bool homogeneous)
{
    const auto& m = matrix.m;
    const Vec   moved = {p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0],
                         p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1],
                         p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]};
    if (!homogeneous || matrix.affine())
        return moved;
    const double w = p.x * m[0][3] + p.y * m[1][3] + p.z * m[2][3] + m[3][3];
    return w == 1.0 ? moved : Vec{moved.x / w, moved.y / w, moved.z / w};
}

void Box::add(Vec p)
{
    const auto grow = [](double value, double& from, double& to) {
        from = value < from ? value : from;
        to = value > to ? value : to;
    };
    grow(p.x, low.x, high.x);
    grow(p.y, low.y, high.y);
    grow(p.z, low.z, high.z);
}

void Box::add(const Box& box)
{
    if (box.empty())
        return;
    add(box.low);
    add(box.high);
}

void setBox(Volume& volume)
{
    volume.box = {};
    Vec low{-1.0, -1.0, -1.0}, high{1.0, 1.0, 1.0};
    if (volume.kind == Kind::kCapsule) {
        const Capsule& c = volume.capsule;
        const double   x = std::max(std::fabs(c.topScale.x), std::fabs(c.bottomScale.x));
        const double   z = std::max(std::fabs(c.topScale.z), std::fabs(c.bottomScale.z));
        const double   topY = std::fabs(c.topScale.y), bottomY = std::fabs(c.bottomScale.y);
        low = {-x, std::min(-c.bottom - bottomY, c.top - topY), -z};
        high = {x, std::max(c.top + topY, -c.bottom + bottomY), z};
    }
    const double anything = Box::kMost;
    const double size = length(high - low);
    if (!volume.matrix.affine() || !std::isfinite(size)) {
        volume.box = {{-anything, -anything, -anything}, {anything, anything, anything}};
        return;
    }
    double reach = 0.0;   // of the rounding in both matrices
    for (int i = 0; i < 8; ++i) {
        const Vec corner = transformPoint({i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z},
                                          volume.matrix);
        reach = std::max({reach, std::fabs(corner.x), std::fabs(corner.y), std::fabs(corner.z)});
        volume.box.add(corner);
    }
    double stretch = 0.0, shrink = 0.0;
    for (int i = 0; i < 3; ++i) {
        stretch = std::max(stretch, length(volume.matrix.row(i)));
        shrink = std::max(shrink, length(volume.inverse.row(i)));
    }
    const double margin = 1e-13 * reach * (1.0 + stretch * shrink);
    volume.box.low = volume.box.low - Vec{margin, margin, margin};
    volume.box.high = volume.box.high + Vec{margin, margin, margin};
}

double sphereDistance(Vec p)
{
    const double d = length(p);
    return d <= 1.0 ? d : kOutside;
}

double cubeDistance(Vec p)
{
    // the ray through p leaves the cube at p / largest, so that l over the length of that is the largest itself
    const double largest = std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    if (!(std::fabs(p.x) <= 1.0 && std::fabs(p.y) <= 1.0 && std::fabs(p.z) <= 1.0))
        return kOutside;
    const double l = length(p);
    return l > 1e-6f ? largest : l;
}

double capsuleDistance(const Capsule& capsule, Vec p, Region* region)
{
    Region in = regionOf(capsule, p);
    double d = kOutside;
    switch (in) {
    case Region::kBarrel:    d = barrelDistance(capsule, p); break;
    case Region::kTopCap:    d = topDistance(capsule, p); break;
    case Region::kBottomCap: d = bottomDistance(capsule, p); break;
    case Region::kNone:      break;
    }
    if (!(d <= 1.0)) {
        d = kOutside;
        in = Region::kNone;
    }
    if (region)
        *region = in;
    return d;
}

double distance(const Volume& volume, Vec point)
{
    if (volume.flat)
        return kOutside;
    const Vec p = transformPoint(point, volume.inverse);
    switch (volume.kind) {
    case Kind::kSphere:  return sphereDistance(p);
    case Kind::kCube:    return cubeDistance(p);
    case Kind::kCapsule: return capsuleDistance(volume.capsule, p);
    case Kind::kCloud:   break;
    }
    return kOutside;
}

double openDistance(const Volume& volume, Vec point)
{
    if (volume.flat)
        return Box::kMost;
    const Vec p = transformPoint(point, volume.inverse);
    double    d = Box::kMost;
    switch (volume.kind) {
    case Kind::kSphere: d = length(p); break;
    case Kind::kCube:   d = std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}); break;
    case Kind::kCapsule:
        d = capsuleDistance(volume.capsule, p);
        if (d == kOutside)
            d = p.y > volume.capsule.top       ? topDistance(volume.capsule, p)
                : p.y < -volume.capsule.bottom ? bottomDistance(volume.capsule, p)
                                               : barrelDistance(volume.capsule, p);
        break;
    case Kind::kCloud: break;
    }
    return d >= 0.0 ? d : Box::kMost;
}

double cloudDistance(Vec point, Vec center, double radius)
{
    const double l = length(point - center);
    return l <= radius && radius > 0.0 ? l / radius : kOutside;
}

bool target(const Volume& volume, Vec point, bool homogeneous, Vec& at)
{
    if (volume.kind != Kind::kCapsule) {
        at = volume.origin;
        return true;
    }
    Vec          local;
    const Region region = regionHolding(volume, point, local, homogeneous);
    if (region == Region::kNone)
        return false;
    at = region == Region::kBarrel ? transformPoint({0.0, local.y, 0.0}, volume.matrix, homogeneous)
                                   : capCenter(volume, region, homogeneous);
    return true;
}

Vec targetInside(const Volume& volume, Vec point)
{
    if (volume.kind != Kind::kCapsule)
        return volume.origin;
    const Vec    local = transformPoint(point, volume.inverse);
    const Region region = regionOf(volume.capsule, local);
    const double height = region == Region::kBarrel   ? local.y
                          : region == Region::kTopCap ? volume.capsule.top
                                                      : -volume.capsule.bottom;
    return transformPoint({0.0, height, 0.0}, volume.matrix);
}

void directionAt(const Volume& volume, Vec point, Vec& direction)
{
    const int axis = static_cast<int>(volume.direction);
    if (axis >= 0 && axis <= 2) {
        direction = volume.matrix.row(axis);
    } else if (volume.direction == Direction::kAwayFromCenter && volume.kind != Kind::kCapsule) {
        direction = point - volume.origin;
    } else if (volume.direction == Direction::kAwayFromCenter) {
        Vec          local;
        const Region region = regionHolding(volume, point, local, true);
        if (region == Region::kBarrel)
            direction = transformVector({local.x, 0.0, local.z}, volume.matrix);
        else if (region != Region::kNone)
            direction = point - capCenter(volume, region, true);
    }
}

Box cloudBox(const Vec* centers, const double* radii, std::size_t count)
{
    Box box;
    for (std::size_t i = 0; i < count; ++i) {
        if (radii[i] == 0.0)
            continue;
        const Vec r{radii[i], radii[i], radii[i]};
        box.add(centers[i] - r);
        box.add(centers[i] + r);
    }
    return box;
}

} // namespace volume

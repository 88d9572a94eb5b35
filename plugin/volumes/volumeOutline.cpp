#include "volumes/volumeOutline.h"

#include <algorithm>

namespace volume {

namespace {

constexpr double kTurn = 6.283185307179586;

/// Part of an ellipse: center + a cos + b sin, from angle to angle in turns.
std::vector<Vec> arc(Vec center, Vec a, Vec b, double from, double to, int segments)
{
    const int        count = std::max(1, static_cast<int>(std::lround(segments * std::fabs(to - from))));
    std::vector<Vec> strip;
    for (int i = 0; i <= count; ++i) {
        const double angle = kTurn * (from + (to - from) * i / count);
        strip.push_back(center + a * std::cos(angle) + b * std::sin(angle));
    }
    return strip;
}

std::vector<std::vector<Vec>> sphereOutline(int segments)
{
    const Vec x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
    return {arc({}, x, y, 0, 1, segments), arc({}, y, z, 0, 1, segments), arc({}, z, x, 0, 1, segments)};
}

std::vector<std::vector<Vec>> cubeOutline()
{
    std::vector<std::vector<Vec>> strips;
    for (const double y : {-1.0, 1.0})
        strips.push_back({{-1, y, -1}, {1, y, -1}, {1, y, 1}, {-1, y, 1}, {-1, y, -1}});
    for (const double x : {-1.0, 1.0}) {
        for (const double z : {-1.0, 1.0})
            strips.push_back({{x, -1, z}, {x, 1, z}});
    }
    return strips;
}

std::vector<std::vector<Vec>> capsuleOutline(const Capsule& c, int segments)
{
    const auto along = [](double x, double y, double z) { return Vec{x, y, z}; };
    const Vec  top{0, c.top, 0}, bottom{0, -c.bottom, 0}, up{0, c.topScale.y, 0}, down{0, -c.bottomScale.y, 0};
    const Vec  topX = along(c.topScale.x, 0, 0), topZ = along(0, 0, c.topScale.z);
    const Vec  bottomX = along(c.bottomScale.x, 0, 0), bottomZ = along(0, 0, c.bottomScale.z);
    std::vector<std::vector<Vec>> strips = {
        arc(top, topX, topZ, 0, 1, segments),         arc(bottom, bottomX, bottomZ, 0, 1, segments),
        arc(top, topX, up, 0, 0.5, segments),         arc(top, topZ, up, 0, 0.5, segments),
        arc(bottom, bottomX, down, 0, 0.5, segments), arc(bottom, bottomZ, down, 0, 0.5, segments),
    };
    for (const double side : {-1.0, 1.0}) {
        strips.push_back({top + topX * side, bottom + bottomX * side});
        strips.push_back({top + topZ * side, bottom + bottomZ * side});
    }
    return strips;
}

} // namespace

std::vector<std::vector<Vec>> outline(const Volume& volume, int segments)
{
    switch (volume.kind) {
    case Kind::kSphere:  return sphereOutline(segments);
    case Kind::kCube:    return cubeOutline();
    case Kind::kCapsule: return capsuleOutline(volume.capsule, segments);
    case Kind::kCloud:   break;
    }
    return {};
}

} // namespace volume

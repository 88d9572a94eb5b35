// What cutting a mesh into cells costs without a host: polygons in flat arrays, clipped by plane after plane.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

/// A side of space: places p with (p - center) * normal >= 0.
struct HalfSpace
{
    float center[3], normal[3];
};

/// Polygons one after the other: `sizes` corners each, three floats a corner.
struct Polygons
{
    std::vector<float>        corners;
    std::vector<unsigned int> sizes;
};

class Cutter
{
public:
    /// n triangles, nine floats each.
    explicit Cutter(const std::vector<float>& triangles);
    /// Clips all by every half-space; what is left stays valid until the next call.
    const Polygons& cell(const std::vector<HalfSpace>& sides);

private:
    Polygons all_, now_, next_;
    std::vector<float> heights_;
};

} // namespace plain

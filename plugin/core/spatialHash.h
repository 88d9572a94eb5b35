#pragma once
#include <cmath>
#include <cstdint>

#include <maya/MVector.h>

/// Spatial hash of a point in a grid of cubes with the side `cell`. The three axes are shifted by different amounts,
/// so that points near the origin do not mirror each other. Cell numbers are cut to 32 bits; a number that has none (NaN,
/// infinity, a cell of 0) counts as cell 0.
inline std::uint32_t hashFunction(MVector v, double cell)
{
    const auto number = [cell](double shifted) -> std::uint32_t {
        const double n = std::floor(shifted / cell);
        return std::fabs(n) < 9.0e18 ? static_cast<std::uint32_t>(static_cast<std::int64_t>(n)) : 0u;
    };
    return (number(v.x + 1000.0) * 73856093u) ^ (number(v.y + 10000.0) * 19349663u) ^
           (number(v.z + 100000.0) * 83492791u);
}

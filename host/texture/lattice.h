// Noise on a lattice of whole numbers: the same everywhere and for ever, without tables.
#pragma once
#include <cmath>
#include <cstdint>

namespace mirk::texture {

/// A number in [0, 1) for a lattice point.
inline float hashed(int32_t x, int32_t y, int32_t z, uint32_t seed = 0)
{
    uint32_t h = uint32_t(x) * 0x8da6b343u ^ uint32_t(y) * 0xd8163841u ^ uint32_t(z) * 0xcb1ab31fu ^ (seed + 1) * 0x9e3779b9u;
    h ^= h >> 16;
    h *= 0x7feb352du;
    h ^= h >> 15;
    h *= 0x846ca68bu;
    h ^= h >> 16;
    return float(h >> 8) * (1.f / 16777216.f);
}

/// Gradient noise in [-1, 1]: 0 at lattice points, smooth between; 0 too far out for a lattice.
///
/// Source: K. Perlin, "Improving noise" (2002): directions to the middles of a cube's edges, blended with 6t^5 - 15t^4 + 10t^3.
float gradientNoise(float x, float y, float z);

}  // namespace mirk::texture

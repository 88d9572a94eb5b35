#include "texture/lattice.h"

namespace mirk::texture {
namespace {

float slope(int32_t x, int32_t y, int32_t z, float dx, float dy, float dz)
{
    switch (int(hashed(x, y, z) * 12)) {
    case 0:  return dx + dy;
    case 1:  return dx - dy;
    case 2:  return -dx + dy;
    case 3:  return -dx - dy;
    case 4:  return dx + dz;
    case 5:  return dx - dz;
    case 6:  return -dx + dz;
    case 7:  return -dx - dz;
    case 8:  return dy + dz;
    case 9:  return dy - dz;
    case 10: return -dy + dz;
    default: return -dy - dz;
    }
}

float fade(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }
float mix(float a, float b, float t) { return a + (b - a) * t; }

}  // namespace

float gradientNoise(float x, float y, float z)
{
    constexpr float kFar = 1e9f;
    if (!(std::fabs(x) < kFar && std::fabs(y) < kFar && std::fabs(z) < kFar))
        return 0;
    const float   fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
    const int32_t i = int32_t(fx), j = int32_t(fy), k = int32_t(fz);
    const float   dx = x - fx, dy = y - fy, dz = z - fz;
    const float   sx = fade(dx), sy = fade(dy);
    float         plane[2];
    for (int c = 0; c < 2; ++c) {
        const float low = mix(slope(i, j, k + c, dx, dy, dz - float(c)), slope(i + 1, j, k + c, dx - 1, dy, dz - float(c)), sx);
        const float high = mix(slope(i, j + 1, k + c, dx, dy - 1, dz - float(c)), slope(i + 1, j + 1, k + c, dx - 1, dy - 1, dz - float(c)), sx);
        plane[c] = mix(low, high, sy);
    }
    return mix(plane[0], plane[1], fade(dz));
}

}  // namespace mirk::texture

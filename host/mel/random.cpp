#include "mel/random.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace mirk::mel {

using command::Vec3;

namespace {

struct Sequence
{
    std::mt19937 engine{1};
    int32_t      seed = 1;
};

Sequence& sequence()
{
    static Sequence one;
    return one;
}

/// A fixed shuffle of 0..255, twice over.
const std::array<uint8_t, 512>& shuffle()
{
    static const std::array<uint8_t, 512> table = [] {
        std::array<uint8_t, 512> t{};
        for (int i = 0; i < 256; ++i)
            t[size_t(i)] = uint8_t(i);
        uint32_t state = 2463534242u;
        for (size_t i = 255; i > 0; --i)
        {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            std::swap(t[i], t[state % (i + 1)]);
        }
        for (size_t i = 0; i < 256; ++i)
            t[i + 256] = t[i];
        return t;
    }();
    return table;
}

Vec3 gradientAt(int x, int y, int z)
{
    // the twelve edge directions of a cube, four of them twice
    static const Vec3 directions[16] = {{1, 1, 0}, {-1, 1, 0}, {1, -1, 0}, {-1, -1, 0}, {1, 0, 1},  {-1, 0, 1}, {1, 0, -1},  {-1, 0, -1},
                                        {0, 1, 1}, {0, -1, 1}, {0, 1, -1}, {0, -1, -1}, {1, 1, 0}, {-1, 1, 0}, {0, -1, 1}, {0, -1, -1}};
    const auto& p = shuffle();
    return directions[p[size_t(p[size_t(p[size_t(x & 255)] + (y & 255))] + (z & 255))] & 15];
}

double fade(double t) { return t * t * t * (t * (t * 6 - 15) + 10); }
double fadeSlope(double t) { return 30 * t * t * (t - 1) * (t - 1); }

}  // namespace

void    seedRandom(int32_t seed) { sequence().engine.seed(uint32_t(sequence().seed = seed)); }
int32_t randomSeed() { return sequence().seed; }

double randomUnit()
{
    const uint64_t high = sequence().engine() >> 5, low = sequence().engine() >> 6;   // 53 bits
    return double(high * 67108864 + low) / 9007199254740992.0;
}

double randomGauss()
{
    const double u = 1 - randomUnit(), v = randomUnit();
    return std::sqrt(-2 * std::log(u)) * std::cos(2 * std::numbers::pi * v);
}

Vec3 randomInSphere()
{
    for (;;)
    {
        const Vec3 v{randomUnit() * 2 - 1, randomUnit() * 2 - 1, randomUnit() * 2 - 1};
        if (v.x * v.x + v.y * v.y + v.z * v.z <= 1)
            return v;
    }
}

// Perlin, Improving Noise, 2002; the gradient by differentiating the interpolation.
double noise(const Vec3& p, Vec3* gradient)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
    {
        if (gradient)
            *gradient = {};
        return 0;
    }
    const double fx = std::floor(p.x), fy = std::floor(p.y), fz = std::floor(p.z);
    const int    ix = int(std::fmod(fx, 256.0)), iy = int(std::fmod(fy, 256.0)), iz = int(std::fmod(fz, 256.0));
    const double f[3] = {p.x - fx, p.y - fy, p.z - fz};
    const double w[3] = {fade(f[0]), fade(f[1]), fade(f[2])};
    const double s[3] = {fadeSlope(f[0]), fadeSlope(f[1]), fadeSlope(f[2])};
    double       sum = 0;
    Vec3         slope;
    for (int corner = 0; corner < 8; ++corner)
    {
        const int    dx = corner & 1, dy = corner >> 1 & 1, dz = corner >> 2;
        const Vec3   g = gradientAt(ix + dx, iy + dy, iz + dz);
        const double dot = g.x * (f[0] - dx) + g.y * (f[1] - dy) + g.z * (f[2] - dz);
        const double a = dx ? w[0] : 1 - w[0], b = dy ? w[1] : 1 - w[1], c = dz ? w[2] : 1 - w[2];
        sum += a * b * c * dot;
        slope.x += a * b * c * g.x + (dx ? s[0] : -s[0]) * b * c * dot;
        slope.y += a * b * c * g.y + a * (dy ? s[1] : -s[1]) * c * dot;
        slope.z += a * b * c * g.z + a * b * (dz ? s[2] : -s[2]) * dot;
    }
    if (gradient)
        *gradient = slope;
    return sum;
}

}  // namespace mirk::mel

#include "plain_texture.h"

#include <cmath>

namespace plain {
namespace {

float fraction(float x) { return x >= 0 && x <= 1 ? x : x - std::floor(x); }

}  // namespace

void checker(const Tiling& t, const double* u, const double* v, std::size_t n, double* rgb)
{
    for (std::size_t i = 0; i < n; ++i) {
        const float  x = fraction(float(u[i]) * t.repeat[0] + t.offset[0]), y = fraction(float(v[i]) * t.repeat[1] + t.offset[1]);
        const double c = (x >= 0.5f) == (y >= 0.5f) ? 1 : 0;
        rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = c;
    }
}

void image(const Bitmap& b, const Tiling& t, const double* u, const double* v, std::size_t n, double* rgb)
{
    float byte[256];
    for (int i = 0; i < 256; ++i)
        byte[i] = float(i) / 255.f;
    for (std::size_t i = 0; i < n; ++i) {
        const float x = fraction(float(u[i]) * t.repeat[0] + t.offset[0]) * float(b.width) - 0.5f;
        const float y = fraction(float(v[i]) * t.repeat[1] + t.offset[1]) * float(b.height) - 0.5f;
        const float fx = std::floor(x), fy = std::floor(y), tx = x - fx, ty = y - fy;
        const int   x0 = fx < 0 ? b.width - 1 : int(fx), x1 = int(fx) + 1 < b.width ? int(fx) + 1 : 0;
        const int   y0 = fy < 0 ? b.height - 1 : int(fy), y1 = int(fy) + 1 < b.height ? int(fy) + 1 : 0;
        const auto  at = [&](int px, int py) { return &b.rgba[(std::size_t(b.height - 1 - py) * std::size_t(b.width) + std::size_t(px)) * 4]; };
        const std::uint8_t *p00 = at(x0, y0), *p10 = at(x1, y0), *p01 = at(x0, y1), *p11 = at(x1, y1);
        for (int c = 0; c < 3; ++c) {
            const float low = byte[p00[c]] + (byte[p10[c]] - byte[p00[c]]) * tx, high = byte[p01[c]] + (byte[p11[c]] - byte[p01[c]]) * tx;
            rgb[3 * i + std::size_t(c)] = low + (high - low) * ty;
        }
    }
}

}  // namespace plain

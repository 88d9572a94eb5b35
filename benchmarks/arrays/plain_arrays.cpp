#include "plain_arrays.h"

#include <cmath>
#include <cstdint>

namespace plain {

void remap(const double* in, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i) {
        double x = std::fabs(in[i]) + 0.25;
        x = x * 0.7 - x * 0.2;
        x = x < 0.1 ? 0.1 : x;
        out[i] = x > 0.9 ? 0.9 : x;
    }
}

void shift(const double* in, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = in[i] + 0.25;
}

void ramp(const double* in, std::size_t n, double* out)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        largest = in[i] > largest ? in[i] : largest;
    const double scale = 1.0 / largest;
    for (std::size_t i = 0; i < n; ++i) {
        const auto at = static_cast<float>(in[i] * scale);
        out[i] = at < 0.0f ? 1.0f : at >= 1.0f ? 0.0f : 1.0f - at;
    }
}

void channels(const double* xyz, const double* w, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i) {
        out[4 * i] = xyz[3 * i];
        out[4 * i + 1] = xyz[3 * i + 1];
        out[4 * i + 2] = xyz[3 * i + 2];
        out[4 * i + 3] = w[i];
    }
}

void blend(const double* a, const double* b, double by, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = a[i] * by + b[i] * (1.0 - by);
}

void fill(double value, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = value;
}

void merge(const double* a, const double* b, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = a[i] + b[i] * 2.0;
}

void copy(const double* in, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = in[i];
}

void decimate(const double* in, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n / 2; ++i)
        out[i] = in[2 * i];
}

void randomize(const double* in, std::size_t n, double* out)
{
    std::uint64_t state = std::uint64_t(12345) << 16 | 0x330e;
    for (std::size_t i = 0; i < n; ++i) {
        state = (state * 0x5deece66dULL + 0xb) & 0xffffffffffffULL;
        out[i] = in[i] + static_cast<double>(state) * 0x1p-48;
    }
}

void accumulate(const double* old, const double* in, std::size_t n, double* out)
{
    for (std::size_t i = 0; i < n; ++i) {
        double v = old[i];
        if (v != 0.0) {
            v -= 0.01;
            v = v < 0.0 ? 0.0 : v;
            v = v > 1.0 ? 1.0 : v;
        }
        out[i] = v + in[i];
    }
}

} // namespace plain

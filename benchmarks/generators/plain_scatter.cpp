#include "plain_scatter.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace plain {

void drawRays(unsigned int seed, const double (&low)[3], const double (&high)[3], std::vector<Ray>& rays)
{
    std::srand(seed);
    for (Ray& r : rays) {
        for (int k = 0; k < 3; ++k)
            r.from[k] = float(std::rand()) * 4.656613e-10f * float(high[k] - low[k]) + float(low[k]);
        for (int k = 0; k < 3; ++k)
            r.along[k] = float(std::rand()) * 4.656613e-10f - 0.5f;
    }
}

std::size_t spaced(const std::vector<float>& points, float spacing)
{
    constexpr unsigned int kCells = 1u << 20;
    const std::size_t      count = points.size() / 3;
    std::vector<int>       first(kCells, -1), next(count, -1);
    const auto             cell = [](int x, int y, int z) {
        return (unsigned(x) * 73856093u ^ unsigned(y) * 19349663u ^ unsigned(z) * 83492791u) % kCells;
    };
    std::size_t left = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const float* p = &points[3 * i];
        int          at[3];
        for (int k = 0; k < 3; ++k)
            at[k] = int(std::floor(p[k] / spacing));
        bool near = false;
        for (int n = 0; n < 27 && !near; ++n) {
            for (int j = first[cell(at[0] + n % 3 - 1, at[1] + n / 3 % 3 - 1, at[2] + n / 9 - 1)]; j >= 0 && !near; j = next[std::size_t(j)]) {
                const float* q = &points[3 * std::size_t(j)];
                const double x = double(p[0]) - q[0], y = double(p[1]) - q[1], z = double(p[2]) - q[2];
                near = x * x + y * y + z * z <= double(spacing) * spacing;
            }
        }
        if (near)
            continue;
        int& head = first[cell(at[0], at[1], at[2])];
        next[i] = head;
        head = int(i);
        ++left;
    }
    return left;
}

} // namespace plain

#include "plain_webs.h"

#include <cmath>
#include <ctime>

namespace plain {

namespace {

/// Of this thread alone: the machine may have other work.
double seconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

} // namespace

double linkPoints(const std::vector<double>& points, double minDistance, double maxDistance, int perPoint,
                  std::vector<int>& pairs)
{
    const std::size_t count = points.size() / 3;
    const double      start = seconds();
    pairs.clear();
    for (std::size_t i = 0; i < count; ++i) {
        const double* p = &points[3 * i];
        int           own = 0;
        for (std::size_t j = i + 1; j < count; ++j) {
            const double* q = &points[3 * j];
            const double  x = q[0] - p[0], y = q[1] - p[1], z = q[2] - p[2];
            const double  distance = std::sqrt(x * x + y * y + z * z);
            if (!(distance >= minDistance && distance <= maxDistance))
                continue;
            pairs.push_back(int(i));
            pairs.push_back(int(j));
            if (++own == perPoint)
                break;
        }
    }
    return seconds() - start;
}

} // namespace plain

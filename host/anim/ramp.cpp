#include "anim/ramp.h"

#include <algorithm>
#include <cmath>

namespace mirk {
namespace {

bool before(const RampEntry& a, const RampEntry& b) { return a.position < b.position; }

/// Slope at entry i: from the entry before to the one after, where they exist.
float slope(const RampEntry* e, size_t count, size_t i, int channel)
{
    const RampEntry& a = e[i > 0 ? i - 1 : i];
    const RampEntry& b = e[i + 1 < count ? i + 1 : i];
    return (b.value[channel] - a.value[channel]) / (b.position - a.position);
}

}  // namespace

void sortRamp(std::vector<RampEntry>& entries)
{
    std::erase_if(entries, [](const RampEntry& e) { return !std::isfinite(e.position); });
    if (!std::is_sorted(entries.begin(), entries.end(), before))
        std::stable_sort(entries.begin(), entries.end(), before);
}

float rampValue(const RampEntry* e, size_t count, float position, int channel)
{
    if (count == 0)
        return 0;
    if (!(position >= e[0].position))
        return e[0].value[channel];
    const auto* after = std::upper_bound(e, e + count, position, [](float p, const RampEntry& x) { return p < x.position; });
    if (after == e + count)
        return e[count - 1].value[channel];
    const size_t     i = size_t(after - e) - 1;
    const RampEntry &a = e[i], &b = e[i + 1];
    const float      length = b.position - a.position;
    const float      from = a.value[channel], rise = b.value[channel] - from;
    const float      t = (position - a.position) / length;
    float            c1 = 0, c2 = 0, c3 = 0;
    switch (RampInterpolation(a.interpolation)) {
    case RampInterpolation::kNone: break;
    case RampInterpolation::kSmooth: c2 = 3 * rise, c3 = -2 * rise; break;
    case RampInterpolation::kSpline: {
        const float m0 = slope(e, count, i, channel) * length, m1 = slope(e, count, i + 1, channel) * length;
        c1 = m0, c2 = 3 * rise - 2 * m0 - m1, c3 = m0 + m1 - 2 * rise;
        break;
    }
    default: c1 = rise;
    }
    return from + t * (c1 + t * (c2 + t * c3));
}

}  // namespace mirk

#include "plain_shatter.h"

namespace plain {

Cutter::Cutter(const std::vector<float>& triangles)
{
    all_.corners = triangles;
    all_.sizes.assign(triangles.size() / 9, 3);
    for (Polygons* p : {&now_, &next_}) {   // room for all cuts
        p->corners.reserve(2 * triangles.size());
        p->sizes.reserve(all_.sizes.size());
    }
    heights_.reserve(2 * triangles.size());
}

const Polygons& Cutter::cell(const std::vector<HalfSpace>& sides)
{
    const Polygons* from = &all_;
    for (const HalfSpace& side : sides) {
        const std::size_t cornerCount = from->corners.size() / 3;
        heights_.resize(cornerCount);
        for (std::size_t i = 0; i < cornerCount; ++i) {
            const float* p = &from->corners[3 * i];
            heights_[i] = (p[0] - side.center[0]) * side.normal[0] + (p[1] - side.center[1]) * side.normal[1] +
                          (p[2] - side.center[2]) * side.normal[2];
        }
        next_.corners.clear();
        next_.sizes.clear();
        const float* p = from->corners.data();
        const float* h = heights_.data();
        for (unsigned int size : from->sizes) {
            unsigned int kept = 0;
            for (unsigned int i = 0; i < size; ++i) {
                const unsigned int k = i + 1 == size ? 0 : i + 1;
                if (h[i] >= 0) {
                    next_.corners.insert(next_.corners.end(), p + 3 * i, p + 3 * i + 3);
                    ++kept;
                }
                if ((h[i] >= 0) != (h[k] >= 0)) {
                    const float t = h[i] / (h[i] - h[k]);
                    for (int c = 0; c < 3; ++c)
                        next_.corners.push_back(p[3 * i + c] + t * (p[3 * k + c] - p[3 * i + c]));
                    ++kept;
                }
            }
            if (kept > 0)
                next_.sizes.push_back(kept);
            p += 3 * size;
            h += size;
        }
        std::swap(now_, next_);
        from = &now_;
    }
    return *from;
}

} // namespace plain

#include "mesh/face_plan.h"

#include <algorithm>

namespace mirk {

Ref<MeshBody> FacePlan::finish(const float* points, const uint8_t* gone)
{
    const int       count = old_.vertexCount();
    Buffer<int>     place(size_t(count), 0);   // 1 for vertices that stay, then their numbers
    for (int v = 0; v < count; ++v)
        place[size_t(v)] = !(gone && gone[v]);
    for (int v : old_.topology().connects())
        place[size_t(v)] = 0;
    for (int v : plan_.connects)
        place[size_t(v)] = 1;
    plan_.vertexSource.reserve(size_t(count));
    Buffer<float>& to = *plan_.points;
    to.resize(size_t(count) * 3);
    for (int v = 0; v < count; ++v) {
        if (!place[size_t(v)])
            continue;
        place[size_t(v)] = int(plan_.vertexSource.size());
        std::copy(points + 3 * size_t(v), points + 3 * size_t(v) + 3, to.data() + 3 * plan_.vertexSource.size());
        plan_.vertexSource.push(v);
    }
    to.resize(plan_.vertexSource.size() * 3);
    for (int& v : plan_.connects)
        v = place[size_t(v)];
    return rebuild(old_, std::move(plan_));
}

}  // namespace mirk

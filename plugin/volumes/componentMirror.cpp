#include "volumes/componentMirror.h"

#include "volumes/componentNormals.h"
#include "volumes/pointTree.h"

namespace {

constexpr double kHalfTurn = 3.14159265358979323846;

bool isMirrored(const double fromOrigin[3], const MirrorPlane& plane, MirrorDirection direction)
{
    const double angle = angleBetween(fromOrigin, plane.axis);
    switch (direction) {
    case MirrorDirection::kPositiveToNegative: return angle <= kHalfTurn / 2.0;
    case MirrorDirection::kNegativeToPositive: return angle >= kHalfTurn / 2.0 && angle < kHalfTurn;
    default:                                   return true;
    }
}

} // namespace

std::vector<int> mirrorImages(const std::vector<double>& xyz, const std::vector<int>& selected, const MirrorPlane& plane,
                              const MirrorRule& rule)
{
    const PointTree  tree(xyz);
    std::vector<int> images;
    images.reserve(selected.size());
    for (int id : selected) {
        const double* p = &xyz[3 * static_cast<std::size_t>(id)];
        const double  d[3] = {p[0] - plane.origin[0], p[1] - plane.origin[1], p[2] - plane.origin[2]};
        const double  distance = d[0] * plane.axis[0] + d[1] * plane.axis[1] + d[2] * plane.axis[2];
        double        reflection[3];
        for (int i = 0; i < 3; ++i)
            reflection[i] = p[i] - 2.0 * distance * plane.axis[i];
        images.push_back(isMirrored(d, plane, rule.direction) ? tree.nearest(reflection, rule.radius) : -1);
    }
    return images;
}

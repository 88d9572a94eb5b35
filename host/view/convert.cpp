#include "view/convert.h"

#include <cmath>

namespace mirk::view {

bool unproject(const Camera& camera, double x, double y, MPoint& nearPoint, MPoint& farPoint)
{
    const MMatrix viewProjection = toMatrix(multiply(camera.view, camera.projection));
    if (viewProjection.isSingular() || camera.width < 1 || camera.height < 1)
        return false;
    const MMatrix inverse = viewProjection.inverse();
    const double  ndcX = 2 * x / camera.width - 1, ndcY = 2 * y / camera.height - 1;
    nearPoint = (MPoint(ndcX, ndcY, -1, 1) * inverse).cartesianize();
    farPoint = (MPoint(ndcX, ndcY, 1, 1) * inverse).cartesianize();
    return true;
}

bool project(const Camera& camera, const MPoint& world, double& x, double& y)
{
    const MPoint clip = MPoint(world.x, world.y, world.z, 1) * toMatrix(multiply(camera.view, camera.projection));
    if (!(clip.w > 0))
        return false;
    x = (clip.x / clip.w * 0.5 + 0.5) * camera.width;
    y = (clip.y / clip.w * 0.5 + 0.5) * camera.height;
    return std::fabs(clip.x) <= clip.w && std::fabs(clip.y) <= clip.w && std::fabs(clip.z) <= clip.w;
}

}  // namespace mirk::view

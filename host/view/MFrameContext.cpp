#include <maya/MDrawContext.h>
#include <maya/MFrameContext.h>

#include <maya/MDagPath.h>

#include <cmath>
#include <cstring>

#include <maya/MVector.h>

#include "view/convert.h"
#include "view/frame.h"

namespace MHWRender {

using mirk::view::FrameData;
using mirk::view::toMatrix;

namespace {

void setStatus(MStatus* to, MStatus::MStatusCode code)
{
    if (to)
        *to = code;
}

/// The distance from the eye at which a clip-space depth of -1 or 1 lies.
double clipDistance(const MMatrix& projection, double depth)
{
    MPoint p = MPoint(0, 0, depth, 1) * projection.inverse();
    return p.w != 0 ? -p.z / p.w : 0;
}

}  // namespace

MMatrix MFrameContext::getMatrix(MatrixType type, MStatus* ReturnStatus) const
{
    setStatus(ReturnStatus, MStatus::kInvalidParameter);
    if (type < kWorldMtx || type > kWorldViewProjTranspInverseMtx)
        return MMatrix();
    const MMatrix world = toMatrix(data_->world), view = toMatrix(data_->camera.view), projection = toMatrix(data_->camera.projection);
    const MMatrix plain[] = {world, view, projection, view * projection, world * view, world * view * projection};
    const MMatrix m = (type & 2) ? plain[type / 4].inverse() : plain[type / 4];   // four forms of each, in this order
    setStatus(ReturnStatus, MStatus::kSuccess);
    return (type & 1) ? m.transpose() : m;
}

MDoubleArray MFrameContext::getTuple(TupleType type, MStatus* ReturnStatus) const
{
    const MMatrix eye = toMatrix(data_->camera.view).inverse();
    const MMatrix projection = toMatrix(data_->camera.projection);
    const auto row = [&](int r, double sign) {
        MVector v(eye[r][0], eye[r][1], eye[r][2]);
        if (r < 3)
            v.normalize();
        const double xyz[] = {sign * v.x, sign * v.y, sign * v.z};
        return MDoubleArray(xyz, 3);
    };
    setStatus(ReturnStatus, MStatus::kSuccess);
    switch (type) {
        case kViewPosition:       return row(3, 1);
        case kViewDirection:      return row(2, -1);
        case kViewUp:             return row(1, 1);
        case kViewRight:          return row(0, 1);
        case kViewNearClipValue:  return MDoubleArray(1, clipDistance(projection, -1));
        case kViewFarClipValue:   return MDoubleArray(1, clipDistance(projection, 1));
        case kViewportPixelSize: {
            const double size[] = {double(data_->camera.width), double(data_->camera.height)};
            return MDoubleArray(size, 2);
        }
    }
    setStatus(ReturnStatus, MStatus::kInvalidParameter);
    return MDoubleArray();
}

MStatus MFrameContext::getViewportDimensions(int& originX, int& originY, int& width, int& height) const
{
    originX = originY = 0;
    width = data_->camera.width;
    height = data_->camera.height;
    return MStatus::kSuccess;
}

unsigned int MFrameContext::getDisplayStyle(MStatus* ReturnStatus) const
{
    setStatus(ReturnStatus, MStatus::kSuccess);
    return data_->displayStyle;
}

MStatus MFrameContext::viewportToWorld(double x, double y, MPoint& nearPoint, MPoint& farPoint) const
{
    return mirk::view::unproject(data_->camera, x, y, nearPoint, farPoint) ? MStatus::kSuccess : MStatus::kFailure;
}

bool MFrameContext::worldToViewport(const MPoint& worldPoint, double& x, double& y) const
{
    return mirk::view::project(data_->camera, worldPoint, x, y);
}

MDagPath MFrameContext::getCurrentCameraPath(MStatus* ReturnStatus) const
{
    setStatus(ReturnStatus, data_->cameraPath ? MStatus::kSuccess : MStatus::kFailure);
    return data_->cameraPath ? *data_->cameraPath : MDagPath();
}

}  // namespace MHWRender

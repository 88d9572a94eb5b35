#include <maya/M3dView.h>

#include <maya/MDagPath.h>

#include <algorithm>
#include <cmath>

#include <maya/MFrameContext.h>
#include <maya/MString.h>

#include "view/convert.h"
#include "view/frame.h"
#include "view/renderer.h"
#include "view/stroke_font.h"

using mirk::view::activeViewport;
using mirk::view::toMatrix;

namespace {

void setStatus(MStatus* to, MStatus::MStatusCode code)
{
    if (to)
        *to = code;
}

short toShort(double pixel) { return static_cast<short>(std::clamp(pixel, -32768.0, 32767.0)); }

}  // namespace

M3dView M3dView::active3dView(MStatus* ReturnStatus)
{
    setStatus(ReturnStatus, MStatus::kSuccess);
    return M3dView();
}

unsigned int M3dView::numberOf3dViews() { return 1; }

int M3dView::portWidth(MStatus* ReturnStatus) const
{
    setStatus(ReturnStatus, MStatus::kSuccess);
    return activeViewport().frame.camera.width;
}

int M3dView::portHeight(MStatus* ReturnStatus) const
{
    setStatus(ReturnStatus, MStatus::kSuccess);
    return activeViewport().frame.camera.height;
}

MStatus M3dView::getCamera(MDagPath& camera) const
{
    const auto& path = activeViewport().frame.cameraPath;
    if (!path)
        return MStatus::kFailure;
    camera = *path;
    return MStatus::kSuccess;
}

MStatus M3dView::modelViewMatrix(MMatrix& modelViewMatrix) const
{
    const auto& frame = activeViewport().frame;
    modelViewMatrix = toMatrix(activeViewport().inCallback ? mirk::view::multiply(frame.world, frame.camera.view) : frame.camera.view);
    return MStatus::kSuccess;
}

MStatus M3dView::projectionMatrix(MMatrix& projectionMatrix) const
{
    projectionMatrix = toMatrix(activeViewport().frame.camera.projection);
    return MStatus::kSuccess;
}

M3dView::DisplayStyle M3dView::displayStyle(MStatus* ReturnStatus) const
{
    using Style = MHWRender::MFrameContext;
    const unsigned style = activeViewport().frame.displayStyle;
    setStatus(ReturnStatus, MStatus::kSuccess);
    return style & Style::kBoundingBox ? kBoundingBox : style & Style::kGouraudShaded ? kGouraudShaded
         : style & Style::kFlatShaded  ? kFlatShaded : kWireFrame;
}

bool M3dView::worldToView(const MPoint& worldPoint, short& xPosition, short& yPosition, MStatus* ReturnStatus) const
{
    double x = NAN, y = NAN;
    const bool inside = mirk::view::project(activeViewport().frame.camera, worldPoint, x, y);
    setStatus(ReturnStatus, MStatus::kSuccess);
    if (!std::isnan(x) && !std::isnan(y)) {
        xPosition = toShort(x);
        yPosition = toShort(y);
    }
    return inside;
}

MStatus M3dView::viewToWorld(short xPosition, short yPosition, MPoint& nearClipPoint, MPoint& farClipPoint) const
{
    return mirk::view::unproject(activeViewport().frame.camera, xPosition, yPosition, nearClipPoint, farClipPoint)
               ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus M3dView::viewToWorld(short xPosition, short yPosition, MPoint& worldPoint, MVector& worldVector) const
{
    MPoint farPoint;
    const MStatus status = viewToWorld(xPosition, yPosition, worldPoint, farPoint);
    if (status)
        worldVector = (farPoint - worldPoint).normal();
    return status;
}

MStatus M3dView::viewToObjectSpace(short xPosition, short yPosition, const MMatrix& localMatrixInverse, MPoint& point,
                                   MVector& vector) const
{
    const MStatus status = viewToWorld(xPosition, yPosition, point, vector);
    if (status) {
        point = (point * localMatrixInverse).cartesianize();
        vector = (vector * localMatrixInverse).normal();
    }
    return status;
}

MStatus M3dView::beginGL()
{
    if (!activeViewport().inCallback)
        return MStatus::kFailure;
    ++activeViewport().legacyDepth;
    return MStatus::kSuccess;
}

MStatus M3dView::endGL()
{
    if (activeViewport().legacyDepth == 0)
        return MStatus::kFailure;
    --activeViewport().legacyDepth;
    return MStatus::kSuccess;
}

MStatus M3dView::setDrawColor(const MColor& c)
{
    if (activeViewport().legacyDepth == 0)
        return MStatus::kFailure;
    mirk::view::renderer().setCurrentColor({c.r, c.g, c.b, c.a});
    return MStatus::kSuccess;
}

MStatus M3dView::drawText(const MString& text, const MPoint& position, TextPosition textPosition)
{
    const auto& viewport = activeViewport();
    const mirk::view::Camera& camera = viewport.frame.camera;
    if (viewport.legacyDepth == 0)
        return MStatus::kFailure;
    const MPoint world = position * toMatrix(viewport.frame.world);
    double x = NAN, y = NAN;
    mirk::view::project(camera, world, x, y);
    if (std::isnan(x))
        return MStatus::kSuccess;   // behind the eye
    constexpr double kSize = 12;
    const double width = mirk::view::textWidth(text.asChar(), kSize);
    x -= textPosition == kCenter ? width / 2 : textPosition == kRight ? width : 0;
    std::vector<float> lines = mirk::view::textStrokes(text.asChar(), kSize);
    for (size_t i = 0; i < lines.size(); ++i)
        lines[i] += float(i % 2 ? y : x);
    const MPoint clip = world * toMatrix(mirk::view::multiply(camera.view, camera.projection));
    mirk::view::renderer().drawPixelLines(camera, lines, float(clip.z / clip.w));
    return MStatus::kSuccess;
}

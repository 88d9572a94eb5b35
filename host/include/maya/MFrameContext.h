#pragma once
#include <maya/MDoubleArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>

class MDagPath;

namespace mirk::view { struct FrameData; }

namespace MHWRender {

/// What a frame is drawn with: camera, viewport, display style. Pixels count from the lower left corner.
class MFrameContext
{
public:
    /// Of each matrix the plain form, the transpose, the inverse and the transposed inverse. Without an object being
    /// drawn the world matrix is the identity.
    enum MatrixType
    {
        kWorldMtx, kWorldTransposeMtx, kWorldInverseMtx, kWorldTranspInverseMtx,
        kViewMtx, kViewTransposeMtx, kViewInverseMtx, kViewTranspInverseMtx,
        kProjectionMtx, kProjectionTranposeMtx, kProjectionInverseMtx, kProjectionTranspInverseMtx,
        kViewProjMtx, kViewProjTranposeMtx, kViewProjInverseMtx, kViewProjTranspInverseMtx,
        kWorldViewMtx, kWorldViewTransposeMtx, kWorldViewInverseMtx, kWorldViewTranspInverseMtx,
        kWorldViewProjMtx, kWorldViewProjTransposeMtx, kWorldViewProjInverseMtx, kWorldViewProjTranspInverseMtx
    };

    /// In world space; the pixel size is that of the viewport, the clip values are distances from the eye.
    enum TupleType
    {
        kViewPosition, kViewDirection, kViewUp, kViewRight, kViewportPixelSize, kViewNearClipValue, kViewFarClipValue
    };

    enum DisplayStyle
    {
        kGouraudShaded        = 1 << 0,
        kWireFrame            = 1 << 1,
        kBoundingBox          = 1 << 2,
        kTextured             = 1 << 3,
        kDefaultMaterial      = 1 << 4,
        kXrayJoint            = 1 << 5,
        kXray                 = 1 << 6,
        kTwoSidedLighting     = 1 << 7,
        kFlatShaded           = 1 << 8,
        kShadeActiveOnly      = 1 << 9,
        kXrayActiveComponents = 1 << 10,
        kBackfaceCulling      = 1 << 11,
        kSmoothWireframe      = 1 << 12
    };

    explicit MFrameContext(const mirk::view::FrameData& data) : data_(&data) {}

    MMatrix      getMatrix(MatrixType type, MStatus* ReturnStatus = nullptr) const;
    MDoubleArray getTuple(TupleType type, MStatus* ReturnStatus = nullptr) const;
    MStatus      getViewportDimensions(int& originX, int& originY, int& width, int& height) const;
    MDagPath     getCurrentCameraPath(MStatus* ReturnStatus = nullptr) const;
    /// DisplayStyle values, or-ed.
    unsigned int getDisplayStyle(MStatus* ReturnStatus = nullptr) const;

    MStatus viewportToWorld(double viewportX, double viewportY, MPoint& worldPointOnNearPlane,
                            MPoint& worldPointOnFarPlane) const;
    /// True if the point falls inside the viewport, between the clip planes.
    bool worldToViewport(const MPoint& worldPoint, double& viewportX, double& viewportY) const;

private:
    const mirk::view::FrameData* data_;
};

}  // namespace MHWRender

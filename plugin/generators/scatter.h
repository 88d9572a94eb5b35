#pragma once
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>
#include <maya/MUserData.h>

/// The attributes of one texture that thins the points: its switch, its colour and, of a projector, where it stands and
/// whether it drops what it does not see.
struct ScatterTextureAttributes
{
    MObject active, matrix, color, colorRGB[3], contained;
};

/// Throws random rays at a mesh and makes points of where they start inside it, of where they hit it, or of both. Masks,
/// spacing, textures and a camera thin them. Given points go the same way in place of random ones.
class scatter : public MPxLocatorNode
{
public:
    static inline MTypeId id{0x115762};
    static inline MString drawDbClassification{"drawdb/geometry/scatter"};
    static inline MString drawRegistrantId{"ScatterNodePlugin"};
    static void*   creator() { return new scatter; }
    static MStatus initialize();
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }
    bool drawLast() const override { return true; }

    static constexpr int kProjectors = 20;
    static inline MObject aInGeo, aInWorldMatrix, aInPosPP, aOutPosPP, aOutCount, aOutGeo, aEnvelope, aMode, aDensity,
        aMaxPoints, aSeed, aTolerance, aSurfaceOffset, aMaxDistance, aSpacing, aUseDensityMask, aDensityColorSet,
        aUseSpacingMask, aSpacingColorSet, aUVSet, aProjections, aUseCamera, aCameraMatrix, aCameraScale,
        aCameraHorizontalAperture, aCameraVerticalAperture, aCameraHorizontalOffset, aCameraVerticalOffset,
        aCameraNearClip, aCameraFarClip, aCameraFocalLength, aCameraSqueeze, aCameraExpand, aDisplay, aPointSize,
        aPointColor, aPointColorRGB[3];
    static inline ScatterTextureAttributes aTexture, aProjector[kProjectors];
};

/// Draws the points.
class ScatterDrawOverride : public MHWRender::MPxDrawOverride
{
public:
    static MHWRender::MPxDrawOverride* Creator(const MObject& node) { return new ScatterDrawOverride(node); }
    explicit ScatterDrawOverride(const MObject& node);

    MHWRender::DrawAPI supportedDrawAPIs() const override { return MHWRender::kAllDevices; }
    bool               hasUIDrawables() const override { return true; }
    MUserData*         prepareForDraw(const MDagPath& object, const MDagPath& camera, const MHWRender::MFrameContext&,
                                      MUserData* oldData) override;
    void addUIDrawables(const MDagPath& object, MHWRender::MUIDrawManager&, const MHWRender::MFrameContext&,
                        const MUserData* data) override;
};

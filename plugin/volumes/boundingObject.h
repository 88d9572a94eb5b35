#pragma once
#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>
#include <maya/MTypeId.h>
#include <maya/MUserData.h>

#include "volumes/volume.h"

struct CloudPoints;

/// The attributes of one source of cloud points. Particles have no group and two more arrays; a mesh has the name of a
/// colour set in place of a colour array.
struct CloudSourceAttributes
{
    MObject all, enable, points, mode, groupId, components, radius, useRadius, weight, useWeight, color, useColor,
        opacity, useOpacity, velocity, useVelocity;
};

/// Marks a place in space with an amount and a colour: a sphere, a cube, a capsule or a cloud of spheres around points of
/// geometry. It publishes its controls and its cloud; consumers test points against it and read its ramps.
class boundingObject : public MPxLocatorNode
{
public:
    static inline MTypeId id{0x115743};
    static inline MString drawDbClassification{"drawdb/geometry/boundingObject"};
    static inline MString drawRegistrantId{"BoundingObjectNodePlugin"};
    static void*   creator() { return new boundingObject; }
    static MStatus initialize();
    void           postConstructor() override;
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;
    bool           isBounded() const override { return true; }
    MBoundingBox   boundingBox() const override;

    /// The volume as a consumer would see it, read from plugs, without its cloud. `inParentMatrix` places it.
    volume::Volume volumeNow() const;

    static inline MObject aOutData, aOutParentMatrix, aControlData, aEnvelope, aType, aContained, aTopCapOffset,
        aTopCapScale, aTopCapScaleX, aTopCapScaleY, aTopCapScaleZ, aBottomCapOffset, aBottomCapScale,
        aBottomCapScaleX, aBottomCapScaleY, aBottomCapScaleZ, aNormal, aDataPP, aPositionPP, aNormalPP, aRadiusPP,
        aWeightPP, aRgbaPP;
    static inline MObject aOverrideData, aPositionFalloff, aWeightFalloff, aColorFalloff, aAlphaFalloff,
        aNormalFalloff, aRadiusFalloff, aPointRadius, aPointWeight, aPointColor, aPointColorRGB[3],
        aPointAlpha;
    static inline MObject aDisplayColor, aDisplayColorRGB[3], aDisplayPointVolumes, aColorPointVolumes,
        aInParentMatrix, aInSkinMatrix;
    static inline CloudSourceAttributes aMesh, aCurve, aSurface, aParticle;

private:
    CloudPoints gatherCloud(MDataBlock& block) const;
};

/// Draws the volume in its colour; of a cloud every sphere.
class BoundingObjectDrawOverride : public MHWRender::MPxDrawOverride
{
public:
    static MHWRender::MPxDrawOverride* Creator(const MObject& node) { return new BoundingObjectDrawOverride(node); }
    explicit BoundingObjectDrawOverride(const MObject& node);

    MHWRender::DrawAPI supportedDrawAPIs() const override { return MHWRender::kAllDevices; }
    bool               hasUIDrawables() const override { return true; }
    bool               isBounded(const MDagPath&, const MDagPath&) const override { return true; }
    MBoundingBox       boundingBox(const MDagPath& object, const MDagPath& camera) const override;
    MUserData*         prepareForDraw(const MDagPath& object, const MDagPath& camera, const MHWRender::MFrameContext&,
                                      MUserData* oldData) override;
    void addUIDrawables(const MDagPath& object, MHWRender::MUIDrawManager&, const MHWRender::MFrameContext&,
                        const MUserData* data) override;
};

/// A manipulator on the node's transform; what it shows is the host's own.
class boundingObjectManip : public MPxManipContainer
{
public:
    static inline MTypeId id{0x11574C};
    static void*   creator() { return new boundingObjectManip; }
    static MStatus initialize() { return MPxManipContainer::initialize(); }
};

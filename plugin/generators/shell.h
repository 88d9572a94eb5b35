#pragma once
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Treats a mesh as a set of islands, by UVs or by connected faces: tells where each one is, moves each one as a rigid
/// piece and spreads one value a shell over its vertices.
class shell : public MPxNode
{
public:
    static inline MTypeId id{0x11578B};
    static void*   creator() { return new shell; }
    static MStatus initialize();
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInMesh, aOutMesh, aInPosPP, aInRotationPP, aInScalePP, aInWeightPP, aInRadiusPP, aInRgbaPP,
        aInNormalPP, aInTangentPP, aMode, aTransform, aWeight, aRgba, aNormal, aTangent, aRadius;
    static inline MObject aOutShellData, aOutComp, aOutBoxCenter, aOutBoxCenterXyz[3], aOutBoxScale,
        aOutBoxScaleXyz[3], aOutPosPP, aOutWeightPP, aOutRgbaPP,
        aOutNormalPP, aOutTangentPP, aOutRadiusPP, aOutCenters, aOutScales, aOutUvCounts, aOutCount;
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// The connected matrices, and what stands beside them, as arrays.
class transformsToArrays : public MPxNode
{
public:
    static inline MTypeId id{0x11578F};
    static void*   creator() { return new transformsToArrays; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInTransforms, aInMatrix, aInRotateOrder, aInWeight, aInColor, aInColorRgb[3], aInAlpha,
        aInRadius, aOutPositionPP, aOutRotationPP, aOutScalePP, aOutWeightPP, aOutRgbaPP, aOutRadiusPP;
};

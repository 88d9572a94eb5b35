#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Colours and alphas as flat RGBA values.
class colorAndAlphaToRgba : public MPxNode
{
public:
    static inline MTypeId id{0x1157A6};
    static void*   creator() { return new colorAndAlphaToRgba; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInRgbPP, aInAlphaPP, aOutRgbaPP;
};

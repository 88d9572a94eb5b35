#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Flat RGBA values as colours and alphas.
class rgbaToColorAndAlpha : public MPxNode
{
public:
    static inline MTypeId id{0x115765};
    static void*   creator() { return new rgbaToColorAndAlpha; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInRgbaPP, aOutRgbPP, aOutAlphaPP;
};

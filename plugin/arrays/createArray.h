#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// An array of equal elements, or of elements along ramps.
class createArray : public MPxNode
{
public:
    static inline MTypeId id{0x115779};
    static void*   creator() { return new createArray; }
    static MStatus initialize();
    void    postConstructor() override;
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aOutArray, aOutputType, aLength, aDefaultValue[4], aUseRamps, aRampXyz, aRampW;
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Shapes the values of an array: absolute, shifted, scaled, through a ramp, clamped; and changes its kind.
class remapArray : public MPxNode
{
public:
    static inline MTypeId id{0x11574F};
    static void*   creator() { return new remapArray; }
    static MStatus initialize();
    void    postConstructor() override;
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray, aOutArray, aAbsolute, aShift, aShiftValue, aRemap, aRemapMin, aRemapMax, aUseRamp,
        aRamp, aClamp, aClampMin, aClampMax, aOutArrayType;
};

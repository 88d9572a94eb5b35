#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Cuts an array to a length, or pads it with zeros.
class resizeArray : public MPxNode
{
public:
    static inline MTypeId id{0x11578C};
    static void*   creator() { return new resizeArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray, aOutArray, aLength;
};

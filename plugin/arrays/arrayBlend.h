#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Blends two arrays, or adds, subtracts, multiplies or divides them value by value.
class arrayBlend : public MPxNode
{
public:
    static inline MTypeId id{0x115775};
    static void*   creator() { return new arrayBlend; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray1, aInArray2, aOutArray, aOperation, aBlend;
};

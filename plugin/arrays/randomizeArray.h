#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Adds a random number to each value, or multiplies by one; the same numbers in each evaluation.
class randomizeArray : public MPxNode
{
public:
    static inline MTypeId id{0x1157B5};
    static void*   creator() { return new randomizeArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray, aOutArray, aOperation, aSeed, aRandomMin[3], aRandomMax[3];
};

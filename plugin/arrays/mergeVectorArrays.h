#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// The weighted sum of any number of vector arrays, as long as the longest one.
class mergeVectorArrays : public MPxNode
{
public:
    static inline MTypeId id{0x1157B7};
    static void*   creator() { return new mergeVectorArrays; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArrays, aInArray, aMultiplier, aOutArray;
};

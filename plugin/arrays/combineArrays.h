#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Puts arrays one behind the other.
class combineArrays : public MPxNode
{
public:
    static inline MTypeId id{0x1157A2};
    static void*   creator() { return new combineArrays; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInArrays, aOutArray, aOutCount;
};

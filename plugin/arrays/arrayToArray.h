#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Builds an array of vectors or points out of channels of up to four arrays.
class arrayToArray : public MPxNode
{
public:
    static inline MTypeId id{0x11575F};
    static void*   creator() { return new arrayToArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInArray[4], aRead[4][4], aOutArray, aOutDataType;
};

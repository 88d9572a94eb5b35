#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// The values of a multi as an array without gaps.
class multiToArray : public MPxNode
{
public:
    static inline MTypeId id{0x115756};
    static void*   creator() { return new multiToArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInWeightList, aWeights, aOutArray;
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// An array as the elements of a multi, all of them in element 0 of the list.
class arrayToMulti : public MPxNode
{
public:
    static inline MTypeId id{0x115748};
    static void*   creator() { return new arrayToMulti; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInWeightPP, aOutWeightList, aWeight;
};

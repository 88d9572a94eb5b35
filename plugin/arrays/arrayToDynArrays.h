#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Puts a named array among those that particles pass around, and takes others out of them.
class arrayToDynArrays : public MPxNode
{
public:
    static inline MTypeId id{0x115764};
    static void*   creator() { return new arrayToDynArrays; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInArray, aInDynArrays, aOutDynArrays, aOutArrays, aName, aExistingNames, aOutputNames;
};

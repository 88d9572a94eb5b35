#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// The centre of each polygon in world space.
class faceCenters : public MPxNode
{
public:
    static inline MTypeId id{0x1157B6};
    static void*   creator() { return new faceCenters; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInGeo, aOutPosPP;
};

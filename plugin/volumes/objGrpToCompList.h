#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Reads an object group of a geometry as a component list; an empty one if there is no such group.
class objGrpToCompList : public MPxNode
{
public:
    static inline MTypeId id{0x115744};
    static void*   creator() { return new objGrpToCompList; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aGroupId, aInGeo, aOutComp;
};

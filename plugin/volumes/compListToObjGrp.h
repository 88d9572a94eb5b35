#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Writes the first component of a list as an object group into a copy of a geometry.
class compListToObjGrp : public MPxNode
{
public:
    static inline MTypeId id{0x115745};
    static void*   creator() { return new compListToObjGrp; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aGroupId, aInGeo, aOutGeo, aInComp;
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Writes vertex colours from an array into a copy of the mesh: the light form of arrayToPointAttribute, made for many
/// colour updates on one mesh. Only the selected vertices are written.
class arrayToPointColor : public MPxNode
{
public:
    static inline MTypeId id{0x11575B};
    static void*   creator() { return new arrayToPointColor; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInGeo, aInRgbaPP, aOutGeo, aInComp, aUseComp, aGroupId, aClamp, aClampMin,
        aClampMax, aSolidAlpha;
};

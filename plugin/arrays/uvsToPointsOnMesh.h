#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Moves points to where their UVs lie on a reference mesh.
class uvsToPointsOnMesh : public MPxNode
{
public:
    static inline MTypeId id{0x1157A8};
    static void*   creator() { return new uvsToPointsOnMesh; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInGeo, aInRefMesh, aInMapPP, aOutGeo, aEnvelope, aMeshUvsFrom, aUvSet, aRefUvSet, aTolerance;
};

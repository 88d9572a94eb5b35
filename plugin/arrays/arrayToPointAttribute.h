#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFnMesh.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

class Subset;

/// Writes positions, vertex normals and vertex colours from arrays into a copy of the geometry. The arrays have the
/// full point count; a subset selects which of their entries are written.
class arrayToPointAttribute : public MPxNode
{
public:
    static inline MTypeId id{0x1157C2};
    static void*   creator() { return new arrayToPointAttribute; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aActive, aInGeo, aInPosPP, aInNormalPP, aInRgbaPP, aOutGeo, aInComp, aUseComp, aGroupId,
        aPositions, aNormals, aColors, aClamp, aClampMin, aClampMax, aSolidAlpha, aPromoteToFaces;

private:
    bool wants(MDataBlock& block, const MObject& switchAttribute, const MObject& array) const;
    void writePositions(MDataBlock& block, MDataHandle& geometry, const Subset& subset, unsigned int pointCount);
    void writeNormals(MDataBlock& block, MFnMesh& mesh, const Subset& subset);
    void writeColors(MDataBlock& block, MFnMesh& mesh, const Subset& subset);
};

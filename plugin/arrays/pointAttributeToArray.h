#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

struct PointArrays;
struct PointSwitches;

/// Publishes what is known per point of a geometry as parallel arrays: ids, positions, rotations, normals, binormals,
/// tangents, colours and UVs, each with a switch of its own. Curves and surfaces are read by way of a mesh that host
/// nodes tessellate during the compute, so their evaluation belongs to the main thread.
class pointAttributeToArray : public MPxNode
{
public:
    static inline MTypeId id{0x115754};
    static void*   creator() { return new pointAttributeToArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInGeo, aInComp, aUseComp, aGroupId, aPrune, aCoordSystem, aPosition, aRotation, aNormal,
        aBinormal, aTangent, aColor, aMap, aColorSet, aUvSet, aRotationOrder, aAvgNormals, aAvgTangents, aAvgBinormals,
        aNormalOffset, aBinormalOffset, aTangentOffset;
    static inline MObject aOutIdPP, aOutPosPP, aOutRotPP, aOutNormalPP, aOutBinormalPP, aOutTangentPP, aOutRgbaPP,
        aOutMapCountPP, aOutMapIdPP, aOutMapPP, aOutSharedMapPP, aOutCount;

private:
    void gather(MDataBlock& block, MDataHandle& geometry, const PointSwitches& on, PointArrays& out) const;
    void gatherVectors(MDataBlock& block, const MObject& vectors, PointArrays& out) const;
    /// The set that is read, empty for the current one. A set that the mesh does not have gives a warning, and way to
    /// the current one.
    MString uvSetInUse(const MObject& mesh, const MString& uvSet) const;
};

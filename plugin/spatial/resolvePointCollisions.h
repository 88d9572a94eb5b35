#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include <vector>

class MDataHandle;

/// Pushes the points of a geometry apart until no two are nearer than a radius, as far as its iterations lead.
class resolvePointCollisions : public MPxNode
{
public:
    static inline MTypeId id{0x1157BE};
    static void*   creator() { return new resolvePointCollisions; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInGeo, aInComp, aInRadiusPP, aOutGeo, aActive, aUseComp, aMaxPointsPerLeaf, aRadius, aIterations,
        aMutual, aRadiusAffectsMass;

private:
    std::vector<int> selected(MDataBlock& block, MDataHandle& geometry, int pointCount);
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include <memory>
#include <vector>

#include "spatial/neighborTree.h"

namespace neighbors {
struct Result;
}

/// For every point of inGeometry2 the nearest points of inGeometry, by count or by radius: their mean position, number,
/// ids and distances, and the mean of a per-point array of theirs.
class kdTree : public MPxNode
{
public:
    static inline MTypeId id{0x1157B9};
    static void*   creator() { return new kdTree; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    MStatus setDependentsDirty(const MPlug& plug, MPlugArray& affected) override;
    MStatus preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode) override;

    static inline MObject aInGeo, aInDataPP, aInGeo2, aInCountPP, aInRadiusPP, aOutGeo, aOutGeo2, aOutDataPP,
        aOutAvgPosPP, aOutCountPP, aOutIdPP, aOutDistancePP, aActive, aMaxPointsPerLeaf, aCount, aRadius,
        aOutputMappingData, aIgnoreOverlapping;

private:
    void    updateTree(MDataBlock& block);
    void    writeMeans(MDataBlock& block, const neighbors::Result& found);
    MStatus writeEmpty(MDataBlock& block);

    bool                       geometryChanged_ = true;
    std::unique_ptr<NeighborTree> tree_;
    int                        leafSize_ = 0;
    std::vector<double>        treePoints_, queries_;   // three values a point
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include <vector>

#include "generators/voronoi.h"

class BorrowedScene;

/// Splits a mesh into the Voronoi cells of a set of points. The host's own polygon nodes do the cutting: they are made,
/// evaluated and deleted in one compute, which therefore belongs to the main thread.
class shatter : public MPxNode
{
public:
    static inline MTypeId id{0x115763};
    static void*   creator() { return new shatter; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInGeo, aInPosPP, aInWorldInverseMatrix, aOutGeo, aAutoEvaluate, aShatterMode, aDistance,
        aCleanup, aStripPointColors, aPrintStatus;

private:
    std::vector<double> cellPoints(MDataBlock& block) const;
    MObject cook(MDataBlock& block, const std::vector<double>& points, const voronoi::Neighbors& neighbors) const;
};

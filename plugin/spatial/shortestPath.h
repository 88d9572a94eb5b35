#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFnMesh.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include <functional>
#include <vector>

#include "spatial/edgePaths.h"

/// Shortest paths along the edges of a mesh between given vertices: as components, as arrays of path points, as curves.
class shortestPath : public MPxNode
{
public:
    static inline MTypeId id{0x1157BD};
    static void*   creator() { return new shortestPath; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aActive, aMode, aExpression, aIntersecting, aObstacles, aMaxSteps, aMaxDistance, aTravel, aColors,
        aColorSet, aInMesh, aInStartComp, aInEndComp, aInMaxStepPP, aInMaxDistancePP, aInObstacleComp, aOutVertexComp,
        aOutEdgeComp, aOutCounts, aOutIndexPP, aOutPosPP, aOutStepPP, aOutDistancePP, aOutRgbaPP, aOutIndexPE, aOutCurves;

private:
    /// False ends the walk through the pairs.
    using Visit = std::function<bool(int start, int end, const paths::Limits&)>;

    void              updateGraph(MFnMesh& mesh, const std::vector<float>& points);
    std::vector<char> obstacles(MDataBlock& block, int vertexCount);
    void              eachPair(MDataBlock& block, int vertexCount, const Visit& visit);
    void writeColors(MDataBlock& block, const MFnMesh* mesh, const std::vector<int>& vertices);
    void writeCurves(const paths::Paths& found, const std::vector<float>& points);

    // Kept as long as the counts stay: the edge lengths of a deforming mesh are those of the shape they were read from.
    int               counts_[3] = {0, 0, 0};   ///< vertices, edges, faces
    paths::EdgeGraph  graph_;
    paths::PathFinder finder_;
};

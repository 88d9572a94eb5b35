#pragma once
#include <maya/MDataBlock.h>
#include <maya/MDoubleArray.h>
#include <maya/MPxNode.h>
#include <maya/MSpace.h>
#include <maya/MTypeId.h>

#include "arrays/pointData.h"
#include "arrays/pointText.h"

struct PointRun;

/// Changes geometry by an artist's MEL texts, run once for each point: one each for position, weight, colour, normal,
/// radius and UV, with a start and an end block around the loop.
///
/// Each evaluation defines the procedures of its blocks anew in the host's one interpreter, which all nodes of this
/// type share, and the texts read the node's own outputs. So the node belongs to the main thread.
class point : public MPxNode
{
public:
    static inline MTypeId id{0x115749};
    static void*   creator() { return new point; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInMsgList, aInMsg, aInGeo, aInGeo2, aOutGeo, aInComp, aUseComp, aGroupId, aTime,
        aCoordSystem, aColorSet, aColorSet2, aUvSet, aUvSet2, aStartBlock, aEndBlock;
    /// By block. Weights and radii are no part of a geometry, so they have no switch for applying.
    static inline MObject aEnable[pointText::kBlockCount], aApply[pointText::kBlockCount],
        aText[pointText::kBlockCount];
    static inline MObject aInWgtPP, aInWgtPP2, aInRgbaPP, aInRgbaPP2, aInNormalPP, aInNormalPP2, aInRadiusPP,
        aInRadiusPP2, aOutIdPP, aOutPosPP, aOutWgtPP, aOutRadiusPP, aOutRgbaPP, aOutNormalPP, aOutMapPP,
        aOutSharedMapPP, aOutIdForMapPP, aOutIdPM, aOutPosPP2, aOutRgbaPP2, aOutNormalPP2, aOutMapPP2,
        aOutSharedMapPP2;

private:
    bool         actsOn(const MPlug& plug, MDataBlock& block) const;
    bool         gather(MDataBlock& block, PointRun& run) const;
    void         publish(MDataBlock& block, const PointRun& run) const;
    void         runBlocks(MDataBlock& block, PointRun& run) const;
    MDoubleArray evaluate(pointText::Block which, MDataBlock& block, const PointRun& run) const;
    MStatus      write(MDataBlock& block, const PointRun& run) const;
    pointText::Source source(pointText::Block which, MDataBlock& block, const PointRun& run) const;
    std::string  plugName(const MObject& attribute) const;
};

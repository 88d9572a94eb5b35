#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include "volumes/boundElement.h"

struct GeometryPoints;
struct TransferResults;
struct TransferSettings;

/// Writes position, weight, colour, normal and radius onto the points of a geometry, from the bounding objects that
/// reach them: each by its falloffs, and where several meet, blended by the kernel.
class attributeTransfer : public MPxNode
{
public:
    static inline MTypeId id{0x115750};
    static void*   creator() { return new attributeTransfer; }
    static MStatus initialize();
    void           postConstructor() override;
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInGeo, aOutGeo, aInWgtPP, aInRgbaPP, aInNormalPP, aInRadiusPP, aOutPosPP,
        aOutWgtPP, aOutRgbaPP, aOutNormalPP, aOutRadiusPP, aUpdate, aUseComp, aInComp, aGroupId, aColorSet,
        aMaxInfluences, aPosition, aWeight, aColor, aNormal, aRadius, aMerge, aBlend, aKernel, aAlphaModulate,
        aSolidAlpha;
    static inline BoundAttributes aBounds;

private:
    TransferSettings readSettings(MDataBlock& block) const;
    void readArrays(MDataBlock& block, const TransferSettings& on, GeometryPoints& points, TransferResults& kept) const;
    void run(MDataBlock& block, TransferResults& results);
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

#include "volumes/boundElement.h"

/// Weights from bounding objects as deformers read them: one a point, or one a point and bounding object.
class multiAttributeTransfer : public MPxNode
{
public:
    static inline MTypeId id{0x115751};
    static void*   creator() { return new multiAttributeTransfer; }
    static MStatus initialize();
    void           postConstructor() override;
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aEnvelope, aInGeo, aOutGeo, aOutWgtList, aOutWgt, aUseComp, aInComp, aGroupId,
        aProcessAll, aMaxInfluences, aMode, aFreePoints, aKernel;
    static inline BoundAttributes aBounds;

private:
    void run(MDataBlock& block);
};

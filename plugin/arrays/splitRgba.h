#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Picks channels out of flat colours or vectors.
class splitRgba : public MPxNode
{
public:
    static inline MTypeId id{0x115777};
    static void*   creator() { return new splitRgba; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray, aOutArray, aInArrayType, aChannel[4];
};

#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Accumulates an array over time. Its state is the value of its own output, so that a frame follows from the frame
/// before; frames can be cached.
class arrayDataContainer : public MPxNode
{
public:
    static inline MTypeId id{0x115761};
    static void*   creator() { return new arrayDataContainer; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInTime, aInArray, aOutArray, aEnvelope, aMode, aSink, aBaseValue, aClamp, aClampMin,
        aClampMax, aStartTime, aEndTime, aCache, aFrameCache;

private:
    /// The array that follows from the previous one at a time.
    MObject nextState(const MPlug& plug, MDataBlock& block, double time, const MObject& previous);
};

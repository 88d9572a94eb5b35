#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// Keeps the first few elements of every so many.
class decimateArray : public MPxNode
{
public:
    static inline MTypeId id{0x1157C6};
    static void*   creator() { return new decimateArray; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray, aOutArray, aStep, aStepA, aStepB;
};

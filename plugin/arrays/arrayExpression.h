#pragma once
#include <maya/MDataBlock.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

#include "arrays/arrayExpressionText.h"

/// Runs an artist's MEL text once for each element of up to five arrays. An output has the element type of its input;
/// all have the length of the longest input.
///
/// The arrays pass through global variables of the host's one interpreter, which all nodes of this type share and which
/// keep their values from one evaluation to the next. So the node belongs to the main thread.
class arrayExpression : public MPxNode
{
public:
    static inline MTypeId id{0x11574A};
    static void*   creator() { return new arrayExpression; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;

    static inline MObject aInArray[arrayExpressionText::kInputCount], aOutArray[arrayExpressionText::kInputCount],
        aInTime, aStartBlock, aExpression, aEndBlock, aAdditional;

private:
    void passOn(MDataBlock& block, int input, arrayExpressionText::Source& source, MFn::Type& type) const;
};

// What mergeArrays and mergeVectorArrays share: a multi of an array and its multiplier, and their sum.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFnData.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include "core/arrays.h"

namespace merged {

struct Attributes
{
    MObject &inArrays, &inArray, &multiplier, &outArray;
};

MStatus declare(const Attributes& attributes, MFnData::Type kind);
/// The sum of the inputs in physical order, as long as the longest one. Inputs of another kind count as empty.
MStatus write(MDataBlock& block, const Attributes& attributes, OutArray::Kind kind);

} // namespace merged

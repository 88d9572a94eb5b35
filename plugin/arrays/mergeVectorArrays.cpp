#include "arrays/mergeVectorArrays.h"

#include <maya/MPlug.h>

#include "arrays/mergedArrays.h"
#include "core/node.h"

MStatus mergeVectorArrays::initialize()
{
    return merged::declare({aInArrays, aInArray, aMultiplier, aOutArray}, MFnData::kVectorArray);
}

MStatus mergeVectorArrays::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;
    return merged::write(block, {aInArrays, aInArray, aMultiplier, aOutArray}, OutArray::kVectors);
}

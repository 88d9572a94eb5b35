#include "arrays/multiToArray.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

MStatus multiToArray::initialize()
{
    const attr::Row weights =
        attr::multi(attr::numeric(aWeights, "weights", "w", MFnNumericData::kDouble, 0.0, attr::kStored));
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::multi(attr::compound(aInWeightList, "inWeightList", "iwl", {weights}, attr::kStored)),
        attr::typed(aOutArray, "outArray", "oa", MFnData::kDoubleArray, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus multiToArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kUnknownParameter;
    if (!block.inputValue(aEnvelope).asBool())                           // switch
        return publishEmpty(block, aOutArray, OutArray::kDoubles);

    MArrayDataHandle lists = block.inputArrayValue(aInWeightList);       // work
    if (!lists.jumpToArrayElement(0))
        return MS::kUnknownParameter;
    MArrayDataHandle   weights(lists.inputValue().child(aWeights));
    const unsigned int count = weights.elementCount();
    OutArray           out(OutArray::kDoubles);
    double*            value = out.resize(count);
    for (unsigned int i = 0; i < count; ++i) {                           // gaps between logical indices go
        weights.jumpToArrayElement(i);
        value[i] = weights.inputValue().asDouble();
    }
    return out.publish(block, aOutArray);                                // write
}

#include "arrays/arrayToMulti.h"

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

/// Takes away the elements of the first indices, as many as there are elements: what lies past a gap may stay.
MStatus clearList(MDataBlock& block, const MObject& list)
{
    MArrayDataHandle   elements = block.outputArrayValue(list);
    MArrayDataBuilder  builder = elements.builder();
    const unsigned int count = elements.elementCount();
    for (unsigned int i = count; i-- > 0;)   // from the end, where nothing has to move up
        builder.removeElement(i);
    return elements.set(builder);
}

} // namespace

MStatus arrayToMulti::initialize()
{
    const attr::Row weight =
        attr::multi(attr::numeric(aWeight, "weight", "w", MFnNumericData::kDouble, 0.0, attr::kOutput));
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::typed(aInWeightPP, "inWeightPP", "iwpp", MFnData::kDoubleArray, attr::kInput),
        attr::multi(attr::compound(aOutWeightList, "outWeightList", "owl", {weight}, attr::kOutput)),
    };
    const MStatus status = attr::declare(rows);
    attributeAffects(aEnvelope, aWeight);
    attributeAffects(aInWeightPP, aWeight);
    return status;
}

MStatus arrayToMulti::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutWeightList && plug != aWeight)                       // plug test
        return MS::kUnknownParameter;
    if (!block.inputValue(aEnvelope).asBool())                           // switch
        return clearList(block, aOutWeightList);

    const ArrayView in = viewArray(block, aInWeightPP, {MFn::kDoubleArrayData});   // work
    MPlug           weights(thisMObject(), aWeight);
    weights.selectAncestorLogicalIndex(0, aOutWeightList);
    MDataHandle       handle = weights.constructHandle(block);
    MArrayDataHandle  elements(handle);
    MArrayDataBuilder builder = elements.builder();
    builder.growArray(in.length);
    for (unsigned int i = 0; i < in.length; ++i)
        builder.addElement(i).setDouble(in.doubles[i]);
    elements.set(builder);

    const MStatus status = weights.setValue(handle);                     // write
    weights.destructHandle(handle);
    return status;
}

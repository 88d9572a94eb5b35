#include "arrays/combineArrays.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <vector>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

/// The arrays in physical order; the first one of a known kind decides which others are taken.
std::vector<ArrayView> arraysOfOneKind(MArrayDataHandle& elements)
{
    std::vector<ArrayView> arrays;
    const unsigned int     count = elements.elementCount();
    for (unsigned int i = 0; i < count; ++i) {
        elements.jumpToArrayElement(i);
        const ArrayView array = viewArray(elements.inputValue().data());
        if (array.isOneOf({MFn::kDoubleArrayData, MFn::kVectorArrayData, MFn::kIntArrayData}) &&
            (arrays.empty() || array.kind == arrays[0].kind))
            arrays.push_back(array);
    }
    return arrays;
}

} // namespace

MStatus combineArrays::initialize()
{
    const auto  kinds = {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kIntArray};
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::multi(attr::generic(aInArrays, "inArrays", "ias", kinds, attr::kInput)),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        attr::numeric(aOutCount, "outCount", "ocnt", MFnNumericData::kInt, 0.0, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus combineArrays::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray && plug != aOutCount)                          // plug test: one run fills both
        return MS::kSuccess;
    MArrayDataHandle elements = block.inputArrayValue(aInArrays);
    if (!block.inputValue(aEnvelope).asBool() || elements.elementCount() == 0)   // switch: the old value stays
        return MS::kSuccess;

    std::vector<ArrayView> arrays = arraysOfOneKind(elements);           // work
    std::size_t            length = 0;
    for (const ArrayView& array : arrays)
        length += array.length;
    OutArray out = arrays.empty() ? OutArray(OutArray::kDoubles) : OutArray::like(arrays[0]);
    if (!arrays.empty() && !lengthFits(plug, length, arrays[0].stride)) {
        arrays.clear();
        length = 0;
    }
    if (!arrays.empty()) {
        withValues(arrays[0], [&](auto* ofKind) {
            std::remove_const_t<std::remove_pointer_t<decltype(ofKind)>>* to = nullptr;
            out.resize(static_cast<unsigned int>(length), to);
            for (const ArrayView& array : arrays)
                withValues(array, [&](const auto* from) { to = std::copy_n(from, array.valueCount(), to); });
        });
    }
    const MStatus status = out.publish(block, aOutArray);                // write
    MPlug(thisMObject(), aOutCount).setInt(static_cast<int>(length));
    return status;
}

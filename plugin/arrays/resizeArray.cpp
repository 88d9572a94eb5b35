#include "arrays/resizeArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

MStatus resizeArray::initialize()
{
    const auto  kinds = {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kIntArray};
    const attr::Row rows[] = {
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        attr::atLeast(attr::numeric(aLength, "length", "l", MFnNumericData::kInt, 0.0, attr::kControl), 0.0),
    };
    return attr::declare(rows);
}

MStatus resizeArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;
    const ArrayView in = viewArray(block, aInArray,
                                   {MFn::kDoubleArrayData, MFn::kVectorArrayData, MFn::kIntArrayData});
    if (in.kind == MFn::kInvalid)                                        // another kind: the old value stays
        return MS::kSuccess;

    auto length = static_cast<unsigned int>(std::max(block.inputValue(aLength).asInt(), 0));   // work
    if (!lengthFits(plug, length, in.stride))
        length = 0;
    OutArray out = OutArray::like(in);
    withValues(in, [&](auto* from) {
        std::remove_const_t<std::remove_pointer_t<decltype(from)>>* to = nullptr;
        out.resize(length, to);
        const std::size_t wanted = std::size_t(length) * in.stride, kept = std::min(wanted, in.valueCount());
        std::fill_n(std::copy_n(from, kept, to), wanted - kept, 0);
    });
    return out.publish(block, aOutArray);                                // write
}

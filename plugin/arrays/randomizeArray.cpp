#include "arrays/randomizeArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <string>
#include <vector>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

enum Operation : short { kAdd, kMultiply };

bool allZero(const steps::RandomRange& range, std::size_t components)
{
    return std::all_of(range.min, range.min + components, [](double v) { return v == 0.0; }) &&
           std::all_of(range.max, range.max + components, [](double v) { return v == 0.0; });
}

} // namespace

MStatus randomizeArray::initialize()
{
    const auto kinds = {MFnData::kIntArray, MFnData::kFloatArray, MFnData::kDoubleArray, MFnData::kVectorArray};
    std::vector<attr::Row> rows = {
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        attr::enumeration(aOperation, "operation", "op", {{"add", kAdd}, {"multiply", kMultiply}}, kAdd, attr::kControl),
        attr::numeric(aSeed, "seed", "seed", MFnNumericData::kInt, 12345.0, attr::kControl),
    };
    const auto range = [&](MObject* attributes, const std::string& longName, const std::string& shortName) {
        for (int c = 0; c < 3; ++c)
            rows.push_back(attr::numeric(attributes[c], (longName + "XYZ"[c]).c_str(), (shortName + "xyz"[c]).c_str(),
                                         MFnNumericData::kFloat, 0.0, attr::kControl));
    };
    range(aRandomMin, "randomMin", "rmn");
    range(aRandomMax, "randomMax", "rmx");
    return attr::declare(rows.data(), rows.size());
}

MStatus randomizeArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;
    const ArrayView in = viewArray(block, aInArray, {MFn::kIntArrayData, MFn::kFloatArrayData, MFn::kDoubleArrayData,
                                                     MFn::kVectorArrayData});
    if (in.kind == MFn::kInvalid)                                        // another kind: the old value stays
        return MS::kSuccess;

    steps::RandomRange range;                                            // work
    range.multiply = block.inputValue(aOperation).asShort() == kMultiply;
    for (int c = 0; c < 3; ++c) {
        range.min[c] = block.inputValue(aRandomMin[c]).asFloat();
        range.max[c] = std::max<double>(range.min[c], block.inputValue(aRandomMax[c]).asFloat());
    }
    const int  seed = block.inputValue(aSeed).asInt();
    const bool same = allZero(range, in.stride);
    OutArray   out = OutArray::like(in);
    withValues(in, [&](auto* from) {
        std::remove_const_t<std::remove_pointer_t<decltype(from)>>* to = nullptr;
        out.resize(in.length, to);
        if (same)
            std::copy_n(from, in.valueCount(), to);
        else
            steps::randomize(range, seed, from, in.valueCount(), in.stride, to);
    });
    return out.publish(block, aOutArray);                                // write
}

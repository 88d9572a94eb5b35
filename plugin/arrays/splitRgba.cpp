#include "arrays/splitRgba.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

enum InArrayType : short { kRgb, kRgba };

/// Values a colour for so many values; 0 if they make no whole colours. The type decides where both would do.
std::size_t strideOf(std::size_t valueCount, bool rgba)
{
    const bool threes = valueCount % 3 == 0, fours = valueCount % 4 == 0;
    if (threes && fours)
        return rgba ? 4 : 3;
    return threes ? 3 : fours ? 4 : 0;
}

} // namespace

MStatus splitRgba::initialize()
{
    const auto channel = [](int i, const char* longName, const char* shortName) {
        return attr::numeric(aChannel[i], longName, shortName, MFnNumericData::kBoolean, 0.0, attr::kControl);
    };
    const attr::Row rows[] = {
        attr::generic(aInArray, "inArray", "ia", {MFnData::kDoubleArray, MFnData::kVectorArray}, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", {MFnData::kDoubleArray}, attr::kOutput),
        attr::enumeration(aInArrayType, "inArrayType", "iat", {{"rgb", kRgb}, {"rgba", kRgba}}, kRgb, attr::kControl),
        channel(0, "red", "r"),
        channel(1, "green", "g"),
        channel(2, "blue", "b"),
        channel(3, "alpha", "a"),
    };
    return attr::declare(rows);
}

MStatus splitRgba::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kUnknownParameter;

    const ArrayView   in = viewArray(block, aInArray, {MFn::kDoubleArrayData, MFn::kVectorArrayData});   // work
    const std::size_t stride = strideOf(in.valueCount(), block.inputValue(aInArrayType).asShort() == kRgba);
    const std::size_t elements = stride > 0 ? in.valueCount() / stride : 0;
    std::size_t       chosen[4], chosenCount = 0;
    for (std::size_t c = 0; c < stride; ++c)
        if (block.inputValue(aChannel[c]).asBool())
            chosen[chosenCount++] = c;
    if (!lengthFits(plug, elements * chosenCount, 1))
        return publishEmpty(block, aOutArray, OutArray::kDoubles);
    OutArray out(OutArray::kDoubles);
    double*  to = out.resize(static_cast<unsigned int>(elements * chosenCount));
    steps::pickChannels(in.doubles, elements, stride, chosen, chosenCount, to);
    return out.publish(block, aOutArray);                                // write
}

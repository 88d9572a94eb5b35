#include "arrays/mergedArrays.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>

#include <algorithm>
#include <vector>

#include "arrays/arraySteps.h"
#include "core/attr.h"

namespace merged {

MStatus declare(const Attributes& a, MFnData::Type kind)
{
    const attr::Row array = attr::typed(a.inArray, "inArray", "ia", kind, attr::kInput);
    const attr::Row multiplier = attr::notConnectable(
        attr::numeric(a.multiplier, "multiplier", "mult", MFnNumericData::kFloat, 1.0, attr::kControl));
    const attr::Row rows[] = {
        attr::multi(attr::compound(a.inArrays, "inArrays", "ias", {array, multiplier}, attr::kStored)),
        attr::typed(a.outArray, "outArray", "oa", kind, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus write(MDataBlock& block, const Attributes& attributes, OutArray::Kind kind)
{
    struct Input { ArrayView array; double multiplier; };
    std::vector<Input> inputs;
    unsigned int       length = 0;
    MArrayDataHandle   elements = block.inputArrayValue(attributes.inArrays);
    const unsigned int count = elements.elementCount();
    for (unsigned int i = 0; i < count; ++i) {
        elements.jumpToArrayElement(i);
        MDataHandle     element = elements.inputValue();
        const ArrayView array = viewArray(element.child(attributes.inArray).data());
        if (array.kind != MFn::Type(kind))
            continue;
        inputs.push_back({array, element.child(attributes.multiplier).asFloat()});
        length = std::max(length, array.length);
    }

    OutArray          out(kind);
    double*           sum = out.resize(length);
    const std::size_t n = std::size_t(length) * (kind == OutArray::kVectors ? 3 : 1);
    constexpr std::size_t kBlock = 4096;   // what stays in the cache while all inputs go in
    for (std::size_t from = 0; from < n; from += kBlock) {
        const std::size_t to = std::min(from + kBlock, n);
        const auto inBlock = [&](const Input& in) { return std::clamp(in.array.valueCount(), from, to) - from; };
        const std::size_t first = inputs.empty() ? 0 : inBlock(inputs[0]);
        if (first > 0)
            steps::setScaled(inputs[0].array.doubles + from, first, inputs[0].multiplier, sum + from);
        std::fill(sum + from + first, sum + to, 0.0);
        for (std::size_t k = 1; k < inputs.size(); ++k)
            if (const std::size_t count = inBlock(inputs[k]))
                steps::addScaled(inputs[k].array.doubles + from, count, inputs[k].multiplier, sum + from);
    }
    return out.publish(block, attributes.outArray);
}

} // namespace merged

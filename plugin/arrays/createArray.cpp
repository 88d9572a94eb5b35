#include "arrays/createArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <string>
#include <vector>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"

namespace {

enum OutputType : short { kInt, kDouble, kUv, kXyz, kVector, kRgba };

/// Values of X, Y, Z, W that an element has, and elements of the array that it makes.
struct Layout
{
    OutArray::Kind kind;
    unsigned int   channels, entries;
};

Layout layoutOf(short outputType)
{
    switch (outputType) {
    case kDouble: return {OutArray::kDoubles, 1, 1};
    case kUv:     return {OutArray::kDoubles, 2, 2};
    case kXyz:    return {OutArray::kDoubles, 3, 3};
    case kVector: return {OutArray::kVectors, 3, 1};
    case kRgba:   return {OutArray::kDoubles, 4, 4};
    default:      return {OutArray::kInts, 1, 1};
    }
}

/// Elements of equal values.
template <class T>
void fillEqual(const double* values, unsigned int channels, unsigned int length, T* out)
{
    T element[4];
    std::transform(values, values + channels, element, steps::stored<T>);
    for (unsigned int i = 0; i < length; ++i)
        out = std::copy_n(element, channels, out);
}

/// Elements along the ramps, from 0 up to just short of 1.
template <class T>
void fillAlong(const Ramp& xyz, const Ramp& w, unsigned int channels, unsigned int length, T* out)
{
    const double step = 1.0 / length;
    const bool   fixedXyz = xyz.entryCount() == 1, fixedW = w.entryCount() == 1;
    for (unsigned int i = 0; i < length; ++i, out += channels) {
        const auto   at = static_cast<float>(i * step);
        const MColor color = xyz.color(fixedXyz ? 0.0f : at);
        for (unsigned int c = 0; c < std::min(channels, 3u); ++c)
            out[c] = steps::stored<T>(color[c]);
        if (channels == 4)
            out[3] = steps::stored<T>(w.value(fixedW ? 0.0f : at));
    }
}

} // namespace

MStatus createArray::initialize()
{
    std::vector<attr::Row> rows = {
        attr::generic(aOutArray, "outArray", "oa", {MFnData::kIntArray, MFnData::kDoubleArray, MFnData::kVectorArray},
                      attr::kOutput),
        attr::enumeration(aOutputType, "outputType", "ot",
                          {{"1 integer", kInt}, {"1 double", kDouble}, {"2 doubles (UV)", kUv},
                           {"3 doubles (XYZ/RGB)", kXyz}, {"vector (XYZ/RGB)", kVector}, {"4 doubles (RGBA)", kRgba}},
                          kInt, attr::kControl),
        attr::atLeast(attr::numeric(aLength, "length", "l", MFnNumericData::kInt, 0.0, attr::kControl), 0.0),
    };
    for (int c = 0; c < 4; ++c)
        rows.push_back(attr::numeric(aDefaultValue[c], ("defaultValue" + std::string(1, "XYZW"[c])).c_str(),
                                     ("dv" + std::string(1, "xyzw"[c])).c_str(), MFnNumericData::kDouble, 0.0,
                                     attr::kControl));
    rows.push_back(attr::numeric(aUseRamps, "useRamps", "ur", MFnNumericData::kBoolean, 0.0, attr::kControl));
    rows.push_back(attr::colorRamp(aRampXyz, "rampDefaultValueXYZ", "rxyz", attr::kStored));
    rows.push_back(attr::curveRamp(aRampW, "rampDefaultValueW", "rw", attr::kStored));
    return attr::declare(rows.data(), rows.size());
}

void createArray::postConstructor()
{
    fillRamp(thisMObject(), aRampXyz, {ColorKey{0.0f, MColor(0, 0, 0, 1)}, ColorKey{1.0f, MColor(1, 1, 1, 1)}});
    fillRamp(thisMObject(), aRampW, {CurveKey{0.0f, 0.0f}, CurveKey{1.0f, 1.0f}});
}

MStatus createArray::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (state == kHasNoEffect || plug != aOutArray)                      // plug test
        return MS::kSuccess;

    const Layout layout = layoutOf(block.inputValue(aOutputType).asShort());   // work
    auto         length = static_cast<unsigned int>(std::max(block.inputValue(aLength).asInt(), 0));
    if (!lengthFits(plug, length, layout.channels))
        length = 0;
    const bool ramps = block.inputValue(aUseRamps).asBool();
    OutArray   out(layout.kind);
    const auto fill = [&](auto* values) {
        out.resize(length * layout.entries, values);
        if (ramps)
            return fillAlong(Ramp(thisMObject(), aRampXyz), Ramp(thisMObject(), aRampW), layout.channels, length, values);
        double equal[4];
        for (int c = 0; c < 4; ++c)
            equal[c] = block.inputValue(aDefaultValue[c]).asDouble();
        fillEqual(equal, layout.channels, length, values);
    };
    if (layout.kind == OutArray::kInts)
        fill(static_cast<int*>(nullptr));
    else
        fill(static_cast<double*>(nullptr));
    return out.publish(block, aOutArray);                                // write
}

#include "arrays/remapArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"

namespace {

enum OutType : short { kDouble, kVector, kPoint, kInt };

constexpr unsigned int kBlock = 1024;   ///< elements that are worked on at a time, so that no whole copy is made

/// Calls f(flat values, first, count) for one run of values after the other, with what the remap made of them. The runs
/// stand where room(first, count) says, or where it gives null in memory of their own.
template <class Room, class F>
void eachRun(const ArrayView& in, const steps::Remap& remap, Room&& room, F&& f)
{
    double            own[3 * kBlock];
    const std::size_t stride = flatStride(in);
    for (unsigned int from = 0; from < in.length; from += kBlock) {
        const unsigned int count = std::min(kBlock, in.length - from);
        double*            place = room(from * stride, count * stride);
        double*            run = place ? place : own;
        flatten(in, from, count, run);
        steps::remap(remap, run, count * stride);
        f(run, from * stride, count * stride);
    }
}

/// Values through the ramp, with `scale` to get to its 0 to 1. A scalar takes the red of its colour; X, Y and Z take red,
/// green and blue, each of the colour at its own value.
void throughRamp(const Ramp& ramp, double scale, bool vectors, double* values, std::size_t n)
{
    const auto at = [&](std::size_t i) { return static_cast<float>(values[i] * scale); };
    if (!vectors) {
        float position[3 * kBlock];
        for (std::size_t i = 0; i < n; ++i)
            position[i] = at(i);
        ramp.values(position, n, position);
        std::copy_n(position, n, values);
        return;
    }
    for (std::size_t i = 0; i < n; i += 3) {
        const float r = ramp.color(at(i)).r, g = ramp.color(at(i + 1)).g, b = ramp.color(at(i + 2)).b;
        values[i] = r;
        values[i + 1] = g;
        values[i + 2] = b;
    }
}

/// Takes flat values in as elements of one kind. Values that make no whole element are lost.
class Writer
{
public:
    Writer(short type, std::size_t valueCount) : type_(type), out_(kindOf(type)), whole_(valueCount)
    {
        if (type == kVector || type == kPoint)
            whole_ -= whole_ % 3;
        const auto length = static_cast<unsigned int>(type == kVector || type == kPoint ? whole_ / 3 : whole_);
        if (type == kInt)
            ints_ = out_.resizeInts(length);
        else
            doubles_ = out_.resize(length);
    }
    /// Where a run may be put together in place; null if it is to be put. Runs begin at multiples of three.
    double* room(std::size_t first, std::size_t n)
    {
        return (type_ == kInt || type_ == kPoint || first + n > whole_) ? nullptr : doubles_ + first;
    }
    void put(const double* values, std::size_t first, std::size_t n)
    {
        n = first < whole_ ? std::min(n, whole_ - first) : 0;
        if (type_ == kInt) {
            std::transform(values, values + n, ints_ + first, steps::toInt);
        } else if (type_ == kPoint) {
            double* to = doubles_ + first / 3 * 4;
            for (std::size_t i = 0; i < n; i += 3) {
                to = std::copy_n(values + i, 3, to);
                *to++ = 1.0;
            }
        } else if (values != doubles_ + first) {
            std::copy_n(values, n, doubles_ + first);
        }
    }
    MStatus publish(MDataBlock& block, const MObject& attribute) const { return out_.publish(block, attribute); }

private:
    static OutArray::Kind kindOf(short type)
    {
        switch (type) {
        case kVector: return OutArray::kVectors;
        case kPoint:  return OutArray::kPoints;
        case kInt:    return OutArray::kInts;
        default:      return OutArray::kDoubles;
        }
    }

    short       type_;
    OutArray    out_;
    std::size_t whole_;   ///< values that belong to whole elements
    double*     doubles_ = nullptr;
    int*        ints_ = nullptr;
};

} // namespace

MStatus remapArray::initialize()
{
    const auto kinds = {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kPointArray, MFnData::kIntArray};
    const auto toggle = [](MObject& attribute, const char* longName, const char* shortName) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kBoolean, 0.0, attr::kControl);
    };
    const auto real = [](MObject& attribute, const char* longName, const char* shortName, double value) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kDouble, value, attr::kControl);
    };
    const attr::Row rows[] = {
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        toggle(aAbsolute, "absolute", "a"),
        toggle(aShift, "shift", "s"),
        real(aShiftValue, "shiftValue", "sv", 0.0),
        toggle(aRemap, "remap", "r"),
        real(aRemapMin, "remapMin", "rmn", 0.0),
        real(aRemapMax, "remapMax", "rmx", 1.0),
        toggle(aUseRamp, "useRamp", "ur"),
        attr::colorRamp(aRamp, "ramp", "ramp", attr::kStored),
        toggle(aClamp, "clamp", "c"),
        real(aClampMin, "clampMin", "cmn", 0.0),
        real(aClampMax, "clampMax", "cmx", 1.0),
        attr::enumeration(aOutArrayType, "outArrayType", "oat",
                          {{"Double", kDouble}, {"Vector", kVector}, {"Point", kPoint}, {"Int", kInt}}, kDouble,
                          attr::kControl),
    };
    return attr::declare(rows);
}

void remapArray::postConstructor()
{
    fillRamp(thisMObject(), aRamp, {ColorKey{0.0f, MColor(1, 1, 1, 1)}, ColorKey{1.0f, MColor(0, 0, 0, 1)}});
}

MStatus remapArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;

    const ArrayView in = viewArray(block, aInArray, {MFn::kDoubleArrayData, MFn::kVectorArrayData, MFn::kPointArrayData,
                                                     MFn::kIntArrayData});   // work
    const bool      vectors = flatStride(in) == 3;
    steps::Remap    remap;
    remap.absolute = block.inputValue(aAbsolute).asBool();
    remap.shift = block.inputValue(aShift).asBool();
    remap.shiftValue = block.inputValue(aShiftValue).asDouble();
    remap.remap = block.inputValue(aRemap).asBool();
    remap.min = block.inputValue(aRemapMin).asDouble();
    remap.max = block.inputValue(aRemapMax).asDouble();
    const bool   useRamp = block.inputValue(aUseRamp).asBool();
    const bool   clamp = block.inputValue(aClamp).asBool();
    const double low = block.inputValue(aClampMin).asDouble(), high = block.inputValue(aClampMax).asDouble();

    Ramp   ramp;
    double largest = 0.0;
    if (useRamp) {
        ramp = Ramp(thisMObject(), aRamp);
        const auto nowhere = [](std::size_t, std::size_t) -> double* { return nullptr; };
        eachRun(in, remap, nowhere, [&](const double* values, std::size_t, std::size_t n) {
            largest = steps::largest(values, n, vectors, largest);
        });
    }
    const double scale = 1.0 / largest;   // of zeros alone: they are then looked up at no number
    Writer       out(block.inputValue(aOutArrayType).asShort(), std::size_t(in.length) * flatStride(in));
    const auto   room = [&](std::size_t first, std::size_t n) { return out.room(first, n); };
    eachRun(in, remap, room, [&](double* values, std::size_t first, std::size_t n) {
        if (useRamp)
            throughRamp(ramp, scale, vectors, values, n);
        if (clamp)
            steps::clamp(low, high, values, n);
        out.put(values, first, n);
    });
    return out.publish(block, aOutArray);                                // write
}

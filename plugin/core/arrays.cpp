#include "core/arrays.h"

#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <algorithm>

#include "core/node.h"

static_assert(sizeof(MVector) == 3 * sizeof(double) && sizeof(MPoint) == 4 * sizeof(double));

namespace {

// array() is an alias of the values in the data object; the address of its first element stays good as long as that
// object lives and is not written to.
template <class FunctionSet>
auto* firstOf(const MObject& data, unsigned int& length)
{
    MObject     object = data;
    FunctionSet fn(object);
    auto        array = fn.array();
    length = array.length();
    return length > 0 ? &array[0] : nullptr;
}

template <class FunctionSet>
auto* resized(const MObject& data, unsigned int length)
{
    MObject     object = data;
    FunctionSet fn(object);
    auto        array = fn.array();
    array.setLength(length);
    return length > 0 ? &array[0] : nullptr;
}

MObject newArray(OutArray::Kind kind)
{
    switch (kind) {
    case OutArray::kDoubles: return MFnDoubleArrayData().create();
    case OutArray::kInts:    return MFnIntArrayData().create();
    case OutArray::kPoints:  return MFnPointArrayData().create();
    case OutArray::kVectors: return MFnVectorArrayData().create();
    case OutArray::kFloats:  return MFnFloatArrayData().create();
    }
    return MObject::kNullObj;
}

} // namespace

ArrayView viewArray(const MObject& data)
{
    ArrayView view;
    view.data = data;
    view.kind = data.apiType();
    view.stride = 1;
    switch (view.kind) {
    case MFn::kDoubleArrayData: view.doubles = firstOf<MFnDoubleArrayData>(data, view.length); break;
    case MFn::kIntArrayData:    view.ints = firstOf<MFnIntArrayData>(data, view.length); break;
    case MFn::kFloatArrayData:  view.floats = firstOf<MFnFloatArrayData>(data, view.length); break;
    case MFn::kVectorArrayData:
        if (const MVector* first = firstOf<MFnVectorArrayData>(data, view.length))
            view.doubles = &first->x;
        view.stride = 3;
        break;
    case MFn::kPointArrayData:
        if (const MPoint* first = firstOf<MFnPointArrayData>(data, view.length))
            view.doubles = &first->x;
        view.stride = 4;
        break;
    default:
        view.kind = MFn::kInvalid;
        view.stride = 0;
    }
    return view;
}

ArrayView viewArray(MDataBlock& block, const MObject& attribute)
{
    return viewArray(block.inputValue(attribute).data());
}

ArrayView viewArray(MDataBlock& block, const MObject& attribute, std::initializer_list<MFn::Type> kinds)
{
    ArrayView array = viewArray(block, attribute);
    return array.isOneOf(kinds) ? array : ArrayView();
}

bool ArrayView::isOneOf(std::initializer_list<MFn::Type> kinds) const
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

unsigned int flatStride(const ArrayView& array)
{
    return std::min(array.stride, 3u);
}

void flatten(const ArrayView& array, unsigned int first, unsigned int count, double* out)
{
    if (array.kind == MFn::kPointArrayData) {
        const double* p = array.doubles + 4 * std::size_t(first);
        for (unsigned int i = 0; i < count; ++i, p += 4, out += 3)
            std::copy_n(p, 3, out);
        return;
    }
    const std::size_t n = std::size_t(count) * array.stride;
    withValues(array, [&](const auto* values) { std::copy_n(values + std::size_t(first) * array.stride, n, out); });
}

bool lengthFits(const MPlug& plug, std::size_t length, unsigned int stride)
{
    if (length <= kMaxValues / stride)
        return true;
    MString text = ": An array of ";
    text += static_cast<double>(length);
    warn(plug, text + " elements is too long.");
    return false;
}

OutArray::OutArray(Kind kind) : kind_(kind), data_(newArray(kind)) {}

double* OutArray::resize(unsigned int length)
{
    if (kind_ == kVectors) {
        MVector* first = resized<MFnVectorArrayData>(data_, length);
        return first ? &first->x : nullptr;
    }
    if (kind_ == kPoints) {
        MPoint* first = resized<MFnPointArrayData>(data_, length);
        return first ? &first->x : nullptr;
    }
    return kind_ == kDoubles ? resized<MFnDoubleArrayData>(data_, length) : nullptr;
}

int* OutArray::resizeInts(unsigned int length)
{
    return kind_ == kInts ? resized<MFnIntArrayData>(data_, length) : nullptr;
}

float* OutArray::resizeFloats(unsigned int length)
{
    return kind_ == kFloats ? resized<MFnFloatArrayData>(data_, length) : nullptr;
}

MStatus OutArray::publish(MDataBlock& block, const MObject& attribute) const
{
    return block.outputValue(attribute).set(data_);
}

MStatus publishEmpty(MDataBlock& block, const MObject& attribute, OutArray::Kind kind)
{
    return OutArray(kind).publish(block, attribute);
}

// Arrays of numbers, strings, times and objects.
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MInt64Array.h>
#include <maya/MIntArray.h>
#include <maya/MObjectArray.h>
#include <maya/MStringArray.h>
#include <maya/MTimeArray.h>
#include <maya/MUint64Array.h>
#include <maya/MUintArray.h>

#include "math/array_impl.h"

MIRK_INSTANTIATE_ARRAY(int)
MIRK_INSTANTIATE_ARRAY(unsigned int)
MIRK_INSTANTIATE_ARRAY(MInt64)
MIRK_INSTANTIATE_ARRAY(MUint64)
MIRK_INSTANTIATE_ARRAY(float)
MIRK_INSTANTIATE_ARRAY(double)
MIRK_INSTANTIATE_ARRAY(MTime)
MIRK_INSTANTIATE_ARRAY(MString)
MIRK_INSTANTIATE_ARRAY(MObject)

namespace mirk {
MIntArray    aliasOf(Buffer<int>& b) { return aliasAs<MIntArray>(b); }
MUintArray   aliasOf(Buffer<unsigned int>& b) { return aliasAs<MUintArray>(b); }
MInt64Array  aliasOf(Buffer<long long>& b) { return aliasAs<MInt64Array>(b); }
MUint64Array aliasOf(Buffer<unsigned long long>& b) { return aliasAs<MUint64Array>(b); }
MFloatArray  aliasOf(Buffer<float>& b) { return aliasAs<MFloatArray>(b); }
MDoubleArray aliasOf(Buffer<double>& b) { return aliasAs<MDoubleArray>(b); }
MTimeArray   aliasOf(Buffer<MTime>& b) { return aliasAs<MTimeArray>(b); }
MStringArray aliasOf(ElementBuffer<MString>& b) { return aliasAs<MStringArray>(b); }
MObjectArray aliasOf(ElementBuffer<MObject>& b) { return aliasAs<MObjectArray>(b); }
}  // namespace mirk

namespace {

template <class A, class N>
void convertIn(A& array, const N* source, unsigned int count)
{
    if (!source || !array.setLength(count))
        return;
    for (unsigned int i = 0; i < count; ++i)
        array[i] = static_cast<std::decay_t<decltype(array[i])>>(source[i]);
}

template <class A, class N>
MStatus convertOut(const A& array, N* out)
{
    for (unsigned int i = 0, n = array.length(); i < n; ++i)
        out[i] = static_cast<N>(array[i]);
    return MStatus();
}

}  // namespace

MStatus MUintArray::get(int array[]) const { return convertOut(*this, array); }

MFloatArray::MFloatArray(const double source[], unsigned int count) { convertIn(*this, source, count); }
MStatus MFloatArray::get(double array[]) const { return convertOut(*this, array); }

MDoubleArray::MDoubleArray(const float source[], unsigned int count) { convertIn(*this, source, count); }
MStatus MDoubleArray::get(float array[]) const { return convertOut(*this, array); }

int MStringArray::indexOf(const MString& value) const
{
    for (unsigned int i = 0; i < length(); ++i)
        if ((*this)[i] == value)
            return int(i);
    return -1;
}

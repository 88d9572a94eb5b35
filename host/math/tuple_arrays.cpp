// Arrays of vectors, points, colours and matrices.
#include <maya/MColorArray.h>
#include <maya/MFloatMatrixArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MMatrixArray.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include "math/array_impl.h"

MIRK_INSTANTIATE_ARRAY(MVector)
MIRK_INSTANTIATE_ARRAY(MFloatVector)
MIRK_INSTANTIATE_ARRAY(MPoint)
MIRK_INSTANTIATE_ARRAY(MFloatPoint)
MIRK_INSTANTIATE_ARRAY(MColor)
MIRK_INSTANTIATE_ARRAY(MMatrix)
MIRK_INSTANTIATE_ARRAY(MFloatMatrix)

namespace mirk {
MVectorArray      aliasOf(Buffer<MVector>& b) { return aliasAs<MVectorArray>(b); }
MFloatVectorArray aliasOf(Buffer<MFloatVector>& b) { return aliasAs<MFloatVectorArray>(b); }
MPointArray       aliasOf(Buffer<MPoint>& b) { return aliasAs<MPointArray>(b); }
MFloatPointArray  aliasOf(Buffer<MFloatPoint>& b) { return aliasAs<MFloatPointArray>(b); }
MColorArray       aliasOf(Buffer<MColor>& b) { return aliasAs<MColorArray>(b); }
MMatrixArray      aliasOf(Buffer<MMatrix>& b) { return aliasAs<MMatrixArray>(b); }
MFloatMatrixArray aliasOf(Buffer<MFloatMatrix>& b) { return aliasAs<MFloatMatrixArray>(b); }
}  // namespace mirk

namespace {

/// `source` has one constructor argument for each element.
template <class T, class A, class S>
void fill(A& array, const S* source, unsigned int count)
{
    if (!source || !array.setLength(count))
        return;
    for (unsigned int i = 0; i < count; ++i)
        array[i] = T(source[i]);
}

template <class A, class S>
MStatus write(const A& array, S* out)
{
    for (unsigned int i = 0, n = array.length(); i < n; ++i)
        array[i].get(out[i]);
    return MStatus();
}

}  // namespace

#define MIRK_VECTOR_ARRAY(A, T)                                                                    \
    A::A(const double source[][3], unsigned int count) { fill<T>(*this, source, count); }          \
    A::A(const float source[][3], unsigned int count) { fill<T>(*this, source, count); }           \
    MStatus A::get(double array[][3]) const { return write(*this, array); }                        \
    MStatus A::get(float array[][3]) const { return write(*this, array); }                         \
    MStatus A::set(const double element[3], unsigned int index) { return set(T(element), index); } \
    MStatus A::set(const float element[3], unsigned int index) { return set(T(element), index); }

MIRK_VECTOR_ARRAY(MVectorArray, MVector)
MIRK_VECTOR_ARRAY(MFloatVectorArray, MFloatVector)

#define MIRK_POINT_ARRAY(A, T, N)                                                                  \
    A::A(const double source[][4], unsigned int count) { fill<T>(*this, source, count); }          \
    A::A(const float source[][4], unsigned int count) { fill<T>(*this, source, count); }           \
    MStatus A::get(double array[][4]) const { return write(*this, array); }                        \
    MStatus A::get(float array[][4]) const { return write(*this, array); }                         \
    MStatus A::set(const double element[4], unsigned int index) { return set(T(element), index); } \
    MStatus A::set(const float element[4], unsigned int index) { return set(T(element), index); }  \
    MStatus A::set(unsigned int index, N x, N y, N z, N w) { return set(T(x, y, z, w), index); }   \
    MStatus A::append(N x, N y, N z, N w) { return append(T(x, y, z, w)); }

MIRK_POINT_ARRAY(MPointArray, MPoint, double)
MIRK_POINT_ARRAY(MFloatPointArray, MFloatPoint, float)

MColorArray::MColorArray(const float source[][4], unsigned int count) { fill<MColor>(*this, source, count); }
MStatus MColorArray::get(float array[][4]) const { return write(*this, array); }
MStatus MColorArray::set(unsigned int index, float r, float g, float b, float a)
{
    return set(MColor(r, g, b, a), index);
}
MStatus MColorArray::append(float r, float g, float b, float a) { return append(MColor(r, g, b, a)); }

MMatrixArray::MMatrixArray(const double source[][4][4], unsigned int count) { fill<MMatrix>(*this, source, count); }
MStatus MMatrixArray::get(double array[][4][4]) const { return write(*this, array); }
MStatus MMatrixArray::set(const double element[4][4], unsigned int index) { return set(MMatrix(element), index); }

// The function sets on array data: one implementation for the seven element types.
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MMatrixArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>
#include <maya/MVectorArray.h>

#include "data/array_access.h"
#include "data/fn_base.h"

namespace {

using namespace mirk;

template <class D>
unsigned lengthOf(const MObject& object, MStatus* status)
{
    const D* data = objectAs<D>(object);
    return reported(status, data ? MS::kSuccess : MS::kFailure, data ? unsigned(data->buffer->size()) : 0u);
}

template <class D, class T>
T elementOf(const MObject& object, unsigned index)
{
    const D* data = objectAs<D>(object);
    if (!data || index >= data->buffer->size())
        return T();
    return (*std::as_const(data->buffer))[index];
}

template <class D, class T>
T& elementForWrite(const MObject& object, unsigned index)
{
    D* data = objectAs<D>(object);
    if (data && index < data->buffer->size())
        return detach(data->buffer)[index];
    thread_local T lost;
    return lost = T();
}

template <class D, class T>
MStatus setElement(const MObject& object, const T& element, unsigned index)
{
    D* data = objectAs<D>(object);
    if (!data)
        return MS::kFailure;
    if (index >= data->buffer->size())
        return MS::kInvalidParameter;
    const T copy = element;
    detach(data->buffer)[index] = copy;
    return MS::kSuccess;
}

template <class D, class A>
MStatus setAll(const MObject& object, const A& array)
{
    D* data = objectAs<D>(object);
    if (!data)
        return MS::kFailure;
    const auto& source = bufferOf(array);
    if (&source == data->buffer.get())   // its own alias
        return MS::kSuccess;
    auto& target = detach(data->buffer);
    target.resize(source.size());
    std::copy(source.begin(), source.end(), target.begin());
    return MS::kSuccess;
}

template <class D, class A>
MStatus copyAll(const MObject& object, A& array)
{
    const D* data = objectAs<D>(object);
    if (!data)
        return MS::kFailure;
    const auto&    buffer = *std::as_const(data->buffer);
    const unsigned n = unsigned(buffer.size());
    if (ArrayAccess::storage(array) == &buffer)
        return MS::kSuccess;
    array.setLength(n);
    if (n)
        std::copy(buffer.begin(), buffer.end(), &array[0]);
    return MS::kSuccess;
}

// Reading through array() is what everybody does, so it must not detach; writing through it writes what all see that
// share the storage.
template <class D, class A>
A aliasAll(const MObject& object, MStatus* status)
{
    D* data = objectAs<D>(object);
    report(status, data ? MS::kSuccess : MS::kFailure);
    return data ? aliasAs<A>(*data->buffer) : A();
}

template <class D>
MObject createEmpty(MObject& object, MStatus* status)
{
    object = wrap(make<D>());
    return reported(status, MS::kSuccess, object);
}

template <class D, class A>
MObject createFrom(MObject& object, const A& array, MStatus* status)
{
    object = wrap(make<D>(takeOrCopy(array)));
    return reported(status, MS::kSuccess, object);
}

}  // namespace

#define MIRK_ARRAY_FUNCTION_SET(Fn, Data, Array, T, Argument, ApiType)                                                \
    Fn::Fn(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }                          \
    Fn::~Fn() = default;                                                                                              \
    MFn::Type Fn::type() const { return ApiType; }                                                                    \
    unsigned  Fn::length(MStatus* s) const { return lengthOf<Data>(object_, s); }                                     \
    T         Fn::operator[](unsigned index) const { return elementOf<Data, T>(object_, index); }                     \
    MStatus   Fn::set(Argument element, unsigned index) { return setElement<Data, T>(object_, element, index); }      \
    MStatus   Fn::set(const Array& array) { return setAll<Data>(object_, array); }                                    \
    MStatus   Fn::copyTo(Array& array) const { return copyAll<Data>(object_, array); }                                \
    Array     Fn::array(MStatus* s) { return aliasAll<Data, Array>(object_, s); }                                     \
    MObject   Fn::create(MStatus* s) { return createEmpty<Data>(object_, s); }                                        \
    MObject   Fn::create(const Array& array, MStatus* s) { return createFrom<Data>(object_, array, s); }

MIRK_ARRAY_FUNCTION_SET(MFnDoubleArrayData, DoubleArrayData, MDoubleArray, double, double, MFn::kDoubleArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnFloatArrayData, FloatArrayData, MFloatArray, float, float, MFn::kFloatArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnIntArrayData, IntArrayData, MIntArray, int, int, MFn::kIntArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnVectorArrayData, VectorArrayData, MVectorArray, MVector, const MVector&, MFn::kVectorArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnPointArrayData, PointArrayData, MPointArray, MPoint, const MPoint&, MFn::kPointArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnMatrixArrayData, MatrixArrayData, MMatrixArray, MMatrix, const MMatrix&, MFn::kMatrixArrayData)
MIRK_ARRAY_FUNCTION_SET(MFnStringArrayData, StringArrayData, MStringArray, MString, const MString&, MFn::kStringArrayData)

double&  MFnDoubleArrayData::operator[](unsigned index) { return elementForWrite<DoubleArrayData, double>(object_, index); }
float&   MFnFloatArrayData::operator[](unsigned index) { return elementForWrite<FloatArrayData, float>(object_, index); }
int&     MFnIntArrayData::operator[](unsigned index) { return elementForWrite<IntArrayData, int>(object_, index); }
MVector& MFnVectorArrayData::operator[](unsigned index) { return elementForWrite<VectorArrayData, MVector>(object_, index); }
MPoint&  MFnPointArrayData::operator[](unsigned index) { return elementForWrite<PointArrayData, MPoint>(object_, index); }
MMatrix& MFnMatrixArrayData::operator[](unsigned index) { return elementForWrite<MatrixArrayData, MMatrix>(object_, index); }

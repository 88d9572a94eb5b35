// The function sets on single values: strings, matrices, numbers.
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MMatrix.h>
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>

#include "data/fn_base.h"

using namespace mirk;

// --- strings ---------------------------------------------------------------------------------------------------------

MFnStringData::MFnStringData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnStringData::~MFnStringData() = default;
MFn::Type MFnStringData::type() const { return MFn::kStringData; }

MString MFnStringData::string(MStatus* s) const
{
    const StringData* data = objectAs<StringData>(object_);
    report(s, data ? MS::kSuccess : MS::kFailure);
    return data ? MString(data->value.data(), int(data->value.size())) : MString();
}

MStatus MFnStringData::set(const MString& value)
{
    StringData* data = objectAs<StringData>(object_);
    if (!data)
        return MS::kFailure;
    data->value.assign(value.asChar(), value.length());
    return MS::kSuccess;
}

MObject MFnStringData::create(MStatus* s) { return create(MString(), s); }
MObject MFnStringData::create(const MString& value, MStatus* s)
{
    object_ = wrap(make<StringData>(std::string(value.asChar(), value.length())));
    return reported(s, MS::kSuccess, object_);
}

// --- matrices --------------------------------------------------------------------------------------------------------

MFnMatrixData::MFnMatrixData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnMatrixData::~MFnMatrixData() = default;
MFn::Type MFnMatrixData::type() const { return MFn::kMatrixData; }

bool MFnMatrixData::isTransformation(MStatus* s) const
{
    const MatrixData* data = objectAs<MatrixData>(object_);
    return reported(s, data ? MS::kSuccess : MS::kFailure, data && data->transformation);
}

MTransformationMatrix MFnMatrixData::transformation(MStatus* s) const
{
    const MatrixData* data = objectAs<MatrixData>(object_);
    report(s, data ? MS::kSuccess : MS::kFailure);
    if (!data)
        return MTransformationMatrix();
    return data->transformation ? *data->transformation : MTransformationMatrix(MMatrix(data->value));
}

const MMatrix& MFnMatrixData::matrix(MStatus* s) const
{
    static_assert(sizeof(MMatrix) == sizeof(MatrixData::value));
    const MatrixData* data = objectAs<MatrixData>(object_);
    report(s, data ? MS::kSuccess : MS::kFailure);
    return data ? reinterpret_cast<const MMatrix&>(data->value) : MMatrix::identity;
}

MStatus MFnMatrixData::set(const MMatrix& matrix)
{
    MatrixData* data = objectAs<MatrixData>(object_);
    if (!data)
        return MS::kFailure;
    std::memmove(data->value, matrix.matrix, sizeof data->value);   // may be the reference that matrix() gave
    data->transformation = nullptr;
    return MS::kSuccess;
}

MStatus MFnMatrixData::set(const MTransformationMatrix& transformation)
{
    MatrixData* data = objectAs<MatrixData>(object_);
    if (!data)
        return MS::kFailure;
    transformation.asMatrix().get(data->value);
    data->transformation = std::make_shared<const MTransformationMatrix>(transformation);
    return MS::kSuccess;
}

MObject MFnMatrixData::create(MStatus* s)
{
    object_ = wrap(make<MatrixData>());
    return reported(s, MS::kSuccess, object_);
}
MObject MFnMatrixData::create(const MMatrix& matrix, MStatus* s)
{
    create(s);
    set(matrix);
    return object_;
}
MObject MFnMatrixData::create(const MTransformationMatrix& transformation, MStatus* s)
{
    create(s);
    set(transformation);
    return object_;
}

// --- numbers ---------------------------------------------------------------------------------------------------------

MFnNumericData::MFnNumericData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnNumericData::~MFnNumericData() = default;
MFn::Type MFnNumericData::type() const { return MFn::kNumericData; }

MFnNumericData::Type MFnNumericData::numericType(MStatus* s) const
{
    const NumericData* data = objectAs<NumericData>(object_);
    return reported(s, data ? MS::kSuccess : MS::kFailure, data ? data->numericType : MFnNumericData::kInvalid);
}

MObject MFnNumericData::create(MFnNumericData::Type type, MStatus* s)
{
    if (type <= kInvalid || type >= kLast)
        return reported(s, MS::kInvalidParameter, MObject());
    object_ = wrap(make<NumericData>(type));
    return reported(s, MS::kSuccess, object_);
}

namespace {

template <class... T>
MStatus readNumbers(const MObject& object, MFnNumericData::Type type, T&... out)
{
    const NumericData* data = objectAs<NumericData>(object);
    if (!data || data->numericType != type)
        return MS::kFailure;
    const double* v = data->value;
    ((out = static_cast<T>(*v++)), ...);
    return MS::kSuccess;
}

template <class... T>
MStatus writeNumbers(const MObject& object, MFnNumericData::Type type, T... in)
{
    NumericData* data = objectAs<NumericData>(object);
    if (!data || data->numericType != type)
        return MS::kFailure;
    double* v = data->value;
    ((*v++ = static_cast<double>(in)), ...);
    return MS::kSuccess;
}

/// `value` cut to what the type holds, as an assignment does; NaN becomes 0.
template <class T>
T limited(double value)
{
    if constexpr (std::is_same_v<T, bool>)
        return value != 0;
    else if constexpr (std::is_floating_point_v<T>)
        return T(value);
    else if (!(value == value))
        return 0;
    else
        return T(std::clamp(value, double(std::numeric_limits<T>::min()), double(std::numeric_limits<T>::max())));
}

template <class T>
MStatus readNumber(const MObject& object, T& out)
{
    const NumericData* data = objectAs<NumericData>(object);
    if (!data || data->count() != 1)
        return MS::kFailure;
    const bool wide = data->numericType == MFnNumericData::kInt64 || data->numericType == MFnNumericData::kAddr;
    out = limited<T>(wide ? double(data->integer) : data->value[0]);
    return MS::kSuccess;
}

MStatus writeNumber(const MObject& object, double value)
{
    NumericData* data = objectAs<NumericData>(object);
    if (!data || data->count() != 1)
        return MS::kFailure;
    switch (data->numericType) {
    case MFnNumericData::kBoolean: data->value[0] = limited<bool>(value); break;
    case MFnNumericData::kByte:
    case MFnNumericData::kChar:    data->value[0] = limited<signed char>(value); break;
    case MFnNumericData::kShort:   data->value[0] = limited<short>(value); break;
    case MFnNumericData::kInt:     data->value[0] = limited<int>(value); break;
    case MFnNumericData::kFloat:   data->value[0] = limited<float>(value); break;
    case MFnNumericData::kInt64:
    case MFnNumericData::kAddr:    data->integer = limited<int>(value); break;
    default:                       data->value[0] = value;
    }
    return MS::kSuccess;
}

}  // namespace

MStatus MFnNumericData::getData2Short(short& a, short& b) const { return readNumbers(object_, k2Short, a, b); }
MStatus MFnNumericData::getData3Short(short& a, short& b, short& c) const { return readNumbers(object_, k3Short, a, b, c); }
MStatus MFnNumericData::getData2Int(int& a, int& b) const { return readNumbers(object_, k2Int, a, b); }
MStatus MFnNumericData::getData3Int(int& a, int& b, int& c) const { return readNumbers(object_, k3Int, a, b, c); }
MStatus MFnNumericData::getData2Float(float& a, float& b) const { return readNumbers(object_, k2Float, a, b); }
MStatus MFnNumericData::getData3Float(float& a, float& b, float& c) const { return readNumbers(object_, k3Float, a, b, c); }
MStatus MFnNumericData::getData2Double(double& a, double& b) const { return readNumbers(object_, k2Double, a, b); }
MStatus MFnNumericData::getData3Double(double& a, double& b, double& c) const { return readNumbers(object_, k3Double, a, b, c); }
MStatus MFnNumericData::getData4Double(double& a, double& b, double& c, double& d) const
{
    return readNumbers(object_, k4Double, a, b, c, d);
}
MStatus MFnNumericData::setData2Short(short a, short b) { return writeNumbers(object_, k2Short, a, b); }
MStatus MFnNumericData::setData3Short(short a, short b, short c) { return writeNumbers(object_, k3Short, a, b, c); }
MStatus MFnNumericData::setData2Int(int a, int b) { return writeNumbers(object_, k2Int, a, b); }
MStatus MFnNumericData::setData3Int(int a, int b, int c) { return writeNumbers(object_, k3Int, a, b, c); }
MStatus MFnNumericData::setData2Float(float a, float b) { return writeNumbers(object_, k2Float, a, b); }
MStatus MFnNumericData::setData3Float(float a, float b, float c) { return writeNumbers(object_, k3Float, a, b, c); }
MStatus MFnNumericData::setData2Double(double a, double b) { return writeNumbers(object_, k2Double, a, b); }
MStatus MFnNumericData::setData3Double(double a, double b, double c) { return writeNumbers(object_, k3Double, a, b, c); }
MStatus MFnNumericData::setData4Double(double a, double b, double c, double d)
{
    return writeNumbers(object_, k4Double, a, b, c, d);
}

MStatus MFnNumericData::getData(bool& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::getData(char& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::getData(short& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::getData(int& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::getData(float& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::getData(double& value) const { return readNumber(object_, value); }
MStatus MFnNumericData::setData(bool value) { return writeNumber(object_, value); }
MStatus MFnNumericData::setData(char value) { return writeNumber(object_, value); }
MStatus MFnNumericData::setData(short value) { return writeNumber(object_, value); }
MStatus MFnNumericData::setData(int value) { return writeNumber(object_, value); }
MStatus MFnNumericData::setData(float value) { return writeNumber(object_, value); }
MStatus MFnNumericData::setData(double value) { return writeNumber(object_, value); }

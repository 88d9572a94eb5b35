#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MStringArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "api/result_access.h"
#include "data/fn_base.h"
#include "mel/interpreter.h"

using namespace mirk;
using command::Value;

MCommandResult::MCommandResult(MStatus* s) : value_(new ResultValue) { report(s, MS::kSuccess); }
MCommandResult::MCommandResult(const MCommandResult& o) : value_(new ResultValue(*o.value_)) {}
MCommandResult& MCommandResult::operator=(const MCommandResult& o)
{
    *value_ = *o.value_;
    return *this;
}
MCommandResult::~MCommandResult() { delete value_; }

MCommandResult::Type MCommandResult::resultType(MStatus* s) const
{
    report(s, MS::kSuccess);
    switch (value_->value.kind()) {
    case Value::kInt: return kInt;
    case Value::kFloat: return kDouble;
    case Value::kString: return kString;
    case Value::kVector: return kVector;
    case Value::kMatrix: return kMatrix;
    case Value::kInts: return kIntArray;
    case Value::kFloats: return kDoubleArray;
    case Value::kStrings: return kStringArray;
    case Value::kVectors: return kVectorArray;
    default: return kInvalid;
    }
}

MString MCommandResult::stringResult(MStatus* s) const
{
    report(s, MS::kSuccess);
    return MString(value_->value.isNone() ? "" : mel::printed(value_->value).c_str());
}

MStatus MCommandResult::getResult(int& result) const
{
    if (resultType() != kInt)
        return MS::kFailure;
    result = value_->value.asInt();
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(double& result) const
{
    if (resultType() != kDouble && resultType() != kInt)
        return MS::kFailure;
    result = value_->value.asFloat();
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MString& result) const
{
    if (resultType() != kString)
        return MS::kFailure;
    result = MString(value_->value.asString().c_str());
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MVector& result) const
{
    if (resultType() != kVector)
        return MS::kFailure;
    const auto& v = value_->value.get<command::Vec3>();
    result = MVector(v.x, v.y, v.z);
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MMatrix& result) const
{
    if (resultType() != kMatrix)
        return MS::kFailure;
    const auto& m = value_->value.get<command::Matrix>();
    if (m.rows != 4 || m.cols != 4)
        return MS::kFailure;
    for (unsigned i = 0; i < 16; ++i)
        result(i / 4, i % 4) = m.v[i];
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MIntArray& result) const
{
    if (resultType() != kIntArray && resultType() != kInt)
        return MS::kFailure;
    result.clear();
    for (int i : value_->value.asInts())
        result.append(i);
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MDoubleArray& result) const
{
    const Type type = resultType();
    if (type != kDoubleArray && type != kDouble && type != kIntArray && type != kInt)
        return MS::kFailure;
    result.clear();
    for (const command::Floats values = value_->value.asFloats(); double d : std::as_const(*values))
        result.append(d);
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MStringArray& result) const
{
    if (resultType() != kStringArray && resultType() != kString)
        return MS::kFailure;
    result.clear();
    for (const std::string& t : value_->value.asStrings())
        result.append(t.c_str());
    return MS::kSuccess;
}

MStatus MCommandResult::getResult(MVectorArray& result) const
{
    if (resultType() != kVectorArray)
        return MS::kFailure;
    result.clear();
    for (const auto& v : value_->value.get<command::Vectors>())
        result.append(MVector(v.x, v.y, v.z));
    return MS::kSuccess;
}

#pragma once
#include <maya/MStatus.h>
#include <maya/MString.h>

class MDoubleArray;
class MIntArray;
class MMatrix;
class MStringArray;
class MVector;
class MVectorArray;

namespace mirk { struct ResultAccess; struct ResultValue; }

/// What a command gave back.
class MCommandResult
{
public:
    enum Type { kInvalid, kInt, kInt64, kIntArray, kDouble, kDoubleArray, kString, kStringArray, kVector, kVectorArray, kMatrix, kMatrixArray };

    explicit MCommandResult(MStatus* ReturnStatus = nullptr);
    MCommandResult(const MCommandResult& other);
    MCommandResult& operator=(const MCommandResult& other);
    ~MCommandResult();

    Type    resultType(MStatus* ReturnStatus = nullptr) const;
    MString stringResult(MStatus* ReturnStatus = nullptr) const;
    /// kFailure if the result is of another kind.
    MStatus getResult(int& result) const;
    MStatus getResult(double& result) const;
    MStatus getResult(MString& result) const;
    MStatus getResult(MVector& result) const;
    MStatus getResult(MMatrix& result) const;
    MStatus getResult(MIntArray& result) const;
    MStatus getResult(MDoubleArray& result) const;
    MStatus getResult(MStringArray& result) const;
    MStatus getResult(MVectorArray& result) const;

private:
    friend struct mirk::ResultAccess;
    mirk::ResultValue* value_;
};

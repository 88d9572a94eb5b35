#pragma once
#include <maya/MFnAttribute.h>

class MFloatMatrix;
class MMatrix;

/// 4x4 matrices in single or double precision.
class MFnMatrixAttribute : public MFnAttribute
{
public:
    enum Type { kFloat, kDouble };

    MFnMatrixAttribute() = default;
    explicit MFnMatrixAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, Type matrixType = kDouble,
                   MStatus* ReturnStatus = nullptr);
    MMatrix getDefault(MStatus* ReturnStatus = nullptr) const;
    MStatus setDefault(const MMatrix& value);
    MStatus setDefault(const MFloatMatrix& value);
};

#pragma once
#include <maya/MFnData.h>
#include <maya/MMatrix.h>
#include <maya/MTransformationMatrix.h>


/// Function set on matrix data, which holds either a plain matrix or a transformation with its components.
class MFnMatrixData : public MFnData
{
public:
    MFnMatrixData() = default;
    explicit MFnMatrixData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnMatrixData() override;
    MFn::Type type() const override;

    /// True if the data was set from an MTransformationMatrix.
    bool isTransformation(MStatus* ReturnStatus = nullptr) const;
    /// The transformation; one made from the matrix if the data holds a plain matrix.
    MTransformationMatrix transformation(MStatus* ReturnStatus = nullptr) const;
    const MMatrix& matrix(MStatus* ReturnStatus = nullptr) const;
    MStatus set(const MMatrix& matrix);
    MStatus set(const MTransformationMatrix& transformation);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MMatrix& matrix, MStatus* ReturnStatus = nullptr);
    MObject create(const MTransformationMatrix& transformation, MStatus* ReturnStatus = nullptr);
};

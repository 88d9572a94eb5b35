#pragma once
#include <maya/MDoubleArray.h>
#include <maya/MFnData.h>


/// Function set on double array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnDoubleArrayData : public MFnData
{
public:
    MFnDoubleArrayData() = default;
    explicit MFnDoubleArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnDoubleArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    double operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    double& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(double element, unsigned int index);
    MStatus set(const MDoubleArray& array);
    MStatus copyTo(MDoubleArray& array) const;
    MDoubleArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MDoubleArray& array, MStatus* ReturnStatus = nullptr);
};

#pragma once
#include <maya/MFnData.h>
#include <maya/MMatrixArray.h>

class MMatrix;

/// Function set on matrix array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnMatrixArrayData : public MFnData
{
public:
    MFnMatrixArrayData() = default;
    explicit MFnMatrixArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnMatrixArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    MMatrix operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    MMatrix& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(const MMatrix& element, unsigned int index);
    MStatus set(const MMatrixArray& array);
    MStatus copyTo(MMatrixArray& array) const;
    MMatrixArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MMatrixArray& array, MStatus* ReturnStatus = nullptr);
};

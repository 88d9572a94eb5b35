#pragma once
#include <maya/MFnData.h>
#include <maya/MIntArray.h>


/// Function set on int array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnIntArrayData : public MFnData
{
public:
    MFnIntArrayData() = default;
    explicit MFnIntArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnIntArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    int operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    int& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(int element, unsigned int index);
    MStatus set(const MIntArray& array);
    MStatus copyTo(MIntArray& array) const;
    MIntArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MIntArray& array, MStatus* ReturnStatus = nullptr);
};

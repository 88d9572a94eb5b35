#pragma once
#include <maya/MFnData.h>
#include <maya/MPointArray.h>

class MPoint;

/// Function set on point array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnPointArrayData : public MFnData
{
public:
    MFnPointArrayData() = default;
    explicit MFnPointArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnPointArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    MPoint operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    MPoint& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(const MPoint& element, unsigned int index);
    MStatus set(const MPointArray& array);
    MStatus copyTo(MPointArray& array) const;
    MPointArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MPointArray& array, MStatus* ReturnStatus = nullptr);
};

#pragma once
#include <maya/MFloatArray.h>
#include <maya/MFnData.h>


/// Function set on float array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnFloatArrayData : public MFnData
{
public:
    MFnFloatArrayData() = default;
    explicit MFnFloatArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnFloatArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    float operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    float& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(float element, unsigned int index);
    MStatus set(const MFloatArray& array);
    MStatus copyTo(MFloatArray& array) const;
    MFloatArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MFloatArray& array, MStatus* ReturnStatus = nullptr);
};

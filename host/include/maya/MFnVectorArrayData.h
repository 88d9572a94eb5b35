#pragma once
#include <maya/MFnData.h>
#include <maya/MVectorArray.h>

class MVector;

/// Function set on vector array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnVectorArrayData : public MFnData
{
public:
    MFnVectorArrayData() = default;
    explicit MFnVectorArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnVectorArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    MVector operator[](unsigned int index) const;
    /// For writing; a write past the end is lost.
    MVector& operator[](unsigned int index);
    /// kInvalidParameter past the end.
    MStatus set(const MVector& element, unsigned int index);
    MStatus set(const MVectorArray& array);
    MStatus copyTo(MVectorArray& array) const;
    MVectorArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MVectorArray& array, MStatus* ReturnStatus = nullptr);
};

#pragma once
#include <maya/MFnData.h>
#include <maya/MStringArray.h>

class MString;

/// Function set on string array data.
///
/// `array` gives an array that shares the storage of the object: reading copies nothing, writing goes to the object, and
/// copying that array gives a private one. `create(array)`, `set(array)` and `copyTo` copy.
class MFnStringArrayData : public MFnData
{
public:
    MFnStringArrayData() = default;
    explicit MFnStringArrayData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnStringArrayData() override;
    MFn::Type type() const override;

    unsigned int length(MStatus* ReturnStatus = nullptr) const;
    /// The element at the index; a neutral value past the end.
    MString operator[](unsigned int index) const;
    /// kInvalidParameter past the end.
    MStatus set(const MString& element, unsigned int index);
    MStatus set(const MStringArray& array);
    MStatus copyTo(MStringArray& array) const;
    MStringArray array(MStatus* ReturnStatus = nullptr);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MStringArray& array, MStatus* ReturnStatus = nullptr);
};

#pragma once
#include <maya/MFnData.h>
#include <maya/MString.h>

class MDoubleArray;
class MIntArray;
class MStringArray;
class MVectorArray;

/// Function set on an array of named arrays: what particles, emitters, fields and instancers pass around.
///
/// The arrays that `vectorArray` and its like give share the storage of the object: what is written to them goes into
/// the data. Those of `getVectorData` and its like are copies.
class MFnArrayAttrsData : public MFnData
{
public:
    enum Type { kInvalid, kVectorArray, kDoubleArray, kIntArray, kStringArray, kLast };

    MFnArrayAttrsData() = default;
    explicit MFnArrayAttrsData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnArrayAttrsData() override;
    MFn::Type type() const override;

    MObject      create(MStatus* ReturnStatus = nullptr);
    MStatus      clear();
    unsigned int count(MStatus* ReturnStatus = nullptr) const;
    /// Names, in the order in which they were made.
    MStringArray list(MStatus* ReturnStatus = nullptr) const;
    bool         checkArrayExist(const MString arrayName, Type& arrayType, MStatus* ReturnStatus = nullptr) const;

    /// Empty and kInvalidParameter if there is none of that name and kind.
    MVectorArray getVectorData(const MString arrayName, MStatus* ReturnStatus = nullptr) const;
    MDoubleArray getDoubleData(const MString arrayName, MStatus* ReturnStatus = nullptr) const;
    MIntArray    getIntData(const MString arrayName, MStatus* ReturnStatus = nullptr) const;
    MStringArray getStringData(const MString arrayName, MStatus* ReturnStatus = nullptr) const;

    /// Made if missing. A name that stands for an array of another kind gives kInvalidParameter and an array of its own.
    MVectorArray vectorArray(const MString arrayName, MStatus* ReturnStatus = nullptr);
    MDoubleArray doubleArray(const MString arrayName, MStatus* ReturnStatus = nullptr);
    MIntArray    intArray(const MString arrayName, MStatus* ReturnStatus = nullptr);
    MStringArray stringArray(const MString arrayName, MStatus* ReturnStatus = nullptr);
};

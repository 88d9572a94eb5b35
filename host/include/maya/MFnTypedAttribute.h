#pragma once
#include <maya/MFnAttribute.h>

/// Attributes that hold a data object of one kind.
class MFnTypedAttribute : public MFnAttribute
{
public:
    MFnTypedAttribute() = default;
    explicit MFnTypedAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, MFnData::Type type,
                   MObject defaultData = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject create(const MString& fullName, const MString& briefName, const MTypeId& id,
                   MObject defaultData = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MFnData::Type attrType(MStatus* ReturnStatus = nullptr) const;
    MStatus setDefault(MObject defaultData);
    MStatus getDefault(MObject& defaultData) const;
};

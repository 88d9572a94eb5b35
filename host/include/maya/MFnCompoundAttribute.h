#pragma once
#include <maya/MFnAttribute.h>

/// Attributes that group others.
class MFnCompoundAttribute : public MFnAttribute
{
public:
    MFnCompoundAttribute() = default;
    explicit MFnCompoundAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject  create(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = nullptr);
    MStatus  addChild(const MObject& child);
    MStatus  removeChild(const MObject& child);
    unsigned numChildren(MStatus* ReturnStatus = nullptr) const;
    MObject  child(unsigned index, MStatus* ReturnStatus = nullptr) const;
};

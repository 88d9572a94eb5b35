#pragma once
#include <maya/MFnAttribute.h>

/// Attributes without a value, for relations between nodes.
class MFnMessageAttribute : public MFnAttribute
{
public:
    MFnMessageAttribute() = default;
    explicit MFnMessageAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;
    MObject create(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = nullptr);
};

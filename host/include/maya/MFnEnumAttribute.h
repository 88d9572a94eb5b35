#pragma once
#include <maya/MFnAttribute.h>

/// Named short integers.
class MFnEnumAttribute : public MFnAttribute
{
public:
    MFnEnumAttribute() = default;
    explicit MFnEnumAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, short defaultValue = 0,
                   MStatus* ReturnStatus = nullptr);
    MStatus addField(const MString& name, short index);
    MString fieldName(short index, MStatus* ReturnStatus = nullptr) const;
    short   fieldIndex(const MString& name, MStatus* ReturnStatus = nullptr) const;
    MStatus getMin(short& value) const;
    MStatus getMax(short& value) const;
    MStatus getDefault(short& value) const;
    MStatus getDefault(MString& value) const;
    MStatus setDefault(short value);
    MStatus setDefault(const MString& fieldName);
    short   defaultValue(MStatus* ReturnStatus = nullptr) const;
};

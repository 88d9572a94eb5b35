#pragma once
#include <maya/MFnAttribute.h>

/// Attributes that accept several kinds of data.
class MFnGenericAttribute : public MFnAttribute
{
public:
    MFnGenericAttribute() = default;
    explicit MFnGenericAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = nullptr);
    MStatus addAccept(const MTypeId& id);
    MStatus addDataAccept(MFnData::Type type);
    MStatus addNumericDataAccept(MFnNumericData::Type type);
    MStatus removeDataAccept(MFnData::Type type);
    MStatus removeNumericDataAccept(MFnNumericData::Type type);
};

#pragma once
#include <maya/MFnData.h>
#include <maya/MString.h>


/// Function set on string data.
class MFnStringData : public MFnData
{
public:
    MFnStringData() = default;
    explicit MFnStringData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnStringData() override;
    MFn::Type type() const override;

    MString string(MStatus* ReturnStatus = nullptr) const;
    MStatus set(const MString& value);
    MObject create(MStatus* ReturnStatus = nullptr);
    MObject create(const MString& value, MStatus* ReturnStatus = nullptr);
};

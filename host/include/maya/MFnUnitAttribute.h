#pragma once
#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnAttribute.h>
#include <maya/MTime.h>


/// Angles, distances and times; held in radians, centimetres and seconds.
class MFnUnitAttribute : public MFnAttribute
{
public:
    enum Type { kInvalid, kAngle, kDistance, kTime, kLast };

    MFnUnitAttribute() = default;
    explicit MFnUnitAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, Type type, double defaultValue = 0.0,
                   MStatus* ReturnStatus = nullptr);
    MObject create(const MString& fullName, const MString& briefName, const MTime& defaultValue,
                   MStatus* ReturnStatus = nullptr);
    MObject create(const MString& fullName, const MString& briefName, const MAngle& defaultValue,
                   MStatus* ReturnStatus = nullptr);
    MObject create(const MString& fullName, const MString& briefName, const MDistance& defaultValue,
                   MStatus* ReturnStatus = nullptr);
    Type    unitType(MStatus* ReturnStatus = nullptr) const;
    bool    hasMin(MStatus* ReturnStatus = nullptr) const;
    bool    hasMax(MStatus* ReturnStatus = nullptr) const;
    bool    hasSoftMin(MStatus* ReturnStatus = nullptr) const;
    bool    hasSoftMax(MStatus* ReturnStatus = nullptr) const;
    MStatus getMin(double& value) const;
    MStatus getMax(double& value) const;
    MStatus getDefault(double& value) const;
    MStatus getDefault(MTime& value) const;
    MStatus getDefault(MAngle& value) const;
    MStatus getDefault(MDistance& value) const;
    MStatus setMin(double value);
    MStatus setMax(double value);
    MStatus setSoftMin(double value);
    MStatus setSoftMax(double value);
    MStatus setDefault(double value);
    MStatus setDefault(const MTime& value);
    MStatus setDefault(const MAngle& value);
    MStatus setDefault(const MDistance& value);
};

#pragma once
#include <maya/MFnAttribute.h>

/// Numbers and tuples of two to four numbers.
class MFnNumericAttribute : public MFnAttribute
{
public:
    MFnNumericAttribute() = default;
    explicit MFnNumericAttribute(const MObject& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;

    MObject create(const MString& fullName, const MString& briefName, MFnNumericData::Type unitType,
                   double defaultValue = 0.0, MStatus* ReturnStatus = nullptr);
    /// A tuple of existing scalar attributes, which become its children.
    MObject create(const MString& fullName, const MString& briefName, const MObject& child1,
                   const MObject& child2 = MObject::kNullObj, const MObject& child3 = MObject::kNullObj,
                   MStatus* ReturnStatus = nullptr);
    MObject create(const MString& fullName, const MString& briefName, const MObject& child1, const MObject& child2,
                   const MObject& child3, const MObject& child4, MStatus* ReturnStatus = nullptr);
    MObject createColor(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = nullptr);
    MObject createPoint(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = nullptr);
    MObject child(unsigned index, MStatus* ReturnStatus = nullptr) const;

    MFnNumericData::Type unitType(MStatus* ReturnStatus = nullptr) const;
    bool    hasMin(MStatus* ReturnStatus = nullptr) const;
    bool    hasMax(MStatus* ReturnStatus = nullptr) const;
    bool    hasSoftMin(MStatus* ReturnStatus = nullptr) const;
    bool    hasSoftMax(MStatus* ReturnStatus = nullptr) const;
    MStatus getMin(double& value) const;
    MStatus getMax(double& value) const;
    MStatus getSoftMin(double& value) const;
    MStatus getSoftMax(double& value) const;
    MStatus setMin(double value);
    MStatus setMax(double value);
    MStatus setSoftMin(double value);
    MStatus setSoftMax(double value);
    MStatus getDefault(double& value) const;
    MStatus getDefault(float& value) const;
    MStatus getDefault(int& value) const;
    MStatus getDefault(bool& value) const;
    MStatus getDefault(float& a, float& b, float& c) const;
    MStatus getDefault(double& a, double& b, double& c) const;
    MStatus setDefault(bool value);
    MStatus setDefault(int value);
    MStatus setDefault(float value);
    MStatus setDefault(double value);
    MStatus setDefault(int a, int b);
    MStatus setDefault(float a, float b);
    MStatus setDefault(double a, double b);
    MStatus setDefault(int a, int b, int c);
    MStatus setDefault(float a, float b, float c);
    MStatus setDefault(double a, double b, double c);
    MStatus setDefault(double a, double b, double c, double d);
};

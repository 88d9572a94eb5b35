#pragma once
#include <maya/MFnData.h>

/// Function set on data of one to four numbers.
/// The getters and setters work on data of exactly their type; on another type they fail and change nothing.
class MFnNumericData : public MFnData
{
public:
    enum Type {
        kInvalid, kBoolean, kByte, kChar, kShort, k2Short, k3Short, kInt, kLong = kInt, k2Int, k2Long = k2Int,
        k3Int, k3Long = k3Int, kInt64, kFloat, k2Float, k3Float, kDouble, k2Double, k3Double, k4Double, kAddr, kLast
    };

    MFnNumericData() = default;
    explicit MFnNumericData(const MObject& object, MStatus* ReturnStatus = nullptr);
    ~MFnNumericData() override;
    MFn::Type type() const override;

    MFnNumericData::Type numericType(MStatus* ReturnStatus = nullptr) const;
    MObject create(MFnNumericData::Type type, MStatus* ReturnStatus = nullptr);

    MStatus getData2Short(short& a, short& b) const;
    MStatus getData3Short(short& a, short& b, short& c) const;
    MStatus getData2Int(int& a, int& b) const;
    MStatus getData3Int(int& a, int& b, int& c) const;
    MStatus getData2Float(float& a, float& b) const;
    MStatus getData3Float(float& a, float& b, float& c) const;
    MStatus getData2Double(double& a, double& b) const;
    MStatus getData3Double(double& a, double& b, double& c) const;
    MStatus getData4Double(double& a, double& b, double& c, double& d) const;
    MStatus setData2Short(short a, short b);
    MStatus setData3Short(short a, short b, short c);
    MStatus setData2Int(int a, int b);
    MStatus setData3Int(int a, int b, int c);
    MStatus setData2Float(float a, float b);
    MStatus setData3Float(float a, float b, float c);
    MStatus setData2Double(double a, double b);
    MStatus setData3Double(double a, double b, double c);
    MStatus setData4Double(double a, double b, double c, double d);

    /// For data of one number; the conversion is that of an assignment.
    MStatus getData(bool& value) const;
    MStatus getData(char& value) const;
    MStatus getData(short& value) const;
    MStatus getData(int& value) const;
    MStatus getData(float& value) const;
    MStatus getData(double& value) const;
    MStatus setData(bool value);
    MStatus setData(char value);
    MStatus setData(short value);
    MStatus setData(int value);
    MStatus setData(float value);
    MStatus setData(double value);
};

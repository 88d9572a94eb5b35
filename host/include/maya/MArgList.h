#pragma once
#include <string>
#include <vector>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTime.h>

class MDoubleArray;
class MIntArray;
class MMatrix;
class MPoint;
class MStringArray;
class MVector;

namespace mirk { struct ArgAccess; }

/// The arguments a command was given, flags (with their dash) among them. Array arguments keep together.
class MArgList
{
public:
    enum { kInvalidArgIndex = 0xFFFFFFFF };

    MArgList() = default;

    unsigned length(MStatus* ReturnStatus = nullptr) const;
    bool     asBool(unsigned index, MStatus* ReturnStatus = nullptr) const;
    int      asInt(unsigned index, MStatus* ReturnStatus = nullptr) const;
    double   asDouble(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MString  asString(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MDistance asDistance(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MAngle   asAngle(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MTime    asTime(unsigned index, MStatus* ReturnStatus = nullptr) const;
    /// Three, or two, numbers from `index` on, which is moved behind them.
    MVector  asVector(unsigned& index, unsigned numElements = 3, MStatus* ReturnStatus = nullptr) const;
    MPoint   asPoint(unsigned& index, unsigned numElements = 3, MStatus* ReturnStatus = nullptr) const;
    MMatrix  asMatrix(unsigned& index, MStatus* ReturnStatus = nullptr) const;
    MIntArray    asIntArray(unsigned& index, MStatus* ReturnStatus = nullptr) const;
    MDoubleArray asDoubleArray(unsigned& index, MStatus* ReturnStatus = nullptr) const;
    MStringArray asStringArray(unsigned& index, MStatus* ReturnStatus = nullptr) const;

    MStatus  get(unsigned index, bool& value) const;
    MStatus  get(unsigned index, int& value) const;
    MStatus  get(unsigned index, double& value) const;
    MStatus  get(unsigned index, MString& value) const;
    MStatus  get(unsigned index, MDistance& value) const;
    MStatus  get(unsigned index, MAngle& value) const;
    MStatus  get(unsigned index, MTime& value) const;
    MStatus  get(unsigned& index, MVector& value, unsigned numElements = 3) const;
    MStatus  get(unsigned& index, MPoint& value, unsigned numElements = 3) const;
    MStatus  get(unsigned& index, MIntArray& value) const;
    MStatus  get(unsigned& index, MDoubleArray& value) const;
    MStatus  get(unsigned& index, MStringArray& value) const;

    MStatus  addArg(bool value);
    MStatus  addArg(int value);
    MStatus  addArg(double value);
    MStatus  addArg(const MString& value);
    MStatus  addArg(const MDistance& value);
    MStatus  addArg(const MAngle& value);
    MStatus  addArg(const MTime& value);

    /// Where a flag stands, given without dash; kInvalidArgIndex if it does not.
    unsigned flagIndex(const char* flag, const char* longFlag = nullptr) const;

private:
    friend struct mirk::ArgAccess;
    std::vector<std::vector<std::string>> args_;   // one text an argument, or several for an array
};

#include <maya/MArgList.h>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include "command/user_command.h"
#include "command/value.h"
#include "data/fn_base.h"

using namespace mirk;

namespace {

/// One text of an argument that is none or one; false for an array or an index past the end.
bool single(const std::vector<std::vector<std::string>>& args, unsigned index, MString& text)
{
    if (index >= args.size() || args[index].size() != 1)
        return false;
    text = MString(args[index][0].c_str());
    return true;
}

bool isBool(const std::string& s, bool& value)
{
    value = s == "on" || s == "true" || s == "yes";
    return value || s == "off" || s == "false" || s == "no";
}

std::string numberOf(double v) { return command::numberText(v); }

}  // namespace

unsigned MArgList::length(MStatus* s) const { return reported(s, MS::kSuccess, unsigned(args_.size())); }

MStatus MArgList::get(unsigned index, MString& value) const { return single(args_, index, value) ? MS::kSuccess : MS::kFailure; }

MStatus MArgList::get(unsigned index, bool& value) const
{
    MString text;
    if (!single(args_, index, text))
        return MS::kFailure;
    if (isBool(text.asChar(), value))
        return MS::kSuccess;
    if (!text.isDouble())
        return MS::kFailure;
    value = text.asDouble() != 0;
    return MS::kSuccess;
}

MStatus MArgList::get(unsigned index, double& value) const
{
    MString text;
    bool    word = false;
    if (!single(args_, index, text))
        return MS::kFailure;
    if (!text.isDouble() && isBool(text.asChar(), word)) {
        value = word;
        return MS::kSuccess;
    }
    if (!text.isDouble())
        return MS::kFailure;
    value = text.asDouble();
    return MS::kSuccess;
}

MStatus MArgList::get(unsigned index, int& value) const
{
    double        d = 0;
    const MStatus status = get(index, d);
    if (status)
        value = MString(args_[index][0].c_str()).isInt() ? MString(args_[index][0].c_str()).asInt() : command::Value(d).asInt();
    return status;
}

MStatus MArgList::get(unsigned index, MDistance& value) const
{
    double        d = 0;
    const MStatus status = get(index, d);
    if (status)
        value = MDistance(d, MDistance::uiUnit());
    return status;
}

MStatus MArgList::get(unsigned index, MAngle& value) const
{
    double        d = 0;
    const MStatus status = get(index, d);
    if (status)
        value = MAngle(d, MAngle::uiUnit());
    return status;
}

MStatus MArgList::get(unsigned index, MTime& value) const
{
    double        d = 0;
    const MStatus status = get(index, d);
    if (status)
        value = MTime(d, MTime::uiUnit());
    return status;
}

namespace {

/// Numbers from `index` on: those of one array argument, or of as many single ones.
MStatus numbers(const MArgList& list, const std::vector<std::vector<std::string>>& args, unsigned& index, unsigned count, double* out)
{
    if (index < args.size() && args[index].size() == count && count > 1) {
        for (unsigned i = 0; i < count; ++i)
            out[i] = MString(args[index][i].c_str()).asDouble();
        ++index;
        return MS::kSuccess;
    }
    for (unsigned i = 0; i < count; ++i)
        if (const MStatus status = list.get(index + i, out[i]); !status)
            return status;
    index += count;
    return MS::kSuccess;
}

}  // namespace

MStatus MArgList::get(unsigned& index, MVector& value, unsigned numElements) const
{
    double v[3] = {0, 0, 0};
    if (numElements < 2 || numElements > 3)
        return MS::kInvalidParameter;
    const MStatus status = numbers(*this, args_, index, numElements, v);
    if (status)
        value = MVector(v[0], v[1], v[2]);
    return status;
}

MStatus MArgList::get(unsigned& index, MPoint& value, unsigned numElements) const
{
    double v[4] = {0, 0, 0, 1};
    if (numElements < 2 || numElements > 4)
        return MS::kInvalidParameter;
    const MStatus status = numbers(*this, args_, index, numElements, v);
    if (status)
        value = MPoint(v[0], v[1], v[2], v[3]);
    return status;
}

MStatus MArgList::get(unsigned& index, MIntArray& value) const
{
    if (index >= args_.size())
        return MS::kFailure;
    value.clear();
    for (const std::string& t : args_[index++])
        value.append(MString(t.c_str()).asInt());
    return MS::kSuccess;
}

MStatus MArgList::get(unsigned& index, MDoubleArray& value) const
{
    if (index >= args_.size())
        return MS::kFailure;
    value.clear();
    for (const std::string& t : args_[index++])
        value.append(MString(t.c_str()).asDouble());
    return MS::kSuccess;
}

MStatus MArgList::get(unsigned& index, MStringArray& value) const
{
    if (index >= args_.size())
        return MS::kFailure;
    value.clear();
    for (const std::string& t : args_[index++])
        value.append(t.c_str());
    return MS::kSuccess;
}

namespace {

template <class T>
T got(const MArgList& list, unsigned index, MStatus* s, T value)
{
    const MStatus status = list.get(index, value);
    return reported(s, status.statusCode(), value);
}

}  // namespace

bool      MArgList::asBool(unsigned index, MStatus* s) const { return got(*this, index, s, false); }
int       MArgList::asInt(unsigned index, MStatus* s) const { return got(*this, index, s, 0); }
double    MArgList::asDouble(unsigned index, MStatus* s) const { return got(*this, index, s, 0.0); }
MString   MArgList::asString(unsigned index, MStatus* s) const { return got(*this, index, s, MString()); }
MDistance MArgList::asDistance(unsigned index, MStatus* s) const { return got(*this, index, s, MDistance()); }
MAngle    MArgList::asAngle(unsigned index, MStatus* s) const { return got(*this, index, s, MAngle()); }
MTime     MArgList::asTime(unsigned index, MStatus* s) const { return got(*this, index, s, MTime()); }

MVector MArgList::asVector(unsigned& index, unsigned numElements, MStatus* s) const
{
    MVector       v;
    const MStatus status = get(index, v, numElements);
    return reported(s, status.statusCode(), v);
}

MPoint MArgList::asPoint(unsigned& index, unsigned numElements, MStatus* s) const
{
    MPoint        p;
    const MStatus status = get(index, p, numElements);
    return reported(s, status.statusCode(), p);
}

MMatrix MArgList::asMatrix(unsigned& index, MStatus* s) const
{
    MMatrix       m;
    double        v[16];
    const MStatus status = numbers(*this, args_, index, 16, v);
    for (unsigned i = 0; status && i < 16; ++i)
        m(i / 4, i % 4) = v[i];
    return reported(s, status.statusCode(), m);
}

MIntArray MArgList::asIntArray(unsigned& index, MStatus* s) const
{
    MIntArray     a;
    const MStatus status = get(index, a);
    return reported(s, status.statusCode(), a);
}

MDoubleArray MArgList::asDoubleArray(unsigned& index, MStatus* s) const
{
    MDoubleArray  a;
    const MStatus status = get(index, a);
    return reported(s, status.statusCode(), a);
}

MStringArray MArgList::asStringArray(unsigned& index, MStatus* s) const
{
    MStringArray  a;
    const MStatus status = get(index, a);
    return reported(s, status.statusCode(), a);
}

MStatus MArgList::addArg(const MString& value)
{
    args_.push_back({value.asChar()});
    return MS::kSuccess;
}
MStatus MArgList::addArg(bool value) { return addArg(MString(value ? "1" : "0")); }
MStatus MArgList::addArg(int value) { return addArg(MString(std::to_string(value).c_str())); }
MStatus MArgList::addArg(double value) { return addArg(MString(numberOf(value).c_str())); }
MStatus MArgList::addArg(const MDistance& value) { return addArg(value.as(MDistance::uiUnit())); }
MStatus MArgList::addArg(const MAngle& value) { return addArg(value.as(MAngle::uiUnit())); }
MStatus MArgList::addArg(const MTime& value) { return addArg(value.as(MTime::uiUnit())); }

unsigned MArgList::flagIndex(const char* flag, const char* longFlag) const
{
    for (unsigned i = 0; i < args_.size(); ++i) {
        if (args_[i].size() != 1 || args_[i][0].size() < 2 || args_[i][0][0] != '-')
            continue;
        const std::string name = args_[i][0].substr(1);
        for (const char* wanted : {flag, longFlag})
            if (wanted && name == (wanted[0] == '-' ? wanted + 1 : wanted))
                return i;
    }
    return kInvalidArgIndex;
}

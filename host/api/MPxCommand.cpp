#include <maya/MPxCommand.h>

#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MStringArray.h>

#include "api/api.h"
#include "command/user_command.h"

using namespace mirk;
using command::Value;

MPxCommand::MPxCommand() = default;
MPxCommand::~MPxCommand() = default;

MStatus MPxCommand::doIt(const MArgList&) { return MS::kFailure; }
MStatus MPxCommand::undoIt() { return MS::kSuccess; }
MStatus MPxCommand::redoIt() { return MS::kSuccess; }
bool    MPxCommand::isUndoable() const { return false; }
bool    MPxCommand::hasSyntax() const { return !SyntaxAccess::flags(syntax_).empty() || !SyntaxAccess::args(syntax_).empty(); }
MSyntax MPxCommand::syntax() const { return syntax_; }

void MPxCommand::displayInfo(const MString& text) { message::info(text.asChar()); }
void MPxCommand::displayWarning(const MString& text, bool) { message::warning(text.asChar()); }
void MPxCommand::displayError(const MString& text, bool)
{
    if (!CommandFrame::holdError(text.asChar()))
        message::error(text.asChar());
}

namespace {

/// The result of the running command; outside of one what is set is lost.
Value& result()
{
    static thread_local Value lost;
    CommandFrame*             frame = CommandFrame::current();
    return frame ? frame->result : (lost = Value());
}

command::Ints ints(const MIntArray& a)
{
    command::Ints v;
    for (unsigned i = 0; i < a.length(); ++i)
        v.push_back(a[i]);
    return v;
}

std::vector<double> doubles(const MDoubleArray& a)
{
    std::vector<double> v;
    for (unsigned i = 0; i < a.length(); ++i)
        v.push_back(a[i]);
    return v;
}

command::Strings strings(const MStringArray& a)
{
    command::Strings v;
    for (unsigned i = 0; i < a.length(); ++i)
        v.emplace_back(a[i].asChar());
    return v;
}

/// The result becomes an array of the widest kind of what stands in it and what is added.
void append(const Value& more)
{
    Value&     r = result();
    const auto kind = [](const Value& v) {
        switch (v.kind()) {
        case Value::kNone: return 0;
        case Value::kInt:
        case Value::kInts: return 1;
        case Value::kFloat:
        case Value::kFloats: return 2;
        default: return 3;
        }
    };
    const int widest = std::max(kind(r), kind(more));
    if (widest == 1) {
        command::Ints all = r.isNone() ? command::Ints() : r.asInts();
        const auto    add = more.asInts();
        all.insert(all.end(), add.begin(), add.end());
        r = Value(all);
    } else if (widest == 2) {
        std::vector<double> all;
        for (const Value* v : {static_cast<const Value*>(&r), &more})
            if (!v->isNone()) {
                const command::Floats f = v->asFloats();
                all.insert(all.end(), f->begin(), f->end());
            }
        r = Value(all);
    } else {
        command::Strings all = r.isNone() ? command::Strings() : r.asStrings();
        const auto       add = more.asStrings();
        all.insert(all.end(), add.begin(), add.end());
        r = Value(all);
    }
}

}  // namespace

void MPxCommand::setResult(bool v) { result() = Value(v); }
void MPxCommand::setResult(int v) { result() = Value(v); }
void MPxCommand::setResult(unsigned v) { result() = Value(v); }
void MPxCommand::setResult(double v) { result() = Value(v); }
void MPxCommand::setResult(const MString& v) { result() = Value(v.asChar()); }
void MPxCommand::setResult(const char* v) { result() = Value(v ? v : ""); }
void MPxCommand::setResult(const MIntArray& v) { result() = Value(ints(v)); }
void MPxCommand::setResult(const MDoubleArray& v) { result() = Value(doubles(v)); }
void MPxCommand::setResult(const MStringArray& v) { result() = Value(strings(v)); }
void MPxCommand::clearResult() { result() = Value(); }
void MPxCommand::appendToResult(bool v) { append(Value(v)); }
void MPxCommand::appendToResult(int v) { append(Value(v)); }
void MPxCommand::appendToResult(double v) { append(Value(v)); }
void MPxCommand::appendToResult(const MString& v) { append(Value(v.asChar())); }
void MPxCommand::appendToResult(const char* v) { append(Value(v ? v : "")); }
void MPxCommand::appendToResult(const MIntArray& v) { append(Value(ints(v))); }
void MPxCommand::appendToResult(const MDoubleArray& v) { append(Value(doubles(v))); }
void MPxCommand::appendToResult(const MStringArray& v) { append(Value(strings(v))); }
bool MPxCommand::isCurrentResultArray() { return result().isArray(); }

MPxCommand::MResultType MPxCommand::currentResultType()
{
    switch (result().kind()) {
    case Value::kInt:
    case Value::kInts: return kLong;
    case Value::kFloat:
    case Value::kFloats: return kDouble;
    case Value::kString:
    case Value::kStrings: return kString;
    default: return kNoArg;
    }
}

int     MPxCommand::currentIntResult(MStatus* s) { return reported(s, currentResultType() == kLong ? MS::kSuccess : MS::kFailure, result().asInt()); }
double  MPxCommand::currentDoubleResult(MStatus* s) { return reported(s, currentResultType() == kDouble ? MS::kSuccess : MS::kFailure, result().asFloat()); }
MString MPxCommand::currentStringResult(MStatus* s)
{
    return reported(s, currentResultType() == kString ? MS::kSuccess : MS::kFailure, MString(result().asString().c_str()));
}

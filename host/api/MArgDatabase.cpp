#include <maya/MArgDatabase.h>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>

#include "api/api.h"
#include "command/user_command.h"
#include "dag/dag.h"

using namespace mirk;

namespace mirk {

/// Arguments sorted by what they are.
struct ParsedArgs
{
    struct Use { const SyntaxAccess::Flag* flag; unsigned position; MArgList args; };

    MSyntax          syntax;
    std::vector<Use> uses;
    MArgList         command;    ///< arguments of the command itself
    std::vector<std::string> objects;
    bool             query = false, edit = false;

    const Use* use(const char* flag, unsigned nth = 0) const;
    std::string read(const MArgList& list);

private:
    std::string readFlag(const MArgList& list, unsigned& at, const SyntaxAccess::Flag& flag);
    std::string readRest(const MArgList& rest);
};

namespace {

std::string plain(const std::string& name) { return !name.empty() && name[0] == '-' ? name.substr(1) : name; }

const SyntaxAccess::Flag* findFlag(const MSyntax& syntax, const std::string& name)
{
    for (const auto& f : SyntaxAccess::flags(syntax))
        if (plain(f.shortName) == name || plain(f.longName) == name)
            return &f;
    return nullptr;
}

bool looksLikeFlag(const std::vector<std::string>& arg)
{
    return arg.size() == 1 && arg[0].size() > 1 && arg[0][0] == '-' && !MString(arg[0].c_str()).isDouble();
}

bool fits(const MArgList& list, unsigned i, MSyntax::MArgType type)
{
    bool   b;
    double d;
    switch (type) {
    case MSyntax::kBoolean: return bool(list.get(i, b));
    case MSyntax::kLong:
    case MSyntax::kUnsigned:
    case MSyntax::kDouble:
    case MSyntax::kDistance:
    case MSyntax::kAngle:
    case MSyntax::kTime: return bool(list.get(i, d));
    default: return i < list.length();
    }
}

}  // namespace

const ParsedArgs::Use* ParsedArgs::use(const char* flag, unsigned nth) const
{
    const SyntaxAccess::Flag* wanted = flag ? findFlag(syntax, plain(flag)) : nullptr;
    for (const Use& u : uses)
        if (u.flag == wanted && wanted && nth-- == 0)
            return &u;
    return nullptr;
}

std::string ParsedArgs::readFlag(const MArgList& list, unsigned& at, const SyntaxAccess::Flag& flag)
{
    Use use{&flag, at - 1, {}};
    const bool optional = query && (!flag.queryArgs || flag.queryOptional);
    for (MSyntax::MArgType type : flag.args) {
        if (query && !flag.queryArgs)
            break;
        if (!fits(list, at, type)) {
            if (optional && use.args.length() == 0)
                break;
            return "Flag '" + flag.shortName + "' must be passed " + std::to_string(flag.args.size()) + (flag.args.size() == 1 ? " argument" : " arguments") + " of its types.";
        }
        ArgAccess::args(use.args).push_back(ArgAccess::args(list)[at++]);
    }
    uses.push_back(use);
    return "";
}

std::string ParsedArgs::readRest(const MArgList& rest)
{
    const auto& types = SyntaxAccess::args(syntax);
    unsigned    at = 0;
    for (; at < types.size() && !query; ++at) {
        if (!fits(rest, at, types[at]))
            return at < rest.length() ? "Argument " + std::to_string(at + 1) + " is not of the type that the command takes."
                                      : "The command takes " + std::to_string(types.size()) + " arguments.";
        ArgAccess::args(command).push_back(ArgAccess::args(rest)[at]);
    }
    for (; at < rest.length(); ++at)
        for (const std::string& t : ArgAccess::args(rest)[at])
            objects.push_back(t);
    if (syntax.objectFormat() == MSyntax::kNone && !objects.empty() && !query)
        return "Too many arguments: '" + objects.front() + "'.";
    return "";
}

std::string ParsedArgs::read(const MArgList& list)
{
    MArgList rest;
    for (unsigned at = 0; at < list.length();) {
        const auto& arg = ArgAccess::args(list)[at++];
        if (!looksLikeFlag(arg)) {
            ArgAccess::args(rest).push_back(arg);
            continue;
        }
        const std::string name = plain(arg[0]);
        const auto*       flag = findFlag(syntax, name);
        if (!flag && (name == "q" || name == "query") && syntax.canQuery()) {
            query = true;
        } else if (!flag && (name == "e" || name == "edit") && syntax.canEdit()) {
            edit = true;
        } else if (!flag) {
            return "Invalid flag '" + arg[0] + "'.";
        } else if (const std::string why = readFlag(list, at, *flag); !why.empty()) {
            return why;
        }
    }
    if (query && edit)
        return "The flags -edit and -query cannot be used together.";
    if (const std::string why = readRest(rest); !why.empty())
        return why;
    if (objects.empty() && syntax.selectionAsDefault() && syntax.objectFormat() != MSyntax::kNone)
        for (const Item& item : selection::get())
            for (const std::string& t : names::texts(item))
                objects.push_back(t);
    if (syntax.objectFormat() == MSyntax::kNone)
        return "";
    if (objects.size() < syntax.minObjects())
        return "The command needs at least " + std::to_string(syntax.minObjects()) + " objects.";
    if (objects.size() > syntax.maxObjects())
        return "The command takes at most " + std::to_string(syntax.maxObjects()) + " objects.";
    return "";
}

}  // namespace mirk

// ---- MArgParser --------------------------------------------------------------------------------------------------

MArgParser::MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* s)
{
    auto parsed = std::make_shared<ParsedArgs>();
    parsed->syntax = syntax;
    const std::string why = parsed->read(argList);
    if (!why.empty() && !CommandFrame::holdError(why))
        message::error(why);
    parsed_ = parsed;
    report(s, why.empty() ? MS::kSuccess : MS::kFailure);
}

MArgParser::~MArgParser() = default;

bool MArgParser::isFlagSet(const char* flag, MStatus* s) const
{
    const bool known = flag && findFlag(parsed_->syntax, plain(flag));
    return reported(s, known ? MS::kSuccess : MS::kInvalidParameter, parsed_->use(flag) != nullptr);
}

bool     MArgParser::isEdit(MStatus* s) const { return reported(s, MS::kSuccess, parsed_->edit); }
bool     MArgParser::isQuery(MStatus* s) const { return reported(s, MS::kSuccess, parsed_->query); }
unsigned MArgParser::numberOfFlagsUsed() const { return unsigned(parsed_->uses.size()); }

unsigned MArgParser::numberOfFlagUses(const char* flag) const
{
    unsigned n = 0;
    while (parsed_->use(flag, n))
        ++n;
    return n;
}

namespace {

template <class T>
MStatus flagArgument(const ParsedArgs& parsed, const char* flag, unsigned index, T& result)
{
    const auto* use = parsed.use(flag);
    return use ? use->args.get(index, result) : MStatus(MS::kFailure);
}

template <class T>
T given(MStatus* s, MStatus status, T value) { return reported(s, status.statusCode(), value); }

MStatus asUnsigned(MStatus status, int value, unsigned& result)
{
    if (status && value < 0)
        return MS::kFailure;
    if (status)
        result = unsigned(value);
    return status;
}

}  // namespace

MStatus MArgParser::getFlagArgument(const char* f, unsigned i, bool& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, int& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, double& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, MString& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, MDistance& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, MAngle& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, MTime& r) const { return flagArgument(*parsed_, f, i, r); }
MStatus MArgParser::getFlagArgument(const char* f, unsigned i, unsigned& r) const
{
    int           value = 0;
    const MStatus status = flagArgument(*parsed_, f, i, value);
    return asUnsigned(status, value, r);
}

bool MArgParser::flagArgumentBool(const char* f, unsigned i, MStatus* s) const
{
    bool          v = false;
    const MStatus status = getFlagArgument(f, i, v);
    return given(s, status, v);
}

int MArgParser::flagArgumentInt(const char* f, unsigned i, MStatus* s) const
{
    int           v = 0;
    const MStatus status = getFlagArgument(f, i, v);
    return given(s, status, v);
}

double MArgParser::flagArgumentDouble(const char* f, unsigned i, MStatus* s) const
{
    double        v = 0;
    const MStatus status = getFlagArgument(f, i, v);
    return given(s, status, v);
}

MString MArgParser::flagArgumentString(const char* f, unsigned i, MStatus* s) const
{
    MString       v;
    const MStatus status = getFlagArgument(f, i, v);
    return given(s, status, v);
}

MStatus MArgParser::getFlagArgumentPosition(const char* flag, unsigned index, unsigned& position) const
{
    const auto* use = parsed_->use(flag, index);
    if (!use)
        return MS::kFailure;
    position = use->position;
    return MS::kSuccess;
}

MStatus MArgParser::getFlagArgumentList(const char* flag, unsigned index, MArgList& args) const
{
    const auto* use = parsed_->use(flag, index);
    if (!use)
        return MS::kFailure;
    args = use->args;
    return MS::kSuccess;
}

MStatus MArgParser::getCommandArgument(unsigned i, bool& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, int& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, double& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, MString& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, MDistance& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, MAngle& r) const { return parsed_->command.get(i, r); }
MStatus MArgParser::getCommandArgument(unsigned i, MTime& r) const { return parsed_->command.get(i, r); }
bool    MArgParser::commandArgumentBool(unsigned i, MStatus* s) const { return parsed_->command.asBool(i, s); }
int     MArgParser::commandArgumentInt(unsigned i, MStatus* s) const { return parsed_->command.asInt(i, s); }
double  MArgParser::commandArgumentDouble(unsigned i, MStatus* s) const { return parsed_->command.asDouble(i, s); }
MString MArgParser::commandArgumentString(unsigned i, MStatus* s) const { return parsed_->command.asString(i, s); }

MStatus MArgParser::getObjects(MStringArray& objects) const
{
    objects.clear();
    for (const std::string& o : parsed_->objects)
        objects.append(o.c_str());
    return MS::kSuccess;
}

// ---- MArgDatabase ------------------------------------------------------------------------------------------------

MArgDatabase::MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* s) : MArgParser(syntax, argList, s)
{
    if (syntax.objectFormat() != MSyntax::kSelectionList || (s && !*s))
        return;
    for (const std::string& o : parsed_->objects)
        if (names::resolve(o).empty()) {
            const std::string why = "No object matches name: " + o;
            if (!CommandFrame::holdError(why))
                message::error(why);
            report(s, MS::kFailure);
            return;
        }
}

MStatus MArgDatabase::getFlagArgument(const char* flag, unsigned index, MSelectionList& result) const
{
    MString       name;
    const MStatus status = getFlagArgument(flag, index, name);
    result.clear();
    return status ? result.add(name) : status;
}

MStatus MArgDatabase::getCommandArgument(unsigned index, MSelectionList& result) const
{
    MString       name;
    const MStatus status = getCommandArgument(index, name);
    result.clear();
    return status ? result.add(name) : status;
}

MStatus MArgDatabase::getObjects(MSelectionList& objects) const
{
    objects.clear();
    for (const std::string& o : parsed_->objects)
        if (const MStatus status = objects.add(MString(o.c_str())); !status)
            return status;
    return MS::kSuccess;
}

// Commands of the language itself that make sense from other languages too. In MEL they are built-in functions.
#include "command/core_language.h"

#include "mel/interpreter.h"

namespace mirk::command {

namespace {

std::string joined(const Call& call)
{
    std::string out;
    for (const Value& v : call.args)
        out.append(out.empty() ? "" : " ").append(v.asString());
    return out;
}

Value print(Call& call)
{
    for (const Value& v : call.args)
        mel::print(mel::printed(v));
    return {};
}

Value warning(Call& call)
{
    mel::message(mel::Severity::kWarning, joined(call));
    return {};
}

Value error(Call& call) { throw Error(joined(call)); }
Value eval(Call& call) { return mel::execute(joined(call)); }

const std::string& onlyName(const Call& call)
{
    if (call.args.size() != 1 || call.args[0].kind() != Value::kString)
        throw Error(std::string("Wrong number of arguments on call to ") + call.command->name + ".");
    return call.args[0].get<std::string>();
}

Value source(Call& call) { return mel::sourceFile(onlyName(call)); }
Value whatIs(Call& call) { return mel::whatIs(onlyName(call)); }
Value exists(Call& call) { return mel::exists(onlyName(call)); }

constexpr Flag kMessageFlags[] = {
    {"n", "noContext"},
    {"sl", "showLineNumber", "b"},
};

const Command kCommands[] = {
    {"print", {}, print, false},
    {"warning", kMessageFlags, warning, false},
    {"error", kMessageFlags, error, false},
    {"eval", {}, eval, false},
    {"source", {}, source, false},
    {"whatIs", {}, whatIs, false},
    {"exists", {}, exists, false},
};

}  // namespace

void addLanguageCommands() { add(kCommands); }

namespace {
const bool g_added = (addLanguageCommands(), true);
}

}  // namespace mirk::command

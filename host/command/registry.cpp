// The table of commands, running a call, and reading a parsed call.
#include "command/registry.h"

#include <algorithm>
#include <unordered_map>

#include "command/undo.h"

namespace mirk::command {

namespace {

struct NameHash
{
    using is_transparent = void;
    size_t operator()(std::string_view s) const { return std::hash<std::string_view>()(s); }
};
using Table = std::unordered_map<std::string, const Command*, NameHash, std::equal_to<>>;

// made at first use: commands are added by initializers of other files
Table& table()
{
    static Table commands;
    return commands;
}

}  // namespace

void add(const Command& command) { table()[command.name] = &command; }

void add(std::span<const Command> commands)
{
    for (const Command& c : commands)
        add(c);
}

void remove(std::string_view name)
{
    if (auto it = table().find(name); it != table().end())
        table().erase(it);
}

const Command* find(std::string_view name)
{
    auto it = table().find(name);
    return it == table().end() ? nullptr : it->second;
}

std::vector<std::string> names()
{
    std::vector<std::string> out;
    for (const auto& [name, command] : table())
        out.push_back(name);
    std::sort(out.begin(), out.end());
    return out;
}

const Call::Use* Call::use(std::string_view longName) const
{
    for (const Use& u : uses)
        if (longName == u.flag->longName)
            return &u;
    return nullptr;
}

std::vector<const Call::Use*> Call::all(std::string_view longName) const
{
    std::vector<const Use*> out;
    for (const Use& u : uses)
        if (longName == u.flag->longName)
            out.push_back(&u);
    return out;
}

std::string Call::str(std::string_view longName, std::string otherwise) const
{
    const Use* u = use(longName);
    return u && !u->args.empty() ? u->args[0].asString() : otherwise;
}

double Call::num(std::string_view longName, double otherwise) const
{
    const Use* u = use(longName);
    return u && !u->args.empty() ? u->args[0].asFloat() : otherwise;
}

int Call::integer(std::string_view longName, int otherwise) const
{
    const Use* u = use(longName);
    return u && !u->args.empty() ? u->args[0].asInt() : otherwise;
}

bool Call::boolean(std::string_view longName, bool otherwise) const
{
    const Use* u = use(longName);
    if (!u)
        return otherwise;
    return u->args.empty() || u->args[0].asBool();
}

Strings Call::names() const
{
    Strings out;
    for (const Value& v : args)
        for (std::string& s : v.asStrings())
            out.push_back(std::move(s));
    return out;
}

void (*onRun)(const Call& call) = nullptr;
void (*onDone)(const Call& call) = nullptr;

namespace {

Value runAsStep(Call& call)
{
    if (!call.command->undoable || call.isQuery())
        return call.command->handler(call);
    UndoScope scope(call.command->name);
    Value     result = call.command->handler(call);
    scope.commit();
    return result;
}

}  // namespace

Value run(Call& call)
{
    if (onRun)
        onRun(call);
    Value result = runAsStep(call);
    if (onDone)
        onDone(call);
    return result;
}

Value execute(std::string_view name, std::span<const Value> raw)
{
    const Command* command = find(name);
    if (!command)
        throw Error("Cannot find procedure \"" + std::string(name) + "\".");
    Call call = parse(*command, raw);
    return run(call);
}

}  // namespace mirk::command

// Built-in functions as commands, so that other languages have them too. MEL itself never takes this way.
#include <deque>

#include "command/registry.h"
#include "mel/interpreter.h"
#include "mel/native.h"

namespace mirk::mel {

namespace {

std::string quoted(const std::string& s)
{
    std::string out = "\"";
    for (const char c : s)
        out += c == '"' || c == '\\' ? std::string{'\\', c} : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string{c};
    return out + "\"";
}

std::string list(const std::vector<std::string>& parts, const char* open, const char* close)
{
    std::string out = open;
    for (const std::string& p : parts)
        out.append(&p == &parts.front() ? "" : ",").append(p);
    return out + close;
}

/// A number in a form that stays a float.
std::string floatText(double v)
{
    std::string text = command::numberText(v);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

/// The value as it is written in a script; three numbers are a vector where one is asked for.
std::string literal(const Value& v, bool vectorWanted)
{
    std::vector<std::string> parts;
    switch (v.kind())
    {
    case Value::kNone:    return "\"\"";
    case Value::kInt:     return v.asString();
    case Value::kFloat:   return floatText(v.asFloat());
    case Value::kString:  return quoted(v.asString());
    case Value::kStrings:
        for (const std::string& s : v.asStrings())
            parts.push_back(quoted(s));
        return list(parts, "{", "}");
    default: break;
    }
    const bool whole = v.kind() == Value::kInts;
    for (double d : command::numbersIn(v))
        parts.push_back(whole ? command::numberText(d) : floatText(d));
    const bool vector = v.kind() == Value::kVector || (vectorWanted && parts.size() == 3);
    return vector ? list(parts, "<<", ">>") : list(parts, "{", "}");
}

bool wantsVector(const char* name, size_t k)
{
    for (const Native* row : nativesOf(name))
        if (std::string_view(row->params).size() > k && row->params[k] == 'v')
            return true;
    return false;
}

Value run(command::Call& call)
{
    std::vector<std::string> args;
    for (const Value& v : call.args)
        args.push_back(literal(v, wantsVector(call.command->name, args.size())));
    return execute(call.command->name + list(args, "(", ")"), call.command->name);
}

bool addAll()
{
    static std::deque<command::Command>* rows = new std::deque<command::Command>;
    for (const Native* n : allNatives())
        if (!command::find(n->name))
        {
            command::Command row{n->name, {}, run, false};
            row.raw = true;
            command::add(rows->emplace_back(row));
        }
    return true;
}

const bool g_added = addAll();

}  // namespace

}  // namespace mirk::mel

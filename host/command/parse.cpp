// Arguments against a command's flag table: the textual form (MEL, C++) and the keyword form (Python).
#include <cstring>

#include "command/registry.h"
#include "command/units_text.h"
#include "command/value_text.h"

namespace mirk::command {

namespace {

/// "-x", "-long": a dash and a letter; "-5" and "-.5" are numbers.
bool looksLikeFlag(const Value& v)
{
    if (v.kind() != Value::kString)
        return false;
    const std::string& s = v.get<std::string>();
    return s.size() > 1 && s[0] == '-' && (std::isalpha(static_cast<unsigned char>(s[1])) || s[1] == '_');
}

const Flag* findFlag(const Command& command, std::string_view name)
{
    for (const Flag& f : command.flags)
        if (name == f.shortName || name == f.longName)
            return &f;
    return nullptr;
}

/// kQuery or kEdit for the two flags that every command understands, unless its table has them otherwise.
int modeFlag(const Command& command, std::string_view name)
{
    const int mode = name == "q" || name == "query" ? kQuery : name == "e" || name == "edit" ? kEdit : 0;
    return mode && !findFlag(command, name) ? mode : 0;
}

const char* kindName(char letter)
{
    switch (letter)
    {
    case 'i': return "an integer";
    case 'f': return "a numeric";
    case 's': return "a string";
    case 'b': return "a boolean";
    case 't': return "a time";
    case 'l': return "a distance";
    case 'a': return "an angle";
    default:  return "an";
    }
}

bool isBooleanWord(const std::string& s)
{
    for (const char* w : {"on", "off", "true", "false", "yes", "no"})
        if (s == w)
            return true;
    return false;
}

/// True if `v` can stand for an argument of the kind; it is converted on the way.
bool convert(char letter, Value& v)
{
    bool number = true;
    if (v.kind() == Value::kString)
        leadingNumber(v.get<std::string>(), &number);
    if (v.isNone() && letter != 'x')
        return false;
    switch (letter)
    {
    case 'i':
        if (v.isArray() || v.kind() == Value::kMatrix || !number) return false;
        v = Value(v.asInt());
        return true;
    case 'f':
        if (v.isArray() || v.kind() == Value::kMatrix || !number) return false;
        v = Value(v.asFloat());
        return true;
    case 'b':
        if (v.isArray() || v.kind() == Value::kMatrix || (!number && !isBooleanWord(v.get<std::string>()))) return false;
        v = Value(v.asBool());
        return true;
    case 's':
        if (v.isArray() || v.kind() == Value::kMatrix) return false;
        v = Value(v.asString());
        return true;
    case 'l':
    case 'a':
        if (double inUnits = 0; !number && v.kind() == Value::kString)
        {
            if (!readWithUnit(v.get<std::string>(), inUnits)) return false;
            v = Value(inUnits);
            return true;
        }
        [[fallthrough]];
    case 't':   // text with a unit, or a range, is the handler's to read
        if (v.isArray() || v.kind() == Value::kMatrix) return false;
        if (number) v = Value(v.asFloat());
        return true;
    default: return true;
    }
}

[[noreturn]] void badArgument(const Flag& flag, char letter, const std::string& given, const Value& value = {})
{
    throw Error("Flag '-" + given + "' must be passed " + kindName(letter) + " argument"
                + (value.kind() == Value::kString && std::strchr("al", letter) ? ", and '" + value.asString() + "' is none." : "."));
}

void appendNumbers(const Value& v, std::vector<Value>& out)
{
    const Floats all = v.asFloats();
    for (double d : *all)
        out.emplace_back(d);
}

/// A single value, or the elements of an array.
void flatten(const Value& v, std::vector<Value>& out)
{
    switch (v.kind())
    {
    case Value::kInts:    for (int32_t i : v.get<Ints>()) out.emplace_back(i); break;
    case Value::kFloats:  appendNumbers(v, out); break;
    case Value::kStrings: for (const std::string& s : v.get<Strings>()) out.emplace_back(s); break;
    case Value::kVectors: for (const Vec3& e : v.get<Vectors>()) out.emplace_back(e); break;
    default:              out.push_back(v);
    }
}

/// As `flatten`, and vectors into their components: for flags with several arguments.
void flattenDeep(const Value& v, std::vector<Value>& out)
{
    if (v.kind() == Value::kVector || v.kind() == Value::kVectors || v.kind() == Value::kMatrix)
        appendNumbers(v, out);
    else
        flatten(v, out);
}

const char* modeName(Mode mode) { return mode == kQuery ? "query" : mode == kEdit ? "edit" : "create"; }

void addUse(Call& call, const Flag& flag, std::vector<Value> args, const std::string& given)
{
    if (!(flag.modes & call.mode))
        throw Error("Flag '-" + given + "' is not allowed in " + modeName(call.mode) + " mode.");
    if (!flag.multi)
        for (Call::Use& u : call.uses)
            if (u.flag == &flag)
            {
                u.args = std::move(args);   // given again: the last one counts
                return;
            }
    call.uses.push_back({&flag, std::move(args)});
}

class Parser
{
public:
    Parser(const Command& command, std::span<const Value> raw) : command_(command), raw_(raw) { call_.command = &command; }

    Call parse()
    {
        for (const Value& v : raw_)
            if (looksLikeFlag(v))
                if (int mode = modeFlag(command_, std::string_view(v.get<std::string>()).substr(1)))
                    call_.mode = Mode(mode);
        while (at_ < raw_.size())
        {
            const Value& v = raw_[at_++];
            if (looksLikeFlag(v))
                flag(v.get<std::string>().substr(1));
            else
                flatten(v, call_.args);
        }
        if (!call_.args.empty() && !command_.takesObjects)
            throw Error("Too many arguments: '" + call_.args[0].asString() + "'. The command '" + command_.name + "' takes only flags.");
        return std::move(call_);
    }

private:
    void flag(const std::string& name)
    {
        if (modeFlag(command_, name))
            return;
        const Flag* f = findFlag(command_, name);
        if (!f)
            throw Error("Invalid flag '-" + name + "'.");
        std::vector<Value> args;
        if (call_.mode != kQuery || f->queryArgs)
            take(*f, name, args);
        addUse(call_, *f, std::move(args), name);
    }

    bool isOwnFlag(const Value& v) const
    {
        if (!looksLikeFlag(v))
            return false;
        const std::string_view name = std::string_view(v.get<std::string>()).substr(1);
        return findFlag(command_, name) || modeFlag(command_, name);
    }

    void take(const Flag& f, const std::string& name, std::vector<Value>& args)
    {
        const size_t count = std::strlen(f.args);
        // in query mode an argument is the thing asked about, and may be left out
        const bool   optional = call_.mode == kQuery || (count == 1 && f.args[0] == 'b');
        while (args.size() < count)
        {
            if (at_ == raw_.size() || isOwnFlag(raw_[at_]))
            {
                if (optional && args.empty())
                    break;
                badArgument(f, f.args[args.size()], name);
            }
            const Value& v = raw_[at_];
            if (count > 1)
                takeElements(f, name, v, args);
            else
            {
                Value one = v;
                if (v.isArray() && f.args[0] != 'x')
                {
                    std::vector<Value> flat;
                    flatten(v, flat);
                    if (flat.size() == 1)
                        one = flat[0];
                }
                if (!convert(f.args[0], one))
                {
                    if (optional)
                        break;
                    badArgument(f, f.args[0], name, one);
                }
                args.push_back(std::move(one));
            }
            ++at_;
        }
        if (args.empty() && count == 1 && f.args[0] == 'b' && call_.mode != kQuery)
            args.emplace_back(true);
    }

    void takeElements(const Flag& f, const std::string& name, const Value& v, std::vector<Value>& args)
    {
        const size_t       count = std::strlen(f.args);
        std::vector<Value> flat;
        if (f.args[args.size()] == 'x')
            flat.push_back(v);
        else
            flattenDeep(v, flat);
        if (flat.size() > count - args.size())
            throw Error("Flag '-" + name + "' takes " + std::to_string(count) + " arguments.");
        for (Value& e : flat)
        {
            if (!convert(f.args[args.size()], e))
                badArgument(f, f.args[args.size()], name, e);
            args.push_back(std::move(e));
        }
        if (flat.empty())
            badArgument(f, f.args[args.size()], name);
    }

    const Command&         command_;
    std::span<const Value> raw_;
    size_t                 at_ = 0;
    Call                   call_;
};

/// One use of a keyword flag from its value; `elements` are the arguments.
void keywordUse(Call& call, const Flag& f, const std::string& name, std::vector<Value> elements)
{
    const size_t count = std::strlen(f.args);
    if (elements.size() != count)
        throw Error("Flag '" + name + "' must be passed " + std::to_string(count) + (count == 1 ? " argument." : " arguments."));
    for (size_t i = 0; i < count; ++i)
        if (!convert(f.args[i], elements[i]))
            throw Error("Flag '" + name + "' must be passed " + kindName(f.args[i]) + " argument.");
    addUse(call, f, std::move(elements), name);
}

void keyword(Call& call, const Keyword& k)
{
    const Flag* f = findFlag(*call.command, k.name);
    if (!f)
        throw Error("Invalid flag '" + k.name + "'");
    const size_t count = std::strlen(f->args);
    if (k.value.isNone())
        return;
    if (count == 0 || (call.isQuery() && !f->queryArgs))
    {
        if (k.value.isArray() || k.value.asBool())
            addUse(call, *f, {}, k.name);
        return;
    }
    std::vector<Value> flat;
    if (f->args[0] == 'x' && count == 1 && !(f->multi && k.value.kind() == Value::kStrings))
        return keywordUse(call, *f, k.name, {k.value});
    if (count > 1)
        flattenDeep(k.value, flat);
    else
        flatten(k.value, flat);
    if (call.isQuery() && flat.size() == 1 && flat[0].kind() == Value::kInt && (count > 1 || f->args[0] == 's'))
        return addUse(call, *f, {}, k.name);   // query=True, flag=True: the argument left out
    if (!f->multi || flat.size() <= count)
        return keywordUse(call, *f, k.name, std::move(flat));
    if (flat.size() % count)
        throw Error("Flag '" + k.name + "' must be passed arguments in groups of " + std::to_string(count) + ".");
    for (size_t i = 0; i < flat.size(); i += count)
        keywordUse(call, *f, k.name, {flat.begin() + long(i), flat.begin() + long(i + count)});
}

}  // namespace

Call parse(const Command& command, std::span<const Value> raw)
{
    if (!command.raw)
        return Parser(command, raw).parse();
    Call call;
    call.command = &command;
    call.args.assign(raw.begin(), raw.end());
    return call;
}

Call parseKeywords(const Command& command, std::span<const Value> args, std::span<const Keyword> keywords)
{
    Call call;
    call.command = &command;
    if (command.raw)
    {
        for (const Keyword& k : keywords)
        {
            call.args.emplace_back("-" + k.name);
            call.args.push_back(k.value);
        }
        call.args.insert(call.args.end(), args.begin(), args.end());
        return call;
    }
    for (const Keyword& k : keywords)
        if (int mode = modeFlag(command, k.name))
        {
            // query='x' is query=True with 'x' as the object
            const bool object = k.value.kind() == Value::kString && !isBooleanWord(k.value.get<std::string>());
            if (object)
                call.args.push_back(k.value);
            if (object || k.value.asBool())
                call.mode = Mode(mode);
        }
    for (const Keyword& k : keywords)
        if (!modeFlag(command, k.name))
            keyword(call, k);
    for (const Value& v : args)
        flatten(v, call.args);
    if (!call.args.empty() && !command.takesObjects)
        throw Error("Too many arguments: '" + call.args[0].asString() + "'. The command '" + command.name + "' takes only flags.");
    return call;
}

}  // namespace mirk::command

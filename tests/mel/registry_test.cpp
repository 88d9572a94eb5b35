// Parsing of arguments against a flag table, values and their text, rolling back.
#include <gtest/gtest.h>

#include <cmath>

#include "command/registry.h"
#include "command/undo.h"

namespace mirk::command {
namespace {

constexpr Flag kFlags[] = {
    {"n", "name", "s", kCreate | kEdit | kQuery},
    {"p", "position", "fff", kCreate | kEdit},
    {"v", "visible", "b", kCreate | kEdit | kQuery},
    {"r", "replace"},
    {"a", "add", "s", kCreate, true},
    {"id", "index", "i", kCreate | kQuery, false, true},
};

Value      nothing(Call&) { return {}; }
const Command kCommand{"thing", kFlags, nothing};

/// The call in one line: mode, flags with arguments, free arguments.
std::string shown(const Call& c)
{
    std::string out = c.isQuery() ? "query" : c.isEdit() ? "edit" : "create";
    for (const Call::Use& u : c.uses)
    {
        out += std::string(" ") + u.flag->longName + "(";
        for (const Value& v : u.args)
            out += v.asString() + (&v == &u.args.back() ? "" : ",");
        out += ")";
    }
    for (const Value& v : c.args)
        out += " " + v.asString();
    return out;
}

template <class F>
std::string result(F&& f)
{
    try
    {
        return shown(f());
    }
    catch (const Error& e)
    {
        return e.what();
    }
}

TEST(CommandParse, TextForm)
{
    struct Case { std::vector<Value> raw; const char* expected; };
    const Case cases[] = {
        {{"-n", "box", "cube1"}, "create name(box) cube1"},
        {{"cube1", "-position", 1, -2.5, "3", "cube2"}, "create position(1,-2.5,3) cube1 cube2"},
        {{"-p", make<Buffer<double>>(size_t(3), 4.0)}, "create position(4,4,4)"},
        {{"-p", Vec3{1, 2, 3}}, "create position(1,2,3)"},
        {{"-v", "off", "-v"}, "create visible(1)"},   // given again: the last one counts
        {{"-v", "cube1"}, "create visible(1) cube1"},
        {{"-a", "x", "-add", "y"}, "create add(x) add(y)"},
        {{Strings{"a", "b"}, -5, "-5"}, "create a b -5 -5"},
        {{"-n", "-5"}, "create name(-5)"},
        {{"cube1", "-n", "-q"}, "query name() cube1"},
        {{"-q", "-id", 3, "cube1"}, "query index(3) cube1"},
        {{"-e", "-v", 0, "cube1"}, "edit visible(0) cube1"},
        {{"-x"}, "Invalid flag '-x'."},
        {{"-nam", "a"}, "Invalid flag '-nam'."},   // no abbreviations
        {{"-n"}, "Flag '-n' must be passed a string argument."},
        {{"-n", "-r"}, "Flag '-n' must be passed a string argument."},
        {{"-id", "seven"}, "Flag '-id' must be passed an integer argument."},
        {{"-p", 1, 2, "-r"}, "Flag '-p' must be passed a numeric argument."},
        {{"-q", "-r"}, "Flag '-r' is not allowed in query mode."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(result([&] { return parse(kCommand, c.raw); }), c.expected);
}

TEST(CommandParse, KeywordForm)
{
    struct Case { std::vector<Keyword> keywords; const char* expected; };
    const Case cases[] = {
        {{{"name", "box"}, {"p", make<Buffer<double>>(size_t(3), 1.0)}}, "create name(box) position(1,1,1)"},
        {{{"add", Strings{"x", "y"}}, {"r", true}}, "create add(x) add(y) replace()"},
        {{{"replace", false}, {"visible", false}}, "create visible(0)"},
        {{{"q", true}, {"name", true}}, "query name()"},
        {{{"edit", true}, {"q", false}, {"v", 1}}, "edit visible(1)"},
        {{{"position", Ints{1, 2}}}, "Flag 'position' must be passed 3 arguments."},
        {{{"nam", "box"}}, "Invalid flag 'nam'"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(result([&] { return parseKeywords(kCommand, {}, c.keywords); }), c.expected);
}

TEST(Value, NumbersAsText)
{
    struct Case { double value; const char* text; };
    const Case cases[] = {{3, "3"}, {-0.5, "-0.5"}, {0.1 + 0.2, "0.30000000000000004"}, {100000, "100000"}, {1e16, "10000000000000000"},
                          {1e-5, "0.00001"}, {1e-7, "1e-07"}, {1e300, "1e+300"}, {1.0 / 3, "0.3333333333333333"}};
    for (const Case& c : cases)
        EXPECT_EQ(numberText(c.value), c.text);
}

TEST(Value, ConversionsCutAndSaturate)
{
    EXPECT_EQ(Value(-2.9).asInt(), -2);
    EXPECT_EQ(Value(1e12).asInt(), INT32_MAX);
    EXPECT_EQ(Value(std::nan("")).asInt(), 0);
    EXPECT_EQ(Value(Vec3{3, 4, 0}).asInt(), 5);
    EXPECT_EQ(Value(" 12.5cm").asFloat(), 12.5);
    EXPECT_EQ(Value("inf").asFloat(), 0);
    EXPECT_EQ(Value(Ints{}).asInt(), 0);
    EXPECT_EQ(Value(Vec3{1, 2.5, 3}).asString(), "1 2.5 3");
}

struct Recorder : UndoHooks
{
    std::string log;
    void begin(const char* name) override { log += std::string("(") + name; }
    void commit() override { log += ")"; }
    void rollback() noexcept override { log += "!"; }
};

Value inner(Call& c)
{
    if (!c.args.empty())
        throw Error("inner fails");
    return {};
}
const Command kInner{"registryTestInner", {}, inner};

Value outer(Call&)
{
    execute(kInner.name, {});
    try
    {
        const Value bad[] = {1};
        execute(kInner.name, bad);
    }
    catch (const Error&)
    {
    }
    return {};
}
const Command kOuter{"registryTestOuter", {}, outer};

TEST(CommandRun, NestedScopesAndRollback)
{
    Recorder hooks;
    UndoHooks* const before = setUndoHooks(&hooks);   // the host's, if it was started
    add(kInner);
    add(kOuter);
    execute(kOuter.name, {});
    setUndoHooks(before);
    EXPECT_EQ(hooks.log, "(registryTestOuter(registryTestInner)(registryTestInner!)");
    remove(kInner.name);
    EXPECT_THROW(execute(kInner.name, {}), Error);
    remove(kOuter.name);
}

}  // namespace
}  // namespace mirk::command

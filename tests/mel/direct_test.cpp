// Commands that bypass the compiler against the same texts compiled: a comment behind a text sends it to the compiler.
#include "mel/cache.h"

#include <random>

#include "mel/interpreter.h"
#include "support/host_fixture.h"

namespace mirk {
namespace {

using command::Value;

/// Tells every argument with its kind.
Value tellArguments(command::Call& call)
{
    std::string out;
    for (const Value& v : call.args)
        out += std::to_string(v.kind()) + ":" + v.asString() + "|";
    if (out.find("fail") != std::string::npos)
        throw command::Error("asked to fail");
    return Value(out);
}

const command::Command kTell{"tellArguments", {}, tellArguments, false, true, nullptr, true};

struct MelDirect : test::Host
{
    struct Outcome { bool compiled; std::string text; };

    void SetUp() override
    {
        Host::SetUp();
        command::add(kTell);
    }
    void TearDown() override
    {
        command::remove(kTell.name);
        Host::TearDown();
    }

    static Outcome run(const std::string& text)
    {
        const size_t before = mel::cache().counts().compiled + mel::cache().counts().reused;
        std::string  result;
        try
        {
            const Value v = mirk::mel::execute(text);
            result = std::to_string(v.kind()) + " " + mirk::mel::printed(v);
        }
        catch (const std::exception& e)
        {
            result = std::string("error ") + e.what();
        }
        return {mel::cache().counts().compiled + mel::cache().counts().reused != before, result};
    }
};

TEST_F(MelDirect, SameValuesAndErrorsAsCompiled)
{
    struct Case { const char* text; bool direct; };
    const Case cases[] = {
        {"tellArguments", true},
        {" \n\ttellArguments a b;  \n", true},
        {"tellArguments 1 -2 3.5 -.5 1e3 -1E-2 0x1F -0x10 2147483647 -2147483648 2147483648 007 5. 0", true},
        {"tellArguments on off true false yes no On", true},
        {"tellArguments -flag -f1 -9 -x_y \"-quoted\" \"two words\" \"\" \"a;b(c)\"", true},
        {"tellArguments a.b[3].c |p|q ns:n x* f[0:12] e[*] #n ./p a+b a%b ~ @", true},
        {"tellArguments a[1 2].b c[;].d", true},   // brackets hold blanks and more
        {"tellArguments 1a 1.2.3 -1x .5.5 1e 0xg", true},
        {"tellArguments fail", true},
        {"\n  tellArguments a\n fail", true},   // position of the second line
        {"setAttr nothing.tx 1", true},
        {"setAttr -notAFlag persp.tx 1", true},
        {"createNode -ss noSuchType", true},
        {"tellArguments 1e999", false},
        {"tellArguments \"a\\tb\"", false},
        {"tellArguments (1 + 2)", false},
        {"tellArguments(1, 2)", false},
        {"tellArguments `ls`", false},
        {"tellArguments {1, 2}", false},
        {"tellArguments <<1, 2, 3>> 1", false},
        {"tellArguments $x", false},
        {"tellArguments a; tellArguments b", false},
        {"tellArguments a, b", false},
        {"tellArguments \"a\"b", false},
        {"tellArguments -a=3", false},
        {"tellArguments a/*b*/", false},
        {"tellArguments a // b", false},
        {"noSuchCommand 1", false},
        {"print \"1\"", false},
        {"size a", false},
        {"int", false},
        {"", false},
    };
    for (const Case& c : cases)
    {
        const Outcome direct = run(c.text), compiled = run(std::string(c.text) + " // c");
        EXPECT_EQ(direct.text, compiled.text) << c.text;
        if (c.direct || direct.text.rfind("error", 0) != 0)   // what does not compile is not counted
            EXPECT_EQ(!direct.compiled, c.direct) << c.text;
    }
}

/// Texts out of the pieces that readings differ in, in any order.
TEST_F(MelDirect, RandomTextsAgreeWithTheCompiler)
{
    const char* const pieces[] = {" ", " ", " ", "a", "-b", "7", ".", "1.5", "-", "\"", "\"x\"", "[", "]", "*", ";", ",", "|", "\n", "on", "e5", "+", "\\", "/", "=", "0x", "\xc3\xa9"};
    std::mt19937      random(3);
    for (int k = 0; k < 4000; ++k)
    {
        std::string text = "tellArguments ";
        for (unsigned n = random() % 9; n > 0; --n)
            text += pieces[random() % std::size(pieces)];
        const std::string direct = run(text).text, compiled = run(text + "\n// c").text;
        if (direct.rfind("error", 0) != 0 || compiled.rfind("error", 0) != 0)   // syntax errors at the end differ by the comment
            ASSERT_EQ(direct, compiled) << text;
    }
}

TEST_F(MelDirect, AProcedureComesBeforeACommandOfItsName)
{
    static const command::Command other{"tellMine", {}, tellArguments, false, true, nullptr, true};   // the procedure stays
    command::add(other);
    EXPECT_EQ(str("tellMine a"), "3:a|");
    mel("global proc string tellMine(string $s) { return \"mine \" + $s; }");
    EXPECT_EQ(str("tellMine a"), "mine a");
    command::remove(other.name);
}

TEST_F(MelDirect, NumbersOfNamesAreTheLowestFree)
{
    for (int i = 0; i < 6; ++i)
        mel("createNode -ss multMatrix");
    mel("delete multMatrix2");
    mel("delete multMatrix5");
    mel("delete multMatrix4");
    EXPECT_EQ(str("createNode -ss multMatrix"), "multMatrix2");
    mel("createNode -ss -n multMatrix4 multMatrix");   // a free number taken by name
    EXPECT_EQ(str("createNode -ss multMatrix"), "multMatrix5");
    EXPECT_EQ(str("createNode -ss multMatrix"), "multMatrix7");
    EXPECT_EQ(str("createNode -ss -n multMatrix4 multMatrix"), "multMatrix8");
    mel("delete multMatrix5");
    EXPECT_EQ(str("createNode -ss -n multMatrix4 multMatrix"), "multMatrix5");
    mel("undo");
    EXPECT_EQ(str("createNode -ss multMatrix"), "multMatrix5");
    mel("rename multMatrix1 other");
    EXPECT_EQ(str("createNode -ss multMatrix"), "multMatrix1");
    // a run that begins further up
    for (int i = 0; i < 3; ++i)
        mel("createNode -ss -n far20 multMatrix");
    mel("delete far21");
    EXPECT_EQ(str("createNode -ss -n far20 multMatrix"), "far21");
    EXPECT_EQ(str("createNode -ss -n far20 multMatrix"), "far23");
    EXPECT_EQ(str("rename far23 \"far#\""), "far1");
    EXPECT_EQ(str("rename far1 \"far#\""), "far1");
}

}  // namespace
}  // namespace mirk

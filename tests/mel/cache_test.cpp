// Reuse of compiled code by texts that differ in numbers only.
#include "mel/cache.h"

#include "mel/interpreter.h"
#include "support/host_fixture.h"

namespace mirk {
namespace {

struct MelCache : test::Host
{
    /// Runs the text; whether it was compiled for it.
    static bool compiles(const std::string& text)
    {
        const size_t before = mel::cache().counts().compiled;
        Host::mel(text);
        return mel::cache().counts().compiled != before;
    }
    /// The error with its position.
    static std::string located(const std::string& text)
    {
        try
        {
            mirk::mel::execute(text);
        }
        catch (const std::exception& e)
        {
            return e.what();
        }
        return "no error";
    }
};

TEST_F(MelCache, NumbersAreParameters)
{
    struct Case { const char* text; double value; bool compiled; };
    const Case cases[] = {
        {"float $mc1 = 2 * 3.5 - 1;", 6, true},
        {"float $mc1 = 4 * 4.25 - 7;", 10, false},
        {"float $mc1 = 4 * 4 - 7;", 9, true},               // an int where a float was
        {"float $mc1 = 5 * 2 - 100;", -90, false},
        {"float $mc1 = -5 * 2 - 100;", -110, true},         // a sign is part of the text
        {"float $mc1 = -0.0 * 2 - 100;", -100, true},
        {"float $mc1 = -7.5 * 2 - 0;", -15, false},
        {"float $mc1 = 2147483648 * 2 - 0;", 4294967296.0, true},   // too large for an int
        {"float $mc1 = 2147483649 * 2 - 0;", 4294967298.0, true},
        {"int $mc2 = 7 / 2;", 3, true},
        {"int $mc2 = 9 / 2;", 4, false},
        {"float $mc3 = 7 / 2 + 1e2;", 103, true},
        {"float $mc3 = 9 / 4 + 1.5e-1;", 2.15, false},
        {"int $mc4 = 0x10 + 1;", 17, true},
        {"int $mc4 = 0x11 + 1;", 18, true},                 // hexadecimal stays in the text
        {"string $mc5 = \"a1\" + 1; int $mc6 = size($mc5);", 3, true},
        {"string $mc5 = \"a22\" + 1; int $mc6 = size($mc5);", 4, true},   // digits in a string are no number
        {"string $mc5 = \"a22\" + 333; int $mc6 = size($mc5);", 6, false},
        {"float $mc7[4] = {1, 2, 3}; float $mc8 = $mc7[1];", 2, true},
        {"float $mc7[900] = {1, 2, 3}; float $mc8 = $mc7[1];", 2, false},
        {"float $mc7[900] = {1, 5, 3}; float $mc8 = $mc7[1];", 5, true},  // an array of numbers is data of the code
        {"matrix $mc9[2][3]; $mc9[1][2] = 4; float $mc10 = $mc9[1][2];", 4, true},
        {"matrix $mc11[3][3]; $mc11[2][2] = 5; float $mc12 = $mc11[2][2];", 5, true},   // a matrix size is one too
        {"int $mc13 = 3 == 3 ? 10 : 20;", 10, true},
        {"int $mc13 = 3 == 4 ? 10 : 20;", 20, false},       // equal numbers did not become one
        {"int $mc14 = size(\"x\" + (1 + 1)) + abs(-3);", 5, true},
        {"int $mc14 = size(\"x\" + (9 + 1)) + abs(-30);", 33, false},
    };
    for (const Case& c : cases)
    {
        const size_t before = mel::cache().counts().compiled;
        EXPECT_NEAR(num(c.text), c.value, 1e-12) << c.text;
        EXPECT_EQ(mel::cache().counts().compiled != before, c.compiled) << c.text;
    }
}

TEST_F(MelCache, ProceduresTakeTheNumbersOfTheirOwnText)
{
    const auto text = [](const char* factor, const char* index) {
        return std::string("global proc float cacheTimes(float $x) { float $a[]; $a[0] = ") + factor + " * $x;\n return $a[" + index + "]; }";
    };
    EXPECT_TRUE(compiles(text("2.5", "0")));
    EXPECT_EQ(num("cacheTimes(2)"), 5);
    EXPECT_FALSE(compiles(text("1000.25", "0")));
    EXPECT_EQ(num("cacheTimes(2)"), 2000.5);
    // an error stands where it is in the text that runs, whose numbers have other lengths
    mel(text("1.0", "$x"));
    const std::string error = located("cacheTimes(-1)");
    mel(text("100000.0", "$x"));
    const std::string moved = located("cacheTimes(-1)");
    EXPECT_NE(error.find("line 2.9"), std::string::npos) << error;
    EXPECT_NE(moved.find("line 2.9"), std::string::npos) << moved;
    const auto oneLine = [](const char* n) { return std::string("int $cacheLine = ") + n + " / (1 - 1);"; };
    EXPECT_NE(located(oneLine("5")).find("line 1.20"), std::string::npos) << located(oneLine("5"));
    EXPECT_NE(located(oneLine("50000")).find("line 1.24"), std::string::npos) << located(oneLine("50000"));
}

TEST_F(MelCache, ARunningProcedureKeepsItsCode)
{
    mel("global proc int cacheSelf(int $again) { if ($again) { eval(\"global proc int cacheSelf(int $again) { return 200 + $again; }\");"
        " return 100 + cacheSelf(0); } return 1; }");
    EXPECT_EQ(num("cacheSelf(1)"), 300);
    EXPECT_EQ(num("cacheSelf(1)"), 201);
}

TEST_F(MelCache, CodeThatNoLongerFitsIsMadeAnew)
{
    mel("global proc int cacheKind() { return 7; }");
    EXPECT_EQ(Host::mel("cacheKind()").kind(), command::Value::kInt);
    mel("global proc string cacheKind() { return \"seven\"; }");
    EXPECT_EQ(Host::mel("cacheKind()").kind(), command::Value::kString);

    // variables declared anew with another type: both forms stay ready
    const char* const ints = "int $cacheData[]; $cacheData[0] = 3;", *const floats = "float $cacheData[]; $cacheData[0] = 3.5;";
    for (int turn = 0; turn < 3; ++turn)
    {
        EXPECT_EQ(compiles(ints), turn == 0);
        EXPECT_EQ(num("$cacheData[0]"), 3);
        EXPECT_EQ(compiles(floats), turn == 0);
        EXPECT_EQ(num("$cacheData[0]"), 3.5);
    }
}

TEST_F(MelCache, StaysWithinItsBytes)
{
    mel::Cache& c = mel::cache();
    c.setLimit(60000);
    for (int k = 0; k < 300; ++k)
        mel("int $cacheMany" + std::to_string(k) + "x = 1 + 2;");
    EXPECT_LE(c.counts().bytes, 60000u);
    EXPECT_LT(c.counts().entries, 290u);
    EXPECT_TRUE(compiles("int $cacheMany0x = 1 + 2;")) << "the oldest is gone";
    EXPECT_FALSE(compiles("int $cacheMany299x = 1 + 2;")) << "the newest is not";
    c.setLimit(size_t(16) << 20);
}

}  // namespace
}  // namespace mirk

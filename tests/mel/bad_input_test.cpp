// Texts that no interpreter should choke on: what is said, and that the session lives on.
#include <gtest/gtest.h>

#include "mel/interpreter.h"

namespace mirk::mel {
namespace {

std::string errorOf(const std::string& text)
{
    try
    {
        execute(text);
        return "ok";
    }
    catch (const ScriptError& e)
    {
        return e.what();
    }
}

std::string repeated(const std::string& piece, int count)
{
    std::string out;
    for (int i = 0; i < count; ++i)
        out += piece;
    return out;
}

TEST(MelBadInput, ClearErrors)
{
    using namespace std::string_literals;
    struct Case { std::string text, error; };
    const Case cases[] = {
        {"\"abc", "line 1.1, at '\"abc': Unterminated string."},
        {"\"abc\\", "Unterminated string."},
        {"1;\n/* x", "line 2.1, at '/': Unterminated comment."},
        {"if (1) {", "'}' is missing"},
        {"`ls", "'`' is missing"},
        {"int $a[", "at the end: Syntax error."},
        {"<<1, 2", "expected '>>'"},
        {"for (", "Syntax error"},
        {"switch (1) { case 1: ", "at the end: Syntax error."},
        {"proc f(", "Syntax error"},
        {"$", "at '$': Syntax error."},
        {"print(\"a\0b\")"s, "ok"},                          // a NUL inside a string is a character
        {"int $n = 1;\0"s, "at '\\x00': Syntax error."},
        {"\xff\xfe = 1;", "line 1.1, at '\\xff': Syntax error."},
        {"1 \xe2\x82\xac 2;", "at '\xe2\x82\xac': Syntax error."},   // a euro sign is one token
        {"print \"\xff\xc3\x28\";", "ok"},                   // bytes that are no UTF-8 pass through
        {"$\xc3\xa9 = 1;", "at '$': Syntax error."},
        {repeated("(", 100000), "Nested too deeply."},
        {repeated("{", 100000), "Nested too deeply."},
        {repeated("!", 100000) + "1;", "Nested too deeply."},
        {repeated("f(", 100000), "Nested too deeply."},
        {repeated("`a (", 100000), "Nested too deeply."},
        {repeated("if (1) ", 100000) + ";", "Nested too deeply."},
        {repeated("1 ? ", 100000), "Nested too deeply."},
        {repeated("<<", 100000), "Nested too deeply."},
        {"$x = " + repeated("$a = ", 100000) + "1;", "Nested too deeply."},
        {repeated("a (", 3000) + repeated(")", 3000) + ";", "Nested too deeply."},
        {"int $a[]; $a[2000000000] = 1;", "too large"},
        {"string $s[]; $s[2147483647] = \"x\";", "too large"},
        {"matrix $m[100000][2];", "at '$m': A matrix has 1 to 4096 rows and columns."},
        {"int $big = 99999999999999999999;", "ok"},           // a float literal, cut
        {"float $f = 1e999;", "The number is out of range."},
    };
    for (const Case& c : cases)
        EXPECT_NE(errorOf(c.text).find(c.error), std::string::npos) << c.text.substr(0, 60) << "\n" << errorOf(c.text).substr(0, 300);
    EXPECT_EQ(execute("1 + 1").asInt(), 2);
}

TEST(MelBadInput, LongScripts)
{
    // ten megabytes: one string, one comment, many statements, one long line of them
    EXPECT_EQ(execute("size(\"" + std::string(10'000'000, 'x') + "\")").asInt(), 10'000'000);
    EXPECT_EQ(execute("/*" + std::string(10'000'000, '*') + "*/ 3").asInt(), 3);
    const std::string line = "$melLong += 1;   // " + std::string(80, '-') + "\n";
    EXPECT_EQ(execute("int $melLong = 0;" + repeated(line, 100'000) + "$melLong").asInt(), 100'000);
    EXPECT_NE(errorOf(repeated(line, 100'000) + "$melLong = ;").find("line 100001.12, at ';'"), std::string::npos);
    EXPECT_EQ(execute("$melLong").asInt(), 100'000) << "a text that is not sound has no effect";
}

}  // namespace
}  // namespace mirk::mel

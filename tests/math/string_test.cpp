// Strings, numbers as text, identifiers and status values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypeId.h>
#include <maya/MUuid.h>

#include "math/number_text.h"

TEST(NumberText, IsTheShortestDecimalThatReadsBack)
{
    const struct { double value; const char* text; } cases[] = {
        {0, "0"}, {1, "1"}, {-3, "-3"}, {0.1, "0.1"}, {1.0 / 3, "0.3333333333333333"}, {100000, "100000"},
        {1234567890123.0, "1234567890123"}, {0.1 + 0.2, "0.30000000000000004"}, {-2.5e-5, "-0.000025"},
        {1e300, "1e+300"}, {5e-324, "5e-324"}, {0.1f, "0.10000000149011612"},
        {std::numeric_limits<double>::infinity(), "inf"}, {std::nan(""), "nan"}};
    for (const auto& c : cases) {
        EXPECT_EQ(mirk::numberText(c.value), c.text);
        if (std::isfinite(c.value)) {
            EXPECT_EQ(std::strtod(c.text, nullptr), c.value);
        }
    }
}

TEST(String, TakesNumbersInEveryPlace)
{
    MString s("v");
    s += 1;
    s += 0.5;
    s += 2u;
    EXPECT_EQ(s, "v10.52");
    s = 3;
    EXPECT_EQ(s + "/" + 4.25 + 5, "3/4.255");
    EXPECT_EQ(1 + MString("a"), "1a");
    s.set(2.0 / 3, 3);
    EXPECT_EQ(s, "0.667");
    s = s.asChar() + 2;  // a part of itself
    EXPECT_EQ(s, "667");
    EXPECT_EQ(MString(static_cast<const char*>(nullptr)).length(), 0u);
}

TEST(String, FindsAndCutsByBytesAndByCharacters)
{
    const MString s("h\xc3\xa9llo|n");  // the second letter takes two bytes
    EXPECT_EQ(s.length(), 8u);
    EXPECT_EQ(s.numChars(), 7u);
    EXPECT_EQ(s.index('l'), 3);
    EXPECT_EQ(s.indexW('l'), 2);
    EXPECT_EQ(s.rindex('l'), 4);
    EXPECT_EQ(s.index('z'), -1);
    EXPECT_EQ(s.substring(3, 5), "llo");
    EXPECT_EQ(s.substringW(1, 2), "\xc3\xa9l");
    EXPECT_EQ(s.substring(-4, 100), s);
    EXPECT_EQ(s.substring(5, 4), "");
    EXPECT_EQ(s.substring(9, 12), "");
    EXPECT_EQ(MString(L"h\u00e9\U0001F600"), "h\xc3\xa9\xf0\x9f\x98\x80");
}

TEST(String, SplitsAndReplaces)
{
    MStringArray parts;
    EXPECT_EQ(MString("|a||bc|").split('|', parts), MS::kSuccess);
    ASSERT_EQ(parts.length(), 2u);
    EXPECT_EQ(parts[1], "bc");
    parts[1].split('b', parts);  // the text is in the array that takes the parts
    ASSERT_EQ(parts.length(), 1u);
    EXPECT_EQ(parts[0], "c");
    EXPECT_EQ(MString().split('|', parts), MS::kFailure);

    MString s("aXbX");
    s.substitute("X", "XX");
    EXPECT_EQ(s, "aXXbXX");
    EXPECT_EQ(s.substitute("", "y"), MS::kInvalidParameter);
    s.format("^2s ^1s ^10s^^ ^x ^", "one", "two");
    EXPECT_EQ(s, "two one ^ ^x ^");
}

TEST(String, ReadsLeadingNumbers)
{
    EXPECT_EQ(MString(" 12.7px").asInt(), 12);
    EXPECT_EQ(MString("+12.5e1x").asDouble(), 125);
    EXPECT_EQ(MString("x1").asDouble(), 0);
    EXPECT_EQ(MString("99999999999").asInt(), std::numeric_limits<int>::max());
    EXPECT_EQ(MString("-99999").asShort(), std::numeric_limits<short>::min());
    EXPECT_TRUE(MString("-7 ").isInt());
    EXPECT_FALSE(MString("7.5").isInt());
    EXPECT_TRUE(MString("7.5").isDouble());
    EXPECT_FALSE(MString("").isDouble());
    EXPECT_FALSE(MString("+").isInt());
    EXPECT_FALSE(MString("40000").isShort());
    EXPECT_FALSE(MString("-1").isUnsigned());
}

TEST(Status, ComparesWithCodesAndTruth)
{
    const MStatus bad = MS::kInvalidParameter;
    EXPECT_TRUE(!bad && bad != MS::kSuccess && MS::kInvalidParameter == bad && bad.error());
    EXPECT_TRUE(MStatus(true) && MStatus(false) == MS::kFailure);
    EXPECT_EQ(bad.errorString().index(':'), 19);
    const auto returns = [](MStatus s) { CHECK_MSTATUS_AND_RETURN_IT(s); return MStatus(MS::kEndOfFile); };
    EXPECT_EQ(returns(MS::kSuccess), MS::kEndOfFile);
}

TEST(Identifiers, KeepTheirTextForm)
{
    EXPECT_EQ(MTypeId(0x12, 0x134), MTypeId(0x1234));
    MUuid a;
    EXPECT_FALSE(a.valid());
    a.generate();
    EXPECT_TRUE(a.valid());
    EXPECT_EQ(MUuid(a.asString()), a);
    EXPECT_EQ(MUuid("01234567-89ab-CDEF-0123-456789abcdef").asString(), "01234567-89AB-CDEF-0123-456789ABCDEF");
    EXPECT_FALSE(MUuid("01234567-89ab-CDEF-0123-456789abcdeg").valid());
}

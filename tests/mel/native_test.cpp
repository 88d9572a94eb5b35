// Machine code against bytecode: random programs and the places where they could differ.
#include "mel/native_tier.h"

#include <cstdlib>
#include <random>

#include "support/host_fixture.h"

namespace mirk {
namespace {

/// What a text does: its value, or its error with the place.
std::string outcome(const std::string& text)
{
    try
    {
        return mel::printed(mel::execute(text));
    }
    catch (const std::exception& e)
    {
        return std::string("error: ") + e.what();
    }
}

struct MelNative : test::Host
{
    void TearDown() override
    {
        mel::setNative(true);
        Host::TearDown();
    }

    static std::string without(const std::string& text)
    {
        mel::setNative(false);
        return outcome(text);
    }
    static std::string with(const std::string& text)
    {
        mel::setNative(true, 3);
        return outcome(text);
    }
};

/// Writes a program of ints, floats, vectors and their arrays. Indices and divisors are mostly tame, so that errors come
/// late or never; loops end.
class Writer
{
public:
    explicit Writer(unsigned seed) : random_(seed), name_("nat" + std::to_string(seed)) {}

    /// Defines procedures and calls one; the value shows all that it computed.
    std::string program()
    {
        std::string out = "global proc int " + name_ + "i(int $a, int $b) { if ($a > $b) return $a - $b; int $k; int $s = " + number() +
                          "; for ($k = 0; $k < 7; $k++) $s += $a * $k; return " + pick({"$s", "$a * $b", "$s % 100 + $b"}) + "; }\n" +
                          "global proc float " + name_ + "f(float $a) { return " + pick({"$a * 2", "$a - floor($a)", "$a > 1 ? $a / 3 : -$a"}) + "; }\n" +
                          "global proc " + name_ + "fill(float $to[], int $n) { int $k; for ($k = 0; $k < $n; $k++) $to[$k] += $k * 0.5; }\n" +
                          "global proc string " + name_ + "(int $i0, float $f0)\n{\nint $i1 = " + number() + ", $i2, $i3 = 7;\nfloat $f1 = " + real() +
                          ", $f2, $f3 = 0.25;\nvector $v0 = <<1, 2, 3>>, $v1;\nint $ia[]; float $fa[]; vector $va[]; string $s;\n";
        for (int k = 0, n = below(3) + 2; k < n; ++k)
            out += loop(0);
        out += "string $all = $i0 + \" \" + $i1 + \" \" + $i2 + \" \" + $i3 + \" \" + $f0 + \" \" + $f1 + \" \" + $f2 + \" \" + $f3 + \" \" + $v0 + \" \" + $v1 + \" \" + $s;\n"
               "int $q; for ($q = 0; $q < size($ia); $q++) $all += \" \" + $ia[$q];\nfor ($q = 0; $q < size($fa); $q++) $all += \" \" + $fa[$q];\n"
               "for ($q = 0; $q < size($va); $q++) $all += \" \" + $va[$q];\nreturn $all;\n}\n";
        return out + name_ + "(" + number() + ", " + real() + ");";
    }

private:
    int         below(int n) { return int(random_() % unsigned(n)); }
    std::string pick(std::initializer_list<const char*> from) { return from.begin()[below(int(from.size()))]; }
    std::string number() { return pick({"0", "1", "2", "-1", "3", "17", "100", "-2147483647", "2147483647", "65537", "0x7fffffff", "1000003"}); }
    std::string real() { return pick({"0.0", "1.5", "-0.25", "1e300", "1e-300", "3.0", "-7.75", "123456.789", "-0.0"}); }
    std::string intVar() { return pick({"$i0", "$i1", "$i2", "$i3"}); }
    std::string floatVar() { return pick({"$f0", "$f1", "$f2", "$f3"}); }
    std::string vectorVar() { return pick({"$v0", "$v1"}); }
    std::string index(int depth) { return below(25) ? "abs(" + intOf(depth) + ") % 37" : intOf(depth) + " % 5000"; }

    std::string intOf(int depth)
    {
        if (depth > 2)
            return below(3) ? intVar() : number();
        const std::string a = intOf(depth + 1), b = intOf(depth + 1);
        switch (below(14))
        {
        case 0:
        case 1:  return "(" + a + " + " + b + ")";
        case 2:  return "(" + a + " - " + b + ")";
        case 3:  return "(" + a + " * " + b + ")";
        case 4:  return below(6) ? "(" + a + " / (abs(" + b + ") % 9 + 1))" : "(" + a + " / " + b + ")";
        case 5:  return below(6) ? "(" + a + " % (abs(" + b + ") % 9 + 1))" : "(" + a + " % " + b + ")";
        case 6:  return "$ia[" + index(depth + 1) + "]";
        case 7:  return "(" + condition(depth + 1) + ")";
        case 8:  return "(" + condition(depth + 1) + " ? " + a + " : " + b + ")";
        case 9:  return "(int)" + floatOf(depth + 1);
        case 10: return pick({"min", "max"}) + "(" + a + ", " + b + ")";
        case 11: return "(- (" + a + "))";
        case 12: return pick({"size($ia)", "size($fa)", "size($va)"});
        default: return below(4) ? a : name_ + "i(" + a + ", " + b + ")";
        }
    }

    std::string floatOf(int depth)
    {
        if (depth > 2)
            return below(3) ? floatVar() : real();
        const std::string a = floatOf(depth + 1), b = floatOf(depth + 1);
        switch (below(16))
        {
        case 0:
        case 1:  return "(" + a + " + " + b + ")";
        case 2:  return "(" + a + " - " + b + ")";
        case 3:
        case 4:  return "(" + a + " * " + b + ")";
        case 5:  return below(6) ? "(" + a + " / (abs(" + b + ") + 0.5))" : "(" + a + " / " + b + ")";
        case 6:  return below(6) ? "(" + a + " % (abs(" + b + ") + 0.5))" : "(" + a + " % " + b + ")";
        case 7:
        case 8:  return "$fa[" + index(depth + 1) + "]";
        case 9:  return pick({"sin", "cos", "exp", "floor", "sqrt", "abs", "atan"}) + "(" + a + ")";
        case 10: return pick({"min", "max", "pow", "atan2"}) + "(" + a + ", " + b + ")";
        case 11: return "(float)" + intOf(depth + 1);
        case 12: return "(" + vectorOf(depth + 1) + ")" + pick({".x", ".y", ".z"});
        case 13: return pick({"mag", "(float)"}) + "(" + vectorOf(depth + 1) + ")";
        case 14: return "clamp(-100, 100, " + a + ")";
        default: return below(4) ? "(" + vectorOf(depth + 1) + " * " + vectorOf(depth + 1) + ")" : name_ + "f(" + a + ")";
        }
    }

    std::string vectorOf(int depth)
    {
        if (depth > 2)
            return vectorVar();
        switch (below(8))
        {
        case 0:  return "<<" + floatOf(depth + 1) + ", " + floatOf(depth + 1) + ", " + floatOf(depth + 1) + ">>";
        case 1:  return "(" + vectorOf(depth + 1) + " + " + vectorOf(depth + 1) + ")";
        case 2:  return "(" + vectorOf(depth + 1) + " - " + vectorOf(depth + 1) + ")";
        case 3:  return "(" + vectorOf(depth + 1) + " * " + floatOf(depth + 1) + ")";
        case 4:  return "(" + vectorOf(depth + 1) + " ^ " + vectorOf(depth + 1) + ")";
        case 5:  return "$va[" + index(depth + 1) + "]";
        case 6:  return "(-" + vectorOf(depth + 1) + ")";
        default: return vectorVar();
        }
    }

    std::string condition(int depth)
    {
        const std::string compare = pick({" < ", " <= ", " > ", " >= ", " == ", " != "});
        switch (below(depth > 2 ? 2 : 6))
        {
        case 0:  return intOf(depth + 1) + compare + intOf(depth + 1);
        case 1:  return floatOf(depth + 1) + compare + floatOf(depth + 1);
        case 2:  return "(" + condition(depth + 1) + " && " + condition(depth + 1) + ")";
        case 3:  return "!(" + condition(depth + 1) + ")";
        case 4:  return vectorOf(depth + 1) + pick({" == ", " != "}) + vectorOf(depth + 1);
        default: return "(" + floatOf(depth + 1) + " || " + condition(depth + 1) + ")";
        }
    }

    std::string loop(int depth)
    {
        const std::string k = "$k" + std::to_string(loops_++);
        std::string       body;
        for (int n = below(4) + 2; n > 0; --n)
            body += statement(depth + 1);
        const std::string turns = std::to_string(depth ? below(6) + 1 : below(40) + 10);
        if (below(3))
            return "int " + k + "; for (" + k + " = 0; " + k + " < " + turns + "; " + k + "++)\n{\n$i" + std::to_string(below(4)) + " += " + k + ";\n" + body + "}\n";
        return "int " + k + " = 0; " + (below(2) ? "while (" + k + "++ < " + turns + ")\n{\n" + body + "}\n"
                                                 : "do\n{\n" + body + "}\nwhile (++" + k + " < " + turns + ");\n");
    }

    std::string statement(int depth)
    {
        switch (below(depth > 2 ? 11 : 15))
        {
        case 0:
        case 1:  return intVar() + pick({" = ", " += ", " -= ", " *= "}) + intOf(0) + ";\n";
        case 2:
        case 3:  return floatVar() + pick({" = ", " += ", " -= ", " *= "}) + floatOf(0) + ";\n";
        case 4:  return vectorVar() + pick({" = ", " += "}) + vectorOf(1) + ";\n";
        case 5:  return "$ia[" + index(1) + "] = " + intOf(1) + ";\n";
        case 6:
        case 7:  return "$fa[" + index(1) + "]" + pick({" = ", " += "}) + floatOf(1) + ";\n";
        case 8:  return "$va[" + index(1) + "] = " + vectorOf(1) + ";\n";
        case 9:  return intVar() + pick({"++", "--"}) + ";\n" + floatVar() + "++;\n";
        case 10: return below(2) ? "if (size($s) < 40) $s += " + pick({"\"x\"", "$i1", "$f2"}) + ";\n" : "float $copy[] = $fa; $copy[3] = 1; $f3 += size($copy);\n";
        case 11: return "if (" + condition(1) + ")\n{\n" + statement(depth + 1) + "}\nelse\n{\n" + statement(depth + 1) + "}\n";
        case 12: return "if (" + condition(1) + ") " + pick({"break", "continue"}) + ";\n";
        case 13: return below(2) ? "catchQuiet($i2 = " + intOf(1) + " / " + intVar() + ");\n" : name_ + "fill($fa, " + std::to_string(below(20)) + ");\n";
        default: return loop(depth);
        }
    }

    std::mt19937 random_;
    std::string  name_;
    int          loops_ = 0;
};

/// MIRK_MEL_PROGRAMS in the environment runs that many instead.
TEST_F(MelNative, RandomProgramsDoTheSame)
{
    const char* const given = std::getenv("MIRK_MEL_PROGRAMS");
    const unsigned    count = given ? unsigned(std::atoi(given)) : 400;
    unsigned          errors = 0;
    for (unsigned seed = 1; seed <= count; ++seed)
    {
        const std::string text = Writer(seed).program(), expected = without(text);
        ASSERT_EQ(with(text), expected) << "program " << seed << "\n" << text;
        ASSERT_EQ(with(text), expected) << "the second time, program " << seed << "\n" << text;
        errors += expected.starts_with("error: ");
        ASSERT_EQ(expected.find("yntax"), std::string::npos) << expected << "\n" << text;
    }
    EXPECT_LT(errors, count * 2 / 3) << "most programs should come to their end";
}

TEST_F(MelNative, EdgesOfTheArithmetic)
{
    struct Case { const char *body, *result; };
    const Case cases[] = {
        {"$i = -2147483647 - 1; $i = $i / -1;", "-2147483648"},
        {"$i = -2147483647 - 1; $i = $i % -1;", "0"},
        {"$i = 2147483647; $i += $k + 1;", "-2147483636"},                      // 13 turns at the last one: wraps
        {"$i = abs(-2147483647 - 1);", "-2147483648"},
        {"$i = 1e300 * $k;", "2147483647"},
        {"$i = -1e300 * ($k + 1);", "-2147483648"},
        {"$i = sqrt(-1.0 - $k);", "0"},                                         // NaN
        {"$i = -7 / 2 + -7 % 3;", "-4"},
        {"$f = 0.0 * -1; $i = $f == 0;", "1"},
        {"$f = sqrt(-1.0); $i = ($f < 1) + ($f >= 1) * 2 + ($f != $f) * 4 + ($f == $f) * 8 + !$f * 16; if ($f < 1 || $f >= 1) $i += 32;", "4"},
        {"$i = min(3, $k) * 100 + max(3, $k);", "312"},
        {"$i = $a[1000000] + size($a);", "0"},                                  // past the end
        {"$a[$k * 3] = $k; $i = size($a);", "37"},
        {"$a[$k] = $k; $b = $a; $b[0] = 99; $i = $a[0] + size($b);", "13"},     // a copy shares until written
        {"$a[$k] += $k; nativeFill($a); $i = $a[1] + $a[20];", "27"},           // by reference: 13 times 2
        {"if ($k == 12) $i = 5 / ($k - 12);", "error: <eval>, line 2.52, at '/': Divide by zero."},
        {"if ($k == 12) $f = 5 % ($k - 12.0);", "error: <eval>, line 2.52, at '%': Divide by zero."},
        {"if ($k == 12) $i = $a[11 - $k];", "error: <eval>, line 2.50, at '$a': The array index -1 is negative."},
        {"if ($k == 12) $a[11 - $k] = 1;", "error: <eval>, line 2.45, at '$a': The array index -1 is negative."},
        {"if ($k == 12) $a[2000000000] = 1;", "error: <eval>, line 2.45, at '$a': The array index 2000000000 is too large."},
        {"$i += catchQuiet($f = 1 / ($k % 4 == 3 ? 0 : 1));", "3"},
        {"string $t = $k; $i += size($t);", "16"},
        {"$i = nativeSmall($k) + nativeSmall(0 - $k);", "-12"},
    };
    mel("global proc nativeFill(float $x[]) { $x[20] = $x[20] + 2; } global proc int nativeSmall(int $x) { if ($x > 0) return 0 - $x; return $x / 2 + 6; }");
    for (const Case& c : cases)
    {
        const std::string text = std::string("global proc string nativeEdge() { float $a[], $b[]; float $f; int $i, $k;\nfor ($k = 0; $k < 13; $k++) { ") +
                                 c.body + " }\nreturn $i; } nativeEdge();";
        EXPECT_EQ(without(text), c.result) << c.body;
        EXPECT_EQ(with(text), c.result) << c.body;
    }
}

TEST_F(MelNative, LoopsOfTheTopLevelAndTheirVariables)
{
    const auto run = [](bool native, const char* name) {
        mel::setNative(native, 3);
        const std::string n = name;
        return outcome("int $" + n + " = 1; for ($" + n + "k = 0; $" + n + "k < 50; $" + n + "k++) { $" + n + " += $" + n + "k; if ($" + n + "k == 40) eval(\"$" + n +
                       " += 1000\"); } $" + n + ";");
    };
    EXPECT_EQ(run(false, "natTopA"), "2226");   // 1 + 49 * 50 / 2 + 1000
    EXPECT_EQ(run(true, "natTopB"), "2226");
}

TEST_F(MelNative, RedefinedProceduresAreCalledAnew)
{
    mel::setNative(true, 3);
    mel("global proc int natCallee(int $x) { return $x + 1; }"
        "global proc int natCaller() { int $s = 0, $k; for ($k = 0; $k < 100; $k++) { $s = natCallee($s);"
        " if ($k == 49) eval(\"global proc int natCallee(int $x) { return $x + 10; }\"); } return $s; }");
    EXPECT_EQ(num("natCaller()"), 550);
    EXPECT_EQ(num("natCaller()"), 1000);
    mel("global proc float natCallee(float $x) { return $x + 0.5; }");
    EXPECT_EQ(num("natCaller()"), 500) << "an int variable drops the half, until the loop defines the int form again";
}

TEST_F(MelNative, LimitsHoldInBothTiers)
{
    mel("global proc int natDeep(int $n) { return $n < 1 ? 0 : natLeaf(natDeep($n - 1)); } global proc int natLeaf(int $x) { return $x + 1; }");
    mel("global proc int natEndless(int $n) { return natEndless($n + 1) + 1; }");
    for (const bool native : {false, true})
    {
        mel::setNative(native, 3);
        EXPECT_EQ(outcome("natDeep(40000)"), "40000");
        EXPECT_NE(outcome("natEndless(0)").find("Stack overflow"), std::string::npos);
        EXPECT_NE(outcome("float $natHuge[]; $natHuge[2147483647] = 1;").find("too large"), std::string::npos);
        EXPECT_NE(outcome("vector $natVectors[]; $natVectors[200000000] = 1;").find("too large"), std::string::npos);
        EXPECT_EQ(outcome("float $natRoom[2000000000]; size($natRoom);"), "0") << "a declared size only reserves";
        EXPECT_EQ(outcome("natLeaf(1)"), "2");
    }
}

TEST_F(MelNative, ArraysOfAttributesAreSharedUntilWritten)
{
    mel("createNode network -n natLend; addAttr -ln p -dt pointArray natLend; addAttr -ln v -dt vectorArray natLend; addAttr -ln i -dt Int32Array natLend;"
        "setAttr natLend.p -type pointArray 2 1 2 3 1 4 5 6 1; setAttr natLend.v -type vectorArray 2 1 2 3 4 5 6; setAttr natLend.i -type Int32Array 3 7 8 9;");
    EXPECT_EQ(nums("float $natP[] = `getAttr natLend.p`; $natP[7] = 9; $natP[8] = 10; $natP"), (std::vector<double>{1, 2, 3, 1, 4, 5, 6, 9, 10}));
    EXPECT_EQ(nums("getAttr natLend.p"), (std::vector<double>{1, 2, 3, 1, 4, 5, 6, 1}));
    EXPECT_EQ(nums("float $natV[] = `getAttr natLend.v`; setAttr natLend.v -type vectorArray 1 0 0 0; $natV"), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(nums("int $natI[] = `getAttr natLend.i`; int $natJ[] = $natI; $natI[0] = 1; $natJ"), (std::vector<double>{7, 8, 9}));
    EXPECT_EQ(nums("float $natF[] = `getAttr natLend.i`; $natF"), (std::vector<double>{7, 8, 9}));
    EXPECT_EQ(nums("int $natK[] = `getAttr natLend.p`; $natK"), (std::vector<double>{1, 2, 3, 1, 4, 5, 6, 1}));
    EXPECT_NE(melError("float $natN[] = `getAttr natLend.none`;").find("natLend.none"), std::string::npos);
}

}  // namespace
}  // namespace mirk

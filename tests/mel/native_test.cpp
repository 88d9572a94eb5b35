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

}  // namespace
}  // namespace mirk

// Neighbouring instructions that run as one: jumps into their middle, errors in their second half, and the frames of
// small procedures, without machine code.
#include "mel/native_tier.h"

#include "support/host_fixture.h"

namespace mirk {
namespace {

struct MelFused : test::Host
{
    MelFused() { mel::setNative(false); }
    ~MelFused() override { mel::setNative(true); }

    static std::string outcome(const std::string& body)
    {
        try
        {
            return mel::printed(mel::execute("global proc string fusedCase() {\n" + body + " }\nfusedCase();"));
        }
        catch (const std::exception& e)
        {
            return std::string("error: ") + e.what();
        }
    }
};

TEST_F(MelFused, EveryPairAndItsParts)
{
    struct Case { const char *body, *result; };
    const Case cases[] = {
        {"int $s, $i; for ($i = 0; $i < 5; $i++) $s += $i; return $s + \" \" + $i;", "10 5"},
        {"int $s, $i; for ($i = 0; $i < 0; $i++) $s += 1; return $s + \" \" + $i;", "0 0"},           // straight to the test
        {"int $s, $i; for ($i = 0; $i < 6; $i++) { if ($i % 2) continue; $s += $i; } return $s;", "6"},   // to the step
        {"int $i = 2147483640, $n = 2147483647; for (; $i < $n; $i++) if ($i == 2147483645) $i = $n - 1; return $i;", "2147483647"},
        {"int $i = 2147483647, $s; do { $s += 1; $i++; } while ($i < -2147483646); return $s + \" \" + $i;", "3 -2147483646"},   // the step wraps
        {"int $a[], $i; for ($i = 0; $i < 4; $i++) $a[$i] = $i * 3; return size($a) + \" \" + $a[3];", "4 9"},
        {"int $x = 4, $y, $z, $w; $y = $x * 3; $z = $y + 1; $w = $z + $x; return $y + \" \" + $z + \" \" + $w;", "12 13 17"},
        {"float $a[] = {1.5, 2.5}, $x, $y, $z; $x = $y = $a[1]; $z = $a[0]; $y = $a[7]; return $x + \" \" + $y + \" \" + $z;", "2.5 0 1.5"},
        {"float $a[]; $a[1] = 2; $a[0] = $a[1]; $a[2] = 3; return $a[0] + $a[1] + $a[2];", "7"},
        {"float $x = 1e308, $y; $y = $x * 10 + 1; return $y > $x ? \"infinite\" : \"finite\";", "infinite"},
        {"int $k = -1; float $a[] = {1.0}, $x, $y; $x = $a[0];\n$y = $a[$k]; return $y;", "error: <eval>, line 3.6, at '$a': The array index -1 is negative."},
        {"int $k = -1; float $a[]; $a[0] = 1;\n$a[$k] = 2; return $a[0];", "error: <eval>, line 3.1, at '$a': The array index -1 is negative."},
        {"int $k = -1; float $a[]; int $e = catchQuiet($a[0] = ($a[1] = 5) + ($a[$k] = 2)); return $e + \" \" + size($a);", "1 2"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(outcome(c.body), c.result) << c.body;
}

TEST_F(MelFused, FramesOfSmallProcedures)
{
    mel("global int $fusedSeen; global proc int fusedInc(int $x) { return $x + 1; } global proc float fusedHalf(float $x) { return $x / 2; }"
        "global proc int fusedCount() { global int $fusedSeen; $fusedSeen += 1; return $fusedSeen + 1; }"
        "global proc vector fusedUp(vector $v) { return $v + <<0, 1, 0>>; } global proc string fusedText(int $x) { return \"t\" + $x; }"
        "global proc int fusedNone(int $x) { if ($x > 0) return $x; }");
    EXPECT_EQ(outcome("return fusedInc(fusedInc(1)) + \" \" + fusedHalf(3) + \" \" + fusedNone(0) + fusedNone(2);"), "3 1.5 02");
    EXPECT_EQ(outcome("global int $fusedSeen; $fusedSeen = 5; int $r = fusedCount(); return $r + \" \" + $fusedSeen;"), "7 6");
    EXPECT_EQ(outcome("global int $fusedSeen; $fusedSeen = fusedInc(fusedCount()); return $fusedSeen;"), "9");
    EXPECT_EQ(outcome("vector $v = fusedUp(fusedUp(<<1, 2, 3>>)); return fusedText($v.y);"), "t4");
}

TEST_F(MelFused, AttributesIntoLocalArrays)
{
    mel("createNode network -n fusedLend; addAttr -ln p -dt pointArray fusedLend; addAttr -ln i -dt Int32Array fusedLend;"
        "setAttr fusedLend.p -type pointArray 2 1 2 3 1 4 5 6 1; setAttr fusedLend.i -type Int32Array 3 7 8 9;");
    struct Case { const char *body, *result; };
    const Case cases[] = {
        {"float $a[] = `getAttr fusedLend.p`; $a[7] = 9; float $b[] = `getAttr fusedLend.p`; return $a[7] + \" \" + $b[7];", "9 1"},
        {"int $a[] = `getAttr fusedLend.i`; $a[3] = 4; int $b[] = `getAttr fusedLend.i`; return size($a) + \" \" + size($b);", "4 3"},
        {"int $k, $n; for ($k = 0; $k < 3; $k++) { float $a[] = `getAttr fusedLend.p`; $n += size($a); $a[20] = 1; } return $n;", "24"},
        {"int $k[] = `getAttr fusedLend.p`; float $f[] = `getAttr fusedLend.i`; return $k[6] + \" \" + $f[2];", "6 9"},
        {"float $a[] = {5.0}; if (catchQuiet($a = `getAttr fusedLend.none`)) return $a[0]; return \"read\";", "5"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(outcome(c.body), c.result) << c.body;
}

}  // namespace
}  // namespace mirk

// The MEL engine: loops beside Lua, texts as the expression nodes generate them. Rates in millions a second, with
// machine code off and on. `lua5.4` and `luajit` are programs that are started in the same run; where one is missing its
// counter is missing too.
#include <benchmark/benchmark.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench.h"
#include "mel/native_tier.h"
#include "plain_loops.h"

namespace {

constexpr double kMillions = 10;   // turns of the loops, and of their twins

/// The best of a few runs: machines are shared.
template <class F>
double bestOf(int runs, F&& f)
{
    double best = 1e30;
    for (int k = 0; k < runs; ++k)
    {
        const double start = bench::now();
        f();
        best = std::min(best, bench::now() - start);
    }
    return best;
}

/// Seconds that a Lua program says its loop took; 0 if the interpreter is missing.
double luaSeconds(const char* interpreter, const std::string& body)
{
    const std::string program =
        "local function run() " + body + " end local best = 1e9 for k = 1, 3 do local t = os.clock() run() best = math.min(best, os.clock() - t) end print(best)";
    FILE* out = popen((std::string("command -v ") + interpreter + " >/dev/null && " + interpreter + " -e '" + program + "'").c_str(), "r");
    double seconds = 0;
    if (out)
    {
        if (std::fscanf(out, "%lf", &seconds) != 1)
            seconds = 0;
        pclose(out);
    }
    return seconds;
}

struct Loop { const char *name, *mel, *lua; };

const Loop kLoops[] = {
    {"IntegerAdd", "int $s = 0; int $i; for ($i = 0; $i < 10000000; $i++) $s += $i; return $s;", "local s = 0 for i = 0, 9999999 do s = s + i end return s"},
    {"StringAppend64", "string $s = \"\"; int $i; int $k = 0; for ($i = 0; $i < 10000000; $i++) { $s += \"x\"; if (++$k == 64) { $s = \"\"; $k = 0; } } return $k;",
     "local s, k = \"\", 0 for i = 0, 9999999 do s = s .. \"x\" k = k + 1 if k == 64 then s = \"\" k = 0 end end return k"},
    {"ArrayWrite", "int $a[]; int $i; for ($i = 0; $i < 10000000; $i++) $a[$i] = $i; return size($a);",
     "local a = {} for i = 1, 10000000 do a[i] = i end return #a"},
    {"ProcedureCall", "int $s = 0; int $i; for ($i = 0; $i < 10000000; $i++) $s = melBenchInc($s); return $s;",
     "local function inc(x) return x + 1 end local s = 0 for i = 1, 10000000 do s = inc(s) end return s"},
};

void loop(benchmark::State& state, const Loop& l)
{
    bench::start();
    bench::mel("global proc int melBenchInc(int $x) { return $x + 1; }");
    bench::mel(std::string("global proc int melBenchLoop() { ") + l.mel + " }");
    double seconds[2] = {1e30, 1e30};
    for (auto _ : state)
        for (bool native : {false, true})
        {
            mirk::mel::setNative(native);
            seconds[native] = std::min(seconds[native], bestOf(3, [] { bench::mel("melBenchLoop()"); }));
        }
    mirk::mel::setNative(true);
    state.counters["bytecode"] = kMillions / seconds[0];
    state.counters["native"] = kMillions / seconds[1];
    for (const char* peer : {"lua5.4", "luajit"})
        if (const double s = luaSeconds(peer, l.lua); s > 0)
            state.counters[peer] = kMillions / s;
}

// ---- generated texts

constexpr int kPoints = 1000000;

void setPlug(const char* name, const MObject& data)
{
    MSelectionList list;
    MPlug          plug;
    list.add(name);
    list.getPlug(0, plug);
    plug.setMObject(data);
}

/// A node with the arrays that an expression on a million points reads.
void arrays()
{
    bench::start();
    bench::mel("file -force -new; createNode network -n gen; addAttr -ln ids -dt Int32Array gen; addAttr -ln pos -dt pointArray gen;"
               "addAttr -ln pos2 -dt pointArray gen; addAttr -ln nml -dt vectorArray gen; addAttr -ln clr -dt doubleArray gen;"
               "addAttr -ln map -dt doubleArray gen; addAttr -ln unset -dt doubleArray gen; addAttr -ln e -dt doubleArray gen; addAttr -ln e2 -dt doubleArray gen;"
               "addAttr -ln e3 -dt doubleArray gen;");
    MIntArray    ids(kPoints);
    MPointArray  pos(kPoints);
    MVectorArray nml(kPoints);
    MDoubleArray clr(kPoints * 4, 0.5), e(kPoints), e2(kPoints, 1.25), e3(kPoints, 0.75), map(kPoints * 2, 0.25);
    for (int i = 0; i < kPoints; ++i)
    {
        ids[i] = i;
        const double x = i % 1000 * 0.01;
        pos[i] = MPoint(x, (i / 1000) * 0.01 - 5, std::sin(x));
        nml[i] = MVector(0, 1, 0);
        e[i] = i * 1e-5;
    }
    setPlug("gen.ids", MFnIntArrayData().create(ids));
    setPlug("gen.pos", MFnPointArrayData().create(pos));
    setPlug("gen.pos2", MFnPointArrayData().create(pos));
    setPlug("gen.nml", MFnVectorArrayData().create(nml));
    setPlug("gen.clr", MFnDoubleArrayData().create(clr));
    setPlug("gen.map", MFnDoubleArrayData().create(map));
    setPlug("gen.e", MFnDoubleArrayData().create(e));
    setPlug("gen.e2", MFnDoubleArrayData().create(e2));
    setPlug("gen.e3", MFnDoubleArrayData().create(e3));
}

/// The procedure of a position block, with a time and a box that differ from run to run.
std::string pointText(int run)
{
    const auto        get = [](const char* variable, const char* plug) { return std::string("float $") + variable + "[]=`getAttr gen." + plug + "`;"; };
    const std::string n = std::to_string(kPoints), box = std::to_string(1 + run * 0.125);
    return "global proc float[] position_POINT()\n{\nstring $NODE=\"gen\";\nint $PCOUNT=" + n + ";\nint $PCOUNT2=" + n + ";\nint $CCOUNT=" + n +
           ";\nfloat $FF=" + std::to_string(run + 0.5) + ";int $F=$FF;\nfloat $BBX=" + box + ";float $BBY=" + box + ";float $BBZ=3.5;float $CEX=" + box +
           ";float $CEY=2.5;float $CEZ=2.5;\nfloat $GBX=" + box + ";float $GBY=2.5;float $GBZ=2.5;float $GCX=3.5;float $GCY=3.5;float $GCZ=3.5;\n"
           "int $IDS[]=`getAttr gen.ids`;int $MAPID[];" + get("POS", "pos") + get("POS2", "pos2") + get("CLR", "clr") + get("CLR2", "clr") +
           get("WGT", "unset") + get("WGT2", "unset") + get("NML", "nml") + get("NML2", "nml") + get("RDS", "unset") + get("RDS2", "unset") +
           get("MAP", "map") + get("MAP2", "map") + "\nint $ox,$oy,$oz,$ox3,$oy3,$oz3,$ox4,$oy4,$oz4,$ou,$ov;\nfloat $OUTPUT[" + std::to_string(kPoints * 4) +
           "],$ID,$MP,$X,$Y,$Z,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$WEIGHT,$WEIGHT2,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,$CR2,$CB2,$CG2,"
           "$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n$ID=$X=$Y=$Z=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$WEIGHT=$WEIGHT2="
           "$NX=$NY=$NZ=$NX2=$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n// START\n;\nfor($i=0;$i<" + n +
           ";$i++)\n{\n$ID=(int)$IDS[$i];\n$ox=$i*3;$oy=$ox+1;$oz=$ox+2;$ox3=$IDS[$i]*3;$oy3=$ox3+1;$oz3=$ox3+2;$ox4=$IDS[$i]*4;$oy4=$ox4+1;$oz4=$ox4+2;"
           "$oa4=$ox4+3;$ou=$i*2;$ov=$ou+1;\n$X=$TX=$POS[$ox4];$Y=$TY=$POS[$oy4];$Z=$TZ=$POS[$oz4];$TX2=$POS2[$ox4];$TY2=$POS2[$oy4];$TZ2=$POS2[$oz4];\n"
           "$CR=$CLR[$ox4];$CG=$CLR[$oy4];$CB=$CLR[$oz4];$ALPHA=$CLR[$oa4];$CR2=$CLR2[$ox4];$CG2=$CLR2[$oy4];$CB2=$CLR2[$oz4];$ALPHA2=$CLR2[$oa4];\n"
           "$WEIGHT=$WGT[$IDS[$i]];$WEIGHT2=$WGT2[$IDS[$i]];\n$NX=$NML[$ox3];$NY=$NML[$oy3];$NZ=$NML[$oz3];$NX2=$NML2[$ox3];$NY2=$NML2[$oy3];$NZ2=$NML2[$oz3];\n"
           "$RADIUS=$RDS[$IDS[$i]];$RADIUS2=$RDS2[$IDS[$i]];\n$MAPU=$MAP[$ou];$MAPV=$MAP[$ov];$MAPU2=$MAP2[$ou];$MAPV2=$MAP2[$ov];\n"
           "$X = sin($TX)*0.5 + $TY*$TZ; if ($TY > 0) $Y = $TY*2;\n"
           "$OUTPUT[$ox]=$X;$OUTPUT[$oy]=$Y;$OUTPUT[$oz]=$Z;\n}\n// END BLOCK\n;\nreturn $OUTPUT;\n}\n";
}

void DefineAnew(benchmark::State& state)
{
    bench::start();
    mirk::mel::setNative(true);
    bench::mel(pointText(0));
    int run = 0;
    for (auto _ : state)
        MGlobal::executeCommand(pointText(++run).c_str());
}

void PointExpression(benchmark::State& state)
{
    arrays();
    double seconds[2] = {1e30, 1e30};
    int    run = 0;
    for (auto _ : state)
        for (bool native : {false, true})
        {
            mirk::mel::setNative(native);
            for (int k = 0; k < 3; ++k)
            {
                MDoubleArray result;
                const double start = bench::now();
                MGlobal::executeCommand(pointText(++run).c_str());
                MGlobal::executeCommand("position_POINT()", result);
                seconds[native] = std::min(seconds[native], bench::now() - start);
                if (result.length() != unsigned(kPoints) * 3)
                    state.SkipWithError("the expression failed");
            }
        }
    mirk::mel::setNative(true);
    state.counters["bytecode"] = 1e-6 * kPoints / seconds[0];
    state.counters["native"] = 1e-6 * kPoints / seconds[1];
    state.counters["bare_loop"] = 1e-6 * kPoints / bestOf(3, [] { plain::pointLoop(kPoints); });
}

void ArrayExpression(benchmark::State& state)
{
    arrays();
    std::string global = "int $ia_ARREXP[]; float $fa_ARREXP[];\n", local, loads, stores;
    for (const char* k : {"", "2", "3"})
    {
        const std::string a = std::string("$a") + k + "_ARREXP", c = std::string("$c") + k + "_ARREXP", e = std::string("$E") + k;
        global += "float " + a + "[]; " + a + " = `getAttr gen.e" + k + "`; int " + c + " = size(" + a + ");\n";
        local += "float " + e + "; global int " + c + "; global float " + a + "[]; if($count < " + c + ") $count = " + c + ";\n";
        loads += e + " = " + a + "[$i];\n";
        stores += a + "[$i] = " + e + ";\n";
    }
    double seconds[2] = {1e30, 1e30};
    for (auto _ : state)
        for (bool native : {false, true})
        {
            mirk::mel::setNative(native);
            for (int k = 0; k < 3; ++k)
            {
                const std::string text = global + "global proc ARRAYEXPRESSION(){\nint $count; string $NODE = \"gen\"; float $TIME = " + std::to_string(k + 0.25) +
                                         "; int $FRAME = (int)$TIME;\n" + local + "int $COUNT = $count;\n\n// START\n\nfor($i = 0; $i < $count; ++$i){int $ID = $i;\n" + loads +
                                         "\n$E = sin($E)*0.5 + $E2*$E3;;\n\n" + stores + "}\n\n// END\n\n}\n ARRAYEXPRESSION();\n";
                MDoubleArray result;
                const double start = bench::now();
                MGlobal::executeCommand(text.c_str());
                for (const char* back : {"$fa_ARREXP = $a_ARREXP", "$fa_ARREXP = $a2_ARREXP", "$fa_ARREXP = $a3_ARREXP"})
                    MGlobal::executeCommand(back, result);
                seconds[native] = std::min(seconds[native], bench::now() - start);
                if (result.length() != unsigned(kPoints))
                    state.SkipWithError("the expression failed");
            }
        }
    mirk::mel::setNative(true);
    state.counters["bytecode"] = 1e-6 * kPoints / seconds[0];
    state.counters["native"] = 1e-6 * kPoints / seconds[1];
    state.counters["bare_loop"] = 1e-6 * kPoints / bestOf(3, [] { plain::arrayLoop(kPoints); });
}

}  // namespace

BENCHMARK_CAPTURE(loop, IntegerAdd, kLoops[0])->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(loop, StringAppend64, kLoops[1])->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(loop, ArrayWrite, kLoops[2])->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(loop, ProcedureCall, kLoops[3])->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(DefineAnew)->Unit(benchmark::kMicrosecond);
BENCHMARK(PointExpression)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ArrayExpression)->Iterations(1)->Unit(benchmark::kMillisecond);

// The two nodes that run an artist's text, whole: reading, publishing, the text's loop and writing, on a million
// points or elements with a new time in each evaluation. Rates in millions a second with the language's machine code
// off and on, and that of the plain loop with the same arithmetic.
#include <benchmark/benchmark.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "bench.h"
#include "mel/native_tier.h"
#include "mel/plain_loops.h"

namespace {

constexpr int kSide = 1000, kCount = kSide * kSide;

/// Of this process: others may be running.
double cpuSeconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name.c_str());
    list.getPlug(0, result);
    return result;
}

void give(const std::string& name, const MDoubleArray& values)
{
    plug(name).setMObject(MFnDoubleArrayData().create(values));
}

/// The best of a few evaluations of `output`, each at another time.
double evaluationSeconds(const char* time, const char* output, double& now)
{
    MPlug  in = plug(time), out = plug(output);
    double best = 1e30;
    for (int k = 0; k < 5; ++k) {
        in.setDouble(now += 0.25);
        const double  start = cpuSeconds();
        const MObject data = out.asMObject();
        best = std::min(best, cpuSeconds() - start);
        benchmark::DoNotOptimize(data.isNull());
    }
    return best;
}

template <class Plain>
void rates(benchmark::State& state, const char* time, const char* output, Plain plain)
{
    double now = 0.0, seconds[2] = {1e30, 1e30}, bare = 1e30;
    for (auto _ : state) {
        for (const bool native : {false, true}) {
            mirk::mel::setNative(native);
            seconds[native] = std::min(seconds[native], evaluationSeconds(time, output, now));
        }
        for (int k = 0; k < 3; ++k) {
            const double start = cpuSeconds();
            plain(kCount);
            bare = std::min(bare, cpuSeconds() - start);
        }
    }
    mirk::mel::setNative(true);
    state.counters["bytecode"] = 1e-6 * kCount / seconds[0];
    state.counters["native"] = 1e-6 * kCount / seconds[1];
    state.counters["plain_loop"] = 1e-6 * kCount / bare;
    state.counters["plain_to_native"] = seconds[1] / bare;
}

void PointNode(benchmark::State& state)
{
    const std::string divisions = std::to_string(kSide - 1);
    bench::mel("file -force -new; polyPlane -width 10 -height 10 -subdivisionsX " + divisions + " -subdivisionsY " + divisions +
               " -name plane; createNode point -name pnt; connectAttr plane.worldMesh[0] pnt.inGeometry; setAttr pnt.enablePosition 1;"
               "setAttr -type \"string\" pnt.stringPosition \"$X = sin($TX)*0.5 + $TY*$TZ; if ($TY > 0) $Y = $TY*2;\";");
    rates(state, "pnt.currentTime", "pnt.outGeometry", plain::pointLoop);
    if (plug("pnt.outPositionPP").asMObject().apiType() != MFn::kVectorArrayData)   // points before the text has run
        state.SkipWithError("the expression failed");
}

void ArrayExpressionNode(benchmark::State& state)
{
    bench::mel("file -force -new; createNode network -name source; addAttr -ln e -dt doubleArray source; addAttr -ln e2 -dt doubleArray source;"
               "addAttr -ln e3 -dt doubleArray source; createNode arrayExpression -name ae;");
    MDoubleArray e(kCount);
    for (int i = 0; i < kCount; ++i)
        e[unsigned(i)] = i * 1e-5;
    give("source.e", e);
    give("source.e2", MDoubleArray(kCount, 1.25));
    give("source.e3", MDoubleArray(kCount, 0.75));
    bench::mel("connectAttr source.e ae.inArray; connectAttr source.e2 ae.inArray2; connectAttr source.e3 ae.inArray3;"
               "setAttr -type \"string\" ae.expression \"$E = sin($E)*0.5 + $E2*$E3;\";");
    rates(state, "ae.inTime", "ae.outArray", plain::arrayLoop);
    const MObject      result = plug("ae.outArray").asMObject();
    const MDoubleArray values = MFnDoubleArrayData(result).array();
    if (values.length() != unsigned(kCount) || values[0] != 0.9375)   // sin 0 / 2 + 1.25 * 0.75
        state.SkipWithError("the expression failed");
}

}  // namespace

BENCHMARK(PointNode)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ArrayExpressionNode)->Iterations(1)->Unit(benchmark::kMillisecond);

// The array nodes through the graph on ten million doubles or three million vectors, beside plain loops over arrays of
// the same size. Counters: the time of the plain loop, the ratio to it (of a chain: per node), values a second of both,
// and copies of the output that are made beyond input and output.
#include <benchmark/benchmark.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "bench.h"
#include "plain_arrays.h"

namespace {

constexpr std::size_t kDoubles = 10'000'000, kVectors = 3'000'000, kVectorValues = 3 * kVectors;

using Values = std::vector<double>;

double valueAt(std::size_t i) { return double(i % 1001) / 1000.0 - 0.25; }

Values numbers(std::size_t n)
{
    Values values(n);
    for (std::size_t i = 0; i < n; ++i)
        values[i] = valueAt(i);
    return values;
}

MObject doubleArray(std::size_t n)
{
    MDoubleArray array(static_cast<unsigned>(n));
    for (unsigned i = 0; i < n; ++i)
        array[i] = valueAt(i);
    return MFnDoubleArrayData().create(array);
}

MObject vectorArray(std::size_t n)
{
    MVectorArray array(static_cast<unsigned>(n));
    for (unsigned i = 0; i < n; ++i)
        array[i] = MVector(valueAt(3 * i), valueAt(3 * i + 1), valueAt(3 * i + 2));
    return MFnVectorArrayData().create(array);
}

MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    list.add(name.c_str());
    list.getPlug(0, result);
    return result;
}

/// The median time of seven runs.
double timeOf(const std::function<void()>& f)
{
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        const double start = bench::now();
        f();
        times.push_back(bench::now() - start);
    }
    std::nth_element(times.begin(), times.begin() + 3, times.end());
    return times[3];
}

/// A new scene with sources `s.d` (doubles) and `s.v` (vectors), of which only those asked for are filled.
void sources(std::size_t doubles, std::size_t vectors)
{
    bench::mel("file -force -new; createNode network -name s; addAttr -longName d -dataType \"doubleArray\" s;"
               "addAttr -longName v -dataType \"vectorArray\" s; addAttr -longName tick s");
    if (doubles > 0)
        plug("s.d").setMObject(doubleArray(doubles));
    if (vectors > 0)
        plug("s.v").setMObject(vectorArray(vectors));
}

/// Times pulls of `output`, made dirty by `dirtied` (an array set anew, or a number of no effect), against the plain loop.
void measure(benchmark::State& state, const char* dirtied, const char* output, std::size_t outValues, double plainSeconds,
             int nodes = 1)
{
    MPlug         in = plug(dirtied), out = plug(output);
    const MObject data = in.asMObject();
    const auto    pull = [&] {
        if (data.isNull())
            in.setDouble(in.asDouble() + 1.0);
        else
            in.setMObject(data);
        const double  start = bench::now();
        const MObject result = out.asMObject();
        benchmark::DoNotOptimize(result.isNull());
        return bench::now() - start;
    };
    pull();
    bench::resetPeak();
    const double        before = double(bench::residentBytes());
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(pull());
        state.SetIterationTime(times.back());
    }
    std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
    const double median = times[times.size() / 2] / nodes;
    state.counters["plain_ms"] = 1e3 * plainSeconds;
    state.counters["plain_values/s"] = double(outValues) / plainSeconds;
    state.counters["values/s"] = double(outValues) / median;
    state.counters["ratio"] = median / plainSeconds;
    state.counters["copies"] = (double(bench::peakBytes()) - before) / (8.0 * double(outValues));
    bench::mel("file -force -new");
}

void one(benchmark::State& state, const char* setup, std::size_t outValues, const std::function<void(const Values&, Values&)>& loop)
{
    double plainSeconds = 0.0;
    {
        const Values in = numbers(kDoubles);
        Values       out(std::max(outValues, kDoubles));
        plainSeconds = timeOf([&] { loop(in, out); });
    }
    const bool vectors = std::string(setup).find("s.v") != std::string::npos;
    sources(kDoubles, vectors ? kVectors : 0);
    bench::mel(setup);
    measure(state, vectors ? "s.v" : "s.d", "n.outArray", outValues, plainSeconds);
}

void RemapArray(benchmark::State& state)
{
    one(state, "createNode remapArray -name n; connectAttr s.d n.inArray; setAttr n.absolute 1; setAttr n.shift 1;"
               "setAttr n.shiftValue 0.25; setAttr n.remap 1; setAttr n.remapMin 0.2; setAttr n.remapMax 0.7; setAttr n.clamp 1;"
               "setAttr n.clampMin 0.1; setAttr n.clampMax 0.9",
        kDoubles, [](const Values& in, Values& out) { plain::remap(in.data(), kDoubles, out.data()); });
}

void RemapArrayRamp(benchmark::State& state)
{
    one(state, "createNode remapArray -name n; connectAttr s.d n.inArray; setAttr n.useRamp 1", kDoubles,
        [](const Values& in, Values& out) { plain::ramp(in.data(), kDoubles, out.data()); });
}

void RemapArrayVectors(benchmark::State& state)
{
    one(state, "createNode remapArray -name n; connectAttr s.v n.inArray; setAttr n.shift 1; setAttr n.shiftValue 0.25;"
               "setAttr n.outArrayType 1",
        kVectorValues, [](const Values& in, Values& out) { plain::shift(in.data(), kVectorValues, out.data()); });
}

void ArrayToArray(benchmark::State& state)
{
    const std::size_t points = 4 * kVectors;
    double            plainSeconds = 0.0;
    {
        const Values xyz = numbers(kVectorValues), w = numbers(kVectors);
        Values       out(points);
        plainSeconds = timeOf([&] { plain::channels(xyz.data(), w.data(), kVectors, out.data()); });
    }
    sources(kVectors, kVectors);
    bench::mel("createNode arrayToArray -name n; connectAttr s.v n.inArray1; connectAttr s.d n.inArray2; setAttr n.outDataType 1");
    measure(state, "s.d", "n.outArray", points, plainSeconds);
}

void ArrayBlend(benchmark::State& state)
{
    const auto loop = [](const Values& in, Values& out) { plain::blend(in.data(), in.data(), 0.3, kDoubles, out.data()); };
    one(state, "createNode arrayBlend -name n; connectAttr s.d n.inArray1; connectAttr s.d n.inArray2; setAttr n.blend 0.3",
        kDoubles, loop);
}

void CreateArray(benchmark::State& state)
{
    double plainSeconds = 0.0;
    {
        Values out(kDoubles);
        plainSeconds = timeOf([&] { plain::fill(0.5, kDoubles, out.data()); });
    }
    sources(0, 0);
    bench::mel("createNode createArray -name n; setAttr n.outputType 1; setAttr n.length " + std::to_string(kDoubles) +
               "; setAttr n.defaultValueX 0.5");
    measure(state, "n.defaultValueW", "n.outArray", kDoubles, plainSeconds);
}

void MergeArrays(benchmark::State& state)
{
    one(state, "createNode mergeArrays -name n; connectAttr s.d n.inArrays[0].inArray; connectAttr s.d n.inArrays[1].inArray;"
               "setAttr n.inArrays[1].multiplier 2",
        kDoubles, [](const Values& in, Values& out) { plain::merge(in.data(), in.data(), kDoubles, out.data()); });
}

void MergeVectorArrays(benchmark::State& state)
{
    one(state, "createNode mergeVectorArrays -name n; connectAttr s.v n.inArrays[0].inArray;"
               "connectAttr s.v n.inArrays[1].inArray; setAttr n.inArrays[1].multiplier 2",
        kVectorValues, [](const Values& in, Values& out) { plain::merge(in.data(), in.data(), kVectorValues, out.data()); });
}

void CombineArrays(benchmark::State& state)
{
    one(state, "createNode combineArrays -name n; connectAttr s.v n.inArrays[0]; connectAttr s.v n.inArrays[1]", 2 * kVectorValues,
        [](const Values& in, Values& out) {
            plain::copy(in.data(), kVectorValues, out.data());
            plain::copy(in.data(), kVectorValues, out.data() + kVectorValues);
        });
}

void ResizeArray(benchmark::State& state)
{
    one(state, "createNode resizeArray -name n; connectAttr s.d n.inArray; setAttr n.length 10000000", kDoubles,
        [](const Values& in, Values& out) { plain::copy(in.data(), kDoubles, out.data()); });
}

void DecimateArray(benchmark::State& state)
{
    one(state, "createNode decimateArray -name n; connectAttr s.d n.inArray", kDoubles / 2,
        [](const Values& in, Values& out) { plain::decimate(in.data(), kDoubles, out.data()); });
}

void RandomizeArray(benchmark::State& state)
{
    one(state, "createNode randomizeArray -name n; connectAttr s.d n.inArray; setAttr n.randomMaxX 1", kDoubles,
        [](const Values& in, Values& out) { plain::randomize(in.data(), kDoubles, out.data()); });
}

void ChainOfTen(benchmark::State& state)
{
    double plainSeconds = 0.0;
    {
        const Values in = numbers(kDoubles);
        Values       out(kDoubles);
        plainSeconds = timeOf([&] { plain::shift(in.data(), kDoubles, out.data()); });
    }
    sources(kDoubles, 0);
    std::string from = "s.d";
    for (int i = 0; i < 10; ++i) {
        const std::string node = "n" + std::to_string(i);
        bench::mel("createNode remapArray -name " + node + "; connectAttr " + from + " " + node + ".inArray; setAttr " + node +
                   ".shift 1; setAttr " + node + ".shiftValue 0.25");
        from = node + ".outArray";
    }
    measure(state, "s.d", "n9.outArray", kDoubles, plainSeconds, 10);
}

/// A thousand frames of a hundred thousand values. Counters: growth of the process after the first hundred frames.
void ArrayDataContainer(benchmark::State& state)
{
    constexpr std::size_t n = 100'000;
    double                plainSeconds = 0.0;
    {
        const Values in = numbers(n);
        Values       old(n, 0.5), out(n);
        plainSeconds = timeOf([&] { plain::accumulate(old.data(), in.data(), n, out.data()); });
    }
    sources(n, 0);
    bench::mel("createNode arrayDataContainer -name n; connectAttr s.d n.inArray; setAttr n.sink 0.01; setAttr n.endTime 2000");
    MPlug time = plug("n.inTime"), out = plug("n.outArray");
    for (auto _ : state) {
        double total = 0.0, settled = 0.0;
        for (int frame = 0; frame < 1000; ++frame) {
            time.setDouble(frame);
            const double  start = bench::now();
            const MObject result = out.asMObject();
            benchmark::DoNotOptimize(result.isNull());
            total += bench::now() - start;
            if (frame == 100)
                settled = double(bench::residentBytes());
        }
        state.SetIterationTime(total);
        state.counters["frame_ms"] = total;
        state.counters["ratio"] = total / 1000 / plainSeconds;
        state.counters["growth_MB"] = (double(bench::residentBytes()) - settled) / 1e6;
    }
    bench::mel("file -force -new");
}

} // namespace

#define MIRK_ARRAYS(f) BENCHMARK(f)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(9)
MIRK_ARRAYS(RemapArray);
MIRK_ARRAYS(RemapArrayRamp);
MIRK_ARRAYS(RemapArrayVectors);
MIRK_ARRAYS(ArrayToArray);
MIRK_ARRAYS(ArrayBlend);
MIRK_ARRAYS(CreateArray);
MIRK_ARRAYS(MergeArrays);
MIRK_ARRAYS(MergeVectorArrays);
MIRK_ARRAYS(CombineArrays);
MIRK_ARRAYS(ResizeArray);
MIRK_ARRAYS(DecimateArray);
MIRK_ARRAYS(RandomizeArray);
MIRK_ARRAYS(ChainOfTen);
BENCHMARK(ArrayDataContainer)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

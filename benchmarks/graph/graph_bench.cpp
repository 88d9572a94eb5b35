// The graph itself: long chains, large data through nodes that do nothing.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>

#include "bench.h"
#include "plain_chain.h"
#include "dag/dag.h"
#include "data/mobject.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"

using namespace mirk;

namespace {

class plusOne : public MPxNode
{
public:
    static void* creator() { return new plusOne; }
    static MStatus initialize()
    {
        MFnNumericAttribute n;
        aIn = n.create("input", "i", MFnNumericData::kDouble);
        addAttribute(aIn);
        aOut = n.create("output", "o", MFnNumericData::kDouble);
        n.setWritable(false);
        addAttribute(aOut);
        return attributeAffects(aIn, aOut);
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOut)
            return MS::kUnknownParameter;
        block.outputValue(aOut).set(block.inputValue(aIn).asDouble() + 1);
        return MS::kSuccess;
    }
    static inline MObject aIn, aOut;
};

NodeType* plusOneType()
{
    static NodeType* type = [] {
        auto t = std::make_unique<NodeType>();
        t->name = "benchPlusOne";
        t->id = 0x7f202;
        t->creator = plusOne::creator;
        t->inherit(registerBaseType());
        typeBeingBuilt() = t.get();
        plusOne::initialize();
        typeBeingBuilt() = nullptr;
        return registerNodeType(std::move(t));
    }();
    return type;
}

/// A dirty chain of one-in-one-out nodes pulled at its end. Counters: nanoseconds a node for the pull and for the
/// dirt, the plain chain's nanoseconds, and the ratio of pull to it.
void dirtyChain(benchmark::State& state)
{
    const int n = int(state.range(0));
    std::vector<Node*> chain;
    for (int i = 0; i < n; ++i)
        chain.push_back(edit::createNode(plusOneType(), "chain#"));
    Attribute* in = plusOneType()->find("input");
    Attribute* out = plusOneType()->find("output");
    for (int i = 1; i < n; ++i)
        edit::connect(*chain[i - 1]->cell(out), *chain[i]->cell(in));
    Cell& first = *chain.front()->cell(in);
    Cell& last = *chain.back()->cell(out);
    eval::pull(last);

    double spread = 1e9, pull = 1e9, value = 0;
    for (auto _ : state) {
        const double t0 = bench::now();
        first.setNumber(++value);
        eval::spread(first);
        const double t1 = bench::now();
        eval::pull(last);
        const double t2 = bench::now();
        spread = std::min(spread, t1 - t0);
        pull = std::min(pull, t2 - t1);
    }
    if (last.number() != value + n)
        state.SkipWithError("the chain gives a wrong value");

    std::vector<plain::Link> links(n);
    for (int i = 0; i + 1 < n; ++i)
        links[i].next = i + 1;
    double best = 1e9;
    for (int k = 0; k < 200; ++k) {
        const double t0 = bench::now();
        benchmark::DoNotOptimize(plain::runChain(links, k));
        best = std::min(best, bench::now() - t0);
    }
    state.counters["pull_ns_node"] = pull / n * 1e9;
    state.counters["dirt_ns_node"] = spread / n * 1e9;
    state.counters["plain_ns_node"] = best / n * 1e9;
    state.counters["ratio"] = pull / best;
    for (Node* node : chain)
        edit::deleteNode(*node);
}
BENCHMARK(dirtyChain)->Arg(10000)->Iterations(300)->Unit(benchmark::kMicrosecond);

MObject gridMesh(int side)
{
    MPointArray points(unsigned(side) * side);
    MIntArray   counts(unsigned(side - 1) * (side - 1), 4), connects(unsigned(side - 1) * (side - 1) * 4);
    for (int i = 0; i < side * side; ++i)
        points[i] = MPoint(i % side, 0, i / side);
    unsigned c = 0;
    for (int y = 0; y + 1 < side; ++y)
        for (int x = 0; x + 1 < side; ++x)
            for (int id : {y * side + x, (y + 1) * side + x, (y + 1) * side + x + 1, y * side + x + 1})
                connects[c++] = id;
    MFnMeshData data;
    MObject     owner = data.create();
    MFnMesh     fn;
    fn.create(side * side, (side - 1) * (side - 1), points, counts, connects, owner);
    return owner;
}

/// A mesh of a million points through ten nodes in "no effect" state. Counters: memory in copies of the mesh (the
/// source's own is one), microseconds a node.
void noEffectChain(benchmark::State& state)
{
    poolTrim();
    malloc_trim(0);
    const size_t before = bench::residentBytes();
    bench::meshSource("throughSource", gridMesh(1000));
    std::string from = "throughSource.outMesh";
    Cell& source = names::plug(from);
    eval::pull(source);
    poolTrim();   // what making the mesh took besides
    malloc_trim(0);
    const size_t one = bench::residentBytes() - before;
    bench::resetPeak();
    std::string script;
    for (int i = 0; i < 10; ++i) {
        const std::string name = "through" + std::to_string(i);
        script += "createNode arrayToPointAttribute -n " + name + "; setAttr " + name + ".nodeState 1; connectAttr " + from
                  + " " + name + ".inGeometry;";
        from = name + ".outGeometry";
    }
    bench::mel(script);
    Cell& last = names::plug(from);
    Cell& tick = names::plug("throughSource.tick");
    double best = 1e9;
    for (auto _ : state) {
        edit::setNumber(tick, tick.number() + 1);
        eval::pull(source);
        const double t0 = bench::now();
        eval::pull(last);
        best = std::min(best, bench::now() - t0);
    }
    if (!last.data())
        state.SkipWithError("no mesh came through");
    state.counters["copies"] = double(bench::peakBytes() - before) / double(one);
    state.counters["us_node"] = best / 10 * 1e6;
    bench::mel("file -f -new;");
}
BENCHMARK(noEffectChain)->Iterations(20)->Unit(benchmark::kMicrosecond);

}  // namespace

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

#include <unistd.h>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>

#include "bench.h"
#include "command/registry.h"
#include "command/startup.h"
#include "graph/node.h"
#include "mel/interpreter.h"

namespace bench {
namespace {

struct Given { MObject mesh; bool moving = false; };
std::map<std::string, Given>& given() { static std::map<std::string, Given> g; return g; }

class meshSourceNode : public MPxNode
{
public:
    static void* creator() { return new meshSourceNode; }
    static MStatus initialize()
    {
        MFnNumericAttribute n;
        MFnTypedAttribute   t;
        aTick = n.create("tick", "tk", MFnNumericData::kDouble);
        addAttribute(aTick);
        aOut = t.create("outMesh", "om", MFnData::kMesh);
        t.setWritable(false);
        addAttribute(aOut);
        return attributeAffects(aTick, aOut);
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOut)
            return MS::kUnknownParameter;
        Given& g = given()[std::string(name().asChar())];
        const double tick = block.inputValue(aTick).asDouble();
        MObject mesh = g.mesh;
        if (g.moving) {
            MFnMeshData data;
            mesh = data.create();
            MFnMesh fn;
            fn.copy(g.mesh, mesh);
            MFloatPointArray points;
            fn.getPoints(points);
            for (unsigned i = 0; i < points.length(); ++i)
                points[i].y += float(tick);
            fn.setPoints(points);
        }
        block.outputValue(aOut).set(mesh);
        return MS::kSuccess;
    }
    static inline MObject aTick, aOut;
};

}  // namespace

void start()
{
    static bool started = false;
    if (started)
        return;
    started = true;
    mirk::startHost({});
    auto type = std::make_unique<mirk::NodeType>();
    type->name = "benchMeshSource";
    type->id = 0x7f201;
    type->creator = meshSourceNode::creator;
    type->inherit(mirk::registerBaseType());
    mirk::typeBeingBuilt() = type.get();
    meshSourceNode::initialize();
    mirk::typeBeingBuilt() = nullptr;
    mirk::registerNodeType(std::move(type));
    mel("loadPlugin mirk;");
}

void mel(const std::string& text)
{
    try {
        mirk::mel::execute(text);
    } catch (const mirk::command::Error& e) {
        std::fprintf(stderr, "%s\n", e.what());
        std::exit(1);
    }
}

void meshSource(const std::string& name, const MObject& mesh, bool moving)
{
    given()[name] = {mesh, moving};
    mel("createNode benchMeshSource -n " + name + ";");
}

size_t residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * size_t(sysconf(_SC_PAGESIZE));
}

size_t peakBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0)
            return size_t(std::atoll(line.c_str() + 6)) * 1024;
    return 0;
}

void resetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace bench

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    bench::start();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

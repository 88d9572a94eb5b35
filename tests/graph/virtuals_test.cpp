// What the graph asks of a node's class: dependencies of its own, what passes through it, outputs that do not lock.
#include "../support/host_fixture.h"
#include "test_nodes.h"

#include <maya/MItDependencyGraph.h>

using namespace graph_test;

namespace {

/// in1 -> out1 and in2 -> out2 apart, though both inputs are declared to affect both outputs.
class lanes : public MPxNode
{
public:
    static void* creator() { return new lanes; }
    static MStatus initialize()
    {
        MFnNumericAttribute n;
        MObject* all[] = {&aIn1, &aIn2, &aOut1, &aOut2};
        const char* names[] = {"in1", "in2", "out1", "out2"};
        for (int i = 0; i < 4; ++i) {
            *all[i] = n.create(names[i], names[i], MFnNumericData::kDouble);
            n.setWritable(i < 2);
            addAttribute(*all[i]);
        }
        for (const MObject& in : {aIn1, aIn2})
            for (const MObject& out : {aOut1, aOut2})
                attributeAffects(in, out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        block.outputValue(plug).set(block.inputValue(plug == aOut1 ? aIn1 : aIn2).asDouble());
        block.setClean(plug);
        return MS::kSuccess;
    }
    MStatus dependsOn(const MPlug& plug, const MPlug& other, bool& depends) const override
    {
        if (plug != aOut1 && plug != aOut2)
            return MS::kUnknownParameter;
        depends = (plug == aOut1 && other == aIn1) || (plug == aOut2 && other == aIn2);
        return MS::kSuccess;
    }
    MPlug passThroughToOne(const MPlug& plug) const override
    {
        return plug == aIn1 ? MPlug(thisMObject(), aOut1) : MPlug();
    }
    bool passThroughToMany(const MPlug& plug, MPlugArray& many) const override
    {
        many.clear();
        if (plug == aIn2)
            many.append(MPlug(thisMObject(), aOut2));
        return many.length() > 0;
    }
    bool isPassiveOutput(const MPlug& plug) const override { return plug == aOut1; }
    static inline MObject aIn1, aIn2, aOut1, aOut2;
};

NodeType* lanesType()
{
    static NodeType* type = registerType("graphTestLanes", 0x7f102, lanes::creator, lanes::initialize);
    return type;
}

struct Virtuals : mirk::test::Host
{
    void SetUp() override
    {
        Host::SetUp();
        n = edit::createNode(lanesType(), "n");
        a = edit::createNode(adderType(), "a");
        b = edit::createNode(adderType(), "b");
    }
    void TearDown() override
    {
        newScene();
        Host::TearDown();
    }
    Node *n, *a, *b;
};

TEST_F(Virtuals, DependsOnDecidesWhatIsACycle)
{
    mel("connectAttr n.out1 n.in2");   // no cycle: the lanes are apart
    EXPECT_NE(melError("connectAttr n.out2 n.in2 -f").find("cycle"), std::string::npos);
    EXPECT_NE(melError("connectAttr n.out2 n.in2 -f").find("n.out2"), std::string::npos);
    mel("connectAttr n.out2 a.input");
    EXPECT_NE(melError("connectAttr a.output n.in1").find("cycle"), std::string::npos);   // in1 -> out1 -> in2 -> out2 -> a
    MPlug from = PlugAccess::make(cellOf(n, "in1"));
    std::string visited;
    for (MItDependencyGraph it(from, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kDepthFirst,
                               MItDependencyGraph::kPlugLevel);
         !it.isDone(); it.next())
        visited += std::string(it.thisPlug().name().asChar()) + " ";
    EXPECT_EQ(visited, "n.in1 n.out1 n.in2 n.out2 a.input ");
}

TEST_F(Virtuals, ADeletedNodeLeavesWhatPassesThroughIt)
{
    mel("connectAttr a.output n.in1; connectAttr a.output n.in2; connectAttr n.out1 b.input; connectAttr n.out2 b.vectorX;"
        "setAttr a.input 4; delete n");
    EXPECT_EQ(num("getAttr b.input"), 5);
    EXPECT_EQ(str("connectionInfo -sfd b.input"), "a.output");
    EXPECT_EQ(str("connectionInfo -sfd b.vectorX"), "a.output");
    mel("undo");
    EXPECT_EQ(str("connectionInfo -sfd b.input"), "n.out1");
    EXPECT_EQ(str("connectionInfo -sfd b.vectorX"), "n.out2");
}

TEST_F(Virtuals, BehindAPassiveOutputAValueCanBeSetUntilTheOutputChanges)
{
    mel("connectAttr n.out1 a.input; connectAttr n.out2 b.input; setAttr n.in1 3; setAttr a.input 9");
    EXPECT_EQ(num("getAttr a.input"), 9);
    mel("setAttr n.in1 4");
    EXPECT_EQ(num("getAttr a.input"), 4);
    EXPECT_NE(melError("setAttr b.input 1").find("b.input"), std::string::npos);
    EXPECT_EQ(num("getAttr -settable a.input"), 1);
    EXPECT_EQ(num("getAttr -settable b.input"), 0);
    EXPECT_EQ(strings("evaluationManager -q -mode"), std::vector<std::string>{"off"});
    EXPECT_NE(melError("evaluationManager -mode \"parallel\"").find("parallel"), std::string::npos);
}

}  // namespace

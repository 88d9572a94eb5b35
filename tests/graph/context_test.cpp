// Reads at other times: what is computed again, and that the values at the current time stay as they are.
#include "../support/host_fixture.h"
#include "test_nodes.h"

#include <cmath>

#include <maya/MDGContext.h>
#include <maya/MDGContextGuard.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MTime.h>

using namespace graph_test;

namespace {

/// output = frame * scale; array has as many elements as frames; built[i] exists for i below the frame.
class sampler : public MPxNode
{
public:
    static void* creator() { return new sampler; }
    static MStatus initialize()
    {
        MFnUnitAttribute u;
        MFnNumericAttribute n;
        MFnTypedAttribute t;
        aTime = u.create("time", "tm", MFnUnitAttribute::kTime);
        aScale = n.create("scale", "sc", MFnNumericData::kDouble, 1);
        aOut = n.create("output", "o", MFnNumericData::kDouble);
        n.setWritable(false);
        aArray = t.create("array", "ar", MFnData::kDoubleArray);
        t.setWritable(false);
        aBuilt = n.create("built", "b", MFnNumericData::kDouble);
        n.setArray(true);
        n.setUsesArrayDataBuilder(true);
        for (const MObject& a : {aTime, aScale, aOut, aArray, aBuilt})
            addAttribute(a);
        for (const MObject& in : {aTime, aScale})
            for (const MObject& out : {aOut, aArray, aBuilt})
                attributeAffects(in, out);
        return MS::kSuccess;
    }
    MStatus setDependentsDirty(const MPlug&, MPlugArray&) override
    {
        told = true;
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        ++computes;
        toldAtCompute = std::exchange(told, false);
        normal = block.context().isNormal();
        if (hook)
            hook(*this, block);
        const double frame = block.inputValue(aTime).asTime().as(MTime::k24FPS);
        block.outputValue(aOut).set(frame * block.inputValue(aScale).asDouble());
        block.setClean(aOut);
        MDoubleArray values(unsigned(std::lround(frame)), frame);
        block.outputValue(aArray).set(MFnDoubleArrayData().create(values));
        block.setClean(aArray);
        MArrayDataBuilder builder(&block, aBuilt, 0);
        for (unsigned i = 0; i < unsigned(std::lround(frame)); ++i)
            builder.addElement(i).set(frame + i);
        block.outputArrayValue(aBuilt).set(builder);
        block.outputArrayValue(aBuilt).setAllClean();
        return MS::kSuccess;
    }
    bool told = false, toldAtCompute = false, normal = true;
    static inline MObject aTime, aScale, aOut, aArray, aBuilt;
    static inline std::function<void(sampler&, MDataBlock&)> hook;
    static inline int computes = 0;
};

NodeType* samplerType()
{
    static NodeType* type = registerType("graphTestSampler", 0x7f101, sampler::creator, sampler::initialize);
    return type;
}

MDGContext frame(double f) { return MDGContext(MTime(f, MTime::k24FPS)); }

struct OtherTimes : mirk::test::Host
{
    void SetUp() override
    {
        Host::SetUp();
        sampler::hook = nullptr;
        adder::hook = nullptr;
        s = edit::createNode(samplerType(), "s");
        connect(scene().first("time1"), "outTime", s, "time");
        a = edit::createNode(adderType(), "a");   // knows no time
        b = edit::createNode(adderType(), "b");   // behind the time
        connect(a, "output", s, "scale");
        connect(s, "output", b, "input");
        set(a, "input", 2);
        mel("currentTime 4");
        sampler::computes = adder::computes = 0;
    }
    void TearDown() override
    {
        sampler::hook = nullptr;
        Host::TearDown();
        newScene();
    }
    sampler& user() { return static_cast<sampler&>(*s->user); }
    static MPlug plug(Node* n, const char* path) { return PlugAccess::make(cellOf(n, path)); }
    Node *s, *a, *b;
};

TEST_F(OtherTimes, OnlyWhatDependsOnTimeIsComputedAgainAndTheNormalValuesStay)
{
    EXPECT_EQ(get(b, "output"), 4 * 3 + 1);
    EXPECT_EQ(sampler::computes, 1);
    EXPECT_EQ(adder::computes, 2);
    EXPECT_EQ(plug(b, "output").asDouble(frame(10)), 10 * 3 + 1);
    EXPECT_EQ(sampler::computes, 2);
    EXPECT_EQ(adder::computes, 3);   // b, and not a
    EXPECT_FALSE(user().normal);
    EXPECT_EQ(get(b, "output"), 13);
    EXPECT_EQ(get(s, "output"), 12);
    EXPECT_EQ(sampler::computes, 2);
    EXPECT_EQ(num("getAttr -time 7 b.output"), 22);
    EXPECT_EQ(num("getAttr b.output"), 13);
    py("import maya.cmds as cmds");
    EXPECT_EQ(py("cmds.getAttr('b.output', time=8)").asFloat(), 25);
    EXPECT_EQ(num("currentTime -q"), 4);
    EXPECT_TRUE(MDGContext::current().isNormal());
}

TEST_F(OtherTimes, AStaticNodeThatWasDirtyIsComputedOnceForAllTimes)
{
    EXPECT_EQ(plug(s, "output").asDouble(frame(10)), 30);
    EXPECT_EQ(adder::computes, 1);
    EXPECT_EQ(get(s, "output"), 12);
    EXPECT_EQ(adder::computes, 1);
    EXPECT_EQ(sampler::computes, 2);
    EXPECT_TRUE(user().normal);
}

TEST_F(OtherTimes, DataAndElementsOfTheNormalStoreStay)
{
    Node* sink = edit::createNode(adderType(), "sink");
    connect(s, "built[3]", sink, "input");
    MObject now = plug(s, "array").asMObject();
    EXPECT_EQ(get(sink, "input"), 7);
    EXPECT_EQ(MFnDoubleArrayData(plug(s, "array").asMObject(frame(2))).length(), 2u);
    {
        const MDGContextGuard guard(frame(2));
        EXPECT_EQ(plug(s, "built").evaluateNumElements(), 2u);
        EXPECT_FALSE(MDGContext::fsNormal.isCurrent());
    }
    EXPECT_EQ(plug(s, "array").asMObject(), now);
    EXPECT_EQ(MFnDoubleArrayData(now).length(), 4u);
    EXPECT_EQ(plug(s, "built").numElements(), 4u);
    EXPECT_EQ(get(s, "built[3]"), 7);
    EXPECT_TRUE(plug(sink, "input").isDestination());
    EXPECT_EQ(plug(s, "built[5]").asDouble(frame(9)), 14);
    EXPECT_EQ(sampler::computes, 4);
}

TEST_F(OtherTimes, ANodeReadsItsInputsAndItselfAtOtherTimesWhileItComputes)
{
    std::vector<double> seen;
    bool                inside = false;
    sampler::hook = [&](sampler& node, MDataBlock& block) {
        if (std::exchange(inside, true))
            return;
        const double* address = &block.inputValue(sampler::aScale).asDouble();
        seen.push_back(MPlug(node.thisMObject(), sampler::aTime).asMTime(frame(6)).as(MTime::k24FPS));
        seen.push_back(MPlug(node.thisMObject(), sampler::aOut).asDouble(frame(3)));   // no cycle: another time
        block.setContext(frame(20));
        MDataHandle later = block.inputValue(sampler::aTime);
        block.setContext(MDGContext::fsNormal);
        seen.push_back(later.asTime().as(MTime::k24FPS));
        seen.push_back(block.inputValue(sampler::aTime).asTime().as(MTime::k24FPS));
        const MDGContextGuard guard(frame(5));
        int                   f = 0;
        seen.push_back(num("getAttr s.output"));
        seen.push_back(num("currentTime -q") + f);
        EXPECT_EQ(address, &block.inputValue(sampler::aScale).asDouble());
    };
    EXPECT_EQ(get(s, "output"), 12);
    EXPECT_EQ(seen, (std::vector<double>{6, 9, 20, 4, 15, 5}));
    EXPECT_EQ(get(s, "output"), 12);
    EXPECT_EQ(said(mirk::message::Kind::kWarning), "");
}

TEST_F(OtherTimes, AnEditHoldsAtEveryTime)
{
    get(b, "output");
    {
        const MDGContextGuard guard(frame(10));
        EXPECT_EQ(get(b, "output"), 31);
        set(a, "input", 4);
        EXPECT_EQ(get(b, "output"), 51);
        const MDGContextGuard inner(frame(2));
        EXPECT_EQ(get(b, "output"), 11);
        mel("currentTime 8");   // the scene's, not that of the read
        EXPECT_EQ(get(b, "output"), 11);
    }
    EXPECT_EQ(get(a, "input"), 4);
    EXPECT_EQ(get(b, "output"), 41);
    mel("undo");
    EXPECT_EQ(num("currentTime -q"), 4);
}

TEST_F(OtherTimes, SetDependentsDirtyComesAgainBeforeTheNextNormalCompute)
{
    get(s, "output");
    EXPECT_TRUE(user().toldAtCompute);
    plug(s, "output").asDouble(frame(10));
    EXPECT_TRUE(user().toldAtCompute);
    user().told = false;   // as if the read had used it up
    eval::pull(cellOf(s, "output"));
    EXPECT_EQ(sampler::computes, 2);
    cellOf(s, "output").flags |= Cell::kDirty;
    get(s, "output");
    EXPECT_TRUE(user().toldAtCompute);
}

TEST_F(OtherTimes, MatricesThatNobodyHasReadYet)
{
    mel("group -em -n p; group -em -n c -parent p; setAttr c.tx 1; connectAttr b.output p.tx");
    EXPECT_EQ(nums("getAttr -time 10 c.worldMatrix[0]")[12], 32);
    EXPECT_EQ(nums("getAttr c.worldMatrix[0]")[12], 14);
    EXPECT_EQ(nums("getAttr -time 10 c.worldMatrix[0]")[12], 32);
    EXPECT_EQ(nums("getAttr c.worldMatrix[0]")[12], 14);
    mel("currentTime 5");
    EXPECT_EQ(nums("getAttr c.worldMatrix[0]")[12], 17);
}

/// Law: a read at a time equals what the scene has when that time is current.
TEST_F(OtherTimes, AReadAtATimeEqualsGoingThere)
{
    mel("polyPlane -n pl -sx 2 -sy 2 -ch 1; connectAttr s.output pl.ty; connectAttr b.output polyPlane1.width;"
        "polySphere -n ball; parent ball pl; scale 2 1 1 ball");
    const std::string asked[] = {"pl.worldMatrix[0]", "ball.worldMatrix[0]", "ball.boundingBoxMax", "pl.boundingBoxMax", "pl.center"};
    for (int f : {3, 12, 3}) {   // the first time round nobody has read anything
        mel("currentTime 6");
        std::vector<std::vector<double>> at, there;
        for (const std::string& p : asked)
            at.push_back(nums("getAttr -time " + std::to_string(f) + " " + p));
        mel("currentTime " + std::to_string(f));
        for (const std::string& p : asked)
            there.push_back(nums("getAttr " + p));
        EXPECT_EQ(at, there) << f;
    }
}

}  // namespace

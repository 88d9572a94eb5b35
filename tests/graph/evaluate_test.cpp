// Evaluation: what is computed and when, values along connections, edits inside a running compute.
#include <gtest/gtest.h>

#include "test_nodes.h"

using namespace graph_test;

namespace {

struct Evaluate : testing::Test
{
    void SetUp() override
    {
        adder::hook = nullptr;
        adder::computes = 0;
        a = edit::createNode(adderType(), "a#");
        b = edit::createNode(adderType(), "b#");
        c = edit::createNode(adderType(), "c#");
    }
    void TearDown() override
    {
        adder::hook = nullptr;
        clearScene();
        undo::flush();
    }
    Node *a, *b, *c;
};

TEST_F(Evaluate, PullsOnlyWhatIsDirtyAndOnlyWhatIsAskedFor)
{
    connect(a, "output", b, "input");
    set(a, "input", 5);
    EXPECT_EQ(get(b, "output"), 7);
    EXPECT_EQ(adder::computes, 2);
    EXPECT_EQ(get(b, "output"), 7);
    EXPECT_EQ(adder::computes, 2);   // clean
    set(b, "multi[3]", 1);           // dirties b's outputs, not a's
    EXPECT_EQ(get(b, "output"), 7);
    EXPECT_EQ(adder::computes, 3);
    set(a, "input", 8);
    set(a, "input", 9);
    EXPECT_EQ(get(b, "o"), 11);
    EXPECT_EQ(adder::computes, 5);
    set(a, "nodeState", 1);          // affects every output
    get(b, "output");
    EXPECT_EQ(adder::computes, 7);
}

TEST_F(Evaluate, UnknownParameterLeavesThePlugDirtyAndLaterDirtStillPasses)
{
    connect(a, "side", b, "input");
    EXPECT_EQ(get(b, "output"), 1);
    const int before = adder::computes;
    EXPECT_TRUE(cellOf(a, "side").is(Cell::kDirty));
    EXPECT_EQ(get(b, "output"), 1);
    EXPECT_EQ(adder::computes, before);   // b is clean
    set(a, "input", 4);                   // must reach b through the dirty plug
    get(b, "output");
    EXPECT_GT(adder::computes, before);
}

TEST_F(Evaluate, CompoundConnectionsFillChildrenAndAChildsOwnConnectionWins)
{
    set(a, "vectorX", 1);
    set(a, "vectorY", 2);
    set(a, "vectorZ", 3);
    connect(a, "vector", b, "vector");
    EXPECT_EQ(get(b, "vectorY"), 2);
    set(c, "input", 40);
    connect(c, "output", b, "vectorY");
    EXPECT_EQ(get(b, "vectorX"), 1);
    EXPECT_EQ(get(b, "vectorY"), 41);
    eval::pull(cellOf(b, "vector"));
    EXPECT_EQ(cellOf(b, "vector").number(1), 41);
    set(a, "vectorZ", 30);
    EXPECT_EQ(get(b, "vectorZ"), 30);
    set(c, "input", 50);
    EXPECT_EQ(get(b, "vectorY"), 51);
    // found on the compound only
    MPlugArray plugs;
    EXPECT_FALSE(PlugAccess::make(cellOf(b, "vectorX")).connectedTo(plugs, true, false));
    EXPECT_TRUE(PlugAccess::make(cellOf(b, "vector")).connectedTo(plugs, true, false));
}

TEST_F(Evaluate, DataIsSharedUntilSomebodyWritesAndSealedAfterCompute)
{
    auto data = make<DoubleArrayData>(make<Buffer<double>>(3, 1.5));
    edit::setData(cellOf(a, "array"), data);
    connect(a, "outArray", b, "array");
    MObject inA = PlugAccess::make(cellOf(a, "array")).asMObject();
    MObject inB = PlugAccess::make(cellOf(b, "array")).asMObject();
    ASSERT_FALSE(inB.isNull());
    auto* first = objectAs<DoubleArrayData>(inA);
    auto* second = objectAs<DoubleArrayData>(inB);
    ASSERT_NE(first, second);
    EXPECT_EQ(first->buffer.get(), second->buffer.get());   // nothing was copied on the way
    MFnDoubleArrayData fn(inB);
    fn.set(MDoubleArray(2, 9.0));
    EXPECT_EQ(MFnDoubleArrayData(inA).length(), 3u);

    // an object kept from inside a compute cannot change the block later; inside, writes go through
    MObject kept;
    adder::hook = [&](adder&, MDataBlock& block) {
        MFnDoubleArrayData made;
        kept = made.create(MDoubleArray(4, 7.0));
        block.outputValue(adder::aArray).set(kept);
        MDoubleArray alias = made.array();
        alias[0] = 8.0;
    };
    set(c, "input", 2);
    get(c, "output");
    adder::hook = nullptr;
    MFnDoubleArrayData(kept).set(MDoubleArray(1, 0.0));
    auto* inBlock = static_cast<DoubleArrayData*>(cellOf(c, "array").data());
    ASSERT_EQ(inBlock->buffer->size(), 4u);
    EXPECT_EQ((*inBlock->buffer)[0], 8.0);
}

TEST_F(Evaluate, DisconnectBehaviours)
{
    connect(a, "output", b, "input");
    set(a, "input", 5);
    get(b, "input");
    edit::disconnect(cellOf(a, "output"), cellOf(b, "input"));
    EXPECT_EQ(get(b, "input"), 6);                       // keeps
    connect(a, "output", b, "multi[2]");
    edit::disconnect(cellOf(a, "output"), cellOf(b, "multi[2]"));
    EXPECT_EQ(findCell(*b, "multi[2]", false), nullptr); // delete
    edit::setData(cellOf(a, "array"), make<DoubleArrayData>(make<Buffer<double>>(3, 1.0)));
    connect(a, "outArray", b, "array");
    eval::pull(cellOf(b, "array"));
    ASSERT_NE(cellOf(b, "array").data(), nullptr);
    edit::disconnect(cellOf(a, "outArray"), cellOf(b, "array"));
    EXPECT_EQ(cellOf(b, "array").data(), nullptr);       // reset
}

TEST_F(Evaluate, RefusedConnectionsChangeNothing)
{
    connect(a, "output", b, "input");
    EXPECT_THROW(connect(b, "output", a, "input"), command::Error);       // a cycle of plugs
    EXPECT_THROW(connect(a, "output", a, "input"), command::Error);
    EXPECT_THROW(connect(a, "outArray", b, "input", true), command::Error);
    EXPECT_THROW(connect(a, "output", b, "output"), command::Error);      // not writable
    EXPECT_THROW(connect(c, "output", b, "input"), command::Error);       // taken
    EXPECT_EQ(cellOf(b, "input").source, &cellOf(a, "output"));
    EXPECT_EQ(cellOf(a, "input").source, nullptr);
    connect(c, "output", b, "input", true);
    EXPECT_EQ(cellOf(b, "input").source, &cellOf(c, "output"));
    connect(b, "message", c, "binMembership");   // a loop of nodes is no loop of plugs
    EXPECT_EQ(findCell(*a, "multi[-1]"), nullptr);
}

TEST_F(Evaluate, EditsInsideACompute)
{
    connect(a, "output", b, "input");
    Node* made = nullptr;
    adder::hook = [&](adder& self, MDataBlock& block) {
        if (self.name() != b->name.c_str())
            return;
        // a handle and a plug are held while the multi grows and shrinks and nodes come and go
        MArrayDataHandle multi = block.outputArrayValue(adder::aMulti);
        MArrayDataBuilder builder = multi.builder();
        MDataHandle first = builder.addElement(0);
        first.set(3.0);
        MPlug held = MPlug(self.thisMObject(), adder::aMulti).elementByLogicalIndex(0);
        for (unsigned i = 1; i < 500; ++i)
            builder.addElement(i).set(double(i));
        builder.removeElement(0);
        EXPECT_EQ(first.asDouble(), 0.0);     // the handle is still good; the value went with the element
        EXPECT_EQ(held.logicalIndex(), 0u);
        EXPECT_EQ(held.asDouble(), 0.0);      // no part of the node any more: fails, and reads nothing
        made = edit::createNode(adderType(), "temporary#");
        graph_test::connect(c, "output", made, "input");
        EXPECT_EQ(get(made, "output"), 2.0);
        edit::deleteNode(*made);
        EXPECT_FALSE(made->inScene);          // the object is still there
        edit::deleteNode(*a);                 // the source of a running pull's node
    };
    set(a, "input", 1);
    EXPECT_EQ(get(b, "output"), 1.0 + cellOf(b, "input").number());
    adder::hook = nullptr;
    EXPECT_EQ(cellOf(b, "multi").elementCount(), 499u);
    a = edit::createNode(adderType(), "a#");
}

TEST_F(Evaluate, ANodeMayDeleteItselfInItsCompute)
{
    adder::hook = [&](adder& self, MDataBlock&) {
        if (Node* n = UserNodeAccess::node(self); n == c && n->inScene)
            edit::deleteNode(*n);
    };
    MPlug plug = PlugAccess::make(cellOf(c, "output"));
    EXPECT_EQ(plug.asDouble(), 1.0);
    EXPECT_FALSE(c->inScene);
    c = edit::createNode(adderType(), "c#");
}

TEST_F(Evaluate, AWriteIntoTheComputingNodeMakesNoRecordAndCleans)
{
    adder::hook = [&](adder& self, MDataBlock&) {
        MPlug(self.thisMObject(), adder::aSide).setDouble(12);
    };
    undo::Scope scope("test");
    EXPECT_EQ(get(a, "output"), 1);
    EXPECT_FALSE(cellOf(a, "side").is(Cell::kDirty));
    EXPECT_EQ(get(a, "side"), 12);
    scope.rollback();
    EXPECT_EQ(get(a, "side"), 12);
}

TEST_F(Evaluate, CyclesThatOnlyEvaluationSeesAreReportedNotFollowed)
{
    static std::string told;
    told.clear();
    eval::setReporter([](const std::string& m, bool) { told = m; });
    adder::hook = [&](adder& self, MDataBlock&) { MPlug(self.thisMObject(), adder::aOut).asDouble(); };
    EXPECT_EQ(get(a, "output"), 1);
    EXPECT_NE(told.find(a->name + ".output"), std::string::npos);
    eval::setReporter(nullptr);
}

TEST_F(Evaluate, VeryLongChains)
{
    const int length = 200000;
    std::vector<Node*> chain;
    chain.reserve(length);
    for (int i = 0; i < length; ++i)
        chain.push_back(edit::createNode(adderType(), "chain#"));
    for (int i = 1; i < length; ++i)
        edit::connect(*chain[i - 1]->cell(adderType()->find("output")), *chain[i]->cell(adderType()->find("input")));
    set(chain[0], "input", 0);
    EXPECT_EQ(get(chain.back(), "output"), length);
    set(chain[0], "input", 1);
    EXPECT_EQ(get(chain.back(), "output"), length + 1);
}

}  // namespace

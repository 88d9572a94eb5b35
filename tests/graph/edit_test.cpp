// Edits: undo and redo, roll-back, names, dynamic attributes, aliases, plugs by name.
#include <gtest/gtest.h>

#include "test_nodes.h"

using namespace graph_test;

namespace {

struct Edits : testing::Test
{
    void SetUp() override
    {
        adder::hook = nullptr;
        undo::flush();
    }
    void TearDown() override
    {
        clearScene();
        undo::flush();
    }
    template <class F> void step(const char* name, F&& f) { undo::Scope scope(name); f(); }
};

TEST_F(Edits, UndoAndRedoOfEverything)
{
    Node *a = nullptr, *b = nullptr;
    step("create", [&] { a = edit::createNode(adderType(), "one"); b = edit::createNode(adderType(), "two"); });
    step("set", [&] { set(a, "input", 3); set(a, "vectorX", 1); });
    step("connect", [&] { connect(a, "output", b, "multi[7]"); });
    step("rename", [&] { edit::renameNode(*a, "uno"); });
    EXPECT_EQ(get(b, "multi[7]"), 4);
    step("delete", [&] { edit::deleteNode(*a); });
    EXPECT_EQ(findCell(*b, "multi[7]", false), nullptr);   // the element went with its source

    EXPECT_TRUE(undo::undoOne());
    EXPECT_EQ(scene().first("uno"), a);
    EXPECT_EQ(get(b, "multi[7]"), 4);
    EXPECT_TRUE(undo::undoOne());
    EXPECT_EQ(a->name, "one");
    EXPECT_TRUE(undo::undoOne());
    EXPECT_EQ(cellOf(b, "multi[7]").source, nullptr);
    EXPECT_TRUE(undo::undoOne());
    EXPECT_EQ(get(a, "output"), 1);
    EXPECT_TRUE(undo::undoOne());
    EXPECT_EQ(scene().first("one"), nullptr);
    EXPECT_FALSE(undo::undoOne());

    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(undo::redoOne());
    EXPECT_FALSE(undo::redoOne());
    EXPECT_EQ(scene().first("uno"), nullptr);
    undo::undoOne();
    EXPECT_EQ(get(scene().first("uno"), "output"), 4);
}

TEST_F(Edits, RollBackAndScopesThatAreNotKept)
{
    Node* a = edit::createNode(adderType(), "a");
    {
        undo::Scope outer("outer");
        set(a, "input", 1);
        {
            undo::Scope inner("inner");
            set(a, "input", 2);
            edit::createNode(adderType(), "gone");
            inner.rollback();
        }
        EXPECT_EQ(get(a, "input"), 1);
        EXPECT_EQ(scene().first("gone"), nullptr);
        {
            undo::Scope silent("silent", false);
            set(a, "multi[0]", 5);
        }
    }
    EXPECT_EQ(undo::undoName(), "outer");
    undo::undoOne();
    EXPECT_EQ(get(a, "input"), 0);
    EXPECT_EQ(get(a, "multi[0]"), 5);
}

TEST_F(Edits, NamesStayUniqueAndLegal)
{
    Node* a = edit::createNode(adderType(), "thing");
    Node* b = edit::createNode(adderType(), "thing");
    Node* c = edit::createNode(adderType(), "thing#");
    EXPECT_EQ(a->name, "thing");
    EXPECT_EQ(b->name, "thing1");
    EXPECT_EQ(c->name, "thing2");
    edit::renameNode(*c, "thing");
    EXPECT_EQ(c->name, "thing2");
    for (const char* bad : {"1st", "a b", "", "a|b", "a.b"})
        EXPECT_THROW(edit::renameNode(*a, bad), command::Error) << bad;
    EXPECT_EQ(a->name, "thing");
    a->locked = true;
    EXPECT_THROW(edit::deleteNode(*a), command::Error);
}

TEST_F(Edits, LockedPlugsRefuseValuesAndConnections)
{
    Node* a = edit::createNode(adderType(), "a");
    Node* b = edit::createNode(adderType(), "b");
    edit::setFlag(cellOf(b, "vector"), Cell::kLocked, true);
    EXPECT_THROW(set(b, "vectorX", 1), command::Error);
    EXPECT_THROW(connect(a, "output", b, "vectorX"), command::Error);
    EXPECT_EQ(get(b, "vectorX"), 0);
    edit::setFlag(cellOf(b, "vector"), Cell::kLocked, false);
    set(b, "vectorX", 1);
    EXPECT_EQ(get(b, "vectorX"), 1);
}

TEST_F(Edits, DynamicAttributesAndAliases)
{
    Node* a = edit::createNode(adderType(), "a");
    MFnNumericAttribute n;
    MObject made = n.create("extra", "ex", MFnNumericData::kInt, 4);
    step("add", [&] { edit::addDynamic(*a, Ref<Attribute>(objectAs<Attribute>(made))); });
    EXPECT_EQ(get(a, "extra"), 4);
    MObject again = n.create("extra", "ex2", MFnNumericData::kInt);
    EXPECT_THROW(edit::addDynamic(*a, Ref<Attribute>(objectAs<Attribute>(again))), command::Error);
    set(a, "ex", 7);
    edit::setAlias(*a, "multi[4]", "fourth");
    set(a, "fourth", 44);
    EXPECT_EQ(get(a, "multi[4]"), 44);
    EXPECT_THROW(edit::setAlias(*a, "multi[5]", "fourth"), command::Error);
    EXPECT_THROW(edit::setAlias(*a, "multi[5]", "input"), command::Error);
    step("delete", [&] { edit::deleteDynamic(*a, *a->findAttribute("extra")); });
    EXPECT_EQ(findCell(*a, "extra"), nullptr);
    undo::undoOne();
    EXPECT_EQ(get(a, "extra"), 7);
}

TEST_F(Edits, PlugsByName)
{
    Node* a = edit::createNode(adderType(), "a");
    std::string why;
    struct Case { const char* path; const char* reason; };
    for (const Case& c : {Case{"nothing", "no attribute 'nothing'"}, {"multi[1", "']' is missing"}, {"multi[x]", "[x]"},
                          {"multi[-2]", "[-2]"}, {"input[0]", "no multi"}, {"vector.w", "no child 'w'"},
                          {"", "empty"}, {"vector.", "ends in a dot"}, {"multi[99999999999]", "99999999999"}}) {
        EXPECT_EQ(findCell(*a, c.path, true, &why), nullptr) << c.path;
        EXPECT_NE(why.find(c.reason), std::string::npos) << why;
    }
    EXPECT_EQ(&cellOf(a, "v.vx"), &cellOf(a, "vectorX"));
    EXPECT_EQ(plugPath(cellOf(a, "m[3]")), "multi[3]");
    EXPECT_EQ(plugPath(cellOf(a, "vector.vectorY")), "vectorY");
}

TEST_F(Edits, RemovedElementsKeepTheirPlugsAlive)
{
    Node* a = edit::createNode(adderType(), "a");
    MPlug plug = PlugAccess::make(cellOf(a, "multi[2]"));
    step("set", [&] { plug.setDouble(6); });
    step("remove", [&] { edit::removeElement(cellOf(a, "multi[2]")); });
    eval::collect();
    double value = -1;
    EXPECT_EQ(plug.getValue(value), MS::kFailure);
    undo::undoOne();
    EXPECT_EQ(plug.asDouble(), 6);
    EXPECT_EQ(get(a, "multi[2]"), 6);
}

}  // namespace

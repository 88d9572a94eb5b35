// Modifiers: what they make, change and connect stands after doIt, is gone after undoIt, and comes back the same.
#include "../support/host_fixture.h"

#include <maya/MAngle.h>
#include <maya/MDGModifier.h>
#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MDistance.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnSet.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>

namespace {

class Modifiers : public mirk::test::Host
{
protected:
    static MObject node(const std::string& name)
    {
        MSelectionList list;
        MObject        o;
        EXPECT_TRUE(list.add(MString(name.c_str())) && list.getDependNode(0, o)) << name;
        return o;
    }
    static MPlug plug(const std::string& name)
    {
        MSelectionList list;
        MPlug          p;
        EXPECT_TRUE(list.add(MString(name.c_str())) && list.getPlug(0, p)) << name;
        return p;
    }
    static bool exists(const std::string& name) { return num("objExists " + name) != 0; }
};

}  // namespace

TEST_F(Modifiers, EachEditAndItsWayBack)
{
    mel("createNode transform -n a; createNode transform -n b; createNode multiplyDivide -n m; connectAttr m.oz a.tz;"
        "addAttr -ln old -at double a; setAttr a.old 4; setAttr m.i1x 1;");
    MFnNumericAttribute n;
    const MObject       fresh = n.create("fresh", "fr", MFnNumericData::kDouble, 6);
    struct Case
    {
        const char* what;
        std::function<MStatus(MDGModifier&)> add;
        const char* after;    // an expression that is 1 once it is done, and 0 before and after undoing
    };
    const Case cases[] = {
        {"connect", [&](MDGModifier& d) { return d.connect(plug("m.ox"), plug("b.tx")); }, "isConnected m.ox b.tx"},
        {"disconnect", [&](MDGModifier& d) { return d.disconnect(plug("m.oz"), plug("a.tz")); }, "!`isConnected m.oz a.tz`"},
        {"rename", [&](MDGModifier& d) { return d.renameNode(node("b"), "bee"); }, "objExists bee"},
        {"delete", [&](MDGModifier& d) { return d.deleteNode(node("m")); }, "!`objExists m`"},
        {"number", [&](MDGModifier& d) { return d.newPlugValueDouble(plug("b.ty"), 3.5); }, "`getAttr b.ty` == 3.5"},
        {"angle", [&](MDGModifier& d) { return d.newPlugValueMAngle(plug("b.rx"), MAngle(90, MAngle::kDegrees)); }, "`getAttr b.rx` == 90"},
        {"distance", [&](MDGModifier& d) { return d.newPlugValueMDistance(plug("b.tx"), MDistance(2, MDistance::kMeters)); }, "`getAttr b.tx` == 200"},
        {"whole number", [&](MDGModifier& d) { return d.newPlugValueInt(plug("m.op"), 2); }, "`getAttr m.op` == 2"},
        {"switch", [&](MDGModifier& d) { return d.newPlugValueBool(plug("b.v"), false); }, "!`getAttr b.v`"},
        {"add attribute", [&](MDGModifier& d) { return d.addAttribute(node("b"), fresh); }, "`attributeExists fresh b`"},
        {"remove attribute", [&](MDGModifier& d) { return d.removeAttribute(node("a"), plug("a.old").attribute()); }, "!`attributeExists old a`"},
        {"lock", [&](MDGModifier& d) { return d.setNodeLockState(node("a"), true); }, "{ int $l[] = `lockNode -q a`; $l[0]; }"},
        {"command", [&](MDGModifier& d) { return d.commandToExecute("createNode transform -n viaMel"); }, "objExists viaMel"},
        {"python", [&](MDGModifier& d) { return d.pythonCommandToExecute("import maya.cmds as c; c.setAttr('b.tz', 8)"); }, "`getAttr b.tz` == 8"},
    };
    for (const Case& c : cases) {
        const std::string text = c.after;
        const std::string ask = text[0] == '{' ? "int $got[] = `lockNode -q a`; int $x = $got[0];"
                                : text.find('`') == std::string::npos ? "int $x = `" + text + "`;"
                                                                       : "int $x = (" + text + ");";
        const auto holds = [&] { return num(ask + " int $y = $x;") != 0; };
        MDGModifier d;
        EXPECT_TRUE(c.add(d)) << c.what;
        EXPECT_FALSE(holds()) << c.what << " before doIt";
        EXPECT_TRUE(d.doIt()) << c.what;
        EXPECT_TRUE(holds()) << c.what;
        EXPECT_TRUE(d.undoIt()) << c.what;
        EXPECT_FALSE(holds()) << c.what << " after undoIt";
        EXPECT_TRUE(d.doIt()) << c.what;
        EXPECT_TRUE(holds()) << c.what << " again";
        EXPECT_TRUE(d.undoIt()) << c.what;
    }
    EXPECT_EQ(num("getAttr a.old"), 4) << "a removed attribute comes back with its value";
    EXPECT_EQ(num("isConnected m.oz a.tz"), 1) << "a deleted node with its connections";
    EXPECT_EQ(num("getAttr m.i1x"), 1);
}

TEST_F(Modifiers, NodesStandInTheSceneAfterDoItOnly)
{
    MDGModifier   d;
    MStatus       s;
    const MObject made = d.createNode("multiplyDivide", &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(strings("ls -type multiplyDivide").empty());
    MFnDependencyNode fn(made);   // it can be worked with before
    EXPECT_TRUE(d.newPlugValueFloat(fn.findPlug("input1X", false), 3));
    EXPECT_TRUE(d.renameNode(made, "mine"));
    EXPECT_TRUE(d.doIt());
    EXPECT_EQ(num("getAttr mine.i1x"), 3);
    EXPECT_TRUE(d.undoIt());
    EXPECT_FALSE(exists("mine"));
    EXPECT_TRUE(d.doIt());
    EXPECT_EQ(num("getAttr mine.i1x"), 3);
    // a second round: only what is new is done
    EXPECT_TRUE(d.newPlugValueFloat(fn.findPlug("input1Y", false), 5) && d.doIt());
    EXPECT_EQ(num("getAttr mine.i1y"), 5);
    EXPECT_EQ(strings("ls -type multiplyDivide").size(), 1u);
    EXPECT_TRUE(d.undoIt());
    EXPECT_FALSE(exists("mine")) << "all that it ever did";
    d.createNode("noSuchType", &s);
    EXPECT_NE(s, MS::kSuccess);
}

TEST_F(Modifiers, ConnectionsMadeLaterDoNotOutliveTheNode)
{
    mel("createNode transform -n t;");
    {
        MDGModifier   d;
        const MObject made = d.createNode("multiplyDivide");
        d.renameNode(made, "brief");
        EXPECT_TRUE(d.doIt());
        MGlobal::executeCommand("connectAttr t.tx brief.i1x; connectAttr brief.ox t.ty;", false, false);
        EXPECT_TRUE(d.undoIt());
    }
    EXPECT_TRUE(plug("t.ty").source().isNull());
    EXPECT_FALSE(plug("t.tx").isSource());
    mel("setAttr t.tx 3;");   // its dirt reaches nobody
    EXPECT_EQ(num("getAttr t.ty"), 0);
}

TEST_F(Modifiers, MultisAndWhatFails)
{
    mel("createNode plusMinusAverage -n p; createNode transform -n t; setAttr p.i1[0] 1; setAttr p.i1[3] 2; connectAttr t.tx p.i1[3];");
    MDGModifier d;
    EXPECT_TRUE(d.removeMultiInstance(plug("p.i1[3]"), true) && d.doIt());
    EXPECT_EQ(num("getAttr -size p.i1"), 1);
    EXPECT_TRUE(d.undoIt());
    EXPECT_EQ(num("getAttr -size p.i1"), 2);
    EXPECT_EQ(num("isConnected t.tx p.i1[3]"), 1);

    mel("setAttr -l true t.ty;");
    MDGModifier bad;
    bad.newPlugValueDouble(plug("t.tz"), 4);
    bad.newPlugValueDouble(plug("t.ty"), 4);
    bad.newPlugValueDouble(plug("t.sx"), 4);
    EXPECT_FALSE(bad.doIt());
    EXPECT_EQ(num("getAttr t.ty"), 0);
    EXPECT_EQ(num("getAttr t.sx"), 4) << "the rest is done";
    bad.undoIt();
    EXPECT_EQ(num("getAttr t.tz"), 0);
    EXPECT_EQ(num("getAttr t.sx"), 1);
    MDGModifier none;
    EXPECT_FALSE(none.connect(MPlug(), plug("t.tx")) && none.doIt());
    EXPECT_FALSE(none.deleteNode(MObject()) && none.doIt());
}

TEST_F(Modifiers, DagNodesParentsAndShapes)
{
    mel("createNode transform -n home; createNode transform -n child; setAttr home.tx 5; select -cl;");
    MDagModifier  d;
    MStatus       s;
    const MObject group = d.createNode("transform", node("home"), &s), lone = d.createNode("mesh", MObject::kNullObj, &s);
    EXPECT_TRUE(lone.hasFn(MFn::kTransform)) << "a shape gets a transform above it";
    EXPECT_TRUE(d.renameNode(group, "inner") && d.reparentNode(node("child"), group));
    EXPECT_TRUE(d.doIt());
    EXPECT_TRUE(exists("|home|inner|child"));
    EXPECT_EQ(MFnDagNode(lone).childCount(), 1u);
    EXPECT_TRUE(d.undoIt());
    EXPECT_TRUE(exists("|child") && !exists("inner"));
    EXPECT_EQ(strings("ls -type mesh").size(), 0u);
    EXPECT_TRUE(d.doIt());
    EXPECT_TRUE(exists("|home|inner|child"));
    EXPECT_EQ(strings("ls -type mesh").size(), 1u);
    MDagModifier back;
    EXPECT_TRUE(back.reparentNode(node("child")) && back.doIt());
    EXPECT_TRUE(exists("|child"));
    EXPECT_TRUE(back.undoIt());
    EXPECT_TRUE(exists("|home|inner|child"));
    MDagModifier cycle;
    EXPECT_FALSE(cycle.reparentNode(node("home"), node("child")) && cycle.doIt());
    EXPECT_TRUE(exists("|home|inner|child"));
}

TEST_F(Modifiers, SetsHoldNodesComponentsAndPlugs)
{
    mel("polyPlane -n p -sx 2 -sy 2 -ch 0; createNode transform -n t; createNode transform -n u; createNode multiplyDivide -n m; select -cl;");
    MSelectionList members, other, result;
    members.add("t");
    members.add("p.vtx[0:3]");
    MFnSet        a, b;
    MStatus       s;
    const MObject first = a.create(members, MFnSet::kNone, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(a.isMember(node("t")) && !a.isMember(node("u")));
    MDagPath path;
    MObject  some, more;
    MSelectionList picked;
    picked.add("p.vtx[1:2]");
    picked.add("p.vtx[5]");
    ASSERT_TRUE(picked.getDagPath(0, path, some));
    ASSERT_TRUE(picked.getDagPath(picked.length() - 1, path, more));
    EXPECT_EQ(a.isMember(path, some), picked.length() == 2) << "all of them or not";
    EXPECT_TRUE(a.addMember(node("m")) && a.addMember(plug("u.tx")));
    EXPECT_TRUE(a.isMember(plug("u.tx")) && !a.isMember(plug("u.ty")) && !a.isMember(node("u")));
    EXPECT_TRUE(a.removeMember(node("t")) && !a.isMember(node("t")));
    other.add("m");
    other.add("p.vtx[2:5]");
    const MObject second = b.create(other);
    EXPECT_TRUE(a.intersectsWith(second));
    EXPECT_TRUE(a.getIntersection(b, result));
    MStringArray names;
    result.getSelectionStrings(names);
    std::vector<std::string> got;
    for (unsigned i = 0; i < names.length(); ++i)
        got.push_back(names[i].asChar());
    EXPECT_TRUE(std::count(got.begin(), got.end(), "p.vtx[2:3]") == 1) << ::testing::PrintToString(got);
    EXPECT_TRUE(std::count(got.begin(), got.end(), "m") == 1) << ::testing::PrintToString(got);
    EXPECT_EQ(got.size(), 2u);
    EXPECT_TRUE(a.getUnion(b, result) && result.hasItem(plug("u.tx")) && result.hasItem(node("m")));

    MFnSet nest;
    MSelectionList sets;
    sets.add(second);
    nest.create(sets);
    EXPECT_TRUE(nest.getMembers(result, false));
    EXPECT_EQ(result.length(), 1u);
    EXPECT_TRUE(nest.getMembers(result, true) && result.hasItem(node("m")) && !result.hasItem(second));
    EXPECT_TRUE(b.clear() && b.getMembers(result, true));
    EXPECT_TRUE(result.isEmpty());

    MFnSet vertices;
    MSelectionList nodes;
    nodes.add("t");
    EXPECT_TRUE(vertices.create(nodes, MFnSet::kVerticesOnly, &s).isNull() || vertices.object().isNull() || s != MS::kSuccess) << "a node is no vertex";
    const MObject none = vertices.create(MSelectionList(), MFnSet::kVerticesOnly, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(vertices.hasRestrictions());
    EXPECT_FALSE(vertices.addMember(node("t")));
    EXPECT_TRUE(vertices.addMembers(picked));
    MFnSet wrong(node("t"), &s);
    EXPECT_NE(s, MS::kSuccess);
}

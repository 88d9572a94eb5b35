// Paths, walks over the DAG and the graph, and lists of names: what a plug-in that explores a scene sees.
#include "../support/host_fixture.h"

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MFnComponent.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MItSelectionList.h>
#include <maya/MMatrix.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>

namespace {

using Names = std::vector<std::string>;

std::string nameOf(const MObject& node) { return MFnDependencyNode(node).name().asChar(); }

/// |a|b|c, |a|d (two parents: |a and |e), each letter a transform; a cube's shape below d.
class Walks : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode transform -n a; createNode transform -n b -p a; createNode transform -n c -p b;"
            "createNode transform -n d -p a; createNode mesh -n dShape -p d; createNode transform -n e; parent -add d e; select -cl;");
    }
    static MDagPath path(const char* name)
    {
        MSelectionList list;
        MDagPath       p;
        EXPECT_TRUE(list.add(MString(name)) && list.getDagPath(0, p)) << name;
        return p;
    }
    static MObject node(const char* name)
    {
        MSelectionList list;
        MObject        o;
        EXPECT_TRUE(list.add(MString(name)) && list.getDependNode(0, o)) << name;
        return o;
    }
    static MPlug plug(const char* name)
    {
        MSelectionList list;
        MPlug          p;
        EXPECT_TRUE(list.add(MString(name)) && list.getPlug(0, p)) << name;
        return p;
    }
    static Names walked(MItDag& it)
    {
        Names names;
        for (; !it.isDone(); it.next())
            names.push_back(it.fullPathName().asChar());
        return names;
    }
    static Names walked(MItDependencyGraph& it)
    {
        Names names;
        for (; !it.isDone(); it.next())
            names.push_back(it.atPlugLevel() ? it.thisPlug().name().asChar() : nameOf(it.currentItem()));
        return names;
    }
    static Names strings(const MSelectionList& list)
    {
        MStringArray out;
        list.getSelectionStrings(out);
        Names names;
        for (unsigned i = 0; i < out.length(); ++i)
            names.push_back(out[i].asChar());
        return names;
    }
    using Host::strings;
};

}  // namespace

TEST_F(Walks, DepthBreadthFiltersAndPruning)
{
    MItDag it;
    EXPECT_TRUE(it.reset(path("a")));
    EXPECT_EQ(walked(it), (Names{"|a", "|a|b", "|a|b|c", "|a|d", "|a|d|dShape"}));
    EXPECT_TRUE(it.isDone());
    EXPECT_FALSE(it.next());
    MStatus status;
    EXPECT_TRUE(it.currentItem(&status).isNull());
    EXPECT_NE(status, MS::kSuccess);
    it.reset();
    EXPECT_EQ(std::string(it.fullPathName().asChar()), "|a") << "reset goes back to the same root";
    it.reset(path("a"), MItDag::kBreadthFirst);
    EXPECT_EQ(walked(it), (Names{"|a", "|a|b", "|a|d", "|a|b|c", "|a|d|dShape"}));
    it.reset(path("a"), MItDag::kDepthFirst, MFn::kMesh);
    EXPECT_EQ(walked(it), (Names{"|a|d|dShape"}));
    EXPECT_FALSE(it.reset(MObject()));

    MItDag meshes(MItDag::kDepthFirst, MFn::kMesh);   // from the world: an instance comes by each of its paths
    EXPECT_EQ(walked(meshes), (Names{"|a|d|dShape", "|e|d|dShape"}));
    it.reset(path("a"));
    for (; !it.isDone(); it.next()) {
        const std::string name = nameOf(it.currentItem());
        EXPECT_NE(name, "c");
        if (name == "b")
            it.prune();
        if (name != "d")
            continue;
        EXPECT_EQ(it.depth(), 1u);
        EXPECT_TRUE(it.isInstanced(false));
        EXPECT_EQ(it.instanceCount(false), 2u);
        MDagPathArray all;
        EXPECT_TRUE(it.getAllPaths(all));
        EXPECT_EQ(all.length(), 2u);
    }
    it.reset(path("|e|d|dShape"));
    EXPECT_FALSE(it.isInstanced(false));
    EXPECT_TRUE(it.isInstanced(true));
    EXPECT_EQ(it.instanceCount(true), 2u);
    EXPECT_EQ(it.instanceCount(false), 1u);
}

TEST_F(Walks, PathsGoDownAndUp)
{
    MDagPath p = path("|a|b|c");
    EXPECT_EQ(p.length(), 3u);
    EXPECT_TRUE(p.pop(2));
    EXPECT_EQ(std::string(p.fullPathName().asChar()), "|a");
    EXPECT_FALSE(p.pop(5));
    EXPECT_EQ(std::string(p.fullPathName().asChar()), "|a") << "too far: it stays";
    EXPECT_EQ(p.push(node("c")), MS::kInvalidParameter) << "no child";
    EXPECT_TRUE(p.push(node("b")) && p.push(node("c")));
    EXPECT_TRUE(p == path("|a|b|c"));
    EXPECT_FALSE(p.extendToShape());

    MDagPath one = path("|a|d"), other = path("|e|d");
    EXPECT_TRUE(one.node() == other.node());
    EXPECT_FALSE(one == other);
    EXPECT_EQ(one.instanceNumber(), 0u);
    EXPECT_EQ(other.instanceNumber(), 1u);
    unsigned shapes = 0;
    EXPECT_TRUE(other.numberOfShapesDirectlyBelow(shapes) && other.extendToShape());
    EXPECT_EQ(shapes, 1u);
    EXPECT_EQ(std::string(other.fullPathName().asChar()), "|e|d|dShape");
    EXPECT_TRUE(other.transform() == node("d"));
    EXPECT_TRUE(other.extendToShape()) << "a shape is its own";
    EXPECT_EQ(other.length(), 3u);
    EXPECT_FALSE(one.extendToShapeDirectlyBelow(1));
    mel("createNode mesh -n old -p |a|d; setAttr old.io true;");
    EXPECT_TRUE(one.extendToShape());
    EXPECT_EQ(nameOf(one.node()), "dShape") << "the intermediate one does not count";

    mel("setAttr a.tx 3; setAttr d.ty 5; setAttr e.tz 7;");
    EXPECT_EQ(path("|a|d").inclusiveMatrix()[3][0], 3);
    EXPECT_EQ(path("|e|d").inclusiveMatrix()[3][2], 7);
    EXPECT_EQ(path("|e|d").exclusiveMatrix()[3][1], 0);
    EXPECT_EQ(path("|e|d|dShape").exclusiveMatrix()[3][1], 5);
    EXPECT_TRUE((path("|e|d").inclusiveMatrix() * path("|e|d").inclusiveMatrixInverse()).isEquivalent(MMatrix::identity));
    mel("setAttr e.v false;");
    EXPECT_FALSE(path("|e|d|dShape").isVisible());
    EXPECT_TRUE(path("|a|d|dShape").isVisible());

    MDagPath stale = path("|a|b|c");
    mel("parent c e;");
    EXPECT_EQ(std::string(stale.fullPathName().asChar()), "|e|c") << "a path follows its node";
    mel("delete c;");
    EXPECT_FALSE(stale.isValid());
    EXPECT_FALSE(MDagPath().isValid());
    MStatus status;
    MDagPath().node(&status);
    EXPECT_NE(status, MS::kSuccess);
}

TEST_F(Walks, DagNodesKnowTheirFamily)
{
    MFnDagNode a(node("a")), d(path("|e|d"));
    MObject    b = node("b"), c = node("c"), e = node("e");
    EXPECT_EQ(a.childCount(), 2u);
    EXPECT_EQ(d.parentCount(), 2u);
    EXPECT_TRUE(d.parent(1) == e);
    EXPECT_TRUE(a.hasChild(b) && !a.hasChild(c)) << "children only";
    EXPECT_TRUE(a.isParentOf(c)) << "descendants too";
    EXPECT_TRUE(MFnDagNode(c).isChildOf(a.object()) && MFnDagNode(c).hasParent(b) && !MFnDagNode(c).hasParent(a.object()));
    MStatus status;
    EXPECT_TRUE(a.child(2, &status).isNull());
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(std::string(d.fullPathName().asChar()), "|e|d");
    EXPECT_EQ(std::string(d.partialPathName().asChar()), "e|d") << "as much as tells it from the other";

    EXPECT_TRUE(a.addChild(c));   // moves it
    EXPECT_EQ(std::string(MFnDagNode(c).fullPathName().asChar()), "|a|c");
    EXPECT_TRUE(MFnDagNode(e).addChild(c, MFnDagNode::kNextPos, true));   // and now it has both
    EXPECT_EQ(MFnDagNode(c).parentCount(), 2u);
    MObject top = a.object();
    EXPECT_FALSE(MFnDagNode(c).addChild(top)) << "a cycle";
    const MObject twin = a.duplicate();
    EXPECT_EQ(MFnDagNode(twin).childCount(), a.childCount());
    EXPECT_FALSE(twin == a.object());
}

TEST_F(Walks, ConnectionsUpAndDown)
{
    // one -> two -> four, one -> three -> four
    mel("createNode multiplyDivide -n one; createNode plusMinusAverage -n two; createNode multiplyDivide -n three;"
        "createNode multiplyDivide -n four; connectAttr one.ox two.i1[0]; connectAttr one.oy three.i1x;"
        "connectAttr two.o1 four.i1x; connectAttr three.ox four.i1y;");
    MObject one = node("one"), four = node("four"), two = node("two");
    MItDependencyGraph down(one);
    EXPECT_EQ(walked(down), (Names{"one", "two", "four", "three"}));
    down.resetTo(one, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kBreadthFirst);
    EXPECT_EQ(walked(down), (Names{"one", "two", "three", "four"}));
    MItDependencyGraph up(four, MFn::kInvalid, MItDependencyGraph::kUpstream, MItDependencyGraph::kBreadthFirst);
    EXPECT_EQ(walked(up), (Names{"four", "two", "three", "one"}));

    MItDependencyGraph only(one, MFn::kPlusMinusAverage);
    EXPECT_EQ(walked(only), Names{"two"});
    only.resetTo(four, MFn::kPlusMinusAverage, MItDependencyGraph::kUpstream);
    MObjectArray chain;
    EXPECT_TRUE(only.getNodePath(chain));
    ASSERT_EQ(chain.length(), 2u);
    EXPECT_TRUE(chain[0] == four && chain[1] == two);
    EXPECT_EQ(std::string(only.thisPlug().name().asChar()), "two.output1D") << "by which the walk came";
    EXPECT_EQ(std::string(only.previousPlug().name().asChar()), "four.input1X");

    for (down.resetTo(one); !down.isDone(); down.next())
        if (nameOf(down.currentItem()) == "two")
            down.prune();
    MObjectArray seen;
    down.getNodesVisited(seen);
    EXPECT_EQ(seen.length(), 4u) << "four is still reached by way of three";

    MPlug root = plug("one.ox");
    MItDependencyGraph from(root);
    EXPECT_EQ(walked(from), (Names{"one", "two", "four"})) << "only what hangs on that plug";
    MItDependencyGraph plugs(root, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kDepthFirst, MItDependencyGraph::kPlugLevel);
    const Names way = walked(plugs);
    EXPECT_EQ(way.front(), "one.outputX");
    EXPECT_TRUE(std::find(way.begin(), way.end(), "two.input1D[0]") != way.end());
    EXPECT_TRUE(std::find(way.begin(), way.end(), "four.input1X") != way.end());
    EXPECT_TRUE(std::find(way.begin(), way.end(), "three.input1X") == way.end());
    MObject none;
    MStatus status;
    MItDependencyGraph nowhere(none, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kDepthFirst, MItDependencyGraph::kNodeLevel, &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_TRUE(nowhere.isDone());
}

TEST_F(Walks, NodesThatGoWhileOneLooks)
{
    mel("createNode multiplyDivide -n m1; createNode multiplyDivide -n m2; createNode multiplyDivide -n m3;");
    Names names;
    for (MItDependencyNodes it(MFn::kMultiplyDivide); !it.isDone(); it.next()) {
        names.push_back(nameOf(it.thisNode()));
        if (names.size() == 1)
            mel("delete m2; createNode multiplyDivide -n m4;");
    }
    ASSERT_GE(names.size(), 2u);
    EXPECT_EQ(names[0], "m1");
    EXPECT_EQ(names[1], "m3");
    MItDependencyNodes it(MFn::kMultiplyDivide);
    MStatus            status;
    while (!it.isDone())
        it.next();
    EXPECT_TRUE(it.thisNode(&status).isNull());
    EXPECT_NE(status, MS::kSuccess);
}

TEST_F(Walks, ListsMergeToggleAndTakeAway)
{
    mel("polyPlane -n p -sx 2 -sy 2 -ch 0; select -cl;");   // nine vertices
    MSelectionList list;
    EXPECT_TRUE(list.add("p.vtx[0:3]") && list.add("p.vtx[2:5]"));
    MSelectionList extra;
    extra.add("p.vtx[7]");
    extra.add("a");
    EXPECT_TRUE(list.merge(extra));
    EXPECT_TRUE(list.hasItem(node("a")));
    MDagPath p;
    MObject  comp;
    unsigned vertices = 0;
    for (unsigned i = 0; i < list.length(); ++i)
        if (list.getDagPath(i, p, comp) && !comp.isNull())
            vertices += unsigned(MFnSingleIndexedComponent(comp).elementCount());
    EXPECT_GE(vertices, 7u);

    MSelectionList plain;
    plain.add("a");
    plain.add("b");
    EXPECT_TRUE(plain.merge(path("b"), MObject::kNullObj, MSelectionList::kXORWithList));
    EXPECT_TRUE(plain.merge(path("c"), MObject::kNullObj, MSelectionList::kXORWithList));
    EXPECT_EQ(strings(plain), (Names{"a", "c"}));
    EXPECT_TRUE(plain.merge(path("a"), MObject::kNullObj, MSelectionList::kRemoveFromList));
    EXPECT_EQ(strings(plain), Names{"c"});
    EXPECT_TRUE(plain.toggle(path("c")));
    EXPECT_TRUE(plain.isEmpty());

    list.clear();
    EXPECT_EQ(list.add("noSuchThing"), MS::kInvalidParameter);
    EXPECT_EQ(list.length(), 0u);
    list.add("a.tx");
    MPlug    tx;
    MObject  n;
    MDagPath none;
    EXPECT_TRUE(list.getPlug(0, tx));
    EXPECT_EQ(std::string(tx.name().asChar()), "a.translateX");
    EXPECT_TRUE(list.getDependNode(0, n) && n == node("a"));
    EXPECT_FALSE(list.getPlug(1, tx));
    EXPECT_FALSE(list.remove(1));
    EXPECT_TRUE(list.replace(0, node("b")));
    EXPECT_EQ(strings(list), Names{"b"});
    EXPECT_TRUE(list.hasItem(path("b")));
    MSelectionList verts;
    verts.add("p.vtx[1:4]");
    MFnSingleIndexedComponent fn;
    MObject                   some = fn.create(MFn::kMeshVertComponent);
    fn.addElement(4);
    fn.addElement(8);
    EXPECT_TRUE(verts.hasItemPartly(path("p"), some) || verts.hasItemPartly(path("pShape"), some));
    EXPECT_FALSE(verts.hasItem(path("pShape"), some)) << "8 is missing";
    list.clear();
    EXPECT_TRUE(list.add("|a|*"));
    EXPECT_EQ(strings(list).size(), 2u) << "b and d";
}

TEST_F(Walks, SelectionIteratorsAndAdjustments)
{
    mel("polyPlane -n p -sx 1 -sy 1 -ch 0; createNode multiplyDivide -n md; select -r a md p.vtx[1];");
    MSelectionList list;
    EXPECT_TRUE(MGlobal::getActiveSelectionList(list));
    EXPECT_EQ(list.length(), 3u);
    MItSelectionList it(list, MFn::kTransform);
    EXPECT_FALSE(it.isDone());
    MDagPath p;
    EXPECT_TRUE(it.getDagPath(p) && p == path("a"));
    EXPECT_EQ(it.itemType(), MItSelectionList::kDagSelectionItem);
    it.setFilter(MFn::kMultiplyDivide);
    it.reset();
    EXPECT_EQ(it.itemType(), MItSelectionList::kDNselectionItem);
    EXPECT_FALSE(it.getDagPath(p));
    it.setFilter(MFn::kMeshVertComponent);
    it.reset();
    ASSERT_FALSE(it.isDone());
    EXPECT_TRUE(it.hasComponents());

    struct Case { const char* name; MGlobal::ListAdjustment how; Names left; };
    const Case cases[] = {
        {"a", MGlobal::kReplaceList, {"a"}},      {"b", MGlobal::kAddToList, {"a", "b"}},
        {"a", MGlobal::kXORWithList, {"b"}},      {"a", MGlobal::kXORWithList, {"b", "a"}},
        {"b", MGlobal::kRemoveFromList, {"a"}},   {"e", MGlobal::kAddToHeadOfList, {"e", "a"}},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(MGlobal::selectByName(c.name, c.how));
        MGlobal::getActiveSelectionList(list);
        EXPECT_EQ(strings(list), c.left) << c.name << " " << c.how;
    }
    EXPECT_FALSE(MGlobal::selectByName("nobody"));
    EXPECT_TRUE(MGlobal::isSelected(node("a")));
    EXPECT_TRUE(MGlobal::unselect(node("a")));
    EXPECT_FALSE(MGlobal::isSelected(node("a")));
    EXPECT_TRUE(MGlobal::clearSelectionList());
    MGlobal::getActiveSelectionList(list);
    EXPECT_TRUE(list.isEmpty());
}

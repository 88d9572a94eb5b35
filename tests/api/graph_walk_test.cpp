// Walks over connections that change their way.
#include <maya/MFnDependencyNode.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MSelectionList.h>

#include "support/host_fixture.h"

using mirk::test::Host;

namespace {

using GraphWalk = Host;

std::string names(MItDependencyGraph& it)
{
    std::string out;
    for (; !it.isDone(); it.next())
        out += std::string(MFnDependencyNode(it.currentItem()).name().asChar()) + " ";
    return out;
}

TEST_F(GraphWalk, TurnsRoundAtTheRoot)
{
    // a -> m -> b, m -> c -> d
    mel("createNode multDoubleLinear -n a; createNode multDoubleLinear -n m; createNode multDoubleLinear -n b; createNode multDoubleLinear -n c;"
        "createNode addDoubleLinear -n d; connectAttr a.o m.i1; connectAttr m.o b.i1; connectAttr m.o c.i1; connectAttr c.o d.i1");
    MSelectionList list;
    list.add("m");
    MObject m;
    list.getDependNode(0, m);
    MItDependencyGraph it(m, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kBreadthFirst);
    EXPECT_EQ(names(it), "m b c d ");
    it.toggleDirection();
    EXPECT_FALSE(it.isDirectionDownStream());
    EXPECT_EQ(names(it), "m a ");
    it.toggleDirection();
    it.setCurrentFilter(MFn::kAddDoubleLinear);
    EXPECT_EQ(names(it), "d ");
    it.resetFilter();
    it.toggleTraversal();
    EXPECT_TRUE(it.isTraversalDepthFirst());
    EXPECT_EQ(names(it), "m b c d ");
    it.toggleLevel();
    EXPECT_TRUE(it.atPlugLevel());
}

}  // namespace

// Sets, partitions and object groups.
#include <maya/MDagPath.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnSet.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"

namespace {

class Sets : public mirk::test::Host
{
protected:
    static std::string members(const std::string& set) { return joined("sets -q " + set); }
    static std::string joined(const std::string& command)
    {
        std::string out;
        for (const std::string& s : strings("string $r[] = `" + command + "`; $r = $r;"))
            out += (out.empty() ? "" : " ") + s;
        return out;
    }
    /// The group of that number in a plug's geometry, as text; "" if there is none.
    static std::string group(const std::string& plug, int id)
    {
        MObject         data = scene::plug(plug).asMObject();
        MFnGeometryData fn(data);
        if (!fn.hasObjectGroup(unsigned(id)))
            return "";
        MFnSingleIndexedComponent c(fn.objectGroupComponent(unsigned(id)));
        std::string out;
        for (int i = 0; i < c.elementCount(); ++i)
            out += std::to_string(c.element(i)) + " ";
        return out;
    }
};

}  // namespace

TEST_F(Sets, MembersComeAndGo)
{
    mel("polyCube -n c; createNode network -n w; select -r c w");
    EXPECT_EQ(str("sets -n all"), "all");
    EXPECT_EQ(members("all"), "c w");
    mel("sets -add all persp.tx c; sets -rm all w");
    EXPECT_EQ(members("all"), "c persp.translateX");
    EXPECT_EQ(num("sets -q -size all"), 2);
    EXPECT_EQ(num("sets -im all c"), 1);
    EXPECT_EQ(num("sets -im all w"), 0);
    mel("undo; undo");
    EXPECT_EQ(members("all"), "c w");
    mel("sets -em -n none");
    EXPECT_EQ(members("none"), "");
    EXPECT_EQ(joined("listSets -o c"), "all");
    mel("delete c");
    EXPECT_EQ(members("all"), "w");
    EXPECT_NE(melError("sets -add w c"), "");
    EXPECT_NE(melError("sets -add all all"), "");
    EXPECT_NE(melError("sets -q w"), "");
    EXPECT_EQ(members("all"), "w");
}

TEST_F(Sets, ComponentsOfShapes)
{
    mel("polyPlane -sx 3 -sy 3 -n p; sets -n s p.f[0:3] p.f[8]");
    EXPECT_EQ(members("s"), "p.f[0:3] p.f[8]");
    EXPECT_EQ(num("size(`ls -type groupId`)"), 1);
    mel("sets -add s p.f[4] p.vtx[2]; sets -rm s p.f[1:2]");
    EXPECT_EQ(members("s"), "p.f[0] p.f[3:4] p.f[8] p.vtx[2]");
    EXPECT_EQ(num("sets -im s p.f[3:4]"), 1);
    EXPECT_EQ(num("sets -im s p.f[2:3]"), 0);
    EXPECT_EQ(num("sets -ii s p.f[2:3]"), 1);
    mel("sets -n t p.f[2:4]");
    EXPECT_EQ(joined("sets -int s t"), "p.f[3:4]");
    EXPECT_EQ(joined("sets -sub s t"), "p.f[0] p.f[8] p.vtx[2]");
    EXPECT_EQ(joined("sets -un t p.f[7]"), "p.f[2:4] p.f[7]");
    EXPECT_EQ(joined("listSets -o p.f[3]"), "s t");
    mel("sets -rm t p.f[*]");
    EXPECT_EQ(members("t"), "");
    EXPECT_EQ(num("size(`ls -type groupId`)"), 1);   // an empty group takes its number along

    // out of a whole object, what is left stays
    mel("sets -n whole pShape; sets -rm whole p.f[0:6]");
    EXPECT_EQ(members("whole"), "p.f[7:8]");
    mel("sets -add whole pShape");
    EXPECT_EQ(members("whole"), "pShape");

    mel("sets -v -n points p.vtx[0]");
    EXPECT_NE(melError("sets -add points p.f[0]"), "");
    EXPECT_NE(melError("sets -v -n bad p.f[0]"), "");
    EXPECT_EQ(num("objExists bad"), 0);
    mel("sets -n outer s points");
    EXPECT_EQ(members("outer"), "s points");
    mel("sets -fl outer");
    EXPECT_EQ(num("sets -im outer p.vtx[0]"), 1);
    EXPECT_EQ(num("sets -im outer p.f[8]"), 1);
}

TEST_F(Sets, PartitionsKeepSetsApart)
{
    mel("polyPlane -sx 3 -sy 3 -n p; sets -n a p.f[0:3]; sets -n b p.f[4:8]; partition -n parts a b");
    EXPECT_EQ(joined("partition -q parts"), "a b");
    EXPECT_NE(melError("sets -add b p.f[2:5]"), "");
    EXPECT_EQ(members("b"), "p.f[4:8]");
    mel("sets -fe b p.f[2:5]");
    EXPECT_EQ(members("a"), "p.f[0:1]");
    EXPECT_EQ(members("b"), "p.f[2:8]");
    mel("sets -n c p.f[0]");
    EXPECT_NE(melError("partition -add parts c"), "");
    mel("partition -rm parts a; partition -add parts c");
    EXPECT_EQ(joined("partition -q parts"), "b c");
}

TEST_F(Sets, GroupsTravelInGeometry)
{
    // the group of a set stands in the shape's output
    mel("polyPlane -sx 2 -sy 2 -n p; sets -n s p.vtx[1] p.vtx[5:6]");
    const int id = int(num("getAttr groupId1.groupId"));
    EXPECT_GT(id, 0);
    EXPECT_EQ(group("pShape.outMesh", id), "1 5 6 ");
    mel("sets -rm s p.vtx[5]");
    EXPECT_EQ(group("pShape.worldMesh[0]", id), "1 6 ");

    // and groupParts writes one into what passes through
    mel("createNode groupId -n g; createNode groupParts -n parts; connectAttr g.groupId parts.groupId; connectAttr pShape.outMesh parts.inputGeometry;"
        "setAttr parts.inputComponents -type componentList 2 \"vtx[0:2]\" \"vtx[4]\"; polyPlane -ch 0 -n q; connectAttr -f parts.outputGeometry qShape.inMesh");
    const int second = int(num("getAttr g.groupId"));
    EXPECT_NE(second, id);
    EXPECT_EQ(group("qShape.outMesh", second), "0 1 2 4 ");
    EXPECT_EQ(group("qShape.outMesh", id), "1 6 ");
    mel("setAttr parts.inputRemoveComponent -type componentList 1 \"vtx[1]\"");
    EXPECT_EQ(group("qShape.outMesh", second), "0 2 4 ");
    mel("sets -rm s p.vtx[1]");
    EXPECT_EQ(group("qShape.outMesh", id), "6 ");

    const std::string path = file("sets.ma");
    mel("sets -add s persp; file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -new; file -o \"" + path + "\"");
    EXPECT_EQ(members("s"), "p.vtx[6] persp");
    EXPECT_EQ(group("qShape.outMesh", int(num("getAttr g.groupId"))), "0 2 4 ");
    EXPECT_EQ(group("pShape.outMesh", int(num("getAttr groupId1.groupId"))), "6 ");
}

TEST_F(Sets, FunctionSet)
{
    mel("polyCube -n c; createNode network -n w");
    MSelectionList list;
    list.add("c.f[0:2]");
    list.add("w");
    MFnSet  fn;
    MStatus status;
    MObject made = fn.create(list, MFnSet::kNone, &status);
    EXPECT_TRUE(status && made.hasFn(MFn::kSet));
    EXPECT_TRUE(fn.isMember(scene::plug("w.message").node()));
    MDagPath path;
    MObject  faces;
    list.getDagPath(0, path, faces);
    EXPECT_TRUE(fn.isMember(path, faces));
    EXPECT_FALSE(fn.isMember(path));
    EXPECT_TRUE(fn.removeMember(path, faces));
    EXPECT_TRUE(fn.addMember(scene::plug("c.tx")));
    EXPECT_EQ(fn.addMember(MObject()), MS::kInvalidParameter);
    MSelectionList found;
    EXPECT_TRUE(fn.getMembers(found, true));
    EXPECT_EQ(found.length(), 2u);
    EXPECT_TRUE(fn.clear());
    fn.getMembers(found, false);
    EXPECT_TRUE(found.isEmpty());
    MFnSet edges;
    EXPECT_TRUE(edges.create(list, MFnSet::kEdgesOnly, &status).isNull());
    EXPECT_FALSE(status);
    EXPECT_EQ(num("size(`ls -type objectSet`)"), 1);
    MFnSet none(scene::plug("w.message").node(), &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_FALSE(none.clear());
}

// Component lists to object groups and back, and from one kind of component to another.
#include <maya/MFnGeometryData.h>

#include "component_scene.h"

using namespace scene;
using ComponentConverters = scene::Test;

TEST_F(ComponentConverters, ListsGoThroughObjectGroups)
{
    grid(3);
    run("createNode compListToObjGrp -name write; createNode objGrpToCompList -name read;"
        "connectAttr p.worldMesh[0] write.inGeometry; connectAttr write.outGeometry read.inGeometry");
    giveComponents("write.inComponents", {"f[2:3]", "vtx[1]"});
    struct { const char *settings, *read; } const cases[] = {
        {"", ""},                                                      // -1 names no group
        {"setAttr write.groupId 4; setAttr read.groupId 4", "f 2 3"},  // the first component alone
        {"setAttr read.groupId 5", ""},
        {"setAttr read.groupId 4; setAttr read.envelope 0", ""},
        {"setAttr read.envelope 1; setAttr write.envelope 0", ""},
        {"setAttr write.envelope 1; setAttr write.nodeState 1; setAttr read.nodeState 1", "f 2 3"},
        {"setAttr write.groupId 0; setAttr read.groupId 0", "f 2 3"},
    };
    for (const auto& c : cases) {
        run(c.settings);
        EXPECT_EQ(componentsAt("read.outComponents"), c.read) << c.settings;
    }
    giveComponents("write.inComponents", {"vtx[7]"});
    EXPECT_EQ(componentsAt("read.outComponents"), "v 7");              // replaced
    giveComponents("write.inComponents", {});
    EXPECT_EQ(componentsAt("read.outComponents"), "");
    EXPECT_EQ(points("write.outGeometry").size(), 16u);
}

TEST_F(ComponentConverters, OtherGroupsStay)
{
    grid(3);
    run("createNode compListToObjGrp -name a; createNode compListToObjGrp -name b; createNode objGrpToCompList -name read;"
        "connectAttr p.outMesh a.inGeometry; connectAttr a.outGeometry b.inGeometry;"
        "connectAttr b.outGeometry read.inGeometry;"
        "setAttr a.groupId 1; setAttr b.groupId 2; setAttr read.groupId 1");
    giveComponents("a.inComponents", {"vtx[3]"});
    giveComponents("b.inComponents", {"vtx[4]"});
    EXPECT_EQ(componentsAt("read.outComponents"), "v 3");
    run("setAttr b.groupId 1");
    EXPECT_EQ(componentsAt("read.outComponents"), "v 4");
    MObject data = plug("a.outGeometry").asMObject();
    EXPECT_EQ(textOf(MFnGeometryData(data).objectGroupComponent(1)), "v 3");   // what b reads is not written to
}

TEST_F(ComponentConverters, CurvesAndSurfaces)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -point 3 0 0 -name c;"
        "nurbsPlane -degree 1 -patchesU 2 -patchesV 2 -name s;"
        "createNode compListToObjGrp -name write; createNode objGrpToCompList -name read; setAttr write.groupId 1;"
        "setAttr read.groupId 1; connectAttr write.outGeometry read.inGeometry");
    struct { const char *geometry, *entry, *read; } const cases[] = {
        {"c.worldSpace[0]", "cv[0:1]", "cv 0 1"}, {"s.worldSpace[0]", "cv[1:2][0]", "sf 1,0 2,0"}};
    for (const auto& c : cases) {
        run(std::string("connectAttr -force ") + c.geometry + " write.inGeometry");
        giveComponents("write.inComponents", {c.entry});
        EXPECT_EQ(componentsAt("read.outComponents"), c.read);
    }
}

// In a grid of 3 by 3 faces (see component_scene.h) edges 0 to 3 are those of face 0.
TEST_F(ComponentConverters, FromKindToKind)
{
    grid(3);
    run("createNode componentToComponent -name c; connectAttr p.worldMesh[0] c.inMesh");
    struct { const char* input; int to, contained; const char* result; } const cases[] = {
        {"vtx[5]", 0, 0, "v 5"},
        {"vtx[5]", 2, 0, "f 0 1 3 4"},
        {"vtx[5]", 2, 1, ""},
        {"vtx[4:10]", 2, 1, "f 3 4"},                      // 4 5 8 9 and 5 6 9 10 are whole
        {"vtx[0]", 3, 0, "map 0"},
        {"e[0]", 0, 0, "v 0 1"},
        {"e[0:3]", 2, 0, "f 0 1 3"},
        {"e[0:3]", 2, 1, "f 0"},
        {"e[0:2]", 2, 1, ""},
        {"f[0]", 0, 0, "v 0 1 4 5"},
        {"f[0]", 1, 0, "e 0 1 2 3"},
        {"f[0]", 3, 1, "map 0 1 4 5"},
        {"map[0:1]", 0, 0, "v 0 1"},
        {"map[0]", 2, 0, "f 0"},
        {"map[4:10]", 2, 1, "f 3 4"},
        {"vtx[900]", 2, 0, ""},
        {"vtx[900]", 0, 0, "v 900"},                       // passed on as it came
        {"vtx[*]", 2, 1, "f 0 1 2 3 4 5 6 7 8"},
        {"cv[0]", 0, 0, ""},
    };
    for (const auto& c : cases) {
        giveComponents("c.inComponents", {c.input});
        run("setAttr c.outComponentType " + std::to_string(c.to) + "; setAttr c.contained " + std::to_string(c.contained));
        EXPECT_EQ(componentsAt("c.outComponents"), c.result) << c.input << " " << c.to << c.contained;
    }
    giveComponents("c.inComponents", {"vtx[0:1]", "f[8]"});
    run("setAttr c.outComponentType 1; setAttr c.contained 1");
    EXPECT_EQ(componentsAt("c.outComponents"), "e 0");     // of several components the first
    run("setAttr c.envelope 0");
    EXPECT_EQ(componentsAt("c.outComponents"), "");
}

TEST_F(ComponentConverters, FromAnObjectGroup)
{
    grid(3);
    run("createNode compListToObjGrp -name write; connectAttr p.worldMesh[0] write.inGeometry; setAttr write.groupId 3;"
        "createNode componentToComponent -name c; connectAttr write.outGeometry c.inMesh; setAttr c.useComponents 1;"
        "setAttr c.outComponentType 2");
    giveComponents("write.inComponents", {"vtx[0]"});
    EXPECT_EQ(componentsAt("c.outComponents"), "");
    run("setAttr c.groupId 3");
    EXPECT_EQ(componentsAt("c.outComponents"), "f 0");
    run("setAttr c.groupId 4");
    EXPECT_EQ(componentsAt("c.outComponents"), "");
}

// A vertex on a seam has two UVs, a UV belongs to one vertex.
TEST_F(ComponentConverters, UVsAtASeam)
{
    run("polyCube -name p; createNode componentToComponent -name c; connectAttr p.worldMesh[0] c.inMesh;"
        "createNode componentToComponent -name back; connectAttr p.worldMesh[0] back.inMesh;"
        "connectAttr c.outComponents back.inComponents; setAttr c.outComponentType 3");
    MFnMesh   mesh(plug("p.outMesh").asMObject());
    MIntArray counts, ids, sizes, corners;
    mesh.getAssignedUVs(counts, ids);
    mesh.getVertices(sizes, corners);
    std::set<int> uvs;
    for (unsigned int i = 0; i < corners.length(); ++i)
        if (corners[i] == 0)
            uvs.insert(ids[i]);
    ASSERT_GT(uvs.size(), 1u);
    giveComponents("c.inComponents", {"vtx[0]"});
    EXPECT_EQ(componentsAt("c.outComponents"), textOf("map", uvs));
    EXPECT_EQ(componentsAt("back.outComponents"), "v 0");
    run("setAttr -type \"string\" c.uvSet nowhere");
    EXPECT_EQ(componentsAt("c.outComponents"), "");
}

// Edges of faces that are not numbered along the faces' corners, and a face that uses an edge twice.
TEST_F(ComponentConverters, AwkwardMeshes)
{
    const struct { int points; std::vector<std::vector<int>> faces; } meshes[] = {
        {5, {{0, 1, 2}, {0, 1, 3}, {1, 0, 4}}}, {4, {{0, 1, 0, 2}, {3, 3, 3}}}, {9, {{0, 1, 2}, {0, 3, 1}}}, {0, {}}};
    run("createNode network -name n; addAttr -longName m -dataType \"mesh\" n; createNode componentToComponent -name c;"
        "connectAttr n.m c.inMesh");
    for (const auto& m : meshes) {
        MObject     data = MFnMeshData().create();
        MPointArray points(unsigned(m.points), MPoint());
        MIntArray   counts, corners;
        for (const auto& face : m.faces) {
            counts.append(int(face.size()));
            for (int v : face)
                corners.append(v);
        }
        MFnMesh().create(m.points, int(m.faces.size()), points, counts, corners, data);
        plug("n.m").setMObject(data);
        for (const char* input : {"vtx[0:1]", "e[0:1]", "f[0]", "map[0]", "vtx[*]", "e[*]", "f[*]", "map[*]"}) {
            giveComponents("c.inComponents", {input});
            for (int to = 0; to < 4; ++to) {
                run("setAttr c.contained " + std::to_string(to % 2) + "; setAttr c.outComponentType " + std::to_string(to));
                componentsAt("c.outComponents");
            }
        }
        if (m.points != 5)
            continue;
        giveComponents("c.inComponents", {"e[0]"});
        run("setAttr c.contained 0; setAttr c.outComponentType 2");
        EXPECT_EQ(componentsAt("c.outComponents"), "f 0 1 2");   // three faces on an edge
    }
}

// shell: islands of small meshes by hand; what the host's scene looks like afterwards.
#include "arrays.h"

#include <limits>

#include "generators/shellSteps.h"

using namespace scene;

namespace {

class ShellNode : public scene::Test
{
protected:
    /// A shell `s` on planes of one quad each, in a row; every plane is a piece, and a UV shell unless `oneUvShell`.
    static void planes(int count, const std::string& settings = "")
    {
        MFnMeshData data;
        MObject     owner = data.create();
        MPointArray points;
        MIntArray   counts(unsigned(count), 4), corners, uvIds;
        MFloatArray u, v;
        for (int i = 0; i < count; ++i) {
            const double x = 3.0 * i;
            for (const MPoint& p : {MPoint(x, 0, 0), MPoint(x + 2, 0, 0), MPoint(x + 2, 1, 0), MPoint(x, 1, 0)}) {
                corners.append(int(points.length()));
                uvIds.append(int(points.length()));
                points.append(p);
                u.append(float(p.x));
                v.append(float(p.y));
            }
        }
        MFnMesh mesh;
        mesh.create(4 * count, count, points, counts, corners, u, v, owner);
        mesh.assignUVs(counts, uvIds);
        run("createNode network -name m; addAttr -longName m -dataType \"mesh\" m");
        EXPECT_TRUE(plug("m.m").setMObject(owner));
        run("createNode shell -name s; connectAttr m.m s.inMesh;" + settings);
    }
    static int count() { return plug("s.outCount").asInt(); }
};

const char* const kByPieces = "setAttr s.mode 1;";

} // namespace

TEST_F(ShellNode, BothModesFindThePieces)
{
    for (const char* mode : {"", kByPieces}) {
        run("file -force -new");
        planes(3, mode);
        EXPECT_EQ(count(), 3) << mode;
        expectNear(vectors("s.outCenters"), {{1, 0.5, 0}, {4, 0.5, 0}, {7, 0.5, 0}});
        expectNear(vectors("s.outScales"), {{2, 1, 0}, {2, 1, 0}, {2, 1, 0}});
        EXPECT_EQ(doubles("s.outUvCounts"), (std::vector<double>{4, 4, 4})) << mode;
        expectNear(vectors("s.outShellData[1].outPositionPP"), {{3, 0, 0}, {5, 0, 0}, {5, 1, 0}, {3, 1, 0}});
        EXPECT_DOUBLE_EQ(plug("s.outShellData[2].outBoundingBoxCenterX").asDouble(), 7.0);
        EXPECT_TRUE(doubles("s.outShellData[2].outWeightPP").empty());
    }
}

TEST_F(ShellNode, MovesPieces)
{
    planes(2, "setAttr s.transform 1");
    expectNear(points("s.outMesh"), points("m.m"));   // without arrays they stay
    give("s.inPositionPP", {'v', {10, 0, 0}});
    give("s.inRotationPP", {'v', {0, 0, 90, 0, 0, 180}});
    give("s.inScalePP", {'v', {1, 2, 1}});
    expectNear(vectors("s.outCenters"), {{10, 0, 0}, {4, 0.5, 0}});
    expectNear(vectors("s.outScales"), {{2, 2, 0}, {2, 1, 0}});   // twice as high, then turned: wide
    expectNear(points("s.outMesh"), {{11, -1, 0}, {11, 1, 0}, {9, 1, 0}, {9, -1, 0}, {5, 1, 0}, {3, 1, 0}, {3, 0, 0}, {5, 0, 0}});
    expectNear(vectors("s.outShellData[1].outPositionPP"), {{5, 1, 0}, {3, 1, 0}, {3, 0, 0}, {5, 0, 0}});
    run("setAttr s.transform 0");
    expectNear(points("s.outMesh"), points("m.m"));
}

TEST_F(ShellNode, SpreadsValuesAndFallsBackToThoseOfTheMesh)
{
    planes(2, "setAttr s.weight 1; setAttr s.radius 1; setAttr s.rgba 1; setAttr s.normal 1; setAttr s.tangent 1");
    give("s.inWeightPP", {'d', {0.25}});
    give("s.inRgbaPP", {'d', {0.5, 0.25, 1, 0.5, 1, 1}});
    give("s.inNormalPP", {'v', {0, 3, 0}});
    EXPECT_EQ(doubles("s.outShellData[0].outWeightPP"), std::vector<double>(4, 0.25));
    EXPECT_EQ(doubles("s.outShellData[1].outWeightPP"), std::vector<double>(4, 1.0));
    EXPECT_EQ(doubles("s.outShellData[0].outRadiusPP"), std::vector<double>(4, 1.0));
    expectNear(vectors("s.outShellData[0].outNormalPP"), std::vector<MVector>(4, {0, 3, 0}));
    expectNear(vectors("s.outShellData[1].outNormalPP"), std::vector<MVector>(4, {0, 0, 1}));
    expectNear(vectors("s.outShellData[1].outTangentPP"), std::vector<MVector>(4, {1, 0, 0}));   // u runs along x
    EXPECT_EQ(doubles("s.outShellData[1].outRgbaPP"),
              (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(colors("s.outMesh")[0], MColor(0.5f, 0.25f, 1.0f, 0.5f));
    EXPECT_EQ(colors("s.outMesh")[7], MColor(0, 0, 0, 1));
    MObject           data = plug("s.outMesh").asMObject();
    MFloatVectorArray normals;
    MFnMesh(data).getVertexNormals(false, normals);
    EXPECT_NEAR(normals[0].y, 3.0, 1e-6);
    EXPECT_NEAR(normals[4].z, 1.0, 1e-6);
    give("s.inTangentPP", {'v', {0, 0, 5}});
    expectNear(vectors("s.outShellData[0].outTangentPP"), std::vector<MVector>(4, {0, 0, 5}));
}

TEST_F(ShellNode, AVertexOfTwoIslandsGoesWithTheLater)
{
    run("polyPlane -width 2 -height 1 -subdivisionsX 2 -subdivisionsY 1 -name p; createNode shell -name s");
    MSelectionList list;
    MDagPath       path;
    list.add("pShape");
    ASSERT_TRUE(list.getDagPath(0, path));
    MFnMesh     mesh(path);   // vertices 0 1 2 below, 3 4 5 above; each face gets UVs of its own
    const int   counts[] = {4, 4}, ids[] = {0, 1, 2, 3, 4, 5, 6, 7};
    MFloatArray u(8, 0.5f), v(8, 0.5f);
    mesh.setUVs(u, v);
    mesh.assignUVs(MIntArray(counts, 2), MIntArray(ids, 8));
    run("connectAttr pShape.outMesh s.inMesh; setAttr s.transform 1");
    ASSERT_EQ(count(), 2);
    EXPECT_EQ(vectors("s.outShellData[0].outPositionPP").size(), 4u);
    give("s.inPositionPP", {'v', {0, 10, 0, 0, 20, 0}});
    const std::vector<MVector> moved = points("s.outMesh");
    EXPECT_NEAR(moved[0].y, 10.0, 1e-6);
    EXPECT_NEAR(moved[1].y, 20.0, 1e-6);   // the seam, from where it stood
    EXPECT_NEAR(moved[4].y, 20.0, 1e-6);
    EXPECT_NEAR(moved[2].y, 20.0, 1e-6);
    expectNear(vectors("s.outCenters"), {{0, 10, 0}, {0, 20, 0}});
    expectNear(vectors("s.outScales"), {{1, 0, 1}, {1, 0, 1}});   // each by its own move
}

TEST_F(ShellNode, StatesAndInputsThatAreNone)
{
    planes(2);
    EXPECT_EQ(count(), 2);
    run("setAttr s.nodeState 1");
    EXPECT_EQ(count(), 0);
    expectNear(points("s.outMesh"), points("m.m"));
    run("setAttr s.nodeState 2; setAttr s.transform 1");
    EXPECT_EQ(count(), 0);   // as it was
    run("setAttr s.nodeState 0");
    EXPECT_EQ(count(), 2);
    const double kNan = std::numeric_limits<double>::quiet_NaN(), kInf = std::numeric_limits<double>::infinity();
    give("s.inPositionPP", {'v', {kNan, 0, 0, kInf, 0, 0}});
    give("s.inRotationPP", {'v', {kInf, kNan, 0}});
    give("s.inScalePP", {'v', {0, 0, 0, 1e300, 1e300, 1e300}});
    EXPECT_EQ(points("s.outMesh").size(), 8u);
    EXPECT_EQ(vectors("s.outShellData[1].outPositionPP").size(), 4u);

    run("createNode network -name f; addAttr -longName other -dataType vectorArray f; setAttr f.other -type vectorArray 1 1 2 3;"
        "disconnectAttr m.m s.inMesh");
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(plug("s.outShellData").numElements(), 0u);   // those of earlier are gone
    run("connectAttr " + meshSource(5, true) + " s.inMesh");   // no UVs, points without a face
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(points("s.outMesh").size(), 5u);
    for (const char* mode : {"setAttr s.mode 0", "setAttr s.mode 1", "setAttr s.mode 0"}) {
        run(std::string(mode) + "; delete meshes");
        EXPECT_EQ(count(), 0) << mode;
        run("connectAttr " + meshSource(3, false) + " s.inMesh");
        EXPECT_EQ(count(), 0) << mode;
    }
}

TEST_F(ShellNode, ReadersOfAShellThatIsGoneGetNothing)
{
    planes(3, "createNode network -name d; addAttr -longName v -dataType vectorArray d; connectAttr s.outShellData[2].outPositionPP d.v");
    EXPECT_EQ(vectors("d.v").size(), 4u);
    run("setAttr s.nodeState 1");
    EXPECT_TRUE(vectors("d.v").empty());
    EXPECT_EQ(plug("s.outShellData").numElements(), 1u);   // the one that is read
    run("setAttr s.nodeState 0");
    EXPECT_EQ(vectors("d.v").size(), 4u);
    EXPECT_TRUE(vectors("s.outShellData[9].outPositionPP").empty());   // asked for, and never was
    EXPECT_EQ(count(), 3);
}

TEST_F(ShellNode, PiecesLeaveTheSceneAsItWas)
{
    planes(3, kByPieces);
    run("polyCube -name c; select c.f[2]; string $before[] = `ls`");
    EXPECT_EQ(count(), 3);
    run("string $after[] = `ls`; string $selected[] = `ls -selection`; if (stringArrayToString($before, \" \") != "
        "stringArrayToString($after, \" \")) error \"nodes\"; if ($selected[0] != \"c.f[2]\") error $selected[0]");
    run("file -force -new; polyCube -name box; polyCube -name other; rename otherShape boxShape;"   // one name twice
        "createNode shell -name s; setAttr s.mode 1; connectAttr \"|box|boxShape.outMesh\" s.inMesh");
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(vectors("s.outShellData[0].outPositionPP").size(), 8u);
    run("delete box");
    EXPECT_EQ(count(), 0);
}

TEST(ShellSteps, PositionsThatAreNoPlacesTakeNothingElseAlong)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN(), kInf = std::numeric_limits<double>::infinity();
    shells::Shells   found;
    found.first = {0, 4, 5};
    found.vertices = {0, 1, 2, 3, 4};
    std::vector<double>      xyz = {kNan, 9, 9, 1, 2, 3, 3, 4, 5, 9, kInf, 9, kNan, kNan, kNan}, placed;
    std::vector<shells::Box> boxes = shells::boxesOf(found, xyz);
    EXPECT_EQ(std::vector<double>(boxes[0].center, boxes[0].center + 3), (std::vector<double>{2, 3, 4}));
    EXPECT_EQ(std::vector<double>(boxes[0].size, boxes[0].size + 3), (std::vector<double>{2, 2, 2}));
    EXPECT_EQ(boxes[1].center[0], 0.0);
    const shells::Move turned{{{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}}, {10, 0, 0}};
    shells::moveShells(found, {turned, turned}, boxes, xyz, placed);
    EXPECT_EQ(std::vector<double>(xyz.begin() + 3, xyz.begin() + 9), (std::vector<double>{11, 1, -1, 9, -1, 1}));
    EXPECT_EQ(boxes[0].center[0], 10.0);
}

TEST(ShellSteps, PiecesThatTheHostTellsOddly)
{
    shells::Faces faces;   // two triangles with a corner in common, one apart
    faces.vertexCount = 8;
    faces.vertices = {0, 1, 2, 2, 3, 4, 5, 6, 7};
    faces.uvs = {0, 1, 2, 2, 3, 4, -1, -1, -1};
    faces.first = {0, 3, 6, 9};
    shells::Shells found;
    EXPECT_TRUE(shells::ofPieces(faces, [](int face) { return std::vector<int>{face, 99, -1, face, 0}; }, found));
    EXPECT_EQ(found.first, (std::vector<std::size_t>{0, 3, 5, 8}));   // the common corner stays with the first
    EXPECT_EQ(found.uvCounts, (std::vector<double>{3, 3, 0}));
    EXPECT_FALSE(shells::ofPieces(faces, [](int) { return std::vector<int>{0}; }, found));   // says nothing of face 1
    EXPECT_EQ(found.count(), 0u);
    EXPECT_FALSE(shells::ofPieces(faces, [](int) { return std::vector<int>(); }, found));
    const shells::Shells byUvs = shells::ofUvs(faces, {0, 0, 0, 0, 7}, 2);   // a UV of a shell that is none
    EXPECT_EQ(byUvs.vertices, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(byUvs.uvCounts, (std::vector<double>{4, 0}));
}

// faceCenters and uvsToPointsOnMesh, and the index that finds polygons under a UV.
#include <maya/MFloatArray.h>

#include <random>

#include "arrays.h"
#include "arrays/uvIndex.h"

using namespace scene;
using MeshQueries = scene::Test;

namespace {

/// A reference of two unit squares side by side in x, y at z = 0, with UVs 0 to 1 and 1 to 2, moved by (10, 0, 5).
///   3 - 4 - 5
///   0 - 1 - 2
void reference()
{
    MPointArray points;
    for (int i = 0; i < 6; ++i)
        points.append(MPoint(i % 3, i / 3, 0));
    const int   corners[] = {0, 1, 4, 3, 1, 2, 5, 4};
    MIntArray   counts(2, 4), ids;
    MFloatArray u, v;
    for (int c : corners)
        ids.append(c);
    for (int i = 0; i < 6; ++i)
        u.append(float(i % 3)), v.append(float(i / 3));
    MFnMeshData data;
    MObject     owner = data.create();
    MFnMesh     mesh;
    mesh.create(6, 2, points, counts, ids, owner);
    mesh.setUVs(u, v);
    mesh.assignUVs(counts, ids);
    run("createNode transform -name ref; setAttr ref.translate 10 0 5; createNode mesh -name refShape -parent ref");
    EXPECT_TRUE(plug("refShape.inMesh").setMObject(owner));
    run("createNode uvsToPointsOnMesh -name n; connectAttr refShape.worldMesh[0] n.inReferenceMesh");
}

} // namespace

TEST_F(MeshQueries, CentersAreWorldMeansOfThePolygon)
{
    run("createNode faceCenters -name n");
    EXPECT_EQ(read("n.outPositionPP"), (Array{'v', {}}));
    // quads of a plane 2 wide and deep around (10, 0, 0), scaled by 3 in x
    run("polyPlane -width 2 -height 2 -subdivisionsX 2 -subdivisionsY 1 -name p; setAttr p.translateX 10; setAttr p.scaleX 3;"
        "connectAttr p.worldMesh[0] n.inGeometry");
    expectNear(vectors("n.outPositionPP"), {{8.5, 0, 0}, {11.5, 0, 0}});
    run("setAttr n.nodeState 2; setAttr p.translateX 0");
    expectNear(vectors("n.outPositionPP"), {{8.5, 0, 0}, {11.5, 0, 0}});     // blocked: the old value stays
    run("setAttr n.nodeState 0; disconnectAttr p.worldMesh[0] n.inGeometry");
    EXPECT_EQ(read("n.outPositionPP"), (Array{'v', {}}));                    // no stale mesh
}

TEST_F(MeshQueries, PointsGoToWorldPlacesAndAreWrittenAsObjectOnes)
{
    reference();
    // four points with UVs: in the first square, in the second, off by 0.005, off by far
    run("polyPlane -subdivisionsX 1 -subdivisionsY 1 -name p; setAttr p.translate 0 100 0; connectAttr p.worldMesh[0] n.inGeometry;"
        "setAttr n.meshUVsFrom 1");
    give("n.inMapPP", {'d', {0.25, 0.5, 1.75, 0.25, 0.5, 1.005, 0.5, 3}});
    expectNear(points("n.outGeometry"), {{10.25, 0.5, 5}, {11.75, 0.25, 5}, {10.5, 1, 5}, {0.5, 0, -0.5}});
    run("setAttr n.tolerance 0");                                            // counts as 0.001
    expectNear(points("n.outGeometry"), {{10.25, 0.5, 5}, {11.75, 0.25, 5}, {-0.5, 0, -0.5}, {0.5, 0, -0.5}});
    give("n.inMapPP", {'d', {0.5, 1.0009, 0, 0, 0, 0, 0, 0}});
    EXPECT_TRUE(points("n.outGeometry")[0].isEquivalent({10.5, 1, 5}, 1e-6));

    Warnings warnings;
    give("n.inMapPP", {'d', {0, 0, 0}});
    expectNear(points("n.outGeometry"), points("p.outMesh"));
    EXPECT_EQ(warnings.texts, (std::vector<std::string>{"n: point/uv count missmatch."}));
    // its own UVs: a plane's are 0 to 1, row by row
    run("setAttr n.meshUVsFrom 0");
    expectNear(points("n.outGeometry"), {{10, 0, 5}, {11, 0, 5}, {10, 1, 5}, {11, 1, 5}});
    run("setAttr n.envelope 0");
    expectNear(points("n.outGeometry"), points("p.outMesh"));
    run("setAttr n.envelope 1; disconnectAttr refShape.worldMesh[0] n.inReferenceMesh");
    expectNear(points("n.outGeometry"), points("p.outMesh"));
}

TEST_F(MeshQueries, OtherGeometry)
{
    reference();
    run("curve -degree 1 -point 0 0 0 -point 1 1 1 -name c; connectAttr c.worldSpace[0] n.inGeometry");
    give("n.inMapPP", {'d', {1, 0, 0.5, 0.5}});
    MObject     data = plug("n.outGeometry").asMObject();
    MPointArray cvs;
    MFnNurbsCurve(data).getCVs(cvs);
    ASSERT_EQ(cvs.length(), 2u);
    EXPECT_TRUE(cvs[0].isEquivalent(MPoint(11, 0, 5), 1e-6));
    EXPECT_TRUE(cvs[1].isEquivalent(MPoint(10.5, 0.5, 5), 1e-6));

    // vectors keep their places; a wrong number of UVs is still told
    const Array vectors{'v', {1, 2, 3, 4, 5, 6}};
    give("n.inGeometry", vectors);
    EXPECT_EQ(read("n.outGeometry"), vectors);
    Warnings warnings;
    give("n.inMapPP", {'d', {1, 0}});
    EXPECT_EQ(read("n.outGeometry"), vectors);
    EXPECT_EQ(warnings.texts.size(), 1u);
}

/// The second way: every polygon in order, as slow as it is.
TEST_F(MeshQueries, TheIndexFindsWhatThePlainWalkFinds)
{
    run("polySphere -subdivisionsX 20 -subdivisionsY 12 -name s; createNode uvsToPointsOnMesh -name n; setAttr n.meshUVsFrom 1;"
        "connectAttr s.worldMesh[0] n.inReferenceMesh; polyPlane -subdivisionsX 15 -subdivisionsY 15 -name p;"
        "connectAttr p.worldMesh[0] n.inGeometry; setAttr n.tolerance 0.03");
    std::mt19937 random(3);
    Array        uvs{'d', {}};
    for (int i = 0; i < 2 * 256; ++i)
        uvs.values.push_back(double(random() % 1200) / 1000.0 - 0.1);
    uvs.values[0] = std::nan("");
    uvs.values[2] = HUGE_VAL;
    give("n.inMapPP", uvs);
    const std::vector<MVector> found = points("n.outGeometry"), before = points("p.outMesh");

    MObject data = plug("s.worldMesh[0]").asMObject();
    MFnMesh mesh(data);
    for (std::size_t i = 0; i < before.size(); ++i) {
        float2  uv = {float(uvs.values[2 * i]), float(uvs.values[2 * i + 1])};
        MVector expected = before[i];
        MPoint  at;
        for (int face = 0; face < mesh.numPolygons(); ++face)
            if (mesh.getPointAtUV(face, at, uv, MSpace::kWorld, nullptr, 0.03f)) {
                expected = at;
                break;
            }
        for (unsigned c = 0; c < 3; ++c)   // as meshes store them
            EXPECT_EQ(float(found[i][c]), float(expected[c])) << i << ": " << uv[0] << " " << uv[1];
    }
}

TEST(UvIndexTest, LowestAcceptedBox)
{
    std::mt19937       random(5);
    std::vector<UvBox> boxes;
    for (int i = 0; i < 500; ++i) {
        UvBox box;
        const float u = float(random() % 100), v = float(random() % 100);
        box.add(u, v);
        box.add(u + float(random() % 30), v + 2.0f);
        if (i % 50 == 7)
            box = UvBox();
        box.add(float(NAN), 0.0f);   // passed over
        boxes.push_back(box);
    }
    const UvIndex index(boxes);
    const auto    accepts = [](int i) { return i % 3 != 0; };
    for (int k = 0; k < 2000; ++k) {
        const float u = float(random() % 1300) / 10.0f, v = float(random() % 1100) / 10.0f;
        int         expected = -1;
        for (int i = 499; i >= 0; --i)
            if (boxes[std::size_t(i)].has(u, v) && accepts(i))
                expected = i;
        EXPECT_EQ(index.first(u, v, accepts), expected) << u << " " << v;
    }
    EXPECT_EQ(UvIndex({}).first(0, 0, accepts), -1);
}

// boundingObject: what it publishes of each source, its warnings, and what it looks like.
#include "volumes_scene.h"

#include <maya/MBoundingBox.h>
#include <maya/MFnDagNode.h>

#include "draw/picture.h"
#include "view/scene_draw.h"

using namespace scene;
using BoundingObject = scene::Test;

namespace {

/// A cloud `b` two up, fed by nothing yet.
void cloud(const std::string& settings = "") { volume("b", 3, 0.0, "setAttr b.translateY 2;" + settings); }

const std::string kCurve = "curve -degree 1 -point 0 0 0 -point 1 0 0 -point 1 1 0 -name c; rename `listRelatives -shapes c` cs;";

/// What is drawn of one kind of primitive: its extent along x in world space, and how many vertices.
struct Drawn
{
    double      from = 1e9, to = -1e9;
    std::size_t count = 0, colors = 0;
};

Drawn drawn(mirk::view::Primitive primitive)
{
    mirk::view::SceneDrawOptions options;
    options.camera = picture::flatCamera();
    options.grid = false;
    Drawn out;
    for (const mirk::view::Item& item : mirk::view::collectScene(options).list.items) {
        if (item.primitive != primitive || item.space != mirk::view::Space::kObject)
            continue;
        for (std::size_t i = 0; i + 2 < item.positions.size(); i += 3) {
            const float* p = &item.positions[i];
            const double x = p[0] * item.matrix[0] + p[1] * item.matrix[4] + p[2] * item.matrix[8] + item.matrix[12];
            out.from = std::min(out.from, x);
            out.to = std::max(out.to, x);
            ++out.count;
        }
        out.colors += item.colors.size() / 4;
    }
    return out;
}

} // namespace

TEST_F(BoundingObject, AnalyticTypesAndSwitchedOffOnesPublishEmptyArrays)
{
    cloud();
    run("connectAttr " + particles({1, 2}) + " bShape.inParticlePositionPP");
    EXPECT_EQ(pointArray("bShape.positionPP").size(), 2u);
    for (const char* off : {"setAttr bShape.type 0", "setAttr bShape.type 2", "setAttr bShape.type 3; setAttr bShape.envelope 0",
                            "setAttr bShape.envelope 1; setAttr bShape.useInParticle 0"}) {
        run(off);
        run("setAttr b.translateX `rand 9`");
        EXPECT_TRUE(pointArray("bShape.positionPP").empty()) << off;
        EXPECT_TRUE(doubles("bShape.rgbaPP").empty()) << off;
        MObject matrix = plug("bShape.outParentMatrix").asMObject();
        EXPECT_FALSE(matrix.isNull());
    }
    run("setAttr b.translateX 5");
    double x = 0.0;
    MGlobal::executeCommand("float $m[] = `getAttr bShape.outParentMatrix`; $m[12]", x);
    EXPECT_EQ(x, 5.0);
}

TEST_F(BoundingObject, SourcesComeInOneOrderWithTheirDefaults)
{
    cloud("setAttr bShape.pointRadius 0.5; setAttr bShape.pointWeight 0.25; setAttr bShape.pointColor 0.1 0.2 0.3;"
          "setAttr bShape.pointAlpha 0.75");
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; setAttr p.translateY 1;" + kCurve +
        "nurbsPlane -degree 1 -patchesU 1 -patchesV 1 -name n; connectAttr cs.worldSpace[0] bShape.inCurve;"
        "connectAttr nShape.worldSpace[0] bShape.inSurface; connectAttr pShape.worldMesh[0] bShape.inMesh;"
        "connectAttr " + particles({7}) + " bShape.inParticlePositionPP");
    const std::vector<MPoint> points = pointArray("bShape.positionPP");
    ASSERT_EQ(points.size(), 4u + 3u + 4u + 1u);
    EXPECT_TRUE(points[0].isEquivalent(MPoint(-1, 1, 1), 1e-6));
    EXPECT_TRUE(points[6].isEquivalent(MPoint(1, 1, 0), 1e-6));
    EXPECT_TRUE(points[11].isEquivalent(MPoint(7, 0, 0), 1e-6));
    const std::vector<MVector> normals = vectors("bShape.normalPP");
    ASSERT_EQ(normals.size(), 12u);
    EXPECT_TRUE(normals[0].isEquivalent(MVector(0, 1, 0), 1e-6));
    for (int i = 4; i < 11; ++i)
        EXPECT_NEAR(normals[std::size_t(i)].length(), 1.0, 1e-5) << i;
    EXPECT_TRUE(normals[11].isEquivalent(MVector(0, 1, 0), 1e-6));   // the object's own up
    expectDoubles(doubles("bShape.radiusPP"), std::vector<double>(12, 0.5));
    expectDoubles(doubles("bShape.weightPP"), std::vector<double>(12, 0.25));
    std::vector<double> rgba;
    for (int i = 0; i < 12; ++i)
        rgba.insert(rgba.end(), {0.1, 0.2, 0.3, 0.75});
    expectDoubles(doubles("bShape.rgbaPP"), rgba, 1e-6);
    run("setAttr b.rotateZ 90");
    EXPECT_TRUE(vectors("bShape.normalPP")[11].isEquivalent(MVector(-1, 0, 0), 1e-6));
    run("select -clear; if (size(`ls -type extrude -type nurbsTessellate -type rebuildCurve`)) error \"left over\"");
}

TEST_F(BoundingObject, PerPointArrays)
{
    struct Case { const char* when; const char* values; int count; std::vector<double> radii; bool warns; };
    const Case cases[] = {
        {"absolute values", "1 -2 3", 3, {1, 2, 3}, false},
        {"short: zeros past the end", "1 -2", 2, {1, 2, 0}, true},
        {"long: the head", "1 2 3 4", 4, {1, 2, 3}, true},
        {"empty: the default", "", 0, {1, 1, 1}, true},
    };
    cloud();
    run("connectAttr " + particles({0, 1, 2}) + " bShape.inParticlePositionPP");
    int n = 0;
    for (const Case& c : cases) {
        run("connectAttr -force " + arraySource("r" + std::to_string(n++), "doubleArray", c.count, c.values) +
            " bShape.inParticleRadiusPP");
        Warnings warnings;
        expectDoubles(doubles("bShape.radiusPP"), c.radii);
        ASSERT_EQ(warnings.texts.size(), c.warns ? 1u : 0u) << c.when;
        if (c.warns)
            EXPECT_NE(warnings.texts[0].find("bShape: inParticleRadiusPP array length does not match the inParticle point "
                                             "count. Result will be unpredictable."), std::string::npos) << warnings.texts[0];
    }
    run("setAttr bShape.inParticleUseRadiusPP 0");
    Warnings warnings;
    expectDoubles(doubles("bShape.radiusPP"), {1, 1, 1});
    EXPECT_TRUE(warnings.texts.empty());
    // set by hand and not connected: used without a word
    run("setAttr bShape.inParticleWeightPP -type doubleArray 4 5 6 7 8");
    expectDoubles(doubles("bShape.weightPP"), {5, 6, 7});
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(BoundingObject, ParticleColorsAndTheOpacityThatFollowsTheirSwitch)
{
    cloud("setAttr bShape.pointAlpha 0.5");
    run("connectAttr " + particles({0, 1}) + " bShape.inParticlePositionPP; connectAttr " +
        arraySource("o", "doubleArray", 2, "0.2 0.3") + " bShape.inParticleOpacityPP; connectAttr " +
        arraySource("c", "vectorArray", 2, "0.1 0.2 0.3 0.4 0.5 0.6") + " bShape.inParticleRgbPP; connectAttr " +
        arraySource("w", "vectorArray", 2, "0 0 5 0 6 0") + " bShape.inParticleVelocityPP");
    expectDoubles(doubles("bShape.rgbaPP"), {0.1, 0.2, 0.3, 0.2, 0.4, 0.5, 0.6, 0.3});
    expectNear(vectors("bShape.normalPP"), {{0, 0, 5}, {0, 6, 0}});
    run("setAttr bShape.inParticleUseOpacityPP 0");
    expectDoubles(doubles("bShape.rgbaPP"), {0.1, 0.2, 0.3, 0.2, 0.4, 0.5, 0.6, 0.3});
    run("setAttr bShape.inParticleUseRgbPP 0");
    expectDoubles(doubles("bShape.rgbaPP"), {1, 1, 1, 0.5, 1, 1, 1, 0.5});
    // a subset: indices past the count are passed over, an empty list leaves the source out
    run("setAttr bShape.inParticleUseComponents 1; connectAttr " + arraySource("i", "Int32Array", 3, "1 9 -1") +
        " bShape.inParticleComponents");
    EXPECT_EQ(pointArray("bShape.positionPP").size(), 1u);
    expectNear(vectors("bShape.normalPP"), {{0, 6, 0}});
    run("connectAttr -force " + arraySource("j", "Int32Array", 0, "") + " bShape.inParticleComponents");
    EXPECT_TRUE(pointArray("bShape.positionPP").empty());
}

TEST_F(BoundingObject, MeshColorsAndComponents)
{
    cloud("setAttr bShape.pointColor 0.5 0.5 0.5");
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; polyColorPerVertex -rgb 1 0.5 0.25 "
        "-alpha 0.5 p.vtx[1]; connectAttr pShape.worldMesh[0] bShape.inMesh");
    const double u = 0.0;   // a vertex without colour
    expectDoubles(doubles("bShape.rgbaPP"), {u, u, u, u, 1, 0.5, 0.25, 0.5, u, u, u, u, u, u, u, u});
    run("setAttr bShape.inMeshColorSet -type \"string\" none");
    EXPECT_NEAR(doubles("bShape.rgbaPP")[4], 0.5, 1e-6);
    run("setAttr bShape.inMeshUseComponents 1; createNode network -name g; addAttr -longName ic -dataType componentList g;"
        "setAttr g.ic -type componentList 2 \"vtx[1]\" \"f[0]\"; connectAttr g.ic bShape.inMeshComponents");
    ASSERT_EQ(pointArray("bShape.positionPP").size(), 1u);   // the first element alone counts
    EXPECT_TRUE(pointArray("bShape.positionPP")[0].isEquivalent(MPoint(1, 0, 1), 1e-6));
    run("setAttr g.ic -type componentList 2 \"f[0]\" \"vtx[1]\"");
    EXPECT_TRUE(pointArray("bShape.positionPP").empty());
    run("setAttr bShape.inMeshUseComponents 2; setAttr bShape.inMeshObjectGroupId 77");
    EXPECT_TRUE(pointArray("bShape.positionPP").empty());   // names nothing
}

TEST_F(BoundingObject, CurveColorsOfAllLayouts)
{
    struct Case { const char *kind, *values; int count; std::vector<double> rgba; bool warns; };
    const Case cases[] = {
        {"doubleArray", "1 2 3 4 5 6 7 8 9 10 11 12", 12, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, false},
        {"doubleArray", "1 2 3 4 5 6", 6, {1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 0, 0}, true},
        {"vectorArray", "1 2 3 4 5 6", 2, {1, 2, 3, 1, 4, 5, 6, 1, 0, 0, 0, 0}, true},
        {"pointArray", "1 2 3 9 4 5 6 9 7 8 9 9", 3, {1, 2, 3, 1, 4, 5, 6, 1, 7, 8, 9, 1}, false},
    };
    cloud();
    run(kCurve + "connectAttr cs.worldSpace[0] bShape.inCurve");
    int n = 0;
    for (const Case& c : cases) {
        run("connectAttr -force " + arraySource("k" + std::to_string(n++), c.kind, c.count, c.values) + " bShape.inCurveRgbaPP");
        Warnings warnings;
        expectDoubles(doubles("bShape.rgbaPP"), c.rgba);
        EXPECT_EQ(warnings.texts.size(), c.warns ? 1u : 0u) << n;
    }
}

TEST_F(BoundingObject, PeriodicSurfacesAreRefused)
{
    cloud();
    run("sphere -name s; rename `listRelatives -shapes s` ss; connectAttr ss.worldSpace[0] bShape.inSurface");
    Warnings warnings;
    EXPECT_TRUE(pointArray("bShape.positionPP").empty());
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_NE(warnings.texts[0].find("The geometry at the \"inSurface\" input is a periodic nurbs surface."), std::string::npos);
}

TEST_F(BoundingObject, BoxOfACapsule)
{
    volume("b", 2, 5.0, "setAttr b.scaleX 2; setAttr bShape.topCapOffset 3");
    MSelectionList list;
    MDagPath       path;
    list.add("bShape");
    ASSERT_TRUE(list.getDagPath(0, path));
    const MBoundingBox box = MFnDagNode(path).boundingBox();
    EXPECT_NEAR(box.max().y, 4.0, 1e-6);     // in its own space: offset 3, cap 1
    EXPECT_NEAR(box.min().y, -2.0, 1e-6);
    EXPECT_NEAR(box.max().x, 1.0, 1e-6);
    run("setAttr b.scaleX 0; getAttr bShape.outParentMatrix");   // flat: still answers
}

TEST_F(BoundingObject, IsDrawnWhereConsumersFindIt)
{
    using mirk::view::Primitive;
    volume("b", 0, 1.0, "setAttr b.scaleX 2; select -clear");
    Drawn lines = drawn(Primitive::kLines);
    EXPECT_NEAR(lines.from, -1.0, 1e-5);
    EXPECT_NEAR(lines.to, 3.0, 1e-5);
    run("disconnectAttr b.worldMatrix[0] bShape.inParentMatrix;"   // the volume is where its matrix is, not its transform
        "setAttr bShape.inParentMatrix -type \"matrix\" 1 0 0 0 0 1 0 0 0 0 1 0 9 0 0 1");
    lines = drawn(Primitive::kLines);
    EXPECT_NEAR(lines.from, 8.0, 1e-5);
    EXPECT_NEAR(lines.to, 10.0, 1e-5);
    run("setAttr bShape.type 3; setAttr bShape.pointRadius 0.5; connectAttr " + particles({3, 4, 6}) +
        " bShape.inParticlePositionPP");
    lines = drawn(Primitive::kLines);
    EXPECT_NEAR(lines.from, 2.5, 1e-5);
    EXPECT_NEAR(lines.to, 6.5, 1e-5);
    EXPECT_EQ(lines.colors, lines.count);
    EXPECT_EQ(drawn(Primitive::kPoints).count, 3u);
    run("setAttr bShape.displayPointCloudBoundingVolumes 0");
    EXPECT_EQ(drawn(Primitive::kLines).count, 0u);
    EXPECT_EQ(drawn(Primitive::kPoints).count, 3u);
}

// scatter: its steps against brute force, counts worked out by hand, edges and drawing. Random scenes are compared with a
// slow model in tests/reference/scatter_test.py.
#include <gtest/gtest.h>

#include <maya/MDrawRegistry.h>
#include <maya/MFnVectorArrayData.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>

#include "../draw/picture.h"
#include "generators/scatterThrows.h"
#include "scene.h"
#include "view/registry.h"
#include "view/scene_draw.h"

using namespace scene;
using namespace scatter_;

// ---- steps ---------------------------------------------------------------------------------------------------------

TEST(ScatterSteps, SpacingAnswersAsComparingWithAllPointsDoes)
{
    const float                     nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    std::mt19937                    random(3);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    struct Case { const char* when; std::function<Float3(int)> point; };
    const Case cases[] = {
        {"a cloud", [&](int) { return Float3{unit(random), unit(random), unit(random)}; }},
        {"in a row", [&](int i) { return Float3{0.01f * float(i), 0.0f, 0.0f}; }},
        {"few places, many times", [&](int i) { return Float3{float(i % 3), float(i % 2), 0.0f}; }},
        {"tiny and huge", [&](int i) { return Float3{unit(random) * (i % 7 ? 1e-3f : 3e38f), unit(random), 0.0f}; }},
        {"not finite at times", [&](int i) { return Float3{i % 5 ? unit(random) : nan, i % 9 ? unit(random) : inf, 0.0f}; }},
    };
    for (const Case& c : cases) {
        Spacing             spacing;
        std::vector<Float3> all;
        for (int i = 0; i < 1500; ++i) {
            const Float3 p = c.point(i);
            const float  reach = i % 11 == 0 ? inf : i % 4 == 0 ? 1.0f : 0.3f * std::fabs(unit(random));
            bool         near = false;
            for (const Float3& q : all) {
                const double x = double(q.x) - p.x, y = double(q.y) - p.y, z = double(q.z) - p.z;
                near = near || x * x + y * y + z * z <= double(reach) * reach;
            }
            ASSERT_EQ(spacing.anyWithin(p, reach), near) << c.when << ", point " << i;
            if (!near || i % 3 == 0) {
                spacing.add(p);
                all.push_back(p);
            }
        }
    }
    Spacing spacing;
    spacing.add({0.0f, 0.0f, 0.0f});
    EXPECT_TRUE(spacing.anyWithin({0.5f, 0.0f, 0.0f}, 0.5f)) << "exactly at the distance is too near";
    EXPECT_FALSE(spacing.anyWithin({0.5f, 0.0f, 0.0f}, std::nextafter(0.5f, 0.0f)));
}

TEST(ScatterSteps, DirectionsAnglesAndChances)
{
    const Float3 d = direction({0.0f, 3.0f, -4.0f});
    EXPECT_NEAR(d.y, 0.6f, 1e-6f);
    EXPECT_NEAR(d.z, -0.8f, 1e-6f);
    EXPECT_EQ(direction({9e-11f, 0.0f, 0.0f}).x, 9e-11f) << "too short to have one";
    EXPECT_EQ(direction({}).x, 0.0f);
    EXPECT_NEAR(degreesBetween({2, 0, 0}, {1, 1, 0}), 45.0, 1e-6);
    EXPECT_EQ(degreesBetween({}, {1, 0, 0}), 0.0);
    EXPECT_GT(degreesBetween({1, 0, 0}, {-1, 0, 0}), 180.0) << "no tolerance passes opposite vectors";
    const float mask[] = {1.0f, 0.25f, 0.25f, 9.0f};
    const int   mean[] = {0, 1, 2}, beyond[] = {0, 1, 3};
    EXPECT_FLOAT_EQ(chance(mask, mean), 0.5f);
    EXPECT_EQ(chance(mask, beyond), 1.0f);
}

namespace {

/// Rays go up and hit one unit above, from inside. The triangle is always that of the first three vertices.
class Ceiling final : public Surface
{
public:
    bool hit(const Aim& ray, float, Hit& hit) const override
    {
        hit = {{ray.source.x, ray.source.y, ray.source.z + 1.0f}, 0, 0};
        return true;
    }
    Double3 faceNormal(int) const override { return {0, 0, 1}; }
    bool    triangleVertices(const Hit&, int v[3]) const override { v[0] = 0, v[1] = 1, v[2] = 2; return true; }
    bool    nearest(const Float3& p, Float3& to) const override { to = {p.x, p.y, p.z + 1.0f}; return true; }
};

std::size_t thrown(Mode mode, int maxCount, float step, float spacing, std::vector<float> spacingMask = {})
{
    std::vector<Float3> sources;
    for (int i = 0; i < 10; ++i)
        sources.push_back({step * float(i), 0.0f, 0.0f});
    Rules rules;
    rules.mode = mode;
    rules.throwCount = 10;
    rules.maxCount = maxCount;
    rules.sources = sources.data();
    rules.spacing = spacing;
    rules.spacingMask = std::move(spacingMask);
    Draws draws(1);
    return throwPoints(Ceiling(), RandomAim({}, {}), rules, draws).points.size();
}

} // namespace

TEST(ScatterThrows, WhatCountsTowardsTheMaximum)
{
    struct Case { const char* when; Mode mode; int maxCount; float step, spacing; std::size_t points; };
    const Case cases[] = {
        {"as many as there are throws", Mode::kVolume, 10, 1.0f, 0.0f, 10},
        {"fewer", Mode::kVolume, 4, 1.0f, 0.0f, 4},
        {"on the surface", Mode::kSurface, 3, 1.0f, 0.0f, 3},
        {"two a throw", Mode::kBoth, 10, 1.0f, 0.0f, 10},
        {"the last hit is cut off", Mode::kBoth, 5, 1.0f, 0.0f, 5},
        {"more than there can be", Mode::kBoth, 100, 1.0f, 0.0f, 20},
        {"every second is too near", Mode::kVolume, 100, 1.0f, 1.0f, 5},
        {"and counts", Mode::kVolume, 4, 1.0f, 1.0f, 2},
        {"the hit is too near to its source", Mode::kBoth, 4, 3.0f, 1.0f, 2},
        {"none on the surface", Mode::kSurface, 0, 1.0f, 0.0f, 0},
        {"none, passed by the first source", Mode::kVolume, 0, 1.0f, 0.0f, 10},
        {"spacing that is not above 0.0001", Mode::kVolume, 100, 0.0f, 0.0001f, 10},
    };
    for (const Case& c : cases)
        EXPECT_EQ(thrown(c.mode, c.maxCount, c.step, c.spacing), c.points) << c.when;
    EXPECT_EQ(thrown(Mode::kVolume, 100, 1.0f, 1.0f, {3.0f, 3.0f, 3.0f}), 3u) << "a mask of 3: three apart";
    EXPECT_EQ(thrown(Mode::kVolume, 100, 1.0f, 1.0f, {0.0f, 0.0f, 0.0f}), 10u) << "a mask of 0: no spacing";
}

TEST(ScatterThrows, LongRunsEndEarly)
{
    const std::vector<Float3> sources(50000);
    Rules                     rules;
    rules.throwCount = rules.maxCount = 50000;
    rules.sources = sources.data();
    Draws draws(1);
    const auto count = [&] { return throwPoints(Ceiling(), RandomAim({}, {}), rules, draws).points.size(); };
    EXPECT_EQ(count(), 50000u);
    int asked = 0;
    rules.stopsHere = [&] { return ++asked == 2; };
    EXPECT_LT(count(), 50000u);
    EXPECT_GT(count(), 1000u) << "what is there is kept";
    rules.mostPoints = 300;
    EXPECT_EQ(count(), 301u) << "one too many tells that the limit was met";
}

// ---- the node ------------------------------------------------------------------------------------------------------

namespace {

class Scatter : public scene::Test
{
protected:
    /// A node `s` on the mesh that a command makes as `m`, in world space.
    void on(const std::string& make, const std::string& settings = "")
    {
        run(make + " -name m; string $shape[] = `listRelatives -shapes m`; createNode scatter -name s;"
            "connectAttr ($shape[0] + \".worldMesh[0]\") s.inGeometry;"
            "connectAttr ($shape[0] + \".worldMatrix[0]\") s.inWorldMatrix;" + settings);
    }
    void given(const std::vector<MVector>& points)
    {
        run("createNode network -name given; addAttr -longName p -dataType vectorArray given; connectAttr given.p s.inPositionPP");
        MVectorArray array;
        for (const MVector& p : points)
            array.append(p);
        EXPECT_TRUE(plug("given.p").setMObject(MFnVectorArrayData().create(array)));
    }
    static std::vector<MVector> points(const std::string& node = "s") { return vectors(node + ".outPositionPP"); }
    static int count() { return plug("s.outCount").asInt(); }
    static std::size_t after(const std::string& mel)
    {
        run(mel);
        EXPECT_EQ(count(), int(points().size())) << mel;
        return points().size();
    }
};

} // namespace

TEST_F(Scatter, FlatMeshesAreScatteredOnTheSurface)
{
    on("polyPlane", "setAttr s.pointDensity 300; setAttr m.translate 0 2 0");
    ASSERT_GT(points().size(), 50u);
    for (const MVector& p : points()) {
        EXPECT_NEAR(p.y, 2.0, 1e-6);
        EXPECT_LE(std::max(std::fabs(p.x), std::fabs(p.z)), 0.5 + 1e-6);
    }
}

TEST_F(Scatter, SwitchesAndEmptyInputsGiveNoPoints)
{
    on("polyCube");
    ASSERT_GT(after("setAttr s.scatterMode 1"), 1000u);
    EXPECT_EQ(after("setAttr s.pointDensity 0"), 0u);
    EXPECT_GT(after("setAttr s.pointDensity 50; setAttr s.maxNumberOfPoints 7"), 0u);
    EXPECT_EQ(after(""), 7u);
    EXPECT_EQ(after("setAttr s.envelope 0"), 0u);
    EXPECT_EQ(scene::points("s.outGeometry").size(), 8u) << "the mesh goes through all the same";
    EXPECT_EQ(after("setAttr s.envelope 1; setAttr s.nodeState 1"), 0u);
    EXPECT_EQ(after("setAttr s.nodeState 0; createNode network -name n; addAttr -longName d -attributeType long n;"
                    "setAttr n.d -5; connectAttr n.d s.pointDensity"), 0u) << "below 0";
    EXPECT_EQ(after("setAttr n.d 5"), 5u);
    EXPECT_EQ(after("disconnectAttr mShape.worldMesh[0] s.inGeometry"), 0u);
    EXPECT_EQ(after("connectAttr " + meshSource(4, false) + " s.inGeometry"), 0u) << "points without faces";
}

TEST_F(Scatter, TheSameSeedGivesTheSamePoints)
{
    on("polySphere", "setAttr s.scatterMode 2; setAttr s.minPointToPointDistance 0.05");
    const std::vector<MVector> first = points();
    std::rand();                                                        // somebody else draws
    run("setAttr s.seed 6");
    EXPECT_NE(points().at(0), first.at(0));
    run("setAttr s.seed 12345");
    expectNear(points(), first, 0.0);

    // points that come from another scatter: whether that one runs in between makes no difference
    run("createNode scatter -name t; connectAttr mShape.worldMesh[0] t.inGeometry; connectAttr s.outPositionPP t.inPositionPP;"
        "setAttr t.useVertexColorsAsMask 1; polyColorPerVertex -rgb 0.5 0.5 0.5 mShape.vtx[*]; setAttr t.scatterMode 1");
    const std::vector<MVector> whole = points("t");
    EXPECT_GT(whole.size(), 0u);
    EXPECT_LT(whole.size(), first.size());
    run("setAttr t.seed 6");
    points("t");
    run("setAttr t.seed 12345");
    expectNear(points("t"), whole, 0.0);
}

TEST_F(Scatter, GivenPointsAreThrownAtTheNearestPlace)
{
    const float inf = std::numeric_limits<float>::infinity();
    on("polyCube", "setAttr s.pointDensity 1");
    given({{0.2, 0.05, 0}, {2, 0, 0}, {0, 0.1, 0}, {std::nan(""), 0, 0}, {inf, 0, 0}, {1e38, 1e38, 0}, {-0.3, 0, 0.1}});
    expectNear(points(), {{0.2, 0.05, 0}, {0, 0.1, 0}, {-0.3, 0, 0.1}});           // inside
    run("setAttr s.surfaceOffset 0.35");                                           // 0.3, 0.4 and 0.2 from the surface
    expectNear(points(), {{0, 0.1, 0}});
    run("setAttr s.surfaceOffset 0; setAttr s.maxDistanceFromSurface 0.35");
    expectNear(points(), {{0.2, 0.05, 0}, {-0.3, 0, 0.1}});
    run("setAttr s.scatterMode 2; setAttr s.maxDistanceFromSurface -1");
    expectNear(points(), {{0.2, 0.05, 0}, {0.5, 0.05, 0}, {0.5, 0, 0}, {0, 0.1, 0}, {0, 0.5, 0}, {-0.3, 0, 0.1}, {-0.5, 0, 0.1}});
    EXPECT_EQ(after("setAttr m.scaleX 0"), 0u) << "nothing is found through a matrix without inverse";
}

TEST_F(Scatter, PointsOfTheMeshThatAreNoPlacesTakeNothingElseAlong)
{
    for (const double bad : {std::nan(""), HUGE_VAL}) {
        run("file -force -new");
        on("polyCube -subdivisionsX 4 -subdivisionsY 4 -subdivisionsZ 4", "setAttr s.scatterMode 1");
        plug("mShape.pnts[0].pntx").setDouble(bad);                     // a corner: three faces of 96 are gone
        EXPECT_EQ(plug("mShape.boundingBoxMaxX").asDouble(), 0.5);
        EXPECT_GT(after(""), 1700u);
        run("createNode shell -name h; connectAttr mShape.outMesh h.inMesh; connectAttr -force h.outMesh s.inGeometry");
        EXPECT_GT(after(""), 1700u) << "a mesh without a shape";
    }
}

TEST_F(Scatter, Masks)
{
    on("polyCube", "setAttr s.scatterMode 1; setAttr s.useVertexColorsAsMask 1");
    const std::size_t all = after("");
    EXPECT_EQ(all, 2000u) << "no colours: no mask";
    EXPECT_EQ(after("polyColorPerVertex -rgb 1 0 0 mShape.vtx[*]"), all);
    EXPECT_NEAR(double(after("polyColorPerVertex -rgb 0.5 1 1 mShape.vtx[*]")), 1000.0, 100.0);
    EXPECT_EQ(after("polyColorPerVertex -rgb 0 1 1 mShape.vtx[*]"), 0u);
    EXPECT_EQ(after("setAttr s.colorSet -type \"string\" \"none\""), all) << "a set that is not there";
    run("setAttr s.useVertexColorsAsMask 0; setAttr s.useVertexColorsAsPntToPntDistMask 1; setAttr s.minPointToPointDistance 0.3");
    EXPECT_EQ(after(""), all) << "a distance of 0 everywhere";
    const std::size_t half = after("polyColorPerVertex -rgb 0.5 0 0 mShape.vtx[*]");
    run("setAttr s.minPointToPointDistance 0.15; setAttr s.useVertexColorsAsPntToPntDistMask 0");
    EXPECT_EQ(after(""), half);
}

TEST_F(Scatter, TexturesCameraAndBadMatrices)
{
    on("polyPlane -sx 1 -sy 1",
       "createNode checker -name c; createNode place2dTexture -name p; connectAttr p.outUV c.uvCoord;"
       "setAttr p.repeatU 1; setAttr p.repeatV 1; connectAttr c.outColor s.inColor; connectAttr c.outColor s.inColor7");
    const std::size_t all = after("setAttr s.active7 0");
    run("setAttr s.active 1");
    ASSERT_GT(points().size(), all / 4);
    for (const MVector& p : points())
        EXPECT_LT(p.x * p.z, 0.0);                                   // u along x, v against z: the white cells
    EXPECT_EQ(after("setAttr s.uvSet -type \"string\" \"none\""), 0u) << "without UVs no point is kept";
    run("setAttr s.active 0; setAttr s.active7 1; createNode transform -name at; setAttr at.rotateX -90; setAttr at.translateX 5;"
        "connectAttr at.worldMatrix[0] s.inProjectionWorldMatrix7");
    EXPECT_EQ(after(""), all) << "nothing stands before the projector";
    EXPECT_EQ(after("setAttr s.contained7 1"), 0u);
    EXPECT_EQ(after("setAttr at.translateX 0; setAttr at.scaleZ 0"), 0u) << "a projector without inverse sees nothing";
    EXPECT_GT(after("setAttr at.scaleZ 1"), all / 4);
    run("setAttr s.active7 0; createNode camera -name camera; createNode transform -name eye; setAttr eye.translate 0 3 0;"
        "setAttr eye.rotateX -90; connectAttr eye.worldMatrix[0] s.cameraInWorldMatrix; setAttr s.useCamera 1;");
    EXPECT_EQ(after(""), all) << "a camera of zeros has no sides";
    // at distance 3 the picture is 3 * 0.3 / 1 wide and 3 * 0.1 high, about the middle
    run("setAttr s.cameraScale 1; setAttr s.cameraLensSqueezeRatio 1; setAttr s.cameraHorizontalFilmAperture 0.3;"
        "setAttr s.cameraVerticalFilmAperture 0.1; setAttr s.cameraFocalLength 25.4000508; setAttr s.cameraFarClipPlane 10");
    ASSERT_GT(points().size(), all / 10);
    for (const MVector& p : points()) {
        EXPECT_LE(std::fabs(p.x), 0.45 + 1e-6);
        EXPECT_LE(std::fabs(p.z), 0.15 + 1e-6);
    }
    EXPECT_EQ(after("setAttr s.cameraFarClipPlane 2.9"), 0u);
    EXPECT_EQ(after("setAttr s.useCamera 0; setAttr m.scaleX 0"), 0u) << "no mesh to hit";
}

TEST_F(Scatter, OutCountDrivesOthersAndOtherTimesLeaveItAlone)
{
    on("polyCube", "createNode network -name n; addAttr -longName c -attributeType long n; connectAttr s.outCount n.c;"
                   "setAttr s.scatterMode 1; currentTime 1; setKeyframe -time 1 -value 10 s.pointDensity;"
                   "setKeyframe -time 5 -value 50 s.pointDensity; keyTangent -itt linear -ott linear s.pointDensity");
    EXPECT_EQ(plug("n.c").asInt(), 10);
    MDoubleArray later;
    EXPECT_TRUE(MGlobal::executeCommand("getAttr -time 5 s.outCount", later));
    ASSERT_EQ(later.length(), 1u);
    EXPECT_EQ(later[0], 50.0);
    EXPECT_EQ(plug("n.c").asInt(), 10);
    EXPECT_EQ(count(), 10);
    run("currentTime 5");
    EXPECT_EQ(plug("n.c").asInt(), 50);
}

// ---- drawing -------------------------------------------------------------------------------------------------------

namespace {

mirk::view::SceneDrawOptions view()
{
    mirk::view::SceneDrawOptions options;
    options.camera = picture::flatCamera();
    options.grid = false;
    return options;
}

std::vector<mirk::view::Item> drawnPoints()
{
    std::vector<mirk::view::Item> items;
    for (const mirk::view::Item& item : mirk::view::collectScene(view()).list.items)
        if (item.primitive == mirk::view::Primitive::kPoints)
            items.push_back(item);
    return items;
}

} // namespace

TEST_F(Scatter, DrawsItsPointsInWorldSpace)
{
    on("polyCube", "setAttr m.visibility 0; setAttr s.pointSize 6; setAttr s.pointColor 0 1 0; setAttr s.scatterMode 1;");
    run("string $above[] = `listRelatives -parent s`; setAttr ($above[0] + \".translateX\") 7");
    const std::vector<MVector> expected = points();
    const auto                 items = drawnPoints();
    ASSERT_EQ(items.size(), 1u);
    ASSERT_EQ(items[0].positions.size(), 3 * expected.size());
    EXPECT_NEAR(items[0].positions[0] + items[0].matrix[12], expected[0].x, 1e-5);
    EXPECT_EQ(items[0].state.pointSize, 6.0f);
    EXPECT_EQ(items[0].state.color, (mirk::view::Color{0, 1, 0, 1}));
    run("createNode checker -name c; connectAttr c.outColor s.inColor3");
    EXPECT_EQ(drawnPoints().at(0).state.color, (mirk::view::Color{0.5f, 1, 0.5f, 1})) << "a texture is at work";
    for (const char* off : {"setAttr s.display 0", "setAttr s.display 1; setAttr s.envelope 0",
                            "setAttr s.envelope 1; setAttr s.pointSize 0"}) {
        run(off);
        EXPECT_TRUE(drawnPoints().empty()) << off;
    }
}

TEST_F(Scatter, DrawsItselfWhereThereIsNoOverride)
{
    on("polyCube", "setAttr m.visibility 0; setAttr s.pointColor 0 1 0; setAttr s.scatterMode 1");
    given({{0.1, 0, 0.4}});                                              // hits at 0.1, 0, 0.5
    const char* const classification = "drawdb/geometry/scatter";
    const auto        creator = mirk::view::findDrawOverride(classification);
    ASSERT_NE(creator, nullptr);
    ASSERT_TRUE(MHWRender::MDrawRegistry::deregisterDrawOverrideCreator(classification, "ScatterNodePlugin"));
    const picture::Image image = mirk::view::renderScene(view());
    EXPECT_TRUE(MHWRender::MDrawRegistry::registerDrawOverrideCreator(classification, "ScatterNodePlugin", creator));
    EXPECT_EQ(picture::at(image, 35, 32), (picture::Pixel{0, 255, 0, 255}));
    EXPECT_EQ(picture::at(image, 20, 32), (picture::Pixel{0, 0, 0, 255}));
}

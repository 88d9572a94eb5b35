// cocoon: which points are linked, whatever they are; outputs of small webs by hand; what is drawn.
#include "arrays.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MPxLocatorNode.h>

#include <cmath>
#include <limits>
#include <random>

#include "draw/picture.h"
#include "generators/linkGeometry.h"
#include "generators/linkSearch.h"
#include "view/frame.h"
#include "view/scene_draw.h"

using namespace scene;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();

using Cloud = std::vector<double>;

Cloud scattered(int count, double size, double center = 0.0)
{
    std::mt19937 random{static_cast<unsigned>(count)};
    Cloud        xyz;
    for (int i = 0; i < 3 * count; ++i)
        xyz.push_back(center + size * (random() / 4294967296.0 - 0.5));
    return xyz;
}

Cloud joined(Cloud a, const Cloud& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// All pairs, one after the other.
std::vector<std::pair<int, int>> everyPair(const Cloud& points, const Cloud& reference, const web::Band& band)
{
    std::vector<std::pair<int, int>> found;
    for (std::size_t i = 0; i < points.size() / 3; ++i) {
        int own = 0;
        for (std::size_t j = i + 1; j < points.size() / 3; ++j) {
            const Cloud& from = 3 * j < reference.size() ? reference : points;
            const MVector d = MVector(&from[3 * j]) - MVector(&from[3 * i]);
            if (!(d.length() >= band.min && d.length() <= band.max))
                continue;
            found.push_back({int(i), int(j)});
            if (++own == band.perPoint)
                break;
        }
    }
    return found;
}

std::vector<std::pair<int, int>> pairsOf(const web::Links& links)
{
    std::vector<std::pair<int, int>> found;
    for (std::size_t i = 0; i < links.pointCount(); ++i)
        for (std::size_t n = links.first[i]; n < links.first[i + 1]; ++n)
            found.push_back({int(i), links.to[n]});
    return found;
}

class Cocoon : public scene::Test
{
protected:
    /// A cocoon `c` over points, with all outputs on.
    static void web(const Cloud& xyz, const std::string& settings = "")
    {
        run("createNode cocoon -name c; setAttr c.linksInstances 1; setAttr c.linksMesh 1; setAttr c.facesMesh 1;" + settings);
        give("c.inPositionPP", {'v', xyz});
    }
    static std::size_t linkCount() { return vectors("c.outPositionPP").size(); }
    static int faceCount(const std::string& name)
    {
        MObject data = plug(name).asMObject();
        return MFnMesh(data).numPolygons();
    }
};

const Cloud kCorner{0, 0, 0, 1, 0, 0, 0, 1, 0, 3, 0, 0};   // links within 1.5: 0-1, 0-2, 1-2

} // namespace

TEST(CocoonLinks, AreThoseOfAllPairsWhateverThePoints)
{
    const Cloud box = scattered(300, 4.0);
    Cloud       holes = box;
    holes[30] = holes[301] = kNan;
    holes[62] = kInf;
    holes[95] = -kInf;
    Cloud grid;
    for (int i = 0; i < 343; ++i)
        grid = joined(grid, {0.1 * (i % 7), 0.1 * (i / 7 % 7), 0.1 * (i / 49)});
    struct Case { const char* when; Cloud points, reference; };
    const Case cases[] = {
        {"none", {}, {}},
        {"one", {1, 2, 3}, {}},
        {"scattered", box, {}},
        {"crowded", scattered(300, 0.4), {}},
        {"equal distances", grid, {}},
        {"all equal", Cloud(600, 0.7), {}},
        {"a cluster and a point far away", joined(scattered(200, 1.0), {1e12, 0, 0}), {}},
        {"far from the origin", scattered(200, 3.0, 1e7), {}},
        {"not places among them", holes, {}},
        {"no place at all", Cloud(90, kNan), {}},
        {"as far apart as numbers go", joined(joined(scattered(50, 1.0), {1.7e308, 0, 0}), {-1.7e308, 0, 0}), {}},
        {"closer than squares can tell", scattered(100, 1e-170), {}},
        {"on a line", joined(Cloud(9, 0.0), scattered(1, 0.0)), {}},
        {"reference", box, scattered(300, 2.0)},
        {"some of it", box, scattered(111, 2.0)},
        {"too much of it", scattered(50, 1.0), scattered(70, 1.0)},
        {"reference of no places", box, Cloud(300, kNan)},
    };
    for (const Case& c : cases) {
        for (const auto& [min, max] : {std::pair(0.0, 0.3), {0.0, 1.0}, {0.2, 0.5}, {0.0, 0.0}, {0.0, 1e300}, {0.0, kInf}, {1.0, 0.5},
                                       {0.0, 1e-160}, {0.0, 0.1}, {kNan, 1.0}, {0.0, kNan}, {-1.0, 0.2}, {0.0, -1.0}}) {
            for (const int perPoint : {0, 1, 3, 40, -1}) {
                const web::Band  band{min, max, perPoint};
                const web::Links links = web::linksWithin(c.points.data(), c.points.size() / 3, c.reference.data(),
                                                          c.reference.size() / 3, band);
                ASSERT_EQ(pairsOf(links), everyPair(c.points, c.reference, band))
                    << c.when << ", from " << min << " to " << max << ", per point " << perPoint;
                EXPECT_EQ(links.pointCount(), c.points.size() / 3);
            }
        }
    }
}

TEST(CocoonLinks, AreTheSameWhenCellsAreSharedOut)
{
    const Cloud points = scattered(5000, 20.0), reference = scattered(3000, 20.0);
    for (const int perPoint : {0, 2}) {
        const web::Band  band{0.1, 1.0, perPoint};
        const web::Links links = web::linksWithin(points.data(), 5000, reference.data(), 3000, band);
        EXPECT_GT(links.size(), 1000u);
        EXPECT_EQ(pairsOf(links), everyPair(points, reference, band));
    }
}

TEST(CocoonLinks, TooManyAreRefusedWithoutBeingKept)
{
    const Cloud      points(3 * 2000, 1.0);
    const web::Links links = web::linksWithin(points.data(), 2000, nullptr, 0, {0.0, 1.0, 0}, 100000);
    EXPECT_TRUE(links.tooMany);
    EXPECT_EQ(links.size(), 0u);
    EXPECT_EQ(links.pointCount(), 2000u);
    EXPECT_EQ(web::linksWithin(points.data(), 400, nullptr, 0, {0.0, 1.0, 0}, 100000).size(), 79800u);
}

TEST(CocoonTubes, KeepTheirSidesAlongALinkThatTurnsAllTheWayRound)
{
    web::Strands strands;   // a circle that climbs: every direction comes up
    strands.segments = 60;
    for (int s = 0; s <= 60; ++s) {
        const double a = 2 * M_PI * s / 60;
        for (const double x : {std::cos(a), std::sin(a), 0.01 * s})
            strands.xyz.push_back(x);
        strands.rgba.insert(strands.rgba.end(), 4, 1.0);
        strands.thickness.push_back(1.0);
    }
    const web::Pieces tubes = web::tubes(strands, 0.02);
    ASSERT_EQ(tubes.pointCount(), 480u);
    for (std::size_t s = 0; s + 1 < 60; ++s) {   // ends of one segment and begins of the next: their planes differ by 6 degrees
        for (std::size_t k = 0; k < 4; ++k) {
            const float *end = &tubes.xyzw[4 * (8 * s + 4 + k)], *begin = &tubes.xyzw[4 * (8 * s + 8 + k)];
            EXPECT_LT(std::hypot(end[0] - begin[0], end[1] - begin[1], end[2] - begin[2]), 0.01 * 0.2) << s;
        }
    }
}

TEST_F(Cocoon, LinksOfACorner)
{
    struct Case { const char* when; std::string settings; std::size_t links; int faces; };
    const Case cases[] = {
        {"within 1: the borders count", "", 2, 1},
        {"within 1.5", "setAttr c.maxDistance 1.5", 3, 1},
        {"one a point; later points still link back", "setAttr c.maxDistance 1.5; setAttr c.maxConnectionsPerPoint 1", 2, 0},
        {"0 is no limit", "setAttr c.maxDistance 9; setAttr c.maxConnectionsPerPoint 0", 6, 3},
        {"nor is -1", "setAttr c.maxDistance 9; setAttr c.maxConnectionsPerPoint -1", 6, 3},
        {"from 1 on", "setAttr c.minDistance 1; setAttr c.maxDistance 1", 2, 1},
        {"none between", "setAttr c.minDistance 1.1; setAttr c.maxDistance 1.4", 0, 0},
        {"the least above the greatest", "setAttr c.minDistance 2", 0, 0},
        {"two segments each", "setAttr c.segments 2", 4, 1},
        {"off", "setAttr c.active 0", 0, 0},
        {"instances for scripts", "setAttr c.linksInstances 0; setAttr c.linksMeshInstances 1", 2, 1},
        {"no density", "setAttr c.density 0", 2, 0},
        {"no density, another seed", "setAttr c.density 0; setAttr c.seed 7", 2, 0},
        {"faces of half a unit", "setAttr c.minSurfaceArea 0.5; setAttr c.maxSurfaceArea 0.5", 2, 1},
        {"larger faces", "setAttr c.minSurfaceArea 0.51", 2, 0},
    };
    for (const Case& c : cases) {
        run("file -force -new");
        web(kCorner, c.settings);
        EXPECT_EQ(linkCount(), c.links) << c.when;
        EXPECT_EQ(faceCount("c.outFacesMesh"), c.faces) << c.when;
        EXPECT_EQ(faceCount("c.outLinksMesh"), 4 * int(c.links)) << c.when;
    }
}

TEST_F(Cocoon, ValuesOfOneLink)
{
    web({0, 0, 0, 0, 2, 0}, "setAttr c.maxDistance 2; setAttr c.thicknessMultiplier 100");
    give("c.inRgbaPP", {'d', {1, 0, 0, 1, 0, 0, 1, 0.5}});
    give("c.inThicknessPP", {'d', {1, 3}});
    expectNear(vectors("c.outPositionPP"), {{0, 1, 0}});
    expectNear(vectors("c.outDirectionPP"), {{0, 1, 0}});
    expectNear(vectors("c.outScalePP"), {{2, 2, 2}});
    EXPECT_EQ(read("c.outThicknessPP"), (Array{'d', {2}}));
    EXPECT_EQ(read("c.outRgbaPP"), (Array{'d', {0.5, 0, 0.5, 0.75}}));
    const std::vector<MVector> ring = points("c.outLinksMesh");   // half widths 0.05 and 0.15
    ASSERT_EQ(ring.size(), 8u);
    for (std::size_t k = 0; k < 8; ++k) {
        EXPECT_NEAR(std::fabs(ring[k].x), k < 4 ? 0.05 : 0.15, 1e-7);
        EXPECT_NEAR(std::fabs(ring[k].z), k < 4 ? 0.05 : 0.15, 1e-7);
        EXPECT_NEAR(ring[k].y, k < 4 ? 0.0 : 2.0, 1e-7);
    }
    const MColor end = colors("c.outLinksMesh")[7];
    EXPECT_NEAR(end.b, 1.0, 1e-6);
    EXPECT_NEAR(end.a, 0.5, 1e-6);

    // the ramps: half the thickness, one to the side at 0.5 + 1
    run("setAttr c.useThicknessDisplacement 1; setAttr c.thicknessDisplacement[0].thicknessDisplacement_FloatValue 0.5;"
        "setAttr c.usePositionDisplacementX 1; setAttr c.positionDisplacementX[0].positionDisplacementX_FloatValue 1.5;"
        "setAttr c.useInputColorForLinks 0; setAttr c.linksColor 0.25 0.5 1; setAttr c.linksAlpha 0.125");
    expectNear(vectors("c.outPositionPP"), {{1, 1, 0}});
    EXPECT_EQ(read("c.outThicknessPP"), (Array{'d', {1}}));
    EXPECT_EQ(read("c.outRgbaPP"), (Array{'d', {0.25, 0.5, 1, 0.125}}));
    run("setAttr c.useInputThickness 0; setAttr c.useThicknessDisplacement 0");   // the multiplier stands in
    EXPECT_EQ(read("c.outThicknessPP"), (Array{'d', {100}}));
}

TEST_F(Cocoon, InputsOfOddLengthsAndValues)
{
    struct Case { const char* when; std::vector<std::pair<const char*, Array>> inputs; std::size_t links; };
    const Case cases[] = {
        {"a second set", {{"inPositionPP2", {'v', {0, 0, 5, 0, 0, 6}}}, {"inCountPP", {'i', {2, 0, 1, 0}}}, {"inIdPP", {'i', {1, 0, 1}}}}, 3},
        {"ids that it does not have", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inCountPP", {'i', {2, 0, 2, 0}}}, {"inIdPP", {'i', {1, 0, -1, 0}}}}, 2},
        {"fewer ids than counted", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inCountPP", {'i', {2147483647, 5, 2, 1}}}, {"inIdPP", {'i', {0, 0}}}}, 2},
        {"negative counts", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inCountPP", {'i', {-2, 1, -2147483647, 1}}}, {"inIdPP", {'i', {0, 0}}}}, 2},
        {"counts of another length", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inCountPP", {'i', {1}}}, {"inIdPP", {'i', {0}}}}, 0},
        {"no counts", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inIdPP", {'i', {0}}}}, 0},
        {"no ids", {{"inPositionPP2", {'v', {0, 0, 5}}}, {"inCountPP", {'i', {1, 1, 1, 1}}}}, 0},
        {"an empty second set", {{"inPositionPP2", {'v', {}}}, {"inCountPP", {'i', {1, 1, 1, 1}}}, {"inIdPP", {'i', {0, 0, 0, 0}}}}, 0},
        {"chains", {{"inShortestPathCounts", {'i', {2, 2}}}}, 2},
        {"a chain past the points", {{"inShortestPathCounts", {'i', {1, 2147483647, 2147483647}}}}, 2},
        {"chains of no points", {{"inShortestPathCounts", {'i', {0, -5, 1, 3}}}}, 2},
        {"chains before the second set", {{"inShortestPathCounts", {'i', {4}}}, {"inPositionPP2", {'v', {0, 0, 5}}}}, 3},
        {"no chains: nothing else instead", {{"inShortestPathCounts", {'i', {}}}}, 0},
        {"a point that is no place", {{"inPositionPP", {'v', {0, 0, 0, kNan, 0, 0, 0, 1, 0}}}}, 1},
        {"chains through places that are none", {{"inPositionPP", {'v', {0, 0, 0, kNan, kInf, 0, -kInf, 1, 0}}}, {"inShortestPathCounts", {'i', {3}}}}, 2},
        {"colours and thickness too short", {{"inRgbaPP", {'d', {1, 0.5}}}, {"inThicknessPP", {'d', {kNan}}}}, 2},
    };
    for (const Case& c : cases) {
        run("file -force -new");
        web(kCorner, "setAttr c.drawFaces 1");
        for (const auto& [input, array] : c.inputs)
            give("c." + std::string(input), array);
        Warnings warnings;
        EXPECT_EQ(linkCount(), c.links) << c.when;
        EXPECT_EQ(doubles("c.outRgbaPP").size(), 4 * c.links) << c.when;
        EXPECT_EQ(faceCount("c.outLinksMesh"), 4 * int(c.links)) << c.when;
        EXPECT_TRUE(warnings.texts.empty()) << c.when;
    }
    EXPECT_EQ(doubles("c.outRgbaPP"), (std::vector<double>{0.5, 0.25, 0, 1, 0.5, 0.25, 0, 1}));   // from (1, 0.5) to black
}

TEST_F(Cocoon, AnswersItsInputsAndStates)
{
    web(kCorner);
    EXPECT_EQ(linkCount(), 2u);
    give("c.inRefPositionPP", {'v', {0, 0, 0, 5, 0, 0, 9, 0, 0}});
    EXPECT_EQ(linkCount(), 0u);   // 3 is not among the reference: it is 2 from 1 and 3 from 0
    run("setAttr c.maxDistance 2");
    EXPECT_EQ(linkCount(), 1u);
    run("setAttr c.nodeState 2");
    run("setAttr c.maxDistance 9");
    EXPECT_EQ(linkCount(), 1u);   // as it was
    run("setAttr c.nodeState 1");
    EXPECT_EQ(linkCount(), 6u);   // no pass-through
    run("disconnectAttr `connectionInfo -sourceFromDestination c.inPositionPP` c.inPositionPP");
    EXPECT_EQ(linkCount(), 0u);
    EXPECT_EQ(faceCount("c.outLinksMesh"), 0);
    run("setAttr c.segments 3000; setAttr c.maxConnectionsPerPoint 0; setAttr c.maxDistance 1");
    give("c.inPositionPP", {'v', Cloud(3 * 600, 0.5)});   // 179 700 links of no length
    Warnings warnings;
    EXPECT_EQ(linkCount(), 0u);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_NE(warnings.texts[0].find("c: An array of"), std::string::npos) << warnings.texts[0];
    run("setAttr c.segments 1");
    expectNear({vectors("c.outDirectionPP")[0]}, {{0, 0, 0}});
    EXPECT_EQ(faceCount("c.outLinksMesh"), 4 * 179697);   // the three points of the reference are 4 and more apart
}

// ---- drawing -------------------------------------------------------------------------------------------------------

namespace {

mirk::view::SceneDrawOptions view(int samples = 4)
{
    mirk::view::SceneDrawOptions options;
    options.camera = picture::flatCamera(64);
    options.grid = false;
    options.samples = samples;
    return options;
}

/// Pixels of a row that are neither black nor fully lit.
int softPixels(const mirk::view::Image& image)
{
    int count = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            count += picture::at(image, x, y).g > 20 && picture::at(image, x, y).g < 235;
    return count;
}

} // namespace

TEST_F(Cocoon, DrawsLinksInTheirColourAndWidthWhereTheLocatorStands)
{
    web({-0.5, 0, 0, 0.5, 0, 0}, "setAttr c.linksMesh 0; setAttr c.thicknessMultiplier 1");
    give("c.inRgbaPP", {'d', {1, 0, 0, 1, 0, 0, 1, 1}});
    give("c.inThicknessPP", {'d', {6, 6}});
    mirk::view::Image image = renderScene(view());
    EXPECT_GT(picture::at(image, 18, 32).r, 200);
    EXPECT_GT(picture::at(image, 46, 32).b, 200);
    mirk::view::SceneDrawOptions full = view();
    full.grid = true;   // drawn before
    EXPECT_GT(picture::at(renderScene(full), 20, 30).r, 150);
    EXPECT_EQ(picture::at(image, 8, 32).r, 0);          // left of it
    EXPECT_GT(picture::at(image, 20, 30).r, 150);       // six pixels wide
    EXPECT_EQ(picture::at(image, 20, 27).r, 0);

    run("string $up[] = `listRelatives -parent c`; setAttr ($up[0] + \".translateY\") 0.5");   // with the locator
    image = renderScene(view());
    EXPECT_EQ(picture::at(image, 18, 32).r, 0);
    EXPECT_GT(picture::at(image, 18, 16).r, 200);

    run("setAttr c.useInputColorForLinks 0; setAttr c.linksColor 0 1 0; setAttr c.linksAlpha 0.5");   // at the next picture
    image = renderScene(view());
    EXPECT_NEAR(picture::at(image, 18, 16).g, 128, 12);
    EXPECT_EQ(picture::at(image, 18, 16).a, 255);
    EXPECT_EQ(picture::at(image, 18, 16).r, 0);

    MSelectionList list;
    MDagPath       path;
    list.add("c");
    ASSERT_TRUE(list.getDagPath(0, path));
    const MBoundingBox box = MFnDagNode(path).boundingBox();
    EXPECT_NEAR(box.min().x, -0.5, 1e-6);
    EXPECT_NEAR(box.max().x, 0.5, 1e-6);

    run("setAttr c.drawLinks 0");
    EXPECT_EQ(picture::at(renderScene(view()), 18, 16).g, 0);
}

TEST_F(Cocoon, DrawsFacesAndSmoothLines)
{
    web({-0.8, -0.8, 0, 0.8, -0.8, 0, 0, 0.8, 0}, "setAttr c.maxDistance 3; setAttr c.useInputColorForLinks 0;"
        "setAttr c.linksColor 0 1 0; setAttr c.useInputColorForFaces 0; setAttr c.facesColor 1 0 0");
    EXPECT_EQ(picture::at(renderScene(view()), 32, 40).r, 0);   // not asked for
    EXPECT_EQ(softPixels(renderScene(view(1))), 0);
    run("setAttr c.antialiasedLinks 1");
    EXPECT_GT(softPixels(renderScene(view(1))), 40);
    run("setAttr c.drawFaces 1; setAttr c.facesMesh 0");
    const mirk::view::Image image = renderScene(view());
    EXPECT_GT(picture::at(image, 32, 40).r, 250);
    EXPECT_EQ(picture::at(image, 4, 4).r, 0);
    run("setAttr c.facesAlpha 0.5");
    EXPECT_NEAR(picture::at(renderScene(view()), 32, 40).r, 128, 12);
    run("setAttr c.drawLinks 0; setAttr c.active 0");
    EXPECT_EQ(picture::at(renderScene(view()), 32, 40).r, 0);
}

TEST_F(Cocoon, DrawsTheSameByTheOldWay)
{
    web({-0.5, 0, 0, 0.5, 0, 0}, "setAttr c.useInputColorForLinks 0; setAttr c.linksColor 0 0 1; setAttr c.thicknessMultiplier 3");
    MSelectionList list;
    MDagPath       path;
    list.add("c");
    ASSERT_TRUE(list.getDagPath(0, path));
    auto* locator = dynamic_cast<MPxLocatorNode*>(MFnDependencyNode(path.node()).userNode());
    ASSERT_NE(locator, nullptr);
    EXPECT_TRUE(locator->drawLast());
    mirk::view::FrameData frame;
    frame.camera = picture::flatCamera(64);
    mirk::view::DrawList drawn;
    drawn.callbacks.push_back({[&](const mirk::view::Camera&) {
        const mirk::view::InCallback inside(frame);
        M3dView now = M3dView::active3dView();
        locator->draw(now, path, M3dView::kGouraudShaded, M3dView::kDormant);
    }});
    const mirk::view::Image image = picture::render(drawn, frame.camera);
    EXPECT_GT(picture::at(image, 32, 32).b, 200);
    EXPECT_EQ(picture::at(image, 32, 20).b, 0);
}

TEST_F(Cocoon, ShowsThePresentWhateverOtherTimesAreAskedFor)
{
    run("createNode cocoon -name c; createNode pointAttributeToArray -name p; setAttr p.pointPosition 1;"
        "polyPlane -width 1 -height 1 -subdivisionsX 1 -subdivisionsY 1 -name q; setAttr q.rotateX 90;"
        "connectAttr qShape.worldMesh[0] p.inGeometry; connectAttr p.outPositionPP c.inPositionPP;"
        "setAttr c.useInputColorForLinks 0; setAttr c.linksColor 1 1 1;"
        "setKeyframe -time 1 -value 1 q.scaleX; setKeyframe -time 10 -value 5 q.scaleX; currentTime 1");
    const auto lit = [] {
        const mirk::view::Image image = renderScene(view());
        int                     count = 0;
        for (const std::uint8_t byte : image.bytes)
            count += byte > 0;
        return count;
    };
    const int before = lit();
    EXPECT_GT(before, 64 * 64);
    run("getAttr -time 10 c.forceEvaluate");
    EXPECT_EQ(lit(), before);
    run("currentTime 10");
    EXPECT_NE(lit(), before);
}

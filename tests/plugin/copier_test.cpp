// The copier through the graph: where copies stand, which mesh each is of, and what they carry. Values by hand.
#include <maya/MFnArrayAttrsData.h>

#include <cmath>
#include <csignal>
#include <limits>
#include <thread>

#include "copier_scene.h"
#include "generators/copies.h"

using namespace scene;
using Copier = scene::Test;

namespace {

using Inputs = std::vector<std::pair<const char*, Array>>;

const double kNaN = std::nan(""), kInf = std::numeric_limits<double>::infinity();

/// A fresh copier `n` with the shapes as sources.
void makeCopier(const std::vector<Shape>& shapes, const Inputs& inputs, const std::string& settings = "")
{
    run("file -force -new; createNode copier -name n;" + settings);
    for (std::size_t i = 0; i < shapes.size(); ++i)
        giveMesh("n.inputMesh[" + std::to_string(i) + "]", shapes[i]);
    for (const auto& [input, array] : inputs)
        give("n." + std::string(input), array);
}

int pointCount() { return int(points("n.outputMesh").size()); }

const Array kOrigin{'v', {0, 0, 0}}, kTwo{'v', {0, 0, 0, 10, 0, 0}};

} // namespace

TEST_F(Copier, Placement)
{
    // the triangle has its points at 1, 2 and 3 on the axes
    struct Case { const char* when; const char* settings; Inputs inputs; std::vector<double> expected; };
    const Case cases[] = {
        {"positions alone", "", {{"posArray", {'v', {0, 0, 0, 4, 5, 6}}}}, {1, 0, 0, 0, 2, 0, 0, 0, 3, 5, 5, 6, 4, 7, 6, 4, 5, 9}},
        {"aim: X goes to Y", "", {{"posArray", kOrigin}, {"aimArray", {'v', {0, 7, 0}}}}, {0, 1, 0, -2, 0, 0, 0, 0, 3}},
        {"aim of length 0", "", {{"posArray", kOrigin}, {"aimArray", {'v', {0, 0, 0}}}}, {1, 0, 0, 0, 2, 0, 0, 0, 3}},
        {"aim and up: X to Z, Y stays", "setAttr n.skipElementsWithZeroSurfaceArea 0",
         {{"posArray", kOrigin}, {"aimArray", {'v', {0, 0, 4}}}, {"upArray", {'v', {0, 1, 5}}}}, {0, 0, 1, 0, 2, 0, -3, 0, 0}},
        {"the same is taken for no surface: its diagonal is 0 1 0", "",
         {{"posArray", kOrigin}, {"aimArray", {'v', {0, 0, 4}}}, {"upArray", {'v', {0, 1, 5}}}}, {}},
        {"up without entries: the other axes are 0", "setAttr n.skipElementsWithZeroSurfaceArea 0",
         {{"posArray", kOrigin}, {"aimArray", {'v', {2, 0, 0}}}, {"upArray", {'v', {}}}}, {1, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"aim without entries", "", {{"posArray", kOrigin}, {"aimArray", {'v', {}}}}, {}},
        {"rotation is not asked for", "", {{"posArray", kOrigin}, {"rotArray", {'v', {90, 0, 0}}}}, {1, 0, 0, 0, 2, 0, 0, 0, 3}},
        {"XYZ: X first", "setAttr n.orient 1", {{"posArray", kOrigin}, {"rotArray", {'v', {90, 90, 0}}}, {"aimArray", {'v', {}}}},
         {0, 0, -1, 2, 0, 0, 0, -3, 0}},
        {"YXZ: Y first", "setAttr n.orient 1; setAttr n.rotOrder 4", {{"posArray", kOrigin}, {"rotArray", {'v', {90, 90, 0}}}},
         {0, 1, 0, 0, 0, 2, 3, 0, 0}},
        {"radians", "setAttr n.orient 1; setAttr n.rotUnits 1", {{"posArray", kOrigin}, {"rotArray", {'v', {0, 0, M_PI / 2}}}},
         {0, 1, 0, -2, 0, 0, 0, 0, 3}},
        {"scale, then rotation, then translation", "",
         {{"posArray", {'v', {10, 0, 0}}}, {"aimArray", {'v', {0, 1, 0}}}, {"scaleArray", {'v', {2, 1, 1}}}},
         {10, 2, 0, 8, 0, 0, 10, 0, 3}},
        {"both scales", "", {{"posArray", kOrigin}, {"scaleArray", {'v', {1, 2, 3}}}, {"uniformScaleArray", {'d', {10}}}},
         {10, 0, 0, 0, 40, 0, 0, 0, 90}},
        {"short arrays are padded with zeros: no surface", "",
         {{"posArray", kTwo}, {"uniformScaleArray", {'d', {2}}}}, {2, 0, 0, 0, 4, 0, 0, 0, 6}},
        {"which may be kept", "setAttr n.skipElementsWithZeroSurfaceArea 0",
         {{"posArray", kTwo}, {"scaleArray", {'v', {2, 2, 2}}}}, {2, 0, 0, 0, 4, 0, 0, 0, 6, 10, 0, 0, 10, 0, 0, 10, 0, 0}},
        {"long arrays are cut; one axis of 0 is a surface", "",
         {{"posArray", kOrigin}, {"scaleArray", {'v', {0, 1, 1, 5, 5, 5}}}}, {0, 0, 0, 0, 2, 0, 0, 0, 3}},
        {"infinite scale", "", {{"posArray", {'v', {1, 1, 1}}}, {"uniformScaleArray", {'d', {0, 0}}}}, {}},
    };
    for (const Case& c : cases) {
        makeCopier({triangle()}, c.inputs, c.settings);
        expectValues(xyz("n.outputMesh"), c.expected, c.when);
        const bool noAim = std::string(c.when) == "aim without entries";
        EXPECT_EQ(plug("n.count").asInt(), noAim ? 0 : int(c.inputs[0].second.values.size() / 3)) << c.when;
    }
}

TEST_F(Copier, ValuesThatAreNoNumbers)
{
    makeCopier({triangle()}, {{"posArray", {'v', {kNaN, 0, 0, 5, 0, 0, kInf, 1, 1}}}, {"scaleArray", {'v', {1, 1, 1, 1, 1, 1, kInf, 1, 1}}},
                              {"indexArray", {'d', {0, -0.5, 0.9}}}});
    const std::vector<double> found = xyz("n.outputMesh");
    ASSERT_EQ(found.size(), 27u);
    EXPECT_TRUE(std::isnan(found[0]));
    expectValues({found.begin() + 9, found.begin() + 18}, {6, 0, 0, 5, 2, 0, 5, 0, 3}, "the copy between");
}

TEST_F(Copier, SourceOfEachCopy)
{
    // as many points as tell the sources apart: 3 and 4
    struct Case { const char* when; double index; int points; };
    const Case cases[] = {
        {"first", 0, 3}, {"second, with a fraction", 1.9, 4}, {"one above the last: as if unconnected", 2, 0},
        {"further above: the last", 3, 4}, {"beyond integers", 1e300, 4}, {"infinite", kInf, 4},
        {"a fraction below 0", -0.9, 3}, {"negative", -1, 0}, {"far below", -kInf, 0}, {"no number", kNaN, 0},
    };
    for (const Case& c : cases) {
        makeCopier({triangle(), kite()}, {{"posArray", kOrigin}, {"indexArray", {'d', {c.index}}}});
        EXPECT_EQ(pointCount(), c.points) << c.when;
        EXPECT_EQ(plug("n.count").asInt(), 1) << c.when;
    }

    makeCopier({triangle(), kite()}, {{"posArray", {'v', std::vector<double>(12, 0.0)}}, {"indexArray", {'d', {1, 0, 1}}}});
    MObject   data = plug("n.outputMesh").asMObject();
    MIntArray counts, connects;
    MFnMesh(data).getVertices(counts, connects);
    EXPECT_EQ(listOf(counts), (std::vector<int>{3, 3, 3, 3, 3, 3}));   // the fourth has index 0: the array is extended
    EXPECT_EQ(listOf(connects), (std::vector<int>{0, 1, 2, 2, 1, 3, 4, 5, 6, 7, 8, 9, 9, 8, 10, 11, 12, 13}));
}

TEST_F(Copier, SourcesComeAndGo)
{
    makeCopier({triangle()}, {{"posArray", kTwo}, {"indexArray", {'d', {0, 1}}}});
    giveMesh("n.inputMesh[4]", kite());                       // physical index 1
    EXPECT_EQ(pointCount(), 7);
    run("disconnectAttr `connectionInfo -sourceFromDestination n.inputMesh[0]` n.inputMesh[0]");
    EXPECT_EQ(pointCount(), 4);
    run("polyCube -name box; move 100 0 0 box; connectAttr box.worldMesh[0] n.inputMesh[0]");
    EXPECT_EQ(pointCount(), 12);
    EXPECT_NEAR(std::fabs(points("n.outputMesh")[0].x), 0.5, 1e-6);      // in the space of the object
    run("setAttr polyCube1.width 4");
    EXPECT_NEAR(std::fabs(points("n.outputMesh")[0].x), 2.0, 1e-6);
    run("delete box");
    EXPECT_EQ(pointCount(), 4);
    EXPECT_EQ(plug("n.count").asInt(), 2);
}

TEST_F(Copier, NothingToCopy)
{
    const auto expectEmpty = [](const char* when) {
        MObject data = plug("n.outputMesh").asMObject();
        EXPECT_EQ(data.apiType(), MFn::kMeshData) << when;
        EXPECT_EQ(pointCount(), 0) << when;
        EXPECT_EQ(plug("n.count").asInt(), 0) << when;
        EXPECT_EQ(read("n.outDataPP[0]"), (Array{'d', {}})) << when;
    };
    makeCopier({}, {{"posArray", kTwo}});
    expectEmpty("no source");
    makeCopier({triangle()}, {});
    expectEmpty("no positions");
    give("n.posArray", {'v', {}});
    expectEmpty("an empty array");
    give("n.posArray", kTwo);
    give("n.inDataPP[0]", {'d', {1, 2}});
    EXPECT_EQ(pointCount(), 6);
    EXPECT_EQ(read("n.outDataPP[0]").values.size(), 24u);
    run("setAttr n.envelope 0");
    expectEmpty("off");
    run("setAttr n.envelope 1; setAttr n.nodeState 2");
    EXPECT_EQ(pointCount(), 0);                                // blocking: the last value stays
    run("setAttr n.nodeState 1");
    EXPECT_EQ(pointCount(), 6);                                // there is no input that could pass through
}

TEST_F(Copier, InheritedColors)
{
    const std::vector<double> black{0, 0, 0, 1, 0, 0, 0, 1};
    struct Case { const char* when; Array rgb; std::vector<double> copies; };
    const Case cases[] = {
        {"three a copy", {'d', {1, .5, .25, 0, .5, 1}}, {1, .5, .25, 1, 0, .5, 1, 1}},
        {"greys", {'d', {.25, .5}}, {.25, .25, .25, 1, .5, .5, .5, 1}},
        {"vectors", {'v', {1, 0, 0, 0, 2, 0}}, {1, 0, 0, 1, 0, 2, 0, 1}},
        {"four a copy", {'d', {1, 1, 1, 1, 1, 1, 1, 1}}, black},
        {"too few vectors", {'v', {1, 1, 1}}, black},
        {"nothing", {'d', {}}, black},
    };
    for (const Case& c : cases) {
        makeCopier({triangle()}, {{"posArray", kTwo}, {"rgbArray", c.rgb}}, "setAttr n.inheritVertexColor 1");
        std::vector<double> found, expected;
        for (const MColor& color : colors("n.outputMesh"))
            found.insert(found.end(), {color.r, color.g, color.b, color.a});
        for (int point = 0; point < 6; ++point)
            expected.insert(expected.end(), &c.copies[point / 3 * 4], &c.copies[point / 3 * 4] + 4);
        expectValues(found, expected, c.when);
        EXPECT_EQ(colorSets("n.outputMesh"), std::vector<std::string>{"inheritedColor"}) << c.when;
    }
    run("setAttr n.inheritVertexColor 0");
    EXPECT_TRUE(colorSets("n.outputMesh").empty());
    makeCopier({triangle()}, {{"posArray", kTwo}}, "setAttr n.inheritVertexColor 1");
    EXPECT_TRUE(colorSets("n.outputMesh").empty());
}

TEST_F(Copier, OriginalColors)
{
    Shape painted = triangle();
    painted.colors = {MColor(1, 0, 0, 1), MColor(0, 1, 0, .5f), MColor(-1, -1, -1, -1)};
    makeCopier({triangle(), painted}, {{"posArray", {'v', std::vector<double>(9, 0.0)}}, {"indexArray", {'d', {1, 0, 1}}}},
               "setAttr n.originalVertexColor 1");
    const std::vector<double> own{1, 0, 0, 1, 0, 1, 0, .5, -1, -1, -1, -1}, none(12, -1.0);
    std::vector<double>       expected = own;
    expected.insert(expected.end(), none.begin(), none.end());
    expected.insert(expected.end(), own.begin(), own.end());
    expectValues(cornerColors("n.outputMesh", "originalColor"), expected, "coloured, bare, coloured");

    give("n.rgbArray", {'d', {0, 0, 0}});
    run("setAttr n.inheritVertexColor 1");
    EXPECT_EQ(colorSets("n.outputMesh"), (std::vector<std::string>{"inheritedColor", "originalColor"}));
    expectValues(cornerColors("n.outputMesh", "originalColor"), expected, "beside the inherited ones");
}

TEST_F(Copier, UVs)
{
    Shape mapped = triangle();
    mapped.uvs = {0, 0, 1, 0, 0, 1, 9, 9};   // the last one is not used
    mapped.uvIds = {2, 0, 1};
    const Inputs two{{"posArray", kTwo}, {"indexArray", {'d', {0, 1}}}};
    const Array  given{'d', {.25, .5, 3, 4}};

    makeCopier({mapped, triangle()}, two);
    expectValues(cornerUVs("n.outputMesh"), std::vector<double>(12, -1.0), "none are asked for");
    run("setAttr n.toggleUV 1");
    expectValues(cornerUVs("n.outputMesh"), {0, 1, 0, 0, 1, 0, -1, -1, -1, -1, -1, -1}, "of the source that has some");
    give("n.uvArray", given);
    expectValues(cornerUVs("n.outputMesh"), {.25, 1.5, .25, .5, 1.25, .5, 3, 4, 3, 4, 3, 4}, "moved by those of the copy");
    run("setAttr n.toggleUV 0");
    expectValues(cornerUVs("n.outputMesh"), {.25, .5, .25, .5, .25, .5, 3, 4, 3, 4, 3, 4}, "those of the copy alone");
    give("n.uvArray", {'d', {.25}});
    expectValues(cornerUVs("n.outputMesh"), {.25, 0, .25, 0, .25, 0, 0, 0, 0, 0, 0, 0}, "a short array");

    makeCopier({mapped}, {{"posArray", kTwo}}, "setAttr n.toggleUV 1");
    MObject data = plug("n.outputMesh").asMObject();
    EXPECT_EQ(MFnMesh(data).numUVs(), 8);
    expectValues(cornerUVs("n.outputMesh"), {0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0}, "the ids of the second copy are its own");
}

TEST_F(Copier, HardEdges)
{
    Shape creased = kite();
    creased.hardEdges = {1, 4};
    makeCopier({creased, triangle()}, {{"posArray", {'v', std::vector<double>(9, 0.0)}}, {"indexArray", {'d', {0, 1, 0}}}});
    EXPECT_TRUE(hardEdges("n.outputMesh").empty());
    run("setAttr n.toggleSoftHard 1");
    EXPECT_EQ(hardEdges("n.outputMesh"), (std::vector<int>{1, 4, 9, 12}));   // 5 edges, 3 edges, 5 edges
}

TEST_F(Copier, DataOfPoints)
{
    struct Case { const char* when; Array data; std::vector<double> copies; };
    const Case cases[] = {
        {"four a copy", {'d', {1, 2, 3, 4, 5, 6, 7, 8}}, {1, 2, 3, 4, 5, 6, 7, 8}},
        {"three a copy", {'d', {1, 2, 3, 4, 5, 6}}, {1, 2, 3, 1, 4, 5, 6, 1}},
        {"one a copy", {'d', {1, 2}}, {1, 1, 1, 1, 2, 2, 2, 1}},
        {"too short", {'d', {1, 2, 3, 4, 5}}, {1, 2, 3, 4, 5, 0, 0, 0}},
        {"too long", {'d', {1, 2, 3, 4, 5, 6, 7, 8, 9}}, {1, 2, 3, 4, 5, 6, 7, 8}},
        {"empty", {'d', {}}, {0, 0, 0, 0, 0, 0, 0, 0}},
        {"vectors", {'v', {1, 2, 3, 4, 5, 6}}, {1, 2, 3, 1, 4, 5, 6, 1}},
        {"too few vectors", {'v', {1, 2, 3}}, {1, 2, 3, 1, 0, 0, 0, 1}},
    };
    for (const Case& c : cases) {
        makeCopier({triangle()}, {{"posArray", kTwo}, {"inDataPP[3]", c.data}});
        Array expected{'d', {}};
        for (int point = 0; point < 6; ++point)
            expected.values.insert(expected.values.end(), &c.copies[point / 3 * 4], &c.copies[point / 3 * 4] + 4);
        EXPECT_EQ(read("n.outDataPP[3]"), expected) << c.when;
    }

    // copies that are skipped have no points; what is no longer given leaves nothing behind
    give("n.indexArray", {'d', {-1, 0}});
    give("n.inDataPP[0]", {'d', {7, 8}});
    EXPECT_EQ(read("n.outDataPP[0]"), (Array{'d', {8, 8, 8, 1, 8, 8, 8, 1, 8, 8, 8, 1}}));
    run("disconnectAttr `connectionInfo -sourceFromDestination n.inDataPP[0]` n.inDataPP[0]");
    EXPECT_EQ(read("n.outDataPP[0]"), (Array{'d', {}}));
    EXPECT_EQ(read("n.outDataPP[3]").values.size(), 12u);
}

TEST_F(Copier, TimeShift)
{
    // a plane whose width grows from 2 at 0 s to 4 at 1 s, and on
    const char* plane = "currentUnit -time film; polyPlane -sx 1 -sy 1 -name p; setKeyframe -t 0 -v 2 -itt linear -ott linear"
                        " polyPlane1.width; setKeyframe -t 48 -v 6 -itt linear -ott linear polyPlane1.width;"
                        "connectAttr p.outMesh n.inputMesh[0]; currentTime 12;";
    const auto widths = [] {
        std::vector<double> values;
        const auto          found = points("n.outputMesh");
        for (std::size_t i = 0; i + 3 < found.size(); i += 4)
            values.push_back(2 * std::fabs(found[i].x));
        return values;
    };
    makeCopier({}, {{"posArray", {'v', std::vector<double>(9, 0.0)}}}, plane);
    expectValues(widths(), {3, 3, 3}, "at the current time");
    run("setAttr n.toggleTimeShift 1");
    give("n.timeShift", {'d', {0.25, 1}});
    expectValues(widths(), {2.5, 4, 2}, "at their own times");
    run("setAttr n.time 24");
    expectValues(widths(), {4.5, 6, 4}, "and the node's");
    EXPECT_NEAR(plug("polyPlane1.width").asDouble(), 3, 1e-9);
    run("currentTime 24");
    expectValues(widths(), {4.5, 6, 4}, "whatever the current time is");
    give("n.timeShift", {'d', {kNaN, -kInf, 1e300}});
    expectValues({widths()[0], widths()[1]}, {4, 4}, "shifts that are no number");

    makeCopier({}, {{"posArray", {'v', std::vector<double>(9, 0.0)}}}, plane);
    run("setAttr n.toggleTimeShift 1; setAttr n.seed 5489; setAttr n.minimum 0.5; setAttr n.maximum 1.5");
    const std::vector<double> drawn = widths();
    // the first number that the generator gives with its default seed is 14514284786278117030
    EXPECT_NEAR(drawn.at(0), 2 + 2 * (0.5 + 14514284786278117030.0 / 18446744073709551616.0), 1e-6);
    run("setAttr n.seed 1");
    EXPECT_GT(std::fabs(widths().at(0) - drawn[0]), 1e-3);
    run("setAttr n.seed 5489");
    EXPECT_EQ(widths(), drawn);

    // a copier of a copier: the inner one is asked at another time for each copy, its data as well
    makeCopier({}, {{"posArray", {'v', {0, 0, 0, 0, 0, 0}}}}, std::string(plane) + "createNode copier -name inner; connectAttr p.outMesh"
               " inner.inputMesh[0]; disconnectAttr p.outMesh n.inputMesh[0]; connectAttr inner.outputMesh n.inputMesh[0];"
               "setAttr n.toggleTimeShift 1");
    give("inner.posArray", kOrigin);
    give("inner.inDataPP[0]", {'d', {4}});
    give("n.timeShift", {'d', {0.25, 1}});
    EXPECT_EQ(read("inner.outDataPP[0]").values.size(), 16u);
    expectValues(widths(), {2.5, 4}, "of a copier");
    EXPECT_EQ(read("inner.outDataPP[0]").values.size(), 16u);
    EXPECT_NEAR(std::fabs(points("inner.outputMesh").at(0).x), 1.5, 1e-6);
    run("setAttr inner.envelope 0");
    EXPECT_EQ(pointCount(), 0);
    EXPECT_EQ(read("inner.outDataPP[0]").values.size(), 0u);
}

TEST(Copies, RandomShifts)
{
    // its ten thousandth number is published with the generator
    const std::vector<double> shifts = copies::randomShifts(5489, -1.0, 3.0, 10000);
    EXPECT_DOUBLE_EQ(shifts.back(), 4.0 * (9981545732273789042.0 / 18446744073709551616.0) - 1.0);
    EXPECT_EQ(copies::randomShifts(-7, 2.0, 2.0, 3), std::vector<double>(3, 2.0));
    EXPECT_TRUE(copies::randomShifts(1, 0.0, 1.0, 0).empty());
}

TEST_F(Copier, InstancerData)
{
    makeCopier({}, {{"posArray", kTwo}, {"aimArray", {'v', {0, 1, 0}}}, {"rotArray", {'v', {9, 8, 7, 6, 5, 4, 3, 2, 1}}}});
    const auto expect = [](const std::vector<std::pair<std::string, std::vector<double>>>& expected) {
        MObject           data = plug("n.instancerData").asMObject();
        MFnArrayAttrsData arrays(data);
        ASSERT_EQ(arrays.count(), expected.size());
        for (const auto& [name, values] : expected) {
            if (name == "objectIndex") {
                const std::vector<int> found = listOf(arrays.getIntData("objectIndex"));
                EXPECT_EQ(std::vector<double>(found.begin(), found.end()), values);
                continue;
            }
            const MVectorArray  found = arrays.getVectorData(name.c_str());
            std::vector<double> flat;
            for (unsigned i = 0; i < found.length(); ++i)
                flat.insert(flat.end(), {found[i].x, found[i].y, found[i].z});
            EXPECT_EQ(flat, values) << name;
        }
    };
    const auto zero = std::vector<double>(6, 0.0);
    expect({{"position", kTwo.values}, {"aimDirection", {0, 1, 0, 0, 0, 0}}, {"aimWorldUp", zero},
            {"scale", {1, 1, 1, 1, 1, 1}}, {"objectIndex", {0, 0}}});
    run("setAttr n.orient 1");
    give("n.uniformScaleArray", {'d', {2, 3}});
    give("n.indexArray", {'d', {-3.5, 1e300, 1}});
    expect({{"position", kTwo.values}, {"rotation", {9, 8, 7, 6, 5, 4}}, {"scale", {2, 2, 2, 3, 3, 3}},
            {"objectIndex", {-3, 2147483647}}});
    give("n.scaleArray", {'v', {1, 2, 3}});
    give("n.indexArray", {'d', {kNaN}});
    expect({{"position", kTwo.values}, {"rotation", {9, 8, 7, 6, 5, 4}}, {"scale", {2, 4, 6, 0, 0, 0}}, {"objectIndex", {0, 0}}});
    give("n.posArray", {'v', {}});
    expect({{"position", {}}, {"rotation", {}}, {"scale", {}}, {"objectIndex", {}}});
}

TEST_F(Copier, Override)
{
    // the extractor gives the triangle for 0 and the kite for 1
    makeCopier({}, {{"posArray", {'v', std::vector<double>(12, 0.0)}}},
               "createNode extractor -name e; setAttr e.outOfRange 1; connectAttr e.outMesh n.inputMesh[0];"
               "connectAttr e.message n.override[2]; createNode network -name other; connectAttr other.message n.override[0]");
    giveMesh("e.inMesh[0]", triangle());
    giveMesh("e.inMesh[1]", kite());
    run("setAttr e.index 1");
    EXPECT_EQ(pointCount(), 12);                       // without time shift it is read once, for copy 0
    EXPECT_EQ(plug("e.index").asInt(), 3);
    run("setAttr n.toggleTimeShift 1; setAttr n.maximum 0");
    EXPECT_EQ(pointCount(), 3 + 4 + 3 + 4);
    EXPECT_EQ(points("e.outMesh").size(), 4u);
    run("disconnectAttr e.message n.override[2]; setAttr e.index 0");
    EXPECT_EQ(pointCount(), 12);
    EXPECT_EQ(plug("e.index").asInt(), 0);
}

TEST_F(Copier, TooManyPoints)
{
    run("file -force -new; polyPlane -sx 200 -sy 200; createNode copier -name n; connectAttr pPlaneShape1.outMesh n.inputMesh[0]");
    give("n.posArray", {'v', std::vector<double>(3 * 10000, 0.0)});   // 4e8 points
    give("n.inDataPP[0]", {'d', {1}});
    Warnings warnings;
    EXPECT_EQ(pointCount(), 0);
    EXPECT_EQ(plug("n.count").asInt(), 0);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_NE(warnings.texts[0].find("n: An array of "), std::string::npos);
    run("polyPlane -name few; connectAttr -force few.outMesh n.inputMesh[0];");
    EXPECT_EQ(pointCount(), 121 * 10000);
}

TEST_F(Copier, TheUserMayStopIt)
{
    // reading the second source asks for a stop: its copy is the last one
    run("file -force -new; createNode copier -name n; createNode arrayExpression -name stop; createNode arrayToPointAttribute -name w;"
        "setAttr w.positions 1; setAttr -type \"string\" stop.expression \"python(\\\"import signal; signal.raise_signal(2)\\\");\"");
    giveMesh("n.inputMesh[0]", triangle());
    giveMesh("w.inGeometry", kite());
    give("stop.inArray", {'v', std::vector<double>(12, 0.0)});
    run("connectAttr stop.outArray w.inPositionPP; connectAttr w.outGeometry n.inputMesh[1]");
    give("n.posArray", {'v', std::vector<double>(15, 0.0)});
    give("n.indexArray", {'d', {0, 0, 1, 0, 1}});
    EXPECT_EQ(pointCount(), 10);
    EXPECT_EQ(plug("n.count").asInt(), 5);

    // while arrays are filled: what is there is whole
    run("file -force -new; polyPlane -sx 99 -sy 99; createNode copier -name n; setAttr n.toggleUV 1; setAttr n.inheritVertexColor 1;"
        "connectAttr pPlaneShape1.outMesh n.inputMesh[0]");
    give("n.posArray", {'v', std::vector<double>(3 * 1000, 0.0)});   // ten million points
    give("n.rgbArray", {'d', std::vector<double>(1000, 0.5)});
    give("n.inDataPP[0]", {'d', {1}});
    const auto before = std::signal(SIGINT, SIG_IGN);                // early and late ones reach nobody
    int        found = 0;
    for (int attempt = 1; attempt < 40 && (found == 0 || found == 10000000); ++attempt) {
        run("setAttr n.seed " + std::to_string(attempt));
        std::thread user([attempt] {
            std::this_thread::sleep_for(std::chrono::milliseconds(3 * attempt));
            std::raise(SIGINT);
        });
        found = pointCount();
        user.join();
    }
    std::signal(SIGINT, before);
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 10000000);
    EXPECT_EQ(found % 10000, 0);
    EXPECT_EQ(int(colors("n.outputMesh").size()), found);
    EXPECT_EQ(read("n.outDataPP[0]").values.size(), 4u * unsigned(found));
    EXPECT_EQ(plug("n.count").asInt(), 1000);
}

// Arrays back into geometry: arrayToPointAttribute and arrayToPointColor.
#include "scene.h"

using namespace scene;
using ArrayToPoint = scene::Test;

namespace {

/// A flat plane of 4 vertices around (10, 0, 0) with a node `w` of the type on its world mesh.
///   2 - 3
///   0 - 1    (-1 0 1) (1 0 1) (-1 0 -1) (1 0 -1)
void plane(const std::string& type, const std::string& settings)
{
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; setAttr p.translateX 10;"
        "createNode " + type + " -name w; connectAttr p.worldMesh[0] w.inGeometry;" + settings);
}

const std::vector<MVector> kPlane = {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}};

void connect(const std::string& input, const std::string& attribute, const std::string& kind, int count,
             const std::string& values)
{
    run("connectAttr -force " + arraySource(attribute, kind, count, values) + " w." + input);
}

void select(const std::string& components)
{
    run("createNode network -name g; addAttr -longName ic -dataType \"componentList\" g;"
        "setAttr g.ic -type \"componentList\" 1 \"" + components + "\"; connectAttr g.ic w.inComponents;"
        "setAttr w.useComponents 1");
}

/// World points of the result, through a reader.
std::vector<MVector> worldPoints()
{
    run("createNode pointAttributeToArray -name back; connectAttr w.outGeometry back.inGeometry;"
        "setAttr back.pointPosition 1");
    return vectors("back.outPositionPP");
}

void expectColors(const std::vector<MColor>& expected)
{
    const std::vector<MColor> found = colors("w.outGeometry");
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_FLOAT_EQ(found[i].r, expected[i].r) << i;
        EXPECT_FLOAT_EQ(found[i].g, expected[i].g) << i;
        EXPECT_FLOAT_EQ(found[i].b, expected[i].b) << i;
        EXPECT_FLOAT_EQ(found[i].a, expected[i].a) << i;
    }
}

const MColor kUnset(-1, -1, -1, -1);

} // namespace

TEST_F(ArrayToPoint, PositionsAreWorldAndOnlyTheSubsetMoves)
{
    plane("arrayToPointAttribute", "setAttr w.positions 1");
    connect("inPositionPP", "v", "vectorArray", 4, "0 1 0 0 2 0 0 3 0 0 4 0");
    expectNear(worldPoints(), {{0, 1, 0}, {0, 2, 0}, {0, 3, 0}, {0, 4, 0}});
    select("vtx[1:2]");
    expectNear(vectors("back.outPositionPP"), {{9, 0, 1}, {0, 2, 0}, {0, 3, 0}, {11, 0, -1}});
    run("setAttr g.ic -type \"componentList\" 1 \"vtx[3:9]\"");   // the first index outside ends the list
    expectNear(vectors("back.outPositionPP"), {{9, 0, 1}, {11, 0, 1}, {9, 0, -1}, {0, 4, 0}});
    expectNear(points("p.outMesh"), kPlane);                      // the input is not altered
}

TEST_F(ArrayToPoint, WrongLengthsAndKinds)
{
    struct Case { const char *kind; int count; const char* values; bool warns, moves; };
    const Case cases[] = {
        {"vectorArray", 3, "0 1 0 0 2 0 0 3 0", true, false},
        {"doubleArray", 12, "0 1 0 0 2 0 0 3 0 0 4 0", false, true},
        {"doubleArray", 4, "1 2 3 4", true, false},
        {"doubleArray", 0, "", true, false},
    };
    plane("arrayToPointAttribute", "setAttr w.positions 1");
    int n = 0;
    for (const Case& c : cases) {
        connect("inPositionPP", "a" + std::to_string(n++), c.kind, c.count, c.values);
        Warnings   warnings;
        const bool moved = !points("w.outGeometry")[0].isEquivalent(kPlane[0]);
        EXPECT_EQ(moved, c.moves) << c.kind << c.count;
        EXPECT_EQ(warnings.texts.size(), c.warns ? 1u : 0u) << c.kind << c.count;
        for (const std::string& text : warnings.texts)
            EXPECT_EQ(text, "w: inPositionPP array length does not match the point count.");
    }
}

TEST_F(ArrayToPoint, OffAndNoEffectGiveTheInput)
{
    plane("arrayToPointAttribute", "setAttr w.positions 1");
    connect("inPositionPP", "v", "vectorArray", 4, "0 1 0 0 2 0 0 3 0 0 4 0");
    run("setAttr w.active 0");
    expectNear(points("w.outGeometry"), kPlane, 0.0);
    run("setAttr w.active 1; setAttr w.nodeState 1");
    expectNear(points("w.outGeometry"), kPlane, 0.0);
    run("setAttr w.nodeState 0");
    EXPECT_FALSE(points("w.outGeometry")[0].isEquivalent(kPlane[0]));
}

TEST_F(ArrayToPoint, NormalsOfTheSubsetAreLocked)
{
    plane("arrayToPointAttribute", "setAttr w.normals 1; setAttr w.positions 1");
    connect("inNormalPP", "n", "vectorArray", 4, "1 0 0 1 0 0 1 0 0 1 0 0");
    select("vtx[2]");
    run("createNode pointAttributeToArray -name back; connectAttr w.outGeometry back.inGeometry;"
        "setAttr back.pointNormal 1");
    expectNear(vectors("back.outNormalPP"), {{0, 1, 0}, {0, 1, 0}, {1, 0, 0}, {0, 1, 0}});
}

TEST_F(ArrayToPoint, ColoursOfOneVertexLeaveTheRestUnset)
{
    plane("arrayToPointAttribute", "setAttr w.colors 1");
    connect("inRgbaPP", "c", "vectorArray", 4, "0.5 0.25 0.75 0.5 0.25 0.75 0.5 0.25 0.75 0.5 0.25 0.75");
    select("vtx[1]");
    expectColors({kUnset, MColor(0.5f, 0.25f, 0.75f, 0.0f), kUnset, kUnset});
    run("setAttr w.solidAlpha 1; setAttr w.clamp 1; setAttr w.clampMin 0.4; setAttr w.clampMax 0.6");
    expectColors({kUnset, MColor(0.5f, 0.4f, 0.6f, 1.0f), kUnset, kUnset});
}

TEST_F(ArrayToPoint, ThreeDoublesKeepThePresentAlpha)
{
    plane("arrayToPointAttribute", "polyColorPerVertex -rgb 1 1 1 -alpha 0.5 p.vtx[0:3]; setAttr w.colors 1");
    connect("inRgbaPP", "c", "doubleArray", 12, "0 0 0 0.1 0.2 0.3 0 0 0 0 0 0");
    EXPECT_FLOAT_EQ(colors("w.outGeometry")[1].g, 0.2f);
    EXPECT_FLOAT_EQ(colors("w.outGeometry")[1].a, 0.5f);
}

TEST_F(ArrayToPoint, AFaceTakesTheColourOfItsFirstVertex)
{
    // two quads 0 1 4 3 and 1 2 5 4: the first takes the colour of vertex 0, the second that of vertex 1
    run("polyPlane -subdivisionsX 2 -subdivisionsY 1 -name p; createNode arrayToPointAttribute -name w;"
        "connectAttr p.worldMesh[0] w.inGeometry; setAttr w.colors 1; setAttr w.promoteToFaces 1");
    connect("inRgbaPP", "c", "doubleArray", 6, "0.1 0.2 0.3 0.4 0.5 0.6");
    const MColor left(0.1f, 0.1f, 0.1f, 0.1f), right(0.2f, 0.2f, 0.2f, 0.2f), mean(0.15f, 0.15f, 0.15f, 0.15f);
    expectColors({left, mean, right, left, mean, right});
}

TEST_F(ArrayToPoint, AGroupThatTheGeometryLacksSelectsNothing)
{
    for (const char* type : {"arrayToPointAttribute", "arrayToPointColor"}) {
        run("file -force -new");
        plane(type, "setAttr w.useComponents 2; setAttr w.groupId 7");
        if (std::string(type) == "arrayToPointAttribute")
            run("setAttr w.colors 1");
        connect("inRgbaPP", "c", "doubleArray", 4, "0.1 0.2 0.3 0.4");
        Warnings warnings;
        for (const MColor& color : colors("w.outGeometry"))
            EXPECT_EQ(color, kUnset) << type;
        EXPECT_TRUE(warnings.texts.empty()) << type;
    }
}

TEST_F(ArrayToPoint, NoPointsNoWarning)
{
    run("createNode arrayToPointAttribute -name w; createNode arrayToPointColor -name v; setAttr w.positions 1;"
        "setAttr w.normals 1; setAttr w.colors 1; connectAttr " + meshSource(0, false) + " w.inGeometry;"
        "connectAttr meshes.m v.inGeometry; connectAttr " + arraySource("a", "doubleArray", 0, "") + " w.inPositionPP;"
        "connectAttr arrays.a w.inNormalPP; connectAttr arrays.a w.inRgbaPP; connectAttr arrays.a v.inRgbaPP");
    Warnings warnings;
    EXPECT_EQ(points("w.outGeometry").size(), 0u);
    EXPECT_EQ(points("v.outGeometry").size(), 0u);
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(ArrayToPoint, CurvesTakePositionsAndNothingElse)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -point 2 0 0 -name k; setAttr k.translateY 5;"
        "createNode arrayToPointAttribute -name w; connectAttr k.worldSpace[0] w.inGeometry;"
        "setAttr w.positions 1; setAttr w.normals 1; setAttr w.colors 1");
    connect("inPositionPP", "v", "vectorArray", 3, "0 1 0 1 2 0 2 3 0");
    connect("inRgbaPP", "c", "doubleArray", 3, "1 1 1");
    Warnings warnings;
    run("createNode nurbsCurve -name result; connectAttr w.outGeometry result.create");
    MObject     data = plug("w.outGeometry").asMObject();
    MPointArray cvs;
    MFnNurbsCurve(data).getCVs(cvs, MSpace::kWorld);
    ASSERT_EQ(cvs.length(), 3u);
    EXPECT_NEAR(cvs[2].x, 2.0, 1e-9);
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(ArrayToPoint, ColorNodeRefusesThreeDoubles)
{
    plane("arrayToPointColor", "");
    connect("inRgbaPP", "c3", "doubleArray", 12, "0 0 0 0 0 0 0 0 0 0 0 0");
    {
        Warnings warnings;
        EXPECT_TRUE(colors("w.outGeometry").empty());
        ASSERT_EQ(warnings.texts.size(), 1u);
        EXPECT_EQ(warnings.texts[0], "w: inRgbaPP array length does not match the point count.");
    }
    connect("inRgbaPP", "c1", "doubleArray", 4, "0.1 0.2 0.3 0.4");
    select("vtx[0]");
    expectColors({MColor(0.1f, 0.1f, 0.1f, 0.1f), kUnset, kUnset, kUnset});
    connect("inRgbaPP", "p", "pointArray", 4, "0.5 0.6 0.7 9 0 0 0 1 0 0 0 1 0 0 0 1");
    expectColors({MColor(0.5f, 0.6f, 0.7f, 0.0f), kUnset, kUnset, kUnset});
    run("setAttr w.solidAlpha 1");
    expectColors({MColor(0.5f, 0.6f, 0.7f, 1.0f), kUnset, kUnset, kUnset});
}

TEST_F(ArrayToPoint, ColorNodeKeepsColoursOutsideTheSubset)
{
    plane("arrayToPointColor", "polyColorPerVertex -rgb 1 0 0 -alpha 1 p.vtx[0:3]");
    connect("inRgbaPP", "c", "doubleArray", 4, "0.5 0.5 0.5 0.5");
    select("vtx[2:3]");
    const MColor red(1, 0, 0, 1), grey(0.5f, 0.5f, 0.5f, 0.5f);
    expectColors({red, red, grey, grey});
    run("setAttr w.envelope 0");
    expectColors({red, red, red, red});
}

// Per-point expressions on meshes, curves and surfaces: what the texts see and what becomes of their results.
#include <maya/MFnIntArrayData.h>
#include <maya/MFnNurbsSurface.h>

#include "scene.h"

using namespace scene;
using PointNode = scene::Test;

namespace {

/// A flat plane of 6 vertices moved to x = 10, with a node `e` on its world mesh.
///   3 - 4 - 5      z = -0.5
///   0 - 1 - 2      z = 0.5;  x = -1 0 1
void plane(const std::string& settings = "")
{
    run("polyPlane -width 2 -height 1 -subdivisionsX 2 -subdivisionsY 1 -name p; setAttr p.translateX 10;"
        "createNode point -name e; connectAttr p.worldMesh[0] e.inGeometry;" + settings);
}

const std::vector<MVector> kPlane = {{-1, 0, 0.5}, {0, 0, 0.5}, {1, 0, 0.5}, {-1, 0, -0.5}, {0, 0, -0.5}, {1, 0, -0.5}};

/// Switches a block on and gives it a text.
void block(const std::string& name, const std::string& text)
{
    run("setAttr e.enable" + name + " 1; setAttr -type \"string\" e.string" + name + " \"" + text + "\"");
}

void select(const std::string& components)
{
    run("createNode network -name g; addAttr -longName ic -dataType \"componentList\" g; connectAttr g.ic e.inComponents;"
        "setAttr g.ic -type \"componentList\" 1 \"" + components + "\"; setAttr e.useComponents 1");
}

std::vector<double> evaluated(const std::string& output)
{
    plug("e.outGeometry").asMObject();   // the output that always answers fills the others
    return doubles("e." + output);
}

std::vector<int> ints(const std::string& output)
{
    plug("e.outGeometry").asMObject();
    MObject          data = plug("e." + output).asMObject();
    MFnIntArrayData  fn(data);
    std::vector<int> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

std::vector<MVector> positions()
{
    plug("e.outGeometry").asMObject();
    return vectors("e.outPositionPP");
}

/// What a text found out, joined by blanks: it appends to the global $seen.
std::string seenBy(const std::string& appended)
{
    run("global string $seen; $seen = \"\"");
    block("Weight", "global string $seen; $seen += (" + appended + ") + \\\" \\\";");
    plug("e.outGeometry").asMObject();
    return MGlobal::executeCommandStringResult("$seen = $seen").asChar();
}

const std::vector<double> kNone;

} // namespace

TEST_F(PointNode, NothingOnGivesTheCopyAndTheIds)
{
    plane();
    expectNear(points("e.outGeometry"), kPlane, 0.0);
    EXPECT_EQ(ints("outIdPP"), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(positions().size(), 0u);
    for (const char* output : {"outWeightPP", "outRgbaPP", "outRadiusPP"})
        EXPECT_EQ(evaluated(output), kNone) << output;
    EXPECT_EQ(vectors("e.outNormalPP").size(), 0u);
    EXPECT_EQ(ints("outIdPM").size(), 0u);
    EXPECT_EQ(evaluated("outMapPP").size(), 12u);   // UVs stay as they were read
    run("setAttr e.coordinateSystem 0");
    EXPECT_NEAR(points("e.outGeometry")[0].x, 9.0, 1e-6);
}

TEST_F(PointNode, TheTextsOfANewNodeChangeNothing)
{
    plane("polyColorPerVertex -rgb 0.25 0.5 0.75 -alpha 0.5 p");
    for (const char* name : {"Position", "Weight", "Color", "Normal", "Radius", "Map"})
        run(std::string("setAttr e.enable") + name + " 1");
    expectNear(points("e.outGeometry"), kPlane, 0.0);
    expectNear(positions(), kPlane, 0.0);
    EXPECT_EQ(plug("e.outPositionPP").asMObject().apiType(), MFn::kVectorArrayData);
    EXPECT_EQ(evaluated("outWeightPP"), std::vector<double>(6, 0.0));
    EXPECT_EQ(evaluated("outRgbaPP")[1], 0.5);
    EXPECT_EQ(colors("e.outGeometry")[5], MColor(0.25f, 0.5f, 0.75f, 0.5f));
    EXPECT_EQ(evaluated("outMapPP"), (std::vector<double>{0, 0, 0.5, 0, 1, 0, 0, 1, 0.5, 1, 1, 1}));
    expectNear(vectors("e.outNormalPP"), std::vector<MVector>(6, {0, 1, 0}));
}

TEST_F(PointNode, ResultsOfEveryBlock)
{
    plane();
    block("Position", "$Y = $TX * 2 + $ID;");
    block("Weight", "$W = $i * $FF + $F;");
    block("Color", "$R = $TX; $G = $BBX; $B = $CEX; $A = 0.1;");
    block("Normal", "$X = 1; $Y = 0;");
    block("Radius", "$R = $PCOUNT + $PCOUNT2;");
    block("Map", "$U = $U + $MP; $V = $V + $MAPID[$i] + $CCOUNT;");
    run("setAttr e.currentTime 1.5");
    expectNear(positions(), {{-1, -2, 0.5}, {0, 1, 0.5}, {1, 4, 0.5}, {-1, 1, -0.5}, {0, 4, -0.5}, {1, 7, -0.5}});
    expectNear(points("e.outGeometry"), positions());
    EXPECT_EQ(evaluated("outWeightPP"), (std::vector<double>{1, 2.5, 4, 5.5, 7, 8.5}));
    const std::vector<double> rgba = evaluated("outRgbaPP");
    ASSERT_EQ(rgba.size(), 24u);
    EXPECT_EQ(rgba[0], -1.0);
    EXPECT_EQ(rgba[1], 2.0);
    EXPECT_EQ(rgba[3], double(0.1f));   // colours pass through single precision
    EXPECT_EQ(colors("e.outGeometry")[4], MColor(0, 2, 0, 0.1f));
    expectNear(vectors("e.outNormalPP"), std::vector<MVector>(6, {1, 0, 0}));
    EXPECT_EQ(evaluated("outRadiusPP"), std::vector<double>(6, 6.0));
    EXPECT_EQ(evaluated("outMapPP"), (std::vector<double>{0, 6, 1.5, 7, 3, 8, 3, 10, 4.5, 11, 6, 12}));
    run("createNode mesh -name out; connectAttr e.outGeometry out.inMesh");
    EXPECT_NEAR(MGlobal::executeCommandStringResult("polyEditUV -q -v out.map[2]").asDouble(), 8.0, 1e-6);
}

TEST_F(PointNode, SwitchesForApplyingKeepTheGeometry)
{
    plane("setAttr e.applyChangesPosition 0; setAttr e.applyChangesColor 0; setAttr e.applyChangesNormal 0;"
          "setAttr e.applyChangesMap 0");
    block("Position", "$Y = 3;");
    block("Color", "$R = 1;");
    block("Map", "$U = 9;");
    EXPECT_EQ(positions()[2].y, 3.0);
    expectNear(points("e.outGeometry"), kPlane, 0.0);
    EXPECT_TRUE(colors("e.outGeometry").empty());
    EXPECT_EQ(evaluated("outMapPP")[0], 9.0);
}

TEST_F(PointNode, ASubsetIsARunWithoutGaps)
{
    plane("polyColorPerVertex -rgb 1 1 1 -alpha 1 p");
    select("vtx[1:2]");
    run("setAttr g.ic -type \"componentList\" 2 \"vtx[1:2]\" \"cv[4]\"");   // the first component alone counts
    EXPECT_EQ(ints("outIdPP"), (std::vector<int>{1, 2}));
    run("connectAttr " + arraySource("w", "doubleArray", 6, "10 11 12 13 14 15") + " e.inWeightPP");
    block("Position", "$Y = $ID; $X = $X + $CCOUNT * 100 + $PCOUNT * 1000; $Z = $GBX + $BBX * 10;");
    block("Color", "$R = $i;");
    expectNear(positions(), {{-1, 0, 0.5}, {6200, 1, 21}, {6201, 2, 21}, {-1, 0, -0.5}, {0, 0, -0.5}, {1, 0, -0.5}});
    expectNear(points("e.outGeometry"), positions());
    EXPECT_EQ(colors("e.outGeometry")[2], MColor(1, 1, 1, 1));
    EXPECT_EQ(colors("e.outGeometry")[1], MColor(0, 1, 1, 1));
    EXPECT_EQ(colors("e.outGeometry")[0], MColor(1, 1, 1, 1));
    block("Weight", "$W = -$WEIGHT;");
    EXPECT_EQ(evaluated("outWeightPP"), (std::vector<double>{10, -11, -12, 13, 14, 15}));
    block("Map", "$U = -$MAPID[$i];");
    EXPECT_EQ(ints("outIdPM"), (std::vector<int>{1, 2}));
    EXPECT_EQ(ints("outIdForMapPP"), (std::vector<int>{1, 2}));
    EXPECT_EQ(evaluated("outMapPP"), (std::vector<double>{0, 0, -1, 0, -2, 0, 0, 1, 0.5, 1, 1, 1}));
    run("setAttr e.useComponents 2");   // no such group: nothing is selected
    EXPECT_EQ(ints("outIdPP").size(), 0u);
    expectNear(points("e.outGeometry"), kPlane, 0.0);
}

TEST_F(PointNode, AResultOfAnotherLengthIsRefused)
{
    plane();
    block("Position", "$Y = 3; $OUTPUT[100] = 1;");
    block("Weight", "if ($i == 3) break; $W = 1;");
    block("Color", "$OUTPUT[24] = 1;");
    block("Map", "$OUTPUT[12] = 1; $U = 5;");
    Warnings warnings;
    expectNear(points("e.outGeometry"), kPlane, 0.0);
    EXPECT_EQ(positions().size(), 0u);
    EXPECT_EQ(evaluated("outWeightPP"), kNone);
    EXPECT_EQ(evaluated("outRgbaPP"), kNone);
    EXPECT_EQ(evaluated("outMapPP")[0], 0.0);
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(PointNode, AnErrorIsShownAndTheEarlierProcedureRuns)
{
    run("global proc float[] position_POINT() { return {}; } global proc float[] weight_POINT() { return {1.0, 2.0}; }");
    plane();
    block("Position", "$Y = \\$;");
    block("Weight", "int $zero = 0; $W = 1 / $zero;");
    Warnings errors(mirk::message::kError);
    EXPECT_EQ(positions().size(), 0u);
    EXPECT_EQ(evaluated("outWeightPP"), kNone);
    ASSERT_EQ(errors.texts.size(), 2u);
    EXPECT_NE(errors.texts[0].find("'$'"), std::string::npos) << errors.texts[0];
    EXPECT_NE(errors.texts[1].find("zero"), std::string::npos) << errors.texts[1];
    block("Position", "$Y = 4;");
    EXPECT_EQ(positions()[0].y, 4.0);
    block("Position", "$Y = ;");        // what is still defined is called
    EXPECT_EQ(positions()[0].y, 4.0);
}

TEST_F(PointNode, NodesShareTheProcedureNames)
{
    plane();
    run("createNode point -name f; connectAttr e.outGeometry f.inGeometry; setAttr f.enablePosition 1;"
        "setAttr -type \"string\" f.stringPosition \"$Y = $Y * 10 + size($NODE);\"");
    block("Position", "$Y = $i;");
    expectNear(points("f.outGeometry"), {{-1, 1, 0.5}, {0, 11, 0.5}, {1, 21, 0.5}, {-1, 31, -0.5}, {0, 41, -0.5}, {1, 51, -0.5}});
    EXPECT_EQ(MGlobal::executeCommandStringResult("whatIs position_POINT"), "Mel procedure entered interactively.");
}

TEST_F(PointNode, InputArraysAsTheTextsSeeThem)
{
    plane();
    run("connectAttr " + arraySource("w", "doubleArray", 2, "5 6") + " e.inWeightPP;"
        "connectAttr " + arraySource("c", "doubleArray", 6, "1 2 3 4 5 6") + " e.inRgbaPP;"
        "connectAttr " + arraySource("n", "vectorArray", 1, "1 2 3") + " e.inNormalPP");
    {
        Warnings warnings;
        EXPECT_EQ(seenBy("size($WGT) + $WEIGHT"), "7 8 2 2 2 2 ");
        ASSERT_EQ(warnings.texts.size(), 1u);
        EXPECT_EQ(warnings.texts[0], "e: inNormalPP has length different than the number of points of inGeometry.");
    }
    EXPECT_EQ(evaluated("outWeightPP").size(), 6u);
    EXPECT_EQ(seenBy("\\\"\\\" + $CR + $ALPHA"), "11 22 33 44 55 66 ");    // one value a point is grey, alpha included
    EXPECT_EQ(seenBy("\\\"\\\" + $NX + $NZ"), "13 00 00 00 00 00 ");
    run("setAttr arrays.c -type \"doubleArray\" 9 1 2 3 4 5 6 7 8 9");      // two RGBA and a rest
    EXPECT_EQ(seenBy("\\\"\\\" + $CG + $ALPHA"), "24 68 01 01 01 01 ");
}

TEST_F(PointNode, TheSecondGeometry)
{
    plane();
    EXPECT_EQ(seenBy("\\\"\\\" + $PCOUNT2 + $TX2 + size($CLR2) + size($MAP2)"), "0-100 0000 0100 0-100 0000 0100 ");
    run("polyPlane -width 20 -height 10 -subdivisionsX 1 -subdivisionsY 1 -name q; connectAttr q.outMesh e.inGeometry2");
    EXPECT_EQ(seenBy("\\\"\\\" + $PCOUNT2 + $TX2 + size($CLR2) + size($MAP2) + $NY2"),
              "4-101681 4101681 4-101681 4101681 401680 401680 ");   // past its end there are zeros
    EXPECT_EQ(vectors("e.outNormalPP2").size(), 4u);
    EXPECT_EQ(evaluated("outSharedMapPP2").size(), 8u);
}

TEST_F(PointNode, WhatDependsOnTheLengthAloneFollowsIt)
{
    plane("setAttr e.enableColor 1;");
    block("Color", "$ID = $IDS[$i]; $R = $ID; $CLR[$ox4] = 7;");   // the text's own copy
    for (const auto& [divisions, count] : {std::pair{2, 6u}, {3, 8u}, {2, 6u}}) {
        run("setAttr polyPlane1.subdivisionsWidth " + std::to_string(divisions));
        std::vector<double> expected;
        for (unsigned int i = 0; i < count; ++i)
            expected.insert(expected.end(), {double(i), 0.0, 0.0, 1.0});
        EXPECT_EQ(evaluated("outRgbaPP"), expected) << count;
        EXPECT_EQ(ints("outIdPP").size(), count);
    }
    block("Color", "$G = $CLR[$ox4];");
    EXPECT_EQ(evaluated("outRgbaPP")[1], 0.0) << "the colours of the mesh, not those of a text";
}

TEST_F(PointNode, CurvesMoveAndLeaveTheirExtrudeBehind)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -point 2 0 0 -name k; setAttr k.translateY 5;"
        "createNode point -name e; connectAttr k.worldSpace[0] e.inGeometry");
    block("Position", "$Z = $PCOUNT + $ID;");
    block("Map", "$U = 1;");                     // meshes only
    MGlobal::executeCommand("global proc float[] map_POINT() { error \"was called\"; return {}; }");
    Warnings    errors(mirk::message::kError);
    MObject     data = plug("e.outGeometry").asMObject();
    MPointArray cvs;
    MFnNurbsCurve(data).getCVs(cvs);
    ASSERT_EQ(cvs.length(), 3u);
    EXPECT_EQ(cvs[2], MPoint(2, 0, 5));
    EXPECT_TRUE(errors.texts.empty());
    EXPECT_EQ(MGlobal::executeCommandStringResult("size(`ls -type extrude`)"), "1");
    EXPECT_EQ(MGlobal::executeCommandStringResult("size(`ls -type nurbsTessellate`)"), "0");
    run("setAttr e.coordinateSystem 0");
    data = plug("e.outGeometry").asMObject();
    MFnNurbsCurve(data).getCVs(cvs);
    EXPECT_EQ(cvs[2], MPoint(2, 5, 5));
    EXPECT_EQ(MGlobal::executeCommandStringResult("size(`ls -type extrude`)"), "2");
}

TEST_F(PointNode, SurfacesMoveUnlessTheyArePeriodic)
{
    run("nurbsPlane -name s -degree 1 -patchesU 1 -patchesV 1; createNode point -name e; connectAttr sShape.local e.inGeometry");
    block("Position", "$X = $ID;");
    MObject     data = plug("e.outGeometry").asMObject();
    MPointArray cvs;
    MFnNurbsSurface(data).getCVs(cvs);
    ASSERT_EQ(cvs.length(), 4u);
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(cvs[i].x, double(i));
    select("cv[1][0:1]");
    EXPECT_EQ(ints("outIdPP"), (std::vector<int>{2, 3}));
    EXPECT_EQ(MGlobal::executeCommandStringResult("size(`ls -type nurbsTessellate`)"), "0");

    run("file -force -new; cylinder -name s; createNode point -name e; connectAttr sShape.local e.inGeometry");
    Warnings warnings;
    plug("e.outGeometry").asMObject();
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_EQ(warnings.texts[0], "e: inGeometry is periodic nurbs surface. "
                                 "Rebuild using \"End Conditions\" / \"Multiple Knots\" options.");
}

TEST_F(PointNode, StatesAndPlugsThatDoNotAnswer)
{
    plane();
    block("Position", "$Y = 3;");
    run("setAttr e.nodeState 1");
    expectNear(points("e.outGeometry"), kPlane, 0.0);
    run("setAttr e.nodeState 0; setAttr e.currentTime 1");
    EXPECT_TRUE(plug("e.outIdPP").asMObject().isNull());           // it answers nothing by itself
    EXPECT_EQ(vectors("e.outPositionPP")[0].y, 3.0);               // asked for while it is read by the text
    run("setAttr e.enablePosition 0; disconnectAttr p.worldMesh[0] e.inGeometry");
    EXPECT_EQ(vectors("e.outPositionPP").size(), 6u);              // a block that is off leaves its output alone
}

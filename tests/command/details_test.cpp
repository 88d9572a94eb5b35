// Small things that scripts trip over: whole frames, absent values, names of results, what another scene left behind.
#include "../support/host_fixture.h"

#include <maya/MDagPath.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MItCurveCV.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MTime.h>

namespace {

using Details = mirk::test::Host;

MDagPath pathOf(const char* name)
{
    MSelectionList list;
    list.add(name);
    MDagPath path;
    list.getDagPath(0, path);
    return path;
}

MPlug plugOf(const char* name)
{
    MSelectionList list;
    list.add(name);
    MPlug plug;
    list.getPlug(0, plug);
    return plug;
}

TEST_F(Details, WholeFramesStayWholeInEveryUnit)
{
    for (int unit : {MTime::k15FPS, MTime::k24FPS, MTime::k25FPS, MTime::k30FPS, MTime::k60FPS, MTime::k29_97FPS, MTime::k6000FPS})
        for (double f : {1.0, 7.0, 49.0, 200.0, 1001.0, 12345.0, -3.0, 1e7})
            EXPECT_EQ(MTime(MTime(f, MTime::Unit(unit)).as(MTime::kSeconds), MTime::kSeconds).as(MTime::Unit(unit)), f) << unit;
    EXPECT_NE(MTime(2.0000000001, MTime::k24FPS).as(MTime::kSeconds) * 24, 2);   // and nothing else becomes whole
    EXPECT_EQ(num("playbackOptions -q -aet"), 200);
    for (int f = 1; f < 300; ++f)
        EXPECT_EQ(num("currentTime " + std::to_string(f) + "; currentTime -q"), f);
    mel("playbackOptions -max 49; currentUnit -t ntsc; file -f -new; currentUnit -t film");
}

TEST_F(Details, LimitsOfDynamicAttributesComeBackInTheirUnits)
{
    mel("createNode transform -n t; addAttr -ln ang -at doubleAngle -dv 30 -min -90 -max 180 t; addAttr -ln tim -at time -dv 12 -min 1 t;"
        "addAttr -ln len -at doubleLinear -smn 0.1 -smx 7 t");
    const std::string path = file("limits.ma");
    mel("file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -open \"" + path + "\"");
    EXPECT_NEAR(num("getAttr t.ang"), 30, 1e-12);
    EXPECT_EQ(num("getAttr t.tim"), 12);
    EXPECT_EQ(nums("attributeQuery -node t -min ang")[0], -90);
    EXPECT_EQ(nums("attributeQuery -node t -max ang")[0], 180);
    EXPECT_EQ(nums("attributeQuery -node t -min tim")[0], 1);
    EXPECT_EQ(nums("attributeQuery -node t -smx len")[0], 7);
}

TEST_F(Details, AnotherSceneLeavesNothingOnTheDefaultNodes)
{
    const std::string a = write("a.ma", "//Maya ASCII 2020 scene\nrequires maya \"2020\";\nselect -ne :time1;\n\tsetAttr \".o\" 5;\n"
                                        "\tsetAttr \".mystery\" 7;\n// End of a.ma\n");
    const std::string b = write("b.ma", "//Maya ASCII 2020 scene\nrequires maya \"2020\";\ncreateNode transform -n \"y\";\n// End of b.ma\n");
    const std::string broken = write("broken.ma", "//Maya ASCII 2020 scene\ncreateNode transform -n \"z\";\nsetAttr \".tx\" banana;\n// End of broken.ma\n");
    mel("file -f -open \"" + a + "\"; addAttr -ln extra -at double :time1");
    EXPECT_EQ(num("currentTime -q"), 5);
    EXPECT_NE(melError("file -f -open \"" + broken + "\""), "");   // nothing is lost by a file that cannot be read
    EXPECT_EQ(num("currentTime -q"), 5);
    EXPECT_EQ(num("attributeQuery -node time1 -exists extra"), 1);
    EXPECT_NE(mirk::io::sceneText("x.ma", false).find("mystery"), std::string::npos);
    mel("file -f -open \"" + b + "\"");
    EXPECT_EQ(num("currentTime -q"), 1);
    EXPECT_EQ(num("attributeQuery -node time1 -exists extra"), 0);
    EXPECT_EQ(mirk::io::sceneText("x.ma", false).find("mystery"), std::string::npos);
}

TEST_F(Details, PythonNamesWhatIsAbsentAndWhatComesBack)
{
    py("import maya.cmds as cmds");
    py("cmds.polyCube()");
    const struct { const char* call; const char* says; } cases[] = {
        {"cmds.setAttr(None, 1)", "setAttr: argument 1 is None"}, {"cmds.setAttr('pCube1.tx', None)", "setAttr: argument 2 is None"},
        {"cmds.select(['pCube1', None])", "select: argument 1 holds None"}, {"cmds.polyCube(name=None)", "polyCube: the flag 'name' is None"},
    };
    for (const auto& c : cases)
        try {
            mirk::python::run(c.call);
            ADD_FAILURE() << c.call;
        } catch (const std::exception& e) {
            EXPECT_NE(std::string(e.what()).find(c.says), std::string::npos) << e.what();
        }
    EXPECT_EQ(py("str(cmds.polyEvaluate('pCube1', vertex=True, face=True))").asString(), "{'vertex': 8, 'face': 6}");
    EXPECT_EQ(py("cmds.polyEvaluate('pCube1')['edge']").asInt(), 12);
    EXPECT_EQ(py("cmds.polyEvaluate('pCube1', v=True)").asInt(), 8);
    EXPECT_EQ(nums("polyEvaluate -v -e pCube1"), (std::vector<double>{8, 12}));
}

TEST_F(Details, APeriodicCurveIsWalkedOverItsOwnPointsOnce)
{
    mel("circle -ch 0 -n ring");   // 8 spans of degree 3: 8 points, 3 of them repeated at the end
    const MDagPath path = pathOf("ringShape");
    EXPECT_EQ(MFnNurbsCurve(path).numCVs(), 11);
    MItGeometry it(path);
    EXPECT_EQ(it.count(), 8);
    MPointArray points;
    it.allPositions(points, MSpace::kObject);
    points[0] = MPoint(1, 2, 3);
    EXPECT_EQ(it.setAllPositions(points, MSpace::kObject), MS::kSuccess);
    MPoint last;
    MFnNurbsCurve(path).getCV(8, last);
    EXPECT_EQ(last, MPoint(1, 2, 3));
    EXPECT_EQ(strings("ls -fl ring.cv[*]").size(), 8u);
}

TEST_F(Details, WhatHasKeysIsReadAtOtherTimesAndPosedByHand)
{
    mel("createNode transform -n t; setKeyframe -t 1 -v 0 -itt linear -ott linear t.tx; setKeyframe -t 11 -v 20 -itt linear -ott linear t.tx;"
        "createNode transform -n below -p t; currentTime 6");
    EXPECT_NEAR(num("getAttr t.tx"), 10, 1e-12);
    EXPECT_NEAR(num("getAttr -t 4 t.tx"), 6, 1e-12);
    EXPECT_NEAR(nums("getAttr -t 11 below.worldMatrix[0]")[12], 20, 1e-12);
    mel("setAttr t.tx 42");
    EXPECT_EQ(nums("getAttr below.worldMatrix[0]")[12], 42);
    EXPECT_NEAR(num("getAttr -t 4 t.tx"), 6, 1e-12);
    EXPECT_EQ(num("getAttr t.tx"), 42);
    mel("currentTime 11");
    EXPECT_NEAR(num("getAttr t.tx"), 20, 1e-12);
}

TEST_F(Details, ConnectedElementsCountOnceTheyWereEvaluated)
{
    mel("createNode network -n sum; addAttr -ln input1D -at double -multi sum; createNode transform -n t; setAttr sum.input1D[2] 1; connectAttr t.tx sum.input1D[5];"
        "connectAttr t.ty sum.input1D[1]");
    MPlug input = plugOf("sum.input1D");
    EXPECT_EQ(input.numElements(), 1u);
    EXPECT_EQ(input[0].logicalIndex(), 2u);
    EXPECT_EQ(input.numConnectedElements(), 2u);
    EXPECT_EQ(input.evaluateNumElements(), 3u);
    EXPECT_EQ(input.numElements(), 3u);
    EXPECT_EQ(input[0].logicalIndex(), 1u);
    mel("setAttr t.tx 4");   // dirty again, but in the block
    EXPECT_EQ(input.numElements(), 3u);
}

}  // namespace

// What scenes ask of transforms and NURBS shapes, the round makers, and nodes that move points.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MDagPath.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

namespace {

using Queries = mirk::test::Host;
using List = std::vector<double>;

TEST_F(Queries, LimitsHoldTheMatrixAndLeaveTheChannels)
{
    mel("createNode transform -n t; transformLimits -tx -1 2 -etx 0 1 -ry -45 30 -ery 1 1 -sz 0.5 2 -esz true false t;"
        "setAttr t.t 5 6 7; setAttr t.ry 90; setAttr t.sz 0.1");
    const List m = nums("getAttr t.matrix");
    EXPECT_EQ(m[12], 2);   // held
    EXPECT_EQ(m[13], 6);   // no limit
    EXPECT_NEAR(m[0], std::cos(M_PI / 6), 1e-15);
    EXPECT_NEAR(m[10], 0.5 * std::cos(M_PI / 6), 1e-15);
    EXPECT_EQ(num("getAttr t.tx"), 5);
    mel("setAttr t.tx -5");
    EXPECT_EQ(nums("getAttr t.worldMatrix[0]")[12], -5);   // the lower one is off
    EXPECT_EQ(nums("transformLimits -q -tx t"), (List{-1, 2}));
    EXPECT_NEAR(nums("transformLimits -q -ry t")[1], 30, 1e-12);
    EXPECT_EQ(nums("transformLimits -q -etx t"), (List{0, 1}));
    const std::string path = file("limits.ma");
    mel("file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -open \"" + path + "\"; setAttr t.tx 9");
    EXPECT_EQ(nums("getAttr t.matrix")[12], 2);
    mel("transformLimits -rm t");
    EXPECT_EQ(nums("getAttr t.matrix")[12], 9);
    mel("undo");
    EXPECT_EQ(nums("getAttr t.matrix")[12], 2);
    EXPECT_EQ(num("getAttr t.rotateQuatW"), 1);
}

TEST_F(Queries, CurvesAndSurfacesTellOfThemselves)
{
    mel("curve -n c -d 3 -p 0 0 0 -p 1 0 0 -p 2 1 0 -p 3 0 0 -p 4 0 0; circle -n o -s 6; sphere -n s; nurbsPlane -n p -u 2 -v 3 -d 1");
    const struct { const char* plug; List value; } cases[] = {
        {"c.spans", {2}}, {"c.degree", {3}}, {"c.form", {0}}, {"c.minMaxValue", {0, 2}}, {"c.maxValue", {2}},
        {"o.spans", {6}}, {"o.form", {2}}, {"o.minMaxValue", {0, 6}},
        {"p.spansUV", {2, 3}}, {"p.degreeUV", {1, 1}}, {"p.spansV", {3}}, {"p.degreeU", {1}}, {"p.formU", {0}},
        {"s.spansUV", {4, 8}}, {"s.formV", {2}}, {"s.formU", {0}}, {"s.minMaxRangeV", {0, 8}},
    };
    for (const auto& c : cases) {
        const std::string shape = std::string("`listRelatives -s ") + c.plug[0] + "`";
        EXPECT_EQ(nums("string $s[] = " + shape + "; getAttr ($s[0] + \"" + (c.plug + 1) + "\")"), c.value) << c.plug;
    }
    mel("setAttr makeNurbCircle1.sections 10");
    EXPECT_EQ(num("getAttr oShape.spans"), 10);
    EXPECT_NE(melError("setAttr oShape.spans 4"), "");
}

TEST_F(Queries, PointsByTheirComponents)
{
    mel("curve -n c -d 1 -p 0 0 0 -p 1 2 3 -p 2 0 0; polyCube -n m; circle -n o");
    EXPECT_EQ(nums("getAttr c.cv[*]"), (List{0, 0, 0, 1, 2, 3, 2, 0, 0}));
    EXPECT_EQ(nums("getAttr c.cv[1]"), (List{1, 2, 3}));
    EXPECT_EQ(nums("getAttr m.vtx[2:3]"), (List{0, 0, 0, 0, 0, 0}));
    mel("move -r 0 1.5 0 m.vtx[3]; move -r 0 0 2 o.cv[1]");   // on top of history
    EXPECT_EQ(nums("getAttr m.vtx[2:3]"), (List{0, 0, 0, 0, 1.5, 0}));
    EXPECT_EQ(nums("getAttr o.cv[0:1]"), (List{0, 0, 0, 0, 0, 2}));
    EXPECT_NE(melError("getAttr c.cv[0].zork"), "");
    EXPECT_NE(melError("getAttr nobody.cv[0]").find("nobody"), std::string::npos);
}

/// Law: every point of a round surface is as far from its axis as its height says, and the box sides face outward.
TEST_F(Queries, RoundMakersAndTheCube)
{
    EXPECT_EQ(strings("cone -n k -ax 0 1 0 -r 2 -hr 1.5 -s 16 -nsp 2"), (std::vector<std::string>{"k", "makeNurbCone1"}));
    mel("torus -n d -ax 0 1 0 -r 3 -hr 0.25 -s 24 -nsp 12");
    const auto surface = [](const char* name) {
        MSelectionList list;
        list.add(name);
        MDagPath path;
        list.getDagPath(0, path);
        return path;
    };
    const MFnNurbsSurface cone(surface("kShape")), torus(surface("dShape"));
    for (int i = 0; i <= 10; ++i)
        for (int j = 0; j < 10; ++j) {
            double u0, u1, v0, v1;
            MPoint p;
            cone.getKnotDomain(u0, u1, v0, v1);
            cone.getPointAtParam(u0 + (u1 - u0) * i / 10, v0 + (v1 - v0) * j / 10, p);
            EXPECT_NEAR(std::hypot(p.x, p.z), (1.5 - p.y) / 3 * 2, 2e-3);   // height 3 about the origin
            torus.getKnotDomain(u0, u1, v0, v1);
            torus.getPointAtParam(u0 + (u1 - u0) * i / 10, v0 + (v1 - v0) * j / 10, p);
            EXPECT_NEAR(std::hypot(std::hypot(p.x, p.z) - 3, p.y), 0.75, 2e-3);
        }
    const std::vector<std::string> made = strings("nurbsCube -n b -ax 0 1 0 -w 2 -lr 2 -hr 3 -d 1 -u 2 -p 1 0 0");
    EXPECT_EQ(made, (std::vector<std::string>{"b", "makeNurbCube1"}));
    EXPECT_EQ(strings("listRelatives -c b"), (std::vector<std::string>{"topb", "bottomb", "leftb", "rightb", "frontb", "backb"}));
    EXPECT_EQ(nums("xform -q -bb b"), (List{0, -3, -2, 2, 3, 2}));
    const MVector outward[] = {{0, 1, 0}, {0, -1, 0}, {-1, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, 0, -1}};
    int side = 0;
    for (const char* name : {"topbShape", "bottombShape", "leftbShape", "rightbShape", "frontbShape", "backbShape"}) {
        const MFnNurbsSurface fn(surface(name));
        MPoint middle;
        fn.getPointAtParam(0.5, 0.5, middle);
        const MVector n = fn.normal(0.5, 0.5);
        EXPECT_TRUE(n.isEquivalent(outward[side], 1e-9)) << name;
        EXPECT_GT((MVector(middle) - MVector(1, 0, 0)) * n, 0) << name;
        ++side;
    }
    mel("nurbsCube -e -hr 1 makeNurbCube1");
    EXPECT_EQ(nums("xform -q -bb b")[4], 1);
    EXPECT_EQ(strings("nurbsCube -ch 0").size(), 1u);
}

TEST_F(Queries, NodesThatMovePoints)
{
    mel("polyCube -n a -ch 1; polyCube -n b -ch 0; createNode transformGeometry -n g; createNode polyTweak -n w;"
        "connectAttr polyCube1.output w.inputPolymesh; connectAttr w.output g.inputGeometry; connectAttr -f g.outputGeometry bShape.inMesh;"
        "setAttr -type \"float3\" w.tk[1] 0 0.5 0; setAttr -type \"float3\" w.tk[99] 1 1 1;"
        "setAttr -type \"matrix\" g.transform 0 2 0 0 -2 0 0 0 0 0 2 0 10 0 0 1");   // a quarter turn about z, twice as large
    // vertex 1 of a cube is (0.5, -0.5, 0.5); moved (0.5, 0, 0.5); then (10 - 2 * 0, 2 * 0.5, 2 * 0.5)
    EXPECT_EQ(nums("xform -q -os -t b.vtx[1]"), (List{10, 1, 1}));
    mel("setAttr g.invertTransform 1");
    EXPECT_EQ(nums("xform -q -os -t b.vtx[1]"), (List{0, 4.75, 0.25}));
    mel("setAttr g.nodeState 1; delete w");   // what goes in comes out; the deleted node leaves its neighbours joined
    EXPECT_EQ(nums("xform -q -os -t b.vtx[1]"), (List{0.5, -0.5, 0.5}));
    EXPECT_EQ(str("connectionInfo -sfd g.inputGeometry"), "polyCube1.output");
}

}  // namespace

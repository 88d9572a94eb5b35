// Plug-ins written against the public interface alone, loaded and driven by commands.
#include <cmath>

#include "../draw/picture.h"
#include "../support/host_fixture.h"
#include "view/scene_draw.h"

namespace {

class Foreign : public mirk::test::Host
{
protected:
    static std::string path(const std::string& plugin) { return std::string(MIRK_FOREIGN_DIR) + "/" + plugin + ".so"; }
    static void load(const std::string& plugin) { mel("loadPlugin -quiet \"" + path(plugin) + "\""); }

    static void near(const std::vector<double>& is, const std::vector<double>& expected, const char* what)
    {
        ASSERT_EQ(is.size(), expected.size()) << what;
        for (size_t i = 0; i < is.size(); ++i)
            EXPECT_NEAR(is[i], expected[i], 1e-6) << what << " " << i;
    }
    static void expectAttr(const std::string& plug, const std::vector<double>& expected)
    {
        near(nums("float $r[] = `getAttr " + plug + "`; $r = $r;"), expected, plug.c_str());
    }
    static void expectPoint(const std::string& point, const std::vector<double>& expected)
    {
        near(nums("float $r[] = `xform -q -ws -t " + point + "`; $r = $r;"), expected, point.c_str());
    }
};

using Strings = std::vector<std::string>;

}  // namespace

TEST_F(Foreign, AttributesOfEveryKind)
{
    load("dial_plugin");
    EXPECT_EQ(str("createNode dial -n d"), "d");
    expectAttr("d.position", {1, 0, 0});
    EXPECT_DOUBLE_EQ(num("getAttr d.size"), 200);   // two metres in centimetres
    EXPECT_DOUBLE_EQ(num("getAttr d.when"), 48);    // two seconds in frames
    EXPECT_EQ(str("getAttr d.label"), "dial");
    EXPECT_EQ(strings("attributeQuery -node d -listEnum mode"), (Strings{"Off:On:Measured=5"}));
    EXPECT_EQ(str("attributeQuery -node d -niceName label"), "The Label");
    EXPECT_EQ(strings("attributeQuery -node d -listChildren keys"), (Strings{"keyValue", "keyAt", "keyName"}));
    EXPECT_EQ(num("attributeQuery -node d -multi flags"), 1);
    EXPECT_EQ(num("attributeQuery -node d -writable outArray"), 0);

    mel("setAttr d.angle 90");
    expectAttr("d.outPosition", {0, 1, 0});
    mel("setAttr d.space -type \"matrix\" 1 0 0 0 0 1 0 0 0 0 1 0 0 0 5 1");
    EXPECT_NEAR(num("getAttr d.outPositionZ"), 5, 1e-12);
    EXPECT_EQ(str("getAttr d.outText"), "dial on");
    mel("setAttr d.mode 5");
    EXPECT_EQ(str("getAttr d.outText"), "dial 2 m");
    mel("setAttr d.time 48");
    EXPECT_DOUBLE_EQ(num("getAttr d.outSeconds"), 2);
    expectAttr("d.outColor", {0.75, 0.5, 0});
    mel("setAttr d.tintR 1");
    EXPECT_DOUBLE_EQ(num("getAttr d.outColorR"), 0);

    EXPECT_FALSE(melError("setAttr d.keys[0].keyValue -1").empty());
    EXPECT_FALSE(melError("setAttr d.outText -type \"string\" \"no\"").empty());
}

TEST_F(Foreign, MultisBuildersAndGenerics)
{
    load("dial_plugin");
    mel("createNode dial -n d; setAttr d.keys[3].keyValue 3; setAttr d.keys[10].keyValue 1; setAttr d.keys[10].keyAt 0.5 0");
    expectAttr("d.outArray", {3, 1.5});
    EXPECT_DOUBLE_EQ(num("getAttr d.outWeights[3]"), 0.75);
    EXPECT_DOUBLE_EQ(num("getAttr d.outWeights[10]"), 0.25);
    mel("setAttr d.keys[3].keyValue 1");
    EXPECT_DOUBLE_EQ(num("getAttr d.outWeights[10]"), 0.5);
    mel("removeMultiInstance d.keys[3]");
    expectAttr("d.outArray", {1.5});
    EXPECT_DOUBLE_EQ(num("getAttr d.outWeights[10]"), 1);

    mel("setAttr d.time 36; createNode dial -n e; connectAttr d.outSeconds e.any");
    EXPECT_DOUBLE_EQ(num("getAttr e.outAny"), 3);
    mel("disconnectAttr d.outSeconds e.any; connectAttr d.label e.any");
    EXPECT_EQ(str("getAttr e.outAny"), "dialdial");
    EXPECT_FALSE(melError("connectAttr -f d.space e.any").empty());

    // a key that was connected goes away with its connection; flags are appended
    mel("connectAttr d.outSeconds e.keys[2].keyValue; connectAttr -na d.flags[0] e.flags; connectAttr -na d.flags[1] e.flags");
    expectAttr("e.outArray", {1.5});
    EXPECT_EQ(num("getAttr -size e.flags"), 2);
    mel("connectAttr d.message e.link");
    EXPECT_EQ(strings("listConnections e.link"), (Strings{"d"}));
}

TEST_F(Foreign, ValuesThatTheNodeKeeps)
{
    load("dial_plugin");
    mel("createNode dial -n d");
    EXPECT_EQ(num("getAttr d.knob"), 1);   // the node's own, not the attribute's default
    mel("setAttr d.knob 5");
    mel("setAttr d.knob 25");
    EXPECT_EQ(num("getAttr d.knob"), 10);
    mel("undo");
    EXPECT_EQ(num("getAttr d.knob"), 5);
    mel("redo; duplicate -n e d");
    EXPECT_EQ(num("getAttr e.knob"), 10);
    mel("connectAttr d.message e.link");
    EXPECT_NE(melError("disconnectAttr d.message e.link").find("refuses"), std::string::npos);
    EXPECT_EQ(num("isConnected d.message e.link"), 1);
    mel("setAttr e.knob 9; disconnectAttr d.message e.link");
    EXPECT_EQ(num("isConnected d.message e.link"), 0);
}

TEST_F(Foreign, MeshMakerAndModifier)
{
    load("mesher_plugin");
    EXPECT_NE(said(mirk::message::kInfo).find("mesher 1.0 by Somebody"), std::string::npos);
    mel("createNode stripMaker -n s; createNode inflate -n i; createNode mesh -n plain; createNode mesh -n fat;"
        "connectAttr s.outMesh plain.inMesh; connectAttr s.outMesh i.inMesh; connectAttr i.outMesh fat.inMesh");
    EXPECT_EQ(num("int $v[] = `polyEvaluate -v fat`; $v[0]"), 6);
    EXPECT_EQ(num("int $v[] = `polyEvaluate -e fat`; $v[0]"), 7);
    EXPECT_DOUBLE_EQ(num("getAttr i.area"), 2);
    EXPECT_EQ(num("getAttr i.border"), 6);
    expectPoint("fat.vtx[5]", {4, 1, 0.5});
    expectPoint("plain.vtx[5]", {2, 1, 0});   // the source is as it was
    near(nums("float $c[] = `polyColorPerVertex -q -rgb fat.vtx[0]`; $c = $c;"), {1, 0, 0}, "corner");
    near(nums("float $c[] = `polyColorPerVertex -q -rgb fat.vtx[2]`; $c = $c;"), {0, 1, 0}, "middle");
    near(nums("float $u[] = `polyEditUV -q fat.map[3]`; $u = $u;"), {10.5, 1}, "UV");
    mel("setAttr s.quads 5; setAttr i.amount 2");
    EXPECT_DOUBLE_EQ(num("getAttr i.area"), 5);
    EXPECT_EQ(num("getAttr i.border"), 12);
    expectPoint("fat.vtx[11]", {10, 1, 2});
    EXPECT_FALSE(melError("setAttr s.quads 0").empty());
}

TEST_F(Foreign, DeformerAndLocator)
{
    load("bender_plugin");
    mel("polyCube -n box; createNode lifter -n l; createNode mesh -n bent; connectAttr polyCube1.output l.input[0].inputGeometry;"
        "connectAttr l.outputGeometry[0] bent.inMesh");
    expectPoint("bent.vtx[0]", {-0.5, 1.5, 0.5});
    mel("setAttr l.envelope 0.5");
    expectPoint("bent.vtx[0]", {-0.5, 0.5, 0.5});
    mel("setAttr l.weightList[0].weights[0] 0.25");
    expectPoint("bent.vtx[0]", {-0.5, -0.25, 0.5});
    expectPoint("bent.vtx[1]", {0.5, 0.5, 0.5});
    mel("setAttr l.nodeState 1");
    expectPoint("bent.vtx[0]", {-0.5, -0.5, 0.5});
    // the handle's y axis turned to -x
    mel("setAttr l.nodeState 0; setAttr l.envelope 1; group -em -n h; setAttr h.rz 90; connectAttr h.worldMatrix[0] l.handle");
    expectPoint("bent.vtx[1]", {-1.5, -0.5, 0.5});
    mel("setAttr polyCube1.subdivisionsWidth 3");
    EXPECT_EQ(num("int $v[] = `polyEvaluate -v bent`; $v[0]"), 16);

    EXPECT_EQ(str("createNode flag -n f"), "f");
    EXPECT_EQ(strings("ls -type locator"), (Strings{"f"}));
    EXPECT_EQ(strings("ls -exactType locator"), (Strings{}));
    EXPECT_EQ(strings("nodeType -inherited f").back(), "flag");
    mel("string $p[] = `listRelatives -p f`; setAttr ($p[0] + \".tx\") 10; setAttr f.size 3");
    near(nums("float $b[] = `xform -q -ws -bb $p[0]`; $b = $b;"), {7, -3, -3, 13, 3, 3}, "box");
}

TEST_F(Foreign, LocatorIsDrawnByItsOverride)
{
    load("bender_plugin");
    mirk::view::SceneDrawOptions options;
    options.camera = picture::flatCamera();
    options.grid = false;
    const picture::Pixel black{0, 0, 0, 255}, red{255, 0, 0, 255};
    mel("createNode flag -n f; setAttr f.size 0.5; select f");   // a filled square of one unit, red while selected
    EXPECT_EQ(picture::at(mirk::view::renderScene(options), 20, 40), red);
    EXPECT_EQ(picture::at(mirk::view::renderScene(options), 8, 40), black);
    mel("select -cl; setAttr f.size 0.9");
    const picture::Pixel dormant = picture::at(mirk::view::renderScene(options), 8, 40);
    EXPECT_FALSE(dormant == black);
    EXPECT_FALSE(dormant == red);
    mel("unloadPlugin -force bender_plugin");
    EXPECT_FALSE(picture::at(mirk::view::renderScene(options), 8, 40) == red);
}

TEST_F(Foreign, UndoableCommand)
{
    load("tally_plugin");
    mel("polyCube -n a; polySphere -n b; select a b");
    EXPECT_EQ(str("rack -place 1 2 3 -tag weight 5 -t size 7 -turn 90 -name shelf"), "shelf");
    EXPECT_EQ(strings("listRelatives -c shelf"), (Strings{"a", "b"}));
    EXPECT_EQ(strings("ls -sl"), (Strings{"shelf"}));
    expectAttr("shelf.t", {1, 2, 3});
    EXPECT_NEAR(num("getAttr shelf.rz"), 90, 1e-9);
    EXPECT_EQ(num("getAttr shelf.weight"), 5);
    EXPECT_EQ(num("getAttr shelf.count"), 2);
    near(nums("float $p[] = `rack -q -place shelf`; $p = $p;"), {1, 2, 3}, "query");
    EXPECT_EQ(num("rack -q"), 2);   // the selection is the default
    EXPECT_EQ(strings("rack -q -tag shelf"), (Strings{"weight", "size", "count"}));

    mel("rack -e -place 4 5 6 -tag later 1 shelf");
    expectAttr("shelf.t", {4, 5, 6});
    mel("undo");
    expectAttr("shelf.t", {1, 2, 3});
    EXPECT_EQ(num("attributeQuery -exists -node shelf later"), 0);
    mel("undo");
    EXPECT_EQ(num("objExists shelf"), 0);
    EXPECT_EQ(strings("ls -sl"), (Strings{"a", "b"}));
    EXPECT_EQ(strings("ls -l a"), (Strings{"|a"}));
    mel("redo; redo");
    expectAttr("shelf.t", {4, 5, 6});
    EXPECT_EQ(num("getAttr shelf.later"), 1);
    EXPECT_EQ(strings("ls -l b"), (Strings{"|shelf|b"}));

    EXPECT_FALSE(melError("rack -place 1 2").empty());
    EXPECT_FALSE(melError("rack -tag 3 x").empty());
    EXPECT_FALSE(melError("rack -nonsense").empty());
    EXPECT_FALSE(melError("rack -e nobody").empty());
    EXPECT_EQ((py("import maya.cmds as c"), py("c.rack('shelf', q=True, n=True)").asString()), "shelf");
    EXPECT_EQ(py("c.rack('a', place=(0, 0, 7), tag=[('first', 1), ('second', 2)])").asString(), "rack");
    expectAttr("rack.t", {0, 0, 7});
    EXPECT_EQ(num("getAttr rack.second"), 2);
}

TEST_F(Foreign, CommandThatWalksTheScene)
{
    load("tally_plugin");
    load("mesher_plugin");
    mel("polyCube -n a; group -n g a; createNode stripMaker; createNode inflate; createNode inflate; connectAttr stripMaker1.outMesh inflate1.inMesh;"
        "connectAttr inflate1.outMesh inflate2.inMesh");
    EXPECT_EQ(strings("tally shapes"), (Strings{"|g|a|aShape 8"}));
    EXPECT_EQ(strings("tally downstream stripMaker1"), (Strings{"stripMaker1", "inflate1", "inflate2"}));
    EXPECT_EQ(strings("tally upstream inflate2"), (Strings{"inflate2", "inflate1", "stripMaker1"}));
    EXPECT_EQ(strings("tally nodes"), (Strings{"inflate 2", "stripMaker 1"}));
    EXPECT_DOUBLE_EQ(num("tally -sum 1 2 3.5"), 6.5);
    mel("select a.vtx[2:4]");
    EXPECT_EQ(nums("int $c[] = `tally components`; float $f[] = $c; $f = $f;"), (std::vector<double>{2, 3, 4}));
    EXPECT_NE(melError("tally wishes").find("wishes"), std::string::npos);
    EXPECT_FALSE(melError("tally").empty());
}

TEST_F(Foreign, CurvesOwnDataAndConnections)
{
    load("weave_plugin");
    mel("curve -d 1 -p 0 0 0 -p 2 4 0 -n c; createNode curveCutter -n w; createNode sampleSum -n s;"
        "string $sh[] = `listRelatives -s c`; connectAttr ($sh[0] + \".worldSpace[0]\") w.inCurve; connectAttr w.outSamples s.in");
    EXPECT_EQ(num("getAttr w.made"), 1);
    EXPECT_DOUBLE_EQ(num("getAttr s.out"), 6);    // 0 + 2 + 4
    mel("setAttr w.count 5; setAttr s.repeat 20");
    EXPECT_DOUBLE_EQ(num("getAttr s.out"), 200);  // 20 (0 + 1 + 2 + 3 + 4)
    mel("createNode nurbsCurve -n moved; connectAttr w.outCurve moved.create; setAttr w.offset 1 0 0; setAttr c.ty 1");
    expectPoint("moved.cv[0]", {1, 1, 0});
    expectPoint("moved.cv[1]", {3, 5, 0});
    EXPECT_DOUBLE_EQ(num("getAttr s.out"), 200);  // in the curve's own space

    EXPECT_DOUBLE_EQ(num("getAttr w.outLazy"), 3);
    mel("setAttr w.lazy 2");
    EXPECT_DOUBLE_EQ(num("getAttr w.outLazy"), 6);

    EXPECT_FALSE(melError("connectAttr w.lazy w.count").empty());
    EXPECT_FALSE(melError("connectAttr -f w.outPoints s.in").empty());
    mel("createNode curveCutter -n v; setAttr v.made 4; connectAttr v.made w.count");
    EXPECT_NEAR(num("getAttr s.out"), 20 * (0 + 4.0 / 3 + 8.0 / 3 + 4), 1e-9);
    mel("disconnectAttr ($sh[0] + \".worldSpace[0]\") w.inCurve");
    EXPECT_EQ(num("getAttr w.made"), 0);

    mel("nurbsPlane -ax 0 1 0 -w 2 -n p; string $ps[] = `listRelatives -s p`; connectAttr ($ps[0] + \".local\") v.onSurface; setAttr v.count 3");
    const std::vector<double> points = nums("float $r[] = `getAttr v.outPoints`; $r = $r;");
    ASSERT_EQ(points.size() % 3, 0u);
    ASSERT_GE(points.size(), 9u);
    const size_t width = points.size() / 3;
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(std::hypot(points[i * width], points[i * width + 2]), i == 1 ? 0 : 1, 1e-9);
}

TEST_F(Foreign, UnloadAndReload)
{
    load("weave_plugin");
    EXPECT_EQ(num("pluginInfo -q -loaded weave_plugin"), 1);
    EXPECT_EQ(str("pluginInfo -q -vendor weave_plugin"), "Somebody");
    EXPECT_EQ(strings("pluginInfo -q -dependNode weave_plugin"), (Strings{"curveCutter", "sampleSum"}));
    mel("createNode curveCutter -n w; createNode sampleSum -n s; connectAttr w.outSamples s.in; setAttr w.lazy 7; setAttr s.repeat 3");
    EXPECT_NE(melError("unloadPlugin weave_plugin").find("weave_plugin"), std::string::npos);
    EXPECT_EQ(num("pluginInfo -q -loaded weave_plugin"), 1);
    EXPECT_EQ(str("nodeType w"), "curveCutter");

    mel("unloadPlugin -force weave_plugin");
    EXPECT_EQ(num("pluginInfo -q -loaded weave_plugin"), 0);
    EXPECT_EQ(str("nodeType w"), "unknown");
    EXPECT_FALSE(melError("createNode curveCutter").empty());
    EXPECT_DOUBLE_EQ(num("getAttr w.lazy"), 7);
    EXPECT_EQ(num("isConnected w.outSamples s.in"), 1);
    const std::string saved = file("kept.ma");
    mel("file -rename \"" + saved + "\"; file -save -type \"mayaAscii\"");

    messages.clear();
    load("weave_plugin");
    EXPECT_EQ(str("nodeType w"), "unknown");   // until the scene is opened again, which loading says
    EXPECT_NE(said(mirk::message::Kind::kWarning).find("2 unknown nodes ('w'"), std::string::npos);
    mel("file -f -o \"" + saved + "\"");
    EXPECT_EQ(str("nodeType w"), "curveCutter");
    EXPECT_DOUBLE_EQ(num("getAttr w.lazy"), 7);
    EXPECT_EQ(num("getAttr s.repeat"), 3);
    EXPECT_EQ(num("isConnected w.outSamples s.in"), 1);
    EXPECT_DOUBLE_EQ(num("getAttr w.outLazy"), 21);
    mel("file -f -new; unloadPlugin weave_plugin");
    EXPECT_FALSE(melError("createNode sampleSum").empty());

    // commands and draw overrides come and go as well
    load("tally_plugin");
    mel("unloadPlugin tally_plugin");
    EXPECT_FALSE(melError("tally nodes").empty());
    load("tally_plugin");
    EXPECT_DOUBLE_EQ(num("tally -sum 1 1"), 2);
    for (int i = 0; i < 2; ++i) {
        load("bender_plugin");
        mel("createNode flag; file -f -new; unloadPlugin bender_plugin");
    }
    EXPECT_FALSE(melError("loadPlugin \"" + file("nowhere.so") + "\"").empty());
}

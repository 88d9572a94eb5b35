// polyCut and polyCloseBorder as nodes and commands.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class PolyCut : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("polyCube -n c -w 2 -h 2 -d 2");
    }
    std::vector<double> box(const char* name = "c") { return nums(std::string("polyEvaluate -boundingBox ") + name); }
    /// xmin xmax ymin ymax zmin zmax, within rounding.
    void expectBox(const std::vector<double>& expected, const char* what)
    {
        const std::vector<double> got = box();
        ASSERT_EQ(got.size(), 6u) << what;
        for (size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(got[i], expected[i], 1e-6) << what << i;
    }
};

TEST_F(PolyCut, NodesInAChain)
{
    mel("createNode polyCut -n p; connectAttr cShape.outMesh p.inputPolymesh; setAttr p.deleteFaces 1;"
        "setAttr -type componentList p.inputComponents 1 \"f[*]\";"
        "createNode polyCloseBorder -n b; connectAttr p.output b.inputPolymesh; setAttr -type componentList b.inputComponents 1 \"e[*]\";"
        "createNode mesh -n o; connectAttr b.output o.inMesh");
    struct Case { const char* rotate; std::vector<double> box; };
    const Case cases[] = {
        {"0 0 0", {-1, 1, -1, 1, 0, 1}},    // keeps what lies along the plane's z
        {"0 90 0", {0, 1, -1, 1, -1, 1}},
        {"-90 0 0", {-1, 1, 0, 1, -1, 1}},
        {"-90 0 90", {-1, 0, -1, 1, -1, 1}},   // x before z
        {"180 0 0", {-1, 1, -1, 1, -1, 0}},
    };
    for (const Case& c : cases) {
        mel(std::string("setAttr p.cutPlaneRotate ") + c.rotate);
        const std::vector<double> got = box("o");
        for (size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(got[i], c.box[i], 1e-6) << c.rotate << " " << i;
        EXPECT_EQ(mel("polyEvaluate -v -e -f o").asInts(), (command::Ints{8, 12, 6})) << c.rotate;
    }
    mel("currentUnit -linear m; setAttr p.cutPlaneRotate 0 0 0; setAttr p.cutPlaneCenterZ 0.005");   // half a centimetre
    EXPECT_NEAR(num("getAttr o.boundingBoxMinZ") * 100, 0.5, 1e-6);
    mel("currentUnit -linear cm; setAttr p.cutPlaneCenterZ 3");
    EXPECT_EQ(mel("polyEvaluate -v -e -f o").asInts(), (command::Ints{0, 0, 0}));
    mel("setAttr p.nodeState 1");
    EXPECT_EQ(num("polyEvaluate -f o"), 6);
    EXPECT_EQ(num("getAttr p.extractOffsetY"), 0.5);
    EXPECT_EQ(nums("getAttr p.cutPlaneSize"), (std::vector<double>{1, 1}));
}

TEST_F(PolyCut, ChosenFacesOrTheObject)
{
    mel("createNode polyCut -n p; connectAttr cShape.outMesh p.inputPolymesh; createNode mesh -n o; connectAttr p.output o.inMesh;"
        "setAttr p.cutPlaneRotate 0 90 0");
    EXPECT_EQ(num("polyEvaluate -f o"), 10);   // none named: all
    mel("setAttr -type componentList p.inputComponents 1 \"f[0:1]\"");
    EXPECT_EQ(num("polyEvaluate -f o"), 8);
    mel("setAttr -type componentList p.inputComponents 0");
    EXPECT_EQ(num("polyEvaluate -f o"), 6);
    mel("setAttr p.onObject 1");
    EXPECT_EQ(num("polyEvaluate -f o"), 10);
}

TEST_F(PolyCut, CommandsEditQueryAndUndo)
{
    EXPECT_EQ(str("polyCut -df 1 -pc 0 0.5 0 -ro -90 0 0 c"), "polyCut1");
    expectBox({-1, 1, 0.5, 1, -1, 1}, "cut");
    EXPECT_EQ(nums("polyCut -q -pc c"), (std::vector<double>{0, 0.5, 0}));
    EXPECT_NEAR(num("polyCut -q -rx polyCut1"), -90, 1e-9);
    mel("polyCut -e -pcy -0.5 c");
    expectBox({-1, 1, -0.5, 1, -1, 1}, "edited");
    EXPECT_EQ(str("polyCloseBorder c"), "polyCloseBorder1");
    EXPECT_EQ(num("polyEvaluate -f c"), 6);
    mel("undo; undo; undo");
    expectBox({-1, 1, -1, 1, -1, 1}, "undone");
    EXPECT_NE(melError("polyCut -e -pcy 1 c").find("polyCut"), std::string::npos);
    EXPECT_NE(melError("polyCut -cd w c").find("'w'"), std::string::npos);
    EXPECT_FALSE(num("objExists polyCut1"));
}

TEST_F(PolyCut, StoredMeshesAndDirections)
{
    mel("delete -ch c");
    EXPECT_TRUE(mel("polyCut -ch 0 -cd \"x\" -df 1 c").isNone());
    expectBox({0, 1, -1, 1, -1, 1}, "x");
    mel("polyCut -ch 0 -cd \"ry\" -df 1 c");
    expectBox({0, 1, -1, 0, -1, 1}, "ry");
    EXPECT_EQ(num("polyEvaluate -f c"), 4);
    mel("polyCloseBorder -ch 0 c");
    EXPECT_EQ(num("polyEvaluate -f c"), 5);   // both cuts left one hole: a loop around two sides
    mel("undo");
    EXPECT_EQ(num("polyEvaluate -f c"), 4);
    mel("undo; undo; polyCut -ch 0 -ef 1 -eo 0 -4 0 -cd \"y\" c");
    expectBox({-1, 1, -5, 1, -1, 1}, "moved apart");
}

TEST_F(PolyCut, WorldSpace)
{
    mel("xform -t 10 0 0 -ro 0 90 0 -s 1 1 2 c; polyCut -ws 1 -df 1 -pc 11 0 0 -ro 0 90 0 c");   // keeps x > 11 in the world
    const std::vector<double> world = nums("exactWorldBoundingBox c");
    EXPECT_NEAR(world[0], 11, 1e-5);
    EXPECT_NEAR(world[3], 12, 1e-5);
    mel("setAttr c.tx 20; polyCut -e -pcx 20 c");
    EXPECT_NEAR(nums("exactWorldBoundingBox c")[0], 20, 1e-5);
    mel("polyCut -e -df 0 -ef 1 -eo -5 0 0 c");   // the offset too
    EXPECT_NEAR(nums("exactWorldBoundingBox c")[0], 13, 1e-5);
    mel("setAttr c.sy 0");   // no way back from the world: nothing is cut
    EXPECT_EQ(num("polyEvaluate -f c"), 6);
}

TEST_F(PolyCut, ScenesKeepIt)
{
    mel("polyCut -df 1 -ro 0 90 0 -n keep c; polyCloseBorder c");
    const std::filesystem::path file = std::filesystem::temp_directory_path() / ("cut" + std::to_string(::getpid()) + ".ma");
    mel("file -rename \"" + file.string() + "\"; file -save -type mayaAscii; file -f -new; file -f -o \"" + file.string() + "\"");
    expectBox({0, 1, -1, 1, -1, 1}, "read back");
    EXPECT_EQ(num("polyEvaluate -f c"), 6);
    std::filesystem::remove(file);
}

}  // namespace
}  // namespace mirk::test

// Commands on polygon objects and curves.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class MeshCommands : public Host
{
protected:
    //  3---2
    //  |   |   one square in the xy plane
    //  0---1
    void SetUp() override
    {
        Host::SetUp();
        mel("polyCreateFacet -n q -p 0 0 0 -p 1 0 0 -p 1 1 0 -p 0 1 0");
    }
};

TEST_F(MeshCommands, CountsAndConnectivity)
{
    EXPECT_EQ(mel("polyEvaluate -v -e -f -t q").asInts(), (command::Ints{4, 4, 1, 2}));
    EXPECT_DOUBLE_EQ(num("setAttr q.sx 3; polyEvaluate -worldArea q"), 3);
    EXPECT_EQ(str("polyInfo -fv q"), "FACE       0:      0      1      2      3 \n");
    EXPECT_EQ(num("polyEvaluate -shell q"), 1);
}

TEST_F(MeshCommands, PointsMoveAndComeBack)
{
    mel("move -r 0 0 2 q.vtx[1:2]; scale -p 0 0 0 1 3 1 q.vtx[2]");
    EXPECT_EQ(nums("xform -q -ws -t q.vtx[0:3]"), (std::vector<double>{0, 0, 0, 1, 0, 2, 1, 3, 2, 0, 1, 0}));
    mel("undo; undo");
    EXPECT_EQ(nums("xform -q -ws -t q.vtx[2]"), (std::vector<double>{1, 1, 0}));
    mel("setAttr q.t 0 0 7; xform -ws -t 5 5 5 q.vtx[0]");
    EXPECT_EQ(nums("xform -q -os -t q.vtx[0]"), (std::vector<double>{5, 5, -2}));
    EXPECT_NE(melError("move 1 1 1 q.vtx[9]").find("q.vtx[9]"), std::string::npos);
}

TEST_F(MeshCommands, ColoursSetsAndUndo)
{
    mel("polyColorPerVertex -rgb 1 0.5 0 q.vtx[0:1]");
    EXPECT_EQ(nums("polyColorPerVertex -q -rgb q.vtx[1:2]"), (std::vector<double>{1, 0.5, 0, -1, -1, -1}));
    mel("polyColorSet -create -colorSet second q; polyColorSet -currentColorSet -colorSet second q; polyColorPerVertex -r 1 -g 1 -b 1 -a 0.5 q");
    EXPECT_EQ(strings("polyColorSet -q -allColorSets q"), (std::vector<std::string>{"colorSet1", "second"}));
    EXPECT_EQ(nums("polyColorPerVertex -q -a q.vtx[3]"), std::vector<double>{0.5});
    mel("undo");
    EXPECT_EQ(nums("polyColorPerVertex -q -a q.vtx[3]"), std::vector<double>{-1});
    EXPECT_NE(melError("polyColorSet -delete -colorSet nobody q").find("nobody"), std::string::npos);
}

TEST_F(MeshCommands, UVsNormalsAndEdges)
{
    mel("polyEditUV -u 0.5 -v 0.25 q.map[2]");
    EXPECT_EQ(nums("polyEditUV -q q.map[2]"), (std::vector<double>{1.5, 1.25}));
    mel("polyUVSet -create -uvSet other q");
    EXPECT_EQ(strings("polyUVSet -q -allUVSets q"), (std::vector<std::string>{"map1", "other"}));
    mel("polyNormalPerVertex -xyz 1 0 0 q.vtx[0]");
    EXPECT_EQ(nums("polyNormalPerVertex -q -xyz q.vtx[0:1]"), (std::vector<double>{1, 0, 0, 0, 0, 1}));
    mel("polyNormalPerVertex -ufn true q.vtx[0]");
    EXPECT_EQ(nums("polyNormalPerVertex -q -xyz q.vtx[0]"), (std::vector<double>{0, 0, 1}));
}

TEST_F(MeshCommands, CurvesAndSurfaces)
{
    mel("curve -n c -d 1 -p 0 0 0 -p 1 2 3 -p 4 5 6 -k 0 -k 1 -k 2");
    EXPECT_EQ(nums("xform -q -ws -t c.cv[1:2]"), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    mel("move -r 1 0 0 c.cv[*]");
    EXPECT_EQ(nums("xform -q -ws -t c.cv[0]"), (std::vector<double>{1, 0, 0}));
    EXPECT_NE(melError("curve -d 3 -p 0 0 0 -p 1 1 1").find("curve"), std::string::npos);
    mel("surface -n s -du 1 -dv 1 -ku 0 -ku 1 -kv 0 -kv 1 -p 0 0 0 -p 0 0 1 -p 1 0 0 -p 1 0 1");
    EXPECT_EQ(nums("xform -q -ws -t s.cv[1][0]"), (std::vector<double>{1, 0, 0})) << "V runs fastest";
}

}  // namespace
}  // namespace mirk::test

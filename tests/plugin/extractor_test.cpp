// The extractor through the graph: which mesh, shell or face a number gives, and what the piece keeps.
#include "copier_scene.h"
#include "generators/pieces.h"

using namespace scene;
using Extractor = scene::Test;

namespace {

/// A kite and apart from it, further in the point list but first in the face list, a triangle.
Shape kiteAndTriangle()
{
    Shape shape = kite();
    for (const MPoint& p : triangle().points)
        shape.points.push_back(p);
    shape.counts = {3, 3, 3};
    shape.connects = {4, 5, 6, 0, 1, 2, 2, 1, 3};
    shape.uvs = {0, 0, .1f, 0, .2f, 0, .3f, 0, .4f, 0};
    shape.uvIds = {4, 3, 2, 0, 1, 2, 2, 1, 3};
    for (int i = 0; i < 9; ++i)
        shape.colors.push_back(MColor(0.1f * float(i), 0, 0, 1));
    shape.hardEdges = {0, 4};   // of the triangle; between the faces of the kite
    return shape;
}

} // namespace

TEST_F(Extractor, WhatANumberGives)
{
    struct Case { const char* when; int mode, outOfRange, index, points, count; };
    const Case cases[] = {
        {"the second mesh", 0, 0, 1, 3, 3},          {"clamped above", 0, 0, 9, 7, 3},       {"clamped below", 0, 0, -9, 4, 3},
        {"wrapped above", 0, 1, 4, 3, 3},            {"wrapped below", 0, 1, -1, 7, 3},      {"none", 0, 2, 3, 0, 3},
        {"the first shell of the first mesh", 1, 0, 0, 4, 1}, {"no second shell", 1, 2, 1, 0, 1},
        {"its second face", 2, 0, 1, 3, 2},          {"wrapped faces", 2, 1, -2147483647 - 1, 3, 2},
    };
    run("createNode extractor -name e");
    giveMesh("e.inMesh[0]", kite());
    giveMesh("e.inMesh[2]", triangle());
    giveMesh("e.inMesh[5]", kiteAndTriangle());
    for (const Case& c : cases) {
        run("setAttr e.mode " + std::to_string(c.mode) + "; setAttr e.outOfRange " + std::to_string(c.outOfRange)
            + "; setAttr e.index " + std::to_string(c.index));
        EXPECT_EQ(int(points("e.outMesh").size()), c.points) << c.when;
        EXPECT_EQ(plug("e.outCount").asInt(), c.count) << c.when;
    }
    run("setAttr e.mode 2; setAttr e.envelope 0");
    EXPECT_EQ(points("e.outMesh").size(), 4u);                     // off: the first mesh
    run("setAttr e.envelope 1; setAttr e.nodeState 1");
    EXPECT_EQ(points("e.outMesh").size(), 4u);
    run("file -force -new; createNode extractor -name e");
    EXPECT_TRUE(points("e.outMesh").empty());
    EXPECT_EQ(plug("e.outMesh").asMObject().apiType(), MFn::kMeshData);
}

TEST_F(Extractor, PiecesKeepWhatHangsOnThem)
{
    run("createNode extractor -name e; setAttr e.mode 1");
    const std::string source = giveMesh("e.inMesh[0]", kiteAndTriangle());
    expectValues(xyz("e.outMesh"), {1, 0, 0, 0, 2, 0, 0, 0, 3}, "the triangle has the first face");
    EXPECT_EQ(hardEdges("e.outMesh"), std::vector<int>{0});
    expectValues(cornerUVs("e.outMesh"), {.4, 0, .3, 0, .2, 0}, "UVs");
    run("setAttr e.index 1");
    expectValues(xyz("e.outMesh"), {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0}, "the kite");
    EXPECT_EQ(hardEdges("e.outMesh"), std::vector<int>{1});
    expectValues(cornerUVs("e.outMesh"), {0, 0, .1, 0, .2, 0, .2, 0, .1, 0, .3, 0}, "UVs");
    expectValues(cornerColors("e.outMesh", "paint"), {.3, 0, 0, 1, .4, 0, 0, 1, .5, 0, 0, 1, .6, 0, 0, 1, .7, 0, 0, 1, .8, 0, 0, 1},
                 "colours");
    // the shells that are kept follow the faces, and the points are read anew
    Shape moved = kiteAndTriangle();
    moved.points[0] = MPoint(0, 0, 9);
    plug(source + ".m").setMObject(meshData(moved));
    EXPECT_EQ(points("e.outMesh").at(0).z, 9);
    plug(source + ".m").setMObject(meshData(kite()));
    EXPECT_EQ(plug("e.outCount").asInt(), 1);
}

TEST(Pieces, ShellsOf)
{
    // a strip whose faces come in an order that joins shells late: 0-1, 4-5, 2-3, then 1-2 in one face
    const int            counts[] = {3, 3, 3, 3}, connects[] = {0, 1, 1, 4, 5, 5, 2, 3, 3, 3, 1, 2};
    const pieces::Shells shells = pieces::shellsOf(counts, 4, connects, 7);
    EXPECT_EQ(shells.first, (std::vector<int>{0, 3, 4}));
    EXPECT_EQ(shells.faces, (std::vector<int>{0, 2, 3, 1}));
    EXPECT_EQ(pieces::shellsOf(counts, 0, connects, 3).count(), 0);
}

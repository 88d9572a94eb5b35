#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MItMeshVertex.h>
#include <maya/MStringArray.h>

#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

MColorArray colorsOf(const std::vector<MColor>& v) { return MColorArray(v.data(), unsigned(v.size())); }

MColorArray vertexColors(const MFnMesh& fn, const MColor* unset = nullptr)
{
    MColorArray colors;
    EXPECT_TRUE(fn.getVertexColors(colors, nullptr, unset));
    return colors;
}

MColorArray cornerColors(const MFnMesh& fn)
{
    MColorArray colors;
    EXPECT_TRUE(fn.getFaceVertexColors(colors));
    return colors;
}

/// Color of the iterator at a vertex.
MColor atVertex(const MObject& mesh, int vertex, const MString* set = nullptr)
{
    MItMeshVertex it(mesh);
    int previous;
    it.setIndex(vertex, previous);
    MColor c;
    EXPECT_TRUE(it.getColor(c, set));
    return c;
}

const MColor red(1, 0, 0, 1), green(0, 1, 0, 0.5f);

}  // namespace

TEST(MeshColors, AMeshWithoutASetHasNone)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    EXPECT_EQ(fn.numColorSets(), 0);
    EXPECT_EQ(vertexColors(fn).length(), 0u);
    EXPECT_EQ(cornerColors(fn).length(), 0u);
    expectColor(atVertex(mesh, 0), -1, -1, -1, -1);
    MColorArray colors;
    MString none("none");
    EXPECT_EQ(fn.getVertexColors(colors, &none), MS::kInvalidParameter);
    EXPECT_EQ(fn.currentColorSetName(), MString());
}

TEST(MeshColors, FirstVertexColorsMakeASet)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    MColorArray colors = colorsOf({red, green});
    MIntArray vertices = ints({1, 4});
    ASSERT_TRUE(fn.setVertexColors(colors, vertices));
    EXPECT_EQ(fn.currentColorSetName(), MString("colorSet1"));
    const MColorArray all = vertexColors(fn);
    ASSERT_EQ(all.length(), 6u);
    expectColor(all[1], 1, 0, 0, 1, "set");
    expectColor(all[4], 0, 1, 0, 0.5f, "alpha is kept");
    expectColor(all[0], -1, -1, -1, -1, "unset");
    const MColor black(0, 0, 0, 1);
    expectColor(vertexColors(fn, &black)[0], 0, 0, 0, 1, "unset as asked for");
    const MColorArray corners = cornerColors(fn);   // 0 1 4 3, 1 2 5 4
    expectColor(corners[0], -1, -1, -1, -1);
    expectColor(corners[1], 1, 0, 0, 1);
    expectColor(corners[4], 1, 0, 0, 1);

    colors = colorsOf({unsetColor});
    vertices = ints({1});
    fn.setVertexColors(colors, vertices);
    expectColor(atVertex(mesh, 1), -1, -1, -1, -1, "-1 takes a colour away");
}

TEST(MeshColors, AVertexIsTheMeanOfTheCornersThatAreSet)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    MColor c = red;
    ASSERT_TRUE(fn.setFaceColor(c, 0));
    expectColor(vertexColors(fn)[1], 1, 0, 0, 1, "one of two faces");
    expectColor(vertexColors(fn)[2], -1, -1, -1, -1, "none");
    const MColorArray corners = cornerColors(fn);
    expectColor(corners[4], 0, 0, 0, 1, "unset corner of a coloured vertex");
    expectColor(corners[5], -1, -1, -1, -1, "unset corner of an uncoloured vertex");

    MItMeshVertex it(mesh);
    int previous;
    it.setIndex(1, previous);
    MColorArray here;
    it.getColors(here);
    expectColor(here[0], 1, 0, 0, 1);
    expectColor(here[1], 0, 0, 0, 1, "partly set");
    it.setIndex(2, previous);
    it.getColors(here);
    expectColor(here[0], -1, -1, -1, 1, "none");
    EXPECT_FALSE(it.hasColor());

    c = MColor(0, 0.5f, 0, 0);
    fn.setFaceColor(c, 1);
    expectColor(vertexColors(fn)[1], 0.5f, 0.25f, 0, 0.5f, "mean of two");
    c = green;
    fn.setVertexColor(c, 1);
    expectColor(cornerColors(fn)[1], 0, 1, 0, 0.5f, "a vertex colour reaches all corners");
    expectColor(cornerColors(fn)[4], 0, 1, 0, 0.5f);
    expectColor(cornerColors(fn)[0], 1, 0, 0, 1, "others stay");
}

TEST(MeshColors, TableAndIds)
{
    MFnMesh fn(twoQuads());
    MString name("wear");
    ASSERT_TRUE(fn.createColorSetDataMesh(name, true, MFnMesh::kRGB));
    EXPECT_EQ(fn.currentColorSetName(), MString("wear"));
    EXPECT_EQ(fn.getColorRepresentation(name), MFnMesh::kRGB);
    ASSERT_TRUE(fn.setColors(colorsOf({red, green}), &name));
    ASSERT_TRUE(fn.assignColors(ints({0, 0, 1, -1, 1, 1, 1, 1}), &name));
    EXPECT_EQ(fn.numColors(), 2);
    expectColor(vertexColors(fn)[0], 1, 0, 0, 1);
    expectColor(vertexColors(fn)[1], 0.5f, 0.5f, 0, 0.75f);
    int id;
    fn.getColorIndex(0, 3, id, &name);
    EXPECT_EQ(id, -1);
    ASSERT_TRUE(fn.assignColor(0, 3, 1, &name));
    expectColor(vertexColors(fn)[3], 0, 1, 0, 0.5f);

    EXPECT_EQ(fn.setColors(colorsOf({red}), &name), MS::kFailure) << "shorter than the table";
    EXPECT_EQ(fn.assignColors(ints({0, 0, 1}), &name), MS::kInvalidParameter) << "not one a corner";
    EXPECT_EQ(fn.assignColors(ints({0, 0, 2, 0, 0, 0, 0, 0}), &name), MS::kInvalidParameter) << "past the table";
    expectColor(vertexColors(fn)[3], 0, 1, 0, 0.5f, "unchanged");

    MString again("wear");
    fn.createColorSetDataMesh(again);
    EXPECT_EQ(again, MString("wear1"));
    EXPECT_EQ(fn.currentColorSetName(), name);
    fn.setCurrentColorSetName(again);
    ASSERT_TRUE(fn.deleteColorSet(name));
    EXPECT_EQ(fn.currentColorSetName(), again);
    EXPECT_EQ(fn.numColorSets(), 1);
}

TEST(MeshColors, BadIdsChangeNothing)
{
    MFnMesh fn(twoQuads());
    MColorArray two = colorsOf({red, green});
    MIntArray past = ints({0, 6}), one = ints({0}), corner = ints({0, 5});
    EXPECT_EQ(fn.setVertexColors(two, past), MS::kInvalidParameter);
    EXPECT_EQ(fn.setVertexColors(two, one), MS::kInvalidParameter);
    EXPECT_EQ(fn.setFaceColors(two, past), MS::kInvalidParameter);
    MIntArray faces = ints({0, 0});
    EXPECT_EQ(fn.setFaceVertexColors(two, faces, corner), MS::kInvalidParameter) << "vertex 5 is not in face 0";
    EXPECT_EQ(fn.numColorSets(), 0);
}

TEST(MeshUVs, TableFirstThenAssignment)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    EXPECT_EQ(fn.currentUVSetName(), MString("map1"));
    EXPECT_EQ(fn.numUVs(), 0);
    const float us[] = {0, 1, 2, 3}, vs[] = {0, 0.5f, 1, 1.5f};
    ASSERT_TRUE(fn.setUVs(MFloatArray(us, 4), MFloatArray(vs, 4)));
    EXPECT_EQ(fn.setUVs(MFloatArray(us, 3), MFloatArray(vs, 3)), MS::kFailure) << "never shorter";
    EXPECT_EQ(fn.setUVs(MFloatArray(us, 4), MFloatArray(vs, 3)), MS::kInvalidParameter);
    float u, v;
    EXPECT_EQ(fn.getPolygonUV(0, 0, u, v), MS::kFailure) << "not assigned yet";
    ASSERT_TRUE(fn.assignUVs(ints({0, 4}), ints({3, 2, 1, 0})));
    ASSERT_TRUE(fn.getPolygonUV(1, 1, u, v));
    EXPECT_EQ(u, 2);
    EXPECT_EQ(v, 1);
    MIntArray counts, ids;
    fn.getAssignedUVs(counts, ids);
    EXPECT_EQ(list(counts), (std::vector<int>{0, 4}));
    EXPECT_EQ(list(ids), (std::vector<int>{3, 2, 1, 0}));

    struct Case { const char* what; std::vector<int> counts, ids; };
    const Case bad[] = {
        {"counts not one a face", {4}, {0, 1, 2, 3}},
        {"wrong face size", {3, 0}, {0, 1, 2}},
        {"ids missing", {4, 4}, {0, 1, 2, 3}},
        {"ids left over", {4, 0}, {0, 1, 2, 3, 0}},
        {"id past the table", {4, 0}, {0, 1, 2, 4}},
    };
    for (const Case& c : bad) {
        EXPECT_EQ(fn.assignUVs(ints(c.counts), ints(c.ids)), MS::kInvalidParameter) << c.what;
        fn.getAssignedUVs(counts, ids);
        EXPECT_EQ(list(ids), (std::vector<int>{3, 2, 1, 0})) << c.what;
    }
}

TEST(MeshUVs, OfAVertexOnASeam)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    fn.setUVs(MFloatArray(8, 0.25f), MFloatArray(8, 0.5f));
    fn.setUV(1, 1, 2);
    fn.setUV(6, 3, 4);
    fn.assignUVs(ints({4, 4}), ints({0, 1, 4, 3, 6, 2, 5, 4}));   // vertex 1 has UVs 1 and 6, vertex 4 has 4 twice
    MItMeshVertex it(mesh);
    int previous, count;
    MIntArray ids, faces;
    MFloatArray u, v;
    it.setIndex(1, previous);
    it.numUVs(count);
    EXPECT_EQ(count, 2);
    it.getUVIndices(ids);
    EXPECT_EQ(list(ids), (std::vector<int>{1, 6}));
    it.getUVs(u, v, faces);
    EXPECT_EQ(list(faces), (std::vector<int>{0, 1}));
    EXPECT_EQ(u[1], 3);
    float2 uv;
    it.getUV(1, uv);
    EXPECT_EQ(uv[1], 4);
    it.setIndex(4, previous);
    it.numUVs(count);
    EXPECT_EQ(count, 1);
    it.getUVs(u, v, faces);
    EXPECT_EQ(faces.length(), 2u) << "one a face";

    MIntArray shells;
    unsigned shellCount = 0;
    ASSERT_TRUE(fn.getUvShellsIds(shells, shellCount));
    EXPECT_EQ(shellCount, 2u) << "all but the unused UV 7 hang together through UV 4";
    EXPECT_EQ(list(shells), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(MeshUVs, Sets)
{
    MFnMesh fn(dataOf(primitives::plane(1, 1, 1, 1)));
    MString name("map1");
    ASSERT_TRUE(fn.createUVSetDataMesh(name));
    EXPECT_EQ(name, MString("map11"));
    EXPECT_EQ(fn.numUVs(name), 0);
    EXPECT_EQ(fn.numUVs(), 4) << "the current one stays";
    ASSERT_TRUE(fn.renameUVSet(name, "second"));
    EXPECT_EQ(fn.renameUVSet("second", "map1"), MS::kInvalidParameter);
    fn.setCurrentUVSetName("second");
    EXPECT_EQ(fn.numUVs(), 0);
    ASSERT_TRUE(fn.deleteUVSet("second"));
    EXPECT_EQ(fn.currentUVSetName(), MString("map1"));
    EXPECT_NE(fn.deleteUVSet("map1"), MS::kSuccess);
}

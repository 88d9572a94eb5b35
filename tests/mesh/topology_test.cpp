#include <random>
#include <set>

#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

/// Volume inside, positive for faces that run counter-clockwise as seen from outside.
double signedVolume(const MeshBody& body)
{
    double six = 0;
    const Buffer<int>& corners = body.triangles();
    for (size_t i = 0; i < corners.size(); i += 3) {
        const auto at = [&](size_t k) { return Vec3(body.points() + 3 * body.topology().connects()[corners[i + k]]); };
        six += dot(at(0), cross(at(1), at(2)));
    }
    return six / 6;
}

}  // namespace

TEST(MeshTopology, EulerCharacteristicAndVolumeOfPrimitives)
{
    const double pi = 3.14159265358979;
    struct Case { const char* name; Ref<MeshBody> body; int euler; double volume; int vertices, faces; };
    const Case cases[] = {
        {"cube",             primitives::cube(1, 2, 3, 1, 1, 1), 2, 6, 8, 6},
        {"divided cube",     primitives::cube(1, 2, 3, 2, 3, 4), 2, 6, 54, 52},   // 2(6 + 12 + 8) faces
        {"long cube",        primitives::cube(1, 2, 3, 1, 1, 5), 2, 6, 24, 22},
        {"sphere",           primitives::sphere(1, 200, 100), 2, 4 * pi / 3, 19802, 20000},
        {"cylinder",         primitives::cylinder(1, 2, 200, 1, 1), 2, 2 * pi, 402, 600},
        {"open centres",     primitives::cylinder(1, 2, 200, 3, 0), 2, 2 * pi, 800, 602},
        {"ringed cylinder",  primitives::cylinder(1, 2, 200, 2, 3), 2, 2 * pi, 1402, 1600},
        {"cone",             primitives::cone(1, 3, 200, 1, 0), 2, pi, 201, 201},
        {"ringed cone",      primitives::cone(1, 3, 200, 4, 3), 2, pi, 1202, 1400},
        {"torus",            primitives::torus(2, 0.5, 200, 200), 0, pi * pi, 40000, 40000},
        {"plane",            primitives::plane(1, 1, 3, 5), 1, 0, 24, 15},
    };
    for (const Case& c : cases) {
        const MeshBody& b = *c.body;
        EXPECT_EQ(b.vertexCount(), c.vertices) << c.name;
        EXPECT_EQ(b.faceCount(), c.faces) << c.name;
        EXPECT_EQ(b.vertexCount() - b.edgeCount() + b.faceCount(), c.euler) << c.name;
        EXPECT_NEAR(signedVolume(b), c.volume, 2e-3 * c.volume) << c.name;   // inscribed: a little less
        std::set<int> boundary;
        for (int e = 0; e < b.edgeCount(); ++e)
            boundary.insert(int(b.topology().edgeCorners()[e].size()));
        EXPECT_EQ(boundary, c.euler == 1 ? (std::set<int>{1, 2}) : (std::set<int>{2})) << c.name;
        for (int k = 0; k < b.cornerCount(); ++k)
            EXPECT_GE(b.uvSets().sets[0].id(k), 0) << c.name;
    }
}

TEST(MeshTopology, EdgesComeInOrderOfFirstAppearance)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    const int expected[7][2] = {{0, 1}, {1, 4}, {4, 3}, {3, 0}, {1, 2}, {2, 5}, {5, 4}};
    ASSERT_EQ(fn.numEdges(), 7);
    for (int e = 0; e < 7; ++e) {
        int2 v;
        ASSERT_TRUE(fn.getEdgeVertices(e, v));
        EXPECT_EQ(v[0], expected[e][0]);
        EXPECT_EQ(v[1], expected[e][1]);
    }
    const Topology& t = bodyOf(mesh).topology();
    EXPECT_EQ(t.edgeBetween(4, 1), 1);
    EXPECT_EQ(t.edgeBetween(0, 4), -1);
    EXPECT_FALSE(t.onBoundary(1));
    EXPECT_TRUE(t.onBoundary(6));
}

TEST(MeshTopology, TablesAgreeWithASlowSearchOnARandomMesh)
{
    std::mt19937 random(7);
    Faces faces;
    const int n = 40;
    for (int f = 0; f < 200; ++f) {   // non-manifold and overlapping on purpose
        std::set<int> face;
        while (face.size() < 3 + size_t(f % 4))
            face.insert(int(random() % n));
        faces.emplace_back(face.begin(), face.end());
    }
    const MObject mesh = meshOf(Points(n, {0, 0, 0}), faces);
    const Topology& t = bodyOf(mesh).topology();
    std::set<std::pair<int, int>> edges;
    for (const auto& f : faces)
        for (size_t k = 0; k < f.size(); ++k)
            edges.insert(std::minmax(f[k], f[(k + 1) % f.size()]));
    ASSERT_EQ(size_t(t.edgeCount()), edges.size());
    for (int v = 0; v < n; ++v) {
        std::vector<int> around, found;
        for (int f = 0; f < int(faces.size()); ++f)
            if (std::count(faces[size_t(f)].begin(), faces[size_t(f)].end(), v))
                around.push_back(f);
        for (int c : t.vertexCorners()[v])
            found.push_back(t.cornerFaces()[c]);
        EXPECT_EQ(found, around);
        for (int e : t.vertexEdges()[v])
            EXPECT_TRUE(t.edges().edges[e].a == v || t.edges().edges[e].b == v);
    }
}

TEST(MeshTopology, MalformedFacesAreRefusedAndChangeNothing)
{
    struct Case { const char* what; std::vector<int> counts, connects; };
    const Case cases[] = {
        {"index past the points", {3}, {0, 1, 3}},
        {"negative index",        {3}, {0, 1, -1}},
        {"two vertices",          {2}, {0, 1}},
        {"negative count",        {-3}, {0, 1, 2}},
        {"too few connects",      {3}, {0, 1}},
        {"too many connects",     {3}, {0, 1, 2, 0}},
        {"huge count",            {2147483647}, {0, 1, 2}},
    };
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    const MPointArray points = pointArray({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    for (const Case& c : cases) {
        MStatus status;
        EXPECT_TRUE(MFnMesh().create(3, 1, points, ints(c.counts), ints(c.connects), mesh, &status).isNull()) << c.what;
        EXPECT_EQ(status, MS::kFailure) << c.what;
        EXPECT_EQ(fn.createInPlace(3, 1, points, ints(c.counts), ints(c.connects)), MS::kFailure) << c.what;
        EXPECT_EQ(fn.numVertices(), 6) << c.what;
    }
    MStatus status;
    fn.create(4, 1, points, ints({3}), ints({0, 1, 2}), mesh, &status);
    EXPECT_EQ(status, MS::kFailure) << "more points asked for than given";
    fn.create(0, 0, MPointArray(), MIntArray(), MIntArray(), mesh, &status);
    EXPECT_TRUE(status);
    EXPECT_EQ(fn.numVertices(), 0);
}

TEST(MeshTopology, TrianglesOfAnyFaceStayInsideIt)
{
    struct Case { const char* what; Points outline; double area; };
    const Case cases[] = {
        {"convex quad",    {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}}, 2},
        {"arrow, tip 0",   {{0, 0, 0}, {3, 1, 0}, {0, 2, 0}, {1, 1, 0}}, 2},
        {"arrow, notch 0", {{1, 1, 0}, {0, 0, 0}, {3, 1, 0}, {0, 2, 0}}, 2},
        {"L",              {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}, 3},
        {"comb, in xz",    {{0, 0, 0}, {0, 0, 3}, {1, 0, 3}, {1, 0, 1}, {2, 0, 1}, {2, 0, 3}, {3, 0, 3}, {3, 0, 0}}, 7},
    };
    for (const Case& c : cases) {
        std::vector<int> face;
        for (int i = 0; i < int(c.outline.size()); ++i)
            face.push_back(i);
        MFnMesh fn(meshOf(c.outline, {face}));
        MIntArray counts, vertices;
        ASSERT_TRUE(fn.getTriangles(counts, vertices));
        ASSERT_EQ(counts[0], int(face.size()) - 2) << c.what;
        MVector normal;
        fn.getPolygonNormal(0, normal);
        double area = 0, covered = 0;   // equal only if no triangle is turned over
        for (int t = 0; t < counts[0]; ++t) {
            int v[3];
            MPoint p[3];
            ASSERT_TRUE(fn.getPolygonTriangleVertices(0, t, v));
            for (int k = 0; k < 3; ++k)
                fn.getPoint(v[k], p[k]);
            const MVector twice = (p[1] - p[0]) ^ (p[2] - p[0]);
            area += twice * normal / 2;
            covered += twice.length() / 2;
        }
        EXPECT_NEAR(area, c.area, 1e-6) << c.what;
        EXPECT_NEAR(covered, c.area, 1e-6) << c.what;
    }
}

TEST(MeshTopology, AddPolygonKeepsWhatHangsOnTheRest)
{
    const MObject mesh = twoQuads();
    MFnMesh fn(mesh);
    MColor red(1, 0, 0, 1);
    fn.setVertexColor(red, 1);
    fn.setEdgeSmoothing(1, false);
    MVector up(0, 1, 0);
    fn.setVertexNormal(up, 0);
    fn.addPolygon(pointArray({{0, 1, 0}, {1, 1, 0}, {0, 2, 0}}));
    EXPECT_EQ(fn.numVertices(), 7);   // two merged
    MIntArray face;
    fn.getPolygonVertices(2, face);
    EXPECT_EQ(list(face), (std::vector<int>{3, 4, 6}));
    EXPECT_FALSE(fn.isEdgeSmooth(1));
    EXPECT_EQ(fn.numEdges(), 9);
    EXPECT_TRUE(fn.isEdgeSmooth(8));
    MColorArray colors;
    fn.getVertexColors(colors);
    expectColor(colors[1], 1, 0, 0, 1);
    expectColor(colors[6], -1, -1, -1, -1);
    MVector n;
    fn.getVertexNormal(0, false, n);
    expectVector(n, 0, 1, 0);
}

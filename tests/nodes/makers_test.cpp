// The geometry makers: counts by hand, laws of closed surfaces, orders that scripts rely on.
#include <cmath>
#include <map>

#include "../dag/dag_fixture.h"
#include "mesh/mesh.h"
#include "nodes/poly_shapes.h"
#include "nurbs/curve.h"
#include "nurbs/nurbs_data.h"

using namespace dag_test;

namespace {

using poly::Shape;

std::vector<int> face(const Shape& s, int f)
{
    int at = 0;
    for (int i = 0; i < f; ++i)
        at += s.counts[size_t(i)];
    return {s.connects.begin() + at, s.connects.begin() + at + s.counts[size_t(f)]};
}

/// Signed volume by the divergence theorem: positive if the faces look outwards.
double volume(const Shape& s)
{
    double sum = 0;
    size_t at = 0;
    for (int n : s.counts) {
        const double* a = &s.points[3 * size_t(s.connects[at])];
        for (int k = 1; k + 1 < n; ++k) {
            const double *b = &s.points[3 * size_t(s.connects[at + size_t(k)])], *c = &s.points[3 * size_t(s.connects[at + size_t(k) + 1])];
            sum += a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
        }
        at += size_t(n);
    }
    return sum / 6;
}

/// Vertices - edges + faces; -1000 if some edge is not used once in each direction.
int euler(const Shape& s)
{
    std::map<std::pair<int, int>, int> directed;
    size_t at = 0;
    for (int n : s.counts) {
        for (int k = 0; k < n; ++k)
            ++directed[{s.connects[at + size_t(k)], s.connects[at + size_t((k + 1) % n)]}];
        at += size_t(n);
    }
    for (const auto& [e, count] : directed)
        if (count != 1 || !directed.count({e.second, e.first}))
            return -1000;
    return int(s.vertexCount()) - int(directed.size()) / 2 + int(s.counts.size());
}

TEST(PolyShapes, ClosedAndFacingOutwards)
{
    const double kPi = 3.14159265358979323846;
    // prisms over a regular n-gon: area n/2 sin(2 pi / n); the sphere's and torus' volumes only nearly
    const double decagon = 5 * std::sin(2 * kPi / 10);
    const struct { const char* what; Shape shape; size_t vertices, faces; int euler; double volume, tolerance; } cases[] = {
        {"cube", poly::cube(1, 2, 3, 1, 1, 1), 8, 6, 2, 6, 1e-12},
        {"divided cube", poly::cube(1, 2, 3, 2, 3, 4), 54, 52, 2, 6, 1e-12},   // 2(6+12+8) faces, two more vertices
        {"sphere", poly::sphere(1, 40, 40), 1562, 1600, 2, 4 * kPi / 3, 0.03},
        {"smallest sphere", poly::sphere(1, 3, 2), 5, 6, 2, std::sqrt(3) / 2, 1e-12},   // two tetrahedra on a triangle
        {"cylinder", poly::cylinder(1, 2, 10, 3, 1), 42, 50, 2, 2 * decagon, 1e-12},
        {"cylinder without caps' middle", poly::cylinder(1, 2, 10, 1, 0), 20, 12, 2, 2 * decagon, 1e-12},
        {"cylinder with rings in its caps", poly::cylinder(1, 2, 10, 1, 3), 62, 70, 2, 2 * decagon, 1e-12},
        {"cone", poly::cone(1, 3, 10, 1, 0), 11, 11, 2, decagon, 1e-12},
        {"divided cone", poly::cone(1, 3, 10, 4, 2), 52, 60, 2, decagon, 1e-12},
        {"torus", poly::torus(2, 0.5, 0, 60, 60), 3600, 3600, 0, 2 * kPi * kPi * 2 * 0.25, 0.05},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.shape.vertexCount(), c.vertices) << c.what;
        EXPECT_EQ(c.shape.counts.size(), c.faces) << c.what;
        EXPECT_EQ(euler(c.shape), c.euler) << c.what;
        EXPECT_NEAR(volume(c.shape), c.volume, c.tolerance) << c.what;
        ASSERT_EQ(c.shape.uvIds.size(), c.shape.connects.size()) << c.what;
        for (int id : c.shape.uvIds)
            ASSERT_TRUE(id >= 0 && size_t(id) < c.shape.u.size()) << c.what;
    }
    const Shape cube = poly::cube(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(face(cube, 0), (std::vector<int>{0, 1, 3, 2}));
    EXPECT_EQ(face(cube, 4), (std::vector<int>{1, 7, 5, 3}));
    EXPECT_EQ(face(cube, 5), (std::vector<int>{6, 0, 2, 4}));
    EXPECT_EQ(cube.u.size(), 14u);
    const Shape ball = poly::sphere(1, 20, 20);
    EXPECT_EQ(face(ball, 0), (std::vector<int>{0, 1, 21, 20}));
    EXPECT_NEAR(ball.points[0], std::sin(kPi / 20) * std::cos(kPi / 10), 1e-12);
}

TEST(PolyShapes, EdgesBetweenSidesAreHard)
{
    const struct { const char* what; Shape shape; int hard; } cases[] = {
        {"cube", poly::cube(1, 1, 1, 1, 1, 1), 12},
        {"divided cube", poly::cube(1, 1, 1, 2, 3, 4), 4 * (2 + 3 + 4)},
        {"thin cube", poly::cube(1, 1, 1, 1, 2, 1), 4 * (1 + 2 + 1)},
        {"cylinder", poly::cylinder(1, 2, 10, 3, 2), 20},
        {"cylinder of three sides", poly::cylinder(1, 2, 3, 1, 0), 6},
        {"cone", poly::cone(1, 2, 10, 2, 3), 10},
        {"sphere", poly::sphere(1, 8, 6), 0},
    };
    for (const auto& c : cases) {
        std::string         why;
        const Ref<MeshData> mesh = poly::toMesh(c.shape, false, why);
        int                 hard = 0;
        for (int e = 0; e < mesh->body->edgeCount(); ++e)
            hard += !mesh->body->edgeSmooth(e);
        EXPECT_EQ(hard, c.hard) << c.what;
    }
}

struct Makers : SceneTest
{
    template <class T>
    static Ref<T> data(Node* node, const char* path)
    {
        Cell& c = cell(node, path);
        eval::pull(c);
        return Ref<T>(dynamic_cast<T*>(c.data()));
    }
};

TEST_F(Makers, ShapesShowWhatTheirMakerMakes)
{
    Node *maker = make("polyPlane"), *shape = make("mesh");
    edit::connect(cell(maker, "output"), cell(shape, "inMesh"));
    EXPECT_EQ(data<MeshData>(shape, "outMesh")->body->vertexCount(), 121);
    set(maker, "sw", 2);
    set(maker, "sh", 1);
    EXPECT_EQ(data<MeshData>(shape, "outMesh")->body->vertexCount(), 6);
    set(shape, "pnts[5].pnty", 2);
    set(shape->dag->parents[0], "tx", 3);
    const auto world = data<MeshData>(shape, "worldMesh[0]");
    EXPECT_EQ(world->body->points()[3 * 5 + 1], 2);      // an offset lies on top of what comes in
    EXPECT_EQ(world->body->points()[0], -0.5f);          // object space, and the matrix beside it
    EXPECT_EQ(world->body->matrix[3][0], 3);
    EXPECT_TRUE(data<MeshData>(shape, "outMesh")->body->identity);
    edit::disconnect(cell(maker, "output"), cell(shape, "inMesh"));
    EXPECT_EQ(data<MeshData>(shape, "outMesh")->body->vertexCount(), 6);   // keeps what it had
}

TEST_F(Makers, WritingToAShapeReachesReaders)
{
    Node *maker = make("polyCube"), *first = make("mesh"), *second = make("mesh");
    edit::connect(cell(maker, "output"), cell(first, "inMesh"));
    EXPECT_TRUE(data<MeshData>(first, "outMesh"));   // what was never evaluated cannot be kept
    edit::disconnect(cell(maker, "output"), cell(first, "inMesh"));
    edit::connect(cell(first, "outMesh"), cell(second, "inMesh"));
    const auto before = data<MeshData>(second, "outMesh");
    ASSERT_TRUE(before);
    auto*      source = dynamic_cast<MeshSource*>(first);
    ASSERT_TRUE(source);
    Ref<MeshData> mesh = source->meshForWrite();
    mesh->body->writePoints()[0] = 9;
    source->meshChanged();
    EXPECT_EQ(data<MeshData>(second, "outMesh")->body->points()[0], 9);
    EXPECT_EQ(before->body->points()[0], -0.5f);   // who holds the old data keeps it
    EXPECT_EQ(data<MeshData>(maker, "output")->body->points()[0], -0.5f);
}

TEST_F(Makers, CurveToRibbonToMesh)
{
    Node *circle = make("makeNurbCircle"), *rebuild = make("rebuildCurve"), *extrude = make("extrude"), *tessellate = make("nurbsTessellate");
    edit::connect(cell(circle, "outputCurve"), cell(rebuild, "inputCurve"));
    edit::connect(cell(rebuild, "outputCurve"), cell(extrude, "profile"));
    edit::connect(cell(extrude, "outputSurface"), cell(tessellate, "inputSurface"));
    set(rebuild, "rebuildType", 3);
    set(rebuild, "endKnots", 1);
    set(extrude, "extrudeType", 0);
    set(tessellate, "format", 3);
    set(tessellate, "polygonType", 1);
    // eight sections and the three repeated CVs: eleven, two mesh vertices each
    const auto mesh = data<MeshData>(tessellate, "outputPolygon");
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->body->vertexCount(), 22);
    EXPECT_EQ(mesh->body->faceCount(), 10);
    edit::disconnect(cell(circle, "outputCurve"), cell(rebuild, "inputCurve"));
    set(circle, "radius", -1);
    EXPECT_FALSE(data<CurveData>(circle, "outputCurve") && data<CurveData>(circle, "outputCurve")->body->empty());
}

TEST_F(Makers, CurveShapesHaveBoxesOfTheCurveNotOfItsCvs)
{
    Node *circle = make("makeNurbCircle"), *shape = make("nurbsCurve");
    edit::connect(cell(circle, "outputCurve"), cell(shape, "create"));
    EXPECT_NEAR(get(shape, "boundingBoxMaxX"), 1, 1e-3);
    set(circle, "radius", 5);
    EXPECT_NEAR(get(shape->dag->parents[0], "boundingBoxMaxX"), 5, 5e-3);
}

TEST_F(Makers, UnitsConvertOverTimeNodes)
{
    Node *to = make("timeToUnitConversion"), *back = make("unitToTimeConversion"), *factor = make("unitConversion");
    edit::connect(cell(scene().first("time1"), "outTime"), cell(to, "input"));
    set(scene().first("time1"), "outTime", 0.5);   // seconds
    set(to, "conversionFactor", 0.004);            // 24 frames a second of 6000 ticks: frames
    EXPECT_NEAR(get(to, "output"), 12, 1e-12);
    edit::connect(cell(to, "output"), cell(back, "input"));
    set(back, "conversionFactor", 250);
    EXPECT_NEAR(get(back, "output"), 0.5, 1e-12);
    set(factor, "input", 3);
    set(factor, "conversionFactor", -2);
    EXPECT_EQ(get(factor, "output"), -6);
}

}  // namespace

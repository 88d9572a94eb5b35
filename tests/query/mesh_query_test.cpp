// Rays and closest points against brute force in double precision, on random, real and awkward meshes.
#include <gtest/gtest.h>

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MMeshIntersector.h>
#include <maya/MSelectionList.h>
#include <maya/MTransformationMatrix.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <thread>

#include "io/obj.h"
#include "mesh/mesh_helpers.h"
#include "support/host_fixture.h"

using namespace mirk;
using namespace mirk::test;

namespace {

using Random = std::mt19937;

double between(Random& r, double low, double high) { return low + (high - low) * (r() / 4294967296.0); }
MPoint pointIn(Random& r, double size) { return {between(r, -size, size), between(r, -size, size), between(r, -size, size)}; }

/// Triangles that have nothing to do with each other.
MObject soup(int triangles, unsigned seed)
{
    Random r(seed);
    Points points;
    Faces  faces;
    for (int i = 0; i < triangles; ++i) {
        const MPoint c = pointIn(r, 1.0);
        for (int k = 0; k < 3; ++k) {
            const MPoint p = pointIn(r, 0.2);
            points.push_back({c.x + p.x, c.y + p.y, c.z + p.z});
        }
        faces.push_back({3 * i, 3 * i + 1, 3 * i + 2});
    }
    return meshOf(points, faces);
}

MObject bunny()
{
    static const MObject mesh = [] {
        const std::string      path = "/usr/share/glmark2/models/bunny.obj";
        std::vector<NamedMesh> meshes;
        std::string            error;
        if (std::filesystem::exists(path))
            parseObj(Host::read(path), path, meshes, error);
        return meshes.empty() ? MObject::kNullObj : dataOf(meshes[0].body);
    }();
    return mesh;
}

struct Triangle { MPoint p[3]; int face; };

std::vector<Triangle> trianglesOf(const MObject& mesh, const MMatrix& matrix = MMatrix::identity)
{
    MFnMesh     fn(mesh);
    MIntArray   counts, vertices;
    MPointArray points;
    fn.getPoints(points);
    fn.getTriangles(counts, vertices);
    std::vector<Triangle> result;
    unsigned              at = 0;
    for (unsigned f = 0; f < counts.length(); ++f)
        for (int t = 0; t < counts[f]; ++t, at += 3)
            result.push_back({{points[unsigned(vertices[at])] * matrix, points[unsigned(vertices[at + 1])] * matrix,
                               points[unsigned(vertices[at + 2])] * matrix}, int(f)});
    return result;
}

/// Parameters of all hits by solving for t and the barycentric coordinates with Cramer's rule.
std::vector<std::pair<double, int>> hitsOf(const std::vector<Triangle>& all, const MPoint& o, const MVector& d)
{
    std::vector<std::pair<double, int>> hits;
    for (const Triangle& tri : all) {
        const MVector a = tri.p[0] - tri.p[1], b = tri.p[0] - tri.p[2], s = tri.p[0] - o;
        const double  det = a * (b ^ d);
        if (det == 0)
            continue;
        const double u = s * (b ^ d) / det, v = a * (s ^ d) / det, t = a * (b ^ s) / det;
        if (u >= 0 && v >= 0 && u + v <= 1)
            hits.push_back({t, tri.face});
    }
    std::sort(hits.begin(), hits.end());
    return hits;
}

/// Squared distance by trying the inside, the three sides and the three vertices.
double distanceSq(const Triangle& tri, const MPoint& p)
{
    double best = std::numeric_limits<double>::infinity();
    for (int k = 0; k < 3; ++k) {
        const MVector side = tri.p[(k + 1) % 3] - tri.p[k], to = p - tri.p[k];
        best = std::min(best, to * to);
        const double t = side * to / (side * side);
        if (t > 0 && t < 1)
            best = std::min(best, (to - side * t) * (to - side * t));
    }
    const MVector n = (tri.p[1] - tri.p[0]) ^ (tri.p[2] - tri.p[0]);
    const double  along = n * (p - tri.p[0]) / (n * n);
    const MPoint  q = p - n * along;
    bool          inside = n * n > 0;
    for (int k = 0; k < 3; ++k)
        inside = inside && (((tri.p[(k + 1) % 3] - tri.p[k]) ^ (q - tri.p[k])) * n) >= 0;
    return inside ? std::min(best, along * along * (n * n)) : best;
}

double nearestSq(const std::vector<Triangle>& all, const MPoint& p)
{
    double best = std::numeric_limits<double>::infinity();
    for (const Triangle& t : all)
        best = std::min(best, distanceSq(t, p));
    return best;
}

struct Hit
{
    MFloatPoint point;
    float       param = -9, bary1 = -9, bary2 = -9;
    int         face = -9, triangle = -9;
};

struct Options
{
    const MIntArray *faces = nullptr, *triangles = nullptr;
    bool             sorted = false, both = false;
    float            maxParam = 100, tolerance = 1e-6f;
    MSpace::Space    space = MSpace::kObject;
};

bool closest(const MFnMesh& fn, const MFloatPoint& o, const MFloatVector& d, Hit& h, const Options& opt = {},
             MStatus* status = nullptr)
{
    MMeshIsectAccelParams params = MFnMesh::autoUniformGridParams();
    return fn.closestIntersection(o, d, opt.faces, opt.triangles, opt.sorted, opt.space, opt.maxParam, opt.both, &params,
                                  h.point, &h.param, &h.face, &h.triangle, &h.bary1, &h.bary2, opt.tolerance, status);
}

struct Model { const char* name; MObject mesh; double size; int rays; };

std::vector<Model> models()
{
    std::vector<Model> all = {
        {"soup", soup(300, 5), 1.5, 400},
        {"sphere", dataOf(primitives::sphere(1.0, 40, 30)), 1.6, 400},
        {"grid", dataOf(primitives::plane(2.0, 2.0, 25, 25)), 1.2, 400},
        {"one triangle", meshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}), 1.0, 400},
    };
    if (!bunny().isNull())
        all.push_back({"bunny", bunny(), 1.5, 60});
    return all;
}

}  // namespace

TEST(MeshRays, AgreeWithBruteForce)
{
    for (const Model& m : models()) {
        SCOPED_TRACE(m.name);
        const MFnMesh  fn(m.mesh);
        const auto     all = trianglesOf(m.mesh);
        Random         r(3);
        int            found = 0;
        for (int i = 0; i < m.rays; ++i) {
            const MFloatPoint  o(pointIn(r, m.size));
            const MFloatVector d(pointIn(r, m.size) - MPoint(o));
            const auto         hits = hitsOf(all, o, MVector(d));
            for (bool both : {false, true}) {
                double expected = std::numeric_limits<double>::infinity();
                int    count = 0;
                for (const auto& [t, face] : hits)
                    if (std::fabs(t) <= 5 && (both || t >= 0)) {
                        ++count;
                        if (std::fabs(t) < std::fabs(expected))
                            expected = t;
                    }
                Options opt;
                opt.both = both;
                opt.maxParam = 5;
                Hit        h;
                const bool hit = closest(fn, o, d, h, opt);
                ASSERT_EQ(hit, count > 0) << i;
                MFloatPointArray points;
                MFloatArray      params;
                MIntArray        faces;
                fn.allIntersections(o, d, nullptr, nullptr, false, MSpace::kObject, 5, both, nullptr, true, points, &params,
                                    &faces, nullptr, nullptr, nullptr);
                ASSERT_EQ(int(points.length()), count);
                for (unsigned k = 1; k < params.length(); ++k)
                    EXPECT_LE(params[k - 1], params[k]);
                MFloatPoint somewhere;
                EXPECT_EQ(fn.anyIntersection(o, d, nullptr, nullptr, false, MSpace::kObject, 5, both, nullptr, somewhere, nullptr,
                                             nullptr, nullptr, nullptr, nullptr), hit);
                if (!hit)
                    continue;
                ++found;
                EXPECT_NEAR(h.param, expected, 1e-5 * (1 + std::fabs(expected)));
                const MFloatPoint p = o + d * h.param;
                EXPECT_TRUE(p.isEquivalent(h.point, 1e-4f));
                MIntArray vertices;
                int       v[3];
                ASSERT_TRUE(fn.getPolygonTriangleVertices(h.face, h.triangle, v));
                MPoint p1, p2, p3;
                fn.getPoint(v[0], p1);
                fn.getPoint(v[1], p2);
                fn.getPoint(v[2], p3);
                const MPoint mixed = MPoint(MVector(p1) * h.bary1 + MVector(p2) * h.bary2 + MVector(p3) * (1.0 - h.bary1 - h.bary2));
                EXPECT_LT(mixed.distanceTo(MPoint(h.point)), 1e-5);
            }
        }
        EXPECT_GT(found, m.rays / 40);
    }
}

TEST(MeshRays, ParamsRestrictionsAndTolerance)
{
    // three squares over each other at z = 0, 1, 2, of two triangles each; the last one is a pentagon
    const MObject mesh = meshOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1},
                                 {0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0.5, 1.5, 2}, {0, 1, 2}},
                                {{0, 1, 2, 3}, {4, 5, 6, 7}, {8, 9, 10, 11, 12}});
    const MFnMesh      fn(mesh);
    const MFloatPoint  below(0.75f, 0.25f, -1), between(0.75f, 0.25f, 1.25f);
    const MFloatVector up(0, 0, 2);
    const MIntArray    second = ints({1}), unsorted = ints({2, 0}), none, wrong = ints({3}), negative = ints({-1});
    const MIntArray    firstTriangle = ints({0}), secondTriangle = ints({1}), two = ints({0, 1}), third = ints({2});
    struct Case
    {
        const char* when;
        MFloatPoint from;
        Options     opt;
        bool        hit;
        int         face;
        float       param;
    };
    const auto restricted = [](const MIntArray* faces, const MIntArray* triangles = nullptr, bool sorted = false) {
        Options o;
        o.faces = faces;
        o.triangles = triangles;
        o.sorted = sorted;
        return o;
    };
    const auto limited = [](float maxParam, bool both) {
        Options o;
        o.maxParam = maxParam;
        o.both = both;
        return o;
    };
    const Case cases[] = {
        {"nearest of three", below, {}, true, 0, 0.5f},
        {"a parameter counts in lengths of the direction", below, limited(0.5f, false), true, 0, 0.5f},
        {"past the limit", below, limited(0.49f, false), false, 0, 0},
        {"one direction", between, {}, true, 2, 0.375f},
        {"the nearer one lies behind", between, limited(100, true), true, 1, -0.125f},
        {"the limit holds on both sides", between, limited(0.1f, true), false, 0, 0},
        {"one face", below, restricted(&second), true, 1, 1.0f},
        {"faces in disorder", below, restricted(&unsorted), true, 0, 0.5f},
        {"no face at all", below, restricted(&none), false, 0, 0},
        {"the triangle that is hit", below, restricted(&second, &firstTriangle, true), true, 1, 1.0f},
        {"the other triangle of the face", below, restricted(&second, &secondTriangle), false, 0, 0},
        {"starts on a face", MFloatPoint(0.75f, 0.25f, 0), {}, true, 0, 0.0f},
        {"beside the square", MFloatPoint(-0.01f, 0.25f, -1), {}, false, 0, 0},
    };
    for (const Case& c : cases) {
        Hit     h;
        MStatus status;
        EXPECT_EQ(closest(fn, c.from, up, h, c.opt, &status), c.hit) << c.when;
        EXPECT_TRUE(status) << c.when;
        EXPECT_EQ(h.face, c.hit ? c.face : -9) << c.when;
        EXPECT_FLOAT_EQ(h.param, c.hit ? c.param : -9) << c.when;
    }
    Hit     h;
    Options loose;
    loose.tolerance = 0.02f;
    EXPECT_TRUE(closest(fn, MFloatPoint(-0.01f, 0.25f, -1), up, h, loose)) << "within the tolerance";
    const MFloatVector nowhere(0, 0, 0), notANumber(0, NAN, 1);
    const std::pair<const char*, std::function<bool(MStatus*)>> bad[] = {
        {"no direction", [&](MStatus* s) { return closest(fn, below, nowhere, h, {}, s); }},
        {"NaN", [&](MStatus* s) { return closest(fn, below, notANumber, h, {}, s); }},
        {"infinite source", [&](MStatus* s) { return closest(fn, {INFINITY, 0, 0}, up, h, {}, s); }},
        {"face past the end", [&](MStatus* s) { return closest(fn, below, up, h, restricted(&wrong), s); }},
        {"negative face", [&](MStatus* s) { return closest(fn, below, up, h, restricted(&negative), s); }},
        {"triangle past the end", [&](MStatus* s) { return closest(fn, below, up, h, restricted(&second, &third), s); }},
        {"arrays of two lengths", [&](MStatus* s) { return closest(fn, below, up, h, restricted(&second, &two), s); }},
        {"triangles without faces", [&](MStatus* s) { return closest(fn, below, up, h, restricted(nullptr, &two), s); }},
    };
    for (const auto& [what, call] : bad) {
        MStatus status;
        EXPECT_FALSE(call(&status)) << what;
        EXPECT_EQ(status.statusCode(), MS::kInvalidParameter) << what;
    }
    // a ray down a diagonal meets each square once
    MPointArray points;
    MIntArray   faces;
    EXPECT_TRUE(fn.intersect(MPoint(0.5, 0.5, -1), MVector(0, 0, 1), points, 1e-10, MSpace::kObject, &faces));
    EXPECT_EQ(list(faces), (std::vector<int>{0, 1, 2}));
    expectVector(points[2], 0.5, 0.5, 2.0);
}

TEST(MeshRays, LongListsOfIdsAndShortOnesAgree)
{
    const MObject mesh = soup(400, 9);
    const MFnMesh fn(mesh);
    MIntArray     some, triangles;
    for (int f = 398; f >= 0; f -= 2) {
        some.append(f);
        triangles.append(0);
    }
    MIntArray sortedFaces = some, sortedTriangles = triangles;
    MFnMesh::sortIntersectionFaceTriIds(&sortedFaces, &sortedTriangles);
    EXPECT_EQ(sortedFaces[1], 2);
    Random r(4);
    int    hits = 0;
    for (int i = 0; i < 300; ++i) {
        const MFloatPoint  o(pointIn(r, 1.5));
        const MFloatVector d(pointIn(r, 1.0) - MPoint(o));
        Options one, many;
        one.faces = &some;
        many.faces = &sortedFaces;
        many.triangles = &sortedTriangles;
        many.sorted = true;
        Hit a, b;
        ASSERT_EQ(closest(fn, o, d, a, one), closest(fn, o, d, b, many));
        EXPECT_EQ(a.face, b.face);
        EXPECT_EQ(a.param, b.param);
        hits += a.face >= 0;
    }
    EXPECT_GT(hits, 30);
}

TEST(MeshRays, ClosedSurfacesHaveNoHoles)
{
    const MFnMesh fn(dataOf(primitives::sphere(1.0, 60, 40)));
    MPointArray   points;
    fn.getPoints(points);
    for (unsigned i = 0; i < points.length(); ++i)   // through every vertex, from the middle
        for (int k = 0; k < 2; ++k) {
            const MPoint to = k ? MPoint((MVector(points[i]) + MVector(points[(i + 1) % points.length()])) * 0.5) : points[i];
            Hit          h;
            ASSERT_TRUE(MVector(to).length() < 0.1 || closest(fn, MFloatPoint(), MFloatVector(to), h)) << i;
        }
}

TEST(MeshNearest, AgreesWithBruteForceInEverySpace)
{
    const double stretched[4][4] = {{2, 0.3, 0, 0}, {0, 0.5, 0, 0}, {0, 0.1, 3, 0}, {1, 2, 3, 1}};
    const double scaled[4][4] = {{0, 3, 0, 0}, {-3, 0, 0, 0}, {0, 0, 3, 0}, {5, -1, 2, 1}};
    for (const Model& m : models())
        for (const MMatrix& matrix : {MMatrix::identity, MMatrix(scaled), MMatrix(stretched)}) {
            SCOPED_TRACE(m.name);
            MObject          mesh = m.mesh;
            const auto       all = trianglesOf(mesh, matrix);
            MMeshIntersector intersector;
            ASSERT_TRUE(intersector.create(mesh, matrix));
            Random r(7);
            for (int i = 0; i < m.rays / 2; ++i) {
                const MPoint p = pointIn(r, m.size * 1.5) * matrix;
                const double expected = nearestSq(all, p);
                MPointOnMesh info;
                ASSERT_TRUE(intersector.getClosestPoint(p, info));
                MPoint q;
                info.getPoint(q);
                EXPECT_NEAR((q * matrix).distanceTo(p), std::sqrt(expected), 1e-9 * (1 + std::sqrt(expected)));
                int  v[3];
                float a, b;
                ASSERT_TRUE(MFnMesh(mesh).getPolygonTriangleVertices(info.faceIndex(), info.triangleIndex(), v));
                info.getBarycentricCoords(a, b);
                MPoint corner[3];
                for (int k = 0; k < 3; ++k)
                    MFnMesh(mesh).getPoint(v[k], corner[k]);
                EXPECT_LT(MPoint(MVector(corner[0]) * a + MVector(corner[1]) * b + MVector(corner[2]) * (1.0 - a - b)).distanceTo(q), 1e-5);
                EXPECT_FALSE(intersector.getClosestPoint(p, info, 0.999 * std::sqrt(expected)));
                EXPECT_TRUE(intersector.getClosestPoint(p, info, 1.001 * std::sqrt(expected) + 1e-9));
            }
        }
}

TEST(MeshNearest, PointNormalAndUVs)
{
    // a square with a UV a corner, and beside it a triangle without
    MObject mesh = meshOf({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {5, 0, 0}, {6, 0, 0}, {5, 1, 0}}, {{0, 1, 2, 3}, {4, 5, 6}});
    MFnMesh fn(mesh);
    const float     us[] = {0, 1, 1, 0, 1}, vs[] = {0, 0, 0.5f, 0.5f, 0};
    ASSERT_TRUE(fn.setUVs(MFloatArray(us, 5), MFloatArray(vs, 5)));
    ASSERT_TRUE(fn.assignUVs(ints({4, 0}), ints({0, 1, 2, 3})));
    MPoint  closest;
    MVector normal;
    int     face = -1;
    ASSERT_TRUE(fn.getClosestPointAndNormal(MPoint(0.5, 1, 3), closest, normal, MSpace::kObject, &face));
    expectVector(closest, 0.5, 1, 0);
    expectVector(normal, 0, 0, 1);
    EXPECT_EQ(face, 0);
    ASSERT_TRUE(fn.getClosestPoint(MPoint(-1, -1, 1), closest));
    expectVector(closest, 0, 0, 0);
    float2 uv = {-1, -1};
    MPoint at(0.5, 1, 3), bare(5.1, 0.1, 0);
    ASSERT_TRUE(fn.getUVAtPoint(at, uv));
    EXPECT_FLOAT_EQ(uv[0], 0.25f);
    EXPECT_FLOAT_EQ(uv[1], 0.25f);
    EXPECT_EQ(fn.getUVAtPoint(bare, uv).statusCode(), MS::kFailure);
    EXPECT_FLOAT_EQ(uv[0], 0.25f) << "stays";
    MIntArray ids;
    ASSERT_TRUE(fn.getClosestUVs(0.9f, 0.1f, ids));
    EXPECT_EQ(list(ids), (std::vector<int>{1, 4}));

    // a shading normal: half way along the smooth edge of a roof both sides count alike
    const MFnMesh roof(meshOf({{-1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {-1, 0, 1}, {0, 1, 1}, {1, 0, 1}}, {{0, 3, 4, 1}, {1, 4, 5, 2}}));
    ASSERT_TRUE(roof.getClosestNormal(MPoint(0, 3, 0.5), normal));
    expectVector(normal, 0, 1, 0);
}

TEST(MeshNearest, AwkwardMeshesAndPoints)
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), huge = 1e30;
    MPoint       p(9, 9, 9);
    Hit          h;
    for (const MObject& none : {meshOf({}, {}), meshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}),
                                meshOf({{nan, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}})}) {
        const MFnMesh fn(none);
        EXPECT_EQ(fn.getClosestPoint(MPoint(), p).statusCode(), MS::kFailure);
        EXPECT_EQ(p.x, 9);
        EXPECT_FALSE(closest(fn, MFloatPoint(), MFloatVector(0, 0, 1), h));
        EXPECT_TRUE(fn.cachedIntersectionAcceleratorInfo().length() > 0);
    }
    // a triangle that is a segment, one that is a point, one far out: all are there for closest points
    const Points points = {{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {7, 7, 7}, {huge, huge, huge}, {huge, 0, huge}, {0, huge, huge}};
    const MFnMesh thin(meshOf(points, {{0, 1, 2}, {3, 3, 3}, {4, 5, 6}}));
    struct Case { MPoint from, to; };
    for (const Case& c : {Case{{2, 5, 0}, {2, 0, 0}}, Case{{9, 0, 0}, {3, 0, 0}}, Case{{8, 8, 8}, {7, 7, 7}}}) {
        ASSERT_TRUE(thin.getClosestPoint(c.from, p));
        EXPECT_LT(p.distanceTo(c.to), 1e-9);
    }
    ASSERT_TRUE(thin.getClosestPoint(MPoint(2 * huge, 2 * huge, 2 * huge), p));
    EXPECT_LT(p.distanceTo(MPoint(huge, huge, huge)) / huge, 1e-6);
    EXPECT_EQ(thin.getClosestPoint(MPoint(nan, 0, 0), p).statusCode(), MS::kInvalidParameter);

    MMeshIntersector intersector;
    MPointOnMesh     info;
    MObject          mesh = twoQuads(), nothing;
    const MIntArray  left = ints({0}), outside = ints({0, 7});
    const double     flat[4][4] = {{1, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    EXPECT_FALSE(intersector.isCreated());
    EXPECT_EQ(intersector.getClosestPoint(MPoint(), info).statusCode(), MS::kFailure);
    EXPECT_EQ(intersector.create(nothing).statusCode(), MS::kInvalidParameter);
    EXPECT_EQ(intersector.create(mesh, MMatrix(flat)).statusCode(), MS::kFailure);
    EXPECT_EQ(intersector.create(mesh, MMatrix::identity, &outside).statusCode(), MS::kInvalidParameter);
    EXPECT_FALSE(intersector.isCreated());
    ASSERT_TRUE(intersector.create(mesh, MMatrix::identity, &left));
    ASSERT_TRUE(intersector.getClosestPoint(MPoint(1.75, 0.5, 1), info));
    expectVector(info.getPoint(), 1, 0.5, 0);
    expectVector(info.getNormal(), 0, 0, 1);
    EXPECT_EQ(info.faceIndex(), 0);
}

TEST(MeshTree, OneForAllHoldersUntilSomebodyWrites)
{
    MObject   mesh = dataOf(primitives::sphere(1.0, 20, 12));
    MObject   shared = wrap(objectAs<MeshData>(mesh)->share());
    MFnMesh   fn(mesh);
    Hit       h;
    EXPECT_FALSE(bodyOf(mesh).treeBuilt());
    ASSERT_TRUE(closest(fn, MFloatPoint(0, 0, -5), MFloatVector(0, 0.1f, 1), h));
    ASSERT_TRUE(bodyOf(shared).treeBuilt());
    EXPECT_EQ(&bodyOf(shared).tree(), &bodyOf(mesh).tree());
    MMeshIntersector before;
    ASSERT_TRUE(before.create(mesh));
    MPointArray points;
    fn.getPoints(points);
    for (unsigned i = 0; i < points.length(); ++i)
        points[i].x += 10;
    fn.setPoints(points);
    EXPECT_FALSE(closest(fn, MFloatPoint(0, 0, -5), MFloatVector(0, 0.1f, 1), h)) << "the new points";
    EXPECT_TRUE(closest(MFnMesh(shared), MFloatPoint(0, 0, -5), MFloatVector(0, 0.1f, 1), h)) << "the old ones";
    MPointOnMesh info;
    ASSERT_TRUE(before.getClosestPoint(MPoint(0, 0, -5), info));
    EXPECT_NEAR(info.getPoint().x, 0, 0.2) << "as it was when it was created";
    EXPECT_TRUE(fn.freeCachedIntersectionAccelerator());
    EXPECT_FALSE(bodyOf(mesh).treeBuilt());
    EXPECT_TRUE(bodyOf(shared).treeBuilt());
}

TEST(MeshTree, ManyThreadsBuildAndAskAtOnce)
{
    MObject                  mesh = dataOf(primitives::sphere(1.0, 80, 60));
    std::vector<std::thread> threads;
    std::vector<int>         faces(8, -1);
    for (size_t i = 0; i < faces.size(); ++i)
        threads.emplace_back([&, i] {
            const MFnMesh fn(mesh);
            Hit           h;
            for (int k = 0; k < 200; ++k)
                closest(fn, MFloatPoint(0, 0, 0), MFloatVector(0.3f, 0.2f, 1), h);
            faces[i] = h.face;
        });
    for (std::thread& t : threads)
        t.join();
    for (int f : faces)
        EXPECT_EQ(f, faces[0]);
    EXPECT_GE(faces[0], 0);
}

class MeshQueryScene : public Host {};

TEST_F(MeshQueryScene, WorldSpaceAlongAPath)
{
    mel("polyCube -name c -width 2 -height 2 -depth 2; move 10 0 0 c; scale 1 4 1 c");
    MSelectionList list;
    MDagPath       path;
    list.add("c");
    ASSERT_TRUE(list.getDagPath(0, path));
    path.extendToShape();
    const MFnMesh fn(path);
    Options       world;
    world.space = MSpace::kWorld;
    Hit h;
    ASSERT_TRUE(closest(fn, MFloatPoint(10, 20, 0), MFloatVector(0, -2, 0), h, world));
    EXPECT_FLOAT_EQ(h.param, 8.0f);
    expectVector(h.point, 10, 4, 0);
    EXPECT_FALSE(closest(fn, MFloatPoint(10, 20, 0), MFloatVector(0, -2, 0), h)) << "object space";
    MPoint  p;
    MVector n;
    // in object space the top of the cube would be nearer than its side
    ASSERT_TRUE(fn.getClosestPointAndNormal(MPoint(10.8, 3.5, 0), p, n, MSpace::kWorld));
    expectVector(p, 11, 3.5, 0);
    EXPECT_NEAR(n.length(), 1, 1e-6);
    EXPECT_GT(n.x, 0.9);
    mel("scale 1 0 1 c");
    EXPECT_EQ(fn.getClosestPoint(MPoint(), p, MSpace::kWorld).statusCode(), MS::kFailure);
}

// Laws of the NURBS kernel: bases, circles, continuity, lengths, nearest points; rebuilt and extruded geometry.
#include <gtest/gtest.h>

#include <cmath>

#include "nurbs/construct.h"
#include "nurbs/fit.h"
#include "nurbs/primitives.h"
#include "nurbs/surface.h"
#include "nurbs/tessellate.h"

using namespace mirk;
using namespace mirk::nurbs;

namespace {

constexpr double kTurn = 2 * M_PI;

Ref<CurveBody> curve(std::vector<MPoint> cvs, std::vector<double> knots, int degree, NurbsForm form = NurbsForm::open,
                     bool rational = false)
{
    auto              body = make<CurveBody>();
    const std::string why = buildCurve(*body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree, form, false, rational);
    EXPECT_EQ(why, "");
    return body;
}

/// The unit circle as four rational quarters, CVs homogeneous.
Ref<CurveBody> rationalCircle()
{
    std::vector<MPoint> cvs;
    const double        w = std::sqrt(0.5);
    const double        at[9][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    for (int i = 0; i < 9; ++i) {
        const double weight = i % 2 ? w : 1;
        cvs.emplace_back(at[i][0] * weight, at[i][1] * weight, 0, weight);
    }
    return curve(cvs, {0, 0, 1, 1, 2, 2, 3, 3, 4, 4}, 2, NurbsForm::closed, true);
}

/// A wavy open cubic with uneven inner knots.
Ref<CurveBody> wave()
{
    return curve({{0, 0, 0}, {1, 2, 0}, {2, -1, 1}, {4, 3, 0}, {5, 0, -1}, {7, 1, 0}}, {0, 0, 0, 1, 1.7, 3, 3, 3}, 3);
}

Ref<SurfaceBody> bumpy()
{
    std::vector<MPoint> cvs;
    for (int u = 0; u < 5; ++u)
        for (int v = 0; v < 4; ++v)
            cvs.emplace_back(u, std::sin(u * 1.3 + v), v * 1.2);
    auto                      body = make<SurfaceBody>();
    const std::vector<double> ku = uniformKnots(2, 3, false), kv = uniformKnots(2, 2, false);
    EXPECT_EQ(buildSurface(*body, cvs.data(), cvs.size(), ku.data(), ku.size(), kv.data(), kv.size(), 3, 2, NurbsForm::open,
                           NurbsForm::open, false), "");
    return body;
}

std::string why;

}  // namespace

TEST(Basis, SumsToOneAndDerivativesToZero)
{
    for (int degree : {1, 2, 3, 5}) {
        std::vector<double> knots = uniformKnots(6, degree, false);
        knots[size_t(degree) + 1] += 0.3;   // uneven
        const Knots k{knots.data(), 6 + degree, degree};
        for (double u = k.start(); u <= k.end(); u += 0.173) {
            double n[3][kMaxDegree + 1], sum[3] = {};
            basis(k, findSpan(k, u), u, 2, n);
            for (int d = 0; d < 3; ++d)
                for (int i = 0; i <= degree; ++i) {
                    sum[d] += n[d][i];
                    EXPECT_GE(n[0][i], -1e-15);
                }
            EXPECT_NEAR(sum[0], 1, 1e-14);
            EXPECT_NEAR(sum[1], 0, 1e-12);
            EXPECT_NEAR(sum[2], 0, 1e-11);
        }
    }
}

TEST(Curve, RationalCircleIsRound)
{
    const Ref<CurveBody> body = rationalCircle();
    const CurveView      c(*body);
    for (double u = 0; u <= 4; u += 0.037) {
        const CurveDerivatives d = derivativesAt(c, u);
        EXPECT_NEAR(d.p.length(), 1, 1e-12);
        EXPECT_NEAR(d.p * d.d1, 0, 1e-11);
        // curvature |C' x C''| / |C'|^3 of a unit circle
        EXPECT_NEAR((d.d1 ^ d.d2).length() / std::pow(d.d1.length(), 3), 1, 1e-10);
        EXPECT_NEAR((normalAt(c, u) + d.p).length(), 0, 1e-9);   // towards the centre
    }
    EXPECT_NEAR(arcLength(c), kTurn, 1e-6);
    // a sixth of the way round, by length, is 60 degrees
    const MVector sixth = pointAt(c, paramAtLength(c, kTurn / 6));
    EXPECT_NEAR(sixth.x, 0.5, 1e-6);
    MVector n;
    EXPECT_TRUE(isPlanar(c, &n));
    EXPECT_NEAR(std::abs(n.z), 1, 1e-12);
}

TEST(Curve, DerivativesAgreeWithDifferences)
{
    const Ref<CurveBody> body = wave();
    const CurveView      c(*body);
    const double         h = 1e-5;
    for (double u : {0.2, 0.9, 1.3, 2.6}) {
        const CurveDerivatives d = derivativesAt(c, u);
        const MVector          a = pointAt(c, u - h), b = pointAt(c, u + h);
        EXPECT_NEAR(((b - a) / (2 * h) - d.d1).length(), 0, 1e-7);
        EXPECT_NEAR(((a + b - 2 * d.p) / (h * h) - d.d2).length(), 0, 1e-3);
    }
}

TEST(Curve, PeriodicJoinsSmoothly)
{
    const Ref<CurveBody> body = circle({}, 2, kTurn, 3, 8, why);
    const CurveView      c(*body);
    EXPECT_EQ(body->cvCount(), 11);
    EXPECT_EQ(body->uniqueCvCount(), 8);
    const CurveDerivatives a = derivativesAt(c, c.k.start()), b = derivativesAt(c, c.k.end());
    EXPECT_NEAR((a.p - b.p).length() + (a.d1 - b.d1).length() + (a.d2 - b.d2).length(), 0, 1e-12);
    EXPECT_NEAR((pointAt(c, 8.25) - pointAt(c, 0.25)).length(), 0, 1e-12);
    EXPECT_NEAR(a.p.length(), 2, 1e-12);
    EXPECT_NEAR(a.p.z, -2, 1e-12);
    EXPECT_NEAR((*body->cvs)[1].z, -2 * 1.1081941875543879, 1e-12);   // r * 6 / (4 + 2 cos 45)
}

TEST(Curve, ClosestPointAgainstBruteForce)
{
    for (const Ref<CurveBody>& body : {wave(), rationalCircle(), circle({}, 1, kTurn, 3, 8, why)}) {
        const CurveView c(*body);
        for (const MVector& p : {MVector(3, 2, 1), MVector(-1, 0.2, 0.1), MVector(6, -3, 2), MVector(0.3, 0.1, 0)}) {
            double best = 1e9;
            for (int i = 0; i <= 20000; ++i)
                best = std::min(best, (pointAt(c, c.k.start() + (c.k.end() - c.k.start()) * i / 20000) - p).length());
            const double found = (pointAt(c, closestParam(c, p)) - p).length();
            EXPECT_LE(found, best + 1e-12);
            EXPECT_GE(found, best - 1e-3);
        }
    }
}

TEST(Curve, BadInputIsNamed)
{
    CurveBody                 body;
    const std::vector<MPoint> cvs{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}};
    struct Case { int degree; size_t cvCount; std::vector<double> knots; NurbsForm form; const char* says; };
    const Case cases[] = {
        {3, 4, {0, 0, 0, 1, 1}, NurbsForm::open, "need 6 knots"},
        {0, 4, {0, 0, 0}, NurbsForm::open, "degree 0"},
        {3, 3, {0, 0, 0, 1, 1}, NurbsForm::open, "at least 4 CVs"},
        {3, 4, {0, 0, 0, 1, 1, 1}, NurbsForm::periodic, "at least 6 CVs"},
        {1, 4, {0, 2, 1, 3}, NurbsForm::open, "knot 2 is below"},
        {1, 4, {0, 0, 0, 0}, NurbsForm::open, "empty domain"},
        {1, 4, {0, 1, NAN, 3}, NurbsForm::open, "knot 2 is not"},
        {3, 4, {0, 0, 0, 1, 1, 1}, NurbsForm(7), "form 7"},
    };
    for (const Case& c : cases)
        EXPECT_NE(buildCurve(body, cvs.data(), c.cvCount, c.knots.data(), c.knots.size(), c.degree, c.form, false, false)
                      .find(c.says), std::string::npos) << c.says;
    EXPECT_TRUE(body.empty());
}

TEST(Interpolation, GoesThroughThePoints)
{
    const std::vector<MPoint> points{{0, 0, 0}, {1, 1, 0}, {2, 0, 1}, {4, 0, 0}, {4, 2, 2}, {3, 3, 3}, {0, 4, 1}};
    for (int degree : {1, 2, 3, 5})
        for (bool periodic : {false, true}) {
            const Ref<CurveBody> body = interpolate(points, degree, periodic, false, why);
            ASSERT_TRUE(body) << degree << periodic << why;
            const CurveView c(*body);
            for (const MPoint& p : points)
                EXPECT_NEAR((pointAt(c, closestParam(c, MVector(p))) - MVector(p)).length(), 0, 1e-7) << degree << periodic;
        }
    EXPECT_FALSE(interpolate({{0, 0, 0}}, 3, false, false, why));
    EXPECT_FALSE(interpolate({{0, 0, 0}, {NAN, 0, 0}}, 3, false, false, why));
    EXPECT_TRUE(interpolate({{1, 0, 0}, {1, 0, 0}, {2, 0, 0}}, 3, false, false, why));   // a doubled point
}

TEST(Rebuild, NoMultipleKnotsKeepsCvsOrShape)
{
    RebuildOptions o;
    o.type = Rebuild::noMultipleKnots;
    o.multipleEndKnots = true;
    const Ref<CurveBody> open = wave(), same = rebuildCurve(*open, o, why);
    ASSERT_EQ(same->cvCount(), open->cvCount());
    for (size_t i = 0; i < open->cvs->size(); ++i)
        EXPECT_EQ((*same->cvs)[i], (*open->cvs)[i]);

    // a periodic cubic becomes an open one of the same shape with as many CVs as with the repeated ones
    const Ref<CurveBody> ring = circle({}, 1, kTurn, 3, 8, why), cut = rebuildCurve(*ring, o, why);
    EXPECT_EQ(cut->form, NurbsForm::open);
    EXPECT_EQ(cut->cvCount(), ring->cvCount());
    EXPECT_LT(deviation(CurveView(*ring), CurveView(*cut)), 1e-10);
    EXPECT_NEAR((*cut->cvs)[0].z, -1, 1e-12);

    // an inner knot that was double goes away, and the curve comes back degree by degree
    const Ref<CurveBody> kinked = curve({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {3, 1, 0}, {4, 0, 0}}, {0, 0, 1, 1, 2, 2}, 2);
    EXPECT_EQ(rebuildCurve(*kinked, o, why)->cvCount(), 4);
    EXPECT_EQ(rebuildCurve(*curve({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}, {0, 1, 2}, 1), o, why)->degree, 1);
}

TEST(Rebuild, UniformFitReproducesWhatItCanAndStaysClose)
{
    RebuildOptions o;
    o.spans = 3;
    o.keepRange = 0;
    const Ref<CurveBody> source = curve({{0, 0, 0}, {1, 3, 0}, {2, 1, 2}, {4, 0, 0}, {5, 1, 1}, {7, 7, 0}},
                                        uniformKnots(3, 3, false), 3);
    const Ref<CurveBody> again = rebuildCurve(*source, o, why);
    EXPECT_LT(deviation(CurveView(*source), CurveView(*again)), 1e-11);
    EXPECT_EQ(CurveView(*again).k.end(), 1);

    o.spans = 24;
    const Ref<CurveBody> ring = rationalCircle(), fit = rebuildCurve(*ring, o, why);
    EXPECT_EQ(fit->cvCount(), 27);
    // the circle's second derivative jumps at the quarters, which a cubic spline smooths over a span
    EXPECT_LT(deviation(CurveView(*ring), CurveView(*fit)), 2e-3);

    o.type = Rebuild::curvature;
    o.tolerance = 1e-3;
    EXPECT_LT(deviation(CurveView(*ring), CurveView(*rebuildCurve(*ring, o, why))), 1.5e-3);
    o.type = Rebuild::matchKnots;
    EXPECT_FALSE(rebuildCurve(*ring, o, why));
    EXPECT_NE(why, "");
}

TEST(Surface, DerivativesNormalsAndNearestPoints)
{
    const Ref<SurfaceBody> body = bumpy();
    const SurfaceView      s(*body);
    const double           h = 1e-5, u = 0.83, v = 1.21;
    const SurfaceDerivatives d = derivativesAt(s, u, v);
    EXPECT_NEAR(((pointAt(s, u + h, v) - pointAt(s, u - h, v)) / (2 * h) - d.du).length(), 0, 1e-8);
    EXPECT_NEAR(((pointAt(s, u, v + h) - pointAt(s, u, v - h)) / (2 * h) - d.dv).length(), 0, 1e-8);
    EXPECT_NEAR(((derivativesAt(s, u, v + h).du - derivativesAt(s, u, v - h).du) / (2 * h) - d.duv).length(), 0, 1e-7);

    for (double offset : {0.05, -0.2}) {   // a point over the surface finds its foot again
        const UV at = closestParams(s, d.p + normalAt(s, u, v) * offset);
        EXPECT_NEAR(at.u, u, 1e-7);
        EXPECT_NEAR(at.v, v, 1e-7);
    }
    double best = 1e9;
    const MVector far(6, 3, -2);
    for (int i = 0; i <= 400; ++i)
        for (int j = 0; j <= 400; ++j)
            best = std::min(best, (pointAt(s, 2.0 * i / 400, 2.0 * j / 400) - far).length());
    const UV at = closestParams(s, far);
    EXPECT_LE((pointAt(s, at.u, at.v) - far).length(), best + 1e-12);
}

TEST(Primitives, ShapesSizesAndOutwardNormals)
{
    const Placement      origin;
    const Ref<SurfaceBody> ball = sphere(origin, 2, 0, kTurn, 3, 16, 12, why);
    ASSERT_TRUE(ball) << why;
    const SurfaceView s(*ball);
    for (double u : {0.0, 3.3, 6.0, 11.7, 12.0})
        for (double v : {0.1, 5.5, 15.9}) {
            EXPECT_NEAR(pointAt(s, u, v).length(), 2, 2e-3);
            EXPECT_GT(normalAt(s, u, v) * pointAt(s, u, v), 1.9) << u << " " << v;
        }
    EXPECT_NEAR(area(s), 16 * M_PI, 0.05);
    EXPECT_NEAR(area(SurfaceView(*plane(origin, 3, 2, 3, 2, 4, why))), 18, 1e-6);
    EXPECT_GT(normalAt(SurfaceView(*plane(origin, 1, 1, 1, 1, 1, why)), 0.3, 0.4).y, 0.99);

    const Ref<SurfaceBody> tube = cylinder(origin, 1, 4, kTurn, 3, 16, 1, why);
    EXPECT_NEAR(area(SurfaceView(*tube)), 8 * M_PI, 0.01);
    EXPECT_GT(normalAt(SurfaceView(*tube), 0.5, 2) * pointAt(SurfaceView(*tube), 0.5, 2), 0.9);
    const Ref<SurfaceBody> ring = torus(origin, 2, 0.25, kTurn, kTurn, 3, 16, 12, why);
    EXPECT_NEAR(area(SurfaceView(*ring)), 4 * M_PI * M_PI * 2 * 0.5, 0.05);   // (2 pi R)(2 pi r)
    EXPECT_TRUE(cone(origin, 1, 2, M_PI, 3, 4, 1, why));
    EXPECT_FALSE(sphere(origin, -1, 0, kTurn, 3, 8, 4, why));
    EXPECT_FALSE(circle(origin, 1, kTurn, 2, 8, why));

    // a quarter arc meets its circle at the span ends and leaves it square to the radius
    const Ref<CurveBody> arc = circle(origin, 1, M_PI / 2, 3, 4, why);
    const CurveView      c(*arc);
    for (int i = 0; i <= 4; ++i)
        EXPECT_NEAR(pointAt(c, i).length(), 1, 1e-12);
    EXPECT_NEAR(derivativesAt(c, 0).d1 * pointAt(c, 0), 0, 1e-12);
}

TEST(Extrude, RibbonHasTwoCvsForEachOfTheProfile)
{
    ExtrudeOptions o;
    o.type = Extrude::distance;
    o.direction = MVector(0, 0, 3);
    o.length = 2;
    const Ref<CurveBody>   profile = rationalCircle();
    const Ref<SurfaceBody> ribbon = extrude(*profile, nullptr, o, why);
    ASSERT_TRUE(ribbon) << why;
    ASSERT_EQ(ribbon->cvsU, 9);
    ASSERT_EQ(ribbon->cvsV, 2);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ((*ribbon->cvs)[size_t(2 * i)], (*profile->cvs)[size_t(i)]);
    EXPECT_NEAR((pointAt(SurfaceView(*ribbon), 0.6, 1) - MVector(0, 0, 2) - pointAt(CurveView(*profile), 0.6)).length(), 0, 1e-12);
    o.direction = MVector();
    EXPECT_FALSE(extrude(*profile, nullptr, o, why));
}

TEST(Extrude, TubeFollowsItsPath)
{
    ExtrudeOptions o;
    o.useProfileNormal = true;
    const Ref<CurveBody>   profile = circle({}, 0.3, kTurn, 3, 8, why), path = wave();
    const Ref<SurfaceBody> tube = extrude(*profile, path.get(), o, why);
    ASSERT_TRUE(tube) << why;
    const SurfaceView s(*tube);
    const CurveView   p(*path);
    for (int i = 0; i < path->cvCount(); ++i) {   // at the sections the profile stands square to the path
        const double v = greville(p.k, i);
        const MVector out = pointAt(s, 1.0, v) - pointAt(p, v);
        EXPECT_NEAR(out.length(), 0.3, 1e-9);
        EXPECT_NEAR(out * tangentAt(p, v), 0, 1e-9);
    }
    o.type = Extrude::flat;
    const Ref<SurfaceBody> flat = extrude(*profile, path.get(), o, why);
    EXPECT_NEAR((pointAt(SurfaceView(*flat), 2.2, 1.1) - pointAt(CurveView(*profile), 2.2) - pointAt(p, 1.1)).length(), 0, 1e-12);
    EXPECT_FALSE(extrude(*profile, nullptr, o, why));
}

TEST(Tessellate, ControlVerticesInCvOrder)
{
    TessellateOptions o;
    o.format = TessellateOptions::controlVertices;
    o.matchNormalDir = true;
    const Ref<SurfaceBody> body = bumpy();
    Polygons               mesh;
    ASSERT_TRUE(tessellate(*body, o, mesh, why));
    ASSERT_EQ(mesh.points.size(), 20u);
    for (size_t i = 0; i < 20; ++i)
        EXPECT_EQ(mesh.points[i], MVector((*body->cvs)[i]));
    EXPECT_EQ(mesh.counts.size(), 12u);
    EXPECT_EQ(mesh.u.size(), 20u);
    const int* f = mesh.connects.data();
    const MVector n = (mesh.points[size_t(f[1])] - mesh.points[size_t(f[0])]) ^ (mesh.points[size_t(f[3])] - mesh.points[size_t(f[0])]);
    EXPECT_GT(n * normalAt(SurfaceView(*body), 0, 0), 0);

    // periodic in one direction: the repeated CVs make no vertices, the last column of faces leads back
    const Ref<SurfaceBody> ball = sphere({}, 1, 0, kTurn, 3, 8, 4, why);
    ASSERT_TRUE(tessellate(*ball, o, mesh, why));
    EXPECT_EQ(ball->cvsU * ball->cvsV, 77);
    EXPECT_EQ(mesh.points.size(), 56u);
    EXPECT_EQ(mesh.counts.size(), 48u);
    EXPECT_EQ(mesh.u.size(), 63u);
    o.quads = false;
    ASSERT_TRUE(tessellate(*ball, o, mesh, why));
    EXPECT_EQ(mesh.counts.size(), 96u);
    EXPECT_FALSE(tessellate(SurfaceBody(), o, mesh, why));
}

TEST(Tessellate, GeneralStandsOnTheSurface)
{
    TessellateOptions o;
    o.numberU = 4;
    o.numberV = 2;
    const Ref<SurfaceBody> ring = torus({}, 2, 0.25, kTurn, kTurn, 3, 8, 4, why);
    Polygons               mesh;
    ASSERT_TRUE(tessellate(*ring, o, mesh, why));
    EXPECT_EQ(mesh.points.size(), 4u * 4 * 8 * 2);   // closed both ways: as many faces as vertices
    EXPECT_EQ(mesh.counts.size(), mesh.points.size());
    const SurfaceView s(*ring);
    for (size_t i = 0; i < mesh.points.size(); i += 37) {
        const UV at = closestParams(s, mesh.points[i]);
        EXPECT_NEAR((pointAt(s, at.u, at.v) - mesh.points[i]).length(), 0, 1e-9);
    }
    for (int id : mesh.connects)
        ASSERT_TRUE(id >= 0 && id < int(mesh.points.size()));
    for (auto format : {TessellateOptions::count, TessellateOptions::fit}) {
        o.format = format;
        ASSERT_TRUE(tessellate(*ring, o, mesh, why));
        EXPECT_GT(mesh.counts.size(), 50u);
    }
    o.chordHeight = 0;
    EXPECT_FALSE(tessellate(*ring, o, mesh, why));
}

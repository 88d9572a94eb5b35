// Surfaces by laws: derivatives against differences, areas by hand, nearest points by search, rows of CVs, spaces.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MItSurfaceCV.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

namespace {

using Numbers = std::vector<double>;

MDoubleArray array(const Numbers& n) { return MDoubleArray(n.data(), unsigned(n.size())); }

MObject surface(const std::vector<MPoint>& cvs, const Numbers& u, const Numbers& v, unsigned du, unsigned dv, bool rational = false)
{
    MFnNurbsSurfaceData data;
    MObject             owner = data.create();
    MStatus             s;
    MFnNurbsSurface().create(MPointArray(cvs.data(), unsigned(cvs.size())), array(u), array(v), du, dv, MFnNurbsSurface::kOpen,
                             MFnNurbsSurface::kOpen, rational, owner, &s);
    EXPECT_EQ(s, MS::kSuccess);
    return owner;
}

/// 3 by 2 over [0, 4] x [0, 1]: u along x, v along y.
MObject plate() { return surface({{0, 0, 0}, {0, 2, 0}, {1, 0, 0}, {1, 2, 0}, {3, 0, 0}, {3, 2, 0}}, {0, 2, 4}, {0, 1}, 1, 1); }

/// A quarter of a cylinder of radius 2 and height 3, exactly; u around, v up.
MObject quarter()
{
    const double w = std::sqrt(0.5);
    return surface({{2, 0, 0}, {2, 0, 3}, MPoint(2 * w, 2 * w, 0, w), MPoint(2 * w, 2 * w, 3 * w, w), {0, 2, 0}, {0, 2, 3}}, {0, 0, 1, 1}, {0, 1}, 2, 1, true);
}

/// A hilly cubic by quadratic patch with uneven knots.
MObject hills()
{
    std::vector<MPoint> cvs;
    for (int u = 0; u < 5; ++u)
        for (int v = 0; v < 4; ++v)
            cvs.emplace_back(u * 1.5, v + 0.2 * u, std::sin(u * 1.3) + std::cos(v * 2.1 + u));
    return surface(cvs, {0, 0, 0, 1, 3, 3, 3}, {2, 2, 3, 6, 6}, 3, 2);
}

MPoint at(const MFnNurbsSurface& fn, double u, double v, MSpace::Space space = MSpace::kObject)
{
    MPoint p;
    EXPECT_TRUE(fn.getPointAtParam(u, v, p, space)) << u << " " << v;
    return p;
}

}  // namespace

TEST(SurfaceLaws, PointsAndAreasByHand)
{
    MFnNurbsSurface flat(plate()), round(quarter());
    EXPECT_TRUE(at(flat, 1, 0.25).isEquivalent(MPoint(0.5, 0.5, 0), 1e-12));
    EXPECT_TRUE(at(flat, 3, 1).isEquivalent(MPoint(2, 2, 0), 1e-12)) << "the second span is twice as long";
    EXPECT_NEAR(flat.area(), 6, 1e-6);
    EXPECT_NEAR(round.area(), 3 * M_PI, 1e-3);   // a quarter of 2 pi r h
    for (const double u : {0.0, 0.3, 0.8, 1.0}) {
        const MPoint p = at(round, u, 0.5);
        EXPECT_NEAR(std::hypot(p.x, p.y), 2, 1e-9);
        EXPECT_NEAR(p.z, 1.5, 1e-9);
        const MVector n = round.normal(u, 0.5);
        EXPECT_NEAR(std::abs(n * MVector(p.x, p.y, 0)), 2, 1e-6) << "along the radius";
    }
    EXPECT_NEAR(flat.normal(1, 0.5).z, 1, 1e-9) << "u to v, right handed";
}

TEST(SurfaceLaws, DerivativesAgainstDifferences)
{
    for (const MObject& o : {hills(), quarter()}) {
        MFnNurbsSurface fn(o);
        double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
        ASSERT_TRUE(fn.getKnotDomain(u0, u1, v0, v1));
        for (const double pu : {0.13, 0.61, 0.9})
            for (const double pv : {0.2, 0.77}) {
                const double u = u0 + pu * (u1 - u0), v = v0 + pv * (v1 - v0), h = 1e-4;
                MPoint  p;
                MVector du, dv, duu, dvv, duv, tu, tv;
                ASSERT_TRUE(fn.getDerivativesAtParam(u, v, p, du, dv, MSpace::kObject, &duu, &dvv, &duv));
                EXPECT_TRUE(p.isEquivalent(at(fn, u, v), 1e-12));
                EXPECT_TRUE(du.isEquivalent((at(fn, u + h, v) - at(fn, u - h, v)) / (2 * h), 1e-4 * (1 + du.length())));
                EXPECT_TRUE(dv.isEquivalent((at(fn, u, v + h) - at(fn, u, v - h)) / (2 * h), 1e-4 * (1 + dv.length())));
                EXPECT_TRUE(duu.isEquivalent(((at(fn, u + h, v) - p) - (p - at(fn, u - h, v))) / (h * h), 1e-3 * (1 + duu.length())));
                EXPECT_TRUE(dvv.isEquivalent(((at(fn, u, v + h) - p) - (p - at(fn, u, v - h))) / (h * h), 1e-3 * (1 + dvv.length())));
                const MVector mixed = ((at(fn, u + h, v + h) - at(fn, u + h, v - h)) - (at(fn, u - h, v + h) - at(fn, u - h, v - h))) / (4 * h * h);
                EXPECT_TRUE(duv.isEquivalent(mixed, 1e-3 * (1 + duv.length())));
                EXPECT_TRUE(fn.getTangents(u, v, tu, tv));
                EXPECT_TRUE(tu.isEquivalent(du.normal(), 1e-9) && tv.isEquivalent(dv.normal(), 1e-9));
                EXPECT_TRUE(fn.normal(u, v).normal().isEquivalent((du ^ dv).normal(), 1e-9));
            }
        MPoint p(7, 7, 7);
        EXPECT_EQ(fn.getPointAtParam(u1 + 1, v0, p), MS::kInvalidParameter);
        EXPECT_EQ(p.x, 7);
        EXPECT_FALSE(fn.isParamOnSurface(u0, v1 + 0.1));
        EXPECT_TRUE(fn.isParamOnSurface(u1, v1));
    }
}

TEST(SurfaceLaws, NearestPointsAgainstASearch)
{
    for (const MObject& o : {hills(), quarter(), plate()}) {
        MFnNurbsSurface fn(o);
        double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
        fn.getKnotDomain(u0, u1, v0, v1);
        for (const MPoint& p : {MPoint(1, 1, 4), MPoint(-3, 2, 0), MPoint(9, 9, -2), MPoint(2, 1, 0.3)}) {
            double best = 1e9;
            for (int i = 0; i <= 120; ++i)
                for (int j = 0; j <= 120; ++j)
                    best = std::min(best, at(fn, u0 + (u1 - u0) * i / 120, v0 + (v1 - v0) * j / 120).distanceTo(p));
            double       u = -9, v = -9;
            const MPoint near = fn.closestPoint(p, &u, &v);
            EXPECT_LE(near.distanceTo(p), best + 1e-6);
            EXPECT_TRUE(at(fn, u, v).isEquivalent(near, 1e-6));
            EXPECT_NEAR(fn.distanceToPoint(p), near.distanceTo(p), 1e-6);
            double bu = -9, bv = -9;
            EXPECT_TRUE(fn.getParamAtPoint(near, bu, bv));
            EXPECT_TRUE(at(fn, bu, bv).isEquivalent(near, 1e-3));
        }
        double u = -9, v = -9;
        EXPECT_FALSE(fn.getParamAtPoint(MPoint(90, 90, 90), u, v));
        EXPECT_EQ(u, -9);
    }
}

TEST(SurfaceLaws, CountsKnotsAndCvs)
{
    MFnNurbsSurface fn(hills());
    EXPECT_EQ(fn.numCVsInU(), 5);
    EXPECT_EQ(fn.numCVsInV(), 4);
    EXPECT_EQ(fn.numSpansInU(), 2);
    EXPECT_EQ(fn.numSpansInV(), 2);
    EXPECT_EQ(fn.numKnotsInU(), 7);
    EXPECT_EQ(fn.numKnotsInV(), 5);
    EXPECT_EQ(fn.degreeU(), 3);
    EXPECT_EQ(fn.degreeV(), 2);
    EXPECT_EQ(fn.knotInU(4), 3);
    EXPECT_EQ(fn.knotInV(2), 3);
    MStatus s;
    fn.knotInU(7, &s);
    EXPECT_EQ(s, MS::kInvalidParameter);
    MPointArray all;
    MPoint      p;
    EXPECT_TRUE(fn.getCVs(all));
    ASSERT_EQ(all.length(), 20u);
    for (unsigned u = 0; u < 5; ++u)
        for (unsigned v = 0; v < 4; ++v) {
            EXPECT_TRUE(fn.getCV(u, v, p));
            EXPECT_TRUE(p.isEquivalent(all[u * 4 + v]));
        }
    EXPECT_EQ(fn.getCV(5, 0, p), MS::kInvalidParameter);
    EXPECT_EQ(fn.getCV(0, 4, p), MS::kInvalidParameter);
    EXPECT_EQ(fn.setCV(0, 4, p), MS::kInvalidParameter);
    EXPECT_TRUE(fn.setCV(2, 1, MPoint(9, 8, 7)));
    EXPECT_TRUE(fn.getCVs(all) && all[9].isEquivalent(MPoint(9, 8, 7)));
    all.remove(0);
    EXPECT_EQ(fn.setCVs(all), MS::kInvalidParameter);
}

TEST(SurfaceLaws, IteratorsByRowAndByColumn)
{
    MObject data = hills();
    for (const bool rows : {true, false}) {
        MItSurfaceCV it(data, rows);
        int          lines = 0, seen = 0;
        for (; !it.isDone(); it.nextRow(), ++lines)
            for (int k = 0; !it.isRowDone(); it.next(), ++k, ++seen) {
                int u = -1, v = -1;
                EXPECT_TRUE(it.getIndex(u, v));
                EXPECT_EQ(u, rows ? lines : k);
                EXPECT_EQ(v, rows ? k : lines);
                EXPECT_EQ(it.index(), u * 4 + v);
            }
        EXPECT_EQ(lines, rows ? 5 : 4);
        EXPECT_EQ(seen, 20);
    }
}

namespace {

class SurfaceScene : public mirk::test::Host
{};

}  // namespace

TEST_F(SurfaceScene, WorldSpaceAndForms)
{
    mel("sphere -n ball -r 2 -ch 0; setAttr ball.t 10 0 0; setAttr ball.s 1 1 3; cylinder -n tube -r 1 -hr 4 -ch 0; select -cl;");
    MSelectionList list;
    MDagPath       path;
    list.add("ball");
    ASSERT_TRUE(list.getDagPath(0, path) && path.extendToShape());
    MFnNurbsSurface fn(path);
    EXPECT_NEAR(fn.area(MSpace::kObject), 16 * M_PI, 0.2);
    EXPECT_TRUE(fn.closestPoint(MPoint(10, 0, 50), nullptr, nullptr, false, 1e-3, MSpace::kWorld).isEquivalent(MPoint(10, 0, 6), 0.02));
    EXPECT_NEAR(fn.distanceToPoint(MPoint(20, 0, 0), MSpace::kWorld), 8, 0.02);
    EXPECT_NEAR(fn.distanceToPoint(MPoint(20, 0, 0), MSpace::kObject), 18, 0.02);
    const bool aroundU = fn.formInU() == MFnNurbsSurface::kPeriodic;
    EXPECT_NE(aroundU, fn.formInV() == MFnNurbsSurface::kPeriodic) << "round one way, with poles the other";
    double u0, u1, v0, v1;
    fn.getKnotDomain(u0, u1, v0, v1);
    const MPoint seam = aroundU ? at(fn, u0, (v0 + v1) / 2) : at(fn, (u0 + u1) / 2, v0);
    EXPECT_TRUE(seam.isEquivalent(aroundU ? at(fn, u1, (v0 + v1) / 2) : at(fn, (u0 + u1) / 2, v1), 1e-9));

    list.clear();
    list.add("tube");
    ASSERT_TRUE(list.getDagPath(0, path) && path.extendToShape());
    MFnNurbsSurface tube(path);
    EXPECT_NEAR(tube.area(), 2 * M_PI * 4, 0.2);   // height 4 at radius 1
    MStatus s;
    MFnNurbsSurface none(path.transform(), &s);
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_EQ(none.numCVsInU(), 0);
}

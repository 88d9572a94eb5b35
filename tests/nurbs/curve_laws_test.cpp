// Curves by laws: arc length and its inverse, derivatives against differences, closed and periodic forms, knots, spaces.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MItCurveCV.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

namespace {

using Points  = std::vector<MPoint>;
using Numbers = std::vector<double>;

MPointArray array(const Points& p) { return MPointArray(p.data(), unsigned(p.size())); }
MDoubleArray array(const Numbers& n) { return MDoubleArray(n.data(), unsigned(n.size())); }

MObject curve(const Points& cvs, const Numbers& knots, unsigned degree, MFnNurbsCurve::Form form = MFnNurbsCurve::kOpen, bool rational = false)
{
    MFnNurbsCurveData data;
    MObject           owner = data.create();
    MStatus           s;
    MFnNurbsCurve().create(array(cvs), array(knots), degree, form, false, rational, owner, &s);
    EXPECT_EQ(s, MS::kSuccess);
    return owner;
}

/// A quarter of a circle of radius 2, exactly, over 0 to 1.
MObject quarter()
{
    const double w = std::sqrt(0.5);
    return curve({{2, 0, 0}, MPoint(2 * w, 2 * w, 0, w), {0, 2, 0}}, {0, 0, 1, 1}, 2, MFnNurbsCurve::kOpen, true);
}

/// Uneven knots over 1 to 7, out of the plane.
MObject wavy()
{
    return curve({{0, 0, 0}, {1, 2, 0}, {3, -1, 1}, {4, 3, 2}, {6, 0, -1}, {7, 1, 0}}, {1, 1, 1, 2, 4, 7, 7, 7}, 3);
}

/// Four CVs around a square and the first three again, knots 0 to 8 of equal steps: periodic over 2 to 6.
MObject loop()
{
    const Points square = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    return curve(square, {0, 1, 2, 3, 4, 5, 6, 7, 8}, 3, MFnNurbsCurve::kPeriodic);
}

MPoint at(const MFnNurbsCurve& fn, double u, MSpace::Space space = MSpace::kObject)
{
    MPoint p;
    EXPECT_TRUE(fn.getPointAtParam(u, p, space)) << u;
    return p;
}

/// The length of the chords between many points.
double chords(const MFnNurbsCurve& fn, double from, double to)
{
    const int n = 4000;
    double    sum = 0;
    MPoint    last = at(fn, from);
    for (int i = 1; i <= n; ++i) {
        const MPoint p = at(fn, std::min(from + (to - from) * i / n, to));
        sum += p.distanceTo(last);
        last = p;
    }
    return sum;
}

}  // namespace

TEST(CurveLaws, LengthAndItsInverse)
{
    MFnNurbsCurve circle(quarter());
    EXPECT_NEAR(circle.length(), M_PI, 1e-6);   // radius 2, a quarter
    EXPECT_NEAR(circle.findParamFromLength(M_PI / 2), 0.5, 1e-6) << "by symmetry";
    const MPoint third = at(circle, circle.findParamFromLength(M_PI / 3));
    EXPECT_NEAR(third.x, 2 * std::cos(M_PI / 6), 1e-5);
    EXPECT_NEAR(third.y, 2 * std::sin(M_PI / 6), 1e-5);

    for (const MObject& o : {wavy(), loop(), quarter()}) {
        MFnNurbsCurve fn(o);
        double        start = 0, end = 0;
        ASSERT_TRUE(fn.getKnotDomain(start, end));
        const double total = fn.length();
        EXPECT_NEAR(total, chords(fn, start, end), 1e-4 * total);
        for (const double part : {0.0, 0.2, 0.55, 0.9, 1.0}) {
            const double u = start + part * (end - start);
            const double l = fn.findLengthFromParam(u);
            EXPECT_NEAR(l, part == 0 ? 0 : chords(fn, start, u), 1e-4 * total) << part;
            EXPECT_NEAR(fn.findParamFromLength(l), u, 1e-4) << part;
        }
        EXPECT_EQ(fn.findParamFromLength(total * 2), end);
        EXPECT_EQ(fn.findParamFromLength(-1), start);
    }
}

TEST(CurveLaws, DerivativesTangentsAndNormals)
{
    for (const MObject& o : {wavy(), loop(), quarter()}) {
        MFnNurbsCurve fn(o);
        double        start = 0, end = 0;
        fn.getKnotDomain(start, end);
        for (const double part : {0.11, 0.37, 0.63, 0.94}) {
            const double u = start + part * (end - start), h = 1e-4 * (end - start);
            MPoint       p;
            MVector      d1, d2;
            ASSERT_TRUE(fn.getDerivativesAtParm(u, p, d1, MSpace::kObject, &d2));
            EXPECT_TRUE(p.isEquivalent(at(fn, u), 1e-12));
            const MVector slope = (at(fn, u + h) - at(fn, u - h)) / (2 * h);
            const MVector bend = ((at(fn, u + h) - p) - (p - at(fn, u - h))) / (h * h);
            EXPECT_TRUE(slope.isEquivalent(d1, 1e-4 * (1 + d1.length()))) << part;
            EXPECT_TRUE(bend.isEquivalent(d2, 1e-3 * (1 + d2.length()))) << part;
            const MVector t = fn.tangent(u), n = fn.normal(u);
            EXPECT_TRUE(t.isEquivalent(d1.normal(), 1e-9));
            EXPECT_NEAR(n * t, 0, 1e-9);
            EXPECT_NEAR(n.length(), 1, 1e-9);
            const MVector inward = d2 - (d2 * t) * t;   // to the side that the curve bends to
            EXPECT_TRUE(n.isEquivalent(inward.normal(), 1e-6)) << part;
        }
    }
    MFnNurbsCurve circle(quarter());
    EXPECT_TRUE(circle.normal(0.3).isEquivalent(-MVector(at(circle, 0.3)).normal(), 1e-9)) << "to the centre";
    MStatus s;
    circle.tangent(1.5, MSpace::kObject, &s);
    EXPECT_EQ(s, MS::kInvalidParameter);
    circle.normal(-0.5, MSpace::kObject, &s);
    EXPECT_EQ(s, MS::kInvalidParameter);
}

TEST(CurveLaws, ClosestPointsAndTheirParameters)
{
    const Points from = {{0, 5, 0}, {3, 0, 3}, {9, 9, 9}, {-4, 0, 0}, {3, 0.5, 0.4}};
    for (const MObject& o : {wavy(), loop(), quarter()}) {
        MFnNurbsCurve fn(o);
        double        start = 0, end = 0;
        fn.getKnotDomain(start, end);
        for (const MPoint& p : from) {
            double best = 1e9;
            for (int i = 0; i <= 4000; ++i)
                best = std::min(best, at(fn, start + (end - start) * i / 4000).distanceTo(p));
            double       u = -1;
            const MPoint near = fn.closestPoint(p, &u);
            EXPECT_NEAR(near.distanceTo(p), best, 1e-4);
            EXPECT_LE(near.distanceTo(p), best + 1e-9);
            EXPECT_TRUE(at(fn, u).isEquivalent(near, 1e-9));
            EXPECT_NEAR(fn.distanceToPoint(p), near.distanceTo(p), 1e-9);
            double back = -1;
            EXPECT_TRUE(fn.getParamAtPoint(near, back));
            EXPECT_TRUE(at(fn, back).isEquivalent(near, 1e-3));
            EXPECT_TRUE(fn.isPointOnCurve(near));
        }
        double u = -7;
        EXPECT_EQ(fn.getParamAtPoint(MPoint(50, 50, 50), u), MS::kInvalidParameter);
        EXPECT_EQ(u, -7);
        EXPECT_FALSE(fn.isPointOnCurve(MPoint(50, 50, 50)));
        EXPECT_TRUE(fn.isPointOnCurve(MPoint(50, 50, 50), 1000));
    }
}

TEST(CurveLaws, FormsCountsAndKnots)
{
    struct Case { const char* what; MObject curve; int form, degree, cvs, spans, knots; double start, end; };
    const Case cases[] = {
        {"wavy", wavy(), MFnNurbsCurve::kOpen, 3, 6, 3, 8, 1, 7},
        {"loop", loop(), MFnNurbsCurve::kPeriodic, 3, 7, 4, 9, 2, 6},
        {"quarter", quarter(), MFnNurbsCurve::kOpen, 2, 3, 1, 4, 0, 1},
        {"triangle", curve({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}, {0, 1, 2, 3}, 1, MFnNurbsCurve::kClosed), MFnNurbsCurve::kClosed, 1, 4, 3, 4, 0, 3},
    };
    for (const Case& c : cases) {
        MFnNurbsCurve fn(c.curve);
        double        start = 0, end = 0;
        EXPECT_TRUE(fn.getKnotDomain(start, end));
        EXPECT_EQ(fn.form(), c.form) << c.what;
        EXPECT_EQ(fn.degree(), c.degree) << c.what;
        EXPECT_EQ(fn.numCVs(), c.cvs) << c.what;
        EXPECT_EQ(fn.numSpans(), c.spans) << c.what;
        EXPECT_EQ(fn.numKnots(), c.knots) << c.what;
        EXPECT_EQ(start, c.start) << c.what;
        EXPECT_EQ(end, c.end) << c.what;
        EXPECT_TRUE(fn.isParamOnCurve(start) && fn.isParamOnCurve(end) && !fn.isParamOnCurve(end + 0.01) && !fn.isParamOnCurve(start - 0.01));
        if (c.form != MFnNurbsCurve::kOpen) {
            EXPECT_TRUE(at(fn, start).isEquivalent(at(fn, end), 1e-9)) << c.what;
        }
        MDoubleArray knots;
        EXPECT_TRUE(fn.getKnots(knots));
        EXPECT_EQ(int(knots.length()), c.knots);
        for (unsigned i = 0; i < knots.length(); ++i)
            EXPECT_EQ(fn.knot(i), knots[i]);
        MStatus s;
        fn.knot(knots.length(), &s);
        EXPECT_EQ(s, MS::kInvalidParameter);
    }
    MVector normal;
    EXPECT_TRUE(MFnNurbsCurve(quarter()).isPlanar(&normal));
    EXPECT_NEAR(std::abs(normal.z), 1, 1e-9);
    EXPECT_FALSE(MFnNurbsCurve(wavy()).isPlanar());

    // the same curve over another domain
    MFnNurbsCurve fn(quarter());
    const MPoint  before = at(fn, 0.25);
    EXPECT_TRUE(fn.setKnots(array(Numbers{10, 10, 14, 14}), 0, 3));
    EXPECT_TRUE(at(fn, 11).isEquivalent(before, 1e-12));
    EXPECT_NEAR(fn.length(), M_PI, 1e-6);
    EXPECT_FALSE(fn.setKnots(array(Numbers{14, 14, 10, 10}), 0, 3)) << "falling";
    EXPECT_TRUE(at(fn, 11).isEquivalent(before, 1e-12));
}

TEST(CurveLaws, ReversedItRunsTheOtherWay)
{
    for (const MObject& o : {wavy(), loop(), quarter()}) {
        MFnNurbsCurve fn(o);
        double        start = 0, end = 0;
        fn.getKnotDomain(start, end);
        Points        there;
        for (int i = 0; i <= 10; ++i)
            there.push_back(at(fn, start + (end - start) * i / 10));
        EXPECT_TRUE(fn.reverse());
        double newStart = 0, newEnd = 0;
        fn.getKnotDomain(newStart, newEnd);
        EXPECT_NEAR(newEnd - newStart, end - start, 1e-12);
        for (int i = 0; i <= 10; ++i)
            EXPECT_TRUE(at(fn, newEnd + (newStart - newEnd) * i / 10).isEquivalent(there[size_t(i)], 1e-9)) << i;
    }
}

TEST(CurveLaws, ThroughEditPoints)
{
    const Points through = {{0, 0, 0}, {1, 3, 0}, {4, 2, 1}, {5, -1, 2}, {8, 0, 0}};
    for (const unsigned degree : {1u, 3u})
        for (const bool uniform : {true, false}) {
            MFnNurbsCurveData data;
            MObject           owner = data.create();
            MFnNurbsCurve     fn;
            MStatus           s;
            fn.createWithEditPoints(array(through), degree, MFnNurbsCurve::kOpen, false, false, uniform, owner, &s);
            ASSERT_EQ(s, MS::kSuccess);
            double start = 0, end = 0;
            fn.getKnotDomain(start, end);
            EXPECT_TRUE(at(fn, start).isEquivalent(through.front(), 1e-9));
            EXPECT_TRUE(at(fn, end).isEquivalent(through.back(), 1e-9));
            for (const MPoint& p : through)
                EXPECT_LT(fn.distanceToPoint(p), 1e-6) << degree << uniform;
            if (uniform) {
                EXPECT_TRUE(at(fn, start + (end - start) / 2).isEquivalent(through[2], 1e-6)) << "the third of five";
            }
        }
}

namespace {

class CurveScene : public mirk::test::Host
{
protected:
    static MDagPath path(const char* name)
    {
        MSelectionList list;
        MDagPath       p;
        EXPECT_TRUE(list.add(MString(name)) && list.getDagPath(0, p)) << name;
        return p;
    }
};

}  // namespace

TEST_F(CurveScene, WorldSpaceAlongAPath)
{
    mel("curve -n c -d 1 -p 0 0 0 -p 4 0 0 -k 0 -k 1; setAttr c.t 1 2 3; setAttr c.rz 90; setAttr c.sx 2;");
    MDagPath      p = path("c");
    p.extendToShape();
    MFnNurbsCurve fn(p);
    EXPECT_TRUE(at(fn, 0.5, MSpace::kWorld).isEquivalent(MPoint(1, 6, 3), 1e-9));
    EXPECT_TRUE(fn.tangent(0.5, MSpace::kWorld).isEquivalent(MVector(0, 1, 0), 1e-9));
    double u = 0;
    EXPECT_TRUE(fn.closestPoint(MPoint(9, 4, 3), &u, 1e-3, MSpace::kWorld).isEquivalent(MPoint(1, 4, 3), 1e-6));
    EXPECT_NEAR(u, 0.25, 1e-6);
    EXPECT_NEAR(fn.distanceToPoint(MPoint(9, 4, 3), MSpace::kWorld), 8, 1e-6);
    EXPECT_TRUE(fn.setCV(1, MPoint(1, 4, 3), MSpace::kWorld));
    EXPECT_EQ(nums("getAttr c.cv[1]").size(), 3u);
    MPoint end;
    EXPECT_TRUE(fn.getCV(1, end) && end.isEquivalent(MPoint(1, 0, 0), 1e-9));
    MPoint  position;
    MVector slope;
    EXPECT_TRUE(fn.getDerivativesAtParm(0.5, position, slope, MSpace::kWorld));
    EXPECT_TRUE(slope.isEquivalent(MVector(0, 2, 0), 1e-9)) << "scaled and turned";
    MStatus s;
    MFnNurbsCurve(path("c").node(), &s);
    EXPECT_NE(s, MS::kSuccess) << "a transform is no curve";

    MItCurveCV it(p);
    int        count = 0;
    for (; !it.isDone(); it.next(), ++count)
        EXPECT_TRUE(it.translateBy(MVector(0, 0, 1), MSpace::kWorld));
    EXPECT_EQ(count, 2);
    it.updateCurve();
    EXPECT_TRUE(at(fn, 0.5, MSpace::kWorld).isEquivalent(MPoint(1, 3, 4), 1e-9));
}

TEST_F(CurveScene, MadeUnderATransformOrOnItsOwn)
{
    MFnNurbsCurve fn;
    MStatus       s;
    const MObject made = fn.create(array(Points{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}), array(Numbers{0, 1, 2}), 1, MFnNurbsCurve::kOpen, false, false, MObject::kNullObj, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(made.hasFn(MFn::kTransform));
    EXPECT_NEAR(num("arclen " + std::string(MFnDagNode(made).name().asChar())), 2 * std::sqrt(2.0), 1e-6);
    mel("createNode transform -n home;");
    const MObject shape = fn.copy(fn.object(), path("home").node(), &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(shape.hasFn(MFn::kNurbsCurve));
    EXPECT_EQ(strings("listRelatives -s home").size(), 1u);
    const size_t before = strings("ls").size();
    EXPECT_TRUE(fn.create(array(Points{{0, 0, 0}}), array(Numbers{0}), 1, MFnNurbsCurve::kOpen, false, false, MObject::kNullObj, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_EQ(strings("ls").size(), before) << "nothing is half made";
}

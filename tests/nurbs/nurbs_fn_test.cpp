// Curve and surface function sets and the iterators over geometry points: spaces, sharing, periodic CVs, bad input.
#include <gtest/gtest.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MItCurveCV.h>
#include <maya/MItGeometry.h>
#include <maya/MItSurfaceCV.h>
#include <maya/MMatrix.h>
#include <maya/MPointArray.h>

#include "data/mobject.h"
#include "data/point_walk.h"
#include "nurbs/nurbs_data.h"
#include "nurbs/primitives.h"

using namespace mirk;

namespace {

MPointArray points(std::initializer_list<MPoint> list)
{
    MPointArray a;
    for (const MPoint& p : list)
        a.append(p);
    return a;
}

MDoubleArray doubles(std::initializer_list<double> list)
{
    MDoubleArray a;
    for (double d : list)
        a.append(d);
    return a;
}

/// A straight cubic from the origin to (3, 0, 0), in fresh data.
MObject line()
{
    MFnNurbsCurveData data;
    MObject           owner = data.create();
    MFnNurbsCurve     fn;
    MStatus           status;
    fn.create(points({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}), doubles({0, 0, 0, 1, 1, 1}), 3, MFnNurbsCurve::kOpen, false,
              false, owner, &status);
    EXPECT_EQ(status, MS::kSuccess);
    return owner;
}

MObject ring()
{
    std::string why;
    return wrap(make<CurveData>(nurbs::circle({}, 1, 2 * M_PI, 3, 8, why)));
}

MObject shareOf(const MObject& o) { return wrap(objectAs<Data>(o)->share()); }
MObject transformedOf(const MObject& o) { return wrap(objectAs<GeometryData>(o)->transformedView()); }

MMatrix moved(double x, double scale)
{
    MMatrix m = MMatrix() * scale;
    m(3, 3) = 1;
    m(3, 0) = x;
    return m;
}

}  // namespace

TEST(NurbsCurveFn, WorldSpaceIsThatOfTransformedData)
{
    MObject data = line();
    MFnNurbsCurveData(data).setMatrix(moved(10, 2));
    MFnNurbsCurve plain(data), seen(transformedOf(data));
    MPoint        p;
    plain.getCV(3, p, MSpace::kWorld);
    EXPECT_EQ(p.x, 3);
    seen.getCV(3, p, MSpace::kWorld);
    EXPECT_EQ(p.x, 16);
    seen.getCV(3, p, MSpace::kObject);
    EXPECT_EQ(p.x, 3);
    seen.setCV(0, MPoint(8, 0, 0), MSpace::kWorld);   // one body: the plain shell shows it too
    plain.getCV(0, p);
    EXPECT_EQ(p.x, -1);
    seen.getPointAtParam(1, p, MSpace::kWorld);
    EXPECT_NEAR(p.x, 16, 1e-12);
    double u = 0;
    EXPECT_NEAR(seen.closestPoint(MPoint(13, 5, 0), &u, 1e-3, MSpace::kWorld).x, 13, 1e-7);

    // copying the transformed shell bakes the matrix in, sharing keeps it
    MFnNurbsCurveData fresh;
    MObject           owner = fresh.create();
    MFnNurbsCurve     copy;
    copy.copy(seen.object(), owner);
    copy.getCV(3, p);
    EXPECT_EQ(p.x, 16);
    EXPECT_TRUE(fresh.matrixIsIdentity());
    MFnNurbsCurve(shareOf(data)).getCV(3, p);
    EXPECT_EQ(p.x, 3);
    EXPECT_FALSE(MFnNurbsCurveData(shareOf(data)).matrixIsIdentity());
}

TEST(NurbsCurveFn, SharedBuffersAreDetachedByTheWriter)
{
    const MObject data = line(), shared = shareOf(data);
    auto*         a = objectAs<CurveData>(data)->body.get();
    auto*         b = objectAs<CurveData>(shared)->body.get();
    MPointArray   cvs;
    MFnNurbsCurve(data).getCVs(cvs);
    EXPECT_EQ(a->cvs.get(), b->cvs.get());
    cvs[0].y = 5;
    MFnNurbsCurve(data).setCVs(cvs);
    EXPECT_NE(a->cvs.get(), b->cvs.get());
    EXPECT_EQ(a->knots.get(), b->knots.get());
    EXPECT_EQ((*b->cvs)[0].y, 0);
}

TEST(NurbsCurveFn, RefusesWithoutChangingAnything)
{
    MObject       data = line();
    MFnNurbsCurve fn(data);
    MStatus       status;
    MPoint        p(7, 7, 7);
    EXPECT_TRUE(fn.create(points({{0, 0, 0}, {1, 0, 0}}), doubles({0, 0}), 1, MFnNurbsCurve::kOpen, false, false, data, &status).isNull());
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_EQ(fn.numCVs(), 4);
    EXPECT_EQ(fn.getCV(4, p), MS::kInvalidParameter);
    EXPECT_EQ(p.x, 7);
    EXPECT_EQ(fn.setCV(4, p), MS::kInvalidParameter);
    EXPECT_EQ(fn.setCVs(points({{0, 0, 0}})), MS::kInvalidParameter);
    EXPECT_EQ(fn.getPointAtParam(1.5, p), MS::kInvalidParameter);
    EXPECT_EQ(fn.setKnot(3, -1), MS::kInvalidParameter);
    double u = 0;
    EXPECT_EQ(fn.getParamAtPoint(MPoint(1, 1, 0), u), MS::kInvalidParameter);
    EXPECT_EQ(fn.getParamAtPoint(MPoint(1.5, 0, 0), u), MS::kSuccess);
    EXPECT_NEAR(u, 0.5, 1e-9);
    EXPECT_TRUE(fn.cvs(2, 9).isNull());

    MFnNurbsCurveData fresh;
    MFnNurbsCurve     empty(fresh.create());
    EXPECT_EQ(empty.numCVs(&status), 0);
    EXPECT_EQ(status, MS::kFailure);
    EXPECT_EQ(empty.length(), 0);
    EXPECT_EQ(empty.closestPoint(MPoint(1, 1, 1)), MPoint());
    MFnNurbsSurface wrong(data, &status);
    EXPECT_NE(status, MS::kSuccess);
}

TEST(NurbsCurveFn, LengthAndReverse)
{
    MFnNurbsCurve fn(line());
    EXPECT_NEAR(fn.length(), 3, 1e-9);
    EXPECT_NEAR(fn.findLengthFromParam(fn.findParamFromLength(1.25)), 1.25, 1e-6);
    EXPECT_EQ(fn.findParamFromLength(100), 1);
    fn.reverse();
    MPoint p;
    fn.getPointAtParam(0, p);
    EXPECT_NEAR(p.x, 3, 1e-12);
    EXPECT_NEAR(fn.tangent(0.5).x, -1, 1e-12);
}

TEST(NurbsCurveFn, PeriodicCvsStayEqualToThoseTheyRepeat)
{
    MObject       data = ring();
    MFnNurbsCurve fn(data);
    MPoint        p;
    fn.setCV(9, MPoint(5, 5, 5));   // repeats CV 1
    fn.getCV(1, p);
    EXPECT_EQ(p, MPoint(5, 5, 5));

    MItCurveCV it(data);
    int        n = 0;
    for (; !it.isDone(); it.next())
        ++n;
    EXPECT_EQ(n, 8);   // those that repeat others are not walked
    EXPECT_EQ(fn.numCVs(), 11);

    MItGeometry all(data);
    MPointArray cvs;
    all.allPositions(cvs);
    ASSERT_EQ(cvs.length(), 8u);
    cvs[2] = MPoint(1, 2, 3);
    all.setAllPositions(cvs);
    fn.getCV(10, p);
    EXPECT_EQ(p, MPoint(1, 2, 3));
}

TEST(NurbsSurfaceFn, PeriodicCvsStayEqualToThoseTheyRepeat)
{
    std::string     why;   // 7 different CVs about the tube, 8 about the axis, 3 more of each
    const MObject   data = wrap(make<SurfaceData>(nurbs::torus({}, 2, 0.5, 2 * M_PI, 2 * M_PI, 3, 8, 7, why)));
    MFnNurbsSurface fn(data);
    ASSERT_EQ(fn.numCVsInU() * 100 + fn.numCVsInV(), 1011);
    MItGeometry it(data);
    while (it.index() != 9 * 11 + 10)
        it.next();
    it.setPosition(MPoint(5, 6, 7));
    MPoint p;
    for (unsigned u : {2u, 9u})
        for (unsigned v : {2u, 10u}) {
            fn.getCV(u, v, p);
            EXPECT_EQ(p, MPoint(5, 6, 7)) << u << " " << v;
        }
    fn.setCV(0, 8, MPoint(1, 1, 1));
    fn.getCV(7, 0, p);
    EXPECT_EQ(p, MPoint(1, 1, 1));
}

TEST(NurbsSurfaceFn, CvsRunAlongV)
{
    MFnNurbsSurfaceData data;
    MObject             owner = data.create();
    MFnNurbsSurface     fn;
    MPointArray         cvs;
    for (int u = 0; u < 3; ++u)
        for (int v = 0; v < 2; ++v)
            cvs.append(MPoint(u, 0, -v));
    MStatus status;
    fn.create(cvs, doubles({0, 1, 2}), doubles({0, 1}), 1, 1, MFnNurbsSurface::kOpen, MFnNurbsSurface::kOpen, false, owner, &status);
    ASSERT_EQ(status, MS::kSuccess);
    EXPECT_EQ(fn.numCVsInU(), 3);
    EXPECT_EQ(fn.numCVsInV(), 2);
    MPoint p;
    fn.getCV(2, 1, p);
    EXPECT_EQ(p, MPoint(2, 0, -1));
    EXPECT_EQ(fn.getCV(1, 2, p), MS::kInvalidParameter);
    EXPECT_NEAR(fn.normal(0.5, 0.5).y, 1, 1e-12);
    EXPECT_NEAR(fn.area(), 2, 1e-9);
    double u = 0, v = 0;
    EXPECT_EQ(fn.getParamAtPoint(MPoint(1.25, 0, -0.5), u, v), MS::kSuccess);
    EXPECT_NEAR(u, 1.25, 1e-9);
    EXPECT_EQ(fn.create(cvs, doubles({0, 1}), doubles({0, 1}), 1, 1, MFnNurbsSurface::kOpen, MFnNurbsSurface::kOpen, false, owner,
                        &status), MObject());
    EXPECT_EQ(fn.numCVsInU(), 3);

    MItGeometry               it(owner);
    MFnDoubleIndexedComponent item;
    std::vector<std::pair<int, int>> order;
    for (it.reset(); !it.isDone(); it.next()) {
        int cu = 0, cv = 0;
        item.setObject(it.currentItem());
        item.getElement(0, cu, cv);
        order.emplace_back(cu, cv);
    }
    EXPECT_EQ(order, (std::vector<std::pair<int, int>>{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {2, 1}}));

    MItSurfaceCV columns(owner, false);   // rows of one V index
    std::vector<int> rows;
    for (; !columns.isDone(); columns.nextRow())
        for (; !columns.isRowDone(); columns.next())
            rows.push_back(columns.index());
    EXPECT_EQ(rows, (std::vector<int>{0, 2, 4, 1, 3, 5}));
}

TEST(ItGeometry, ComponentsListsAndSpaces)
{
    MObject data = line();
    MFnNurbsCurveData(data).setMatrix(moved(10, 2));
    MFnSingleIndexedComponent component;
    MObject                   some = component.create(MFn::kCurveCVComponent);
    component.addElement(3);
    component.addElement(1);
    component.addElement(55);   // past the end: kept in the component, not walked
    MItGeometry it(transformedOf(data), some);
    ASSERT_EQ(it.count(), 2);
    EXPECT_EQ(it.index(), 1);
    EXPECT_EQ(it.position(MSpace::kWorld).x, 12);
    it.next();
    it.setPosition(MPoint(20, 2, 0), MSpace::kWorld);
    MPoint p;
    MFnNurbsCurve(data).getCV(3, p);
    EXPECT_EQ(p, MPoint(5, 1, 0));
    EXPECT_EQ(it.setAllPositions(points({{0, 0, 0}})), MS::kInvalidParameter);
    it.next();
    EXPECT_TRUE(it.isDone());
    EXPECT_TRUE(it.currentItem().isNull());
    EXPECT_EQ(it.setPosition(p), MS::kFailure);

    MFnComponentListData list;
    list.create();
    list.add(some);
    MItGeometry all(data);
    std::string in;
    for (; !all.isDone(); all.next())
        in += list.has(all.currentItem()) ? '1' : '0';
    EXPECT_EQ(in, "0101");
    all.reset();
    const MObject kept = all.currentItem();   // an item somebody keeps is not changed under his hands
    all.next();
    EXPECT_NE(all.currentItem(), kept);
    EXPECT_EQ(MFnSingleIndexedComponent(kept).element(0), 0);

    MStatus     status;
    MObject     wrong = component.create(MFn::kMeshVertComponent);
    MItGeometry none(data, wrong, &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_TRUE(none.isDone());
    MItGeometry nothing{MObject(), &status};
    EXPECT_NE(status, MS::kSuccess);
}

namespace {

/// A unit square of two triangles in the XZ plane, looking up.
MObject square()
{
    MIntArray counts(2, 3), connects;
    for (int i : {0, 1, 2, 0, 2, 3})
        connects.append(i);
    MObject owner = wrap(make<MeshData>());
    MFnMesh fn;
    fn.create(4, 2, points({{0, 0, 0}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}}), counts, connects, owner);
    return owner;
}

}  // namespace

TEST(ItGeometry, MeshVerticesAndTheirNormals)
{
    const MObject data = square(), shared = shareOf(data);
    MFnGeometryData(data).setMatrix(moved(10, 2));
    MItGeometry it(transformedOf(data));
    MPointArray all;
    it.allPositions(all, MSpace::kWorld);
    ASSERT_EQ(all.length(), 4u);
    EXPECT_EQ(all[2], MPoint(12, 0, 2));
    EXPECT_NEAR(it.normal(MSpace::kWorld).y, 1, 1e-6);
    for (; !it.isDone(); it.next()) {   // normals are those from before the move
        EXPECT_NEAR(it.normal().y, 1, 1e-6);
        it.setPosition(it.position() + it.normal() * it.index());
    }
    MPoint p;
    MFnMesh(data).getPoint(3, p);
    EXPECT_EQ(p, MPoint(1, 3, 0));
    MFnMesh(shared).getPoint(3, p);
    EXPECT_EQ(p, MPoint(1, 0, 0));

    MStatus     status;
    MItGeometry onCurve(line());
    EXPECT_EQ(onCurve.normal(MSpace::kObject, &status), MVector());
    EXPECT_EQ(status, MS::kFailure);
}

TEST(ItGeometry, OnABlocksDataWorldIsItsMatrixAndGroupsSelect)
{
    const MObject             data = square();
    MFnGeometryData           groups(data);
    MFnSingleIndexedComponent component;
    MObject                   members = component.create(MFn::kMeshVertComponent);
    component.addElement(2);
    groups.addObjectGroup(5);
    groups.addObjectGroupComponent(5, members);
    groups.setMatrix(moved(10, 2));

    int        opened = 0;
    Ref<Data>  own;
    const auto forWrite = [&]() -> Object* {
        ++opened;
        own = objectAs<Data>(data)->share();
        return own.get();
    };
    PointWalk      walk;
    const unsigned five = 5, six = 6;
    ASSERT_EQ(walk.open(objectAs<GeometryData>(data), &six, forWrite), MS::kSuccess);
    EXPECT_EQ(walk.count(), 0);
    ASSERT_EQ(walk.open(objectAs<GeometryData>(data), &five, forWrite), MS::kSuccess);
    ASSERT_EQ(walk.count(), 1);
    EXPECT_EQ(walk.position(MSpace::kWorld), MPoint(12, 0, 2));
    EXPECT_EQ(opened, 0);   // reading takes nothing
    walk.setPosition(MPoint(10, 4, 0), MSpace::kWorld);
    walk.setPosition(MPoint(10, 6, 0), MSpace::kWorld);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(walk.position(MSpace::kObject), MPoint(0, 3, 0));
    MPoint p;
    MFnMesh(data).getPoint(2, p);
    EXPECT_EQ(p, MPoint(1, 0, 1));
}

// Places on polygons by their UVs.
#include <gtest/gtest.h>

#include <cmath>

#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include "mesh/uv_place.h"

using namespace mirk;

TEST(UVPlaceTest, WeightsInATriangle)
{
    const F2 a{0, 0}, b{4, 0}, c{0, 4};
    struct Case { const char* when; F2 uv; double distanceSq, weights[3]; };
    const Case cases[] = {
        {"inside", {1, 1}, 0, {0.5, 0.25, 0.25}},
        {"a corner", {0, 4}, 0, {0, 0, 1}},
        {"on an edge", {1, 0}, 0, {0.75, 0.25, 0}},
        {"off an edge", {1, -2}, 4, {0.75, 0.25, 0}},
        {"off a corner", {7, -4}, 25, {0, 1, 0}},
        {"off the long edge", {3, 3}, 2, {0, 0.5, 0.5}},
        {"no number", {NAN, 0}, HUGE_VAL, {1, 0, 0}},
    };
    for (const Case& k : cases)
        for (bool turned : {false, true}) {   // the winding does not matter
            const UVPlace p = turned ? placeInTriangle(k.uv, a, c, b) : placeInTriangle(k.uv, a, b, c);
            EXPECT_DOUBLE_EQ(p.distanceSq, k.distanceSq) << k.when;
            EXPECT_DOUBLE_EQ(p.weights[0], k.weights[0]) << k.when;
            EXPECT_DOUBLE_EQ(p.weights[turned ? 2 : 1], k.weights[1]) << k.when;
        }
    EXPECT_EQ(placeInTriangle({1, 1}, {0, 0}, {2, 0}, {4, 0}).distanceSq, 1);   // a line
    EXPECT_EQ(placeInTriangle({1, 1}, {3, 1}, {3, 1}, {3, 1}).distanceSq, 4);   // a point
}

TEST(UVPlaceTest, PointsOfAPolygon)
{
    // a square of size 2 at z = 3 whose UVs are x / 2 and y / 2, turned half round; and a triangle without UVs
    const double xy[4][2] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    MPointArray  points;
    MFloatArray  u, v;
    for (const auto& p : xy) {
        points.append(MPoint(p[0], p[1], 3));
        u.append(float(1 - p[0] / 2));
        v.append(float(1 - p[1] / 2));
    }
    const int counts[] = {4, 3}, corners[] = {0, 1, 2, 3, 0, 1, 2}, uvCounts[] = {4, 0}, uvs[] = {0, 1, 2, 3};
    MObject   owner = MFnMeshData().create();
    MFnMesh   mesh;
    mesh.create(4, 2, points, MIntArray(counts, 2), MIntArray(corners, 7), owner);
    ASSERT_TRUE(mesh.setUVs(u, v));
    ASSERT_TRUE(mesh.assignUVs(MIntArray(uvCounts, 2), MIntArray(uvs, 4)));

    MPoint found(9, 9, 9);
    float2 at = {0.25f, 0.875f}, off = {0.5f, 1.0625f};
    EXPECT_TRUE(mesh.getPointAtUV(0, found, at));
    EXPECT_TRUE(found.isEquivalent(MPoint(1.5, 0.25, 3)));
    EXPECT_EQ(mesh.getPointAtUV(0, found, off), MS::kFailure);
    EXPECT_TRUE(found.isEquivalent(MPoint(1.5, 0.25, 3)));   // untouched
    EXPECT_TRUE(mesh.getPointAtUV(0, found, off, MSpace::kObject, nullptr, 0.0625f));
    EXPECT_TRUE(found.isEquivalent(MPoint(1, 0, 3)));
    EXPECT_EQ(mesh.getPointAtUV(1, found, at), MS::kFailure);
    const MString missing("none"), map1("map1");
    EXPECT_EQ(mesh.getPointAtUV(2, found, at), MS::kInvalidParameter);
    EXPECT_EQ(mesh.getPointAtUV(-1, found, at), MS::kInvalidParameter);
    EXPECT_EQ(mesh.getPointAtUV(0, found, at, MSpace::kObject, &missing), MS::kInvalidParameter);
    EXPECT_TRUE(mesh.getPointAtUV(0, found, at, MSpace::kWorld, &map1));
}

#include <cmath>

#include <maya/MFloatArray.h>
#include <maya/MStringArray.h>

#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

MVector cornerNormal(const MFnMesh& fn, int face, int vertex)
{
    MVector n;
    EXPECT_TRUE(fn.getFaceVertexNormal(face, vertex, n));
    return n;
}

/// A roof over the z axis: two quads that meet in the edge 1-4 at a right angle, one facing -x+y, one +x+y.
MObject roof()
{
    return meshOf({{-1, -1, 1}, {0, 0, 1}, {1, -1, 1}, {-1, -1, 0}, {0, 0, 0}, {1, -1, 0}}, {{0, 1, 4, 3}, {1, 2, 5, 4}});
}

}  // namespace

TEST(MeshNormals, HardCubeHasItsFacesNormals)
{
    MFnMesh fn(dataOf(primitives::cube(2, 2, 2, 1, 1, 1)));
    EXPECT_EQ(fn.numNormals(), 24);
    const double faces[6][3] = {{0, 0, 1}, {0, 1, 0}, {0, 0, -1}, {0, -1, 0}, {1, 0, 0}, {-1, 0, 0}};
    for (int f = 0; f < 6; ++f) {
        MVector n;
        fn.getPolygonNormal(f, n);
        expectVector(n, faces[f][0], faces[f][1], faces[f][2], "face");
        MFloatVectorArray corners;
        fn.getFaceVertexNormals(f, corners);
        for (unsigned k = 0; k < 4; ++k)
            expectVector(corners[k], faces[f][0], faces[f][1], faces[f][2], "corner");
    }
    MFloatVectorArray vertices;
    fn.getVertexNormals(false, vertices);   // vertex 3 is the corner +x +y +z
    expectVector(vertices[3], 1 / std::sqrt(3), 1 / std::sqrt(3), 1 / std::sqrt(3));
}

TEST(MeshNormals, SmoothCubeHasOneNormalAVertex)
{
    MFnMesh fn(dataOf(primitives::cube(2, 2, 2, 1, 1, 1)));
    for (int e = 0; e < 12; ++e)
        fn.setEdgeSmoothing(e, true);
    MIntArray counts, ids;
    fn.getNormalIds(counts, ids);
    EXPECT_EQ(fn.numNormals(), 8);
    for (int f : {0, 1, 4})
        expectVector(cornerNormal(fn, f, 3), 1 / std::sqrt(3), 1 / std::sqrt(3), 1 / std::sqrt(3));
}

TEST(MeshNormals, AngleWeightsCountACutFaceOnce)
{
    // a cube corner at the origin, with the face in the xy plane cut into two triangles: weights 1/2, 1/2, 1, 1
    const MObject mesh = meshOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}},
                                {{0, 2, 1}, {0, 3, 2}, {0, 1, 5, 4}, {0, 4, 6, 3}});
    MFnMesh fn(mesh);
    MVector weighted, plain;
    fn.getVertexNormal(0, true, weighted);
    fn.getVertexNormal(0, false, plain);
    expectVector(weighted, -1 / std::sqrt(3), -1 / std::sqrt(3), -1 / std::sqrt(3));
    expectVector(plain, -1 / std::sqrt(6), -1 / std::sqrt(6), -2 / std::sqrt(6));   // (-1, -1, -2)
}

TEST(MeshNormals, AHardEdgeSplitsOnlyAtItself)
{
    const MObject mesh = roof();
    MFnMesh fn(mesh);
    const double h = std::sqrt(0.5);
    expectVector(cornerNormal(fn, 0, 1), 0, 1, 0, "smooth ridge");
    EXPECT_EQ(fn.numNormals(), 6);
    fn.setEdgeSmoothing(bodyOf(mesh).topology().edgeBetween(1, 4), false);
    expectVector(cornerNormal(fn, 0, 1), -h, h, 0, "left of the ridge");
    expectVector(cornerNormal(fn, 1, 1), h, h, 0, "right of the ridge");
    EXPECT_EQ(fn.numNormals(), 8);
    MVector n;
    fn.getVertexNormal(1, false, n);
    expectVector(n, 0, 1, 0, "the vertex normal stays the mean");
}

TEST(MeshNormals, LockedNormalsStayWhenPointsMove)
{
    const MObject mesh = roof();
    MFnMesh fn(mesh);
    MVectorArray normals(1, MVector(0, 0, 1));
    MIntArray vertices(1, 1);
    ASSERT_TRUE(fn.setVertexNormals(normals, vertices));
    fn.setPoint(1, MPoint(0, 5, 1));
    expectVector(cornerNormal(fn, 0, 1), 0, 0, 1, "locked");
    MVector n;
    fn.getVertexNormal(1, true, n);
    expectVector(n, 0, 0, 1, "locked vertex");
    fn.getVertexNormal(4, false, n);
    EXPECT_LT(n.y, 0.9) << "others follow the points";

    MVector side(1, 0, 0);
    ASSERT_TRUE(fn.setFaceVertexNormal(side, 1, 1));
    expectVector(cornerNormal(fn, 1, 1), 1, 0, 0, "corner over vertex");
    expectVector(cornerNormal(fn, 0, 1), 0, 0, 1, "the other corner");
    ASSERT_TRUE(fn.unlockVertexNormals(vertices));
    EXPECT_GT(std::fabs(cornerNormal(fn, 0, 1).y), 0.1) << "computed again";

    vertices[0] = 6;
    EXPECT_EQ(fn.setVertexNormals(normals, vertices), MS::kInvalidParameter);
}

TEST(MeshNormals, UnlockingOneCornerLeavesTheOthers)
{
    MFnMesh fn(roof());
    MVector z(0, 0, 1);
    fn.setVertexNormal(z, 1);
    MIntArray face(1, 0), vertex(1, 1);
    ASSERT_TRUE(fn.unlockFaceVertexNormals(face, vertex));
    expectVector(cornerNormal(fn, 1, 1), 0, 0, 1, "still locked");
    EXPECT_LT(std::fabs(cornerNormal(fn, 0, 1).z), 1e-6);
    MIntArray ids;
    fn.getFaceNormalIds(1, ids);
    EXPECT_TRUE(fn.isNormalLocked(unsigned(ids[0])));
    EXPECT_FALSE(fn.isNormalLocked(unsigned(ids[1])));
}

TEST(MeshNormals, TangentsFollowTheUVs)
{
    MFnMesh fn(dataOf(primitives::plane(2, 2, 2, 2)));   // u grows with x, v with -z
    MVector t, b;
    ASSERT_TRUE(fn.getFaceVertexTangent(0, 4, t));
    ASSERT_TRUE(fn.getFaceVertexBinormal(0, 4, b));
    expectVector(t, 1, 0, 0, "tangent");
    expectVector(b, 0, 0, -1, "binormal");

    MFloatArray u, v;
    fn.getUVs(u, v);
    for (unsigned i = 0; i < u.length(); ++i)
        u[i] = 1 - u[i];
    fn.setUVs(u, v);
    fn.getFaceVertexTangent(0, 4, t);
    fn.getFaceVertexBinormal(0, 4, b);
    expectVector(t, -1, 0, 0, "mirrored tangent");
    expectVector(b, 0, 0, -1, "the binormal still follows v");

    MString none("none");
    EXPECT_EQ(fn.getFaceVertexTangent(0, 4, t, MSpace::kObject, &none), MS::kInvalidParameter);
    fn.clearUVs();
    ASSERT_TRUE(fn.getFaceVertexTangent(0, 4, t));
    expectVector(t, 0, 0, 0, "no UVs");
}

TEST(MeshNormals, DegenerateFacesGiveZeroAndNoNan)
{
    MFnMesh fn(meshOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {5, 5, 5}}, {{0, 1, 2}}));
    MVector n(9, 9, 9);
    fn.getPolygonNormal(0, n);
    expectVector(n, 0, 0, 0, "collinear face");
    fn.getVertexNormal(3, true, n);
    expectVector(n, 0, 0, 0, "vertex without faces");
    expectVector(cornerNormal(fn, 0, 1), 0, 0, 0, "corner");
}

TEST(MeshNormals, WorldSpaceIsThatOfTransformedDataOnly)
{
    const MObject mesh = roof();
    MeshBody& body = bodyOf(mesh);
    const double m[4][4] = {{2, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {10, 0, 0, 1}};   // twice as wide, moved
    std::copy(&m[0][0], &m[0][0] + 16, &body.matrix[0][0]);
    body.identity = false;
    const MObject seen = wrap(objectAs<MeshData>(mesh)->transformedView());
    MFnMesh plain(mesh), world(seen);
    MPoint p;
    plain.getPoint(2, p, MSpace::kWorld);
    expectVector(p, 1, -1, 1, "untransformed");
    world.getPoint(2, p, MSpace::kObject);
    expectVector(p, 1, -1, 1, "object space");
    world.getPoint(2, p, MSpace::kWorld);
    expectVector(p, 12, -1, 1, "world space");
    MVector n;
    world.getPolygonNormal(1, n, MSpace::kWorld);   // the slope 2:1 is normal to (1, 2)
    expectVector(n, 1 / std::sqrt(5), 2 / std::sqrt(5), 0, "inverse transpose");

    world.setPoint(2, MPoint(14, 0, 0), MSpace::kWorld);
    plain.getPoint(2, p);
    expectVector(p, 2, 0, 0, "written back through the inverse");
    MVector slope(1 / std::sqrt(5), 2 / std::sqrt(5), 0);
    world.setVertexNormal(slope, 1, MSpace::kWorld);
    plain.getVertexNormal(1, false, n);
    expectVector(n, std::sqrt(0.5), std::sqrt(0.5), 0, "normal written back");

    const MObject baked = wrap(make<MeshData>());
    MFnMesh copy;
    ASSERT_FALSE(copy.copy(seen, baked).isNull());
    copy.getPoint(0, p, MSpace::kWorld);
    expectVector(p, 8, -1, 1, "baked");
    EXPECT_TRUE(bodyOf(baked).identity);
    copy.getVertexNormal(1, false, n);
    expectVector(n, slope.x, slope.y, 0, "locked normals are baked too");
    plain.getPoint(0, p);
    expectVector(p, -1, -1, 1, "the source stays");
}

TEST(MeshNormals, SingularMatrixRefusesWorldWrites)
{
    const MObject mesh = roof();
    MeshBody& body = bodyOf(mesh);
    body.matrix[0][0] = 0;
    body.identity = false;
    MFnMesh fn(wrap(objectAs<MeshData>(mesh)->transformedView()));
    EXPECT_EQ(fn.setPoint(0, MPoint(1, 1, 1), MSpace::kWorld), MS::kFailure);
    MPoint p;
    fn.getPoint(0, p);
    expectVector(p, -1, -1, 1);
}

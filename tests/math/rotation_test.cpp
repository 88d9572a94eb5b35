// Vectors, matrices, rotations and transformation matrices: laws that hold for any numbers, and a few by hand.
#include <gtest/gtest.h>

#include <cmath>

#include <maya/MFloatMatrix.h>
#include <maya/MTransformationMatrix.h>

namespace {

const MVector kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1);

void expectNear(const MMatrix& a, const MMatrix& b, double tolerance = 1e-12)
{
    EXPECT_TRUE(a.isEquivalent(b, tolerance)) << a << "\n" << b;
}

/// A rotation about an axis by its three rows, worked out by hand.
MMatrix turn(int axis, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle);
    const double x[4][4] = {{1, 0, 0, 0}, {0, c, s, 0}, {0, -s, c, 0}, {0, 0, 0, 1}};
    const double y[4][4] = {{c, 0, -s, 0}, {0, 1, 0, 0}, {s, 0, c, 0}, {0, 0, 0, 1}};
    const double z[4][4] = {{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    return MMatrix(axis == 0 ? x : axis == 1 ? y : z);
}

MMatrix move(const MVector& v)
{
    MMatrix m;
    m[3][0] = v.x, m[3][1] = v.y, m[3][2] = v.z;
    return m;
}

const MEulerRotation::RotationOrder kOrders[] = {MEulerRotation::kXYZ, MEulerRotation::kYZX, MEulerRotation::kZXY,
                                                 MEulerRotation::kXZY, MEulerRotation::kYXZ, MEulerRotation::kZYX};
const int kAxes[][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};

}  // namespace

TEST(Vector, AnglesAndNormalsAreRobust)
{
    EXPECT_DOUBLE_EQ(kX.angle(kY * 5), M_PI / 2);
    EXPECT_NEAR(MVector(1, 1e-9, 0).angle(kX), 1e-9, 1e-18);  // an arc cosine gives 0 here
    EXPECT_EQ(kX.angle(MVector()), 0);
    EXPECT_EQ(MVector().normal(), MVector());
    EXPECT_TRUE(kX.isParallel(kX * -3));
    EXPECT_EQ(kX ^ kY, kZ);
    MMatrix squash;
    squash[0][0] = 2;  // the plane x + y = 0 becomes x / 2 + y = 0
    EXPECT_TRUE(MVector(1, 1, 0).transformAsNormal(squash).isEquivalent(MVector(0.5, 1, 0)));
}

TEST(Point, FormsOfTheFourthCoordinate)
{
    MPoint p(2, 4, 6, 2);
    EXPECT_EQ(MPoint(p).cartesianize(), MPoint(1, 2, 3, 1));
    EXPECT_EQ(MPoint(p).rationalize(), MPoint(1, 2, 3, 2));
    EXPECT_EQ(MPoint(1, 2, 3, 2).homogenize(), p);
    EXPECT_EQ(MPoint(1, 2, 3, 0).cartesianize(), MPoint(1, 2, 3, 0));
    EXPECT_EQ(MPoint(1, 0, 0) * move(MVector(5, 6, 7)), MPoint(6, 6, 7));
    EXPECT_EQ(MVector(1, 0, 0) * move(MVector(5, 6, 7)), kX);
    EXPECT_EQ(MPoint(4, 6, 3) - MPoint(1, 2, 3), MVector(3, 4, 0));
    EXPECT_EQ(MPoint(1, 2, 3) + MFloatVector(1, 1, 1), MPoint(2, 3, 4));
}

TEST(Matrix, InverseAndDeterminant)
{
    const double rows[4][4] = {{2, 1, 0, 0.5}, {0, 3, 1, 0}, {1, 0, 1, 0}, {4, 5, 6, 1}};
    const MMatrix m(rows);
    EXPECT_DOUBLE_EQ(m.det3x3(), 7);  // 2 * (3 - 0) - 1 * (0 - 1)
    EXPECT_DOUBLE_EQ(m.det4x4(), 7.5);  // by the last column: 7 - 0.5 * (-3 * (6 - 4) + (5 - 0))
    expectNear(m * m.inverse(), MMatrix());
    expectNear(m * m.adjoint(), MMatrix() * m.det4x4());
    EXPECT_TRUE(MFloatMatrix(m).inverse().isEquivalent(MFloatMatrix(m.inverse()), 1e-5f));

    MMatrix flat;
    flat[2][2] = 0;
    EXPECT_TRUE(flat.isSingular());
    EXPECT_EQ(flat.inverse(), MMatrix());
    MMatrix tiny = MMatrix() * 1e-5;
    EXPECT_FALSE(tiny.isSingular());
    EXPECT_EQ(m[9], m[3]);
}

TEST(EulerRotation, IsTheProductOfItsTurnsInEveryOrder)
{
    const double angles[][3] = {{0.3, -0.7, 2.5}, {-3, 1.2, 0.1}, {1, M_PI / 2, -2}, {0.4, -M_PI / 2, 1}};
    for (int o = 0; o < 6; ++o)
        for (const auto& a : angles) {
            const MEulerRotation e(a, kOrders[o]);
            const int* const     axis = kAxes[o];
            const MMatrix expected = turn(axis[0], a[axis[0]]) * turn(axis[1], a[axis[1]]) * turn(axis[2], a[axis[2]]);
            expectNear(e.asMatrix(), expected);
            expectNear(e.asQuaternion().asMatrix(), expected);
            expectNear(MEulerRotation::decompose(expected, kOrders[o]).asMatrix(), expected, 1e-7);
            expectNear(e.reorder(kOrders[(o + 2) % 6]).asMatrix(), expected, 1e-7);
            expectNear(e.alternateSolution().asMatrix(), expected);
            expectNear(e.inverse().asMatrix() * expected, MMatrix(), 1e-7);
        }
}

TEST(EulerRotation, ComesBackWithTheSameAngles)
{
    for (const auto order : kOrders) {
        MEulerRotation e(0.5, 0.6, 0.7, order), back(0, 0, 0, order);
        back = e.asQuaternion();
        EXPECT_TRUE(back.isEquivalent(e)) << back;
        const MEulerRotation far(0.5 + 4 * M_PI, 0.6, 0.7 - 2 * M_PI, order);
        EXPECT_TRUE(e.alternateSolution().closestSolution(far).isEquivalent(far, 1e-9));
        EXPECT_TRUE(far.bound().isEquivalent(e, 1e-9));
    }
}

TEST(Quaternion, ProductIsFirstThenSecond)
{
    const MQuaternion p(0.4, MVector(1, 2, 3)), q(-1.3, MVector(0, 1, -1));
    expectNear((p * q).asMatrix(), p.asMatrix() * q.asMatrix());
    EXPECT_TRUE((q * q.inverse()).isEquivalent(MQuaternion()));
    EXPECT_TRUE(q.log().exp().isEquivalent(q));
    EXPECT_TRUE(kX.rotateBy(MQuaternion(M_PI / 2, kZ)).isEquivalent(kY));
    EXPECT_TRUE(kX.rotateBy(MVector::kZaxis, M_PI / 2).isEquivalent(kY));
    EXPECT_TRUE(MVector(1, 2, 3).rotateBy(q).isEquivalent(MVector(1, 2, 3) * q.asMatrix()));
}

TEST(Quaternion, TakesOneDirectionToAnother)
{
    const MVector from(1, 2, -3);
    for (const MVector& to : {MVector(0, 0, 2), from * -2, from * 3, MVector(-1, -2, 3.0000001)})
        EXPECT_TRUE(from.normal().rotateBy(from.rotateTo(to)).isEquivalent(to.normal(), 1e-9)) << to;
    EXPECT_TRUE(kX.rotateBy(MQuaternion(kX, kY, 0.5)).isEquivalent(MVector(1, 1, 0).normal()));
    MVector axis;
    double  angle;
    EXPECT_TRUE(MQuaternion(1.25, MVector(0, 0, 9)).getAxisAngle(axis, angle));
    EXPECT_NEAR(angle, 1.25, 1e-15);
    EXPECT_TRUE(axis.isEquivalent(kZ));
    EXPECT_FALSE(MQuaternion().getAxisAngle(axis, angle));
}

TEST(Quaternion, ComesFromScaledAndMirroredMatrices)
{
    for (double angle : {0.1, 3.1, -2.0})
        for (const MVector& axis : {kX, kY, kZ, MVector(1, 1, 1)}) {
            const MQuaternion q(angle, axis);
            MMatrix           scaled;
            scaled[0][0] = 2, scaled[1][1] = 0.1, scaled[2][2] = 30;
            MQuaternion back;
            back = scaled * q.asMatrix();
            expectNear(back.asMatrix(), q.asMatrix());
            EXPECT_TRUE(slerp(MQuaternion(), q, 0.25).isEquivalent(MQuaternion(angle / 4, axis)));
        }
}

TEST(TransformationMatrix, PiecesStandInTheDocumentedOrder)
{
    MTransformationMatrix t;
    const double          scale[] = {2, 3, 0.5}, shear[] = {0.1, 0.2, 0.3}, angles[] = {0.3, 0.4, 0.5};
    const MVector         sp(1, 2, 3), st(0.5, 0, 0), rp(-1, 0, 4), rt(0, 7, 0), move1(10, 20, 30);
    const MQuaternion     orientation(0.8, MVector(1, 0, 1));
    t.setScale(scale, MSpace::kTransform);
    t.setShear(shear, MSpace::kTransform);
    t.setRotation(angles, MTransformationMatrix::kZXY);
    t.setRotationOrientation(orientation);
    t.setTranslation(move1, MSpace::kTransform);
    t.setScalePivot(sp, MSpace::kTransform, false);
    t.setScalePivotTranslation(st, MSpace::kTransform);
    t.setRotatePivot(rp, MSpace::kTransform, false);
    t.setRotatePivotTranslation(rt, MSpace::kTransform);

    const double  s[4][4] = {{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 0.5, 0}, {0, 0, 0, 1}};
    const double  sh[4][4] = {{1, 0, 0, 0}, {0.1, 1, 0, 0}, {0.2, 0.3, 1, 0}, {0, 0, 0, 1}};
    const MMatrix turned = turn(2, 0.5) * turn(0, 0.3) * turn(1, 0.4);
    expectNear(t.asMatrix(), move(-sp) * MMatrix(s) * MMatrix(sh) * move(sp) * move(st) * move(-rp) *
                                 orientation.asMatrix() * turned * move(rp) * move(rt) * move(move1));
    expectNear(t.asMatrix() * t.asMatrixInverse(), MMatrix(), 1e-10);

    // moving pivots with balance keeps the matrix
    const MMatrix before = t.asMatrix();
    t.setScalePivot(MPoint(9, 9, 9), MSpace::kTransform, true);
    t.setRotatePivot(MPoint(-3, 5, 1), MSpace::kTransform, true);
    expectNear(t.asMatrix(), before, 1e-10);

    // and so does taking the matrix apart
    expectNear(MTransformationMatrix(before).asMatrix(), before, 1e-10);
}

TEST(TransformationMatrix, TakesMatricesApart)
{
    MMatrix mirror = turn(1, 0.3);
    for (int j = 0; j < 3; ++j)
        mirror[0][j] *= -1;
    double scale[3];
    MTransformationMatrix(mirror).getScale(scale, MSpace::kTransform);
    EXPECT_LT(scale[0] * scale[1] * scale[2], 0);
    expectNear(MTransformationMatrix(mirror).asMatrix(), mirror);

    MMatrix flat = turn(2, 0.5);
    for (int j = 0; j < 3; ++j)
        flat[1][j] = 0;
    expectNear(MTransformationMatrix(flat).asMatrix(), flat);
    expectNear(MTransformationMatrix(MMatrix() * 0.0).asRotateMatrix(), MMatrix());

    double                               angles[3];
    MTransformationMatrix::RotationOrder order;
    MTransformationMatrix(turn(2, 0.5)).getRotation(angles, order);
    EXPECT_EQ(order, MTransformationMatrix::kXYZ);
    EXPECT_NEAR(angles[2], 0.5, 1e-15);
}

TEST(TransformationMatrix, SpacesOfTranslationAndRotation)
{
    MTransformationMatrix t;
    t.setToRotationAxis(kZ, M_PI / 2);
    t.setTranslation(kX, MSpace::kObject);  // the object's x axis points along y
    EXPECT_TRUE(t.getTranslation(MSpace::kTransform).isEquivalent(kY));
    EXPECT_TRUE(t.getTranslation(MSpace::kObject).isEquivalent(kX));

    MTransformationMatrix before = t, after = t;
    before.rotateBy(MQuaternion(0.4, kX), MSpace::kPreTransform);
    after.rotateBy(MQuaternion(0.4, kX), MSpace::kPostTransform);
    expectNear(before.asRotateMatrix(), turn(0, 0.4) * turn(2, M_PI / 2));
    expectNear(after.asRotateMatrix(), turn(2, M_PI / 2) * turn(0, 0.4));

    MStatus status;
    t.getTranslation(MSpace::kInvalid, &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    const double angles[3] = {};
    EXPECT_EQ(t.setRotation(angles, MTransformationMatrix::kInvalid), MS::kInvalidParameter);
    EXPECT_EQ(t.reorderRotation(MTransformationMatrix::kZYX), MS::kSuccess);
    EXPECT_EQ(t.eulerRotation().order, MEulerRotation::kZYX);
}

// Rotations by their laws: every way of rewriting one keeps its matrix, and interpolation goes where it must.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

namespace {

using Euler = MEulerRotation;
const double pi = 3.14159265358979323846;

const Euler::RotationOrder orders[] = {Euler::kXYZ, Euler::kYZX, Euler::kZXY, Euler::kXZY, Euler::kYXZ, Euler::kZYX};

/// Plain, past half a turn, and with the middle angle of some order close to a quarter turn.
std::vector<Euler> samples()
{
    std::vector<Euler> all;
    for (const auto order : orders)
        for (const MVector& v : {MVector(0.3, -1.2, 2.5), MVector(4.0, 0.4, -5.5), MVector(-0.7, 1.4, 0.2), MVector(0.1, 7.0, 1.5)})
            all.emplace_back(v, order);
    return all;
}

double distance(const Euler& a, const Euler& b) { return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.z - b.z); }

/// The smallest distance from `to` of all angles that make the rotation: both solutions, whole turns tried one by one.
double nearest(const Euler& e, const Euler& to)
{
    double best = 1e9;
    for (const Euler& s : {e, e.alternateSolution()})
        for (int i = -4; i <= 4; ++i)
            for (int j = -4; j <= 4; ++j)
                for (int k = -4; k <= 4; ++k)
                    best = std::min(best, distance(Euler(s.x + i * 2 * pi, s.y + j * 2 * pi, s.z + k * 2 * pi, s.order), to));
    return best;
}

/// The angle by which a unit quaternion turns, 0 to pi.
double turn(const MQuaternion& q) { return 2 * std::acos(std::min(1.0, std::abs(q.w))); }

bool sameRotation(const MQuaternion& a, const MQuaternion& b, double tolerance = 1e-9)
{
    return a.isEquivalent(b, tolerance) || a.isEquivalent(-b, tolerance);
}

MQuaternion about(double x, double y, double z, double angle) { return MQuaternion(angle, MVector(x, y, z).normal()); }

}  // namespace

TEST(EulerLaws, EveryRewritingKeepsTheRotation)
{
    for (const Euler& e : samples()) {
        const MMatrix m = e.asMatrix();
        const auto same = [&](const Euler& other, const char* what) {
            EXPECT_TRUE(other.asMatrix().isEquivalent(m, 1e-9)) << what << ", order " << e.order << " y " << e.y;
        };
        same(e.bound(), "bound");
        same(e.alternateSolution(), "alternate");
        same(e.closestCut(Euler(9, -7, 5, e.order)), "cut");
        same(e.closestSolution(Euler(9, -7, 5, e.order)), "closest");
        same(e.asQuaternion().asEulerRotation(), "through a quaternion");
        for (const auto order : orders) {
            same(e.reorder(order), "reorder");
            EXPECT_EQ(e.reorder(order).order, order);
            same(Euler::decompose(m, order), "decompose");
        }
        EXPECT_TRUE((m * e.inverse().asMatrix()).isEquivalent(MMatrix::identity, 1e-9));
        EXPECT_GT(distance(e.alternateSolution(), e), 0.1) << "another triple";
    }
}

TEST(EulerLaws, BoundsCutsAndSolutionsAreTheNearest)
{
    const Euler far(9, -7, 5);
    for (const Euler& e : samples()) {
        const Euler b = e.bound();
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_LE(std::abs(b[i]), pi + 1e-12);
        const Euler target(far.x, far.y, far.z, e.order), cut = e.closestCut(target);
        for (unsigned i = 0; i < 3; ++i) {
            EXPECT_LE(std::abs(cut[i] - target[i]), pi + 1e-12);
            EXPECT_NEAR(std::remainder(cut[i] - e[i], 2 * pi), 0, 1e-9) << "whole turns only";
        }
        EXPECT_NEAR(distance(e.closestSolution(target), target), nearest(e, target), 1e-9) << e.order << " y " << e.y;
    }
}

TEST(EulerLaws, ProductsAreThoseOfTheMatrices)
{
    const Euler a(0.4, 1.1, -0.3, Euler::kZXY);
    for (const Euler& e : samples()) {
        EXPECT_TRUE((e * a).asMatrix().isEquivalent(e.asMatrix() * a.asMatrix(), 1e-9));
        EXPECT_EQ((e * a).order, e.order);
        EXPECT_TRUE((e * a.asQuaternion()).asMatrix().isEquivalent(e.asMatrix() * a.asMatrix(), 1e-9));
        EXPECT_TRUE((MVector(1, 2, 3) * e).isEquivalent(MVector(1, 2, 3) * e.asMatrix(), 1e-9));
    }
    // sums go angle by angle, in the order of the left one
    const Euler sum = Euler(1, 2, 3) + Euler(0.5, -1, 0.25);
    EXPECT_TRUE(sum.isEquivalent(Euler(1.5, 1, 3.25)));
    EXPECT_TRUE((Euler(1, 2, 3) - Euler(0.5, -1, 0.25)).isEquivalent(Euler(0.5, 3, 2.75)));
}

TEST(EulerLaws, IncrementalTurnsAreCounted)
{
    struct Case { MVector axis; double angle; Euler from; };
    const Case cases[] = {
        {MVector(1, 0, 0), 0.3, Euler(0.2, 0.1, -0.4)},
        {MVector(1, 2, -1), 1.0, Euler(0.2, 0.1, -0.4, Euler::kZYX)},
        {MVector(0, 0, 5), 2.5, Euler(1.2, -0.9, 0.4, Euler::kYZX)},
    };
    for (const Case& c : cases) {
        Euler e = c.from;
        e.incrementalRotateBy(c.axis, c.angle);
        EXPECT_EQ(e.order, c.from.order);
        const MMatrix turn = MQuaternion(c.angle, c.axis).asMatrix();
        EXPECT_TRUE(e.asMatrix().isEquivalent(c.from.asMatrix() * turn, 1e-7)) << c.angle;
    }
    Euler wound;   // a turn and a half about one axis is not cut to half a turn
    wound.incrementalRotateBy(MVector::zAxis, 3 * pi);
    EXPECT_NEAR(wound.z, 3 * pi, 1e-6);
    EXPECT_NEAR(wound.x, 0, 1e-6);
}

TEST(QuaternionLaws, SlerpTurnsEvenly)
{
    const MQuaternion p = about(1, 2, 3, 0.4), q = about(-1, 0.5, 2, 2.0);
    const double total = turn(p.inverse() * q);
    for (const double t : {0.0, 0.1, 0.25, 0.5, 0.9, 1.0}) {
        const MQuaternion s = slerp(p, q, t);
        EXPECT_NEAR(s.x * s.x + s.y * s.y + s.z * s.z + s.w * s.w, 1, 1e-12);
        EXPECT_NEAR(turn(p.inverse() * s), t * total, 1e-9) << t;
        EXPECT_NEAR(turn(s.inverse() * q), (1 - t) * total, 1e-9) << t;
        EXPECT_TRUE(sameRotation(slerp(p, -q, t), s)) << "the shorter arc, whichever sign stands for q";
    }
    EXPECT_TRUE(sameRotation(slerp(p, p, 0.3), p));
    EXPECT_TRUE(sameRotation(slerp(p, q, 0, 2), p));
    EXPECT_TRUE(sameRotation(slerp(p, q, 1, 2), q, 1e-7));
}

TEST(QuaternionLaws, SquadRunsSmoothlyThroughItsPoints)
{
    const MQuaternion q[] = {about(1, 0, 0, 0.1), about(1, 1, 0, 0.7), about(0, 1, 1, 1.1), about(-1, 1, 1, 1.6)};
    const MQuaternion a1 = squadPt(q[0], q[1], q[2]), a2 = squadPt(q[1], q[2], q[3]);
    EXPECT_TRUE(sameRotation(squad(q[1], a1, a2, q[2], 0), q[1]));
    EXPECT_TRUE(sameRotation(squad(q[1], a1, a2, q[2], 1), q[2]));
    const MQuaternion a0 = q[0];
    const double h = 1e-5;
    const MQuaternion before = squad(q[0], a0, a1, q[1], 1 - h), after = squad(q[1], a1, a2, q[2], h);
    EXPECT_TRUE(sameRotation(before.inverse() * q[1], q[1].inverse() * after, 1e-8)) << "the same speed on both sides";
    EXPECT_TRUE(sameRotation(squadPt(q[1], q[1], q[1]), q[1]));
}

TEST(QuaternionLaws, LogAndExp)
{
    const MVector axis = MVector(2, -1, 2) / 3;
    for (const double angle : {0.0, 1e-7, 0.5, 2.0, 3.1}) {
        const MQuaternion q(angle, axis), l = q.log();
        EXPECT_NEAR(l.x, axis.x * angle / 2, 1e-12);
        EXPECT_NEAR(l.z, axis.z * angle / 2, 1e-12);
        EXPECT_NEAR(l.w, 0, 1e-12);
        EXPECT_TRUE(l.exp().isEquivalent(q, 1e-12)) << angle;
        MVector back;
        double  backAngle = 0;
        EXPECT_EQ(q.getAxisAngle(back, backAngle), angle != 0);
        EXPECT_NEAR(backAngle, angle, 1e-7);
        EXPECT_TRUE(back.isEquivalent(angle ? axis : MVector(1, 0, 0), 1e-6)) << angle;
    }
    const MQuaternion q(1, 2, 3, 4);   // not of unit length: 1 / 30 of the conjugate
    EXPECT_TRUE(q.inverse().isEquivalent(MQuaternion(-1 / 30.0, -2 / 30.0, -3 / 30.0, 4 / 30.0), 1e-12));
    EXPECT_TRUE((q * q.inverse()).isEquivalent(MQuaternion::identity, 1e-12));
    EXPECT_TRUE(MQuaternion(0, 0, 0, 0).normal().isEquivalent(MQuaternion(0, 0, 0, 0)));
    // half of the way from x to y
    EXPECT_TRUE(MVector(1, 0, 0).rotateBy(MQuaternion(MVector(2, 0, 0), MVector(0, 5, 0), 0.5)).isEquivalent(MVector(std::sqrt(0.5), std::sqrt(0.5), 0), 1e-9));
}

namespace {

MTransformationMatrix busy()
{
    MTransformationMatrix t;
    const double scale[] = {2, 0.5, 1.5}, shear[] = {0.3, -0.2, 0.7}, rotation[] = {0.4, -0.9, 1.3};
    t.setScale(scale, MSpace::kTransform);
    t.setShear(shear, MSpace::kTransform);
    t.setRotation(rotation, MTransformationMatrix::kYZX);
    t.setTranslation(MVector(5, -3, 2), MSpace::kTransform);
    t.setRotationOrientation(about(1, 1, 0, 0.6));
    return t;
}

}  // namespace

TEST(TransformationLaws, PivotsStandStill)
{
    const MPoint pivot(3, -1, 2);
    MTransformationMatrix turned;
    const double rotation[] = {0.4, -0.9, 1.3}, scale[] = {2, 0.5, 1.5};
    turned.setRotation(rotation, MTransformationMatrix::kXYZ);
    turned.setRotatePivot(pivot, MSpace::kTransform, false);
    EXPECT_TRUE((pivot * turned.asMatrix()).isEquivalent(pivot, 1e-12));
    MTransformationMatrix scaled;
    scaled.setScale(scale, MSpace::kTransform);
    scaled.setScalePivot(pivot, MSpace::kTransform, false);
    EXPECT_TRUE((pivot * scaled.asMatrix()).isEquivalent(pivot, 1e-12));
    EXPECT_TRUE((MPoint(4, -1, 2) * scaled.asMatrix()).isEquivalent(MPoint(5, -1, 2), 1e-12));

    MTransformationMatrix t = busy();   // balanced: the pivot moves, the matrix does not
    const MMatrix m = t.asMatrix();
    EXPECT_TRUE(t.setScalePivot(MPoint(1, 2, 3), MSpace::kTransform, true));
    EXPECT_TRUE(t.asMatrix().isEquivalent(m, 1e-9));
    EXPECT_TRUE(t.setRotatePivot(MPoint(-4, 2, 7), MSpace::kTransform, true));
    EXPECT_TRUE(t.asMatrix().isEquivalent(m, 1e-9));
    EXPECT_TRUE(t.scalePivot(MSpace::kTransform).isEquivalent(MPoint(1, 2, 3), 1e-9));
    EXPECT_TRUE(t.rotatePivot(MSpace::kTransform).isEquivalent(MPoint(-4, 2, 7), 1e-9));
    EXPECT_FALSE(t.setRotatePivot(MPoint(), MSpace::kInvalid, true));
    EXPECT_TRUE(t.rotatePivot(MSpace::kTransform).isEquivalent(MPoint(-4, 2, 7), 1e-9));
}

TEST(TransformationLaws, PartsMakeUpTheWhole)
{
    const MTransformationMatrix t = busy();
    MMatrix product = t.asScaleMatrix() * t.asRotateMatrix();
    product[3][0] = 5; product[3][1] = -3; product[3][2] = 2;
    EXPECT_TRUE(product.isEquivalent(t.asMatrix(), 1e-12));
    EXPECT_TRUE((t.asMatrix() * t.asMatrixInverse()).isEquivalent(MMatrix::identity, 1e-12));
    EXPECT_TRUE(t.asMatrix(0).isEquivalent(MMatrix::identity, 1e-12));
    EXPECT_TRUE(t.asMatrix(1).isEquivalent(t.asMatrix(), 1e-12));

    MTransformationMatrix half;
    const double rotation[] = {0, 0, 1};
    half.setRotation(rotation, MTransformationMatrix::kXYZ);
    half.setTranslation(MVector(4, 0, 0), MSpace::kTransform);
    const MMatrix m = half.asMatrix(0.5);
    EXPECT_NEAR(m[3][0], 2, 1e-9);
    EXPECT_NEAR(m[0][0], std::cos(0.5), 1e-9);
    EXPECT_NEAR(m[0][1], std::sin(0.5), 1e-9);
}

TEST(TransformationLaws, TakenApartAndPutTogether)
{
    const MMatrix m = busy().asMatrix();
    MMatrix mirrored = m;
    for (int i = 0; i < 3; ++i)
        mirrored[1][i] = -mirrored[1][i];
    for (const MMatrix& matrix : {m, mirrored, MMatrix()})
        EXPECT_TRUE(MTransformationMatrix(matrix).asMatrix().isEquivalent(matrix, 1e-9));
    MTransformationMatrix t = busy();
    for (int order = 1; order < MTransformationMatrix::kLast; ++order) {
        EXPECT_TRUE(t.reorderRotation(MTransformationMatrix::RotationOrder(order)));
        EXPECT_EQ(t.rotationOrder(), order);
        EXPECT_TRUE(t.asMatrix().isEquivalent(m, 1e-9)) << order;
    }
    EXPECT_FALSE(t.reorderRotation(MTransformationMatrix::kInvalid));
    EXPECT_FALSE(t.reorderRotation(MTransformationMatrix::kLast));
    const double twice[] = {2, 3, 4};
    double s[3];
    EXPECT_TRUE(t.addScale(twice, MSpace::kTransform) && t.getScale(s, MSpace::kTransform));
    EXPECT_DOUBLE_EQ(s[0], 4);
    EXPECT_DOUBLE_EQ(s[1], 1.5);
    EXPECT_DOUBLE_EQ(s[2], 6);

    MTransformationMatrix axis;
    EXPECT_TRUE(axis.setToRotationAxis(MVector(0, 0, 3), pi / 2));
    EXPECT_TRUE((MPoint(1, 0, 0) * axis.asMatrix()).isEquivalent(MPoint(0, 1, 0), 1e-12));
    // before the transform: along its own turned axes; after it: along the axes outside
    EXPECT_TRUE(axis.addTranslation(MVector(1, 0, 0), MSpace::kPreTransform));
    EXPECT_TRUE(axis.getTranslation(MSpace::kTransform).isEquivalent(MVector(0, 1, 0), 1e-12));
    EXPECT_TRUE(axis.addTranslation(MVector(1, 0, 0), MSpace::kTransform));
    EXPECT_TRUE(axis.getTranslation(MSpace::kTransform).isEquivalent(MVector(1, 1, 0), 1e-12));
    EXPECT_TRUE(axis.getTranslation(MSpace::kPreTransform).isEquivalent(MVector(1, -1, 0), 1e-12));
}

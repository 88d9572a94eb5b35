// The function set on transforms: what its spaces mean below a parent that is turned, scaled and moved.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MDagPath.h>
#include <maya/MEulerRotation.h>
#include <maya/MFnTransform.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSelectionList.h>
#include <maya/MTransformationMatrix.h>

namespace {

class TransformFn : public mirk::test::Host
{
protected:
    /// |over|t, `over` turned by a right angle about z, scaled by 2 and moved to (10, 0, 0).
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode transform -n over; createNode transform -n t -p over;"
            "setAttr over.t 10 0 0; setAttr over.rz 90; setAttr over.s 2 2 2; select -cl;");
    }
    static MDagPath path(const char* name)
    {
        MSelectionList list;
        MDagPath       p;
        EXPECT_TRUE(list.add(MString(name)) && list.getDagPath(0, p)) << name;
        return p;
    }
    static void near(const MVector& a, const MVector& b, const char* what, double tolerance = 1e-9)
    {
        EXPECT_TRUE(a.isEquivalent(b, tolerance)) << what << ": " << a.x << " " << a.y << " " << a.z;
    }
    static MVector attr(const std::string& name)
    {
        const std::vector<double> v = nums("getAttr " + name);
        return v.size() == 3 ? MVector(v[0], v[1], v[2]) : MVector(NAN, NAN, NAN);
    }
};

}  // namespace

TEST_F(TransformFn, TranslationsInEverySpace)
{
    // a right angle about z takes x to y and y to -x; the parent doubles
    MFnTransform fn(path("|over|t"));
    EXPECT_TRUE(fn.setTranslation(MVector(1, 2, 3), MSpace::kTransform));
    near(fn.getTranslation(MSpace::kTransform), MVector(1, 2, 3), "as set");
    near(fn.getTranslation(MSpace::kWorld), MVector(10 - 4, 2, 6), "in the world");
    EXPECT_TRUE(fn.setTranslation(MVector(10, 4, 0), MSpace::kWorld));
    near(attr("t.t"), MVector(2, 0, 0), "set in the world");
    EXPECT_TRUE(fn.translateBy(MVector(0, 1, 0), MSpace::kTransform));
    near(attr("t.t"), MVector(2, 1, 0), "by, in the parent's space");
    EXPECT_TRUE(fn.translateBy(MVector(0, 1, 0), MSpace::kWorld));
    near(attr("t.t"), MVector(2.5, 1, 0), "by, in the world");
    mel("setAttr t.t 0 0 0; setAttr t.rx 90; setAttr t.sy 3;");
    EXPECT_TRUE(fn.translateBy(MVector(0, 1, 0), MSpace::kObject));
    near(attr("t.t"), MVector(0, 0, 3), "by, along its own turned and scaled axis");
    EXPECT_TRUE(fn.translateBy(MVector(0, -1, 0), MSpace::kPreTransform));
    near(attr("t.t"), MVector(0, 0, 0), "and back");
}

TEST_F(TransformFn, RotationsInEverySpace)
{
    MFnTransform      fn(path("|over|t"));
    const MQuaternion x90(M_PI / 2, MVector::xAxis), tilted(0.8, MVector(1, 2, 3).normal());
    MQuaternion       q;
    EXPECT_TRUE(fn.setRotation(tilted, MSpace::kTransform) && fn.getRotation(q, MSpace::kTransform));
    EXPECT_TRUE(q.isEquivalent(tilted, 1e-9) || (-q).isEquivalent(tilted, 1e-9));

    // in the world: whatever the parents and the orientation, the turn that one asks for is the turn that one gets
    for (const char* axis : {"0 0 0", "20 -30 50"}) {
        mel(std::string("setAttr t.rotateAxis ") + axis);
        EXPECT_TRUE(fn.setRotation(tilted, MSpace::kWorld) && fn.getRotation(q, MSpace::kWorld));
        EXPECT_TRUE(q.isEquivalent(tilted, 1e-9) || (-q).isEquivalent(tilted, 1e-9)) << axis;
        const MMatrix m = path("|over|t").inclusiveMatrix();
        near(MVector(1, 0, 0) * m, 2 * MVector(1, 0, 0).rotateBy(tilted), axis);
    }
    mel("setAttr t.rotateAxis 0 0 0; setAttr t.r 0 0 0;");
    EXPECT_TRUE(fn.rotateBy(x90, MSpace::kWorld));   // about the world's x: what stood along y stands along z
    near(MVector(1, 0, 0) * path("|over|t").inclusiveMatrix(), MVector(0, 0, 2), "the parent had taken x to y");
    mel("setAttr t.r 0 0 90;");
    EXPECT_TRUE(fn.rotateBy(x90, MSpace::kTransform));
    near(MVector(1, 0, 0) * fn.transformation().asMatrix(), MVector(0, 0, 1), "after what is there");
    mel("setAttr t.r 0 0 90;");
    EXPECT_TRUE(fn.rotateBy(x90, MSpace::kPreTransform));
    near(MVector(1, 0, 0) * fn.transformation().asMatrix(), MVector(0, 1, 0), "before what is there");

    MFnTransform alone(path("|over|t").node());
    EXPECT_EQ(alone.setRotation(tilted, MSpace::kInvalid), MS::kInvalidParameter);
    EXPECT_EQ(alone.rotateBy(tilted, MSpace::kLast), MS::kInvalidParameter);
    EXPECT_EQ(alone.setTranslation(MVector(1, 0, 0), MSpace::kInvalid), MS::kInvalidParameter);
    EXPECT_EQ(alone.translateBy(MVector(1, 0, 0), MSpace::kInvalid), MS::kInvalidParameter);
    near(fn.getTranslation(MSpace::kTransform), MVector(), "nothing moved");
}

TEST_F(TransformFn, OrdersKeepTheAnglesOrTheRotation)
{
    MFnTransform fn(path("|over|t"));
    mel("setAttr t.r 30 50 -70;");
    const MMatrix before = fn.transformation().asMatrix();
    EXPECT_TRUE(fn.setRotationOrder(MTransformationMatrix::kZXY, true));
    EXPECT_EQ(num("getAttr t.rotateOrder"), 2);
    EXPECT_TRUE(fn.transformation().asMatrix().isEquivalent(before, 1e-9));
    EXPECT_TRUE(fn.setRotation(MEulerRotation(0.1, 0.2, 0.3, MEulerRotation::kXYZ)));
    EXPECT_TRUE(fn.setRotationOrder(MTransformationMatrix::kZYX, false));
    MEulerRotation r;
    EXPECT_TRUE(fn.getRotation(r));
    EXPECT_EQ(r.order, MEulerRotation::kZYX);
    near(r.asVector(), MVector(0.1, 0.2, 0.3), "angles as they were");
    EXPECT_EQ(fn.setRotationOrder(MTransformationMatrix::kInvalid, true), MS::kInvalidParameter);
    // a quaternion does not change the order that the angles are kept in
    EXPECT_TRUE(fn.setRotation(MQuaternion(1, MVector::yAxis)));
    EXPECT_EQ(fn.rotationOrder(), MTransformationMatrix::kZYX);
    const MMatrix turned = fn.transformation().asMatrix();
    EXPECT_TRUE(fn.setRotateOrientation(MQuaternion(0.7, MVector::xAxis), MSpace::kTransform, true));
    EXPECT_TRUE(fn.transformation().asMatrix().isEquivalent(turned, 1e-9)) << "balanced";
    EXPECT_TRUE(fn.rotateOrientation(MSpace::kTransform).isEquivalent(MQuaternion(0.7, MVector::xAxis), 1e-9));
}

TEST_F(TransformFn, PivotsInTheWorldAndBalanced)
{
    MFnTransform fn(path("|over|t"));
    mel("setAttr t.t 1 2 3; setAttr t.r 20 30 40; setAttr t.s 1 2 3;");
    const MMatrix before = path("|over|t").inclusiveMatrix();
    const MPoint  where(4, 5, 6);
    EXPECT_TRUE(fn.setRotatePivot(where, MSpace::kWorld, true));
    EXPECT_TRUE(fn.rotatePivot(MSpace::kWorld).isEquivalent(where, 1e-9));
    EXPECT_TRUE(path("|over|t").inclusiveMatrix().isEquivalent(before, 1e-9));
    EXPECT_TRUE(fn.setScalePivot(where, MSpace::kWorld, true));
    EXPECT_TRUE(fn.scalePivot(MSpace::kWorld).isEquivalent(where, 1e-9));
    EXPECT_TRUE(path("|over|t").inclusiveMatrix().isEquivalent(before, 1e-9));
    mel("scale -r 3 3 3 t;");   // about that point, so it stands still
    EXPECT_TRUE((where * before.inverse() * path("|over|t").inclusiveMatrix()).isEquivalent(where, 1e-9));
}

TEST_F(TransformFn, WritesWholeMatricesAndRefusesWhatIsLocked)
{
    MFnTransform          fn(path("|over|t"));
    MTransformationMatrix m;
    const double          s[] = {2, 3, 4}, sh[] = {0.5, 0.25, -1}, half[] = {0.5, 0.5, 0.5};
    m.setScale(s, MSpace::kTransform);
    m.setShear(sh, MSpace::kTransform);
    m.rotateTo(MEulerRotation(0.3, 0.4, 0.5, MEulerRotation::kYXZ));
    m.setTranslation(MVector(7, 8, 9), MSpace::kTransform);
    EXPECT_TRUE(fn.set(m));
    near(attr("t.s"), MVector(2, 3, 4), "scale");
    near(attr("t.shear"), MVector(0.5, 0.25, -1), "shear");
    near(attr("t.r") * (M_PI / 180), MVector(0.3, 0.4, 0.5), "rotate, in degrees for the user");
    EXPECT_EQ(num("getAttr t.ro"), 4);
    EXPECT_TRUE(fn.transformation().isEquivalent(m, 1e-12));
    EXPECT_TRUE(fn.scaleBy(half));
    near(attr("t.s"), MVector(1, 1.5, 2), "half as large");

    mel("setAttr -l true t.ty;");
    EXPECT_FALSE(fn.setTranslation(MVector(1, 1, 1), MSpace::kTransform));
    near(attr("t.t"), MVector(7, 8, 9), "nothing is half done");
    EXPECT_TRUE(fn.setTranslation(MVector(1, 8, 1), MSpace::kTransform)) << "what stays as it is may be locked";
    mel("connectAttr over.sx t.sx;");
    const double other[] = {5, 6, 7};
    EXPECT_TRUE(fn.setScale(s)) << "x is driven, and has that value already";
    EXPECT_FALSE(fn.setScale(other));
    near(attr("t.s"), MVector(2, 3, 4), "nothing is half done");
}

TEST_F(TransformFn, NeedsATransform)
{
    MStatus      status;
    mel("polyCube -n c; createNode multiplyDivide -n md;");
    MFnTransform shape(path("cShape"), &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(shape.setTranslation(MVector(), MSpace::kTransform), MS::kFailure);
    MFnTransform none;
    none.getTranslation(MSpace::kWorld, &status);
    EXPECT_NE(status, MS::kSuccess);
    // a node without path knows no world if it has several
    mel("instance over;");
    MFnTransform made;
    MObject      root = path("over").node();
    EXPECT_TRUE(made.create(root, &status).hasFn(MFn::kTransform));
    EXPECT_EQ(made.parentCount(), 1u);
    EXPECT_TRUE(made.parent(0) == root);
}

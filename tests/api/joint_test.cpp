#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MFnIkJoint.h>
#include <maya/MMatrix.h>

namespace {

using Joints = mirk::test::Host;

TEST_F(Joints, MatrixIsScaleThenItsOrientationThenRotationThenOrientationThenTranslation)
{
    MFnIkJoint parent, joint;
    const MObject above = parent.create();
    const MObject made = joint.create(above);
    ASSERT_EQ(made.apiType(), MFn::kJoint);
    const double scale[] = {1, 2, 3}, twice[] = {2, 2, 2}, bad[] = {0, 0, 0};
    const MEulerRotation so(0.1, 0.2, 0.3), r(0.4, -0.5, 0.6), jo(-0.7, 0.8, 0.9);
    EXPECT_EQ(joint.setScale(scale), MS::kSuccess);
    EXPECT_EQ(joint.setScaleOrientation(so), MS::kSuccess);
    EXPECT_EQ(joint.setRotation(r), MS::kSuccess);
    EXPECT_EQ(joint.setOrientation(jo.asQuaternion()), MS::kSuccess);
    EXPECT_EQ(joint.setSegmentScale(twice), MS::kSuccess);
    EXPECT_EQ(joint.setTranslation(MVector(5, 6, 7), MSpace::kTransform), MS::kSuccess);
    EXPECT_EQ(joint.setOrientation(bad, MTransformationMatrix::kInvalid), MS::kInvalidParameter);
    MMatrix s, half, t;
    for (unsigned i = 0; i < 3; ++i) {
        s[i][i] = scale[i];
        half[i][i] = 0.5;
        t[3][i] = 5.0 + i;
    }
    const MMatrix wanted = s * so.asMatrix() * r.asMatrix() * jo.asMatrix() * half * t;
    const std::string name = joint.name().asChar();
    const std::vector<double> m = nums("getAttr " + name + ".matrix");
    for (unsigned i = 0; i < 16; ++i)
        EXPECT_NEAR(m[i], wanted[i / 4][i % 4], 1e-12) << i;
    MEulerRotation back;
    EXPECT_EQ(joint.getOrientation(back), MS::kSuccess);
    EXPECT_NEAR(back.y, 0.8, 1e-12);
    EXPECT_EQ(joint.setDegreesOfFreedom(true, false, true), MS::kSuccess);
    EXPECT_EQ(num("getAttr " + name + ".jointTypeY"), 0);
    MObject transform = MFnTransform().create();
    MStatus status;
    MFnIkJoint none(transform, &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(none.setSegmentScale(twice), MS::kFailure);
}

}  // namespace

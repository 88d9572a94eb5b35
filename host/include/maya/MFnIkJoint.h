#pragma once
#include <maya/MFnTransform.h>

/// Function set for joints. Their matrix is scale, scale orientation (rotateAxis), rotation, orientation, inverse of the
/// segment scale, translation. Angles in radians.
class MFnIkJoint : public MFnTransform
{
public:
    MFnIkJoint() = default;
    explicit MFnIkJoint(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnIkJoint(const MDagPath& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;
    MObject create(MObject parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    MStatus getOrientation(double rotation[3], MTransformationMatrix::RotationOrder& order) const;
    MStatus getOrientation(MEulerRotation& rotation) const;
    MStatus getOrientation(MQuaternion& quaternion) const;
    MStatus setOrientation(const double rotation[3], MTransformationMatrix::RotationOrder order);
    MStatus setOrientation(const MEulerRotation& rotation);
    MStatus setOrientation(const MQuaternion& quaternion);

    MStatus getScaleOrientation(double rotation[3], MTransformationMatrix::RotationOrder& order) const;
    MStatus getScaleOrientation(MEulerRotation& rotation) const;
    MStatus getScaleOrientation(MQuaternion& quaternion) const;
    MStatus setScaleOrientation(const double rotation[3], MTransformationMatrix::RotationOrder order);
    MStatus setScaleOrientation(const MEulerRotation& rotation);
    MStatus setScaleOrientation(const MQuaternion& quaternion);

    /// The parent's scale, which the joint takes back while segmentScaleCompensate is on.
    MStatus getSegmentScale(double scale[3]) const;
    MStatus setSegmentScale(const double scale[3]);
    MStatus getStiffness(double stiffness[3]) const;
    MStatus setStiffness(const double stiffness[3]);
    MStatus getPreferedAngle(double rotation[3]) const;
    MStatus setPreferedAngle(const double rotation[3]);
    MStatus getDegreesOfFreedom(bool& freeInX, bool& freeInY, bool& freeInZ) const;
    MStatus setDegreesOfFreedom(bool freeInX, bool freeInY, bool freeInZ);
};

#pragma once
#include <maya/MEulerRotation.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

/// Function set for transforms. Lengths in centimetres, angles in radians. World space needs a path.
class MFnTransform : public MFnDagNode
{
public:
    MFnTransform() = default;
    explicit MFnTransform(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnTransform(const MDagPath& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;
    using MFnDagNode::create;
    MObject create(MObject parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    MTransformationMatrix transformation(MStatus* ReturnStatus = nullptr) const;
    MStatus set(const MTransformationMatrix& transform);

    MVector getTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MVector translation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const { return getTranslation(space, ReturnStatus); }
    MStatus setTranslation(const MVector& vec, MSpace::Space space);
    MStatus translateBy(const MVector& vec, MSpace::Space space);

    MStatus getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order) const;
    MStatus getRotation(MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform) const;
    MStatus getRotation(MEulerRotation& rotation) const;
    MStatus setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order);
    MStatus setRotation(const MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform);
    MStatus setRotation(const MEulerRotation& rotation);
    MStatus rotateBy(const MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform);
    MStatus rotateBy(const MEulerRotation& rotation, MSpace::Space space = MSpace::kTransform);
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w, MSpace::Space space = MSpace::kTransform) const;
    MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space = MSpace::kTransform);
    MTransformationMatrix::RotationOrder rotationOrder(MStatus* ReturnStatus = nullptr) const;
    MStatus setRotationOrder(MTransformationMatrix::RotationOrder order, bool reorder);
    MQuaternion rotateOrientation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setRotateOrientation(const MQuaternion& quaternion, MSpace::Space space, bool balance);

    MStatus getScale(double scale[3]) const;
    MStatus setScale(const double scale[3]);
    MStatus scaleBy(const double scale[3]);
    MStatus getShear(double shear[3]) const;
    MStatus setShear(const double shear[3]);
    MStatus shearBy(const double shear[3]);

    MPoint  scalePivot(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setScalePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setScalePivotTranslation(const MVector& vec, MSpace::Space space);
    MPoint  rotatePivot(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setRotatePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setRotatePivotTranslation(const MVector& vec, MSpace::Space space);

private:
    template <class F> MStatus edit(F change);
};

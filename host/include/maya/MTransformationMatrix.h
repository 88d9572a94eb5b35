#pragma once
#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MVector.h>

#define MTransformationMatrix_kTol 1.0e-10

/// The pieces of a transform. With row vectors the matrix is, from left to right: to the scale pivot, scale, shear,
/// back from the scale pivot, scale pivot translation, to the rotate pivot, rotation orientation, rotation, back from
/// the rotate pivot, rotate pivot translation, translation.
/// Lengths are in internal units, angles in radians. The space matters to translations and to what is added to the
/// rotation: kPreTransform and kObject mean before the transform, the others after it. Pivots are always those of the
/// space before, scale and shear have no space; kInvalid and other numbers give kInvalidParameter.
class MTransformationMatrix
{
public:
    enum RotationOrder { kInvalid, kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX, kLast };

    MTransformationMatrix();
    /// Takes the matrix apart; all pivots are at the origin.
    MTransformationMatrix(const MMatrix& matrix);
    MTransformationMatrix& operator=(const MMatrix& matrix);

    MMatrix asMatrix() const;
    /// The matrix of the part `percent`, 0 to 1, of the way from the identity.
    MMatrix asMatrix(double percent) const;
    MMatrix asMatrixInverse() const;
    MMatrix asScaleMatrix() const;   ///< scale and shear
    MMatrix asRotateMatrix() const;  ///< orientation and rotation

    /// By their matrices.
    bool operator==(const MTransformationMatrix& other) const { return asMatrix() == other.asMatrix(); }
    bool operator!=(const MTransformationMatrix& other) const { return !(*this == other); }
    bool isEquivalent(const MTransformationMatrix& other, double tolerance = MTransformationMatrix_kTol) const;

    MVector getTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MVector translation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setTranslation(const MVector& translation, MSpace::Space space);
    MStatus addTranslation(const MVector& translation, MSpace::Space space);

    MQuaternion    rotation() const;
    MEulerRotation eulerRotation() const { return rotation_; }
    /// Angles in radians and the order they are meant in.
    MStatus getRotation(double rotation[3], RotationOrder& order) const;
    MStatus getRotation(double rotation[3], RotationOrder& order, MSpace::Space space) const;
    MStatus setRotation(const double rotation[3], RotationOrder order);
    MStatus setRotation(const double rotation[3], RotationOrder order, MSpace::Space space);
    MStatus addRotation(const double rotation[3], RotationOrder order, MSpace::Space space);
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w) const;
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w, MSpace::Space space) const;
    MStatus setRotationQuaternion(double x, double y, double z, double w);
    MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
    MStatus addRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
    MTransformationMatrix& rotateTo(const MQuaternion& rotation);
    MTransformationMatrix& rotateTo(const MEulerRotation& rotation);
    MTransformationMatrix& rotateBy(const MQuaternion& rotation, MSpace::Space space, MStatus* ReturnStatus = nullptr);
    MTransformationMatrix& rotateBy(const MEulerRotation& rotation, MSpace::Space space, MStatus* ReturnStatus = nullptr);
    MStatus setToRotationAxis(const MVector& axis, double angle);
    RotationOrder rotationOrder() const { return RotationOrder(int(rotation_.order) + 1); }
    /// Keeps the rotation; the angles change.
    MStatus reorderRotation(RotationOrder order);

    MQuaternion rotationOrientation() const { return orientation_; }
    MStatus     setRotationOrientation(const MQuaternion& orientation);

    MStatus getScale(double scale[3], MSpace::Space space) const;
    MStatus setScale(const double scale[3], MSpace::Space space);
    /// Multiplies the scale.
    MStatus addScale(const double scale[3], MSpace::Space space);
    /// xy, xz, yz.
    MStatus getShear(double shear[3], MSpace::Space space) const;
    MStatus setShear(const double shear[3], MSpace::Space space);
    MStatus addShear(const double shear[3], MSpace::Space space);

    /// With `balance` the pivot's translation changes so that the matrix stays.
    MPoint  scalePivot(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setScalePivot(const MPoint& pivot, MSpace::Space space, bool balance);
    MVector scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setScalePivotTranslation(const MVector& translation, MSpace::Space space);
    MPoint  rotatePivot(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setRotatePivot(const MPoint& pivot, MSpace::Space space, bool balance);
    MVector rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = nullptr) const;
    MStatus setRotatePivotTranslation(const MVector& translation, MSpace::Space space);

    static const MTransformationMatrix identity;

private:
    MMatrix shapeMatrix() const;  // scale and shear
    MMatrix linear() const;       // scale, shear, orientation, rotation
    MVector scalePivotShift() const;
    MVector rotatePivotShift() const;
    void    takeApart(const MMatrix& matrix);

    MVector        scale_{1, 1, 1};
    MVector        shear_;
    MEulerRotation rotation_;
    MQuaternion    orientation_;
    MVector        translation_;
    MVector        scalePivot_, scalePivotTranslation_;
    MVector        rotatePivot_, rotatePivotTranslation_;
};

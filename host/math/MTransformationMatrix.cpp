#include <maya/MTransformationMatrix.h>

#include <algorithm>

#include "math/rotation.h"

const MTransformationMatrix MTransformationMatrix::identity;

namespace {

bool isSpace(MSpace::Space space) { return space > MSpace::kInvalid && space < MSpace::kLast; }
bool isBefore(MSpace::Space space) { return space == MSpace::kPreTransform; }

MStatus checked(MSpace::Space space) { return isSpace(space) ? MStatus::kSuccess : MStatus::kInvalidParameter; }

template <class T>
T answer(const T& value, MSpace::Space space, MStatus* status)
{
    if (status)
        *status = checked(space);
    return value;
}

bool isOrder(MTransformationMatrix::RotationOrder order)
{
    return order > MTransformationMatrix::kInvalid && order < MTransformationMatrix::kLast;
}

MEulerRotation::RotationOrder eulerOrder(MTransformationMatrix::RotationOrder order)
{
    return MEulerRotation::RotationOrder(int(order) - 1);
}

}  // namespace

MTransformationMatrix::MTransformationMatrix() = default;
MTransformationMatrix::MTransformationMatrix(const MMatrix& matrix) { takeApart(matrix); }

MTransformationMatrix& MTransformationMatrix::operator=(const MMatrix& matrix)
{
    takeApart(matrix);
    return *this;
}

void MTransformationMatrix::takeApart(const MMatrix& matrix)
{
    const MEulerRotation::RotationOrder order = rotation_.order;
    const mirk::LinearParts             parts = mirk::takeApart(matrix);
    *this        = MTransformationMatrix();
    scale_       = parts.scale;
    shear_       = parts.shear;
    rotation_    = MEulerRotation::decompose(matrix, order);
    translation_ = MVector(matrix.matrix[3]);
}

MMatrix MTransformationMatrix::shapeMatrix() const
{
    MMatrix out;
    auto&   m = out.matrix;
    m[0][0] = scale_.x;
    m[1][0] = scale_.y * shear_.x, m[1][1] = scale_.y;
    m[2][0] = scale_.z * shear_.y, m[2][1] = scale_.z * shear_.z, m[2][2] = scale_.z;
    return out;
}

MMatrix MTransformationMatrix::linear() const { return shapeMatrix() * asRotateMatrix(); }

MVector MTransformationMatrix::scalePivotShift() const
{
    return scalePivot_ - scalePivot_ * shapeMatrix() + scalePivotTranslation_;
}

MVector MTransformationMatrix::rotatePivotShift() const
{
    return rotatePivot_ - rotatePivot_ * asRotateMatrix() + rotatePivotTranslation_;
}

MMatrix MTransformationMatrix::asMatrix() const
{
    const MMatrix rotate = asRotateMatrix();
    MMatrix       out = shapeMatrix() * rotate;
    const MVector shift = scalePivotShift() * rotate + rotatePivotShift() + translation_;
    out.matrix[3][0] = shift.x, out.matrix[3][1] = shift.y, out.matrix[3][2] = shift.z;
    return out;
}

MMatrix MTransformationMatrix::asMatrix(double percent) const
{
    const double          t = std::clamp(percent, 0.0, 1.0);
    MTransformationMatrix part = *this;
    part.scale_                  = MVector(1, 1, 1) * (1 - t) + scale_ * t;
    part.shear_                  = shear_ * t;
    part.rotation_               = rotation_ * t;
    part.orientation_            = slerp(MQuaternion(), orientation_, t);
    part.translation_            = translation_ * t;
    part.scalePivotTranslation_  = scalePivotTranslation_ * t;
    part.rotatePivotTranslation_ = rotatePivotTranslation_ * t;
    return part.asMatrix();
}

MMatrix MTransformationMatrix::asMatrixInverse() const { return asMatrix().inverse(); }
MMatrix MTransformationMatrix::asScaleMatrix() const { return shapeMatrix(); }
MMatrix MTransformationMatrix::asRotateMatrix() const
{
    return orientation_ == MQuaternion() ? rotation_.asMatrix() : orientation_.asMatrix() * rotation_.asMatrix();
}

bool MTransformationMatrix::isEquivalent(const MTransformationMatrix& other, double tolerance) const
{
    return asMatrix().isEquivalent(other.asMatrix(), tolerance);
}

MVector MTransformationMatrix::getTranslation(MSpace::Space space, MStatus* status) const
{
    return answer(isBefore(space) ? translation_ * linear().inverse() : translation_, space, status);
}

MVector MTransformationMatrix::translation(MSpace::Space space, MStatus* status) const
{
    return getTranslation(space, status);
}

MStatus MTransformationMatrix::setTranslation(const MVector& translation, MSpace::Space space)
{
    if (isSpace(space))
        translation_ = isBefore(space) ? translation * linear() : translation;
    return checked(space);
}

MStatus MTransformationMatrix::addTranslation(const MVector& translation, MSpace::Space space)
{
    if (isSpace(space))
        translation_ += isBefore(space) ? translation * linear() : translation;
    return checked(space);
}

MQuaternion MTransformationMatrix::rotation() const { return rotation_.asQuaternion(); }

MStatus MTransformationMatrix::getRotation(double rotation[3], RotationOrder& order) const
{
    order = rotationOrder();
    return rotation_.asVector().get(rotation);
}

MStatus MTransformationMatrix::getRotation(double rotation[3], RotationOrder& order, MSpace::Space space) const
{
    return isSpace(space) ? getRotation(rotation, order) : checked(space);
}

MStatus MTransformationMatrix::setRotation(const double rotation[3], RotationOrder order)
{
    if (!isOrder(order))
        return MStatus::kInvalidParameter;
    rotation_ = MEulerRotation(rotation, eulerOrder(order));
    return MStatus();
}

MStatus MTransformationMatrix::setRotation(const double rotation[3], RotationOrder order, MSpace::Space space)
{
    return isSpace(space) ? setRotation(rotation, order) : checked(space);
}

MStatus MTransformationMatrix::addRotation(const double rotation[3], RotationOrder order, MSpace::Space space)
{
    if (!isOrder(order))
        return MStatus::kInvalidParameter;
    MStatus status;
    rotateBy(MEulerRotation(rotation, eulerOrder(order)), space, &status);
    return status;
}

MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z, double& w) const
{
    const MQuaternion q = rotation();
    x = q.x, y = q.y, z = q.z, w = q.w;
    return MStatus();
}

MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z, double& w,
                                                     MSpace::Space space) const
{
    return isSpace(space) ? getRotationQuaternion(x, y, z, w) : checked(space);
}

MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w)
{
    rotateTo(MQuaternion(x, y, z, w));
    return MStatus();
}

MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space)
{
    return isSpace(space) ? setRotationQuaternion(x, y, z, w) : checked(space);
}

MStatus MTransformationMatrix::addRotationQuaternion(double x, double y, double z, double w, MSpace::Space space)
{
    MStatus status;
    rotateBy(MQuaternion(x, y, z, w), space, &status);
    return status;
}

MTransformationMatrix& MTransformationMatrix::rotateTo(const MQuaternion& rotation)
{
    rotation_ = rotation;
    return *this;
}

MTransformationMatrix& MTransformationMatrix::rotateTo(const MEulerRotation& rotation)
{
    rotation_ = rotation;
    return *this;
}

MTransformationMatrix& MTransformationMatrix::rotateBy(const MQuaternion& q, MSpace::Space space, MStatus* status)
{
    if (isSpace(space))
        rotation_ = isBefore(space) ? q.asMatrix() * rotation_.asMatrix() : rotation_.asMatrix() * q.asMatrix();
    if (status)
        *status = checked(space);
    return *this;
}

MTransformationMatrix& MTransformationMatrix::rotateBy(const MEulerRotation& e, MSpace::Space space, MStatus* status)
{
    return rotateBy(e.asQuaternion(), space, status);
}

MStatus MTransformationMatrix::setToRotationAxis(const MVector& axis, double angle)
{
    if (!(axis.length() > 0))
        return MStatus::kInvalidParameter;
    rotateTo(MQuaternion(angle, axis));
    return MStatus();
}

MStatus MTransformationMatrix::reorderRotation(RotationOrder order)
{
    if (!isOrder(order))
        return MStatus::kInvalidParameter;
    rotation_.reorderIt(eulerOrder(order));
    return MStatus();
}

MStatus MTransformationMatrix::setRotationOrientation(const MQuaternion& orientation)
{
    orientation_ = orientation;
    return MStatus();
}

MStatus MTransformationMatrix::getScale(double scale[3], MSpace::Space space) const
{
    return isSpace(space) ? scale_.get(scale) : checked(space);
}

MStatus MTransformationMatrix::setScale(const double scale[3], MSpace::Space space)
{
    if (isSpace(space))
        scale_ = MVector(scale);
    return checked(space);
}

MStatus MTransformationMatrix::addScale(const double scale[3], MSpace::Space space)
{
    if (isSpace(space))
        scale_ = MVector(scale_.x * scale[0], scale_.y * scale[1], scale_.z * scale[2]);
    return checked(space);
}

MStatus MTransformationMatrix::getShear(double shear[3], MSpace::Space space) const
{
    return isSpace(space) ? shear_.get(shear) : checked(space);
}

MStatus MTransformationMatrix::setShear(const double shear[3], MSpace::Space space)
{
    if (isSpace(space))
        shear_ = MVector(shear);
    return checked(space);
}

MStatus MTransformationMatrix::addShear(const double shear[3], MSpace::Space space)
{
    if (isSpace(space))
        shear_ += MVector(shear);
    return checked(space);
}

MPoint MTransformationMatrix::scalePivot(MSpace::Space space, MStatus* status) const
{
    return answer(MPoint(scalePivot_), space, status);
}

MStatus MTransformationMatrix::setScalePivot(const MPoint& pivot, MSpace::Space space, bool balance)
{
    if (!isSpace(space))
        return checked(space);
    const MVector before = scalePivotShift();
    scalePivot_ = pivot;
    if (balance)
        scalePivotTranslation_ += before - scalePivotShift();
    return MStatus();
}

MVector MTransformationMatrix::scalePivotTranslation(MSpace::Space space, MStatus* status) const
{
    return answer(scalePivotTranslation_, space, status);
}

MStatus MTransformationMatrix::setScalePivotTranslation(const MVector& translation, MSpace::Space space)
{
    if (isSpace(space))
        scalePivotTranslation_ = translation;
    return checked(space);
}

MPoint MTransformationMatrix::rotatePivot(MSpace::Space space, MStatus* status) const
{
    return answer(MPoint(rotatePivot_), space, status);
}

MStatus MTransformationMatrix::setRotatePivot(const MPoint& pivot, MSpace::Space space, bool balance)
{
    if (!isSpace(space))
        return checked(space);
    const MVector before = rotatePivotShift();
    rotatePivot_ = pivot;
    if (balance)
        rotatePivotTranslation_ += before - rotatePivotShift();
    return MStatus();
}

MVector MTransformationMatrix::rotatePivotTranslation(MSpace::Space space, MStatus* status) const
{
    return answer(rotatePivotTranslation_, space, status);
}

MStatus MTransformationMatrix::setRotatePivotTranslation(const MVector& translation, MSpace::Space space)
{
    if (isSpace(space))
        rotatePivotTranslation_ = translation;
    return checked(space);
}

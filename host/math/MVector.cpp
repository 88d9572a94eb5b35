// Vectors and points, double and float.
#include <maya/MVector.h>

#include <ostream>

#include <maya/MEulerRotation.h>
#include <maya/MQuaternion.h>

#define MIRK_VECTOR_CONSTANTS(V)                                     \
    const V V::zero(0, 0, 0), V::one(1, 1, 1);                       \
    const V V::xAxis(1, 0, 0), V::yAxis(0, 1, 0), V::zAxis(0, 0, 1); \
    const V V::xNegAxis(-1, 0, 0), V::yNegAxis(0, -1, 0), V::zNegAxis(0, 0, -1);

MIRK_VECTOR_CONSTANTS(MVector)
MIRK_VECTOR_CONSTANTS(MFloatVector)

const MPoint      MPoint::origin(0, 0, 0, 1);
const MFloatPoint MFloatPoint::origin(0, 0, 0, 1);

bool MVector::isParallel(const MVector& other, double tolerance) const
{
    return std::fabs(std::fabs(normal() * other.normal()) - 1.0) <= tolerance;
}

bool MFloatVector::isParallel(const MFloatVector& other, float tolerance) const
{
    return std::fabs(std::fabs(normal() * other.normal()) - 1.0f) <= tolerance;
}

MVector MVector::rotateBy(double qx, double qy, double qz, double qw) const
{
    return rotateBy(MQuaternion(qx, qy, qz, qw));
}

MVector MVector::rotateBy(const MQuaternion& rotation) const
{
    const MQuaternion q = rotation.normal();
    const MVector     u(q.x, q.y, q.z);
    const MVector     t = (u ^ *this) * 2.0;
    return *this + t * q.w + (u ^ t);
}

MVector MVector::rotateBy(const MEulerRotation& rotation) const { return *this * rotation.asMatrix(); }

MVector MVector::rotateBy(Axis axis, double angle) const
{
    switch (axis) {
    case kXaxis: return rotateBy(MQuaternion(angle, MVector(1, 0, 0)));
    case kYaxis: return rotateBy(MQuaternion(angle, MVector(0, 1, 0)));
    case kZaxis: return rotateBy(MQuaternion(angle, MVector(0, 0, 1)));
    default: return *this;
    }
}

MQuaternion MVector::rotateTo(const MVector& other) const { return MQuaternion(*this, other); }

MVector MVector::transformAsNormal(const MMatrix& matrix) const { return *this * matrix.inverse().transpose(); }

MFloatVector MFloatVector::transformAsNormal(const MFloatMatrix& matrix) const
{
    return *this * matrix.inverse().transpose();
}

namespace {

template <class P>
P& scaled(P& p, decltype(P::x) factor, decltype(P::x) w)
{
    return p = P(p.x * factor, p.y * factor, p.z * factor, w);
}

}  // namespace

MPoint&      MPoint::cartesianize() { return w != 0 ? scaled(*this, 1 / w, 1) : *this; }
MPoint&      MPoint::rationalize() { return w != 0 ? scaled(*this, 1 / w, w) : *this; }
MPoint&      MPoint::homogenize() { return scaled(*this, w, w); }
MFloatPoint& MFloatPoint::cartesianize() { return w != 0 ? scaled(*this, 1 / w, 1) : *this; }
MFloatPoint& MFloatPoint::rationalize() { return w != 0 ? scaled(*this, 1 / w, w) : *this; }
MFloatPoint& MFloatPoint::homogenize() { return scaled(*this, w, w); }

std::ostream& operator<<(std::ostream& os, const MVector& v)
{
    return os << '[' << v.x << ", " << v.y << ", " << v.z << ']';
}
std::ostream& operator<<(std::ostream& os, const MFloatVector& v)
{
    return os << '[' << v.x << ", " << v.y << ", " << v.z << ']';
}
std::ostream& operator<<(std::ostream& os, const MPoint& p)
{
    return os << '[' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << ']';
}
std::ostream& operator<<(std::ostream& os, const MFloatPoint& p)
{
    return os << '[' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << ']';
}

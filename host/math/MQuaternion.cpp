#include <maya/MQuaternion.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include <maya/MEulerRotation.h>

#include "math/rotation.h"

const MQuaternion MQuaternion::identity;

namespace {

double dot(const MQuaternion& a, const MQuaternion& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }

/// From the rows of a rotation matrix; starts from the largest component, so it never divides by a small one.
MQuaternion fromAxes(const MVector m[3])
{
    const double trace = m[0].x + m[1].y + m[2].z;
    if (trace > 0) {
        const double s = 2 * std::sqrt(trace + 1);
        return {(m[1].z - m[2].y) / s, (m[2].x - m[0].z) / s, (m[0].y - m[1].x) / s, s / 4};
    }
    const unsigned i = m[0].x >= m[1].y && m[0].x >= m[2].z ? 0 : m[1].y >= m[2].z ? 1 : 2;
    const unsigned j = (i + 1) % 3, k = (i + 2) % 3;
    const double   s = 2 * std::sqrt(1 + m[i](i) - m[j](j) - m[k](k));
    MQuaternion    q;
    q[i] = s / 4;
    q[j] = (m[i](j) + m[j](i)) / s;
    q[k] = (m[i](k) + m[k](i)) / s;
    q.w  = (m[j](k) - m[k](j)) / s;
    return q;
}

}  // namespace

MQuaternion::MQuaternion(double angle, const MVector& axis) { setAxisAngle(axis, angle); }
MQuaternion::MQuaternion(const MVector& from, const MVector& to) : MQuaternion(from, to, 1.0) {}

MQuaternion::MQuaternion(const MVector& from, const MVector& to, double factor)
{
    const MVector a = from.normal(), b = to.normal();
    MVector       axis = a ^ b;
    if (axis.length() < 1e-14)
        axis = mirk::perpendicular(a);  // opposite: any axis at a right angle will do
    setAxisAngle(axis, a.angle(b) * factor);
}

MQuaternion& MQuaternion::operator=(const MMatrix& matrix)
{
    const mirk::LinearParts parts = mirk::takeApart(matrix);
    return *this = fromAxes(parts.axes).normal();
}

MQuaternion& MQuaternion::operator=(const MEulerRotation& euler) { return *this = euler.asQuaternion(); }
MQuaternion& MQuaternion::assign(double x, double y, double z, double w) { return *this = MQuaternion(x, y, z, w); }

MStatus MQuaternion::get(double q[4]) const
{
    q[0] = x, q[1] = y, q[2] = z, q[3] = w;
    return MStatus();
}

MQuaternion MQuaternion::operator*(const MQuaternion& r) const
{
    return {r.w * x + r.x * w + r.y * z - r.z * y, r.w * y - r.x * z + r.y * w + r.z * x,
            r.w * z + r.x * y - r.y * x + r.z * w, r.w * w - r.x * x - r.y * y - r.z * z};
}

bool MQuaternion::isEquivalent(const MQuaternion& o, double tolerance) const
{
    return std::fabs(x - o.x) <= tolerance && std::fabs(y - o.y) <= tolerance && std::fabs(z - o.z) <= tolerance &&
           std::fabs(w - o.w) <= tolerance;
}

MMatrix MQuaternion::asMatrix() const
{
    MMatrix      out;
    const double n = dot(*this, *this);
    if (n == 0)
        return out;
    const double s = 2 / n;
    auto&        m = out.matrix;
    m[0][0] = 1 - s * (y * y + z * z), m[0][1] = s * (x * y + z * w), m[0][2] = s * (x * z - y * w);
    m[1][0] = s * (x * y - z * w), m[1][1] = 1 - s * (x * x + z * z), m[1][2] = s * (y * z + x * w);
    m[2][0] = s * (x * z + y * w), m[2][1] = s * (y * z - x * w), m[2][2] = 1 - s * (x * x + y * y);
    return out;
}

MEulerRotation MQuaternion::asEulerRotation() const
{
    return MEulerRotation::decompose(asMatrix(), MEulerRotation::kXYZ);
}

bool MQuaternion::getAxisAngle(MVector& axis, double& angle) const
{
    const MVector v(x, y, z);
    const double  length = v.length();
    axis  = length > 0 ? v / length : MVector(1, 0, 0);
    angle = length > 0 ? 2 * std::atan2(length, w) : 0;
    return length > 0;
}

MQuaternion& MQuaternion::setAxisAngle(const MVector& axis, double angle)
{
    const double length = axis.length();
    if (!(length > 0))
        return *this = MQuaternion();
    const MVector u = axis * (std::sin(angle / 2) / length);
    return *this = MQuaternion(u.x, u.y, u.z, std::cos(angle / 2));
}

MQuaternion& MQuaternion::setToXAxis(double angle) { return setAxisAngle(MVector(1, 0, 0), angle); }
MQuaternion& MQuaternion::setToYAxis(double angle) { return setAxisAngle(MVector(0, 1, 0), angle); }
MQuaternion& MQuaternion::setToZAxis(double angle) { return setAxisAngle(MVector(0, 0, 1), angle); }

MQuaternion MQuaternion::inverse() const
{
    const double n = dot(*this, *this);
    return n > 0 ? conjugate() * (1 / n) : *this;
}

MQuaternion MQuaternion::normal() const
{
    const double n = std::sqrt(dot(*this, *this));
    return n > 0 ? *this * (1 / n) : *this;
}

MQuaternion MQuaternion::log() const
{
    const double length = std::sqrt(x * x + y * y + z * z);
    const double f = length > 0 ? std::atan2(length, w) / length : 1;
    return {x * f, y * f, z * f, 0};
}

MQuaternion MQuaternion::exp() const
{
    const double angle = std::sqrt(x * x + y * y + z * z);
    const double f = angle > 0 ? std::sin(angle) / angle : 1;
    return {x * f, y * f, z * f, std::cos(angle)};
}

std::ostream& operator<<(std::ostream& os, const MQuaternion& q)
{
    return os << '[' << q.x << ", " << q.y << ", " << q.z << ", " << q.w << ']';
}

MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin)
{
    const double      cosine = dot(p, q);
    const MQuaternion end = cosine < 0 ? -q : q;
    const double      angle = std::acos(std::min(std::fabs(cosine), 1.0));
    const double      sine = std::sin(angle);
    if (sine < 1e-8)
        return (p * (1 - t) + end * t).normal();
    const double turn = angle + spin * M_PI;
    return p * (std::sin(angle - t * turn) / sine) + end * (std::sin(t * turn) / sine);
}

MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b, const MQuaternion& q, double t,
                  short spin)
{
    return slerp(slerp(p, q, t, spin), slerp(a, b, t), 2 * t * (1 - t));
}

MQuaternion squadPt(const MQuaternion& q0, const MQuaternion& q1, const MQuaternion& q2)
{
    const MQuaternion back = q1.inverse();
    const MQuaternion from = dot(q0, q1) < 0 ? -q0 : q0, to = dot(q2, q1) < 0 ? -q2 : q2;
    return q1 * (((back * from).log() + (back * to).log()) * -0.25).exp();
}

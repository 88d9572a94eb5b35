#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MMatrix.h>
#include <maya/MVector.h>

class MEulerRotation;

#define kQuaternionEpsilon 1.0e-10

/// A quaternion; unit ones are rotations. `p * q` is the rotation p followed by q, as with matrices.
class MQuaternion
{
public:
    double x = 0, y = 0, z = 0, w = 1;

    MQuaternion() = default;
    MQuaternion(double x, double y, double z, double w) : x(x), y(y), z(z), w(w) {}
    MQuaternion(const double q[4]) : x(q[0]), y(q[1]), z(q[2]), w(q[3]) {}
    /// By `angle` radians about `axis`.
    MQuaternion(double angle, const MVector& axis);
    /// The shortest rotation that takes direction `from` to `to`; `factor` 0 to 1 goes only that part of the way.
    MQuaternion(const MVector& from, const MVector& to);
    MQuaternion(const MVector& from, const MVector& to, double factor);

    /// The rotation of a matrix, scale and shear removed.
    MQuaternion& operator=(const MMatrix& matrix);
    MQuaternion& operator=(const MEulerRotation& euler);
    MQuaternion& assign(double x, double y, double z, double w);
    MStatus      get(double q[4]) const;

    /// An index past 3 stands for w.
    double  operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }

    MQuaternion  operator+(const MQuaternion& o) const { return {x + o.x, y + o.y, z + o.z, w + o.w}; }
    MQuaternion  operator-(const MQuaternion& o) const { return {x - o.x, y - o.y, z - o.z, w - o.w}; }
    MQuaternion  operator-() const { return {-x, -y, -z, -w}; }
    MQuaternion  operator*(const MQuaternion& right) const;
    MQuaternion  operator*(double s) const { return {x * s, y * s, z * s, w * s}; }
    MQuaternion& operator*=(const MQuaternion& right) { return *this = *this * right; }
    bool operator==(const MQuaternion& o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
    bool operator!=(const MQuaternion& o) const { return !(*this == o); }
    /// Component by component; q and -q differ.
    bool isEquivalent(const MQuaternion& other, double tolerance = kQuaternionEpsilon) const;

    MMatrix        asMatrix() const;
    MEulerRotation asEulerRotation() const;

    /// False, with the x axis and angle 0, for no rotation.
    bool         getAxisAngle(MVector& axis, double& angle) const;
    MQuaternion& setAxisAngle(const MVector& axis, double angle);
    MQuaternion& setToXAxis(double angle);
    MQuaternion& setToYAxis(double angle);
    MQuaternion& setToZAxis(double angle);

    MQuaternion  conjugate() const { return {-x, -y, -z, w}; }
    MQuaternion& conjugateIt() { return *this = conjugate(); }
    MQuaternion  inverse() const;
    MQuaternion& invertIt() { return *this = inverse(); }
    MQuaternion& negateIt() { return *this = -*this; }
    MQuaternion& scaleIt(double s) { return *this = *this * s; }
    /// A zero quaternion stays as it is.
    MQuaternion  normal() const;
    MQuaternion& normalizeIt() { return *this = normal(); }
    /// Of unit quaternions.
    MQuaternion  log() const;
    MQuaternion  exp() const;

    static const MQuaternion identity;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MQuaternion operator*(N s, const MQuaternion& q) { return q * static_cast<double>(s); }
std::ostream&      operator<<(std::ostream& os, const MQuaternion& q);

/// The spherical interpolation of unit quaternions along the shorter arc, with `spin` additional half turns.
MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin = 0);
/// The spline segment from p to q with control quaternions a and b.
MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b, const MQuaternion& q, double t,
                  short spin = 0);
/// The control quaternion at q1 for neighbours q0 and q2.
MQuaternion squadPt(const MQuaternion& q0, const MQuaternion& q1, const MQuaternion& q2);

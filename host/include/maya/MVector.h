#pragma once
#include <cmath>
#include <iosfwd>
#include <type_traits>

#include <maya/MMatrix.h>
#include <maya/MStatus.h>

class MFloatVector;
class MFloatPoint;
class MPoint;
class MQuaternion;
class MEulerRotation;

#define MVector_kTol 1.0e-10

/// A vector of three doubles. Matrices act from the right and their translation does not count.
class MVector
{
public:
    enum Axis { kXaxis, kYaxis, kZaxis, kWaxis };

    double x = 0, y = 0, z = 0;

    MVector() = default;
    MVector(double x, double y, double z = 0.0) : x(x), y(y), z(z) {}
    MVector(const double v[3]) : x(v[0]), y(v[1]), z(v[2]) {}
    MVector(const float v[3]) : x(v[0]), y(v[1]), z(v[2]) {}
    inline MVector(const MPoint& p);
    inline MVector(const MFloatVector& v);
    inline MVector(const MFloatPoint& p);

    /// An index past 2 stands for z.
    double  operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    double  operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }
    MStatus get(double v[3]) const { v[0] = x; v[1] = y; v[2] = z; return MStatus(); }
    MStatus get(float v[3]) const { v[0] = float(x); v[1] = float(y); v[2] = float(z); return MStatus(); }

    MVector  operator^(const MVector& o) const { return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x}; }
    double   operator*(const MVector& o) const { return x * o.x + y * o.y + z * o.z; }
    MVector  operator*(double s) const { return {x * s, y * s, z * s}; }
    MVector  operator/(double s) const { return {x / s, y / s, z / s}; }
    MVector  operator+(const MVector& o) const { return {x + o.x, y + o.y, z + o.z}; }
    MVector  operator-(const MVector& o) const { return {x - o.x, y - o.y, z - o.z}; }
    MVector  operator-() const { return {-x, -y, -z}; }
    MVector& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
    MVector& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
    MVector& operator+=(const MVector& o) { x += o.x; y += o.y; z += o.z; return *this; }
    MVector& operator-=(const MVector& o) { x -= o.x; y -= o.y; z -= o.z; return *this; }
    MVector  operator*(const MMatrix& m) const
    {
        const auto& a = m.matrix;
        return {x * a[0][0] + y * a[1][0] + z * a[2][0], x * a[0][1] + y * a[1][1] + z * a[2][1],
                x * a[0][2] + y * a[1][2] + z * a[2][2]};
    }
    MVector& operator*=(const MMatrix& m) { return *this = *this * m; }
    bool     operator==(const MVector& o) const { return x == o.x && y == o.y && z == o.z; }
    bool     operator!=(const MVector& o) const { return !(*this == o); }

    double  length() const { return std::sqrt(x * x + y * y + z * z); }
    /// A zero vector stays as it is.
    MVector normal() const { MVector v(*this); v.normalize(); return v; }
    MStatus normalize()
    {
        if (const double l = length(); l > 0.0)
            *this /= l;
        return MStatus();
    }
    /// Between 0 and pi; 0 with a zero vector.
    double  angle(const MVector& other) const { return std::atan2((*this ^ other).length(), *this * other); }
    bool    isEquivalent(const MVector& other, double tolerance = MVector_kTol) const
    {
        return (*this - other).length() <= tolerance;
    }
    /// In the same or the opposite direction: unit vectors' dot product within `tolerance` of 1 or -1.
    bool    isParallel(const MVector& other, double tolerance = MVector_kTol) const;

    MVector     rotateBy(double x, double y, double z, double w) const;
    MVector     rotateBy(const MQuaternion& rotation) const;
    MVector     rotateBy(const MEulerRotation& rotation) const;
    MVector     rotateBy(Axis axis, double angle) const;
    /// The shortest rotation that takes this direction to the other.
    MQuaternion rotateTo(const MVector& other) const;
    /// Through the inverse transpose; not normalized.
    MVector     transformAsNormal(const MMatrix& matrix) const;

    static const MVector zero, one, xAxis, yAxis, zAxis, xNegAxis, yNegAxis, zNegAxis;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MVector operator*(N s, const MVector& v) { return v * static_cast<double>(s); }
std::ostream&  operator<<(std::ostream& os, const MVector& v);

static_assert(sizeof(MVector) == 3 * sizeof(double), "an array of vectors is an array of doubles");

#include <maya/MVectorInline.h>

#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MMatrix.h>
#include <maya/MStatus.h>

class MFloatVector;
class MFloatPoint;
class MVector;

#define MPoint_kTol 1.0e-10

/// A point of four doubles. Matrices act from the right on all four; arithmetic and distances ignore w, so a point whose
/// w is not 1 wants cartesianize() first.
class MPoint
{
public:
    double x = 0, y = 0, z = 0, w = 1;

    MPoint() = default;
    MPoint(double x, double y, double z = 0, double w = 1) : x(x), y(y), z(z), w(w) {}
    MPoint(const double p[4]) : x(double(p[0])), y(double(p[1])), z(double(p[2])), w(double(p[3])) {}
    MPoint(const float p[4]) : x(p[0]), y(p[1]), z(p[2]), w(p[3]) {}
    inline MPoint(const MVector& v);
    inline MPoint(const MFloatVector& v);
    inline MPoint(const MFloatPoint& p);

    /// An index past 3 stands for w.
    double  operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    double  operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    MStatus get(double p[4]) const { p[0] = x; p[1] = y; p[2] = z; p[3] = w; return MStatus(); }
    MStatus get(float p[4]) const { p[0] = float(x); p[1] = float(y); p[2] = float(z); p[3] = float(w); return MStatus(); }

    inline MVector operator-(const MPoint& o) const;
    inline MPoint operator-(const MVector& v) const;
    inline MPoint operator+(const MVector& v) const;
    inline MPoint& operator+=(const MVector& v);
    inline MPoint& operator-=(const MVector& v);
    MPoint  operator*(double s) const { return {x * s, y * s, z * s, w}; }
    MPoint  operator/(double s) const { return {x / s, y / s, z / s, w}; }
    MPoint& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
    MPoint& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
    MPoint  operator*(const MMatrix& m) const
    {
        const auto& a = m.matrix;
        return {x * a[0][0] + y * a[1][0] + z * a[2][0] + w * a[3][0], x * a[0][1] + y * a[1][1] + z * a[2][1] + w * a[3][1],
                x * a[0][2] + y * a[1][2] + z * a[2][2] + w * a[3][2], x * a[0][3] + y * a[1][3] + z * a[2][3] + w * a[3][3]};
    }
    MPoint& operator*=(const MMatrix& m) { return *this = *this * m; }
    bool operator==(const MPoint& o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
    bool operator!=(const MPoint& o) const { return !(*this == o); }

    /// (Wx, Wy, Wz, W) to (x, y, z, 1); nothing changes if W is 0.
    MPoint& cartesianize();
    /// (Wx, Wy, Wz, W) to (x, y, z, W); nothing changes if W is 0.
    MPoint& rationalize();
    /// (x, y, z, W) to (Wx, Wy, Wz, W).
    MPoint& homogenize();

    inline double distanceTo(const MPoint& other) const;
    inline bool isEquivalent(const MPoint& other, double tolerance = MPoint_kTol) const;

    static const MPoint origin;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MPoint operator*(N s, const MPoint& p) { return p * static_cast<double>(s); }
std::ostream& operator<<(std::ostream& os, const MPoint& p);

static_assert(sizeof(MPoint) == 4 * sizeof(double), "an array of points is an array of doubles");

#include <maya/MVectorInline.h>

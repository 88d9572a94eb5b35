#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MFloatMatrix.h>
#include <maya/MStatus.h>

class MFloatVector;
class MPoint;
class MVector;

#define MFloatPoint_kTol 1.0e-5F

/// A point of four floats. Matrices act from the right on all four; arithmetic and distances ignore w, so a point whose
/// w is not 1 wants cartesianize() first.
class MFloatPoint
{
public:
    float x = 0, y = 0, z = 0, w = 1;

    MFloatPoint() = default;
    MFloatPoint(float x, float y, float z = 0, float w = 1) : x(x), y(y), z(z), w(w) {}
    MFloatPoint(const double p[4]) : x(float(p[0])), y(float(p[1])), z(float(p[2])), w(float(p[3])) {}
    MFloatPoint(const float p[4]) : x(p[0]), y(p[1]), z(p[2]), w(p[3]) {}
    inline MFloatPoint(const MVector& v);
    inline MFloatPoint(const MFloatVector& v);
    inline MFloatPoint(const MPoint& p);

    /// An index past 3 stands for w.
    float  operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    float  operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    float& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    MStatus get(double p[4]) const { p[0] = x; p[1] = y; p[2] = z; p[3] = w; return MStatus(); }
    MStatus get(float p[4]) const { p[0] = float(x); p[1] = float(y); p[2] = float(z); p[3] = float(w); return MStatus(); }

    inline MFloatVector operator-(const MFloatPoint& o) const;
    inline MFloatPoint operator-(const MFloatVector& v) const;
    inline MFloatPoint operator+(const MFloatVector& v) const;
    inline MFloatPoint& operator+=(const MFloatVector& v);
    inline MFloatPoint& operator-=(const MFloatVector& v);
    MFloatPoint  operator*(float s) const { return {x * s, y * s, z * s, w}; }
    MFloatPoint  operator/(float s) const { return {x / s, y / s, z / s, w}; }
    MFloatPoint& operator*=(float s) { x *= s; y *= s; z *= s; return *this; }
    MFloatPoint& operator/=(float s) { x /= s; y /= s; z /= s; return *this; }
    MFloatPoint  operator*(const MFloatMatrix& m) const
    {
        const auto& a = m.matrix;
        return {x * a[0][0] + y * a[1][0] + z * a[2][0] + w * a[3][0], x * a[0][1] + y * a[1][1] + z * a[2][1] + w * a[3][1],
                x * a[0][2] + y * a[1][2] + z * a[2][2] + w * a[3][2], x * a[0][3] + y * a[1][3] + z * a[2][3] + w * a[3][3]};
    }
    MFloatPoint& operator*=(const MFloatMatrix& m) { return *this = *this * m; }
    bool operator==(const MFloatPoint& o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
    bool operator!=(const MFloatPoint& o) const { return !(*this == o); }

    /// (Wx, Wy, Wz, W) to (x, y, z, 1); nothing changes if W is 0.
    MFloatPoint& cartesianize();
    /// (Wx, Wy, Wz, W) to (x, y, z, W); nothing changes if W is 0.
    MFloatPoint& rationalize();
    /// (x, y, z, W) to (Wx, Wy, Wz, W).
    MFloatPoint& homogenize();

    inline float distanceTo(const MFloatPoint& other) const;
    inline bool isEquivalent(const MFloatPoint& other, float tolerance = MFloatPoint_kTol) const;

    static const MFloatPoint origin;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MFloatPoint operator*(N s, const MFloatPoint& p) { return p * static_cast<float>(s); }
std::ostream& operator<<(std::ostream& os, const MFloatPoint& p);

static_assert(sizeof(MFloatPoint) == 4 * sizeof(float), "an array of points is an array of floats");

#include <maya/MVectorInline.h>

#pragma once
#include <cmath>
#include <iosfwd>
#include <type_traits>

#include <maya/MFloatMatrix.h>
#include <maya/MStatus.h>

class MVector;
class MPoint;
class MFloatPoint;

#define MFloatVector_kTol 1.0e-5F

/// A vector of three floats. Matrices act from the right and their translation does not count.
class MFloatVector
{
public:
    float x = 0, y = 0, z = 0;

    MFloatVector() = default;
    MFloatVector(float x, float y, float z = 0.0f) : x(x), y(y), z(z) {}
    MFloatVector(const float v[3]) : x(v[0]), y(v[1]), z(v[2]) {}
    MFloatVector(const double v[3]) : x(float(v[0])), y(float(v[1])), z(float(v[2])) {}
    inline MFloatVector(const MVector& v);
    inline MFloatVector(const MPoint& p);
    inline MFloatVector(const MFloatPoint& p);

    /// An index past 2 stands for z.
    float   operator()(unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    float   operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    float&  operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }
    MStatus get(float v[3]) const { v[0] = x; v[1] = y; v[2] = z; return MStatus(); }
    MStatus get(double v[3]) const { v[0] = x; v[1] = y; v[2] = z; return MStatus(); }

    MFloatVector  operator^(const MFloatVector& o) const
    {
        return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
    }
    float         operator*(const MFloatVector& o) const { return x * o.x + y * o.y + z * o.z; }
    MFloatVector  operator*(float s) const { return {x * s, y * s, z * s}; }
    MFloatVector  operator/(float s) const { return {x / s, y / s, z / s}; }
    MFloatVector  operator+(const MFloatVector& o) const { return {x + o.x, y + o.y, z + o.z}; }
    MFloatVector  operator-(const MFloatVector& o) const { return {x - o.x, y - o.y, z - o.z}; }
    MFloatVector  operator-() const { return {-x, -y, -z}; }
    MFloatVector& operator*=(float s) { x *= s; y *= s; z *= s; return *this; }
    MFloatVector& operator/=(float s) { x /= s; y /= s; z /= s; return *this; }
    MFloatVector& operator+=(const MFloatVector& o) { x += o.x; y += o.y; z += o.z; return *this; }
    MFloatVector& operator-=(const MFloatVector& o) { x -= o.x; y -= o.y; z -= o.z; return *this; }
    MFloatVector  operator*(const MFloatMatrix& m) const
    {
        const auto& a = m.matrix;
        return {x * a[0][0] + y * a[1][0] + z * a[2][0], x * a[0][1] + y * a[1][1] + z * a[2][1],
                x * a[0][2] + y * a[1][2] + z * a[2][2]};
    }
    MFloatVector& operator*=(const MFloatMatrix& m) { return *this = *this * m; }
    bool          operator==(const MFloatVector& o) const { return x == o.x && y == o.y && z == o.z; }
    bool          operator!=(const MFloatVector& o) const { return !(*this == o); }

    float        length() const { return std::sqrt(x * x + y * y + z * z); }
    /// A zero vector stays as it is.
    MFloatVector normal() const { MFloatVector v(*this); v.normalize(); return v; }
    MStatus      normalize()
    {
        if (const float l = length(); l > 0.0f)
            *this /= l;
        return MStatus();
    }
    /// Between 0 and pi; 0 with a zero vector.
    float angle(const MFloatVector& other) const { return std::atan2((*this ^ other).length(), *this * other); }
    bool  isEquivalent(const MFloatVector& other, float tolerance = MFloatVector_kTol) const
    {
        return (*this - other).length() <= tolerance;
    }
    /// In the same or the opposite direction: unit vectors' dot product within `tolerance` of 1 or -1.
    bool         isParallel(const MFloatVector& other, float tolerance = MFloatVector_kTol) const;
    /// Through the inverse transpose; not normalized.
    MFloatVector transformAsNormal(const MFloatMatrix& matrix) const;

    static const MFloatVector zero, one, xAxis, yAxis, zAxis, xNegAxis, yNegAxis, zNegAxis;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MFloatVector operator*(N s, const MFloatVector& v) { return v * static_cast<float>(s); }
std::ostream&       operator<<(std::ostream& os, const MFloatVector& v);

static_assert(sizeof(MFloatVector) == 3 * sizeof(float), "an array of vectors is an array of floats");

#include <maya/MVectorInline.h>

#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MMatrix.h>
#include <maya/MVector.h>

class MQuaternion;

#define kEulerRotationEpsilon 1.0e-10

/// Rotations about the three axes in radians, done in the order that the order's name gives.
class MEulerRotation
{
public:
    enum RotationOrder { kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX };

    double        x = 0, y = 0, z = 0;
    RotationOrder order = kXYZ;

    MEulerRotation() = default;
    MEulerRotation(double x, double y, double z, RotationOrder order = kXYZ) : x(x), y(y), z(z), order(order) {}
    MEulerRotation(const double v[3], RotationOrder order = kXYZ) : x(v[0]), y(v[1]), z(v[2]), order(order) {}
    MEulerRotation(const MVector& v, RotationOrder order = kXYZ) : x(v.x), y(v.y), z(v.z), order(order) {}

    /// The order stays; the angles become those of the rotation.
    MEulerRotation& operator=(const MMatrix& matrix);
    MEulerRotation& operator=(const MQuaternion& quaternion);
    MStatus         setValue(double x, double y, double z, RotationOrder order = kXYZ);
    MStatus         setValue(const MVector& v, RotationOrder order = kXYZ);
    MEulerRotation& assign(const MVector& v, RotationOrder order = kXYZ);

    /// An index past 2 stands for z.
    double  operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }

    /// Angle by angle; the other rotation is first taken to this order.
    MEulerRotation  operator+(const MEulerRotation& other) const;
    MEulerRotation  operator-(const MEulerRotation& other) const;
    MEulerRotation  operator-() const { return {-x, -y, -z, order}; }
    MEulerRotation  operator*(double s) const { return {x * s, y * s, z * s, order}; }
    /// This rotation followed by the other, in this order.
    MEulerRotation  operator*(const MEulerRotation& other) const;
    MEulerRotation  operator*(const MQuaternion& other) const;
    MEulerRotation& operator+=(const MEulerRotation& other) { return *this = *this + other; }
    MEulerRotation& operator-=(const MEulerRotation& other) { return *this = *this - other; }
    MEulerRotation& operator*=(double s) { return *this = *this * s; }
    MEulerRotation& operator*=(const MEulerRotation& other) { return *this = *this * other; }
    MEulerRotation& operator*=(const MQuaternion& other) { return *this = *this * other; }
    bool operator==(const MEulerRotation& o) const { return x == o.x && y == o.y && z == o.z && order == o.order; }
    bool operator!=(const MEulerRotation& o) const { return !(*this == o); }
    /// Same order and angles within `tolerance`.
    bool isEquivalent(const MEulerRotation& other, double tolerance = kEulerRotationEpsilon) const;
    bool isZero(double tolerance = kEulerRotationEpsilon) const;

    MQuaternion asQuaternion() const;
    MMatrix     asMatrix() const;
    MVector     asVector() const { return {x, y, z}; }

    MEulerRotation& incrementalRotateBy(const MVector& axis, double angle);
    MEulerRotation  inverse() const;
    MEulerRotation& invertIt() { return *this = inverse(); }
    MEulerRotation  reorder(RotationOrder order) const;
    MEulerRotation& reorderIt(RotationOrder order) { return *this = reorder(order); }

    /// Each angle brought into [-pi, pi].
    MEulerRotation  bound() const;
    MEulerRotation& boundIt() { return *this = bound(); }
    MEulerRotation& boundIt(const MEulerRotation& source) { return *this = source.bound(); }
    /// The other triple of angles that gives the same rotation.
    MEulerRotation  alternateSolution() const;
    MEulerRotation& setToAlternateSolution() { return *this = alternateSolution(); }
    MEulerRotation& setToAlternateSolution(const MEulerRotation& source) { return *this = source.alternateSolution(); }
    /// The same rotation with each angle within pi of the other's.
    MEulerRotation  closestCut(const MEulerRotation& other) const;
    MEulerRotation& setToClosestCut(const MEulerRotation& other) { return *this = closestCut(other); }
    MEulerRotation& setToClosestCut(const MEulerRotation& source, const MEulerRotation& other);
    /// The same rotation with angles as near to the other's as any.
    MEulerRotation  closestSolution(const MEulerRotation& other) const;
    MEulerRotation& setToClosestSolution(const MEulerRotation& other) { return *this = closestSolution(other); }
    MEulerRotation& setToClosestSolution(const MEulerRotation& source, const MEulerRotation& other);

    static MEulerRotation computeBound(const MEulerRotation& source) { return source.bound(); }
    static MEulerRotation computeAlternateSolution(const MEulerRotation& source) { return source.alternateSolution(); }
    static MEulerRotation computeClosestCut(const MEulerRotation& source, const MEulerRotation& other);
    static MEulerRotation computeClosestSolution(const MEulerRotation& source, const MEulerRotation& other);
    /// The angles of a matrix's rotation, scale and shear removed.
    static MEulerRotation decompose(const MMatrix& matrix, RotationOrder order);

    static const MEulerRotation identity;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MEulerRotation operator*(N s, const MEulerRotation& e) { return e * static_cast<double>(s); }
MVector               operator*(const MVector& v, const MEulerRotation& e);
std::ostream&         operator<<(std::ostream& os, const MEulerRotation& e);

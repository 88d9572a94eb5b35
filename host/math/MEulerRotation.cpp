#include <maya/MEulerRotation.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include <maya/MQuaternion.h>

#include "math/rotation.h"

const MEulerRotation MEulerRotation::identity;

namespace {

using Order = MEulerRotation::RotationOrder;

struct Axes
{
    unsigned i, j, k;  ///< first, second and third axis
    double   sign;     ///< -1 where they are not in cyclic order
};

Axes axesOf(Order order)
{
    switch (order) {
    case MEulerRotation::kYZX: return {1, 2, 0, 1};
    case MEulerRotation::kZXY: return {2, 0, 1, 1};
    case MEulerRotation::kXZY: return {0, 2, 1, -1};
    case MEulerRotation::kYXZ: return {1, 0, 2, -1};
    case MEulerRotation::kZYX: return {2, 1, 0, -1};
    default: return {0, 1, 2, 1};
    }
}

MEulerRotation anglesOf(const MVector m[3], Order order)
{
    const auto [i, j, k, sign] = axesOf(order);
    const double   cosine = std::hypot(m[j](k), m[k](k));
    MEulerRotation e(0, 0, 0, order);
    e[j] = std::atan2(-sign * m[i](k), cosine);
    if (cosine > 1e-12) {
        e[i] = std::atan2(sign * m[j](k), m[k](k));
        e[k] = std::atan2(sign * m[i](j), m[i](i));
    } else {
        e[i] = std::atan2(-sign * m[k](j), m[j](j));  // the outer axes coincide: all goes to the first
    }
    return e;
}

double wrapped(double angle) { return std::fabs(angle) <= M_PI ? angle : std::remainder(angle, 2 * M_PI); }
double nearTo(double angle, double other) { return angle + 2 * M_PI * std::round((other - angle) / (2 * M_PI)); }

double distance(const MEulerRotation& a, const MEulerRotation& b)
{
    return std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
}

}  // namespace

MEulerRotation& MEulerRotation::operator=(const MMatrix& matrix) { return *this = decompose(matrix, order); }
MEulerRotation& MEulerRotation::operator=(const MQuaternion& q) { return *this = decompose(q.asMatrix(), order); }

MStatus MEulerRotation::setValue(double ax, double ay, double az, RotationOrder o)
{
    *this = MEulerRotation(ax, ay, az, o);
    return MStatus();
}

MStatus         MEulerRotation::setValue(const MVector& v, RotationOrder o) { return setValue(v.x, v.y, v.z, o); }
MEulerRotation& MEulerRotation::assign(const MVector& v, RotationOrder o) { return *this = MEulerRotation(v, o); }

MEulerRotation MEulerRotation::operator+(const MEulerRotation& other) const
{
    const MEulerRotation o = other.reorder(order);
    return {x + o.x, y + o.y, z + o.z, order};
}

MEulerRotation MEulerRotation::operator-(const MEulerRotation& other) const
{
    const MEulerRotation o = other.reorder(order);
    return {x - o.x, y - o.y, z - o.z, order};
}

MEulerRotation MEulerRotation::operator*(const MEulerRotation& other) const
{
    return decompose(asMatrix() * other.asMatrix(), order);
}

MEulerRotation MEulerRotation::operator*(const MQuaternion& other) const
{
    return decompose(asMatrix() * other.asMatrix(), order);
}

bool MEulerRotation::isEquivalent(const MEulerRotation& o, double tolerance) const
{
    return order == o.order && std::fabs(x - o.x) <= tolerance && std::fabs(y - o.y) <= tolerance &&
           std::fabs(z - o.z) <= tolerance;
}

bool MEulerRotation::isZero(double tolerance) const
{
    return std::fabs(x) <= tolerance && std::fabs(y) <= tolerance && std::fabs(z) <= tolerance;
}

MQuaternion MEulerRotation::asQuaternion() const
{
    const Axes  axes = axesOf(order);
    MQuaternion q;
    for (unsigned axis : {axes.i, axes.j, axes.k}) {
        MQuaternion turn(0, 0, 0, std::cos((*this)[axis] / 2));
        turn[axis] = std::sin((*this)[axis] / 2);
        q *= turn;
    }
    return q;
}

MMatrix MEulerRotation::asMatrix() const
{
    const auto [i, j, k, sign] = axesOf(order);
    const double ci = std::cos((*this)[i]), cj = std::cos((*this)[j]), ck = std::cos((*this)[k]);
    const double si = sign * std::sin((*this)[i]), sj = sign * std::sin((*this)[j]), sk = sign * std::sin((*this)[k]);
    MMatrix      out;
    auto&        m = out.matrix;
    m[i][i] = cj * ck, m[i][j] = cj * sk, m[i][k] = -sj;
    m[j][i] = si * sj * ck - ci * sk, m[j][j] = si * sj * sk + ci * ck, m[j][k] = si * cj;
    m[k][i] = ci * sj * ck + si * sk, m[k][j] = ci * sj * sk - si * ck, m[k][k] = ci * cj;
    return out;
}

MEulerRotation& MEulerRotation::incrementalRotateBy(const MVector& axis, double angle)
{
    // in steps small enough that the nearest solution is the one that goes on, so that whole turns are counted
    const int         steps = std::isfinite(angle) ? int(std::min(std::ceil(std::abs(angle) / 0.1), 1e5)) : 0;
    const MQuaternion step(steps ? angle / steps : 0, axis);
    for (int i = 0; i < steps; ++i) {
        const MEulerRotation turned = *this * step;
        *this = turned.closestSolution(*this);
    }
    return *this;
}

MEulerRotation MEulerRotation::inverse() const { return decompose(asMatrix().transpose(), order); }

MEulerRotation MEulerRotation::reorder(RotationOrder newOrder) const
{
    return newOrder == order ? *this : decompose(asMatrix(), newOrder);
}

MEulerRotation MEulerRotation::bound() const { return {wrapped(x), wrapped(y), wrapped(z), order}; }

MEulerRotation MEulerRotation::alternateSolution() const
{
    const Axes     axes = axesOf(order);
    MEulerRotation e = *this;
    e[axes.i] += e[axes.i] > 0 ? -M_PI : M_PI;
    e[axes.j] = (e[axes.j] > 0 ? M_PI : -M_PI) - e[axes.j];
    e[axes.k] += e[axes.k] > 0 ? -M_PI : M_PI;
    return e;
}

MEulerRotation MEulerRotation::closestCut(const MEulerRotation& o) const
{
    return {nearTo(x, o.x), nearTo(y, o.y), nearTo(z, o.z), order};
}

MEulerRotation MEulerRotation::closestSolution(const MEulerRotation& other) const
{
    const MEulerRotation plain = closestCut(other), alternate = alternateSolution().closestCut(other);
    return distance(alternate, other) < distance(plain, other) ? alternate : plain;
}

MEulerRotation& MEulerRotation::setToClosestCut(const MEulerRotation& source, const MEulerRotation& other)
{
    return *this = source.closestCut(other);
}

MEulerRotation& MEulerRotation::setToClosestSolution(const MEulerRotation& source, const MEulerRotation& other)
{
    return *this = source.closestSolution(other);
}

MEulerRotation MEulerRotation::computeClosestCut(const MEulerRotation& source, const MEulerRotation& other)
{
    return source.closestCut(other);
}

MEulerRotation MEulerRotation::computeClosestSolution(const MEulerRotation& source, const MEulerRotation& other)
{
    return source.closestSolution(other);
}

MEulerRotation MEulerRotation::decompose(const MMatrix& matrix, RotationOrder order)
{
    return anglesOf(mirk::takeApart(matrix).axes, order);
}

MVector operator*(const MVector& v, const MEulerRotation& e) { return v * e.asMatrix(); }

std::ostream& operator<<(std::ostream& os, const MEulerRotation& e)
{
    static const char* const names[] = {"kXYZ", "kYZX", "kZXY", "kXZY", "kYXZ", "kZYX"};
    return os << '[' << e.x << ", " << e.y << ", " << e.z << ", " << names[unsigned(e.order) % 6] << ']';
}

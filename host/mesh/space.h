// Taking points and normals through a matrix and back. Row vectors: p * M; normals go through the inverse transpose.
#pragma once
#include "mesh/vector3.h"

namespace mirk {

class SpaceMatrix
{
public:
    /// The identity, which costs nothing.
    SpaceMatrix() = default;
    explicit SpaceMatrix(const double m[4][4]);
    static const SpaceMatrix identity;

    bool active() const { return active_; }
    bool invertible() const { return invertible_; }

    // out: from object space; in: back to it. With a singular matrix nothing is taken back.
    template <class A, class B>
    void pointOut(const A* from, B* to) const { active_ ? through(m_, from, to) : same(from, to); }
    template <class A, class B>
    void pointIn(const A* from, B* to) const { active_ ? through(inverse_, from, to) : same(from, to); }
    /// Directions, tangents for one: without the translation, of the length they had.
    F3 directionOut(const F3& d) const { return active_ ? keepLength(d, times(m_, d, false)) : d; }
    /// A normal keeps its length.
    F3 normalOut(const F3& n) const { return active_ ? keepLength(n, times(inverse_, n, true)) : n; }
    /// Vectors, with the length that comes of it.
    Vec3 vectorIn(const Vec3& v) const { return active_ ? rows(inverse_, v) : v; }
    Vec3 vectorOut(const Vec3& v) const { return active_ ? rows(m_, v) : v; }
    const double (&linear() const)[4][4] { return m_; }          ///< its upper left three rows and columns, if active
    const double (&linearInverse() const)[4][4] { return inverse_; }
    F3 normalIn(const F3& n) const { return active_ ? keepLength(n, times(m_, n, true)) : n; }

private:
    using Matrix = double[4][4];
    template <class A, class B>
    static void same(const A* from, B* to)
    {
        for (int k = 0; k < 3; ++k)
            to[k] = B(from[k]);
    }
    template <class A, class B>
    static void through(const Matrix& m, const A* p, B* to)
    {
        const double x = p[0], y = p[1], z = p[2];
        for (int k = 0; k < 3; ++k)
            to[k] = B(x * m[0][k] + y * m[1][k] + z * m[2][k] + m[3][k]);
    }
    static Vec3 rows(const Matrix& m, const Vec3& v)
    {
        return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0], v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
                v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
    }
    static F3 times(const Matrix& m, const F3& v, bool transposed);
    static F3 keepLength(const F3& from, const F3& to);

    bool   active_ = false, invertible_ = true;
    Matrix m_ = {}, inverse_ = {};
};

}  // namespace mirk

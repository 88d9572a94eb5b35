// Matrices, double and float. Determinants and inverses are computed in double for both.
#include <maya/MMatrix.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include <maya/MFloatMatrix.h>

#include "math/rotation.h"

namespace {

template <class To, class From>
void copy(To (*to)[4], const From (*from)[4])
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            to[i][j] = To(from[i][j]);
}

template <class M, class F>
M each(F&& value)
{
    M out;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out.matrix[i][j] = value(i, j);
    return out;
}

double det3(double a, double b, double c, double d, double e, double f, double g, double h, double i)
{
    return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
}

/// The transposed cofactors of `m`; returns the determinant.
template <class M>
double adjugate(const M& m, double (&out)[4][4])
{
    const auto& a = m.matrix;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const int r[3] = {i == 0, i <= 1 ? 2 : 1, i <= 2 ? 3 : 2};  // the rows and columns that stay
            const int c[3] = {j == 0, j <= 1 ? 2 : 1, j <= 2 ? 3 : 2};
            const double minor = det3(a[r[0]][c[0]], a[r[0]][c[1]], a[r[0]][c[2]], a[r[1]][c[0]], a[r[1]][c[1]],
                                      a[r[1]][c[2]], a[r[2]][c[0]], a[r[2]][c[1]], a[r[2]][c[2]]);
            out[j][i] = (i + j) % 2 ? -minor : minor;
        }
    double det = 0;
    for (int j = 0; j < 4; ++j)
        det += a[0][j] * out[j][0];
    return det;
}

template <class M>
double determinant(const M& m)
{
    double adj[4][4];
    return adjugate(m, adj);
}

bool singular(double det) { return det == 0 || !std::isfinite(det); }

template <class M>
M adjointOf(const M& m)
{
    double adj[4][4];
    adjugate(m, adj);
    return M(adj);
}

template <class M>
M inverseOf(const M& m)
{
    double       adj[4][4];
    const double det = adjugate(m, adj);
    if (singular(det))
        return M();
    for (auto& row : adj)
        for (double& value : row)
            value /= det;
    return M(adj);
}

template <class M>
M homogenized(const M& m, const MMatrix& wide)
{
    const mirk::LinearParts parts = mirk::takeApart(wide);
    M                       out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out.matrix[i][j] = std::decay_t<decltype(m.matrix[0][0])>(parts.axes[i][unsigned(j)]);
    std::copy(m.matrix[3], m.matrix[3] + 3, out.matrix[3]);
    return out;
}

template <class M>
std::ostream& print(std::ostream& os, const M& m)
{
    os << '[';
    for (int i = 0; i < 4; ++i)
        os << (i ? ", [" : "[") << m.matrix[i][0] << ", " << m.matrix[i][1] << ", " << m.matrix[i][2] << ", "
           << m.matrix[i][3] << ']';
    return os << ']';
}

}  // namespace

#define MIRK_MATRIX(M, Other, N)                                                                                       \
    const M M::identity;                                                                                               \
    M::M(const double m[4][4]) { copy(matrix, m); }                                                                    \
    M::M(const float m[4][4]) { copy(matrix, m); }                                                                     \
    M::M(const Other& m) { copy(matrix, m.matrix); }                                                                   \
    MStatus M::get(double m[4][4]) const { copy(m, matrix); return MStatus(); }                                        \
    MStatus M::get(float m[4][4]) const { copy(m, matrix); return MStatus(); }                                         \
    M M::operator*(const M& b) const                                                                                   \
    {                                                                                                                  \
        return each<M>([&](int i, int j) {                                                                             \
            return matrix[i][0] * b.matrix[0][j] + matrix[i][1] * b.matrix[1][j] + matrix[i][2] * b.matrix[2][j] +     \
                   matrix[i][3] * b.matrix[3][j];                                                                      \
        });                                                                                                            \
    }                                                                                                                  \
    M    M::operator*(N s) const { return each<M>([&](int i, int j) { return matrix[i][j] * s; }); }                   \
    M    M::operator+(const M& b) const { return each<M>([&](int i, int j) { return matrix[i][j] + b.matrix[i][j]; }); } \
    M    M::operator-(const M& b) const { return each<M>([&](int i, int j) { return matrix[i][j] - b.matrix[i][j]; }); } \
    bool M::operator==(const M& b) const                                                                               \
    {                                                                                                                  \
        for (int i = 0; i < 4; ++i)                                                                                    \
            if (!std::equal(matrix[i], matrix[i] + 4, b.matrix[i]))                                                    \
                return false;                                                                                          \
        return true;                                                                                                   \
    }                                                                                                                  \
    M    M::transpose() const { return each<M>([&](int i, int j) { return matrix[j][i]; }); }                          \
    M    M::inverse() const { return inverseOf(*this); }                                                               \
    M    M::adjoint() const { return adjointOf(*this); }                                                               \
    N    M::det4x4() const { return N(determinant(*this)); }                                                           \
    N    M::det3x3() const                                                                                             \
    {                                                                                                                  \
        const auto& a = matrix;                                                                                        \
        return N(det3(a[0][0], a[0][1], a[0][2], a[1][0], a[1][1], a[1][2], a[2][0], a[2][1], a[2][2]));               \
    }                                                                                                                  \
    bool M::isSingular() const { return singular(determinant(*this)); }                                                \
    bool M::isEquivalent(const M& b, N tolerance) const                                                                \
    {                                                                                                                  \
        for (int i = 0; i < 16; ++i)                                                                                   \
            if (!(std::fabs(matrix[i / 4][i % 4] - b.matrix[i / 4][i % 4]) <= tolerance))                              \
                return false;                                                                                          \
        return true;                                                                                                   \
    }                                                                                                                  \
    std::ostream& operator<<(std::ostream& os, const M& m) { return print(os, m); }

MIRK_MATRIX(MMatrix, MFloatMatrix, double)
MIRK_MATRIX(MFloatMatrix, MMatrix, float)

MMatrix      MMatrix::homogenize() const { return homogenized(*this, *this); }
MFloatMatrix MFloatMatrix::homogenize() const { return homogenized(*this, MMatrix(*this)); }

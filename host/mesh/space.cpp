#include "mesh/space.h"

#include <cmath>
#include <cstring>

#include <maya/MMatrix.h>

namespace mirk {

const SpaceMatrix SpaceMatrix::identity;

SpaceMatrix::SpaceMatrix(const double m[4][4])
{
    const MMatrix matrix(m);
    if (matrix == MMatrix::identity)
        return;
    active_ = true;
    invertible_ = !matrix.isSingular();
    const MMatrix inverse = matrix.inverse();
    std::memcpy(m_, matrix.matrix, sizeof m_);
    std::memcpy(inverse_, inverse.matrix, sizeof inverse_);
}

F3 SpaceMatrix::times(const Matrix& m, const F3& v, bool transposed)
{
    F3 r;
    for (int k = 0; k < 3; ++k)
        r.v[k] = transposed ? float(v.v[0] * m[k][0] + v.v[1] * m[k][1] + v.v[2] * m[k][2])
                            : float(v.v[0] * m[0][k] + v.v[1] * m[1][k] + v.v[2] * m[2][k]);
    return r;
}

F3 SpaceMatrix::keepLength(const F3& from, const F3& to)
{
    const auto length = [](const F3& a) { return std::sqrt(double(a.v[0]) * a.v[0] + double(a.v[1]) * a.v[1] + double(a.v[2]) * a.v[2]); };
    const double l = length(to);
    if (!(l > 0))
        return to;
    const double s = length(from) / l;
    return {{float(to.v[0] * s), float(to.v[1] * s), float(to.v[2] * s)}};
}

}  // namespace mirk

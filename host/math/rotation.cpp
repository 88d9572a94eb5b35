#include "math/rotation.h"

#include <algorithm>

#include <maya/MQuaternion.h>

namespace mirk {
namespace {

/// Fills the axes that are not known so that all three are right-handed.
void complete(MVector axes[3], const bool known[3])
{
    const int     count = known[0] + known[1] + known[2];
    const MVector unit[3] = {MVector(1, 0, 0), MVector(0, 1, 0), MVector(0, 0, 1)};
    if (count == 0) {
        std::copy(unit, unit + 3, axes);
    } else if (count == 1) {
        const int i = known[0] ? 0 : known[1] ? 1 : 2, j = (i + 1) % 3, k = (i + 2) % 3;
        axes[j] = unit[j].rotateBy(MQuaternion(unit[i], axes[i]));
        axes[k] = axes[i] ^ axes[j];
    } else if (count == 2) {
        const int i = !known[0] ? 0 : !known[1] ? 1 : 2;
        axes[i] = axes[(i + 1) % 3] ^ axes[(i + 2) % 3];
    }
}

}  // namespace

LinearParts takeApart(const MMatrix& matrix)
{
    MVector rows[3];
    double  size = 0;
    for (int i = 0; i < 3; ++i) {
        rows[i] = MVector(matrix.matrix[i]);
        size    = std::max(size, rows[i].length());
    }

    LinearParts parts;
    double      mix[3][3] = {};  // how much of an earlier axis a row holds
    bool        known[3];
    for (int i = 0; i < 3; ++i) {
        MVector rest = rows[i];
        for (int j = 0; j < i; ++j)
            if (known[j]) {
                mix[i][j] = rest * parts.axes[j];
                rest -= parts.axes[j] * mix[i][j];
            }
        const double length = rest.length();
        known[i]                 = length > size * 1e-14;
        parts.scale[unsigned(i)] = known[i] ? length : 0;
        parts.axes[i]            = known[i] ? rest / length : MVector();
    }
    complete(parts.axes, known);

    if ((parts.axes[0] ^ parts.axes[1]) * parts.axes[2] < 0) {
        parts.scale = -parts.scale;
        for (int i = 0; i < 3; ++i) {
            parts.axes[i] = -parts.axes[i];
            for (double& m : mix[i])
                m = -m;
        }
    }
    parts.shear = MVector(known[1] ? mix[1][0] / parts.scale.y : 0, known[2] ? mix[2][0] / parts.scale.z : 0,
                          known[2] ? mix[2][1] / parts.scale.z : 0);
    return parts;
}

MVector perpendicular(const MVector& v)
{
    const double  x = std::fabs(v.x), y = std::fabs(v.y), z = std::fabs(v.z);
    const MVector other = x <= y && x <= z ? MVector(1, 0, 0) : y <= z ? MVector(0, 1, 0) : MVector(0, 0, 1);
    return (v ^ other).normal();
}

}  // namespace mirk

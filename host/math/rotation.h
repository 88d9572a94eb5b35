// Taking the linear part of a matrix apart into scale, shear and rotation.
#pragma once
#include <maya/MMatrix.h>
#include <maya/MVector.h>

namespace mirk {

/// The linear part as scale * shear * rotation, in that order for row vectors. A matrix that mirrors has all three
/// scales negative; axes that are squashed to nothing get scale 0 and a rotation that completes the others.
struct LinearParts
{
    MVector scale;
    MVector shear;    ///< xy, xz, yz
    MVector axes[3];  ///< the rotation's rows, right-handed unit vectors
};
LinearParts takeApart(const MMatrix& matrix);

/// Any unit vector at a right angle to `v`.
MVector perpendicular(const MVector& v);

}  // namespace mirk

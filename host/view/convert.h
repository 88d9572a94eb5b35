// Between the viewport's plain structures and the interface's classes.
#pragma once
#include <cstring>

#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include "view/draw_list.h"

namespace mirk::view {

inline MMatrix toMatrix(const Matrix& m)
{
    MMatrix out;
    std::memcpy(out.matrix, m.data(), sizeof out.matrix);
    return out;
}

inline Matrix fromMatrix(const MMatrix& m)
{
    Matrix out;
    std::memcpy(out.data(), m.matrix, sizeof m.matrix);
    return out;
}

/// World points on the near and far planes behind a pixel, counted from the lower left. False for a camera whose matrices
/// cannot be inverted; then nothing is written.
bool unproject(const Camera& camera, double x, double y, MPoint& nearPoint, MPoint& farPoint);

/// The pixel of a world point. False if it lies outside the picture or the clip planes; nothing is written for a point that
/// is not in front of the eye.
bool project(const Camera& camera, const MPoint& world, double& x, double& y);

}  // namespace mirk::view

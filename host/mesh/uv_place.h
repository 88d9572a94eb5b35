// Where a UV lies in a triangle of UVs.
#pragma once
#include <limits>

#include "mesh/vector3.h"

namespace mirk {

struct UVPlace
{
    double distanceSq = std::numeric_limits<double>::infinity();   ///< 0 inside and on the border
    double weights[3] = {1, 0, 0};                                 ///< of the corners; their sum is 1
};

/// The nearest place in the triangle, however it is wound; a degenerate one is the segments that it consists of. At an
/// infinite distance if a number is not finite.
UVPlace placeInTriangle(const F2& uv, const F2& a, const F2& b, const F2& c);

}  // namespace mirk

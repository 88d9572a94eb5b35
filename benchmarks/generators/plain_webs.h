// Webs by the plain method, on flat arrays: x, y, z a point.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

/// Compares every point with all behind it. Pairs of numbers go to `pairs`, cleared first; returns the seconds it took.
/// `perPoint` below 1: any number.
double linkPoints(const std::vector<double>& points, double minDistance, double maxDistance, int perPoint,
                  std::vector<int>& pairs);

} // namespace plain

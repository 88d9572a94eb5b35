// What resolvePointCollisions computes, on plain arrays: points pushed apart, one round of it.
#pragma once
#include <vector>

namespace relaxation {

struct Rule
{
    int    maxPointsPerLeaf = 50;
    bool   mutual = false;          ///< both points of a pair move, at once
    double largestRadius = -1.0;    ///< with mutual: points of a larger radius move less; negative: both by half
};

/// Pushes points apart by their neighbours of before the round. `points`: x, y, z each, changed in place one after the
/// other; `radii`: one a point; `ids`: the points that look for neighbours, in this order, those that do not exist passed
/// over; null: all.
///
/// A point's radius is compared with squared distances, and so is the overlap: the reach is the square root of the
/// radius. Saved scenes rely on it.
void relax(std::vector<double>& points, const std::vector<double>& radii, const std::vector<int>* ids, const Rule& rule);

} // namespace relaxation

// Weights of points, one a point or one a point and volume.
#pragma once
#include <cstddef>
#include <functional>
#include <vector>

#include "volumes/transfer.h"

/// Which weight list entry a point gets that no volume gives weight to.
enum class FreePoints : short { kNone = 0, kFirst = 1, kClosest = 2 };

struct MultiWeightSettings
{
    bool       perVolume = false;    ///< a weight a point and volume; else one a point
    bool       unselectedToo = true; ///< one a point: those outside the subset get 0
    int        maxInfluences = 5;
    FreePoints freePoints = FreePoints::kNone;
};

/// Calls write(point, index, weight) in order of the points; `index` counts volumes, or is 0 with one weight a point.
/// An index may come twice for a point: the later weight counts. `selected` has one entry a point or is empty for all.
void multiWeights(const TransferVolumes& volumes, const volume::Box& pointsBox, const MultiWeightSettings& settings,
                  const TransferInput& in, const std::vector<char>& selected,
                  const std::function<void(std::size_t, int, double)>& write);

/// The volume, of those that are on, from which a place has the smallest distance; -1 without any.
int closestVolume(const TransferVolumes& volumes, volume::Vec place);

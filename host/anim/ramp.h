// Ramps: values over a position, interpolated between entries. Plain arithmetic on arrays.
#pragma once
#include <cstddef>
#include <vector>

namespace mirk {

/// Interpolation of the stretch that begins at an entry; other numbers act as kLinear.
enum class RampInterpolation : int { kNone, kLinear, kSmooth, kSpline };

struct RampEntry
{
    float position = 0;
    int   interpolation = 0;
    float value[3] = {0, 0, 0};   ///< curve ramps use the first
};

/// Brings entries into the order that evaluation expects: by position, equal ones as they stood. Entries whose position
/// is no finite number have no place and go.
void sortRamp(std::vector<RampEntry>& entries);

/// One channel of a ramp at a position.
///
/// The value of a stretch is a cubic in the fraction t of the way from one entry to the next: constant (none), straight
/// (linear), 3t^2 - 2t^3 (smooth), or the Hermite cubic whose slope at an entry is that of the chord between its
/// neighbours (spline; at an end, between the entry and its one neighbour).
/// Positions outside take the value of the end entry, as does a NaN that of the first. Where entries share a position
/// the last of them counts.
///
/// @param entries  in the order of sortRamp
/// @return         0 for no entries
float rampValue(const RampEntry* entries, size_t count, float position, int channel = 0);

}  // namespace mirk

// Mirror images of points among the points of the same geometry. No host header.
#pragma once
#include <vector>

/// A plane through `origin`; `axis` is its unit normal and points to the positive side.
struct MirrorPlane
{
    double origin[3], axis[3];
};

enum class MirrorDirection : short { kBothWays = 0, kPositiveToNegative = 1, kNegativeToPositive = 2 };

struct MirrorRule
{
    MirrorDirection direction = MirrorDirection::kBothWays;
    double          radius = -1.0;   ///< how far an image may lie from where it should be; below 0 as far as it likes
};

/// The image of each selected point: the point nearest to its reflection. -1 for a point that has none, or stands on the
/// side that is not mirrored. Points in the plane count to both sides; one exactly on the axis behind the plane counts to
/// none.
///
/// @param xyz       three numbers a point
/// @param selected  indices of points
std::vector<int> mirrorImages(const std::vector<double>& xyz, const std::vector<int>& selected, const MirrorPlane& plane,
                              const MirrorRule& rule);

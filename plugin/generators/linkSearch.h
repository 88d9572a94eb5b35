// Which points of a web are linked to which. Points are flat, x, y, z each.
#pragma once
#include <cstddef>
#include <vector>

namespace web {

/// Webs of more links than this are refused.
constexpr std::size_t kMostLinks = std::size_t(1) << 28;

/// Links by their first point: point i has those from first[i] to first[i + 1], `to` is their other end.
struct Links
{
    std::vector<std::size_t> first{0};
    std::vector<int>         to;
    bool                     tooMany = false;   ///< over the limit; there are none then

    std::size_t pointCount() const { return first.size() - 1; }
    std::size_t size() const { return to.size(); }
};

/// Distances that make a link, both borders included, and how many links may start at a point; below 1 any number.
struct Band
{
    double min, max;
    int    perPoint;
};

/// Links every i to every j above i at a distance within the band, j ascending, until i has as many as it may start. The
/// distance is that of the reference points where j is among the `referenceCount` of them, else that of the points.
/// Decisions are those of comparing all pairs; points that are too far are not looked at.
Links linksWithin(const double* points, std::size_t count, const double* reference, std::size_t referenceCount,
                  const Band& band, std::size_t most = kMostLinks);

/// Chains that follow each other: of each length l, l points, each linked to the next. Lengths below 1 are no chain; what
/// would lie past the points is left out.
Links linksOfChains(const int* lengths, std::size_t chainCount, std::size_t pointCount);

/// Links point i to counts[i] points of a second set, which stands behind the first in the numbering. The ids of all
/// points follow each other; an id that the second set does not have makes no link.
Links linksToSecond(const int* counts, std::size_t firstCount, const int* ids, std::size_t idCount, std::size_t secondCount);

} // namespace web

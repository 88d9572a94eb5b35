#include "volumes/pointTree.h"

#include <cmath>
#include <limits>
#include <nanoflann.hpp>
#include <utility>

namespace {

/// What the tree walks: the points that have a place, by their own numbering.
struct Places
{
    const std::vector<double>* xyz;
    std::vector<int>           ids;

    std::size_t kdtree_get_point_count() const { return ids.size(); }
    double      kdtree_get_pt(std::size_t i, std::size_t axis) const
    {
        return (*xyz)[3 * static_cast<std::size_t>(ids[i]) + axis];
    }
    template <class Box>
    bool kdtree_get_bbox(Box&) const { return false; }
};

bool isPlace(const double* p)
{
    constexpr double kFar = 1e150;   // squares stay finite
    return std::fabs(p[0]) <= kFar && std::fabs(p[1]) <= kFar && std::fabs(p[2]) <= kFar;
}

Places placesOf(const std::vector<double>& xyz)
{
    Places places{&xyz, {}};
    places.ids.reserve(xyz.size() / 3);
    for (std::size_t i = 0; 3 * i + 2 < xyz.size(); ++i)
        if (isPlace(&xyz[3 * i]))
            places.ids.push_back(static_cast<int>(i));
    return places;
}

using Index = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Places>, Places, 3, std::size_t>;

} // namespace

struct PointTree::Tree
{
    Places places;
    Index  index;

    explicit Tree(const std::vector<double>& xyz)
        : places(placesOf(xyz)), index(3, places, nanoflann::KDTreeSingleIndexAdaptorParams(16))
    {
    }
};

PointTree::PointTree(const std::vector<double>& xyz) : tree_(std::make_unique<Tree>(xyz)) {}
PointTree::~PointTree() = default;

int PointTree::nearest(const double point[3], double radius) const
{
    if (tree_->places.ids.empty() || !isPlace(point))
        return -1;
    std::size_t found = 0;
    double      squared = 0.0;
    if (tree_->index.knnSearch(point, 1, &found, &squared) == 0 || (radius >= 0.0 && !(std::sqrt(squared) <= radius)))
        return -1;
    return tree_->places.ids[found];
}

std::vector<int> PointTree::within(const double point[3], double radius) const
{
    std::vector<int> ids;
    if (tree_->places.ids.empty() || !isPlace(point) || !(radius >= 0.0))
        return ids;
    std::vector<std::pair<std::size_t, double>> found;   // the search leaves out what is exactly at its limit
    tree_->index.radiusSearch(point, radius * radius * (1.0 + 1e-12) + std::numeric_limits<double>::min(), found,
                              nanoflann::SearchParams(32, 0.0f, false));
    ids.reserve(found.size());
    for (const auto& entry : found)
        ids.push_back(tree_->places.ids[entry.first]);
    return ids;
}

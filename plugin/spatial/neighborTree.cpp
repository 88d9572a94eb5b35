#include "spatial/neighborTree.h"

#include <nanoflann.hpp>

#include <algorithm>
#include <cmath>

namespace {

bool isFinite(const double p[3])
{
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

/// Points as nanoflann reads them.
struct Cloud
{
    std::vector<double> xyz;

    std::size_t kdtree_get_point_count() const { return xyz.size() / 3; }
    double      kdtree_get_pt(std::size_t i, std::size_t axis) const { return xyz[3 * i + axis]; }
    template <class Box>
    bool kdtree_get_bbox(Box&) const { return false; }
};

using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>, Cloud, 3, unsigned int>;

Cloud finitePoints(const double* points, std::size_t n, std::vector<unsigned int>& ids)
{
    Cloud cloud;
    cloud.xyz.reserve(3 * n);
    ids.reserve(n);
    for (std::size_t i = 0; i < n; ++i, points += 3) {
        if (!isFinite(points))
            continue;
        cloud.xyz.insert(cloud.xyz.end(), points, points + 3);
        ids.push_back(static_cast<unsigned int>(i));
    }
    return cloud;
}

} // namespace

struct NeighborTree::Index
{
    std::vector<unsigned int> ids;     // of the points of the cloud
    Cloud                     cloud;   // finite points, after building in the order of the leaves
    Tree                      tree;

    Index(const double* points, std::size_t n, int leafSize)
        : cloud(finitePoints(points, n, ids)),
          tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(static_cast<std::size_t>(std::max(1, leafSize))))
    {
        // A search reads the points of a leaf one after the other: they are laid down in that order. What is found, and
        // in which order, stays the same.
        std::vector<double>       xyz(cloud.xyz.size());
        std::vector<unsigned int> inOrder(ids.size());
        for (std::size_t i = 0; i < inOrder.size(); ++i) {
            const std::size_t from = tree.vAcc[i];
            std::copy_n(&cloud.xyz[3 * from], 3, &xyz[3 * i]);
            inOrder[i] = ids[from];
            tree.vAcc[i] = static_cast<unsigned int>(i);
        }
        cloud.xyz.swap(xyz);
        ids.swap(inOrder);
    }
};

NeighborTree::NeighborTree(const double* points, std::size_t n, int maxPointsPerLeaf)
    : index_(std::make_unique<Index>(points, n, maxPointsPerLeaf))
{
}

NeighborTree::~NeighborTree() = default;
NeighborTree::NeighborTree(NeighborTree&&) noexcept = default;
NeighborTree& NeighborTree::operator=(NeighborTree&&) noexcept = default;

std::size_t NeighborTree::nearest(const double query[3], std::size_t k, unsigned int* ids, double* distancesSq) const
{
    k = std::min(k, index_->ids.size());
    if (k == 0 || !isFinite(query))
        return 0;
    nanoflann::KNNResultSet<double, unsigned int> result(k);
    result.init(ids, distancesSq);
    index_->tree.findNeighbors(result, query, nanoflann::SearchParams());
    for (std::size_t i = 0; i < result.size(); ++i)
        ids[i] = index_->ids[ids[i]];
    return result.size();
}

void NeighborTree::within(const double query[3], double limit, Found& found) const
{
    found.clear();
    if (index_->ids.empty() || !(limit > 0) || !isFinite(query))
        return;
    index_->tree.radiusSearch(query, limit, found, nanoflann::SearchParams());
    for (auto& [id, distanceSq] : found)
        id = index_->ids[id];
}

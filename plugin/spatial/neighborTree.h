// Nearest neighbours among points: a k-d tree of nanoflann. Distances are squared everywhere, as its metric gives them.
#pragma once
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

class NeighborTree
{
public:
    using Found = std::vector<std::pair<unsigned int, double>>;   ///< point and squared distance

    /// Over n points of three values, of which a copy is taken. Points that are not finite are never found.
    NeighborTree(const double* points, std::size_t n, int maxPointsPerLeaf);
    ~NeighborTree();
    NeighborTree(NeighborTree&&) noexcept;
    NeighborTree& operator=(NeighborTree&&) noexcept;

    /// Up to k points, nearest first; returns their number. ids and distancesSq have room for k. A query that is not
    /// finite finds nothing.
    std::size_t nearest(const double query[3], std::size_t k, unsigned int* ids, double* distancesSq) const;
    /// All points of which the squared distance is below `limit`, nearest first.
    void within(const double query[3], double limit, Found& found) const;

private:
    struct Index;
    std::unique_ptr<Index> index_;
};

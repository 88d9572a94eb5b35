// Nearest neighbours among points: a k-d tree of nanoflann. Distances squared are called so; radii are
// plain lengths.
#pragma once
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

class PointTree
{
public:
    using Found = std::vector<std::pair<unsigned int, double>>;   ///< point and squared distance

    /// Over n points of three values, of which a copy is taken. Points with a coordinate that is NaN, infinite or beyond
    /// 1e150 are left out and never found.
    PointTree(const double* points, std::size_t n, int maxPointsPerLeaf = 16);
    ~PointTree();
    PointTree(PointTree&&) noexcept;
    PointTree& operator=(PointTree&&) noexcept;

    /// Up to k points, nearest first; returns their number. ids and distancesSq have room for k. A query that is no place
    /// finds nothing.
    std::size_t nearest(const double query[3], std::size_t k, unsigned int* ids, double* distancesSq) const;
    /// All points of which the squared distance is below `limit`, nearest first.
    void within(const double query[3], double limit, Found& found) const;

    /// The nearest point; -1 if there is none, or none up to `radius` away. A radius below 0 or NaN sets no limit.
    int nearest(const double query[3], double radius = -1.0) const;
    /// All points up to `radius` away, its border included, and maybe some a last digit further, in no order.
    std::vector<int> reached(const double query[3], double radius) const;

private:
    struct Index;
    std::unique_ptr<Index> index_;
};

// A k-d tree over points, for the nearest one and for all within a radius. No host header.
#pragma once
#include <memory>
#include <vector>

/// Points stay where they are and may not change while the tree lives. Points with a coordinate that is NaN, infinite or
/// beyond 1e150 are left out and never found.
class PointTree
{
public:
    explicit PointTree(const std::vector<double>& xyz);
    ~PointTree();
    PointTree(const PointTree&) = delete;
    PointTree& operator=(const PointTree&) = delete;

    /// Index of the point nearest to one; -1 if there is none, none up to `radius` away, or none for what is no place.
    /// A radius below 0 or NaN sets no limit.
    int nearest(const double point[3], double radius = -1.0) const;
    /// Indices of all points up to `radius` away, and maybe of some a last digit further, in no order.
    std::vector<int> within(const double point[3], double radius) const;

private:
    struct Tree;
    std::unique_ptr<Tree> tree_;
};

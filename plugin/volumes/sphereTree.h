// A tree of boxes over the spheres of one cloud, for the question which of them hold a point.
#pragma once
#include <cstddef>
#include <vector>

#include "volumes/influence.h"

namespace volume {

class SphereTree
{
public:
    /// Over the spheres from `begin` up to `end`. Those that hold nothing are left out: radii that are not above 0,
    /// centers that are no place.
    SphereTree(const Cloud& cloud, std::size_t begin, std::size_t end);

    /// Appends the spheres that hold the place, ascending, as candidates of `point`.
    void find(Vec place, int point, Candidates& out) const;

private:
    struct Sphere
    {
        Vec    center;
        double radius;
        int    index;   ///< in the cloud
    };
    /// Children stand side by side. A leaf has `count` spheres from `first`, another node its children at `first`.
    struct Node
    {
        Box box;
        int first = 0, count = 0;
    };

    void build(int node, int from, int to);

    std::vector<Sphere> spheres_;
    std::vector<Node>   nodes_;
};

} // namespace volume

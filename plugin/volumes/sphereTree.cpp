#include "volumes/sphereTree.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace volume {

namespace {

constexpr int kLeaf = 8;

/// Around a sphere, with room for the rounding of the distance test.
Box boxAround(Vec c, double radius)
{
    const double slack = 1e-14 * (std::fabs(c.x) + std::fabs(c.y) + std::fabs(c.z) + radius);
    const Vec    r{radius + slack, radius + slack, radius + slack};
    return {c - r, c + r};
}

double along(Vec v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

/// Puts the candidates from `begin` on in order of their sphere. They are few as a rule.
void sortFrom(std::size_t begin, Candidates& c)
{
    if (c.size() - begin > 32) {
        std::vector<std::pair<int, double>> hits;
        for (std::size_t i = begin; i < c.size(); ++i)
            hits.emplace_back(c.cloud[i], c.d[i]);
        std::sort(hits.begin(), hits.end());
        for (std::size_t i = 0; i < hits.size(); ++i)
            std::tie(c.cloud[begin + i], c.d[begin + i]) = hits[i];
        return;
    }
    for (std::size_t i = begin + 1; i < c.size(); ++i) {
        const int    sphere = c.cloud[i];
        const double d = c.d[i];
        std::size_t  at = i;
        for (; at > begin && c.cloud[at - 1] > sphere; --at) {
            c.cloud[at] = c.cloud[at - 1];
            c.d[at] = c.d[at - 1];
        }
        c.cloud[at] = sphere;
        c.d[at] = d;
    }
}

} // namespace

SphereTree::SphereTree(const Cloud& cloud, std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i) {
        const Vec    c = cloud.positions[i];
        const double r = cloud.radii[i];
        if (r > 0.0 && std::isfinite(c.x) && std::isfinite(c.y) && std::isfinite(c.z))
            spheres_.push_back({c, r, static_cast<int>(i)});
    }
    nodes_.reserve(spheres_.size() / 2 + 1);
    nodes_.emplace_back();
    build(0, 0, static_cast<int>(spheres_.size()));
}

void SphereTree::build(int node, int from, int to)
{
    Box box, centers;
    for (int i = from; i < to; ++i) {
        const Sphere& s = spheres_[static_cast<std::size_t>(i)];
        box.add(boxAround(s.center, s.radius));
        centers.add(s.center);
    }
    nodes_[static_cast<std::size_t>(node)].box = box;
    if (to - from <= kLeaf) {
        nodes_[static_cast<std::size_t>(node)].first = from;
        nodes_[static_cast<std::size_t>(node)].count = to - from;
        return;
    }
    const Vec  size = centers.high - centers.low;
    const int  axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
    const int  middle = from + (to - from) / 2;
    const auto first = spheres_.begin();
    std::nth_element(first + from, first + middle, first + to, [axis](const Sphere& a, const Sphere& b) {
        return along(a.center, axis) < along(b.center, axis);
    });
    const int children = static_cast<int>(nodes_.size());
    nodes_[static_cast<std::size_t>(node)].first = children;
    nodes_.resize(nodes_.size() + 2);
    build(children, from, middle);
    build(children + 1, middle, to);
}

void SphereTree::find(Vec place, int point, Candidates& out) const
{
    const std::size_t before = out.size();
    int               stack[64], depth = 0;   // halves: never deeper than the bits of a count
    if (nodes_[0].box.contains(place))
        stack[depth++] = 0;
    while (depth > 0) {
        const Node& node = nodes_[static_cast<std::size_t>(stack[--depth])];
        if (node.count == 0) {
            for (const int child : {node.first, node.first + 1}) {
                if (nodes_[static_cast<std::size_t>(child)].box.contains(place))
                    stack[depth++] = child;
            }
            continue;
        }
        for (int i = node.first; i < node.first + node.count; ++i) {
            const Sphere& s = spheres_[static_cast<std::size_t>(i)];
            const double  d = cloudDistance(place, s.center, s.radius);
            if (d != kOutside)
                out.add(point, d, s.index);
        }
    }
    sortFrom(before, out);
}

} // namespace volume

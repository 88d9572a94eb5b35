#include "spatial/pointRelaxation.h"

#include <algorithm>
#include <cmath>

#include "spatial/neighborTree.h"

namespace relaxation {

namespace {

struct Vec { double x, y, z; };

Vec  load(const double* p) { return {p[0], p[1], p[2]}; }
void add(double* p, const Vec& v, double by)
{
    p[0] += v.x * by;
    p[1] += v.y * by;
    p[2] += v.z * by;
}

/// From one point to another, of length 1 unless they all but coincide.
Vec direction(const double* from, const double* to)
{
    Vec          d{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
    const double lengthSq = d.x * d.x + d.y * d.y + d.z * d.z;
    if (lengthSq > 1e-20) {
        const double scale = 1.0 / std::sqrt(lengthSq);
        d = {d.x * scale, d.y * scale, d.z * scale};
    }
    return d;
}

/// Moves the point alone, by the mean of what its neighbours push.
void push(double* point, double radius, const NeighborTree::Found& found, const std::vector<double>& points)
{
    double sum[3] = {};
    for (const auto& [id, distanceSq] : found)
        add(sum, direction(&points[3 * std::size_t(id)], point), radius - distanceSq);
    if (!found.empty())
        add(point, load(sum), 1.0 / static_cast<double>(found.size()));
}

/// Shares of the overlap by which the two points of a pair move; they add up to 1.
struct Shares { double own, other; };

Shares sharesOf(double radius, double otherRadius, double largestRadius)
{
    if (!(largestRadius > 0.0))
        return {0.5, 0.5};
    const double mass = std::max(0.0, radius * (1.0 / largestRadius));
    const double otherMass = std::max(0.0, otherRadius * (1.0 / largestRadius));
    const double both = mass + otherMass;
    return both > 0.0 ? Shares{otherMass / both, mass / both} : Shares{0.5, 0.5};
}

void pushBoth(double* point, double radius, const NeighborTree::Found& found, std::vector<double>& points,
              const std::vector<double>& radii, double largestRadius)
{
    for (const auto& [id, distanceSq] : found) {
        double* const other = &points[3 * std::size_t(id)];
        const Vec     d = direction(other, point);
        const double  overlap = radius - distanceSq;
        const Shares  share = sharesOf(radius, radii[id], largestRadius);
        add(point, d, overlap * share.own);
        add(other, d, -overlap * share.other);
    }
}

} // namespace

void relax(std::vector<double>& points, const std::vector<double>& radii, const std::vector<int>* ids, const Rule& rule)
{
    const std::size_t count = points.size() / 3;
    const NeighborTree   tree(points.data(), count, rule.maxPointsPerLeaf);
    NeighborTree::Found  found;
    const auto        visit = [&](std::size_t i) {
        double* const point = &points[3 * i];
        tree.within(point, radii[i], found);
        if (rule.mutual)
            pushBoth(point, radii[i], found, points, radii, rule.largestRadius);
        else
            push(point, radii[i], found, points);
    };
    if (!ids) {
        for (std::size_t i = 0; i < count; ++i)
            visit(i);
        return;
    }
    for (const int id : *ids)
        if (id >= 0 && static_cast<std::size_t>(id) < count)
            visit(static_cast<std::size_t>(id));
}

} // namespace relaxation

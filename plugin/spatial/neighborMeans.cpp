#include "spatial/neighborMeans.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include "core/parallel.h"
#include "core/pointTree.h"

namespace neighbors {

namespace {

constexpr double kOverlapping = 1e-6;

/// Bits of x, two places apart.
std::uint32_t spread(std::uint32_t x)
{
    x &= 0x3f;
    x = (x | x << 8) & 0x0000300f;
    x = (x | x << 4) & 0x000030c3;
    return (x | x << 2) & 0x00009249;
}

/// The queries cell by cell along a Z-order curve through 64^3 cells over their box.
std::vector<unsigned int> coherentOrder(const double* queries, std::size_t count)
{
    constexpr double      inf = std::numeric_limits<double>::infinity();
    constexpr std::size_t cells = std::size_t(1) << 18;
    double low[3] = {inf, inf, inf}, high[3] = {-inf, -inf, -inf};
    for (std::size_t i = 0; i < 3 * count; ++i) {
        if (!std::isfinite(queries[i]))
            continue;
        low[i % 3] = std::min(low[i % 3], queries[i]);
        high[i % 3] = std::max(high[i % 3], queries[i]);
    }
    double side = 0.0;
    for (int axis = 0; axis < 3; ++axis)
        side = std::max(side, high[axis] - low[axis]);
    const double scale = side > 0.0 && std::isfinite(side) ? 63.999 / side : 0.0;

    const auto cell = [&](std::size_t i, int axis) {
        const double at = (queries[3 * i + static_cast<std::size_t>(axis)] - low[axis]) * scale;
        return spread(at >= 0.0 && at < 64.0 ? static_cast<std::uint32_t>(at) : 0u);
    };
    std::vector<std::uint32_t> cellOf(count), first(cells + 1);
    for (std::size_t i = 0; i < count; ++i) {
        cellOf[i] = cell(i, 0) | cell(i, 1) << 1 | cell(i, 2) << 2;
        ++first[cellOf[i] + 1];
    }
    for (std::size_t c = 0; c < cells; ++c)
        first[c + 1] += first[c];
    std::vector<unsigned int> order(count);
    for (std::size_t i = 0; i < count; ++i)
        order[first[cellOf[i]]++] = static_cast<unsigned int>(i);
    return order;
}

/// Neighbours of the queries in the order in which these are taken.
class Search
{
public:
    Search(const PointTree& tree, const double* points, const double* queries, const Rule& rule)
        : tree_(tree), points_(points), queries_(queries), rule_(rule) {}

    /// Appends the neighbours of a query; its mean position goes to `mean`.
    int add(std::size_t i, double* mean, std::vector<int>& ids, std::vector<double>& distances)
    {
        const std::size_t found = lookUp(i);
        int               kept = 0;
        double            sum[3] = {};
        for (std::size_t n = 0; n < found; ++n) {
            if (rule_.skipOverlapping && distances_[n] < kOverlapping)
                continue;
            const double* p = points_ + 3 * static_cast<std::size_t>(ids_[n]);
            for (int axis = 0; axis < 3; ++axis)
                sum[axis] += p[axis];
            ids.push_back(static_cast<int>(ids_[n]));
            distances.push_back(distances_[n]);
            ++kept;
        }
        for (int axis = 0; axis < 3; ++axis)
            mean[axis] = kept > 0 ? sum[axis] / kept : 0.0;
        return kept;
    }

private:
    /// The first neighbours, as many as may be kept, into ids_ and distances_.
    std::size_t lookUp(std::size_t i)
    {
        const int         wanted = std::max(0, rule_.counts ? rule_.counts[i] : rule_.count);
        const std::size_t k = std::min(static_cast<std::size_t>(wanted), rule_.treeCount);
        const double*     query = queries_ + 3 * i;
        if (ids_.size() < k) {
            ids_.resize(k);
            distances_.resize(k);
        }
        if (!(rule_.radius >= 0.0))
            return tree_.nearest(query, k, ids_.data(), distances_.data());
        if (k == 0)
            return 0;
        tree_.within(query, rule_.radii ? rule_.radii[i] * rule_.radius : rule_.radius, found_);
        const std::size_t n = std::min(k, found_.size());
        for (std::size_t j = 0; j < n; ++j) {
            ids_[j] = found_[j].first;
            distances_[j] = found_[j].second;
        }
        return n;
    }

    const PointTree&          tree_;
    const double *            points_, *queries_;
    const Rule&               rule_;
    std::vector<unsigned int> ids_;
    std::vector<double>       distances_;
    PointTree::Found          found_;
};

} // namespace

namespace {

/// Neighbours of the queries that one thread took.
struct Part
{
    std::vector<int>    ids;
    std::vector<double> distances;
};

/// Where the neighbours of a query stand.
struct Place
{
    const Part* part = nullptr;
    std::size_t start = 0;
};

} // namespace

Result find(const PointTree& tree, const double* points, const double* queries, std::size_t queryCount, const Rule& rule,
            double* means)
{
    const std::vector<unsigned int>    order = coherentOrder(queries, queryCount);
    std::vector<std::unique_ptr<Part>> parts;
    std::mutex                         partsMutex;
    std::vector<Place>                 places(queryCount);
    Result                             result;
    result.counts.resize(queryCount);
    parallelFor(queryCount, 2000, [&](std::size_t begin, std::size_t end) {   // a query knows of no other
        auto   part = std::make_unique<Part>();
        Search search(tree, points, queries, rule);
        for (std::size_t k = begin; k < end; ++k) {
            const unsigned int i = order[k];
            places[i] = {part.get(), part->ids.size()};
            result.counts[i] = search.add(i, means + 3 * std::size_t(i), part->ids, part->distances);
        }
        const std::lock_guard<std::mutex> lock(partsMutex);
        parts.push_back(std::move(part));
    });
    std::size_t total = 0;
    for (const auto& part : parts)
        total += part->ids.size();
    result.ids.resize(total);
    result.distances.resize(total);
    std::size_t to = 0;
    for (std::size_t i = 0; i < queryCount; ++i) {
        const auto n = static_cast<std::size_t>(result.counts[i]);
        if (n == 0)
            continue;
        std::copy_n(&places[i].part->ids[places[i].start], n, &result.ids[to]);
        std::copy_n(&places[i].part->distances[places[i].start], n, &result.distances[to]);
        to += n;
    }
    return result;
}

template <class T>
void means(const Result& found, const T* values, std::size_t length, std::size_t stride, T* out)
{
    const int* id = found.ids.data();
    for (const int count : found.counts) {
        for (std::size_t part = 0; part < stride; ++part) {
            double sum = 0.0;
            for (int n = 0; n < count; ++n)
                if (static_cast<std::size_t>(id[n]) < length)
                    sum += static_cast<double>(values[stride * static_cast<std::size_t>(id[n]) + part]);
            *out++ = count > 0 ? static_cast<T>(sum / count) : T(0);
        }
        id += count;
    }
}

template void means<int>(const Result&, const int*, std::size_t, std::size_t, int*);
template void means<float>(const Result&, const float*, std::size_t, std::size_t, float*);
template void means<double>(const Result&, const double*, std::size_t, std::size_t, double*);

} // namespace neighbors

// What kdTree computes, on plain arrays: neighbours of query points in a tree, their means, mapped data.
#pragma once
#include <cstddef>
#include <vector>

class NeighborTree;

namespace neighbors {

struct Rule
{
    std::size_t   treeCount = 0;         ///< points of the tree
    int           count = 5;             ///< neighbours to keep, at most
    double        radius = -1.0;         ///< negative: by count alone; compared with squared distances
    bool          skipOverlapping = false;   ///< pass over neighbours with a squared distance under 1e-6
    const int*    counts = nullptr;      ///< one a query in place of `count`; null: none
    const double* radii = nullptr;       ///< one a query, times `radius`; null: none
};

/// Neighbours of all queries, back to back in the order of the queries, nearest first.
struct Result
{
    std::vector<int>    counts;        ///< one a query
    std::vector<int>    ids;
    std::vector<double> distances;     ///< squared
};

/// Finds them. `means` takes three values a query: the mean position of its neighbours, zero without any. `points` are
/// those of the tree. Queries are taken in an order that is kind to caches; the result does not depend on it.
Result find(const NeighborTree& tree, const double* points, const double* queries, std::size_t queryCount, const Rule& rule,
            double* means);

/// Mean of the neighbours' values for each query, zero without neighbours. `values` has `stride` values a point of the
/// tree; the entries of points past `length` count as zero. Sums are in double precision; means of ints lose their fraction.
template <class T>
void means(const Result& found, const T* values, std::size_t length, std::size_t stride, T* out);

} // namespace neighbors

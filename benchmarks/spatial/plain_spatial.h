// The libraries and methods under the spatial queries, called directly on flat arrays, without the host.
#pragma once
#include <cstddef>
#include <memory>
#include <vector>

namespace plain {

struct Ray { float from[3], along[3]; };

/// Embree's own scene of one triangle mesh.
class RayLibrary
{
public:
    /// x, y, z a vertex; three vertices a triangle.
    RayLibrary(const std::vector<float>& points, const std::vector<unsigned int>& triangles);
    ~RayLibrary();
    /// Closest hits; returns how many rays hit.
    std::size_t shoot(const std::vector<Ray>& rays, std::vector<float>& params) const;
    /// Closest points by its point query.
    void nearest(const std::vector<float>& queries, std::vector<float>& distances) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The k nearest of `points` for each query, in query order, with nanoflann alone. Seconds of the queries.
double nearestNeighbors(const std::vector<double>& points, const std::vector<double>& queries, std::size_t k,
                        std::size_t leafSize, std::vector<double>& distances);

/// Dijkstra's method with a binary heap, stopped at the target. Length of each pair's path.
std::vector<double> shortestPaths(const std::vector<float>& points, const std::vector<int>& edges,
                                  const std::vector<int>& pairs);

} // namespace plain

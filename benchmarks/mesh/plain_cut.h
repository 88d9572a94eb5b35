// A bare clip of convex meshes on flat arrays: no shared vertices, UVs, edges or numbers, only polygons.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

/// Polygons: corners of each, and x, y, z of every corner.
struct Soup
{
    std::vector<int>   sizes;
    std::vector<float> corners;
};

/// The part of a convex solid at n . p >= d, closed by one polygon. `out` keeps its memory.
void clipConvex(const Soup& in, const double n[3], double d, Soup& out);

double volume(const Soup& soup);

} // namespace plain

// The plain loop beside componentGroup: faces of a grid inside spheres and cubes, on flat arrays.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

struct FaceGrid
{
    explicit FaceGrid(int side);
    std::vector<float> xyz;
    std::vector<int>   first, corners;   ///< first corner of each face; vertices
};

struct Bound
{
    double inverse[16];   ///< rows
    bool   cube, contained;
};

/// Indices of the faces that a bound takes in, written to `out`, which has room for all; gives their number.
std::size_t facesInside(const FaceGrid& grid, const std::vector<Bound>& bounds, std::vector<int>& out);

} // namespace plain

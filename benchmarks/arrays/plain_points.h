// The same arithmetic as the array nodes in plain loops over flat arrays of the stored type, without the host.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

/// A square grid of side * side vertices as a host stores it: single precision, one UV a vertex.
struct Grid
{
    std::size_t        count;            ///< vertices
    std::vector<float> xyz, normals;     ///< 3 a vertex
    std::vector<float> rgba;             ///< 4 a vertex
    std::vector<float> us, vs;           ///< the UV table
    std::vector<int>   uvFirst, uvIds;   ///< UVs of vertex i: uvIds from uvFirst[i] up to uvFirst[i + 1]

    explicit Grid(std::size_t side);
};

/// Arrays that a reader fills, allocated beforehand.
struct Arrays
{
    std::vector<double> ids, positions, normals, rgba, mapCounts, mapIds, map, sharedMap;

    explicit Arrays(const Grid& grid);
};

void readPoints(const Grid& grid, Arrays& out);
/// Positions (3 a vertex) and colours (4 a vertex) into a mesh's own storage.
void writePoints(const Arrays& from, Grid& to);

} // namespace plain

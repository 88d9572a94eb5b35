// Copies of a mesh in plain loops over flat arrays of the stored type, without the host.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

struct Mesh
{
    std::vector<float> points;            ///< x y z
    std::vector<int>   counts, connects;
    std::vector<float> colors;            ///< r g b a a point, if wanted
    std::vector<float> uvs;               ///< u v, if wanted
    std::vector<int>   uvIds;

    void reserve(const Mesh& source, std::size_t copies);
};

/// Appends copies of `source` to `out`, which has room for them: `matrices` has twelve values a copy (three columns of
/// rotation and scale, row after row, then the translation). With `colors`, four floats a copy, each point gets its own.
void copyMesh(const Mesh& source, const std::vector<double>& matrices, const std::vector<float>& colors, Mesh& out);

} // namespace plain

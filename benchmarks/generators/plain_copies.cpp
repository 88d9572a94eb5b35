#include "plain_copies.h"

#include <algorithm>

namespace plain {

void Mesh::reserve(const Mesh& source, std::size_t copies)
{
    points.resize(source.points.size() * copies);
    counts.resize(source.counts.size() * copies);
    connects.resize(source.connects.size() * copies);
    colors.resize(source.points.size() / 3 * 4 * copies);
    uvs.resize(source.uvs.size() * copies);
    uvIds.resize(source.uvIds.size() * copies);
}

void copyMesh(const Mesh& source, const std::vector<double>& matrices, const std::vector<float>& colors, Mesh& out)
{
    const std::size_t count = matrices.size() / 12, pointCount = source.points.size() / 3;
    float*            p = out.points.data();
    float*            rgba = out.colors.data();
    float*            uv = out.uvs.data();
    int *             faces = out.counts.data(), *corners = out.connects.data(), *ids = out.uvIds.data();
    for (std::size_t i = 0; i < count; ++i) {
        const double* m = &matrices[12 * i];
        for (std::size_t k = 0; k < pointCount; ++k, p += 3) {
            const double x = source.points[3 * k], y = source.points[3 * k + 1], z = source.points[3 * k + 2];
            p[0] = float(x * m[0] + y * m[3] + z * m[6] + m[9]);
            p[1] = float(x * m[1] + y * m[4] + z * m[7] + m[10]);
            p[2] = float(x * m[2] + y * m[5] + z * m[8] + m[11]);
        }
        faces = std::copy(source.counts.begin(), source.counts.end(), faces);
        const int first = int(i * pointCount);
        for (const int c : source.connects)
            *corners++ = c + first;
        if (!colors.empty())
            for (std::size_t k = 0; k < pointCount; ++k, rgba += 4)
                std::copy_n(&colors[4 * i], 4, rgba);
        uv = std::copy(source.uvs.begin(), source.uvs.end(), uv);
        const int firstUV = int(i * source.uvs.size() / 2);
        for (const int id : source.uvIds)
            *ids++ = id + firstUV;
    }
}

} // namespace plain

#include "plain_points.h"

#include <cmath>

namespace plain {

Grid::Grid(std::size_t side)
    : count(side * side), xyz(3 * count), normals(3 * count), rgba(4 * count), us(count), vs(count),
      uvFirst(count + 1), uvIds(count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
        xyz[3 * i] = x;
        xyz[3 * i + 1] = std::sin(0.1f * x) * std::cos(0.1f * z);
        xyz[3 * i + 2] = z;
        normals[3 * i + 1] = 1.0f;
        rgba[4 * i] = 0.001f * x;
        rgba[4 * i + 3] = 1.0f;
        us[i] = x;
        vs[i] = z;
        uvFirst[i + 1] = static_cast<int>(i + 1);
        uvIds[i] = static_cast<int>(i);
    }
}

Arrays::Arrays(const Grid& grid)
    : ids(grid.count), positions(3 * grid.count), normals(3 * grid.count), rgba(4 * grid.count),
      mapCounts(grid.count), mapIds(grid.uvIds.size()), map(2 * grid.uvIds.size()), sharedMap(2 * grid.count)
{
}

void readPoints(const Grid& grid, Arrays& out)
{
    for (std::size_t i = 0; i < grid.count; ++i)
        out.ids[i] = static_cast<double>(i);
    for (std::size_t i = 0; i < 3 * grid.count; ++i)
        out.positions[i] = grid.xyz[i];
    for (std::size_t i = 0; i < 3 * grid.count; ++i)
        out.normals[i] = grid.normals[i];
    for (std::size_t i = 0; i < 4 * grid.count; ++i)
        out.rgba[i] = grid.rgba[i];
    std::size_t pair = 0;
    for (std::size_t i = 0; i < grid.count; ++i) {
        const int first = grid.uvFirst[i], last = grid.uvFirst[i + 1];
        out.mapCounts[i] = last - first;
        for (int k = first; k < last; ++k) {
            const int id = grid.uvIds[k];
            out.mapIds[pair / 2] = id;
            out.map[pair++] = grid.us[id];
            out.map[pair++] = grid.vs[id];
        }
        out.sharedMap[2 * i] = grid.us[grid.uvIds[first]];
        out.sharedMap[2 * i + 1] = grid.vs[grid.uvIds[first]];
    }
}

void writePoints(const Arrays& from, Grid& to)
{
    for (std::size_t i = 0; i < 3 * to.count; ++i)
        to.xyz[i] = static_cast<float>(from.positions[i]);
    for (std::size_t i = 0; i < 4 * to.count; ++i)
        to.rgba[i] = static_cast<float>(from.rgba[i]);
}

} // namespace plain

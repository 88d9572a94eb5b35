#include "plain_components.h"

#include <cmath>

namespace plain {

FaceGrid::FaceGrid(int side)
{
    for (int z = 0; z <= side; ++z)
        for (int x = 0; x <= side; ++x)
            xyz.insert(xyz.end(), {float(x) / float(side) - 0.5f, 0.0f, 0.5f - float(z) / float(side)});
    for (int z = 0; z < side; ++z) {
        for (int x = 0; x < side; ++x) {
            const int v = z * (side + 1) + x;
            first.push_back(int(corners.size()));
            corners.insert(corners.end(), {v, v + 1, v + side + 2, v + side + 1});
        }
    }
    first.push_back(int(corners.size()));
}

namespace {

bool inside(const Bound& bound, const float* p)
{
    const double* m = bound.inverse;
    const double  x = p[0] * m[0] + p[1] * m[4] + p[2] * m[8] + m[12];
    const double  y = p[0] * m[1] + p[1] * m[5] + p[2] * m[9] + m[13];
    const double  z = p[0] * m[2] + p[1] * m[6] + p[2] * m[10] + m[14];
    return bound.cube ? std::fabs(x) <= 1.0 && std::fabs(y) <= 1.0 && std::fabs(z) <= 1.0
                      : std::sqrt(x * x + y * y + z * z) <= 1.0;
}

} // namespace

std::size_t facesInside(const FaceGrid& grid, const std::vector<Bound>& bounds, std::vector<int>& out)
{
    std::size_t found = 0;
    for (std::size_t face = 0; face + 1 < grid.first.size(); ++face) {
        for (const Bound& bound : bounds) {
            const int first = grid.first[face], end = grid.first[face + 1];
            int       count = 0;
            for (int c = first; c < end; ++c)
                count += inside(bound, &grid.xyz[3 * std::size_t(grid.corners[std::size_t(c)])]);
            if (bound.contained ? count == end - first : count > 0) {
                out[found++] = int(face);
                break;
            }
        }
    }
    return found;
}

} // namespace plain

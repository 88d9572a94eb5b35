#include "generators/pieces.h"

#include <algorithm>
#include <numeric>

namespace pieces {

Shells shellsOf(const int* counts, std::size_t faceCount, const int* connects, std::size_t pointCount)
{
    std::vector<int> above(pointCount);   // a forest over the points, the smallest of a shell at its root
    std::iota(above.begin(), above.end(), 0);
    const auto root = [&](int point) {
        for (; above[point] != point; point = above[point])
            above[point] = above[above[point]];
        return point;
    };
    const int* corner = connects;
    for (std::size_t f = 0; f < faceCount; corner += counts[f++])
        for (int k = 1; k < counts[f]; ++k) {
            const int a = root(corner[0]), b = root(corner[k]);
            above[std::max(a, b)] = std::min(a, b);
        }

    std::vector<int> number(pointCount, -1), shellOf(faceCount);
    Shells           shells;
    corner = connects;
    for (std::size_t f = 0; f < faceCount; corner += counts[f++]) {
        int& shell = number[root(corner[0])];
        if (shell < 0) {
            shell = int(shells.first.size());
            shells.first.push_back(0);
        }
        shellOf[f] = shell;
        ++shells.first[shell];
    }
    shells.first.push_back(0);
    std::exclusive_scan(shells.first.begin(), shells.first.end(), shells.first.begin(), 0);
    shells.faces.resize(faceCount);
    std::vector<int> next = shells.first;
    for (std::size_t f = 0; f < faceCount; ++f)
        shells.faces[next[shellOf[f]]++] = int(f);
    return shells;
}

int chosen(int index, int count, int outOfRange)
{
    if (count <= 0)
        return -1;
    if (index >= 0 && index < count)
        return index;
    switch (outOfRange) {
    case kClamp: return index < 0 ? 0 : count - 1;
    case kWrap:  return (index % count + count) % count;
    default:     return -1;
    }
}

} // namespace pieces

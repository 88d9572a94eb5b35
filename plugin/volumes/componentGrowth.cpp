#include "volumes/componentGrowth.h"

#include <utility>

namespace {

/// `neighbours(item, visit)` calls visit(neighbour) for all neighbours of an item.
template <class Neighbours>
Marks grown(const Marks& seeds, int depth, Neighbours&& neighbours)
{
    if (depth <= 0)
        return Marks(seeds.size(), 0);
    Marks            marks = seeds;
    std::vector<int> ring = indicesOf(seeds), next;
    for (; depth > 0 && !ring.empty(); --depth) {
        next.clear();
        for (int i : ring) {
            neighbours(static_cast<std::size_t>(i), [&](int neighbour) {
                unsigned char& mark = marks[static_cast<std::size_t>(neighbour)];
                if (!mark) {
                    mark = 1;
                    next.push_back(neighbour);
                }
            });
        }
        std::swap(ring, next);
    }
    return marks;
}

/// Calls f(position) for each place where the item stands.
template <class F>
void eachPlace(const PositionLists& lists, std::size_t item, F&& f)
{
    for (int p = lists.first[item]; p < lists.first[item + 1]; ++p)
        f(static_cast<std::size_t>(lists.items[static_cast<std::size_t>(p)]));
}

} // namespace

Marks grownVertices(const MeshTables& mesh, const Marks& seeds, int depth)
{
    const PositionLists ends = positionsIn(mesh.edgeVertices, static_cast<int>(seeds.size()));
    return grown(seeds, depth, [&](std::size_t vertex, auto&& visit) {
        eachPlace(ends, vertex, [&](std::size_t end) { visit(mesh.edgeVertices[end ^ 1]); });
    });
}

Marks grownEdges(const MeshTables& mesh, const Marks& seeds, int depth)
{
    const PositionLists ends = positionsIn(mesh.edgeVertices, mesh.vertexCount);
    return grown(seeds, depth, [&](std::size_t edge, auto&& visit) {
        for (std::size_t end = 2 * edge; end < 2 * edge + 2; ++end)
            eachPlace(ends, static_cast<std::size_t>(mesh.edgeVertices[end]),
                      [&](std::size_t other) { visit(static_cast<int>(other / 2)); });
    });
}

Marks grownFaces(const MeshTables& mesh, const Marks& seeds, int depth)
{
    const PositionLists corners = positionsIn(mesh.cornerEdges, mesh.edgeCount);
    std::vector<int>    faceOf(mesh.cornerVertices.size());
    for (std::size_t face = 0; face + 1 < mesh.faceFirst.size(); ++face)
        for (int c = mesh.faceFirst[face]; c < mesh.faceFirst[face + 1]; ++c)
            faceOf[static_cast<std::size_t>(c)] = static_cast<int>(face);
    return grown(seeds, depth, [&](std::size_t face, auto&& visit) {
        for (int c = mesh.faceFirst[face]; c < mesh.faceFirst[face + 1]; ++c)
            eachPlace(corners, static_cast<std::size_t>(mesh.cornerEdges[static_cast<std::size_t>(c)]),
                      [&](std::size_t other) { visit(faceOf[other]); });
    });
}

Marks grownRow(const Marks& seeds, int depth)
{
    return grown(seeds, depth, [&](std::size_t i, auto&& visit) {
        if (i > 0)
            visit(static_cast<int>(i) - 1);
        if (i + 1 < seeds.size())
            visit(static_cast<int>(i) + 1);
    });
}

#include "mesh/loops.h"

#include <algorithm>

namespace mirk {

namespace {

int otherEnd(const Topology& t, int edge, int vertex)
{
    const EdgeTable::Edge& e = t.edges().edges[size_t(edge)];
    return e.a == vertex ? e.b : e.a;
}

/// The other border edge at a vertex; -1 unless there is just one.
int nextOnBorder(const Topology& t, int edge, int vertex)
{
    int found = -1;
    for (int e : t.vertexEdges()[vertex])
        if (e != edge && t.onBoundary(e)) {
            if (found >= 0)
                return -1;
            found = e;
        }
    return found;
}

/// The edge on the other side of a vertex with four edges and faces all around; -1 elsewhere.
int nextStraight(const Topology& t, int edge, int vertex)
{
    if (t.vertexEdges()[vertex].size() != 4 || t.vertexCorners()[vertex].size() != 4)
        return -1;
    std::vector<int> left(t.vertexEdges()[vertex].begin(), t.vertexEdges()[vertex].end());
    std::erase(left, edge);
    for (int c : t.vertexCorners()[vertex]) {
        const int out = t.edges().ofCorner[size_t(c)], in = t.edges().ofCorner[size_t(t.previous(c, t.cornerFaces()[size_t(c)]))];
        if (out == edge)
            std::erase(left, in);
        if (in == edge)
            std::erase(left, out);
    }
    return left.size() == 1 ? left[0] : -1;
}

/// Walks from an edge both ways: `step(edge, side)` gives the next edge and sets the side to go on at; -1 ends.
template <class Step>
std::vector<int> walk(const Topology& t, int edge, int firstSide, int secondSide, Step&& step)
{
    std::vector<char> seen(size_t(t.edgeCount()), 0);
    seen[size_t(edge)] = 1;
    std::vector<int> ahead, behind;
    for (auto [list, side] : {std::pair{&ahead, firstSide}, {&behind, secondSide}})
        for (int e = edge; side >= 0 && (e = step(e, side)) >= 0 && !seen[size_t(e)];) {
            seen[size_t(e)] = 1;
            list->push_back(e);
        }
    std::reverse(behind.begin(), behind.end());
    behind.push_back(edge);
    behind.insert(behind.end(), ahead.begin(), ahead.end());
    return behind;
}

template <class Next>
std::vector<int> walkVertices(const Topology& t, int edge, Next&& next)
{
    const EdgeTable::Edge& e = t.edges().edges[size_t(edge)];
    return walk(t, edge, e.b, e.a, [&](int at, int& vertex) {
        const int to = next(t, at, vertex);
        if (to >= 0)
            vertex = otherEnd(t, to, vertex);
        return to;
    });
}

}  // namespace

std::vector<int> edgeLoop(const Topology& t, int edge)
{
    return t.onBoundary(edge) ? edgeBorder(t, edge) : walkVertices(t, edge, nextStraight);
}

std::vector<int> edgeBorder(const Topology& t, int edge)
{
    return t.onBoundary(edge) ? walkVertices(t, edge, nextOnBorder) : std::vector<int>();
}

std::vector<int> edgeRing(const Topology& t, int edge)
{
    const auto sides = t.edgeCorners()[edge];   // a side is a corner whose edge this is
    return walk(t, edge, sides.empty() ? -1 : sides[0], sides.size() == 2 ? sides[1] : -1, [&](int, int& corner) {
        const int face = t.cornerFaces()[size_t(corner)];
        if (t.faceSize(face) != 4)
            return -1;
        const int across = t.next(t.next(corner, face), face), to = t.edges().ofCorner[size_t(across)];
        const auto beyond = t.edgeCorners()[to];
        corner = beyond.size() == 2 ? beyond[beyond[0] == across] : -1;
        return to;
    });
}

}  // namespace mirk

// Shortest paths along edges, on plain arrays: the graph, the search, and how a path becomes a run of path points.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace paths {

/// The edges of a mesh with their lengths in single precision, as they were when it was built.
class EdgeGraph
{
public:
    struct Neighbor { int vertex; float length; int edge; };

    /// `points`: x, y, z a vertex; `edges`: two vertices an edge, in the order of the edge ids. Edges from a vertex to
    /// itself are left out.
    EdgeGraph(const std::vector<float>& points, const std::vector<std::pair<int, int>>& edges);
    EdgeGraph() = default;

    int vertexCount() const { return static_cast<int>(first_.size()) - 1; }
    const Neighbor* begin(int vertex) const { return neighbors_.data() + first_[static_cast<std::size_t>(vertex)]; }
    const Neighbor* end(int vertex) const { return neighbors_.data() + first_[static_cast<std::size_t>(vertex) + 1]; }
    /// The edge between two vertices; null if there is none.
    const Neighbor* find(int from, int to) const;
    /// Straight distance.
    double distance(int a, int b) const;
    /// False if no path can lead from one to the other.
    bool connected(int a, int b) const { return shell_[static_cast<std::size_t>(a)] == shell_[static_cast<std::size_t>(b)]; }
    /// True if every edge makes a path longer, whatever its length: the order of visits is then that of (distance, vertex).
    bool strictlyLonger() const { return strictlyLonger_; }

private:
    void nameShells(const std::vector<std::pair<int, int>>& edges);

    std::vector<int>      first_{0};
    std::vector<Neighbor> neighbors_;
    std::vector<float>    points_;
    std::vector<int>      shell_;
    bool                  strictlyLonger_ = true;
};

/// Finds paths; keeps its arrays from one to the next.
class PathFinder
{
public:
    /// The vertices of the shortest path from `start` to `end`, both included; empty without one. Both exist and differ.
    /// `obstacles` (one flag a vertex, or empty) are not entered, but a path may start on one.
    ///
    /// Among equally long paths it is the one of Dijkstra's method with an ordered set of (distance, vertex): a vertex is
    /// reached from the neighbour that is visited first. Distances are sums in double precision from the start.
    std::vector<int> find(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles);

private:
    struct Node { double distance, bound; std::uint32_t round = 0; };   ///< bound: of the whole path through it

    bool             search(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles);
    std::vector<int> walkBack(const EdgeGraph& graph, int start, int end) const;
    bool             reached(int v) const { return nodes_[static_cast<std::size_t>(v)].round == round_; }

    std::vector<Node>                   nodes_;
    std::vector<std::pair<double, int>> heap_;
    std::uint32_t                       round_ = 0;
};

/// The same by the plain method, visit by visit; for graphs with edges of no length, where the order of visits is not
/// that of (distance, vertex).
std::vector<int> plainShortestPath(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles);

/// How much of a path is published. Negative numbers: no limit.
struct Limits
{
    int    maxSteps = -1;        ///< points, the start among them; 0 is no limit either
    double maxDistance = -1.0;
};

struct Rule
{
    bool intersecting = true;    ///< off: a path ends at the first vertex of an earlier path
    bool travel = false;         ///< publish the last edge of the walk only
};

/// Path points of all paths, back to back.
struct Paths
{
    std::vector<int>    vertices, steps, counts;   ///< counts: one a path
    std::vector<double> distances;                 ///< from the start of the path
    std::vector<int>    edges;                     ///< ids of the edges walked
};

/// Adds a path as the rule and the limits leave it; perhaps nothing.
void publish(const EdgeGraph& graph, std::vector<int> path, const Rule& rule, const Limits& limits, Paths& out);

/// A pair of an expression, with the limits that it brings.
struct Pair
{
    int    start, end;
    bool   hasSteps, hasDistance;
    int    maxSteps;
    double maxDistance;
};

/// "start:end", "start:end:steps" or "start:end:steps:distance", separated by blanks. An entry of which a field is no
/// number, or the ends are missing, is passed over; an empty limit is as none given.
std::vector<Pair> parsePairs(const std::string& expression);

} // namespace paths

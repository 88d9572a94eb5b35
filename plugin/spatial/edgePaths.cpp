#include "spatial/edgePaths.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <numeric>
#include <set>
#include <unordered_map>

namespace paths {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::size_t at(int i) { return static_cast<std::size_t>(i); }

bool isObstacle(const std::vector<char>& obstacles, int vertex)
{
    return at(vertex) < obstacles.size() && obstacles[at(vertex)] != 0;
}

} // namespace

// ---- graph ---------------------------------------------------------------------------------------------------------

EdgeGraph::EdgeGraph(const std::vector<float>& points, const std::vector<std::pair<int, int>>& edges)
    : first_(points.size() / 3 + 1), points_(points)
{
    for (const auto& [a, b] : edges) {
        if (a == b)
            continue;
        ++first_[at(a) + 1];
        ++first_[at(b) + 1];
    }
    std::partial_sum(first_.begin(), first_.end(), first_.begin());
    neighbors_.resize(static_cast<std::size_t>(first_.back()));

    std::vector<int> next(first_.begin(), first_.end() - 1);
    double           shortest = kInfinity, total = 0.0;
    for (std::size_t id = 0; id < edges.size(); ++id) {
        const auto [a, b] = edges[id];
        if (a == b)
            continue;
        const float *p = &points_[3 * at(a)], *q = &points_[3 * at(b)];
        const float  x = q[0] - p[0], y = q[1] - p[1], z = q[2] - p[2];
        const float  length = std::sqrt(x * x + y * y + z * z);
        neighbors_[at(next[at(a)]++)] = {b, length, static_cast<int>(id)};
        neighbors_[at(next[at(b)]++)] = {a, length, static_cast<int>(id)};
        if (std::isfinite(length)) {
            shortest = std::min(shortest, static_cast<double>(length));
            total += length;
        }
    }
    strictlyLonger_ = shortest > 1e-18 && shortest > 1e-13 * total;   // 1e-18: its square has lost no digit
    nameShells(edges);
}

void EdgeGraph::nameShells(const std::vector<std::pair<int, int>>& edges)
{
    shell_.resize(first_.size() - 1);
    std::iota(shell_.begin(), shell_.end(), 0);
    const auto root = [&](int v) {
        while (shell_[at(v)] != v)
            v = shell_[at(v)] = shell_[at(shell_[at(v)])];
        return v;
    };
    for (const auto& [a, b] : edges)
        shell_[at(root(a))] = root(b);
    for (int v = 0; v < vertexCount(); ++v)
        shell_[at(v)] = root(v);
}

const EdgeGraph::Neighbor* EdgeGraph::find(int from, int to) const
{
    const Neighbor* found = std::find_if(begin(from), end(from), [to](const Neighbor& n) { return n.vertex == to; });
    return found == end(from) ? nullptr : found;
}

double EdgeGraph::distance(int a, int b) const
{
    const float *p = &points_[3 * at(a)], *q = &points_[3 * at(b)];
    const double x = double(q[0]) - p[0], y = double(q[1]) - p[1], z = double(q[2]) - p[2];
    return std::sqrt(x * x + y * y + z * z);
}

// ---- search --------------------------------------------------------------------------------------------------------

std::vector<int> PathFinder::find(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles)
{
    if (!graph.connected(start, end) || isObstacle(obstacles, end))
        return {};
    if (!graph.strictlyLonger())
        return plainShortestPath(graph, start, end, obstacles);
    return search(graph, start, end, obstacles) ? walkBack(graph, start, end) : std::vector<int>();
}

/// Distances of all vertices that can lie on a shortest path. A* with the straight distance, which is a little less
/// than any path's: unlike the plain method it does not look at what lies the other way. It goes on until every vertex
/// of every shortest path, ties included, has its distance.
bool PathFinder::search(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles)
{
    constexpr double kShrink = 1.0 - 1e-6, kTies = 1.0 + 1e-9;   // for rounded edge lengths and sums
    if (nodes_.size() != static_cast<std::size_t>(graph.vertexCount()) || ++round_ == 0) {
        nodes_.assign(static_cast<std::size_t>(graph.vertexCount()), {});
        round_ = 1;
    }
    const std::greater<> later;
    heap_.clear();
    nodes_[at(start)] = {0.0, 0.0, round_};
    heap_.push_back({0.0, start});
    double limit = kInfinity;
    while (!heap_.empty() && heap_.front().first <= limit) {
        const auto [bound, vertex] = heap_.front();
        std::pop_heap(heap_.begin(), heap_.end(), later);
        heap_.pop_back();
        const Node from = nodes_[at(vertex)];
        if (bound > from.bound || vertex == end)   // replaced since, or there
            continue;
        for (const EdgeGraph::Neighbor* n = graph.begin(vertex); n != graph.end(vertex); ++n) {
            Node&        to = nodes_[at(n->vertex)];
            const double distance = from.distance + static_cast<double>(n->length);
            const bool   known = to.round == round_;
            if (!(distance < (known ? to.distance : kInfinity)) || isObstacle(obstacles, n->vertex))
                continue;
            const double rest = known ? to.bound - to.distance : kShrink * graph.distance(n->vertex, end);
            to = {distance, distance + rest, round_};
            if (n->vertex == end)
                limit = distance * kTies;
            heap_.push_back({to.bound, n->vertex});
            std::push_heap(heap_.begin(), heap_.end(), later);
        }
    }
    return reached(end);
}

/// From each vertex back to the neighbour that the plain method would have visited first among those it can come from.
std::vector<int> PathFinder::walkBack(const EdgeGraph& graph, int start, int end) const
{
    std::vector<int> path{end};
    while (path.back() != start) {
        const int              v = path.back();
        const double           target = nodes_[at(v)].distance;
        std::pair<double, int> best(kInfinity, -1);
        for (const EdgeGraph::Neighbor* n = graph.begin(v); n != graph.end(v); ++n) {
            const double distance = nodes_[at(n->vertex)].distance;
            if (reached(n->vertex) && distance + static_cast<double>(n->length) == target)
                best = std::min(best, {distance, n->vertex});
        }
        if (best.second < 0)
            return {};
        path.push_back(best.second);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<int> plainShortestPath(const EdgeGraph& graph, int start, int end, const std::vector<char>& obstacles)
{
    const auto                       count = static_cast<std::size_t>(graph.vertexCount());
    std::vector<double>              distance(count, kInfinity);
    std::vector<int>                 previous(count, -1);
    std::set<std::pair<double, int>> open{{0.0, start}};
    distance[at(start)] = 0.0;
    while (!open.empty() && open.begin()->second != end) {
        const int vertex = open.begin()->second;
        open.erase(open.begin());
        for (const EdgeGraph::Neighbor* n = graph.begin(vertex); n != graph.end(vertex); ++n) {
            const double through = distance[at(vertex)] + static_cast<double>(n->length);
            if (!(through < distance[at(n->vertex)]) || isObstacle(obstacles, n->vertex))
                continue;
            open.erase({distance[at(n->vertex)], n->vertex});
            distance[at(n->vertex)] = through;
            previous[at(n->vertex)] = vertex;
            open.insert({through, n->vertex});
        }
    }
    if (previous[at(end)] < 0)
        return {};
    std::vector<int> path{end};
    while (path.back() != start)
        path.push_back(previous[at(path.back())]);
    std::reverse(path.begin(), path.end());
    return path;
}

// ---- publishing ----------------------------------------------------------------------------------------------------

namespace {

/// Cuts the path just after its first vertex in common with what is published, in the order of publication: the vertex
/// published first decides, even if the path meets another one before it.
void cutAtEarlierPaths(const std::vector<int>& published, std::vector<int>& path)
{
    std::unordered_map<int, std::size_t> place;
    for (std::size_t i = 0; i < path.size(); ++i)
        place.emplace(path[i], i);
    for (const int vertex : published) {
        const auto found = place.find(vertex);
        if (found != place.end()) {
            path.resize(found->second + 1);
            return;
        }
    }
}

void addPoint(Paths& out, int vertex, int step, double distance)
{
    out.vertices.push_back(vertex);
    out.steps.push_back(step);
    out.distances.push_back(distance);
}

void publishWalk(const EdgeGraph& graph, const std::vector<int>& path, const Limits& limits, Paths& out)
{
    double sum = 0.0;
    int    count = 1;
    addPoint(out, path[0], 0, 0.0);
    for (int k = 1; at(k) < path.size(); ++k, ++count) {
        const EdgeGraph::Neighbor* edge = graph.find(path[at(k) - 1], path[at(k)]);
        const double               length = edge ? static_cast<double>(edge->length) : 0.0;
        // k starts at 1, so that a limit of 0 is none: scenes rely on it
        if ((limits.maxSteps >= 0 && k == limits.maxSteps)
            || (limits.maxDistance >= 0.0 && limits.maxDistance < sum + length))
            break;
        sum += length;
        addPoint(out, path[at(k)], k, sum);
        if (edge)
            out.edges.push_back(edge->edge);
    }
    out.counts.push_back(count);
}

void publishLastEdge(const EdgeGraph& graph, const std::vector<int>& path, const Limits& limits, Paths& out)
{
    if (limits.maxSteps <= 0 || path.size() < 3)
        return;
    double from = 0.0, to = 0.0;
    int    walked = 0, id = -1;
    for (; at(walked) + 1 < path.size(); ++walked) {
        const EdgeGraph::Neighbor* edge = graph.find(path[at(walked)], path[at(walked) + 1]);
        const double               length = edge ? static_cast<double>(edge->length) : 0.0;
        if (limits.maxDistance >= 0.0 && limits.maxDistance < to + length)
            break;
        from = to;
        to += length;
        id = edge ? edge->edge : -1;
    }
    if (walked == 0)
        return;
    addPoint(out, path[at(walked) - 1], walked - 1, from);
    addPoint(out, path[at(walked)], walked, to);
    if (id >= 0)
        out.edges.push_back(id);
    out.counts.push_back(2);
}

} // namespace

void publish(const EdgeGraph& graph, std::vector<int> path, const Rule& rule, const Limits& limits, Paths& out)
{
    if (!rule.intersecting)
        cutAtEarlierPaths(out.vertices, path);
    if (path.size() < 2)
        return;
    if (rule.travel)
        publishLastEdge(graph, path, limits, out);
    else
        publishWalk(graph, path, limits, out);
}

// ---- expressions ---------------------------------------------------------------------------------------------------

namespace {

std::vector<std::string> fieldsOf(const std::string& entry)
{
    std::vector<std::string> fields(1);
    for (const char c : entry) {
        if (c == ':')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

bool toInt(const std::string& text, int& value)
{
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = static_cast<int>(parsed);
    return true;
}

bool toDouble(const std::string& text, double& value)
{
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && !std::isnan(value);
}

bool parsePair(const std::string& entry, Pair& pair)
{
    const std::vector<std::string> fields = fieldsOf(entry);
    if (fields.size() < 2 || !toInt(fields[0], pair.start) || !toInt(fields[1], pair.end))
        return false;
    pair.hasSteps = fields.size() > 2 && !fields[2].empty();
    pair.hasDistance = fields.size() > 3 && !fields[3].empty();
    return (!pair.hasSteps || toInt(fields[2], pair.maxSteps)) && (!pair.hasDistance || toDouble(fields[3], pair.maxDistance));
}

} // namespace

std::vector<Pair> parsePairs(const std::string& expression)
{
    std::vector<Pair> pairs;
    constexpr auto    blanks = " \t\r\n";
    for (std::size_t from = expression.find_first_not_of(blanks); from != std::string::npos;) {
        const std::size_t to = std::min(expression.find_first_of(blanks, from), expression.size());
        Pair              pair{};
        if (parsePair(expression.substr(from, to - from), pair))
            pairs.push_back(pair);
        from = expression.find_first_not_of(blanks, to);
    }
    return pairs;
}

} // namespace paths

// Paths: finding them, naming them, and matrices along them.
#include <algorithm>
#include <cstring>

#include "dag/dag.h"
#include "graph/evaluate.h"
#include "graph/scene.h"

namespace mirk {

bool Path::valid() const
{
    if (nodes.empty())
        return false;
    const Node* above = &dag::world();
    for (const auto& n : nodes) {
        if (!n || !n->inScene || !n->dag)
            return false;
        const auto& parents = n->dag->parents;
        if (std::find(parents.begin(), parents.end(), above) == parents.end())
            return false;
        above = n.get();
    }
    return true;
}

namespace dag {
namespace {

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> parts(1);
    for (char c : text)
        if (c == '|')
            parts.emplace_back();
        else
            parts.back() += c;
    return parts;
}

void collectPaths(Node& node, std::vector<Node*>& tail, std::vector<Path>& out)
{
    if (&node == &world()) {
        Path path;
        for (auto n = tail.rbegin(); n != tail.rend(); ++n)
            path.nodes.emplace_back(*n);
        out.push_back(std::move(path));
        return;
    }
    tail.push_back(&node);
    for (Node* p : node.dag->parents)
        collectPaths(*p, tail, out);
    tail.pop_back();
}

/// True if the path's last names are these.
bool endsWith(const Path& path, const std::vector<std::string>& tail, size_t from)
{
    const size_t n = tail.size() - from;
    if (n > path.nodes.size())
        return false;
    for (size_t i = 0; i < n; ++i)
        if (path.nodes[path.nodes.size() - n + i]->name != tail[from + i])
            return false;
    return true;
}

bool endsWith(const Path& path, const Path& other, size_t count)
{
    if (count > path.nodes.size())
        return false;
    for (size_t i = 1; i <= count; ++i)
        if (path.nodes[path.nodes.size() - i]->name != other.nodes[other.nodes.size() - i]->name)
            return false;
    return true;
}

void visitBelow(Path& path, Node& node, const std::function<bool(const Path&)>& visit)
{
    const std::vector<Node*> children = node.dag->children;
    for (Node* child : children) {
        path.nodes.emplace_back(child);
        if (visit(path))
            visitBelow(path, *child, visit);
        path.nodes.pop_back();
    }
}

void identity(double m[4][4])
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            m[r][c] = r == c;
}

}  // namespace

std::vector<Path> allPaths(Node& node)
{
    std::vector<Path>  paths;
    std::vector<Node*> tail;
    if (node.dag && node.inScene)
        collectPaths(node, tail, paths);
    return paths;
}

Path firstPath(Node& node)
{
    Path path;
    for (Node* n = &node; n && n->dag && n != &world(); n = n->dag->parents.empty() ? nullptr : n->dag->parents.front())
        path.nodes.emplace_back(n);
    std::reverse(path.nodes.begin(), path.nodes.end());
    return path;
}

bool isInstanced(Node& node)
{
    for (Node* n = &node; n && n->dag && n != &world(); n = n->dag->parents.empty() ? nullptr : n->dag->parents.front())
        if (n->dag->parents.size() > 1)
            return true;
    return false;
}

Path refreshed(const Path& path)
{
    if (path.valid())
        return path;
    Node* node = path.node();
    if (!node || !node->inScene || !node->dag)
        return {};
    // of several instances the one that shares most of the old chain's end
    Path   best;
    size_t bestShared = 0;
    for (Path& p : allPaths(*node)) {
        size_t shared = 0;
        while (shared < p.nodes.size() && shared < path.nodes.size() &&
               p.nodes[p.nodes.size() - 1 - shared] == path.nodes[path.nodes.size() - 1 - shared])
            ++shared;
        if (shared > bestShared) {
            bestShared = shared;
            best = std::move(p);
        }
    }
    return best;
}

void descend(const Path& from, const std::function<bool(const Path&)>& visit)
{
    Path path = from;
    visitBelow(path, from.node() ? *from.node() : world(), visit);
}

std::vector<Path> find(const std::string& name)
{
    std::vector<Path>        found;
    std::vector<std::string> parts = split(name);
    const bool               absolute = parts.size() > 1 && parts.front().empty();
    const size_t             from = absolute ? 1 : 0;
    const std::vector<Node*> candidates = scene().named(parts.back());
    for (Node* node : candidates) {
        if (!node->dag)
            continue;
        if (parts.size() == 1 && !isInstanced(*node)) {
            found.push_back(firstPath(*node));
            continue;
        }
        for (Path& p : allPaths(*node))
            if (endsWith(p, parts, from) && (!absolute || p.nodes.size() == parts.size() - 1))
                found.push_back(std::move(p));
    }
    return found;
}

std::string fullName(const Path& path)
{
    std::string text;
    for (const auto& n : path.nodes)
        text += "|" + n->name;
    return text;
}

std::string partialName(const Path& path)
{
    if (path.nodes.empty())
        return "";
    std::vector<Path>        others;
    const std::vector<Node*> sameName = scene().named(path.node()->name);
    for (Node* n : sameName)
        if (n->dag && (n != path.node() || isInstanced(*n)))
            for (Path& p : allPaths(*n))
                if (!(p == path))
                    others.push_back(std::move(p));
    std::string text;
    for (size_t count = 1; count <= path.nodes.size(); ++count) {
        text = path.nodes[path.nodes.size() - count]->name + (count > 1 ? "|" : "") + text;
        if (std::none_of(others.begin(), others.end(), [&](const Path& p) { return endsWith(p, path, count); }))
            return text;
    }
    return "|" + text;
}

std::string shortestName(Node& node)
{
    if (!node.dag || &node == &world())
        return node.name;
    if (scene().named(node.name).size() == 1 && !isInstanced(node))
        return node.name;
    return partialName(firstPath(node));
}

unsigned instanceNumber(const Path& path)
{
    if (path.nodes.empty() || !isInstanced(*path.node()))
        return 0;
    const std::vector<Path> paths = allPaths(*path.node());
    const size_t            at = size_t(std::find(paths.begin(), paths.end(), path) - paths.begin());
    return at < paths.size() ? unsigned(at) : 0;
}

void inclusiveMatrix(const Path& path, double out[4][4])
{
    identity(out);
    Node*      node = path.node();
    Attribute* attr = node ? node->type->find("worldMatrix") : nullptr;
    if (!attr)
        return;
    Cell* cell = node->cell(attr)->element(int(instanceNumber(path)));
    eval::pull(*cell);
    std::memcpy(out, cell->own.matrix, 16 * sizeof(double));
}

void exclusiveMatrix(const Path& path, double out[4][4])
{
    Path above = path;
    if (!above.nodes.empty())
        above.nodes.pop_back();
    inclusiveMatrix(above, out);
}

}  // namespace dag
}  // namespace mirk

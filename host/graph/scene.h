// The scene: which nodes there are, by name and in order.
#pragma once
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "graph/node.h"

namespace mirk {

class Scene
{
public:
    void add(Node& node);               ///< takes a reference
    void remove(Node& node);
    void renamed(Node& node, const std::string& old);
    /// Nodes of this name, in order of creation; several only in the DAG.
    const std::vector<Node*>& named(const std::string& name) const;
    Node* first(const std::string& name) const { auto& n = named(name); return n.empty() ? nullptr : n.front(); }
    /// All nodes in order of creation.
    std::vector<Node*> nodes() const;
    /// The lowest number from `from` on for which no node is called base + number, in about constant time.
    int freeNumber(const std::string& base, int from = 1);
    size_t count() const { return byName_.size(); }
    /// Called when a node enters or leaves (DAG and selection keep their lists true).
    void (*onRemoved)(Node&) = nullptr;
    bool modified = false;
    std::string fileName;

private:
    /// Numbers behind a base name: all below `next` are taken but those in `freed`, of which some may be by now.
    struct Numbers
    {
        int           next = 1;
        std::set<int> freed;
        int           runFirst = 0, runEnd = 0;   ///< of a run further up that was looked through: all taken
    };
    void nameFreed(const std::string& name);

    std::unordered_map<std::string, std::vector<Node*>> byName_;
    std::unordered_map<std::string, Numbers>            numbers_;
    size_t nextOrder_ = 0;
};

Scene& scene();

/// Reads "attr[2].child", "a.b", short names and aliases on a node; makes missing elements and cells if `create`.
/// Null if there is no such attribute (the reason in `why`).
Cell* findCell(Node& node, const std::string& path, bool create = true, std::string* why = nullptr);

}  // namespace mirk

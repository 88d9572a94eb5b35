// The scene: which nodes there are, by name and in order.
#pragma once
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
    size_t count() const { return byName_.size(); }
    /// Called when a node enters or leaves (DAG and selection keep their lists true).
    void (*onRemoved)(Node&) = nullptr;
    bool modified = false;
    std::string fileName;

private:
    std::unordered_map<std::string, std::vector<Node*>> byName_;
    size_t nextOrder_ = 0;
};

Scene& scene();

/// Reads "attr[2].child", "a.b", short names and aliases on a node; makes missing elements and cells if `create`.
/// Null if there is no such attribute (the reason in `why`).
Cell* findCell(Node& node, const std::string& path, bool create = true, std::string* why = nullptr);

}  // namespace mirk

// The part of the graph between the uvCoord attributes of textures and the attribute that they drive.
#pragma once
#include <unordered_map>
#include <vector>

#include "graph/node.h"

namespace mirk::texture {

/// A cell that the result depends on.
struct Vertex
{
    Cell*            cell = nullptr;
    bool             seed = false;      ///< a uvCoord that takes its value from outside
    bool             varying = false;   ///< depends on a seed
    std::vector<int> inputs, dependents;
};

class Network
{
public:
    /// Everything upstream of `roots`. Nodes that are computing count as constant: they give what they hold.
    explicit Network(const std::vector<Cell*>& roots);

    const std::vector<Vertex>& vertices() const { return vertices_; }
    int  find(const Cell& cell) const;   ///< -1 if the result does not depend on it
    bool hasTexture() const { return hasTexture_; }

private:
    int  add(Cell& cell, int dependent);
    void expand(int vertex);
    void expandNode(int vertex);
    void addInputs(Node& node, const Attribute& top, int dependent);
    void spreadVarying();

    std::vector<Vertex>                                                   vertices_;
    std::unordered_map<const Cell*, int>                                  places_;
    std::unordered_map<const NodeType*, std::vector<std::vector<int>>>    affectedBy_;
    std::vector<int>                                                      queue_;
    bool                                                                  hasTexture_ = false;
};

/// The uvCoord that a node looks its texture up at; null if it has none.
const Attribute* uvAttribute(const Node& node);

}  // namespace mirk::texture

// What shading groups make of the colours of shapes.
#pragma once
#include <array>
#include <map>
#include <memory>
#include <vector>

#include "graph/node.h"
#include "view/draw_list.h"

namespace mirk::view {

/// A shader as the viewport shows it: a plain colour, or a picture of its network over the UVs from `low` to `high`.
struct Material
{
    Color                          color;
    std::shared_ptr<const Texture> texture;
    std::array<float, 2>           low{0, 0}, high{1, 1};
};

/// The whole tiles that a mesh's UVs lie in: lowest u and v, highest u and v.
using Tiles = std::array<int, 4>;

/// The shading groups of a mesh: the one that all of it belongs to, and those that single faces do.
struct ShadingGroups
{
    struct Part { Node* group; std::vector<int> faces; };

    Node*             whole = nullptr;
    std::vector<Part> parts;
    bool none() const { return !whole && parts.empty(); }
};

/// `instance` is the number of the path that shows the shape.
ShadingGroups shadingGroups(Node& shape, unsigned instance);

/// Materials of one picture, each made once.
class Materials
{
public:
    /// Null if nothing is connected to the group's surfaceShader.
    const Material* of(Node& group, const Tiles& tiles);

private:
    std::map<std::pair<Node*, Tiles>, std::unique_ptr<Material>> known_;
};

}  // namespace mirk::view

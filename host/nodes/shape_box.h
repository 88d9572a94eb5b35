// Bounding boxes of shapes.
#pragma once
#include "graph/node.h"

namespace mirk::nodes {

/// Box of a shape in object space: min then max. False if it has none.
bool shapeBox(Node& node, double box[6]);

}  // namespace mirk::nodes

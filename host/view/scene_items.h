// Items of the built-in kinds of objects, in object space.
#pragma once
#include "graph/node.h"
#include "view/draw_list.h"

namespace mirk::view {

/// How an object is to be shown.
struct Look
{
    bool  shaded = true;      ///< else as lines
    bool  wire = false;       ///< lines over the shading
    Color wireColor;
    uint32_t id = 0;
};

/// Adds what the shape looks like; false if it is of no kind known here. `matrix`: object to world.
bool addShapeItems(Node& shape, const Matrix& matrix, const Look& look, DrawList& list);

}  // namespace mirk::view

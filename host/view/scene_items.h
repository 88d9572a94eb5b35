// Items of the built-in kinds of objects, in object space.
#pragma once
#include "dag/dag.h"
#include "graph/node.h"
#include "view/draw_list.h"

namespace mirk::view {

class Materials;

/// How an object is to be shown.
struct Look
{
    bool  shaded = true;      ///< else as lines
    bool  wire = false;       ///< lines over the shading
    Color wireColor;
    uint32_t id = 0;
    Materials* materials = nullptr;   ///< null: shading groups do not show
    unsigned   instance = 0;          ///< of the path that shows the object
};

/// A joint's ball and the bones to the joints below it. Display size does not follow the joint's scale.
void addJoint(const Path& joint, const Look& look, DrawList& list);
/// One bit a pixel, rows of whole bytes from the bottom, the leftmost pixel highest; (x, y) of it stands at the object.
struct Bitmap { unsigned width = 0, height = 0, x = 0, y = 0; std::vector<unsigned char> bits; };
void addIcon(const Bitmap& icon, const Matrix& matrix, const Look& look, DrawList& list);
/// Adds what the shape looks like; false if it is of no kind known here. `matrix`: object to world.
bool addShapeItems(Node& shape, const Matrix& matrix, const Look& look, DrawList& list);

}  // namespace mirk::view

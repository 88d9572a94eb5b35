#include "view/instances.h"

#include <algorithm>

#include "dynamics/instancer.h"
#include "graph/evaluate.h"
#include "nodes/dag_attrs.h"
#include "nodes/shape_box.h"
#include "view/display_status.h"

namespace mirk::view {
namespace {

Matrix toMatrix(const double m[4][4])
{
    Matrix out;
    std::copy(&m[0][0], &m[0][0] + 16, out.begin());
    return out;
}

Matrix localMatrix(Node& node)
{
    Cell* cell = node.cell(nodes::dagAttrs().matrix);
    eval::pull(*cell);
    Matrix out;
    std::copy(cell->own.matrix, cell->own.matrix + 16, out.begin());
    return out;
}

/// The twelve edges of a box.
void addBox(const double (&box)[6], const Matrix& matrix, const Look& look, DrawList& list)
{
    Item item;
    item.primitive = Primitive::kLines;
    item.matrix = matrix;
    item.state.id = look.id;
    item.state.color = look.wireColor;
    for (int corner = 0; corner < 8; ++corner)
        for (int k = 0; k < 3; ++k)
            item.positions.push_back(float(box[(corner >> k & 1) * 3 + k]));
    for (uint32_t corner = 0; corner < 8; ++corner)
        for (uint32_t axis = 1; axis < 8; axis *= 2)
            if (!(corner & axis))
                item.indices.insert(item.indices.end(), {corner, corner | axis});
    list.items.push_back(std::move(item));
}

/// The shapes of an object and of what stands below it. `matrix`: the node's own space to that above the object.
void addShapes(Node& node, const Matrix& matrix, bool asBoxes, const Look& look, DrawList& list)
{
    if (node.type->shape) {
        double box[6];
        if (!asBoxes)
            addShapeItems(node, matrix, look, list);
        else if (nodes::shapeBox(node, box))
            addBox(box, matrix, look, list);
        return;
    }
    for (Node* child : node.dag->children)
        if (showsItself(*child))
            addShapes(*child, child->type->shape ? matrix : multiply(localMatrix(*child), matrix), asBoxes, look, list);
}

DrawList itemsOf(Node& object, dynamics::InstanceDetail detail, const Look& look)
{
    DrawList own;
    double   box[6];
    if (detail != dynamics::InstanceDetail::wholeBox)
        addShapes(object, object.type->shape ? kIdentity : localMatrix(object), detail == dynamics::InstanceDetail::shapeBoxes, look, own);
    else if (nodes::nodeBox(object, box))
        addBox(box, kIdentity, look, own);
    return own;
}

}  // namespace

void addInstances(Node& instancer, const Matrix& matrix, const Look& look, DrawList& list)
{
    const std::vector<Node*>         objects = dynamics::instancedObjects(instancer);
    std::vector<std::vector<Matrix>> copies(objects.size());
    for (const dynamics::Instance& i : dynamics::instances(instancer))
        copies[i.object].push_back(multiply(toMatrix(i.matrix.matrix), matrix));
    const auto detail = dynamics::instanceDetail(instancer);
    for (size_t o = 0; o < objects.size(); ++o) {
        if (!objects[o] || copies[o].empty())
            continue;
        for (Item& item : itemsOf(*objects[o], detail, look).items) {
            for (const Matrix& copy : copies[o])
                item.copies.push_back(multiply(item.matrix, copy));
            list.items.push_back(std::move(item));
        }
    }
}

}  // namespace mirk::view

#include "command/transform_edit.h"

#include <cmath>

#include <maya/MEulerRotation.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include "graph/edit.h"
#include "graph/evaluate.h"

namespace mirk::command {

namespace {

MMatrix fromArray(const double m[4][4])
{
    MMatrix out;
    for (unsigned i = 0; i < 4; ++i)
        for (unsigned k = 0; k < 4; ++k)
            out[i][k] = m[i][k];
    return out;
}

Cell& attributeCell(Node& node, const char* name)
{
    const Attribute* a = node.findAttribute(name);
    Cell* cell = a ? node.cell(a) : nullptr;
    if (!cell)
        fail("'" + nodeName(node) + "' has no attribute '" + name + "'");
    return *cell;
}

}  // namespace

MMatrix worldMatrix(const Path& path)
{
    double m[4][4];
    dag::inclusiveMatrix(path, m);
    return fromArray(m);
}

MMatrix parentMatrix(const Path& path)
{
    double m[4][4];
    dag::exclusiveMatrix(path, m);
    return fromArray(m);
}

MVector channels(Node& node, const char* name)
{
    Cell& cell = attributeCell(node, name);
    eval::pullDeep(cell);
    return MVector(cell.number(0), cell.number(1), cell.number(2));
}

void setChannels(Node& node, const char* name, const MVector& value)
{
    Cell& cell = attributeCell(node, name);
    const MVector now = channels(node, name);
    for (unsigned k = 0; k < 3; ++k)
    {
        if (value[k] == now[k])
            continue;
        Cell* child = cell.child(k);
        if (edit::isDriven(*child) || cell.is(Cell::kLocked) || child->is(Cell::kLocked))
        {
            if (std::fabs(value[k] - now[k]) < 1e-9)
                continue;   // the rounding of a matrix must not touch what cannot be changed
            fail("The attribute '" + plugText(*child) + "' is locked or connected and cannot be modified.");
        }
        edit::setNumber(*child, value[k]);
    }
}

namespace {

/// What a matrix gives back changed by rounding alone stays as it was.
void setNear(Node& node, const char* name, MVector value)
{
    const MVector now = channels(node, name);
    for (unsigned k = 0; k < 3; ++k)
        if (std::fabs(value[k] - now[k]) <= 1e-12 * std::max(1.0, std::fabs(now[k])))
            value[k] = now[k];
    setChannels(node, name, value);
}

}  // namespace

MMatrix localMatrix(Node& node)
{
    Cell& cell = attributeCell(node, "matrix");
    eval::pull(cell);
    MMatrix m;
    for (int i = 0; i < 16; ++i)
        m[unsigned(i / 4)][i % 4] = cell.own.matrix[i];
    return m;
}

void setLocalMatrix(Node& node, const MMatrix& local)
{
    // scale, shear and rotation from the linear part; then the translation that the pivots leave
    MTransformationMatrix parts(local);
    double scale[3], shear[3];
    parts.getScale(scale, MSpace::kTransform);
    parts.getShear(shear, MSpace::kTransform);
    Cell& order = attributeCell(node, "rotateOrder");
    eval::pull(order);
    const auto    rotateOrder = MEulerRotation::RotationOrder(std::clamp(int(order.number()), 0, 5));
    const MVector axis = channels(node, "rotateAxis");
    MQuaternion   rotation = parts.rotation();
    rotation = MEulerRotation(axis.x, axis.y, axis.z).asQuaternion().inverse() * rotation;
    if (node.type->isA("joint"))
    {
        const MVector orient = channels(node, "jointOrient");
        rotation = rotation * MEulerRotation(orient.x, orient.y, orient.z).asQuaternion().inverse();
    }
    MEulerRotation euler = MEulerRotation(0, 0, 0, rotateOrder);
    euler = rotation.asEulerRotation().reorder(rotateOrder);
    const MVector now = channels(node, "rotate");
    euler = euler.closestSolution(MEulerRotation(now.x, now.y, now.z, rotateOrder));
    setNear(node, "scale", MVector(scale[0], scale[1], scale[2]));
    setNear(node, "shear", MVector(shear[0], shear[1], shear[2]));
    setNear(node, "rotate", MVector(euler.x, euler.y, euler.z));
    const MMatrix reached = localMatrix(node);
    const MVector missing(local[3][0] - reached[3][0], local[3][1] - reached[3][1], local[3][2] - reached[3][2]);
    setNear(node, "translate", channels(node, "translate") + missing);
}

}  // namespace mirk::command

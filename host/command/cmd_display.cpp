// Objects in the view: shown and hidden, marked by locators, with their placement frozen into their points.
#include <maya/MDistance.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include "command/cmd_util.h"
#include "command/shape_edit.h"
#include "command/transform_edit.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

// ---- visibility --------------------------------------------------------------------------------------------------

void setVisible(Node& node, bool visible)
{
    if (const Attribute* a = node.findAttribute("visibility"))
        edit::setNumber(*node.cell(a), visible);
}

constexpr Flag kHide[] = {{"all", "allObjects"}, {"rh", "returnHidden"}};

Value hide(Call& call)
{
    std::vector<Node*> nodes = callNodes(call, !call.has("allObjects"));
    if (call.has("allObjects"))
        nodes = dag::world().dag->children;
    if (nodes.empty())
        fail("hide: nothing is given or selected");
    Strings hidden;
    for (Node* node : nodes) {
        if (!node->type->dag)
            fail("hide: '" + nodeName(*node) + "' is not an object of the scene");
        setVisible(*node, false);
        hidden.push_back(nodeName(*node));
    }
    return call.has("returnHidden") ? Value(hidden) : Value();
}

constexpr Flag kShow[] = {{"a", "above"}, {"all", "allObjects"}, {"b", "below"}};

void show(const Path& path, bool above, bool below)
{
    setVisible(*path.node(), true);
    if (above)
        for (const Ref<Node>& node : path.nodes)
            setVisible(*node, true);
    if (below)
        dag::descend(path, [](const Path& p) {
            setVisible(*p.node(), true);
            return true;
        });
}

Value showHidden(Call& call)
{
    std::vector<Node*> nodes = callNodes(call, !call.has("allObjects"));
    if (call.has("allObjects"))
        nodes = dag::world().dag->children;
    for (Node* node : nodes) {
        if (!node->type->dag)
            fail("showHidden: '" + nodeName(*node) + "' is not an object of the scene");
        show(dag::firstPath(*node), call.has("above"), call.has("below") || call.has("allObjects"));
    }
    return {};
}

// ---- locators ----------------------------------------------------------------------------------------------------

constexpr Flag kLocator[] = {{"p", "position", "lll", kAll}, {"n", "name", "s"}, {"a", "absolute"}, {"r", "relative"}};

Value spaceLocator(Call& call)
{
    if (!call.isQuery() && !call.isEdit()) {
        Node* shape = dag::createNode(findNodeType("locator"));
        Node& transform = *transformOf(*shape);
        if (const std::string name = call.str("name"); !name.empty()) {
            dag::renameNode(transform, name);
            dag::renameNode(*shape, shapeName(transform.name));
        }
        if (const Call::Use* p = call.use("position"))
            for (unsigned k = 0; k < 3; ++k)
                edit::setNumber(*shape->cell(shape->findAttribute(k == 0 ? "localPositionX" : k == 1 ? "localPositionY" : "localPositionZ")),
                                MDistance(p->args[k].asFloat(), MDistance::uiUnit()).as(MDistance::kCentimeters));
        selection::set({itemOf(transform)});
        return Value(Strings{nodeName(transform)});
    }
    fail("spaceLocator: only -position can be asked for or changed, with getAttr and setAttr on localPosition");
}

// ---- frozen transforms ---------------------------------------------------------------------------------------------

constexpr Flag kIdentity[] = {
    {"a", "apply", "b"}, {"t", "translate", "b"}, {"r", "rotate", "b"}, {"s", "scale", "b"}, {"jo", "jointOrient", "b"},
    {"n", "normal", "i"}, {"pn", "preserveNormals", "b"},
};

struct Parts
{
    bool translate, rotate, scale;
};

void reset(Node& transform, const Parts& parts)
{
    if (parts.translate)
        setChannels(transform, "translate", MVector(0, 0, 0));
    if (parts.rotate)
        setChannels(transform, "rotate", MVector(0, 0, 0));
    if (parts.scale) {
        setChannels(transform, "scale", MVector(1, 1, 1));
        setChannels(transform, "shear", MVector(0, 0, 0));
    }
}

void moveShape(Node& shape, const MMatrix& by)
{
    if (!geometryCell(shape))
        return;
    std::vector<MPoint> points = shapePoints(shape);
    std::vector<int>    all(points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        points[i] = points[i] * by;
        all[i] = int(i);
    }
    setShapePoints(shape, all, points);
}

/// Resets a transform and hands what it lost on: to the transforms below, in the end to points.
void freeze(Node& transform, const MMatrix& carried, const Parts& parts)
{
    const MMatrix old = localMatrix(transform) * carried;
    const MPoint  rotatePivot = MPoint(channels(transform, "rotatePivot")) * old, scalePivot = MPoint(channels(transform, "scalePivot")) * old;
    setLocalMatrix(transform, old);
    const MMatrix before = localMatrix(transform);
    reset(transform, parts);
    if (!transform.type->find("jointOrient")) {   // pivots stay where they are in the world
        for (const char* name : {"rotatePivotTranslate", "scalePivotTranslate"})
            setChannels(transform, name, MVector());
        const MVector left = channels(transform, "translate");
        setChannels(transform, "rotatePivot", MVector(rotatePivot) - left);
        setChannels(transform, "scalePivot", MVector(rotatePivot) - left);
        if (!scalePivot.isEquivalent(rotatePivot))
            setChannels(transform, "scalePivot", MVector(scalePivot * localMatrix(transform).inverse()));
    }
    const MMatrix lost = before * localMatrix(transform).inverse();
    for (Node* child : std::vector<Node*>(transform.dag->children)) {
        if (dag::isInstanced(*child))
            fail("makeIdentity: '" + nodeName(*child) + "' is instanced");
        if (child->type->shape)
            moveShape(*child, lost);
        else
            freeze(*child, lost, parts);
    }
}

Value makeIdentity(Call& call)
{
    const bool  any = call.has("translate") || call.has("rotate") || call.has("scale");
    const Parts parts{!any || call.boolean("translate"), !any || call.boolean("rotate"), !any || call.boolean("scale")};
    for (Node* node : callNodes(call)) {
        if (!isTransform(*node))
            fail("makeIdentity: '" + nodeName(*node) + "' is not a transform");
        if (call.boolean("apply")) {
            freeze(*node, MMatrix(), parts);
        } else {
            reset(*node, parts);
            dag::descend(dag::firstPath(*node), [&](const Path& p) {
                if (isTransform(*p.node()))
                    reset(*p.node(), parts);
                return true;
            });
        }
    }
    return {};
}

const Command kCommands[] = {
    {"hide", kHide, hide},
    {"showHidden", kShow, showHidden},
    {"spaceLocator", kLocator, spaceLocator},
    {"makeIdentity", kIdentity, makeIdentity},
};

}  // namespace

void registerDisplayCommands() { add(kCommands); }

}  // namespace mirk::command

// Cutting polygon objects along planes and closing their holes.
#include <algorithm>

#include <maya/MAngle.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include "command/cmd_util.h"
#include "command/poly_history.h"
#include "command/shape_edit.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

/// The node that a query or an edit is about: an argument that is one, or the last one of its type before a shape.
Node& nodeInHistory(const Call& call, const char* type)
{
    for (const Item& item : callItems(call)) {
        Node* node = nodeOf(item);
        if (node && node->type->name == type)
            return *node;
        Cell* input = node && node->dag ? &cellOf(meshShapeOf(item), "inMesh") : nullptr;
        while (input && input->source) {
            Node& before = *input->source->node;
            if (before.type->name == type)
                return before;
            const Attribute* a = before.findAttribute("inputPolymesh");
            input = a ? before.cell(a) : nullptr;
        }
    }
    fail(std::string(call.command->name) + ": there is no " + type + " in the history of what is given or selected");
}

constexpr Flag kCut[] = {
    {"pc", "cutPlaneCenter", "lll", kAll}, {"pcx", "cutPlaneCenterX", "l", kAll}, {"pcy", "cutPlaneCenterY", "l", kAll},
    {"pcz", "cutPlaneCenterZ", "l", kAll}, {"ro", "cutPlaneRotate", "aaa", kAll}, {"rx", "cutPlaneRotateX", "a", kAll},
    {"ry", "cutPlaneRotateY", "a", kAll}, {"rz", "cutPlaneRotateZ", "a", kAll}, {"ps", "cutPlaneSize", "ll", kAll},
    {"pw", "cutPlaneWidth", "l", kAll}, {"ph", "cutPlaneHeight", "l", kAll}, {"cd", "cuttingDirection", "s"},
    {"df", "deleteFaces", "b", kAll}, {"ef", "extractFaces", "b", kAll}, {"eo", "extractOffset", "lll", kAll},
    {"eox", "extractOffsetX", "l", kAll}, {"eoy", "extractOffsetY", "l", kAll}, {"eoz", "extractOffsetZ", "l", kAll},
    {"oo", "onObject", "b", kAll}, {"ws", "worldSpace", "b", kAll}, {"ch", "constructionHistory", "b", kCreate | kQuery},
    {"n", "name", "s"}, {"nds", "nodeState", "i", kAll}, {"cch", "caching", "b", kAll},
};

/// Flags that stand for an attribute of their name. Values are in the user's units, on both sides.
void setFromFlags(const Call& call, Node& node)
{
    for (const Call::Use& use : call.uses) {
        const Attribute* attribute = node.findAttribute(use.flag->longName);
        if (!attribute)
            continue;
        Cell& cell = *node.cell(attribute);
        for (size_t i = 0; i < use.args.size(); ++i) {
            Cell* leaf = attribute->children.empty() ? &cell : cell.child(unsigned(i));
            edit::setNumber(*leaf, fromUi(*leaf->attr, use.args[i].asFloat()));
        }
    }
}

Value queryFlags(const Call& call, Node& node)
{
    std::vector<double> out;
    for (const Call::Use& use : call.uses) {
        const Attribute* attribute = node.findAttribute(use.flag->longName);
        if (!attribute)
            return Value(1);   // constructionHistory: there is a node
        Cell& cell = *node.cell(attribute);
        if (attribute->children.empty())
            out.push_back(toUi(*attribute, cell.number()));
        for (size_t i = 0; i < attribute->children.size(); ++i)
            out.push_back(toUi(*attribute->children[i], cell.number(int(i))));
    }
    return out.size() == 1 ? Value(out[0]) : Value(out);
}

/// A plane across an axis through the middle of the object's box.
void setDirection(const Call& call, const PolyTarget& target, Node& node)
{
    const std::string axis = call.str("cuttingDirection");
    const struct { const char* name; double x, y; } known[] = {{"x", 0, 90}, {"y", -90, 0}, {"z", 0, 0}, {"rx", 0, -90}, {"ry", 90, 0}, {"rz", 180, 0}};
    const auto* found = std::find_if(std::begin(known), std::end(known), [&](const auto& k) { return axis == k.name; });
    if (found == std::end(known))
        fail("polyCut: '" + axis + "' is no cutting direction; x, y, z, rx, ry and rz are");
    Cell& rotate = cellOf(node, "cutPlaneRotate");
    edit::setNumber(*rotate.child(0), MAngle(found->x, MAngle::kDegrees).asRadians());
    edit::setNumber(*rotate.child(1), MAngle(found->y, MAngle::kDegrees).asRadians());
    float box[6];
    readMesh(*target.shape)->body->bounds(box);
    Cell& center = cellOf(node, "cutPlaneCenter");
    MPoint middle((double(box[0]) + box[3]) / 2, (double(box[1]) + box[4]) / 2, (double(box[2]) + box[5]) / 2);
    if (call.boolean("worldSpace")) {
        MMatrix toWorld;
        dag::inclusiveMatrix(itemOf(*target.shape).path, toWorld.matrix);
        middle *= toWorld;
    }
    for (unsigned i = 0; i < 3; ++i)
        edit::setNumber(*center.child(i), middle[i]);
}

Value cut(Call& call)
{
    if (call.isQuery())
        return queryFlags(call, nodeInHistory(call, "polyCut"));
    if (call.isEdit()) {
        setFromFlags(call, nodeInHistory(call, "polyCut"));
        return {};
    }
    Strings made;
    for (const PolyTarget& target : polyTargets(call)) {
        const auto setUp = [&](Node& node) {
            edit::connect(*cellOf(*target.shape, "worldMatrix").element(0), cellOf(node, "inputMatrix"));
            if (call.has("cuttingDirection"))
                setDirection(call, target, node);
            setFromFlags(call, node);
        };
        if (Node* node = applyModifier(target, "polyCut", call.str("name"), call.boolean("constructionHistory", true), setUp))
            made.push_back(nodeName(*node));
    }
    return made.empty() ? Value() : Value(made);
}

constexpr Flag kCloseBorder[] = {{"ch", "constructionHistory", "b", kCreate | kQuery}, {"n", "name", "s"}, {"nds", "nodeState", "i", kAll}, {"cch", "caching", "b", kAll}};

Value closeBorders(Call& call)
{
    if (call.isQuery())
        return queryFlags(call, nodeInHistory(call, "polyCloseBorder"));
    if (call.isEdit()) {
        setFromFlags(call, nodeInHistory(call, "polyCloseBorder"));
        return {};
    }
    Strings made;
    for (const PolyTarget& target : polyTargets(call)) {
        const auto setUp = [&](Node& node) { setFromFlags(call, node); };
        if (Node* node = applyModifier(target, "polyCloseBorder", call.str("name"), call.boolean("constructionHistory", true), setUp))
            made.push_back(nodeName(*node));
    }
    return made.empty() ? Value() : Value(made);
}

const Command kCommands[] = {
    {"polyCut", kCut, cut},
    {"polyCloseBorder", kCloseBorder, closeBorders},
};

}  // namespace

void registerPolyCutCommands() { add(kCommands); }

}  // namespace mirk::command

// The registry of built-in types, and new scenes.
#include "nodes/builtin.h"

#include <maya/MTime.h>

#include "anim/curve_node.h"
#include "api/playback.h"
#include "command/registry.h"
#include "dag/dag.h"
#include "dag/selection_list.h"
#include "dynamics/instancer.h"
#include "dynamics/particle.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"
#include "nodes/anim_types.h"
#include "texture/texture_node.h"

namespace mirk {
namespace nodes {

NodeType* registerRow(const Row& row, Role role, void (*prepare)(NodeType&))
{
    if (NodeType* known = findNodeType(row.name))
        return known;
    auto type = std::make_unique<NodeType>();
    type->name = row.name;
    type->id = row.id;
    type->apiType = row.apiType;
    type->namePrefix = row.prefix;
    type->classification = row.classification;
    type->abstract = !row.creator;
    type->creator = row.creator;
    type->make = row.make;
    if (prepare)
        prepare(*type);
    type->inherit(findNodeType(row.base));
    if (role != Role::plain)
        type->dag = true;
    if (role == Role::shape)
        type->shape = true;
    typeBeingBuilt() = type.get();
    const MStatus status = row.initialize ? row.initialize() : MS::kSuccess;
    typeBeingBuilt() = nullptr;
    std::string why = "its attributes cannot be made";
    NodeType*   added = status == MS::kSuccess ? registerNodeType(std::move(type), &why) : nullptr;
    if (!added)
        throw command::Error("Cannot register the node type " + std::string(row.name) + ": " + why + ".");
    return added;
}

namespace {

struct DefaultCamera
{
    const char* name;
    double      translate[3], rotate[3];   // centimetres, degrees
    bool        orthographic;
};

// where every new scene has them
const DefaultCamera kCameras[] = {
    {"persp", {28, 21, 28}, {-27.938352729602379, 44.999999999999972, 0}, false},
    {"top", {0, 1000.1, 0}, {-90, 0, 0}, true},
    {"front", {0, 0, 1000.1}, {0, 0, 0}, true},
    {"side", {1000.1, 0, 0}, {0, 90, 0}, true},
};

void setTriple(Node& node, const char* attribute, const double v[3], double factor)
{
    Cell* cell = node.cell(node.type->find(attribute));
    for (int i = 0; i < 3; ++i)
        cell->setNumber(v[i] * factor, i);
    edit::afterChange(*cell);
}

void setNumber(Node& node, const char* attribute, double value)
{
    Cell* cell = node.cell(node.type->find(attribute));
    cell->setNumber(value);
    edit::afterChange(*cell);
}

void makeCamera(const DefaultCamera& c)
{
    Node* transform = dag::createNode(findNodeType("transform"), c.name);
    Node* shape = dag::createNode(findNodeType("camera"), std::string(c.name) + "Shape", transform);
    setTriple(*transform, "translate", c.translate, 1);
    setTriple(*transform, "rotate", c.rotate, 3.14159265358979323846 / 180);
    setNumber(*transform, "visibility", 0);
    setNumber(*shape, "orthographic", c.orthographic);
    setNumber(*shape, "orthographicWidth", 30);
    setNumber(*shape, "centerOfInterest", c.orthographic ? 1000.1 : 44.82186966202994);
    if (!c.orthographic)
        setNumber(*shape, "focalLength", 35);
    transform->isDefault = shape->isDefault = true;
}

void makeDefault(const char* type, const char* name)
{
    if (NodeType* t = findNodeType(type))
        edit::createNode(t, name)->isDefault = true;
}

}  // namespace
}  // namespace nodes

void registerBuiltinNodes()
{
    if (findNodeType("dagNode"))
        return;
    registerBaseType();
    nodes::registerDagTypes();
    nodes::registerShapeTypes();
    nodes::registerUtilityTypes();
    nodes::registerMathTypes();
    nodes::registerPluginKinds();
    nodes::registerPolygonMakers();
    nodes::registerNurbsMakers();
    nodes::registerRemapValue();
    anim::registerCurveTypes();
    nodes::registerSetTypes();
    dynamics::registerTypes();
    dynamics::registerInstancer();
    texture::registerTextureTypes();
    scene().onRemoved = selection::dropNode;
}

void newScene()
{
    undo::Suspend quiet;
    selection::set({});
    std::vector<Ref<Node>> nodes;   // deleting a transform takes its shapes along
    for (Node* node : scene().nodes()) {
        nodes.emplace_back(node);
        node->isDefault = node->locked = node->referenced = false;
        for (Cell* top : node->cells)
            if (top && !top->parent)
                walkCells(*top, [](Cell& c) { c.set(Cell::kLocked, false); });
    }
    for (const auto& node : nodes)
        if (node->inScene)
            dag::deleteNode(*node);
    dag::clear();
    undo::flush();
    playback::reset();
    nodes::makeDefault("time", "time1");
    for (const auto& c : nodes::kCameras)
        nodes::makeCamera(c);
    scene().modified = false;
    scene().fileName.clear();
    eval::collect();
}

}  // namespace mirk

// Modifiers keep their edits themselves: each step records its inverse and can be taken back and done again.
#include <maya/MDagModifier.h>

#include <functional>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>

#include "api/api.h"
#include "dag/dag.h"
#include "graph/convert.h"
#include "graph/edit.h"
#include "graph/undo.h"
#include "mel/interpreter.h"
#include "python/python.h"

using namespace mirk;
using command::Error;

namespace mirk {

struct ModifierOps
{
    struct Step
    {
        std::function<void()>                    run;
        std::vector<std::unique_ptr<undo::Edit>> edits;
        bool                                     ran = false, applied = false;
    };
    std::vector<Step> steps;

    MStatus add(std::function<void()> run)
    {
        steps.push_back({std::move(run), {}, false, false});
        return MS::kSuccess;
    }
};

}  // namespace mirk

namespace {

using Step = ModifierOps::Step;

void takeBack(Step& step)
{
    undo::Suspend quiet;
    for (auto e = step.edits.rbegin(); e != step.edits.rend(); ++e)
        (*e)->undo();
    step.applied = false;
}

MStatus apply(Step& step)
{
    if (step.ran) {
        undo::Suspend quiet;
        for (auto& e : step.edits)
            e->redo();
        step.applied = true;
        return MS::kSuccess;
    }
    undo::Scope   scope("modifier", false);
    const MStatus status = api::guarded(step.run);
    if (!status) {
        scope.rollback();
        return status;
    }
    step.edits = scope.take();
    step.ran = step.applied = true;
    return status;
}

/// The node is made at once, so that plugs on it can be named, and leaves the scene until doIt().
Node* makeNode(ModifierOps& ops, NodeType* type, Node* parent, MStatus* s)
{
    undo::Scope scope("modifier", false);
    Node*       node = api::create(type, MString(), parent, s);
    Step        step;
    step.edits = scope.take();
    step.ran = true;
    Ref<Node> keep(node);
    takeBack(step);
    if (node)
        ops.steps.push_back(std::move(step));
    return node;
}

NodeType* typeOf(const MTypeId& id) { return findNodeType(id.id()); }
NodeType* typeOf(const MString& name) { return findNodeType(std::string(name.asChar())); }

Cell& cellOf(const MPlug& plug)
{
    Cell* cell = PlugAccess::cell(plug);
    if (!cell)
        throw Error("The plug does not exist.");
    return *cell;
}

Node& sceneNode(const MObject& object)
{
    Node* node = objectAs<Node>(object);
    if (!node || !node->inScene)
        throw Error("The node is not in the scene.");
    return *node;
}

template <class T>
std::function<void()> setting(const MPlug& plug, const T& value)
{
    return [plug, value] {
        MPlug to = plug;
        cellOf(plug);
        if (!to.setValue(value))
            throw Error("Cannot set '" + std::string(plug.name().asChar()) + "'.");
    };
}

MStatus plugless(const MPlug& a) { return a.isNull() ? MS::kInvalidParameter : MS::kSuccess; }

}  // namespace

MDGModifier::MDGModifier() : ops_(new ModifierOps) {}
MDGModifier::~MDGModifier() { delete ops_; }

MObject MDGModifier::createNode(const MTypeId& typeId, MStatus* s)
{
    NodeType* type = typeOf(typeId);
    if (!type || type->dag)
        return reported(s, MS::kInvalidParameter, MObject());
    return wrap(makeNode(*ops_, type, nullptr, s));
}

MObject MDGModifier::createNode(const MString& name, MStatus* s)
{
    NodeType* type = typeOf(name);
    if (!type || type->dag)
        return reported(s, MS::kInvalidParameter, MObject());
    return wrap(makeNode(*ops_, type, nullptr, s));
}

MStatus MDGModifier::deleteNode(const MObject& node)
{
    if (!objectAs<Node>(node))
        return MS::kInvalidParameter;
    return ops_->add([node] { dag::deleteNode(sceneNode(node)); });
}

MStatus MDGModifier::renameNode(const MObject& node, const MString& newName)
{
    if (!objectAs<Node>(node))
        return MS::kInvalidParameter;
    return ops_->add([node, name = std::string(newName.asChar())] { dag::renameNode(sceneNode(node), name); });
}

MStatus MDGModifier::setNodeLockState(const MObject& node, bool newState)
{
    if (!objectAs<Node>(node))
        return MS::kInvalidParameter;
    return ops_->add([node, newState] {
        Node&      n = sceneNode(node);
        const bool before = n.locked;
        n.locked = newState;
        undo::push([keep = Ref<Node>(&n), before] { keep->locked = before; }, [keep = Ref<Node>(&n), newState] { keep->locked = newState; });
    });
}

MStatus MDGModifier::connect(const MPlug& source, const MPlug& dest)
{
    if (source.isNull() || dest.isNull())
        return MS::kInvalidParameter;
    return ops_->add([source, dest] { edit::connectConverting(cellOf(source), cellOf(dest)); });
}

MStatus MDGModifier::connect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode, const MObject& destAttr)
{
    return connect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}

MStatus MDGModifier::disconnect(const MPlug& source, const MPlug& dest)
{
    if (source.isNull() || dest.isNull())
        return MS::kInvalidParameter;
    return ops_->add([source, dest] { edit::disconnectConverting(cellOf(source), cellOf(dest)); });
}

MStatus MDGModifier::disconnect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode, const MObject& destAttr)
{
    return disconnect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}

MStatus MDGModifier::addAttribute(const MObject& node, const MObject& attribute)
{
    auto* a = objectAs<Attribute>(attribute);
    if (!objectAs<Node>(node) || !a || a->slot >= 0 || a->parent)
        return MS::kInvalidParameter;
    return ops_->add([node, keep = Ref<Attribute>(a)] { edit::addDynamic(sceneNode(node), keep); });
}

MStatus MDGModifier::removeAttribute(const MObject& node, const MObject& attribute)
{
    auto* a = objectAs<Attribute>(attribute);
    if (!objectAs<Node>(node) || !a)
        return MS::kInvalidParameter;
    return ops_->add([node, keep = Ref<Attribute>(a)] { edit::deleteDynamic(sceneNode(node), *keep); });
}

MStatus MDGModifier::removeMultiInstance(const MPlug& plug, bool breakConnections)
{
    if (plug.isNull())
        return MS::kInvalidParameter;
    return ops_->add([plug, breakConnections] {
        Cell& cell = cellOf(plug);
        bool  connected = false;
        walkCells(cell, [&](Cell& c) { connected = connected || c.source || c.hasTargets(); });
        if (connected && !breakConnections)
            throw Error("'" + plugName(cell) + "' is connected and cannot be removed.");
        edit::removeElement(cell);
    });
}

MStatus MDGModifier::newPlugValue(const MPlug& p, const MObject& v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueBool(const MPlug& p, bool v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueChar(const MPlug& p, char v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueShort(const MPlug& p, short v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueInt(const MPlug& p, int v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueInt64(const MPlug& p, MInt64 v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueFloat(const MPlug& p, float v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueDouble(const MPlug& p, double v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueMAngle(const MPlug& p, const MAngle& v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueMDistance(const MPlug& p, const MDistance& v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueMTime(const MPlug& p, const MTime& v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }
MStatus MDGModifier::newPlugValueString(const MPlug& p, const MString& v) { return plugless(p) ? ops_->add(setting(p, v)) : plugless(p); }

MStatus MDGModifier::commandToExecute(const MString& command)
{
    return ops_->add([text = std::string(command.asChar())] { mel::execute(text); });
}

MStatus MDGModifier::pythonCommandToExecute(const MString& command)
{
    return ops_->add([text = std::string(command.asChar())] { python::run(text); });
}

MStatus MDGModifier::doIt()
{
    MStatus           result = MS::kSuccess;
    std::vector<Step> steps = std::move(ops_->steps);   // a command that runs may add to this modifier
    ops_->steps.clear();
    for (Step& step : steps)
        if (!step.applied)
            if (const MStatus status = apply(step); !status)
                result = status;
    std::erase_if(steps, [](const Step& s) { return !s.ran; });
    for (Step& added : ops_->steps)
        steps.push_back(std::move(added));
    ops_->steps = std::move(steps);
    return result;
}

MStatus MDGModifier::undoIt()
{
    for (auto step = ops_->steps.rbegin(); step != ops_->steps.rend(); ++step)
        if (step->applied)
            takeBack(*step);
    return MS::kSuccess;
}

// ---- MDagModifier ------------------------------------------------------------------------------------------------

namespace {

MObject makeDagNode(ModifierOps& ops, NodeType* type, const MObject& parent, MStatus* s)
{
    Node* above = objectAs<Node>(parent);
    if (!type || !type->dag || (!parent.isNull() && !above))
        return reported(s, MS::kInvalidParameter, MObject());
    // a parent that this modifier makes is not in the scene yet: it stands there while the child is placed
    std::vector<Step*> lent;
    for (Step& step : ops.steps)
        if (above && !above->inScene && step.ran && !step.applied) {
            apply(step);
            lent.push_back(&step);
        }
    undo::Scope scope("modifier", false);
    Node*       node = api::create(type, MString(), above, s);
    Step        step;
    step.edits = scope.take();
    step.ran = true;
    const Ref<Node> keep(node);
    const Ref<Node> top(node && type->shape && !above ? node->dag->parents.front() : node);
    takeBack(step);
    for (auto l = lent.rbegin(); l != lent.rend(); ++l)
        takeBack(**l);
    if (node)
        ops.steps.push_back(std::move(step));
    return wrap(top);
}

}  // namespace

MObject MDagModifier::createNode(const MTypeId& typeId, const MObject& parent, MStatus* s) { return makeDagNode(*ops_, typeOf(typeId), parent, s); }
MObject MDagModifier::createNode(const MString& type, const MObject& parent, MStatus* s) { return makeDagNode(*ops_, typeOf(type), parent, s); }

MStatus MDagModifier::reparentNode(const MObject& node, const MObject& newParent)
{
    if (!objectAs<Node>(node) || (!newParent.isNull() && !objectAs<Node>(newParent)))
        return MS::kInvalidParameter;
    return ops_->add([node, newParent] {
        Node& child = sceneNode(node);
        if (!child.dag)
            throw Error(child.name + " is not a DAG node.");
        Node& parent = newParent.isNull() ? dag::world() : sceneNode(newParent);
        if (!parent.dag)
            throw Error(parent.name + " is not a DAG node.");
        dag::reparent(child, nullptr, parent);
    });
}

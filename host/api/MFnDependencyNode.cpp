#include <maya/MFnDependencyNode.h>

#include <algorithm>

#include <maya/MObjectArray.h>
#include <maya/MPlugArray.h>
#include <maya/MStringArray.h>
#include <maya/MUuid.h>

#include "api/api.h"
#include "dag/dag.h"
#include "graph/edit.h"
#include "graph/scene.h"

using namespace mirk;

MFnDependencyNode::MFnDependencyNode(const MObject& object, MStatus* s)
{
    const MStatus status = MFnBase::setObject(object);
    // the constructor of a base class cannot ask the derived one whether it can work on the object
    report(s, status && objectAs<Node>(object) ? MS::kSuccess : MS::kInvalidParameter);
}

MFn::Type MFnDependencyNode::type() const { return MFn::kDependencyNode; }

mirk::Node* MFnDependencyNode::node() const { return objectAs<Node>(object_); }

namespace {

NodeType* typeOf(const MTypeId& id) { return findNodeType(id.id()); }
NodeType* typeOf(const MString& name) { return findNodeType(std::string(name.asChar())); }

template <class T, class F>
T asked(Node* node, MStatus* s, T otherwise, F value)
{
    return node ? reported(s, MS::kSuccess, T(value(*node))) : reported(s, MS::kFailure, otherwise);
}

Attribute* owned(Node* node, const MObject& attr)
{
    auto* a = objectAs<Attribute>(attr);
    return node && node->owns(a) ? a : nullptr;
}

MPlug plugOf(Node& node, Attribute* a)
{
    if (Cell* c = node.cell(a))
        return PlugAccess::make(*c);
    return MPlug(wrap(&node), wrap(a));   // below a multi: the indices are still open
}

}  // namespace

namespace mirk::api {

Node* create(NodeType* type, const MString& name, Node* parent, MStatus* s)
{
    Node*         made = nullptr;
    const MStatus status = guarded([&] {
        if (!type)
            throw command::Error("Unknown node type.");
        made = dag::createNode(type, name.asChar(), parent);
    });
    return reported(s, status.statusCode(), made);
}

}  // namespace mirk::api

MObject MFnDependencyNode::create(const MTypeId& typeId, MStatus* s) { return create(typeId, MString(), s); }
MObject MFnDependencyNode::create(const MString& type, MStatus* s) { return create(type, MString(), s); }

MObject MFnDependencyNode::create(const MTypeId& typeId, const MString& name, MStatus* s)
{
    return object_ = wrap(api::create(typeOf(typeId), name, nullptr, s));
}

MObject MFnDependencyNode::create(const MString& type, const MString& name, MStatus* s)
{
    return object_ = wrap(api::create(typeOf(type), name, nullptr, s));
}

MTypeId MFnDependencyNode::typeId(MStatus* s) const
{
    return asked(node(), s, MTypeId(), [](Node& n) { return MTypeId(n.type->id); });
}

MString MFnDependencyNode::typeName(MStatus* s) const
{
    return asked(node(), s, MString(), [](Node& n) { return MString(n.type->name.c_str()); });
}

MString MFnDependencyNode::name(MStatus* s) const
{
    return asked(node(), s, MString(), [](Node& n) { return MString(n.name.c_str()); });
}

MString MFnDependencyNode::absoluteName(MStatus* s) const
{
    return asked(node(), s, MString(), [](Node& n) { return MString((":" + n.name).c_str()); });
}

MString MFnDependencyNode::setName(const MString& newName, bool, MStatus* s)
{
    Node* n = node();
    if (!n)
        return reported(s, MS::kFailure, MString());
    const MStatus status = api::guarded([&] { dag::renameNode(*n, newName.asChar()); });
    return reported(s, status.statusCode(), MString(n->name.c_str()));
}

bool MFnDependencyNode::hasUniqueName(MStatus* s) const
{
    return asked(node(), s, false, [](Node& n) { return scene().named(n.name).size() == 1; });
}

MString MFnDependencyNode::parentNamespace(MStatus* s) const
{
    return asked(node(), s, MString(), [](Node& n) {
        const size_t colon = n.name.rfind(':');
        return MString(colon == std::string::npos ? "" : n.name.substr(0, colon).c_str());
    });
}

MString MFnDependencyNode::pluginName(MStatus* s) const
{
    return asked(node(), s, MString(), [](Node& n) { return MString(n.type->plugin.c_str()); });
}

MPxNode* MFnDependencyNode::userNode(MStatus* s) const
{
    // a host type's helper object is not a user's
    return asked(node(), s, static_cast<MPxNode*>(nullptr), [](Node& n) { return n.type->plugin.empty() ? nullptr : n.user.get(); });
}

MUuid MFnDependencyNode::uuid(MStatus* s) const
{
    return asked(node(), s, MUuid(), [](Node& n) {
        if (n.uuid.empty()) {
            MUuid fresh;
            fresh.generate();
            n.uuid = fresh.asString().asChar();
        }
        return MUuid(MString(n.uuid.c_str()));
    });
}

MString MFnDependencyNode::classification(const MString& nodeTypeName)
{
    const NodeType* type = typeOf(nodeTypeName);
    return type ? MString(type->classification.c_str()) : MString();
}

bool MFnDependencyNode::isDefaultNode(MStatus* s) const
{
    return asked(node(), s, false, [](Node& n) { return n.isDefault; });
}

bool MFnDependencyNode::isFromReferencedFile(MStatus* s) const
{
    return asked(node(), s, false, [](Node& n) { return n.referenced; });
}

bool MFnDependencyNode::isShared(MStatus* s) const { return isDefaultNode(s); }

bool MFnDependencyNode::isLocked(MStatus* s) const
{
    return asked(node(), s, false, [](Node& n) { return n.locked; });
}

MStatus MFnDependencyNode::setLocked(bool locked)
{
    Node* n = node();
    if (!n)
        return MS::kFailure;
    n->locked = locked;
    return MS::kSuccess;
}

MStatus MFnDependencyNode::getConnections(MPlugArray& array) const
{
    array.clear();
    Node* n = node();
    if (!n)
        return MS::kFailure;
    for (size_t slot = 0; slot < n->cells.size(); ++slot)
        if (Cell* top = n->cells[slot]; top && !top->parent)
            walkCells(*top, [&](Cell& c) {
                if (c.source || c.hasTargets())
                    array.append(PlugAccess::make(c));
            });
    return MS::kSuccess;
}

unsigned MFnDependencyNode::attributeCount(MStatus* s) const
{
    return asked(node(), s, 0u, [](Node& n) {
        unsigned count = 0;
        n.eachAttribute([&](Attribute&) { ++count; });
        return count;
    });
}

MObject MFnDependencyNode::attribute(unsigned index, MStatus* s) const
{
    Node*      n = node();
    Attribute* found = nullptr;
    unsigned   i = 0;
    if (n)
        n->eachAttribute([&](Attribute& a) {
            if (i++ == index)
                found = &a;
        });
    return reported(s, found ? MS::kSuccess : n ? MS::kInvalidParameter : MS::kFailure, wrap(found));
}

MObject MFnDependencyNode::reorderedAttribute(unsigned index, MStatus* s) const { return attribute(index, s); }

MObject MFnDependencyNode::attribute(const MString& attrName, MStatus* s) const
{
    Node*      n = node();
    Attribute* found = n ? n->findAttribute(attrName.asChar()) : nullptr;
    return reported(s, found ? MS::kSuccess : MS::kInvalidParameter, wrap(found));
}

MFnDependencyNode::MAttrClass MFnDependencyNode::attributeClass(const MObject& attr, MStatus* s) const
{
    const Attribute* a = owned(node(), attr);
    return reported(s, a ? MS::kSuccess : MS::kInvalidParameter,
                    !a ? kInvalidAttr : a->is(Attribute::kDynamic) ? kLocalDynamicAttr : kNormalAttr);
}

namespace {

/// What a compound affects or is affected by holds for its children too.
bool reaches(const NodeType& type, const Attribute* from, const Attribute* to)
{
    for (const Attribute* f = from; f; f = f->parent) {
        if (f->slot < 0 || size_t(f->slot) >= type.affects.size())
            continue;
        const std::vector<int>& slots = type.affects[size_t(f->slot)];
        for (const Attribute* t = to; t; t = t->parent)
            if (std::count(slots.begin(), slots.end(), t->slot))
                return true;
    }
    return false;
}

}  // namespace

MStatus MFnDependencyNode::getAffectedAttributes(const MObject& attr, MObjectArray& affected) const
{
    affected.clear();
    const Attribute* a = owned(node(), attr);
    if (!a)
        return MS::kInvalidParameter;
    const NodeType& type = *node()->type;
    for (size_t i = 0; i < type.table.size(); ++i)
        if (reaches(type, a, type.table[i].get()))
            affected.append(wrap(type.table[i]));
    return MS::kSuccess;
}

MStatus MFnDependencyNode::getAffectedByAttributes(const MObject& attr, MObjectArray& affectedBy) const
{
    affectedBy.clear();
    const Attribute* a = owned(node(), attr);
    if (!a)
        return MS::kInvalidParameter;
    const NodeType& type = *node()->type;
    for (size_t i = 0; i < type.table.size(); ++i)
        if (reaches(type, type.table[i].get(), a))
            affectedBy.append(wrap(type.table[i]));
    return MS::kSuccess;
}

bool MFnDependencyNode::hasAttribute(const MString& name, MStatus* s) const
{
    return asked(node(), s, false, [&](Node& n) { return n.findAttribute(name.asChar()) != nullptr; });
}

MStatus MFnDependencyNode::addAttribute(const MObject& attr)
{
    Node* n = node();
    auto* a = objectAs<Attribute>(attr);
    if (!n || !a)
        return MS::kInvalidParameter;
    if (a->slot >= 0 || a->parent)
        return MS::kFailure;   // stands on a node already
    return api::guarded([&] { edit::addDynamic(*n, Ref<Attribute>(a)); });
}

MStatus MFnDependencyNode::removeAttribute(const MObject& attr)
{
    Attribute* a = owned(node(), attr);
    if (!a)
        return MS::kInvalidParameter;
    return api::guarded([&] { edit::deleteDynamic(*node(), *a); });
}

MPlug MFnDependencyNode::findPlug(const MString& attrName, bool, MStatus* s) const
{
    Node* n = node();
    if (!n)
        return reported(s, MS::kFailure, MPlug());
    const std::string name = attrName.asChar();
    if (Attribute* a = n->findAttribute(name))
        return reported(s, MS::kSuccess, plugOf(*n, a));
    Cell* c = findCell(*n, name);   // aliases, and names with indices
    return c ? reported(s, MS::kSuccess, PlugAccess::make(*c)) : reported(s, MS::kInvalidParameter, MPlug());
}

MPlug MFnDependencyNode::findPlug(const MObject& attr, bool, MStatus* s) const
{
    Attribute* a = owned(node(), attr);
    return a ? reported(s, MS::kSuccess, plugOf(*node(), a)) : reported(s, MS::kInvalidParameter, MPlug());
}

MPlug MFnDependencyNode::findPlug(const MString& attrName, MStatus* s) const { return findPlug(attrName, true, s); }
MPlug MFnDependencyNode::findPlug(const MObject& attr, MStatus* s) const { return findPlug(attr, true, s); }

bool MFnDependencyNode::setAlias(const MString& alias, const MString& name, const MPlug& plug, bool add, MStatus* s)
{
    Node* n = node();
    Cell* cell = PlugAccess::cell(plug);
    if (!n || !cell || cell->node != n || findCell(*n, name.asChar(), false) != cell)
        return reported(s, MS::kInvalidParameter, false);
    const MStatus status = api::guarded([&] { edit::setAlias(*n, plugPath(*cell), add ? alias.asChar() : ""); });
    return reported(s, status.statusCode(), bool(status));
}

bool MFnDependencyNode::findAlias(const MString& alias, MObject& attrObj, MStatus* s) const
{
    Node* n = node();
    if (!n)
        return reported(s, MS::kFailure, false);
    for (const auto& [a, path] : n->aliases)
        if (a == alias.asChar())
            if (Cell* c = findCell(*n, path)) {
                attrObj = wrap(const_cast<Attribute*>(c->attr));
                return reported(s, MS::kSuccess, true);
            }
    return reported(s, MS::kSuccess, false);
}

MString MFnDependencyNode::plugsAlias(const MPlug& plug, MStatus* s)
{
    Node* n = node();
    Cell* cell = PlugAccess::cell(plug);
    if (!n || !cell || cell->node != n)
        return reported(s, MS::kInvalidParameter, MString());
    const std::string path = plugPath(*cell);
    for (const auto& [alias, p] : n->aliases)
        if (p == path)
            return reported(s, MS::kSuccess, MString(alias.c_str()));
    return reported(s, MS::kSuccess, MString());
}

bool MFnDependencyNode::getAliasList(MStringArray& strArray, MStatus* s)
{
    strArray.clear();
    Node* n = node();
    if (!n)
        return reported(s, MS::kFailure, false);
    for (const auto& [alias, path] : n->aliases) {
        strArray.append(alias.c_str());
        strArray.append(path.c_str());
    }
    return reported(s, MS::kSuccess, !n->aliases.empty());
}

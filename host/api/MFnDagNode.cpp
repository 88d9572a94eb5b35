#include <maya/MFnDagNode.h>

#include <algorithm>

#include <maya/MBoundingBox.h>
#include <maya/MDagPathArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include "api/api.h"
#include "dag/copy.h"
#include "dag/dag.h"
#include "dag/path_access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"

using namespace mirk;

MFnDagNode::MFnDagNode(const MObject& object, MStatus* s) { report(s, MFnDagNode::setObject(object).statusCode()); }
MFnDagNode::MFnDagNode(const MDagPath& object, MStatus* s) { report(s, MFnDagNode::setObject(object).statusCode()); }
MFn::Type MFnDagNode::type() const { return MFn::kDagNode; }

MStatus MFnDagNode::setObject(MObject& object) { return setObject(static_cast<const MObject&>(object)); }

MStatus MFnDagNode::setObject(const MObject& object)
{
    const Node* node = objectAs<Node>(object);
    if (!node || !node->dag)
        return MS::kInvalidParameter;
    path_ = MDagPath();
    return MFnBase::setObject(object);
}

MStatus MFnDagNode::setObject(const MDagPath& path)
{
    const MStatus status = MFnDagNode::setObject(path.node());
    if (status)
        path_ = path;
    return status;
}

namespace {

NodeType* typeOf(const MTypeId& id) { return findNodeType(id.id()); }
NodeType* typeOf(const MString& name) { return findNodeType(std::string(name.asChar())); }

/// What a create call returns: of a shape that got a transform of its own that transform.
Node* createDag(NodeType* type, const MString& name, const MObject& parent, MStatus* s)
{
    Node* above = objectAs<Node>(parent);
    if (!type || !type->dag || (!parent.isNull() && !above))
        return reported(s, MS::kInvalidParameter, static_cast<Node*>(nullptr));
    Node* made = api::create(type, name, above == &dag::world() ? nullptr : above, s);
    return made && type->shape && !above ? made->dag->parents.front() : made;
}

/// A DAG node in the scene, or null.
Node* dagNode(const MObject& object)
{
    Node* n = objectAs<Node>(object);
    return n && n->dag ? n : nullptr;
}

bool isAbove(const Node& top, const Node& node)
{
    return std::any_of(node.dag->parents.begin(), node.dag->parents.end(),
                       [&](const Node* p) { return p == &top || isAbove(top, *p); });
}

template <class T, class F>
T asked(const MObject& object, MStatus* s, T otherwise, F value)
{
    Node* n = dagNode(object);
    return n ? reported(s, MS::kSuccess, T(value(*n))) : reported(s, MS::kFailure, otherwise);
}

}  // namespace

MObject MFnDagNode::create(const MTypeId& id, MObject& parent, MStatus* s) { return object_ = wrap(createDag(typeOf(id), MString(), parent, s)); }
MObject MFnDagNode::create(const MTypeId& id, const MString& name, MObject& parent, MStatus* s) { return object_ = wrap(createDag(typeOf(id), name, parent, s)); }
MObject MFnDagNode::create(const MString& type, MObject& parent, MStatus* s) { return object_ = wrap(createDag(typeOf(type), MString(), parent, s)); }
MObject MFnDagNode::create(const MString& type, const MString& name, MObject& parent, MStatus* s)
{
    return object_ = wrap(createDag(typeOf(type), name, parent, s));
}

unsigned MFnDagNode::parentCount(MStatus* s) const
{
    return asked(object_, s, 0u, [](Node& n) { return unsigned(n.dag->parents.size()); });
}

MObject MFnDagNode::parent(unsigned index, MStatus* s) const
{
    const Node* n = dagNode(object_);
    const bool  ok = n && index < n->dag->parents.size();
    return reported(s, ok ? MS::kSuccess : MS::kInvalidParameter, ok ? wrap(n->dag->parents[index]) : MObject());
}

MStatus MFnDagNode::addChild(MObject& child, unsigned index, bool keepExistingParents)
{
    Node *n = dagNode(object_), *c = dagNode(child);
    if (!n || !c || n->type->shape)
        return MS::kInvalidParameter;
    return api::guarded([&] {
        if (keepExistingParents)
            dag::addInstance(*c, *n);
        else
            dag::reparent(*c, nullptr, *n);
        if (index != kNextPos)
            dag::reorder(*c, *n, index);
    });
}

MStatus MFnDagNode::removeChild(MObject& child)
{
    Node *n = dagNode(object_), *c = dagNode(child);
    if (!n || !c)
        return MS::kInvalidParameter;
    return api::guarded([&] {
        if (c->dag->parents.size() > 1 || c->type->shape)
            dag::removeInstance(*c, *n);
        else
            dag::reparent(*c, n, dag::world());
    });
}

MStatus MFnDagNode::removeChildAt(unsigned index)
{
    MObject c = child(index);
    return c.isNull() ? MS::kInvalidParameter : removeChild(c);
}

unsigned MFnDagNode::childCount(MStatus* s) const
{
    return asked(object_, s, 0u, [](Node& n) { return unsigned(n.dag->children.size()); });
}

MObject MFnDagNode::child(unsigned index, MStatus* s) const
{
    const Node* n = dagNode(object_);
    const bool  ok = n && index < n->dag->children.size();
    return reported(s, ok ? MS::kSuccess : MS::kInvalidParameter, ok ? wrap(n->dag->children[index]) : MObject());
}

MObject MFnDagNode::dagRoot(MStatus* s) const { return reported(s, MS::kSuccess, wrap(&dag::world())); }

bool MFnDagNode::hasParent(const MObject& node, MStatus* s) const
{
    return asked(object_, s, false, [&](Node& n) {
        const auto& p = n.dag->parents;
        return std::find(p.begin(), p.end(), objectAs<Node>(node)) != p.end();
    });
}

bool MFnDagNode::hasChild(const MObject& node, MStatus* s) const
{
    return asked(object_, s, false, [&](Node& n) {
        const auto& c = n.dag->children;
        return std::find(c.begin(), c.end(), objectAs<Node>(node)) != c.end();
    });
}

bool MFnDagNode::isChildOf(const MObject& node, MStatus* s) const
{
    return asked(object_, s, false, [&](Node& n) { return dagNode(node) && isAbove(*dagNode(node), n); });
}

bool MFnDagNode::isParentOf(const MObject& node, MStatus* s) const
{
    return asked(object_, s, false, [&](Node& n) { return dagNode(node) && isAbove(n, *dagNode(node)); });
}

bool MFnDagNode::isInstanced(bool indirect, MStatus* s) const
{
    return asked(object_, s, false, [&](Node& n) { return indirect ? dag::isInstanced(n) : n.dag->parents.size() > 1; });
}

bool MFnDagNode::isInstancedAttribute(const MObject& attr, MStatus* s) const
{
    const auto* a = objectAs<Attribute>(attr);
    return reported(s, a ? MS::kSuccess : MS::kInvalidParameter, a && a->is(Attribute::kWorldSpace));
}

unsigned MFnDagNode::instanceCount(bool total, MStatus* s) const
{
    return asked(object_, s, 0u, [&](Node& n) { return unsigned(total ? dag::allPaths(n).size() : n.dag->parents.size()); });
}

MObject MFnDagNode::duplicate(bool instance, bool instanceLeaf, MStatus* s) const
{
    Node* n = dagNode(object_);
    if (!n || n == &dag::world())
        return reported(s, MS::kFailure, MObject());
    Node*         made = nullptr;
    const MStatus status = api::guarded([&] { made = dag::duplicate(*n, {instance, instanceLeaf}); });
    return reported(s, status.statusCode(), wrap(made));
}

MDagPath MFnDagNode::dagPath(MStatus* s) const
{
    // without a path the function set would have to choose among instances
    if (!path_.isValid() && dagNode(object_) && !dag::isInstanced(*dagNode(object_)))
        return MDagPath::getAPathTo(object_, s);
    return reported(s, path_.isValid() ? MS::kSuccess : MS::kFailure, path_);
}

MStatus MFnDagNode::getPath(MDagPath& path)
{
    if (path_.isValid()) {
        path = path_;
        return MS::kSuccess;
    }
    return MDagPath::getAPathTo(object_, path);
}

MStatus MFnDagNode::getAllPaths(MDagPathArray& paths) { return MDagPath::getAllPathsTo(object_, paths); }

MString MFnDagNode::fullPathName(MStatus* s) const
{
    MDagPath      path;
    const MStatus status = const_cast<MFnDagNode*>(this)->getPath(path);
    report(s, status.statusCode());
    return status ? path.fullPathName() : MString();
}

MString MFnDagNode::partialPathName(MStatus* s) const
{
    MDagPath      path;
    const MStatus status = const_cast<MFnDagNode*>(this)->getPath(path);
    report(s, status.statusCode());
    return status ? path.partialPathName() : MString();
}

MMatrix MFnDagNode::transformationMatrix(MStatus* s) const
{
    return asked(object_, s, MMatrix(), [](Node& n) {
        Cell* cell = n.cell(n.type->find("matrix"));
        if (!cell)
            return MMatrix();
        eval::pull(*cell);
        MMatrix m;
        std::copy(cell->own.matrix, cell->own.matrix + 16, &m.matrix[0][0]);
        return m;
    });
}

bool MFnDagNode::isIntermediateObject(MStatus* s) const
{
    return asked(object_, s, false, [](Node& n) {
        Cell* cell = n.cell(n.type->find("intermediateObject"));
        return cell && (eval::pull(*cell), cell->number() != 0);
    });
}

MStatus MFnDagNode::setIntermediateObject(bool isIntermediate)
{
    Node* n = dagNode(object_);
    Cell* cell = n ? n->cell(n->type->find("intermediateObject")) : nullptr;
    if (!cell)
        return MS::kFailure;
    return api::guarded([&] { edit::setNumber(*cell, isIntermediate); });
}

MBoundingBox MFnDagNode::boundingBox(MStatus* s) const
{
    return asked(object_, s, MBoundingBox(), [](Node& n) {
        Cell *low = n.cell(n.type->find("boundingBoxMin")), *high = n.cell(n.type->find("boundingBoxMax"));
        if (!low || !high)
            return MBoundingBox();
        eval::pull(*low);
        eval::pull(*high);
        return MBoundingBox(MPoint(low->number(0), low->number(1), low->number(2)), MPoint(high->number(0), high->number(1), high->number(2)));
    });
}

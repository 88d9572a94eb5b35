#include <maya/MDagPath.h>

#include <maya/MDagPathArray.h>
#include <maya/MMatrix.h>

#include "dag/dag.h"
#include "dag/path_access.h"
#include "data/fn_base.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace mirk {

Path PathAccess::unwrap(const MDagPath& path)
{
    Path p;
    for (const MObject& o : path.nodes_)
        p.nodes.emplace_back(objectAs<Node>(o));
    if (p.nodes.empty() || p.valid())
        return p;
    p = dag::refreshed(p);
    path.nodes_.clear();
    for (const auto& n : p.nodes)
        path.nodes_.push_back(mirk::wrap(n));
    return p;
}

MDagPath PathAccess::wrap(const Path& path)
{
    MDagPath p;
    for (const auto& n : path.nodes)
        p.nodes_.push_back(mirk::wrap(n));
    return p;
}

MDagPath PathAccess::world()
{
    MDagPath p;
    p.world_ = true;
    return p;
}

MObject PathAccess::node(const MDagPath& path) { return path.node(); }

void PathAccess::inclusiveMatrix(const MDagPath& path, double matrix[4][4]) { dag::inclusiveMatrix(unwrap(path), matrix); }

}  // namespace mirk

namespace {

bool boolOf(Node& node, const char* name, bool otherwise)
{
    Attribute* a = node.type->find(name);
    Cell*      c = node.cell(a);
    if (!c)
        return otherwise;
    eval::pull(*c);
    return c->number() != 0;
}

std::vector<Node*> shapesBelow(const Path& path)
{
    std::vector<Node*> shapes;
    if (Node* n = path.node())
        for (Node* c : n->dag->children)
            if (c->type->shape)
                shapes.push_back(c);
    return shapes;
}

MMatrix inverted(const MMatrix& m) { return m.inverse(); }

}  // namespace

MStatus MDagPath::getAPathTo(const MObject& object, MDagPath& path)
{
    Node* node = objectAs<Node>(object);
    if (!node || !node->dag || !node->inScene)
        return MS::kInvalidParameter;
    path = node == &dag::world() ? PathAccess::world() : PathAccess::wrap(dag::firstPath(*node));
    return MS::kSuccess;
}

MDagPath MDagPath::getAPathTo(const MObject& object, MStatus* s)
{
    MDagPath      path;
    const MStatus status = getAPathTo(object, path);
    return reported(s, status.statusCode(), path);
}

MStatus MDagPath::getAllPathsTo(const MObject& object, MDagPathArray& outPaths)
{
    outPaths.clear();
    Node* node = objectAs<Node>(object);
    if (!node || !node->dag || !node->inScene)
        return MS::kInvalidParameter;
    for (const Path& p : dag::allPaths(*node))
        outPaths.append(PathAccess::wrap(p));
    return MS::kSuccess;
}

bool MDagPath::isValid(MStatus* s) const
{
    report(s, MS::kSuccess);
    return world_ || PathAccess::unwrap(*this).valid();
}

MObject MDagPath::node(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    if (path.node() || world_)
        return reported(s, MS::kSuccess, wrap(path.node() ? path.node() : &dag::world()));
    return reported(s, MS::kFailure, MObject());
}

MObject MDagPath::transform(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    for (auto n = path.nodes.rbegin(); n != path.nodes.rend(); ++n)
        if ((*n)->hasFn(MFn::kTransform))
            return reported(s, MS::kSuccess, wrap(*n));
    return reported(s, MS::kFailure, MObject());
}

MFn::Type MDagPath::apiType(MStatus* s) const
{
    const MObject n = node(s);
    return n.isNull() ? MFn::kInvalid : n.apiType();
}

bool MDagPath::hasFn(MFn::Type type, MStatus* s) const
{
    const MObject n = node(s);
    return !n.isNull() && n.hasFn(type);
}

unsigned MDagPath::length(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    return reported(s, path.nodes.empty() && !world_ ? MS::kFailure : MS::kSuccess, unsigned(path.nodes.size()));
}

unsigned MDagPath::pathCount(MStatus* s) const { return reported(s, isValid() ? MS::kSuccess : MS::kFailure, isValid() ? 1u : 0u); }

MStatus MDagPath::pop(unsigned num)
{
    Path path = PathAccess::unwrap(*this);
    if (path.nodes.empty() || num > path.nodes.size())
        return MS::kFailure;
    nodes_.resize(path.nodes.size() - num);
    world_ = nodes_.empty();
    return MS::kSuccess;
}

MStatus MDagPath::push(const MObject& child)
{
    Node*      node = objectAs<Node>(child);
    const Path path = PathAccess::unwrap(*this);
    Node*      end = path.node() ? path.node() : world_ ? &dag::world() : nullptr;
    if (!node || !node->dag || !end || std::count(end->dag->children.begin(), end->dag->children.end(), node) == 0)
        return MS::kInvalidParameter;
    nodes_.push_back(child);
    world_ = false;
    return MS::kSuccess;
}

MStatus MDagPath::extendToShape()
{
    const Path path = PathAccess::unwrap(*this);
    if (!path.node())
        return MS::kFailure;
    if (path.node()->type->shape)
        return MS::kSuccess;
    std::vector<Node*> shapes = shapesBelow(path);
    if (shapes.size() > 1)   // history's shapes do not count
        shapes.erase(std::remove_if(shapes.begin(), shapes.end(), [](Node* n) { return boolOf(*n, "intermediateObject", false); }), shapes.end());
    if (shapes.size() != 1)
        return MS::kFailure;
    nodes_.push_back(wrap(shapes.front()));
    return MS::kSuccess;
}

MStatus MDagPath::extendToShapeDirectlyBelow(unsigned shapeNum)
{
    const std::vector<Node*> shapes = shapesBelow(PathAccess::unwrap(*this));
    if (shapeNum >= shapes.size())
        return MS::kInvalidParameter;
    nodes_.push_back(wrap(shapes[shapeNum]));
    return MS::kSuccess;
}

MStatus MDagPath::numberOfShapesDirectlyBelow(unsigned& num) const
{
    num = unsigned(shapesBelow(PathAccess::unwrap(*this)).size());
    return isValid() ? MS::kSuccess : MS::kFailure;
}

unsigned MDagPath::childCount(MStatus* s) const
{
    const Node* n = objectAs<Node>(node(s));
    return n ? unsigned(n->dag->children.size()) : 0;
}

MObject MDagPath::child(unsigned index, MStatus* s) const
{
    const Node* n = objectAs<Node>(node(s));
    if (!n)
        return MObject();
    if (index >= n->dag->children.size())
        return reported(s, MS::kInvalidParameter, MObject());
    return wrap(n->dag->children[index]);
}

MStatus MDagPath::getPath(MDagPath& path, unsigned index) const
{
    if (index > 0 || !isValid())
        return MS::kInvalidParameter;
    path = *this;
    return MS::kSuccess;
}

MStatus MDagPath::set(const MDagPath& source)
{
    *this = source;
    return MS::kSuccess;
}

MMatrix MDagPath::inclusiveMatrix(MStatus* s) const
{
    MMatrix    m;
    const Path path = PathAccess::unwrap(*this);
    if (path.node())
        dag::inclusiveMatrix(path, m.matrix);
    return reported(s, path.node() || world_ ? MS::kSuccess : MS::kFailure, m);
}

MMatrix MDagPath::exclusiveMatrix(MStatus* s) const
{
    MMatrix    m;
    const Path path = PathAccess::unwrap(*this);
    if (path.node())
        dag::exclusiveMatrix(path, m.matrix);
    return reported(s, path.node() || world_ ? MS::kSuccess : MS::kFailure, m);
}

MMatrix MDagPath::inclusiveMatrixInverse(MStatus* s) const { return inverted(inclusiveMatrix(s)); }
MMatrix MDagPath::exclusiveMatrixInverse(MStatus* s) const { return inverted(exclusiveMatrix(s)); }

MString MDagPath::fullPathName(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    return reported(s, path.node() || world_ ? MS::kSuccess : MS::kFailure, MString(dag::fullName(path).c_str()));
}

MString MDagPath::partialPathName(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    return reported(s, path.node() || world_ ? MS::kSuccess : MS::kFailure, MString(dag::partialName(path).c_str()));
}

unsigned MDagPath::instanceNumber(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    return reported(s, path.node() ? MS::kSuccess : MS::kFailure, dag::instanceNumber(path));
}

bool MDagPath::isInstanced(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    return reported(s, path.node() ? MS::kSuccess : MS::kFailure, path.node() && dag::isInstanced(*path.node()));
}

bool MDagPath::isVisible(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    bool       visible = path.node() != nullptr && !boolOf(*path.node(), "intermediateObject", false);
    for (const auto& n : path.nodes)
        visible = visible && boolOf(*n, "visibility", true) && boolOf(*n, "lodVisibility", true) &&
                  !(boolOf(*n, "overrideEnabled", false) && !boolOf(*n, "overrideVisibility", true));
    return reported(s, path.node() ? MS::kSuccess : MS::kFailure, visible);
}

bool MDagPath::isTemplated(MStatus* s) const
{
    const Path path = PathAccess::unwrap(*this);
    bool       templated = false;
    for (const auto& n : path.nodes)
        templated = templated || boolOf(*n, "template", false);
    return reported(s, path.node() ? MS::kSuccess : MS::kFailure, templated);
}

bool MDagPath::operator==(const MDagPath& other) const
{
    return world_ == other.world_ && PathAccess::unwrap(*this) == PathAccess::unwrap(other);
}

// ---- arrays ------------------------------------------------------------------------------------------------------

MStatus MDagPathArray::insert(const MDagPath& path, unsigned index)
{
    if (index > paths_.size())
        return MS::kInvalidParameter;
    paths_.insert(paths_.begin() + index, path);
    return MS::kSuccess;
}

MStatus MDagPathArray::remove(unsigned index)
{
    if (index >= paths_.size())
        return MS::kInvalidParameter;
    paths_.erase(paths_.begin() + index);
    return MS::kSuccess;
}

MStatus MDagPathArray::set(const MDagPath& path, unsigned index)
{
    if (index >= paths_.size())
        return MS::kInvalidParameter;
    paths_[index] = path;
    return MS::kSuccess;
}

MDagPath& MDagPathArray::operator[](unsigned index)
{
    static thread_local MDagPath lost;
    return index < paths_.size() ? paths_[index] : (lost = MDagPath());
}

const MDagPath& MDagPathArray::operator[](unsigned index) const
{
    static const MDagPath outside;
    return index < paths_.size() ? paths_[index] : outside;
}

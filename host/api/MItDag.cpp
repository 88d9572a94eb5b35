#include <maya/MItDag.h>

#include <deque>

#include <maya/MDagPathArray.h>
#include <maya/MItDependencyNodes.h>

#include "api/api.h"
#include "dag/dag.h"
#include "dag/path_access.h"
#include "graph/scene.h"

using namespace mirk;

namespace mirk {

/// The paths still to be visited; the first one is the current. Children are added when the walk goes on.
struct DagWalk
{
    std::deque<Path>      open;      // an empty path is the world
    Path                  root;
    MItDag::TraversalType order = MItDag::kDepthFirst;
    MFn::Type             filter = MFn::kInvalid;
    bool                  pruned = false;

    Node& node() const { return open.front().node() ? *open.front().node() : dag::world(); }
    bool  fits() const { return filter == MFn::kInvalid || node().hasFn(filter); }

    void step()
    {
        const Path at = open.front();
        Node&      n = node();
        open.pop_front();
        if (!std::exchange(pruned, false) && (at.nodes.empty() || at.valid())) {
            std::vector<Path> below;
            for (Node* c : n.dag->children) {
                below.push_back(at);
                below.back().nodes.emplace_back(c);
            }
            open.insert(order == MItDag::kBreadthFirst ? open.end() : open.begin(), below.begin(), below.end());
        }
        while (!open.empty() && !open.front().nodes.empty() && !open.front().valid())
            open.pop_front();   // deleted on the way
    }
    void toFitting()
    {
        while (!open.empty() && !fits())
            step();
    }
    void start(const Path& from, MItDag::TraversalType o, MFn::Type f)
    {
        root = from;
        order = o == MItDag::kBreadthFirst ? o : MItDag::kDepthFirst;
        filter = f;
        pruned = false;
        open = {from};
        toFitting();
    }
};

}  // namespace mirk

MItDag::MItDag(TraversalType order, MFn::Type filter, MStatus* s) : walk_(new DagWalk)
{
    walk_->start({}, order, filter);
    report(s, MS::kSuccess);
}

MItDag::~MItDag() { delete walk_; }

MStatus MItDag::reset()
{
    walk_->start(walk_->root, walk_->order, walk_->filter);
    return MS::kSuccess;
}

MStatus MItDag::reset(const MObject& object, TraversalType order, MFn::Type filter)
{
    Node* n = objectAs<Node>(object);
    if (!n || !n->dag)
        return MS::kInvalidParameter;
    walk_->start(dag::firstPath(*n), order, filter);
    return MS::kSuccess;
}

MStatus MItDag::reset(const MDagPath& path, TraversalType order, MFn::Type filter)
{
    if (!path.isValid())
        return MS::kInvalidParameter;
    walk_->start(PathAccess::unwrap(path), order, filter);
    return MS::kSuccess;
}

MStatus MItDag::next()
{
    if (walk_->open.empty())
        return MS::kFailure;
    walk_->step();
    walk_->toFitting();
    return MS::kSuccess;
}

MStatus MItDag::prune()
{
    walk_->pruned = true;
    return walk_->open.empty() ? MS::kFailure : MS::kSuccess;
}

bool MItDag::isDone(MStatus* s) const { return reported(s, MS::kSuccess, walk_->open.empty()); }

MObject MItDag::currentItem(MStatus* s) const
{
    return walk_->open.empty() ? reported(s, MS::kFailure, MObject()) : reported(s, MS::kSuccess, wrap(&walk_->node()));
}

MObject MItDag::root(MStatus* s) const
{
    return reported(s, MS::kSuccess, wrap(walk_->root.node() ? walk_->root.node() : &dag::world()));
}

MItDag::TraversalType MItDag::getType(MStatus* s) const { return reported(s, MS::kSuccess, walk_->order); }

unsigned MItDag::depth(MStatus* s) const
{
    const bool done = walk_->open.empty();
    return reported(s, done ? MS::kFailure : MS::kSuccess, done ? 0u : unsigned(walk_->open.front().nodes.size() - walk_->root.nodes.size()));
}

MStatus MItDag::getPath(MDagPath& path) const
{
    if (walk_->open.empty())
        return MS::kFailure;
    path = walk_->open.front().nodes.empty() ? PathAccess::world() : PathAccess::wrap(walk_->open.front());
    return MS::kSuccess;
}

MString MItDag::fullPathName(MStatus* s) const
{
    MDagPath      path;
    const MStatus status = getPath(path);
    report(s, status.statusCode());
    return status ? path.fullPathName() : MString();
}

MString MItDag::partialPathName(MStatus* s) const
{
    MDagPath      path;
    const MStatus status = getPath(path);
    report(s, status.statusCode());
    return status ? path.partialPathName() : MString();
}

MStatus MItDag::getAllPaths(MDagPathArray& paths) const { return MDagPath::getAllPathsTo(currentItem(), paths); }

bool MItDag::isInstanced(bool indirect, MStatus* s) const
{
    if (walk_->open.empty())
        return reported(s, MS::kFailure, false);
    Node& n = walk_->node();
    return reported(s, MS::kSuccess, indirect ? dag::isInstanced(n) : n.dag->parents.size() > 1);
}

unsigned MItDag::instanceCount(bool total, MStatus* s) const
{
    if (walk_->open.empty())
        return reported(s, MS::kFailure, 0u);
    Node& n = walk_->node();
    return reported(s, MS::kSuccess, unsigned(total ? dag::allPaths(n).size() : n.dag->parents.size()));
}

// ---- all nodes ---------------------------------------------------------------------------------------------------

MItDependencyNodes::MItDependencyNodes(MFn::Type filter, MStatus* s) { report(s, reset(filter).statusCode()); }

MStatus MItDependencyNodes::reset(MFn::Type filter)
{
    nodes_.clear();
    at_ = 0;
    for (Node* n : scene().nodes())
        if (filter == MFn::kInvalid || n->hasFn(filter))
            nodes_.push_back(wrap(n));
    return MS::kSuccess;
}

void MItDependencyNodes::skipDeleted()
{
    while (at_ < nodes_.size() && !objectAs<Node>(nodes_[at_])->inScene)
        ++at_;
}

MObject MItDependencyNodes::thisNode(MStatus* s) const
{
    return at_ < nodes_.size() ? reported(s, MS::kSuccess, nodes_[at_]) : reported(s, MS::kFailure, MObject());
}

MStatus MItDependencyNodes::next()
{
    if (at_ >= nodes_.size())
        return MS::kFailure;
    ++at_;
    skipDeleted();
    return MS::kSuccess;
}

bool MItDependencyNodes::isDone(MStatus* s) const { return reported(s, MS::kSuccess, at_ >= nodes_.size()); }

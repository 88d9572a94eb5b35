#include <maya/MItDependencyGraph.h>

#include <algorithm>
#include <deque>
#include <unordered_set>

#include <maya/MObjectArray.h>
#include <maya/MPlugArray.h>

#include "api/api.h"
#include "graph/access.h"
#include "graph/edit.h"

using namespace mirk;

namespace mirk {

/// One item of the walk: a node reached over a connection, and the items it was reached through.
struct GraphWalk
{
    struct Item
    {
        MObject node;
        MPlug   plug, previous;          // at plug level the item itself; how the walk came here
        std::shared_ptr<Item> from;
    };
    using Handle = std::shared_ptr<Item>;
    using G = MItDependencyGraph;

    MObject      rootNode;
    MPlug        rootPlug;
    MFn::Type    filter = MFn::kInvalid;
    G::Direction direction = G::kDownstream;
    G::Traversal traversal = G::kDepthFirst;
    G::Level     level = G::kNodeLevel;
    bool         pruneFiltered = false, pruned = false;
    std::deque<Handle>              open;
    std::unordered_set<const void*> seen;
    std::vector<Handle>             visited;

    const void* key(Cell& c) const { return level == G::kNodeLevel ? static_cast<const void*>(c.node) : &c; }

    void addBeyond(Cell& cell, const Handle& from, std::vector<Handle>& found)
    {
        std::vector<Cell*> others;
        if (direction == G::kUpstream && cell.source)
            others.push_back(cell.source);
        if (direction == G::kDownstream && cell.targets)
            others = *cell.targets;
        for (Cell* o : others)
            if (seen.insert(key(*o)).second)
                found.push_back(std::make_shared<Item>(Item{wrap(o->node), PlugAccess::make(*o), PlugAccess::make(cell), from}));
    }

    void addAround(const Handle& from, std::vector<Handle>& found)
    {
        Node* node = objectAs<Node>(from->node);
        if (!node || !node->inScene)
            return;
        Cell* only = level == G::kPlugLevel || (from->from == nullptr && !rootPlug.isNull()) ? PlugAccess::cell(from->plug) : nullptr;
        if (only) {
            walkCells(*only, [&](Cell& c) { addBeyond(c, from, found); });
            if (level == G::kPlugLevel)
                throughNode(*only, from, found);
            return;
        }
        for (Cell* top : node->cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& c) { addBeyond(c, from, found); });
    }

    /// At plug level the walk goes on inside a node to the plugs that depend on this one, or that it depends on.
    void throughNode(Cell& cell, const Handle& from, std::vector<Handle>& found)
    {
        for (Cell* top : cell.node->cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& c) {
                    if (&c == &cell || !(c.source || c.hasTargets()))
                        return;
                    const bool on = direction == G::kDownstream ? edit::dependsOn(c, cell) : edit::dependsOn(cell, c);
                    if (on && seen.insert(&c).second)
                        found.push_back(std::make_shared<Item>(Item{from->node, PlugAccess::make(c), from->plug, from}));
                });
    }

    bool fits(const Handle& item) const { return filter == MFn::kInvalid || item->node.hasFn(filter); }

    void step()
    {
        const Handle at = open.front();
        open.pop_front();
        if (std::exchange(pruned, false))
            return;
        std::vector<Handle> found;
        addAround(at, found);
        open.insert(traversal == G::kBreadthFirst ? open.end() : open.begin(), found.begin(), found.end());
    }
    void toFitting()
    {
        while (!open.empty() && !fits(open.front())) {
            pruned = pruneFiltered;
            step();
        }
        if (!open.empty())
            visited.push_back(open.front());
    }
    MStatus start()
    {
        open.clear();
        seen.clear();
        visited.clear();
        pruned = false;
        Node* node = objectAs<Node>(rootNode);
        if (!node || !node->inScene)
            return MS::kInvalidParameter;
        Cell* cell = PlugAccess::cell(rootPlug);
        seen.insert(cell && level == G::kPlugLevel ? static_cast<const void*>(cell) : node);
        open.push_back(std::make_shared<Item>(Item{rootNode, rootPlug, MPlug(), nullptr}));
        toFitting();
        return MS::kSuccess;
    }
};

}  // namespace mirk

namespace {

MStatus begin(GraphWalk& w, const MObject& node, const MPlug& plug, MFn::Type filter, MItDependencyGraph::Direction d,
              MItDependencyGraph::Traversal t, MItDependencyGraph::Level l)
{
    w.rootNode = node;
    w.rootPlug = plug;
    w.filter = filter;
    w.direction = d;
    w.traversal = t;
    w.level = l;
    return w.start();
}

template <class T, class F>
T current(GraphWalk& w, MStatus* s, T otherwise, F get)
{
    return w.open.empty() ? reported(s, MS::kFailure, otherwise) : reported(s, MS::kSuccess, T(get(*w.open.front())));
}

}  // namespace

MItDependencyGraph::MItDependencyGraph(MObject& root, MFn::Type filter, Direction d, Traversal t, Level l, MStatus* s) : walk_(new GraphWalk)
{
    report(s, begin(*walk_, root, MPlug(), filter, d, t, l).statusCode());
}

MItDependencyGraph::MItDependencyGraph(MPlug& root, MFn::Type filter, Direction d, Traversal t, Level l, MStatus* s) : walk_(new GraphWalk)
{
    report(s, begin(*walk_, root.node(), root, filter, d, t, l).statusCode());
}

MItDependencyGraph::~MItDependencyGraph() { delete walk_; }

MStatus MItDependencyGraph::reset() { return walk_->start(); }
MStatus MItDependencyGraph::resetTo(MObject& root, MFn::Type filter, Direction d, Traversal t, Level l)
{
    return begin(*walk_, root, MPlug(), filter, d, t, l);
}
MStatus MItDependencyGraph::resetTo(MPlug& root, MFn::Type filter, Direction d, Traversal t, Level l)
{
    return begin(*walk_, root.node(), root, filter, d, t, l);
}

MStatus MItDependencyGraph::next()
{
    if (walk_->open.empty())
        return MS::kFailure;
    walk_->step();
    walk_->toFitting();
    return MS::kSuccess;
}

bool    MItDependencyGraph::isDone(MStatus* s) { return reported(s, MS::kSuccess, walk_->open.empty()); }
MObject MItDependencyGraph::currentItem(MStatus* s)
{
    return current(*walk_, s, MObject(), [](const GraphWalk::Item& i) { return i.node; });
}
MPlug MItDependencyGraph::thisPlug(MStatus* s)
{
    return current(*walk_, s, MPlug(), [](const GraphWalk::Item& i) { return i.plug; });
}
MPlug MItDependencyGraph::previousPlug(MStatus* s)
{
    return current(*walk_, s, MPlug(), [](const GraphWalk::Item& i) { return i.previous; });
}
MObject MItDependencyGraph::rootNode(MStatus* s) { return reported(s, MS::kSuccess, walk_->rootNode); }
MPlug   MItDependencyGraph::rootPlug(MStatus* s) { return reported(s, walk_->rootPlug.isNull() ? MS::kFailure : MS::kSuccess, walk_->rootPlug); }

MStatus MItDependencyGraph::prune()
{
    walk_->pruned = true;
    return walk_->open.empty() ? MS::kFailure : MS::kSuccess;
}

MStatus MItDependencyGraph::getNodePath(MObjectArray& path)
{
    path.clear();
    if (walk_->open.empty())
        return MS::kFailure;
    for (const GraphWalk::Item* i = walk_->open.front().get(); i; i = i->from.get())
        path.insert(i->node, 0);
    return MS::kSuccess;
}

MStatus MItDependencyGraph::getNodesVisited(MObjectArray& visitedNodes)
{
    visitedNodes.clear();
    for (const auto& i : walk_->visited)
        visitedNodes.append(i->node);
    return MS::kSuccess;
}

MStatus MItDependencyGraph::getPlugPath(MPlugArray& path)
{
    path.clear();
    if (walk_->open.empty())
        return MS::kFailure;
    for (const GraphWalk::Item* i = walk_->open.front().get(); i; i = i->from.get())
        path.insert(i->plug, 0);
    return MS::kSuccess;
}

MStatus MItDependencyGraph::getPlugsVisited(MPlugArray& visitedPlugs)
{
    visitedPlugs.clear();
    for (const auto& i : walk_->visited)
        visitedPlugs.append(i->plug);
    return MS::kSuccess;
}

bool MItDependencyGraph::atNodeLevel(MStatus* s) { return reported(s, MS::kSuccess, walk_->level == kNodeLevel); }
bool MItDependencyGraph::atPlugLevel(MStatus* s) { return reported(s, MS::kSuccess, walk_->level == kPlugLevel); }
MItDependencyGraph::Direction MItDependencyGraph::currentDirection(MStatus* s) { return reported(s, MS::kSuccess, walk_->direction); }
MItDependencyGraph::Traversal MItDependencyGraph::currentTraversal(MStatus* s) { return reported(s, MS::kSuccess, walk_->traversal); }
MItDependencyGraph::Level     MItDependencyGraph::currentLevel(MStatus* s) { return reported(s, MS::kSuccess, walk_->level); }
MFn::Type MItDependencyGraph::currentFilter(MStatus* s) { return reported(s, MS::kSuccess, walk_->filter); }
bool      MItDependencyGraph::isDirectionDownStream(MStatus* s) { return currentDirection(s) == kDownstream; }
bool      MItDependencyGraph::isTraversalDepthFirst(MStatus* s) { return currentTraversal(s) == kDepthFirst; }

MStatus MItDependencyGraph::toggleDirection()
{
    walk_->direction = walk_->direction == kDownstream ? kUpstream : kDownstream;
    return walk_->start();
}
MStatus MItDependencyGraph::toggleTraversal()
{
    walk_->traversal = walk_->traversal == kDepthFirst ? kBreadthFirst : kDepthFirst;
    return walk_->start();
}
MStatus MItDependencyGraph::toggleLevel()
{
    walk_->level = walk_->level == kNodeLevel ? kPlugLevel : kNodeLevel;
    return walk_->start();
}
MStatus MItDependencyGraph::setCurrentFilter(const MFn::Type& filter)
{
    walk_->filter = filter;
    return walk_->start();
}
MStatus   MItDependencyGraph::resetFilter() { return setCurrentFilter(MFn::kInvalid); }
MStatus   MItDependencyGraph::enablePruningOnFilter()
{
    walk_->pruneFiltered = true;
    return MS::kSuccess;
}
MStatus MItDependencyGraph::disablePruningOnFilter()
{
    walk_->pruneFiltered = false;
    return MS::kSuccess;
}
bool MItDependencyGraph::isPruningOnFilter(MStatus* s) { return reported(s, MS::kSuccess, walk_->pruneFiltered); }

#pragma once
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

class MObjectArray;
class MPlug;
class MPlugArray;

namespace mirk { struct GraphWalk; }

/// Walks connections from a node or plug, upstream or downstream. Every node (at plug level: plug) comes once.
class MItDependencyGraph
{
public:
    enum Direction { kDownstream, kUpstream };
    enum Traversal { kBreadthFirst, kDepthFirst };
    enum Level { kNodeLevel, kPlugLevel };

    MItDependencyGraph(MObject& rootNode, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                       Traversal traversal = kDepthFirst, Level level = kNodeLevel, MStatus* ReturnStatus = nullptr);
    MItDependencyGraph(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                       Traversal traversal = kDepthFirst, Level level = kNodeLevel, MStatus* ReturnStatus = nullptr);
    ~MItDependencyGraph();
    MItDependencyGraph(const MItDependencyGraph&) = delete;
    MItDependencyGraph& operator=(const MItDependencyGraph&) = delete;

    MStatus reset();
    MStatus resetTo(MObject& rootNode, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                    Traversal traversal = kDepthFirst, Level level = kNodeLevel);
    MStatus resetTo(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                    Traversal traversal = kDepthFirst, Level level = kNodeLevel);
    MStatus next();
    bool    isDone(MStatus* ReturnStatus = nullptr);
    MObject currentItem(MStatus* ReturnStatus = nullptr);
    /// The plug by which the walk came here.
    MPlug   thisPlug(MStatus* ReturnStatus = nullptr);
    MPlug   previousPlug(MStatus* ReturnStatus = nullptr);
    MObject rootNode(MStatus* ReturnStatus = nullptr);
    MPlug   rootPlug(MStatus* ReturnStatus = nullptr);
    /// Does not go on behind the current item.
    MStatus prune();
    MStatus getNodePath(MObjectArray& path);
    MStatus getNodesVisited(MObjectArray& visitedNodes);
    MStatus getPlugPath(MPlugArray& path);
    MStatus getPlugsVisited(MPlugArray& visitedPlugs);

    bool      atNodeLevel(MStatus* ReturnStatus = nullptr);
    bool      atPlugLevel(MStatus* ReturnStatus = nullptr);
    Direction currentDirection(MStatus* ReturnStatus = nullptr);
    Traversal currentTraversal(MStatus* ReturnStatus = nullptr);
    Level     currentLevel(MStatus* ReturnStatus = nullptr);
    MFn::Type currentFilter(MStatus* ReturnStatus = nullptr);
    bool      isDirectionDownStream(MStatus* ReturnStatus = nullptr);
    bool      isTraversalDepthFirst(MStatus* ReturnStatus = nullptr);
    /// These begin again at the root.
    MStatus   toggleDirection();
    MStatus   toggleTraversal();
    MStatus   toggleLevel();
    MStatus   setCurrentFilter(const MFn::Type& filter);
    MStatus   resetFilter();
    /// With pruning the walk does not go on behind nodes that the filter leaves out.
    MStatus   enablePruningOnFilter();
    MStatus   disablePruningOnFilter();
    bool      isPruningOnFilter(MStatus* ReturnStatus = nullptr);

private:
    mirk::GraphWalk* walk_;
};

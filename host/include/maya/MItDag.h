#pragma once
#include <maya/MDagPath.h>

namespace mirk { struct DagWalk; }

/// Walks the DAG, every instance by its path. Starts at the world.
class MItDag
{
public:
    enum TraversalType { kInvalidType, kDepthFirst, kBreadthFirst };

    explicit MItDag(TraversalType traverseType = kDepthFirst, MFn::Type filter = MFn::kInvalid, MStatus* ReturnStatus = nullptr);
    ~MItDag();
    MItDag(const MItDag&) = delete;
    MItDag& operator=(const MItDag&) = delete;

    MStatus  reset();
    MStatus  reset(const MObject& object, TraversalType traverseType = kDepthFirst, MFn::Type filter = MFn::kInvalid);
    MStatus  reset(const MDagPath& path, TraversalType traverseType = kDepthFirst, MFn::Type filter = MFn::kInvalid);
    MStatus  next();
    bool     isDone(MStatus* ReturnStatus = nullptr) const;
    MStatus  prune();

    MObject  currentItem(MStatus* ReturnStatus = nullptr) const;
    MObject  item(MStatus* ReturnStatus = nullptr) const { return currentItem(ReturnStatus); }
    MObject  root(MStatus* ReturnStatus = nullptr) const;
    TraversalType getType(MStatus* ReturnStatus = nullptr) const;
    unsigned depth(MStatus* ReturnStatus = nullptr) const;
    MString  fullPathName(MStatus* ReturnStatus = nullptr) const;
    MString  partialPathName(MStatus* ReturnStatus = nullptr) const;
    MStatus  getPath(MDagPath& path) const;
    MStatus  getAllPaths(MDagPathArray& paths) const;
    bool     isInstanced(bool indirect = true, MStatus* ReturnStatus = nullptr) const;
    unsigned instanceCount(bool total, MStatus* ReturnStatus = nullptr) const;

private:
    mirk::DagWalk* walk_;
};

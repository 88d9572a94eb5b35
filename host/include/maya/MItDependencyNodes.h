#pragma once
#include <vector>

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

/// Walks all nodes of the scene in order of creation. Nodes that are deleted on the way are left out.
class MItDependencyNodes
{
public:
    explicit MItDependencyNodes(MFn::Type filter = MFn::kInvalid, MStatus* ReturnStatus = nullptr);

    MStatus reset(MFn::Type filter = MFn::kInvalid);
    MObject thisNode(MStatus* ReturnStatus = nullptr) const;
    MObject item(MStatus* ReturnStatus = nullptr) const { return thisNode(ReturnStatus); }
    MStatus next();
    bool    isDone(MStatus* ReturnStatus = nullptr) const;

private:
    void skipDeleted();
    std::vector<MObject> nodes_;
    size_t               at_ = 0;
};

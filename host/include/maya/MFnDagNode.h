#pragma once
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>

class MBoundingBox;
class MDagPathArray;
class MMatrix;

/// Function set for nodes of the DAG, on a node or on one path to it.
class MFnDagNode : public MFnDependencyNode
{
public:
    enum { kNextPos = 0xff };

    MFnDagNode() = default;
    explicit MFnDagNode(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnDagNode(const MDagPath& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;
    using MFnDependencyNode::setObject;
    MStatus setObject(MObject& object) override;
    MStatus setObject(const MObject& object) override;
    virtual MStatus setObject(const MDagPath& path);

    /// A node below `parent`, or below the world. A shape without parent gets a transform, which is then returned.
    MObject create(const MTypeId& typeId, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject create(const MTypeId& typeId, const MString& name, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject create(const MString& type, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject create(const MString& type, const MString& name, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    unsigned parentCount(MStatus* ReturnStatus = nullptr) const;
    MObject  parent(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus  addChild(MObject& child, unsigned index = kNextPos, bool keepExistingParents = false);
    MStatus  removeChild(MObject& child);
    MStatus  removeChildAt(unsigned index);
    unsigned childCount(MStatus* ReturnStatus = nullptr) const;
    MObject  child(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MObject  dagRoot(MStatus* ReturnStatus = nullptr) const;
    bool     hasParent(const MObject& node, MStatus* ReturnStatus = nullptr) const;
    bool     hasChild(const MObject& node, MStatus* ReturnStatus = nullptr) const;
    bool     isChildOf(const MObject& node, MStatus* ReturnStatus = nullptr) const;
    bool     isParentOf(const MObject& node, MStatus* ReturnStatus = nullptr) const;
    bool     isInstanced(bool indirect = true, MStatus* ReturnStatus = nullptr) const;
    bool     isInstancedAttribute(const MObject& attr, MStatus* ReturnStatus = nullptr) const;
    unsigned instanceCount(bool total, MStatus* ReturnStatus = nullptr) const;
    /// A copy beside the node, or with `instance` a transform above the same children; with `instanceLeaf` copies share
    /// their shapes.
    MObject  duplicate(bool instance = false, bool instanceLeaf = false, MStatus* ReturnStatus = nullptr) const;

    MDagPath dagPath(MStatus* ReturnStatus = nullptr) const;
    MStatus  getPath(MDagPath& path);
    MStatus  getAllPaths(MDagPathArray& paths);
    MString  fullPathName(MStatus* ReturnStatus = nullptr) const;
    MString  partialPathName(MStatus* ReturnStatus = nullptr) const;
    /// Of this node alone.
    MMatrix  transformationMatrix(MStatus* ReturnStatus = nullptr) const;
    bool     isIntermediateObject(MStatus* ReturnStatus = nullptr) const;
    MStatus  setIntermediateObject(bool isIntermediate);
    /// Of all that stands below, in the space above the node.
    MBoundingBox boundingBox(MStatus* ReturnStatus = nullptr) const;

protected:
    MDagPath path_;
};

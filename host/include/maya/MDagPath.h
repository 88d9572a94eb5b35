#pragma once
#include <vector>

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

class MDagPathArray;
class MMatrix;

namespace mirk { struct PathAccess; }

/// A path through the DAG from the world to a node: tells instances of one node apart. The path of length 0 is the
/// world's. A path follows its node when something above is moved elsewhere.
class MDagPath
{
public:
    MDagPath() = default;

    /// The path to a node; of an instanced node the first.
    static MStatus  getAPathTo(const MObject& node, MDagPath& path);
    static MDagPath getAPathTo(const MObject& node, MStatus* ReturnStatus = nullptr);
    static MStatus  getAllPathsTo(const MObject& node, MDagPathArray& outPaths);

    bool        isValid(MStatus* ReturnStatus = nullptr) const;
    MObject     node(MStatus* ReturnStatus = nullptr) const;
    /// The lowest transform of the path.
    MObject     transform(MStatus* ReturnStatus = nullptr) const;
    MFn::Type   apiType(MStatus* ReturnStatus = nullptr) const;
    bool        hasFn(MFn::Type type, MStatus* ReturnStatus = nullptr) const;
    /// Number of nodes, the world not counted.
    unsigned    length(MStatus* ReturnStatus = nullptr) const;
    unsigned    pathCount(MStatus* ReturnStatus = nullptr) const;

    MStatus     pop(unsigned num = 1);
    MStatus     push(const MObject& child);
    /// To the one shape below; kFailure if there is none or more than one.
    MStatus     extendToShape();
    MStatus     extendToShapeDirectlyBelow(unsigned shapeNum);
    MStatus     numberOfShapesDirectlyBelow(unsigned& num) const;
    unsigned    childCount(MStatus* ReturnStatus = nullptr) const;
    MObject     child(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus     getPath(MDagPath& path, unsigned index = 0) const;
    MStatus     set(const MDagPath& source);

    MMatrix     inclusiveMatrix(MStatus* ReturnStatus = nullptr) const;
    MMatrix     exclusiveMatrix(MStatus* ReturnStatus = nullptr) const;
    MMatrix     inclusiveMatrixInverse(MStatus* ReturnStatus = nullptr) const;
    MMatrix     exclusiveMatrixInverse(MStatus* ReturnStatus = nullptr) const;

    MString     fullPathName(MStatus* ReturnStatus = nullptr) const;
    /// The shortest name that is unique.
    MString     partialPathName(MStatus* ReturnStatus = nullptr) const;
    unsigned    instanceNumber(MStatus* ReturnStatus = nullptr) const;
    bool        isInstanced(MStatus* ReturnStatus = nullptr) const;
    /// False if this node or one above is switched off, or if it is an intermediate object.
    bool        isVisible(MStatus* ReturnStatus = nullptr) const;
    bool        isTemplated(MStatus* ReturnStatus = nullptr) const;

    bool operator==(const MDagPath& other) const;
    bool operator!=(const MDagPath& other) const { return !(*this == other); }

private:
    friend struct mirk::PathAccess;
    mutable std::vector<MObject> nodes_;   // from the top transform down
    bool                         world_ = false;
};

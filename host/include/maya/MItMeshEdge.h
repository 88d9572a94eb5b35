#pragma once
#include <memory>

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

class MDagPath;
namespace mirk { class MeshWalk; }

/// Walks the edges of a mesh, all or those of a component. Without a mesh the walk is done at once; past the end methods
/// give kFailure. Edges are numbered in the order of their first appearance along the faces.
class MItMeshEdge
{
public:
    explicit MItMeshEdge(const MObject& polyObject, MStatus* ReturnStatus = nullptr);
    explicit MItMeshEdge(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                           MStatus* ReturnStatus = nullptr);
    virtual ~MItMeshEdge();
    MItMeshEdge(const MItMeshEdge&) = delete;
    MItMeshEdge& operator=(const MItMeshEdge&) = delete;

    bool    isDone(MStatus* ReturnStatus = nullptr);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
    MObject currentItem(MStatus* ReturnStatus = nullptr);
    MStatus updateSurface();
    MStatus geomChanged();
    int     count(MStatus* ReturnStatus = nullptr);
    int     index(MStatus* ReturnStatus = nullptr);
    /// The mesh's vertex at an end, 0 or 1; -1 otherwise.
    int     index(int vertexNum, MStatus* ReturnStatus = nullptr);
    MStatus setIndex(int newIndex, int& prevIndex);
    MObject edge(MStatus* ReturnStatus = nullptr) { return currentItem(ReturnStatus); }

    MPoint  point(int vertexNum, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    MStatus setPoint(const MPoint& point, unsigned int vertexNum, MSpace::Space space = MSpace::kObject);
    MPoint  center(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    MStatus getLength(double& length, MSpace::Space space = MSpace::kObject) const;
    bool    isSmooth(MStatus* ReturnStatus = nullptr) const;
    MStatus setSmoothing(bool smooth = true);
    bool    onBoundary(MStatus* ReturnStatus = nullptr);

    /// Gives the number of faces.
    int     getConnectedFaces(MIntArray& faceList, MStatus* ReturnStatus = nullptr);
    /// Edges that meet it in one of its vertices; gives their number.
    int     getConnectedEdges(MIntArray& edgeList, MStatus* ReturnStatus = nullptr);
    MStatus numConnectedFaces(int& faceCount) const;
    MStatus numConnectedEdges(int& edgeCount) const;
    bool    connectedToFace(int faceIndex, MStatus* ReturnStatus = nullptr);
    bool    connectedToEdge(int edgeIndex, MStatus* ReturnStatus = nullptr);

private:
    std::unique_ptr<mirk::MeshWalk> walk_;
};

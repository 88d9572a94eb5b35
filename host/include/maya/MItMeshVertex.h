#pragma once
#include <memory>

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

class MDagPath;
namespace mirk { class MeshWalk; }

/// Walks the vertices of a mesh, all or those of a component.
///
/// Without a mesh the walk is done at once. Past the end methods give kFailure. After setPosition normals stay what they
/// were until updateSurface or geomChanged.
class MItMeshVertex
{
public:
    explicit MItMeshVertex(const MObject& polyObject, MStatus* ReturnStatus = nullptr);
    explicit MItMeshVertex(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                           MStatus* ReturnStatus = nullptr);
    virtual ~MItMeshVertex();
    MItMeshVertex(const MItMeshVertex&) = delete;
    MItMeshVertex& operator=(const MItMeshVertex&) = delete;

    bool    isDone(MStatus* ReturnStatus = nullptr);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
    int     count(MStatus* ReturnStatus = nullptr);
    int     index(MStatus* ReturnStatus = nullptr);
    MStatus setIndex(int newIndex, int& prevIndex);
    MObject currentItem(MStatus* ReturnStatus = nullptr);
    MObject vertex(MStatus* ReturnStatus = nullptr) { return currentItem(ReturnStatus); }
    MStatus updateSurface();
    MStatus geomChanged();

    MPoint  position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kObject);
    /// The mean of the normals of the vertex's faces, or the locked normal.
    MStatus getNormal(MVector& vector, MSpace::Space space = MSpace::kObject);
    /// The normal at the vertex in a face.
    MStatus getNormal(MVector& vector, int faceIndex, MSpace::Space space = MSpace::kObject);
    /// One a connected face.
    MStatus getNormals(MVectorArray& normals, MSpace::Space space = MSpace::kObject);

    // Neighbours, ascending
    MStatus getConnectedFaces(MIntArray& faceIds);
    MStatus getConnectedEdges(MIntArray& edgeIds);
    MStatus getConnectedVertices(MIntArray& vertexIds);
    MStatus numConnectedFaces(int& faceCount);
    MStatus numConnectedEdges(int& edgeCount);
    bool    connectedToFace(int faceIndex, MStatus* ReturnStatus = nullptr);
    bool    connectedToEdge(int edgeIndex, MStatus* ReturnStatus = nullptr);
    MStatus getOppositeVertex(int& vertexIndex, int edgeIndex);
    /// On an edge of only one face, or without faces.
    bool    onBoundary(MStatus* ReturnStatus = nullptr);

    // UVs, of the current set without a name. kFailure where nothing is assigned.
    MStatus getUV(float2& uvPoint, const MString* uvSet = nullptr);
    MStatus getUV(int faceIndex, float2& uvPoint, const MString* uvSet = nullptr);
    /// One a connected face that has a UV here. The first numUVs are the distinct ones, in the order of getUVIndices.
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds, const MString* uvSet = nullptr);
    /// Distinct UVs at the vertex.
    MStatus getUVIndices(MIntArray& indices, const MString* uvSet = nullptr);
    MStatus numUVs(int& count, const MString* uvSet = nullptr);

    // Colours, of the current set without a name.
    bool    hasColor(MStatus* ReturnStatus = nullptr);
    bool    hasColor(int faceIndex, MStatus* ReturnStatus = nullptr);
    /// The mean over the faces where it is set; (-1, -1, -1, -1) where nothing is.
    MStatus getColor(MColor& color, const MString* colorSet = nullptr);
    MStatus getColor(MColor& color, int faceIndex, const MString* colorSet = nullptr);
    /// One a connected face; (-1, -1, -1, 1) for a vertex without colour, (0, 0, 0, 1) where it is set in other faces only.
    MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr);
    MStatus numColors(int& count, const MString* colorSet = nullptr);

private:
    std::unique_ptr<mirk::MeshWalk> walk_;
};

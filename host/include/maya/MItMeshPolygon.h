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

/// Walks the faces of a mesh, all or those of a component. Without a mesh the walk is done at once; past the end methods
/// give kFailure. Vertices of a face are named by their place in it.
class MItMeshPolygon
{
public:
    explicit MItMeshPolygon(const MObject& polyObject, MStatus* ReturnStatus = nullptr);
    explicit MItMeshPolygon(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                           MStatus* ReturnStatus = nullptr);
    virtual ~MItMeshPolygon();
    MItMeshPolygon(const MItMeshPolygon&) = delete;
    MItMeshPolygon& operator=(const MItMeshPolygon&) = delete;

    bool    isDone(MStatus* ReturnStatus = nullptr);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
    MObject currentItem(MStatus* ReturnStatus = nullptr);
    MStatus updateSurface();
    MStatus geomChanged();
    int     count(MStatus* ReturnStatus = nullptr);
    unsigned int index(MStatus* ReturnStatus = nullptr);
    MStatus setIndex(int newIndex, int& prevIndex);
    MObject polygon(MStatus* ReturnStatus = nullptr) { return currentItem(ReturnStatus); }

    unsigned int polygonVertexCount(MStatus* ReturnStatus = nullptr);
    /// The mesh's vertex at a place; -1 past the face.
    int     vertexIndex(int index, MStatus* ReturnStatus = nullptr);
    MStatus getVertices(MIntArray& vertices);
    MStatus getEdges(MIntArray& edges);
    /// The mean of its vertices.
    MPoint  center(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    MPoint  point(int index, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    void    getPoints(MPointArray& pointArray, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr);
    MStatus setPoint(const MPoint& point, unsigned int index, MSpace::Space space = MSpace::kObject);
    MStatus setPoints(MPointArray& pointArray, MSpace::Space space = MSpace::kObject);

    MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject);
    MStatus getNormal(unsigned int vertexIndex, MVector& normal, MSpace::Space space = MSpace::kObject);
    MStatus getNormals(MVectorArray& normals, MSpace::Space space = MSpace::kObject);
    /// Positions in MFnMesh::getNormals and getTangents.
    unsigned int normalIndex(int vertex, MStatus* ReturnStatus = nullptr) const;
    unsigned int tangentIndex(int vertex, MStatus* ReturnStatus = nullptr) const;

    MStatus getArea(double& area, MSpace::Space space = MSpace::kObject);
    bool    zeroArea(MStatus* ReturnStatus = nullptr);
    bool    isConvex(MStatus* ReturnStatus = nullptr);
    bool    isPlanar(MStatus* ReturnStatus = nullptr);
    /// Another face has the same edges.
    bool    isLamina(MStatus* ReturnStatus = nullptr);
    MStatus numTriangles(int& count) const;
    MStatus getTriangle(int localTriIndex, MPointArray& points, MIntArray& vertexList,
                        MSpace::Space space = MSpace::kObject) const;
    MStatus getTriangles(MPointArray& points, MIntArray& vertexList, MSpace::Space space = MSpace::kObject) const;

    // Neighbours: faces over edges, then vertices; ascending, without the face itself
    MStatus getConnectedFaces(MIntArray& faces);
    MStatus getConnectedEdges(MIntArray& edges);
    MStatus getConnectedVertices(MIntArray& vertices);
    MStatus numConnectedFaces(int& faceCount) const;
    bool    isConnectedToFace(int faceIndex, MStatus* ReturnStatus = nullptr);
    bool    isConnectedToEdge(int edgeIndex, MStatus* ReturnStatus = nullptr);
    bool    isConnectedToVertex(int vertexIndex, MStatus* ReturnStatus = nullptr);
    bool    onBoundary(MStatus* ReturnStatus = nullptr);

    // UVs, of the current set without a name. kFailure where nothing is assigned.
    bool    hasUVs(MStatus* ReturnStatus = nullptr);
    bool    hasUVs(const MString& uvSet, MStatus* ReturnStatus = nullptr);
    MStatus getUV(int vertex, float2& uvPoint, const MString* uvSet = nullptr);
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = nullptr);
    MStatus getUVIndex(int vertex, int& index, const MString* uvSet = nullptr);
    MStatus getUVArea(double& area, const MString* uvSet = nullptr);
    bool    zeroUVArea(MStatus* ReturnStatus = nullptr);

    // Colours, of the current set without a name.
    bool    hasColor(MStatus* ReturnStatus = nullptr);
    bool    hasColor(int localVertexIndex, MStatus* ReturnStatus = nullptr);
    MStatus numColors(int& count, const MString* colorSet = nullptr);
    /// The mean of its vertices that are set; (-1, -1, -1, -1) where none is.
    MStatus getColor(MColor& color, const MString* colorSet = nullptr);
    MStatus getColor(MColor& color, int vertexIndex);
    MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr);
    MStatus getColorIndex(int vertexIndex, int& colorIndex, const MString* colorSet = nullptr);

private:
    std::unique_ptr<mirk::MeshWalk> walk_;
};

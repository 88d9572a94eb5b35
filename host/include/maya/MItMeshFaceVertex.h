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

/// Walks the vertices of each face of a mesh, face by face, all or those of a component of vertices in faces. Without a
/// mesh the walk is done at once; past the end methods give kFailure.
class MItMeshFaceVertex
{
public:
    explicit MItMeshFaceVertex(const MObject& polyObject, MStatus* ReturnStatus = nullptr);
    explicit MItMeshFaceVertex(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                           MStatus* ReturnStatus = nullptr);
    virtual ~MItMeshFaceVertex();
    MItMeshFaceVertex(const MItMeshFaceVertex&) = delete;
    MItMeshFaceVertex& operator=(const MItMeshFaceVertex&) = delete;

    bool    isDone(MStatus* ReturnStatus = nullptr);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
    MObject currentItem(MStatus* ReturnStatus = nullptr);
    MStatus updateSurface();
    MStatus geomChanged();
    MStatus setIndex(int faceId, int faceVertexId, int& prevFace, int& prevFaceVertex);
    MObject faceVertex(MStatus* ReturnStatus = nullptr) { return currentItem(ReturnStatus); }
    int     faceId(MStatus* ReturnStatus = nullptr) const;
    int     vertId(MStatus* ReturnStatus = nullptr) const;
    /// The vertex's place in its face.
    int     faceVertId(MStatus* ReturnStatus = nullptr) const;

    MPoint  position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject) const;
    MVector getTangent(MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                       MStatus* ReturnStatus = nullptr) const;
    MVector getBinormal(MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                        MStatus* ReturnStatus = nullptr) const;
    int     normalId(MStatus* ReturnStatus = nullptr) const;
    int     tangentId(MStatus* ReturnStatus = nullptr) const;

    // UVs and colours, of the current set without a name.
    bool    hasUVs(MStatus* ReturnStatus = nullptr) const;
    bool    hasUVs(const MString& uvSet, MStatus* ReturnStatus = nullptr) const;
    MStatus getUV(float2& uvPoint, const MString* uvSet = nullptr) const;
    MStatus getUVIndex(int& index, const MString* uvSet = nullptr) const;
    bool    hasColor(MStatus* ReturnStatus = nullptr) const;
    MStatus getColor(MColor& color, const MString* colorSet = nullptr) const;
    MStatus getColorIndex(int& colorIndex, const MString* colorSet = nullptr) const;

private:
    std::unique_ptr<mirk::MeshWalk> walk_;
};

#pragma once
#include <memory>

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/MUintArray.h>
#include <maya/MVectorArray.h>

class MDGModifier;

#define kMFnMeshTolerance 1.0e-3
#define kMFnMeshPointTolerance 1.0e-10

namespace mirk {
class MeshBody;
class MeshTarget;
}

/// How rays and closest points are to be sped up. Every mesh keeps one tree, built at its first query and shared by all
/// data that shares its points and faces, whatever is asked for here; the values are kept and can be given everywhere.
class MMeshIsectAccelParams
{
public:
    MMeshIsectAccelParams() = default;

private:
    friend class MFnMesh;
    bool automatic_ = true;
    int  divisions_[3] = {0, 0, 0};
};

/// Function set on meshes: mesh data, and shapes, directly or along a DAG path.
///
/// An id out of range gives kInvalidParameter and changes nothing. World space is that of the path; on data it is
/// that of the matrix that travels with it, if the data was asked for as transformed, else object space. Points and
/// normals are stored in single precision. A writer changes the data object or shape itself; other data that shares
/// its buffers keeps its values.
class MFnMesh : public MFnDagNode
{
public:
    enum MColorRepresentation { kInvalid = 0, kAlpha = 1, kRGB = 3, kRGBA = 4 };

    MFnMesh() = default;
    explicit MFnMesh(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnMesh(const MDagPath& path, MStatus* ReturnStatus = nullptr);
    ~MFnMesh() override;
    MFn::Type type() const override;
    MStatus setObject(MObject& object) override;
    MStatus setObject(const MObject& object) override;
    MStatus setObject(const MDagPath& path) override;

    // Creation. `parentOrOwner`: mesh data that takes the mesh; a transform to put a new shape under; null for a new
    // transform with a shape, which is then returned. Faces are given as vertex counts and concatenated vertex ids.
    // Faces of less than three vertices, ids past the points and counts that do not add up are refused: kFailure.
    MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray, const MIntArray& polygonCounts,
                   const MIntArray& polygonConnects, MObject parentOrOwner = MObject::kNullObj,
                   MStatus* ReturnStatus = nullptr);
    MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                   const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                   MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    /// The UVs become the table of map1 and are not assigned to faces yet.
    MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray, const MIntArray& polygonCounts,
                   const MIntArray& polygonConnects, const MFloatArray& uArray, const MFloatArray& vArray,
                   MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                   const MIntArray& polygonCounts, const MIntArray& polygonConnects, const MFloatArray& uArray,
                   const MFloatArray& vArray, MObject parentOrOwner = MObject::kNullObj,
                   MStatus* ReturnStatus = nullptr);
    /// Replaces the mesh that the function set is on.
    MStatus createInPlace(int numVertices, int numPolygons, const MPointArray& vertexArray,
                          const MIntArray& polygonCounts, const MIntArray& polygonConnects);
    MStatus createInPlace(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                          const MIntArray& polygonCounts, const MIntArray& polygonConnects);
    /// A private copy. The matrix of transformed data goes into its points and normals.
    MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    /// Adds a face; without a mesh it makes one. With `mergeVertices` points within `pointTolerance` of a present
    /// vertex become that vertex.
    MObject addPolygon(const MPointArray& vertexArray, bool mergeVertices = true, double pointTolerance = 1.0e-10,
                       MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    /// Tells the shape that its mesh changed. Setters do so themselves.
    MStatus updateSurface();
    MStatus syncObject();

    // Counts
    int numVertices(MStatus* ReturnStatus = nullptr) const;
    int numEdges(MStatus* ReturnStatus = nullptr) const;
    int numPolygons(MStatus* ReturnStatus = nullptr) const;
    int numFaceVertices(MStatus* ReturnStatus = nullptr) const;
    int polygonVertexCount(int polygonId, MStatus* ReturnStatus = nullptr) const;
    int numNormals(MStatus* ReturnStatus = nullptr) const;
    int numUVSets(MStatus* ReturnStatus = nullptr) const;
    int numUVs(MStatus* ReturnStatus = nullptr) const;
    int numUVs(const MString& uvSet, MStatus* ReturnStatus = nullptr) const;
    int numColorSets(MStatus* ReturnStatus = nullptr) const;
    int numColors(MStatus* ReturnStatus = nullptr) const;
    int numColors(const MString& colorSet, MStatus* ReturnStatus = nullptr) const;

    // Points
    MStatus      getPoints(MPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
    MStatus      getPoints(MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
    /// As many points as the mesh has.
    MStatus      setPoints(const MPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
    MStatus      setPoints(const MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
    MStatus      getPoint(int vertexId, MPoint& pos, MSpace::Space space = MSpace::kObject) const;
    MStatus      setPoint(int vertexId, const MPoint& pos, MSpace::Space space = MSpace::kObject);
    /// x, y, z of all vertices in object space, valid until the mesh changes.
    const float* getRawPoints(MStatus* ReturnStatus = nullptr) const;

    // Faces and edges
    MStatus getPolygonVertices(int polygonId, MIntArray& vertexList) const;
    MStatus getVertices(MIntArray& vertexCount, MIntArray& vertexList) const;
    /// Triangles of each face, and three vertex ids a triangle.
    MStatus getTriangles(MIntArray& triangleCounts, MIntArray& triangleVertices) const;
    MStatus getPolygonTriangleVertices(int polygonId, int triangleId, int vertexList[3]) const;
    MStatus getEdgeVertices(int edgeId, int2& vertexList) const;
    bool    isPolygonConvex(int faceIndex, MStatus* ReturnStatus = nullptr) const;
    bool    onBoundary(int polygonId, MStatus* ReturnStatus = nullptr) const;
    bool    isEdgeSmooth(int edgeId, MStatus* ReturnStatus = nullptr) const;
    MStatus setEdgeSmoothing(int edgeId, bool smooth = true);
    MStatus setEdgeSmoothings(const MIntArray& edgeIds, const MIntArray& smooths);
    MStatus cleanupEdgeSmoothing();

    // Normals. Angle-weighted or plain mean of the normals of a vertex's faces; a locked normal stands as it is.
    MStatus getVertexNormals(bool angleWeighted, MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject) const;
    MStatus getVertexNormal(int vertexId, MVector& normal, MSpace::Space space = MSpace::kObject) const;
    MStatus getVertexNormal(int vertexId, bool angleWeighted, MVector& normal,
                            MSpace::Space space = MSpace::kObject) const;
    /// The distinct normals that getNormalIds indexes.
    MStatus getNormals(MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject) const;
    MStatus getNormalIds(MIntArray& normalIdCounts, MIntArray& normalIds) const;
    MStatus getFaceNormalIds(int faceIndex, MIntArray& normals) const;
    MStatus getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal,
                                MSpace::Space space = MSpace::kObject) const;
    MStatus getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject) const;
    MStatus getPolygonNormal(int polygonId, MVector& normal, MSpace::Space space = MSpace::kObject) const;
    /// Unit tangents and binormals from the UVs, the current set by default; zero where there are none.
    MStatus getFaceVertexTangent(int faceIndex, int vertexIndex, MVector& tangent, MSpace::Space space = MSpace::kObject,
                                 const MString* uvSet = nullptr) const;
    MStatus getFaceVertexBinormal(int faceIndex, int vertexIndex, MVector& binormal,
                                  MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr) const;
    MStatus getFaceVertexTangents(int faceIndex, MFloatVectorArray& tangents, MSpace::Space space = MSpace::kObject,
                                  const MString* uvSet = nullptr) const;
    MStatus getFaceVertexBinormals(int faceIndex, MFloatVectorArray& binormals, MSpace::Space space = MSpace::kObject,
                                   const MString* uvSet = nullptr) const;
    /// One a face vertex, in face order; getTangentId gives the position.
    MStatus getTangents(MFloatVectorArray& tangents, MSpace::Space space = MSpace::kObject,
                        const MString* uvSet = nullptr) const;
    MStatus getBinormals(MFloatVectorArray& binormals, MSpace::Space space = MSpace::kObject,
                         const MString* uvSet = nullptr) const;
    int     getTangentId(int faceIndex, int vertexIndex, MStatus* ReturnStatus = nullptr) const;
    // Setting a normal locks it.
    MStatus setVertexNormal(MVector& normal, int vertexId, MSpace::Space space = MSpace::kObject,
                            MDGModifier* modifier = nullptr);
    MStatus setVertexNormals(MVectorArray& normals, MIntArray& vertexList, MSpace::Space space = MSpace::kObject,
                             MDGModifier* modifier = nullptr);
    MStatus setFaceVertexNormal(MVector& normal, int faceId, int vertexId, MSpace::Space space = MSpace::kObject,
                                MDGModifier* modifier = nullptr);
    MStatus setFaceVertexNormals(MVectorArray& normals, MIntArray& faceList, MIntArray& vertexList,
                                 MSpace::Space space = MSpace::kObject);
    MStatus lockVertexNormals(MIntArray& vertexList);
    MStatus unlockVertexNormals(MIntArray& vertexList);
    MStatus lockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList);
    MStatus unlockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList);
    /// By position in getNormals.
    bool    isNormalLocked(unsigned int normalIndex, MStatus* ReturnStatus = nullptr) const;

    // Colour sets. Methods without a set name use the current set; writers make "colorSet1" if there is no set.
    MStatus createColorSetDataMesh(MString& colorSetName, bool clamped = false, MColorRepresentation rep = kRGBA);
    MString createColorSetWithName(const MString& colorSetName, MDGModifier* modifier = nullptr,
                                   const MUintArray* instances = nullptr, MStatus* ReturnStatus = nullptr);
    MString createColorSetWithName(const MString& colorSetName, bool clamped, MColorRepresentation rep,
                                   MDGModifier* modifier = nullptr, const MUintArray* instances = nullptr,
                                   MStatus* ReturnStatus = nullptr);
    MStatus deleteColorSet(const MString& colorSetName, MDGModifier* modifier = nullptr);
    MStatus setCurrentColorSetName(const MString& colorSetName, MDGModifier* modifier = nullptr);
    MStatus setCurrentColorSetDataMesh(const MString& colorSetName);
    MString currentColorSetName(int instance = -1, MStatus* ReturnStatus = nullptr) const;
    MStatus getColorSetNames(MStringArray& colorSetNames) const;
    MColorRepresentation getColorRepresentation(const MString& colorSet, MStatus* ReturnStatus = nullptr) const;
    bool    isColorClamped(const MString& colorSet, MStatus* ReturnStatus = nullptr) const;

    // Colours. (-1, -1, -1, -1) means unset, in both directions.
    /// One a vertex: the mean of its face vertices that are set; empty if there is no colour set.
    MStatus getVertexColors(MColorArray& colors, const MString* colorSet = nullptr,
                            const MColor* defaultUnsetColor = nullptr) const;
    /// One a face vertex; unset ones of a vertex that is coloured in other faces are black.
    MStatus getFaceVertexColors(MColorArray& colors, const MString* colorSet = nullptr,
                                const MColor* defaultUnsetColor = nullptr) const;
    /// The colour table.
    MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr,
                      const MColor* defaultUnsetColor = nullptr) const;
    MStatus getColor(int colorId, MColor& color, const MString* colorSet = nullptr) const;
    /// Index into the colour table; -1 where nothing is set.
    MStatus getColorIndex(int faceId, int localVertexId, int& colorIndex, const MString* colorSet = nullptr) const;
    MStatus setVertexColor(MColor& color, int vertexId, MDGModifier* modifier = nullptr);
    MStatus setVertexColor(MColor& color, int vertexId, MDGModifier* modifier, MColorRepresentation rep);
    MStatus setVertexColors(MColorArray& colors, MIntArray& vertexList, MDGModifier* modifier = nullptr);
    MStatus setVertexColors(MColorArray& colors, MIntArray& vertexList, MDGModifier* modifier, MColorRepresentation rep);
    MStatus setFaceColor(MColor& color, int faceId);
    MStatus setFaceColor(MColor& color, int faceId, MColorRepresentation rep);
    MStatus setFaceColors(MColorArray& colors, MIntArray& faceList);
    MStatus setFaceColors(MColorArray& colors, MIntArray& faceList, MColorRepresentation rep);
    MStatus setFaceVertexColor(MColor& color, int faceId, int vertexId, MDGModifier* modifier = nullptr);
    MStatus setFaceVertexColors(MColorArray& colors, MIntArray& faceList, MIntArray& vertexList,
                                MDGModifier* modifier = nullptr);
    MStatus setFaceVertexColors(MColorArray& colors, MIntArray& faceList, MIntArray& vertexList, MDGModifier* modifier,
                                MColorRepresentation rep);
    /// The table, at least as long as the present one.
    MStatus setColors(const MColorArray& colors, const MString* colorSet = nullptr);
    /// One index into the table a face vertex; -1 for none.
    MStatus assignColors(const MIntArray& colorIds, const MString* colorSet = nullptr);
    MStatus assignColor(int polygonId, int vertexIndex, int colorId, const MString* colorSet = nullptr);
    MStatus clearColors(const MString* colorSet = nullptr);
    MStatus removeVertexColors(const MIntArray& vertexList);
    MStatus removeFaceColors(const MIntArray& faceList);

    // UV sets. Every mesh has "map1".
    MStatus createUVSetDataMesh(MString& uvSetName);
    MString createUVSetWithName(const MString& uvSetName, MDGModifier* modifier = nullptr,
                                const MUintArray* instances = nullptr, MStatus* ReturnStatus = nullptr);
    MStatus renameUVSet(const MString& origName, const MString& newName, MDGModifier* modifier = nullptr);
    MStatus deleteUVSet(const MString& uvSetName, MDGModifier* modifier = nullptr);
    MStatus setCurrentUVSetName(const MString& uvSetName, MDGModifier* modifier = nullptr);
    MString currentUVSetName(int instance = -1, MStatus* ReturnStatus = nullptr) const;
    MStatus getUVSetNames(MStringArray& uvSetNames) const;

    // UVs. First the table (setUVs), then what each face vertex uses of it (assignUVs).
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = nullptr) const;
    /// At least as many as the present ones.
    MStatus setUVs(const MFloatArray& uArray, const MFloatArray& vArray, const MString* uvSet = nullptr);
    MStatus getUV(int uvId, float& u, float& v, const MString* uvSet = nullptr) const;
    /// Grows the table if the id is past its end.
    MStatus setUV(int uvId, float u, float v, const MString* uvSet = nullptr);
    MStatus getPolygonUV(int polygonId, int vertexIndex, float& u, float& v, const MString* uvSet = nullptr) const;
    MStatus getPolygonUVid(int polygonId, int vertexIndex, int& uvId, const MString* uvSet = nullptr) const;
    /// Counts are one a face: 0, or the number of its vertices.
    MStatus assignUVs(const MIntArray& uvCounts, const MIntArray& uvIds, const MString* uvSet = nullptr);
    MStatus assignUV(int polygonId, int vertexIndex, int uvId, const MString* uvSet = nullptr);
    MStatus getAssignedUVs(MIntArray& uvCounts, MIntArray& uvIds, const MString* uvSet = nullptr) const;
    MStatus clearUVs(const MString* uvSet = nullptr);
    /// The place on a polygon that has the UV. A UV off the polygon counts as one on its border if it is no further away
    /// than `tolerance`, in UV units. kFailure, and the point stays, if it is not on the polygon or a corner has no UV.
    MStatus getPointAtUV(int polygonId, MPoint& toThisPoint, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                         const MString* uvSet = nullptr, float tolerance = 0.0f) const;
    /// The shell of each UV, and how many there are. UVs used by no face are shells of their own.
    MStatus getUvShellsIds(MIntArray& uvShellIds, unsigned int& nbUvShells, const MString* uvSet = nullptr) const;

    // Rays. A parameter counts in lengths of `rayDirection`; hits behind the source have a negative one and count with
    // `testBothDirections` only, as far as `maxParam` on either side. Both sides of a face are hit, and a face once.
    // hit = bary1 * v1 + bary2 * v2 + (1 - bary1 - bary2) * v3 with the vertices of the triangle; `hitTriangle` counts
    // within its face. `faceIds` and `triIds` restrict the search to these faces, or to these triangles of them (two
    // arrays of one length; `idsSorted`: see sortIntersectionFaceTriIds). `tolerance`: how far outside a triangle, in
    // barycentric coordinates, is still a hit. Results may be null pointers and are not written without a hit.
    // kInvalidParameter: a ray that is not finite, no direction, ids out of range. kFailure: no mesh, singular matrix.
    /// The hit nearest to the source; false if there is none.
    bool closestIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                             const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                             bool testBothDirections, MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                             float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                             float tolerance = 1e-6f, MStatus* ReturnStatus = nullptr) const;
    /// Whatever hit is found first.
    bool anyIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                         const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                         bool testBothDirections, MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                         float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                         float tolerance = 1e-6f, MStatus* ReturnStatus = nullptr) const;
    /// All hits, one a face that is crossed; with `sortHits` by rising parameter.
    bool allIntersections(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                          const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                          bool testBothDirections, MMeshIsectAccelParams* accelParams, bool sortHits,
                          MFloatPointArray& hitPoints, MFloatArray* hitRayParams, MIntArray* hitFaces,
                          MIntArray* hitTriangles, MFloatArray* hitBary1s, MFloatArray* hitBary2s,
                          float tolerance = 1e-6f, MStatus* ReturnStatus = nullptr) const;
    /// All hits in front of the source, nearest first, in double precision. False, and the arrays stay, without a hit.
    bool intersect(const MPoint& raySource, const MVector& rayDirection, MPointArray& points,
                   double tolerance = kMFnMeshPointTolerance, MSpace::Space space = MSpace::kObject,
                   MIntArray* polygonIds = nullptr, MStatus* ReturnStatus = nullptr) const;
    /// By face, then by triangle.
    static MStatus sortIntersectionFaceTriIds(MIntArray* faceIds, MIntArray* triIds);
    static MMeshIsectAccelParams autoUniformGridParams();
    static MMeshIsectAccelParams uniformGridParams(int xDiv, int yDiv, int zDiv);
    /// Frees the mesh's tree; the next query builds it again.
    MStatus freeCachedIntersectionAccelerator();
    /// Size and memory of the mesh's tree, or that there is none.
    MString cachedIntersectionAcceleratorInfo(MStatus* ReturnStatus = nullptr) const;

    // Closest points, in double precision; the distance is that of `space`. A point that is not finite:
    // kInvalidParameter. A mesh without a face: kFailure. Among equally close triangles the first one counts.
    MStatus getClosestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint, MSpace::Space space = MSpace::kObject,
                            int* closestPolygon = nullptr, MMeshIsectAccelParams* accelParams = nullptr) const;
    /// The normal of the shading there: face-vertex normals, interpolated.
    MStatus getClosestNormal(const MPoint& toThisPoint, MVector& theNormal, MSpace::Space space = MSpace::kObject,
                             int* closestPolygon = nullptr, MMeshIsectAccelParams* accelParams = nullptr) const;
    MStatus getClosestPointAndNormal(const MPoint& toThisPoint, MPoint& theClosestPoint, MVector& theNormal,
                                     MSpace::Space space = MSpace::kObject, int* closestPolygon = nullptr,
                                     MMeshIsectAccelParams* accelParams = nullptr) const;
    /// The UV at the closest point of the mesh, interpolated. kFailure where the face has no UVs.
    MStatus getUVAtPoint(MPoint& pt, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                         const MString* uvSet = nullptr, int* closestPolygon = nullptr,
                         MMeshIsectAccelParams* accelParams = nullptr) const;
    /// Ids of the UVs nearest to a place in UV space: several if they coincide, none without UVs.
    MStatus getClosestUVs(float u, float v, MIntArray& uvIds, const MString* uvSet = nullptr) const;

private:
    MStatus bind(const MObject& object, std::shared_ptr<mirk::MeshTarget> target);
    const mirk::MeshBody* read(MStatus* ReturnStatus = nullptr) const;
    mirk::MeshBody*       write() const;

    std::shared_ptr<mirk::MeshTarget> target_;
};

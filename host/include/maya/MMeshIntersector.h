#pragma once
#include <cfloat>
#include <memory>

#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

/// A place on a mesh, as MMeshIntersector finds it: in the space of the mesh.
class MPointOnMesh
{
public:
    MFloatPoint&  getPoint() { return point_; }
    /// The normal of the triangle, of length 1.
    MFloatVector& getNormal() { return normal_; }
    /// In double precision.
    MStatus getPoint(MPoint& point) const;
    MStatus getNormal(MVector& normal) const;
    int faceIndex() const { return face_; }
    /// Within the face.
    int triangleIndex() const { return triangle_; }
    /// point = u * v1 + v * v2 + (1 - u - v) * v3 with the vertices of the triangle.
    void getBarycentricCoords(float& u, float& v) const { u = u_; v = v_; }

private:
    friend class MMeshIntersector;
    MFloatPoint  point_;
    MFloatVector normal_;
    MPoint       exact_;
    MVector      exactNormal_;
    int          face_ = -1, triangle_ = -1;
    float        u_ = 0, v_ = 0;
};

/// Closest points on one mesh, many times. It keeps the mesh as it was when it was created; queries may come from several
/// threads at once.
class MMeshIntersector
{
public:
    MMeshIntersector();
    ~MMeshIntersector();
    MMeshIntersector(const MMeshIntersector&) = delete;
    MMeshIntersector& operator=(const MMeshIntersector&) = delete;

    /// Takes a mesh. `matrix` leads from its space to that of the query points. With `faces` only these count.
    /// kInvalidParameter: no mesh, an id out of range. kFailure: no mesh to be had, a singular matrix.
    MStatus create(MObject& meshObject, const MMatrix& matrix = MMatrix::identity, const MIntArray* faces = nullptr);
    bool    isCreated() const;
    /// The point of the mesh that is closest, by distances between query points. kFailure: none within `maxDistance`,
    /// not created. kInvalidParameter: a point that is not finite.
    MStatus getClosestPoint(const MPoint& point, MPointOnMesh& info, double maxDistance = DBL_MAX) const;

private:
    struct Kept;
    std::unique_ptr<Kept> kept_;
};

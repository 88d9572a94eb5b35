// MFnMesh: rays.
#include <maya/MFnMesh.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "mesh/api.h"
#include "mesh/target.h"
#include "query/mesh_rays.h"

using namespace mirk;

namespace {

/// Where one hit goes; null pointers are passed over.
struct HitOut
{
    MFloatPoint& point;
    float*       param;
    int *        face, *triangle;
    float *      bary1, *bary2;

    void write(const query::MeshRays& rays, const query::RayHit& hit) const
    {
        double p[3];
        rays.point(hit, p);
        point = MFloatPoint(float(p[0]), float(p[1]), float(p[2]));
        if (param)
            *param = float(hit.t);
        if (face)
            *face = rays.faceOf(hit);
        if (triangle)
            *triangle = rays.localTriangle(hit);
        if (bary1)
            *bary1 = float(hit.w[0]);
        if (bary2)
            *bary2 = float(hit.w[1]);
    }
};

struct RayIn
{
    const MFloatPoint&  source;
    const MFloatVector& direction;
    query::Restriction  to;
    MSpace::Space       space;
    float               maxParam, tolerance;
    bool                both;
};

MStatus aim(query::MeshRays& rays, const RayIn& in)
{
    const double source[3] = {in.source.x, in.source.y, in.source.z};
    const double direction[3] = {in.direction.x, in.direction.y, in.direction.z};
    return rays.aim(source, direction, in.maxParam, in.tolerance, in.both, in.to);
}

bool oneHit(const MeshBody* body, MeshTarget* target, const RayIn& in, bool any, const HitOut& out, MStatus* status)
{
    report(status, MS::kFailure);
    if (!body)
        return false;
    query::MeshRays rays(*body, target->matrix(in.space, *body));
    const MStatus   aimed = aim(rays, in);
    report(status, aimed.statusCode());
    query::RayHit hit;
    if (!aimed || !(any ? rays.any(hit) : rays.closest(hit)))
        return false;
    out.write(rays, hit);
    return true;
}

/// Makes an optional array `n` long; its first value, null if there is none.
template <class A>
auto* roomIn(A* array, size_t n) { return array ? room(*array, n) : nullptr; }

}  // namespace

bool MFnMesh::closestIntersection(const MFloatPoint& source, const MFloatVector& direction, const MIntArray* faceIds,
                                  const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                                  bool testBothDirections, MMeshIsectAccelParams*, MFloatPoint& hitPoint,
                                  float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                                  float tolerance, MStatus* ReturnStatus) const
{
    return oneHit(read(), target_.get(),
                  {source, direction, {faceIds, triIds, idsSorted}, space, maxParam, tolerance, testBothDirections}, false,
                  {hitPoint, hitRayParam, hitFace, hitTriangle, hitBary1, hitBary2}, ReturnStatus);
}

bool MFnMesh::anyIntersection(const MFloatPoint& source, const MFloatVector& direction, const MIntArray* faceIds,
                              const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                              bool testBothDirections, MMeshIsectAccelParams*, MFloatPoint& hitPoint, float* hitRayParam,
                              int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2, float tolerance,
                              MStatus* ReturnStatus) const
{
    return oneHit(read(), target_.get(),
                  {source, direction, {faceIds, triIds, idsSorted}, space, maxParam, tolerance, testBothDirections}, true,
                  {hitPoint, hitRayParam, hitFace, hitTriangle, hitBary1, hitBary2}, ReturnStatus);
}

bool MFnMesh::allIntersections(const MFloatPoint& source, const MFloatVector& direction, const MIntArray* faceIds,
                               const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                               bool testBothDirections, MMeshIsectAccelParams*, bool, MFloatPointArray& hitPoints,
                               MFloatArray* hitRayParams, MIntArray* hitFaces, MIntArray* hitTriangles,
                               MFloatArray* hitBary1s, MFloatArray* hitBary2s, float tolerance,
                               MStatus* ReturnStatus) const
{
    const MeshBody* body = read(ReturnStatus);
    if (!body)
        return false;
    query::MeshRays rays(*body, target_->matrix(space, *body));
    const MStatus   aimed = aim(rays, {source, direction, {faceIds, triIds, idsSorted}, space, maxParam, tolerance,
                                       testBothDirections});
    report(ReturnStatus, aimed.statusCode());
    const std::vector<query::RayHit> hits = aimed ? rays.all() : std::vector<query::RayHit>();
    if (hits.empty())
        return false;
    const size_t n = hits.size();
    MFloatPoint* point = room(hitPoints, n);
    float *      param = roomIn(hitRayParams, n), *bary1 = roomIn(hitBary1s, n), *bary2 = roomIn(hitBary2s, n);
    int *        face = roomIn(hitFaces, n), *triangle = roomIn(hitTriangles, n);
    const auto   next = [](auto*& p) { return p ? p++ : nullptr; };
    for (const query::RayHit& hit : hits)
        HitOut{*point++, next(param), next(face), next(triangle), next(bary1), next(bary2)}.write(rays, hit);
    return true;
}

bool MFnMesh::intersect(const MPoint& source, const MVector& direction, MPointArray& points, double tolerance,
                        MSpace::Space space, MIntArray* polygonIds, MStatus* ReturnStatus) const
{
    const MeshBody* body = read(ReturnStatus);
    if (!body)
        return false;
    query::MeshRays rays(*body, target_->matrix(space, *body));
    const double    from[3] = {source.x, source.y, source.z}, along[3] = {direction.x, direction.y, direction.z};
    const MStatus   aimed = rays.aim(from, along, HUGE_VAL, tolerance, false, {});
    report(ReturnStatus, aimed.statusCode());
    const std::vector<query::RayHit> hits = aimed ? rays.all() : std::vector<query::RayHit>();
    if (hits.empty())
        return false;
    MPoint* point = room(points, hits.size());
    int*    face = roomIn(polygonIds, hits.size());
    for (const query::RayHit& hit : hits) {
        double p[3];
        rays.point(hit, p);
        *point++ = MPoint(p[0], p[1], p[2]);
        if (face)
            *face++ = rays.faceOf(hit);
    }
    return true;
}

MStatus MFnMesh::sortIntersectionFaceTriIds(MIntArray* faceIds, MIntArray* triIds)
{
    if (!faceIds || (triIds && triIds->length() != faceIds->length()))
        return MS::kInvalidParameter;
    std::vector<std::pair<int, int>> ids(faceIds->length());
    for (unsigned i = 0; i < faceIds->length(); ++i)
        ids[i] = {(*faceIds)[i], triIds ? (*triIds)[i] : 0};
    std::sort(ids.begin(), ids.end());
    for (unsigned i = 0; i < faceIds->length(); ++i) {
        (*faceIds)[i] = ids[i].first;
        if (triIds)
            (*triIds)[i] = ids[i].second;
    }
    return MS::kSuccess;
}

MMeshIsectAccelParams MFnMesh::autoUniformGridParams() { return {}; }

MMeshIsectAccelParams MFnMesh::uniformGridParams(int xDiv, int yDiv, int zDiv)
{
    MMeshIsectAccelParams params;
    params.automatic_ = false;
    params.divisions_[0] = xDiv;
    params.divisions_[1] = yDiv;
    params.divisions_[2] = zDiv;
    return params;
}

MStatus MFnMesh::freeCachedIntersectionAccelerator()
{
    const MeshBody* body = read();
    if (!body)
        return MS::kFailure;
    body->dropTree();
    return MS::kSuccess;
}

MString MFnMesh::cachedIntersectionAcceleratorInfo(MStatus* ReturnStatus) const
{
    const MeshBody* body = read(ReturnStatus);
    if (!body)
        return MString();
    if (!body->treeBuilt())
        return MString("no intersection accelerator");
    const query::Tree& tree = body->tree();
    const std::string  text = "tree of " + std::to_string(tree.triangleCount()) + " triangles, "
                             + std::to_string(tree.nodeCount()) + " nodes, " + std::to_string(tree.bytes()) + " bytes";
    return MString(text.c_str());
}

// MFnMesh: closest points.
#include <maya/MFnMesh.h>

#include <cfloat>
#include <cmath>

#include "mesh/api.h"
#include "mesh/target.h"
#include "query/mesh_rays.h"

using namespace mirk;

namespace {

/// The closest point of a mesh in the mesh's own space.
struct Place
{
    const MeshBody*    body = nullptr;
    const SpaceMatrix* space = nullptr;
    query::Nearest     at;

    int  face() const { return body->tree().faceOf(at.triangle); }
    MPoint point() const
    {
        const double inside[3] = {at.point.x, at.point.y, at.point.z};
        MPoint       out;
        space->pointOut(inside, &out.x);
        return out;
    }
    MVector normal() const
    {
        const int* corner = query::triangleCorners(*body, at.triangle);
        Vec3       sum;
        for (int k = 0; k < 3; ++k)
            sum += Vec3(body->cornerNormals().at(corner[k]).v) * at.w[k];
        F3 n = unit(sum);
        if (!(length(sum) > 0))
            n = body->faceNormals()[size_t(face())];
        return toNormal(n, *space);
    }
};

MStatus findPlace(const MeshBody* body, MeshTarget* target, const MPoint& to, MSpace::Space space, Place& place)
{
    if (!body)
        return MS::kFailure;
    const double p[3] = {to.x, to.y, to.z};
    if (!query::finite(p))
        return MS::kInvalidParameter;
    place.body = body;
    place.space = &target->matrix(space, *body);
    if (!place.space->invertible())
        return MS::kFailure;
    return query::MeshNearest(*place.space).find(body->tree(), *place.space, p, HUGE_VAL, place.at) ? MS::kSuccess
                                                                                                     : MS::kFailure;
}

}  // namespace

MStatus MFnMesh::getClosestPoint(const MPoint& to, MPoint& closest, MSpace::Space space, int* polygon,
                                 MMeshIsectAccelParams*) const
{
    Place         place;
    const MStatus status = findPlace(read(), target_.get(), to, space, place);
    if (!status)
        return status;
    closest = place.point();
    if (polygon)
        *polygon = place.face();
    return status;
}

MStatus MFnMesh::getClosestNormal(const MPoint& to, MVector& normal, MSpace::Space space, int* polygon,
                                  MMeshIsectAccelParams*) const
{
    Place         place;
    const MStatus status = findPlace(read(), target_.get(), to, space, place);
    if (!status)
        return status;
    normal = place.normal();
    if (polygon)
        *polygon = place.face();
    return status;
}

MStatus MFnMesh::getClosestPointAndNormal(const MPoint& to, MPoint& closest, MVector& normal, MSpace::Space space,
                                          int* polygon, MMeshIsectAccelParams*) const
{
    Place         place;
    const MStatus status = findPlace(read(), target_.get(), to, space, place);
    if (!status)
        return status;
    closest = place.point();
    normal = place.normal();
    if (polygon)
        *polygon = place.face();
    return status;
}

MStatus MFnMesh::getUVAtPoint(MPoint& to, float2& uv, MSpace::Space space, const MString* name, int* polygon,
                              MMeshIsectAccelParams*) const
{
    const MeshBody* body = read();
    const int       index = body ? uvSetOf(*body, name) : -1;
    if (body && index < 0)
        return MS::kInvalidParameter;
    Place         place;
    const MStatus status = findPlace(body, target_.get(), to, space, place);
    if (!status)
        return status;
    const UVSet& set = body->uvSets().sets[size_t(index)];
    const int*   corner = query::triangleCorners(*body, place.at.triangle);
    double       u = 0, v = 0;
    for (int k = 0; k < 3; ++k) {
        const int id = set.id(corner[k]);
        if (id < 0)
            return MS::kFailure;
        u += place.at.w[k] * (*set.uvs)[size_t(id)].u;
        v += place.at.w[k] * (*set.uvs)[size_t(id)].v;
    }
    uv[0] = float(u);
    uv[1] = float(v);
    if (polygon)
        *polygon = place.face();
    return MS::kSuccess;
}

MStatus MFnMesh::getClosestUVs(float u, float v, MIntArray& uvIds, const MString* name) const
{
    const MeshBody* body = read();
    if (!body)
        return MS::kFailure;
    const int index = uvSetOf(*body, name);
    if (index < 0 || !std::isfinite(u) || !std::isfinite(v))
        return MS::kInvalidParameter;
    double           best = DBL_MAX;
    std::vector<int> found;
    const auto&      uvs = *body->uvSets().sets[size_t(index)].uvs;
    for (size_t i = 0; i < uvs.size(); ++i) {
        const double du = double(uvs[i].u) - u, dv = double(uvs[i].v) - v, d = du * du + dv * dv;
        if (!(d <= best))
            continue;
        if (d < best)
            found.clear();
        best = d;
        found.push_back(int(i));
    }
    std::copy(found.begin(), found.end(), room(uvIds, found.size()));
    return MS::kSuccess;
}

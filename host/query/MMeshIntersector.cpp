#include <maya/MMeshIntersector.h>

#include <cmath>

#include "mesh/target.h"
#include "query/mesh_rays.h"

using namespace mirk;

MStatus MPointOnMesh::getPoint(MPoint& point) const
{
    point = exact_;
    return MS::kSuccess;
}

MStatus MPointOnMesh::getNormal(MVector& normal) const
{
    normal = exactNormal_;
    return MS::kSuccess;
}

/// The mesh as it was: its parts are shared with the original until that one is written to.
struct MMeshIntersector::Kept
{
    Kept(const MeshBody& b, const SpaceMatrix& m) : body(make<MeshBody>(b)), space(m), nearest(m) {}

    Ref<MeshBody>      body;
    SpaceMatrix        space;
    query::MeshNearest nearest;
    Ref<query::Tree>   part;              // of some faces; else the mesh's own tree
    const query::Tree* tree = nullptr;
};

MMeshIntersector::MMeshIntersector() = default;
MMeshIntersector::~MMeshIntersector() = default;

MStatus MMeshIntersector::create(MObject& meshObject, const MMatrix& matrix, const MIntArray* faces)
{
    const std::shared_ptr<MeshTarget> target = MeshTarget::of(meshObject);
    const MeshBody* body = target ? target->read() : nullptr;
    if (!body)
        return target ? MS::kFailure : MS::kInvalidParameter;
    const SpaceMatrix space(matrix.matrix);
    if (!space.invertible())
        return MS::kFailure;
    std::vector<int> triangles;
    const Topology&  t = body->topology();
    for (unsigned i = 0; faces && i < faces->length(); ++i) {
        const int face = (*faces)[i];
        if (face < 0 || face >= t.faceCount())
            return MS::kInvalidParameter;
        for (int k = 0; k < t.faceSize(face) - 2; ++k)
            triangles.push_back(firstTriangle(t, face) + k);
    }
    auto kept = std::make_unique<Kept>(*body, space);
    if (faces)
        kept->part = make<query::Tree>(body->points(), t, body->triangles(), &triangles);
    kept->tree = faces ? kept->part.get() : &kept->body->tree();
    kept_ = std::move(kept);
    return MS::kSuccess;
}

bool MMeshIntersector::isCreated() const { return kept_ != nullptr; }

MStatus MMeshIntersector::getClosestPoint(const MPoint& point, MPointOnMesh& info, double maxDistance) const
{
    const double p[3] = {point.x, point.y, point.z};
    if (!kept_)
        return MS::kFailure;
    if (!query::finite(p) || std::isnan(maxDistance))
        return MS::kInvalidParameter;
    query::Nearest at;
    if (maxDistance < 0 || !kept_->nearest.find(*kept_->tree, kept_->space, p, maxDistance, at))
        return MS::kFailure;
    const Vec3   q = at.point, n = at.normal;
    const double l = length(n);
    info.exact_ = MPoint(q.x, q.y, q.z);
    info.exactNormal_ = l > 0 ? MVector(n.x / l, n.y / l, n.z / l) : MVector();
    info.point_ = MFloatPoint(float(q.x), float(q.y), float(q.z));
    info.normal_ = MFloatVector(info.exactNormal_);
    info.face_ = kept_->tree->faceOf(at.triangle);
    info.triangle_ = kept_->tree->inFace(at.triangle);
    info.u_ = float(at.w[0]);
    info.v_ = float(at.w[1]);
    return MS::kSuccess;
}

// What mesh function sets and iterators do along DAG paths.
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>

#include "dag/path_access.h"
#include "mesh/walk.h"

namespace mirk {

namespace {

struct PathMatrix : WorldMatrix
{
    explicit PathMatrix(const MDagPath& p) : path(p) {}
    void get(double m[4][4]) const override { PathAccess::inclusiveMatrix(path, m); }
    MDagPath path;
};

}  // namespace

std::shared_ptr<MeshTarget> meshAlong(const MDagPath& path)
{
    return MeshTarget::of(PathAccess::node(path), std::make_shared<PathMatrix>(path));
}

}  // namespace mirk

MFnMesh::MFnMesh(const MDagPath& path, MStatus* ReturnStatus)
{
    const MStatus status = MFnMesh::setObject(path);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MStatus MFnMesh::setObject(const MDagPath& path)
{
    const MStatus status = bind(mirk::PathAccess::node(path), mirk::meshAlong(path));
    if (status)
        path_ = path;
    return status;
}

MItMeshVertex::MItMeshVertex(const MDagPath& path, const MObject& component, MStatus* ReturnStatus)
    : walk_(std::make_unique<mirk::MeshWalk>(mirk::MeshWalk::vertices))
{
    const MStatus status = reset(path, component);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MStatus MItMeshVertex::reset(const MDagPath& path, const MObject& component) { return walk_->open(mirk::meshAlong(path), component); }

MItMeshPolygon::MItMeshPolygon(const MDagPath& path, const MObject& component, MStatus* ReturnStatus)
    : walk_(std::make_unique<mirk::MeshWalk>(mirk::MeshWalk::faces))
{
    const MStatus status = reset(path, component);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MStatus MItMeshPolygon::reset(const MDagPath& path, const MObject& component) { return walk_->open(mirk::meshAlong(path), component); }

MItMeshEdge::MItMeshEdge(const MDagPath& path, const MObject& component, MStatus* ReturnStatus)
    : walk_(std::make_unique<mirk::MeshWalk>(mirk::MeshWalk::edges))
{
    const MStatus status = reset(path, component);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MStatus MItMeshEdge::reset(const MDagPath& path, const MObject& component) { return walk_->open(mirk::meshAlong(path), component); }

MItMeshFaceVertex::MItMeshFaceVertex(const MDagPath& path, const MObject& component, MStatus* ReturnStatus)
    : walk_(std::make_unique<mirk::MeshWalk>(mirk::MeshWalk::corners))
{
    const MStatus status = reset(path, component);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MStatus MItMeshFaceVertex::reset(const MDagPath& path, const MObject& component) { return walk_->open(mirk::meshAlong(path), component); }

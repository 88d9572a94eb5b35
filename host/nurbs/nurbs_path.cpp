// Geometry iterators, curve and surface function sets on DAG paths, whose world matrix follows the scene.
#if __has_include(<maya/MDagPath.h>)
#include <maya/MDagPath.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MItCurveCV.h>
#include <maya/MItGeometry.h>
#include <maya/MItSurfaceCV.h>

#include "dag/path_access.h"
#include "data/fn_base.h"
#include "nurbs/path_world.h"
#include "nurbs/surface_walk.h"
#include "nurbs/target.h"

using namespace mirk;

namespace {

struct PathWorld : WorldMatrix
{
    explicit PathWorld(const MDagPath& p) : path(p) {}
    void get(double m[4][4]) const override { PathAccess::inclusiveMatrix(path, m); }
    MDagPath path;
};

}  // namespace

namespace mirk {
std::shared_ptr<const WorldMatrix> worldOfPath(const MDagPath& path) { return std::make_shared<PathWorld>(path); }
}

MFnNurbsCurve::MFnNurbsCurve(const MDagPath& path, MStatus* s) { report(s, setObject(path).statusCode()); }
MStatus MFnNurbsCurve::setObject(const MDagPath& path)
{
    const MStatus status = setObject(PathAccess::node(path));
    if (status) {
        world_ = worldOfPath(path);
        path_ = path;
    }
    return status;
}

MFnNurbsSurface::MFnNurbsSurface(const MDagPath& path, MStatus* s) { report(s, setObject(path).statusCode()); }
MStatus MFnNurbsSurface::setObject(const MDagPath& path)
{
    const MStatus status = setObject(PathAccess::node(path));
    if (status) {
        world_ = worldOfPath(path);
        path_ = path;
    }
    return status;
}

MItCurveCV::MItCurveCV(const MDagPath& path, MObject& component, MStatus* s) : walk_(new PointWalk)
{
    const MObject node = PathAccess::node(path);
    report(s, isCurve(node) ? walk_->open(node, component, worldOfPath(path)).statusCode() : MS::kInvalidParameter);
}

MItSurfaceCV::MItSurfaceCV(const MDagPath& path, MObject& component, bool useRows, MStatus* s)
    : walk_(new PointWalk), useRows_(useRows)
{
    report(s, openSurfaceWalk(*walk_, PathAccess::node(path), component, useRows, worldOfPath(path)).statusCode());
}

MItGeometry::MItGeometry(const MDagPath& path, MStatus* s) : walk_(new PointWalk)
{
    report(s, walk_->open(PathAccess::node(path), MObject(), worldOfPath(path)).statusCode());
}
MItGeometry::MItGeometry(const MDagPath& path, MObject& component, MStatus* s) : walk_(new PointWalk)
{
    report(s, walk_->open(PathAccess::node(path), component, worldOfPath(path)).statusCode());
}
#endif

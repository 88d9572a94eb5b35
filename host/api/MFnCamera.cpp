#include <maya/MFnCamera.h>

#include <cmath>

#include <maya/MMatrix.h>

#include "api/api.h"
#include "graph/edit.h"
#include "graph/evaluate.h"

using namespace mirk;

MFnCamera::MFnCamera(const MObject& object, MStatus* s)
{
    const MStatus status = object.hasFn(MFn::kCamera) ? MFnDagNode::setObject(object) : MStatus(MS::kInvalidParameter);
    report(s, status.statusCode());
}

MFnCamera::MFnCamera(const MDagPath& object, MStatus* s)
{
    MDagPath path = object;
    if (!path.hasFn(MFn::kCamera))
        path.extendToShape();
    const MStatus status = path.hasFn(MFn::kCamera) ? MFnDagNode::setObject(path) : MStatus(MS::kInvalidParameter);
    report(s, status.statusCode());
}

MFn::Type MFnCamera::type() const { return MFn::kCamera; }
MObject   MFnCamera::create(MObject& parent, MStatus* s)
{
    const MObject made = MFnDagNode::create("camera", parent, s);
    MDagPath      path;
    if (MDagPath::getAPathTo(made, path) && path.extendToShape())
        MFnDagNode::setObject(path);   // the function set works on the camera itself
    return made;
}

double MFnCamera::number(const char* attribute, MStatus* s) const
{
    Node* n = node();
    Cell* cell = n ? n->cell(n->type->find(attribute)) : nullptr;
    if (!cell)
        return reported(s, MS::kFailure, 0.0);
    eval::pull(*cell);
    return reported(s, MS::kSuccess, cell->number());
}

MStatus MFnCamera::setNumber(const char* attribute, double value)
{
    Node* n = node();
    Cell* cell = n ? n->cell(n->type->find(attribute)) : nullptr;
    if (!cell || !std::isfinite(value))
        return MS::kFailure;
    return api::guarded([&] { edit::setNumber(*cell, value); });
}

namespace {

MMatrix worldOf(MFnCamera& fn)
{
    MDagPath path;
    return fn.getPath(path) ? path.inclusiveMatrix() : MMatrix();
}

constexpr double kMillimetresPerInch = 25.4;

}  // namespace

MVector MFnCamera::direction(const MVector& local, MSpace::Space space, MStatus* s) const
{
    report(s, node() ? MS::kSuccess : MS::kFailure);
    if (space != MSpace::kWorld)
        return local;
    const MMatrix m = worldOf(const_cast<MFnCamera&>(*this));
    MVector       v(local.x * m[0][0] + local.y * m[1][0] + local.z * m[2][0], local.x * m[0][1] + local.y * m[1][1] + local.z * m[2][1],
                    local.x * m[0][2] + local.y * m[1][2] + local.z * m[2][2]);
    return v.normal();
}

MPoint MFnCamera::eyePoint(MSpace::Space space, MStatus* s) const
{
    report(s, node() ? MS::kSuccess : MS::kFailure);
    const MMatrix m = space == MSpace::kWorld ? worldOf(const_cast<MFnCamera&>(*this)) : MMatrix();
    return MPoint(m[3][0], m[3][1], m[3][2]);
}

MVector MFnCamera::viewDirection(MSpace::Space space, MStatus* s) const { return direction(MVector(0, 0, -1), space, s); }
MVector MFnCamera::upDirection(MSpace::Space space, MStatus* s) const { return direction(MVector(0, 1, 0), space, s); }
MVector MFnCamera::rightDirection(MSpace::Space space, MStatus* s) const { return direction(MVector(1, 0, 0), space, s); }
MPoint  MFnCamera::centerOfInterestPoint(MSpace::Space space, MStatus* s) const
{
    return eyePoint(space, s) + viewDirection(space) * centerOfInterest();
}

double  MFnCamera::centerOfInterest(MStatus* s) const { return number("centerOfInterest", s); }
MStatus MFnCamera::setCenterOfInterest(double dist) { return setNumber("centerOfInterest", dist); }
double  MFnCamera::focalLength(MStatus* s) const { return number("focalLength", s); }
MStatus MFnCamera::setFocalLength(double f) { return f >= 2.5 ? setNumber("focalLength", f) : MStatus(MS::kInvalidParameter); }
double  MFnCamera::horizontalFilmAperture(MStatus* s) const { return number("horizontalFilmAperture", s); }
MStatus MFnCamera::setHorizontalFilmAperture(double a) { return a > 0 ? setNumber("horizontalFilmAperture", a) : MStatus(MS::kInvalidParameter); }
double  MFnCamera::verticalFilmAperture(MStatus* s) const { return number("verticalFilmAperture", s); }
MStatus MFnCamera::setVerticalFilmAperture(double a) { return a > 0 ? setNumber("verticalFilmAperture", a) : MStatus(MS::kInvalidParameter); }
double  MFnCamera::nearClippingPlane(MStatus* s) const { return number("nearClipPlane", s); }
MStatus MFnCamera::setNearClippingPlane(double d) { return setNumber("nearClipPlane", d); }
double  MFnCamera::farClippingPlane(MStatus* s) const { return number("farClipPlane", s); }
MStatus MFnCamera::setFarClippingPlane(double d) { return setNumber("farClipPlane", d); }
bool    MFnCamera::isOrtho(MStatus* s) const { return number("orthographic", s) != 0; }
MStatus MFnCamera::setIsOrtho(bool o) { return setNumber("orthographic", o); }
double  MFnCamera::orthoWidth(MStatus* s) const { return number("orthographicWidth", s); }
MStatus MFnCamera::setOrthoWidth(double w) { return setNumber("orthographicWidth", w); }

double MFnCamera::aspectRatio(MStatus* s) const
{
    const double vertical = verticalFilmAperture(s);
    return vertical > 0 ? horizontalFilmAperture() * number("lensSqueezeRatio", nullptr) / vertical : 1;
}

double MFnCamera::horizontalFieldOfView(MStatus* s) const
{
    const double f = focalLength(s);
    return f > 0 ? 2 * std::atan(horizontalFilmAperture() * kMillimetresPerInch / (2 * f)) : 0;
}

double MFnCamera::verticalFieldOfView(MStatus* s) const
{
    const double f = focalLength(s);
    return f > 0 ? 2 * std::atan(verticalFilmAperture() * kMillimetresPerInch / (2 * f)) : 0;
}

MStatus MFnCamera::setHorizontalFieldOfView(double fov)
{
    const double t = std::tan(fov / 2);
    return t > 0 ? setFocalLength(horizontalFilmAperture() * kMillimetresPerInch / (2 * t)) : MStatus(MS::kInvalidParameter);
}

MStatus MFnCamera::setVerticalFieldOfView(double fov)
{
    const double t = std::tan(fov / 2);
    return t > 0 ? setFocalLength(verticalFilmAperture() * kMillimetresPerInch / (2 * t)) : MStatus(MS::kInvalidParameter);
}

MFloatMatrix MFnCamera::projectionMatrix(MStatus* s) const
{
    const double n = nearClippingPlane(s), f = farClippingPlane(), depth = f - n, aspect = aspectRatio();
    double       m[4][4] = {};
    if (!(depth > 0) || !(aspect > 0))
        return MFloatMatrix();
    if (isOrtho()) {
        const double w = orthoWidth();
        if (!(w > 0))
            return MFloatMatrix();
        m[0][0] = 2 / w;
        m[1][1] = 2 * aspect / w;
        m[2][2] = -2 / depth;
        m[3][2] = -(f + n) / depth;
        m[3][3] = 1;
        return MFloatMatrix(m);
    }
    m[0][0] = 1 / std::tan(horizontalFieldOfView() / 2);
    m[1][1] = m[0][0] * aspect;
    m[2][2] = -(f + n) / depth;
    m[2][3] = -1;
    m[3][2] = -2 * f * n / depth;
    return MFloatMatrix(m);
}

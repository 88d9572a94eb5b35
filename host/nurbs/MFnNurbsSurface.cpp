#include <maya/MFnNurbsSurface.h>

#include <maya/MDoubleArray.h>
#include <maya/MPointArray.h>

#include "data/array_access.h"
#include "data/component.h"
#include "data/fn_base.h"
#include "nurbs/surface.h"
#include "nurbs/target.h"

using namespace mirk;

namespace {

/// What a query needs: the surface, ready to evaluate, and the space asked for.
struct Query
{
    OpenSurface         open;
    nurbs::SurfaceView  view;
    NurbsSpace          space;
    std::vector<MPoint> moved;

    Query(const MObject& object, MStatus* status, MSpace::Space s = MSpace::kObject, const WorldMatrix* world = nullptr)
        : open(openSurface(object))
    {
        if (open && !open.body().empty()) {
            view = nurbs::SurfaceView(open.body());
            space = NurbsSpace(s, *open.data, world);
        }
        report(status, *this ? MS::kSuccess : MS::kFailure);
    }
    explicit operator bool() const { return !view.empty(); }
    bool onSurface(double u, double v) const { return inside(view.u, view.periodicU, u) && inside(view.v, view.periodicV, v); }
    /// Takes the CVs into the space asked for: nearest points and areas are not those of object space moved.
    void moveCvs()
    {
        if (!space.active)
            return;
        for (int i = 0; i < view.u.cvCount * view.v.cvCount; ++i)
            moved.push_back(view.cvs[i] * space.out);
        view.cvs = moved.data();
    }

private:
    static bool inside(const nurbs::Knots& k, bool periodic, double t)
    {
        return periodic ? std::isfinite(t) : t >= k.start() - 1e-9 && t <= k.end() + 1e-9;
    }
};

MObject place(MObject& object, const Ref<SurfaceBody>& body, const MObject& owner, MStatus* status)
{
    if (auto* data = objectAs<SurfaceData>(owner)) {
        assignGeometry(*data->body, *body);
        data->body->groups = body->groups;
        std::memcpy(data->body->matrix, body->matrix, sizeof body->matrix);
        data->body->identity = body->identity;
        object = owner;
        return reported(status, MS::kSuccess, owner);
    }
    Ref<Object> shape;
    Ref<Object> made = createSurfaceShape && !objectAs<Data>(owner)
                           ? createSurfaceShape(ObjectAccess::get(owner), make<SurfaceData>(body), shape)
                           : Ref<Object>();
    if (!made)
        return reported(status, MS::kInvalidParameter, MObject());
    object = wrap(shape);
    return reported(status, MS::kSuccess, wrap(made));
}

MStatus copyKnots(const nurbs::Knots& k, MDoubleArray& out)
{
    if (k.cvCount == 0)
        return MS::kFailure;
    out.setLength(unsigned(k.knotCount()));
    std::copy_n(k.knots, k.knotCount(), &out[0]);
    return MS::kSuccess;
}

double knotAt(const nurbs::Knots& k, unsigned index, MStatus* s)
{
    if (k.cvCount == 0 || index >= unsigned(k.knotCount()))
        return reported(s, k.cvCount ? MS::kInvalidParameter : MS::kFailure, 0.0);
    return k.knots[index];
}

}  // namespace

MFnNurbsSurface::MFnNurbsSurface(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnNurbsSurface::~MFnNurbsSurface() = default;
MFn::Type MFnNurbsSurface::type() const { return MFn::kNurbsSurface; }
bool      MFnNurbsSurface::acceptsObject(const MObject& object) const { return isSurface(object); }
MStatus   MFnNurbsSurface::setObject(MObject& object) { return setObject(static_cast<const MObject&>(object)); }
MStatus   MFnNurbsSurface::setObject(const MObject& object)
{
    world_ = nullptr;
    path_ = MDagPath();
    return MFnBase::setObject(object);
}

// --- making ----------------------------------------------------------------------------------------------------------

MObject MFnNurbsSurface::create(const MPointArray& cvs, const MDoubleArray& uKnots, const MDoubleArray& vKnots, unsigned degreeU,
                                unsigned degreeV, Form formU, Form formV, bool rational, MObject owner, MStatus* s)
{
    const Buffer<MPoint>& points = bufferOf(cvs);
    const Buffer<double>& ku = bufferOf(uKnots);
    const Buffer<double>& kv = bufferOf(vKnots);
    auto                  body = make<SurfaceBody>();
    if (!buildSurface(*body, points.data(), points.size(), ku.data(), ku.size(), kv.data(), kv.size(),
                      int(std::min(degreeU, 1000u)), int(std::min(degreeV, 1000u)), NurbsForm(formU), NurbsForm(formV),
                      rational).empty())
        return reported(s, MS::kInvalidParameter, MObject());
    world_ = nullptr;
    path_ = MDagPath();
    return place(object_, body, owner, s);
}

MObject MFnNurbsSurface::copy(const MObject& source, MObject owner, MStatus* s)
{
    const OpenSurface open = openSurface(source);
    if (!open)
        return reported(s, MS::kInvalidParameter, MObject());
    auto body = make<SurfaceBody>(open.body());
    if (open.data->transformed)
        bakeMatrix(*body);
    world_ = nullptr;
    path_ = MDagPath();
    return place(object_, body, owner, s);
}

// --- what it is ------------------------------------------------------------------------------------------------------

MFnNurbsSurface::Form MFnNurbsSurface::formInU(MStatus* s) const
{
    const Query q(object_, s);
    return q ? Form(int(q.open.body().formU)) : kInvalid;
}
MFnNurbsSurface::Form MFnNurbsSurface::formInV(MStatus* s) const
{
    const Query q(object_, s);
    return q ? Form(int(q.open.body().formV)) : kInvalid;
}
int MFnNurbsSurface::degreeU(MStatus* s) const { return Query(object_, s).view.u.degree; }
int MFnNurbsSurface::degreeV(MStatus* s) const { return Query(object_, s).view.v.degree; }
int MFnNurbsSurface::numCVsInU(MStatus* s) const { return Query(object_, s).view.u.cvCount; }
int MFnNurbsSurface::numCVsInV(MStatus* s) const { return Query(object_, s).view.v.cvCount; }
int MFnNurbsSurface::numSpansInU(MStatus* s) const
{
    const Query q(object_, s);
    return q ? int(nurbs::spans(q.view.u).size()) : 0;
}
int MFnNurbsSurface::numSpansInV(MStatus* s) const
{
    const Query q(object_, s);
    return q ? int(nurbs::spans(q.view.v).size()) : 0;
}
int MFnNurbsSurface::numKnotsInU(MStatus* s) const
{
    const Query q(object_, s);
    return q ? q.view.u.knotCount() : 0;
}
int MFnNurbsSurface::numKnotsInV(MStatus* s) const
{
    const Query q(object_, s);
    return q ? q.view.v.knotCount() : 0;
}
MStatus MFnNurbsSurface::getKnotDomain(double& startU, double& endU, double& startV, double& endV) const
{
    const Query q(object_, nullptr);
    if (!q)
        return MS::kFailure;
    startU = q.view.u.start();
    endU = q.view.u.end();
    startV = q.view.v.start();
    endV = q.view.v.end();
    return MS::kSuccess;
}
double  MFnNurbsSurface::knotInU(unsigned index, MStatus* s) const { return knotAt(Query(object_, s).view.u, index, s); }
double  MFnNurbsSurface::knotInV(unsigned index, MStatus* s) const { return knotAt(Query(object_, s).view.v, index, s); }
MStatus MFnNurbsSurface::getKnotsInU(MDoubleArray& knots) const
{
    const Query q(object_, nullptr);
    return copyKnots(q.view.u, knots);
}
MStatus MFnNurbsSurface::getKnotsInV(MDoubleArray& knots) const
{
    const Query q(object_, nullptr);
    return copyKnots(q.view.v, knots);
}

// --- CVs -------------------------------------------------------------------------------------------------------------

MStatus MFnNurbsSurface::getCV(unsigned indexU, unsigned indexV, MPoint& point, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q)
        return MS::kFailure;
    if (indexU >= unsigned(q.view.u.cvCount) || indexV >= unsigned(q.view.v.cvCount))
        return MS::kInvalidParameter;
    point = q.space.pointOut(q.view.cvs[size_t(indexU) * size_t(q.view.v.cvCount) + indexV]);
    return MS::kSuccess;
}

MStatus MFnNurbsSurface::setCV(unsigned indexU, unsigned indexV, const MPoint& point, MSpace::Space space)
{
    const OpenSurface open = openSurface(object_, true);
    if (!open)
        return MS::kFailure;
    SurfaceBody& body = open.body();
    if (indexU >= unsigned(body.cvsU) || indexV >= unsigned(body.cvsV))
        return MS::kInvalidParameter;
    const MPoint p = NurbsSpace(space, *open.data, world_.get()).pointIn(point);
    writeCv(body, detach(body.cvs).data(), int(indexU), int(indexV), p);
    open.changed();
    return MS::kSuccess;
}

MStatus MFnNurbsSurface::getCVs(MPointArray& points, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q.open)
        return MS::kFailure;
    const unsigned n = unsigned(q.open.body().cvs->size());
    points.setLength(n);
    for (unsigned i = 0; i < n; ++i)
        points[i] = q.space.pointOut(q.view.cvs[i]);
    return MS::kSuccess;
}

MStatus MFnNurbsSurface::setCVs(const MPointArray& points, MSpace::Space space)
{
    const OpenSurface open = openSurface(object_, true);
    if (!open)
        return MS::kFailure;
    SurfaceBody& body = open.body();
    if (points.length() != body.cvs->size())
        return MS::kInvalidParameter;
    const NurbsSpace to(space, *open.data, world_.get());
    Buffer<MPoint>&  cvs = detach(body.cvs);
    for (unsigned i = 0; i < points.length(); ++i) {
        cvs[i] = to.pointIn(points[i]);
        if (!body.rational)
            cvs[i].w = 1;
    }
    syncPeriodic(body);
    open.changed();
    return MS::kSuccess;
}

MObject MFnNurbsSurface::cv(unsigned indexU, unsigned indexV, MStatus* s) const
{
    const Query q(object_, s);
    if (!q || indexU >= unsigned(q.view.u.cvCount) || indexV >= unsigned(q.view.v.cvCount))
        return reported(s, q ? MS::kInvalidParameter : MS::kFailure, MObject());
    const Ref<Component> component = makeComponent(MFn::kSurfaceCVComponent);
    const int            element[2] = {int(indexU), int(indexV)};
    addElements(*component, element, 1);
    return wrap(component);
}

MStatus MFnNurbsSurface::updateSurface()
{
    const OpenSurface open = openSurface(object_);
    if (!open)
        return MS::kFailure;
    open.changed();
    return MS::kSuccess;
}

// --- evaluation ------------------------------------------------------------------------------------------------------

bool MFnNurbsSurface::isParamOnSurface(double u, double v, MStatus* s) const
{
    const Query q(object_, s);
    return q && u >= q.view.u.start() && u <= q.view.u.end() && v >= q.view.v.start() && v <= q.view.v.end();
}

MStatus MFnNurbsSurface::getPointAtParam(double u, double v, MPoint& point, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q || !q.onSurface(u, v))
        return q ? MS::kInvalidParameter : MS::kFailure;
    point = MPoint(q.space.positionOut(nurbs::pointAt(q.view, u, v)));
    return MS::kSuccess;
}

MVector MFnNurbsSurface::normal(double u, double v, MSpace::Space space, MStatus* s) const
{
    const Query q(object_, s, space, world_.get());
    if (!q || !q.onSurface(u, v))
        return reported(s, q ? MS::kInvalidParameter : MS::kFailure, MVector());
    const MVector n = nurbs::normalAt(q.view, u, v);
    return q.space.active ? n.transformAsNormal(q.space.out).normal() : n;
}

MStatus MFnNurbsSurface::getTangents(double u, double v, MVector& tangentU, MVector& tangentV, MSpace::Space space) const
{
    MPoint        position;
    const MStatus status = getDerivativesAtParam(u, v, position, tangentU, tangentV, space);
    if (status) {
        tangentU.normalize();
        tangentV.normalize();
    }
    return status;
}

MStatus MFnNurbsSurface::getDerivativesAtParam(double u, double v, MPoint& position, MVector& dU, MVector& dV,
                                               MSpace::Space space, MVector* dUU, MVector* dVV, MVector* dUV) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q || !q.onSurface(u, v))
        return q ? MS::kInvalidParameter : MS::kFailure;
    const nurbs::SurfaceDerivatives d = nurbs::derivativesAt(q.view, u, v);
    position = MPoint(q.space.positionOut(d.p));
    dU = q.space.vectorOut(d.du);
    dV = q.space.vectorOut(d.dv);
    if (dUU)
        *dUU = q.space.vectorOut(d.duu);
    if (dVV)
        *dVV = q.space.vectorOut(d.dvv);
    if (dUV)
        *dUV = q.space.vectorOut(d.duv);
    return MS::kSuccess;
}

// --- closest point, area ---------------------------------------------------------------------------------------------

MPoint MFnNurbsSurface::closestPoint(const MPoint& toThisPoint, double* paramU, double* paramV, bool, double,
                                     MSpace::Space space, MStatus* s) const
{
    Query q(object_, s, space, world_.get());
    if (!q)
        return MPoint();
    q.moveCvs();
    const nurbs::UV at = nurbs::closestParams(q.view, MVector(toThisPoint));
    if (paramU)
        *paramU = at.u;
    if (paramV)
        *paramV = at.v;
    return MPoint(nurbs::pointAt(q.view, at.u, at.v));
}

double MFnNurbsSurface::distanceToPoint(const MPoint& point, MSpace::Space space, MStatus* s) const
{
    MStatus      status;
    const MPoint nearest = closestPoint(point, nullptr, nullptr, false, 1e-3, space, &status);
    return reported(s, status.statusCode(), status ? nearest.distanceTo(point) : 0.0);
}

MStatus MFnNurbsSurface::getParamAtPoint(const MPoint& point, double& paramU, double& paramV, MSpace::Space space,
                                         double tolerance) const
{
    double       u = 0, v = 0;
    MStatus      status;
    const MPoint nearest = closestPoint(point, &u, &v, false, tolerance, space, &status);
    if (!status)
        return status;
    if (nearest.distanceTo(point) > tolerance)
        return MS::kInvalidParameter;
    paramU = u;
    paramV = v;
    return MS::kSuccess;
}

double MFnNurbsSurface::area(MSpace::Space space, double tolerance, MStatus* s) const
{
    Query q(object_, s, space, world_.get());
    if (!q)
        return 0;
    q.moveCvs();
    return nurbs::area(q.view, tolerance > 0 ? std::min(tolerance, 1e-3) : 1e-3);
}

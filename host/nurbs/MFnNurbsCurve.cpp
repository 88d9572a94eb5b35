#include <maya/MFnNurbsCurve.h>

#include <maya/MDoubleArray.h>
#include <maya/MPointArray.h>

#include "data/array_access.h"
#include "data/component.h"
#include "data/fn_base.h"
#include "nurbs/construct.h"
#include "nurbs/fit.h"
#include "nurbs/target.h"

using namespace mirk;

namespace {

/// What a query needs: the curve, ready to evaluate, and the space asked for.
struct Query
{
    OpenCurve        open;
    nurbs::CurveView view;
    NurbsSpace       space;

    Query(const MObject& object, MStatus* status, MSpace::Space s = MSpace::kObject, const WorldMatrix* world = nullptr)
        : open(openCurve(object))
    {
        if (open && !open.body().empty()) {
            view = nurbs::CurveView(open.body());
            space = NurbsSpace(s, *open.data, world);
        }
        report(status, *this ? MS::kSuccess : MS::kFailure);
    }
    explicit operator bool() const { return !view.empty(); }
    bool onCurve(double u) const { return view.periodic ? std::isfinite(u) : u >= view.k.start() - 1e-9 && u <= view.k.end() + 1e-9; }
};

/// Puts a finished curve where the caller wants it: into curve data, or under a transform.
MObject place(MObject& object, const Ref<CurveBody>& body, const MObject& owner, MStatus* status)
{
    if (auto* data = objectAs<CurveData>(owner)) {
        assignGeometry(*data->body, *body);
        data->body->groups = body->groups;
        std::memcpy(data->body->matrix, body->matrix, sizeof body->matrix);
        data->body->identity = body->identity;
        object = owner;
        return reported(status, MS::kSuccess, owner);
    }
    Ref<Object> shape;
    Ref<Object> made = createCurveShape && !objectAs<Data>(owner)
                           ? createCurveShape(ObjectAccess::get(owner), make<CurveData>(body), shape)
                           : Ref<Object>();
    if (!made)
        return reported(status, MS::kInvalidParameter, MObject());
    object = wrap(shape);
    return reported(status, MS::kSuccess, wrap(made));
}

}  // namespace

MFnNurbsCurve::MFnNurbsCurve(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnNurbsCurve::~MFnNurbsCurve() = default;
MFn::Type MFnNurbsCurve::type() const { return MFn::kNurbsCurve; }
bool      MFnNurbsCurve::acceptsObject(const MObject& object) const { return isCurve(object); }
MStatus   MFnNurbsCurve::setObject(MObject& object) { return setObject(static_cast<const MObject&>(object)); }
MStatus   MFnNurbsCurve::setObject(const MObject& object)
{
    world_ = nullptr;
    path_ = MDagPath();
    return MFnBase::setObject(object);
}

// --- making ----------------------------------------------------------------------------------------------------------

MObject MFnNurbsCurve::create(const MPointArray& cvs, const MDoubleArray& knots, unsigned degree, Form form, bool create2D,
                              bool rational, MObject owner, MStatus* s)
{
    const Buffer<MPoint>& points = bufferOf(cvs);
    const Buffer<double>& k = bufferOf(knots);
    auto                  body = make<CurveBody>();
    if (!buildCurve(*body, points.data(), points.size(), k.data(), k.size(), int(std::min(degree, 1000u)), NurbsForm(form),
                    create2D, rational).empty())
        return reported(s, MS::kInvalidParameter, MObject());
    world_ = nullptr;
    path_ = MDagPath();
    return place(object_, body, owner, s);
}

MObject MFnNurbsCurve::createWithEditPoints(const MPointArray& editPoints, unsigned degree, Form form, bool create2D,
                                            bool rational, bool uniformParam, MObject owner, MStatus* s)
{
    const Buffer<MPoint>&     points = bufferOf(editPoints);
    const std::vector<MPoint> list(points.begin(), points.end());
    std::string               why;
    Ref<CurveBody>            body;
    if (form == kOpen || form == kClosed || form == kPeriodic)
        body = nurbs::interpolate(list, int(std::min(degree, 1000u)), form == kPeriodic, uniformParam, why);
    if (!body)
        return reported(s, MS::kInvalidParameter, MObject());
    if (form == kClosed)
        body->form = NurbsForm::closed;
    body->rational = rational;
    body->is2D = create2D;
    if (create2D)
        for (MPoint& p : detach(body->cvs))
            p.z = 0;
    world_ = nullptr;
    path_ = MDagPath();
    return place(object_, body, owner, s);
}

MObject MFnNurbsCurve::copy(const MObject& source, MObject owner, MStatus* s)
{
    const OpenCurve open = openCurve(source);
    if (!open)
        return reported(s, MS::kInvalidParameter, MObject());
    auto body = make<CurveBody>(open.body());
    if (open.data->transformed)
        bakeMatrix(*body);
    world_ = nullptr;
    path_ = MDagPath();
    return place(object_, body, owner, s);
}

// --- what it is ------------------------------------------------------------------------------------------------------

MFnNurbsCurve::Form MFnNurbsCurve::form(MStatus* s) const
{
    const Query q(object_, s);
    return q ? Form(int(q.open.body().form)) : kInvalid;
}
int MFnNurbsCurve::degree(MStatus* s) const { return Query(object_, s).view.k.degree; }
int MFnNurbsCurve::numCVs(MStatus* s) const { return Query(object_, s).view.k.cvCount; }
int MFnNurbsCurve::numSpans(MStatus* s) const
{
    const Query q(object_, s);
    return q ? int(nurbs::spans(q.view.k).size()) : 0;
}
int MFnNurbsCurve::numKnots(MStatus* s) const
{
    const Query q(object_, s);
    return q ? q.view.k.knotCount() : 0;
}
MStatus MFnNurbsCurve::getKnotDomain(double& start, double& end) const
{
    const Query q(object_, nullptr);
    if (!q)
        return MS::kFailure;
    start = q.view.k.start();
    end = q.view.k.end();
    return MS::kSuccess;
}

// --- CVs and knots ---------------------------------------------------------------------------------------------------

MStatus MFnNurbsCurve::getCV(unsigned index, MPoint& point, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q)
        return MS::kFailure;
    if (index >= unsigned(q.view.k.cvCount))
        return MS::kInvalidParameter;
    point = q.space.pointOut(q.view.cvs[index]);
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::setCV(unsigned index, const MPoint& point, MSpace::Space space)
{
    const OpenCurve open = openCurve(object_, true);
    if (!open)
        return MS::kFailure;
    CurveBody& body = open.body();
    if (index >= unsigned(body.cvCount()))
        return MS::kInvalidParameter;
    writeCv(body, detach(body.cvs).data(), int(index), NurbsSpace(space, *open.data, world_.get()).pointIn(point));
    open.changed();
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::getCVs(MPointArray& points, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q.open)
        return MS::kFailure;
    const unsigned n = unsigned(q.view.k.cvCount);
    points.setLength(n);
    if (!n)
        return MS::kSuccess;
    MPoint* out = &points[0];
    if (!q.space.active)
        std::copy_n(q.view.cvs, n, out);
    else
        for (unsigned i = 0; i < n; ++i)
            out[i] = q.view.cvs[i] * q.space.out;
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::setCVs(const MPointArray& points, MSpace::Space space)
{
    const OpenCurve open = openCurve(object_, true);
    if (!open)
        return MS::kFailure;
    CurveBody& body = open.body();
    if (points.length() != unsigned(body.cvCount()))
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

MObject MFnNurbsCurve::cv(unsigned index, MStatus* s) const { return cvs(index, index, s); }

MObject MFnNurbsCurve::cvs(unsigned startIndex, unsigned endIndex, MStatus* s) const
{
    const Query q(object_, s);
    if (!q)
        return MObject();
    if (startIndex > endIndex || endIndex >= unsigned(q.view.k.cvCount))
        return reported(s, MS::kInvalidParameter, MObject());
    std::vector<int> indices;
    for (unsigned i = startIndex; i <= endIndex; ++i)
        indices.push_back(int(i));
    const Ref<Component> component = makeComponent(MFn::kCurveCVComponent);
    addElements(*component, indices.data(), indices.size());
    return wrap(component);
}

double MFnNurbsCurve::knot(unsigned index, MStatus* s) const
{
    const Query q(object_, s);
    if (!q || index >= unsigned(q.view.k.knotCount()))
        return reported(s, q ? MS::kInvalidParameter : MS::kFailure, 0.0);
    return q.view.k.knots[index];
}

MStatus MFnNurbsCurve::getKnots(MDoubleArray& knots) const
{
    const Query q(object_, nullptr);
    if (!q)
        return MS::kFailure;
    knots.setLength(unsigned(q.view.k.knotCount()));
    std::copy_n(q.view.k.knots, q.view.k.knotCount(), &knots[0]);
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::setKnot(unsigned index, double param)
{
    MDoubleArray one;
    one.append(param);
    return setKnots(one, index, index);
}

MStatus MFnNurbsCurve::setKnots(const MDoubleArray& knots, unsigned startIndex, unsigned endIndex)
{
    const OpenCurve open = openCurve(object_, true);
    if (!open)
        return MS::kFailure;
    CurveBody& body = open.body();
    if (startIndex > endIndex || endIndex >= body.knots->size() || knots.length() != endIndex - startIndex + 1)
        return MS::kInvalidParameter;
    Buffer<double> next(*body.knots);
    std::copy_n(bufferOf(knots).data(), knots.length(), next.data() + startIndex);
    CurveBody checked;
    if (!buildCurve(checked, std::as_const(*body.cvs).data(), body.cvs->size(), next.data(), next.size(), body.degree,
                    body.form, body.is2D, body.rational).empty())
        return MS::kInvalidParameter;
    body.knots = checked.knots;
    open.changed();
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::reverse()
{
    const OpenCurve open = openCurve(object_, true);
    if (!open || open.body().empty())
        return MS::kFailure;
    nurbs::reverse(open.body());
    open.changed();
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::updateCurve()
{
    const OpenCurve open = openCurve(object_);
    if (!open)
        return MS::kFailure;
    open.changed();
    return MS::kSuccess;
}

// --- evaluation ------------------------------------------------------------------------------------------------------

bool MFnNurbsCurve::isParamOnCurve(double param, MStatus* s) const
{
    const Query q(object_, s);
    return q && param >= q.view.k.start() && param <= q.view.k.end();
}

bool MFnNurbsCurve::isPointOnCurve(const MPoint& point, double tolerance, MSpace::Space space, MStatus* s) const
{
    const Query q(object_, s, space, world_.get());
    return q && distanceToPoint(point, space) <= tolerance;
}

bool MFnNurbsCurve::isPlanar(MVector* planeNormal, MStatus* s) const
{
    const Query q(object_, s);
    return q && nurbs::isPlanar(q.view, planeNormal);
}

MStatus MFnNurbsCurve::getPointAtParam(double param, MPoint& point, MSpace::Space space) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q)
        return MS::kFailure;
    if (!q.onCurve(param))
        return MS::kInvalidParameter;
    point = MPoint(q.space.positionOut(nurbs::pointAt(q.view, param)));
    return MS::kSuccess;
}

MStatus MFnNurbsCurve::getParamAtPoint(const MPoint& point, double& param, MSpace::Space space) const
{
    return getParamAtPoint(point, param, kMFnNurbsEpsilon, space);
}

MStatus MFnNurbsCurve::getParamAtPoint(const MPoint& point, double& param, double tolerance, MSpace::Space space) const
{
    double        nearest = 0;
    MStatus       status;
    const MPoint  closest = closestPoint(point, &nearest, tolerance, space, &status);
    if (!status)
        return status;
    if (closest.distanceTo(point) > tolerance)
        return MS::kInvalidParameter;
    param = nearest;
    return MS::kSuccess;
}

MVector MFnNurbsCurve::tangent(double param, MSpace::Space space, MStatus* s) const
{
    const Query q(object_, s, space, world_.get());
    if (!q || !q.onCurve(param))
        return reported(s, q ? MS::kInvalidParameter : MS::kFailure, MVector());
    return q.space.vectorOut(nurbs::tangentAt(q.view, param)).normal();
}

MVector MFnNurbsCurve::normal(double param, MSpace::Space space, MStatus* s) const
{
    const Query q(object_, s, space, world_.get());
    if (!q || !q.onCurve(param))
        return reported(s, q ? MS::kInvalidParameter : MS::kFailure, MVector());
    const MVector n = q.space.vectorOut(nurbs::normalAt(q.view, param));
    const MVector t = q.space.vectorOut(nurbs::tangentAt(q.view, param)).normal();
    return (n - (n * t) * t).normal();   // a skewing matrix does not keep the right angle
}

MStatus MFnNurbsCurve::getDerivativesAtParm(double param, MPoint& position, MVector& dU, MSpace::Space space,
                                            MVector* dUU) const
{
    const Query q(object_, nullptr, space, world_.get());
    if (!q || !q.onCurve(param))
        return q ? MS::kInvalidParameter : MS::kFailure;
    const nurbs::CurveDerivatives d = nurbs::derivativesAt(q.view, param);
    position = MPoint(q.space.positionOut(d.p));
    dU = q.space.vectorOut(d.d1);
    if (dUU)
        *dUU = q.space.vectorOut(d.d2);
    return MS::kSuccess;
}

// --- closest point, length -------------------------------------------------------------------------------------------

MPoint MFnNurbsCurve::closestPoint(const MPoint& toThisPoint, double* param, double, MSpace::Space space, MStatus* s) const
{
    Query q(object_, s, space, world_.get());
    if (!q)
        return MPoint();
    // a matrix that scales unevenly moves the nearest point, so distances are taken in the space asked for
    std::vector<MPoint> moved;
    if (q.space.active) {
        for (int i = 0; i < q.view.k.cvCount; ++i)
            moved.push_back(q.view.cvs[i] * q.space.out);
        q.view.cvs = moved.data();
    }
    const double u = nurbs::closestParam(q.view, MVector(toThisPoint));
    if (param)
        *param = u;
    return MPoint(nurbs::pointAt(q.view, u));
}

double MFnNurbsCurve::distanceToPoint(const MPoint& point, MSpace::Space space, MStatus* s) const
{
    MStatus      status;
    const MPoint nearest = closestPoint(point, nullptr, kMFnNurbsEpsilon, space, &status);
    return reported(s, status.statusCode(), status ? nearest.distanceTo(point) : 0.0);
}

double MFnNurbsCurve::length(double tolerance, MStatus* s) const
{
    const Query q(object_, s);
    return q ? nurbs::arcLength(q.view, std::min(tolerance > 0 ? tolerance : kMFnNurbsEpsilon, kMFnNurbsEpsilon)) : 0.0;
}

double MFnNurbsCurve::findLengthFromParam(double param, MStatus* s) const
{
    const Query q(object_, s);
    return q ? nurbs::arcLength(q.view, q.view.k.start(), param) : 0.0;
}

double MFnNurbsCurve::findParamFromLength(double partLength, MStatus* s) const
{
    const Query q(object_, s);
    return q ? nurbs::paramAtLength(q.view, partLength) : 0.0;
}

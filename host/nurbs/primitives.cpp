#include "nurbs/primitives.h"

#include <algorithm>
#include <cmath>

#include "nurbs/basis.h"

namespace mirk::nurbs {
namespace {

constexpr double kTurn = 2 * M_PI;
constexpr int    kMostSections = 10000;

/// Right-handed axes (x, y, z) of which y is the given one and which are the world's for a world Y axis.
struct Axes { MVector x, y, z; };
Axes axesOf(const MVector& axis)
{
    const MVector y = axis.length() > 0 ? axis.normal() : MVector::yAxis;
    MVector       x = std::abs(y.y) > 0.999999 ? MVector::xAxis : (MVector::yAxis ^ y);
    x = (x - (x * y) * y).normal();
    return {x, y, x ^ y};
}

/// Weights that turn directions into a curve about the unit circle: angle and distance of each CV. The curve meets the
/// circle at the span ends.
struct Arc
{
    bool                periodic = false;
    int                 degree = 3;
    std::vector<double> knots;
    struct Cv { double x, y; };
    std::vector<Cv> cvs;
};

Arc arcOf(double start, double sweep, int degree, int sections)
{
    Arc        arc;
    const bool full = std::abs(sweep) > kTurn - 1e-9;
    const double step = (full ? (sweep < 0 ? -kTurn : kTurn) : sweep) / sections;
    arc.degree = degree;
    if (degree == 1) {
        arc.knots = uniformKnots(sections, 1, false);
        for (int i = 0; i <= sections; ++i)
            arc.cvs.push_back({std::cos(start + i * step), std::sin(start + i * step)});
        arc.periodic = full;
        if (full)
            arc.cvs.back() = arc.cvs.front();
        return arc;
    }
    if (full) {
        // (p[i-1] + 4 p[i] + p[i+1]) / 6 lies on the circle
        const double r = 6 / (4 + 2 * std::cos(step));
        arc.knots = uniformKnots(sections, 3, true);
        arc.periodic = true;
        for (int i = 0; i < sections + 3; ++i) {
            const double angle = start + (i % sections - 1) * step;
            arc.cvs.push_back({r * std::cos(angle), r * std::sin(angle)});
        }
        return arc;
    }
    // Clamped uniform cubic spline through the points of the arc, with the arc's own speed at its ends: by the tridiagonal
    // system for the inner CVs.
    arc.knots = uniformKnots(sections, 3, false);
    const Knots k{arc.knots.data(), sections + 3, 3};
    const int   n = sections + 3;
    const auto  on = [&](int i) { return Arc::Cv{std::cos(start + i * step), std::sin(start + i * step)}; };
    arc.cvs.resize(size_t(n));
    const double end = start + sections * step;
    arc.cvs[0] = on(0);
    arc.cvs[size_t(n - 1)] = on(sections);
    arc.cvs[1] = {arc.cvs[0].x - std::sin(start) * step / 3, arc.cvs[0].y + std::cos(start) * step / 3};
    arc.cvs[size_t(n - 2)] = {on(sections).x + std::sin(end) * step / 3, on(sections).y - std::cos(end) * step / 3};
    const int            inner = sections - 1;   // CVs 2 .. n - 3, points 1 .. sections - 1
    std::vector<double>  upper(size_t(std::max(inner, 0)));
    std::vector<Arc::Cv> right(upper.size());
    for (int i = 0; i < inner; ++i) {
        double    b[3][kMaxDegree + 1];
        const int span = findSpan(k, i + 1.0);
        basis(k, span, i + 1.0, 0, b);   // CVs i + 1, i + 2, i + 3 have weight here
        double  lower = b[0][0], diagonal = b[0][1], above = b[0][2];
        Arc::Cv rhs = on(i + 1);
        const auto take = [&](double weight, const Arc::Cv& cv) { rhs.x -= weight * cv.x; rhs.y -= weight * cv.y; };
        if (i == 0)
            take(lower, arc.cvs[1]);
        if (i == inner - 1)
            take(above, arc.cvs[size_t(n - 2)]);
        if (i > 0) {
            diagonal -= lower * upper[size_t(i - 1)];
            take(lower, right[size_t(i - 1)]);
        }
        upper[size_t(i)] = above / diagonal;
        right[size_t(i)] = {rhs.x / diagonal, rhs.y / diagonal};
    }
    for (int i = inner - 1; i >= 0; --i) {
        Arc::Cv cv = right[size_t(i)];
        if (i < inner - 1) {
            cv.x -= upper[size_t(i)] * arc.cvs[size_t(i + 3)].x;
            cv.y -= upper[size_t(i)] * arc.cvs[size_t(i + 3)].y;
        }
        arc.cvs[size_t(i + 2)] = cv;
    }
    return arc;
}

bool checkArc(double sweep, int degree, int sections, std::string& why)
{
    const bool full = std::abs(sweep) > kTurn - 1e-9;
    if (degree != 1 && degree != 3)
        why = "degree " + std::to_string(degree) + " is neither 1 nor 3";
    else if (sections < (full ? 3 : 1) || sections > kMostSections)
        why = std::to_string(sections) + " sections are not between " + std::to_string(full ? 3 : 1) + " and " +
              std::to_string(kMostSections);
    else if (!std::isfinite(sweep) || sweep == 0)
        why = "the sweep angle is zero";
    return why.empty();
}

bool checkSize(double value, const char* what, std::string& why)
{
    if (!std::isfinite(value) || value <= 0)
        why = std::string("the ") + what + " must be positive";
    return why.empty();
}

Ref<CurveBody> straight(const MVector& from, const MVector& to, int degree, int spanCount, std::string& why)
{
    const std::vector<double> knots = uniformKnots(spanCount, degree, false);
    const int                 n = spanCount + degree;
    std::vector<MPoint>       cvs;
    for (int i = 0; i < n; ++i) {
        double sum = 0;   // CVs at the Greville parameters keep the speed even
        for (int j = 0; j < degree; ++j)
            sum += knots[size_t(i + j)];
        const MVector p = from + (to - from) * (sum / degree / spanCount);
        cvs.emplace_back(p.x, p.y, p.z);
    }
    auto body = make<CurveBody>();
    why = buildCurve(*body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree, NurbsForm::open, false, false);
    return why.empty() ? body : Ref<CurveBody>();
}

Ref<CurveBody> curveOfArc(const Arc& arc, const MVector& center, const MVector& x, const MVector& y, double radius,
                          std::string& why)
{
    std::vector<MPoint> cvs;
    for (const Arc::Cv& cv : arc.cvs) {
        const MVector p = center + (x * cv.x + y * cv.y) * radius;
        cvs.emplace_back(p.x, p.y, p.z);
    }
    auto body = make<CurveBody>();
    why = buildCurve(*body, cvs.data(), cvs.size(), arc.knots.data(), arc.knots.size(), arc.degree,
                     arc.periodic ? NurbsForm::periodic : NurbsForm::open, false, false);
    return why.empty() ? body : Ref<CurveBody>();
}

bool checkSpans(int spanCount, const char* what, std::string& why)
{
    if (spanCount < 1 || spanCount > kMostSections)
        why = std::to_string(spanCount) + " " + what + " are not between 1 and " + std::to_string(kMostSections);
    return why.empty();
}

}  // namespace

// Surfaces of revolution turn about the downward axis, so that dU x dV of an upward profile looks outward.

Ref<CurveBody> circle(const Placement& at, double radius, double sweep, int degree, int sections, std::string& why)
{
    why.clear();
    if (!checkArc(sweep, degree, sections, why) || !checkSize(radius, "radius", why))
        return {};
    const Axes axes = axesOf(at.axis);
    // begins on the far side, runs against the clock when the axis points at the viewer
    return curveOfArc(arcOf(M_PI / 2, sweep, degree, sections), at.center, axes.x, -axes.z, radius, why);
}

Ref<CurveBody> curveFromCvs(std::vector<MPoint> cvs, std::vector<double> knots, int degree, bool periodic, bool rational,
                            std::string& why)
{
    why.clear();
    if (degree < 1 || degree > kMaxDegree) {
        why = "degree " + std::to_string(degree) + " is not between 1 and " + std::to_string(kMaxDegree);
        return {};
    }
    if (periodic && knots.empty() && cvs.size() >= size_t(degree)) {
        bool repeats = cvs.size() >= size_t(2 * degree);
        for (int i = 0; repeats && i < degree; ++i)
            repeats = cvs[size_t(i)].isEquivalent(cvs[cvs.size() - size_t(degree) + size_t(i)], 1e-6);
        for (int i = 0; !repeats && i < degree; ++i) {
            const MPoint first = cvs[size_t(i)];
            cvs.push_back(first);
        }
    }
    if (knots.empty() && cvs.size() > size_t(degree))
        knots = uniformKnots(int(cvs.size()) - degree, degree, periodic);
    auto       body = make<CurveBody>();
    const bool closed = !periodic && cvs.size() > 2 && cvs.front().isEquivalent(cvs.back(), 1e-10);
    why = buildCurve(*body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree,
                     periodic ? NurbsForm::periodic : closed ? NurbsForm::closed : NurbsForm::open, false, rational);
    return why.empty() ? body : Ref<CurveBody>();
}

Ref<SurfaceBody> revolve(const CurveBody& profile, const MVector& pivot, const MVector& axis, double startAngle, double sweep,
                         int degree, int sections, std::string& why)
{
    why.clear();
    if (profile.empty())
        why = "there is no profile to revolve";
    if (!(axis.length() > 0))
        why = "the axis of the revolution is zero";
    if (!why.empty() || !checkArc(sweep, degree, sections, why))
        return {};
    const MVector       y = axis.normal();
    const Arc           arc = arcOf(startAngle, sweep, degree, sections);
    std::vector<MPoint> cvs;
    for (const MPoint& h : std::as_const(*profile.cvs)) {
        const MVector p = MVector(h.x / h.w, h.y / h.w, h.z / h.w) - pivot;
        const MVector along = (p * y) * y, out = p - along, side = y ^ out;
        for (const Arc::Cv& cv : arc.cvs) {
            const MVector q = pivot + along + out * cv.x + side * cv.y;
            cvs.emplace_back(q.x * h.w, q.y * h.w, q.z * h.w, h.w);
        }
    }
    auto body = make<SurfaceBody>();
    const Buffer<double>& knotsU = *profile.knots;
    why = buildSurface(*body, cvs.data(), cvs.size(), knotsU.data(), knotsU.size(), arc.knots.data(), arc.knots.size(),
                       profile.degree, arc.degree, profile.form, arc.periodic ? NurbsForm::periodic : NurbsForm::open,
                       profile.rational);
    return why.empty() ? body : Ref<SurfaceBody>();
}

Ref<SurfaceBody> plane(const Placement& at, double width, double lengthRatio, int degree, int patchesU, int patchesV,
                       std::string& why)
{
    why.clear();
    if (degree < 1 || degree > kMaxDegree)
        why = "degree " + std::to_string(degree) + " is not between 1 and " + std::to_string(kMaxDegree);
    if (!why.empty() || !checkSize(width, "width", why) || !checkSize(lengthRatio, "length ratio", why) ||
        !checkSpans(patchesU, "patches", why) || !checkSpans(patchesV, "patches", why))
        return {};
    const Axes           axes = axesOf(at.axis);
    const double         length = width * lengthRatio;
    // U to the side, V to the back, so that the normal dU x dV is the axis
    const Ref<CurveBody> u = straight(-axes.x * (width / 2), axes.x * (width / 2), degree, patchesU, why);
    const Ref<CurveBody> v = straight(axes.z * (length / 2), -axes.z * (length / 2), degree, patchesV, why);
    if (!u || !v)
        return {};
    std::vector<MPoint> cvs;
    for (const MPoint& p : std::as_const(*u->cvs))
        for (const MPoint& q : std::as_const(*v->cvs))
            cvs.emplace_back(at.center.x + p.x + q.x, at.center.y + p.y + q.y, at.center.z + p.z + q.z);
    auto body = make<SurfaceBody>();
    why = buildSurface(*body, cvs.data(), cvs.size(), u->knots->data(), u->knots->size(), v->knots->data(), v->knots->size(),
                       degree, degree, NurbsForm::open, NurbsForm::open, false);
    return why.empty() ? body : Ref<SurfaceBody>();
}

Ref<SurfaceBody> boxSide(const Placement& at, double width, double lengthRatio, double heightRatio, int degree, int patchesU, int patchesV,
                         int side, std::string& why)
{
    why.clear();
    if (!checkSize(width, "width", why) || !checkSize(lengthRatio, "length ratio", why) || !checkSize(heightRatio, "height ratio", why))
        return {};
    const Axes    axes = axesOf(at.axis);
    const MVector x = axes.x * width, y = axes.y * (width * heightRatio), z = axes.z * (width * lengthRatio);
    // the way out, and what the plane's x and z become: their cross product points inward as that of x and z does
    const struct { MVector out, x, z; } sides[] = {{y, x, z}, {-y, x, -z}, {-x, -z, y}, {x, z, y}, {z, x, -y}, {-z, -x, -y}};
    if (side < 0 || side > 5) {
        why = "a box has no side " + std::to_string(side);
        return {};
    }
    const auto&      s = sides[side];
    Ref<SurfaceBody> body = plane({}, 1, 1, degree, patchesU, patchesV, why);
    if (!body)
        return {};
    const Axes unit = axesOf(MVector(0, 1, 0));
    for (MPoint& p : detach(body->cvs)) {
        const MVector at0(p), q = at.center + s.out * 0.5 + s.x * (at0 * unit.x) + s.z * (at0 * unit.z);
        p = MPoint(q.x, q.y, q.z, 1);
    }
    return body;
}

Ref<SurfaceBody> sphere(const Placement& at, double radius, double startAngle, double sweep, int degree, int sections,
                        int spanCount, std::string& why)
{
    why.clear();
    if (!checkSize(radius, "radius", why) || !checkSpans(spanCount, "spans", why) || !checkArc(sweep, degree, sections, why))
        return {};
    const Axes           axes = axesOf(at.axis);
    const Ref<CurveBody> profile = curveOfArc(arcOf(-M_PI / 2, M_PI, degree, spanCount), at.center, axes.x, axes.y, radius, why);
    if (!profile)
        return {};
    // the poles lie on the axis exactly
    Buffer<MPoint>& cvs = *profile->cvs;
    const MVector   south = at.center - axes.y * radius, north = at.center + axes.y * radius;
    cvs[0] = MPoint(south);
    cvs[cvs.size() - 1] = MPoint(north);
    return revolve(*profile, at.center, -axes.y, -startAngle, sweep, degree, sections, why);
}

Ref<SurfaceBody> cylinder(const Placement& at, double radius, double heightRatio, double sweep, int degree, int sections,
                          int spanCount, std::string& why)
{
    why.clear();
    if (!checkSize(radius, "radius", why) || !checkSize(heightRatio, "height ratio", why) || !checkSpans(spanCount, "spans", why))
        return {};
    const Axes           axes = axesOf(at.axis);
    const MVector        half = axes.y * (radius * heightRatio / 2), side = at.center + axes.x * radius;
    const Ref<CurveBody> profile = straight(side - half, side + half, degree, spanCount, why);
    return profile ? revolve(*profile, at.center, -axes.y, 0, sweep, degree, sections, why) : Ref<SurfaceBody>();
}

Ref<SurfaceBody> cone(const Placement& at, double radius, double heightRatio, double sweep, int degree, int sections,
                      int spanCount, std::string& why)
{
    why.clear();
    if (!checkSize(radius, "radius", why) || !checkSize(heightRatio, "height ratio", why) || !checkSpans(spanCount, "spans", why))
        return {};
    const Axes           axes = axesOf(at.axis);
    const MVector        half = axes.y * (radius * heightRatio / 2);
    const Ref<CurveBody> profile = straight(at.center + axes.x * radius - half, at.center + half, degree, spanCount, why);
    return profile ? revolve(*profile, at.center, -axes.y, 0, sweep, degree, sections, why) : Ref<SurfaceBody>();
}

Ref<SurfaceBody> torus(const Placement& at, double radius, double heightRatio, double sweep, double minorSweep, int degree,
                       int sections, int spanCount, std::string& why)
{
    why.clear();
    if (!checkSize(radius, "radius", why) || !checkSize(heightRatio, "height ratio", why) ||
        !checkArc(minorSweep, degree, spanCount, why))
        return {};
    const Axes           axes = axesOf(at.axis);
    const Ref<CurveBody> profile = curveOfArc(arcOf(0, minorSweep, degree, spanCount), at.center + axes.x * radius, axes.x,
                                              axes.y, radius * heightRatio, why);
    return profile ? revolve(*profile, at.center, -axes.y, 0, sweep, degree, sections, why) : Ref<SurfaceBody>();
}

}  // namespace mirk::nurbs

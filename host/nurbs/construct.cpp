#include "nurbs/construct.h"

#include <algorithm>
#include <cmath>

#include "nurbs/fit.h"

namespace mirk::nurbs {
namespace {

std::vector<double> knotsOf(const CurveBody& c)
{
    const Buffer<double>& b = *c.knots;
    return {b.begin(), b.end()};
}

/// Ends of the spans: the domain's knots without repeats.
std::vector<double> breaks(const Knots& k)
{
    std::vector<double> out{k.start()};
    for (int s : spans(k))
        out.push_back(k.high(s));
    return out;
}

bool hasSimpleInnerKnots(const Knots& k)
{
    for (int s = k.degree + 1; s < k.cvCount; ++s)
        if (!(k.low(s) < k.high(s)) || !(k.low(s - 1) < k.high(s - 1)))
            return false;
    return true;
}

bool hasMultipleEnds(const Knots& k)
{
    return k.knots[0] == k.start() && k.knots[k.knotCount() - 1] == k.end();
}

/// Knots over the breaks with multiple, evenly continued, or periodically continued ends.
enum class Ends { multiple, even, periodic };
std::vector<double> knotsOver(const std::vector<double>& b, int degree, Ends ends)
{
    const int    n = int(b.size()) - 1;
    const double period = b.back() - b.front();
    std::vector<double> knots;
    for (int i = -(degree - 1); i <= n + degree - 1; ++i) {
        if (i >= 0 && i <= n)
            knots.push_back(b[size_t(i)]);
        else if (ends == Ends::multiple)
            knots.push_back(i < 0 ? b.front() : b.back());
        else if (ends == Ends::even)
            knots.push_back(i < 0 ? b.front() + i * (b[1] - b[0]) : b.back() + (i - n) * (b[size_t(n)] - b[size_t(n - 1)]));
        else {
            const int lap = (i % n + n) % n;
            knots.push_back(b[size_t(lap)] + period * ((i - lap) / n));
        }
    }
    return knots;
}

/// Least number of spans of a periodic curve: its CVs without the repeated ones must be `degree` or more.
int leastSpans(int degree, bool periodic) { return periodic ? std::max(degree, 2) : 1; }

std::vector<double> evenBreaks(double start, double end, int spanCount)
{
    std::vector<double> out;
    for (int i = 0; i <= spanCount; ++i)
        out.push_back(i == spanCount ? end : start + (end - start) * i / spanCount);
    return out;
}

Ref<CurveBody> copyOf(const CurveBody& c)
{
    auto copy = make<CurveBody>();
    const std::vector<double> knots = knotsOf(c);
    buildCurve(*copy, std::as_const(*c.cvs).data(), size_t(c.cvCount()), knots.data(), knots.size(), c.degree, c.form,
               c.is2D, c.rational);
    return copy;
}

Ref<CurveBody> rebuildUniform(const CurveBody& curve, const RebuildOptions& o, int degree, std::string& why)
{
    const CurveView view(curve);
    const bool      periodic = view.periodic;
    if (o.keepControlPoints) {
        if (curve.uniqueCvCount() < (periodic ? degree : degree + 1)) {
            why = "the curve has too few CVs for degree " + std::to_string(degree);
            return {};
        }
        const int           unique = curve.uniqueCvCount(), total = unique + (periodic ? degree : 0);
        const int           spanCount = total - degree;
        std::vector<MPoint> cvs;
        for (int i = 0; i < total; ++i)
            cvs.push_back((*curve.cvs)[size_t(i % unique)]);
        const std::vector<double> knots = knotsOver(evenBreaks(view.k.start(), view.k.end(), spanCount), degree,
                                                    periodic ? Ends::periodic : Ends::multiple);
        auto body = make<CurveBody>();
        why = buildCurve(*body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree, curve.form, curve.is2D,
                         curve.rational);
        return why.empty() ? body : Ref<CurveBody>();
    }
    const int spanCount = std::max(o.spans > 0 ? o.spans : int(spans(view.k).size()), leastSpans(degree, periodic));
    return fitCurve(view, knotsOver(evenBreaks(view.k.start(), view.k.end(), spanCount), degree,
                                    periodic ? Ends::periodic : Ends::multiple), degree, periodic);
}

Ref<CurveBody> rebuildSimpleKnots(const CurveBody& curve, bool multipleEnds)
{
    const CurveView view(curve);
    const bool      toOpen = view.periodic && multipleEnds;
    if (!toOpen && hasSimpleInnerKnots(view.k) && (view.periodic || hasMultipleEnds(view.k) == multipleEnds || curve.degree == 1))
        return copyOf(curve);
    const Ends ends = multipleEnds ? Ends::multiple : view.periodic ? Ends::periodic : Ends::even;
    return fitCurve(view, knotsOver(breaks(view.k), curve.degree, ends), curve.degree, ends == Ends::periodic);
}

/// Splits the span with the largest error until the tolerance is met: even spans for reduceSpans, halved ones for curvature.
Ref<CurveBody> rebuildToTolerance(const CurveBody& curve, int degree, double tolerance, bool adaptive)
{
    constexpr int   kMostSpans = 1000;
    const CurveView view(curve);
    const Ends      ends = view.periodic ? Ends::periodic : Ends::multiple;
    int             count = leastSpans(degree, view.periodic);
    std::vector<double> b = evenBreaks(view.k.start(), view.k.end(), count);
    for (;;) {
        Ref<CurveBody> fit = fitCurve(view, knotsOver(b, degree, ends), degree, view.periodic);
        if (!fit)
            return {};
        const CurveView made(*fit);
        std::vector<double> next{b[0]};
        bool                good = true;
        for (size_t i = 0; i + 1 < b.size(); ++i) {
            double worst = 0;
            for (int s = 0; s <= 16; ++s) {
                const double u = b[i] + (b[i + 1] - b[i]) * s / 16;
                worst = std::max(worst, (pointAt(view, u) - pointAt(made, u)).length());
            }
            if (worst > tolerance) {
                good = false;
                next.push_back(0.5 * (b[i] + b[i + 1]));
            }
            next.push_back(b[i + 1]);
        }
        count = adaptive ? int(next.size()) - 1 : count + 1;
        if (good || count > kMostSpans)
            return fit;
        b = adaptive ? std::move(next) : evenBreaks(view.k.start(), view.k.end(), count);
    }
}

void setDomain(CurveBody& curve, double start, double end)
{
    const Knots  k = CurveView(curve).k;
    const double from = k.start(), scale = (end - start) / (k.end() - from);
    for (double& knot : detach(curve.knots))
        knot = start + (knot - from) * scale;
}

/// Rotations that carry a frame along the path without twisting about it, at the Greville parameters. The step between
/// two tangents is the shortest rotation.
struct Frame { MVector t, n, b; };
std::vector<Frame> framesAlong(const CurveView& path)
{
    std::vector<Frame> frames;
    for (int i = 0; i < path.k.cvCount; ++i) {
        const MVector t = tangentAt(path, std::clamp(greville(path.k, i), path.k.start(), path.k.end()));
        MVector       n = frames.empty() ? normalAt(path, path.k.start()) : frames.back().n;
        if (!frames.empty()) {
            const MVector from = frames.back().t, axis = from ^ t;
            const double  cosine = from * t;
            if (cosine > -1 + 1e-12)
                n = n * cosine + (axis ^ n) + axis * ((axis * n) / (1 + cosine));
        }
        n = (n - (n * t) * t).normal();
        frames.push_back({t, n, t ^ n});
    }
    return frames;
}

MVector rotated(const MVector& v, const Frame& from, const Frame& to)
{
    return (v * from.t) * to.t + (v * from.n) * to.n + (v * from.b) * to.b;
}

MVector cartesian(const MPoint& h) { return MVector(h.x / h.w, h.y / h.w, h.z / h.w); }
MPoint  homogeneous(const MVector& p, double w) { return {p.x * w, p.y * w, p.z * w, w}; }

Ref<SurfaceBody> surfaceOver(const CurveBody& profile, const std::vector<MPoint>& cvs, const std::vector<double>& knotsV,
                             int degreeV, NurbsForm formV, bool rational, std::string& why)
{
    auto body = make<SurfaceBody>();
    const std::vector<double> knotsU = knotsOf(profile);
    why = buildSurface(*body, cvs.data(), cvs.size(), knotsU.data(), knotsU.size(), knotsV.data(), knotsV.size(),
                       profile.degree, degreeV, profile.form, formV, rational);
    return why.empty() ? body : Ref<SurfaceBody>();
}

Ref<SurfaceBody> extrudeDistance(const CurveBody& profile, const ExtrudeOptions& o, std::string& why)
{
    if (!(o.direction.length() > 0) || !std::isfinite(o.length)) {
        why = "the extrusion has no direction";
        return {};
    }
    const int           degree = o.degreeAlongLength == 3 ? 3 : 1;
    const MVector       step = o.direction.normal() * (o.length / degree);
    std::vector<MPoint> cvs;
    for (const MPoint& p : std::as_const(*profile.cvs))
        for (int j = 0; j <= degree; ++j)
            cvs.emplace_back(p.x + step.x * j * p.w, p.y + step.y * j * p.w, p.z + step.z * j * p.w, p.w);
    return surfaceOver(profile, cvs, uniformKnots(1, degree, false), degree, NurbsForm::open, profile.rational, why);
}

Ref<SurfaceBody> extrudeFlat(const CurveBody& profile, const CurveBody& path, const ExtrudeOptions& o, std::string& why)
{
    const MVector       start = pointAt(CurveView(path), CurveView(path).k.start());
    const MVector       offset = o.fixedPath ? -o.pivot : -start;
    std::vector<MPoint> cvs;
    for (const MPoint& p : std::as_const(*profile.cvs))
        for (const MPoint& q : std::as_const(*path.cvs))
            cvs.push_back(homogeneous(cartesian(p) + cartesian(q) + offset, p.w * q.w));
    return surfaceOver(profile, cvs, knotsOf(path), path.degree, path.form, profile.rational || path.rational, why);
}

Ref<SurfaceBody> extrudeTube(const CurveBody& profile, const CurveBody& given, const ExtrudeOptions& o, std::string& why)
{
    // sections stand at the Greville parameters, which lie in the domain if the end knots are multiple
    const Ref<CurveBody> opened = hasMultipleEnds(CurveView(given).k) ? Ref<CurveBody>() : rebuildSimpleKnots(given, true);
    const CurveBody&         path = opened ? *opened : given;
    const CurveView          along(path);
    const std::vector<Frame> frames = framesAlong(along);
    const MVector            start = pointAt(along, along.k.start());
    const MVector            pivot = o.fixedPath ? o.pivot : start;
    Frame                    own = frames[0];   // in which the profile's offsets from the pivot are read
    MVector                  plane;
    if (o.fixedPath && o.useProfileNormal && isPlanar(CurveView(profile), &plane)) {
        own.t = plane * own.t < 0 ? -plane : plane;
        own.n = own.n - (own.n * own.t) * own.t;
        own.n = own.n.length() > 1e-9 ? own.n.normal() : (own.t ^ frames[0].b).normal();
        own.b = own.t ^ own.n;
    }
    const size_t         width = size_t(profile.cvCount());
    std::vector<MVector> sections;
    for (size_t j = 0; j < frames.size(); ++j) {
        const double  u = std::clamp(greville(along.k, int(j)), along.k.start(), along.k.end());
        const double  part = (u - along.k.start()) / (along.k.end() - along.k.start());
        const double  angle = o.rotation * part, size = 1 + (o.scale - 1) * part;
        const MVector at = pointAt(along, u);
        Frame         turned = frames[j];
        turned.n = frames[j].n * std::cos(angle) + frames[j].b * std::sin(angle);
        turned.b = frames[j].b * std::cos(angle) - frames[j].n * std::sin(angle);
        for (const MPoint& p : std::as_const(*profile.cvs))
            sections.push_back(at + rotated(cartesian(p) - pivot, own, turned) * size);
    }
    const std::vector<MVector> rows = interpolateSections(along.k, sections, width);
    std::vector<MPoint>        cvs;
    for (size_t i = 0; i < width; ++i)
        for (size_t j = 0; j < frames.size(); ++j)
            cvs.push_back(homogeneous(rows[j * width + i], (*profile.cvs)[i].w));
    // the frames of a closed path need not meet again, so the surface is open along it
    return surfaceOver(profile, cvs, knotsOf(path), path.degree, NurbsForm::open, profile.rational, why);
}

}  // namespace

Ref<CurveBody> rebuildCurve(const CurveBody& curve, const RebuildOptions& o, std::string& why)
{
    why.clear();
    if (curve.empty()) {
        why = "there is no curve to rebuild";
        return {};
    }
    const int degree = o.degree > 0 ? o.degree : curve.degree;
    if (degree > kMaxDegree) {
        why = "degree " + std::to_string(degree) + " is above " + std::to_string(kMaxDegree);
        return {};
    }
    if (o.type == Rebuild::uniform && o.spans > 100000) {
        why = std::to_string(o.spans) + " spans are too many";
        return {};
    }
    Ref<CurveBody> made;
    switch (o.type) {
    case Rebuild::uniform:
        made = rebuildUniform(curve, o, degree, why);
        break;
    case Rebuild::matchKnots:
        if (!o.match || o.match->empty()) {
            why = "there is no curve whose knots to match";
            return {};
        }
        made = fitCurve(CurveView(curve), knotsOf(*o.match), o.match->degree, o.match->form == NurbsForm::periodic);
        break;
    case Rebuild::noMultipleKnots:
        made = rebuildSimpleKnots(curve, o.multipleEndKnots);
        break;
    case Rebuild::reduceSpans:
    case Rebuild::curvature:
        made = rebuildToTolerance(curve, degree, std::max(o.tolerance, 1e-9), o.type == Rebuild::curvature);
        break;
    }
    if (!made) {
        if (why.empty())
            why = "the curve cannot be rebuilt with these settings";
        return {};
    }
    if (curve.form == NurbsForm::closed && made->form == NurbsForm::open)
        made->form = NurbsForm::closed;
    made->is2D = curve.is2D;
    if (o.keepRange == 0)
        setDomain(*made, 0, 1);
    else if (o.keepRange == 2)
        setDomain(*made, 0, double(spans(CurveView(*made).k).size()));
    return made;
}

Ref<SurfaceBody> extrude(const CurveBody& profile, const CurveBody* path, const ExtrudeOptions& o, std::string& why)
{
    if (profile.empty()) {
        why = "there is no profile to extrude";
        return {};
    }
    if (o.type == Extrude::distance)
        return extrudeDistance(profile, o, why);
    if (!path || path->empty()) {
        why = "there is no path to extrude along";
        return {};
    }
    return o.type == Extrude::flat ? extrudeFlat(profile, *path, o, why) : extrudeTube(profile, *path, o, why);
}

void reverse(CurveBody& curve)
{
    if (curve.empty())
        return;
    const double sum = CurveView(curve).k.start() + CurveView(curve).k.end();
    Buffer<MPoint>& cvs = detach(curve.cvs);
    std::reverse(cvs.begin(), cvs.end());
    Buffer<double>& knots = detach(curve.knots);
    std::reverse(knots.begin(), knots.end());
    for (double& k : knots)
        k = sum - k;
}

}  // namespace mirk::nurbs

#include "nurbs/curve.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace mirk::nurbs {
namespace {

MVector cartesian(const MPoint& h) { return h.w != 0 ? MVector(h.x / h.w, h.y / h.w, h.z / h.w) : MVector(h.x, h.y, h.z); }

/// Some unit vector at a right angle to a direction.
MVector perpendicular(const MVector& direction)
{
    const MVector axis = std::abs(direction.x) <= std::abs(direction.y) ? MVector::xAxis : MVector::yAxis;
    const MVector side = direction ^ axis;
    return side.length() > 0 ? side.normal() : MVector::yAxis;
}

struct Candidate { double distance, u, low, high; };

/// Newton on (C(u) - point) . C'(u) = 0 inside [low, high].
Candidate polish(const CurveView& c, const MVector& point, Candidate start)
{
    Candidate best = start;
    double    u = start.u;
    for (int i = 0; i < 24; ++i) {
        const CurveDerivatives d = derivativesAt(c, u);
        const MVector          to = d.p - point;
        const double           distance = to.length();
        if (distance < best.distance)
            best = {distance, u, start.low, start.high};
        const double slope = to * d.d1;
        double       bend = d.d1 * d.d1 + to * d.d2;
        if (!(bend > 0))   // near a maximum Newton runs uphill; the positive part alone runs down
            bend = d.d1 * d.d1;
        if (!(bend > 0))
            break;
        const double next = std::clamp(u - slope / bend, start.low, start.high);
        if (std::abs(next - u) <= 1e-15 * (std::abs(u) + (start.high - start.low)))
            break;
        u = next;
    }
    return best;
}

}  // namespace

CurveDerivatives derivativesAt(const CurveView& c, double u, int order)
{
    u = intoDomain(c.k, c.periodic, u);
    const int span = findSpan(c.k, u);
    double    n[3][kMaxDegree + 1];
    basis(c.k, span, u, order, n);
    double h[3][4] = {};
    for (int i = 0; i <= c.k.degree; ++i) {
        const MPoint& p = c.cvs[span - c.k.degree + i];
        for (int d = 0; d <= order; ++d) {
            h[d][0] += n[d][i] * p.x;
            h[d][1] += n[d][i] * p.y;
            h[d][2] += n[d][i] * p.z;
            h[d][3] += n[d][i] * p.w;
        }
    }
    const double     w = h[0][3] != 0 ? h[0][3] : 1;
    CurveDerivatives out;
    out.p = MVector(h[0]) / w;
    if (order >= 1)
        out.d1 = (MVector(h[1]) - h[1][3] * out.p) / w;
    if (order >= 2)
        out.d2 = (MVector(h[2]) - 2 * h[1][3] * out.d1 - h[2][3] * out.p) / w;
    return out;
}

MVector pointAt(const CurveView& c, double u) { return derivativesAt(c, u, 0).p; }

MVector tangentAt(const CurveView& c, double u)
{
    const CurveDerivatives d = derivativesAt(c, u);
    if (d.d1.length() > 1e-12)
        return d.d1.normal();
    if (d.d2.length() > 1e-12)   // a cusp or a doubled end CV: the curve leaves along its second derivative
        return (u >= c.k.end() ? -d.d2 : d.d2).normal();
    const double  step = (c.k.end() - c.k.start()) * 1e-4;
    const MVector chord = pointAt(c, std::min(u + step, c.k.end())) - pointAt(c, std::max(u - step, c.k.start()));
    return chord.length() > 0 ? chord.normal() : MVector::xAxis;
}

MVector normalAt(const CurveView& c, double u)
{
    const MVector t = tangentAt(c, u);
    const MVector d2 = derivativesAt(c, u).d2;
    const MVector side = d2 - (d2 * t) * t;
    return side.length() > 1e-10 * (1 + d2.length()) ? side.normal() : perpendicular(t);
}

double closestParam(const CurveView& c, const MVector& point)
{
    std::vector<Candidate> samples;
    for (int span : spans(c.k)) {
        const double lo = c.k.low(span), hi = c.k.high(span);
        const int    steps = c.k.degree == 1 ? 2 : 4 * c.k.degree;
        const double step = (hi - lo) / steps;
        for (int i = 0; i <= steps; ++i) {
            const double u = i == steps ? hi : lo + i * step;
            samples.push_back({(pointAt(c, u) - point).length(), u, std::max(lo, u - step), std::min(hi, u + step)});
        }
    }
    if (samples.empty())
        return 0;
    const size_t tries = std::min<size_t>(samples.size(), 6);
    std::partial_sort(samples.begin(), samples.begin() + long(tries), samples.end(),
                      [](const Candidate& a, const Candidate& b) {
                          return a.distance != b.distance ? a.distance < b.distance : a.u < b.u;
                      });
    Candidate best = samples[0];
    for (size_t i = 0; i < tries; ++i)
        if (const Candidate p = polish(c, point, samples[i]); p.distance < best.distance)
            best = p;
    return best.u;
}

double arcLength(const CurveView& c, double from, double to, double tolerance)
{
    if (from > to)
        return -arcLength(c, to, from, tolerance);
    from = std::clamp(from, c.k.start(), c.k.end());
    to = std::clamp(to, c.k.start(), c.k.end());
    const std::vector<int> all = spans(c.k);
    const double           each = std::max(tolerance, 1e-12) / double(std::max<size_t>(all.size(), 1));
    double                 sum = 0;
    for (int span : all) {   // the speed is smooth inside a span only
        const double lo = std::max(from, c.k.low(span)), hi = std::min(to, c.k.high(span));
        if (lo < hi)
            sum += integrate([&c](double u) { return derivativesAt(c, u, 1).d1.length(); }, lo, hi, each);
    }
    return sum;
}

double arcLength(const CurveView& c, double tolerance) { return arcLength(c, c.k.start(), c.k.end(), tolerance); }

double paramAtLength(const CurveView& c, double length, double tolerance)
{
    if (!(length > 0))
        return c.k.start();
    for (int span : spans(c.k)) {
        const double here = arcLength(c, c.k.low(span), c.k.high(span), tolerance);
        if (length > here) {
            length -= here;
            continue;
        }
        double lo = c.k.low(span), hi = c.k.high(span);
        double u = here > 0 ? lo + (hi - lo) * length / here : lo;
        for (int i = 0; i < 60; ++i) {   // Newton, or bisection where Newton leaves the bracket
            const double off = arcLength(c, c.k.low(span), u, tolerance * 0.01) - length;
            if (std::abs(off) <= tolerance * 1e-3)
                break;
            (off > 0 ? hi : lo) = u;
            const double speed = derivativesAt(c, u, 1).d1.length();
            const double next = speed > 0 ? u - off / speed : lo;
            u = next > lo && next < hi ? next : 0.5 * (lo + hi);
        }
        return u;
    }
    return c.k.end();
}

bool isPlanar(const CurveView& c, MVector* normal)
{
    const MVector origin = cartesian(c.cvs[0]);
    MVector       along, n;
    double        size = 0;
    for (int i = 1; i < c.k.cvCount; ++i) {
        const MVector to = cartesian(c.cvs[i]) - origin;
        size = std::max(size, to.length());
        if (to.length() > along.length())
            along = to;
    }
    for (int i = 1; i < c.k.cvCount; ++i)
        if (const MVector side = along ^ (cartesian(c.cvs[i]) - origin); side.length() > n.length())
            n = side;
    n = n.length() > 1e-10 * size * size ? n.normal() : perpendicular(along);
    for (int i = 1; i < c.k.cvCount; ++i)
        if (std::abs(n * (cartesian(c.cvs[i]) - origin)) > 1e-6 * std::max(size, 1e-6))
            return false;
    if (normal)
        *normal = n;
    return true;
}

}  // namespace mirk::nurbs

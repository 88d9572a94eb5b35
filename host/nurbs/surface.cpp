#include "nurbs/surface.h"

#include <algorithm>
#include <cmath>

namespace mirk::nurbs {
namespace {

struct Candidate { double distance, u, v; };

struct Box { double u0, u1, v0, v1; };

/// Newton on the two conditions (S - point) . Su = 0 and (S - point) . Sv = 0 inside a box of parameters; gradient steps
/// where the second derivatives do not describe a minimum.
Candidate polish(const SurfaceView& s, const MVector& point, Candidate start, const Box& box)
{
    Candidate best = start;
    double    u = start.u, v = start.v;
    for (int i = 0; i < 32; ++i) {
        const SurfaceDerivatives d = derivativesAt(s, u, v);
        const MVector            to = d.p - point;
        if (const double distance = to.length(); distance < best.distance)
            best = {distance, u, v};
        const double gu = to * d.du, gv = to * d.dv;
        double       huu = d.du * d.du + to * d.duu, hvv = d.dv * d.dv + to * d.dvv, huv = d.du * d.dv + to * d.duv;
        if (!(huu > 0 && huu * hvv - huv * huv > 0)) {
            huu = d.du * d.du;
            hvv = d.dv * d.dv;
            huv = d.du * d.dv;
        }
        // a parameter that the box holds back takes no part in the step
        const bool heldU = (u <= box.u0 && gu > 0) || (u >= box.u1 && gu < 0);
        const bool heldV = (v <= box.v0 && gv > 0) || (v >= box.v1 && gv < 0);
        double     su = 0, sv = 0;
        const double det = huu * hvv - huv * huv;
        if (!heldU && !heldV && det > 1e-14 * huu * hvv) {
            su = -(gu * hvv - gv * huv) / det;
            sv = -(gv * huu - gu * huv) / det;
        } else {
            if (!heldU && huu > 0)
                su = -gu / huu;
            if (!heldV && hvv > 0)
                sv = -gv / hvv;
        }
        const double nu = std::clamp(u + su, box.u0, box.u1), nv = std::clamp(v + sv, box.v0, box.v1);
        if (std::abs(nu - u) <= 1e-14 * (1 + std::abs(u)) && std::abs(nv - v) <= 1e-14 * (1 + std::abs(v)))
            break;
        u = nu;
        v = nv;
    }
    return best;
}

std::vector<double> sampleParams(const Knots& k)
{
    std::vector<double> out{k.start()};
    const int           steps = k.degree == 1 ? 2 : 2 * k.degree;
    for (int span : spans(k))
        for (int i = 1; i <= steps; ++i)
            out.push_back(i == steps ? k.high(span) : k.low(span) + (k.high(span) - k.low(span)) * i / steps);
    return out;
}

}  // namespace

SurfaceDerivatives derivativesAt(const SurfaceView& s, double u, double v, int order)
{
    u = intoDomain(s.u, s.periodicU, u);
    v = intoDomain(s.v, s.periodicV, v);
    const int su = findSpan(s.u, u), sv = findSpan(s.v, v);
    double    nu[3][kMaxDegree + 1], nv[3][kMaxDegree + 1];
    basis(s.u, su, u, order, nu);
    basis(s.v, sv, v, order, nv);

    double h[3][3][4] = {};   // homogeneous, by order in u and in v
    for (int i = 0; i <= s.u.degree; ++i) {
        const MPoint* row = s.cvs + size_t(su - s.u.degree + i) * size_t(s.v.cvCount) + (sv - s.v.degree);
        double        r[3][4] = {};
        for (int j = 0; j <= s.v.degree; ++j)
            for (int d = 0; d <= order; ++d) {
                r[d][0] += nv[d][j] * row[j].x;
                r[d][1] += nv[d][j] * row[j].y;
                r[d][2] += nv[d][j] * row[j].z;
                r[d][3] += nv[d][j] * row[j].w;
            }
        for (int a = 0; a <= order; ++a)
            for (int b = 0; a + b <= order; ++b)
                for (int x = 0; x < 4; ++x)
                    h[a][b][x] += nu[a][i] * r[b][x];
    }
    const double       w = h[0][0][3] != 0 ? h[0][0][3] : 1;
    SurfaceDerivatives d;
    d.p = MVector(h[0][0]) / w;
    if (order >= 1) {
        d.du = (MVector(h[1][0]) - h[1][0][3] * d.p) / w;
        d.dv = (MVector(h[0][1]) - h[0][1][3] * d.p) / w;
    }
    if (order >= 2) {
        d.duu = (MVector(h[2][0]) - 2 * h[1][0][3] * d.du - h[2][0][3] * d.p) / w;
        d.dvv = (MVector(h[0][2]) - 2 * h[0][1][3] * d.dv - h[0][2][3] * d.p) / w;
        d.duv = (MVector(h[1][1]) - h[1][0][3] * d.dv - h[0][1][3] * d.du - h[1][1][3] * d.p) / w;
    }
    return d;
}

MVector pointAt(const SurfaceView& s, double u, double v) { return derivativesAt(s, u, v, 0).p; }

MVector normalAt(const SurfaceView& s, double u, double v)
{
    const double midU = 0.5 * (s.u.start() + s.u.end()), midV = 0.5 * (s.v.start() + s.v.end());
    for (double inward : {0.0, 1e-6, 1e-3, 1e-2}) {   // towards the middle until the cross product means something
        const SurfaceDerivatives d = derivativesAt(s, u + (midU - u) * inward, v + (midV - v) * inward, 1);
        const MVector            n = d.du ^ d.dv;
        if (n.length() > 1e-9 * d.du.length() * d.dv.length() && n.length() > 1e-14)
            return n.normal();
    }
    return MVector::yAxis;
}

UV closestParams(const SurfaceView& s, const MVector& point)
{
    const std::vector<double> us = sampleParams(s.u), vs = sampleParams(s.v);
    struct Sample { double distance; size_t i, j; };
    std::vector<Sample> samples;
    samples.reserve(us.size() * vs.size());
    for (size_t i = 0; i < us.size(); ++i)
        for (size_t j = 0; j < vs.size(); ++j)
            samples.push_back({(pointAt(s, us[i], vs[j]) - point).length(), i, j});
    const size_t tries = std::min<size_t>(samples.size(), 6);
    std::partial_sort(samples.begin(), samples.begin() + long(tries), samples.end(), [](const Sample& a, const Sample& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.i != b.i ? a.i < b.i : a.j < b.j;
    });
    Candidate best{samples[0].distance, us[samples[0].i], vs[samples[0].j]};
    for (size_t t = 0; t < tries; ++t) {
        const Sample& a = samples[t];
        const Box     box{us[a.i ? a.i - 1 : 0], us[std::min(a.i + 1, us.size() - 1)], vs[a.j ? a.j - 1 : 0],
                      vs[std::min(a.j + 1, vs.size() - 1)]};
        if (const Candidate c = polish(s, point, {a.distance, us[a.i], vs[a.j]}, box); c.distance < best.distance)
            best = c;
    }
    return {best.u, best.v};
}

double area(const SurfaceView& s, double tolerance)
{
    const std::vector<int> us = spans(s.u), vs = spans(s.v);
    const double           each = std::max(tolerance, 1e-10) / double(std::max<size_t>(us.size() * vs.size(), 1));
    double                 sum = 0;
    for (int a : us)
        for (int b : vs) {
            const double width = s.u.high(a) - s.u.low(a);
            sum += integrate(
                [&](double u) {
                    return integrate(
                        [&](double v) {
                            const SurfaceDerivatives d = derivativesAt(s, u, v, 1);
                            return (d.du ^ d.dv).length();
                        },
                        s.v.low(b), s.v.high(b), each / width);
                },
                s.u.low(a), s.u.high(a), each);
        }
    return sum;
}

}  // namespace mirk::nurbs

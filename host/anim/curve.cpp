#include "anim/curve.h"

#include <algorithm>
#include <cmath>

namespace mirk::anim {
namespace {

constexpr double kSteepest = 1e7;   // slope of an upright tangent

double slope(const Handle& h)
{
    if (h.x > std::abs(h.y) / kSteepest)
        return h.y / h.x;
    return h.y == 0 ? 0 : std::copysign(kSteepest, h.y);
}

/// Slopes of the stretches before and after a key; at an end both are that of the only one.
struct Around
{
    double before = 0, after = 0, chord = 0;
    bool   end = true, valley = false;
};

double rise(const Key& a, const Key& b) { return b.time > a.time ? (b.value - a.value) / (b.time - a.time) : 0; }

Around around(const std::vector<Key>& keys, size_t i)
{
    Around    r;
    const bool hasBefore = i > 0, hasAfter = i + 1 < keys.size();
    if (hasBefore)
        r.before = r.after = r.chord = rise(keys[i - 1], keys[i]);
    if (hasAfter)
        r.after = r.chord = rise(keys[i], keys[i + 1]);
    if (hasAfter && !hasBefore)
        r.before = r.after;
    if (hasBefore && hasAfter) {
        r.end = false;
        r.valley = r.before * r.after <= 0;
        r.chord = rise(keys[i - 1], keys[i + 1]);
    }
    return r;
}

bool same(double a, double b) { return std::abs(a - b) <= 1e-6 * std::max({1.0, std::abs(a), std::abs(b)}); }

double slopeOf(Tangent type, bool incoming, const Around& a, const std::vector<Key>& keys, size_t i)
{
    switch (type) {
    case Tangent::kLinear: return incoming ? a.before : a.after;
    case Tangent::kSpline: return a.chord;
    case Tangent::kClamped:
        if ((i > 0 && same(keys[i - 1].value, keys[i].value)) || (i + 1 < keys.size() && same(keys[i].value, keys[i + 1].value)))
            return 0;
        return a.chord;
    case Tangent::kAuto:
    case Tangent::kPlateau: {
        if (a.end || a.valley)
            return 0;
        // a cubic stays between its ends if neither slope is more than three times that of the stretch
        const double limit = 3 * std::min(std::abs(a.before), std::abs(a.after));
        return std::clamp(a.chord, -limit, limit);
    }
    default: return 0;
    }
}

bool isComputed(Tangent type) { return type != Tangent::kFixed && type != Tangent::kSlow && type != Tangent::kFast; }

void aim(Handle& h, double slope, double span, bool weighted)
{
    const double length = weighted ? 1 : std::hypot(1, slope) * span;
    h.x = span / length;
    h.y = slope * span / length;
}

/// The parameter at which the cubic Bezier with ordinates 0, a, b, 1 (a and b in 0 to 1, so it never falls) is s.
double parameterAt(double s, double a, double b)
{
    const double c1 = 3 * a, c2 = 3 * (b - 2 * a), c3 = 1 - 3 * b + 3 * a;
    double low = 0, high = 1, u = s;
    for (int i = 0; i < 64; ++i) {
        const double f = u * (c1 + u * (c2 + u * c3)) - s;
        if (f == 0 || high - low < 1e-16)
            break;
        (f < 0 ? low : high) = u;
        const double d = c1 + u * (2 * c2 + u * 3 * c3);
        const double next = d > 0 ? u - f / d : low;
        u = next > low && next < high ? next : (low + high) / 2;
    }
    return u;
}

struct Point { double x, y; };

/// Control point offset of a tangent as part of the way to the other key, shortened to it.
Point reach(const Handle& h, double span)
{
    const double x = std::max(h.x, 0.0) / 3, y = h.y / 3;
    return x > span ? Point{1, y * span / x} : Point{x / span, y};
}

double between(const Key& a, const Key& b, bool weighted, double time)
{
    if (a.out.type == Tangent::kStep)
        return a.value;
    if (a.out.type == Tangent::kStepNext)
        return b.value;
    const double span = b.time - a.time, s = (time - a.time) / span;
    if (weighted) {
        const Point  out = reach(a.out, span), in = reach(b.in, span);
        const double u = parameterAt(s, out.x, 1 - in.x), v = 1 - u;
        return v * v * v * a.value + 3 * u * v * (v * (a.value + out.y) + u * (b.value - in.y)) + u * u * u * b.value;
    }
    const double up = b.value - a.value, m0 = slope(a.out) * span, m1 = slope(b.in) * span;
    return a.value + s * (m0 + s * (3 * up - 2 * m0 - m1 + s * (m0 + m1 - 2 * up)));
}

double inside(const Curve& c, double time, double tolerance)
{
    const size_t after = upperBound(c, time + tolerance);
    if (after == 0)
        return c.keys.front().value;
    const Key& a = c.keys[after - 1];
    return after == c.keys.size() || time - a.time <= tolerance ? a.value : between(a, c.keys[after], c.weighted, time);
}

double outside(const Curve& c, double time, bool before, double tolerance)
{
    const Key &   first = c.keys.front(), &last = c.keys.back(), &end = before ? first : last;
    const Infinity kind = before ? c.pre : c.post;
    if (kind == Infinity::kLinear)
        return end.value + slope(before ? first.in : last.out) * (time - end.time);
    const double range = last.time - first.time;
    const double cycle = std::floor((time - first.time) / range);
    if (kind == Infinity::kConstant || !(range > 0) || !std::isfinite(cycle))
        return end.value;
    double at = std::clamp(time - cycle * range, first.time, last.time);
    if (kind == Infinity::kOscillate && std::fmod(std::abs(cycle), 2) == 1)
        at = first.time + last.time - at;
    return inside(c, at, tolerance) + (kind == Infinity::kCycleRelative ? cycle * (last.value - first.value) : 0);
}

}  // namespace

void solveTangents(Curve& curve)
{
    auto& keys = curve.keys;
    for (size_t i = 0; i < keys.size(); ++i) {
        Key&         key = keys[i];
        const Around a = around(keys, i);
        const double after = i + 1 < keys.size() ? keys[i + 1].time - key.time : 0, before = i > 0 ? key.time - keys[i - 1].time : after;
        const auto   span = [](double wanted, double other) { return wanted > 0 ? wanted : other > 0 ? other : 1.0; };
        if (isComputed(key.in.type))
            aim(key.in, slopeOf(key.in.type, true, a, keys, i), span(before, after), curve.weighted);
        if (isComputed(key.out.type))
            aim(key.out, slopeOf(key.out.type, false, a, keys, i), span(after, before), curve.weighted);
    }
}

double evaluate(const Curve& curve, double time, double tolerance)
{
    if (curve.keys.empty())
        return 0;
    if (time < curve.keys.front().time - tolerance)
        return outside(curve, time, true, tolerance);
    if (time > curve.keys.back().time + tolerance)
        return outside(curve, time, false, tolerance);
    return inside(curve, time, tolerance);
}

double slopeAt(const Curve& curve, double time)
{
    const size_t after = upperBound(curve, time);
    if (after == 0 || after == curve.keys.size())
        return 0;
    const Key &a = curve.keys[after - 1], &b = curve.keys[after];
    if (a.out.type == Tangent::kStep || a.out.type == Tangent::kStepNext)
        return 0;
    const double span = b.time - a.time, s = (time - a.time) / span, up = b.value - a.value;
    if (curve.weighted) {
        const Point  out = reach(a.out, span), in = reach(b.in, span);
        const double u = parameterAt(s, out.x, 1 - in.x), v = 1 - u;
        const auto   rate = [&](double p0, double p1, double p2, double p3) {
            return v * v * (p1 - p0) + 2 * u * v * (p2 - p1) + u * u * (p3 - p2);
        };
        const double dx = rate(0, out.x, 1 - in.x, 1) * span, dy = rate(a.value, a.value + out.y, b.value - in.y, b.value);
        return dx > 0 ? dy / dx : 0;
    }
    const double m0 = slope(a.out) * span, m1 = slope(b.in) * span;
    return (m0 + s * (2 * (3 * up - 2 * m0 - m1) + s * 3 * (m0 + m1 - 2 * up))) / span;
}

void setWeighted(Curve& curve, bool on)
{
    if (curve.weighted == on)
        return;
    curve.weighted = on;
    auto& keys = curve.keys;
    const auto rescale = [&](Handle& h, double span) {
        const double length = on ? h.x / span : std::hypot(h.x, h.y);
        if (length > 0) {
            h.x /= length;
            h.y /= length;
        }
    };
    for (size_t i = 0; i < keys.size(); ++i) {
        const double after = i + 1 < keys.size() ? keys[i + 1].time - keys[i].time : 1, before = i > 0 ? keys[i].time - keys[i - 1].time : after;
        rescale(keys[i].in, before > 0 ? before : 1);
        rescale(keys[i].out, after > 0 ? after : 1);
    }
    solveTangents(curve);
}

void setTangent(Curve& curve, size_t i, bool incoming, double x, double y)
{
    Key&         key = curve.keys[i];
    Handle&      mine = incoming ? key.in : key.out;
    Handle&      other = incoming ? key.out : key.in;
    const double length = std::hypot(x, y);
    if (!(length > 0) || !std::isfinite(length))
        return;
    x = std::max(x, 0.0);   // time runs forward
    mine = curve.weighted ? Handle{Tangent::kFixed, x, y} : Handle{Tangent::kFixed, x / length, y / length};
    if (key.tangentsLocked && other.type != Tangent::kStep && other.type != Tangent::kStepNext) {
        const double reach = curve.weighted ? std::hypot(other.x, other.y) : 1;
        other = {Tangent::kFixed, x / length * reach, y / length * reach};
    }
    solveTangents(curve);
}

size_t upperBound(const Curve& curve, double time)
{
    const auto at = std::upper_bound(curve.keys.begin(), curve.keys.end(), time, [](double t, const Key& k) { return t < k.time; });
    return size_t(at - curve.keys.begin());
}

int findKey(const Curve& curve, double time, double tolerance)
{
    const size_t after = upperBound(curve, time + tolerance);
    return after > 0 && std::abs(curve.keys[after - 1].time - time) <= tolerance ? int(after) - 1 : -1;
}

}  // namespace mirk::anim

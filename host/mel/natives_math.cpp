// Numbers and vectors.
#include <cmath>
#include <numbers>

#include "command/value_text.h"
#include "mel/native.h"
#include "mel/random.h"

namespace mirk::mel {

namespace {

constexpr double kDegree = std::numbers::pi / 180;

double mag(const Vec3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }
double dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3   cross(const Vec3& a, const Vec3& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
Vec3   scaled(const Vec3& v, double s) { return {v.x * s, v.y * s, v.z * s}; }
Vec3   added(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

Vec3 unit(const Vec3& v)
{
    const double l = mag(v);
    return l > 0 ? scaled(v, 1 / l) : Vec3();
}

double angle(const Vec3& a, const Vec3& b) { return std::atan2(mag(cross(a, b)), dot(a, b)); }

/// Rodrigues' formula; `radians` about the axis, right-handed.
Vec3 rotated(const Vec3& v, const Vec3& axis, double radians)
{
    const Vec3   k = unit(axis);
    const double c = std::cos(radians), s = std::sin(radians);
    return added(added(scaled(v, c), scaled(cross(k, v), s)), scaled(k, dot(k, v) * (1 - c)));
}

double linstep(double low, double high, double x)
{
    if (high == low)
        return x < low ? 0 : 1;
    return std::clamp((x - low) / (high - low), 0.0, 1.0);
}

double smoothstep(double low, double high, double x)
{
    const double t = linstep(low, high, x);
    return t * t * (3 - 2 * t);
}

/// Cubic with values a, b and tangents ta, tb at the ends.
double hermite(double a, double b, double ta, double tb, double t)
{
    const double t2 = t * t, t3 = t2 * t;
    return (2 * t3 - 3 * t2 + 1) * a + (3 * t2 - 2 * t3) * b + (t3 - 2 * t2 + t) * ta + (t3 - t2) * tb;
}

/// Hue, saturation and value, all in [0, 1]; a grey has hue 0.
Vec3 hsvOf(const Vec3& c)
{
    const double high = std::max({c.x, c.y, c.z}), range = high - std::min({c.x, c.y, c.z});
    if (range <= 0 || high <= 0)
        return {0, 0, high};
    const double sixth = c.x == high ? (c.y - c.z) / range : c.y == high ? 2 + (c.z - c.x) / range : 4 + (c.x - c.y) / range;
    return {(sixth < 0 ? sixth + 6 : sixth) / 6, range / high, high};
}

Vec3 rgbOf(const Vec3& hsv)
{
    const auto channel = [&](double offset) {
        const double k = std::fmod(offset + (hsv.x - std::floor(hsv.x)) * 6, 6.0);
        return hsv.z * (1 - hsv.y * std::clamp(std::min(k, 4 - k), 0.0, 1.0));
    };
    return {channel(5), channel(3), channel(1)};
}

/// A row vector times a matrix of 16 numbers.
std::vector<double> pointTimesMatrix(const FloatArray& p, const FloatArray& m)
{
    if (p.size() != 3 || m.size() != 16)
        throw command::Error("pointMatrixMult: a point of 3 and a matrix of 16 numbers have to be given.");
    std::vector<double> out(3);
    for (int64_t k = 0; k < 3; ++k)
        out[size_t(k)] = p.get(0) * m.get(k) + p.get(1) * m.get(4 + k) + p.get(2) * m.get(8 + k) + m.get(12 + k);
    return out;
}

double sign(double x) { return x < 0 ? -1 : x > 0 ? 1 : 0; }
double between(double low, double high) { return low + (high - low) * randomUnit(); }

#define F1(name, expr) {name, "f", 'f', nullptr, [](double x) -> double { return expr; }}
#define F2(name, expr) {name, "ff", 'f', nullptr, nullptr, [](double x, double y) -> double { return expr; }}
#define FN(name, params, result, expr) {name, params, result, [](NativeCall& c) { c.give(expr); }}

const Native kRows[] = {
    {"abs", "i", 'i', nullptr, nullptr, nullptr, OP_ABSI},
    {"abs", "f", 'f', nullptr, nullptr, nullptr, OP_ABSF},
    {"min", "ii", 'i', nullptr, nullptr, nullptr, OP_MINI},
    {"min", "ff", 'f', nullptr, nullptr, nullptr, OP_MINF},
    {"max", "ii", 'i', nullptr, nullptr, nullptr, OP_MAXI},
    {"max", "ff", 'f', nullptr, nullptr, nullptr, OP_MAXF},
    {"sqrt", "f", 'f', nullptr, nullptr, nullptr, OP_SQRTF},
    F1("sin", std::sin(x)), F1("cos", std::cos(x)), F1("tan", std::tan(x)),
    F1("asin", std::asin(x)), F1("acos", std::acos(x)), F1("atan", std::atan(x)),
    F1("sinh", std::sinh(x)), F1("cosh", std::cosh(x)), F1("tanh", std::tanh(x)),
    F1("sind", std::sin(x * kDegree)), F1("cosd", std::cos(x * kDegree)), F1("tand", std::tan(x * kDegree)),
    F1("asind", std::asin(x) / kDegree), F1("acosd", std::acos(x) / kDegree), F1("atand", std::atan(x) / kDegree),
    F1("exp", std::exp(x)), F1("log", std::log(x)), F1("log10", std::log10(x)),
    F1("floor", std::floor(x)), F1("ceil", std::ceil(x)), F1("trunc", std::trunc(x)), F1("round", std::round(x)),
    F1("deg_to_rad", x * kDegree), F1("rad_to_deg", x / kDegree),
    F2("pow", std::pow(x, y)), F2("atan2", std::atan2(x, y)), F2("atan2d", std::atan2(x, y) / kDegree),
    F2("hypot", std::hypot(x, y)), F2("fmod", std::fmod(x, y)),
    F1("sign", sign(x)),
    FN("sign", "i", 'i', int32_t((c.i(0) > 0) - (c.i(0) < 0))),
    FN("clamp", "iii", 'i', std::max(c.i(0), std::min(c.i(1), c.i(2)))),
    FN("clamp", "fff", 'f', std::max(c.f(0), std::min(c.f(1), c.f(2)))),
    FN("linstep", "fff", 'f', linstep(c.f(0), c.f(1), c.f(2))),
    FN("smoothstep", "fff", 'f', smoothstep(c.f(0), c.f(1), c.f(2))),
    FN("hermite", "fffff", 'f', hermite(c.f(0), c.f(1), c.f(2), c.f(3), c.f(4))),
    FN("hermite", "vvvvf", 'v', (Vec3{hermite(c.v(0).x, c.v(1).x, c.v(2).x, c.v(3).x, c.f(4)), hermite(c.v(0).y, c.v(1).y, c.v(2).y, c.v(3).y, c.f(4)),
                                      hermite(c.v(0).z, c.v(1).z, c.v(2).z, c.v(3).z, c.f(4))})),

    FN("abs", "v", 'v', (Vec3{std::fabs(c.v(0).x), std::fabs(c.v(0).y), std::fabs(c.v(0).z)})),
    FN("rgb_to_hsv", "v", 'v', hsvOf(c.v(0))),
    FN("hsv_to_rgb", "v", 'v', rgbOf(c.v(0))),
    FN("mag", "v", 'f', mag(c.v(0))),
    FN("dot", "vv", 'f', dot(c.v(0), c.v(1))),
    FN("dotProduct", "vvi", 'f', c.i(2) ? dot(unit(c.v(0)), unit(c.v(1))) : dot(c.v(0), c.v(1))),
    FN("cross", "vv", 'v', cross(c.v(0), c.v(1))),
    FN("crossProduct", "vvii", 'v', c.i(3) ? unit(cross(c.i(2) ? unit(c.v(0)) : c.v(0), c.i(2) ? unit(c.v(1)) : c.v(1)))
                                         : cross(c.i(2) ? unit(c.v(0)) : c.v(0), c.i(2) ? unit(c.v(1)) : c.v(1))),
    FN("unit", "v", 'v', unit(c.v(0))),
    FN("normalize", "v", 'v', unit(c.v(0))),
    FN("angle", "vv", 'f', angle(c.v(0), c.v(1))),
    FN("rot", "vvf", 'v', rotated(c.v(0), c.v(1), c.f(2))),
    FN("pointMatrixMult", "FF", 'F', Value(pointTimesMatrix(c.floats(0), c.floats(1))).asFloats()),
    FN("constrainValue", "fff", 'f', std::max(c.f(1), std::min(c.f(2), c.f(0)))),
    FN("floatEq", "ff", 'i', int32_t(std::fabs(c.f(0) - c.f(1)) < 0.0001)),
    FN("equivalentTol", "fff", 'i', int32_t(std::fabs(c.f(0) - c.f(1)) <= c.f(2))),
    FN("equivalent", "ff", 'i', int32_t(std::fabs(c.f(0) - c.f(1)) <= 1e-10)),

    {"seed", "i", 'i', [](NativeCall& c) { const int32_t before = randomSeed(); seedRandom(c.i(0)); c.give(before); }},
    FN("rand", "f", 'f', between(0, c.f(0))),
    FN("rand", "ff", 'f', between(c.f(0), c.f(1))),
    {"rand", "v", 'v', [](NativeCall& c) { const double x = between(0, c.v(0).x), y = between(0, c.v(0).y); c.give(Vec3{x, y, between(0, c.v(0).z)}); }},
    {"rand", "vv", 'v', [](NativeCall& c) {
         const Vec3   l = c.v(0), h = c.v(1);
         const double x = between(l.x, h.x), y = between(l.y, h.y);
         c.give(Vec3{x, y, between(l.z, h.z)});
     }},
    FN("gauss", "f", 'f', c.f(0) * randomGauss()),
    FN("gauss", "ff", 'v', (Vec3{c.f(0) * randomGauss(), c.f(1) * randomGauss(), 0})),
    FN("gauss", "v", 'v', (Vec3{c.v(0).x * randomGauss(), c.v(0).y * randomGauss(), c.v(0).z * randomGauss()})),
    FN("sphrand", "f", 'v', scaled(randomInSphere(), c.f(0))),
    {"sphrand", "v", 'v', [](NativeCall& c) { const Vec3 p = randomInSphere(), s = c.v(0); c.give(Vec3{p.x * s.x, p.y * s.y, p.z * s.z}); }},
    FN("noise", "f", 'f', noise({c.f(0), 0, 0})),
    FN("noise", "ff", 'f', noise({c.f(0), c.f(1), 0})),
    FN("noise", "v", 'f', noise(c.v(0))),
    {"dnoise", "v", 'v', [](NativeCall& c) { Vec3 g; noise(c.v(0), &g); c.give(g); }},
};

}  // namespace

std::span<const Native> mathNatives() { return kRows; }

}  // namespace mirk::mel

// The curve between keys and outside of them, against closed forms and a slow second way.
#include "anim/curve.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

using namespace mirk::anim;

namespace {

using T = Tangent;

Key key(double time, double value, Tangent in, Tangent out)
{
    Key k;
    k.time = time;
    k.value = value;
    k.in.type = in;
    k.out.type = out;
    return k;
}

Curve curve(std::vector<std::pair<double, double>> points, Tangent type)
{
    Curve c;
    for (auto [t, v] : points)
        c.keys.push_back(key(t, v, type, type));
    solveTangents(c);
    return c;
}

double slope(const Handle& h) { return h.y / h.x; }

/// Value of the Bezier curve through four points where its time is `at`, by halving.
double bezierByHalves(const double (&x)[4], const double (&y)[4], double at)
{
    const auto mix = [](const double (&p)[4], double u) {
        const double a = p[0] + u * (p[1] - p[0]), b = p[1] + u * (p[2] - p[1]), c = p[2] + u * (p[3] - p[2]);
        const double d = a + u * (b - a), e = b + u * (c - b);
        return d + u * (e - d);
    };
    double low = 0, high = 1;
    for (int i = 0; i < 200; ++i) {
        const double u = (low + high) / 2;
        (mix(x, u) < at ? low : high) = u;
    }
    return mix(y, low);
}

}  // namespace

TEST(AnimCurve, SlopesOfEachKind)
{
    // 0:0, 1:2, 4:8, 6:7; chords 2, 2, -0.5
    const std::vector<std::pair<double, double>> points = {{0, 0}, {1, 2}, {4, 8}, {6, 7}};
    struct Case { Tangent type; double in[4], out[4]; };
    const Case cases[] = {
        {T::kLinear, {2, 2, 2, -0.5}, {2, 2, -0.5, -0.5}},
        {T::kFlat, {0, 0, 0, 0}, {0, 0, 0, 0}},
        {T::kSpline, {2, 2, 1, -0.5}, {2, 2, 1, -0.5}},       // (8-0)/4, (7-2)/5
        {T::kClamped, {2, 2, 1, -0.5}, {2, 2, 1, -0.5}},
        {T::kAuto, {0, 2, 0, 0}, {0, 2, 0, 0}},               // ends and the peak are level
        {T::kPlateau, {0, 2, 0, 0}, {0, 2, 0, 0}},
    };
    for (const Case& c : cases) {
        const Curve made = curve(points, c.type);
        for (size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(slope(made.keys[i].in), c.in[i], 1e-12) << int(c.type) << " in " << i;
            EXPECT_NEAR(slope(made.keys[i].out), c.out[i], 1e-12) << int(c.type) << " out " << i;
        }
    }
    // beside an equal value clamped is level, and auto never passes a neighbour
    EXPECT_EQ(curve({{0, 1}, {1, 1}, {2, 5}}, T::kClamped).keys[1].out.y, 0);
    EXPECT_NEAR(slope(curve({{0, 0}, {1, 0.1}, {2, 9}}, T::kAuto).keys[1].out), 0.3, 1e-12);
    EXPECT_EQ(curve({{3, 7}}, T::kSpline).keys[0].out.y, 0);
}

TEST(AnimCurve, BetweenKeys)
{
    struct Case { const char* what; Tangent out, in; double value; };
    const Case cases[] = {
        // from (1, 2) to (5, 10), a quarter of the way, at 2
        {"linear", T::kLinear, T::kLinear, 4},
        {"flat: 3s^2 - 2s^3", T::kFlat, T::kFlat, 2 + 8 * 0.15625},
        {"linear to flat", T::kLinear, T::kFlat, 2 + 8 * (0.15625 + 0.140625)},   // + s(1-s)^2
        {"step", T::kStep, T::kLinear, 2},
        {"stepnext", T::kStepNext, T::kLinear, 10},
    };
    for (const Case& c : cases)
        for (const bool weighted : {false, true}) {
            Curve made;
            made.weighted = weighted;
            made.keys = {key(1, 2, T::kFlat, c.out), key(5, 10, c.in, T::kFlat)};
            solveTangents(made);
            EXPECT_NEAR(evaluate(made, 2), c.value, 1e-12) << c.what << weighted;
            EXPECT_EQ(evaluate(made, 1), 2) << c.what;
            EXPECT_EQ(evaluate(made, 5), 10) << c.what;
            EXPECT_NEAR(slopeAt(made, 2), (evaluate(made, 2 + 1e-6) - evaluate(made, 2 - 1e-6)) / 2e-6, 1e-6) << c.what << weighted;
        }
    Curve upright = curve({{0, 0}, {1, 1}}, T::kFixed);
    upright.keys[0].out = {T::kFixed, 0, 1};
    EXPECT_TRUE(std::isfinite(evaluate(upright, 0.5)));
    EXPECT_EQ(evaluate(Curve(), 3), 0);
    EXPECT_EQ(evaluate(upright, NAN), 1);
}

TEST(AnimCurve, WeightedAgainstHalving)
{
    std::mt19937                           random(3);
    std::uniform_real_distribution<double> any(-4, 4), positive(0, 3);
    for (int round = 0; round < 200; ++round) {
        Curve c;
        c.weighted = true;
        c.keys = {key(1, any(random), T::kFlat, T::kFixed), key(2, any(random), T::kFixed, T::kFlat)};
        c.keys[0].out = {T::kFixed, positive(random), any(random)};
        c.keys[1].in = {T::kFixed, round % 10 ? positive(random) : 0, any(random)};
        const Handle &out = c.keys[0].out, &in = c.keys[1].in;
        const double  x[4] = {1, 1 + out.x / 3, 2 - in.x / 3, 2};
        const double  y[4] = {c.keys[0].value, c.keys[0].value + out.y / 3, c.keys[1].value - in.y / 3, c.keys[1].value};
        for (double at = 1.03; at < 2; at += 0.06)
            ASSERT_NEAR(evaluate(c, at), bezierByHalves(x, y, at), 1e-9) << round << " at " << at;
    }
    // a handle of five times the stretch is cut to it, direction kept
    Curve far = curve({{0, 0}, {1, 0}}, T::kFlat), cut = far;
    far.weighted = cut.weighted = true;
    far.keys[0].out = {T::kFixed, 15, 30};
    cut.keys[0].out = {T::kFixed, 3, 6};
    solveTangents(far);
    solveTangents(cut);
    EXPECT_NEAR(evaluate(far, 0.4), evaluate(cut, 0.4), 1e-12);
}

TEST(AnimCurve, Outside)
{
    // 1:2, 2:6 level, 3:4
    struct Case { Infinity kind; double before, after; };
    const Case cases[] = {   // at 0.5 and at 5.5
        {Infinity::kConstant, 2, 4},
        {Infinity::kLinear, 0, -1},           // slopes 4 and -2
        {Infinity::kCycle, 5, 4},             // as at 2.5 and at 1.5
        {Infinity::kCycleRelative, 3, 6 + 2}, // one cycle back: -2; two on: +4
        {Infinity::kOscillate, 4, 4},         // as at 1.5; 5.5 is 1.5 of the next but one
    };
    Curve c = curve({{1, 2}, {2, 6}, {3, 4}}, T::kLinear);
    for (const Case& k : cases) {
        c.pre = c.post = k.kind;
        EXPECT_NEAR(evaluate(c, 0.5), k.before, 1e-12) << int(k.kind);
        EXPECT_NEAR(evaluate(c, 5.5), k.after, 1e-12) << int(k.kind);
    }
    Curve one = curve({{1, 2}}, T::kLinear);
    one.pre = one.post = Infinity::kCycle;
    EXPECT_EQ(evaluate(one, 9), 2);
    EXPECT_EQ(evaluate(c, INFINITY), 4);
}

TEST(AnimCurve, TangentsByHand)
{
    Curve c = curve({{0, 0}, {2, 2}, {3, 0}}, T::kAuto);
    setTangent(c, 1, true, 3, 4);
    EXPECT_NEAR(slope(c.keys[1].out), 4. / 3, 1e-12);   // locked: the other side follows
    EXPECT_NEAR(c.keys[1].in.x, 0.6, 1e-12);
    c.keys[1].tangentsLocked = false;
    setTangent(c, 1, false, 1, -2);
    EXPECT_NEAR(slope(c.keys[1].in), 4. / 3, 1e-12);
    const double before[] = {evaluate(c, 0.7), evaluate(c, 2.6)};
    setWeighted(c, true);   // the shape stays
    EXPECT_NEAR(evaluate(c, 0.7), before[0], 1e-12);
    EXPECT_NEAR(evaluate(c, 2.6), before[1], 1e-12);
}

// The function set on animation curves: order of keys, look-ups, what lies outside the keys, and refusals.
#include "../support/host_fixture.h"

#include <cmath>

#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MTime.h>
#include <maya/MTimeArray.h>

namespace {

MTime frame(double f) { return MTime(f, MTime::kFilm); }

class CurveFn : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("currentUnit -t film; createNode transform -n t; createNode multiplyDivide -n m;");
    }
    static MPlug plug(const char* name)
    {
        MSelectionList list;
        MPlug          p;
        EXPECT_TRUE(list.add(MString(name)) && list.getPlug(0, p)) << name;
        return p;
    }
};

}  // namespace

TEST_F(CurveFn, KindsFitTheirPlugs)
{
    struct Case { const char* plug; MFnAnimCurve::AnimCurveType timed, plain; };
    const Case cases[] = {
        {"t.tx", MFnAnimCurve::kAnimCurveTL, MFnAnimCurve::kAnimCurveUL},
        {"t.rx", MFnAnimCurve::kAnimCurveTA, MFnAnimCurve::kAnimCurveUA},
        {"t.sx", MFnAnimCurve::kAnimCurveTU, MFnAnimCurve::kAnimCurveUU},
        {"m.i1x", MFnAnimCurve::kAnimCurveTU, MFnAnimCurve::kAnimCurveUU},
    };
    for (const Case& c : cases) {
        MFnAnimCurve fn;
        MStatus      s;
        EXPECT_EQ(fn.timedAnimCurveTypeForPlug(plug(c.plug)), c.timed) << c.plug;
        EXPECT_EQ(fn.unitlessAnimCurveTypeForPlug(plug(c.plug)), c.plain) << c.plug;
        fn.create(plug(c.plug), nullptr, &s);
        EXPECT_EQ(s, MS::kSuccess) << c.plug;
        EXPECT_EQ(fn.animCurveType(), c.timed) << c.plug;
        EXPECT_TRUE(fn.isTimeInput() && !fn.isUnitlessInput());
        EXPECT_TRUE(MFnAnimCurve(plug(c.plug)).object() == fn.object()) << "found from the plug";
        MFnAnimCurve second;
        second.create(plug(c.plug), nullptr, &s);
        EXPECT_NE(s, MS::kSuccess) << "it is driven";
    }
    mel("setAttr -l true t.ty;");
    MStatus      s;
    MFnAnimCurve fn;
    const size_t before = strings("ls").size();
    fn.create(plug("t.ty"), nullptr, &s);
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_EQ(strings("ls").size(), before) << "nothing is left over";
}

TEST_F(CurveFn, KeysStayInOrder)
{
    MFnAnimCurve fn;
    fn.create(plug("t.tx"));
    EXPECT_EQ(fn.addKey(frame(10), 1), 0u);
    EXPECT_EQ(fn.addKey(frame(30), 3), 1u);
    EXPECT_EQ(fn.addKey(frame(20), 2), 1u) << "between the two";
    EXPECT_EQ(fn.addKey(frame(20), 5), 1u) << "the same time: the value is replaced";
    EXPECT_EQ(fn.numKeys(), 3u);
    EXPECT_EQ(fn.value(1), 5);
    unsigned at = 99;
    EXPECT_TRUE(fn.find(frame(30), at));
    EXPECT_EQ(at, 2u);
    EXPECT_FALSE(fn.find(frame(29), at));
    struct Case { double time; unsigned closest; };
    for (const Case& c : {Case{-100, 0}, Case{14, 0}, Case{16, 1}, Case{26, 2}, Case{99, 2}})
        EXPECT_EQ(fn.findClosest(frame(c.time)), c.closest) << c.time;
    EXPECT_TRUE(fn.setTime(1, frame(25)));
    EXPECT_DOUBLE_EQ(fn.time(1).as(MTime::kFilm), 25);
    EXPECT_FALSE(fn.setTime(1, frame(30))) << "where its neighbour stands";
    EXPECT_FALSE(fn.setTime(1, frame(5))) << "past its neighbour";
    EXPECT_DOUBLE_EQ(fn.time(1).as(MTime::kFilm), 25);
    EXPECT_EQ(fn.setValue(3, 1), MS::kInvalidParameter);
    EXPECT_EQ(fn.remove(3), MS::kInvalidParameter);
    EXPECT_TRUE(fn.remove(0));
    EXPECT_EQ(fn.numKeys(), 2u);

    MTimeArray   times;
    MDoubleArray values;
    for (int i = 0; i < 3; ++i) {
        times.append(frame(25 + i));
        values.append(i * 10.0);
    }
    EXPECT_TRUE(fn.addKeys(&times, &values, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear, true));
    EXPECT_EQ(fn.numKeys(), 4u) << "25 was there, 30 stays";
    values.remove(0);
    EXPECT_FALSE(fn.addKeys(&times, &values)) << "lengths differ";
    EXPECT_EQ(fn.numKeys(), 4u);
}

TEST_F(CurveFn, OutsideTheKeys)
{
    MFnAnimCurve fn;
    fn.create(plug("t.sx"));
    const auto linear = MFnAnimCurve::kTangentLinear;
    fn.addKey(frame(0), 1, linear, linear);
    fn.addKey(frame(10), 3, linear, linear);
    fn.addKey(frame(20), 2, linear, linear);   // up by 0.2 a frame, then down by 0.1; a period of 20
    struct Case { MFnAnimCurve::InfinityType type; double at, value; };
    const Case cases[] = {
        {MFnAnimCurve::kConstant, 50, 2},          {MFnAnimCurve::kConstant, -50, 1},
        {MFnAnimCurve::kLinear, 30, 1},            {MFnAnimCurve::kLinear, -5, 0},
        {MFnAnimCurve::kCycle, 25, 2},             {MFnAnimCurve::kCycle, -5, 2.5},
        {MFnAnimCurve::kCycle, 65, 2},             {MFnAnimCurve::kCycleRelative, 25, 3},
        {MFnAnimCurve::kCycleRelative, 65, 5},     {MFnAnimCurve::kCycleRelative, -5, 1.5},
        {MFnAnimCurve::kOscillate, 25, 2.5},       {MFnAnimCurve::kOscillate, -5, 2},
        {MFnAnimCurve::kOscillate, 45, 2},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(fn.setPreInfinityType(c.type) && fn.setPostInfinityType(c.type));
        EXPECT_EQ(fn.postInfinityType(), c.type);
        EXPECT_NEAR(fn.evaluate(frame(c.at)), c.value, 1e-6) << c.type << " at " << c.at;
        EXPECT_NEAR(fn.evaluate(frame(5)), 2, 1e-9) << "inside nothing changes";
        mel("currentTime " + std::to_string(c.at));
        EXPECT_NEAR(num("getAttr t.sx"), c.value, 1e-6) << "through the graph";
    }
    EXPECT_FALSE(fn.isStatic());
}

TEST_F(CurveFn, OverPlainNumbersAndByModifier)
{
    MFnAnimCurve fn;
    MStatus      s;
    fn.create(MFnAnimCurve::kAnimCurveUU, nullptr, &s);
    ASSERT_EQ(s, MS::kSuccess);
    const auto linear = MFnAnimCurve::kTangentLinear;
    EXPECT_EQ(fn.addKey(2.0, 10.0, linear, linear), 0u);
    EXPECT_EQ(fn.addKey(4.0, 30.0, linear, linear), 1u);
    double v = 0;
    EXPECT_TRUE(fn.evaluate(2.5, v));
    EXPECT_NEAR(v, 15, 1e-9);
    EXPECT_EQ(fn.unitlessInput(1), 4);
    EXPECT_TRUE(fn.isUnitlessInput() && !fn.isTimeInput());
    fn.addKey(frame(1), 5, linear, linear, &s);
    EXPECT_NE(s, MS::kSuccess) << "a time is no plain number";
    EXPECT_EQ(fn.numKeys(), 2u);

    MDGModifier  modifier;
    MFnAnimCurve later;
    later.create(plug("t.tz"), &modifier, &s);
    EXPECT_EQ(s, MS::kSuccess);
    EXPECT_TRUE(plug("t.tz").source().isNull()) << "not yet";
    EXPECT_TRUE(modifier.doIt());
    later.addKey(frame(1), 4);
    EXPECT_EQ(num("getAttr t.tz"), 4);
    EXPECT_TRUE(modifier.undoIt());
    EXPECT_TRUE(plug("t.tz").source().isNull());
}

// Keys through commands, the interface and files.
#include <cmath>

#include <maya/MDoubleArray.h>
#include <maya/MDGContext.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MRampAttribute.h>
#include <maya/MTimeArray.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"

namespace {

class Keys : public mirk::test::Host
{
protected:
    static std::vector<double> at(const std::string& plug, std::vector<double> frames)
    {
        std::vector<double> out;
        for (const double f : frames) {
            mel("currentTime " + mirk::command::numberText(f));
            out.push_back(num("getAttr " + plug));
        }
        return out;
    }
    static void near(const std::vector<double>& is, const std::vector<double>& expected, const char* what = "")
    {
        ASSERT_EQ(is.size(), expected.size()) << what;
        for (size_t i = 0; i < is.size(); ++i)
            EXPECT_NEAR(is[i], expected[i], 1e-6) << what << " " << i;
    }
    static std::vector<double> list(const std::string& command) { return nums("float $r[] = `" + command + "`; $r = $r;"); }
};

using Strings = std::vector<std::string>;

}  // namespace

TEST_F(Keys, AnimateATransform)
{
    mel("group -em -n g");
    EXPECT_EQ(num("setKeyframe -itt linear -ott linear -t 1 -v 0 g.tx"), 1);
    EXPECT_EQ(num("setKeyframe -itt linear -ott linear -t 11 -v 5 -at translateX g"), 1);
    EXPECT_EQ(str("nodeType g_translateX"), "animCurveTL");
    near(at("g.tx", {0, 1, 2, 6, 11, 20}), {0, 0, 0.5, 2.5, 5, 5});

    // the usual way: set, then key
    mel("currentTime 1; setAttr g.rotateZ 0; setKeyframe -at rotateZ g; currentTime 5; setAttr g.rz 90; setKeyframe -at rz g");
    EXPECT_EQ(str("nodeType g_rotateZ"), "animCurveTA");
    near(at("g.rz", {1, 3, 5}), {0, 45, 90});
    mel("currentTime 3; setAttr g.rz 10");   // lasts until the time changes
    EXPECT_NEAR(num("getAttr g.rz"), 10, 1e-9);
    near(at("g.rz", {4, 3}), {90 * 0.84375, 45});   // 3/4 of the way, eased
    mel("setAttr g.rz 10; setKeyframe g.rz");
    near(at("g.rz", {3}), {10});

    EXPECT_EQ(num("setKeyframe g"), 10);   // all keyable channels
    EXPECT_EQ(str("keyTangent -q -ott g.visibility"), "step");
    mel("undo");
    EXPECT_EQ(num("objExists g_scaleX"), 0);
    EXPECT_EQ(num("keyframe -q -kc g_rotateZ"), 3);
    EXPECT_NE(melError("setKeyframe -at nothing g"), "");
    EXPECT_NE(melError("setKeyframe -itt round g.tx"), "");
    EXPECT_EQ(num("keyframe -q -kc g.tx"), 2);
}

TEST_F(Keys, AskedAndEdited)
{
    mel("group -em -n g; setKeyframe -itt spline -ott spline -t 1 -v 1 g.ty; setKeyframe -t 4 -v 3 g.ty; setKeyframe -t 10 -v 2 g.ty;"
        "setKeyframe -t 7 -v 9 g.tz");
    near(list("keyframe -q -tc g.ty"), {1, 4, 10});
    near(list("keyframe -q -vc -t \"2:10\" g.ty"), {3, 2});
    near(list("keyframe -q -tc -vc -index \"1:\" g.ty"), {4, 3, 10, 2});
    near(list("keyframe -q -tc -at ty -at tz g"), {1, 4, 10, 7});
    near(list("keyframe -q -ev -t 4 -t 20 g.ty"), {3, 2});
    EXPECT_EQ(num("keyframe -q -kc -t 4 g"), 1);
    EXPECT_EQ(strings("keyframe -q -name g"), (Strings{"g_translateY", "g_translateZ"}));

    mel("keyframe -e -index 1 -tc 6 -vc 8 g.ty; keyframe -r -tc 2 -t 10 g.ty");
    near(list("keyframe -q -tc -vc g.ty"), {1, 1, 6, 8, 12, 2});
    mel("keyframe -e -index 1 -tc 12 g.ty");   // takes the place of the key there
    near(list("keyframe -q -tc -vc g.ty"), {1, 1, 12, 8});
    mel("undo; undo");
    near(list("keyframe -q -tc g.ty"), {1, 6, 10});

    const struct { const char* which; double from, to; } searches[] = {
        {"next", 1, 6}, {"next", 10, 1}, {"previous", 6, 1}, {"previous", 0, 10}, {"first", 5, 1}, {"last", 5, 10}, {"next", 2.5, 6}};
    for (const auto& s : searches)
        EXPECT_NEAR(num(std::string("findKeyframe -which ") + s.which + " -t " + std::to_string(s.from) + " -at ty g"), s.to, 1e-9) << s.which << s.from;
    EXPECT_EQ(strings("findKeyframe -curve g"), (Strings{"g_translateY", "g_translateZ"}));
    EXPECT_NE(melError("findKeyframe -which nearest g"), "");

    EXPECT_EQ(num("cutKey -t \"5:7\" g"), 2);   // the only key of tz among them
    EXPECT_EQ(num("objExists g_translateZ"), 0);
    EXPECT_EQ(num("getAttr g.tz"), 9);
    near(list("keyframe -q -tc g"), {1, 10});
}

TEST_F(Keys, TangentsAndInfinity)
{
    mel("group -em -n g; setKeyframe -itt linear -ott linear -t 0 -v 0 g.tx; setKeyframe -itt linear -ott linear -t 24 -v 1 g.tx");
    near(list("keyTangent -q -oa -index 0 g.tx"), {45});   // 1 cm in a second
    mel("keyTangent -e -index 0 -oa 0 g.tx");
    EXPECT_EQ(str("string $s[] = `keyTangent -q -ott -index 0 g.tx`; $s[0]"), "fixed");
    near(at("g.tx", {6}), {0.25 * 0.25 * (2 - 0.25)});   // from level to slope 1: 2s^2 - s^3 ... at 1/4
    mel("keyTangent -e -wt 1 g.tx; keyTangent -e -index 0 -ow 0.5 g.tx");
    near(list("keyTangent -q -ow -index 0 g.tx"), {0.5});
    EXPECT_EQ(strings("setInfinity -q -pri -poi g.tx"), (Strings{"constant", "constant"}));
    mel("keyTangent -e -wt 0 g.tx; keyTangent -e -itt linear -ott linear g.tx; setInfinity -pri oscillate -poi cycleRelative g.tx");
    near(at("g.tx", {-6, 36, 60}), {0.25, 1.5, 2.5});
    EXPECT_EQ(strings("keyTangent -q -g -itt"), Strings{"auto"});
    mel("keyTangent -g -itt flat -ott flat; setKeyframe -t 12 -v 0.5 g.tx");
    EXPECT_EQ(strings("keyTangent -q -itt -t 12 g.tx"), Strings{"flat"});
    mel("keyTangent -g -itt auto -ott auto");
    EXPECT_NE(melError("setInfinity -pri forever g.tx"), "");
}

TEST_F(Keys, AKeyBetweenLeavesTheShape)
{
    mel("group -em -n g; setKeyframe -itt spline -ott spline -t 0 -v 0 -t 10 g.tx; setKeyframe -itt spline -ott spline -t 20 -v 7 g.tx;"
        "setKeyframe -itt spline -ott spline -t 10 -v 5 g.tx");
    const std::vector<double> frames = {1, 4, 7, 9, 13, 19};
    const auto before = at("g.tx", frames);
    EXPECT_EQ(num("setKeyframe -insert -t 6 -t 15.5 g.tx"), 2);
    EXPECT_EQ(num("keyframe -q -kc g.tx"), 5);
    const auto after = at("g.tx", frames);
    for (size_t i = 0; i < frames.size(); ++i)
        EXPECT_NEAR(after[i], before[i], 1e-6);   // tangents are stored in single precision
}

TEST_F(Keys, FilesOfThisAndOtherOrigin)
{
    const std::string foreign = write("foreign.ma",
        "//Maya ASCII 2019 scene\nrequires maya \"2019\";\ncreateNode transform -n \"g\";\n"
        "createNode animCurveTL -n \"g_translateX\";\n\tsetAttr \".tan\" 2;\n\tsetAttr \".wgt\" no;\n"
        "\tsetAttr -s 3 \".ktv[0:2]\"  1 0 11 10 21 0;\n\tsetAttr \".kot[1]\" 5;\n\tsetAttr \".pst\" 3;\n"
        "createNode animCurveTA -n \"g_rotateY\";\n\tsetAttr \".tan\" 1;\n\tsetAttr \".wgt\" no;\n\tsetAttr -s 2 \".ktv[0:1]\"  0 0 24 90;\n"
        "\tsetAttr -s 2 \".kit[0:1]\"  1 18;\n\tsetAttr -s 2 \".kot[0:1]\"  1 18;\n"
        "\tsetAttr -s 2 \".kox[0:1]\"  0.6 1;\n\tsetAttr -s 2 \".koy[0:1]\"  0.8 0;\n"
        "connectAttr \"g_translateX.o\" \"g.tx\";\nconnectAttr \"g_rotateY.o\" \"g.ry\";\n// End of foreign.ma\n");
    mel("file -o \"" + foreign + "\"");
    const auto check = [] {
        near(at("g.tx", {1, 6, 15, 21, 26}), {0, 5, 10, 0, 5});
        // from slope 4/3 a second to level, at half a second
        const double half = M_PI / 2, m = 4. / 3;
        near(at("g.ry", {0, 12, 24}), {0, (half / 2 + m * 0.125) * 180 / M_PI, 90}, "ry");
    };
    check();
    const std::string own = file("own.ma");
    mel("file -rename \"" + own + "\"; file -save -type \"mayaAscii\"; file -f -new; file -o \"" + own + "\"");
    check();
}

TEST_F(Keys, OverAPlainNumber)
{
    mel("createNode animCurveUA -n d; group -em -n g; connectAttr d.output g.rx;"
        "setKeyframe -f 0 -v 0 -itt linear -ott linear d; setKeyframe -f 2 -v 90 -itt linear -ott linear d; setAttr d.input 0.5");
    EXPECT_NEAR(num("getAttr g.rx"), 22.5, 1e-9);
    near(list("keyframe -q -fc -vc d"), {0, 0, 2, 90});
    EXPECT_EQ(num("listConnections -s 1 -d 0 d; size(`listConnections -s 1 -d 0 d`)"), 0);   // the time is none of its inputs
}

TEST_F(Keys, ReadAtOtherTimes)
{
    mel("group -em -n g; createNode remapValue -n r; connectAttr g.tx r.value[1].value_FloatValue;"
        "setKeyframe -itt linear -ott linear -t 0 -v 0 g.tx; setKeyframe -itt linear -ott linear -t 10 -v 20 g.tx; currentTime 5");
    const MRampAttribute ramp(scene::plug("r.value"));
    MDGContext           later(MTime(8, MTime::k24FPS));
    float                now = 0, then = 0;
    ramp.getValueAtPosition(1, now);
    ramp.getValueAtPosition(1, then, nullptr, later);
    EXPECT_FLOAT_EQ(now, 10);
    EXPECT_FLOAT_EQ(then, 16);
    EXPECT_EQ(num("getAttr g.tx"), 10);
    ramp.getValueAtPosition(1, now);
    EXPECT_FLOAT_EQ(now, 10);
}

TEST_F(Keys, FunctionSet)
{
    mel("group -em -n g");
    MFnAnimCurve fn;
    MStatus      status;
    EXPECT_FALSE(fn.create(scene::plug("g.translateX")).isNull());
    EXPECT_EQ(fn.animCurveType(), MFnAnimCurve::kAnimCurveTL);
    EXPECT_TRUE(fn.object().hasFn(MFn::kAnimCurve) && fn.isTimeInput());
    const auto frame = [](double f) { return MTime(f, MTime::k24FPS); };
    fn.addKey(frame(24), 4, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear);
    EXPECT_EQ(fn.addKey(frame(0), 2, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear), 0u);
    EXPECT_DOUBLE_EQ(fn.evaluate(frame(12)), 3);
    EXPECT_EQ(fn.numKeys(), 2u);
    EXPECT_EQ(fn.time(1), frame(24));
    unsigned index = 9;
    EXPECT_TRUE(fn.find(frame(24), index));
    EXPECT_EQ(index, 1u);
    EXPECT_FALSE(fn.find(frame(23), index));
    EXPECT_EQ(fn.findClosest(frame(13)), 1u);
    double x, y;
    EXPECT_TRUE(fn.getTangent(0, x, y, false));
    EXPECT_NEAR(y / x, 2, 1e-12);   // 2 cm in a second
    EXPECT_TRUE(fn.setTangent(0, 1.0, 0.0, false));
    EXPECT_EQ(fn.outTangentType(0), MFnAnimCurve::kTangentFixed);
    EXPECT_EQ(fn.setTime(0, frame(30)), MS::kInvalidParameter);   // would pass the next key
    EXPECT_TRUE(fn.setValue(1, 8) && fn.setPostInfinityType(MFnAnimCurve::kCycle));
    EXPECT_DOUBLE_EQ(fn.value(1), 8);
    fn.value(7, &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_EQ(fn.remove(7), MS::kInvalidParameter);
    EXPECT_FALSE(fn.isStatic());

    MTimeArray   times;
    MDoubleArray values;
    for (int i = 0; i < 1000; ++i)
        times.append(frame(i)), values.append(i * 0.5);
    EXPECT_TRUE(fn.addKeys(&times, &values, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear));
    EXPECT_EQ(fn.numKeys(), 1000u);
    near(at("g.tx", {3, 500.5}), {1.5, 250.25});
    EXPECT_TRUE(MFnAnimCurve(scene::plug("g.translateX")).object() == fn.object());
    MFnAnimCurve none(scene::plug("g.translateY"), &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_EQ(none.numKeys(&status), 0u);
    EXPECT_FALSE(status);
    EXPECT_TRUE(fn.create(scene::plug("g.translateX"), nullptr, &status).isNull());   // driven already
}

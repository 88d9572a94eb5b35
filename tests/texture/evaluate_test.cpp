// What drives an attribute, at many places: against the same network set to each place by hand.
#include <cmath>
#include <limits>
#include <random>

#include <maya/MDGContext.h>
#include <maya/MDGContextGuard.h>
#include <maya/MDoubleArray.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MTime.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "support/host_fixture.h"

using mirk::test::Host;

namespace {

class TextureNetworks : public Host
{
protected:
    static MObject node(const char* name)
    {
        MSelectionList list;
        list.add(name);
        MObject out;
        list.getDependNode(0, out);
        return out;
    }
    static MObject attribute(const char* nodeName, const char* name) { return MFnDependencyNode(node(nodeName)).attribute(name); }
    static bool    valid(const char* nodeName, const char* name)
    {
        return MDynamicsUtil::hasValidDynamics2dTexture(node(nodeName), attribute(nodeName, name));
    }
    struct Result
    {
        MVectorArray colors;
        MDoubleArray alphas;
        MStatus      status;
    };
    static Result eval(const char* nodeName, const char* name, const std::vector<double>& u, const std::vector<double>& v)
    {
        Result       r;
        MDoubleArray us(u.data(), unsigned(u.size())), vs(v.data(), unsigned(v.size()));
        r.status = MDynamicsUtil::evalDynamics2dTexture(node(nodeName), attribute(nodeName, name), us, vs, &r.colors, &r.alphas);
        return r;
    }
    static void expectColor(const MVector& got, double r, double g, double b, const std::string& when)
    {
        EXPECT_NEAR(got.x, r, 1e-6) << when;
        EXPECT_NEAR(got.y, g, 1e-6) << when;
        EXPECT_NEAR(got.z, b, 1e-6) << when;
    }
};

TEST_F(TextureNetworks, WhatCountsAsATexture)
{
    struct Case { const char* when; const char* setup; const char* attribute; bool valid; };
    const Case cases[] = {
        {"nothing connected", "", "color1", false},
        {"a texture", "connectAttr c.outColor b.color1", "color1", true},
        {"its colour asked for by a part", "connectAttr c.outColor b.color1", "color1R", true},
        {"another part's connection", "connectAttr c.outColorG b.color1G", "color1R", true},
        {"the other colour", "connectAttr c.outColor b.color1", "color2", false},
        {"alpha on a number", "connectAttr c.outAlpha b.blender", "blender", true},
        {"a node without a texture", "createNode reverse -n r; connectAttr r.output b.color1", "color1", false},
        {"behind a node", "createNode reverse -n r; connectAttr r.output b.color1; connectAttr c.outColor r.input", "color1", true},
        {"a placement alone", "createNode place2dTexture -n p; connectAttr p.outU b.color1R", "color1", false},
    };
    for (const Case& c : cases) {
        mel(std::string("file -f -new; createNode blendColors -n b; createNode checker -n c; ") + c.setup);
        EXPECT_EQ(valid("b", c.attribute), c.valid) << c.when;
        const Result r = eval("b", c.attribute, {0.1}, {0.1});
        EXPECT_EQ(bool(r.status), c.valid) << c.when;
        EXPECT_EQ(r.colors.length(), c.valid ? 1u : 0u) << c.when;
    }
    EXPECT_FALSE(MDynamicsUtil::hasValidDynamics2dTexture(MObject(), MObject()));
    EXPECT_FALSE(MDynamicsUtil::hasValidDynamics2dTexture(node("b"), attribute("c", "color1"))) << "an attribute of another node";
    EXPECT_FALSE(valid("b", "message"));
}

TEST_F(TextureNetworks, ColoursAndAlphas)
{
    mel("createNode checker -n c; createNode ramp -n r; createNode blendColors -n b; createNode plusMinusAverage -n s;"
        "setAttr c.c1 1 0.5 0.25; setAttr c.c2 0 0 0.75");
    mel("connectAttr c.outColor b.color1");
    Result r = eval("b", "color1", {0.1, 0.9, NAN, 0.1, 1e30}, {0.1, 0.1, 0.1, -0.6, 0});
    ASSERT_EQ(r.colors.length(), 5u);
    expectColor(r.colors[0], 1, 0.5, 0.25, "a cell");
    expectColor(r.colors[1], 0, 0, 0.75, "the other");
    expectColor(r.colors[2], 0.5, 0.5, 0.5, "no place: the default colour");
    expectColor(r.colors[3], 1, 0.5, 0.25, "below: -0.6 is 0.4");
    expectColor(r.colors[4], 0.5, 0.5, 0.5, "far out");
    EXPECT_EQ(r.alphas[0], 1);
    EXPECT_EQ(r.alphas[1], 0);
    expectColor(eval("b", "color1G", {0.1}, {0.1}).colors[0], 1, 0.5, 0.25, "a part gives its colour");

    mel("connectAttr r.outColorG b.color1G");
    r = eval("b", "color1", {0.1}, {0.3});
    expectColor(r.colors[0], 1, 0.3, 0.25, "a part with a texture of its own");

    mel("setAttr b.color2 9 2 3; connectAttr c.outColorR b.color2R");
    r = eval("b", "color2", {0.9, 0.1}, {0.1, 0.1});
    expectColor(r.colors[0], 0, 2, 3, "the others hold what is set");
    expectColor(r.colors[1], 1, 2, 3, "the others hold what is set");

    mel("connectAttr r.outAlpha b.blender");
    r = eval("b", "blender", {0.5}, {0.25});
    expectColor(r.colors[0], 0.25, 0.25, 0.25, "one number is grey");
    EXPECT_NEAR(r.alphas[0], 0.25, 1e-6);

    mel("connectAttr r.outColor s.input3D[4]; connectAttr c.outColor s.input3D[7]; setAttr s.input3D[2] 1 1 1");
    expectColor(eval("s", "input3D", {0.5}, {0.5}).colors[0], 0.5, 0.5, 0.5, "the first element with a texture");
    expectColor(eval("s", "input3Dx", {0.5}, {0.75}).colors[0], 0.75, 0.75, 0.75, "the same by its part");
}

TEST_F(TextureNetworks, BadArrays)
{
    mel("createNode checker -n c; createNode blendColors -n b; connectAttr c.outColor b.color1");
    MDoubleArray two(2, 0.1), three(3, 0.1), alphas(1, 5);
    MVectorArray colors(1, MVector(7, 8, 9));
    const MObject b = node("b"), color = attribute("b", "color1");
    EXPECT_EQ(MDynamicsUtil::evalDynamics2dTexture(b, color, two, three, &colors, &alphas), MS::kInvalidParameter);
    EXPECT_EQ(colors.length(), 1u) << "left as it was";
    EXPECT_EQ(alphas[0], 5);
    EXPECT_TRUE(MDynamicsUtil::evalDynamics2dTexture(b, color, two, two, nullptr, nullptr));
    EXPECT_TRUE(MDynamicsUtil::evalDynamics2dTexture(b, color, two, two, nullptr, &alphas));
    EXPECT_EQ(alphas.length(), 2u);
    EXPECT_TRUE(eval("b", "color1", {}, {}).status);
    EXPECT_EQ(eval("b", "color1", {}, {}).colors.length(), 0u);
    mel("delete c");
    EXPECT_FALSE(valid("b", "color1")) << "the texture is gone";
}

TEST_F(TextureNetworks, TheScenesOwnValuesStay)
{
    // a placement's value, a texture's and those of nodes behind it: clean and the same before and after
    mel("createNode place2dTexture -n p; createNode ramp -n t; createNode reverse -n r; createNode blendColors -n b;"
        "connectAttr p.outUV t.uvCoord; connectAttr t.outColor r.input; connectAttr r.output b.color1; connectAttr r.outputX b.blender;"
        "setAttr p.uvCoord 0.5 0.25");
    const std::vector<double> before = nums("getAttr r.output"), out = nums("getAttr b.output");
    const Result r = eval("b", "color1", {0.1, 0.2}, {0.9, 0.75});
    expectColor(r.colors[1], 0.25, 0.25, 0.25, "behind a node");
    EXPECT_EQ(nums("getAttr p.outUV"), (std::vector<double>{0.5, 0.25}));
    EXPECT_EQ(nums("getAttr t.outColor"), (std::vector<double>{0.25, 0.25, 0.25}));
    EXPECT_EQ(nums("getAttr r.output"), before);
    EXPECT_EQ(nums("getAttr b.output"), out);
    mel("setAttr p.uvCoord 0.5 0.5");
    EXPECT_EQ(nums("getAttr r.output"), (std::vector<double>{0.5, 0.5, 0.5})) << "dirt still goes through";
    EXPECT_EQ(num("undo; getAttr p.vCoord"), 0.25) << "nothing of it is an edit";
}

TEST_F(TextureNetworks, TimeGoesOnBesideIt)
{
    mel("createNode noise -n t; createNode reverse -n r; createNode blendColors -n b; setAttr t.depthMax 1; setAttr t.frequency 1;"
        "connectAttr time1.outTime t.time; connectAttr t.outColor r.input; connectAttr r.output b.color1");
    mel("currentTime 3");
    const Result three = eval("b", "color1", {0.3}, {0.4});
    mel("currentTime 10");
    const Result ten = eval("b", "color1", {0.3}, {0.4});
    EXPECT_NE(three.colors[0].x, ten.colors[0].x);
    MDGContextGuard guard(MDGContext(MTime(3, MTime::uiUnit())));
    EXPECT_EQ(eval("b", "color1", {0.3}, {0.4}).colors[0].x, three.colors[0].x) << "in the ambient context";
}

// Loops of nodes and plugs, a placement that a texture moves, a placement placed.
TEST_F(TextureNetworks, OddNetworks)
{
    mel("createNode place2dTexture -n p; createNode place2dTexture -n q; createNode ramp -n t; createNode blendColors -n b;"
        "connectAttr q.outUV p.uvCoord; connectAttr p.outUV t.uvCoord; connectAttr t.outColor b.color1; setAttr q.repeatV 2; setAttr p.offsetV 0.25");
    expectColor(eval("b", "color1", {0}, {0.25}).colors[0], 0.75, 0.75, 0.75, "one placement behind the other");
    mel("createNode ramp -n d; setAttr d.type 1; connectAttr d.outColorR p.offsetV -f");
    expectColor(eval("b", "color1", {0.125}, {0.25}).colors[0], 0.625, 0.625, 0.625, "an offset that another texture gives");
    mel("connectAttr t.outColorR p.uvFilterSizeX");
    expectColor(eval("b", "color1", {0.125}, {0.25}).colors[0], 0.625, 0.625, 0.625, "a loop of nodes, not of plugs");
    mel("file -f -new; createNode ramp -n t; createNode reverse -n r0; connectAttr t.outColor r0.input");
    for (int i = 1; i <= 500; ++i)
        mel("createNode reverse -n r" + std::to_string(i) + "; connectAttr r" + std::to_string(i - 1) + ".output r" + std::to_string(i) + ".input");
    mel("createNode blendColors -n b; connectAttr r500.output b.color1");
    expectColor(eval("b", "color1", {0}, {0.25}).colors[0], 0.75, 0.75, 0.75, "501 times one minus");
}

/// A random network: textures with or without a placement, textures in textures, arithmetic on top; ends in b.color1.
std::string randomNetwork(std::mt19937& random, std::vector<std::string>& free)
{
    const auto any = [&](int n) { return int(random() % unsigned(n)); };
    const auto number = [&](double low, double high) { return std::to_string(low + (high - low) * any(1000) / 999.); };
    std::string              text = "file -f -new; createNode blendColors -n b;";
    std::vector<std::string> colors, placements;
    const int placementCount = any(3), textureCount = 1 + any(4), mathCount = any(5);
    for (int i = 0; i < placementCount; ++i) {
        const std::string n = "p" + std::to_string(i);
        text += "createNode place2dTexture -n " + n + "; setAttr " + n + ".repeatUV " + number(0.5, 4) + " " + number(0.5, 4) + "; setAttr " + n +
                ".offsetU " + number(0, 1) + "; setAttr " + n + ".rotateUV " + number(0, 360) + "; setAttr " + n + ".wrapU " + std::to_string(any(2)) +
                "; setAttr " + n + ".mirrorV " + std::to_string(any(2)) + ";";
        if (i && any(2))
            text += "connectAttr p" + std::to_string(any(i)) + ".outUV " + n + ".uvCoord;";
        else
            free.push_back(n);
        placements.push_back(n);
    }
    const char* const types[] = {"checker", "ramp", "noise", "grid", "bulge"};
    const char* const colored[] = {"color1", "colorGain", "colorOffset", "lineColor", "colorGain"};
    for (int i = 0; i < textureCount; ++i) {
        const int         type = any(5);
        const std::string n = "t" + std::to_string(i);
        text += std::string("createNode ") + types[type] + " -n " + n + "; setAttr " + n + ".invert " + std::to_string(any(2)) + ";";
        if (!placements.empty() && any(3))
            text += "connectAttr " + placements[size_t(any(int(placements.size())))] + ".outUV " + n + ".uvCoord;";
        else
            free.push_back(n);
        if (!colors.empty() && any(2))
            text += "connectAttr " + colors[size_t(any(int(colors.size())))] + " " + n + "." + colored[type] + ";";
        colors.push_back(n + ".outColor");
    }
    for (int i = 0; i < mathCount; ++i) {
        const std::string n = "m" + std::to_string(i), from = colors[size_t(any(int(colors.size())))], other = colors[size_t(any(int(colors.size())))];
        switch (any(4)) {
        case 0:
            text += "createNode reverse -n " + n + "; connectAttr " + from + " " + n + ".input;";
            colors.push_back(n + ".output");
            break;
        case 1:
            text += "createNode multiplyDivide -n " + n + "; connectAttr " + from + " " + n + ".input1; connectAttr " + other + " " + n + ".input2;";
            colors.push_back(n + ".output");
            break;
        case 2:
            text += "createNode condition -n " + n + "; setAttr " + n + ".operation 2; setAttr " + n + ".secondTerm 0.4; connectAttr " + from + "R " + n +
                    ".firstTerm; connectAttr " + other + " " + n + ".colorIfTrue;";
            if (from.find("output") != std::string::npos && from[0] == 'm')
                text.replace(text.rfind(from + "R"), from.size() + 1, from + "X");
            colors.push_back(n + ".outColor");
            break;
        default:
            text += "createNode remapValue -n " + n + "; connectAttr t0.outAlpha " + n + ".inputValue;";
            colors.push_back(n + ".outColor");
        }
    }
    return text + "connectAttr " + colors.back() + " b.color1;";
}

TEST_F(TextureNetworks, ManyPlacesAreAsOneByOne)
{
    std::mt19937 random(4711);
    int          checked = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> free;
        const std::string        text = randomNetwork(random, free);
        mel(text);
        if (!valid("b", "color1"))
            continue;
        ++checked;
        std::vector<double> u, v;
        for (int i = 0; i < 20; ++i) {
            u.push_back(-1 + 3 * double(random() % 1000) / 999);
            v.push_back(-1 + 3 * double(random() % 1000) / 999);
        }
        const Result many = eval("b", "color1", u, v);
        ASSERT_EQ(many.colors.length(), u.size()) << text;
        for (size_t i = 0; i < u.size(); ++i) {
            for (const std::string& n : free)
                for (const auto& [part, value] : {std::pair{".uCoord", u[i]}, {".vCoord", v[i]}})
                    MPlug(node(n.c_str()), attribute(n.c_str(), part + 1)).setDouble(value);
            const std::vector<double> one = nums("getAttr b.color1");
            const MVector&            got = many.colors[unsigned(i)];
            ASSERT_EQ((std::vector<double>{got.x, got.y, got.z}), one) << text << "\nat " << u[i] << " " << v[i];
        }
    }
    EXPECT_GT(checked, 40);
}

}  // namespace

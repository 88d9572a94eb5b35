// Ramps: the interpolation, the attribute through its interface, scripts and files, and the toolkit's reader of ramps.
#include "core/ramp.h"

#include <cmath>
#include <random>

#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"
#include "anim/ramp.h"

namespace {

using mirk::RampEntry;

float at(std::vector<RampEntry> entries, float position)
{
    mirk::sortRamp(entries);
    return mirk::rampValue(entries.data(), entries.size(), position);
}

RampEntry key(float position, float value, int interp) { return {position, interp, {value, 0, 0}}; }

class RampAttribute : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode remapValue -n r");
    }
    static MRampAttribute curve() { return MRampAttribute(scene::plug("r.value")); }
    static MRampAttribute color() { return MRampAttribute(scene::plug("r.color")); }
    static float value(float position)
    {
        float v = NAN;
        curve().getValueAtPosition(position, v);
        return v;
    }
    static void set(const std::vector<RampEntry>& entries)
    {
        MFloatArray positions, values;
        MIntArray   interps;
        for (const RampEntry& e : entries)
            positions.append(e.position), values.append(e.value[0]), interps.append(e.interpolation);
        EXPECT_TRUE(curve().setRamp(values, positions, interps));
    }
    static std::string indices()
    {
        MIntArray   indices, interps;
        MFloatArray positions, values;
        curve().getEntries(indices, positions, values, interps);
        std::string out;
        for (unsigned i = 0; i < indices.length(); ++i)
            out += std::to_string(indices[i]) + ":" + std::to_string(int(values[i])) + " ";
        return out;
    }
};

}  // namespace

TEST(RampInterpolation, EachKindAQuarterOfTheWay)
{
    // entries at 0, 2, 3, 5 with values 1, 3, 0, 8; asked in the second stretch, a quarter from 2 to 3
    struct Case { int interp; float expected; };
    const Case cases[] = {
        {0, 3}, {1, 2.25f},
        {2, 3 - 3 * 0.15625f},   // 3/16 - 2/64 of the way
        // chord slopes -1/3 and 5/3: 3*27/32 - (1/3)(9/64) + 0 + (5/3)(-3/64), by the Hermite basis at 1/4
        {3, 2.53125f - 3.f / 64 - 5.f / 64},
        {7, 2.25f},              // no such kind
    };
    for (const Case& c : cases)
        EXPECT_FLOAT_EQ(at({key(0, 1, 1), key(2, 3, c.interp), key(3, 0, 1), key(5, 8, 1)}, 2.25f), c.expected) << c.interp;
}

TEST(RampInterpolation, OrderAndEnds)
{
    const std::vector<RampEntry> mixed = {key(1, 10, 1), key(0, 2, 1), key(0.5f, 4, 0)};
    EXPECT_EQ(at(mixed, 0.25f), 3);
    EXPECT_EQ(at(mixed, 0.75f), 4);
    EXPECT_EQ(at(mixed, -7), 2);
    EXPECT_EQ(at(mixed, INFINITY), 10);
    EXPECT_EQ(at(mixed, NAN), 2);
    EXPECT_EQ(at({}, 0.5f), 0);
    EXPECT_EQ(at({key(0.3f, 6, 3)}, 0.9f), 6);
    EXPECT_EQ(at({key(0.5f, 1, 1), key(0.5f, 2, 3), key(1, 3, 1)}, 0.5f), 2);   // the later of two at one place
    EXPECT_EQ(at({key(NAN, 9, 1), key(0, 1, 1), key(INFINITY, 9, 1)}, 2), 1);   // no place: out
}

TEST(RampInterpolation, SplineIsSmoothAcrossEntries)
{
    const std::vector<RampEntry> e = {key(0, 0, 3), key(0.3f, 5, 3), key(1, 2, 3), key(4, 7, 3)};
    for (float p : {0.3f, 1.f}) {
        const float h = 1e-3f, left = (at(e, p) - at(e, p - h)) / h, right = (at(e, p + h) - at(e, p)) / h;
        EXPECT_NEAR(left, right, 0.15) << p;   // slopes of up to 20 elsewhere
    }
}

TEST_F(RampAttribute, EntriesThroughTheInterface)
{
    EXPECT_TRUE(curve().isCurveRamp());
    EXPECT_FALSE(curve().isColorRamp());
    EXPECT_EQ(value(0.25f), 0.25f);
    set({key(0.5f, 5, 1), key(0, 1, 1)});
    EXPECT_EQ(indices(), "0:5 1:1 ");
    EXPECT_EQ(value(0.25f), 3);

    MStatus        status;
    MRampAttribute ramp = curve();
    MFloatArray    positions(1, 1), values(1, 9);
    MIntArray      linear(1, 1), none;
    ramp.addEntries(positions, values, none, &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    ramp.addEntries(positions, values, linear, &status);
    EXPECT_TRUE(status);
    EXPECT_EQ(ramp.getNumEntries(), 3u);
    EXPECT_EQ(value(0.75f), 7);
    ramp.sort();
    EXPECT_EQ(indices(), "0:1 1:5 2:9 ");

    MIntArray some(1, 1);
    ramp.deleteEntries(some, &status);
    EXPECT_EQ(indices(), "0:1 2:9 ");
    EXPECT_TRUE(ramp.hasIndex(2) && !ramp.hasIndex(1));
    some.append(1);   // one exists no more
    some[0] = 0;
    ramp.deleteEntries(some, &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_EQ(ramp.getNumEntries(), 2u);
    ramp.pack();
    EXPECT_EQ(indices(), "0:1 1:9 ");

    ramp.setInterpolationAtIndex(MRampAttribute::kNone, 0);
    ramp.setPositionAtIndex(0.5f, 0);
    ramp.setValueAtIndex(4, 0);
    EXPECT_EQ(value(0.99f), 4);
    ramp.setValueAtIndex(4, 12, &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_TRUE(ramp.sampleValueRamp(3, values));
    EXPECT_EQ(values[2], 9);
}

TEST_F(RampAttribute, ScriptsConnectionsAndFiles)
{
    mel("setAttr \"r.color[0].color_Color\" -type double3 1 0 0.5; setAttr r.color[1].color_Interp 1;"
        "setAttr r.color[7].color_Position 0.5; setAttr r.color[7].color_ColorG 4; setAttr r.color[7].cli 2");
    MColor c;
    color().getColorAtPosition(0.25f, c);
    EXPECT_FLOAT_EQ(c.g, 2);
    EXPECT_FLOAT_EQ(c.r, 0.5f);
    color().getColorAtPosition(0.5f + 0.125f, c);   // smooth from (0, 4, 0) to white: a quarter is 0.15625
    EXPECT_FLOAT_EQ(c.g, 4 - 3 * 0.15625f);
    EXPECT_FLOAT_EQ(c.a, 1);

    // an entry may be driven
    mel("createNode network -n driver; addAttr -ln v -at \"float\" driver;"
        "connectAttr driver.v r.value[1].value_FloatValue; setAttr r.inputValue 0.5");
    mel("setAttr driver.v 8");
    EXPECT_EQ(value(0.5f), 4);
    EXPECT_EQ(num("getAttr r.outValue"), 4);
    mel("setAttr driver.v 6");
    EXPECT_EQ(num("getAttr r.outValue"), 3);
    MStatus status;
    curve().sort(true, &status);
    EXPECT_FALSE(status);

    const std::string path = file("ramp.ma");
    mel("file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -new; file -o \"" + path + "\"");
    EXPECT_EQ(value(0.5f), 3);
    color().getColorAtPosition(0.625f, c);
    EXPECT_FLOAT_EQ(c.g, 4 - 3 * 0.15625f);
    EXPECT_EQ(color().getNumEntries(), 3u);
}

TEST_F(RampAttribute, WhatIsNoRamp)
{
    MStatus status;
    for (const char* name : {"r.inputValue", "r.outColor", "persp.worldMatrix"}) {
        MRampAttribute none(scene::plug(name), &status);
        EXPECT_EQ(status, MS::kInvalidParameter) << name;
        float v = 3;
        none.getValueAtPosition(0.5f, v, &status);
        EXPECT_EQ(v, 0);
        EXPECT_FALSE(status);
        EXPECT_FALSE(none.setRamp(1.f));
    }
    float v = 3;
    color().getValueAtPosition(0.5f, v, &status);   // of the other kind
    EXPECT_FALSE(status);
    set({});
    EXPECT_EQ(value(0.5f), 0);
    mel("setAttr -lock on r.color[0]");
    EXPECT_FALSE(color().setRamp(MColor(1, 1, 1)));
    EXPECT_EQ(color().getNumEntries(), 2u);
}

TEST_F(RampAttribute, ReaderGivesTheSameBits)
{
    std::mt19937                     random(7);
    std::uniform_real_distribution<float> in(-0.5f, 1.5f), big(-3, 3);
    const auto                       same = [](float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    for (int round = 0; round < 60; ++round) {
        const int   n = round < 20 ? round / 5 : int(random() % 9);
        MFloatArray positions, values;
        MColorArray colors;
        MIntArray   interps;
        for (int i = 0; i < n; ++i) {
            positions.append(i && random() % 6 == 0 ? positions[unsigned(i - 1)] : in(random));
            values.append(big(random));
            colors.append(MColor(big(random), big(random), big(random)));
            interps.append(int(random() % 4));
        }
        EXPECT_TRUE(curve().setRamp(values, positions, interps));
        EXPECT_TRUE(color().setRamp(colors, positions, interps));
        const Ramp         reader(scene::plug("r.value")), colorReader(scene::plug("r.color"));
        std::vector<float> asked = {NAN, INFINITY, -INFINITY, 0, 1}, batch(200);
        for (unsigned i = 0; i < positions.length(); ++i)
            asked.push_back(positions[i]);
        while (asked.size() < batch.size())
            asked.push_back(big(random));
        reader.values(asked.data(), asked.size(), batch.data());
        for (size_t i = 0; i < asked.size(); ++i) {
            const float v = value(asked[i]);
            MColor      c;
            color().getColorAtPosition(asked[i], c);
            const MColor mine = colorReader.color(asked[i]);
            ASSERT_TRUE(same(v, reader.value(asked[i])) && same(v, batch[i])) << round << " at " << asked[i];
            ASSERT_TRUE(same(c.r, mine.r) && same(c.g, mine.g) && same(c.b, mine.b)) << round << " at " << asked[i];
        }
    }
    EXPECT_EQ(Ramp(MPlug()).value(0.5f), 0);
}

TEST_F(RampAttribute, FoundAcrossAConnection)
{
    mel("createNode remapValue -n s; connectAttr r.outValue s.inputValue; connectAttr r.outColor persp.translate");
    for (const char* name : {"s.inputValue", "persp.translate"})
        EXPECT_EQ(rampAcross(scene::plug(name), "color").name(), "r.color") << name;
    EXPECT_TRUE(rampAcross(scene::plug("s.inputValue"), "nothing").isNull());
    EXPECT_TRUE(rampAcross(scene::plug("r.inputValue"), "color").isNull());
    EXPECT_TRUE(fillRamp(scene::plug("r.color").node(), scene::plug("r.color").attribute(), {ColorKey{0.5f, MColor(2, 3, 4)}}));
    EXPECT_EQ(Ramp(scene::plug("r.color")).color(0.1f).b, 4);
}

// 2D textures at single places, through a placement: values worked out by hand.
#include <cmath>

#include "support/host_fixture.h"

using mirk::test::Host;

namespace {

class Textures : public Host
{
protected:
    /// A texture n with its placement p; `setup` goes on from there.
    static void make(const std::string& type, const std::string& setup)
    {
        mel("file -f -new; createNode " + type + " -n n; createNode place2dTexture -n p; connectAttr p.outUV n.uvCoord;"
            "connectAttr p.outUvFilterSize n.uvFilterSize; " + setup);
    }
    static std::vector<double> at(double u, double v)
    {
        mel("setAttr p.uvCoord " + std::to_string(u) + " " + std::to_string(v));
        std::vector<double> out = nums("getAttr n.outColor");
        out.push_back(num("getAttr n.outAlpha"));
        return out;
    }
    static void expect(const std::string& when, double u, double v, const std::vector<double>& wanted, double tolerance = 1e-5)
    {
        const std::vector<double> got = at(u, v);
        ASSERT_EQ(got.size(), 4u) << when;
        for (size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(got[i], wanted[i], tolerance) << when << ", at " << u << " " << v << ", channel " << i;
    }
};

struct Case
{
    const char*         when;
    const char*         type;
    const char*         setup;
    double              u, v;
    std::vector<double> wanted;   // r g b, and a where it tells something
};

TEST_F(Textures, ColourOfAPlace)
{
    const Case cases[] = {
        {"lower left cell", "checker", "", 0.49, 0.49, {1, 1, 1, 1}},
        {"beyond the border in u", "checker", "", 0.5, 0.49, {0, 0, 0, 0}},
        {"upper right cell", "checker", "", 0.5, 0.5, {1, 1, 1}},
        {"the far corner belongs to the last cell", "checker", "", 1, 1, {1, 1, 1}},
        {"no contrast is the mean", "checker", "setAttr n.c1 1 0 0; setAttr n.c2 0 0.5 0; setAttr n.contrast 0", 0.1, 0.1, {0.5, 0.25, 0, 0.5}},
        {"half the contrast", "checker", "setAttr n.contrast 0.5", 0.1, 0.9, {0.25, 0.25, 0.25, 0.25}},
        {"four repetitions: cells an eighth wide", "checker", "setAttr p.re 4 4", 0.13, 0.01, {0, 0, 0}},
        {"an offset of half a tile", "checker", "setAttr p.offsetU 0.5", 0.1, 0.1, {0, 0, 0}},
        {"a line half its width from the border", "grid", "", 0.04, 0.5, {1, 1, 1, 1}},
        {"beside the line", "grid", "", 0.06, 0.5, {0, 0, 0, 0}},
        {"no width, no line", "grid", "setAttr n.uWidth 0; setAttr n.vWidth 0", 0, 0, {0, 0, 0}},
        {"the top of a hill", "bulge", "", 0.5, 0.5, {1, 1, 1}},
        {"its side: sin(pi / 6)", "bulge", "setAttr n.uWidth 0; setAttr n.vWidth 0.5", 1. / 6, 0.5, {0.5, 0.5, 0.5}},
        {"its foot", "bulge", "setAttr n.uWidth 0.5", 0.2, 0.5, {0, 0, 0}},

        {"gain, then offset", "checker", "setAttr n.colorGain 0.5 0.5 2; setAttr n.colorOffset 0.1 0 0", 0.1, 0.1, {0.6, 0.5, 2}},
        {"inverted before the gain", "checker", "setAttr n.invert 1; setAttr n.colorGain 0.5 1 1", 0.1, 0.9, {0.5, 1, 1, 1}},
        {"luminance as alpha, its gain and offset", "checker", "setAttr n.c1 1 0.5 0; setAttr n.ail 1; setAttr n.ag 2; setAttr n.ao 0.25",
         0.1, 0.1, {1, 0.5, 0, 2 * (0.3 + 0.59 / 2) + 0.25}},
    };
    for (const Case& c : cases) {
        make(c.type, c.setup);
        expect(std::string(c.type) + ": " + c.when, c.u, c.v, c.wanted);
    }
}

// A ramp of u is a ruler: it tells where on the texture a place lies.
TEST_F(Textures, PlacementTellsWhere)
{
    const char* const ruler = "setAttr n.type 1; setAttr n.colorEntryList[1].color 1 0 0; setAttr n.defaultColor 0 0 7;";
    const std::vector<double> nowhere = {0, 0, 7, 0};
    const Case cases[] = {
        {"as it is", "ramp", "", 0.3, 0.5, {0.3}},
        {"wrapped: the frames beside", "ramp", "", 1.3, 0.5, {0.3}},
        {"negative places wrap upwards", "ramp", "", -0.2, 0.5, {0.8}},
        {"not wrapped: nothing beyond", "ramp", "setAttr p.wrapU 0", 1.3, 0.5, nowhere},
        {"not wrapped: the border belongs to it", "ramp", "setAttr p.wrapU 0", 1, 0.5, {1}},
        {"not wrapped in v alone", "ramp", "setAttr p.wrapV 0", 1.3, 0.5, {0.3}},
        {"a frame of half the surface", "ramp", "setAttr p.coverageU 0.5", 0.2, 0.5, {0.4}},
        {"and nothing beside it", "ramp", "setAttr p.coverageU 0.5", 0.7, 0.5, nowhere},
        {"covered again a period on", "ramp", "setAttr p.coverageU 0.5", 1.2, 0.5, {0.4}},
        {"no coverage at all", "ramp", "setAttr p.coverageU 0", 0, 0.5, nowhere},
        {"the frame moved", "ramp", "setAttr p.wrapU 0; setAttr p.translateFrameU 0.25", 0.5, 0.5, {0.25}},
        {"the frame moved away", "ramp", "setAttr p.wrapU 0; setAttr p.translateFrameU 0.25", 0.2, 0.5, nowhere},
        // turned by 90 degrees counter-clockwise the texture's u axis points up
        {"the frame turned", "ramp", "setAttr p.rotateFrame 90", 0.4, 0.3, {0.3}},
        {"the texture turned in the frame", "ramp", "setAttr p.rotateUV 90", 0.4, 0.3, {0.3}},
        {"repeated", "ramp", "setAttr p.repeatU 3", 0.5, 0.5, {0.5}},
        {"repeated, then moved", "ramp", "setAttr p.repeatU 3; setAttr p.offsetU 0.2", 0.1, 0.5, {0.5}},
        {"mirrored: every second tile runs back", "ramp", "setAttr p.repeatU 2; setAttr p.mirrorU 1", 0.6, 0.5, {0.8}},
        {"mirrored: the first does not", "ramp", "setAttr p.repeatU 2; setAttr p.mirrorU 1", 0.1, 0.5, {0.2}},
        {"staggered: the second row half a tile on", "ramp", "setAttr p.re 2 2; setAttr p.stagger 1", 0.1, 0.6, {0.7}},
        {"staggered: the first row", "ramp", "setAttr p.re 2 2; setAttr p.stagger 1", 0.1, 0.4, {0.2}},
        {"far out there is no texture", "ramp", "", 2e9, 0.5, nowhere},
    };
    for (const Case& c : cases) {
        make("ramp", std::string(ruler) + c.setup);
        expect(c.when, c.u, c.v, c.wanted, 2e-5);
    }
    make("checker", "setAttr p.repeatUV 4 2; setAttr p.coverageU 0.5; setAttr p.uvFilterSize 0.01 0.01");
    EXPECT_NEAR(num("getAttr n.uvFilterSizeX"), 0.08, 1e-6) << "the filter grows as the texture shrinks";
}

TEST_F(Textures, Ramps)
{
    // red at 0.25, green at 0.75; given out of order
    const std::string stops = "setAttr n.cel[0].ep 0.75; setAttr n.cel[0].ec 0 1 0; setAttr n.cel[1].ep 0.25; setAttr n.cel[1].ec 1 0 0;";
    const double half = std::sqrt(0.5);
    const Case cases[] = {
        {"before the first", "", "", 0.9, 0.1, {1, 0, 0}},
        {"half way up", "", "", 0.9, 0.5, {0.5, 0.5, 0, 0.3 * 0.5 + 0.59 * 0.5}},
        {"at the top", "", "", 0.9, 1, {0, 1, 0}},
        {"none", "", "setAttr n.in 0", 0, 0.7, {1, 0, 0}},
        {"exponential up", "", "setAttr n.in 2", 0, 0.5, {0.75, 0.25, 0}},
        {"exponential down", "", "setAttr n.in 3", 0, 0.5, {0.25, 0.75, 0}},
        {"smooth", "", "setAttr n.in 4", 0, 0.375, {1 - 0.15625, 0.15625, 0}},
        {"bump, rising: round at the bright end", "", "setAttr n.in 5; setAttr n.cel[0].ec 2 2 2; setAttr n.cel[1].ec 0 0 0", 0, 0.5, {2 * half}},
        {"spike, rising: sharp there", "", "setAttr n.in 6; setAttr n.cel[0].ec 2 2 2; setAttr n.cel[1].ec 0 0 0", 0, 0.5, {2 - 2 * half}},
        {"diagonal", "", "setAttr n.t 2", 0.25, 0.75, {0.5, 0.5, 0}},
        {"radial: a quarter turn", "", "setAttr n.t 3", 0.5 - 0.3, 0.5, {1, 0, 0}},
        {"circular: 1 in the corners", "", "setAttr n.t 4", 0.5 + 0.5 * half, 0.5, {0.5, 0.5, 0}},
        {"box", "", "setAttr n.t 5", 0.4, 0.75, {0.5, 0.5, 0}},
        {"tartan: the mean of both ways", "", "setAttr n.t 8", 0.1, 0.9, {0.5, 0.5, 0}},
        {"four corners, the lower right is the third entry", "", "setAttr n.t 7; setAttr n.cel[2].ec 0 0 1; setAttr n.cel[3].ec 1 1 1", 1, 0, {0, 0, 1}},
        {"four corners, in the middle", "", "setAttr n.t 7; setAttr n.cel[2].ec 0 0 1; setAttr n.cel[3].ec 1 1 1", 0.5, 0.5, {0.5, 0.5, 0.5}},
        {"a wave moves u by the sine of v", "", "setAttr n.t 1; setAttr n.uw 0.5", 0.25, 0.25, {0.5, 0.5, 0}},
        {"one entry is a plain colour", "", "removeMultiInstance -b 1 n.cel[1]", 0.3, 0.3, {0, 1, 0}},
    };
    for (const Case& c : cases) {
        make("ramp", stops + c.setup);
        expect(c.when, c.u, c.v, c.wanted);
    }
}

// Laws: bounded, the same again, different elsewhere, without jumps between neighbours.
TEST_F(Textures, NoiseIsSmoothBoundedAndItsOwn)
{
    for (int manner = 0; manner < 5; ++manner) {
        make("noise", "setAttr n.noiseType " + std::to_string(manner));
        double low = 1, high = 0, before = at(0, 0.3)[0], jump = 0;
        for (int i = 1; i <= 400; ++i) {
            const double value = at(i / 400., 0.3)[0];
            low = std::min(low, value), high = std::max(high, value);
            jump = std::max(jump, std::fabs(value - before));
            before = value;
        }
        EXPECT_GE(low, 0) << manner;
        EXPECT_LE(high, 1) << manner;
        EXPECT_GT(high - low, 0.3) << manner;
        EXPECT_LT(jump, 0.35) << manner;
        EXPECT_EQ(at(0.37, 0.3), at(0.37, 0.3)) << manner;
        mel("setAttr n.time 0.4");
        EXPECT_NE(at(1, 0.3)[0], before) << "time moves manner " << manner;
    }
    make("noise", "setAttr n.amplitude 0; setAttr n.threshold 0.25");
    expect("no amplitude", 0.3, 0.3, {0.75, 0.75, 0.75});
    make("noise", "setAttr n.depthMax 1; setAttr n.frequency 4");
    expect("0 at lattice points", 0.25, 0.5, {0.5, 0.5, 0.5});
}

TEST_F(Textures, AnEditUpstreamReachesTheColour)
{
    make("checker", "createNode ramp -n r; connectAttr r.outColor n.color1");
    expect("a black ramp below", 0.1, 0.1, {0, 0, 0});
    mel("setAttr r.vCoord 0.5");
    expect("its colour in the cell", 0.1, 0.1, {0.5, 0.5, 0.5});
    mel("setAttr r.cel[1].ec 0 1 0");
    expect("an entry of the ramp", 0.1, 0.1, {0, 0.5, 0});
}

}  // namespace

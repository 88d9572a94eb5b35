// Random placements against the same written as matrices in double precision; scenes that keep what textures show.
#include <cmath>
#include <optional>
#include <random>

#include "draw/picture.h"
#include "support/host_fixture.h"
#include "view/scene_draw.h"

using mirk::test::Host;

namespace {

using Placements = Host;

struct P2 { double u, v; };

/// The settings of one placement.
struct Settings
{
    P2     coverage{1, 1}, translate{0, 0}, repeat{1, 1}, offset{0, 0};
    double frameDegrees = 0, textureDegrees = 0;
    bool   wrapU = true, wrapV = true, mirrorU = false, mirrorV = false, stagger = false;

    std::string mel() const
    {
        const auto two = [](const char* name, P2 p) {
            return std::string("setAttr p.") + name + " " + std::to_string(p.u) + " " + std::to_string(p.v) + ";";
        };
        const auto one = [](const char* name, double v) { return std::string("setAttr p.") + name + " " + std::to_string(v) + ";"; };
        return two("coverage", coverage) + two("translateFrame", translate) + two("repeatUV", repeat) + two("offset", offset) +
               one("rotateFrame", frameDegrees) + one("rotateUV", textureDegrees) + one("wrapU", wrapU) + one("wrapV", wrapV) +
               one("mirrorU", mirrorU) + one("mirrorV", mirrorV) + one("stagger", stagger);
    }
};

/// The point seen from axes that are turned counter-clockwise about the middle of the tile.
P2 fromTurned(P2 p, double degrees)
{
    const double a = -degrees * M_PI / 180, x = p.u - 0.5, y = p.v - 0.5;
    return {0.5 + std::cos(a) * x - std::sin(a) * y, 0.5 + std::sin(a) * x + std::cos(a) * y};
}

/// None where nothing is laid; `near` tells that a border is too close for single precision to be sure.
std::optional<P2> placed(const Settings& s, P2 p, bool& near)
{
    const auto close = [&](double x) { near = near || std::fabs(x - std::round(x)) < 1e-4; };
    p = fromTurned({p.u - s.translate.u, p.v - s.translate.v}, s.frameDegrees);
    const auto enter = [&](double x, double coverage, bool wrap) -> std::optional<double> {
        close(x), close(x / coverage);
        if (wrap && coverage == 1)
            return x;
        if (wrap && (x < 0 || x > 1))
            x -= std::floor(x);
        near = near || std::fabs(x - coverage) < 1e-4;
        return x >= 0 && x <= coverage ? std::optional(x / coverage) : std::nullopt;
    };
    const auto u = enter(p.u, s.coverage.u, s.wrapU), v = enter(p.v, s.coverage.v, s.wrapV);
    if (!u || !v)
        return std::nullopt;
    p = fromTurned({*u, *v}, s.textureDegrees);
    p = {p.u * s.repeat.u + s.offset.u, p.v * s.repeat.v + s.offset.v};
    close(p.u), close(p.v);
    const auto odd = [](double x) { return std::lround(std::floor(x)) % 2 != 0; };
    if (s.stagger && odd(p.v))
        p.u += 0.5;
    close(p.u);
    const auto mirrored = [&](double x) { return odd(x) ? std::floor(x) + (std::ceil(x) - x) : x; };
    return P2{s.mirrorU ? mirrored(p.u) : p.u, s.mirrorV ? mirrored(p.v) : p.v};
}

TEST_F(Placements, AgreeWithASlowSecondWay)
{
    std::mt19937 random(99);
    const auto   number = [&](double low, double high) { return low + (high - low) * std::floor(double(random() % 1001)) / 1000; };
    const auto   chance = [&] { return random() % 3 == 0; };
    mel("createNode place2dTexture -n p");
    int compared = 0, nowhere = 0;
    for (int round = 0; round < 120; ++round) {
        Settings s;
        if (chance())
            s.coverage = {number(0.2, 1.5), number(0.2, 1.5)};
        if (chance())
            s.translate = {number(-1, 1), number(-1, 1)};
        if (chance())
            s.frameDegrees = number(-180, 180);
        if (chance())
            s.textureDegrees = number(-180, 180);
        if (chance())
            s.offset = {number(-2, 2), number(-2, 2)};
        s.repeat = {number(-3, 5), number(0.5, 5)};
        s.wrapU = !chance(), s.wrapV = !chance(), s.mirrorU = chance(), s.mirrorV = chance(), s.stagger = chance();
        mel(s.mel());
        for (int i = 0; i < 10; ++i) {
            const P2                at{number(-1.5, 2.5), number(-1.5, 2.5)};
            bool                    near = false;
            const std::optional<P2> wanted = placed(s, at, near);
            if (near)
                continue;
            mel("setAttr p.uvCoord " + std::to_string(at.u) + " " + std::to_string(at.v));
            const std::vector<double> got = nums("getAttr p.outUV");
            if (wanted) {
                ++compared;
                ASSERT_NEAR(got[0], wanted->u, 5e-5) << s.mel() << at.u << " " << at.v;
                ASSERT_NEAR(got[1], wanted->v, 5e-5) << s.mel() << at.u << " " << at.v;
            } else {
                ++nowhere;
                ASSERT_LT(got[0], -1e9) << s.mel() << at.u << " " << at.v;
            }
        }
    }
    EXPECT_GT(compared, 300);
    EXPECT_GT(nowhere, 100);
}

TEST_F(Placements, NoiseOfPlacesIsBoundedAndGoesWithTheSetting)
{
    mel("createNode place2dTexture -n p; setAttr p.noiseU 0.25");
    double most = 0;
    for (int i = 0; i < 50; ++i) {
        mel("setAttr p.uvCoord " + std::to_string(i * 0.037) + " 0.3");
        const auto uv = nums("getAttr p.outUV");
        most = std::max(most, std::fabs(uv[0] - i * 0.037));
        EXPECT_NEAR(uv[1], 0.3, 1e-6) << "v has none";
    }
    EXPECT_GT(most, 0.02);
    EXPECT_LE(most, 0.26);
}

TEST_F(Placements, ScenesKeepWhatIsShown)
{
    mel("polySphere -n ball; setAttr ball.v 0; particle -p 1 0 0 -p 0 2 0 -n dust; particleInstancer -a -object ball -n show dust;"
        "string $g = `sets -renderable true -noSurfaceShader true -empty -name g`; shadingNode -asShader lambert -n l; connectAttr l.outColor g.surfaceShader;"
        "sets -e -forceElement g ball; createNode ramp -n r; connectAttr r.outColor l.color; setAttr r.cel[3].ec 1 0 0; setAttr r.cel[3].ep 0.3;"
        "createNode place2dTexture -n p; connectAttr p.outUV r.uvCoord; setAttr p.repeatV 5; setAttr p.rotateUV 30; select -cl");
    mirk::view::SceneDrawOptions options;
    mirk::Path                   shape;
    const auto picture = [&] {
        EXPECT_TRUE(mirk::view::cameraOf(mirk::dag::find("|persp").at(0), 96, 64, options.camera, shape));
        return mirk::view::renderScene(options).bytes;
    };
    const auto before = picture();
    const auto box = nums("exactWorldBoundingBox show");
    mel("file -rename \"" + file("a.ma") + "\"; file -f -save; file -f -new");
    EXPECT_NE(picture(), before) << "nothing there";
    mel("file -f -open \"" + file("a.ma") + "\"; select -cl");
    EXPECT_EQ(picture(), before);
    EXPECT_EQ(nums("exactWorldBoundingBox show"), box);
    EXPECT_NEAR(num("getAttr p.rotateUV"), 30, 1e-9);
}

// What scene files of the application say of a placed image and its shading group.
TEST_F(Placements, ScenesOfTheApplicationOpen)
{
    std::string text = "//Maya ASCII 2022 scene\nrequires maya \"2022\";\ncreateNode transform -n \"w\";\ncreateNode mesh -n \"wShape\" -p \"w\";\n"
                       "createNode polyPlane -n \"pp\";\ncreateNode lambert -n \"l\";\n\tsetAttr \".c\" -type \"float3\" 0.1 0.2 0.3 ;\n"
                       "createNode shadingEngine -n \"g\";\n\tsetAttr \".ihi\" 0;\n\tsetAttr \".ro\" yes;\ncreateNode file -n \"f\";\n"
                       "\tsetAttr \".dc\" -type \"float3\" 0 1 0 ;\n\tsetAttr \".ail\" yes;\ncreateNode place2dTexture -n \"p\";\n"
                       "\tsetAttr \".re\" -type \"float2\" 4 4 ;\n\tsetAttr \".rf\" 45;\nconnectAttr \"pp.out\" \"wShape.i\";\n"
                       "connectAttr \"wShape.iog\" \"g.dsm\" -na;\nconnectAttr \"l.oc\" \"g.ss\";\nconnectAttr \"f.oc\" \"l.c\";\n";
    for (const char* pair : {"c c", "tf tf", "rf rf", "mu mu", "mv mv", "s s", "wu wu", "wv wv", "re re", "of of", "r ro", "n n", "vt1 vt1",
                             "vt2 vt2", "vt3 vt3", "vc1 vc1", "o uv", "ofs fs"}) {
        const std::string both = pair;
        const size_t      gap = both.find(' ');
        text += "connectAttr \"p." + both.substr(0, gap) + "\" \"f." + both.substr(gap + 1) + "\";\n";
    }
    const std::string path = write("app.ma", text + "connectAttr \"l.msg\" \":defaultShaderList1.s\" -na;\n// End of app.ma\n");
    mel("file -f -open \"" + path + "\"");
    EXPECT_EQ(said(mirk::message::kWarning) + said(mirk::message::kError), "");
    EXPECT_EQ(nums("getAttr f.repeatUV"), (std::vector<double>{4, 4}));
    EXPECT_NEAR(num("getAttr f.rotateFrame"), 45, 1e-9);
    EXPECT_EQ(nums("getAttr l.color"), (std::vector<double>{0, 1, 0})) << "no image: its default colour";
    EXPECT_NEAR(num("getAttr l.outColorG"), 0.8, 1e-6);
}

}  // namespace

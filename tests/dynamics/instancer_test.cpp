// Instancers: where copies stand, which object they show, boxes, pictures, and the commands that make them.
#include <cmath>

#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "data/mobject.h"
#include "draw/picture.h"
#include "dynamics/instancer.h"
#include "support/host_fixture.h"
#include "view/scene_draw.h"

using mirk::test::Host;

namespace {

/// Arrays by name, as an instancer's input.
struct Arrays
{
    std::vector<std::pair<const char*, std::vector<MVector>>> vectors;
    std::vector<std::pair<const char*, std::vector<double>>>  doubles;
    std::vector<std::pair<const char*, std::vector<int>>>     ints;
};

class Instancers : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("polyCube -w 1 -h 1 -d 1 -n small; polyCube -w 2 -h 2 -d 2 -n large; setAttr small.v 0; setAttr large.v 0;"
            "instancer -addObject -object small -object large -n show");
    }
    static mirk::Node& node(const char* name) { return mirk::command::oneNode(name); }
    static void give(const Arrays& arrays)
    {
        MFnArrayAttrsData fn;
        const MObject     data = fn.create();
        for (const auto& [name, values] : arrays.vectors) {
            MVectorArray a = fn.vectorArray(name);
            for (const MVector& v : values)
                a.append(v);
        }
        for (const auto& [name, values] : arrays.doubles) {
            MDoubleArray a = fn.doubleArray(name);
            for (const double v : values)
                a.append(v);
        }
        for (const auto& [name, values] : arrays.ints) {
            MIntArray a = fn.intArray(name);
            for (const int v : values)
                a.append(v);
        }
        mirk::Node& n = node("show");
        MPlug(mirk::wrap(&n), mirk::wrap(n.findAttribute("inputPoints"))).setMObject(data);
    }
    static std::vector<mirk::dynamics::Instance> shown() { return mirk::dynamics::instances(node("show")); }
    static std::vector<double> box() { return nums("exactWorldBoundingBox show"); }
};

TEST_F(Instancers, WhereACopyStands)
{
    const MVector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    struct Case { const char* when; const char* setup; Arrays arrays; MVector from, to; };   // a place on the object, and in the world
    const Case cases[] = {
        {"position alone", "", {{{"position", {{1, 2, 3}}}}, {}, {}}, x, {2, 2, 3}},
        {"scaled first", "", {{{"position", {{1, 0, 0}}}, {"scale", {{3, 1, 1}}}}, {}, {}}, x, {4, 0, 0}},
        {"degrees, x then y then z", "", {{{"position", {{}}}, {"rotation", {{90, 0, 90}}}}, {}, {}}, y, {0, 0, 1}},
        {"z first", "setAttr show.rotationOrder 5", {{{"position", {{}}}, {"rotation", {{90, 0, 90}}}}, {}, {}}, y, {-1, 0, 0}},
        {"radians", "setAttr show.rotationUnits 1", {{{"position", {{}}}, {"rotation", {{0, 0, M_PI / 2}}}}, {}, {}}, x, y},
        {"aimed: x along z, y stays up", "", {{{"position", {{}}}, {"aimDirection", {{0, 0, 5}}}}, {}, {}}, MVector(1, 2, 3), {-3, 2, 1}},
        {"aimed with an up of its own", "", {{{"position", {{}}}, {"aimDirection", {{0, 1, 0}}}, {"aimWorldUp", {{0, 0, 1}}}}, {}, {}}, MVector(1, 2, 3), {3, 1, 2}},
        {"aimed at a place", "", {{{"position", {{5, 0, 0}}}, {"aimPosition", {{5, 0, -2}}}}, {}, {}}, x, {5, 0, -1}},
        {"an axis of its own", "", {{{"position", {{}}}, {"aimDirection", {{1, 0, 0}}}, {"aimAxis", {{0, 0, 1}}}}, {}, {}}, z, x},
        {"the type tells which counts", "", {{{"position", {{}}}, {"rotation", {{0, 0, 90}}}, {"aimDirection", {{0, 0, 1}}}}, {{"rotationType", {1}}}, {}}, x, z},
        {"rotation before direction", "", {{{"position", {{}}}, {"rotation", {{0, 0, 90}}}, {"aimDirection", {{0, 0, 1}}}}, {}, {}}, x, y},
        {"no direction, no turn", "", {{{"position", {{}}}, {"aimDirection", {{}}}}, {}, {}}, x, x},
    };
    for (const Case& c : cases) {
        mel(std::string("setAttr show.rotationOrder 0; setAttr show.rotationUnits 0; ") + c.setup);
        give(c.arrays);
        const auto all = shown();
        ASSERT_EQ(all.size(), 1u) << c.when;
        const MPoint got = MPoint(c.from) * all[0].matrix;
        for (unsigned k = 0; k < 3; ++k)
            EXPECT_NEAR(got[k], c.to[k], 1e-9) << c.when << " " << k;
    }
}

TEST_F(Instancers, WhichObjectAndWhetherAtAll)
{
    const auto objects = [&] {
        std::vector<size_t> out;
        for (const auto& i : shown())
            out.push_back(i.object);
        return out;
    };
    using List = std::vector<size_t>;
    const std::vector<MVector> five(5);
    give({{{"position", five}}, {}, {}});
    EXPECT_EQ(objects(), (List{0, 0, 0, 0, 0}));
    give({{{"position", five}}, {}, {{"objectIndex", {1, 0, 7, -3}}}});
    EXPECT_EQ(objects(), (List{1, 0, 1, 0, 0})) << "cut to those there are; the last has none";
    give({{{"position", five}}, {{"objectIndex", {0.9, 1.5, NAN, 1e300, -1e300}}}, {}});
    EXPECT_EQ(objects(), (List{0, 1, 0, 1, 0})) << "numbers of the other kind";
    give({{{"position", {{}, {NAN, 0, 0}, {}, {INFINITY, 0, 0}}}, {"scale", {{1, 1, 1}, {1, 1, 1}, {2, 2, 2}}}}, {{"visibility", {0}}}, {}});
    ASSERT_EQ(shown().size(), 1u) << "hidden, nowhere, shown, nowhere";
    EXPECT_EQ(shown()[0].matrix[0][0], 2);
    mel("setAttr show.cycle 1; setAttr show.cycleStepUnits 1; setAttr show.cycleStep 0.5");
    give({{{"position", five}}, {{"age", {0, 0.4, 0.5, 1.2, NAN}}}, {{"objectIndex", {0, 0, 0, 1}}}});
    EXPECT_EQ(objects(), (List{0, 0, 1, 1, 0})) << "one on after each step of age";
    mel("instancer -e -removeObject -object small -object large show");
    EXPECT_EQ(shown().size(), 0u) << "no objects";
}

TEST_F(Instancers, BoxesFollow)
{
    EXPECT_EQ(box(), (std::vector<double>(6, 0)));
    give({{{"position", {{10, 0, 0}, {0, 5, 0}}}}, {}, {{"objectIndex", {0, 1}}}});
    EXPECT_EQ(box(), (std::vector<double>{-1, -0.5, -1, 10.5, 6, 1}));
    EXPECT_EQ(nums("getAttr show.boundingBoxMax"), (std::vector<double>{10.5, 6, 1}));
    mel("setAttr small.scaleX 4");
    EXPECT_EQ(num("getAttr show.boundingBoxMaxX"), 12) << "an object of another size";
    mel("setAttr polyCube2.height 6");
    EXPECT_EQ(num("getAttr show.boundingBoxMaxY"), 8) << "another geometry";
    mel("setAttr show.translateX 100; group -n above show");
    EXPECT_EQ(nums("getAttr above.boundingBoxMin"), (std::vector<double>{99, -0.5, -1})) << "what stands above";
    mel("delete small");
    EXPECT_EQ(shown().size(), 2u);
    EXPECT_EQ(box()[3], 101) << "only the other is left";
}

TEST_F(Instancers, Pictures)
{
    using namespace picture;
    SceneDrawOptions options;
    options.camera = flatCamera(64);
    options.grid = false;
    const auto lit = [&](int x, int y) { return at(mirk::view::renderScene(options), x, y) != Pixel{0, 0, 0, 255}; };
    mel("select -cl; polyPlane -w 0.5 -h 0.5 -sx 1 -sy 1 -ax 0 0 1 -n tile; setAttr tile.v 0; instancer -e -removeObject -index 0 show;"
        "instancer -e -index 0 -object tile show; select -cl");
    EXPECT_FALSE(lit(48, 16)) << "nothing yet";
    give({{{"position", {{0.5, 0.5, 0}, {-0.5, -0.5, 0}}}}, {}, {}});
    EXPECT_TRUE(lit(48, 16)) << "upper right";
    EXPECT_TRUE(lit(16, 48)) << "lower left";
    EXPECT_FALSE(lit(16, 16));
    EXPECT_FALSE(lit(32, 32)) << "the object itself is hidden";
    mel("setAttr show.levelOfDetail 1");
    EXPECT_FALSE(lit(48, 16)) << "the middle of a box";
    EXPECT_TRUE(lit(40, 16)) << "its left edge";
    mel("setAttr show.levelOfDetail 0; setAttr show.translateX 1");
    EXPECT_FALSE(lit(16, 48)) << "moved away";
    EXPECT_TRUE(lit(48, 48));
    const auto found = mirk::view::pickScene(options, 44, 12, 8, 8);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].node()->name, "show") << "it is the instancer that is picked";
    mel("setAttr show.v 0");
    EXPECT_FALSE(lit(48, 48));
}

TEST_F(Instancers, FollowParticles)
{
    mel("particle -p 1 0 0 -p 0 7 0 -n dust; string $made = `particleInstancer -addObject -object small -n flakes dust`");
    EXPECT_EQ(nums("exactWorldBoundingBox flakes"), (std::vector<double>{-0.5, -0.5, -0.5, 1.5, 7.5, 0.5}));
    mel("setAttr dust.translateZ 3");
    EXPECT_EQ(num("getAttr flakes.boundingBoxMaxZ"), 3.5) << "positions in the world";
    mel("addAttr -ln which -dt doubleArray dustShape; particleInstancer -e -name flakes -addObject -object large dustShape;"
        "particleInstancer -e -name flakes -objectIndex which dustShape");
    EXPECT_EQ(str("particleInstancer -q -name flakes -objectIndex dustShape"), "which");
    mel("setAttr dustShape.which -type doubleArray 2 0 1");
    EXPECT_EQ(num("getAttr flakes.boundingBoxMaxY"), 8) << "the second one is large now";
    EXPECT_EQ(strings("particleInstancer -q -name dustShape"), (std::vector<std::string>{"flakes"}));
    EXPECT_EQ(strings("particleInstancer -q -name flakes -object dustShape"), (std::vector<std::string>{"small", "large"}));
    EXPECT_EQ(str("instancer -q -pointDataSource flakes"), "dustShape");
    EXPECT_NE(melError("particleInstancer -e -name flakes -scale nothing dustShape").find("nothing"), std::string::npos);
    EXPECT_NE(melError("particleInstancer -e -name other -scale which dustShape").find("other"), std::string::npos);
}

TEST_F(Instancers, CommandAndItsErrors)
{
    EXPECT_EQ(str("instancer -object large -cycle sequential -cycleStep 3 -rotationOrder ZYX -levelOfDetail BoundingBoxes"), "instancer1");
    EXPECT_EQ(strings("instancer -q -object instancer1"), (std::vector<std::string>{"large"}));
    EXPECT_EQ(str("instancer -q -cycle instancer1"), "Sequential");
    EXPECT_EQ(num("instancer -q -cycleStep instancer1"), 3);
    EXPECT_EQ(num("getAttr instancer1.rotationOrder"), 5);
    EXPECT_EQ(str("instancer -q -object -index 1 show"), "large");
    struct Bad { const char* command; const char* tells; };
    const Bad cases[] = {
        {"instancer -object nobody", "nobody"},
        {"instancer -object time1", "time1"},
        {"instancer -cycle backwards", "backwards"},
        {"instancer -cycleStep -1", "step"},
        {"instancer -e -index 9 -object small show", "9"},
        {"instancer -e -removeObject -object persp show", "persp"},
        {"instancer -q -object small", "no instancer"},
    };
    const auto before = strings("ls");
    for (const Bad& bad : cases)
        EXPECT_NE(melError(bad.command).find(bad.tells), std::string::npos) << bad.command << ": " << melError(bad.command);
    EXPECT_EQ(strings("ls"), before) << "nothing was made";
    EXPECT_EQ(strings("instancer -q -object show"), (std::vector<std::string>{"small", "large"}));
    mel("undo");   // instancer1
    EXPECT_EQ(num("objExists instancer1"), 0);
}

TEST_F(Instancers, ShadingNodes)
{
    EXPECT_EQ(str("shadingNode -asTexture checker -name squares"), "squares");
    EXPECT_EQ(str("nodeType squares"), "checker");
    EXPECT_EQ(str("shadingNode -asUtility place2dTexture"), "place2dTexture1");
    EXPECT_NE(melError("shadingNode -asTexture reverse").find("'reverse' is no texture"), std::string::npos);
    EXPECT_NE(melError("shadingNode checker").find("-asTexture"), std::string::npos);
    EXPECT_NE(melError("shadingNode -asTexture -asUtility checker").find("exclude"), std::string::npos);
    EXPECT_NE(melError("shadingNode -asTexture nothing").find("nothing"), std::string::npos);
}

}  // namespace

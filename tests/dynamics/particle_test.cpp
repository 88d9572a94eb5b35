// Particle objects: their arrays through commands, plugs, connections, files, the function set and a picture.
#include <maya/MDoubleArray.h>
#include <maya/MFnParticleSystem.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"
#include "data/mobject.h"
#include "view/scene_draw.h"
#include "view/scene_items.h"

namespace {

using Numbers = std::vector<double>;
using Strings = std::vector<std::string>;

class Particles : public mirk::test::Host
{
protected:
    static Numbers list(const std::string& command) { return nums("float $r[] = `" + command + "`; $r = $r;"); }
    static Strings names(const std::string& command) { return strings("string $r[] = `" + command + "`; $r = $r;"); }
};

}  // namespace

TEST_F(Particles, MadeAskedAndEdited)
{
    EXPECT_EQ(names("particle -p 1 2 3 -p 4 5 6 -n dust"), (Strings{"dust", "dustShape"}));
    EXPECT_EQ(str("nodeType dustShape"), "particle");
    EXPECT_EQ(num("particle -q -count dust"), 2);
    EXPECT_EQ(list("getAttr dustShape.position"), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(list("getAttr dustShape.velocity"), (Numbers{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(list("getAttr dustShape.mass"), (Numbers{1, 1}));
    mel("particle -e -at velocity -order 1 -vv 0 9 0 dust; particle -e -at mass -id 0 -fv 2.5 dustShape");
    EXPECT_EQ(list("particle -q -at velocity -id 1 dust"), (Numbers{0, 9, 0}));
    EXPECT_EQ(list("getAttr dustShape.mass"), (Numbers{2.5, 1}));
    mel("undo");
    EXPECT_EQ(list("getAttr dustShape.mass"), (Numbers{1, 1}));

    mel("addAttr -ln rgbPP -dt vectorArray dustShape; addAttr -ln radiusPP -dt doubleArray dustShape;"
        "particle -e -at rgbPP -or 1 -vv 1 0 0 dust; particle -e -at radiusPP -or 0 -fv 3 dust");
    EXPECT_EQ(list("getAttr dustShape.rgbPP"), (Numbers{0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(names("particle -q -dal dust"), (Strings{"rgbPP", "radiusPP"}));

    EXPECT_EQ(num("size(`particle -ll 0 0 0 -ur 1 0.5 0 -grs 0.5 -n g`)"), 2);
    EXPECT_EQ(list("getAttr gShape.position"), (Numbers{0, 0, 0, .5, 0, 0, 1, 0, 0, 0, .5, 0, .5, .5, 0, 1, .5, 0}));
    EXPECT_EQ(list("getAttr gShape.centroid"), (Numbers{0.5, 0.25, 0}));
    mel("nParticle -p 0 0 0 -n n");
    EXPECT_EQ(str("nodeType nShape"), "nParticle");

    for (const char* wrong : {"particle -e -at nothing -or 0 -fv 1 dust", "particle -e -at mass -or 2 -fv 1 dust", "particle -e -at mass -id 7 -fv 1 dust",
                              "particle -e -at mass -or 0 -vv 1 2 3 dust", "particle -q -count persp", "particle -ll 0 0 0 -ur 1 1 1 -grs 0",
                              "particle -ll 0 0 0 -ur 1 1 1", "particle -ll 0 0 0 -ur 1e9 1e9 1 -grs 0.001"})
        EXPECT_NE(melError(wrong), "") << wrong;
    EXPECT_EQ(num("size(`ls -type particle`)"), 3);   // the kinds count among them
}

TEST_F(Particles, SetDrivenAndSaved)
{
    mel("particle -p 1 0 0 -p 0 1 0 -n p; setAttr p.ty 10; setAttr p.rz 90");
    EXPECT_EQ(list("getAttr pShape.worldPosition").size(), 6u);
    EXPECT_NEAR(list("getAttr pShape.worldPosition")[1], 11, 1e-12);   // x goes to y
    mel("setAttr pShape.position -type \"vectorArray\" 1 2 0 0");
    EXPECT_EQ(num("getAttr pShape.count"), 1);
    EXPECT_NEAR(list("getAttr pShape.worldPosition")[1], 12, 1e-12);
    EXPECT_EQ(list("getAttr pShape.velocity").size(), 3u);
    EXPECT_NEAR(list("getAttr p.boundingBoxMax")[1], 12, 1e-6);

    mel("createNode network -n src; addAttr -ln v -dt vectorArray src; setAttr src.v -type \"vectorArray\" 3 0 0 0 1 1 1 2 2 2;"
        "connectAttr src.v pShape.position");
    EXPECT_EQ(num("getAttr pShape.count"), 3);
    mel("setAttr src.v -type \"vectorArray\" 2 5 5 5 1 1 1");
    EXPECT_EQ(num("particle -q -ct p"), 2);
    EXPECT_EQ(list("getAttr pShape.particleId"), (Numbers{0, 1}));

    const std::string path = file("p.ma");
    mel("particle -p 7 8 9 -n q; particle -e -at mass -or 0 -fv 4 q; file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -new; file -o \"" + path + "\"");
    EXPECT_EQ(num("particle -q -ct p"), 2);
    EXPECT_EQ(list("getAttr qShape.position"), (Numbers{7, 8, 9}));
    EXPECT_EQ(list("getAttr qShape.mass"), Numbers{4});
}

TEST_F(Particles, FunctionSet)
{
    MFnParticleSystem fn;
    MStatus           status;
    const MObject     transform = fn.create(&status);
    EXPECT_TRUE(status && transform.hasFn(MFn::kTransform) && fn.object().hasFn(MFn::kParticle));
    EXPECT_EQ(fn.count(), 0u);
    MPointArray at;
    at.append(MPoint(1, 2, 3));
    at.append(MPoint(4, 5, 6));
    MVectorArray speed;
    EXPECT_TRUE(fn.emit(at));
    speed.append(MVector(0, 1, 0));
    EXPECT_EQ(fn.emit(at, speed), MS::kInvalidParameter);
    EXPECT_TRUE(fn.emit(MPoint(7, 8, 9), MVector(0, 1, 0)));
    MVectorArray found;
    fn.position(found);
    EXPECT_EQ(found.length(), 3u);
    EXPECT_EQ(found[2].z, 9);
    fn.velocity(found);
    EXPECT_EQ(found[2].y, 1);
    MIntArray ids;
    fn.particleIds(ids);
    EXPECT_EQ(ids[2], 2);

    MDoubleArray values(3, 0.5);
    fn.setPerParticleAttribute("radiusPP", values, &status);
    EXPECT_FALSE(status);   // there is none yet
    EXPECT_FALSE(fn.hasRadius());
    mel("addAttr -ln radiusPP -dt doubleArray particleShape1");
    fn.setPerParticleAttribute("radiusPP", values, &status);
    EXPECT_TRUE(status && fn.hasRadius() && fn.isPerParticleDoubleAttribute("radiusPP") && !fn.isPerParticleVectorAttribute("radiusPP"));
    EXPECT_TRUE(fn.emit(MPoint()));
    fn.radius(values);
    EXPECT_EQ(values.length(), 4u);   // kept as long as the rest
    EXPECT_EQ(fn.getPerParticleAttribute("position", found), 4u);
    EXPECT_EQ(fn.getPerParticleAttribute("nothing", values, &status), 0u);
    EXPECT_FALSE(status);
    MFnParticleSystem none(scene::plug("persp.tx").node(), &status);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_FALSE(none.isValid());
    EXPECT_FALSE(none.emit(MPoint()));
    mel("createNode nParticle -n np");
    EXPECT_TRUE(MFnParticleSystem(scene::plug("np.position").node()).isValid());
}

TEST_F(Particles, DrawnAsPoints)
{
    mel("particle -p 1 2 3 -p 4 5 6 -n p; addAttr -ln rgbPP -dt vectorArray pShape; setAttr pShape.rgbPP -type \"vectorArray\" 2 1 0 0 0 1 0");
    mirk::view::DrawList list;
    const MObject        shape = scene::plug("pShape.position").node();
    EXPECT_TRUE(mirk::view::addShapeItems(*mirk::objectAs<mirk::Node>(shape), mirk::view::kIdentity, {}, list));
    ASSERT_EQ(list.items.size(), 1u);
    EXPECT_EQ(list.items[0].primitive, mirk::view::Primitive::kPoints);
    EXPECT_EQ(list.items[0].positions, (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(list.items[0].colors[5], 1.f);
}

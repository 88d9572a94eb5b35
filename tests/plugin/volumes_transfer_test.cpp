// attributeTransfer and multiAttributeTransfer on points whose values can be worked out by hand. Falloffs are the ones a
// new bounding object has: 1 - d, white, alpha 1; the kernel is linear where several volumes meet.
#include "volumes_scene.h"

#include <cmath>

using namespace scene;
using Transfer = scene::Test;

namespace {

/// A node `t` on particles along x, with the settings.
void transferTo(const std::vector<double>& x, const std::string& settings, const std::string& type = "attributeTransfer")
{
    run("createNode " + type + " -name t; connectAttr " + particles(x) + " t.inGeometry; setAttr t.kernel[0].kernel_Interp 1;" +
        settings);
}

const std::string kAll = "setAttr t.weight 1; setAttr t.color 1; setAttr t.radius 1; setAttr t.position 1; setAttr t.normal 1;";

std::vector<double> weightsOf(const std::string& row)
{
    plug("t.outGeometry").asMObject();   // one run fills both
    std::vector<double> values;
    const MPlug         list = plug("t.outWeightList[" + row + "].weights");
    MIntArray           indices;
    list.getExistingArrayAttributeIndices(indices);
    for (unsigned int k = 0; k < indices.length(); ++k) {
        const auto index = static_cast<std::size_t>(indices[k]);
        values.resize(std::max(values.size(), index + 1), -1.0);   // -1: there is no such element
        values[index] = list.elementByLogicalIndex(static_cast<unsigned>(index)).asFloat();
    }
    return values;
}

} // namespace

TEST_F(Transfer, OneVolumeGivesItsFullRamps)
{
    transferTo({0, 0.25, 1.5}, kAll + "setAttr t.update 2");
    volume("a", 0, 0.0, "setAttr aShape.normal 1");
    connectVolume("a", "t", 1);
    expectDoubles(doubles("t.outWeightPP"), {1, 0.75, 0});
    expectDoubles(doubles("t.outRadiusPP"), {1, 0.75, 0});
    expectDoubles(doubles("t.outRgbaPP"), {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0});
    expectNear(vectors("t.outNormalPP"), {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}});   // velocities of no length
    EXPECT_TRUE(pointArray("t.outPositionPP").empty());                        // that of particles is the geometry
    expectNear(vectors("t.outGeometry"), {{0, 0, 0}, {0.25, 0, 0}, {1.5, 0, 0}});
    run("setAttr t.update 0");
    expectNear(vectors("t.outGeometry"), {{0, 0, 0}, {0.0625, 0, 0}, {1.5, 0, 0}});   // three quarters of the way
    run("setAttr aShape.envelope 0");
    expectDoubles(doubles("t.outWeightPP"), {0, 0, 0});
}

TEST_F(Transfer, SeveralVolumesMeetByTheKernel)
{
    // the point at 0.5 stands 0.5 from a (size 1 at 0) and 0.25 from b (size 2 at 1): kernels 0.5 and 0.75
    transferTo({0.5}, kAll);
    volume("a", 0, 0.0, "setAttr aShape.colorFalloff[0].colorFalloff_Color 1 0 0");
    volume("b", 0, 1.0, "setAttr b.scale 2 2 2; setAttr bShape.colorFalloff[0].colorFalloff_Color 0 1 0;"
                        "setAttr bShape.alphaFalloff[0].alphaFalloff_FloatValue 0.5");
    connectVolume("a", "t", 0);
    connectVolume("b", "t", 3);   // a gap
    const double sum = 0.5 + 0.75;
    const double w = (0.5 * 0.5 + 0.75 * 0.75) / sum;
    expectDoubles(doubles("t.outWeightPP"), {w});
    expectDoubles(doubles("t.outRgbaPP"), {0.5 / sum, 0.75 * 0.5 / sum, 0, (0.5 + 0.75 * 0.5) / sum});
    // strengths 0.25 and 0.5625: towards 0 and 1
    expectNear(vectors("t.outGeometry"), {{0.5 * (1 - w) + 0.5625 / sum, 0, 0}});
    run("setAttr t.alphaModulate 0");
    expectDoubles(doubles("t.outRgbaPP"), {0.5 / sum, 0.75 / sum, 0, (0.5 + 0.75 * 0.5) / sum});
    run("setAttr t.solidAlpha 1");
    EXPECT_EQ(doubles("t.outRgbaPP")[3], 1.0);
    run("setAttr t.kernel[0].kernel_FloatValue 0; setAttr t.solidAlpha 0");   // 0 everywhere
    expectDoubles(doubles("t.outWeightPP"), {0});
    expectDoubles(doubles("t.outRgbaPP"), {0, 0, 0, 0});
    expectNear(vectors("t.outGeometry"), {{0.5, 0, 0}});
    run("setAttr t.maxInfluences 1");   // the nearer one; the kernel is not asked
    expectDoubles(doubles("t.outWeightPP"), {0.75});
}

TEST_F(Transfer, BlendingWithWhatWasThere)
{
    struct Case { const char* settings; std::vector<double> weights; };
    const Case cases[] = {
        {"", {0.5 * 0.5 + 0.5, 1.0, 0.25, 0.75}},                   // old (1 - v) + v; an old 1 stays; 0 takes v
        {"setAttr t.blend 0", {0.5, 0.75, 0.25, 0.75}},
        {"setAttr t.blend 1; setAttr t.merge 0", {0.5, 0.75, 0.25, 0.0}},   // the last one nothing reaches
    };
    transferTo({0.5, 0.25, 0.75, 5}, "setAttr t.weight 1; connectAttr " +
               arraySource("w", "doubleArray", 4, "0.5 1 0 0.75") + " t.inWeightPP");
    volume("a", 0, 0.0);
    connectVolume("a", "t", 0);
    for (const Case& c : cases) {
        run(c.settings);
        expectDoubles(doubles("t.outWeightPP"), c.weights);
    }
}

TEST_F(Transfer, ColorsBeforeInEveryLayout)
{
    struct Case { const char *kind, *values; int count; std::vector<double> rgba; bool warns; };
    const Case cases[] = {   // the second point is reached with colour 1, alpha 1: all becomes 1
        {"doubleArray", "0.1 0.2 0.3 0.4 0 0 0 0.5", 8, {0.1, 0.2, 0.3, 0.4, 1, 1, 1, 1}, false},
        {"doubleArray", "0.1 0.2", 2, {0.1, 0.1, 0.1, 1, 1, 1, 1, 1}, false},
        {"vectorArray", "0.1 0.2 0.3 0 0 0", 2, {0.1, 0.2, 0.3, 1, 1, 1, 1, 1}, false},
        {"pointArray", "0.1 0.2 0.3 0 0 0 0 0", 2, {0.1, 0.2, 0.3, 1, 1, 1, 1, 1}, false},
        {"doubleArray", "0.1 0.2 0.3", 3, {0, 0, 0, 0, 1, 1, 1, 1}, true},
    };
    transferTo({5, 0.5}, "setAttr t.color 1");
    volume("a", 0, 0.0);
    connectVolume("a", "t", 0);
    int n = 0;
    for (const Case& c : cases) {
        run("connectAttr -force " + arraySource("k" + std::to_string(n++), c.kind, c.count, c.values) + " t.inRgbaPP");
        Warnings warnings;
        expectDoubles(doubles("t.outRgbaPP"), c.rgba);
        ASSERT_EQ(warnings.texts.size(), c.warns ? 1u : 0u) << n;
        if (c.warns)
            EXPECT_NE(warnings.texts[0].find("t: inRgbaPP array length does not match the point count."), std::string::npos);
    }
    run("setAttr t.merge 0; setAttr t.solidAlpha 1");
    expectDoubles(doubles("t.outRgbaPP"), {0, 0, 0, 1, 1, 1, 1, 1});
    // half transparent black counts as a colour before: alpha 0.25 over it
    run("setAttr t.merge 1; setAttr t.solidAlpha 0; setAttr aShape.alphaFalloff[0].alphaFalloff_FloatValue 0.5;"
        "connectAttr -force arrays.k0 t.inRgbaPP");
    expectDoubles(doubles("t.outRgbaPP"), {0.1, 0.2, 0.3, 0.4, 0.5, 0.5, 0.5, 0.75});
}

TEST_F(Transfer, LengthsThatDoNotFit)
{
    struct Case { const char *input, *kind, *values; int count; const char* text; };
    const Case cases[] = {
        {"inRadiusPP", "doubleArray", "1", 1, "inRadiusPP array length does not match the inGeometry point count."},
        {"inRadiusPP", "doubleArray", "1 2 3", 3, "inRadiusPP array length does not match the inGeometry point count."},
        {"inWeightPP", "doubleArray", "1 2 3", 3, "inWeightPP array length does not match the inGeometry point count."},
        {"inWeightPP", "doubleArray", "1", 1, ""},
        {"inNormalPP", "vectorArray", "1 2 3", 1, "inNormalPP array length does not match the inGeometry point count."},
        {"inNormalPP", "doubleArray", "1 2 3 4 5", 5, "inVelocityPP array length mismatch."},
        {"inNormalPP", "doubleArray", "1 2 3 4 5 6", 6, ""},
    };
    transferTo({0.5, 0.75}, kAll);
    int n = 0;
    for (const Case& c : cases) {
        run("connectAttr -force " + arraySource("q" + std::to_string(n++), c.kind, c.count, c.values) + " t." + c.input);
        Warnings warnings;
        EXPECT_EQ(doubles("t.outWeightPP").size(), 2u);
        ASSERT_EQ(warnings.texts.size(), *c.text ? 1u : 0u) << c.input << c.count;
        if (*c.text)
            EXPECT_NE(warnings.texts[0].find(std::string("t: ") + c.text), std::string::npos) << warnings.texts[0];
        run("disconnectAttr arrays.q" + std::to_string(n - 1) + " t." + c.input);
    }
}

TEST_F(Transfer, VelocitiesTurnAndKeepTheirLength)
{
    transferTo({0.5, 5}, "setAttr t.normal 1; connectAttr " + arraySource("n", "vectorArray", 2, "3 0 0 0 2 0") + " t.inNormalPP");
    volume("a", 0, 0.0, "setAttr aShape.normal 1");
    connectVolume("a", "t", 0);
    // half of (1 0 0), half of the way up
    const double side = 3.0 / std::sqrt(2.0);
    expectNear(vectors("t.outNormalPP"), {{side, side, 0}, {0, 2, 0}});
    run("setAttr aShape.normal 3; setAttr t.blend 0");   // away from the middle
    expectNear(vectors("t.outNormalPP"), {{3, 0, 0}, {0, 2, 0}});
}

TEST_F(Transfer, OneDecisionForTheWholeSubset)
{
    transferTo({0.5, 0.25, 0.75}, "setAttr t.weight 1; setAttr t.color 1; setAttr t.useComponents 1; connectAttr " +
               arraySource("i", "Int32Array", 1, "2") + " t.inComponents; connectAttr " +
               arraySource("w", "doubleArray", 3, "0 0 0.5") + " t.inWeightPP");
    volume("a", 0, 0.0);
    connectVolume("a", "t", 0);
    expectDoubles(doubles("t.outWeightPP"), {0.5, 0.75, 0.625});   // the last point is in: all are
    run("connectAttr -force " + arraySource("j", "Int32Array", 2, "0 1") + " t.inComponents");
    expectDoubles(doubles("t.outWeightPP"), {0, 0, 0.5});          // it is not: none is
    expectDoubles(doubles("t.outRgbaPP"), std::vector<double>(12, 0.0));
    run("setAttr t.useComponents 2; setAttr t.solidAlpha 1");
    Warnings warnings;
    EXPECT_EQ(doubles("t.outRgbaPP")[3], 1.0);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_NE(warnings.texts[0].find("Object groups are not supported for particles."), std::string::npos);
}

TEST_F(Transfer, MeshesInWorldSpace)
{
    // a triangle strip of 4 vertices, moved by 10 and turned: (-1 0 1) (1 0 1) (-1 0 -1) (1 0 -1)
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; setAttr p.translateX 10;"
        "createNode attributeTransfer -name t; connectAttr pShape.worldMesh[0] t.inGeometry;" + kAll);
    volume("a", 1, 11.0, "setAttr a.translateZ 1; setAttr a.translateY 0.5; setAttr aShape.normal 0");
    connectVolume("a", "t", 0);
    expectDoubles(doubles("t.outWeightPP"), {0, 0.5, 0, 0});
    const std::vector<MPoint> world = pointArray("t.outPositionPP");
    ASSERT_EQ(world.size(), 4u);
    EXPECT_TRUE(world[1].isEquivalent(MPoint(11, 0.25, 1), 1e-6));
    expectNear(points("t.outGeometry"), {{-1, 0, 1}, {1, 0.25, 1}, {-1, 0, -1}, {1, 0, -1}});   // in its own space
    EXPECT_FLOAT_EQ(colors("t.outGeometry")[1].g, 1.0f);
    EXPECT_FLOAT_EQ(colors("t.outGeometry")[0].a, 0.0f);
    expectNear(vectors("t.outNormalPP"), {{0, 1, 0}, {std::sqrt(0.5), std::sqrt(0.5), 0}, {0, 1, 0}, {0, 1, 0}});
    expectNear(points("pShape.outMesh"), {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}});     // the input is as it was
    run("setAttr t.update 2");
    expectNear(points("t.outGeometry"), {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}});
    run("setAttr t.update 1");
    EXPECT_TRUE(doubles("t.outWeightPP").empty());
    expectNear(points("t.outGeometry"), {{-1, 0, 1}, {1, 0.25, 1}, {-1, 0, -1}, {1, 0, -1}});
    run("setAttr t.update 0; setAttr t.envelope 0");
    EXPECT_TRUE(doubles("t.outWeightPP").empty());
    expectNear(points("t.outGeometry"), {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}});
}

TEST_F(Transfer, CurvesMove)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -point 5 1 0 -name c; rename `listRelatives -shapes c` cs;"
        "createNode attributeTransfer -name t; connectAttr cs.worldSpace[0] t.inGeometry;" + kAll);
    volume("a", 0, 0.5, "setAttr a.translateY 0.5");
    connectVolume("a", "t", 0);
    const double w = 1.0 - std::sqrt(0.5);
    expectDoubles(doubles("t.outWeightPP"), {w, w, 0});
    MObject     curve = plug("t.outGeometry").asMObject();
    MPointArray cvs;
    MFnNurbsCurve(curve).getCVs(cvs);
    ASSERT_EQ(cvs.length(), 3u);
    EXPECT_TRUE(cvs[0].isEquivalent(MPoint(0.5 * w, 0.5 * w, 0), 1e-6));
    EXPECT_TRUE(cvs[2].isEquivalent(MPoint(5, 1, 0), 1e-6));
    EXPECT_EQ(vectors("t.outNormalPP").size(), 3u);
}

TEST_F(Transfer, CloudsReachWithEveryPoint)
{
    transferTo({0.5, 3}, kAll);
    volume("a", 3, 0.0, "connectAttr " + arraySource("p", "vectorArray", 2, "0 0 0 1 0 0") + " aShape.inParticlePositionPP;"
           "setAttr aShape.inParticleRadiusPP -type doubleArray 2 1 2; setAttr aShape.inParticleWeightPP -type doubleArray 2 0.5 4;"
           "setAttr aShape.inParticleRgbPP -type vectorArray 2 1 0 0 0 1 0;"
           "setAttr aShape.inParticleOpacityPP -type doubleArray 2 1 0.5");
    connectVolume("a", "t", 0);
    // the first point: 0.5 of radius 1 and 0.25 of radius 2; the second stands on the border of the second sphere
    const double sum = 0.5 + 0.75;
    expectDoubles(doubles("t.outWeightPP"), {(0.5 * 0.5 * 0.5 + 0.75 * 0.75 * 4) / sum, 0});
    expectDoubles(doubles("t.outRadiusPP"), {(0.5 * 0.5 * 1 + 0.75 * 0.75 * 2) / sum, 0});
    expectDoubles(doubles("t.outRgbaPP"), {0.5 / sum, 0.75 * 0.5 / sum, 0, (0.5 + 0.75 * 0.5) / sum, 0, 0.5, 0, 0.5});
    const double s = (0.25 + 0.5625) / sum;
    expectNear(vectors("t.outGeometry"), {{0.5 * (1 - s) + 0.5625 / sum, 0, 0}, {3, 0, 0}});
}

TEST_F(Transfer, BadVolumes)
{
    transferTo({0.5, 0.25}, kAll);
    volume("a", 0, 0.0);
    connectVolume("a", "t", 2);
    run("setAttr -type matrix t.boundingObjects[0].boundParentMatrix 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1;"   // not connected
        "setAttr t.boundingObjects[0].boundEnvelope 1");
    expectDoubles(doubles("t.outWeightPP"), {0.5, 0.75});
    for (const char* bad : {"setAttr a.scale 0 1 1", "setAttr a.scale 1 1 0; setAttr aShape.type 1",
                            "setAttr a.scale 1 1 1; setAttr aShape.type 2; setAttr aShape.topCapScale 0 0 0;"
                            "setAttr aShape.bottomCapScale 0 0 0; setAttr aShape.topCapOffset 0; setAttr aShape.bottomCapOffset 0"}) {
        run(bad);
        expectDoubles(doubles("t.outWeightPP"), {0, 0});
    }
    run("setAttr a.scale -1 1 1; setAttr aShape.type 0");   // mirrored is still a sphere
    expectDoubles(doubles("t.outWeightPP"), {0.5, 0.75});
    run("for ($i = 1; $i >= 0; $i--) removeMultiInstance -break true (\"aShape.weightFalloff[\" + $i + \"]\")");
    expectDoubles(doubles("t.outWeightPP"), {0, 0});         // a ramp without entries
    run("setAttr arrays.v -type vectorArray 0");
    EXPECT_TRUE(doubles("t.outWeightPP").empty());
}

TEST_F(Transfer, CloudArraysThatDisagreeWarnAndAreUsed)
{
    transferTo({0.5}, "setAttr t.weight 1");
    run("createNode network -name f; addAttr -longName o -attributeType compound -numberOfChildren 3 f;"
        "addAttr -longName m -attributeType matrix -parent o f; addAttr -longName c -attributeType compound -numberOfChildren 2 -parent o f;"
        "addAttr -longName e -attributeType double -parent c f; addAttr -longName k -attributeType short -parent c f;"
        "addAttr -longName d -attributeType compound -numberOfChildren 3 -parent o f;"
        "addAttr -longName p -dataType pointArray -parent d f; addAttr -longName n -dataType vectorArray -parent d f;"
        "addAttr -longName r -dataType doubleArray -parent d f;"
        "setAttr f.e 1; setAttr f.k 3; setAttr f.p -type pointArray 2 0 0 0 1 9 0 0 1; setAttr f.r -type doubleArray 1 2;"
        "connectAttr f.o t.boundingObjects[0]");
    Warnings warnings;
    expectDoubles(doubles("t.outWeightPP"), {0});   // no weights at all: 0
    std::string all;
    for (const std::string& text : warnings.texts)
        all += text;
    for (const char* array : {"normalPP", "radiusPP", "weightPP", "rgbaPP"})
        EXPECT_NE(all.find(std::string("t:boundingObjects[0]: the ") + array + " array length does not match the point count."),
                  std::string::npos) << all;
}

TEST_F(Transfer, WeightListOfOneWeightAPoint)
{
    transferTo({0.5, 0.25, 5}, "", "multiAttributeTransfer");
    volume("a", 0, 0.0);
    volume("b", 0, 1.0, "setAttr b.scale 2 2 2; setAttr bShape.weightFalloff[0].weightFalloff_FloatValue 9");
    connectVolume("a", "t", 1);
    expectDoubles(weightsOf("0"), {0.5, 0.75, 0});
    connectVolume("b", "t", 2);
    expectDoubles(weightsOf("0"), {1, 1, 0});   // cut at 1
    run("setAttr bShape.weightFalloff[0].weightFalloff_FloatValue 1; setAttr t.useComponents 1; connectAttr " +
        arraySource("i", "Int32Array", 1, "0") + " t.inComponents");
    expectDoubles(weightsOf("0"), {(0.25 + 0.5625) / 1.25, 0, 0});
    run("setAttr t.processAllComponents 0");
    expectDoubles(weightsOf("0"), {(0.25 + 0.5625) / 1.25});
    run("setAttr t.envelope 0");
    EXPECT_TRUE(weightsOf("0").empty());
}

TEST_F(Transfer, WeightListOfOneWeightAPointAndVolume)
{
    transferTo({0.5, 5}, "setAttr t.mode 1", "multiAttributeTransfer");
    volume("a", 0, 0.0);
    volume("b", 0, 1.0, "setAttr b.scale 2 2 2");
    connectVolume("a", "t", 1);
    connectVolume("b", "t", 2);
    expectDoubles(weightsOf("0"), {0.5 / 1.25, 0.75 / 1.25});
    EXPECT_TRUE(weightsOf("1").empty());
    run("setAttr t.weightFreePointsTo 1");
    expectDoubles(weightsOf("1"), {1});
    run("setAttr t.weightFreePointsTo 2");
    expectDoubles(weightsOf("1"), {-1, 1});   // 2 sizes from b, 5 from a
    run("setAttr t.maxInfluences 1");         // the nearer one pushes the other out, and weighs 1 whatever it gives
    expectDoubles(weightsOf("0"), {-1, 1});
}

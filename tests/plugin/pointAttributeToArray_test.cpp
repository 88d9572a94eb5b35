// Points of meshes, curves, surfaces and vector arrays as arrays.
#include <cmath>

#include "scene.h"

using namespace scene;
using PointAttributeToArray = scene::Test;

namespace {

// A cube of side 2 around (10, 0, 0) and a reader `r` on its world mesh. Vertex order of the primitive:
// 0 (-,-,+)  1 (+,-,+)  2 (-,+,+)  3 (+,+,+)  4 (-,+,-)  5 (+,+,-)  6 (-,-,-)  7 (+,-,-)
void cube(const std::string& switches)
{
    run("polyCube -width 2 -height 2 -depth 2 -name c; setAttr c.translateX 10;"
        "createNode pointAttributeToArray -name r; connectAttr c.worldMesh[0] r.inGeometry;" + switches);
}

const std::vector<MVector> kCube = {{-1, -1, 1}, {1, -1, 1}, {-1, 1, 1}, {1, 1, 1},
                                    {-1, 1, -1}, {1, 1, -1}, {-1, -1, -1}, {1, -1, -1}};

std::vector<MVector> moved(std::vector<MVector> points, const MVector& by)
{
    for (MVector& p : points)
        p += by;
    return points;
}

/// Two quads with hard edges, folded along the middle: the left one lies flat, the right one rises by 45 degrees. The
/// tangents lie at 0 and 45 degrees about z, the binormals are (0, 0, -1).
///   3 - 4 - 5
///   0 - 1 - 2
void foldedPlane(const std::string& settings)
{
    run("polyPlane -width 2 -height 2 -subdivisionsX 2 -subdivisionsY 1 -name p; select p.vtx[2] p.vtx[5];"
        "move -relative 0 1 0; polySoftEdge -angle 0 p; createNode pointAttributeToArray -name r;"
        "connectAttr p.worldMesh[0] r.inGeometry;" + settings);
}

const char* const kOutputs[] = {"outIdPP", "outPositionPP", "outRotationPP", "outNormalPP", "outBinormalPP",
                                "outTangentPP", "outRgbaPP", "outMapCountPP", "outMapIdPP", "outMapPP",
                                "outSharedMapPP"};

std::size_t lengthOf(const std::string& name)
{
    const MObject data = plug(name).asMObject();
    return data.apiType() == MFn::kVectorArrayData ? vectors(name).size() : doubles(name).size();
}

} // namespace

TEST_F(PointAttributeToArray, NothingSwitchedOnGivesEmptyArrays)
{
    cube("");
    for (const char* output : kOutputs)
        EXPECT_EQ(lengthOf(std::string("r.") + output), 0u) << output;
    EXPECT_EQ(plug("r.outCount").asInt(), 0);
}

TEST_F(PointAttributeToArray, PositionsInBothSpacesFollowEdits)
{
    cube("setAttr r.pointPosition 1");
    expectNear(vectors("r.outPositionPP"), moved(kCube, {10, 0, 0}));
    EXPECT_EQ(doubles("r.outIdPP"), (std::vector<double>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(plug("r.outCount").asInt(), 8);
    run("setAttr c.translateY 3");
    expectNear(vectors("r.outPositionPP"), moved(kCube, {10, 3, 0}));
    run("setAttr r.coordinateSystem 1");
    expectNear(vectors("r.outPositionPP"), kCube);
}

TEST_F(PointAttributeToArray, RotationAloneFillsNothingElse)
{
    cube("setAttr r.pointRotation 1");
    EXPECT_EQ(vectors("r.outRotationPP").size(), 8u);
    EXPECT_EQ(vectors("r.outPositionPP").size(), 0u);
    EXPECT_EQ(plug("r.outCount").asInt(), 0);
}

TEST_F(PointAttributeToArray, RotationTurnsTheAxesIntoTheFrame)
{
    // Normal, binormal, tangent is the order whose rows N, B, N x B are a rotation and no reflection. On a flat plane
    // the x axis turned by the angles must be the normal (0,1,0), whatever the carried sums did.
    run("polyPlane -width 2 -height 2 -subdivisionsX 2 -subdivisionsY 2 -name p;"
        "createNode pointAttributeToArray -name r; connectAttr p.worldMesh[0] r.inGeometry; setAttr r.pointRotation 1;"
        "setAttr r.rotationOrder 1");
    const std::vector<MVector> angles = vectors("r.outRotationPP");
    ASSERT_EQ(angles.size(), 9u);
    for (const MVector& degrees : angles) {
        const double k = 3.14159265358979 / 180.0;
        const double cy = cos(degrees.y * k), sy = sin(degrees.y * k), cz = cos(degrees.z * k), sz = sin(degrees.z * k);
        // first row of the matrix of x, then y, then z rotation
        EXPECT_NEAR(cy * cz, 0.0, 1e-5);
        EXPECT_NEAR(cy * sz, 1.0, 1e-5);
        EXPECT_NEAR(-sy, 0.0, 1e-5);
    }
}

TEST_F(PointAttributeToArray, NormalTangentAndBinormalAreAFrame)
{
    cube("setAttr r.pointNormal 1; setAttr r.pointTangent 1; setAttr r.pointBinormal 1");
    const std::vector<MVector> n = vectors("r.outNormalPP");
    ASSERT_EQ(n.size(), 8u);
    for (std::size_t i = 0; i < n.size(); ++i)   // the mean of three face normals points along the diagonal
        EXPECT_TRUE(n[i].normal().isEquivalent(kCube[i].normal(), 1e-6)) << i;
    for (const MVector& v : vectors("r.outTangentPP"))
        EXPECT_NEAR(v.length(), 1.0, 1e-6);
    for (const MVector& v : vectors("r.outBinormalPP"))
        EXPECT_NEAR(v.length(), 1.0, 1e-6);
}

TEST_F(PointAttributeToArray, FaceChoiceSticksAtTheSmallestClamp)
{
    // vertex 0 has one face, so an offset of 5 becomes 0 there and stays: the middle vertices take the flat face
    foldedPlane("setAttr r.pointNormal 1; setAttr r.averagedNormals 0; setAttr r.normalIdOffset 5");
    const std::vector<MVector> n = vectors("r.outNormalPP");
    ASSERT_EQ(n.size(), 6u);
    const MVector flat(0, 1, 0), rising = MVector(-1, 1, 0).normal();
    expectNear(n, {flat, flat, rising, flat, flat, rising}, 1e-5);
}

TEST_F(PointAttributeToArray, TangentSumsGoOnFromThePointBefore)
{
    foldedPlane("setAttr r.pointTangent 1; setAttr r.averagedTangents 0; setAttr r.tangentIdOffset 1");
    // The offset sticks at 0 at the first point. Each result halves the angle between the one before and the tangent of
    // the point's first face: 0, 0, 45, 0, 0, 45 degrees.
    const double degrees[] = {0.0, 0.0, 22.5, 11.25, 5.625, 25.3125};
    std::vector<MVector> expected;
    for (const double angle : degrees)
        expected.emplace_back(std::cos(angle * M_PI / 180.0), std::sin(angle * M_PI / 180.0), 0.0);
    expectNear(vectors("r.outTangentPP"), expected);

    // averaged, the second point has the sum (1, 0) + (1, 0) + (h, h) with h = sqrt(1/2)
    run("setAttr r.averagedTangents 1");
    const MVector second = MVector(2.0 + std::sqrt(0.5), std::sqrt(0.5), 0.0).normal();
    EXPECT_TRUE(vectors("r.outTangentPP")[1].isEquivalent(second, 1e-6));
    expectNear({vectors("r.outTangentPP")[2]}, {(second + MVector(1, 1, 0).normal()).normal()});
}

TEST_F(PointAttributeToArray, RotationTurnsTheTangentRound)
{
    foldedPlane("setAttr r.pointRotation 1; setAttr r.pointBinormal 1; setAttr r.rotationOrder 1");
    // Rows: normal n at 90, 112.5 or 135 degrees about z, binormal (0, 0, -1), tangent n x b. Turning x by -90 takes y to
    // -z, then z turns x into n. The factor to degrees is a little above 180 / pi.
    const double k = 57.29582 * M_PI / 180.0;
    const MVector left(-90 * k, 0, 90 * k), fold(-90 * k, 0, 112.5 * k), right(-90 * k, 0, 135 * k);
    expectNear(vectors("r.outRotationPP"), {left, fold, right, left, fold, right}, 1e-5);
    expectNear(vectors("r.outBinormalPP"), std::vector<MVector>(6, MVector(0, 0, -1)));
    // the tangent left behind points against the face's: at the first point the two cancel, and the face's own serves
    run("setAttr r.pointTangent 1");
    expectNear({vectors("r.outTangentPP")[0]}, {MVector(1, 0, 0)});
}

TEST_F(PointAttributeToArray, PointsWithoutFaces)
{
    run("createNode pointAttributeToArray -name r; connectAttr " + meshSource(4, true) + " r.inGeometry;"
        "setAttr r.pointPosition 1; setAttr r.pointNormal 1; setAttr r.averagedNormals 0; setAttr r.pointTangent 1;"
        "setAttr r.pointRotation 1; setAttr r.pointColor 1; setAttr r.mapData 1");
    EXPECT_EQ(vectors("r.outPositionPP").size(), 4u);
    EXPECT_EQ(doubles("r.outRgbaPP"), std::vector<double>(16, 0.0));
    EXPECT_EQ(doubles("r.outMapCountPP").size(), 0u);   // no UVs, no entry
    // without UVs there is no tangent; the point without faces takes +Y for the vanished sum
    run("setAttr r.pointRotation 0");
    expectNear(vectors("r.outTangentPP"), {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 1, 0}});
    expectNear(vectors("r.outNormalPP"), std::vector<MVector>(4, MVector(0, 0, 1)));   // keeps the one before
}

TEST_F(PointAttributeToArray, NoPointsAtAll)
{
    run("createNode pointAttributeToArray -name r; connectAttr " + meshSource(0, false) + " r.inGeometry;"
        "setAttr r.pointPosition 1; setAttr r.pointNormal 1; setAttr r.pointRotation 1; setAttr r.mapData 1;"
        "setAttr r.pointColor 1");
    for (const char* output : kOutputs)
        EXPECT_EQ(lengthOf(std::string("r.") + output), 0u) << output;
}

TEST_F(PointAttributeToArray, SubsetPrunedOrHeldWithZeros)
{
    cube("setAttr r.pointPosition 1; setAttr r.pointRotation 1; setAttr r.pointColor 1; setAttr r.mapData 1;"
         "setAttr r.coordinateSystem 1; setAttr r.useComponents 1;"
         "createNode network -name g; addAttr -longName ic -dataType \"componentList\" g;"
         "setAttr g.ic -type \"componentList\" 2 \"f[1]\" \"vtx[2]\"; connectAttr g.ic r.inComponents");
    EXPECT_EQ(vectors("r.outPositionPP").size(), 0u);   // only the first component of the list counts, and it is a face
    run("setAttr g.ic -type \"componentList\" 1 \"vtx[2:3]\"");
    expectNear(vectors("r.outPositionPP"), {kCube[2], kCube[3]});
    EXPECT_EQ(doubles("r.outIdPP"), (std::vector<double>{2, 3}));
    EXPECT_EQ(doubles("r.outMapCountPP").size(), 2u);

    run("setAttr r.prune 0");
    const MVector none(0, 0, 0);
    expectNear(vectors("r.outPositionPP"), {none, none, kCube[2], kCube[3], none, none, none, none});
    EXPECT_EQ(vectors("r.outRotationPP").size(), 2u);   // a rotation keeps no place
    EXPECT_EQ(doubles("r.outRgbaPP").size(), 32u);
    EXPECT_EQ(doubles("r.outMapCountPP").size(), 8u);
    EXPECT_EQ(doubles("r.outMapCountPP")[0], 0.0);
    EXPECT_EQ(doubles("r.outSharedMapPP").size(), 4u);
    EXPECT_EQ(plug("r.outCount").asInt(), 8);

    run("disconnectAttr g.ic r.inComponents");   // an empty list selects nothing
    expectNear(vectors("r.outPositionPP"), std::vector<MVector>(8, none));
}

TEST_F(PointAttributeToArray, ObjectGroupsAreRefused)
{
    cube("setAttr r.pointPosition 1; setAttr r.useComponents 2");
    Warnings warnings;
    EXPECT_EQ(vectors("r.outPositionPP").size(), 8u);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_EQ(warnings.texts[0],
              "r: Object groups are not supported for vector arrays. Use components list instead.");
}

TEST_F(PointAttributeToArray, UvsOfTheCube)
{
    // the primitive has 14 UVs, each used by one vertex only
    cube("setAttr r.mapData 1");
    const std::vector<double> counts = doubles("r.outMapCountPP");
    ASSERT_EQ(counts.size(), 8u);
    double sum = 0.0;
    for (const double count : counts)
        sum += count;
    EXPECT_EQ(sum, 14.0);
    std::vector<double> ids = doubles("r.outMapIdPP");
    std::sort(ids.begin(), ids.end());
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_EQ(ids[i], double(i));
    EXPECT_EQ(doubles("r.outMapPP").size(), 28u);
    EXPECT_EQ(doubles("r.outSharedMapPP").size(), 16u);

    run("setAttr r.uvSet -type \"string\" \"nothing\"");
    Warnings warnings;
    EXPECT_EQ(doubles("r.outMapPP").size(), 28u);   // the current set serves instead
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_EQ(warnings.texts[0], "r: Cannot find uvSet named \"nothing\".");
}

TEST_F(PointAttributeToArray, ColoursWithUnsetVerticesAsZeros)
{
    cube("polyColorPerVertex -rgb 0.25 0.5 0.75 -alpha 1 c.vtx[1]; setAttr r.pointColor 1");
    const std::vector<double> rgba = doubles("r.outRgbaPP");
    ASSERT_EQ(rgba.size(), 32u);
    const std::vector<double> expected = {0, 0, 0, 0, 0.25, 0.5, 0.75, 1};
    EXPECT_EQ(std::vector<double>(rgba.begin(), rgba.begin() + 8), expected);
}

TEST_F(PointAttributeToArray, CurvePointsAndTheirIds)
{
    run("curve -degree 3 -point 0 0 0 -point 1 2 0 -point 3 3 0 -point 5 2 0 -point 6 0 0 -name k;"
        "createNode pointAttributeToArray -name r; connectAttr k.worldSpace[0] r.inGeometry;"
        "setAttr r.pointPosition 1; setAttr r.pointNormal 1");
    expectNear(vectors("r.outPositionPP"), {{0, 0, 0}, {1, 2, 0}, {3, 3, 0}, {5, 2, 0}, {6, 0, 0}}, 1e-4);
    EXPECT_EQ(doubles("r.outIdPP"), (std::vector<double>{0, 0, 1, 1, 2}));
    EXPECT_EQ(vectors("r.outNormalPP").size(), 5u);
    run("setAttr r.useComponents 1; setAttr r.prune 0; createNode network -name g;"
        "addAttr -longName ic -dataType \"componentList\" g; setAttr g.ic -type \"componentList\" 1 \"cv[3]\";"
        "connectAttr g.ic r.inComponents");
    const MVector none(0, 0, 0);
    expectNear(vectors("r.outPositionPP"), {none, none, none, {5, 2, 0}, none}, 1e-4);
    EXPECT_EQ(doubles("r.outIdPP"), (std::vector<double>{0, 0, 1, 1, 2}));
    int left = -1;
    MGlobal::executeCommand("size(`ls -type rebuildCurve -type extrude -type nurbsTessellate`)", left);
    EXPECT_EQ(left, 0);   // the temporary nodes are gone
}

TEST_F(PointAttributeToArray, TemporaryNodesComeAndGoInOrder)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -name k; createNode pointAttributeToArray -name r;"
        "connectAttr k.worldSpace[0] r.inGeometry; setAttr r.pointPosition 1; commandEcho -state on");
    Warnings echoed(mirk::message::kEcho);
    EXPECT_EQ(vectors("r.outPositionPP").size(), 2u);
    run("commandEcho -state off");
    std::string verbs;
    for (const std::string& text : echoed.texts)
        verbs += text.substr(0, text.find(' ')) + " ";
    EXPECT_EQ(verbs.substr(0, verbs.find("commandEcho")),
              "createNode setAttr setAttr connectAttr createNode setAttr connectAttr "
              "createNode setAttr setAttr setAttr connectAttr delete ");
    const std::string last = echoed.texts.size() > 12 ? echoed.texts[12] : "";
    EXPECT_LT(last.find("extrude"), last.find("nurbsTessellate")) << last;
    EXPECT_LT(last.find("nurbsTessellate"), last.find("rebuildCurve")) << last;
}

TEST_F(PointAttributeToArray, SurfaceHasTwoIdsAPoint)
{
    run("nurbsPlane -axis 0 1 0 -width 3 -degree 3 -patchesU 1 -patchesV 1 -name s;"
        "createNode pointAttributeToArray -name r;"
        "connectAttr s.worldSpace[0] r.inGeometry; setAttr r.pointPosition 1");
    ASSERT_EQ(vectors("r.outPositionPP").size(), 16u);
    const std::vector<double> ids = doubles("r.outIdPP");
    ASSERT_EQ(ids.size(), 32u);
    for (int k = 0; k < 16; ++k) {   // V runs fastest
        EXPECT_EQ(ids[2 * k], k / 4);
        EXPECT_EQ(ids[2 * k + 1], k % 4);
    }
    run("setAttr r.useComponents 1; createNode network -name g; addAttr -longName ic -dataType \"componentList\" g;"
        "setAttr g.ic -type \"componentList\" 1 \"cv[2][1:2]\"; connectAttr g.ic r.inComponents");
    EXPECT_EQ(doubles("r.outIdPP"), (std::vector<double>{2, 1, 2, 2}));
    EXPECT_EQ(vectors("r.outPositionPP").size(), 2u);
    run("setAttr r.useComponents 0; sphere -name ball; connectAttr -force ball.worldSpace[0] r.inGeometry");
    Warnings warnings;
    EXPECT_EQ(vectors("r.outPositionPP").size(), 0u);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_EQ(warnings.texts[0], "r: The geometry at the input is a periodic nurbs surface. Rebuild using the "
                                 "\"End Conditions\" / \"Multiple Knots\" options.");
}

TEST_F(PointAttributeToArray, VectorArrayByIndices)
{
    const std::string source = arraySource("v", "vectorArray", 5, "0 0 0 1 1 1 2 2 2 3 3 3 4 4 4");
    run("createNode pointAttributeToArray -name r; connectAttr " + source + " r.inGeometry; setAttr r.pointNormal 1");
    EXPECT_EQ(vectors("r.outPositionPP").size(), 5u);
    EXPECT_EQ(vectors("r.outNormalPP").size(), 0u);
    run("setAttr r.useComponents 1");
    EXPECT_EQ(vectors("r.outPositionPP").size(), 0u);   // nothing connected
    run("connectAttr " + arraySource("i", "Int32Array", 3, "0 7 2") + " r.inComponents");
    expectNear(vectors("r.outPositionPP"), {{0, 0, 0}, {2, 2, 2}});
    EXPECT_EQ(plug("r.outCount").asInt(), 2);
    run("setAttr r.useComponents 2");
    Warnings warnings;
    EXPECT_EQ(vectors("r.outPositionPP").size(), 0u);
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_EQ(warnings.texts[0], "r: Object groups are not supported for particles. Use components list instead.");
}

// componentGroup: what each step selects on shapes small enough to count by hand.
#include "component_scene.h"

using namespace scene;
using ComponentGroup = scene::Test;

namespace {

bool isText(const std::string& attribute)
{
    return attribute == "pattern" || attribute == "initialComponents" || attribute == "startFrames" ||
           attribute == "resetFrames" || attribute == "uvSet";
}

/// "pattern=3:1 7; depth=2": sets attributes of `g`.
void set(const std::string& settings)
{
    std::istringstream in(settings);
    for (std::string token; std::getline(in, token, ';');) {
        token.erase(0, token.find_first_not_of(' '));
        const std::size_t equals = token.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string name = token.substr(0, equals), value = token.substr(equals + 1);
        run("setAttr g." + name + (isText(name) ? " -type \"string\" \"" + value + "\"" : " " + value));
    }
}

/// A node `g` on a geometry plug.
void group(const std::string& geometry, const std::string& settings = "")
{
    run("createNode componentGroup -name g; connectAttr " + geometry + " g.inGeometry");
    set(settings);
}

std::string selected() { return componentsAt("g.outComponents"); }

struct Case
{
    const char *settings, *selected;
};

/// Each case on a new node on the same geometry.
template <std::size_t N>
void expect(const char* geometry, const Case (&cases)[N])
{
    for (const Case& c : cases) {
        group(geometry, c.settings);
        EXPECT_EQ(selected(), c.selected) << c.settings;
        run("delete g");
    }
}

const char* const kAll16 = "v 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15";

} // namespace

TEST_F(ComponentGroup, PatternsAndRanges)
{
    grid(3);
    const Case cases[] = {
        {"pattern=3:1 7", "v 1 2 3 7"},
        {"pattern=", "v 116"},                                 // nothing: one index far outside
        {"pattern=*", kAll16},
        {"pattern= * ", "v 116"},                              // all is the star alone
        {"pattern=a 2 -1 3: :4 1:2:3 5.0 99 14:99 4294967297", "v 2 14 15"},
        {"pattern=0 8; componentType=2", "f 0 8"},
        {"pattern=23 24; componentType=1", "e 23"},
        {"pattern=15:16; componentType=3", "map 15"},
        {"pattern=*; componentType=4", "cv 100"},              // a mesh has none
        {"pattern=*; componentType=6", "v 100"},
        {"opRange=1", "v 0 2 4 6 8 10 12 14"},                 // the last one is left out
        {"opRange=1; rangeStart=1; rangeEnd=0; stepA=2; stepB=4", "v 1 4 5 8 9 12 13"},
        {"opRange=1; rangeEnd=0; stepA=1; stepB=5", "v 0 5 10 15"},
        {"opRange=1; rangeStart=11; stepA=7; stepB=3", "v 11 12 13 14"},   // stepA is cut to stepB
        {"opRange=1; rangeEnd=-15", "v 0"},
        {"opRange=1; rangeEnd=-16", "v 116"},
        {"opRange=1; rangeEnd=-13; pattern=9", "v 0 2 9"},     // operations add up
    };
    expect("p.worldMesh[0]", cases);
}

TEST_F(ComponentGroup, Directions)
{
    run("polyCube -name p; rotate 90 0 0 p");   // faces: front 0, top 1, back 2, bottom 3, right 4, left 5
    const Case cube[] = {
        {"componentType=2; opNormalVelocity=1; spreadAngleMax=10", "f 2"},   // turned up
        {"componentType=2; opNormalVelocity=1; spreadAngleMax=10; coordinateSystem=1", "f 1"},
        {"componentType=2; opNormalVelocity=1; spreadAngleMin=80; spreadAngleMax=100", "f 1 3 4 5"},
        {"componentType=2; opNormalVelocity=1; spreadAngleMin=179", "f 0"},
        {"componentType=2; opNormalVelocity=1; directionY=0.00009", "f 106"},
        // 90 degrees by the factor 0.01746 are a little more than a right angle
        {"componentType=2; opNormalVelocity=1; mode=1; inBetweenAngle=90", "f 0 1 2 3 4 5"},
        {"componentType=2; opNormalVelocity=1; mode=1; inBetweenAngle=89.9", "f 106"},
        {"componentType=1; opAngle=1; angleMin=89.9", "e 0 1 2 3 4 5 6 7 8 9 10 11"},
        {"componentType=1; opAngle=1; angleMin=90", "e 112"},
        {"componentType=0; opAngle=1", "v 108"},               // edges only
    };
    expect("p.worldMesh[0]", cube);
    run("file -force -new");
    grid(3);
    run("setAttr p.rotateX 5; move -relative 0 3 0 p.vtx[0]");   // the corner rises: its face and neighbours tilt
    const Case plane[] = {
        {"opNormalVelocity=1; spreadAngleMax=10; coordinateSystem=1", "v 2 3 6 7 8 9 10 11 12 13 14 15"},
        {"componentType=3; opNormalVelocity=1; spreadAngleMax=10; coordinateSystem=1",
         "map 2 3 6 7 8 9 10 11 12 13 14 15"},
        {"opNormalVelocity=1; spreadAngleMax=1; coordinateSystem=0", "v 116"},
        {"opNormalVelocity=1; mode=1; coordinateSystem=1", "v 2 3 6 7 8 9 10 11 12 13 14 15"},
    };
    expect("p.worldMesh[0]", plane);
}

TEST_F(ComponentGroup, Growth)
{
    grid(3);
    const Case cases[] = {
        {"opDepth=1; useInComponents=0; initialComponents=5", "v 116"},   // depth 0 leaves the seeds out
        {"opDepth=1; useInComponents=0; initialComponents=5; depth=1", "v 1 4 5 6 9"},
        {"opDepth=1; useInComponents=0; initialComponents=5; depth=2", "v 0 1 2 4 5 6 7 8 9 10 13"},
        {"opDepth=1; useInComponents=0; initialComponents=5; depth=2000000000", kAll16},
        {"opDepth=1; useInComponents=0; initialComponents=99; depth=3", "v 116"},
        {"componentType=2; opDepth=1; useInComponents=0; initialComponents=0; depth=1", "f 0 1 3"},
        {"componentType=3; opDepth=1; useInComponents=0; initialComponents=15; depth=1", "map 11 14 15"},
        {"opDepth=1; depth=1", "v 116"},                        // nothing at inComponents
    };
    expect("p.worldMesh[0]", cases);
    group("p.worldMesh[0]", "opDepth=1; depth=1");
    giveComponents("g.inComponents", {"vtx[0]", "f[8]"});       // the first component of the list
    EXPECT_EQ(selected(), "v 0 1 4");
    set("componentType=2");                                     // seeds of another kind
    EXPECT_EQ(selected(), "f 109");
}

TEST_F(ComponentGroup, Sizes)
{
    grid(3);
    run("move -relative 0.5 0 0 p.vtx[0] p.vtx[4] p.vtx[8] p.vtx[12]");   // the first column is half as wide
    const Case cases[] = {
        {"opEdgeLength=1; lengthThreshold=0.5", "v 0 1 4 5 8 9 12 13"},
        {"opEdgeLength=1; lengthThreshold=0.499", "v 116"},
        {"componentType=2; opEdgeLength=1; lengthThreshold=0.5", "f 0 3 6"},
        {"componentType=3; opEdgeLength=1; lengthThreshold=0.5", "map 0 1 4 5 8 9 12 13"},
        {"opEdgeLength=1; lengthThreshold=0.3; space=1", "v 116"},          // UVs stay a third apart
        {"opEdgeLength=1; lengthThreshold=0.34; space=1", kAll16},
        {"componentType=2; opFaceArea=1; areaThreshold=0.5", "f 0 3 6"},
        {"componentType=2; opFacePerimeter=1; perimeterThreshold=3.5", "f 0 3 6"},
        {"componentType=2; opFacePerimeter=1; perimeterThreshold=2.9", "f 109"},
        {"opFacePerimeter=1; perimeterThreshold=3", "v 0 1 4 5 8 9 12 13"},
        {"componentType=2; opNgons=1; minVertexCount=4; maxVertexCount=4", "f 0 1 2 3 4 5 6 7 8"},
        {"componentType=2; opNgons=1; maxVertexCount=3", "f 109"},
        {"componentType=2; opNgons=1; minEdgeCount=5", "f 109"},
        {"componentType=2; opNgons=1", "f 0 1 2 3 4 5 6 7 8"},
        {"opWeightMap=1", "v 116"},                              // unconnected: all 0
        {"opWeightMap=1; weightThreshold=-1", kAll16},
    };
    expect("p.worldMesh[0]", cases);
    group("p.worldMesh[0]", "opWeightMap=1");
    run("connectAttr " + arraySource("w", "doubleArray", 4, "0.6 0.5 0.4 7") + " g.inWeightPP");
    EXPECT_EQ(selected(), "v 0 3");                              // strictly above; missing ones are 0
    set("weightThreshold=-0.5; componentType=2");
    EXPECT_EQ(selected(), "f 0 1 2 3 4 5 6 7 8");
}

TEST_F(ComponentGroup, CombinedWithTheInput)
{
    grid(3);
    group("p.worldMesh[0]", "pattern=2:5");
    struct { std::vector<std::string> input; const char *settings, *selected; } const cases[] = {
        {{"vtx[0:3]"}, "combine=0", "v 2 3 4 5"},
        {{"vtx[0:3]"}, "combine=1", "v 0 1 2 3 4 5"},
        {{"vtx[0:3]"}, "combine=2", "v 0 1"},
        {{"vtx[0:3]"}, "combine=3", "v 2 3"},
        {{"vtx[6]", "vtx[8]"}, "combine=1", "v 2 3 4 5 6 8"},    // one component: entries of a kind merge
        {{"f[0]"}, "combine=1", "f 0 | v 2 3 4 5"},
        {{"f[0]"}, "combine=1; filterInput=1", "v 2 3 4 5"},
        {{"f[0]"}, "combine=2; filterInput=0", "f 0"},
        {{"f[0]"}, "combine=3", "v 116"},
        {{"vtx[*]"}, "combine=2", "v 0 1 6 7 8 9 10 11 12 13 14 15"},
        {{"vtx[*]"}, "combine=3", "v 2 3 4 5"},
        {{"vtx[3:900]"}, "combine=3", "v 3 4 5"},
        {{}, "combine=3", "v 116"},
        {{"vtx[0:3]"}, "combine=2; envelope=0", "v 0 1 2 3"},    // off: the input
    };
    for (const auto& c : cases) {
        giveComponents("g.inComponents", c.input);
        set(c.settings);
        EXPECT_EQ(selected(), c.selected) << c.settings << (c.input.empty() ? "" : c.input[0]);
    }
    giveComponents("g.inComponents", {});
    EXPECT_EQ(selected(), "v 116");
    run("disconnectAttr lists.list" + std::to_string(std::hash<std::string>()("g.inComponents") % 1000) +
        " g.inComponents; connectAttr " + arraySource("ids", "Int32Array", 3, "4 9 -2") + " g.inComponents");
    set("envelope=1; combine=1");
    EXPECT_EQ(selected(), "v 2 3 4 5 9");
}

TEST_F(ComponentGroup, BoundaryAndInverse)
{
    grid(3);
    const Case cases[] = {
        {"pattern=0:5; boundary=1", "v 0 1 2 3 4 7 8 11 12 13 14 15"},
        {"pattern=5; boundary=2", "v 0 1 2 3 4 5 7 8 11 12 13 14 15"},
        {"pattern=0:5; boundary=3", "v 5"},
        {"pattern=0:5; boundary=4", "v 0 1 2 3 4"},
        {"pattern=*; boundary=3; componentType=2", "f 4"},
        {"pattern=*; boundary=3; invert=1; componentType=2", "f 0 1 2 3 5 6 7 8"},
        {"pattern=0; boundary=1; invert=1; componentType=3", "map 5 6 9 10"},
        {"pattern=0:14; invert=1", "v 15"},
        {"pattern=*; invert=1", "v 116"},
        {"invert=1", kAll16},
    };
    expect("p.worldMesh[0]", cases);
}

TEST_F(ComponentGroup, MirrorImages)
{
    grid(3);
    run("createNode transform -name m");
    const Case cases[] = {
        {"pattern=0 9; mirror=1", "v 3 10"},
        {"pattern=0 9; mirror=2", "v 0 3 9 10"},
        {"pattern=0 15; mirror=1; mirrorDirection=1", "v 12"},   // positive x goes over
        {"pattern=0 15; mirror=1; mirrorDirection=2", "v 3"},
        {"pattern=0; mirror=1; componentType=2", "f 2"},
        {"pattern=0 1; mirror=2; componentType=2", "f 0 1 2"},
        {"pattern=0; mirror=1; componentType=3", "map 0"},       // not for UVs
        {"pattern=0; mirror=1; radius=0.1", "v 3"},
    };
    for (const Case& c : cases) {
        group("p.worldMesh[0]", c.settings);
        run("connectAttr m.worldMatrix[0] g.mirrorMatrix");
        EXPECT_EQ(selected(), c.selected) << c.settings;
        run("delete g");
    }
    group("p.worldMesh[0]", "pattern=0 1 15; mirror=1; outputMirrorData=1; mirrorDirection=1");
    run("connectAttr m.worldMatrix[0] g.mirrorMatrix");
    EXPECT_EQ(componentsAt("g.outMirrorIds"), "ids -1 -1 12");
    set("mirrorDirection=0");
    EXPECT_EQ(componentsAt("g.outMirrorIds"), "ids 3 2 12");
    run("setAttr m.translateX 0.3");                             // images are 0.6 away from the next vertex
    set("radius=0.5");
    EXPECT_EQ(componentsAt("g.outMirrorIds"), "ids -1 3 13");    // the others come to within 0.4
    set("outputMirrorData=0");
    EXPECT_EQ(componentsAt("g.outMirrorIds"), "ids");
    run("setAttr m.rotateY 90; setAttr m.translate 0 0 0");      // the plane turns with its matrix
    set("radius=0.5; pattern=0; mirrorDirection=0");
    EXPECT_EQ(selected(), "v 12");
    run("setAttr m.scale 0 0 0");
    EXPECT_FALSE(selected().empty());
}

TEST_F(ComponentGroup, MirrorWithoutAPlane)
{
    grid(3);
    group("p.worldMesh[0]", "pattern=0; mirror=1");
    Warnings warnings;
    EXPECT_EQ(selected(), "v 0");
    run("createNode transform -name m; connectAttr m.worldMatrix[0] g.mirrorMatrix");
    set("componentType=3");
    EXPECT_EQ(selected(), "map 0");
    EXPECT_EQ(warnings.texts, (std::vector<std::string>{"g: No mirror matrix provided.",
                                                        "g: Mirroring is not supported for mesh UVs."}));
}

TEST_F(ComponentGroup, AddsUpOverTime)
{
    grid(3);
    group("p.worldMesh[0]", "pattern=1; resetFrames=*");
    EXPECT_EQ(selected(), "v 1");
    set("pattern=2");
    EXPECT_EQ(selected(), "v 1 2");
    set("resetFrames=10 x 20; startFrames=20; pattern=");
    EXPECT_EQ(selected(), "v 1 2");
    set("currentTime=10; pattern=5");
    EXPECT_EQ(selected(), "v 116");                              // reset to nothing
    set("currentTime=11");
    EXPECT_EQ(selected(), "v 5");                                // the marker stays behind
    giveComponents("g.initStateComponents", {"vtx[8:9]"});
    set("currentTime=20");
    EXPECT_EQ(selected(), "v 8 9");
    set("resetFrames=; pattern=0");
    EXPECT_EQ(selected(), "v 0");
}

TEST_F(ComponentGroup, ObjectGroupsAreWrittenIntoTheResult)
{
    grid(3);
    group("p.worldMesh[0]", "pattern=1:2; outputObjectGroup=1; groupId=7");
    run("createNode objGrpToCompList -name back; setAttr back.groupId 7; connectAttr g.outGeometry back.inGeometry");
    EXPECT_EQ(componentsAt("back.outComponents"), "v 1 2");
    set("pattern=3; componentType=2");
    EXPECT_EQ(componentsAt("back.outComponents"), "f 3");        // replaced, whatever its kind was
    set("pattern=");
    EXPECT_EQ(componentsAt("back.outComponents"), "f 109");
    set("groupId=-1");
    EXPECT_EQ(componentsAt("back.outComponents"), "");
    set("groupId=7; outputObjectGroup=0");
    EXPECT_EQ(componentsAt("back.outComponents"), "");
    set("outputObjectGroup=1");
    componentsAt("back.outComponents");
    run("connectAttr -force p.worldMesh[0] back.inGeometry");
    EXPECT_EQ(componentsAt("back.outComponents"), "");           // the input is not touched
}

TEST_F(ComponentGroup, NodeStates)
{
    grid(3);
    group("p.worldMesh[0]", "pattern=1");
    giveComponents("g.inComponents", {"vtx[0:3]"});
    EXPECT_EQ(selected(), "v 1");
    run("setAttr g.nodeState 1");
    EXPECT_EQ(selected(), "v 0 1 2 3");
    EXPECT_EQ(points("g.outGeometry").size(), 16u);
}

TEST_F(ComponentGroup, Curves)
{
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -point 3 0 0 -point 3 0 5 -name c");
    const Case cases[] = {
        {"componentType=4; pattern=1:9", "cv 1 2 3"},
        {"componentType=0; pattern=*", "v 100"},
        {"componentType=4; opEdgeLength=1; lengthThreshold=1", "cv 0 1"},
        {"componentType=4; opEdgeLength=1; lengthThreshold=2", "cv 0 1 2"},
        {"componentType=4; opDepth=1; useInComponents=0; initialComponents=0; depth=2", "cv 0 1 2"},
        {"componentType=4; pattern=*; boundary=3", "cv 1 2"},
        {"componentType=4; pattern=1; invert=1", "cv 0 2 3"},
    };
    expect("c.worldSpace[0]", cases);
    run("createNode transform -name m; move 1.5 0 0 m");
    group("c.worldSpace[0]", "componentType=4; pattern=0; mirror=1");
    run("connectAttr m.worldMatrix[0] g.mirrorMatrix");
    EXPECT_EQ(selected(), "cv 2");
    EXPECT_EQ(plug("g.outGeometry").asMObject().apiType(), MFn::kNurbsCurveData);
}

TEST_F(ComponentGroup, Surfaces)
{
    run("nurbsPlane -degree 1 -patchesU 2 -patchesV 2 -name s");   // 3 by 3 CVs
    const Case cases[] = {
        {"componentType=5; pattern=0 4 7", "sf 0,0 1,1 2,1"},
        {"componentType=5", "sf 109,109"},
        {"componentType=5; pattern=*; boundary=3", "sf 1,1"},
        {"componentType=5; pattern=*; boundary=4; invert=1", "sf 1,1"},
        {"componentType=5; opDepth=1; useInComponents=0; initialComponents=0; depth=1", "sf 0,0 0,1 1,0"},
    };
    expect("s.worldSpace[0]", cases);
    group("s.worldSpace[0]", "componentType=5; pattern=0 1; combine=3");
    giveComponents("g.inComponents", {"cv[0:1][1]"});
    EXPECT_EQ(selected(), "sf 0,1");
}

TEST_F(ComponentGroup, APeriodicSurfaceGivesTheInput)
{
    run("sphere -name s");
    group("s.worldSpace[0]", "componentType=5; pattern=*");
    giveComponents("g.inComponents", {"cv[0][0]"});
    Warnings warnings;
    EXPECT_EQ(selected(), "sf 0,0");
    EXPECT_EQ(warnings.texts, (std::vector<std::string>{
        "g: Geometry at the input is a periodic nurbs surface. Rebuild using the \"End Conditions\" / \"Multiple Knots\" "
        "options."}));
}

TEST_F(ComponentGroup, Particles)
{
    const std::string positions = arraySource("p", "vectorArray", 4, "0 0 0 1 0 0 2 0 0 3 0 0");
    group(positions, "componentType=6; opNormalVelocity=1; spreadAngleMax=45");
    {
        Warnings warnings;
        EXPECT_EQ(selected(), "nothing");
        EXPECT_EQ(warnings.texts.size(), 1u);
        EXPECT_EQ(warnings.texts[0], "g: Cannot find particle shape node on the input. Please supply velocity data to "
                                     "the inVelocityPP attribute.");
    }
    // the second moves up; the fourth has no velocity, and no angle either
    run("connectAttr " + arraySource("v", "vectorArray", 3, "1 0 0 0 1 0 0 0 1") + " g.inVelocityPP");
    EXPECT_EQ(selected(), "ids 1 3");
    set("componentType=0");
    EXPECT_EQ(selected(), "v 1 3");
    set("componentType=6; opNormalVelocity=0; pattern=2; mirror=2");
    run("createNode transform -name m; move 1.5 0 0 m; connectAttr m.worldMatrix[0] g.mirrorMatrix;"
        "connectAttr -force " + arraySource("d", "doubleArray", 12, "1 0 0 0 1 0 0 0 1 0 0 0") + " g.inVelocityPP");
    EXPECT_EQ(selected(), "ids 1 2");
    set("mirror=0; combine=1");
    run("connectAttr " + arraySource("ids", "Int32Array", 2, "0 3") + " g.inComponents");
    EXPECT_EQ(selected(), "ids 0 2 3");
    run("setAttr arrays.p -type vectorArray 1 5 0 0; setAttr g.pattern -type \"string\" \"*\"; setAttr g.combine 0");
    EXPECT_EQ(selected(), "ids 0 1 2");                          // a polygon has three points at least
    run("setAttr arrays.p -type vectorArray 0");
    EXPECT_EQ(selected(), "ids 100");
}

TEST_F(ComponentGroup, VelocitiesOfTheParticleShapeUpstream)
{
    run("particle -p 0 0 0 -p 1 0 0 -p 2 0 0 -name dust;"
        "particle -edit -attribute velocity -order 1 -vectorValue 0 9 0 dust;"
        "particle -edit -attribute velocity -order 0 -vectorValue 3 0 0 dust;"
        "particle -edit -attribute velocity -order 2 -vectorValue 0 0 1 dust");
    group("dustShape.position", "componentType=6; opNormalVelocity=1; spreadAngleMax=45");
    Warnings warnings;
    EXPECT_EQ(selected(), "ids 1");
    run("connectAttr " + arraySource("v", "vectorArray", 3, "0 1 0 1 0 0 1 0 0") + " g.inVelocityPP");
    EXPECT_EQ(selected(), "ids 0");                              // those at the input come first
    EXPECT_TRUE(warnings.texts.empty());
}

TEST_F(ComponentGroup, UnknownUVSetsWarn)
{
    grid(3);
    group("p.worldMesh[0]", "componentType=3; pattern=3; uvSet=nowhere");
    Warnings warnings;
    EXPECT_EQ(selected(), "map 3");
    EXPECT_EQ(warnings.texts, (std::vector<std::string>{"g: Cannot find uvSet named \"nowhere\"."}));
}

TEST_F(ComponentGroup, ADifferentKindOfGeometryAtTheNextEvaluation)
{
    grid(3);
    run("curve -degree 1 -point 0 0 0 -point 1 0 0 -name c; nurbsPlane -name s; createNode mesh -name empty;"
        "createNode transform -name m");
    group("p.worldMesh[0]", "pattern=*; boundary=2; mirror=2; opDepth=1; depth=1; opNormalVelocity=1; opEdgeLength=1;"
          "opFaceArea=1; opFacePerimeter=1; opWeightMap=1; opAngle=1; opNgons=1; resetFrames=*");
    run("connectAttr m.worldMatrix[0] g.mirrorMatrix; connectAttr " +
        arraySource("v", "vectorArray", 2, "1 0 0 0 1 0") + " g.inVelocityPP");
    const std::string nans = arraySource("n", "vectorArray", 4, "0 0 0 1 0 0 2 0 0 3 0 0");
    {
        MFnVectorArrayData fn(plug(nans).asMObject());
        MVectorArray       values = fn.array();
        values[1] = MVector(NAN, INFINITY, 1e308);
    }
    for (const std::string& from : {std::string("c.worldSpace[0]"), std::string("s.worldSpace[0]"),
                                    std::string("empty.outMesh"), nans, std::string("p.outMesh")}) {
        run("connectAttr -force " + from + " g.inGeometry");
        for (int type = 0; type < 7; ++type) {
            run("setAttr g.componentType " + std::to_string(type));
            EXPECT_NE(selected(), "") << from << type;
        }
    }
    set("componentType=0");
    EXPECT_EQ(selected().substr(0, 5), "v 0 1");
}

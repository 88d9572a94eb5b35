// The small nodes of networks: each row sets inputs and reads an output, values worked out by hand.
#include "support/host_fixture.h"

using mirk::test::Host;

namespace {

using MathNodes = Host;

/// What a plug holds; a single number is one value.
std::vector<double> values(const mirk::command::Value& v)
{
    std::vector<double> out;
    for (const double x : numbersIn(v))
        out.push_back(x);
    return out;
}

struct Case
{
    const char* when;
    const char* setup;    // MEL, the node is called n
    const char* output;
    double      value[3];
    int         count;
};

TEST_F(MathNodes, GiveWhatTheirOperationSays)
{
    const Case cases[] = {
        {"products", "createNode multiplyDivide -n n; setAttr n.i1 2 3 4; setAttr n.i2 5 6 7", "output", {10, 18, 28}, 3},
        {"a division by zero is large, not infinite", "createNode multiplyDivide -n n; setAttr n.op 2; setAttr n.i1 6 -1 0;"
         "setAttr n.i2 3 0 0", "output", {2, -100000, 0}, 3},
        {"powers", "createNode multiplyDivide -n n; setAttr n.op 3; setAttr n.i1 2 9 1; setAttr n.i2 3 0.5 9", "output",
         {8, 3, 1}, 3},
        {"a difference starts at the first element", "createNode plusMinusAverage -n n; setAttr n.op 2;"
         "setAttr n.i1[0] 10; setAttr n.i1[3] 4; setAttr n.i1[7] 1", "output1D", {5}, 1},
        {"an average of vectors", "createNode plusMinusAverage -n n; setAttr n.op 3; setAttr n.i3[0] 1 2 3;"
         "setAttr n.i3[1] 3 6 9", "output3D", {2, 4, 6}, 3},
        {"the false branch", "createNode condition -n n; setAttr n.op 2; setAttr n.ft 1; setAttr n.st 1;"
         "setAttr n.ct 1 2 3; setAttr n.cf 4 5 6", "outColor", {4, 5, 6}, 3},
        {"the true branch", "createNode condition -n n; setAttr n.op 3; setAttr n.ft 1; setAttr n.st 1;"
         "setAttr n.ct 1 2 3; setAttr n.cf 4 5 6", "outColor", {1, 2, 3}, 3},
        {"one minus", "createNode reverse -n n; setAttr n.input 0.25 0 3", "output", {0.75, 1, -2}, 3},
        {"blender 1 is the first colour", "createNode blendColors -n n; setAttr n.blender 0.75", "output", {0.75, 0, 0.25}, 3},
        {"clamped", "createNode clamp -n n; setAttr n.mn 0 0 0; setAttr n.mx 1 1 1; setAttr n.ip -1 0.5 7", "output",
         {0, 0.5, 1}, 3},
        {"ranges, ends held", "createNode setRange -n n; setAttr n.v 5 -1 99; setAttr n.on 0 0 0; setAttr n.om 10 10 10;"
         "setAttr n.n 100 100 100; setAttr n.m 200 200 200", "outValue", {150, 100, 200}, 3},
        {"a sum", "createNode addDoubleLinear -n n; setAttr n.i1 2; setAttr n.i2 5", "output", {7}, 1},
        {"a product", "createNode multDoubleLinear -n n; setAttr n.i1 2; setAttr n.i2 5", "output", {10}, 1},
        {"a distance between points of frames", "createNode distanceBetween -n n; spaceless", "distance", {5}, 1},
        {"dot product", "createNode vectorProduct -n n; setAttr n.i1 1 2 3; setAttr n.i2 4 5 6", "output", {32, 32, 32}, 3},
        {"cosine", "createNode vectorProduct -n n; setAttr n.no 1; setAttr n.i1 2 0 0; setAttr n.i2 3 3 0", "outputX",
         {0.70710678}, 1},
        {"cross product", "createNode vectorProduct -n n; setAttr n.op 2; setAttr n.i1 1 0 0; setAttr n.i2 0 2 0", "output",
         {0, 0, 2}, 3},
        {"an angle in degrees", "createNode angleBetween -n n; setAttr n.v1 1 0 0; setAttr n.v2 1 1 0", "angle", {45}, 1},
    };
    for (const Case& c : cases) {
        mel("file -f -new");
        std::string setup = c.setup;
        if (const size_t at = setup.find("spaceless"); at != std::string::npos)   // a transform moved by 3, a point at y 4
            setup.replace(at, 9, "createNode transform -n t; setAttr t.t 3 0 0; connectAttr t.worldMatrix n.inMatrix1;"
                                 "setAttr n.point2 0 4 0");
        mel(setup);
        const auto found = values(mel("getAttr n." + std::string(c.output)));
        ASSERT_EQ(int(found.size()), c.count) << c.when;
        for (int i = 0; i < c.count; ++i)
            EXPECT_NEAR(found[size_t(i)], c.value[i], 1e-6) << c.when << ", value " << i;
    }
}

TEST_F(MathNodes, MatricesComposeMultiplyAndDecomposeBack)
{
    // x by 90 degrees takes y to z: the point (0, 1, 0), scaled by 2, turned and moved, ends at (1, 2, 5)
    mel("createNode composeMatrix -n c; setAttr c.it 1 2 3; setAttr c.ir 90 0 0; setAttr c.is 1 2 1;"
        "createNode vectorProduct -n v; setAttr v.op 4; setAttr v.i1 0 1 0; connectAttr c.omat v.matrix");
    const auto point = values(mel("getAttr v.output"));
    EXPECT_NEAR(point[0], 1, 1e-6);
    EXPECT_NEAR(point[1], 2, 1e-6);
    EXPECT_NEAR(point[2], 5, 1e-6);

    mel("createNode composeMatrix -n b; setAttr b.it 10 0 0; createNode multMatrix -n m; connectAttr c.omat m.matrixIn[0];"
        "connectAttr b.omat m.matrixIn[1]; createNode decomposeMatrix -n d; connectAttr m.matrixSum d.inputMatrix");
    const struct { const char* output; double value[3]; } expected[] = {
        {"outputTranslate", {11, 2, 3}}, {"outputRotate", {90, 0, 0}}, {"outputScale", {1, 2, 1}}, {"outputShear", {0, 0, 0}}};
    for (const auto& e : expected) {
        const auto found = values(mel("getAttr d." + std::string(e.output)));
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(found[size_t(i)], e.value[i], 1e-9) << e.output << i;
    }
    EXPECT_NEAR(num("getAttr d.outputQuatX"), std::sqrt(0.5), 1e-12);
    // from the quaternion back to the same rotation
    mel("createNode composeMatrix -n q; setAttr q.useEulerRotation 0; connectAttr d.outputQuat q.inputQuat;"
        "createNode decomposeMatrix -n e; connectAttr q.omat e.imat; setAttr e.ro 5");
    EXPECT_NEAR(num("getAttr e.outputRotateX"), 90, 1e-9);
}

TEST_F(MathNodes, CurveReadings)
{
    mel("curve -d 1 -p 0 0 0 -p 3 0 0 -p 3 4 0 -n c; createNode curveInfo -n i; connectAttr c.worldSpace i.inputCurve;"
        "setAttr c.sx 2; createNode pointOnCurveInfo -n p; connectAttr c.worldSpace p.inputCurve; setAttr p.parameter 1.5");
    EXPECT_NEAR(num("getAttr i.arcLength"), 10, 1e-6);   // 6 along x, 4 along y
    const auto at = values(mel("getAttr p.position"));
    EXPECT_NEAR(at[0], 6, 1e-9);
    EXPECT_NEAR(at[1], 2, 1e-9);
    EXPECT_NEAR(num("getAttr p.normalizedTangentY"), 1, 1e-9);
    mel("setAttr p.turnOnPercentage 1; setAttr p.parameter 7");   // past the end: the end
    EXPECT_NEAR(num("getAttr p.positionY"), 4, 1e-9);
}

}  // namespace

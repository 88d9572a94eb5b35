// Arithmetic on arrays: what each node makes of kinds, lengths and switches. Expected values by hand.
#include <cstdlib>
#include <limits>

#include "arrays.h"

using namespace scene;
using ArrayArithmetic = scene::Test;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

const Array kNothing;
const Array kThreeVectors{'v', {1, 2, 3, 4, 5, 6, 7, 8, 9}};

} // namespace

TEST_F(ArrayArithmetic, Remap)
{
    expectArrays({
        {"off: unchanged", "remapArray", "", {{"inArray", {'d', {-1, 0.25, 3}}}}, {'d', {-1, 0.25, 3}}},
        {"absolute before the shift", "remapArray", "setAttr n.absolute 1; setAttr n.shift 1; setAttr n.shiftValue -2",
         {{"inArray", {'d', {-1, 3}}}}, {'d', {-1, 1}}},
        {"no offset by the minimum", "remapArray", "setAttr n.remap 1; setAttr n.remapMin 0.2; setAttr n.remapMax 0.7",
         {{"inArray", {'d', {0, 1, 2}}}}, {'d', {0, 0.5, 1}}},
        {"shift before remap", "remapArray",
         "setAttr n.remap 1; setAttr n.remapMax 3; setAttr n.shift 1; setAttr n.shiftValue 1", {{"inArray", {'d', {1}}}}, {'d', {6}}},
        {"clamp", "remapArray", "setAttr n.clamp 1", {{"inArray", {'d', {-1, 0.5, 2, kNan}}}}, {'d', {0, 0.5, 1, kNan}}},
        {"the high bound has the last word", "remapArray", "setAttr n.clamp 1; setAttr n.clampMin 3; setAttr n.clampMax 2",
         {{"inArray", {'d', {-1, 2.5, 9}}}}, {'d', {2, 2, 2}}},
        {"vectors to a flat array", "remapArray", "", {{"inArray", kThreeVectors}}, {'d', {1, 2, 3, 4, 5, 6, 7, 8, 9}}},
        {"points lose w", "remapArray", "setAttr n.outArrayType 2", {{"inArray", {'p', {1, 2, 3, 0.5}}}}, {'p', {1, 2, 3, 1}}},
        {"a tail that makes no vector goes", "remapArray", "setAttr n.outArrayType 1",
         {{"inArray", {'d', {1, 2, 3, 4, 5}}}}, {'v', {1, 2, 3}}},
        {"doubles to points", "remapArray", "setAttr n.outArrayType 2", {{"inArray", {'d', {1, 2, 3, 4, 5, 6, 7}}}},
         {'p', {1, 2, 3, 1, 4, 5, 6, 1}}},
        {"ints are cut", "remapArray", "setAttr n.outArrayType 3", {{"inArray", {'d', {1.9, -1.9, 1e300, kNan}}}},
         {'i', {1, -1, 2147483647, 0}}},
        {"ints become doubles", "remapArray", "setAttr n.shift 1; setAttr n.shiftValue 0.5", {{"inArray", {'i', {1, -2}}}},
         {'d', {1.5, -1.5}}},
        {"unconnected: empty, of the kind chosen", "remapArray", "setAttr n.outArrayType 1", {}, {'v', {}}},
        {"no effect computes as usual", "remapArray", "setAttr n.nodeState 1; setAttr n.absolute 1",
         {{"inArray", {'d', {-1}}}}, {'d', {1}}},
    });
}

TEST_F(ArrayArithmetic, RemapThroughARamp)
{
    expectArrays({
        {"a new ramp inverts, by the largest value", "remapArray", "setAttr n.useRamp 1",
         {{"inArray", {'d', {0, 1, 4, -4}}}}, {'d', {1, 0.75, 0, 1}}},
        {"largest after the other steps", "remapArray", "setAttr n.useRamp 1; setAttr n.absolute 1",
         {{"inArray", {'d', {2, -4}}}}, {'d', {0.5, 0}}},
        {"the tail counts for the largest value", "remapArray", "setAttr n.useRamp 1; setAttr n.outArrayType 1",
         {{"inArray", {'d', {1, 0, 0, 2}}}}, {'v', {0.5, 1, 1}}},
        {"zeros: the ramp's answer to no number", "remapArray", "setAttr n.useRamp 1", {{"inArray", {'d', {0, 0}}}}, {'d', {1, 1}}},
        {"clamp comes last", "remapArray", "setAttr n.useRamp 1; setAttr n.clamp 1; setAttr n.clampMax 0.5",
         {{"inArray", {'d', {0, 1}}}}, {'d', {0.5, 0}}},
    });
    // the longest vector has length 5; a ramp of red up, green down, blue 1/2: each component at its own value
    run("file -force -new; createNode remapArray -name n; setAttr n.useRamp 1;"
        "setAttr n.ramp[0].ramp_Color 0 1 0.5; setAttr n.ramp[1].ramp_Color 1 0 0.5");
    give("n.inArray", {'v', {3, 4, 0, 0, 0, 5}});
    const Array out = read("n.outArray");
    const std::vector<double> expected = {0.6, 0.2, 0.5, 0, 1, 0.5};
    ASSERT_EQ(out.values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(out.values[i], expected[i], 1e-6) << i;
}

TEST_F(ArrayArithmetic, Channels)
{
    const Array three{'d', {1, 2, 3}}, five{'d', {10, 20, 30, 40, 50}};
    expectArrays({
        {"the higher input wins, the longer one goes on", "arrayToArray", "setAttr n.readX2 1; setAttr n.readY1 0; setAttr n.readZ1 0",
         {{"inArray1", three}, {"inArray2", five}}, {'v', {10, 0, 0, 20, 0, 0, 30, 0, 0, 40, 0, 0, 50, 0, 0}}},
        {"where the higher one ends the lower one goes on", "arrayToArray",
         "setAttr n.readX2 1; setAttr n.readY1 0; setAttr n.readZ1 0",
         {{"inArray1", five}, {"inArray2", three}}, {'v', {1, 0, 0, 2, 0, 0, 3, 0, 0, 40, 0, 0, 50, 0, 0}}},
        {"vectors and an alpha make points", "arrayToArray", "setAttr n.outDataType 1",
         {{"inArray1", {'v', {1, 2, 3, 4, 5, 6}}}, {"inArray2", {'d', {0.5}}}}, {'p', {1, 2, 3, 0.5, 4, 5, 6, 0}}},
        {"w of a vector is 0 and still wins", "arrayToArray",
         "setAttr n.outDataType 1; setAttr n.readW3 1; setAttr n.readX1 0; setAttr n.readY1 0; setAttr n.readZ1 0",
         {{"inArray2", {'d', {7}}}, {"inArray3", {'v', {1, 2, 3}}}}, {'p', {0, 0, 0, 0}}},
        {"channels of points", "arrayToArray", "setAttr n.readX4 1; setAttr n.readZ4 1; setAttr n.outDataType 1",
         {{"inArray1", {'v', {1, 2, 3}}}, {"inArray4", {'p', {10, 20, 30, 40}}}}, {'p', {10, 2, 30, 0}}},
        {"nothing connected", "arrayToArray", "", {}, {'v', {}}},
        {"off: nothing is written", "arrayToArray", "setAttr n.envelope 0", {{"inArray1", three}}, kNothing},
    });
}

TEST_F(ArrayArithmetic, Blend)
{
    const char *      lengths = "Both arrays need to be of an equal length.", *types = "Invalid input types.";
    expectArrays({
        {"1 is the first input", "arrayBlend", "setAttr n.blend 0.75", {{"inArray1", {'d', {4, 8}}}, {"inArray2", {'d', {0, 16}}}},
         {'d', {3, 10}}},
        {"ints are cut", "arrayBlend", "", {{"inArray1", {'i', {1, -1}}}, {"inArray2", {'i', {2, -2}}}}, {'i', {1, -1}}},
        {"add: int and double", "arrayBlend", "setAttr n.operation 1", {{"inArray1", {'i', {1}}}, {"inArray2", {'d', {0.5}}}}, {'d', {1.5}}},
        {"minus: a scalar a vector", "arrayBlend", "setAttr n.operation 2",
         {{"inArray1", {'v', {1, 2, 3, 4, 5, 6}}}, {"inArray2", {'i', {1, 2}}}}, {'v', {0, 1, 2, 2, 3, 4}}},
        {"minus: first input first", "arrayBlend", "setAttr n.operation 2",
         {{"inArray1", {'d', {1, 2}}}, {"inArray2", {'v', {1, 2, 3, 4, 5, 6}}}}, {'v', {0, -1, -2, -2, -3, -4}}},
        {"multiply: three scalars a vector", "arrayBlend", "setAttr n.operation 3",
         {{"inArray1", {'d', {1, 2, 3}}}, {"inArray2", {'v', {4, 5, 6}}}}, {'v', {4, 10, 18}}},
        {"multiply: vectors by component", "arrayBlend", "setAttr n.operation 3",
         {{"inArray1", {'v', {1, 2, 3}}}, {"inArray2", {'v', {4, 5, 6}}}}, {'v', {4, 10, 18}}},
        {"divide by zero", "arrayBlend", "setAttr n.operation 4",
         {{"inArray1", {'d', {1, -1, 0}}}, {"inArray2", {'d', {0, 0, 0}}}}, {'d', {HUGE_VAL, -HUGE_VAL, kNan}}},
        {"divide ints: cut, and no trap", "arrayBlend", "setAttr n.operation 4",
         {{"inArray1", {'i', {-7, 1, 0, -2147483648.0}}}, {"inArray2", {'i', {2, 0, 0, -1}}}}, {'i', {-3, 2147483647, 0, 2147483647}}},
        {"two empty ones", "arrayBlend", "", {{"inArray1", {'v', {}}}, {"inArray2", {'v', {}}}}, {'v', {}}},
        {"lengths", "arrayBlend", "", {{"inArray1", {'d', {1}}}, {"inArray2", {'d', {1, 2}}}}, kNothing, lengths},
        {"two vector arrays have no threes", "arrayBlend", "setAttr n.operation 1",
         {{"inArray1", {'v', {1, 2, 3}}}, {"inArray2", kThreeVectors}}, kNothing, lengths},
        {"blend of two kinds", "arrayBlend", "", {{"inArray1", {'i', {1}}}, {"inArray2", {'d', {1}}}}, kNothing,
         "Blend operation requires both input data types to be the same."},
        {"one input", "arrayBlend", "setAttr n.operation 1", {{"inArray1", {'d', {1}}}}, kNothing, types},
        {"blocked: it does not look", "arrayBlend", "setAttr n.nodeState 2; setAttr n.operation 1",
         {{"inArray1", {'d', {1}}}, {"inArray2", {'d', {2}}}}, {'d', {3}}},
    });
}

TEST_F(ArrayArithmetic, Create)
{
    const std::string values = "setAttr n.length 2; setAttr n.defaultValueX 1.75; setAttr n.defaultValueY 2;"
                               "setAttr n.defaultValueZ 3; setAttr n.defaultValueW 4;";
    const Array byType[] = {{'i', {1, 1}}, {'d', {1.75, 1.75}}, {'d', {1.75, 2, 1.75, 2}}, {'d', {1.75, 2, 3, 1.75, 2, 3}},
                            {'v', {1.75, 2, 3, 1.75, 2, 3}}, {'d', {1.75, 2, 3, 4, 1.75, 2, 3, 4}}};
    for (int type = 0; type < 6; ++type) {
        const std::string choice = "setAttr n.outputType " + std::to_string(type) + ";";
        expectArrays({{"by type", "createArray", (values + choice).c_str(), {}, byType[type]},
                      {"no length", "createArray", choice.c_str(), {}, {byType[type].kind, {}}}});
    }
}

TEST_F(ArrayArithmetic, CreateAlongRamps)
{
    expectArrays({
        {"element i at i / length", "createArray", "setAttr n.length 4; setAttr n.outputType 1; setAttr n.useRamps 1", {},
         {'d', {0, 0.25, 0.5, 0.75}}},
        {"W has a ramp of its own", "createArray",
         "setAttr n.length 2; setAttr n.outputType 5; setAttr n.useRamps 1; removeMultiInstance n.rampDefaultValueW[1];"
         "setAttr n.rampDefaultValueW[0].rampDefaultValueW_FloatValue 0.25;"
         "setAttr n.rampDefaultValueXYZ[1].rampDefaultValueXYZ_Color 1 0.5 0", {},
         {'d', {0, 0, 0, 0.25, 0.5, 0.25, 0, 0.25}}},
        {"no effect: nothing is written", "createArray", "setAttr n.length 2; setAttr n.nodeState 1", {}, kNothing},
        {"more than memory", "createArray", "setAttr n.length 2147483647", {}, {'i', {}}, "An array of 2147483647 elements is too long."},
    });
}

TEST_F(ArrayArithmetic, MergeAndCombine)
{
    const Array three{'d', {1, 2, 3}}, five{'d', {10, 20, 30, 40, 50}}, vectors{'v', {1, 2, 3, 4, 5, 6}};
    expectArrays({
        {"as long as the longest", "mergeArrays", "", {{"inArrays[0].inArray", three}, {"inArrays[1].inArray", five}},
         {'d', {11, 22, 33, 40, 50}}},
        {"multipliers, gaps between indices", "mergeArrays", "setAttr n.inArrays[2].multiplier 2; setAttr n.inArrays[7].multiplier -0.5",
         {{"inArrays[2].inArray", five}, {"inArrays[7].inArray", three}}, {'d', {19.5, 39, 58.5, 80, 100}}},
        {"no inputs", "mergeArrays", "", {}, {'d', {}}},
        {"vectors", "mergeVectorArrays", "setAttr n.inArrays[1].multiplier 10",
         {{"inArrays[0].inArray", vectors}, {"inArrays[1].inArray", {'v', {1, 1, 1}}}}, {'v', {11, 12, 13, 4, 5, 6}}},
        {"the first kind decides", "combineArrays", "",
         {{"inArrays[0]", three}, {"inArrays[1]", vectors}, {"inArrays[4]", five}}, {'d', {1, 2, 3, 10, 20, 30, 40, 50}}},
        {"ints", "combineArrays", "", {{"inArrays[3]", {'i', {1}}}, {"inArrays[1]", {'i', {2, 3}}}}, {'i', {2, 3, 1}}},
        {"no elements", "combineArrays", "", {}, kNothing},
        {"off", "combineArrays", "setAttr n.envelope 0", {{"inArrays[0]", three}}, kNothing},
        {"unconnected elements", "combineArrays", "getAttr n.inArrays[0]", {}, {'d', {}}},
    });
    run("file -force -new; createNode combineArrays -name n");
    give("n.inArrays[0]", vectors);
    give("n.inArrays[1]", kThreeVectors);
    EXPECT_EQ(plug("n.outCount").asInt(), 5);   // asked for first
    EXPECT_EQ(read("n.outArray").values.size(), 15u);
}

TEST_F(ArrayArithmetic, ResizeAndDecimate)
{
    const Array five{'d', {10, 20, 30, 40, 50}};
    expectArrays({
        {"cut", "resizeArray", "setAttr n.length 2", {{"inArray", five}}, {'d', {10, 20}}},
        {"pad", "resizeArray", "setAttr n.length 3", {{"inArray", {'v', {1, 2, 3}}}}, {'v', {1, 2, 3, 0, 0, 0, 0, 0, 0}}},
        {"from nothing", "resizeArray", "setAttr n.length 2", {{"inArray", {'i', {}}}}, {'i', {0, 0}}},
        {"unconnected", "resizeArray", "setAttr n.length 2", {}, kNothing},
        {"1 of 2: the last one does not get in", "decimateArray", "", {{"inArray", five}}, {'d', {10, 30}}},
        {"2 of 3", "decimateArray", "setAttr n.stepA 2; setAttr n.stepB 3",
         {{"inArray", {'i', {0, 1, 2, 3, 4, 5, 6, 7}}}}, {'i', {0, 1, 3, 4}}},
        {"fewer than a step", "decimateArray", "setAttr n.stepA 2; setAttr n.stepB 9", {{"inArray", five}}, {'d', {10}}},
        {"vectors", "decimateArray", "", {{"inArray", {'v', {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 1, 1}}}}, {'v', {1, 2, 3, 7, 8, 9}}},
        {"floats, all", "decimateArray", "setAttr n.stepA 3; setAttr n.stepB 3", {{"inArray", {'f', {1, 2, 3}}}}, {'f', {1, 2, 3}}},
        {"an empty one: one zero", "decimateArray", "", {{"inArray", {'v', {}}}}, {'v', {0, 0, 0}}},
    });
    // steps out of order are put right in the node's own values
    run("file -force -new; createNode decimateArray -name n; setAttr n.stepA 4; setAttr n.stepB 1");
    give("n.inArray", five);
    EXPECT_EQ(read("n.outArray"), (Array{'d', {10, 20, 30, 40}}));
    EXPECT_EQ(plug("n.stepB").asInt(), 4);
    // points reach it by way of a generic output
    run("file -force -new; createNode remapArray -name r; setAttr r.outArrayType 2; createNode decimateArray -name n;"
        "connectAttr r.outArray n.inArray");
    EXPECT_EQ(read("n.outArray"), (Array{'p', {0, 0, 0, 1}}));
    give("r.inArray", kThreeVectors);
    EXPECT_EQ(read("n.outArray"), (Array{'p', {1, 2, 3, 1}}));
}

TEST_F(ArrayArithmetic, Randomize)
{
    run("createNode randomizeArray -name n; setAttr n.randomMinX -1; setAttr n.randomMaxX 3; setAttr n.randomMaxY 2");
    const Array in{'v', {1, 2, 3, 4, 5, 6}};
    give("n.inArray", in);
    srand48(12345);   // the C library's sequence: one number a component, X, Y, Z
    std::vector<double> expected;
    for (std::size_t i = 0; i < 6; i += 3) {
        expected.push_back(in.values[i] + drand48() * 4 - 1);
        expected.push_back(in.values[i + 1] + drand48() * 2);
        expected.push_back(in.values[i + 2] + drand48() * 0);
    }
    const Array once = read("n.outArray");
    EXPECT_EQ(once, (Array{'v', expected}));
    run("setAttr n.seed 1; setAttr n.seed 12345");
    EXPECT_EQ(read("n.outArray"), once);
    run("setAttr n.seed 1");
    EXPECT_FALSE(read("n.outArray") == once);

    expectArrays({
        {"no range", "randomizeArray", "setAttr n.operation 1", {{"inArray", {'d', {1, 2}}}}, {'d', {1, 2}}},
        {"scalars look at X alone", "randomizeArray", "setAttr n.operation 1; setAttr n.randomMaxY 5", {{"inArray", {'i', {1}}}}, {'i', {1}}},
        {"a maximum below the minimum is raised", "randomizeArray",
         "setAttr n.operation 1; setAttr n.randomMinX 2; setAttr n.randomMaxX -9", {{"inArray", {'d', {1, 3}}}}, {'d', {2, 6}}},
        {"of ints the random number is cut", "randomizeArray", "setAttr n.randomMinX 2.75; setAttr n.randomMaxX 2.75",
         {{"inArray", {'i', {1, -3}}}}, {'i', {3, -1}}},
        {"floats", "randomizeArray", "setAttr n.randomMinX 0.5; setAttr n.randomMaxX 0.5", {{"inArray", {'f', {1}}}}, {'f', {1.5}}},
        {"unconnected", "randomizeArray", "", {}, kNothing},
    });
}

/// Nodes work on blocks of long arrays: what they give must not show it.
TEST_F(ArrayArithmetic, LongArrays)
{
    Array vectors{'v', {}}, doubles{'d', {}}, shifted{'p', {}}, sum{'d', {}};
    for (int i = 0; i < 3 * 5001; ++i)
        vectors.values.push_back(i * 0.5);
    for (int i = 0; i < 9001; ++i)
        doubles.values.push_back(i);
    for (std::size_t i = 0; i < vectors.values.size(); i += 3)
        shifted.values.insert(shifted.values.end(), {vectors.values[i] + 1, vectors.values[i + 1] + 1, vectors.values[i + 2] + 1, 1});
    Array few{'d', {doubles.values.begin(), doubles.values.begin() + 4100}};
    for (int i = 0; i < 9001; ++i)
        sum.values.push_back(i < 4100 ? 3.0 * i : 2.0 * i);
    Array tail{'v', {doubles.values.begin(), doubles.values.begin() + 9000}};   // 9001 make 3000 vectors
    expectArrays({
        {"remap", "remapArray", "setAttr n.shift 1; setAttr n.shiftValue 1; setAttr n.outArrayType 2", {{"inArray", vectors}}, shifted},
        {"remap with a tail", "remapArray", "setAttr n.outArrayType 1", {{"inArray", doubles}}, tail},
        {"merge, short first", "mergeArrays", "setAttr n.inArrays[1].multiplier 2",
         {{"inArrays[0].inArray", few}, {"inArrays[1].inArray", doubles}}, sum},
        {"merge, long first", "mergeArrays", "setAttr n.inArrays[0].multiplier 2",
         {{"inArrays[0].inArray", doubles}, {"inArrays[1].inArray", few}}, sum},
    });
}

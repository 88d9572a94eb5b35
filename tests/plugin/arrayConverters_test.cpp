// Arrays to and from multis, colours, transforms, particle data, and from one frame to the next. Values by hand.
#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>

#include "arrays.h"

using namespace scene;
using ArrayConverters = scene::Test;

namespace {

const Array kNothing;
const Array kTwelve{'d', {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};

std::vector<double> weights()
{
    std::vector<double> values;
    MPlug               list = plug("n.outWeightList[0].weight");
    list.evaluateNumElements();
    for (unsigned i = 0; i < list.numElements(); ++i)
        values.push_back(list.elementByPhysicalIndex(i).asDouble());
    return values;
}

} // namespace

TEST_F(ArrayConverters, MultiToArray)
{
    const char* sparse = "setAttr n.inWeightList[3].weights[0] 1; setAttr n.inWeightList[3].weights[4] 2;"
                         "setAttr n.inWeightList[3].weights[9] 3; setAttr n.inWeightList[5].weights[0] 7;";
    expectArrays({
        {"the first list, without its gaps", "multiToArray", sparse, {}, {'d', {1, 2, 3}}},
        {"off", "multiToArray", (std::string(sparse) + "setAttr n.envelope 0").c_str(), {}, {'d', {}}},
        {"no list", "multiToArray", "", {}, kNothing},
    });
}

TEST_F(ArrayConverters, ArrayToMulti)
{
    run("createNode arrayToMulti -name n");
    give("n.inWeightPP", {'d', {1, 2, 3}});
    EXPECT_EQ(weights(), (std::vector<double>{1, 2, 3}));
    EXPECT_DOUBLE_EQ(plug("n.outWeightList[0].weight[1]").asDouble(), 2);
    give("n.inWeightPP", {'d', {5}});                     // a shorter array leaves nothing behind
    EXPECT_EQ(weights(), (std::vector<double>{5}));
    give("n.inWeightPP", {'d', {}});
    EXPECT_EQ(weights(), (std::vector<double>{}));
    give("n.inWeightPP", {'d', {1, 2}});
    EXPECT_EQ(weights().size(), 2u);
    run("setAttr n.envelope 0");
    weights();
    EXPECT_EQ(plug("n.outWeightList").numElements(), 0u);

    // the values drive what is connected to them, a deformer's weights for one
    run("setAttr n.envelope 1; createNode multiToArray -name back;"
        "connectAttr n.outWeightList[0].weight[0] back.inWeightList[0].weights[0];"
        "connectAttr n.outWeightList[0].weight[1] back.inWeightList[0].weights[1]");
    EXPECT_EQ(read("back.outArray"), (Array{'d', {1, 2}}));
    give("n.inWeightPP", {'d', {3, 4}});
    EXPECT_EQ(read("back.outArray"), (Array{'d', {3, 4}}));
    give("n.inWeightPP", {'d', {9}});                     // what is connected stays so
    EXPECT_EQ(read("back.outArray"), (Array{'d', {9, 0}}));
    give("n.inWeightPP", {'d', {3, 4}});
    EXPECT_EQ(read("back.outArray"), (Array{'d', {3, 4}}));
}

TEST_F(ArrayConverters, SplitRgba)
{
    const Array eight{'d', {1, 2, 3, 4, 5, 6, 7, 8}};
    expectArrays({
        {"12 as rgb", "splitRgba", "setAttr n.green 1", {{"inArray", kTwelve}}, {'d', {2, 5, 8, 11}}},
        {"12 as rgba", "splitRgba", "setAttr n.green 1; setAttr n.inArrayType 1", {{"inArray", kTwelve}}, {'d', {2, 6, 10}}},
        {"8 is rgba whatever the type says", "splitRgba", "setAttr n.red 1; setAttr n.alpha 1", {{"inArray", eight}}, {'d', {1, 4, 5, 8}}},
        {"5 is nothing", "splitRgba", "setAttr n.red 1", {{"inArray", {'d', {1, 2, 3, 4, 5}}}}, {'d', {}}},
        {"all of rgb", "splitRgba", "setAttr n.red 1; setAttr n.green 1; setAttr n.blue 1", {{"inArray", kTwelve}}, kTwelve},
        {"three of rgba", "splitRgba", "setAttr n.red 1; setAttr n.green 1; setAttr n.blue 1", {{"inArray", eight}},
         {'d', {1, 2, 3, 5, 6, 7}}},
        {"rgb has no alpha", "splitRgba", "setAttr n.alpha 1", {{"inArray", {'d', {1, 2, 3}}}}, {'d', {}}},
        {"no switch", "splitRgba", "", {{"inArray", kTwelve}}, {'d', {}}},
        {"vectors", "splitRgba", "setAttr n.blue 1", {{"inArray", {'v', {1, 2, 3, 4, 5, 6}}}}, {'d', {3, 6}}},
        {"unconnected", "splitRgba", "setAttr n.blue 1", {}, {'d', {}}},
    });
}

TEST_F(ArrayConverters, ColorAndAlpha)
{
    const char* odd = "Cannot split RGBA PP data to color and alpha. Length of the inRgbaPP array should divide by 4 without reminder.";
    const char* differ = "Input color and alpha arrays have different length. Result will be unpredictable.";
    const Array eight{'d', {1, 2, 3, 4, 5, 6, 7, 8}};
    expectArrays({
        {"colours", "rgbaToColorAndAlpha", "", {{"inRgbaPP", eight}}, {'v', {1, 2, 3, 5, 6, 7}}, "", "outRgbPP"},
        {"alphas", "rgbaToColorAndAlpha", "", {{"inRgbaPP", eight}}, {'d', {4, 8}}, "", "outAlphaPP"},
        {"not by four", "rgbaToColorAndAlpha", "", {{"inRgbaPP", {'d', {1, 2, 3, 4, 5}}}}, {'v', {}}, odd, "outRgbPP"},
        {"off", "rgbaToColorAndAlpha", "setAttr n.envelope 0", {{"inRgbaPP", eight}}, kNothing, "", "outRgbPP"},
        {"both", "colorAndAlphaToRgba", "", {{"inRgbPP", {'v', {1, 2, 3, 5, 6, 7}}}, {"inAlphaPP", {'d', {4, 8}}}}, eight, "", "outRgbaPP"},
        {"few alphas", "colorAndAlphaToRgba", "", {{"inRgbPP", {'v', {1, 2, 3, 5, 6, 7}}}, {"inAlphaPP", {'d', {4}}}},
         {'d', {1, 2, 3, 4, 5, 6, 7, 0}}, differ, "outRgbaPP"},
        {"few colours", "colorAndAlphaToRgba", "", {{"inRgbPP", {'v', {}}}, {"inAlphaPP", {'d', {4}}}}, {'d', {0, 0, 0, 4}}, differ, "outRgbaPP"},
        {"off", "colorAndAlphaToRgba", "setAttr n.envelope 0", {{"inAlphaPP", {'d', {4}}}}, kNothing, "", "outRgbaPP"},
    });
}

TEST_F(ArrayConverters, TransformsWithoutSourceAreLeftOut)
{
    run("createNode transformsToArrays -name n; createNode transform -name a; createNode transform -name b;"
        "setAttr a.translate 1 2 3; setAttr a.scale 2 3 4; setAttr b.translate 4 5 6; setAttr b.rotate 30 40 50;"
        "connectAttr a.worldMatrix[0] n.inTransforms[1].inMatrix; connectAttr b.worldMatrix[0] n.inTransforms[6].inMatrix;"
        "setAttr n.inTransforms[3].inWeight 0.5; setAttr n.inTransforms[6].inWeight 0.25;"
        "setAttr n.inTransforms[6].inColor 0.5 0.25 0.75; setAttr n.inTransforms[6].inAlpha 0.5; setAttr n.inTransforms[1].inRadius 2");
    expectNear(vectors("n.outPositionPP"), {{1, 2, 3}, {4, 5, 6}});
    expectNear(vectors("n.outScalePP"), {{2, 3, 4}, {1, 1, 1}});
    constexpr double kFactor = 57.29582 / (180.0 / 3.14159265358979323846);   // not quite degrees
    expectNear(vectors("n.outRotationPP"), {{0, 0, 0}, MVector(30, 40, 50) * kFactor}, 1e-9);
    EXPECT_EQ(doubles("n.outWeightPP"), (std::vector<double>{1, 0.25}));
    EXPECT_EQ(doubles("n.outRgbaPP"), (std::vector<double>{1, 1, 1, 1, 0.5, 0.25, 0.75, 0.5}));
    EXPECT_EQ(doubles("n.outRadiusPP"), (std::vector<double>{2, 1}));

    // an order in force stays until another one comes: 9 is none
    run("setAttr n.inTransforms[1].inRotateOrder 5; setAttr b.rotateOrder 5; setAttr n.inTransforms[6].inRotateOrder 9");
    expectNear(vectors("n.outRotationPP"), {{0, 0, 0}, MVector(30, 40, 50) * kFactor}, 1e-9);
}

TEST_F(ArrayConverters, DynArrays)
{
    // a source of two channels
    MFnArrayAttrsData fn;
    MObject           data = fn.create();
    fn.doubleArray("mass").append(0.5);
    fn.vectorArray("position").append(MVector(1, 2, 3));
    run("createNode network -name particles; addAttr -longName d -dataType \"dataDynArrayAttrs\" particles;"
        "createNode arrayToDynArrays -name n");
    ASSERT_TRUE(plug("particles.d").setMObject(data));
    run("connectAttr particles.d n.inDynamicArrays; setAttr -type \"string\" n.name weight");
    give("n.inArray", {'d', {7, 8}});

    MObject           out = plug("n.outDynamicArrays").asMObject();
    MFnArrayAttrsData result(out);
    EXPECT_EQ(result.getDoubleData("weight").length(), 2u);
    EXPECT_EQ(result.getVectorData("position").length(), 1u);
    EXPECT_EQ(plug("n.existingNames").asString(), MString("mass position weight"));
    EXPECT_EQ(MFnArrayAttrsData(data).count(), 2u);                      // the source has what it had

    // names that do not exist use up no element
    run("setAttr -type \"string\" n.outputNames \"weight  nothing position\";"
        "createNode resizeArray -name a; connectAttr n.outArrays[2] a.inArray; setAttr a.length 3;"
        "createNode resizeArray -name b; connectAttr n.outArrays[5] b.inArray; setAttr b.length 1");
    EXPECT_EQ(read("a.outArray"), (Array{'d', {7, 8, 0}}));
    EXPECT_EQ(read("b.outArray"), (Array{'v', {1, 2, 3}}));

    // a kind that is no channel, and off: the data passes through
    give("n.inArray", {'i', {4}});
    run("setAttr -type \"string\" n.name mass");                         // doubles: the name is taken
    out = plug("n.outDynamicArrays").asMObject();
    EXPECT_EQ(MFnArrayAttrsData(out).getDoubleData("mass").length(), 1u);
    run("setAttr -type \"string\" n.name other; setAttr n.envelope 0");
    out = plug("n.outDynamicArrays").asMObject();
    EXPECT_EQ(MFnArrayAttrsData(out).count(), 2u);
    run("setAttr n.envelope 1; disconnectAttr particles.d n.inDynamicArrays");
    out = plug("n.outDynamicArrays").asMObject();
    EXPECT_EQ(MFnArrayAttrsData(out).getIntData("other").length(), 1u);
}

namespace {

/// The container's output after each of the frames.
std::vector<Array> overFrames(const std::string& settings, const Array& in, std::initializer_list<int> frames)
{
    run("file -force -new; createNode arrayDataContainer -name n; setAttr n.startTime 1; setAttr n.endTime 10;" + settings);
    give("n.inArray", in);
    std::vector<Array> results;
    for (int frame : frames) {
        run("setAttr n.inTime " + std::to_string(frame));
        results.push_back(read("n.outArray"));
    }
    return results;
}

std::vector<Array> scalars(std::initializer_list<double> values)
{
    std::vector<Array> arrays;
    for (double v : values)
        arrays.push_back({'d', {v}});
    return arrays;
}

} // namespace

TEST_F(ArrayConverters, Accumulation)
{
    struct Case { const char *when, *settings; double in; std::vector<Array> expected; };
    const Case cases[] = {
        // the value that is carried over never exceeds 1: 0.5, 0.4 + 0.5, 0.8 + 0.5, 1 + 0.5; reset at frame 1 and past the end
        {"plus with a sink", "setAttr n.sink 0.1", 0.5, scalars({0.5, 0.9, 1.3, 1.5, 1.5, 0.5, 0.9, 0.5})},
        {"minus, not clamped", "setAttr n.mode 1; setAttr n.clamp 0", 0.5, scalars({0.5, 0, -0.5, -1, -1.5, 0.5, 0, 0.5})},
        {"max sinks back to the input", "setAttr n.mode 3; setAttr n.sink 1", 0.25, scalars({0.25, 0.25, 0.25, 0.25, 0.25, 0.25, 0.25, 0.25})},
        {"the base stays", "setAttr n.mode 2; setAttr n.sink 0.25; setAttr n.baseValue 0.5; setAttr n.clamp 0", 0.5,
         scalars({0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5})},
        {"min", "setAttr n.mode 2; setAttr n.sink 0.25", 0.5, scalars({0.5, 0.25, 0, 0, 0, 0.5, 0.25, 0.5})},
    };
    for (const Case& c : cases)
        EXPECT_EQ(overFrames(c.settings, {'d', {c.in}}, {1, 2, 3, 4, 5, 0, 2, 11}), c.expected) << c.when;

    // components go by themselves
    EXPECT_EQ(overFrames("setAttr n.sink 0.5; setAttr n.clampMax 2", {'v', {0, 1, -1}}, {1, 2}).back(), (Array{'v', {0, 1.5, -1}}));
}

TEST_F(ArrayConverters, AccumulationOfOtherLengthsAndKinds)
{
    overFrames("setAttr n.clamp 0", {'d', {1, 2, 3}}, {1});
    Warnings warnings;
    give("n.inArray", {'d', {10}});
    run("setAttr n.inTime 2");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {11, 2, 3}}));
    give("n.inArray", {'d', {1, 1, 1, 9}});
    run("setAttr n.inTime 3");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {12, 3, 4, 0}}));      // past the old ones: as the resize left it
    ASSERT_EQ(warnings.texts.size(), 2u);
    EXPECT_EQ(warnings.texts[0], "n: Length of input array varies. Result may be unpredictable.");
    give("n.inArray", {'v', {1, 2, 3}});
    run("setAttr n.inTime 1");
    read("n.outArray");
    give("n.inArray", {'d', {5}});                                    // vectors before, doubles now: starts anew
    run("setAttr n.inTime 4");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {5}}));
    run("setAttr n.envelope 0; setAttr n.inTime 5");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {5}}));
}

TEST_F(ArrayConverters, CachedFramesAreNotComputedAgain)
{
    EXPECT_EQ(overFrames("setAttr n.clamp 0; setAttr n.frameCache 1", {'d', {1}}, {1, 2, 3, 2, 3, 4}),
              scalars({1, 2, 3, 2, 3, 4}));
    give("n.inArray", {'d', {100}});
    run("setAttr n.inTime 3");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {3}}));
    run("removeMultiInstance n.cache[4]; setAttr n.inTime 4");
    EXPECT_EQ(read("n.outArray"), (Array{'d', {103}}));
    run("setAttr n.inTime -2");                                       // no element for it: computed each time
    EXPECT_EQ(read("n.outArray"), (Array{'d', {100}}));
}

TEST_F(ArrayConverters, TimeDrivesTheContainer)
{
    overFrames("setAttr n.clamp 0; connectAttr time1.outTime n.inTime", {'d', {1}}, {});
    for (int frame = 1; frame <= 4; ++frame) {
        run("currentTime " + std::to_string(frame));
        EXPECT_EQ(read("n.outArray"), (Array{'d', {double(frame)}}));
    }
}

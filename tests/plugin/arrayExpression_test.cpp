// Expressions over bare arrays.
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFloatArray.h>

#include "scene.h"

using namespace scene;
using ArrayExpression = scene::Test;

namespace {

void node(const std::string& settings = "") { run("createNode arrayExpression -name e;" + settings); }
void connect(const std::string& input, const std::string& kind, int count, const std::string& values)
{
    run("connectAttr " + arraySource("a" + input, kind, count, values) + " e." + input);
}
void expression(const std::string& text) { run("setAttr -type \"string\" e.expression \"" + text + "\""); }

std::vector<int> ints(const std::string& name)
{
    MObject          data = plug(name).asMObject();
    MFnIntArrayData  fn(data);
    std::vector<int> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

/// A float array as a source of connections: no command makes one.
std::string floatSource(const std::vector<float>& values)
{
    run("createNode network -name floats; addAttr -longName f -dataType \"floatArray\" floats");
    EXPECT_TRUE(plug("floats.f").setMObject(MFnFloatArrayData().create(MFloatArray(values.data(), unsigned(values.size())))));
    return "floats.f";
}

using Doubles = std::vector<double>;

} // namespace

TEST_F(ArrayExpression, EveryKindKeepsItsType)
{
    node("setAttr e.inTime 2.5");
    connect("inArray", "Int32Array", 3, "1 2 3");
    connect("inArray2", "doubleArray", 3, "0.5 1.5 2.5");
    connect("inArray3", "vectorArray", 3, "1 2 3 4 5 6 7 8 9");
    run("connectAttr " + floatSource({0.25f, 0.5f, 0.75f}) + " e.inArray4");
    expression("$E = $E * 2.9; $E2 = $E2 + $TIME + $FRAME; $EX3 = $EZ3; $EY3 = $ID; $E4 = $E4 + 0.1;");
    EXPECT_EQ(ints("e.outArray"), (std::vector<int>{2, 5, 8}));     // an int variable cuts
    EXPECT_EQ(doubles("e.outArray2"), (Doubles{5, 6, 7}));
    expectNear(vectors("e.outArray3"), {{3, 0, 3}, {6, 1, 6}, {9, 2, 9}});
    MObject           data = plug("e.outArray4").asMObject();
    MFnFloatArrayData fn(data);
    ASSERT_EQ(fn.length(), 3u);
    EXPECT_EQ(fn[2], 0.85f);
    EXPECT_TRUE(plug("e.outArray5").asMObject().isNull());
    run("setAttr arrays.ainArray2 -type \"doubleArray\" 1 100");    // an edit upstream arrives
    EXPECT_EQ(doubles("e.outArray2"), (Doubles{104.5, 4.5, 4.5}));  // and the longest sets the length
}

TEST_F(ArrayExpression, AllTakeTheLengthOfTheLongest)
{
    node();
    connect("inArray", "doubleArray", 3, "1 2 3");
    connect("inArray2", "doubleArray", 5, "10 20 30 40 50");
    expression("$E = $E + $E2 + $COUNT;");
    EXPECT_EQ(doubles("e.outArray"), (Doubles{16, 27, 38, 45, 55}));
    EXPECT_EQ(doubles("e.outArray2"), (Doubles{10, 20, 30, 40, 50}));
}

TEST_F(ArrayExpression, OnlyTheThirdInput)
{
    node();
    connect("inArray3", "doubleArray", 2, "1 2");
    expression("$E3 = -$E3;");
    EXPECT_EQ(doubles("e.outArray3"), (Doubles{-1, -2}));
    EXPECT_TRUE(plug("e.outArray").asMObject().isNull());
}

TEST_F(ArrayExpression, AdditionalVariables)
{
    node("setAttr e.additionalLocalVariables 1");
    connect("inArray", "Int32Array", 3, "4 -2 1");
    connect("inArray2", "vectorArray", 3, "3 4 0 0 0 2 1 0 0");
    connect("inArray3", "doubleArray", 3, "0 0 0");
    run("connectAttr " + floatSource({1.0f, 2.0f, 3.0f}) + " e.inArray4");
    const struct { const char* text; Doubles found; } cases[] = {
        {"float $v[] = {$MIN, $MAX, $SUM}; $E3 = $v[$i];", {-2, 4, 3}},
        {"float $v[] = {$MIN2, $MAX2, $SUM2}; $E3 = $v[$i];", {1, 5, 8}},       // lengths 5, 2, 1
        {"float $v[] = {$PRO, $PRO2, $PRO3}; $E3 = $v[$i];", {0, 0, 0}},        // a product starts at 0 and stays there
        {"float $v[] = {$MIN4, $MAX4, $SUM4}; $E3 = $v[$i];", {999999999.999, -999999999.999, 0}},
    };
    for (const auto& c : cases) {
        expression(c.text);
        EXPECT_EQ(doubles("e.outArray3"), c.found) << c.text;
    }
}

TEST_F(ArrayExpression, EmptyTextsPassTheArrayThrough)
{
    node("setAttr -type \"string\" e.startBlock \"\"; setAttr -type \"string\" e.endBlock \"\"");
    connect("inArray", "doubleArray", 2, "1 2");
    expression("");
    EXPECT_EQ(doubles("e.outArray"), (Doubles{1, 2}));
    run("setAttr -type \"string\" e.startBlock \"float $sum;\"; setAttr -type \"string\" e.endBlock \"$a_ARREXP[0] = $sum;\"");
    expression("$sum = $sum + $E");                 // the text closes its last statement
    EXPECT_EQ(doubles("e.outArray"), (Doubles{3, 2}));
}

TEST_F(ArrayExpression, NodesShareTheGlobals)
{
    node("createNode arrayExpression -name f; connectAttr e.outArray f.inArray;"
         "setAttr -type \"string\" f.expression \"$E = $E * 10;\"");
    connect("inArray", "doubleArray", 2, "1 2");
    expression("$E = $E + 1;");
    EXPECT_EQ(doubles("f.outArray"), (Doubles{20, 30}));
    EXPECT_EQ(doubles("e.outArray"), (Doubles{2, 3}));
}

TEST_F(ArrayExpression, ErrorsShowInTheOutputOnly)
{
    node();
    connect("inArray5", "doubleArray", 2, "1 2");
    expression("$E5 = ;");
    {
        Warnings errors(mirk::message::kError);
        plug("e.outArray5").asMObject();
        EXPECT_FALSE(errors.texts.empty());
    }
    expression("if ($i == 1) error \\\"stop\\\"; $E5 = 7;");
    EXPECT_EQ(doubles("e.outArray5"), (Doubles{7, 2}));      // what was done before the error
}

TEST_F(ArrayExpression, TheEchoIsAsItWas)
{
    node();
    connect("inArray", "doubleArray", 2, "1 2");
    for (const char* state : {"1", "0"}) {
        run(std::string("commandEcho -state ") + state + "; setAttr e.inTime " + state);
        Warnings shown(mirk::message::kInfo);
        plug("e.outArray").asMObject();
        EXPECT_EQ(MGlobal::executeCommandStringResult("commandEcho -q -state"), state);
    }
    run("commandEcho -state 0; setAttr e.nodeState 2; setAttr e.inTime 9");
    EXPECT_EQ(doubles("e.outArray"), (Doubles{1, 2}));       // blocked: the last value stands
}

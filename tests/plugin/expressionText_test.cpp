// The texts that the expression nodes generate, character by character, against whole texts in expressions/.
#include "../../plugin/arrays/arrayExpressionText.h"
#include "../../plugin/arrays/pointText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

std::string expected(const std::string& name)
{
    std::ifstream      in(std::string(MIRK_TEST_DIR) + "/plugin/expressions/" + name + ".mel");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

pointText::Source pointSource(pointText::Block block)
{
    const bool        map = block == pointText::kMap;
    const int         turns = map ? 7 : 3;
    pointText::Source s;
    s.node = "n";
    s.pointCount = "10";
    s.pointCount2 = "4";
    s.count = std::to_string(turns);
    s.outputSize = std::to_string(turns * pointText::outputFactor(block));
    s.time = "2.5";
    s.box = {{"1", "2", "3"}, {"0.5", "-1", "1.5"}};
    s.subsetBox = {{"0.25", "0.5", "0.75"}, {"-2", "-4", "-6"}};
    s.ids = map ? "n.outIdForMapPP" : "n.outIdPP";
    s.mapIds = "n.outIdPM";
    s.positions = "n.outPositionPP", s.positions2 = "n.outPositionPP2";
    s.colors = "n.outRgbaPP", s.colors2 = "n.outRgbaPP2";
    s.weights = "n.inWeightPP", s.weights2 = "n.inWeightPP2";
    s.normals = "n.outNormalPP", s.normals2 = "n.outNormalPP2";
    s.radii = "n.inRadiusPP", s.radii2 = "n.inRadiusPP2";
    s.map = map ? "n.outMapPP" : "n.outSharedMapPP", s.map2 = map ? "n.outMapPP2" : "n.outSharedMapPP2";
    s.startBlock = "// start\n", s.body = "// user", s.endBlock = "// end\n";
    return s;
}

} // namespace

TEST(PointText, EveryBlock)
{
    using namespace pointText;
    const char* const names[kBlockCount] = {"position", "weight", "color", "normal", "radius", "map"};
    for (const Block block : {kPositions, kWeights, kColors, kNormals, kRadii, kMap}) {
        EXPECT_EQ(procedure(block), names[block] + std::string("_POINT"));
        EXPECT_EQ(definition(block, pointSource(block)), expected(names[block])) << names[block];
    }
}

TEST(ArrayExpressionText, EveryKindOfInput)
{
    using namespace arrayExpressionText;
    Source s;
    s.node = "n";
    s.time = "2.5";
    s.inputs[0] = {Kind::kInts, "n.outArray", {"11", "12", "13", "0"}};
    s.inputs[2] = {Kind::kReals, "n.outArray3", {"31", "32", "33", "0"}};   // the second is not connected
    s.inputs[3] = {Kind::kVectors, "n.outArray4", {"41", "42", "43", "0"}};
    s.inputs[4] = {Kind::kReals, "n.outArray5", {"51", "52", "53", "0"}};
    s.startBlock = "// start", s.expression = "// user\n", s.endBlock = "// end\n";
    EXPECT_EQ(text(s), expected("arrays"));
    s.withStatistics = true;
    EXPECT_EQ(text(s), expected("statistics"));
}

TEST(ArrayExpressionText, ReadingBack)
{
    using namespace arrayExpressionText;
    EXPECT_EQ(readBack(0, Kind::kInts), "$ia_ARREXP = $a_ARREXP");
    EXPECT_EQ(readBack(1, Kind::kReals), "$fa_ARREXP = $a2_ARREXP");
    EXPECT_EQ(readBack(0, Kind::kVectors, 'x'), "$fa_ARREXP = $ax_ARREXP");
    EXPECT_EQ(readBack(4, Kind::kVectors, 'z'), "$fa_ARREXP = $az5_ARREXP");
}

TEST(ExpressionText, TextsOfNewNodes)
{
    EXPECT_EQ(pointText::defaultBody(pointText::kColors), "// POINT COLOR (RGBA)\n$R=$CR;\n$G=$CG;\n$B=$CB;\n$A=$ALPHA;");
    EXPECT_EQ(pointText::defaultStartBlock(),
              "// START BLOCK (this code is executed before the main loop)\n//\n"
              "// Be careful with the \"getAttr\" and \"setAttr\" commands,\n"
              "// they may cause cycle loops if you are trying to access\n"
              "// nodes located in the downstream graph of this one.\n");
    EXPECT_EQ(pointText::defaultStartBlock(), arrayExpressionText::defaultStartBlock());
    // one says more than the other, in the spelling that scenes have: after the line that both begin with and "//"
    EXPECT_EQ(pointText::defaultEndBlock().find("// Paceholder for code that will be executed after the main loop.\n"), 60u);
    EXPECT_EQ(arrayExpressionText::defaultEndBlock().find("Paceholder"), std::string::npos);
    EXPECT_EQ(arrayExpressionText::defaultExpression().rfind("// place your code below\n"),
              arrayExpressionText::defaultExpression().size() - 25);
}

// Texts as the expression nodes generate them, run against the arrays of a real node.
#include <map>

#include "support/host_fixture.h"

namespace mirk {
namespace {

using Numbers = std::vector<double>;

class GeneratedText : public test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode network -n gen;");
        add("ids", "Int32Array", "2 1 3");
        add("idsForMap", "Int32Array", "3 1 3 1");
        add("mapIds", "Int32Array", "3 5 6 9");
        add("pos", "pointArray", "4 1 10 100 1 2 20 200 1 3 30 300 1 4 40 400 1");
        add("pos2", "pointArray", "2 -1 -2 -3 1 -4 -5 -6 1");
        add("clr", "doubleArray", "16 0 0.1 0.2 0.3 1 1.1 1.2 1.3 2 2.1 2.2 2.3 3 3.1 3.2 3.3");
        add("clr2", "doubleArray", "0");
        add("wgt", "doubleArray", "2 0.5 0.25");
        add("nml", "vectorArray", "4 0 0 0 1 2 3 2 4 6 3 6 9");
        add("rds", "doubleArray", "4 1 2 3 4");
        add("map", "doubleArray", "8 0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8");
        mel("addAttr -ln unset -dt doubleArray gen;");
    }

    static void add(const std::string& name, const std::string& type, const std::string& value)
    {
        mel("addAttr -ln " + name + " -dt \"" + type + "\" gen; setAttr gen." + name + " -type \"" + type + "\" " + value + ";");
    }

    static std::string get(const std::string& type, const std::string& variable, const std::string& plug)
    {
        return type + " $" + variable + "[]=`getAttr gen." + plug + "`;";
    }

    /// The procedure of one block with the text spliced in.
    static std::string text(const std::string& block, const std::string& user);
};

const char* const kOwnIndices = "int $ox,$oy,$oz,$ox3,$oy3,$oz3,$ox4,$oy4,$oz4,$ou,$ov;\n";
const char* const kPlainIndices = "int $ox3,$oy3,$oz3,$ox4,$oy4,$oz4,$ou,$ov;\n";
const char* const kCommonIndexLine = "$ox3=$IDS[$i]*3;$oy3=$ox3+1;$oz3=$ox3+2;$ox4=$IDS[$i]*4;$oy4=$ox4+1;$oz4=$ox4+2;$oa4=$ox4+3;$ou=$i*2;$ov=$ou+1;\n";
const char* const kTail = "$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,$CR2,$CB2,$CG2,";
const char* const kZeroTail = "$NX=$NY=$NZ=$NX2=$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=";
const char* const kZeroEnd = "$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n";
const char* const kEnd = "$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n";
const std::string kPoint = "],$ID,$MP,";
const std::string kOther = "$TX,$TY,$TZ,$TX2,$TY2,$TZ2,", kZeroOther = "$TX=$TY=$TZ=$TX2=$TY2=$TZ2=";
const std::string kColours = "$R=$G=$B=$A=$R2=$G2=$B2=$A2=";

struct Block { std::string indices, size, declare, zero, index, output; };

const std::map<std::string, Block>& blocks()
{
    static const std::string weights = "$WEIGHT,$WEIGHT2,", zeroWeights = "$WEIGHT=$WEIGHT2=", triple = "$OUTPUT[$ox]=$X;$OUTPUT[$oy]=$Y;$OUTPUT[$oz]=$Z;\n",
                             by3 = std::string("$ox=$i*3;$oy=$ox+1;$oz=$ox+2;") + kCommonIndexLine,
                             by4 = std::string("$ox=$i*4;$oy=$ox+1;$oz=$ox+2;$oa=$ox+3;") + kCommonIndexLine;
    static const std::map<std::string, Block> all = {
        {"position", {kOwnIndices, "8", kPoint + "$X,$Y,$Z," + kOther + weights + kTail + kEnd,
                      "$ID=$X=$Y=$Z=" + kZeroOther + kColours + zeroWeights + kZeroTail + kZeroEnd, by3, triple}},
        {"weight", {kPlainIndices, "2", kPoint + kOther + "$W," + weights + kTail + kEnd,
                    "$ID=" + kZeroOther + kColours + "$W=" + zeroWeights + kZeroTail + kZeroEnd, kCommonIndexLine, "$OUTPUT[$i]=$W;\n"}},
        {"color", {kOwnIndices, "8", kPoint + kOther + "$R,$G,$B,$A,$R2,$G2,$B2,$A2," + weights + "$X,$Y,$Z," + kTail + kEnd,
                   "$ID=" + kZeroOther + kColours + zeroWeights + "$X=$Y=$Z=" + kZeroTail + kZeroEnd, by4,
                   "$OUTPUT[$ox]=$R;$OUTPUT[$oy]=$G;$OUTPUT[$oz]=$B;$OUTPUT[$oa]=$A;\n"}},
        {"normal", {kOwnIndices, "2", kPoint + kOther + weights + "$X,$Y,$Z," + kTail + kEnd,
                    "$ID=" + kZeroOther + kColours + zeroWeights + "$X=$Y=$Z=" + kZeroTail + kZeroEnd, by3, triple}},
        {"radius", {kPlainIndices, "2", kPoint + kOther + "$W,$W2," + weights + kTail + "$R," + kEnd,
                    "$ID=" + kZeroOther + kColours + "$W=$W2=" + zeroWeights + kZeroTail + "$R=" + kZeroEnd, kCommonIndexLine, "$OUTPUT[$i]=$R;\n"}},
        {"map", {kPlainIndices, "6", kPoint + kOther + "$W,$W2," + weights + kTail + "$R,$RADIUS,$RADIUS2,$U,$V,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
                 "$ID=" + kZeroOther + kColours + "$W=$W2=" + zeroWeights + kZeroTail + "$RADIUS=$RADIUS2=$U=$V=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
                 kCommonIndexLine, "$OUTPUT[$ou]=$U;$OUTPUT[$ov]=$V;\n"}},
    };
    return all;
}

std::string GeneratedText::text(const std::string& name, const std::string& user)
{
    const Block& b = blocks().at(name);
    const bool   map = name == "map";
    const auto   own = [&](const char* kind, const char* plain, const char* mine) { return std::string(name == kind ? mine : plain); };
    const std::string count = map ? "3" : "2";
    return "global proc float[] " + name + "_POINT()\n{\nstring $NODE=\"gen\";\nint $PCOUNT=4;\nint $PCOUNT2=2;\nint $CCOUNT=" + count +
           ";\nfloat $FF=2.5;int $F=$FF;\nfloat $BBX=3;float $BBY=30;float $BBZ=300;float $CEX=2.5;float $CEY=25;float $CEZ=250;\n"
           "float $GBX=2;float $GBY=20;float $GBZ=200;float $GCX=3;float $GCY=30;float $GCZ=300;\n" +
           get("int", "IDS", map ? "idsForMap" : "ids") + (map ? get("int", "MAPID", "mapIds") : "int $MAPID[];") + get("float", "POS", "pos") +
           get("float", "POS2", "pos2") + "float $CLR[] = `getAttr gen.clr`;float $CLR2[] = `getAttr gen.clr2`;" + get("float", "WGT", "wgt") +
           get("float", "WGT2", "unset") + get("float", "NML", "nml") + get("float", "NML2", "nml") + get("float", "RDS", "rds") +
           get("float", "RDS2", "unset") + get("float", "MAP", "map") + get("float", "MAP2", "map") + "\n" + b.indices + "float $OUTPUT[" + b.size +
           b.declare + b.zero + "// START\n;\nfor($i=0;$i<" + count + ";$i++)\n{\n$ID=(int)$IDS[$i];" + (map ? "$MP=(float)$i;\n" : "\n") + b.index +
           own("position", "", "$X=") + "$TX=$POS[$ox4];" + own("position", "", "$Y=") + "$TY=$POS[$oy4];" + own("position", "", "$Z=") +
           "$TZ=$POS[$oz4];$TX2=$POS2[$ox4];$TY2=$POS2[$oy4];$TZ2=$POS2[$oz4];\n" +
           own("color", "$CR=$CLR[$ox4];$CG=$CLR[$oy4];$CB=$CLR[$oz4];$ALPHA=$CLR[$oa4];$CR2=$CLR2[$ox4];$CG2=$CLR2[$oy4];$CB2=$CLR2[$oz4];$ALPHA2=$CLR2[$oa4];\n",
               "$R=$CR=$CLR[$ox4];$G=$CG=$CLR[$oy4];$B=$CB=$CLR[$oz4];$A=$ALPHA=$CLR[$oa4];$R2=$CR2=$CLR2[$ox4];$G2=$CG2=$CLR2[$oy4];$B2=$CB2=$CLR2[$oz4];$A2=$ALPHA2=$CLR2[$oa4];\n") +
           own("weight", "", "$W=") + "$WEIGHT=$WGT[$IDS[$i]];$WEIGHT2=$WGT2[$IDS[$i]];\n" +
           own("normal", "$NX=$NML[$ox3];$NY=$NML[$oy3];$NZ=$NML[$oz3];", "$X=$NX=$NML[$ox3];$Y=$NY=$NML[$oy3];$Z=$NZ=$NML[$oz3];") +
           "$NX2=$NML2[$ox3];$NY2=$NML2[$oy3];$NZ2=$NML2[$oz3];\n" +
           own("radius", "$RADIUS=$RDS[$IDS[$i]];$RADIUS2=$RDS2[$IDS[$i]];\n", "$R=$RADIUS=$RDS[$IDS[$i]];$R2=$RADIUS2=$RDS2[$IDS[$i]];\n") +
           own("map", "$MAPU=$MAP[$ou];$MAPV=$MAP[$ov];", "$U=$MAPU=$MAP[$ou];$V=$MAPV=$MAP[$ov];") + "$MAPU2=$MAP2[$ou];$MAPV2=$MAP2[$ov];\n" + user +
           "\n" + b.output + "}\n// END BLOCK\n;\nreturn $OUTPUT;\n}\n";
}

TEST_F(GeneratedText, EveryBlockOfAPointExpression)
{
    struct Case { const char *block, *user; Numbers expected; };
    const Case cases[] = {
        {"position", "// POINT POSITION\n$X=$TX;\n$Y=$TY;\n$Z=$TZ;", {2, 20, 200, 4, 40, 400}},
        {"position", "$X=$TX+$ID;$Y=$TY*2+$WEIGHT;$Z=$TZ+$CR;", {3, 40.25, 201, 7, 80, 403}},   // a weight past the end is 0
        {"position", "$X=$i/2;$Y=$i/2.0;$Z=$PCOUNT2+$TX2+$CR2+$WEIGHT2", {}},                    // no semicolon before the output line
        {"position", "float $len=mag(<<$TX,$TY,0>>)*0;vector $p=<<$X,$Y,$Z>>*2;$X=$p.x+$len;$Y=$p.y;$Z=$OUTPUT[0];", {4, 40, 0, 8, 80, 4}},
        {"position", "$R=0.75;$X=$R;$oa4=1.9;$Y=$oa4;if($i==1)break;", {0.75, 1, 200}},           // undeclared names took their types in the chain
        {"position", "$OUTPUT[9]=1;", {2, 20, 200, 4, 40, 400, 0, 0, 0, 1}},
        {"weight", "$W=$WEIGHT+$NX+$i;", {1.25, 4}},
        {"color", "$R=$CR+$PCOUNT;$A=$ALPHA*$CCOUNT;", {5, 1.1, 1.2, 2.6, 7, 3.1, 3.2, 6.6}},
        {"normal", "$X=$NX2;$Z=$BBZ+$GCY+$NZ;", {1, 2, 333, 3, 6, 339}},
        {"radius", "$R=$RADIUS*$FF+$F;", {7, 12}},
        {"map", "$U=$MAPU+$MAPID[$i];$V=$MAPV*$MP+$TX;", {5.1, 2, 6.3, 4.4, 9.5, 3.2}},
    };
    for (const Case& c : cases)
    {
        if (c.expected.empty())
        {
            EXPECT_NE(melError(text(c.block, c.user)).find("Syntax error"), std::string::npos) << c.user;
            EXPECT_EQ(nums(std::string(c.block) + "_POINT()"), (Numbers{3, 40.25, 201, 7, 80, 403})) << "the definition before stays";
            continue;
        }
        mel(text(c.block, c.user));
        const command::Value got = mel(std::string(c.block) + "_POINT()");
        EXPECT_EQ(got.kind(), command::Value::kFloats);
        const Numbers values = nums(std::string(c.block) + "_POINT()");
        ASSERT_EQ(values.size(), c.expected.size()) << c.block << ": " << c.user;
        for (size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(values[i], c.expected[i], 1e-12) << c.block << " " << i << ": " << c.user;
    }
}

/// One array of an array expression.
struct Input { std::string number, plug; char type; };

std::string arrayText(const std::vector<Input>& inputs, const std::string& user)
{
    std::string global = "int $ia_ARREXP[]; float $fa_ARREXP[];\n", local, load, store;
    for (const auto& [k, plug, type] : inputs)
    {
        const std::string ax = "$ax" + k + "_ARREXP", ay = "$ay" + k + "_ARREXP", az = "$az" + k + "_ARREXP", a = "$a" + k + "_ARREXP", c = "$c" + k + "_ARREXP";
        const std::string counted = " if($count < " + c + ") $count = " + c + ";\n";
        if (type == 'v')
        {
            global += "float " + ax + "[], " + ay + "[], " + az + "[]; $fa_ARREXP = `getAttr gen." + plug + "`; int " + c +
                      " = size($fa_ARREXP)/3; for($i = 0; $i < " + c + "; ++$i){int $ii = $i*3; " + ax + "[$i]=$fa_ARREXP[$ii]; " + ay +
                      "[$i]=$fa_ARREXP[$ii+1]; " + az + "[$i]=$fa_ARREXP[$ii+2];}\n";
            local += "float $EX" + k + ", $EY" + k + ", $EZ" + k + "; global int " + c + "; global float " + ax + "[]; global float " + ay +
                     "[]; global float " + az + "[];" + counted;
            load += "$EX" + k + " = " + ax + "[$i]; $EY" + k + " = " + ay + "[$i]; $EZ" + k + " = " + az + "[$i];\n";
            store += ax + "[$i] = $EX" + k + "; " + ay + "[$i] = $EY" + k + "; " + az + "[$i] = $EZ" + k + ";\n";
            continue;
        }
        const std::string word = type == 'i' ? "int" : "float";
        global += word + " " + a + "[]; " + a + " = `getAttr gen." + plug + "`; int " + c + " = size(" + a + ");\n";
        local += word + " $E" + k + "; global int " + c + "; global " + word + " " + a + "[];" + counted;
        load += "$E" + k + " = " + a + "[$i];\n";
        store += a + "[$i] = $E" + k + ";\n";
    }
    return global + "global proc ARRAYEXPRESSION(){\nint $count; string $NODE = \"gen\"; float $TIME = 3.5; int $FRAME = (int)$TIME;\n" + local +
           "int $COUNT = $count;\n\n// START\n\nfor($i = 0; $i < $count; ++$i){int $ID = $i;\n" + load + "\n" + user + ";\n\n" + store +
           "}\n\n// END\n\n}\n ARRAYEXPRESSION();\n";
}

TEST_F(GeneratedText, ArrayExpressionsShareTheirGlobals)
{
    add("longer", "doubleArray", "5 1.5 2.5 3.5 4.5 5.5");
    // an array of 3 beside one of 5: both come out with 5
    mel(arrayText({{"", "mapIds", 'i'}, {"2", "longer", 'f'}}, "$E = $E + $E2; $E2 = $E2 * $COUNT + $ID + $FRAME;"));
    EXPECT_EQ(mel("$ia_ARREXP = $a_ARREXP").asInts(), (command::Ints{6, 8, 12, 4, 5}));
    EXPECT_EQ(nums("$fa_ARREXP = $a2_ARREXP"), (Numbers{10.5, 16.5, 22.5, 28.5, 34.5}));
    // the same names as another type
    mel(arrayText({{"", "longer", 'f'}}, "$E = $E / 2;"));
    EXPECT_EQ(nums("$fa_ARREXP = $a_ARREXP"), (Numbers{0.75, 1.25, 1.75, 2.25, 2.75}));
    mel(arrayText({{"", "mapIds", 'i'}}, "$E = $E / 2;"));
    EXPECT_EQ(mel("$ia_ARREXP = $a_ARREXP").asInts(), (command::Ints{2, 3, 4}));
    mel(arrayText({{"3", "nml", 'v'}}, "$EX3 = $EY3 + $EZ3; $EY3 = $ID;"));
    EXPECT_EQ(nums("$fa_ARREXP = $ax3_ARREXP"), (Numbers{0, 5, 10, 15}));
    EXPECT_EQ(nums("$fa_ARREXP = $ay3_ARREXP"), (Numbers{0, 1, 2, 3}));
    EXPECT_EQ(nums("$fa_ARREXP = $az3_ARREXP"), (Numbers{0, 3, 6, 9}));
    mel(arrayText({{"", "mapIds", 'i'}}, ""));
    EXPECT_EQ(mel("$ia_ARREXP = $a_ARREXP").asInts(), (command::Ints{5, 6, 9}));
    EXPECT_NE(melError(arrayText({{"3", "mapIds", 'i'}}, "$E += 1;")).find("\"$E\" is an undeclared variable"), std::string::npos);
    EXPECT_NE(melError(arrayText({{"", "mapIds", 'i'}}, "$E = 1 / ($ID - 1);")).find("Divide by zero"), std::string::npos);
    EXPECT_EQ(mel("$ia_ARREXP = $a_ARREXP").asInts(), (command::Ints{-1, 6, 9})) << "what ran before the error stays";
}

}  // namespace
}  // namespace mirk

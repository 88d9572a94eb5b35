#include "pointText.h"

namespace pointText {

namespace {

struct BlockRow
{
    const char* name;
    int         outputFactor, resultFactor;
    const char* indices;        // declared before the result
    const char* declarations;   // from the end of the result's size on
    const char* zeroing;
    const char* indexLine;
    const char* output;
};

constexpr char kTripleIndices[] = "int $ox,$oy,$oz,$ox3,$oy3,$oz3,$ox4,$oy4,$oz4,$ou,$ov;\n";
constexpr char kPlainIndices[] = "int $ox3,$oy3,$oz3,$ox4,$oy4,$oz4,$ou,$ov;\n";
constexpr char kTripleOutput[] = "$OUTPUT[$ox]=$X;$OUTPUT[$oy]=$Y;$OUTPUT[$oz]=$Z;\n";

#define INDEX_LINE                                                                                                  \
    "$ox3=$IDS[$i]*3;$oy3=$ox3+1;$oz3=$ox3+2;$ox4=$IDS[$i]*4;$oy4=$ox4+1;$oz4=$ox4+2;$oa4=$ox4+3;$ou=$i*2;$ov=$ou+1;\n"

// The lists differ in small ways: a reserved size is not the length of a result, and only one block declares the
// colours it zeroes. Texts in scenes lean on which names there are, so these stay as they are.
constexpr BlockRow kBlocks[kBlockCount] = {
    {"position", 4, 3, kTripleIndices,
     "],$ID,$MP,$X,$Y,$Z,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$WEIGHT,$WEIGHT2,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,"
     "$CG,$CR2,$CB2,$CG2,$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$X=$Y=$Z=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$WEIGHT=$WEIGHT2=$NX=$NY=$NZ="
     "$NX2=$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     "$ox=$i*3;$oy=$ox+1;$oz=$ox+2;" INDEX_LINE,
     kTripleOutput},
    {"weight", 1, 1, kPlainIndices,
     "],$ID,$MP,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$W,$WEIGHT,$WEIGHT2,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,"
     "$CR2,$CB2,$CG2,$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$W=$WEIGHT=$WEIGHT2=$NX=$NY=$NZ=$NX2="
     "$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     INDEX_LINE,
     "$OUTPUT[$i]=$W;\n"},
    {"color", 4, 4, kTripleIndices,
     "],$ID,$MP,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$R,$G,$B,$A,$R2,$G2,$B2,$A2,$WEIGHT,$WEIGHT2,$X,$Y,$Z,$NX,$NY,"
     "$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,$CR2,$CB2,$CG2,$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$WEIGHT=$WEIGHT2=$X=$Y=$Z=$NX=$NY=$NZ="
     "$NX2=$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     "$ox=$i*4;$oy=$ox+1;$oz=$ox+2;$oa=$ox+3;" INDEX_LINE,
     "$OUTPUT[$ox]=$R;$OUTPUT[$oy]=$G;$OUTPUT[$oz]=$B;$OUTPUT[$oa]=$A;\n"},
    {"normal", 1, 3, kTripleIndices,
     "],$ID,$MP,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$WEIGHT,$WEIGHT2,$X,$Y,$Z,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,"
     "$CG,$CR2,$CB2,$CG2,$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$WEIGHT=$WEIGHT2=$X=$Y=$Z=$NX=$NY=$NZ="
     "$NX2=$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     "$ox=$i*3;$oy=$ox+1;$oz=$ox+2;" INDEX_LINE,
     kTripleOutput},
    {"radius", 1, 1, kPlainIndices,
     "],$ID,$MP,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$W,$W2,$WEIGHT,$WEIGHT2,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,"
     "$CR2,$CB2,$CG2,$R,$RADIUS,$RADIUS2,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$W=$W2=$WEIGHT=$WEIGHT2=$NX=$NY=$NZ=$NX2="
     "$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$R=$RADIUS=$RADIUS2=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     INDEX_LINE,
     "$OUTPUT[$i]=$R;\n"},
    {"map", 2, 2, kPlainIndices,
     "],$ID,$MP,$TX,$TY,$TZ,$TX2,$TY2,$TZ2,$W,$W2,$WEIGHT,$WEIGHT2,$NX,$NY,$NZ,$NX2,$NY2,$NZ2,$CR,$CB,$CG,"
     "$CR2,$CB2,$CG2,$R,$RADIUS,$RADIUS2,$U,$V,$MAPU,$MAPV,$MAPU2,$MAPV2;\n",
     "$ID=$TX=$TY=$TZ=$TX2=$TY2=$TZ2=$R=$G=$B=$A=$R2=$G2=$B2=$A2=$W=$W2=$WEIGHT=$WEIGHT2=$NX=$NY=$NZ=$NX2="
     "$NY2=$NZ2=$CR=$CB=$CG=$CR2=$CB2=$CG2=$RADIUS=$RADIUS2=$U=$V=$MAPU=$MAPV=$MAPU2=$MAPV2=0;\n",
     INDEX_LINE,
     "$OUTPUT[$ou]=$U;$OUTPUT[$ov]=$V;\n"},
};

#undef INDEX_LINE

/// What the loop reads at each turn, in the order of reading. The block of its own kind starts from what it reads.
struct ReadRow
{
    Block       kind;
    const char *plain, *own;
};
constexpr ReadRow kReads[] = {
    {kPositions,
     "$TX=$POS[$ox4];$TY=$POS[$oy4];$TZ=$POS[$oz4];$TX2=$POS2[$ox4];$TY2=$POS2[$oy4];$TZ2=$POS2[$oz4];\n",
     "$X=$TX=$POS[$ox4];$Y=$TY=$POS[$oy4];$Z=$TZ=$POS[$oz4];$TX2=$POS2[$ox4];$TY2=$POS2[$oy4];$TZ2="
     "$POS2[$oz4];\n"},
    {kColors,
     "$CR=$CLR[$ox4];$CG=$CLR[$oy4];$CB=$CLR[$oz4];$ALPHA=$CLR[$oa4];$CR2=$CLR2[$ox4];$CG2=$CLR2[$oy4];"
     "$CB2=$CLR2[$oz4];$ALPHA2=$CLR2[$oa4];\n",
     "$R=$CR=$CLR[$ox4];$G=$CG=$CLR[$oy4];$B=$CB=$CLR[$oz4];$A=$ALPHA=$CLR[$oa4];$R2=$CR2=$CLR2[$ox4];$G2="
     "$CG2=$CLR2[$oy4];$B2=$CB2=$CLR2[$oz4];$A2=$ALPHA2=$CLR2[$oa4];\n"},
    {kWeights,
     "$WEIGHT=$WGT[$IDS[$i]];$WEIGHT2=$WGT2[$IDS[$i]];\n",
     "$W=$WEIGHT=$WGT[$IDS[$i]];$WEIGHT2=$WGT2[$IDS[$i]];\n"},
    {kNormals,
     "$NX=$NML[$ox3];$NY=$NML[$oy3];$NZ=$NML[$oz3];$NX2=$NML2[$ox3];$NY2=$NML2[$oy3];$NZ2=$NML2[$oz3];\n",
     "$X=$NX=$NML[$ox3];$Y=$NY=$NML[$oy3];$Z=$NZ=$NML[$oz3];$NX2=$NML2[$ox3];$NY2=$NML2[$oy3];$NZ2="
     "$NML2[$oz3];\n"},
    {kRadii,
     "$RADIUS=$RDS[$IDS[$i]];$RADIUS2=$RDS2[$IDS[$i]];\n",
     "$R=$RADIUS=$RDS[$IDS[$i]];$R2=$RADIUS2=$RDS2[$IDS[$i]];\n"},
    {kMap,
     "$MAPU=$MAP[$ou];$MAPV=$MAP[$ov];$MAPU2=$MAP2[$ou];$MAPV2=$MAP2[$ov];\n",
     "$U=$MAPU=$MAP[$ou];$V=$MAPV=$MAP[$ov];$MAPU2=$MAP2[$ou];$MAPV2=$MAP2[$ov];\n"},
};

std::string boxText(const Box& box, const char* const (&names)[6])
{
    std::string text;
    for (int i = 0; i < 6; ++i)
        text += std::string("float $") + names[i] + "=" + (i < 3 ? box.size[i] : box.center[i - 3]) + ";";
    return text + "\n";
}

/// The line that reads the arrays from the node's own plugs.
std::string arraysText(Block block, const Source& s)
{
    const std::string end = "`;float $";
    std::string       text = "int $IDS[]=`getAttr " + s.ids + "`;int $MAPID[]";
    if (block == kMap)
        text += "=`getAttr " + s.mapIds + "`";
    return text + ";float $POS[]=`getAttr " + s.positions + end + "POS2[]=`getAttr " + s.positions2 + end +
           "CLR[] = `getAttr " + s.colors + end + "CLR2[] = `getAttr " + s.colors2 + end + "WGT[]=`getAttr " +
           s.weights + end + "WGT2[]=`getAttr " + s.weights2 + end + "NML[]=`getAttr " + s.normals + end +
           "NML2[]=`getAttr " + s.normals2 + end + "RDS[]=`getAttr " + s.radii + end + "RDS2[]=`getAttr " + s.radii2 +
           end + "MAP[]=`getAttr " + s.map + end + "MAP2[]=`getAttr " + s.map2 + "`;\n";
}

constexpr char kBeware[] = "// Be careful with the \"getAttr\" and \"setAttr\" commands,\n"
                           "// they may cause cycle loops if you are trying to access\n"
                           "// nodes located in the downstream graph of this one.\n";

} // namespace

int outputFactor(Block block) { return kBlocks[block].outputFactor; }
int resultFactor(Block block) { return kBlocks[block].resultFactor; }

std::string procedure(Block block) { return std::string(kBlocks[block].name) + "_POINT"; }

std::string definition(Block block, const Source& s)
{
    const BlockRow& row = kBlocks[block];
    std::string     text = "global proc float[] " + procedure(block) + "()\n{\n";
    text += "string $NODE=\"" + s.node + "\";\n";
    text += "int $PCOUNT=" + s.pointCount + ";\nint $PCOUNT2=" + s.pointCount2 + ";\nint $CCOUNT=" + s.count + ";\n";
    text += "float $FF=" + s.time + ";int $F=$FF;\n";
    text += boxText(s.box, {"BBX", "BBY", "BBZ", "CEX", "CEY", "CEZ"});
    text += boxText(s.subsetBox, {"GBX", "GBY", "GBZ", "GCX", "GCY", "GCZ"});
    text += arraysText(block, s);
    text += row.indices;
    text += "float $OUTPUT[" + s.outputSize + row.declarations;
    text += row.zeroing;
    text += s.startBlock + ";\n";
    text += "for($i=0;$i<" + s.count + ";$i++)\n{\n$ID=(int)$IDS[$i];";
    text += block == kMap ? "$MP=(float)$i;\n" : "\n";
    text += row.indexLine;
    for (const ReadRow& read : kReads)
        text += read.kind == block ? read.own : read.plain;
    text += s.body + "\n" + row.output;
    return text + "}\n" + s.endBlock + ";\nreturn $OUTPUT;\n}\n";
}

std::string defaultStartBlock()
{
    return std::string("// START BLOCK (this code is executed before the main loop)\n//\n") + kBeware;
}

std::string defaultBody(Block block)
{
    static const char* const bodies[kBlockCount] = {
        "// POINT POSITION\n$X=$TX;\n$Y=$TY;\n$Z=$TZ;",
        "// POINT WEIGHT\n$W=$WEIGHT;",
        "// POINT COLOR (RGBA)\n$R=$CR;\n$G=$CG;\n$B=$CB;\n$A=$ALPHA;",
        "// POINT NORMAL (PARTICLE VELOCITY)\n$X=$NX;\n$Y=$NY;\n$Z=$NZ;",
        "// POINT RADIUS\n$R=$RADIUS;",
        "// MAP (UV POSITION)\n$U=$MAPU;\n$V=$MAPV;",
    };
    return bodies[block];
}

std::string defaultEndBlock()
{
    return std::string("// END BLOCK (this code is executed after the main loop)\n//\n"
                       "// Paceholder for code that will be executed after the main loop.\n") + kBeware;
}

} // namespace pointText

// Scene files as other programs and hands write them: every form of a statement, units, namespaces, settings.
#include <algorithm>

#include "support/line_script.h"

namespace mirk::test {
namespace {

class ForeignScene : public LineScript
{
protected:
    void TearDown() override
    {
        mel("currentUnit -l cm -a deg -t film");
        Host::TearDown();
    }
    void open(const std::string& body, const std::string& units = "currentUnit -l centimeter -a degree -t film;\n")
    {
        const std::string path = write("rig.ma", "//Maya ASCII 2020 scene\r\n//Name: rig.ma\n//Last modified: Mon, Jan 06, 2020 10:00:00 AM\n"
                                                 "//Codeset: UTF-8\nrequires maya \"2020\";\nrequires \"stereoCamera\" \"10.0\";\n"
                                                 "requires -nodeType \"zorkNode\" -dataType \"zorkData\" \"zorkPlugin\" \"1.2\";\n" + units
                                                     + "fileInfo \"application\" \"maya\";\nfileInfo \"osv\" \"Linux 4.15 \\\"x\\\"\";\n" + body + "// End of rig.ma\n");
        mel("file -f -open \"" + path + "\"");
    }
    struct Case { const char* ask; std::string gives; };
    static std::string answer(const std::string& ask)
    {
        std::string text = mirk::mel::printed(mel(ask));
        std::replace(text.begin(), text.end(), '\n', ' ');
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }
    /// Asked after opening, and again after the scene was saved and opened.
    void check(const std::vector<Case>& cases)
    {
        for (const char* when : {"opened", "saved and opened"})
        {
            for (const Case& c : cases)
                EXPECT_TRUE(sameText(answer(c.ask), c.gives)) << when << ": " << c.ask << "\n" << answer(c.ask);
            mel("file -rename \"" + file("again.ma") + "\"; file -f -save; file -f -open \"" + file("again.ma") + "\"");
        }
    }
};

TEST_F(ForeignScene, TransformsWithFlagsOfEveryKind)
{
    open(R"(createNode transform -s -n "persp";
	rename -uid "2F5A7C00-0000-3B4D-5E12-000000000101";
	setAttr ".v" no;
	setAttr ".t" -type "double3" 28 21 28 ;
	setAttr ".r" -type "double3" -27.938352729602379 44.999999999999972 -5.172681101354183e-14 ;
createNode camera -s -n "perspShape" -p "persp";
	setAttr -k off ".v" no;
	setAttr ".fl" 34.5;
	setAttr ".coi" 44.82186966202994;
createNode transform -n "ns:grp";   // a remark behind a statement
	addAttr -ci true -k true -sn "w" -ln "weight" -min 0 -max 1 -at "double";
	addAttr -ci true -sn "note" -ln "note" -dt "string";
	addAttr -ci true -uac -sn "tint" -ln "tint" -at "float3" -nc 3;
	addAttr -ci true -sn "tintR" -ln "tintR" -at "float" -p "tint";
	addAttr -ci true -sn "tintG" -ln "tintG" -at "float" -p "tint";
	addAttr -ci true -sn "tintB" -ln "tintB" -at "float" -p "tint";
	addAttr -ci true -sn "side" -ln "side" -en "left:right=7:both" -at "enum";
	addAttr -ci true -m -im false -sn "links" -ln "links" -at "message";
	addAttr -ci true -m -im false -sn "nums" -ln "nums" -at "long";
	addAttr -ci true -sn "box" -ln "box" -at "compound" -nc 2;
	addAttr -ci true -sn "lo" -ln "lo" -at "doubleLinear" -p "box";
	addAttr -ci true -sn "turn" -ln "turn" -at "doubleAngle" -p "box";
	setAttr -l on -k off ".tx";
	setAttr -k off -cb on ".sy" 2;
	setAttr ".rp" -type "double3" 0 1 0 ;
	setAttr ".w" 0.25;
	setAttr ".note" -type "string" (
		"a long text "
		+ "in \"two\" parts\twith a tab");
	setAttr ".tint" -type "float3" 1 0.5 0.25 ;
	setAttr ".side" 7;
	setAttr -s 3 ".nums[2:4]"  5 6 7;
	setAttr ".nums[9]" 8;
	setAttr -k on ".turn" 90;
createNode transform -n "ns:kid" -p "ns:grp";
	setAttr ".t" -type "double3" 1 2 3 ;
	setAttr ".ro" 3;
createNode transform -n "kid" -p "|ns:grp|ns:kid";
createNode transform -n "kid";
	setAttr ".t" -type "double3" 7 7 7 ;
select -ne :time1;
	setAttr -av -k on ".cch";
	setAttr ".o" 12;
	setAttr ".unw" 12;
select -ne :renderPartition;
	setAttr -s 2 ".st";
connectAttr "ns:grp.w" "ns:kid.sx";
connectAttr "|ns:grp|ns:kid|kid.msg" "ns:grp.links" -na;
connectAttr "|kid.tx" "|ns:grp|ns:kid|kid.ty" -l on;
)");
    EXPECT_EQ(said(message::kError), "");
    check({
        {"getAttr persp.t", "28 21 28"},
        {"getAttr persp.v", "0"},
        {"getAttr perspShape.focalLength", "34.5"},
        {"getAttr -l ns:grp.tx", "1"},
        {"getAttr -k ns:grp.tx", "0"},
        {"getAttr -cb ns:grp.sy", "1"},
        {"getAttr ns:grp.sy", "2"},
        {"getAttr ns:grp.note", "a long text in \"two\" parts\twith a tab"},
        {"getAttr ns:grp.tint", "1 0.5 0.25"},
        {"getAttr -asString ns:grp.side", "right"},
        {"getAttr -mi ns:grp.nums", "2 3 4 9"},
        {"getAttr ns:grp.nums[3]", "6"},
        {"getAttr -k ns:grp.turn", "1"},
        {"listAttr -ud ns:grp", "weight note tint tintR tintG tintB side links nums box lo turn"},
        {"getAttr ns:kid.sx", "0.25"},
        {"getAttr ns:kid.ro", "3"},
        {"getAttr \"|kid.t\"", "7 7 7"},
        {"ls kid", "ns:kid|kid |kid"},
        {"connectionInfo -sfd \"|ns:grp|ns:kid|kid.ty\"", "|kid.translateX"},
        {"getAttr -l \"|ns:grp|ns:kid|kid.ty\"", "1"},
        {"listConnections ns:grp.links", "ns:kid|kid"},
        {"currentTime -q", "12"},
        {"fileInfo -q osv", "Linux 4.15 \"x\""},
        {"addAttr -q -max ns:grp.weight", "1"},
        {"attributeQuery -n ns:grp -usedAsColor tint", "1"},
    });
}

TEST_F(ForeignScene, CurvesOfTimeInTheFilesOwnUnits)
{
    open(R"(createNode transform -n "t";
createNode animCurveTL -n "t_translateX";
	setAttr ".tan" 2;
	setAttr ".wgt" no;
	setAttr -s 3 ".ktv[0:2]"  0 0 25 1 50 0.5;
	setAttr -s 3 ".kit[1:2]"  1 2;
	setAttr ".pst" 4;
createNode animCurveTA -n "t_rotateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  0 0 25 90;
createNode animCurveTU -n "t_visibility";
	setAttr ".tan" 9;
	setAttr -s 2 ".ktv[0:1]"  0 1 25 0;
	setAttr -s 2 ".kot[0:1]"  5 5;
connectAttr "t_translateX.o" "t.tx";
connectAttr "t_rotateX.o" "t.rx";
connectAttr "t_visibility.o" "t.v";
)", "currentUnit -l meter -a degree -t pal;\n");
    check({
        {"currentUnit -q -l", "m"},
        {"currentUnit -q -t", "pal"},
        {"keyframe -q -tc t.tx", "0 25 50"},
        {"keyframe -q -vc t.tx", "0 1 0.5"},
        {"getAttr -t 25 t.tx", "1"},
        {"getAttr -t 5 t.rx", "18"},
        {"getAttr -t 24 t.v", "1"},
        {"getAttr -t 25 t.v", "0"},
        {"currentUnit -l cm; getAttr -t 25 t.tx", "100"},
        {"currentUnit -l m; keyframe -q -kc t.rx", "2"},
    });
}

TEST_F(ForeignScene, AMeshWithColoursUvsAndHardEdges)
{
    // two squares side by side, one colour, one tweaked point
    open(R"(createNode transform -n "quads";
createNode mesh -n "quadsShape" -p "quads";
	setAttr -k off ".v";
	setAttr ".vir" yes;
	setAttr ".vif" yes;
	setAttr ".uvst[0].uvsn" -type "string" "map1";
	setAttr -s 4 ".uvst[0].uvsp[0:3]" -type "float2" 0 0 1 0 1
		 1 0 1;
	setAttr ".cuvs" -type "string" "map1";
	setAttr ".dcc" -type "string" "Ambient+Diffuse";
	setAttr ".ccls" -type "string" "paint";
	setAttr ".clst[0].clsn" -type "string" "paint";
	setAttr -s 1 ".clst[0].clsp[0]"  1 0.5 0 1;
	setAttr -s 6 ".pt";
	setAttr ".pt[5]" -type "float3" 0 0 1;
	setAttr -s 6 ".vt[0:5]"  0 0 0 1 0 0 2 0 0 0 1 0
		 1 1 0 2 1 0;
	setAttr -s 7 ".ed[0:6]"  0 1 0 1 4 0 4 3 0 3 0 0 1 2 1 2 5 1
		 5 4 1;
	setAttr -s 2 ".fc[0:1]" -type "polyFaces"
		f 4 0 1 2 3
		mu 0 4 0 1 2 3
		mc 0 4 0 0 -1 -1
		f 4 4 5 6 -2
		mu 0 4 0 1 2 3;
	setAttr ".cd" -type "dataPolyComponent" Index_Data Edge 0 ;
	setAttr ".cvd" -type "dataPolyComponent" Index_Data Vertex 0 ;
	setAttr ".hfd" -type "dataPolyComponent" Index_Data Face 0 ;
connectAttr "quadsShape.iog" ":initialShadingGroup.dsm" -na;
)");
    check({
        {"polyEvaluate -v -e -f quads", "6 7 2"},
        {"polyInfo -faceToVertex quads.f[1]", "FACE      1:      1      2      5      4"},
        {"polyInfo -edgeToVertex quads.e[0]", "EDGE      0:      0      1  Hard"},
        {"polyInfo -edgeToVertex quads.e[5]", "EDGE      5:      2      5  Smooth"},
        {"pointPosition quads.vtx[5]", "2 1 1"},
        {"polyColorPerVertex -q -rgb quads.vtx[0]", "1 0.5 0"},
        {"polyColorSet -q -acs quads", "paint"},
        {"polyEvaluate -uv quads", "4"},
        {"polyEditUV -q quads.map[2]", "1 1"},
    });
}

TEST_F(ForeignScene, CurvesAndSurfaces)
{
    open(R"(createNode transform -n "c";
createNode nurbsCurve -n "cShape" -p "c";
	setAttr -k off ".v";
	setAttr ".cc" -type "nurbsCurve"
		3 2 0 no 3
		7 0 0 0 1 2 2 2
		5
		0 0 0
		1 0 0
		2 0 0
		3 0 0
		4 0 0
		;
createNode transform -n "s";
createNode nurbsSurface -n "sShape" -p "s";
	setAttr -k off ".v";
	setAttr ".vir" yes;
	setAttr ".cc" -type "nurbsSurface"
		1 1 0 0 no
		2 0 1
		2 0 1

		4
		0 0 0
		0 0 -2
		3 0 0
		3 0 -2

		;
	setAttr ".nufa" 4.5;
)");
    check({
        {"arclen c", "4"},
        {"getAttr cShape.spans", "2"},
        {"getAttr cShape.degree", "3"},
        {"getAttr sShape.spansUV", "1 1"},
        {"pointPosition s.cv[1][0]", "3 0 0"},
        {"exactWorldBoundingBox s", "0 0 -2 3 0 0"},
    });
}

TEST_F(ForeignScene, WhatIsUnknownStaysWhereItWas)
{
    const std::string unknown = "createNode zorkNode -n \"z\";\n\trename -uid \"11111111-0000-3B4D-5E12-000000000101\";\n"
                                "\taddAttr -ci true -sn \"own\" -ln \"own\" -at \"double\";\n\tsetAttr \".own\" 3;\n";
    open(unknown + "createNode transform -n \"t\";\n\tsetAttr \".tx\" 4;\n\tsetAttr \".zork\" -type \"string\" \"x\";\n"
                   "connectAttr \"t.tx\" \"z.in[0].value\";\nconnectAttr \"z.out\" \"t.ty\";\nconnectAttr \"t.msg\" \":zorkSettings.list\" -na;\n");
    check({
        {"getAttr t.tx", "4"},
        {"nodeType z", "unknown"},
        {"ls -type unknown", "z"},
    });
    const std::string text = read(file("again.ma"));
    for (const char* kept : {"createNode zorkNode -n \"z\";", "setAttr \".own\" 3;", "connectAttr \"t.tx\" \"z.in[0].value\";", "connectAttr \"z.out\" \"t.ty\";",
                             "\"zorkPlugin\" \"1.2\"", "\"stereoCamera\" \"10.0\"", "setAttr \".zork\" -type \"string\" \"x\";", ":zorkSettings.list"})
        EXPECT_NE(text.find(kept), std::string::npos) << kept;
}

TEST_F(ForeignScene, SetsRampsAndParticlesComeBack)
{
    mel("polyCube -n box; createNode transform -n t; sets -n verts box.vtx[0:2] box.vtx[7]; sets -n objects t box verts; sets -add verts box.f[1]");
    mel("particle -p 0 0 0 -p 1 2 3 -p -1 0.5 1e-7 -n dust; addAttr -ln sizePP -dt doubleArray dustShape; setAttr dustShape.sizePP -type doubleArray 3 0.1 0.2 0.3");
    mel("createNode remapValue -n ramp; setAttr ramp.value[0].value_Position 0; setAttr ramp.value[0].value_FloatValue 0.25; setAttr ramp.value[0].value_Interp 2;"
        "setAttr ramp.value[5].value_Position 0.5; setAttr ramp.value[5].value_FloatValue 1; setAttr ramp.value[5].value_Interp 1; setAttr ramp.inputValue 0.25");
    mel("addAttr -ln when -at time -dv 5 t; addAttr -ln sa -dt stringArray t; setAttr t.sa -type stringArray 3 \"\" \"a b\" \"\\\\\";"
        "addAttr -ln mat -at matrix t; setAttr t.mat -type \"matrix\" 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16; aliasAttr nick t.tx; setAttr -l on t.sa");
    const std::string ramp = answer("getAttr ramp.outValue");
    check({
        {"sets -q verts", "box.vtx[0:2] box.vtx[7] box.f[1]"},
        {"sets -q objects", "t box verts"},
        {"getAttr dustShape.count", "3"},
        {"particle -q -at position -id 2 dustShape", "-1 0.5 1e-07"},
        {"getAttr dustShape.sizePP", "0.1 0.2 0.3"},
        {"getAttr -mi ramp.value", "0 1 5"},
        {"getAttr ramp.outValue", ramp},
        {"getAttr t.when", "5"},
        {"size(`getAttr t.sa`)", "3"},
        {"getAttr t.mat", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
        {"getAttr -l t.sa", "1"},
        {"aliasAttr -q t", "nick translateX"},
    });
}

TEST_F(ForeignScene, ErrorsNameTheLine)
{
    mel("createNode transform -n before; setAttr before.tx 3");
    struct Bad { const char* body; const char* says; };
    const Bad cases[] = {
        {"createNode transform -n \"t\";\n\tsetAttr \".tx\" 1 2;\n", "line 12"},
        {"createNode transform -n \"t\" -p \"nobody\";\n", "nobody"},
        {"createNode transform -n \"t\";\n\tsetAttr -s 2 \".t[0:1]\" 1;\n", "line 12"},
        {"createNode transform -n \"t\";\n\taddAttr -sn \"x\" -ln \"x\" -at \"zork\";\n", "zork"},
        {"createNode transform -n \"t\"\n\tsetAttr \".tx\" 1;\n", "line"},
        {"createNode transform -n \"t\";\nparent -s -nc \"nobody\" \"t\";\n", "nobody"},
        {"createNode nurbsCurve -n \"c\";\n\tsetAttr \".cc\" -type \"nurbsCurve\" 3 1 0 no 3 6 0 0 0 1 1 1 4 0 0 0;\n", "c"},
        {"createNode transform -n \"t\";\n\tsetAttr \".tx\" \"unclosed;\n", "line"},
    };
    for (const Bad& c : cases)
    {
        const std::string path = write("bad.ma", std::string("//Maya ASCII 2020 scene\n\n\n\n\n\n\n\n\n\n") + c.body + "// End of bad.ma\n");
        const std::string error = melError("file -f -open \"" + path + "\"");
        EXPECT_NE(error.find(c.says), std::string::npos) << c.body << error;
        EXPECT_EQ(num("getAttr before.tx"), 3) << c.body;
        EXPECT_EQ(num("objExists t"), 0) << c.body;
    }
}

}  // namespace
}  // namespace mirk::test

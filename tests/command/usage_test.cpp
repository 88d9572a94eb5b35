// Commands as scripts use them: what comes back, in MEL and in Python, and scenes of other programs' making.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class Usage : public Host {};

TEST_F(Usage, PythonAnswers)
{
    py("import maya.cmds as mc");
    py("mc.polyCube(name='box'); mc.createNode('network', name='n'); mc.createNode('transform', name='other')");
    py("mc.optionVar(intValue=('a', 3)); mc.addAttr('n', ln='e', at='enum', en='red:green=5:blue')");
    py("mc.addAttr('n', ln='rows', at='compound', nc=1, m=True); mc.addAttr('n', ln='cell', at='double', p='rows')");
    py("mc.parent('boxShape', 'other', shape=True, addObject=True)");
    struct Case { const char* text; const char* repr; };
    const Case cases[] = {
        {"mc.optionVar(q='a')", "3"},
        {"mc.optionVar(query='nothing')", "0"},
        {"mc.nodeType('boxShape', apiType=True)", "'kMesh'"},
        {"mc.nodeType('box.tx')", "'transform'"},
        {"mc.attributeQuery('tx', node='box', ex=True)", "True"},
        {"mc.attributeQuery('width', node='polyCube1', st=True)", "True"},
        {"mc.addAttr('n.e', q=True, en=True)", "'red:green=5:blue'"},
        {"mc.listAttr('box.t', k=True)", "['translateX', 'translateY', 'translateZ']"},
        {"mc.listAttr('n', ud=True)", "['e', 'rows', 'rows.cell']"},
        {"mc.listAttr('box', st='overrideEn*')", "['overrideEnabled']"},
        {"mc.ls('boxShape', ap=True)", "['box|boxShape', 'other|boxShape']"},
        {"len(mc.ls('box', uuid=True)[0])", "36"},
        {"mc.getAttr('other.wm')[12:15]", "[0.0, 0.0, 0.0]"},
        {"mc.rename('n', '1 bad-name')", "'_bad_name'"},
        {"mc.surface(du=1, dv=1, ku=(0,1), kv=(0,1), p=((0,0,0),(0,0,1),(1,0,0),(1,0,1))) and mc.ls(type='nurbsSurface')", "['surfaceShape1']"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(py("repr(" + std::string(c.text) + ")").asString(), c.repr) << c.text;
}

TEST_F(Usage, MoveAndRotateTakePairsOfAxesAndUnits)
{
    mel("createNode transform -n t; move -xz 1 3 t");
    EXPECT_EQ(nums("getAttr t.t"), (std::vector<double>{1, 0, 3}));
    mel("move -y \"2m\" t");
    EXPECT_EQ(nums("getAttr t.t"), (std::vector<double>{1, 200, 3}));
    mel("rotate 0 \"90deg\" 0 t");
    EXPECT_NEAR(num("getAttr t.ry"), 90, 1e-12);
    EXPECT_NE(melError("move 1 2 \"3zork\" t").find("move"), std::string::npos);
}

/// What an artist's file holds beside geometry: render settings, links and sets that this host does without.
TEST_F(Usage, SettingsOfMissingDefaultNodesAreKept)
{
    const std::string again = file("again.ma");
    const std::string path = write("foreign.ma", "//Maya ASCII 2020 scene\nrequires maya \"2020\";\n"
                           "createNode transform -n \"a\";\n\tsetAttr \".t\" -type \"double3\" 1 2 3 ;\n"
                           "select -ne :renderGlobals;\n\tsetAttr \".w\" 1920;\n\tsetAttr -s 2 \".st\";\n"
                           "select -ne :time1;\n\tsetAttr \".o\" 7;\n"
                           "connectAttr \"a.iog\" \":initialGroup.dsm\" -na;\n// End of foreign.ma\n");
    mel("file -f -open \"" + path + "\"");
    EXPECT_EQ(nums("getAttr a.t"), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(num("currentTime -q"), 7) << "a default node that is there is set";
    const auto saved = [&] {
        mel("file -rename \"" + again + "\"; file -save");
        return read(again);
    };
    const std::string once = saved();
    for (const char* kept : {"select -ne :renderGlobals;", "setAttr \".w\" 1920;", "setAttr -s 2 \".st\";", ":initialGroup.dsm"})
        EXPECT_NE(once.find(kept), std::string::npos) << kept;
    mel("file -f -open \"" + again + "\"");
    EXPECT_EQ(saved(), once);
}

TEST_F(Usage, AFileIsImportedTwice)
{
    const std::string path = file("cube.ma");
    mel("polyCube -n box; file -rename \"" + path + "\"; file -save; file -import \"" + path + "\"; file -import \"" + path + "\"");
    EXPECT_EQ(strings("ls -type polyCube").size(), 3u);
    for (const std::string& shape : strings("ls -type mesh"))
        EXPECT_EQ(num("polyEvaluate -v " + shape), 8) << shape;
    mel("file -import -namespace second \"" + path + "\"");
    EXPECT_EQ(num("objExists \"second:box\""), 1);
}

}  // namespace
}  // namespace mirk::test

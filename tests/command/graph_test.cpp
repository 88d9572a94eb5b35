// Commands on nodes, connections and the hierarchy.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

using Strings = std::vector<std::string>;
class Graph : public Host {};

TEST_F(Graph, ResultsOfListingCommands)
{
    mel("createNode transform -n a; createNode transform -n b -p a; createNode transform -n c -p b; createNode network -n n");
    mel("addAttr -ln x -at double n; addAttr -ln y -at double n; connectAttr c.tx n.x; connectAttr n.x b.ty; aliasAttr nick n.y");
    struct Case { const char* text; Strings list; };
    const Case cases[] = {
        {"ls -dag a", {"a", "b", "c"}},
        {"ls -l -dag b", {"|a|b", "|a|b|c"}},
        {"ls -type network", {"n"}},
        {"ls -assemblies \"?\"", {"a"}},
        {"listRelatives -ad a", {"c", "b"}},
        {"listRelatives -f -p c", {"|a|b"}},
        {"listConnections n", {"c", "b"}},
        {"listConnections -p 1 -s 0 n", {"b.translateY"}},
        {"listConnections -c 1 -p 1 -d 0 n.x", {"n.x", "c.translateX"}},
        {"listAttr -ud n", {"x", "y"}},
        {"aliasAttr -q n", {"nick", "y"}},
        {"connectionInfo -dfs n.x", {"b.translateY"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(strings(c.text), c.list) << c.text;
    mel("setAttr n.nick 4");
    EXPECT_EQ(num("getAttr n.y"), 4);
    EXPECT_EQ(num("isConnected c.tx n.x"), 1);
    EXPECT_EQ(num("isConnected n.x c.tx"), 0);
}

TEST_F(Graph, ErrorsNameTheThingAndLeaveTheScene)
{
    mel("createNode transform -n a; createNode transform -n b -p a; addAttr -ln txt -dt \"string\" a; connectAttr a.tx b.tx");
    const size_t before = scene().nodes().size();
    struct Case { const char* text; const char* says; };
    const Case cases[] = {
        {"createNode zork", "zork"},
        {"createNode transform -p nobody", "nobody"},
        {"delete nobody", "nobody"},
        {"delete persp", "persp"},
        {"parent a b", "itself or one of its children"},
        {"parent b nobody", "nobody"},
        {"connectAttr a.tx nobody.tx", "nobody.tx"},
        {"connectAttr a.txt b.ty", "a.txt"},
        {"connectAttr a.ty b.tx", "b.translateX"},
        {"disconnectAttr a.tx b.ty", "no connection"},
        {"deleteAttr a.tx", "static attribute"},
        {"addAttr -ln txt -at double a", "already used"},
        {"addAttr -ln q -at zork a", "zork"},
        {"group nobody", "nobody"},
        {"select nobody", "nobody"},
        {"xform -q -zork a", "-zork"},
        {"move 1 2 a", "three numbers"},
        {"loadPlugin nosuchplugin", "nosuchplugin"},
        {"undoInfo -length word", "length"},
    };
    for (const Case& c : cases)
    {
        const std::string said = melError(c.text);
        EXPECT_NE(said.find(c.says), std::string::npos) << c.text << "\nsaid: " << said;
    }
    EXPECT_EQ(scene().nodes().size(), before);
    EXPECT_EQ(strings("listRelatives a"), Strings{"b"});
    EXPECT_EQ(strings("listAttr -ud a"), Strings{"txt"});
}

TEST_F(Graph, AFailedCommandIsTakenBackWhole)
{
    mel("createNode transform -n a; createNode transform -n b");
    melError("delete a nobody");
    EXPECT_EQ(num("objExists a"), 1);
    melError("setAttr a.t 1 word 3");
    EXPECT_EQ(nums("getAttr a.t"), (std::vector<double>{0, 0, 0}));
}

TEST_F(Graph, ParentingKeepsTheWorldPlace)
{
    // up: turned by 90 degrees about y and moved; the child's world place is (1, 2, 3) before and after
    mel("createNode transform -n up; setAttr up.t 10 0 0; setAttr up.ry 90; setAttr up.s 2 2 2; createNode transform -n a; setAttr a.t 1 2 3; setAttr a.r 10 20 30");
    const std::vector<double> before = nums("xform -q -ws -m a");
    mel("parent a up");
    const std::vector<double> after = nums("xform -q -ws -m a");
    ASSERT_EQ(after.size(), 16u);
    for (size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(after[i], before[i], 1e-12) << i;
    // in the parent: (1 - 10, 2, 3) turned back (x' = -z, z' = x) and halved
    const std::vector<double> t = nums("getAttr a.t");
    EXPECT_NEAR(t[0], -1.5, 1e-12);
    EXPECT_NEAR(t[1], 1, 1e-12);
    EXPECT_NEAR(t[2], -4.5, 1e-12);
    undo::undoOne();
    EXPECT_EQ(nums("getAttr a.t"), (std::vector<double>{1, 2, 3}));
    mel("parent -relative a up");
    EXPECT_EQ(nums("getAttr a.t"), (std::vector<double>{1, 2, 3}));
}

TEST_F(Graph, MovesRotationsAndPivots)
{
    mel("createNode transform -n up; setAttr up.ry 90; createNode transform -n a -p up");
    mel("move 1 2 3 a");
    std::vector<double> p = nums("xform -q -ws -t a");
    EXPECT_NEAR(p[0], 1, 1e-12);
    EXPECT_NEAR(p[2], 3, 1e-12);
    mel("move -r -y 5 a");
    EXPECT_NEAR(nums("xform -q -ws -t a")[1], 7, 1e-12);
    mel("rotate 0 45 0 a; rotate -r 0 45 0 a");
    EXPECT_NEAR(num("getAttr a.ry"), 90, 1e-9);
    mel("scale 2 2 2 a; scale -r 1 3 1 a");
    EXPECT_EQ(nums("getAttr a.s"), (std::vector<double>{2, 6, 2}));
    const std::vector<double> before = nums("xform -q -ws -m a");
    mel("xform -ws -piv 5 5 5 a");
    const std::vector<double> after = nums("xform -q -ws -m a");
    for (size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(after[i], before[i], 1e-9) << "a pivot that moves leaves the object";
    EXPECT_NEAR(nums("xform -q -ws -rp a")[1], 5, 1e-12);
}

TEST_F(Graph, DuplicatesHaveValuesOfTheirOwn)
{
    mel("createNode transform -n a; createNode transform -n b -p a; setAttr b.tx 4; addAttr -ln extra -at double -dv 2 a; setAttr a.extra 3; connectAttr a.ty b.ty");
    EXPECT_EQ(strings("duplicate -rr a"), Strings{"a1"});
    mel("setAttr \"|a|b.tx\" 9");
    EXPECT_EQ(num("getAttr \"|a1|b.tx\""), 4);
    EXPECT_EQ(num("getAttr a1.extra"), 3);
    mel("setAttr a1.ty 6");
    EXPECT_EQ(num("getAttr \"|a1|b.ty\""), 6) << "connections among the copies go along";
    mel("undo; undo; undo");
    EXPECT_EQ(num("objExists a1"), 0);
}

TEST_F(Graph, NextAvailableFillsTheFirstGap)
{
    mel("createNode transform -n a; createNode network -n n; addAttr -ln in -at double -m -im false n");
    mel("connectAttr -na a.tx n.in; connectAttr -na a.ty n.in; connectAttr -na a.tz n.in; disconnectAttr a.ty n.in[1]; connectAttr -na a.sx n.in");
    EXPECT_EQ(str("connectionInfo -sfd n.in[1]"), "a.scaleX");
    EXPECT_EQ(str("connectionInfo -sfd n.in[2]"), "a.translateZ");
}

TEST_F(Graph, EchoShowsCommandsAsWritten)
{
    mel("commandEcho -state on; createNode transform -n a; setAttr a.tx 2.5; commandEcho -state off; createNode transform -n b");
    EXPECT_EQ(said(message::kEcho), "createNode -n \"a\" \"transform\";setAttr \"a.tx\" 2.5;commandEcho -st 0;");
}

TEST_F(Graph, MessagesGoToTheHistoryFile)
{
    mel("scriptEditorInfo -historyFilename \"" + file("log") + "\" -writeHistory true; warning \"careful\"; print \"text\\n\"; scriptEditorInfo -writeHistory false; print \"unseen\"");
    EXPECT_EQ(read(file("log")), "// Warning: careful //\ntext\n");
}

}  // namespace
}  // namespace mirk::test

// setAttr and getAttr: every kind of data, ranges, locks, errors that change nothing.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class Values : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode network -n n");
    }
};

TEST_F(Values, DataOfEveryKindComesBack)
{
    struct Case { const char* type; const char* given; std::vector<double> flat; };
    const Case cases[] = {
        {"doubleArray", "3 1 -2.5 1e300", {1, -2.5, 1e300}},
        {"floatArray", "2 0.5 3", {0.5, 3}},
        {"Int32Array", "3 7 -1 2147483647", {7, -1, 2147483647}},
        {"vectorArray", "2 1 2 3 4 5 6", {1, 2, 3, 4, 5, 6}},
        {"pointArray", "1 1 2 3 0.5", {1, 2, 3, 0.5}},
        {"matrix", "1 0 0 0 0 2 0 0 0 0 3 0 4 5 6 1", {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 4, 5, 6, 1}},
        {"doubleArray", "0", {}},
    };
    int i = 0;
    for (const Case& c : cases)
    {
        const std::string plug = "n.a" + std::to_string(++i);
        mel("addAttr -ln a" + std::to_string(i) + " -dt " + c.type + " n");
        mel("setAttr " + plug + " -type " + c.type + " " + c.given);
        EXPECT_EQ(nums("getAttr " + plug), c.flat) << c.type;
        EXPECT_EQ(str("getAttr -type " + plug), c.type);
        undo::undoOne();
        EXPECT_TRUE(nums("getAttr " + plug).empty()) << c.type << " after undo";
    }
    mel("addAttr -ln s -dt \"string\" n; setAttr n.s -type \"string\" \"a \\\"b\\\" c\"");
    EXPECT_EQ(str("getAttr n.s"), "a \"b\" c");
    mel("addAttr -ln sa -dt stringArray n; setAttr n.sa -type stringArray 2 \"x y\" z");
    EXPECT_EQ(strings("getAttr n.sa"), (std::vector<std::string>{"x y", "z"}));
    mel("addAttr -ln cl -dt componentList n; setAttr n.cl -type componentList 2 \"vtx[0:2]\" \"f[*]\"");
    EXPECT_EQ(strings("getAttr n.cl"), (std::vector<std::string>{"vtx[0:2]", "f[*]"}));
}

TEST_F(Values, TuplesMultisAndUnits)
{
    mel("createNode transform -n t");
    mel("setAttr t.translate 1 2 3; setAttr t.ry 90");
    EXPECT_EQ(nums("getAttr t.t"), (std::vector<double>{1, 2, 3}));
    EXPECT_DOUBLE_EQ(num("getAttr t.rotateY"), 90);
    mel("currentUnit -linear meter");
    EXPECT_DOUBLE_EQ(num("getAttr t.tx"), 0.01) << "a centimetre in metres";
    mel("setAttr t.tx 2; currentUnit -linear cm");
    EXPECT_DOUBLE_EQ(num("getAttr t.tx"), 200);
    mel("addAttr -ln m -at double -m n; setAttr \"n.m[2:4]\" 5 6 7; setAttr n.m[9] 1");
    EXPECT_EQ(mel("getAttr -multiIndices n.m").asInts(), (command::Ints{2, 3, 4, 9}));
    EXPECT_EQ(nums("getAttr \"n.m[3:4]\""), (std::vector<double>{6, 7}));
    EXPECT_EQ(num("getAttr -size n.m"), 4);
    mel("removeMultiInstance n.m[3]");
    EXPECT_EQ(mel("getAttr -mi n.m").asInts(), (command::Ints{2, 4, 9}));
}

TEST_F(Values, AnErrorNamesTheThingAndChangesNothing)
{
    mel("createNode transform -n t; addAttr -ln w -at double -min 0 -max 1 -dv 0.5 n; addAttr -ln d -dt doubleArray n");
    mel("createNode transform -n src; connectAttr src.tx t.tx; setAttr -lock on t.ty");
    struct Case { const char* text; const char* says; };
    const Case cases[] = {
        {"setAttr nobody.tx 1", "nobody"},
        {"setAttr t.nothing 1", "nothing"},
        {"setAttr t.tx 1", "locked or connected"},
        {"setAttr t.ty 1", "t.translateY"},
        {"setAttr t.t 1 2 3", "locked or connected"},
        {"setAttr n.w 2", "past its maximum value of 1"},
        {"setAttr n.w -0.1", "past its minimum value of 0"},
        {"setAttr n.d -type doubleArray 5 1 2", "5 numbers expected, 2 given"},
        {"setAttr n.d -type doubleArray -1", "Invalid count"},
        {"setAttr n.d -type vectorArray 1 1 2 3", "does not match"},
        {"setAttr n.d -type zork 1", "zork"},
        {"setAttr t.tz", "t.tz"},
        {"setAttr t.tz word", "word"},
        {"setAttr t.tz 1 2", "left over"},
        {"setAttr -zork t.tz 1", "-zork"},
        {"getAttr t.message", "Message attributes have no data values"},
        {"getAttr \"n.w[-1]\"", "n.w"},
    };
    for (const Case& c : cases)
    {
        const std::string said = melError(c.text);
        EXPECT_NE(said.find(c.says), std::string::npos) << c.text << "\nsaid: " << said;
    }
    EXPECT_EQ(nums("getAttr t.t"), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(num("getAttr n.w"), 0.5);
    mel("setAttr -clamp n.w 7");
    EXPECT_EQ(num("getAttr n.w"), 1);
}

TEST_F(Values, PythonGivesTheHostsShapes)
{
    py("import maya.cmds as mc");
    py("mc.addAttr('n', ln='v', dt='vectorArray'); mc.addAttr('n', ln='d', dt='doubleArray'); mc.addAttr('n', ln='b', at='bool')");
    py("mc.setAttr('n.v', 2, (1, 2, 3), (4, 5, 6), type='vectorArray')");
    py("mc.setAttr('n.d', [2, 5, 6], type='doubleArray')");   // a list needs no count, also where it looks like one
    py("t = mc.createNode('transform', name='t')");
    struct Case { const char* text; const char* repr; };
    const Case cases[] = {
        {"mc.getAttr('n.v')", "[(1.0, 2.0, 3.0), (4.0, 5.0, 6.0)]"}, {"mc.getAttr('n.d')", "[2.0, 5.0, 6.0]"}, {"mc.getAttr('t.t')", "[(0.0, 0.0, 0.0)]"},
        {"mc.getAttr('n.b')", "False"}, {"mc.getAttr('t.tx')", "0.0"}, {"mc.objExists('t')", "True"}, {"mc.listRelatives('t')", "None"},
        {"mc.ls('nobody')", "[]"}, {"mc.attributeQuery('tx', node='t', exists=True)", "True"}, {"__import__('maya.mel').mel.eval('int $a[] = {1, 2}')", "[1, 2]"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(py("repr(" + std::string(c.text) + ")").asString(), c.repr) << c.text;
    py("def failing(f, *a, **k):\n  try: f(*a, **k)\n  except Exception as e: return type(e).__name__ + ': ' + str(e)\n");
    EXPECT_EQ(py("failing(mc.setAttr, 'nobody.tx', 1)").asString(), "RuntimeError: No object matches name: nobody.tx");
    EXPECT_EQ(py("failing(mc.setAttr, 'n.d', 1, zork=1)").asString().substr(0, 23), "TypeError: Invalid flag");
}

}  // namespace
}  // namespace mirk::test

// The embedded interpreter: namespace, results across the languages, errors.
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class Python : public Host {};

TEST_F(Python, StatementsShareOneNamespace)
{
    py("counter = 3");
    mel("python(\"counter += 4\")");
    EXPECT_EQ(mel("python(\"counter\")").asInt(), 7);
    EXPECT_EQ(py("__name__").asString(), "__main__");
    const std::string script = write("s.py", "import sys\nseen = counter\nname = __file__\nargs = sys.argv\n");
    EXPECT_EQ(python::runFile(script, {"x"}), 0);
    EXPECT_EQ(py("seen").asInt(), 7);
    EXPECT_EQ(py("args[1]").asString(), "x");
    EXPECT_EQ(py("name").asString(), script);
}

TEST_F(Python, ResultsKeepTheirKindAcrossLanguages)
{
    struct Case { const char* text; Value::Kind kind; const char* repr; };
    const Case cases[] = {
        {"3", Value::kInt, "3"}, {"2.5", Value::kFloat, "2.5"}, {"'a'", Value::kString, "'a'"}, {"[1, 2]", Value::kInts, "[1, 2]"},
        {"[1, 2.5]", Value::kFloats, "[1.0, 2.5]"}, {"['a', 'b']", Value::kStrings, "['a', 'b']"}, {"None", Value::kNone, ""},
    };
    py("import maya.mel as mm");
    for (const Case& c : cases)
    {
        EXPECT_EQ(py(c.text).kind(), c.kind) << c.text;
        if (*c.repr)
            EXPECT_EQ(py("repr(mm.eval('''python(\"" + std::string(c.text) + "\")'''))").asString(), c.repr) << c.text;
    }
    EXPECT_EQ(py("4000000000").asFloat(), 4e9) << "past 32 bits a float";
}

TEST_F(Python, ErrorsNameExceptionAndPlace)
{
    EXPECT_NE(melError("python(\"nobody\")").find("NameError: name 'nobody' is not defined"), std::string::npos);
    EXPECT_NE(melError("python(\"a = (\")").find("SyntaxError"), std::string::npos);
    py("import maya.mel as mm\nimport maya.cmds as mc\ndef message(f):\n  try: f()\n  except RuntimeError as e: return str(e)\n");
    EXPECT_NE(py("message(lambda: mm.eval('setAttr nobody.tx 1'))").asString().find("nobody.tx"), std::string::npos);
    EXPECT_EQ(py("message(lambda: mc.delete('nobody'))").asString(), "No object matches name: nobody");
    EXPECT_EQ(python::runFile(write("x.py", "import sys\nsys.exit(9)")), 9);
    EXPECT_EQ(python::runFile(write("y.py", "raise KeyError('k')")), 1);
    EXPECT_NE(said(message::kPrintError).find("KeyError: 'k'"), std::string::npos);
}

TEST_F(Python, CommandsComeFromTheRegistry)
{
    py("import maya.cmds as mc");
    EXPECT_EQ(py("hasattr(mc, 'createNode')").asInt(), 1);
    EXPECT_EQ(py("hasattr(mc, 'noSuchCommand')").asInt(), 0);
    EXPECT_EQ(py("'polyCube' in dir(mc)").asInt(), 1);
    py("from maya.cmds import *");
    EXPECT_EQ(py("createNode('transform', name='t', skipSelect=True)").asString(), "t");
    EXPECT_EQ(py("mc.polyCreateFacet(p=[(0, 0, 0), (1, 0, 0), (0, 1, 0)], name='f')[0]").asString(), "f");
    EXPECT_EQ(py("mc.polyEvaluate('f', vertex=True)").asInt(), 3);
    py("print('seen', end='')");
    EXPECT_EQ(said(message::kPrint), "seen");
}

TEST_F(Python, LargeArraysGoThroughWhole)
{
    mel("createNode network -n n; addAttr -ln d -dt doubleArray n");
    py("import maya.cmds as mc; mc.setAttr('n.d', [i * 0.5 for i in range(300000)], type='doubleArray')");
    EXPECT_EQ(py("mc.getAttr('n.d') == [i * 0.5 for i in range(300000)]").asInt(), 1);
}

}  // namespace
}  // namespace mirk::test

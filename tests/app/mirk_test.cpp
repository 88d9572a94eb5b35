// The `mirk` command from outside: results, messages, exit status.
#include <sys/wait.h>

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

struct Outcome { int status; std::string out, err; };

class MirkCommand : public Host
{
protected:
    Outcome run(const std::string& arguments)
    {
        const std::string binary = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "mirk").string();
        const std::string out = file("out"), err = file("err");
        const int status = std::system(("'" + binary + "' " + arguments + " >'" + out + "' 2>'" + err + "' </dev/null").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), read(out), read(err)};
    }
};

TEST_F(MirkCommand, ExitStatusAndMessages)
{
    struct Case { const char* name; const char* text; int status; const char* out; const char* err; };
    const Case cases[] = {
        {"fine.py", "print(6 * 7)", 0, "42\n", ""},
        {"exit.py", "import sys\nprint('x')\nsys.exit(7)", 7, "x\n", ""},
        {"raises.py", "def f():\n    raise ValueError('oops')\nf()", 1, "", "ValueError: oops"},
        {"syntax.py", "def (", 1, "", "SyntaxError"},
        {"command.py", "import maya.cmds as mc\nmc.setAttr('nobody.tx', 1)", 1, "", "No object matches name: nobody.tx"},
        {"fine.mel", "print (2 + 3); print \"\\n\";", 0, "5\n", ""},
        {"error.mel", "createNode transform -n a;\nsetAttr nobody.tx 1;", 1, "", "nobody.tx"},
        {"syntax.mel", "print (", 1, "", "// Error: "},
        {"warns.mel", "warning \"careful\";", 0, "", "// Warning: careful"},
        {"notes.txt", "hello", 1, "", "notes.txt"},
        {"cut.ma", "//Maya ASCII 2020 scene\ncreateNode transform", 1, "", "cut off"},
    };
    for (const Case& c : cases)
    {
        const Outcome o = run("run '" + write(c.name, c.text) + "'");
        EXPECT_EQ(o.status, c.status) << c.name << "\n" << o.err;
        EXPECT_EQ(o.out, c.out) << c.name;
        EXPECT_NE(o.err.find(c.err), std::string::npos) << c.name << "\n" << o.err;
    }
    EXPECT_EQ(run("run '" + file("missing.py") + "'").status, 1);
    EXPECT_NE(run("run '" + file("missing.py") + "'").err.find("File not found"), std::string::npos);
    EXPECT_NE(run("zork").status, 0);
    EXPECT_EQ(run("run --frames 5 -e ''").status, 1);
}

TEST_F(MirkCommand, OneSessionForAllFiles)
{
    write("a.mel", "createNode transform -n a; setAttr a.tx 4;");
    write("b.py", "import maya.cmds as mc\nmc.setAttr('a.ty', mc.getAttr('a.tx') * 2)\n");
    const Outcome o = run("run '" + file("a.mel") + "' '" + file("b.py") + "' -e 'getAttr a.ty' --save '" + file("s.ma") + "'");
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.out, "// Result: 8 //\n");
    EXPECT_EQ(run("run '" + file("s.ma") + "' -e 'getAttr a.ty'").out, "// Result: 8 //\n");
    EXPECT_EQ(run("run -e 'about -batch'").out, "// Result: 1 //\n");
    EXPECT_NE(run("run --interactive -e 'about -batch'").out.find("// Result: 0 //\n"), std::string::npos);
}

TEST_F(MirkCommand, FramesStepTheTime)
{
    write("t.mel", "createNode transform -n a; connectAttr time1.outTime a.tx;");
    const Outcome o = run("run '" + file("t.mel") + "' --frames 3-9 --save '" + file("s.ma") + "'");
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(run("run '" + file("s.ma") + "' -e 'currentTime -q'").out, "// Result: 9 //\n");
}

TEST_F(MirkCommand, NodesOfOneType)
{
    const Outcome o = run("nodes pointAttributeToArray");
    EXPECT_EQ(o.status, 0);
    EXPECT_NE(o.out.find("inGeometry\t"), std::string::npos) << o.out;
    const Outcome bad = run("nodes zork");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.err.find("zork"), std::string::npos);
}

}  // namespace
}  // namespace mirk::test

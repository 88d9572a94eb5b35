// `mirk run`: many files, frames, files out, arguments that are wrong, and what stays on the disk then.
#include <sys/wait.h>

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

struct Outcome { int status; std::string out, err; };

class MirkRun : public Host
{
protected:
    Outcome run(const std::string& arguments)
    {
        const std::string binary = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "mirk").string();
        const std::string out = file("out"), err = file("err");
        const int status = std::system(("cd '" + file("") + "' && '" + binary + "' " + arguments + " >'" + out + "' 2>'" + err + "' </dev/null").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), read(out), read(err)};
    }
    bool there(const std::string& name) { return std::filesystem::exists(file(name)); }
};

TEST_F(MirkRun, ArgumentsThatAreWrong)
{
    write("ok.mel", "createNode transform -n a;");
    std::filesystem::create_directory(file("folder.ma"));
    struct Case { const char* arguments; const char* says; };
    const Case cases[] = {
        {"run --zork", "zork"},
        {"run ok.mel --frames 5-1", "5-1"},
        {"run ok.mel --frames a-b", "a-b"},
        {"run ok.mel --frames 1-99999999999", "1-99999999999"},
        {"run ok.mel --frames 1-2-3", "1-2-3"},
        {"run none.mel", "none.mel"},
        {"run folder.ma", "folder.ma"},
        {"run -e 'setAttr nobody.tx 1'", "nobody"},
        {"run -e 'print ('", "Syntax error"},
        {"run ok.mel --save none/x.ma", "none/x.ma"},
        {"run ok.mel --export x.zork", "x.zork"},
        {"run ok.mel --export none/x.obj", "none/x.obj"},
        {"run ok.mel --render x.zork", "x.zork"},
        {"run ok.mel --render x.png --camera a", "a"},
        {"run ok.mel --render x.png --camera nobody", "nobody"},
        {"nodes zork", "zork"},
        {"zork", ""},
    };
    for (const Case& c : cases)
    {
        const Outcome o = run(c.arguments);
        EXPECT_NE(o.status, 0) << c.arguments;
        EXPECT_LT(o.status, 128) << c.arguments;
        EXPECT_NE((o.err + o.out).find(c.says), std::string::npos) << c.arguments << "\n" << o.err << o.out;
    }
    EXPECT_FALSE(there("x.ma") || there("x.obj") || there("x.png") || there("x.zork"));
}

TEST_F(MirkRun, TheFirstErrorEndsTheRun)
{
    write("one.mel", "print \"one\\n\";");
    write("bad.py", "raise RuntimeError('halt')");
    write("three.mel", "print \"three\\n\";");
    const Outcome o = run("run one.mel bad.py three.mel --save s.ma");
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.out, "one\n");
    EXPECT_NE(o.err.find("halt"), std::string::npos);
    EXPECT_FALSE(there("s.ma"));
}

TEST_F(MirkRun, FilesOfEveryKindInOneSession)
{
    write("a.mel", "global proc twice(string $p) { setAttr $p (`getAttr $p` * 2); } createNode transform -n t; setAttr t.tx 3;");
    write("b.py", "import maya.cmds as mc, maya.mel as mm\nmm.eval('twice t.tx')\nvalue = mc.getAttr('t.tx')\n");
    write("c.py", "print(value + 1)\n");
    write("tri.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n");
    const Outcome o = run("run a.mel b.py c.py tri.obj -e 'size(`ls -type mesh`)' --save s.ma --export e.obj");
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.out, "7.0\n// Result: 1 //\n");
    EXPECT_NE(read(file("e.obj")).find("f 1 2 3"), std::string::npos) << read(file("e.obj"));
    EXPECT_EQ(run("run s.ma -e 'getAttr t.tx'").out, "// Result: 6 //\n");
    EXPECT_EQ(run("run s.ma -e 'getAttr t.t'").out, "// Result: 6 0 0 //\n");
    EXPECT_EQ(run("run s.ma -e 'ls -type transform t'").out, "// Result: t //\n");
    EXPECT_EQ(run("run s.ma -e 'string $s = \"\"; if (1) $s = \"x\";'").out, "");
}

TEST_F(MirkRun, FramesFromAFarAndBelowZero)
{
    write("t.mel", "createNode transform -n a; connectAttr time1.outTime a.tx; scriptJob -event timeChanged \"print (`currentTime -q` + \\\" \\\")\";");
    struct Case { const char* frames; const char* told; const char* at; };
    const Case cases[] = {{"3-5", "3 4 5 ", "5"}, {"-2-1", "-2 -1 0 1 ", "1"}, {"-3--2", "-3 -2 ", "-2"}, {"7-7", "7 ", "7"}};
    for (const Case& c : cases)
    {
        const Outcome o = run(std::string("run t.mel --frames=") + c.frames + " --save s.ma");
        EXPECT_EQ(o.status, 0) << c.frames << o.err;
        EXPECT_EQ(o.out, c.told) << c.frames;
        EXPECT_EQ(run("run s.ma -e 'currentTime -q'").out, std::string("// Result: ") + c.at + " //\n") << c.frames;
    }
}

TEST_F(MirkRun, PicturesOneAFrame)
{
    write("t.mel", "polyCube -n c; connectAttr time1.outTime c.tx;");
    const Outcome o = run("run t.mel --frames 1-3 --render p.###.png");
    EXPECT_EQ(o.status, 0) << o.err;
    for (const char* name : {"p.001.png", "p.002.png", "p.003.png"})
        EXPECT_TRUE(there(name)) << name;
    EXPECT_NE(read(file("p.001.png")), read(file("p.003.png"))) << "the cube moves";
    EXPECT_EQ(run("run t.mel --render one.png --camera front").status, 0);
    EXPECT_EQ(read(file("one.png")).substr(1, 3), "PNG");
}

}  // namespace
}  // namespace mirk::test

// Broken input of every kind: each gives one message that names what is wrong, and the scene stays as it was.
#include <random>

#include <sys/wait.h>

#include "dag/dag.h"
#include "io/obj.h"
#include "io/scene_file.h"
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class BrokenInput : public Host
{
protected:
    static std::string text() { return io::sceneText("x.ma", false); }

    /// A scene with something of everything.
    static void fill()
    {
        mel("createNode transform -n up; createNode transform -n a -p up; setAttr a.tx 5; addAttr -ln many -at long -m a; setAttr a.many[3] 4");
        mel("addAttr -ln w -at double -min -1 -max 5 a; addAttr -ln pa -dt doubleArray a; setAttr a.pa -type doubleArray 2 1 2");
        mel("createNode transform -n b; connectAttr a.tx b.tx; createNode transform -n locked; setAttr -lock on locked.tx");
        mel("polyCreateFacet -n q -p 0 0 0 -p 1 0 0 -p 1 1 0 -p 0 1 0; polyColorPerVertex -rgb 0.1 0.2 0.3 q.vtx[0:2]");
        mel("curve -n c -d 2 -p 0 0 0 -p 1 2 3 -p 4 5 6; select -cl");
    }
    /// Errors and warnings told beside the one that was thrown.
    int told() const
    {
        return int(std::count_if(messages.begin(), messages.end(), [](const Message& m) { return m.kind == message::kError || m.kind == message::kWarning; }));
    }
};

struct Wrong { const char* command; const char* names; };

TEST_F(BrokenInput, CommandsNameWhatIsWrongAndChangeNothing)
{
    fill();
    const Wrong cases[] = {
        {"createNode zork", "zork"},
        {"createNode transform -p zork", "zork"},
        {"setAttr zork.tx 1", "zork"},
        {"setAttr a.zork 1", "zork"},
        {"getAttr a.zork", "zork"},
        {"setAttr -zork 1 a.tx 1", "zork"},
        {"polyCube -zork 1", "zork"},
        {"loadPlugin \"zork\"", "zork"},
        {"unloadPlugin \"zork\"", "zork"},
        {"setAttr a.t 1 2", "a.translate"},
        {"setAttr a.tx \"zork\"", "zork"},
        {"setAttr a.tx -type \"zork\" 1", "zork"},
        {"setAttr a.tx -type \"doubleArray\" 1 1", "a.translateX"},
        {"setAttr a.pa -type \"doubleArray\" 3 1 2", "a.pa"},
        {"setAttr a.pa -type \"doubleArray\" -1", "-1"},
        {"setAttr a.pa -type \"doubleArray\" 2000000000 1", "a.pa"},
        {"setAttr a.w 9", "a.w"},
        {"setAttr a.many[-1] 4", "-1"},
        {"getAttr a.many[-1]", "-1"},
        {"getAttr a.many[99999999999]", "a.many"},
        {"setAttr a.many[x] 4", "many["},
        {"setAttr a.tx[0] 4", "tx"},
        {"setAttr locked.tx 1", "locked.translateX"},
        {"setAttr b.tx 1", "b.translateX"},
        {"connectAttr a.tx zork.tx", "zork"},
        {"connectAttr a.tx b.zork", "zork"},
        {"connectAttr a.pa b.ty", "a.pa"},
        {"connectAttr a.t b.ty", "a.t"},
        {"connectAttr qShape.outMesh c.ty", "outMesh"},
        {"connectAttr b.tx a.tx", "a.translateX"},
        {"connectAttr a.ty a.ty", "a.translateY"},
        {"connectAttr a.ty b.tx", "b.translateX"},
        {"connectAttr a.ty locked.tx", "locked.translateX"},
        {"disconnectAttr a.ty b.ty", "a.translateY"},
        {"addAttr -ln zork -at zork2 a", "zork2"},
        {"addAttr -ln \"z o\" -at double a", "z o"},
        {"addAttr -ln w -at double a", "w"},
        {"deleteAttr a.zork", "zork"},
        {"delete zork", "zork"},
        {"delete persp", "persp"},
        {"rename zork z", "zork"},
        {"rename a \"%\"", "%"},
        {"parent up a", "up"},
        {"parent zork up", "zork"},
        {"group zork", "zork"},
        {"duplicate zork", "zork"},
        {"select zork", "zork"},
        {"move 1 2 3 zork", "zork"},
        {"xform -t 1 2 a a", "'a'"},
        {"listRelatives zork", "zork"},
        {"currentUnit -l zork", "zork"},
        {"curve -d 3 -p 0 0 0", "3"},
        {"polyCreateFacet -p 0 0 0 -p 1 0 0", "polyCreateFacet"},
        {"polyEvaluate -v zork", "zork"},
        {"polyColorPerVertex -rgb 1 0 0 zork.vtx[0]", "zork"},
        {"aliasAttr \"x y\" a.tx", "x y"},
        {"file -open \"/zork/none.ma\"", "none.ma"},
        {"file -import \"/zork/none.obj\"", "none.obj"},
        {"file -import \"/zork\"", "/zork"},
        {"file -exportAll \"/zork/none.obj\"", "/zork"},
        {"source \"zork.mel\"", "zork"},
        {"zork 1 2", "zork"},
        {"int $x = \"a\" + {1}; setAttr a.tx 9", "+"},
        {"setAttr a.ty 3; error \"own words\"", "own words"},
    };
    for (const Wrong& c : cases)
    {
        const bool        edits = std::string(c.command).find("error") != std::string::npos;
        const std::string before = text();
        messages.clear();
        const std::string said = melError(c.command);
        EXPECT_NE(said.find(c.names), std::string::npos) << c.command << "\nsaid: " << said;
        EXPECT_EQ(said.find('\n'), std::string::npos) << c.command << "\nsaid: " << said;
        EXPECT_EQ(told(), 0) << c.command;
        if (!edits)
        {
            EXPECT_EQ(text(), before) << c.command;
        }
    }
    EXPECT_EQ(num("getAttr a.ty"), 3);   // what came before the error stands, as in any script
}

TEST_F(BrokenInput, PythonRaisesWithTheSameWords)
{
    fill();
    const std::string before = text();
    const Wrong cases[] = {
        {"mc.createNode('zork')", "zork"},
        {"mc.setAttr('zork.tx', 1)", "zork.tx"},
        {"mc.setAttr('a.tx', zork=1)", "zork"},
        {"mc.setAttr('a.tx', object())", "object"},
        {"mc.setAttr('a.tx', [1, 2, 3])", "a.tx"},
        {"mc.setAttr('a.many[-1]', 1)", "-1"},
        {"mc.setAttr('a.pa', [1.0, 'x'], type='doubleArray')", "x"},
        {"mc.connectAttr('b.tx', 'a.tx')", "a.translateX"},
        {"mc.loadPlugin('zork')", "zork"},
        {"mc.zork()", "zork"},
        {"mc.setAttr(None, 1)", "None"},
        {"mc.polyCube(sx='zork')", "'sx'"},
        {"mc.curve(d=3, p=[(0, 0, 0), (1, 2)])", "'p'"},
        {"import maya.mel as mel; mel.eval('setAttr zork.tx 1')", "zork.tx"},
        {"raise ValueError('own words')", "own words"},
        {"[][3]", "IndexError"},
    };
    for (const Wrong& c : cases)
    {
        std::string said;
        try
        {
            python::run("import maya.cmds as mc\n" + std::string(c.command) + "\n");
            ADD_FAILURE() << c.command << " was expected to fail";
        }
        catch (const std::exception& e)
        {
            said = e.what();
        }
        EXPECT_NE(said.find(c.names), std::string::npos) << c.command << "\nsaid: " << said;
        EXPECT_EQ(text(), before) << c.command;
    }
}

// ---- OBJ ---------------------------------------------------------------------------------------------------------

const char* const kObj = "# a cube\no cube\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1 1 0 0\nv 0 1 1\nvt 0 0\nvt 1 0.5\nvn 0 0 1\n"
                         "g low\nf 1/1/1 4/2/1 3/1/1 2/1/1\nf 5 6 7 8\ng high\nf 1 2 6 5\nf -6 -5 -1 -2\nf 3//1 4//1 8//1 7//1\nf 4 1 5 8\n";

TEST_F(BrokenInput, ObjFilesThatAreRefused)
{
    fill();
    const std::string before = text();
    const std::string points = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    struct Case { const char* name; std::string content; const char* says; };
    const Case cases[] = {
        {"missing.obj", points + "f 1 2 3\nf 1 2 4\n", ":5: "},
        {"huge.obj", points + "f 1 2 2147483647\n", ":4: "},
        {"wider.obj", points + "f 1 2 99999999999999999999\n", ":4: "},
        {"negative.obj", points + "f -1 -2 -4\n", ":4: "},
        {"lowest.obj", points + "f 1 2 -2147483648\n", ":4: "},
        {"zero.obj", points + "f 0 1 2\n", ":4: "},
        {"words.obj", points + "f one two three\n", ":4: "},
        {"two.obj", points + "f 1 2\n", ":4: "},
        {"uv.obj", points + "vt 0 0\nf 1/1 2/2 3/1\n", ":5: "},
        {"cut.obj", points + "f 1 2", ":4: "},
        {"early.obj", "f 1 2 3\n" + points.substr(0, 16), ":1: "},
        {"empty.obj", "", "empty.obj"},
        {"rubbish.obj", std::string("\x7f" "ELF\0\0\1\2\xff\xfe", 10) + std::string(3000, '\xee'), "rubbish.obj"},
        {"picture.obj", "\x89PNG\r\n\x1a\n and so on\n", "picture.obj"},
        {"nan.obj", points + "v nan 0 0\nf 1 2 4\n", "nan.obj:4"},
        {"text.obj", "v one two three\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "text.obj:1"},
        {"short.obj", "v 1 2\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "short.obj:1"},
    };
    for (const Case& c : cases)
    {
        messages.clear();
        const std::string said = melError("file -import \"" + write(c.name, c.content) + "\"");
        EXPECT_NE(said.find(c.says), std::string::npos) << c.name << "\nsaid: " << said;
        EXPECT_NE(said.find(c.name), std::string::npos) << c.name << "\nsaid: " << said;
        EXPECT_EQ(told(), 0) << c.name;
        EXPECT_EQ(text(), before) << c.name;
    }
}

/// Some bytes replaced, taken out or doubled.
std::string spoiled(const std::string& text, std::mt19937& random, int changes)
{
    std::string s = text;
    for (int i = 0; i < changes && !s.empty(); ++i)
    {
        const size_t at = random() % s.size();
        constexpr char likely[] = "0123456789-/.;\"'{}[]()\\ \n\t$ev\0\xff";
        switch (random() % 4)
        {
        case 0: s[at] = char(random()); break;
        case 1: s[at] = likely[random() % (sizeof likely - 1)]; break;
        case 2: s.erase(at, 1 + random() % 20); break;
        default: s.insert(at, s.substr(random() % s.size(), random() % 12)); break;
        }
    }
    return s;
}

TEST_F(BrokenInput, ObjTextWithBytesChanged)
{
    std::mt19937 random(3);
    const std::string good = kObj;
    std::vector<NamedMesh> meshes;
    std::string            error;
    ASSERT_TRUE(parseObj(good, "good.obj", meshes, error)) << error;
    int refused = 0;
    for (int i = 0; i < 3000; ++i)
    {
        meshes.clear();
        error.clear();
        const std::string bad = i < int(good.size()) ? good.substr(0, size_t(i)) : spoiled(good, random, 1 + int(random() % 6));
        if (!parseObj(bad, "bad.obj", meshes, error))
        {
            ++refused;
            EXPECT_EQ(error.compare(0, 7, "bad.obj"), 0) << error;
            EXPECT_TRUE(meshes.empty());
            continue;
        }
        for (const NamedMesh& m : meshes)
            ASSERT_TRUE(m.body) << bad;
    }
    EXPECT_GT(refused, 300);
}

// ---- scene files -------------------------------------------------------------------------------------------------

class BrokenScene : public BrokenInput
{
protected:
    void SetUp() override
    {
        BrokenInput::SetUp();
        fill();
        mel("polySphere -n s -sx 8 -sy 6; delete -ch s; polyCube -n k; delete -ch k; sphere -n n; circle -n ring; setAttr k.r 10 20 30");
        mel("polySoftEdge -a 30 k; polyNormalPerVertex -xyz 0 1 0 k.vtx[2]");
        whole_ = text();
        reset();
    }
    void reset()
    {
        mel("file -force -new; createNode transform -n mine; setAttr mine.tx 5; setAttr persp.tx 77; curve -n line -d 1 -p 0 0 0 -p 1 2 3; select mine");
        before_ = text();
    }
    /// Opens what has to be refused.
    void refuse(const std::string& content, const std::string& what)
    {
        messages.clear();
        const std::string said = melError("file -force -open \"" + write("bad.ma", content) + "\"");
        EXPECT_NE(said.find("bad.ma"), std::string::npos) << what << ": " << said;
        EXPECT_EQ(told(), 0) << what;
        ASSERT_EQ(text(), before_) << what;
    }

    std::string whole_, before_;
};

TEST_F(BrokenScene, FilesCutOffLoadNothing)
{
    ASSERT_GT(whole_.size(), 6000u);
    for (size_t length = 0; length + 30 < whole_.size(); length += 1024)
        refuse(whole_.substr(0, length), "cut at " + std::to_string(length));
    // cut inside, with the last line still there
    const std::string end = "\n" + whole_.substr(whole_.rfind("// End of"));
    for (size_t length = 700; length < whole_.size() - 200; length += 1024)
    {
        messages.clear();
        write("bad.ma", whole_.substr(0, length) + end);
        bool failed = false;
        try
        {
            mel::execute("file -force -open \"" + file("bad.ma") + "\"");
        }
        catch (const std::exception&)
        {
            failed = true;
        }
        if (!failed)
            reset();
        ASSERT_EQ(text(), before_) << length;
    }
}

TEST_F(BrokenScene, BytesChangedEitherLoadOrChangeNothing)
{
    std::mt19937 random(5);
    int refused = 0;
    for (int i = 0; i < 150; ++i)
    {
        const std::string name = write("bad.ma", spoiled(whole_, random, 1 + i % 8));
        const std::string how = i % 3 ? "-open" : "-import";
        try
        {
            mel::execute("file -force " + how + " \"" + name + "\"");
            reset();
        }
        catch (const std::exception& e)
        {
            ++refused;
            EXPECT_NE(std::string(e.what()).find("bad.ma"), std::string::npos) << e.what();
            ASSERT_EQ(text(), before_) << "file " << i << ": " << e.what();
        }
    }
    EXPECT_GT(refused, 30);
}

// ---- scripts -----------------------------------------------------------------------------------------------------

TEST_F(BrokenInput, RubbishScripts)
{
    const char* const tokens[] = {"int", "$a", "$b", "[", "]", "(", ")", "{", "}", ";", ";", "=", "+", "-", "*", "%", "1", "-1", "2147483647",
                                  "1e400", "\"x\"", "\"\\", "`", "<<", ">>", ",", "string", "matrix", "proc", "global", "return", "if", "else",
                                  "switch", "case", "?", ":", "&&", ".", "setAttr", "size", "-tx", "0x", "//", "/*", "*/", "\xff", "@", "float", "!"};
    std::mt19937 random(9);
    for (int i = 0; i < 1500; ++i)
    {
        std::string script;
        for (int n = 1 + int(random() % 14); n > 0; --n)
            script += std::string(tokens[random() % std::size(tokens)]) + (random() % 3 ? " " : "");
        try
        {
            mel::execute(script);
        }
        catch (const std::exception& e)
        {
            EXPECT_STRNE(e.what(), "") << script;
        }
    }
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "(";
    EXPECT_NE(melError("int $x = " + deep), "");
    EXPECT_NE(melError("global proc int zorkForever(int $n) { return zorkForever($n + 1); } zorkForever(0)"), "");
    EXPECT_EQ(num("1 + 1"), 2);   // still in order
}

// ---- the command -------------------------------------------------------------------------------------------------

TEST_F(BrokenInput, TheCommandFailsWithOneMessage)
{
    const std::string binary = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "mirk").string();
    const std::string head = "//Maya ASCII 2020 scene\nrequires maya \"2020\";\n";
    struct Case { std::string arguments; const char* names; };
    const Case cases[] = {
        {"run '" + file("zork.py") + "'", "zork.py"},
        {"run '" + write("faces.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 4\n") + "'", "faces.obj:4"},
        {"run '" + write("cut.ma", head + "createNode transform -n \"t\";\n\tsetAttr") + "'", "cut.ma"},
        {"run '" + write("rubbish.ma", std::string(5000, '\xee')) + "'", "rubbish.ma"},
        {"run -e 'createNode zork'", "zork"},
        {"run -e 'setAttr persp.zork 1'", "persp.zork"},
        {"run -e 'setAttr -zork 1 persp.tx'", "zork"},
        {"run -e 'loadPlugin zork'", "zork"},
        {"run -e 'createNode transform -n a; connectAttr a.tx a.tx'", "a.translateX"},
        {"run -e 'setAttr persp.t[-1] 1'", "persp.t"},
        {"run -e 'print (1'", "-e"},
        {"run '" + write("raises.py", "import maya.cmds as mc\nmc.createNode('zork')\n") + "'", "zork"},
        {"run --render /zork/x.png -e ''", "/zork/x.png"},
        {"run --save /zork/x.ma -e ''", "/zork/x.ma"},
        {"run --export /zork/x.obj -e ''", "/zork/x.obj"},
        {"run --frames 9-1 -e ''", "9-1"},
        {"run --frames 1-99999999999 -e ''", "1-99999999999"},
        {"nodes zork", "zork"},
    };
    for (const Case& c : cases)
    {
        const std::string err = file("err");
        const int         status = std::system(("'" + binary + "' " + c.arguments + " >/dev/null 2>'" + err + "' </dev/null").c_str());
        const std::string said = read(err);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << c.arguments << "\n" << status << "\n" << said;
        EXPECT_NE(said.find(c.names), std::string::npos) << c.arguments << "\n" << said;
        const size_t error = said.find("// Error: ");   // behind the toolkit's banner; a traceback is Python's own form
        EXPECT_EQ(error == std::string::npos, said.find("Traceback") != std::string::npos) << c.arguments << "\n" << said;
        EXPECT_EQ(said.find("// Error: ", error + 1), std::string::npos) << c.arguments << "\n" << said;
    }
}

}  // namespace
}  // namespace mirk::test

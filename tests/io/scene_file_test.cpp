// Scene files: what is saved comes back equal; broken files change nothing.
#include "io/scene_file.h"

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class SceneFile : public Host
{
protected:
    /// The scene as text, whatever its name.
    static std::string text() { return io::sceneText("x.ma", false); }
    static constexpr const char* kHead = "//Maya ASCII 2020 scene\nrequires maya \"2020\";\n";
};

TEST_F(SceneFile, EverythingSavedComesBackEqual)
{
    mel("createNode transform -n up; setAttr up.t 0.1 1e-300 12345.678901234567; setAttr up.r 30 0.1 77.7; createNode transform -n a -p up; setAttr -lock on a.tx; setAttr -k off a.sx");
    mel("addAttr -ln w -sn ww -at double -min -1 -max 5 -dv 0.3 -k 1 a; setAttr a.w 0.7; addAttr -ln kind -at \"enum\" -en \"x:y=5:z\" a; setAttr a.kind 6");
    mel("addAttr -ln vec -at double3 a; addAttr -ln vx -at double -p vec a; addAttr -ln vy -at double -p vec a; addAttr -ln vz -at double -p vec a; setAttr a.vy 2");
    mel("addAttr -ln mul -at long -m a; setAttr a.mul[3] 4; setAttr a.mul[70] 5; addAttr -ln txt -dt \"string\" a; setAttr a.txt -type \"string\" \"tab\\t \\\"q\\\" \\\\ new\\nline;\"");
    mel("addAttr -ln pa -dt pointArray a; setAttr a.pa -type pointArray 2 0.1 0.2 0.3 1 3 4 5 0.5; connectAttr up.ty a.w; aliasAttr nick a.mul[3]");
    mel("polyCreateFacet -n q -p 0.1 0 0 -p 1 0 0 -p 1 1 0 -p 0 1 0; polyColorPerVertex -rgb 0.1 0.2 0.3 q.vtx[0:2]; polySoftEdge -a 0 q");
    mel("polyNormalPerVertex -xyz 0 1 0 q.vtx[2]; polyUVSet -create -uvSet second q; curve -n c -d 2 -p 0.1 0 0 -p 1 2 3 -p 4 5 6; currentUnit -t pal; fileInfo key \"a value\"");
    const std::string before = text();
    mel("file -rename \"" + file("a.ma") + "\"; file -save; file -new; file -open \"" + file("a.ma") + "\"");
    EXPECT_EQ(text(), before);
    EXPECT_EQ(str("getAttr a.txt"), "tab\t \"q\" \\ new\nline;");
    EXPECT_EQ(str("connectionInfo -sfd a.w"), "up.translateY");
    EXPECT_EQ(num("getAttr a.nick"), 4);
    EXPECT_EQ(str("currentUnit -q -t"), "pal");
    EXPECT_EQ(num("file -q -modified"), 0);
    mel("currentUnit -t film");
}

TEST_F(SceneFile, WhatNobodyRegisteredIsKept)
{
    const std::string unknown = "createNode zorkNode -n \"z\";\n\tsetAttr \".amount\" 0.25;\n\tsetAttr -s 2 \".list[0:1]\" -type \"zorkData\" 1 \"two\" 3;\n";
    const std::string known = "createNode transform -n \"t\";\n\tsetAttr \".tx\" 2;\n\tsetAttr \".zorkAttr\" yes;\n";
    write("u.ma", kHead + unknown + known + "connectAttr \"t.tx\" \"z.amount\";\n// End of u.ma\n");
    mel("file -open \"" + file("u.ma") + "\"");
    EXPECT_EQ(strings("ls -type unknown"), std::vector<std::string>{"z"});
    EXPECT_NE(said(message::kWarning).find("zorkNode"), std::string::npos);
    const std::string again = text();
    EXPECT_NE(again.find(unknown), std::string::npos) << again;
    EXPECT_NE(again.find("\tsetAttr \".zorkAttr\" yes;\n"), std::string::npos);
    EXPECT_NE(again.find("connectAttr \"t.tx\" \"z.amount\";\n"), std::string::npos);
    mel("delete z");
    EXPECT_EQ(text().find("zorkNode"), std::string::npos);
    EXPECT_EQ(text().find("z.amount"), std::string::npos);
}

TEST_F(SceneFile, BrokenFilesLeaveTheScene)
{
    mel("createNode transform -n mine; setAttr mine.tx 5; setAttr persp.tx 77; currentUnit -linear m");
    const std::string before = text();
    struct Case { const char* name; std::string content; const char* says; };
    const Case cases[] = {
        {"cut.ma", std::string(kHead) + "createNode transform -n \"t\";\n\tsetAttr \".t", "cut off"},
        {"empty.ma", "", "no scene file"},
        {"other.ma", "hello\n// End of other.ma\n", "no scene file"},
        {"value.ma", std::string(kHead) + "createNode transform -n \"t\";\n\tsetAttr \".tx\" word;\n// End of value.ma\n", "line 4"},
        {"cycle.ma", std::string(kHead) + "createNode transform -n \"t\";\nconnectAttr \"t.tx\" \"t.tx\";\n// End of cycle.ma\n", "line 4"},
        {"command.ma", std::string(kHead) + "zorkCommand 1;\n// End of command.ma\n", "zorkCommand"},
        {"units.ma", std::string(kHead) + "currentUnit -l cm;\nsetAttr persp.tx 1;\nconnectAttr \"a.b\" \"c.d\";\n// End of units.ma\n", "a.b"},
        {"face.ma", std::string(kHead) + "createNode transform -n \"t\";\ncreateNode mesh -n \"s\" -p \"t\";\n\tsetAttr -s 2 \".vt[0:1]\" 0 0 0 1 1 1;\n\tsetAttr -s 3 \".ed[0:2]\" 0 1 0 1 2 0 2 0 0;\n"
                                         "\tsetAttr \".fc[0]\" -type \"polyFaces\" f 3 0 1 2;\n// End of face.ma\n", "s"},
        {"range.ma", std::string(kHead) + "createNode transform -n \"t\";\ncreateNode mesh -n \"s\" -p \"t\";\n\tsetAttr \".vt[0:2000000000]\" 0 0 0;\n// End of range.ma\n", "numbers expected"},
    };
    for (const Case& c : cases)
    {
        write(c.name, c.content);
        const std::string message = melError("file -force -open \"" + file(c.name) + "\"");
        EXPECT_NE(message.find(c.says), std::string::npos) << c.name << "\nsaid: " << message;
        EXPECT_EQ(text(), before) << c.name;
        melError("file -import \"" + file(c.name) + "\"");
        EXPECT_EQ(text(), before) << c.name << " imported";
    }
    EXPECT_NE(melError("file -f -open \"" + file("none.ma") + "\"").find("none.ma"), std::string::npos);
    EXPECT_NE(melError("file -exportAll \"/nosuchfolder/x.ma\"").find("nosuchfolder"), std::string::npos);
    mel("currentUnit -linear cm");
}

TEST_F(SceneFile, ImportRenamesWhatIsTaken)
{
    mel("createNode transform -n up; createNode transform -n a -p up; setAttr a.tx 3; connectAttr a.tx up.ty; file -rename \"" + file("two.ma") + "\"; file -save");
    mel("file -import \"" + file("two.ma") + "\"");
    EXPECT_EQ(str("connectionInfo -sfd two_up.ty"), "two_a.translateX");
    EXPECT_EQ(strings("listRelatives -f two_up"), std::vector<std::string>{"|two_up|two_a"});
    EXPECT_EQ(str("connectionInfo -sfd up.ty"), "a.translateX");
}

TEST_F(SceneFile, ExportSelectedTakesWhatItHangsOn)
{
    mel("createNode transform -n up; createNode transform -n a -p up; createNode network -n n; addAttr -ln x -at double n; connectAttr n.x a.tx; createNode transform -n other; select a");
    mel("file -exportSelected \"" + file("sel.ma") + "\"; file -f -new; file -import \"" + file("sel.ma") + "\"");
    EXPECT_EQ(num("objExists up"), 1);
    EXPECT_EQ(str("connectionInfo -sfd a.tx"), "n.x");
    EXPECT_EQ(num("objExists other"), 0);
}

}  // namespace
}  // namespace mirk::test

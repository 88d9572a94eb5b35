// OBJ text in the forms that programs and hands write: what is read of it, and what is refused.
#include "io/obj.h"

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class ObjForms : public Host
{
protected:
    /// Imports a text; one line a mesh: name, points, faces, UVs, area.
    std::string imported(const std::string& text)
    {
        mel("file -f -new; file -import \"" + write("model.obj", text) + "\"");
        std::string out;
        for (const std::string& shape : strings("ls -type mesh"))
        {
            std::string counts;
            for (const char* flag : {"-v", "-f", "-uv", "-area"})
                counts += " " + mirk::mel::printed(mel(std::string("polyEvaluate ") + flag + " " + shape));
            out += (out.empty() ? "" : "; ") + strings("listRelatives -p " + shape)[0] + counts;
        }
        return out;
    }
};

constexpr const char* kSquare = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

TEST_F(ObjForms, WhatIsRead)
{
    const std::string square = kSquare;
    struct Case { const char* when; std::string text; const char* gives; };
    const Case cases[] = {
        {"points alone", square + "f 1 2 3 4\n", "model 4 1 0 1"},
        {"no line end at the end", square + "f 1 2 3 4", "model 4 1 0 1"},
        {"carriage returns", "v 0 0 0\r\nv 1 0 0\r\nv 1 1 0\r\nf 1 2 3\r\n", "model 3 1 0 0.5"},
        {"indices from the end", square + "f -4 -3 -2 -1\n", "model 4 1 0 1"},
        {"indices from the end, in between", "v 0 0 0\nv 2 0 0\nv 0 2 0\nf -3 -2 -1\nv 9 9 9\nv 9 9 8\n", "model 5 1 0 2"},
        {"all parts", square + "vt 0 0\nvt 1 0\nvt 1 1\nvn 0 0 1\nf 1/1/1 2/2/1 3/3/1\n", "model 4 1 3 0.5"},
        {"a UV missing in the middle of a line", square + "vt 0 0\nvn 0 0 1\nf 1//1 2//1 3//1\nf 1/1 3/1 4/1\n", "model 4 2 1 1"},
        {"tabs and runs of blanks", "v\t0 0\t0\nv  1   0 0\nv 1 1 0 \n  f  1\t2   3  \n", "model 3 1 0 0.5"},
        {"numbers of every form", "v +0 -0 .0\nv 1e0 0. 0\nv 1.0E+0 1e-0 0\nf 1 2 3\n", "model 3 1 0 0.5"},
        {"a weight and colours behind a point", "v 0 0 0 1\nv 1 0 0 1 0 0\nv 1 1 0 0.5 0.5 0.5\nf 1 2 3\n", "model 3 1 0 0.5"},
        {"remarks, materials and smoothing", "# one\nmtllib none.mtl\n" + square + "usemtl red\ns 1\nf 1 2 3\ns off\nusemtl blue # two\nf 1 3 4\n", "model 4 2 0 1"},
        {"lines and points beside faces", square + "l 1 2 3\np 4\nf 1 2 3\n", "model 4 1 0 0.5"},
        {"words nobody knows", "zork 1 2 3\n" + square + "cstype bspline\nf 1 2 3\nend\n", "model 4 1 0 0.5"},
        {"two objects", square + "o a\nf 1 2 3\nv 0 0 5\nv 2 0 5\nv 0 2 5\no b\nf 5 6 7\n", "a 3 1 0 0.5; b 3 1 0 2"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(imported(c.text), c.gives) << c.when;
}

TEST_F(ObjForms, WhatIsRefused)
{
    const std::string square = kSquare;
    struct Case { const char* when; std::string text; const char* says; };
    const Case cases[] = {
        {"a point past the end", square + "f 1 2 9\n", "9"},
        {"a point before the first", square + "f -5 -1 -2\n", "-5"},
        {"point zero", square + "f 0 1 2\n", ".obj:5:"},
        {"two corners", square + "f 1 2 3\nf 1 2\n", ".obj:6:"},
        {"a UV past the end", square + "vt 0 0\nf 1/1 2/2 3/1\n", ".obj:6:"},
        {"a word for a number", "v 0 zero 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n", ".obj:1:"},
        {"half a point", "v 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n", ".obj:1:"},
        {"nothing in it", "", "model.obj"},
        {"another kind of file", "PK\x03\x04 not text\n", "model.obj"},
    };
    mel("createNode transform -n before");
    for (const Case& c : cases)
    {
        const std::string error = melError("file -import \"" + write("model.obj", c.text) + "\"");
        EXPECT_NE(error.find(c.says), std::string::npos) << c.when << ": " << error;
        EXPECT_TRUE(strings("ls -type mesh").empty()) << c.when;
    }
    EXPECT_EQ(num("objExists before"), 1);
}

TEST_F(ObjForms, WrittenAndReadBack)
{
    mel("polyCube -n box; move 3 0 0 box; polyTorus -n ring -sx 5 -sy 4; polyPlane -n flat -cuv 0; delete -ch box ring flat");
    const std::string before = mirk::mel::printed(mel("exactWorldBoundingBox box"));
    mel("file -f -exportAll \"" + file("all.obj") + "\"");
    mel("select ring; file -f -exportSelected \"" + file("one.obj") + "\"; file -f -new; file -import \"" + file("all.obj") + "\"");
    EXPECT_EQ(strings("ls -type mesh").size(), 3u);
    EXPECT_EQ(mirk::mel::printed(mel("exactWorldBoundingBox box")), before) << "points are written where they stand in the world";
    EXPECT_EQ(num("polyEvaluate -uv ring"), 30) << "6 by 5 along the seams";
    EXPECT_EQ(num("polyEvaluate -e ring"), 40);
    mel("file -f -new; file -import \"" + file("one.obj") + "\"");
    EXPECT_EQ(strings("ls -type mesh").size(), 1u);
}

}  // namespace
}  // namespace mirk::test

#include <cstdio>
#include <filesystem>
#include <random>

#include <maya/MColorArray.h>

#include "io/obj.h"
#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

std::vector<NamedMesh> parse(const std::string& text)
{
    std::vector<NamedMesh> meshes;
    std::string error;
    EXPECT_TRUE(parseObj(text, "a.obj", meshes, error)) << error;
    return meshes;
}

std::vector<int> connects(const MeshBody& b) { return {b.topology().connects().begin(), b.topology().connects().end()}; }

}  // namespace

TEST(Obj, OrderNgonsUnusedAndCoincidentPointsAreKept)
{
    const auto meshes = parse("# comment\r\nv 9 9 9\nv 0 0 0\nv 1 0 0\nv 1 0 0\n  v 1 1 0\nv 0 1 0\n"
                              "vt 0.5 0.25\nvt 1 0\n\nf 2/1 3/2 4 5/1 6/2\nf -4 -3//1 -1\ns off\nusemtl nothing\nf 2 3 5");
    ASSERT_EQ(meshes.size(), 1u);
    const MeshBody& b = *meshes[0].body;
    EXPECT_EQ(b.vertexCount(), 6);
    EXPECT_EQ(b.points()[0], 9);
    EXPECT_EQ(connects(b), (std::vector<int>{1, 2, 3, 4, 5, 2, 3, 5, 1, 2, 4}));
    EXPECT_EQ(b.topology().faceSize(0), 5);
    const UVSet& uvs = b.uvSets().sets[0];
    EXPECT_EQ(uvs.uvs->size(), 2u);
    EXPECT_EQ(uvs.id(1), 1);
    EXPECT_EQ(uvs.id(2), -1);
    EXPECT_EQ((*uvs.uvs)[0].v, 0.25f);
}

TEST(Obj, LargeFaces)
{
    std::string text, face = "f";
    for (int i = 1; i <= 1000; ++i) {
        text += "v " + std::to_string(std::cos(i * 0.00628)) + " " + std::to_string(std::sin(i * 0.00628)) + " 0\n";
        face += " " + std::to_string(i);
    }
    EXPECT_EQ(parse(text + face)[0].body->topology().faceSize(0), 1000);
}

TEST(Obj, ObjectsAndGroupsTakeTheirOwnPoints)
{
    const auto meshes = parse("g default\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 5 0 0\nv 6 0 0\nv 5 1 0\nv 7 7 7\nvt 0 0\nvt 1 1\n"
                              "o left\nf 3/2 1/2 2/2\no right part \nf 6 5 4\ng arm\nf 1 4 6\no left\nf 1 2 3\n");
    ASSERT_EQ(meshes.size(), 3u);
    EXPECT_EQ(meshes[0].name, "left");
    EXPECT_EQ(meshes[1].name, "right part");
    EXPECT_EQ(meshes[2].name, "arm");
    EXPECT_EQ(connects(*meshes[0].body), (std::vector<int>{2, 0, 1, 0, 1, 2})) << "points in the file's order";
    EXPECT_EQ(meshes[0].body->uvSets().sets[0].uvs->size(), 1u);
    EXPECT_EQ(connects(*meshes[1].body), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(meshes[1].body->points()[0], 5);
    EXPECT_EQ(meshes[2].body->vertexCount(), 3);

    const auto named = parse("g default\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 8 8 8\ng only\nf 1 2 3\n");
    ASSERT_EQ(named.size(), 1u);
    EXPECT_EQ(named[0].name, "only");
    EXPECT_EQ(named[0].body->vertexCount(), 4) << "one object has all points";
    EXPECT_EQ(parse("v 1 2 3\nv 4 5 6")[0].body->vertexCount(), 2) << "points alone";
    EXPECT_TRUE(parse("").empty());
}

TEST(Obj, WrongFacesAreNamed)
{
    struct Case { const char *text, *error; };
    const Case cases[] = {
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\n\nf 1 2 3\nf 1 2 4\nf 7 8 9\n", "a.obj:6: a face names point 4 of 3"},
        {"v 0 0 0\nv 1 0 0\nf 1 2 -3\nv 0 0 0\n",                    "a.obj:3: a face names point -3 of 2"},
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\no x\nf 1/1 2/1 3/1\n",          "a.obj:5: a face names UV 1 of 0"},
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 0\n",                     "a.obj:4: a face names no point"},
        {"v 0 0 0\nv 1 0 0\nf \nf 1 2\n",                            "a.obj:4: a face has 2 vertices"},
        {"v 0 0 0\nf a b c\n",                                       "a.obj:2: 'a' is no corner of a face"},
        {"v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 4294967299\n",            "a.obj:4: '4294967299' is no corner of a face"},
        {"v 0 0 0\nv 1e39 0 0\nf 1 2 2\n",                          "a.obj:2: a line of 'v' needs 3 finite numbers"},
    };
    for (const Case& c : cases) {
        std::vector<NamedMesh> meshes(1);
        std::string error;
        EXPECT_FALSE(parseObj(c.text, "a.obj", meshes, error)) << c.text;
        EXPECT_EQ(error, c.error);
        EXPECT_EQ(meshes.size(), 1u) << "nothing is touched";
    }
    std::vector<NamedMesh> meshes;
    std::string error;
    EXPECT_FALSE(readObj("/no/such/file.obj", meshes, error));
    EXPECT_EQ(error, "Cannot read file: /no/such/file.obj");
    EXPECT_FALSE(readObj(std::filesystem::temp_directory_path().string(), meshes, error)) << "a directory";
    EXPECT_FALSE(writeObj("/no/such/dir/a.obj", meshes, error));
}

TEST(Obj, RoundTripIsExact)
{
    NamedMesh sphere{"ball", primitives::sphere(1, 30, 20)}, plane{"", primitives::plane(3, 1, 2, 2)};
    std::mt19937 random(3);
    std::uniform_real_distribution<float> mantissa(-1, 1);
    float* p = sphere.body->writePoints();
    for (int i = 0; i < 3 * sphere.body->vertexCount(); ++i)
        p[i] = std::ldexp(mantissa(random), int(random() % 60) - 30);
    const MColor colors[] = {{0.1f, 0.2f, 0.3f, 1}, unsetColor};
    const int vertices[] = {1, 2};
    sphere.body->setVertexColors(sphere.body->addColorSet(""), colors, vertices, 2);

    const std::string file = std::filesystem::temp_directory_path() / "mirk_obj_round_trip.obj";
    std::string error;
    ASSERT_TRUE(writeObj(file, {sphere, plane}, error)) << error;
    std::vector<NamedMesh> read;
    ASSERT_TRUE(readObj(file, read, error)) << error;
    std::remove(file.c_str());
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].name, "ball");
    const MeshBody &a = *sphere.body, &b = *read[0].body;
    ASSERT_EQ(b.vertexCount(), a.vertexCount());
    for (int i = 0; i < 3 * a.vertexCount(); ++i)
        EXPECT_EQ(a.points()[i], b.points()[i]);
    EXPECT_EQ(connects(a), connects(b));
    for (int c = 0; c < a.cornerCount(); ++c)
        EXPECT_EQ(a.uvSets().sets[0].id(c), b.uvSets().sets[0].id(c));
    ASSERT_EQ(b.colorSets().sets.size(), 1u);
    const Buffer<MColor>& back = b.colorSets().sets[0].ofVertices(b.topology());
    expectColor(back[1], 0.1f, 0.2f, 0.3f, 1);
    expectColor(back[2], -1, -1, -1, -1, "unset stays unset");
    expectColor(back[3], -1, -1, -1, -1);
    EXPECT_EQ(connects(*read[1].body), connects(*plane.body));
    EXPECT_EQ(read[1].body->uvSets().sets[0].uvs->size(), 9u);
}

// What names stand for: wildcards, paths, plugs, components; and the selection.
#include "dag_fixture.h"

#include "dag/component_text.h"
#include "data/component.h"

using namespace dag_test;

namespace {

struct NamesOf : SceneTest
{
    void SetUp() override
    {
        SceneTest::SetUp();
        Node* mesh = make("mesh", "cubeShape");
        edit::connect(cell(make("polyCube", "maker"), "output"), cell(mesh, "inMesh"));
        cube = scene().first("cube");
    }
    Node* cube;
};

TEST_F(NamesOf, ManyForms)
{
    make("transform", "a", make("transform", "g1"));
    make("transform", "a", make("transform", "g2"));
    const struct { const char* text; Names expected; } cases[] = {
        {"cube", {"cube"}},
        {":cube", {"cube"}},
        {"|cube|cubeShape", {"cubeShape"}},
        {"|cubeShape", {}},
        {"cube|cubeShape", {"cubeShape"}},
        {"a", {"g1|a", "g2|a"}},
        {"g?|a", {"g1|a", "g2|a"}},
        {"*|a", {"g1|a", "g2|a"}},
        {"|g1|*", {"g1|a"}},
        {"cub*", {"cube", "cubeShape"}},
        {"nothing", {}},
        {"cube.tx", {"cube.translateX"}},
        {"cube.t", {"cube.translate"}},
        {"g*.tx", {"g1.translateX", "g2.translateX"}},
        {"cube.translate*", {"cube.translate", "cube.translateX", "cube.translateY", "cube.translateZ"}},
        {"cube.inMesh", {"cubeShape.inMesh"}},
        {"cube.nothing", {}},
        {"cube.", {}},
        {"cube.vtx[0:3]", {"cube.vtx[0:3]"}},
        {"cubeShape.vtx[2]", {"cube.vtx[2]"}},
        {"cube.vtx[*]", {"cube.vtx[0:7]"}},
        {"cube.f[]", {"cube.f[0:5]"}},
        {"cube.e[9:500]", {"cube.e[9:11]"}},
        {"cube.map[13]", {"cube.map[13]"}},
        {"cube.vtx[8]", {}},
        {"cube.vtx[-1]", {}},
        {"cube.vtx[1", {}},
        {"cube.vtxFace[1][0]", {"cube.vtxFace[1][0]"}},
        {"cube.cv[0]", {}},
        {"", {}},
        {"|", {}},
        {".tx", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(named(c.text), c.expected) << c.text;
}

TEST_F(NamesOf, OneOrAnErrorThatNamesIt)
{
    make("transform", "a", make("transform", "g1"));
    make("transform", "a", make("transform", "g2"));
    const struct { const char* text; const char* message; } cases[] = {
        {"nothing", "No object matches name: nothing"}, {"a", "More than one object matches name: a"}};
    for (const auto& c : cases)
        try {
            names::one(c.text);
            FAIL() << c.text;
        } catch (const command::Error& e) {
            EXPECT_STREQ(e.what(), c.message);
        }
    EXPECT_THROW(names::node("cube.tx"), command::Error);
    EXPECT_THROW(names::plug("cube"), command::Error);
    EXPECT_EQ(&names::plug("cube.sx"), &cell(cube, "scaleX"));
}

TEST(ComponentText, ReadsAndWrites)
{
    const struct { const char* text; ComponentOf of; MFn::Type type; std::vector<int> indices; bool complete; } cases[] = {
        {"vtx[3]", ComponentOf::mesh, MFn::kMeshVertComponent, {3}, false},
        {"f[2:4]", ComponentOf::any, MFn::kMeshPolygonComponent, {2, 3, 4}, false},
        {"cv[1][0:1]", ComponentOf::any, MFn::kSurfaceCVComponent, {1, 0, 1, 1}, false},
        {"cv[5]", ComponentOf::any, MFn::kCurveCVComponent, {5}, false},
        {"cv[*]", ComponentOf::curve, MFn::kCurveCVComponent, {}, true},
        {"pt[0][1][0:1]", ComponentOf::lattice, MFn::kLatticeComponent, {0, 1, 0, 0, 1, 1}, false},
    };
    for (const auto& c : cases) {
        const Ref<Component> component = parseComponent(c.text, c.of, nullptr);
        ASSERT_TRUE(component) << c.text;
        EXPECT_EQ(component->apiType(), c.type) << c.text;
        EXPECT_EQ(component->indices, c.indices) << c.text;
        EXPECT_EQ(component->complete, c.complete) << c.text;
    }
    std::string why;
    for (const char* bad : {"vtx[a]", "vtx[3:1]", "vtx[1", "vtx[1]]", "vtx[0][1]", "x[1]", "vtx[2:]", "vtx[0:2000000000]", "cv[99999999999]"})
        EXPECT_FALSE(parseComponent(bad, ComponentOf::mesh, nullptr, &why)) << bad;
    EXPECT_NE(why, "");

    Ref<Component> scattered = makeComponent(MFn::kMeshVertComponent);
    const int      indices[] = {7, 1, 2, 0, 9};
    addElements(*scattered, indices, 5);
    EXPECT_EQ(componentTexts(*scattered), (Names{"vtx[0:2]", "vtx[7]", "vtx[9]"}));
}

TEST_F(NamesOf, SelectionMergesForgetsAndIsTakenBack)
{
    { undo::Scope scope("select"); selection::set({names::one("cube"), names::one("cube.vtx[0:2]"), names::one("cube")}); }
    ASSERT_EQ(selection::get().size(), 2u);
    selection::add(names::one("cube.vtx[3]"));
    selection::remove(names::one("cube.vtx[1]"));
    EXPECT_EQ(names::texts(selection::get()[1]), (Names{"cube.vtx[0]", "cube.vtx[2:3]"}));
    { undo::Scope scope("delete"); dag::deleteNode(*cube); }
    EXPECT_TRUE(selection::get().empty());
    undo::undoOne();
    EXPECT_EQ(selection::get().size(), 2u);
}

TEST_F(NamesOf, PatternsDoNotReachOverABar)
{
    EXPECT_TRUE(names::matches("a*b*c", "aXbYbZc"));
    EXPECT_FALSE(names::matches("a*b", "aXc"));
    EXPECT_TRUE(names::matches("*", ""));
    EXPECT_FALSE(names::matches("?", ""));
    make("transform", "c", make("transform", "b", make("transform", "a")));
    EXPECT_EQ(named("a|*|c"), Names{"c"});
    EXPECT_EQ(named("|a|*"), Names{"b"});
    EXPECT_EQ(named("|*c"), Names{});
}

}  // namespace

// Shading groups: who is in them, and what pictures show of their materials.
#include "draw/picture.h"
#include "support/host_fixture.h"
#include "view/scene_draw.h"

using mirk::test::Host;

namespace {

using picture::Pixel;

class Shading : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        options.camera = picture::flatCamera(64);
        options.grid = false;
        // two faces side by side that fill the picture, u from left to right and v upwards
        mel("polyPlane -w 2 -h 2 -sx 2 -sy 1 -ax 0 0 1 -n wall; select -cl");
        mel("proc string shader(string $name) { string $s = `shadingNode -asShader lambert -n ($name + \"Shader\")`;"
            "string $g = `sets -renderable true -noSurfaceShader true -empty -name $name`;"
            "connectAttr ($s + \".outColor\") ($g + \".surfaceShader\"); setAttr ($s + \".diffuse\") 1; return $g; }");
    }
    /// What colour rules at a pixel from the left and from below: r, g, b, w(hite) or k for what is dark.
    char at(int x, int y) const
    {
        const Pixel p = picture::at(mirk::view::renderScene(options), x, 63 - y);
        const int   high = std::max({p.r, p.g, p.b}), low = std::min({p.r, p.g, p.b});
        if (high < 70)
            return 'k';
        return high - low < 40 ? 'w' : high == p.r ? 'r' : high == p.g ? 'g' : 'b';
    }

    mirk::view::SceneDrawOptions options;
};

TEST_F(Shading, AGroupGivesItsColour)
{
    EXPECT_EQ(at(32, 32), 'w') << "no group: grey";
    mel("sets -e -forceElement `shader red` wall; setAttr redShader.color 1 0 0");
    EXPECT_EQ(strings("sets -q red"), (std::vector<std::string>{"wallShape"})) << "the shape is the member";
    EXPECT_EQ(at(16, 32), 'r');
    mel("setAttr redShader.color 0 0 1");
    EXPECT_EQ(at(16, 32), 'b') << "an edit of the shader";
    mel("sets -e -forceElement `shader green` wall; setAttr greenShader.color 0 1 0");
    EXPECT_EQ(at(16, 32), 'g') << "the last group";
    EXPECT_EQ(strings("sets -q red").size(), 0u) << "is the only one";
    EXPECT_NE(melError("sets -e -addElement red wall").find("partition"), std::string::npos);
    mel("setAttr greenShader.transparency 1 1 1");
    EXPECT_EQ(at(16, 32), 'k') << "seen through";
    mel("sets -e -remove green wall");
    EXPECT_EQ(at(16, 32), 'w');
}

TEST_F(Shading, FacesHaveTheirOwn)
{
    mel("sets -e -forceElement `shader red` wall; setAttr redShader.color 1 0 0;"
        "sets -e -forceElement `shader green` wall.f[1]; setAttr greenShader.color 0 1 0");
    EXPECT_EQ(at(16, 32), 'r');
    EXPECT_EQ(at(48, 32), 'g');
    mel("polyColorPerVertex -r 0 -g 0 -b 1 wall; setAttr wallShape.displayColors 1");
    EXPECT_EQ(at(16, 32), 'b') << "colours of the mesh come first";
}

TEST_F(Shading, TexturesCoverTheSurface)
{
    mel("sets -e -forceElement `shader tex` wall; createNode checker -n c; connectAttr c.outColor texShader.color; setAttr c.c1 1 0 0; setAttr c.c2 0 1 0");
    EXPECT_EQ(at(16, 16), 'r');
    EXPECT_EQ(at(48, 16), 'g');
    EXPECT_EQ(at(16, 48), 'g');
    EXPECT_EQ(at(48, 48), 'r');
    mel("createNode place2dTexture -n p; connectAttr p.outUV c.uvCoord; setAttr p.offsetU 0.5");
    EXPECT_EQ(at(16, 16), 'g') << "placed";
    mel("createNode reverse -n r; connectAttr c.outColor r.input; connectAttr -f r.output texShader.color; setAttr c.c1 1 1 0");
    EXPECT_EQ(at(48, 16), 'b') << "behind a node: one minus yellow";
    mel("polyEditUV -u 1.5 -v 0 wall.map[*]; setAttr p.offsetU 0; setAttr c.c1 0 1 1; setAttr c.c2 0 1 1");
    EXPECT_EQ(at(16, 16), 'r') << "UVs beyond the first tile";
    mel("delete c");
    EXPECT_NE(at(16, 16), 'k') << "the texture is gone";
}

TEST_F(Shading, AnImageStandsUpright)
{
    const std::string path = file("four.png");
    mirk::view::renderer().writeImage(path, {2, 2, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0}, {}});
    mel("sets -e -forceElement `shader tex` wall; createNode file -n f; setAttr f.filterType 0; setAttr f.ftn -type \"string\" \"" + path +
        "\"; connectAttr f.outColor texShader.color");
    EXPECT_EQ(at(16, 48), 'r') << "upper left";
    EXPECT_EQ(at(48, 48), 'g') << "upper right";
    EXPECT_EQ(at(16, 16), 'b') << "lower left";
    EXPECT_EQ(at(48, 16), 'k') << "lower right";
}

}  // namespace

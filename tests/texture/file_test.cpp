// The file texture on images that the test writes pixel by pixel.
#include <cmath>

#include "support/host_fixture.h"
#include "view/renderer.h"

using mirk::test::Host;

namespace {

using mirk::view::Image;

class FileTexture : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode file -n f; setAttr f.defaultColor 0 0.25 0.5");
    }
    static std::vector<double> at(double u, double v)
    {
        mel("setAttr f.uvCoord " + std::to_string(u) + " " + std::to_string(v));
        std::vector<double> out = nums("getAttr f.outColor");
        out.push_back(num("getAttr f.outAlpha"));
        return out;
    }
    static void expect(const char* when, double u, double v, const std::vector<double>& wanted)
    {
        const std::vector<double> got = at(u, v);
        ASSERT_EQ(got.size(), 4u) << when;
        for (size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(got[i], wanted[i], 1e-5) << when << ", channel " << i;
    }
    static void use(const std::string& path) { mel("setAttr f.ftn -type \"string\" \"" + path + "\""); }
    std::string save(const std::string& name, Image image)
    {
        mirk::view::renderer().writeImage(file(name), image);
        return file(name);
    }
    /// Top row red, green; bottom row blue and white at half transparency.
    std::string fourPixels(const std::string& name)
    {
        return save(name, {2, 2, 4, {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 127}, {}});
    }
};

TEST_F(FileTexture, PixelsAndTheStepsBetweenThem)
{
    use(fourPixels("four.png"));
    mel("setAttr f.filterType 0");
    expect("lower left", 0.1, 0.1, {0, 0, 1, 1});
    expect("lower right, its alpha", 0.9, 0.1, {1, 1, 1, 127 / 255.});
    expect("upper left", 0.49, 0.5, {1, 0, 0});
    expect("the corner itself", 1, 1, {0, 1, 0});
    expect("the next tile", 1.1, -0.9, {0, 0, 1});
    expect("out of reach", 1e10, 0, {0, 0.25, 0.5, 0});
    mel("setAttr f.filterType 3");
    expect("the middle of a pixel", 0.25, 0.25, {0, 0, 1, 1});
    expect("between two pixels", 0.5, 0.25, {0.5, 0.5, 1});
    expect("a quarter on, in both directions", 0.375, 0.375,   // 9/16 blue, 3/16 white, 3/16 red, 1/16 green
           {3 / 16. + 3 / 16., 3 / 16. + 1 / 16., 9 / 16. + 3 / 16.});
    expect("on the border both sides count", 0, 0.75, {0.5, 0.5, 0});
    EXPECT_EQ(nums("getAttr f.outSize"), (std::vector<double>{2, 2}));
    EXPECT_EQ(num("getAttr f.fileHasAlpha"), 1);
    mel("setAttr f.uvFilterSize 1 1");
    expect("a filter as wide as the image takes its mean", 0.3, 0.3, {0.5, 0.5, 0.5, (3 + 127 / 255.) / 4});
}

TEST_F(FileTexture, KindsOfImages)
{
    mel("setAttr f.filterType 0");
    use(save("grey.png", {2, 1, 1, {0, 51}, {}}));
    expect("grey", 0.9, 0.5, {0.2, 0.2, 0.2, 1});
    EXPECT_EQ(num("getAttr f.fileHasAlpha"), 0);
    use(save("three.png", {1, 1, 3, {51, 102, 153}, {}}));
    expect("no alpha is 1", 0.5, 0.5, {0.2, 0.4, 0.6, 1});
    use(save("wide.exr", {2, 1, 3, {}, {-1.5f, 0, 3, 0.25f, 100, 1e-3f}}));
    expect("numbers beyond 0 and 1", 0.1, 0.5, {-1.5, 0, 3});
    expect("the second pixel", 0.9, 0.5, {0.25, 100, 1e-3});
}

TEST_F(FileTexture, AnotherNameIsReadAgain)
{
    mel("setAttr f.filterType 0");
    use(save("a.png", {1, 1, 3, {255, 0, 0}, {}}));
    const std::string b = save("b.0007.png", {1, 1, 3, {0, 255, 0}, {}});
    expect("the first", 0.5, 0.5, {1, 0, 0});
    use(b);
    expect("the second", 0.5, 0.5, {0, 1, 0});
    use(file("b.0001.png"));
    mel("setAttr f.useFrameExtension 1; setAttr f.frameExtension 5; setAttr f.frameOffset 2");
    expect("by frame, as many digits", 0.5, 0.5, {0, 1, 0});
    mel("setAttr f.disableFileLoad 1");
    expect("switched off", 0.5, 0.5, {0, 0.25, 0.5});
    EXPECT_EQ(said(mirk::message::kWarning), "");
}

TEST_F(FileTexture, WhatCannotBeReadIsNamedOnce)
{
    const std::string good = read(fourPixels("four.png"));
    struct Bad { const char* name; std::string content; };
    const Bad cases[] = {
        {"missing.png", "-"},
        {"empty.png", ""},
        {"text.png", "no image at all"},
        {"cut.png", good.substr(0, good.size() / 2)},
        {"folder", "/"},
        {"unknown.kind", "no image at all"},
        {"huge.pgm", "P5 2000000000 2000000000 255\n"},
    };
    for (const Bad& bad : cases) {
        const std::string path = file(bad.name);
        if (bad.content == "/")
            std::filesystem::create_directory(path);
        else if (bad.content != "-")
            write(bad.name, bad.content);
        messages.clear();
        use(path);
        expect(bad.name, 0.3, 0.3, {0, 0.25, 0.5, 0});
        const std::string first = said(mirk::message::kWarning);
        EXPECT_NE(first.find("f: the image '" + path + "' cannot be read: "), std::string::npos) << first;
        expect(bad.name, 0.4, 0.3, {0, 0.25, 0.5, 0});
        EXPECT_EQ(said(mirk::message::kWarning), first) << "told once";
        EXPECT_EQ(nums("getAttr f.outSize"), (std::vector<double>{0, 0}));
    }
    use(file("late.png"));
    expect("not there yet", 0.3, 0.3, {0, 0.25, 0.5});
    fourPixels("late.png");
    mel("setAttr f.filterType 0");
    expect("there now", 0.3, 0.3, {0, 0, 1});
    use("");
    messages.clear();
    expect("no name", 0.3, 0.3, {0, 0.25, 0.5});
    EXPECT_EQ(said(mirk::message::kWarning), "");
}

}  // namespace

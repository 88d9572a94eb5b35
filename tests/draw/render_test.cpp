// The renderer module by its pixels.
#include <filesystem>

#include "picture.h"
#include "view/recorder.h"

using namespace picture;

TEST(Render, DepthOrderAndPriority)
{
    struct Case { const char* when; float zFirst, zSecond; uint32_t priorityFirst; bool xrayFirst; Pixel middle; };
    const Case cases[] = {
        {"the nearer one first in the list", 1, 0, 0, false, {255, 0, 0, 255}},
        {"the nearer one last in the list",  0, 1, 0, false, {0, 255, 0, 255}},
        {"same depth: the later one",        0, 0, 0, false, {0, 255, 0, 255}},
        {"same depth: the higher priority",  0, 0, 5, false, {255, 0, 0, 255}},
        {"priority yields to true depth",    0, 1, 5, false, {0, 255, 0, 255}},
        {"in front of everything",           0, 1, 0, true,  {255, 0, 0, 255}},
    };
    for (const Case& c : cases) {
        DrawList list{{square(0.5f, c.zFirst, kRed), square(0.5f, c.zSecond, kGreen)}, {}};
        list.items[0].state.depthPriority = c.priorityFirst;
        list.items[0].state.xray = c.xrayFirst;
        const Image image = render(list, flatCamera());
        EXPECT_EQ(at(image, 32, 32), c.middle) << c.when;
        EXPECT_EQ(at(image, 2, 2), (Pixel{0, 0, 0, 255})) << c.when;
    }
}

TEST(Render, RowsFromTheTopAndColoursUnchanged)
{
    // a small square in the upper left quarter, of a colour that a wrong gamma would move
    Item item = square(0.2f, 0, {0.5f, 0.25f, 0.75f, 1});
    item.matrix[12] = -0.5;
    item.matrix[13] = 0.5;
    for (const int samples : {1, 4, 16}) {
        const Image image = render({{item}, {}}, flatCamera(), samples);
        const Pixel p = at(image, 16, 16);
        EXPECT_NEAR(p.r, 128, 1);
        EXPECT_NEAR(p.g, 64, 1);
        EXPECT_NEAR(p.b, 191, 1);
        EXPECT_EQ(at(image, 16, 48), (Pixel{0, 0, 0, 255})) << samples;
    }
}

TEST(Render, LitFromBothSides)
{
    // The same square with its normal towards the eye and away from it looks the same; turned to the ground it is darker.
    const auto shade = [](float ny, float nz) {
        Item item = square(0.9f, 0, {0.5f, 0.5f, 0.5f, 1});
        item.state.lit = true;
        for (int i = 0; i < 4; ++i)
            item.normals.insert(item.normals.end(), {0, ny, nz});
        return at(render({{item}, {}}, flatCamera()), 32, 32);
    };
    EXPECT_EQ(shade(0, 1), shade(0, -1));
    EXPECT_GT(shade(0.7f, 0.7f).r, shade(-0.7f, 0.7f).r + 40);
    EXPECT_GT(shade(0, 1).r, 90);

    // without normals facets are found: a flat square is as bright as with its true normal
    Item bare = square(0.9f, 0, {0.5f, 0.5f, 0.5f, 1});
    bare.state.lit = true;
    EXPECT_NEAR(at(render({{bare}, {}}, flatCamera()), 32, 32).r, shade(0, 1).r, 1);
}

TEST(Render, MirroredMatrixKeepsTheLight)
{
    Item item = square(0.9f, 0, {0.5f, 0.5f, 0.5f, 1});
    item.state.lit = true;
    for (int i = 0; i < 4; ++i)
        item.normals.insert(item.normals.end(), {0, 0.6f, 0.8f});
    const Pixel plain = at(render({{item}, {}}, flatCamera()), 32, 32);
    item.matrix[0] = -1;   // mirrored in x: a normal without x stays
    EXPECT_EQ(at(render({{item}, {}}, flatCamera()), 32, 32), plain);
    item.matrix = kIdentity;
    item.matrix[5] = 4;    // stretched in y: the normal leans less, to (0, 0.184, 0.983)
    Item leaning = square(0.2f, 0, {0.5f, 0.5f, 0.5f, 1});
    leaning.state.lit = true;
    for (int i = 0; i < 4; ++i)
        leaning.normals.insert(leaning.normals.end(), {0, 0.1842885f, 0.9828719f});
    EXPECT_NEAR(at(render({{item}, {}}, flatCamera()), 32, 32).r, at(render({{leaning}, {}}, flatCamera()), 32, 32).r, 1);
}

TEST(Render, BlendedFromFarToNear)
{
    // given near first; red at a half over green at a half over black: (0.5, 0.25, 0)
    DrawList list{{square(0.5f, 2, {1, 0, 0, 0.5f}), square(0.5f, 1, {0, 1, 0, 0.5f})}, {}};
    const Pixel p = at(render(list, flatCamera()), 32, 32);
    EXPECT_NEAR(p.r, 128, 2);
    EXPECT_NEAR(p.g, 64, 2);
}

TEST(Render, LinesAndPoints)
{
    Item line;
    line.primitive = Primitive::kLines;
    line.positions = {-0.9f, 0.0156f, 0, 0.9f, 0.0156f, 0};   // the middle of the pixel row 31
    line.state.lineWidth = 3;
    line.state.color = kWhite;
    Image image = render({{line}, {}}, flatCamera());
    EXPECT_EQ(at(image, 20, 31).r, 255);
    EXPECT_EQ(at(image, 20, 30).r, 255);
    EXPECT_EQ(at(image, 20, 28).r, 0);

    line.state.linePattern = 0x00ff;
    line.state.lineFactor = 1;
    image = render({{line}, {}}, flatCamera());
    int lit = 0;
    for (int x = 8; x < 56; ++x)
        lit += at(image, x, 31).r > 127;
    EXPECT_EQ(lit, 24) << "half of 48 pixels";

    Item point;
    point.primitive = Primitive::kPoints;
    point.positions = {0, 0, 0};
    point.state.pointSize = 20;
    image = render({{point}, {}}, flatCamera());
    EXPECT_EQ(at(image, 32 + 8, 32).r, 255);
    EXPECT_EQ(at(image, 32 + 8, 32 + 8).r, 0) << "points are round";
}

TEST(Render, WireOverFill)
{
    Item item = square(0.5f, 0, kBlue);
    item.wire = {0, 1, 1, 2, 2, 3, 3, 0, 0, 2};
    item.state.wireColor = kWhite;
    const Image image = render({{item}, {}}, flatCamera());
    EXPECT_EQ(at(image, 28, 24), (Pixel{0, 0, 255, 255}));
    EXPECT_GT(at(image, 32, 31).r + at(image, 32, 32).r, 200) << "the diagonal";
    EXPECT_GT(at(image, 16, 24).r + at(image, 15, 24).r, 200) << "the left side";
}

TEST(Render, ScreenSpaceIsPixelsFromTheLowerLeft)
{
    Item item;
    item.space = Space::kScreen;
    item.positions = {10, 4, 0, 20, 4, 0, 20, 8, 0, 10, 8, 0};
    item.indices = {0, 1, 2, 0, 2, 3};
    item.state.color = kGreen;
    for (const int samples : {4, 16}) {
        // 3D in front does not hide it
        const Image image = render({{item, square(1, 9, kRed)}, {}}, flatCamera(), samples);
        EXPECT_EQ(at(image, 10, 59), (Pixel{0, 255, 0, 255}));
        EXPECT_EQ(at(image, 19, 56), (Pixel{0, 255, 0, 255}));
        EXPECT_EQ(at(image, 9, 59), (Pixel{255, 0, 0, 255}));
        EXPECT_EQ(at(image, 15, 55), (Pixel{255, 0, 0, 255}));
    }
}

TEST(Render, AnchoredItemsHideBehindWhatIsNearer)
{
    Item item = square(6, 0, kGreen);   // 12 pixels wide
    item.space = Space::kAnchored;
    item.anchor = {0.5f, 0, 0};
    Image image = render({{item}, {}}, flatCamera());
    EXPECT_EQ(at(image, 48 + 4, 32 + 4), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(at(image, 48 + 8, 32), (Pixel{0, 0, 0, 255}));
    image = render({{item, square(0.9f, 1, kRed)}, {}}, flatCamera());
    EXPECT_EQ(at(image, 48, 32), (Pixel{255, 0, 0, 255}));
}

TEST(Render, BadItemsAreSkippedAndBadRequestsRefused)
{
    Item item = square(0.5f, 0, kRed);
    item.indices = {0, 1, 9, 0, 2, 3};   // one triangle with a vertex that is not there
    item.wire = {0, 77};
    item.colors = {1, 1, 1};             // too few: not used
    const Image image = render({{item, Item{}}, {}}, flatCamera());
    EXPECT_EQ(at(image, 40, 40), (Pixel{0, 0, 0, 255})) << "the lower right half belonged to the bad triangle";
    EXPECT_EQ(at(image, 24, 24), (Pixel{255, 0, 0, 255}));

    Camera camera = flatCamera();
    camera.width = 0;
    try {
        render({}, camera);
        FAIL();
    } catch (const Error& e) {
        EXPECT_NE(std::string(e.what()).find("0 x 64"), std::string::npos) << e.what();
    }
    EXPECT_THROW(renderer().render(RenderRequest{}), Error);
}

TEST(Render, PickingGivesWhatIsVisible)
{
    DrawList list{{square(0.5f, 0, kRed, 7), square(0.25f, 1, {1, 1, 1, 0}, 8), square(1, 5, kRed, 0)}, {}};
    list.items[2].matrix[12] = 2.5;   // nothing to pick, and off to the side
    Item line;
    line.primitive = Primitive::kLines;
    line.positions = {-0.9f, -0.75f, 0, 0.9f, -0.75f, 0};
    line.state.id = 9;
    list.items.push_back(line);
    RenderRequest request{flatCamera(), &list, 4};
    struct Case { const char* where; int x, y, w, h; std::vector<uint32_t> ids; };
    const Case cases[] = {
        {"both squares, the nearer first", 20, 20, 24, 24, {8, 7}},
        {"an invisible one can be picked", 32, 32, 1, 1, {8}},
        {"the rim of the larger", 17, 32, 1, 1, {7}},
        {"empty ground", 2, 60, 3, 3, {}},
        {"beside a thin line, y from below", 32, 8, 1, 1, {9}},
        {"partly outside", -100, -100, 300, 105, {}},
        {"far outside", 1000, 1000, 10, 10, {}},
        {"turned inside out", 40, 40, -10, -10, {}},
    };
    for (const Case& c : cases) {
        std::vector<uint32_t> ids;
        for (const Hit& hit : renderer().pick(request, c.x, c.y, c.w, c.h))
            ids.push_back(hit.id);
        EXPECT_EQ(ids, c.ids) << c.where;
    }
}

TEST(Render, CallbackExceptionLeavesTheRendererUsable)
{
    DrawList list{{square(0.5f, 0, kRed)}, {}};
    list.callbacks.push_back({[](const Camera&) { throw std::runtime_error("from the callback"); }, kIdentity});
    EXPECT_THROW(render(list, flatCamera()), std::runtime_error);
    list.callbacks[0].draw = [&](const Camera& camera) { render(DrawList(), camera); };
    EXPECT_THROW(render(list, flatCamera()), Error) << "a picture inside a picture";
    list.callbacks.clear();
    EXPECT_EQ(at(render(list, flatCamera()), 32, 32), (Pixel{255, 0, 0, 255}));
}

TEST(Render, ImageFiles)
{
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "mirk_draw_test";
    std::filesystem::create_directories(dir);
    const std::string path = (dir / "small.png").string();
    const Image image{2, 1, 4, {255, 128, 0, 255, 10, 20, 30, 100}, {}};
    renderer().writeImage(path, image);
    const Image back = renderer().readImage(path);
    EXPECT_EQ(back.width, 2);
    EXPECT_EQ(back.channels, 4);
    EXPECT_EQ(back.bytes, image.bytes) << "alpha is kept apart from the colours";

    const auto message = [](auto call) {
        try {
            call();
        } catch (const Error& e) {
            return std::string(e.what());
        }
        return std::string("nothing");
    };
    EXPECT_NE(message([&] { renderer().readImage((dir / "none.png").string()); }).find("none.png"), std::string::npos);
    EXPECT_NE(message([&] { renderer().writeImage((dir / "no/dir.png").string(), image); }).find("no/dir.png"), std::string::npos);
    EXPECT_NE(message([&] { renderer().writeImage((dir / "x.nonsense").string(), image); }).find("x.nonsense"), std::string::npos);
    EXPECT_NE(message([&] { renderer().writeImage(path, Image{3, 3, 4, {1, 2}, {}}); }).find("3 x 3"), std::string::npos);
    std::filesystem::remove_all(dir);
}

TEST(Render, MissingModuleIsNamed)
{
    try {
        openRenderer("/nowhere/libmirkdraw.so");
        FAIL();
    } catch (const Error& e) {
        EXPECT_NE(std::string(e.what()).find("/nowhere/libmirkdraw.so"), std::string::npos) << e.what();
    }
}

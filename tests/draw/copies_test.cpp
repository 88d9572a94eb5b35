// Items that stand in many places, and items with a picture on them.
#include "picture.h"

using namespace picture;

namespace {

Item copied(std::initializer_list<std::array<double, 3>> places, Color color)
{
    Item item = square(0.2f, 0, color, 7);
    item.matrix[12] = 50;   // of no account with copies
    for (const auto& p : places) {
        Matrix m = kIdentity;
        std::copy(p.begin(), p.end(), &m[12]);
        item.copies.push_back(m);
    }
    return item;
}

TEST(Copies, StandWhereTheirMatricesSay)
{
    const DrawList list{{copied({{-0.5, 0.5, 0}, {0.5, -0.5, 0}}, kRed)}, {}};
    const Image    image = render(list, flatCamera());
    EXPECT_EQ(at(image, 16, 16), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(at(image, 48, 48), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(at(image, 48, 16), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(at(image, 32, 32), (Pixel{0, 0, 0, 255}));
    RenderRequest request;
    request.camera = flatCamera();
    request.list = &list;
    const auto hits = renderer().pick(request, 44, 12, 8, 8);
    ASSERT_EQ(hits.size(), 1u);
    EXPECT_EQ(hits[0].id, 7u);
    EXPECT_TRUE(renderer().pick(request, 44, 44, 8, 8).empty());
}

TEST(Copies, TransparentOnesFromFarToNear)
{
    // half of the near one over half of the far one over black: 127 + 64; as given the near one comes first
    const Item  item = copied({{0, 0, 5}, {0, 0, -5}}, {1, 0, 0, 0.5f});
    const Image image = render({{item}, {}}, flatCamera(), 1);
    EXPECT_NEAR(at(image, 32, 32).r, 191, 2) << "both are seen";
}

TEST(Copies, EdgesAreDrawnOfEach)
{
    Item item = copied({{-0.5, 0, 0}, {0.5, 0, 0}}, kRed);
    item.wire = {0, 1, 1, 2, 2, 3, 3, 0};
    item.state.wireColor = kGreen;
    const Image image = render({{item}, {}}, flatCamera(), 1);
    for (const int middle : {16, 48}) {
        int green = 0;
        for (int x = middle - 9; x < middle + 9; ++x)
            green += at(image, x, 32).g > 200;
        EXPECT_GE(green, 2) << middle;
        EXPECT_EQ(at(image, middle, 32), (Pixel{255, 0, 0, 255}));
    }
}

TEST(Textured, PictureOnASquare)
{
    Item item = square(1, 0, kWhite);   // its corners from the lower left, counter-clockwise
    item.uvs = {0, 0, 1, 0, 1, 1, 0, 1};
    auto texture = std::make_shared<Texture>();
    texture->width = texture->height = 2;
    texture->rgba = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};   // from the bottom: red green, blue white
    item.texture = texture;
    const Image image = render({{item}, {}}, flatCamera());
    EXPECT_EQ(at(image, 8, 56), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(at(image, 56, 56), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(at(image, 8, 8), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(at(image, 56, 8), (Pixel{255, 255, 255, 255}));

    item.state.color.a = 0.5f;
    EXPECT_NEAR(at(render({{item}, {}}, flatCamera()), 8, 56).r, 128, 2) << "the state's alpha";
}

TEST(Textured, OneThatDoesNotFitIsLeftOut)
{
    auto texture = std::make_shared<Texture>();
    texture->width = 4000, texture->height = 4000;   // but no pixels
    Item item = square(1, 0, kRed);
    item.uvs = {0, 0, 1, 0, 1, 1, 0, 1};
    item.texture = texture;
    EXPECT_EQ(at(render({{item}, {}}, flatCamera()), 32, 32), (Pixel{255, 0, 0, 255}));
    texture->width = texture->height = 1;
    texture->rgba = {0, 255, 0, 255};
    item.uvs.resize(3);
    EXPECT_EQ(at(render({{item}, {}}, flatCamera()), 32, 32), (Pixel{255, 0, 0, 255})) << "too few UVs";
}

}  // namespace

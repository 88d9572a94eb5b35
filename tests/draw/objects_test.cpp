// Objects that are drawn by their outlines: cameras, joints, fields with icons, and in which order self-drawn ones come.
#include "../graph/test_nodes.h"
#include "../support/host_fixture.h"
#include "picture.h"
#include "view/scene_draw.h"

#include <maya/MPxFieldNode.h>
#include <maya/MPxLocatorNode.h>

using namespace picture;

namespace {

struct DrawnObjects : mirk::test::Host
{
    void SetUp() override
    {
        Host::SetUp();
        options.camera = flatCamera();
        options.grid = false;
    }
    /// The positions of all items, as points.
    std::vector<std::array<float, 3>> points() const
    {
        std::vector<std::array<float, 3>> out;
        for (const Item& i : collectScene(options).list.items)
            for (size_t k = 0; k + 2 < i.positions.size(); k += 3)
                out.push_back({i.positions[k], i.positions[k + 1], i.positions[k + 2]});
        return out;
    }
    SceneDrawOptions options;
};

TEST_F(DrawnObjects, ACameraShowsWhatItsLensSeesUnlessItIsLookedThrough)
{
    mel("createNode transform -n c; createNode camera -n cs -p c; setAttr cs.focalLength 25.4; setAttr cs.horizontalFilmAperture 2;"
        "setAttr cs.verticalFilmAperture 1; setAttr cs.locatorScale 2");
    const auto drawn = points();
    // a focal length of one inch: at distance 2 the frame is 2 * 2 wide and half as high
    for (const std::array<float, 3>& corner : {std::array<float, 3>{2, 1, -2}, {-2, 1, -2}, {-2, -1, -2}, {2, -1, -2}})
        EXPECT_NE(std::find(drawn.begin(), drawn.end(), corner), drawn.end());
    options.cameraPath = mirk::dag::find("cs").at(0);
    EXPECT_TRUE(points().empty());
}

TEST_F(DrawnObjects, JointsHaveBonesToTheJointsBelowThem)
{
    mel("createNode joint -n a; createNode joint -n b -p a; setAttr b.ty 5; setAttr a.radius 0.5; setAttr b.radius 0.5");
    const auto tips = [&] {
        const auto drawn = points();
        return std::count(drawn.begin(), drawn.end(), std::array<float, 3>{0, 5, 0});
    };
    EXPECT_EQ(tips(), 4);
    for (const auto& p : points())
        EXPECT_LE(std::hypot(p[0], p[2]), 0.25 + 1e-6);
    mel("setAttr a.drawStyle 2");
    EXPECT_EQ(tips(), 0);
    mel("setAttr a.drawStyle 0; setAttr b.ty 0.1");   // inside the ball: no bone
    EXPECT_EQ(tips(), 0);
}

/// An icon of 10 by 2 pixels: the lower row's first and last pixel, the upper row's ninth.
class iconField : public MPxFieldNode
{
public:
    static void* creator() { return new iconField; }
    MStatus iconSizeAndOrigin(unsigned& w, unsigned& h, unsigned& x, unsigned& y) override
    {
        w = 10, h = 2, x = 5, y = 1;
        return MS::kSuccess;
    }
    MStatus iconBitmap(unsigned char* bits) override
    {
        bits[0] = 0x80, bits[1] = 0x40, bits[2] = 0, bits[3] = 0x80;
        return MS::kSuccess;
    }
};

class lateLocator : public MPxLocatorNode
{
public:
    static void* creator() { return new lateLocator; }
    bool isTransparent() const override { return mode > 0; }
    bool drawLast() const override { return mode == 2; }
    bool excludeAsLocator() const override { return mode != 1; }
    int  mode = 0;
};

mirk::NodeType* typeOf(const char* name, unsigned id, const char* base, void* (*creator)())
{
    if (mirk::NodeType* known = mirk::findNodeType(name))
        return known;
    auto type = std::make_unique<mirk::NodeType>();
    type->name = name;
    type->id = id;
    type->creator = creator;
    type->inherit(mirk::findNodeType(base));
    type->apiType = mirk::findNodeType(base)->apiType;
    return mirk::registerNodeType(std::move(type));
}

TEST_F(DrawnObjects, AFieldShowsItsIcon)
{
    mirk::dag::createNode(typeOf("drawTestField", 0x7f110, "THdynField", iconField::creator));
    auto drawn = points();
    std::sort(drawn.begin(), drawn.end());
    EXPECT_EQ(drawn, (std::vector<std::array<float, 3>>{{-5, -1, 0}, {3, 0, 0}, {4, -1, 0}}));
    EXPECT_EQ(collectScene(options).list.callbacks.size(), 1u);
    mirk::newScene();
}

TEST_F(DrawnObjects, TransparentLocatorsComeLaterAndHiddenOnesNotAtAll)
{
    using Order = Callback::Order;
    for (int mode = 0; mode < 3; ++mode) {
        mirk::Node* n = mirk::dag::createNode(typeOf("drawTestLocator", 0x7f111, "THlocatorShape", lateLocator::creator));
        static_cast<lateLocator*>(n->user.get())->mode = mode;
    }
    std::vector<Order> orders;
    for (const Callback& c : collectScene(options).list.callbacks)
        orders.push_back(c.order);
    EXPECT_EQ(orders, (std::vector<Order>{Order::kOpaque, Order::kTransparent, Order::kLast}));
    mel("createNode locator");
    options.locators = false;
    EXPECT_TRUE(points().empty());
    EXPECT_EQ(collectScene(options).list.callbacks.size(), 1u);   // the one that is no locator to the view
    mirk::newScene();
}

}  // namespace

// Pictures of scenes: what is drawn of which object, how it shows its state, and what picking finds.
#include <maya/MDrawRegistry.h>
#include <maya/MFnMesh.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPlug.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MUIDrawManager.h>

#include "dag/dag.h"
#include "data/mobject.h"
#include "nodes/builtin.h"
#include "picture.h"
#include "view/display_status.h"
#include "view/scene_draw.h"

using namespace picture;
using mirk::Path;

namespace {

class SceneDrawing : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mirk::registerBuiltinNodes();
        mirk::newScene();
        options.camera = flatCamera();
        options.grid = false;
    }

    /// A square mesh of half size `half` at x, z; its transform.
    static mirk::Node& addSquare(double half, double x, double z)
    {
        const double p[][4] = {{-half, -half, 0, 1}, {half, -half, 0, 1}, {half, half, 0, 1}, {-half, half, 0, 1}};
        const int count[] = {4}, connects[] = {0, 1, 2, 3};
        MFnMesh fn;
        const MObject transform = fn.create(4, 1, MPointArray(p, 4), MIntArray(count, 1), MIntArray(connects, 4));
        auto& node = *mirk::objectAs<mirk::Node>(transform);
        set(node, "translateX", x);
        set(node, "translateZ", z);
        return node;
    }
    static void set(mirk::Node& node, const char* attribute, double value)
    {
        MPlug plug(mirk::wrap(&node), mirk::wrap(const_cast<mirk::Attribute*>(node.findAttribute(attribute))));
        ASSERT_FALSE(plug.isNull()) << attribute;
        plug.setValue(value);
    }
    static mirk::Node& shapeOf(mirk::Node& transform) { return *transform.dag->children.at(0); }
    static void select(std::initializer_list<mirk::Node*> nodes)
    {
        std::vector<mirk::Item> items;
        for (mirk::Node* n : nodes) {
            mirk::Item item;
            item.node = mirk::Ref<mirk::Node>(n);
            item.path = mirk::dag::firstPath(*n);
            items.push_back(item);
        }
        mirk::selection::set(items);
    }
    int statusOf(mirk::Node& transform) const { return displayStatus(mirk::dag::firstPath(shapeOf(transform))); }

    SceneDrawOptions options;
};

/// A point of 20 pixels at the object's origin, in a colour that says how often it was made.
class PointOverride : public MHWRender::MPxDrawOverride
{
public:
    explicit PointOverride(const MObject& node) : MPxDrawOverride(node, nullptr) { ++made; }
    ~PointOverride() override { --alive; }
    static MHWRender::MPxDrawOverride* create(const MObject& node)
    {
        ++alive;
        return new PointOverride(node);
    }
    MUserData* prepareForDraw(const MDagPath&, const MDagPath&, const MHWRender::MFrameContext&, MUserData*) override { return nullptr; }
    bool hasUIDrawables() const override { return true; }
    void addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& m, const MHWRender::MFrameContext&, const MUserData*) override
    {
        m.beginDrawable();
        m.setColor(MColor(1, 0, 0));
        m.setPointSize(20);
        m.point(MPoint());
        m.endDrawable();
    }
    static inline int made = 0, alive = 0;
};

}  // namespace

TEST_F(SceneDrawing, MeshesFollowTransformsAndVisibility)
{
    mirk::Node& left = addSquare(0.3, -0.5, 0);
    mirk::Node& right = addSquare(0.3, 0.5, 0);
    options.camera.backgroundTop = options.camera.backgroundBottom = kBlue;
    Image image = renderScene(options);
    EXPECT_GT(at(image, 16, 32).r, 80);
    EXPECT_GT(at(image, 48, 32).r, 80);
    EXPECT_EQ(at(image, 32, 32), (Pixel{0, 0, 255, 255})) << "between them";
    set(left, "visibility", 0);
    set(shapeOf(right), "intermediateObject", 1);
    image = renderScene(options);
    EXPECT_EQ(at(image, 16, 32), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(at(image, 48, 32), (Pixel{0, 0, 255, 255}));
}

TEST_F(SceneDrawing, PickingGivesPathsNearestFirst)
{
    mirk::Node& back = addSquare(0.8, 0, 0);
    mirk::Node& front = addSquare(0.3, 0, 2);
    const std::vector<Path> found = pickScene(options, 0, 0, 64, 64);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].node(), &shapeOf(front));
    EXPECT_EQ(found[1].node(), &shapeOf(back));
}

TEST_F(SceneDrawing, StatusAndColours)
{
    mirk::Node& a = addSquare(0.3, -0.5, 0);
    mirk::Node& b = addSquare(0.3, 0.5, 0);
    EXPECT_EQ(statusOf(a), MHWRender::kDormant);
    select({&a, &b});
    EXPECT_EQ(statusOf(a), MHWRender::kActive);
    EXPECT_EQ(statusOf(b), MHWRender::kLead) << "selected last";
    set(b, "template", 1);
    EXPECT_EQ(statusOf(b), MHWRender::kActiveTemplate);
    select({});
    EXPECT_EQ(statusOf(b), MHWRender::kTemplate);
    set(b, "visibility", 0);
    EXPECT_EQ(statusOf(b), MHWRender::kInvisible);

    set(a, "overrideEnabled", 1);
    set(a, "overrideColor", 13);
    EXPECT_EQ(wireframeColor(mirk::dag::firstPath(shapeOf(a))), kRed) << "a transform's colour holds below it";
    options.displayStyle = MHWRender::MFrameContext::kWireFrame;
    const Image image = renderScene(options);
    int red = 0;
    for (int x = 4; x < 10; ++x)
        red += at(image, x, 32).r > 60 && at(image, x, 32).b == 0;
    EXPECT_GT(red, 0) << "the left edge of the square, at x = -0.8";
    EXPECT_EQ(at(image, 16, 32), (Pixel{0, 0, 0, 255}));
}

TEST_F(SceneDrawing, CamerasOfTheScene)
{
    struct Case { const char* name; double position[3]; bool orthographic; };
    const Case cases[] = {{"persp", {28, 21, 28}, false}, {"top", {0, 1000.1, 0}, true}};
    for (const Case& c : cases) {
        Path shape;
        Camera camera;
        const std::vector<Path> found = mirk::dag::find(c.name);
        ASSERT_EQ(found.size(), 1u) << c.name;
        ASSERT_TRUE(cameraOf(found[0], 64, 64, camera, shape)) << c.name;
        EXPECT_EQ(shape.nodes.size(), 2u);
        EXPECT_EQ(camera.projection[15] == 1, c.orthographic) << c.name;
        // the camera's place is the eye's origin
        for (int i = 0; i < 3; ++i) {
            double eye = camera.view[12 + i];
            for (int k = 0; k < 3; ++k)
                eye += c.position[k] * camera.view[k * 4 + i];
            EXPECT_NEAR(eye, 0, 1e-6) << c.name;
        }
    }
    Camera camera;
    Path shape;
    EXPECT_FALSE(cameraOf(mirk::dag::firstPath(addSquare(1, 0, 0)), 64, 64, camera, shape));
    EXPECT_FALSE(cameraOf(Path(), 64, 64, camera, shape));
}

TEST_F(SceneDrawing, OverridesAreKeptWhileTheirObjectIsDrawn)
{
    mirk::NodeType& type = *mirk::findNodeType("locator");
    const std::string before = type.classification;
    type.classification = "drawdb/geometry/testPoint";
    ASSERT_TRUE(MHWRender::MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testPoint", "test", PointOverride::create));
    mirk::Node& shape = *mirk::dag::createNode(&type);
    mirk::Node& transform = *shape.dag->parents.at(0);
    set(transform, "translateX", 0.5);
    PointOverride::made = PointOverride::alive = 0;

    EXPECT_EQ(at(renderScene(options), 48, 32), (Pixel{255, 0, 0, 255})) << "at the transform";
    EXPECT_EQ(at(renderScene(options), 48, 32), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(PointOverride::made, 1) << "kept from frame to frame";
    const std::vector<Path> found = pickScene(options, 48, 32, 1, 1);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].node(), &shape);
    set(transform, "visibility", 0);
    collectScene(options);
    EXPECT_EQ(PointOverride::alive, 0);

    MHWRender::MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testPoint", "test");
    type.classification = before;
}

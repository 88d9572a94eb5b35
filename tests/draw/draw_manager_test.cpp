// What the draw manager records, the shapes by their geometry, and overrides as the viewport runs them.
#include <cmath>
#include <map>

#include <maya/MColorArray.h>
#include <maya/MDrawContext.h>
#include <maya/MDrawRegistry.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPointArray.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUintArray.h>
#include <maya/MUserData.h>
#include <maya/MVectorArray.h>

#include "picture.h"
#include "view/frame.h"
#include "view/recorder.h"
#include "view/registry.h"
#include "view/stroke_font.h"

using namespace picture;
using MHWRender::MUIDrawManager;

namespace {

/// Records what `draw` does inside one drawable.
template <class Draw>
DrawList recorded(Draw draw, MUIDrawManager::Selectability selectability = MUIDrawManager::kAutomatic)
{
    DrawList list;
    Recorder recorder(list, kIdentity, 42);
    MUIDrawManager manager(recorder);
    manager.beginDrawable(selectability);
    draw(manager);
    manager.endDrawable();
    return list;
}

/// Six times the volume that the triangles enclose; positive if they turn counter-clockwise seen from outside.
double volume6(const Item& item)
{
    double sum = 0;
    const auto p = [&](size_t i, int c) { return double(item.positions[item.indices[i] * 3 + size_t(c)]); };
    for (size_t i = 0; i + 2 < item.indices.size(); i += 3)
        sum += p(i, 0) * (p(i + 1, 1) * p(i + 2, 2) - p(i + 1, 2) * p(i + 2, 1)) +
               p(i, 1) * (p(i + 1, 2) * p(i + 2, 0) - p(i + 1, 0) * p(i + 2, 2)) +
               p(i, 2) * (p(i + 1, 0) * p(i + 2, 1) - p(i + 1, 1) * p(i + 2, 0));
    return sum;
}

double lineLength(const Item& item)
{
    double sum = 0;
    for (size_t i = 0; i + 1 < item.indices.size(); i += 2) {
        const float *a = &item.positions[item.indices[i] * 3], *b = &item.positions[item.indices[i + 1] * 3];
        sum += std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
    }
    return sum;
}

}  // namespace

TEST(DrawManager, StateGoesWithTheItemAndEndsWithTheDrawable)
{
    DrawList list;
    Recorder recorder(list, kIdentity, 42);
    MUIDrawManager m(recorder);
    m.line(MPoint(0, 0), MPoint(1, 0));   // outside: not drawn
    m.beginDrawable(MUIDrawManager::kNonSelectable);
    m.setColor(MColor(0.1f, 0.2f, 0.3f, 0.4f));
    m.setLineWidth(3);
    m.setDepthPriority(5);
    m.setLineStyle(2, 0xf0f0);
    m.line(MPoint(0, 0), MPoint(1, 0));
    m.line(MPoint(1, 0), MPoint(1, 1));
    m.beginDrawInXray();
    m.line(MPoint(0, 0), MPoint(0, 1));
    m.endDrawInXray();
    m.endDrawable();
    m.beginDrawable();
    m.line2d(MPoint(3, 4), MPoint(5, 6));
    m.endDrawable();

    ASSERT_EQ(list.items.size(), 3u) << "the first two lines are one item";
    const Item& first = list.items[0];
    EXPECT_EQ(first.positions, (std::vector<float>{0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 1, 0}));
    EXPECT_EQ(first.state.color, (Color{0.1f, 0.2f, 0.3f, 0.4f}));
    EXPECT_EQ(first.state.lineWidth, 3);
    EXPECT_EQ(first.state.depthPriority, 5u);
    EXPECT_EQ(first.state.linePattern, 0xf0f0);
    EXPECT_EQ(first.state.id, 0u);
    EXPECT_TRUE(list.items[1].state.xray);
    State plain;
    plain.id = 42;
    EXPECT_EQ(list.items[2].state, plain);
    EXPECT_EQ(list.items[2].space, Space::kScreen);
}

TEST(DrawManager, FilledShapesEncloseTheirVolume)
{
    constexpr double pi = 3.14159265358979;
    const MPoint o(1, 2, 3);
    const MVector up(1, 1, 0), right(0, 0, -1);
    struct Case { const char* shape; DrawList list; double volume, tolerance; };
    const Case cases[] = {
        {"sphere", recorded([&](auto& m) { m.sphere(o, 2, 64, 64, true); }), 4 / 3.0 * pi * 8, 0.01},
        {"box", recorded([&](auto& m) { m.box(o, up, right, 1, 2, 3, true); }), 48, 1e-5},
        {"cone", recorded([&](auto& m) { m.cone(o, up, 2, 3, 64, true); }), pi * 4, 0.01},
        {"cylinder", recorded([&](auto& m) { m.cylinder(o, up, 2, 3, 64, true); }), pi * 12, 0.01},
        {"capsule", recorded([&](auto& m) { m.capsule(o, up, 1, 3, 64, 64, true); }), pi * 3 + 4 / 3.0 * pi, 0.01},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.list.items.size(), 1u) << c.shape;
        EXPECT_NEAR(volume6(c.list.items[0]) / 6 / c.volume, 1, c.tolerance) << c.shape;
        EXPECT_EQ(c.list.items[0].normals.size(), c.list.items[0].positions.size()) << c.shape;
    }
}

TEST(DrawManager, OutlinesHaveTheirLength)
{
    constexpr double pi = 3.14159265358979;
    const MPoint o(1, 2, 3);
    struct Case { const char* shape; DrawList list; double length; };
    const Case cases[] = {
        {"box: twelve edges, each once", recorded([&](auto& m) { m.box(o, {0, 1, 0}, {1, 0, 0}, 1, 2, 3); }), 8 * (1 + 2 + 3)},
        {"rectangle, scales from the centre", recorded([&](auto& m) { m.rect(o, {0, 1, 0}, {0, 0, 1}, 1, 2); }), 12},
        {"circle", recorded([&](auto& m) { m.circle(o, {0, 1, 0}, 2, 200); }), 4 * pi},
        {"quarter arc", recorded([&](auto& m) { m.arc(o, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, 2, 200); }), pi},
        {"the same backwards is three quarters", recorded([&](auto& m) { m.arc(o, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, 2, 200); }), 3 * pi},
        {"flat circle", recorded([&](auto& m) { m.circle2d(o, 2, 200); }), 4 * pi},
        {"flat arc", recorded([&](auto& m) { m.arc2d(o, {1, 0, 0}, {0, 1, 0}, 2, 200); }), pi},
        {"flat rectangle", recorded([&](auto& m) { m.rect2d(o, {1, 1, 0}, 1, 2); }), 12},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.list.items.size(), 1u) << c.shape;
        EXPECT_NEAR(lineLength(c.list.items[0]), c.length, c.length * 1e-3) << c.shape;
    }
}

TEST(DrawManager, ArcGoesCounterClockwiseAboutItsNormal)
{
    const DrawList list = recorded([](auto& m) { m.arc(MPoint(), {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, 2, 8); });
    const Item& arc = list.items.at(0);
    const float* middle = &arc.positions[(1 + 4) * 3];   // after the centre
    EXPECT_NEAR(middle[0], std::sqrt(2), 1e-5);
    EXPECT_NEAR(middle[1], std::sqrt(2), 1e-5);
}

TEST(DrawManager, MeshModes)
{
    const double xyz[][4] = {{0, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 0, 1}, {1, 1, 0, 1}};
    const MPointArray points(xyz, 4);
    const unsigned picked[] = {3, 1, 0};
    const MUintArray index(picked, 3);
    using V = std::vector<uint32_t>;
    struct Case { MUIDrawManager::Primitive mode; const MUintArray* index; Primitive kind; V indices; };
    const Case cases[] = {
        {MUIDrawManager::kPoints, nullptr, Primitive::kPoints, {}},
        {MUIDrawManager::kTriangles, &index, Primitive::kTriangles, {3, 1, 0}},
        {MUIDrawManager::kLineStrip, &index, Primitive::kLines, {3, 1, 1, 0}},
        {MUIDrawManager::kClosedLine, nullptr, Primitive::kLines, {0, 1, 1, 2, 2, 3, 3, 0}},
        {MUIDrawManager::kTriStrip, nullptr, Primitive::kTriangles, {0, 1, 2, 2, 1, 3}},   // both turn the same way
    };
    for (const Case& c : cases) {
        const DrawList list = recorded([&](auto& m) { m.mesh(c.mode, points, nullptr, nullptr, c.index); });
        ASSERT_EQ(list.items.size(), 1u) << c.mode;
        EXPECT_EQ(list.items[0].primitive, c.kind) << c.mode;
        EXPECT_EQ(list.items[0].indices, c.indices) << c.mode;
    }
    const MColorArray tooFew(3, MColor(1, 0, 0));
    EXPECT_TRUE(recorded([&](auto& m) { m.mesh(MUIDrawManager::kPoints, points, nullptr, &tooFew); }).items.at(0).colors.empty());
    EXPECT_TRUE(recorded([&](auto& m) { m.mesh(MUIDrawManager::kLines, MPointArray()); }).items.empty());
    EXPECT_EQ(recorded([&](auto& m) { m.lineStrip(points, false); }).items.at(0).positions.size(), 3u * 2 * 3);
}

TEST(DrawManager, EveryLetterDiffersAndAlignmentMovesText)
{
    std::map<std::vector<float>, char> seen;
    for (char c = '!'; c <= '~'; ++c) {
        const std::vector<float> strokes = textStrokes(std::string(1, c), 10);
        EXPECT_FALSE(strokes.empty()) << c;
        EXPECT_EQ(strokes.size() % 4, 0u) << c;
        EXPECT_TRUE(seen.emplace(strokes, c).second) << c << " looks as " << seen[strokes];
    }
    const auto leftmost = [](MUIDrawManager::TextAlignment alignment) {
        const DrawList list = recorded([&](auto& m) { m.text2d(MPoint(100, 50), "HHHH", alignment); });
        float x = 1e9f;
        for (size_t i = 0; i < list.items.at(0).positions.size(); i += 3)
            x = std::min(x, list.items[0].positions[i]);
        return x;
    };
    const float width = float(textWidth("HHHH", 12));
    EXPECT_FLOAT_EQ(leftmost(MUIDrawManager::kLeft), 100);
    EXPECT_FLOAT_EQ(leftmost(MUIDrawManager::kCenter), 100 - width / 2);
    EXPECT_FLOAT_EQ(leftmost(MUIDrawManager::kRight), 100 - width);
}

TEST(DrawManager, TextWithABoxAndIcons)
{
    const int size[] = {40, 20};
    const MColor back(0, 0, 1, 0.99f);
    const DrawList list = recorded([&](auto& m) {
        m.setFontSize(20);
        m.setColor(MColor(1, 0, 0));
        m.text(MPoint(0.5, 0, 0), "\xc3\xa4!", MUIDrawManager::kCenter, size, &back);
    });
    ASSERT_EQ(list.items.size(), 2u);
    EXPECT_EQ(list.items[1].text, "\xc3\xa4!");
    EXPECT_EQ(list.items[1].space, Space::kAnchored);
    EXPECT_EQ(list.items[1].state.id, 42u);
    const Image image = render(list, flatCamera());
    EXPECT_GT(at(image, 48 - 18, 32).b, 240) << "the box is centred on the anchor";
    int red = 0;
    for (int x = 30; x < 64; ++x)
        red += at(image, x, 28).r > 127;
    EXPECT_GT(red, 1) << "the letters stand before the box";

    MStringArray names;
    MUIDrawManager::getIconNames(names);
    ASSERT_GT(names.length(), 0u);
    for (unsigned i = 0; i < names.length(); ++i)
        EXPECT_EQ(recorded([&](auto& m) { m.icon(MPoint(), names[i], 1); }).items.size(), 1u) << names[i].asChar();
    EXPECT_TRUE(recorded([](auto& m) { m.icon(MPoint(), "no such icon", 1); }).items.empty());
}

TEST(FrameContext, MatricesAndPixels)
{
    FrameData frame;
    Lens lens;
    frame.camera = makeCamera(lookAt(3, 4, 5, 0, 1, 0), lens, 200, 100);
    frame.world[12] = 7;
    const MHWRender::MDrawContext context(frame);
    using C = MHWRender::MFrameContext;
    // the four forms of each matrix, and the products, from their definitions
    const MMatrix world = context.getMatrix(C::kWorldMtx), view = context.getMatrix(C::kViewMtx), proj = context.getMatrix(C::kProjectionMtx);
    EXPECT_EQ(world[3][0], 7);
    EXPECT_TRUE(context.getMatrix(C::kWorldViewProjMtx).isEquivalent(world * view * proj));
    EXPECT_TRUE(context.getMatrix(C::kViewProjInverseMtx).isEquivalent((view * proj).inverse()));
    EXPECT_TRUE(context.getMatrix(C::kViewTransposeMtx).isEquivalent(view.transpose()));
    EXPECT_TRUE(context.getMatrix(C::kWorldViewTranspInverseMtx).isEquivalent((world * view).inverse().transpose()));

    const MDoubleArray eye = context.getTuple(C::kViewPosition), direction = context.getTuple(C::kViewDirection);
    EXPECT_NEAR(eye[0], 3, 1e-9);
    EXPECT_NEAR(eye[2], 5, 1e-9);
    EXPECT_NEAR(direction[1], -3 / std::sqrt(43.0), 1e-9);   // (0, 1, 0) - (3, 4, 5) has length sqrt(43)
    EXPECT_NEAR(context.getTuple(C::kViewNearClipValue)[0], 0.1, 1e-6);

    double x = 0, y = 0;
    EXPECT_TRUE(context.worldToViewport(MPoint(0, 1, 0), x, y));
    EXPECT_NEAR(x, 100, 1e-6);
    EXPECT_NEAR(y, 50, 1e-6);
    EXPECT_FALSE(context.worldToViewport(MPoint(30, 40, 50), x, y)) << "behind the eye";
    MPoint nearPoint, farPoint;
    ASSERT_TRUE(context.viewportToWorld(150, 20, nearPoint, farPoint));
    ASSERT_TRUE(context.worldToViewport(nearPoint + (farPoint - nearPoint) * 0.01, x, y));
    EXPECT_NEAR(x, 150, 1e-4);
    EXPECT_NEAR(y, 20, 1e-4);
}

TEST(FrameContext, FilmFit)
{
    // film 2 x 1 inches, focal length 1 inch; half extents at distance 1
    struct Case { const char* when; int fit, width, height; double halfX, halfY; };
    const Case cases[] = {
        {"fill a square: the film's height", 0, 100, 100, 0.5, 0.5},
        {"fill a wide picture: the film's width", 0, 400, 100, 1, 0.25},
        {"horizontal", 1, 100, 100, 1, 1},
        {"vertical", 2, 400, 100, 2, 0.5},
        {"overscan a square", 3, 100, 100, 1, 1},
        {"overscan a wide picture", 3, 400, 100, 2, 0.5},
    };
    for (const Case& c : cases) {
        Lens lens{25.4, 2, 1, c.fit};
        const Camera camera = makeCamera(kIdentity, lens, c.width, c.height);
        EXPECT_NEAR(1 / camera.projection[0], c.halfX, 1e-9) << c.when;
        EXPECT_NEAR(1 / camera.projection[5], c.halfY, 1e-9) << c.when;
    }
}

namespace {

MHWRender::MPxDrawOverride* makeNothing(const MObject&) { return nullptr; }
MHWRender::MPxDrawOverride* makeOther(const MObject&) { return nullptr; }

}  // namespace

TEST(DrawRegistry, FindsTheLongestClassification)
{
    using MHWRender::MDrawRegistry;
    ASSERT_TRUE(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testA", "first", makeNothing));
    ASSERT_TRUE(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testA/deep", "first", makeOther));
    struct Case { const char* classification; DrawOverrideCreator creator; };
    const Case cases[] = {
        {"drawdb/geometry/testA", makeNothing},
        {"drawdb/geometry/testAB", nullptr},
        {"drawdb/geometry", nullptr},
        {"drawdb/geometry/testA/deep/er", makeOther},
        {"Some/thing:drawdb/geometry/testA:x", makeNothing},
        {"", nullptr},
    };
    for (const Case& c : cases)
        EXPECT_EQ(findDrawOverride(c.classification), c.creator) << c.classification;
    EXPECT_FALSE(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testA", "x", nullptr));
    EXPECT_TRUE(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testA", "first", makeOther)) << "takes the old one's place";
    EXPECT_TRUE(MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testA", "first"));
    EXPECT_FALSE(MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testA", "first"));
    EXPECT_TRUE(MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testA/deep", "first"));
    EXPECT_EQ(findDrawOverride("drawdb/geometry/testA/deep"), nullptr);
}

TEST(Builders, MeshCornersAreSharedWhereTheyAgree)
{
    // two squares side by side: 6 vertices, 8 corners, 7 edges
    const float points[] = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0};
    const int counts[] = {4, 4}, connects[] = {0, 1, 4, 3, 1, 2, 5, 4};
    std::vector<float> normals, colors;
    for (int corner = 0; corner < 8; ++corner) {
        normals.insert(normals.end(), {0, 0, 1});
        const bool second = corner >= 4;
        colors.insert(colors.end(), {second ? -1.f : 0.f, second ? -1.f : 1.f, second ? -1.f : 0.f, second ? -1.f : 1.f});
    }
    MeshArrays mesh{points, counts, connects, {}, normals, {}};
    Item item = meshItem(mesh, State{}, true);
    EXPECT_EQ(item.positions.size(), 6u * 3);
    EXPECT_EQ(item.indices.size(), 4u * 3);
    EXPECT_EQ(item.wire.size(), 7u * 2);

    mesh.cornerColors = colors;   // the faces differ: their two common vertices are there twice
    State state;
    state.color = kRed;
    item = meshItem(mesh, state, true);
    EXPECT_EQ(item.positions.size(), 8u * 3);
    EXPECT_EQ(item.wire.size(), 7u * 2);
    const uint32_t ofSecond = item.indices[8];
    EXPECT_EQ(item.colors[ofSecond * 4], 1) << "an unset colour is the item's";

    const int wrong[] = {0, 1, 4, 3, 1, 2, 6, -4};
    mesh = {points, counts, wrong, {}, {}, {}};
    EXPECT_EQ(meshItem(mesh, state, true).indices.size(), 2u * 3) << "the face with bad vertices is left out";
    const int tooMany[] = {4, 4000};
    mesh = {points, tooMany, connects, {}, {}, {}};
    EXPECT_EQ(meshItem(mesh, state, false).indices.size(), 2u * 3);
    EXPECT_EQ(wireItem({points, counts, connects, {}, {}, {}}, state).indices.size(), 7u * 2);
}

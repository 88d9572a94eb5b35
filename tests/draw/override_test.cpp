// Draw overrides as the viewport runs them: data kept from frame to frame, drawables, OpenGL callbacks, M3dView.
#include <dlfcn.h>

#include <cmath>

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MDrawContext.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MString.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUserData.h>
#include <maya/MViewport2Renderer.h>

#include "picture.h"
#include "view/convert.h"
#include "view/draw_override.h"

using namespace picture;

namespace {

int liveData = 0;

struct Data : MUserData
{
    explicit Data(bool deleteAfterUse) : MUserData(deleteAfterUse) { ++liveData; }
    ~Data() override { --liveData; }
    int prepared = 0;
};

/// A line of the object's x axis, moved up by half a unit.
class TestOverride : public MHWRender::MPxDrawOverride
{
public:
    TestOverride(GeometryDrawOverrideCb callback, bool deleteAfterUse)
        : MPxDrawOverride(MObject(), callback), deleteAfterUse_(deleteAfterUse) {}

    MMatrix transform(const MDagPath&, const MDagPath&) const override
    {
        MMatrix m;
        m[3][1] = 0.5;
        return m;
    }
    MUserData* prepareForDraw(const MDagPath&, const MDagPath&, const MHWRender::MFrameContext&, MUserData* old) override
    {
        Data* data = dynamic_cast<Data*>(old);
        if (!data || makeNew)
            data = new Data(deleteAfterUse_);
        ++data->prepared;
        last = data->prepared;
        return data;
    }
    bool hasUIDrawables() const override { return true; }
    void addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& m, const MHWRender::MFrameContext&, const MUserData* data) override
    {
        EXPECT_NE(dynamic_cast<const Data*>(data), nullptr);
        m.beginDrawable();
        m.setColor(MColor(0, 1, 0));
        m.setLineWidth(4);
        m.line(MPoint(-1, 0, 0), MPoint(1, 0, 0));
        m.endDrawable();
    }

    bool makeNew = false;
    int  last = 0;

private:
    bool deleteAfterUse_;
};

template <class F>
F gl(const char* name)
{
    static void* library = dlopen("libOpenGL.so.0", RTLD_NOW);
    return library ? reinterpret_cast<F>(dlsym(library, name)) : nullptr;
}

/// A filled red triangle with the fixed pipeline, right of the middle; leaves state behind that must not matter.
void drawTriangle(const MHWRender::MDrawContext& context, const MUserData* data)
{
    EXPECT_NE(dynamic_cast<const Data*>(data), nullptr);
    EXPECT_EQ(context.getMatrix(MHWRender::MFrameContext::kWorldMtx)[3][1], 0.5);
    gl<void (*)(unsigned)>("glDisable")(0x0b71);   // depth test
    gl<void (*)(float, float, float)>("glColor3f")(1, 0, 0);
    gl<void (*)(unsigned)>("glBegin")(4);          // triangles
    const auto vertex = gl<void (*)(float, float, float)>("glVertex3f");
    vertex(0.2f, -1.2f, 0);
    vertex(0.8f, -1.2f, 0);
    vertex(0.5f, -0.6f, 0);
    gl<void (*)()>("glEnd")();
    gl<void (*)(unsigned)>("glEnable")(0x0b44);    // culling
    gl<void (*)(unsigned)>("glMatrixMode")(0x1701);
    gl<void (*)()>("glLoadIdentity")();
}

void drawLegacyText(const MHWRender::MDrawContext&, const MUserData*)
{
    M3dView view = M3dView::active3dView();
    EXPECT_FALSE(view.setDrawColor(MColor(1, 0, 0))) << "only between beginGL and endGL";
    ASSERT_TRUE(view.beginGL());
    EXPECT_TRUE(view.setDrawColor(MColor(0, 0, 1)));
    EXPECT_TRUE(view.drawText("HHHH", MPoint(0, -0.5, 0), M3dView::kCenter));
    EXPECT_TRUE(view.endGL());
    EXPECT_FALSE(view.endGL());
}

}  // namespace

TEST(DrawOverride, DataIsKeptOrDeletedAsAsked)
{
    struct Case { const char* when; bool deleteAfterUse, makeNew; int prepared, alive; };
    const Case cases[] = {
        {"kept and reused", false, false, 3, 1},
        {"replaced: the old one goes", false, true, 1, 1},
        {"deleted after each draw", true, false, 1, 0},
    };
    for (const Case& c : cases) {
        auto made = std::make_unique<TestOverride>(nullptr, c.deleteAfterUse);
        TestOverride& drawOverride = *made;
        drawOverride.makeNew = c.makeNew;
        {
            DrawnObject drawn(std::move(made));
            for (int frame = 0; frame < 3; ++frame) {
                DrawList list;
                drawn.draw(MDagPath(), MDagPath(), FrameData(), 1, list);
            }
            EXPECT_EQ(drawOverride.last, c.prepared) << c.when;
            EXPECT_EQ(liveData, c.alive) << c.when;
        }
        EXPECT_EQ(liveData, 0) << c.when;
    }
}

TEST(DrawOverride, DrawablesAndFixedPipelineInOnePicture)
{
    FrameData frame;
    frame.camera = flatCamera();
    DrawnObject drawn(std::make_unique<TestOverride>(drawTriangle, true));
    DrawList list{{square(0.15f, 0, {0, 0, 1, 0.999f})}, {}};   // blended: drawn after the callback
    drawn.draw(MDagPath(), MDagPath(), frame, 5, list);
    EXPECT_EQ(liveData, 1) << "the callback still needs the data";
    const Image image = render(list, frame.camera);
    EXPECT_EQ(at(image, 10, 16), (Pixel{0, 255, 0, 255})) << "the line, at y = 0.5";
    EXPECT_EQ(at(image, 48, 48), (Pixel{255, 0, 0, 255})) << "the triangle, at (0.5, -0.5)";
    EXPECT_GT(at(image, 32, 32).b, 250) << "what the callback left does not disturb what follows";
    EXPECT_FALSE(activeViewport().inCallback);
    list = DrawList();
    EXPECT_EQ(liveData, 0);
}

TEST(DrawOverride, LegacyViewDrawsOnlyInsideACallback)
{
    M3dView view = M3dView::active3dView();
    EXPECT_FALSE(view.beginGL());
    FrameData frame;
    frame.camera = flatCamera(64);
    DrawnObject drawn(std::make_unique<TestOverride>(drawLegacyText, false));
    DrawList list;
    drawn.draw(MDagPath(), MDagPath(), frame, 5, list);
    const Image image = render(list, frame.camera);
    int blue = 0;   // letters 9 pixels high from the middle up
    for (int y = 22; y < 33; ++y)
        for (int x = 16; x < 48; ++x)
            blue += at(image, x, y).b > 127;
    EXPECT_GT(blue, 60);
    EXPECT_EQ(view.portWidth(), 64);
    EXPECT_NE(MHWRender::MRenderer::theRenderer(), nullptr);
}

TEST(M3dView, PixelsAndRays)
{
    Lens lens;
    activeViewport().frame.camera = makeCamera(lookAt(3, 4, 5, 0, 1, 0), lens, 200, 100);
    const M3dView view = M3dView::active3dView();
    short x = 0, y = 0;
    EXPECT_TRUE(view.worldToView(MPoint(0, 1, 0), x, y));
    EXPECT_EQ(x, 100);
    EXPECT_EQ(y, 50);
    // the ray through the middle goes along the view: in a space moved by 10 in x it starts 10 less in x
    MPoint origin, moved;
    MVector direction, local;
    ASSERT_TRUE(view.viewToWorld(100, 50, origin, direction));
    EXPECT_NEAR(direction.y, -3 / std::sqrt(43.0), 1e-6);
    MMatrix inverse;
    inverse[3][0] = -10;
    ASSERT_TRUE(view.viewToObjectSpace(100, 50, inverse, moved, local));
    EXPECT_NEAR(moved.x, origin.x - 10, 1e-9);
    EXPECT_NEAR(local.y, direction.y, 1e-9);

    activeViewport().frame.camera.projection = Matrix{};
    EXPECT_FALSE(view.viewToWorld(1, 1, origin, direction)) << "no camera of that kind";
}

// What the cameras of the scene see, by where in the picture something changed against the empty scene.
#include <cmath>

#include "dag/dag.h"
#include "picture.h"
#include "support/host_fixture.h"
#include "view/scene_draw.h"

namespace mirk::test {
namespace {

class CameraViews : public Host
{
protected:
    static constexpr int kSize = 96;

    struct Seen
    {
        int    count = 0;          // pixels that changed
        double x = 0, y = 0;       // their middle, from -1 to 1, to the right and up
    };
    static view::Image picture(const std::string& camera, unsigned style = MHWRender::MFrameContext::kGouraudShaded)
    {
        view::SceneDrawOptions options;
        options.grid = options.selection = false;
        options.displayStyle = style;
        EXPECT_TRUE(view::cameraOf(command::oneItem(camera).path, kSize, kSize, options.camera, options.cameraPath)) << camera;
        return view::renderScene(options);
    }
    static Seen compare(const view::Image& before, const view::Image& after)
    {
        Seen out;
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x)
                if (!(picture::at(before, x, y) == picture::at(after, x, y)))
                {
                    ++out.count;
                    out.x += (x + 0.5) / kSize * 2 - 1;
                    out.y += 1 - (y + 0.5) / kSize * 2;
                }
        if (out.count)
            out.x /= out.count, out.y /= out.count;
        return out;
    }
    /// What `make` adds to a camera's picture of the scene.
    static Seen added(const std::string& camera, const std::string& make, unsigned style = MHWRender::MFrameContext::kGouraudShaded)
    {
        const view::Image before = picture(camera, style);
        mel(make);
        return compare(before, picture(camera, style));
    }
};

TEST_F(CameraViews, EachLooksFromItsOwnSide)
{
    // width 30: 15 units to each border. Right hand of a view is forward x up: +x in front and top, -z at the side.
    struct Case { const char* camera; double x, y; };
    const Case cases[] = {{"front", 5.0 / 15, 3.0 / 15}, {"top", 5.0 / 15, -9.0 / 15}, {"side", -9.0 / 15, 3.0 / 15}};
    for (const Case& c : cases)
    {
        newScene();
        const Seen seen = added(c.camera, "polyCube -w 2 -h 2 -d 2 -n box; move 5 3 9 box; select -cl");
        EXPECT_NEAR(seen.x, c.x, 0.03) << c.camera;
        EXPECT_NEAR(seen.y, c.y, 0.03) << c.camera;
        const double side = 2.0 / 30 * kSize;
        EXPECT_NEAR(seen.count, side * side, 2 * side + 4) << c.camera << ": a square, give or take its rim";
    }
}

TEST_F(CameraViews, WiresCurvesAndPoints)
{
    const unsigned wire = MHWRender::MFrameContext::kWireFrame;
    struct Case { const char* what; std::string make; int least, most; };
    // lines 10 units long are 32 pixels, one to two wide
    const Case cases[] = {
        {"a square as wire", "polyPlane -w 10 -h 10 -sx 1 -sy 1 -ax 0 0 1 -n p; select -cl", 4 * 30, 4 * 32 * 3},
        {"a line", "curve -d 1 -p -5 0 0 -p 5 0 0; select -cl", 30, 32 * 3},
        {"a circle", "circle -nr 0 0 1 -r 5; select -cl", 90, 100 * 3},
        {"a surface as wire", "nurbsPlane -ax 0 0 1 -w 10 -u 1 -v 1; select -cl", 4 * 30, 8 * 32 * 3},
        {"a locator", "spaceLocator -n l; setAttr l.s 5 5 5; select -cl", 40, 64 * 3},
        {"what is hidden", "polyPlane -w 10 -h 10 -ax 0 0 1 -n p; hide p; select -cl", 0, 0},
        {"below what is hidden", "polyPlane -w 10 -h 10 -ax 0 0 1 -n p; group -n g p; setAttr g.v 0; select -cl", 0, 0},
        {"an intermediate shape", "polyPlane -w 10 -h 10 -ax 0 0 1 -n p; setAttr pShape.intermediateObject 1; select -cl", 0, 0},
        {"behind the camera", "polyPlane -w 10 -h 10 -ax 0 0 1 -n p; setAttr p.tz 2000; select -cl", 0, 0},
    };
    for (const Case& c : cases)
    {
        newScene();
        const Seen seen = added("front", c.make, wire);
        EXPECT_GE(seen.count, c.least) << c.what;
        EXPECT_LE(seen.count, c.most) << c.what;
        if (seen.count)
        {
            EXPECT_NEAR(seen.x, 0, 0.07) << c.what;
            EXPECT_NEAR(seen.y, 0, 0.07) << c.what;
        }
    }
}

TEST_F(CameraViews, OrthographicWidthAndLensChangeTheSize)
{
    mel("polyPlane -w 4 -h 4 -ax 0 0 1 -n p; select -cl");
    const auto size = [&](const std::string& camera) {
        mel("setAttr p.v 0");
        const view::Image before = picture(camera);
        mel("setAttr p.v 1");
        return std::sqrt(double(compare(before, picture(camera)).count));
    };
    const double wide = size("front");
    mel("setAttr frontShape.orthographicWidth 15");
    EXPECT_NEAR(size("front") / wide, 2, 0.2);
    // a lens twice as long, from straight ahead
    mel("setAttr persp.t 0 0 40; setAttr persp.r 0 0 0; setAttr perspShape.focalLength 35");
    const double near = size("persp");
    mel("setAttr perspShape.focalLength 70");
    EXPECT_NEAR(size("persp") / near, 2, 0.2);
    mel("setAttr persp.tz 80");
    EXPECT_NEAR(size("persp") / near, 1, 0.1) << "twice as far and twice as long";
}

}  // namespace
}  // namespace mirk::test

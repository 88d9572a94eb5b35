// The door to the renderer, a module that is opened when something is drawn for the first time.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "view/draw_list.h"

namespace mirk::view {

/// One clear message: what could not be drawn, read or written, and why.
struct Error : std::runtime_error { using std::runtime_error::runtime_error; };

/// Rows from the top, pixels from the left, channels interleaved. Exactly one of the two arrays is filled.
struct Image
{
    int                  width = 0, height = 0, channels = 0;
    std::vector<uint8_t> bytes;    ///< 0 to 255
    std::vector<float>   floats;   ///< of files that hold more than eight bits
};

struct RenderRequest
{
    Camera          camera;
    const DrawList* list = nullptr;
    int             samples = 4;   ///< a pixel: 1, 4, or 16 (slower; 4 when there are callbacks)
};

/// One thing found by picking.
struct Hit
{
    uint32_t id = 0;
    float    depth = 0;   ///< 0 at the near plane, 1 at the far plane
};

/// All methods throw Error and may be called from any thread.
class Renderer
{
public:
    virtual ~Renderer() = default;

    /// Four channels, bytes.
    virtual Image render(const RenderRequest& request) = 0;
    /// What is visible in a rectangle of pixels counted from the lower left, nearest first, each id once. Thin lines and
    /// small points count as at least `tolerance` pixels wide.
    virtual std::vector<Hit> pick(const RenderRequest& request, int x, int y, int width, int height,
                                  float tolerance = 3) = 0;
    /// The format goes by the extension of the path.
    virtual void  writeImage(const std::string& path, const Image& image) = 0;
    virtual Image readImage(const std::string& path) = 0;
    /// OpenGL version and device.
    virtual std::string description() = 0;

    // Only inside a callback, where the context is current already:
    virtual void setCurrentColor(const Color& color) = 0;
    /// Lines in the current colour: x and y in pixels of the camera's picture, 4 floats a line, at a depth from -1 to 1.
    virtual void drawPixelLines(const Camera& camera, const std::vector<float>& lines, float depth) = 0;
};

/// The renderer of the process, opened at the first call. A failed opening is tried again at the next.
Renderer& renderer();
bool      rendererIsOpen();

/// Opens the module at a path. It stays open until the process ends.
Renderer& openRenderer(const std::string& path);

}  // namespace mirk::view

/// The one entry of the module: a new renderer, owned by the caller.
using MirkCreateRenderer = mirk::view::Renderer* (*)();

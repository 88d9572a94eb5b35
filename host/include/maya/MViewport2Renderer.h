#pragma once

namespace MHWRender {

/// Devices that drawing code can work with.
enum DrawAPI
{
    kNone              = 0,
    kOpenGL            = 1 << 0,
    kDirectX11         = 1 << 1,
    kOpenGLCoreProfile = 1 << 2,
    kAllDevices        = kOpenGL | kDirectX11 | kOpenGLCoreProfile
};

constexpr DrawAPI operator|(DrawAPI a, DrawAPI b) { return DrawAPI(int(a) | int(b)); }

/// The renderer of the viewports.
class MRenderer
{
public:
    /// Null if there is none on this machine, and also if nothing was drawn yet and `initializeRenderer` is false.
    static MRenderer* theRenderer(bool initializeRenderer = true);

    DrawAPI drawAPI() const;
    bool    drawAPIIsOpenGL() const;

private:
    MRenderer() = default;
};

}  // namespace MHWRender

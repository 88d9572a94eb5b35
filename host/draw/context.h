// An OpenGL context without a window.
#pragma once
#include <EGL/egl.h>

#include <string>

namespace mirk::draw {

/// A desktop OpenGL context of at least version 3.3 with the fixed pipeline, since callbacks may use it. Created on
/// construction; throws view::Error with the reason.
class Context
{
public:
    Context();
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    /// Current on this thread while it lives; what was current before comes back.
    class Current
    {
    public:
        explicit Current(const Context& context);
        ~Current();
        Current(const Current&) = delete;
        Current& operator=(const Current&) = delete;

    private:
        EGLDisplay own_, display_;
        EGLContext context_;
        EGLSurface draw_, read_;
    };

private:
    bool start(EGLDisplay display);

    EGLDisplay  display_ = EGL_NO_DISPLAY;
    EGLContext  context_ = EGL_NO_CONTEXT;
    EGLSurface  surface_ = EGL_NO_SURFACE;   // none where the driver needs none
    std::string why_;
};

}  // namespace mirk::draw

#include "draw/context.h"

#include <EGL/eglext.h>

#include <cstring>

#include "view/renderer.h"

namespace mirk::draw {

namespace {

std::string eglFailure(const char* call)
{
    char code[16];
    snprintf(code, sizeof code, "0x%04x", static_cast<unsigned>(eglGetError()));
    return std::string(call) + " failed with " + code;
}

EGLDisplay surfacelessDisplay()
{
    const char* have = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!have || !strstr(have, "EGL_MESA_platform_surfaceless"))
        return EGL_NO_DISPLAY;
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
}

}  // namespace

bool Context::start(EGLDisplay display)
{
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) {
        why_ = eglFailure("eglInitialize");
        return false;
    }
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint    count = 0;
    if (!eglBindAPI(EGL_OPENGL_API) || !eglChooseConfig(display, wanted, &config, 1, &count) || count < 1) {
        why_ = "the display offers no desktop OpenGL";
        return false;
    }
    const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3,
                              EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, EGL_NONE};
    context_ = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
    if (context_ == EGL_NO_CONTEXT) {
        why_ = eglFailure("eglCreateContext (OpenGL 3.3, compatibility profile)");
        return false;
    }
    const char* have = eglQueryString(display, EGL_EXTENSIONS);
    if (!have || !strstr(have, "EGL_KHR_surfaceless_context")) {
        const EGLint size[] = {EGL_WIDTH, 16, EGL_HEIGHT, 16, EGL_NONE};
        surface_ = eglCreatePbufferSurface(display, config, size);
    }
    display_ = display;
    return true;
}

Context::Context()
{
    if (start(surfacelessDisplay()) || start(eglGetDisplay(EGL_DEFAULT_DISPLAY)))
        return;
    throw view::Error("No offscreen OpenGL: " + why_ + " (software rendering comes with the Mesa EGL and DRI drivers)");
}

Context::~Context()
{
    if (surface_ != EGL_NO_SURFACE)
        eglDestroySurface(display_, surface_);
    eglDestroyContext(display_, context_);
}

Context::Current::Current(const Context& c)
    : own_(c.display_), display_(eglGetCurrentDisplay()), context_(eglGetCurrentContext()),
      draw_(eglGetCurrentSurface(EGL_DRAW)), read_(eglGetCurrentSurface(EGL_READ))
{
    eglBindAPI(EGL_OPENGL_API);
    if (!eglMakeCurrent(c.display_, c.surface_, c.surface_, c.context_))
        throw view::Error("The OpenGL context cannot be used: " + eglFailure("eglMakeCurrent"));
}

Context::Current::~Current()
{
    if (context_ != EGL_NO_CONTEXT)
        eglMakeCurrent(display_, draw_, read_, context_);
    else
        eglMakeCurrent(own_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

}  // namespace mirk::draw

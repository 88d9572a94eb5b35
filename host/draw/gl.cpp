#include "draw/gl.h"

#include <string>

#include "view/renderer.h"

namespace mirk::draw {

Target::Target(int width, int height, int samples, GLenum colorFormat) : width_(width), height_(height)
{
    const auto buffer = [&](GLuint& name, GLenum format, GLenum attachment) {
        glGenRenderbuffers(1, &name);
        glBindRenderbuffer(GL_RENDERBUFFER, name);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples > 1 ? samples : 0, format, width, height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, name);
    };
    while (glGetError() != GL_NO_ERROR) {}
    glGenFramebuffers(1, &frame_);
    glBindFramebuffer(GL_FRAMEBUFFER, frame_);
    buffer(color_, colorFormat, GL_COLOR_ATTACHMENT0);
    buffer(depth_, GL_DEPTH_COMPONENT32F, GL_DEPTH_ATTACHMENT);
    if (glGetError() != GL_NO_ERROR || glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        release();
        throw view::Error("A picture of " + std::to_string(width) + " x " + std::to_string(height) + " with " +
                          std::to_string(samples) + " samples is more than OpenGL can hold here");
    }
}

void Target::release()
{
    glDeleteFramebuffers(1, &frame_);
    glDeleteRenderbuffers(1, &color_);
    glDeleteRenderbuffers(1, &depth_);
}

void Target::copyTo(const Target& other) const
{
    glBindFramebuffer(GL_READ_FRAMEBUFFER, frame_);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, other.frame_);
    const bool same = width_ == other.width_ && height_ == other.height_;
    glBlitFramebuffer(0, 0, width_, height_, 0, 0, other.width_, other.height_, GL_COLOR_BUFFER_BIT,
                      same ? GL_NEAREST : GL_LINEAR);
}

void Target::read(void* pixels) const
{
    glBindFramebuffer(GL_READ_FRAMEBUFFER, frame_);
    glReadPixels(0, 0, width_, height_, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}

namespace {

GLuint compile(GLenum kind, const char* source)
{
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint good = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &good);
    if (good)
        return shader;
    char log[2048] = "";
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    glDeleteShader(shader);
    throw view::Error(std::string("A shader does not compile: ") + log);
}

}  // namespace

Program::Program(const char* vertex, const char* fragment)
{
    const GLuint v = compile(GL_VERTEX_SHADER, vertex);
    const GLuint f = compile(GL_FRAGMENT_SHADER, fragment);
    program_ = glCreateProgram();
    glAttachShader(program_, v);
    glAttachShader(program_, f);
    glLinkProgram(program_);
    glDeleteShader(v);
    glDeleteShader(f);
    GLint good = 0;
    glGetProgramiv(program_, GL_LINK_STATUS, &good);
    if (good)
        return;
    char log[2048] = "";
    glGetProgramInfoLog(program_, sizeof log, nullptr, log);
    glDeleteProgram(program_);
    throw view::Error(std::string("A shader does not link: ") + log);
}

}  // namespace mirk::draw

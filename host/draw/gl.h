// OpenGL names, and small owners of what is made with them. Everything here needs a current context.
#pragma once
#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

namespace mirk::draw {

/// A target to draw into: a colour and a depth buffer of `samples` samples. Throws view::Error if the driver cannot.
class Target
{
public:
    Target(int width, int height, int samples, GLenum colorFormat);
    ~Target() { release(); }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    void bind() const { glBindFramebuffer(GL_FRAMEBUFFER, frame_); }
    /// Copies the colours to another target, whose size may differ if both have one sample.
    void copyTo(const Target& other) const;
    /// Four bytes a pixel, rows from the bottom.
    void read(void* pixels) const;

private:
    void release();

    int    width_, height_;
    GLuint frame_ = 0, color_ = 0, depth_ = 0;
};

/// A linked program. Throws view::Error with the compiler's words.
class Program
{
public:
    Program(const char* vertex, const char* fragment);
    ~Program() { glDeleteProgram(program_); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void  use() const { glUseProgram(program_); }
    GLint at(const char* uniform) const { return glGetUniformLocation(program_, uniform); }

private:
    GLuint program_ = 0;
};

}  // namespace mirk::draw

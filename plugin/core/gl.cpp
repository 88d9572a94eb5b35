#include "core/gl.h"

#include <GL/glew.h>

namespace gl {

bool ready()
{
    static const bool loaded = glewInit() == GLEW_OK;
    return loaded;
}

} // namespace gl

#pragma once

namespace gl {

/// True if the entry points of OpenGL beyond the oldest are loaded. Asks once, at the first call, and remembers a
/// refusal: without a graphics context (a batch session, a farm machine) the answer is false and nothing else happens.
bool ready();

} // namespace gl

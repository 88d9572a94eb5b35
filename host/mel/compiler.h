// Text to code.
#pragma once
#include "mel/bytecode.h"

namespace mirk::mel {

/// Parses, resolves, checks and compiles a whole text; nothing of it has run when it throws ScriptError, and variables
/// that it declared are gone again.
std::shared_ptr<const Unit> compile(std::shared_ptr<const Source> source);

}  // namespace mirk::mel

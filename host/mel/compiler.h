// Text to code.
#pragma once
#include "mel/bytecode.h"
#include "mel/literals.h"

namespace mirk::mel {

/// Parses, resolves, checks and compiles a whole text; nothing of it has run when it throws ScriptError, and variables
/// that it declared are gone again.
/// `literals`: numbers of the text by position; those that become parameters of the code are marked.
std::shared_ptr<const Unit> compile(std::shared_ptr<const Source> source, std::vector<Literal>& literals);

}  // namespace mirk::mel

// Text to syntax trees.
#pragma once
#include "mel/ast.h"
#include "mel/error.h"

namespace mirk::mel {

/// The top-level statements of a text, in order. Throws ScriptError.
std::vector<Node*> parse(const Source& source, Arena& arena);

}  // namespace mirk::mel

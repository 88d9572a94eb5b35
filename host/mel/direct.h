// Commands without the compiler: a text that is one imperative command with literal arguments, which scripts and
// plug-ins write by the thousand with other names in each, goes from its words to the command registry.
#pragma once
#include <string_view>

#include "command/value.h"

namespace mirk::mel {

/// Runs such a text and gives what the compiled text would give, errors and their positions included. False, with
/// nothing done, for every other text. The interpreter is locked by the caller.
bool runDirect(std::string_view text, std::string_view sourceName, command::Value& result);

}  // namespace mirk::mel

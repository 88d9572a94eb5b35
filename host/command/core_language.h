#pragma once
#include "command/registry.h"

namespace mirk::command {

/// print, warning, error, eval, source, whatIs, exists: added when the library loads; again after a removal.
void addLanguageCommands();

}  // namespace mirk::command

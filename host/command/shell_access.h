// Whether scripts of this session may start other programs. Scenes and scripts come from elsewhere, so they may not
// unless the session was started so: `mirk run --allow-shell`, or MIRK_ALLOW_SHELL=1 in the environment.
#pragma once
#include <string>

namespace mirk::command {

void allowShell(bool allowed);
/// Throws Error in the name of the function or command that asks.
void checkShell(const std::string& who);

}  // namespace mirk::command

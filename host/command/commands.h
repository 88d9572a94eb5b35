#pragma once

namespace mirk {

/// Adds all commands of the host to the registry.
void registerCommands();

}  // namespace mirk

// Commands on shading networks and instancers: one function a file of them.
#pragma once

namespace mirk::command {

void registerShadingCommands();
void registerInstancerCommands();

}  // namespace mirk::command

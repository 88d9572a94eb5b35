// Commands on keys, sets and particles: one function a file of them.
#pragma once

namespace mirk::command {

void registerKeyCommands();
void registerKeyEditCommands();
void registerSetCommands();
void registerParticleCommands();

}  // namespace mirk::command

// Node types of animation, sets and particles.
#pragma once

namespace mirk::nodes {

void registerRemapValue();
void registerSetTypes();

}  // namespace mirk::nodes

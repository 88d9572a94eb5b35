// History nodes that cut meshes along a plane and close their holes.
#pragma once

namespace mirk::nodes {

/// polyCut and polyCloseBorder; after registerPolyModifier.
void registerPolyCuts();

}  // namespace mirk::nodes

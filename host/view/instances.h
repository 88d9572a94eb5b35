// What instancers show.
#pragma once
#include "view/scene_items.h"

namespace mirk::view {

/// The objects of an instancer, each with all its copies. `matrix`: the instancer's space to world. Objects show whether
/// or not they are hidden themselves; what stands hidden below them does not.
void addInstances(Node& instancer, const Matrix& matrix, const Look& look, DrawList& list);

}  // namespace mirk::view

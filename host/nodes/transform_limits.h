// Limits of transforms: minTransLimit, maxTransLimit and their kin for rotation and scale, each channel with a switch.
#pragma once
#include "graph/node.h"

namespace mirk::nodes {

enum class Limited { translate, rotate, scale };

/// Adds the attributes to the type that is being built; they affect `outputs`.
void addLimitAttributes(std::initializer_list<MObject> outputs);
void findLimitAttributes(const NodeType& transform);
/// Brings three channels into the limits that are switched on. Lengths in centimetres, angles in radians.
void limit(Node& node, Limited what, double channels[3]);

}  // namespace mirk::nodes

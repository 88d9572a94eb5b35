// Connections between plugs of different units: a conversion node goes between, so that the number read at one end is
// the number shown at the other.
#pragma once
#include "graph/node.h"

namespace mirk::edit {

/// As edit::connect. Angles, lengths and times meet plain numbers, or each other, in the user's units of this moment;
/// tuples whose parts need that are connected part by part. Nothing goes between where the factor is 1.
void connectConverting(Cell& source, Cell& target, bool force = false);
/// As edit::disconnect, through a conversion that connectConverting put between.
void disconnectConverting(Cell& source, Cell& target);
bool isConversion(const Node& node);
/// The source behind conversion nodes; `source` itself if there is none.
Cell* behindConversion(Cell* source);

}  // namespace mirk::edit

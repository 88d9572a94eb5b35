// Where a cell's value comes from.
#pragma once
#include "graph/cell.h"

namespace mirk::eval {

/// The cell at the other end of the cell's own connection, else of the next one above it, there the part that
/// corresponds; null if there is neither.
Cell* sourceOf(Cell& cell);

}  // namespace mirk::eval

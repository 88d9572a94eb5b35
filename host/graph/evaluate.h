// Push dirty, pull values.
#pragma once
#include <functional>

#include "graph/node.h"

namespace mirk::eval {

/// Makes the value of a leaf or tuple valid: from its source, its node's compute, or as it stands.
/// For a plain compound or a multi nothing is evaluated; see `pullDeep`.
void pull(Cell& cell);
/// Offers the cell's new value to its node if the attribute is internal.
void tellInternalValue(Cell& cell);
/// `pull` for the cell and everything below it, connected elements included.
void pullDeep(Cell& cell);
/// Spreads dirt from a cell that got a new value or a new source. The cell itself is left as it is.
void spread(Cell& cell);
/// Marks the cell dirty and spreads.
void dirty(Cell& cell);
/// Dirt on all computed attributes of a node.
void dirtyOutputs(Node& node);
/// Marks clean, with everything below.
void clean(Cell& cell);

/// Number of computes on the stack.
int   depth();
/// The node whose compute runs, innermost; null outside.
Node* computingNode();
/// Deletes later what nobody may hold any more: at the end of the outermost evaluation, or at once outside.
void  freeLater(Ref<Object> object);
void  noteRemoved(Node& node);      ///< node.removed has got entries
void  collect();                    ///< frees now; called between commands, does nothing inside an evaluation

/// The stack that evaluation moves to when it goes deep, in bytes; past it there is an error that names the plug.
constexpr size_t kStackBytes = size_t(64) << 30;

/// Where evaluation warnings and errors go ("Cycle on ...", "Evaluation went too deep at ...").
void setReporter(void (*report)(const std::string& message, bool isError));

/// A cell whose data object was set in a running compute: sealed when that returns.
void noteWritten(Cell& cell);

/// Commands that run inside a compute note it, so that the node type stays on the main thread from then on.
void noteCommandInCompute();

}  // namespace mirk::eval

#include "command/undo.h"

#include <utility>

namespace mirk::command {

namespace {
UndoHooks* g_hooks = nullptr;
}

UndoHooks* setUndoHooks(UndoHooks* hooks) { return std::exchange(g_hooks, hooks); }

UndoScope::UndoScope(const char* name) : hooks_(g_hooks)
{
    if (hooks_)
        hooks_->begin(name);
}

UndoScope::~UndoScope() { rollback(); }

void UndoScope::rollback()
{
    if (UndoHooks* hooks = std::exchange(hooks_, nullptr))
        hooks->rollback();
}

void UndoScope::commit()
{
    if (UndoHooks* hooks = std::exchange(hooks_, nullptr))
        hooks->commit();
}

}  // namespace mirk::command

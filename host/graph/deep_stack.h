// Where deep evaluation runs: the caller's stack for the first levels, then one large region mapped lazily.
#pragma once
#include <type_traits>
#include <utility>

namespace mirk::deepstack {

enum class Room { kEnough, kMove, kNone };

/// Whether one more level of evaluation fits where we stand: as it is, only on the deep stack, or not at all.
Room room(int depth);
/// Runs `function` on the deep stack and comes back when it is done. Exceptions pass through.
void runOn(void (*function)(void*), void* argument);

template <class F>
void run(F&& f)
{
    runOn([](void* p) { (*static_cast<std::remove_reference_t<F>*>(p))(); }, &f);
}

}  // namespace mirk::deepstack

#include "graph/deep_stack.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <ucontext.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <pthread.h>

#include "graph/evaluate.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#define MIRK_FIBERS 1
#endif

namespace mirk::deepstack {
namespace {

constexpr int    kShallow = 24;                      // levels that any ordinary stack has room for
constexpr size_t kSpare   = size_t(4) << 20;         // left for whatever a compute does at the bottom
constexpr size_t kKeep    = size_t(64) << 20;        // stays mapped, so that the next deep run takes no page faults

struct Deep
{
    char*  base = nullptr;
    size_t bytes = 0;
    bool   inUse = false;
};

// initial-exec: the look-up through the loader would cost more than a small compute
__attribute__((tls_model("initial-exec"))) thread_local Deep deep;

struct Call
{
    void (*function)(void*);
    void*              argument;
    std::exception_ptr error;
    ucontext_t         back, there;
    const void*        backBottom = nullptr;
    size_t             backSize = 0;
    void*              fake = nullptr;
};

bool map()
{
    for (size_t bytes = eval::kStackBytes; !deep.base && bytes >= (size_t(64) << 20); bytes /= 4) {
        void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (p != MAP_FAILED) {
            deep.base = static_cast<char*>(p);
            deep.bytes = bytes;
        }
    }
    return deep.base != nullptr;
}

void enter(unsigned high, unsigned low)
{
    Call& call = *reinterpret_cast<Call*>(uintptr_t(high) << 32 | low);
#ifdef MIRK_FIBERS
    __sanitizer_finish_switch_fiber(nullptr, &call.backBottom, &call.backSize);
#endif
    try {
        call.function(call.argument);
    } catch (...) {
        call.error = std::current_exception();
    }
#ifdef MIRK_FIBERS
    __sanitizer_start_switch_fiber(nullptr, call.backBottom, call.backSize);
#endif
}

}  // namespace

Room room(int depth)
{
    if (!deep.inUse)
        return depth < kShallow ? Room::kEnough : Room::kMove;
    char here;
    const size_t left = size_t(reinterpret_cast<uintptr_t>(&here) - reinterpret_cast<uintptr_t>(deep.base));
    return left > kSpare ? Room::kEnough : Room::kNone;
}

void runOn(void (*function)(void*), void* argument)
{
    if (deep.inUse || (!deep.base && !map())) {
        function(argument);
        return;
    }
    Call call{function, argument, nullptr, {}, {}};
    getcontext(&call.there);
    call.there.uc_stack.ss_sp = deep.base;
    call.there.uc_stack.ss_size = deep.bytes;
    call.there.uc_link = &call.back;
    const auto p = reinterpret_cast<uintptr_t>(&call);
    makecontext(&call.there, reinterpret_cast<void (*)()>(enter), 2, unsigned(p >> 32), unsigned(p));
    deep.inUse = true;
#ifdef MIRK_FIBERS
    __sanitizer_start_switch_fiber(&call.fake, deep.base, deep.bytes);
#endif
    swapcontext(&call.back, &call.there);
#ifdef MIRK_FIBERS
    __sanitizer_finish_switch_fiber(call.fake, nullptr, nullptr);
#endif
    deep.inUse = false;
    // what a very deep run touched goes back to the system
    madvise(deep.base, deep.bytes - kKeep, MADV_DONTNEED);
    if (call.error)
        std::rethrow_exception(call.error);
}

}  // namespace mirk::deepstack

// Values derived from others: built at the first question, once, and seen by all threads from then on.
#pragma once
#include <atomic>
#include <mutex>

#include "data/object.h"

namespace mirk {

/// A counted value that is built when first asked for. A copy starts empty. T derives from Counted.
template <class T>
class Lazy
{
public:
    Lazy() = default;
    Lazy(const Lazy&) noexcept {}
    Lazy& operator=(const Lazy&) = delete;
    ~Lazy() { if (const T* p = value_.load(std::memory_order_acquire)) p->release(); }

    bool built() const noexcept { return value_.load(std::memory_order_acquire) != nullptr; }

    /// The value; `build` makes it, as a Ref<T>, for the first caller while others wait. It must not ask for itself.
    template <class F>
    const T& get(F&& build) const
    {
        if (const T* p = value_.load(std::memory_order_acquire))
            return *p;
        const std::lock_guard<std::mutex> lock(mutex_);
        if (const T* p = value_.load(std::memory_order_relaxed))
            return *p;
        const Ref<T> made = build();
        made->addRef();
        value_.store(made.get(), std::memory_order_release);
        return *made;
    }

private:
    mutable std::atomic<const T*> value_{nullptr};
    mutable std::mutex            mutex_;
};

}  // namespace mirk

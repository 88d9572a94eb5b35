// Counted objects: the base of everything an MObject can hold, and the handle that counts.
#pragma once
#include <atomic>
#include <cstdint>
#include <utility>

#include <maya/MFn.h>

namespace mirk {

/// Base of all counted host objects: nodes, attributes, data, components. Counting is atomic.
class Object
{
public:
    Object() = default;
    Object(const Object&) noexcept {}  // a copy starts its own count
    Object& operator=(const Object&) noexcept { return *this; }

    void addRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept
    {
        if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
    /// True if nobody but the caller holds this object.
    bool unique() const noexcept { return refs_.load(std::memory_order_acquire) == 1; }
    int  refCount() const noexcept { return refs_.load(std::memory_order_relaxed); }

    virtual MFn::Type apiType() const = 0;
    virtual bool      hasFn(MFn::Type type) const { return type == MFn::kBase || type == apiType(); }
    /// False once the object is no longer part of the scene, though handles still hold it.
    virtual bool      valid() const { return true; }

    /// Told at construction, so that hot paths need no virtual call or dynamic cast.
    enum class Class : uint8_t { kOther, kNode, kAttribute };
    Class objectClass() const noexcept { return class_; }

protected:
    explicit Object(Class c) noexcept : class_(c) {}
    virtual ~Object() = default;

private:
    mutable std::atomic<int32_t> refs_{0};
    const Class                  class_ = Class::kOther;
};

/// Non-virtual counted base for buffers and caches that no MObject ever holds.
template <class T>
class Counted
{
public:
    Counted() = default;
    Counted(const Counted&) noexcept {}
    Counted& operator=(const Counted&) noexcept { return *this; }

    void addRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept
    {
        if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete static_cast<const T*>(this);
    }
    bool unique() const noexcept { return refCount() == 1; }
    int  refCount() const noexcept { return refs_.load(std::memory_order_acquire); }

private:
    mutable std::atomic<int32_t> refs_{0};
};

/// Owning handle on a counted object.
template <class T>
class Ref
{
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept {}
    explicit Ref(T* p) noexcept : p_(p) { if (p_) p_->addRef(); }
    Ref(const Ref& o) noexcept : p_(o.p_) { if (p_) p_->addRef(); }
    Ref(Ref&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    template <class U>
    Ref(const Ref<U>& o) noexcept : p_(o.get()) { if (p_) p_->addRef(); }
    ~Ref() { if (p_) p_->release(); }

    Ref& operator=(Ref o) noexcept { std::swap(p_, o.p_); return *this; }

    T* get() const noexcept { return p_; }
    T* operator->() const noexcept { return p_; }
    T& operator*() const noexcept { return *p_; }
    explicit operator bool() const noexcept { return p_ != nullptr; }
    bool operator==(const Ref& o) const noexcept { return p_ == o.p_; }
    bool operator==(std::nullptr_t) const noexcept { return p_ == nullptr; }

private:
    T* p_ = nullptr;
};

template <class T, class... A>
Ref<T> make(A&&... args) { return Ref<T>(new T(std::forward<A>(args)...)); }

}  // namespace mirk

// Shared copy-on-write buffers of plain values, from a pool that recycles large blocks, so that evaluating again
// at the same size takes no page faults.
#pragma once
#include <cstddef>
#include <cstring>
#include <type_traits>

#include <maya/MArrayBase.h>

#include "data/object.h"

namespace mirk {

/// Blocks for buffers. Large blocks are kept and handed out again; small ones go to the ordinary allocator.
/// Sizes in bytes; `poolFree` takes the size that was asked for. Thread safe. Throws std::bad_alloc.
void* poolAllocate(size_t bytes);
void  poolFree(void* block, size_t bytes) noexcept;
/// Gives every kept block back to the system.
void  poolTrim() noexcept;

/// Counts the array aliases among a buffer's holders. They belong to one data object and see what it writes, so they
/// do not make the buffer shared.
class AliasCount
{
public:
    AliasCount() = default;
    AliasCount(const AliasCount&) noexcept {}

    void addAlias() noexcept { aliases_.fetch_add(1, std::memory_order_relaxed); }
    void releaseAlias() noexcept { aliases_.fetch_sub(1, std::memory_order_relaxed); }
    int  aliasCount() const noexcept { return aliases_.load(std::memory_order_relaxed); }

private:
    std::atomic<int32_t> aliases_{0};
};

/// A counted, growable run of plain values. Shared through Ref; `detach` below is how a writer gets its own.
template <class T>
class Buffer : public Counted<Buffer<T>>, public BufferView<T>, public AliasCount
{
    static_assert(std::is_trivially_copyable_v<T>);
    using BufferView<T>::data_;
    using BufferView<T>::size_;

public:
    Buffer() = default;
    /// `n` values; left undefined unless `value` is given.
    explicit Buffer(size_t n) { resize(n); }
    Buffer(size_t n, const T& value) { resize(n); for (size_t i = 0; i < n; ++i) data_[i] = value; }
    Buffer(const T* source, size_t n) { resize(n); copyIn(source, n); }
    Buffer(const Buffer& o) : Counted<Buffer<T>>(), BufferView<T>(), AliasCount() { resize(o.size_); copyIn(o.data_, o.size_); }
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { if (data_) poolFree(data_, capacity_ * sizeof(T)); }

    /// True if at most one holder is more than an alias.
    bool     unique() const noexcept { return this->refCount() - this->aliasCount() <= 1; }

    size_t   size() const noexcept { return size_; }
    size_t   capacity() const noexcept { return capacity_; }
    bool     empty() const noexcept { return size_ == 0; }
    T*       data() noexcept { return data_; }
    const T* data() const noexcept { return data_; }
    T&       operator[](size_t i) noexcept { return data_[i]; }
    const T& operator[](size_t i) const noexcept { return data_[i]; }
    T*       begin() noexcept { return data_; }
    T*       end() noexcept { return data_ + size_; }
    const T* begin() const noexcept { return data_; }
    const T* end() const noexcept { return data_ + size_; }

    /// Keeps the head; new values are undefined.
    void resize(size_t n) { if (n > capacity_) reserve(n); size_ = n; }
    void reserve(size_t n)
    {
        if (n <= capacity_)
            return;
        T* block = static_cast<T*>(poolAllocate(n * sizeof(T)));
        if (size_)
            std::memcpy(static_cast<void*>(block), data_, size_ * sizeof(T));
        if (data_)
            poolFree(data_, capacity_ * sizeof(T));
        data_ = block;
        capacity_ = n;
    }
    void push(const T& value)
    {
        const T copy = value;  // `value` may live in this buffer
        if (size_ == capacity_)
            reserve(capacity_ < 8 ? 8 : capacity_ * 2);
        data_[size_++] = copy;
    }
    void erase(size_t i)
    {
        std::memmove(static_cast<void*>(data_ + i), data_ + i + 1, (size_ - i - 1) * sizeof(T));
        --size_;
    }
    void insert(size_t i, const T& value)
    {
        const T copy = value;
        push(copy);
        std::memmove(static_cast<void*>(data_ + i + 1), data_ + i, (size_ - 1 - i) * sizeof(T));
        data_[i] = copy;
    }
    void clear() noexcept { size_ = 0; }

private:
    void copyIn(const T* source, size_t n) { if (n) std::memcpy(static_cast<void*>(data_), source, n * sizeof(T)); }

    size_t capacity_ = 0;
};

/// The buffer behind `ref` for writing: made if missing, copied first if somebody else holds it too.
/// Call once when opening for writing, never per element.
template <class B>
B& detach(Ref<B>& ref)
{
    if (!ref)
        ref = make<B>();
    else if (!ref->unique())
        ref = make<B>(*ref);
    return *ref;
}

}  // namespace mirk

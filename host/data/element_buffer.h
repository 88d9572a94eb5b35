// Buffers of values that have constructors: strings and object handles.
#pragma once
#include <vector>

#include "data/buffer.h"

namespace mirk {

/// As Buffer, for elements that are not plain. New elements have their default value.
template <class T>
class ElementBuffer : public Counted<ElementBuffer<T>>, public BufferView<T>, public AliasCount
{
public:
    ElementBuffer() = default;
    explicit ElementBuffer(size_t n) : values_(n) { publish(); }
    ElementBuffer(size_t n, const T& value) : values_(n, value) { publish(); }
    ElementBuffer(const T* source, size_t n) : values_(source, source + n) { publish(); }
    ElementBuffer(const ElementBuffer& o)
        : Counted<ElementBuffer<T>>(), BufferView<T>(), AliasCount(), values_(o.values_) { publish(); }
    ElementBuffer& operator=(const ElementBuffer&) = delete;

    bool     unique() const noexcept { return this->refCount() - this->aliasCount() <= 1; }
    size_t   size() const noexcept { return values_.size(); }
    size_t   capacity() const noexcept { return values_.capacity(); }
    bool     empty() const noexcept { return values_.empty(); }
    T*       data() noexcept { return values_.data(); }
    const T* data() const noexcept { return values_.data(); }
    T&       operator[](size_t i) noexcept { return values_[i]; }
    const T& operator[](size_t i) const noexcept { return values_[i]; }
    T*       begin() noexcept { return data(); }
    T*       end() noexcept { return data() + size(); }
    const T* begin() const noexcept { return data(); }
    const T* end() const noexcept { return data() + size(); }

    void resize(size_t n) { values_.resize(n); publish(); }
    void reserve(size_t n) { values_.reserve(n); publish(); }
    void push(const T& value) { values_.push_back(value); publish(); }
    void erase(size_t i) { values_.erase(values_.begin() + std::ptrdiff_t(i)); publish(); }
    void insert(size_t i, const T& value) { values_.insert(values_.begin() + std::ptrdiff_t(i), value); publish(); }
    void clear() noexcept { values_.clear(); publish(); }

private:
    void publish() noexcept
    {
        this->data_ = values_.data();
        this->size_ = values_.size();
    }

    std::vector<T> values_;
};

}  // namespace mirk

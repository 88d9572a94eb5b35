// The one implementation behind the array classes; instantiated in the files of the classes.
#pragma once
#include <algorithm>
#include <new>
#include <ostream>
#include <stdexcept>
#include <type_traits>

#include <maya/MArrayBase.h>

#include "data/array_access.h"

namespace mirk {
namespace {

/// The array's buffer, made if there is none yet.
template <class T>
ArrayStorage<T>& writable(BufferView<T>*& buffer)
{
    if (!buffer) {
        auto* fresh = new ArrayStorage<T>;
        fresh->addRef();
        buffer = fresh;
    }
    return *static_cast<ArrayStorage<T>*>(buffer);
}

/// Runs what may run out of memory.
template <class F>
MStatus guarded(F&& work)
{
    try {
        work();
        return MStatus();
    } catch (const std::bad_alloc&) {
        return MStatus::kInsufficientMemory;
    } catch (const std::length_error&) {
        return MStatus::kInsufficientMemory;
    }
}

}  // namespace

template <class T>
Array<T>::Array(unsigned int initialSize, const T& initialValue)
{
    if (initialSize)
        ArrayAccess::own(*this, make<ArrayStorage<T>>(size_t(initialSize), initialValue));
}

template <class T>
Array<T>::Array(const T source[], unsigned int count)
{
    if (source && count)
        assign(source, count);
}

template <class T>
Array<T>::Array(const Array& other) : sizeIncrement_(other.sizeIncrement_)
{
    if (other.length())
        assign(other.buffer_->data_, other.buffer_->size_);
}

template <class T>
Array<T>& Array<T>::operator=(const Array& other)
{
    if (buffer_ != other.buffer_)
        assign(other.buffer_ ? other.buffer_->data_ : nullptr, other.buffer_ ? other.buffer_->size_ : 0);
    return *this;
}

template <class T>
Array<T>& Array<T>::operator=(Array&& other)
{
    if (alias_ || other.alias_)
        return *this = static_cast<const Array&>(other);
    std::swap(buffer_, other.buffer_);
    return *this;
}

template <class T>
void Array<T>::drop() noexcept
{
    if (!buffer_)
        return;
    auto* storage = static_cast<ArrayStorage<T>*>(buffer_);
    if (alias_)
        storage->releaseAlias();
    storage->release();
    buffer_ = nullptr;
    alias_  = false;
}

template <class T>
void Array<T>::assign(const T* source, size_t count)
{
    if (!count) {
        clear();
    } else if (!buffer_) {
        ArrayAccess::own(*this, make<ArrayStorage<T>>(source, count));
    } else {
        ArrayStorage<T>& storage = writable<T>(buffer_);
        storage.resize(count);
        std::copy(source, source + count, storage.data());
    }
}

template <class T>
T& Array<T>::lost() noexcept
{
    thread_local T scratch;
    return scratch = T();
}

template <class T>
const T& Array<T>::outside() noexcept
{
    static const T value{};
    return value;
}

template <class T>
MStatus Array<T>::set(const T& element, unsigned int index)
{
    if (index >= length())
        return MStatus::kFailure;
    buffer_->data_[index] = element;
    return MStatus();
}

template <class T>
MStatus Array<T>::setLength(unsigned int length)
{
    const size_t old = this->length();
    if (length == old)
        return MStatus();
    return guarded([&] {
        ArrayStorage<T>& storage = writable<T>(buffer_);
        // growing step by step must not copy everything each time
        if (old && length > storage.capacity() && length - old <= std::max(sizeIncrement_, 64u))
            storage.reserve(length + old / 2);
        storage.resize(length);   // new numbers are undefined, as documented: nodes fill millions of them themselves
    });
}

template <class T>
MStatus Array<T>::remove(unsigned int index)
{
    if (index >= length())
        return MStatus::kFailure;
    writable<T>(buffer_).erase(index);
    return MStatus();
}

template <class T>
MStatus Array<T>::insert(const T& element, unsigned int index)
{
    if (index > length())
        return MStatus::kFailure;
    return guarded([&] { writable<T>(buffer_).insert(index, element); });
}

template <class T>
MStatus Array<T>::append(const T& element)
{
    return guarded([&] { writable<T>(buffer_).push(element); });
}

template <class T>
MStatus Array<T>::copy(const Array& source)
{
    return guarded([&] { *this = source; });
}

template <class T>
MStatus Array<T>::clear()
{
    if (buffer_)
        static_cast<ArrayStorage<T>*>(buffer_)->clear();
    return MStatus();
}

template <class T>
MStatus Array<T>::get(T array[]) const
{
    if (buffer_)
        std::copy(buffer_->data_, buffer_->data_ + buffer_->size_, array);
    return MStatus();
}

template <class T>
std::ostream& operator<<(std::ostream& os, const Array<T>& array)
{
    os << '[';
    for (unsigned int i = 0; i < array.length(); ++i) {
        if (i)
            os << ", ";
        if constexpr (requires { array[i].apiTypeStr(); })
            os << array[i].apiTypeStr();
        else
            os << array[i];
    }
    return os << ']';
}

}  // namespace mirk

#define MIRK_INSTANTIATE_ARRAY(T)  \
    template class mirk::Array<T>; \
    template std::ostream& mirk::operator<<(std::ostream&, const mirk::Array<T>&);

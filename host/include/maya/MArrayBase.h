// What all array classes of the interface share.
#pragma once
#include <cstddef>
#include <iosfwd>

#include <maya/MStatus.h>

namespace mirk {

struct ArrayAccess;

/// The part of a buffer that element access reads.
template <class T>
struct BufferView
{
    T*     data_ = nullptr;
    size_t size_ = 0;
};

/// A growable array. It either owns its values alone or is an alias, which the array() of a data object gives:
/// every change of an alias, also of its length, changes the data object. Copying an alias gives an array of its own.
/// An index past the end never touches memory that is not the array's: reading gives a default value, writing is lost.
template <class T>
class Array
{
public:
    Array() noexcept = default;
    explicit Array(unsigned int initialSize, const T& initialValue = T());
    Array(const T source[], unsigned int count);
    Array(const Array& other);
    Array(Array&& other) noexcept : buffer_(other.buffer_), alias_(other.alias_), sizeIncrement_(other.sizeIncrement_)
    {
        other.buffer_ = nullptr;
        other.alias_  = false;
    }
    ~Array() { if (buffer_) drop(); }
    Array& operator=(const Array& other);
    /// Takes the values over; an alias on either side copies them.
    Array& operator=(Array&& other);

    unsigned int length() const { return buffer_ ? static_cast<unsigned int>(buffer_->size_) : 0; }

    T& operator[](unsigned int index)
    {
        return buffer_ && index < buffer_->size_ ? buffer_->data_[index] : lost();
    }
    const T& operator[](unsigned int index) const
    {
        return buffer_ && index < buffer_->size_ ? buffer_->data_[index] : outside();
    }

    MStatus set(const T& element, unsigned int index);
    /// Keeps the head; new elements have T's default value.
    MStatus setLength(unsigned int length);
    MStatus remove(unsigned int index);
    /// Before `index`; at the length it appends.
    MStatus insert(const T& element, unsigned int index);
    MStatus append(const T& element);
    MStatus copy(const Array& source);
    MStatus clear();
    /// Writes all elements; `array` must have room for length() of them.
    MStatus get(T array[]) const;

    void         setSizeIncrement(unsigned int increment) { sizeIncrement_ = increment; }
    unsigned int sizeIncrement() const { return sizeIncrement_; }

private:
    friend struct mirk::ArrayAccess;

    void            drop() noexcept;
    void            assign(const T* source, size_t count);
    static T&       lost() noexcept;
    static const T& outside() noexcept;

    BufferView<T>* buffer_        = nullptr;  // null while empty and not an alias
    bool           alias_         = false;
    unsigned int   sizeIncrement_ = 8;
};

/// As "[a, b, c]".
template <class T>
std::ostream& operator<<(std::ostream& os, const Array<T>& array);

}  // namespace mirk

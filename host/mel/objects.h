// What registers hold. Ints and floats stand in the register itself, a vector in three in a row; strings, arrays,
// matrices and run-time-typed values are counted objects. The interpreter runs under one lock, so counts are plain.
#pragma once
#include <string>
#include <vector>

#include "command/value.h"
#include "mel/ast.h"

namespace mirk::mel {

using command::Value;
using command::Vec3;

struct Heap
{
    virtual ~Heap() = default;
    uint32_t refs = 0;
};

union Slot
{
    int32_t i;
    double  d;
    Heap*   p;
};

inline void addRef(Heap* p) { if (p) ++p->refs; }
inline void release(Heap* p) { if (p && --p->refs == 0) delete p; }
/// Puts a new object into a register.
inline void put(Slot& s, Heap* p)
{
    addRef(p);
    release(s.p);
    s.p = p;
}

struct Str : Heap
{
    Str() = default;
    explicit Str(std::string t) : s(std::move(t)) {}
    std::string s;
};

struct Mat : Heap
{
    command::Matrix m;
};

struct Dyn : Heap
{
    Value v;
};

/// More elements than this is taken for a mistake in the script.
constexpr size_t kMaxElements = size_t(1) << 28;
[[noreturn]] void badIndex(int64_t index);

struct Array : Heap
{
    virtual size_t size() const = 0;
    virtual void   clear() = 0;
};

/// Where machine code finds the parts of an array, in bytes from the object's start.
struct ArrayLayout { int32_t data, size, writable; };

/// Array of plain values on a shared copy-on-write buffer. An array is one object from its declaration on, which is how
/// procedures get it by reference; assignment shares the buffer.
template <class T>
class PlainArray : public Array
{
public:
    size_t size() const override { return n_; }
    void   clear() override { adopt({}); }

    T get(int64_t i) const
    {
        if (size_t(i) < n_)
            return data_[i];
        if (i < 0)
            badIndex(i);
        return T();
    }

    void set(int64_t i, T value)
    {
        if (size_t(i) < writable_)
            data_[i] = value;
        else
            setSlow(i, value);
    }

    void push(T value) { set(int64_t(n_), value); }
    const T* data() const { return data_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + n_; }

    /// The buffer to share; whoever writes first copies.
    Ref<Buffer<T>> share()
    {
        writable_ = 0;
        if (!buffer_)
            buffer_ = make<Buffer<T>>();
        return buffer_;
    }

    void adopt(Ref<Buffer<T>> b)
    {
        buffer_ = std::move(b);
        sync(buffer_ && buffer_->unique());
    }

    void swap(PlainArray& o)
    {
        std::swap(buffer_, o.buffer_);
        const bool own = writable_ == n_;
        sync(o.writable_ == o.n_);
        o.sync(own);
    }

    /// Room for `n` elements without a change of size.
    void reserve(size_t n)
    {
        detach(buffer_).reserve(n);
        sync(true);
    }

    static ArrayLayout layout()
    {
        const PlainArray  a;
        const char* const start = reinterpret_cast<const char*>(static_cast<const Heap*>(&a));
        const auto        at = [&](const void* member) { return int32_t(static_cast<const char*>(member) - start); };
        return {at(&a.data_), at(&a.n_), at(&a.writable_)};
    }

private:
    void sync(bool own)
    {
        n_ = buffer_ ? buffer_->size() : 0;
        data_ = buffer_ ? buffer_->data() : nullptr;
        writable_ = own ? n_ : 0;
    }

    void setSlow(int64_t i, T value)
    {
        if (i < 0 || size_t(i) >= kMaxElements)
            badIndex(i);
        Buffer<T>& b = detach(buffer_);
        if (size_t(i) == b.size())
            b.push(value);
        else
        {
            const size_t old = b.size();
            if (size_t(i) > old)
            {
                if (size_t(i) >= b.capacity())
                    b.reserve(std::max(size_t(i) + 1, b.capacity() * 2));
                b.resize(size_t(i) + 1);
                for (size_t k = old; k < size_t(i); ++k)
                    b[k] = T();
            }
            b[size_t(i)] = value;
        }
        sync(true);
    }

    T*             data_ = nullptr;
    size_t         n_ = 0;
    size_t         writable_ = 0;   ///< n_ while nobody shares the buffer as far as we know, else 0
    Ref<Buffer<T>> buffer_;
};

using IntArray = PlainArray<int32_t>;
using FloatArray = PlainArray<double>;
using VectorArray = PlainArray<Vec3>;

struct StringArray : Array
{
    ~StringArray() override { clear(); }
    size_t size() const override { return v.size(); }
    void   clear() override
    {
        for (Str* s : v)
            release(s);
        v.clear();
    }
    const std::string& text(size_t i) const { return v[i] ? v[i]->s : empty(); }
    Str* get(int64_t i) const
    {
        if (i < 0)
            badIndex(i);
        return size_t(i) < v.size() ? v[size_t(i)] : nullptr;
    }
    void set(int64_t i, Str* s)
    {
        if (i < 0 || size_t(i) >= kMaxElements)
            badIndex(i);
        if (size_t(i) >= v.size())
            v.resize(size_t(i) + 1, nullptr);
        addRef(s);
        release(v[size_t(i)]);
        v[size_t(i)] = s;
    }
    void push(std::string s) { set(int64_t(v.size()), new Str(std::move(s))); }
    void assign(const StringArray& o)
    {
        for (Str* s : o.v)
            addRef(s);
        std::vector<Str*> copy = o.v;
        clear();
        v = std::move(copy);
    }
    static const std::string& empty();

    std::vector<Str*> v;   ///< null stands for ""
};

/// The object in a register, made if the register is still empty.
template <class T>
T& object(Slot& s)
{
    if (!s.p)
    {
        s.p = new T;
        s.p->refs = 1;
    }
    return *static_cast<T*>(s.p);
}

inline const std::string& text(const Slot& s) { return s.p ? static_cast<Str*>(s.p)->s : StringArray::empty(); }
inline const Value&       dynValue(Slot& s) { return object<Dyn>(s).v; }
inline Vec3               vec(const Slot* s) { return {s[0].d, s[1].d, s[2].d}; }
inline void               putVec(Slot* s, const Vec3& v) { s[0].d = v.x; s[1].d = v.y; s[2].d = v.z; }

/// Number of registers a value of the type takes, and whether it is a counted object.
inline int  width(Type t) { return t == Type::kVector ? 3 : 1; }
inline bool isHeap(Type t) { return t == Type::kString || t >= Type::kMatrix; }

/// A register's content as a value, sharing buffers; and the other way, converting. `fromValue` throws command::Error
/// when the kinds do not fit.
Value toValue(Type t, Slot* s);
void  fromValue(Value v, Type t, Slot* s);
/// The type that a value has at run time; kVoid for none.
Type  typeOf(const Value& v);
/// Converts a value to the type; throws command::Error.
Value convertTo(Value v, Type t);
/// Copies the content of one array into another of the same type, sharing.
void  assignArray(Type t, Slot& to, Slot& from);
void  swapArray(Type t, Slot& to, Slot& from);

}  // namespace mirk::mel

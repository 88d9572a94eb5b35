// A MEL-typed value: what commands take and give, and what both languages exchange with them.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "data/buffer.h"

namespace mirk::command {

struct Vec3 { double x = 0, y = 0, z = 0; };

/// A MEL matrix of fixed size, row-major.
struct Matrix
{
    int                 rows = 0, cols = 0;
    std::vector<double> v;
};

using Ints    = std::vector<int32_t>;
using Floats  = Ref<Buffer<double>>;  // shared copy-on-write: large arrays move from attributes to variables untouched
using Strings = std::vector<std::string>;
using Vectors = std::vector<Vec3>;

/// One value of the language's types; empty for "no result". MEL ints are 32 bits wide and wrap.
class Value
{
public:
    using Variant = std::variant<std::monostate, int32_t, double, std::string, Vec3, Matrix, Ints, Floats, Strings, Vectors>;
    enum Kind { kNone, kInt, kFloat, kString, kVector, kMatrix, kInts, kFloats, kStrings, kVectors };

    Value() = default;
    Value(bool b) : v_(int32_t(b)) {}
    Value(int i) : v_(int32_t(i)) {}
    Value(unsigned i) : v_(int32_t(i)) {}
    Value(double d) : v_(d) {}
    Value(const char* s) : v_(std::string(s)) {}
    Value(std::string s) : v_(std::move(s)) {}
    Value(Vec3 v) : v_(v) {}
    Value(Matrix m) : v_(std::move(m)) {}
    Value(Ints a) : v_(std::move(a)) {}
    Value(Floats a) : v_(std::move(a)) {}
    Value(const std::vector<double>& a) : v_(make<Buffer<double>>(a.data(), a.size())) {}
    Value(Strings a) : v_(std::move(a)) {}
    Value(Vectors a) : v_(std::move(a)) {}

    Kind kind() const { return Kind(v_.index()); }
    bool isNone() const { return kind() == kNone; }
    bool isArray() const { return kind() >= kInts; }

    template <class T> const T& get() const { return std::get<T>(v_); }
    template <class T> T&       get() { return std::get<T>(v_); }

    /// Conversions as the language does them: float to int cuts, vector to float is its length, a string gives its
    /// leading number or 0, an array its first element or 0.
    int32_t     asInt() const;
    double      asFloat() const;
    bool        asBool() const;
    std::string asString() const;
    Ints        asInts() const;
    Floats      asFloats() const;   ///< scalars give one value, vectors three, matrices all, row by row
    Strings     asStrings() const;

private:
    Variant v_;
};

/// The numbers of a value for a loop, which holds them.
class NumberRange
{
public:
    explicit NumberRange(Floats held) : held_(std::move(held)) {}
    const double* begin() const { return std::as_const(*held_).begin(); }
    const double* end() const { return std::as_const(*held_).end(); }

private:
    Floats held_;
};
inline NumberRange numbersIn(const Value& value) { return NumberRange(value.asFloats()); }

/// The one conversion of numbers to text (also MString's): the shortest decimal that reads back as the same double,
/// without a point for whole numbers.
std::string numberText(double value);

}  // namespace mirk::command

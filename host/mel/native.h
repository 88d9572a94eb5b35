// Built-in functions: rows of name, parameters, result and C++ function.
#pragma once
#include <span>
#include <vector>

#include "mel/bytecode.h"

namespace mirk::mel {

/// A call as a built-in function sees it; arguments have been converted to the types of its row.
class NativeCall
{
public:
    NativeCall(Slot* registers, const Site& site, uint16_t out) : r_(registers), site_(site), out_(out) {}

    int                count() const { return int(site_.args.size()); }
    bool               has(int k) const { return k < count(); }
    int32_t            i(int k) const { return slot(k).i; }
    double             f(int k) const { return slot(k).d; }
    const std::string& s(int k) const { return text(slot(k)); }
    Vec3               v(int k) const { return vec(&slot(k)); }
    const Value&       x(int k) const { return dynValue(slot(k)); }
    IntArray&          ints(int k) const { return object<IntArray>(slot(k)); }
    FloatArray&        floats(int k) const { return object<FloatArray>(slot(k)); }
    StringArray&       strings(int k) const { return object<StringArray>(slot(k)); }
    VectorArray&       vectors(int k) const { return object<VectorArray>(slot(k)); }
    Mat&               matrix(int k) const { return object<Mat>(slot(k)); }

    void give(int32_t value) { out().i = value; }
    void give(double value) { out().d = value; }
    void give(std::string value) { put(out(), new Str(std::move(value))); }
    void give(const Vec3& value) { putVec(&out(), value); }
    void give(Value value) { fromValue(std::move(value), Type::kDyn, &out()); }
    void give(std::vector<std::string> value) { fromValue(Value(std::move(value)), Type::kStrings, &out()); }
    void give(command::Ints value) { fromValue(Value(std::move(value)), Type::kInts, &out()); }
    void give(command::Floats value) { fromValue(Value(std::move(value)), Type::kFloats, &out()); }

private:
    Slot& slot(int k) const { return r_[site_.args[size_t(k)].reg]; }
    Slot& out() const { return r_[out_]; }

    Slot*       r_;
    const Site& site_;
    uint16_t    out_;
};

/// Parameters are letters: i f s v m for scalars, I F S V for arrays (by reference), x for any value; what follows '|'
/// may be left out, and '*' repeats the letter before it. The result is a letter too, x for a value typed at run time
/// and 0 for none. Several rows of one name are told apart by their parameters.
struct Native
{
    const char* name;
    const char* params;
    char        result;
    void (*function)(NativeCall&) = nullptr;
    double (*math1)(double) = nullptr;
    double (*math2)(double, double) = nullptr;
    OpCode op = OP_MOV;         ///< an instruction of its own instead of a call, unless OP_MOV
    bool   runsScript = false;  ///< may look at global variables
};

Type letterType(char letter);
/// All rows of the name; empty if there is none.
std::span<const Native* const> nativesOf(std::string_view name);

/// Every row of every table.
std::vector<const Native*> allNatives();

/// The tables, a file each.
std::span<const Native> mathNatives();
std::span<const Native> stringNatives();
std::span<const Native> arrayNatives();
std::span<const Native> coreNatives();
std::span<const Native> fileNatives();
std::span<const Native> nameNatives();

}  // namespace mirk::mel

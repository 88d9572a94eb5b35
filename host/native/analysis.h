// What the code generator knows of a body before it emits anything: which registers each instruction reads and writes,
// where loops are, which registers are alive, and which machine register each of them gets.
#pragma once
#include <functional>

#include "mel/bytecode.h"

namespace mirk::mel::native {

enum class Class : uint8_t { kNone, kInt, kFloat };   ///< kNone: counted objects, which stay in memory

/// Registers of ints and floats that an instruction reads and writes; a vector is three floats in a row.
struct Effects
{
    std::vector<uint16_t> uses, defs;
    void use(uint16_t reg, Type t = Type::kInt);
    void def(uint16_t reg, Type t = Type::kInt);
};

/// Whether the instruction is one that the generator emits code for; others are left to the interpreter.
bool covered(const Body& body, const Instr& in);
/// No effect but its result.
bool isPure(uint16_t op);
bool isJump(uint16_t op);
/// Reads an element: without a reader of the result only the index is looked at.
bool readsElement(uint16_t op);
Effects effectsOf(const Body& body, const Instr& in);

class Bits
{
public:
    explicit Bits(size_t n = 0) : words_((n + 63) / 64) {}
    bool test(size_t i) const { return words_[i / 64] >> (i % 64) & 1; }
    void set(size_t i) { words_[i / 64] |= uint64_t(1) << (i % 64); }
    void reset(size_t i) { words_[i / 64] &= ~(uint64_t(1) << (i % 64)); }
    /// True if bits came new.
    bool add(const Bits& o)
    {
        uint64_t fresh = 0;
        for (size_t k = 0; k < words_.size(); ++k)
        {
            fresh |= o.words_[k] & ~words_[k];
            words_[k] |= o.words_[k];
        }
        return fresh != 0;
    }
    template <class F> void each(F f) const
    {
        for (size_t k = 0; k < words_.size(); ++k)
            for (uint64_t w = words_[k]; w; w &= w - 1)
                f(k * 64 + size_t(__builtin_ctzll(w)));
    }

private:
    std::vector<uint64_t> words_;
};

/// Machine registers that values may live in, best first; the others are scratch.
struct Pools
{
    int ints, floats;
};

class Analysis
{
public:
    Analysis(const Body& body, const Pools& pools);

    bool worthwhile() const { return worthwhile_; }
    /// The machine register (index in its pool) of a register, or -1: it stays in the frame.
    int  place(uint16_t reg) const { return place_[reg]; }
    Class classOf(uint16_t reg) const { return class_[reg]; }
    /// Never written and no number of the text: its value is known.
    bool isConstant(uint16_t reg) const { return constant_[reg]; }
    /// Written nowhere: the frame always holds its value.
    bool isFixed(uint16_t reg) const { return !written_[reg]; }
    bool isTarget(size_t pc) const { return target_[pc]; }
    bool isEntry(size_t pc) const { return entry_[pc]; }
    bool isDead(size_t pc) const { return dead_[pc]; }      ///< nothing reads what it computes
    /// Registers with a machine register that are alive before and behind an instruction.
    std::vector<uint16_t> aliveBefore(size_t pc) const { return placed(in_[pc]); }
    std::vector<uint16_t> aliveAfter(size_t pc) const;

private:
    void classify();
    void findLoops();
    void findAlive();
    void givePlaces(const Pools& pools);
    void findEntries();
    Bits after(size_t pc) const;
    bool readsNothing(size_t pc, const Bits& out) const;
    std::vector<uint16_t> placed(const Bits& bits) const;
    template <class F> void successors(size_t pc, F f) const;

    const Body&              body_;
    std::vector<Effects>     effects_;
    std::vector<Class>       class_;
    std::vector<bool>        constant_, written_, target_, entry_, dead_;
    std::vector<int>         depth_;
    std::vector<Bits>        in_;
    Bits                     always_;   ///< copies of globals: whoever looks at the globals sees them
    std::vector<int>         place_;
    bool                     worthwhile_ = true;
};

}  // namespace mirk::mel::native

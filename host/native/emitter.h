// Bytecode to x86-64. A register of the frame lives in a machine register of its own or in the frame's memory, for the
// whole body; so jumps need no moves. Exits write what is alive back to the frame and name the next instruction.
#pragma once
#include <functional>
#include <map>

#include <asmjit/asmjit.h>

#include "mel/native_tier.h"
#include "native/analysis.h"

namespace mirk::mel::native {

class Emitter
{
public:
    Emitter(const Body& body, const NativeSupport& support, asmjit::JitRuntime& runtime);
    /// Null if nothing is gained or the code does not fit.
    std::unique_ptr<NativeCode> make();

private:
    using Gp = asmjit::x86::Gp;
    using Xmm = asmjit::x86::Xmm;
    using Mem = asmjit::x86::Mem;
    using Label = asmjit::Label;
    using InstId = asmjit::InstId;
    using Operand = asmjit::Operand;

    // emitter.cpp
    void  prologue();
    void  epilogue();
    void  entries();
    void  instruction(size_t pc);
    Label exitAt(size_t pc);
    void  poll(size_t pc);
    void  later(std::function<void()> f) { late_.push_back(std::move(f)); }

    Mem     home(uint16_t reg) const;
    Operand intSource(uint16_t reg) const;
    Gp      intIn(uint16_t reg, const Gp& scratch);
    Gp      intPlace(uint16_t reg, const Gp& scratch) const;
    void    intOut(uint16_t reg, const Gp& from);
    Operand floatSource(uint16_t reg) const;
    Xmm     floatIn(uint16_t reg, const Xmm& scratch);
    void    floatInto(const Xmm& to, uint16_t reg);
    Xmm     floatPlace(uint16_t reg, const Xmm& scratch) const;
    void    floatOut(uint16_t reg, const Xmm& from);
    void    load(uint16_t reg);
    void    store(uint16_t reg);
    void    save(const std::vector<uint16_t>& regs);
    void    restore(const std::vector<uint16_t>& regs);
    void    call(const void* function);
    std::vector<uint16_t> keptOver(size_t pc, const Instr& in) const;

    // operations.cpp
    void scalar(size_t pc, const Instr& in);
    void intBinary(InstId op, const Instr& in, bool commutes);
    void floatBinary(InstId op, const Instr& in);
    void divideInts(size_t pc, const Instr& in);
    void zeroCheck(size_t pc, uint16_t reg, const Xmm& value);
    void divideFloats(size_t pc, const Instr& in);
    void compareInts(const Instr& in);
    void compareFloats(const Instr& in);
    void minMaxInts(const Instr& in);
    void floatToInt(size_t pc, const Instr& in);
    void truth(const Instr& in);
    void maskFloat(const Instr& in, uint64_t mask, bool exclusive);
    void vectors(size_t pc, const Instr& in);
    void eachPart(InstId op, const Instr& in);
    void crossProduct(const Instr& in);
    void dotProduct(const Instr& in, uint16_t left, uint16_t right);
    void compareVectors(const Instr& in);

    // control.cpp
    void jump(size_t pc, const Instr& in);
    void jumpInts(const Instr& in, const Label& to);
    void jumpFloats(const Instr& in, const Label& to);
    void element(size_t pc, const Instr& in);
    void getElement(size_t pc, const Instr& in);
    void setElement(size_t pc, const Instr& in);
    void growElement(size_t pc, const Instr& in, const Gp& index, const Label& done);
    void arraySize(const Instr& in);
    void callMath(size_t pc, const Instr& in);
    void callBuiltIn(size_t pc, const Instr& in);

    const Body&             body_;
    const NativeSupport&    support_;
    asmjit::JitRuntime&     runtime_;
    Analysis                analysis_;
    asmjit::CodeHolder      code_;
    asmjit::x86::Assembler  a_;
    Label                   epilogue_;
    std::vector<Label>      labels_;
    std::map<size_t, Label> exits_;
    std::vector<std::pair<size_t, Label>> entries_;
    std::vector<std::function<void()>>    late_;
};

extern const asmjit::x86::Gp kIntPool[];
constexpr int kIntPlaces = 11, kKeptInts = 5;   ///< the first ones keep their value over calls
constexpr int kFloatPlaces = 13, kFirstFloat = 3;   ///< xmm0 to xmm2 are scratch

}  // namespace mirk::mel::native

// Jumps, elements of arrays, calls.
#include "native/emitter.h"

#include "mel/native.h"

namespace mirk::mel::native {

using namespace asmjit;
using namespace asmjit::x86;

// ---- jumps

void Emitter::jump(size_t pc, const Instr& in)
{
    if (size_t(in.i) <= pc)
        poll(pc);
    const Label& to = labels_[size_t(in.i)];
    if (in.op == OP_JMP)
        a_.jmp(to);
    else if (in.op <= OP_JLEI)
        jumpInts(in, to);
    else
        jumpFloats(in, to);
}

void Emitter::jumpInts(const Instr& in, const Label& to)
{
    const x86::Gp left = intIn(in.a, eax);
    if (in.op == OP_JZ || in.op == OP_JNZ)
    {
        a_.test(left, left);
        in.op == OP_JZ ? a_.jz(to) : a_.jnz(to);
        return;
    }
    a_.emit(Inst::kIdCmp, left, intSource(in.b));
    switch (in.op)
    {
    case OP_JEQI: a_.je(to); break;
    case OP_JNEI: a_.jne(to); break;
    case OP_JLTI: a_.jl(to); break;
    default:      a_.jle(to); break;
    }
}

/// An unordered comparison sets carry, zero and parity.
void Emitter::jumpFloats(const Instr& in, const Label& to)
{
    const bool equality = in.op == OP_JEQF || in.op == OP_JNEF;
    const Xmm  first = floatIn(equality ? in.a : in.b, xmm0);
    a_.emit(Inst::kIdUcomisd, first, floatSource(equality ? in.b : in.a));
    switch (in.op)
    {
    case OP_JEQF:
    {
        const Label no = a_.newLabel();
        a_.jp(no);
        a_.je(to);
        a_.bind(no);
        break;
    }
    case OP_JNEF:
        a_.jp(to);
        a_.jne(to);
        break;
    case OP_JLTF:  a_.ja(to); break;
    case OP_JLEF:  a_.jae(to); break;
    case OP_JNLTF: a_.jbe(to); break;
    default:       a_.jb(to); break;   // JNLEF
    }
}

// ---- arrays

void Emitter::element(size_t pc, const Instr& in)
{
    if (in.op == OP_SIZEA)
        arraySize(in);
    else if (readsElement(in.op))
        getElement(pc, in);
    else
        setElement(pc, in);
}

void Emitter::arraySize(const Instr& in)
{
    a_.mov(rax, qword_ptr(rbx, int32_t(in.b) * 8));
    a_.mov(eax, dword_ptr(rax, support_.array.size));
    intOut(in.a, eax);
}

void Emitter::getElement(size_t pc, const Instr& in)
{
    if (analysis_.isDead(pc))   // a negative index is an error even so
    {
        const Operand source = intSource(in.c);
        if (source.isImm() && body_.start[in.c].i >= 0)
            return;
        const x86::Gp index = intIn(in.c, ecx);
        a_.test(index, index);
        a_.js(exitAt(pc));
        return;
    }
    const x86::Gp index = intIn(in.c, ecx);
    const Label   past = a_.newLabel(), done = a_.newLabel();
    a_.mov(rax, qword_ptr(rbx, int32_t(in.b) * 8));
    a_.cmp(index.r64(), qword_ptr(rax, support_.array.size));   // a negative index is large without its sign
    a_.jae(past);
    a_.mov(rax, qword_ptr(rax, support_.array.data));
    if (in.op == OP_GETAI)
    {
        const x86::Gp to = intPlace(in.a, edx);
        a_.mov(to, dword_ptr(rax, index.r64(), 2));
        intOut(in.a, to);
    }
    else if (in.op == OP_GETAF)
    {
        const Xmm to = floatPlace(in.a, xmm0);
        a_.movsd(to, qword_ptr(rax, index.r64(), 3));
        floatOut(in.a, to);
    }
    else
    {
        a_.lea(rdx, qword_ptr(index.r64(), index.r64(), 1));
        for (int k = 0; k < 3; ++k)
        {
            const Xmm to = floatPlace(uint16_t(in.a + k), xmm0);
            a_.movsd(to, qword_ptr(rax, rdx, 3, k * 8));
            floatOut(uint16_t(in.a + k), to);
        }
    }
    a_.bind(done);
    later([=, this] {
        a_.bind(past);
        a_.test(index, index);
        a_.js(exitAt(pc));
        if (in.op == OP_GETAI)
        {
            a_.xor_(edx, edx);
            intOut(in.a, edx);
        }
        else
        {
            a_.xorpd(xmm0, xmm0);
            for (int k = 0; k < (in.op == OP_GETAV ? 3 : 1); ++k)
                floatOut(uint16_t(in.a + k), xmm0);
        }
        a_.jmp(done);
    });
}

void Emitter::setElement(size_t pc, const Instr& in)
{
    const x86::Gp index = intIn(in.b, ecx);
    const Label   past = a_.newLabel(), slow = a_.newLabel(), done = a_.newLabel();
    a_.mov(rax, qword_ptr(rbx, int32_t(in.a) * 8));
    a_.cmp(index.r64(), qword_ptr(rax, support_.array.writable));
    a_.jae(past);
    storeElement(in, index);
    a_.bind(done);
    later([=, this] {
        a_.bind(past);   // right behind the last one there is often room
        a_.jne(slow);
        a_.cmp(index.r64(), qword_ptr(rax, support_.array.room));
        a_.jae(slow);
        a_.lea(rdx, qword_ptr(index.r64(), 1));
        a_.mov(qword_ptr(rax, support_.array.size), rdx);
        a_.mov(qword_ptr(rax, support_.array.writable), rdx);
        storeElement(in, index);
        a_.jmp(done);
        a_.bind(slow);
        growElement(pc, in, index, done);
    });
}

/// rax: the array.
void Emitter::storeElement(const Instr& in, const x86::Gp& index)
{
    a_.mov(rax, qword_ptr(rax, support_.array.data));
    if (in.op == OP_SETAI)
        a_.mov(dword_ptr(rax, index.r64(), 2), intIn(in.c, edx));
    else if (in.op == OP_SETAF)
        a_.movsd(qword_ptr(rax, index.r64(), 3), floatIn(in.c, xmm0));
    else
    {
        a_.lea(rdx, qword_ptr(index.r64(), index.r64(), 1));
        for (int k = 0; k < 3; ++k)
            a_.movsd(qword_ptr(rax, rdx, 3, k * 8), floatIn(uint16_t(in.c + k), xmm0));
    }
}

void Emitter::growElement(size_t pc, const Instr& in, const x86::Gp& index, const Label& done)
{
    const std::vector<uint16_t> kept = analysis_.aliveBefore(pc);   // also for the exit behind the call
    save(kept);
    if (index != ecx)
        a_.mov(ecx, index);
    const void* function = nullptr;
    if (in.op == OP_SETAI)
    {
        a_.emit(Inst::kIdMov, edx, intSource(in.c));
        function = reinterpret_cast<const void*>(support_.setInt);
    }
    else if (in.op == OP_SETAF)
    {
        floatInto(xmm0, in.c);
        function = reinterpret_cast<const void*>(support_.setFloat);
    }
    else
    {
        for (int k = 0; k < 3; ++k)
            if (analysis_.place(uint16_t(in.c + k)) >= 0)
                store(uint16_t(in.c + k));
        a_.lea(rdx, qword_ptr(rbx, int32_t(in.c) * 8));
        function = reinterpret_cast<const void*>(support_.setVector);
    }
    a_.mov(rdi, qword_ptr(rbx, int32_t(in.a) * 8));
    a_.mov(esi, ecx);
    call(function);
    restore(kept);
    a_.test(al, al);
    a_.jz(exitAt(pc));
    a_.jmp(done);
}

// ---- calls

void Emitter::callMath(size_t pc, const Instr& in)
{
    if (in.op == OP_MODF)
        zeroCheck(pc, in.c, floatIn(in.c, xmm1));
    const std::vector<uint16_t> kept = keptOver(pc, in);
    save(kept);
    floatInto(xmm0, in.b);
    if (in.op != OP_MATH1)
        floatInto(xmm1, in.c);
    const Native* native = in.op == OP_MODF ? nullptr : body_.sites[size_t(in.i)].native;
    call(!native ? reinterpret_cast<const void*>(support_.modulo)
                 : in.op == OP_MATH1 ? reinterpret_cast<const void*>(native->math1) : reinterpret_cast<const void*>(native->math2));
    restore(kept);
    floatOut(in.a, xmm0);
}

/// Operands and result of other built-in functions pass through the frame.
void Emitter::callBuiltIn(size_t pc, const Instr& in)
{
    const Site&                 site = original_.sites[size_t(in.i)];   // lives as long as the code
    const std::vector<uint16_t> kept = analysis_.aliveBefore(pc);
    const Effects               e = effectsOf(body_, in);
    save(kept);
    for (uint16_t r : e.uses)
        if (analysis_.place(r) >= 0)
            store(r);
    a_.mov(rdi, uint64_t(&site));
    a_.mov(rsi, rbx);
    a_.mov(edx, uint32_t(in.a));
    call(reinterpret_cast<const void*>(support_.callNative));
    const Label failed = a_.newLabel();
    a_.test(al, al);
    a_.jz(failed);
    restore(keptOver(pc, in));
    for (uint16_t r : e.defs)   // the result has reached its home
        if (analysis_.place(r) >= 0)
            load(r);
    later([=, this] {
        a_.bind(failed);
        restore(kept);
        a_.jmp(exitAt(pc));
    });
}

}  // namespace mirk::mel::native

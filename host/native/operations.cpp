// Arithmetic, comparisons and conversions; each gives bit by bit what the interpreter gives.
#include "native/emitter.h"

namespace mirk::mel::native {

using namespace asmjit;
using namespace asmjit::x86;

void Emitter::scalar(size_t pc, const Instr& in)
{
    switch (in.op)
    {
    case OP_MOV:
        if (analysis_.classOf(in.a) == Class::kFloat)
        {
            const Xmm to = floatPlace(in.a, xmm0);
            floatInto(to, in.b);
            floatOut(in.a, to);
        }
        else
        {
            const x86::Gp to = intPlace(in.a, eax);
            if (const Operand from = intSource(in.b); !from.isReg() || from.as<x86::Gp>() != to)
                a_.emit(Inst::kIdMov, to, from);
            intOut(in.a, to);
        }
        break;
    case OP_I2F:
    {
        const Xmm to = floatPlace(in.a, xmm0);
        const x86::Gp from = intIn(in.b, eax);
        a_.xorps(to, to);   // no waiting for what it held
        a_.cvtsi2sd(to, from);
        floatOut(in.a, to);
        break;
    }
    case OP_F2I:  floatToInt(pc, in); break;
    case OP_ADDI: intBinary(Inst::kIdAdd, in, true); break;
    case OP_SUBI: intBinary(Inst::kIdSub, in, false); break;
    case OP_MULI: intBinary(Inst::kIdImul, in, true); break;
    case OP_DIVI:
    case OP_MODI: divideInts(pc, in); break;
    case OP_NEGI:
    {
        const x86::Gp to = intPlace(in.a, eax), from = intIn(in.b, eax);
        if (to != from)
            a_.mov(to, from);
        a_.neg(to);
        intOut(in.a, to);
        break;
    }
    case OP_ABSI:
        a_.emit(Inst::kIdMov, eax, intSource(in.b));
        a_.mov(ecx, eax);
        a_.neg(ecx);
        a_.cmovns(eax, ecx);
        intOut(in.a, eax);
        break;
    case OP_INCI:
        if (analysis_.place(in.a) >= 0)
            a_.add(intPlace(in.a, eax), in.i);
        else
            a_.add(home(in.a), in.i);
        break;
    case OP_MINI:
    case OP_MAXI: minMaxInts(in); break;
    case OP_NOTI: case OP_EQI: case OP_NEI: case OP_LTI: case OP_LEI: compareInts(in); break;
    case OP_EQF: case OP_NEF: case OP_LTF: case OP_LEF: compareFloats(in); break;
    case OP_NOTF: case OP_FTOB: case OP_VTOB: truth(in); break;
    case OP_ADDF: floatBinary(Inst::kIdAddsd, in); break;
    case OP_SUBF: floatBinary(Inst::kIdSubsd, in); break;
    case OP_MULF: floatBinary(Inst::kIdMulsd, in); break;
    case OP_DIVF: divideFloats(pc, in); break;
    case OP_NEGF: maskFloat(in, 0x8000000000000000u, true); break;
    case OP_ABSF: maskFloat(in, 0x7fffffffffffffffu, false); break;
    case OP_MINF:   // std::min(b, c) is c < b ? c : b
    case OP_MAXF:
        floatInto(xmm0, in.c);
        a_.emit(in.op == OP_MINF ? Inst::kIdMinsd : Inst::kIdMaxsd, xmm0, floatSource(in.b));
        floatOut(in.a, xmm0);
        break;
    case OP_SQRTF:
        floatInto(xmm0, in.b);
        a_.sqrtsd(xmm0, xmm0);
        floatOut(in.a, xmm0);
        break;
    default: vectors(pc, in); break;
    }
}

// ---- ints

void Emitter::intBinary(InstId op, const Instr& in, bool commutes)
{
    const x86::Gp to = intPlace(in.a, eax);
    Operand       left = intSource(in.b), right = intSource(in.c);
    const auto    is = [&](const Operand& o) { return o.isReg() && o.as<x86::Gp>() == to; };
    if (is(right) && !is(left))
    {
        if (commutes)
            std::swap(left, right);
        else
        {
            a_.mov(ecx, right.as<x86::Gp>());
            right = ecx;
        }
    }
    if (op == Inst::kIdAdd && left.isReg() && !is(left) && (right.isReg() || right.isImm()))
    {
        const x86::Gp l = left.as<x86::Gp>().r64();
        a_.lea(to, right.isReg() ? ptr(l, right.as<x86::Gp>().r64()) : ptr(l, right.as<Imm>().valueAs<int32_t>()));
        intOut(in.a, to);
        return;
    }
    if (op == Inst::kIdImul && right.isImm() && !left.isImm())
        a_.emit(op, to, left, right);
    else
    {
        if (!is(left))
            a_.emit(Inst::kIdMov, to, left);
        if (op == Inst::kIdImul && right.isImm())
            a_.emit(op, to, to, right);
        else
            a_.emit(op, to, right);
    }
    intOut(in.a, to);
}

void Emitter::divideInts(size_t pc, const Instr& in)
{
    const x86::Gp result = in.op == OP_DIVI ? eax : edx;
    const bool    known = analysis_.isConstant(in.c);
    const int32_t by = known ? body_.start[in.c].i : 0;
    a_.emit(Inst::kIdMov, ecx, intSource(in.c));
    const Label minusOne = a_.newLabel(), done = a_.newLabel();
    if (!known || by == 0)
    {
        a_.test(ecx, ecx);
        a_.jz(exitAt(pc));
    }
    a_.emit(Inst::kIdMov, eax, intSource(in.b));
    if (!known || by == -1)   // the smallest int by -1 is no machine division
    {
        a_.cmp(ecx, -1);
        a_.je(minusOne);
        later([=, this] {
            a_.bind(minusOne);
            if (in.op == OP_DIVI)
                a_.neg(eax);
            else
                a_.xor_(edx, edx);
            a_.jmp(done);
        });
    }
    a_.cdq();
    a_.idiv(ecx);
    a_.bind(done);
    intOut(in.a, result);
}

void Emitter::minMaxInts(const Instr& in)
{
    a_.emit(Inst::kIdMov, eax, intSource(in.b));
    a_.emit(Inst::kIdMov, ecx, intSource(in.c));
    a_.cmp(ecx, eax);
    if (in.op == OP_MINI)
        a_.cmovl(eax, ecx);
    else
        a_.cmovg(eax, ecx);
    intOut(in.a, eax);
}

void Emitter::compareInts(const Instr& in)
{
    const x86::Gp left = intIn(in.b, ecx);
    if (in.op == OP_NOTI)
        a_.test(left, left);
    else
        a_.emit(Inst::kIdCmp, left, intSource(in.c));
    switch (in.op)
    {
    case OP_NOTI:
    case OP_EQI: a_.sete(al); break;
    case OP_NEI: a_.setne(al); break;
    case OP_LTI: a_.setl(al); break;
    default:     a_.setle(al); break;
    }
    a_.movzx(eax, al);
    intOut(in.a, eax);
}

void Emitter::floatToInt(size_t pc, const Instr& in)
{
    const Xmm     from = floatIn(in.b, xmm0);
    const Label   odd = a_.newLabel(), done = a_.newLabel();
    a_.cvttsd2si(eax, from);
    a_.cmp(eax, int32_t(0x80000000));   // does not fit, or NaN
    a_.je(odd);
    a_.bind(done);
    intOut(in.a, eax);
    later([=, this] {
        a_.bind(odd);
        const std::vector<uint16_t> kept = keptOver(pc, in);
        save(kept);
        if (from != xmm0)
            a_.movapd(xmm0, from);
        call(reinterpret_cast<const void*>(support_.toInt));
        restore(kept);
        a_.jmp(done);
    });
}

// ---- floats

void Emitter::floatBinary(InstId op, const Instr& in)
{
    const Xmm to = floatPlace(in.a, xmm0);
    Operand   right = floatSource(in.c);
    if (right.isReg() && right.as<Xmm>() == to && in.b != in.c)
    {
        a_.movapd(xmm1, right.as<Xmm>());
        right = xmm1;
    }
    floatInto(to, in.b);   // the left operand stays left: of two NaNs it is the result
    a_.emit(op, to, right);
    floatOut(in.a, to);
}

void Emitter::zeroCheck(size_t pc, uint16_t reg, const Xmm& value)
{
    if (analysis_.isConstant(reg) && body_.start[reg].d != 0)
        return;
    const Label fine = a_.newLabel();
    a_.xorpd(xmm2, xmm2);
    a_.ucomisd(value, xmm2);
    a_.jp(fine);
    a_.je(exitAt(pc));
    a_.bind(fine);
}

void Emitter::divideFloats(size_t pc, const Instr& in)
{
    const Xmm by = floatIn(in.c, xmm1);
    zeroCheck(pc, in.c, by);
    floatInto(xmm0, in.b);
    a_.divsd(xmm0, by);
    floatOut(in.a, xmm0);
}

void Emitter::compareFloats(const Instr& in)
{
    const bool equality = in.op == OP_EQF || in.op == OP_NEF;
    a_.emit(Inst::kIdUcomisd, floatIn(equality ? in.b : in.c, xmm0), floatSource(equality ? in.c : in.b));
    switch (in.op)
    {
    case OP_EQF:
        a_.sete(al);
        a_.setnp(cl);
        a_.and_(al, cl);
        break;
    case OP_NEF:
        a_.setne(al);
        a_.setp(cl);
        a_.or_(al, cl);
        break;
    case OP_LTF: a_.seta(al); break;
    default:     a_.setae(al); break;
    }
    a_.movzx(eax, al);
    intOut(in.a, eax);
}

/// Whether a number or a vector is not zero (NOTF: is); NaN is not.
void Emitter::truth(const Instr& in)
{
    const Label other = a_.newLabel();
    a_.mov(eax, in.op == OP_NOTF ? 0 : 1);
    a_.xorpd(xmm1, xmm1);
    for (int k = 0; k < (in.op == OP_VTOB ? 3 : 1); ++k)
    {
        a_.ucomisd(floatIn(uint16_t(in.b + k), xmm0), xmm1);
        a_.jp(other);
        a_.jne(other);
    }
    a_.xor_(eax, 1);
    a_.bind(other);
    intOut(in.a, eax);
}

/// Turns or clears the sign.
void Emitter::maskFloat(const Instr& in, uint64_t mask, bool exclusive)
{
    a_.mov(rax, mask);
    a_.movq(xmm1, rax);
    const Xmm to = floatPlace(in.a, xmm0);
    floatInto(to, in.b);
    a_.emit(exclusive ? Inst::kIdXorpd : Inst::kIdAndpd, to, xmm1);
    floatOut(in.a, to);
}

// ---- vectors: the parts of a result have registers apart from those of the operands, unless they are the same variable

void Emitter::vectors(size_t pc, const Instr& in)
{
    switch (in.op)
    {
    case OP_MOVV:
        for (int k = 0; k < 3; ++k)
            floatOut(uint16_t(in.a + k), floatIn(uint16_t(in.b + k), xmm0));
        break;
    case OP_F2V:
        floatInto(xmm0, in.b);
        for (int k = 0; k < 3; ++k)
            floatOut(uint16_t(in.a + k), xmm0);
        break;
    case OP_MKV:
        floatInto(xmm0, in.b);
        floatInto(xmm1, in.c);
        floatInto(xmm2, uint16_t(in.i));
        floatOut(in.a, xmm0);
        floatOut(uint16_t(in.a + 1), xmm1);
        floatOut(uint16_t(in.a + 2), xmm2);
        break;
    case OP_ADDV: eachPart(Inst::kIdAddsd, in); break;
    case OP_SUBV: eachPart(Inst::kIdSubsd, in); break;
    case OP_MULVF:
    case OP_DIVVF:
        floatInto(xmm1, in.c);   // it may be a part of the vector that is written
        if (in.op == OP_DIVVF)
            zeroCheck(pc, in.c, xmm1);
        for (int k = 0; k < 3; ++k)
        {
            floatInto(xmm0, uint16_t(in.b + k));
            a_.emit(in.op == OP_MULVF ? Inst::kIdMulsd : Inst::kIdDivsd, xmm0, xmm1);
            floatOut(uint16_t(in.a + k), xmm0);
        }
        break;
    case OP_NEGV:
        a_.mov(rax, uint64_t(0x8000000000000000u));
        a_.movq(xmm1, rax);
        for (int k = 0; k < 3; ++k)
        {
            floatInto(xmm0, uint16_t(in.b + k));
            a_.xorpd(xmm0, xmm1);
            floatOut(uint16_t(in.a + k), xmm0);
        }
        break;
    case OP_DOTV:
        dotProduct(in, in.b, in.c);
        floatOut(in.a, xmm0);
        break;
    case OP_V2F:
        dotProduct(in, in.b, in.b);
        a_.sqrtsd(xmm0, xmm0);
        floatOut(in.a, xmm0);
        break;
    case OP_CROSSV: crossProduct(in); break;
    default:        compareVectors(in); break;
    }
}

void Emitter::eachPart(InstId op, const Instr& in)
{
    for (int k = 0; k < 3; ++k)
    {
        floatInto(xmm0, uint16_t(in.b + k));
        a_.emit(op, xmm0, floatSource(uint16_t(in.c + k)));
        floatOut(uint16_t(in.a + k), xmm0);
    }
}

void Emitter::dotProduct(const Instr& in, uint16_t left, uint16_t right)
{
    for (int k = 0; k < 3; ++k)
    {
        const Xmm to = k ? xmm1 : xmm0;
        floatInto(to, uint16_t(left + k));
        a_.emit(Inst::kIdMulsd, to, floatSource(uint16_t(right + k)));
        if (k)
            a_.addsd(xmm0, xmm1);
    }
}

void Emitter::crossProduct(const Instr& in)
{
    // all three parts before any is written; the second factors of the differences go through the stack's red zone
    const Xmm parts[] = {xmm0, xmm1, xmm2};
    for (int k = 0; k < 3; ++k)
    {
        const int  y = (k + 1) % 3, z = (k + 2) % 3;
        const auto product = [&](const Xmm& to, int i, int j) {
            floatInto(to, uint16_t(in.b + i));
            a_.emit(Inst::kIdMulsd, to, floatSource(uint16_t(in.c + j)));
        };
        product(parts[k], z, y);
        a_.movsd(qword_ptr(rsp, -8), parts[k]);
        product(parts[k], y, z);
        a_.subsd(parts[k], qword_ptr(rsp, -8));
    }
    for (int k = 0; k < 3; ++k)
        floatOut(uint16_t(in.a + k), parts[k]);
}

void Emitter::compareVectors(const Instr& in)
{
    const Label differ = a_.newLabel();
    a_.mov(eax, in.op == OP_EQV ? 0 : 1);
    for (int k = 0; k < 3; ++k)
    {
        a_.emit(Inst::kIdUcomisd, floatIn(uint16_t(in.b + k), xmm0), floatSource(uint16_t(in.c + k)));
        a_.jp(differ);
        a_.jne(differ);
    }
    a_.xor_(eax, 1);
    a_.bind(differ);
    intOut(in.a, eax);
}

}  // namespace mirk::mel::native

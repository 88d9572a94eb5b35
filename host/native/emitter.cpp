#include "native/emitter.h"

namespace mirk::mel::native {

using namespace asmjit;
using namespace asmjit::x86;

const x86::Gp kIntPool[] = {ebp, r12d, r13d, r14d, r15d, esi, edi, r8d, r9d, r10d, r11d};

namespace {

class Code : public NativeCode
{
public:
    explicit Code(JitRuntime& runtime) : runtime_(runtime) {}
    ~Code() override { runtime_.release(run); }

private:
    JitRuntime& runtime_;
};

}  // namespace

Emitter::Emitter(const Body& body, const NativeSupport& support, JitRuntime& runtime)
    : body_(body), support_(support), runtime_(runtime), analysis_(body, {kIntPlaces, kFloatPlaces})
{
}

std::unique_ptr<NativeCode> Emitter::make()
{
    if (!analysis_.worthwhile() || code_.init(runtime_.environment()) != kErrorOk)
        return nullptr;
    code_.attach(&a_);
    epilogue_ = a_.newLabel();
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
        labels_.push_back(a_.newLabel());
    prologue();
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
    {
        a_.bind(labels_[pc]);
        instruction(pc);
    }
    for (size_t k = 0; k < late_.size(); ++k)   // grows while it runs
        late_[k]();
    entries();
    epilogue();
    auto out = std::make_unique<Code>(runtime_);
    if (runtime_.add(&out->run, &code_) != kErrorOk)
        return nullptr;
    out->bytes = code_.codeSize();
    out->entries.assign(body_.code.size(), nullptr);
    const auto* const base = reinterpret_cast<const char*>(out->run);
    for (const auto& [pc, label] : entries_)
        out->entries[pc] = base + code_.labelOffsetFromBase(label);
    for (size_t r = 0; r < body_.types.size(); ++r)
        if (isArray(body_.types[r]) && body_.types[r] != Type::kStrings)
            out->arrays.emplace_back(body_.types[r], uint16_t(r));
    return out;
}

void Emitter::prologue()
{
    for (const x86::Gp& g : {rbx, rbp, r12, r13, r14, r15})
        a_.push(g);
    a_.sub(rsp, 8);   // calls want 16 bytes
    a_.mov(rbx, rdi);
    a_.jmp(rsi);
}

void Emitter::epilogue()
{
    for (const auto& [pc, label] : exits_)
    {
        a_.bind(label);
        for (uint16_t r : analysis_.aliveBefore(pc))
            store(r);
        a_.mov(eax, uint32_t(pc));
        a_.jmp(epilogue_);
    }
    a_.bind(epilogue_);
    a_.add(rsp, 8);
    for (const x86::Gp& g : {r15, r14, r13, r12, rbp, rbx})
        a_.pop(g);
    a_.ret();
}

void Emitter::entries()
{
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
        if (analysis_.isEntry(pc) && covered(body_, body_.code[pc]))
        {
            entries_.emplace_back(pc, a_.newLabel());
            a_.bind(entries_.back().second);
            for (uint16_t r : analysis_.aliveBefore(pc))
                load(r);
            a_.jmp(labels_[pc]);
        }
}

Label Emitter::exitAt(size_t pc)
{
    auto [it, fresh] = exits_.try_emplace(pc);
    if (fresh)
        it->second = a_.newLabel();
    return it->second;
}

/// Scripts are interruptible at every turn of a loop.
void Emitter::poll(size_t pc)
{
    a_.mov(rax, uint64_t(support_.interrupt));
    a_.cmp(byte_ptr(rax), 0);
    a_.jne(exitAt(pc));
}

// ---- registers

x86::Mem Emitter::home(uint16_t reg) const
{
    return analysis_.classOf(reg) == Class::kInt ? dword_ptr(rbx, int32_t(reg) * 8) : qword_ptr(rbx, int32_t(reg) * 8);
}

Operand Emitter::intSource(uint16_t reg) const
{
    if (analysis_.isConstant(reg))
        return imm(body_.start[reg].i);
    if (const int p = analysis_.place(reg); p >= 0)
        return kIntPool[p];
    return home(reg);
}

x86::Gp Emitter::intIn(uint16_t reg, const x86::Gp& scratch)
{
    const Operand source = intSource(reg);
    if (source.isReg())
        return source.as<x86::Gp>();
    a_.emit(Inst::kIdMov, scratch, source);
    return scratch;
}

x86::Gp Emitter::intPlace(uint16_t reg, const x86::Gp& scratch) const
{
    const int p = analysis_.place(reg);
    return p >= 0 ? kIntPool[p] : scratch;
}

void Emitter::intOut(uint16_t reg, const x86::Gp& from)
{
    if (const int p = analysis_.place(reg); p < 0)
        a_.mov(home(reg), from);
    else if (kIntPool[p] != from)
        a_.mov(kIntPool[p], from);
}

Operand Emitter::floatSource(uint16_t reg) const
{
    if (const int p = analysis_.place(reg); p >= 0)
        return xmm(uint32_t(kFirstFloat + p));
    return home(reg);
}

void Emitter::floatInto(const x86::Xmm& to, uint16_t reg)
{
    const Operand source = floatSource(reg);
    if (source.isMem())
        a_.movsd(to, source.as<Mem>());
    else if (source.as<Xmm>() != to)
        a_.movapd(to, source.as<Xmm>());
}

x86::Xmm Emitter::floatIn(uint16_t reg, const x86::Xmm& scratch)
{
    const Operand source = floatSource(reg);
    if (source.isReg())
        return source.as<Xmm>();
    a_.movsd(scratch, source.as<Mem>());
    return scratch;
}

x86::Xmm Emitter::floatPlace(uint16_t reg, const x86::Xmm& scratch) const
{
    const int p = analysis_.place(reg);
    return p >= 0 ? xmm(uint32_t(kFirstFloat + p)) : scratch;
}

void Emitter::floatOut(uint16_t reg, const x86::Xmm& from)
{
    if (const int p = analysis_.place(reg); p < 0)
        a_.movsd(home(reg), from);
    else if (const x86::Xmm own = xmm(uint32_t(kFirstFloat + p)); own != from)
        a_.movapd(own, from);
}

/// Between a placed register and its home in the frame.
void Emitter::load(uint16_t reg)
{
    if (analysis_.classOf(reg) == Class::kInt)
        a_.mov(kIntPool[analysis_.place(reg)], home(reg));
    else
        a_.movsd(xmm(uint32_t(kFirstFloat + analysis_.place(reg))), home(reg));
}

void Emitter::store(uint16_t reg)
{
    if (analysis_.isFixed(reg))
        return;
    if (analysis_.classOf(reg) == Class::kInt)
        a_.mov(home(reg), kIntPool[analysis_.place(reg)]);
    else
        a_.movsd(home(reg), xmm(uint32_t(kFirstFloat + analysis_.place(reg))));
}

// ---- calls of C functions

namespace {

bool survivesCalls(const Analysis& analysis, uint16_t reg) { return analysis.classOf(reg) == Class::kInt && analysis.place(reg) < kKeptInts; }

}  // namespace

void Emitter::save(const std::vector<uint16_t>& regs)
{
    for (uint16_t r : regs)
        if (!survivesCalls(analysis_, r))
            store(r);
}

void Emitter::restore(const std::vector<uint16_t>& regs)
{
    for (uint16_t r : regs)
        if (!survivesCalls(analysis_, r))
            load(r);
}

void Emitter::call(const void* function)
{
    a_.mov(rax, uint64_t(function));
    a_.call(rax);
}

/// What a call between reading the operands and writing the result must keep.
std::vector<uint16_t> Emitter::keptOver(size_t pc, const Instr& in) const
{
    std::vector<uint16_t> out;
    const Effects         e = effectsOf(body_, in);
    for (uint16_t r : analysis_.aliveAfter(pc))
        if (std::find(e.defs.begin(), e.defs.end(), r) == e.defs.end())
            out.push_back(r);
    return out;
}

// ---- instructions

void Emitter::instruction(size_t pc)
{
    const Instr& in = body_.code[pc];
    if (!covered(body_, in))
    {
        a_.jmp(exitAt(pc));
        return;
    }
    if (isPure(in.op) && analysis_.isDead(pc))
        return;
    switch (in.op)
    {
    case OP_GETAI: case OP_GETAF: case OP_GETAV: case OP_SETAI: case OP_SETAF: case OP_SETAV: case OP_SIZEA:
        return element(pc, in);
    case OP_MATH1: case OP_MATH2: case OP_MODF:
        return callMath(pc, in);
    case OP_CALLN:
        return callBuiltIn(pc, in);
    default:
        break;
    }
    if (isJump(in.op))
        jump(pc, in);
    else
        scalar(pc, in);
}

}  // namespace mirk::mel::native

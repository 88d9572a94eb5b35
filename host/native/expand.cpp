#include "native/expand.h"

#include <map>

#include "mel/native.h"
#include "native/analysis.h"

namespace mirk::mel::native {

namespace {

constexpr size_t kMaxCode = 48, kMaxRegisters = 20000;

bool mayExpand(const Site& site)
{
    const Function* f = site.proc->function.get();
    if (!f)
        return false;
    const Body& b = *f->body;
    if (b.signature != site.signature || b.code.size() > kMaxCode || !b.heap.empty() || !b.bound.empty() || !b.handlers.empty())
        return false;
    for (size_t pc = 0; pc < b.code.size(); ++pc)
    {
        const uint16_t op = b.code[pc].op;
        const bool     leaves = op == OP_RET || op == OP_RETV;
        const bool     divides = op == OP_DIVI || op == OP_MODI || op == OP_DIVF || op == OP_MODF || op == OP_DIVVF;
        if (isJump(op) ? size_t(b.code[pc].i) <= pc : !leaves && !divides && !(isPure(op) && covered(b, b.code[pc])))
            return false;
    }
    return !isHeap(b.returns);
}

class Expander
{
public:
    Expander(const Body& from, Expanded& to) : from_(from), to_(to) {}

    void run()
    {
        Body& b = to_.body;
        b.name = from_.name;
        b.start = from_.start;
        b.types = from_.types;
        b.parameters = from_.parameters;
        b.heap = from_.heap;
        b.bound = from_.bound;
        b.sites = from_.sites;
        b.params = from_.params;
        b.returns = from_.returns;
        std::vector<uint32_t> moved;
        for (size_t pc = 0; pc < from_.code.size(); ++pc)
        {
            moved.push_back(uint32_t(b.code.size()));
            const Instr& in = from_.code[pc];
            if (in.op == OP_CALLP && b.start.size() < kMaxRegisters && mayExpand(from_.sites[size_t(in.i)]))
                call(pc, in);
            else
                emit(in, pc, -1);
        }
        moved.push_back(uint32_t(b.code.size()));
        for (size_t pc = 0; pc < b.code.size(); ++pc)
            if (to_.site[pc] < 0 && isJump(b.code[pc].op))
                b.code[pc].i = int32_t(moved[size_t(b.code[pc].i)]);
        for (Handler h : from_.handlers)
        {
            h.from = moved[h.from];
            h.to = moved[h.to];
            h.target = moved[h.target];
            b.handlers.push_back(h);
        }
    }

private:
    void emit(Instr in, size_t origin, int site)
    {
        to_.body.code.push_back(in);
        to_.origin.push_back(uint32_t(origin));
        to_.site.push_back(site);
    }

    void move(Type t, int to, int from, size_t origin, int site)
    {
        const OpCode op = t == Type::kInt ? OP_MOVI : t == Type::kFloat ? OP_MOV : OP_MOVV;
        emit({op, uint16_t(to), uint16_t(from), 0, 0}, origin, site);
    }

    /// Where the registers of a procedure lie.
    size_t window(const std::shared_ptr<const Function>& f)
    {
        Body& b = to_.body;
        auto [it, fresh] = windows_.try_emplace(f.get(), b.start.size());
        if (fresh)
        {
            b.start.insert(b.start.end(), f->start.begin(), f->start.end());
            b.types.insert(b.types.end(), f->body->types.begin(), f->body->types.end());
        }
        return it->second;
    }

    void call(size_t pc, const Instr& in)
    {
        const Site                            s = from_.sites[size_t(in.i)];
        const std::shared_ptr<const Function> f = s.proc->function;
        const Body&                           callee = *f->body;
        const int                             base = int(window(f)), site = in.i;
        to_.taken.emplace_back(s.proc, f);
        emit({kGuard, 0, 0, 0, site}, pc, site);

        std::vector<bool> read(callee.start.size()), written(callee.start.size());
        for (const Instr& c : callee.code)
        {
            const Effects e = effectsOf(callee, c);
            for (uint16_t r : e.uses) read[r] = true;
            for (uint16_t r : e.defs) written[r] = true;
        }
        for (size_t r = 0; r < read.size(); ++r)   // known ints need no register
            if (read[r] && (written[r] || callee.types[r] == Type::kFloat))
                emit({kInit, uint16_t(base + int(r)), 0, 0, 0}, pc, site);
        for (size_t k = 0; k < s.args.size(); ++k)
            move(callee.params[k].first, base + callee.params[k].second, s.args[k].reg, pc, site);

        std::vector<size_t>   moved, jumps, ends;
        std::vector<int32_t>& sites = siteOf(f);
        for (const Instr& c : callee.code)
        {
            moved.push_back(to_.body.code.size());
            if (c.op == OP_RET || c.op == OP_RETV)
            {
                if (callee.returns != Type::kVoid)
                    giveResult(callee.returns, in.a, c.op == OP_RET ? base + c.a : -1, pc, site);
                ends.push_back(to_.body.code.size());
                emit({OP_JMP, 0, 0, 0, 0}, pc, site);
                continue;
            }
            Instr mine{c.op, uint16_t(c.a + base), uint16_t(c.b + base), uint16_t(c.c + base), c.i};
            if (isJump(c.op))
                jumps.push_back(to_.body.code.size());
            else if (c.op == OP_MKV)
                mine.i += base;
            else if (c.op == OP_MATH1 || c.op == OP_MATH2)
                mine.i = sites[size_t(c.i)];
            emit(mine, pc, site);
        }
        for (size_t j : jumps)
            to_.body.code[j].i = int32_t(moved[size_t(to_.body.code[j].i)]);
        for (size_t j : ends)
            to_.body.code[j].i = int32_t(to_.body.code.size());
    }

    void giveResult(Type t, int to, int from, size_t pc, int site)
    {
        if (from >= 0)
            return move(t, to, from, pc, site);
        const size_t none = to_.body.start.size();   // a return without a value gives the default
        for (int k = 0; k < width(t); ++k)
        {
            to_.body.start.push_back({});
            to_.body.start.back().p = nullptr;
            to_.body.types.push_back(t == Type::kInt ? t : Type::kFloat);
            emit({kInit, uint16_t(none + size_t(k)), 0, 0, 0}, pc, site);
        }
        move(t, to, int(none), pc, site);
    }

    std::vector<int32_t>& siteOf(const std::shared_ptr<const Function>& f)
    {
        std::vector<int32_t>& out = sites_[f.get()];
        if (out.empty())
            for (const Site& s : f->body->sites)
            {
                out.push_back(int32_t(to_.body.sites.size()));
                to_.body.sites.push_back(s);
            }
        return out;
    }

    const Body&                                     from_;
    Expanded&                                       to_;
    std::map<const Function*, size_t>               windows_;
    std::map<const Function*, std::vector<int32_t>> sites_;
};

}  // namespace

std::unique_ptr<const Expanded> expand(const Body& body)
{
    auto out = std::make_unique<Expanded>();
    Expander(body, *out).run();
    return out;
}

}  // namespace mirk::mel::native

#include "native/analysis.h"

#include <algorithm>

#include "mel/native.h"

namespace mirk::mel::native {

namespace {

constexpr size_t kMaxBits = size_t(1) << 27;   // of all live sets together
constexpr int    kMaxDepth = 6;

}  // namespace

Analysis::Analysis(const Body& body, const Pools& pools)
    : body_(body), target_(body.code.size()), entry_(body.code.size()), dead_(body.code.size()), depth_(body.code.size()), always_(body.start.size())
{
    if (body.code.size() * body.start.size() > kMaxBits)
    {
        worthwhile_ = false;
        return;
    }
    classify();
    findLoops();
    findAlive();
    findEntries();
    givePlaces(pools);
}

void Analysis::classify()
{
    const size_t n = body_.start.size();
    class_.assign(n, Class::kNone);
    written_.assign(n, false);
    for (size_t r = 0; r < n; ++r)
        class_[r] = body_.types[r] == Type::kInt ? Class::kInt : body_.types[r] == Type::kFloat ? Class::kFloat : Class::kNone;
    for (const Instr& in : body_.code)
    {
        effects_.push_back(effectsOf(body_, in));
        for (uint16_t r : effects_.back().defs)
            written_[r] = true;
    }
    for (const Handler& h : body_.handlers)
        written_[h.result] = true;
    for (const Bound& b : body_.bound)
        for (int k = 0; k < (isHeap(b.type) ? 0 : width(b.type)); ++k)
        {
            written_[size_t(b.reg + k)] = true;
            always_.set(size_t(b.reg + k));
        }
    constant_.assign(n, false);
    for (size_t r = 0; r < n; ++r)
        constant_[r] = !written_[r] && class_[r] != Class::kNone;
    for (const auto& [type, reg] : body_.params)
        for (int k = 0; k < width(type); ++k)
            constant_[size_t(reg + k)] = false;
    for (const Parameter& p : body_.parameters)
        constant_[p.reg] = false;
}

void Analysis::findLoops()
{
    bool any = false;
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
    {
        const Instr& in = body_.code[pc];
        if (!isJump(in.op))
            continue;
        target_[size_t(in.i)] = true;
        if (size_t(in.i) > pc)
            continue;
        any = entry_[size_t(in.i)] = true;
        for (size_t k = size_t(in.i); k <= pc; ++k)
            depth_[k] = std::min(depth_[k] + 1, kMaxDepth);
    }
    size_t gain = 0;
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
        gain += covered(body_, body_.code[pc]) && (!any || depth_[pc] > 0);
    worthwhile_ = gain >= 2;
}

template <class F>
void Analysis::successors(size_t pc, F f) const
{
    const Instr& in = body_.code[pc];
    if (isJump(in.op))
        f(size_t(in.i));
    if (in.op != OP_JMP && in.op != OP_RET && in.op != OP_RETV && pc + 1 < body_.code.size())
        f(pc + 1);
    for (const Handler& h : body_.handlers)
        if (pc >= h.from && pc < h.to)
            f(size_t(h.target));
}

Bits Analysis::after(size_t pc) const
{
    Bits out = always_;
    successors(pc, [&](size_t next) { out.add(in_[next]); });
    return out;
}

/// Nothing reads the result: then a pure instruction reads nothing either, and of an element only the index counts.
bool Analysis::readsNothing(size_t pc, const Bits& out) const
{
    const uint16_t op = body_.code[pc].op;
    if (!isPure(op) && !readsElement(op))
        return false;
    for (uint16_t r : effects_[pc].defs)
        if (out.test(r))
            return false;
    return covered(body_, body_.code[pc]);
}

void Analysis::findAlive()
{
    in_.assign(body_.code.size(), always_);
    for (bool again = true; again;)
    {
        again = false;
        for (size_t pc = body_.code.size(); pc-- > 0;)
        {
            Bits live = after(pc);
            dead_[pc] = readsNothing(pc, live);
            if (!dead_[pc] || readsElement(body_.code[pc].op))
            {
                for (uint16_t r : effects_[pc].defs)
                    live.reset(r);
                for (uint16_t r : effects_[pc].uses)
                    live.set(r);
            }
            live.add(always_);
            for (const Handler& h : body_.handlers)   // an error leaves before the result is there
                if (pc >= h.from && pc < h.to)
                    live.add(in_[h.target]);
            again |= in_[pc].add(live);
        }
    }
}

/// Where the interpreter may come back: the start, heads of loops, behind what it ran itself if enough follows.
void Analysis::findEntries()
{
    entry_[0] = true;
    size_t run = 0;
    for (size_t pc = body_.code.size(); pc-- > 0;)
    {
        run = covered(body_, body_.code[pc]) ? run + 1 : 0;
        if (pc > 0 && run >= 3 && !covered(body_, body_.code[pc - 1]))
            entry_[pc] = true;
    }
}

void Analysis::givePlaces(const Pools& pools)
{
    const size_t n = body_.start.size();
    std::vector<double> weight(n, 0);
    static const double byDepth[] = {1, 10, 100, 1000, 1e4, 1e5, 1e6};
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
        if (!dead_[pc] || readsElement(body_.code[pc].op))
        {
            if (!covered(body_, body_.code[pc]))
                continue;
            for (uint16_t r : effects_[pc].uses)
                weight[r] += byDepth[depth_[pc]];
            for (uint16_t r : effects_[pc].defs)
                weight[r] += byDepth[depth_[pc]];
        }
    std::vector<uint16_t> order;
    for (size_t r = 0; r < n; ++r)
        if (weight[r] > 0 && !(constant_[r] && class_[r] == Class::kInt))   // a known int is an immediate
            order.push_back(uint16_t(r));
    std::stable_sort(order.begin(), order.end(), [&](uint16_t a, uint16_t b) { return weight[a] > weight[b]; });
    if (order.size() > 512)
        order.resize(512);

    std::vector<Bits> clash(n);
    Bits candidates(n);
    for (uint16_t r : order)
    {
        clash[r] = Bits(n);
        candidates.set(r);
    }
    const auto meets = [&](uint16_t r, const Bits& others) {
        others.each([&](size_t o) {
            if (o != r && candidates.test(o) && class_[o] == class_[r])
            {
                clash[r].set(o);
                clash[o].set(r);
            }
        });
    };
    for (size_t pc = 0; pc < body_.code.size(); ++pc)
    {
        const Bits out = after(pc);
        // results are written while sources are still read: all of a vector's parts stand apart from its operands
        Bits busy = out;
        if (effects_[pc].defs.size() > 1)
            for (uint16_t u : effects_[pc].uses)
                busy.set(u);
        for (uint16_t r : effects_[pc].defs)
            if (candidates.test(r))
            {
                meets(r, busy);
                for (uint16_t other : effects_[pc].defs)
                    if (other != r && candidates.test(other))
                    {
                        clash[r].set(other);
                        clash[other].set(r);
                    }
            }
        if (entry_[pc])
            in_[pc].each([&](size_t r) {
                if (candidates.test(r))
                    meets(uint16_t(r), in_[pc]);
            });
    }
    place_.assign(n, -1);
    for (uint16_t r : order)
    {
        uint64_t taken = 0;
        clash[r].each([&](size_t o) {
            if (place_[o] >= 0)
                taken |= uint64_t(1) << place_[o];
        });
        const int count = class_[r] == Class::kInt ? pools.ints : pools.floats;
        for (int k = 0; k < count && place_[r] < 0; ++k)
            if (!(taken >> k & 1))
                place_[r] = k;
    }
}

std::vector<uint16_t> Analysis::placed(const Bits& bits) const
{
    std::vector<uint16_t> out;
    bits.each([&](size_t r) {
        if (place_[r] >= 0)
            out.push_back(uint16_t(r));
    });
    return out;
}

std::vector<uint16_t> Analysis::aliveAfter(size_t pc) const { return placed(after(pc)); }

}  // namespace mirk::mel::native

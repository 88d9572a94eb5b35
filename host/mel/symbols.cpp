#include "mel/symbols.h"

#include "mel/native_tier.h"

namespace mirk::mel {

Symbols& symbols()
{
    static Symbols* all = new Symbols;   // frames may still look at it while the process ends
    return *all;
}

Global* Symbols::global(std::string_view name) const { return look(globals_, name); }

namespace {

/// Arrays have their object from the start.
void makeArray(Global& g)
{
    switch (g.type)
    {
    case Type::kInts:    object<IntArray>(g.value[0]); break;
    case Type::kFloats:  object<FloatArray>(g.value[0]); break;
    case Type::kStrings: object<StringArray>(g.value[0]); break;
    case Type::kVectors: object<VectorArray>(g.value[0]); break;
    default: break;
    }
}

}  // namespace

Global& Symbols::declare(const std::string& name, Type type)
{
    auto g = std::make_unique<Global>();
    g->name = name;
    g->type = type;
    makeArray(*g);
    return *(globals_[name] = std::move(g));
}

void Symbols::drop(Global& global)
{
    if (isHeap(global.type))
        release(global.value[0].p);
}

void Symbols::undeclare(Global& global)
{
    drop(global);
    globals_.erase(globals_.find(global.name));
}

Global Symbols::retype(Global& global, Type type, bool keepValue)
{
    const Global before = global;
    for (Slot& s : global.value)
        s.p = nullptr;
    global.type = type;
    makeArray(global);
    if (keepValue)
    {
        Global old = before;
        fromValue(toValue(old.type, old.value), type, global.value);
    }
    return before;
}

void Symbols::restore(Global& global, const Global& before)
{
    drop(global);
    global = before;
}

ProcSlot& Symbols::proc(const std::string& name)
{
    auto& slot = procs_[name];
    if (!slot)
    {
        slot = std::make_unique<ProcSlot>();
        slot->name = name;
    }
    return *slot;
}

ProcSlot* Symbols::findProc(std::string_view name) const { return look(procs_, name); }

const Function* Symbols::defined(std::string_view name) const
{
    for (const ProcSlot* s : {findProc(name), findInteractive(name)})
        if (s && s->function)
            return s->function.get();
    return nullptr;
}

ProcSlot& Symbols::interactive(const std::string& name)
{
    auto& slot = interactive_[name];
    if (!slot)
    {
        slot = std::make_unique<ProcSlot>();
        slot->name = name;
        slot->local = true;
    }
    return *slot;
}

ProcSlot& Symbols::local(const std::string& name)
{
    ProcSlot& slot = locals_.emplace_back();
    slot.name = name;
    slot.local = true;
    return slot;
}

ProcSlot* Symbols::findInteractive(std::string_view name) const { return look(interactive_, name); }

Body::Body() = default;

Body::~Body()
{
    for (Str* s : texts)
        release(s);
}

uint32_t Shifts::moved(uint32_t offset) const
{
    const size_t k = size_t(std::lower_bound(begins.begin(), begins.end(), offset) - begins.begin());
    return k ? uint32_t(int64_t(offset) + behind[k - 1]) : offset;
}

Type heldType(const Global& g) { return g.type == Type::kDyn && g.value[0].p ? typeOf(static_cast<Dyn*>(g.value[0].p)->v) : g.type; }

uint64_t signatureOf(Type returns, const std::vector<Type>& params)
{
    uint64_t h = uint64_t(returns) + 1;
    for (Type t : params)
        h = h * 1099511628211ull + uint64_t(t) + 1;
    return h;
}

}  // namespace mirk::mel

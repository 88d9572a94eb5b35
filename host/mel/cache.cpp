#include "mel/cache.h"

#include "mel/compiler.h"
#include "mel/symbols.h"

namespace mirk::mel {

namespace {

constexpr size_t kMaxText = 1 << 18;      // a longer text is a file that is read once
constexpr size_t kMaxVariants = 8;        // of one skeleton
constexpr size_t kBytesPerInstruction = 96;   // with its share of machine code

size_t bytesOf(const Function& f)
{
    const Body& b = *f.body;
    size_t      n = sizeof(Function) + sizeof(Body) + b.code.size() * kBytesPerInstruction + b.start.size() * 2 * sizeof(Slot) + b.sites.size() * sizeof(Site);
    for (const auto& [slot, proc] : f.procs)
        n += bytesOf(*proc);
    return n;
}

/// Whether numbers that are part of the code are the same, by their text.
bool fits(const std::vector<Literal>& own, std::string_view ownText, const Skeleton& given, std::string_view text)
{
    if (own.size() != given.literals.size())
        return false;
    for (size_t k = 0; k < own.size(); ++k)
    {
        const Literal& g = given.literals[k];
        if (!own[k].parameter && ownText.substr(own[k].begin, own[k].end - own[k].begin) != text.substr(g.begin, g.end - g.begin))
            return false;
    }
    return true;
}

/// Whether the code is still right; variables that the text declares anew take its types.
bool stands(const Unit& unit)
{
    for (const auto& [slot, signature] : unit.procs)
        if (!slot->function || slot->function->body->signature != signature)
            return false;
    for (const auto& [global, type, declared] : unit.globals)
        if (global->type != type && !declared)
            return false;
    for (const auto& [global, type, declared] : unit.globals)
        if (global->type != type)
        {
            Global before = symbols().retype(*global, type, heldType(*global) == type);
            Symbols::drop(before);
        }
    return true;
}

std::shared_ptr<const Function> withNumbers(const Function& f, const std::shared_ptr<const Source>& source,
                                            const std::shared_ptr<const Shifts>& shifts, std::span<const Literal> literals)
{
    auto out = std::make_shared<Function>();
    out->body = f.body;
    out->source = source;
    out->shifts = shifts;
    out->start = f.body->start;
    setParameters(*f.body, literals, out->start);
    for (const auto& [slot, proc] : f.procs)
        out->procs.emplace_back(slot, withNumbers(*proc, source, shifts, literals));
    return out;
}

}  // namespace

std::shared_ptr<const Unit> Cache::reuse(Entry& e, const Skeleton& given, std::string_view text)
{
    const auto same = [&](const std::vector<double>& values) {
        for (size_t k = 0; k < values.size(); ++k)
            if (values[k] != given.literals[k].value)
                return false;
        return true;
    };
    if (same(e.lastValues) && e.lastSource->text == text)
        return e.last;
    auto shifts = std::make_shared<Shifts>();
    for (size_t k = 0; k < e.literals.size(); ++k)
    {
        shifts->begins.push_back(e.literals[k].begin);
        shifts->behind.push_back(int32_t(given.literals[k].end - e.literals[k].end));
    }
    auto source = std::make_shared<Source>(Source{e.source->name, std::string(text), e.source->isFile});
    auto unit = std::make_shared<Unit>(*e.unit);
    for (auto& statement : unit->statements)
        statement = withNumbers(*statement, source, shifts, given.literals);
    e.lastValues.clear();
    for (const Literal& l : given.literals)
        e.lastValues.push_back(l.value);
    e.lastSource = source;
    return e.last = unit;
}

std::shared_ptr<const Unit> Cache::get(std::string_view name, std::string_view text, bool isFile)
{
    if (epoch_ != symbols().epoch)
        forget();
    Skeleton                            skeleton = isFile ? Skeleton{std::string(text), {}} : skeletonOf(text);
    const std::hash<std::string_view>   hash;
    const size_t                        key = hash(skeleton.text) * 31 + hash(name) * 2 + isFile;
    std::vector<Order::iterator>        variants;
    for (auto [it, end] = index_.equal_range(key); it != end; ++it)
    {
        const Order::iterator e = it->second;
        if (e->skeleton != skeleton.text || e->source->name != name || e->source->isFile != isFile)
            continue;
        variants.push_back(e);
        if (!fits(e->literals, e->source->text, skeleton, text) || !stands(*e->unit))
            continue;
        order_.splice(order_.begin(), order_, e);
        ++reused_;
        return reuse(*e, skeleton, text);
    }
    auto source = std::make_shared<Source>(Source{std::string(name), std::string(text), isFile});
    auto unit = compile(source, skeleton.literals);
    ++compiled_;
    if (epoch_ != symbols().epoch)   // the text itself made a built-in function's name a procedure
        forget();
    else if (variants.size() >= kMaxVariants)
        remove(variants.front());
    if (unit->reusable && text.size() <= kMaxText)
    {
        Entry e{key, std::move(skeleton.text), std::move(skeleton.literals), source, unit, {}, source, unit, 0};
        for (const Literal& l : e.literals)
            e.lastValues.push_back(l.value);
        e.bytes = text.size() * 3 + sizeof(Entry) + e.literals.size() * sizeof(Literal);
        for (const auto& statement : unit->statements)
            e.bytes += bytesOf(*statement);
        add(std::move(e));
    }
    return unit;
}

void Cache::add(Entry e)
{
    bytes_ += e.bytes;
    order_.push_front(std::move(e));
    index_.emplace(order_.front().key, order_.begin());
    while (bytes_ > limit_ && order_.size() > 1)
        remove(std::prev(order_.end()));
}

void Cache::remove(Order::iterator e)
{
    for (auto [it, end] = index_.equal_range(e->key); it != end; ++it)
        if (it->second == e)
        {
            index_.erase(it);
            break;
        }
    bytes_ -= e->bytes;
    order_.erase(e);
}

void Cache::forget()
{
    order_.clear();
    index_.clear();
    bytes_ = 0;
    epoch_ = symbols().epoch;
}

Cache::Counts Cache::counts() const { return {compiled_, reused_, order_.size(), bytes_}; }

void Cache::setLimit(size_t bytes)
{
    limit_ = bytes;
    while (bytes_ > limit_ && !order_.empty())
        remove(std::prev(order_.end()));
}

Cache& cache()
{
    static Cache* one = new Cache;   // scripts may still run while the process ends
    return *one;
}

}  // namespace mirk::mel

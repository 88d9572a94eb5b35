// Calls that are looked up by name: commands, procedures of other texts, script files.
#include <algorithm>
#include <optional>

#include "command/lend.h"
#include "command/value_text.h"
#include "mel/dynamic.h"
#include "mel/interpreter.h"
#include "mel/machine.h"
#include "mel/symbols.h"

namespace mirk::mel {

using command::Error;
using command::intFromDouble;

namespace {

/// The instruction that puts the value of a call into an array variable, if the call reads an attribute and the value has
/// no other reader; else null. A declaration may stand between the two.
const Instr* borrower(const Site& site, const Instr* call)
{
    const Instr* next = call + 1;
    if (next->op == OP_FRESH && !next->c && next[1].op == OP_FROMD)
        ++next;
    const bool fits = next->op == OP_FROMD && next->b == call->a && next->c && (Type(next->i) == Type::kFloats || Type(next->i) == Type::kInts);
    return fits && site.name == "getAttr" && !symbols().defined(site.name) ? next : nullptr;
}

/// Puts what was lent into a variable.
void borrow(command::Lending& from, Type type, Slot& to)
{
    if (from.ints && type == Type::kInts)
        object<IntArray>(to).adopt(std::move(from.ints));
    else if (from.ints)
    {
        const auto& b = std::as_const(*from.ints);
        auto        all = make<Buffer<double>>(b.size());
        std::copy(b.begin(), b.end(), all->begin());
        object<FloatArray>(to).adopt(std::move(all));
    }
    else if (type == Type::kFloats)
        object<FloatArray>(to).borrow(from.floats, from.count, std::move(from.holder));
    else
    {
        auto all = make<Buffer<int32_t>>(from.count);
        std::transform(from.floats, from.floats + from.count, all->begin(), intFromDouble);
        object<IntArray>(to).adopt(std::move(all));
    }
}

}  // namespace

Value Machine::callByName(const std::string& name, std::span<const Value> args)
{
    if (const Function* f = symbols().defined(name))
    {
        for (ProcSlot* slot : {symbols().findInteractive(name), symbols().findProc(name)})
            if (slot && slot->function.get() == f)
                return call(slot->function, args);
    }
    if (command::find(name))
        return command::execute(name, args);
    if (findScript && findScript(name))
        if (const ProcSlot* slot = symbols().findProc(name); slot && slot->function)
            return call(slot->function, args);
    throw Error("Cannot find procedure \"" + name + "\".");
}

Value Machine::callDynamic(const Site& site, Slot* registers)
{
    if (site.literals.size() == site.args.size())
        return callByName(site.name, site.literals);
    std::vector<Value> args;
    args.reserve(site.args.size());
    size_t literal = 0;
    for (const Site::Arg& a : site.args)
        args.push_back(a.type == Type::kVoid ? site.literals[literal++] : toValue(a.type, registers + a.reg));
    return callByName(site.name, args);
}

/// A call whose value has a type at run time only. Gives the last instruction that is done: the call, or the one that
/// puts its value into an array variable.
const Instr* Machine::callCommand(const Site& site, Slot* registers, const Instr* ip)
{
    Frame&     f = *frame_;
    const bool globals = !f.body->bound.empty();
    if (globals)
        writeGlobals(f);
    std::optional<command::Lending> lending;
    const Instr* const to = borrower(site, ip);
    if (to)
        lending.emplace();
    Value v = callDynamic(site, registers);
    if (globals)
        readGlobals(f);
    if (to && (lending->ints || lending->holder))
    {
        if (to != ip + 1)
            freshArray(Type(ip[1].i), registers[ip[1].a], 0);   // the declared variable
        borrow(*lending, Type(to->i), registers[to->a]);
        return to;
    }
    fromValue(std::move(v), Type::kDyn, registers + ip->a);
    return ip;
}

/// A procedure that changed its signature since the caller was compiled, or that is gone.
void Machine::callSlow(const Site& site, Slot* registers, uint16_t out)
{
    Value v;
    if (site.proc->function)
    {
        std::vector<Value> args;
        for (const Site::Arg& a : site.args)
            args.push_back(toValue(a.type, registers + a.reg));
        v = call(site.proc->function, args);
    }
    else
        v = callDynamic(site, registers);
    if (site.result != Type::kVoid)
        fromValue(std::move(v), site.result, registers + out);
}

}  // namespace mirk::mel

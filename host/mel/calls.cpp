// Calls: known procedures first, then built-in functions, then what shows at run time.
#include "mel/codegen.h"

namespace mirk::mel {

Type letterType(char letter)
{
    switch (letter)
    {
    case 'i': return Type::kInt;
    case 'f': return Type::kFloat;
    case 's': return Type::kString;
    case 'v': return Type::kVector;
    case 'm': return Type::kMatrix;
    case 'I': return Type::kInts;
    case 'F': return Type::kFloats;
    case 'S': return Type::kStrings;
    case 'V': return Type::kVectors;
    case 'x': return Type::kDyn;
    default:  return Type::kVoid;
    }
}

namespace {

/// Parameters of a row for a number of arguments; false if the number does not fit.
bool parametersFor(const char* pattern, size_t count, std::vector<Type>& out)
{
    bool optional = false;
    char last = 0;
    out.clear();
    for (const char* p = pattern; *p; ++p)
        if (*p == '|')
            optional = true;
        else if (*p == '*')
            while (out.size() < count)
                out.push_back(letterType(last));
        else if (p[1] == '*')
            last = *p;   // any number, none included
        else if (!optional || out.size() < count)
            out.push_back(letterType(*p));
    return out.size() == count;
}

/// How well an argument fits a parameter; negative if it does not.
int fit(Type argument, Type parameter)
{
    if (argument == parameter)
        return 0;
    if (argument == Type::kVoid)
        return -1;
    if (parameter == Type::kDyn)
        return 4;
    if (argument == Type::kDyn)
        return parameter == Type::kFloat || parameter == Type::kFloats ? 1 : 2;
    if (argument == Type::kEmptyArray)
        return isArray(parameter) ? 1 : -1;
    if (isArray(argument) || isArray(parameter))
        return (argument == Type::kInts && parameter == Type::kFloats) || (argument == Type::kFloats && parameter == Type::kInts) ? 3 : -1;
    if (argument == Type::kMatrix || parameter == Type::kMatrix)
        return -1;
    if (argument == Type::kInt && parameter == Type::kFloat)
        return 1;
    return isNumber(argument) && isNumber(parameter) ? 3 : 5;
}

/// Whether arguments behind the k-th assign or call something.
std::pair<bool, bool> effectsAfter(const Node* n, size_t k)
{
    std::pair<bool, bool> out;
    for (++k; k < n->kids.size(); ++k)
    {
        out.first |= n->kids[k]->mutates;
        out.second |= n->kids[k]->calls;
    }
    return out;
}

bool isCatch(const std::string& name) { return name == "catch" || name == "catchQuiet"; }

}  // namespace

const ProcInfo* Codegen::knownProc(const std::string& name)
{
    if (auto it = unit_.procs.find(name); it != unit_.procs.end())
        return &it->second;
    for (ProcSlot* slot : {symbols().findInteractive(name), symbols().findProc(name)})
        if (slot && slot->function)
        {
            ProcInfo info;
            info.slot = slot;
            info.returns = slot->function->body->returns;
            for (const auto& p : slot->function->body->params)
                info.params.push_back(p.first);
            unit_.unit->procs.push_back({slot, slot->function->body->signature});
            return &(unit_.procs[name] = std::move(info));
        }
    return nullptr;
}

const Native* Codegen::chooseNative(const Node* n, const std::vector<Type>& types, std::string* why)
{
    const Native*     best = nullptr;
    int               bestScore = 0;
    bool              counted = false;
    std::vector<Type> params;
    for (const Native* row : nativesOf(n->text))
    {
        if (!parametersFor(row->params, types.size(), params))
            continue;
        counted = true;
        int score = 0;
        for (size_t k = 0; k < types.size() && score >= 0; ++k)
        {
            const int one = fit(types[k], params[k]);
            score = one < 0 ? -1 : score + one;
        }
        if (score >= 0 && (!best || score < bestScore))
        {
            best = row;
            bestScore = score;
        }
    }
    if (!best && why)
    {
        *why = counted ? "Wrong type of argument on call to " : "Wrong number of arguments on call to ";
        *why += n->text + ".";
    }
    return best;
}

Type Codegen::callType(const Node* n)
{
    if (isCatch(n->text))
        return Type::kInt;
    if (const ProcInfo* proc = knownProc(n->text))
        return proc->returns;
    if (n->text == "size")
        return Type::kInt;
    if (n->text == "clear")
        return Type::kVoid;
    if (nativesOf(n->text).empty())
        return Type::kDyn;
    std::vector<Type> types;
    for (const Node* kid : n->kids)
        types.push_back(infer(kid));
    const Native* native = chooseNative(n, types, nullptr);
    return native ? letterType(native->result) : Type::kVoid;
}

Operand Codegen::call(const Node* n)
{
    if (isCatch(n->text))
        return catchCall(n);
    if (const ProcInfo* proc = knownProc(n->text))
        return procCall(n, ProcInfo(*proc));
    if (n->text == "size")
        return sizeCall(n);
    if (n->text == "clear")
        return clearCall(n);
    if (nativesOf(n->text).empty())
        return dynamicCall(n);
    std::vector<Type> types;
    for (const Node* kid : n->kids)
        types.push_back(infer(kid));
    std::string   why;
    const Native* native = chooseNative(n, types, &why);
    if (!native)
    {
        for (const Node* kid : n->kids)
            expression(kid);   // an undeclared variable is the better message
        fail(n, why);
    }
    return nativeCall(n, *native);
}

Operand Codegen::catchCall(const Node* n)
{
    if (n->kids.size() != 1)
        fail(n, "Wrong number of arguments on call to " + n->text + ".");
    const Operand  out = temp(Type::kInt);
    const uint32_t from = uint32_t(here());
    discard(n->kids[0]);
    const uint32_t to = uint32_t(here());
    emit(OP_MOV, out.reg, intConstant(0).reg);
    const int end = emit(OP_JMP);
    fn_->handlers.push_back({from, to, uint32_t(here()), out.reg, n->text == "catchQuiet"});
    landing_ = here();
    emit(OP_MOV, out.reg, intConstant(1).reg);
    patch(end);
    return out;
}

Operand Codegen::sizeCall(const Node* n)
{
    if (n->kids.size() != 1)
        fail(n, "Wrong number of arguments on call to size.");
    const Operand o = expression(n->kids[0]);
    offset_ = n->offset;
    if (o.type == Type::kVoid)
        fail(n->kids[0], "Cannot use data of type void in this context.");
    if (o.type == Type::kEmptyArray)
        return intConstant(0);
    if (!isArray(o.type) && o.type != Type::kString && o.type != Type::kDyn)
        return intConstant(1);
    const Operand out = temp(Type::kInt);
    emit(isArray(o.type) ? OP_SIZEA : OP_SIZED, out.reg, o.type == Type::kString ? converted(n, o, Type::kDyn).reg : o.reg, o.type == Type::kString);
    return out;
}

Operand Codegen::clearCall(const Node* n)
{
    if (n->kids.size() != 1 || n->kids[0]->kind != Kind::kVar)
        fail(n, "clear takes one array variable.");
    const Operand o = variable(n->kids[0]);
    if (isArray(o.type))
        emit(OP_FRESH, o.reg, 0, 0, int(o.type));
    else if (o.type == Type::kDyn)
    {
        emit(OP_TOD, o.reg, o.reg, 0, int(Type::kVoid));
        markElementWritten(n->kids[0]);
    }
    else
        fail(n->kids[0], std::string("An array is needed here, not ") + typeName(o.type) + ".");
    return {};
}

int Codegen::addSite(Site site)
{
    fn_->sites.push_back(std::move(site));
    return int(fn_->sites.size()) - 1;
}

/// The k-th argument as type `t`. A variable typed at run time that is passed where an array is changed goes into `back`.
Operand Codegen::argument(const Node* n, size_t k, Type t, std::vector<std::pair<const Node*, Operand>>& back)
{
    const auto [mutates, calls] = effectsAfter(n, k);
    const Node* kid = n->kids[k];
    Operand     given = expression(kid);
    if (isArray(t) && given.type == Type::kDyn && kid->kind == Kind::kVar)
    {
        given.temp = false;
        back.emplace_back(kid, converted(kid, given, t));
        return back.back().second;
    }
    return kept(converted(kid, given, t), mutates, calls);
}

void Codegen::giveBack(const std::vector<std::pair<const Node*, Operand>>& back)
{
    for (const auto& [node, array] : back)
    {
        const Variable v = *find(node->text);
        written(v);
        emit(OP_MOVS, v.reg, converted(node, array, Type::kDyn).reg);
    }
}

Operand Codegen::procCall(const Node* n, const ProcInfo& proc)
{
    if (proc.params.size() != n->kids.size())
        fail(n, "Wrong number of arguments on call to " + n->text + ".");
    Site site;
    site.name = n->text;
    site.proc = proc.slot;
    site.signature = signatureOf(proc.returns, proc.params);
    site.result = proc.returns;
    std::vector<std::pair<const Node*, Operand>> back;
    for (size_t k = 0; k < n->kids.size(); ++k)
        site.args.push_back({proc.params[k], argument(n, k, proc.params[k], back).reg});
    offset_ = n->offset;
    Operand out;
    if (proc.returns != Type::kVoid)
        out = temp(proc.returns);
    emit(OP_CALLP, out.reg, 0, 0, addSite(std::move(site)));
    giveBack(back);
    return out;
}

Operand Codegen::nativeCall(const Node* n, const Native& native)
{
    std::vector<Type> params;
    parametersFor(native.params, n->kids.size(), params);
    Site site;
    site.name = n->text;
    site.native = &native;
    site.result = letterType(native.result);
    std::vector<std::pair<const Node*, Operand>> back;
    for (size_t k = 0; k < n->kids.size(); ++k)
        site.args.push_back({params[k], argument(n, k, params[k], back).reg});
    offset_ = n->offset;
    Operand out;
    if (site.result != Type::kVoid)
        out = temp(site.result);
    const auto reg = [&](size_t k) { return k < site.args.size() ? int(site.args[k].reg) : 0; };
    if (native.op != OP_MOV)
        emit(native.op, out.reg, reg(0), reg(1));
    else if (native.math1 || native.math2)
    {
        const int a = reg(0), b = reg(1);
        emit(native.math1 ? OP_MATH1 : OP_MATH2, out.reg, a, b, addSite(std::move(site)));
    }
    else
        emit(OP_CALLN, out.reg, 0, 0, addSite(std::move(site)));
    giveBack(back);
    return out;
}

Operand Codegen::dynamicCall(const Node* n)
{
    Site site;
    site.name = n->text;
    const bool few = n->kids.size() <= 16;   // a long list of numbers is data, which belongs to the code
    for (size_t k = 0; k < n->kids.size(); ++k)
    {
        const Node* kid = n->kids[k];
        if (kid->kind == Kind::kStrLit || (!few && (kid->kind == Kind::kIntLit || kid->kind == Kind::kFloatLit)))
        {
            const bool whole = kid->kind == Kind::kIntLit && kid->number <= 2147483647.0;
            site.literals.push_back(kid->kind == Kind::kStrLit ? Value(kid->text) : whole ? Value(int(kid->number)) : Value(kid->number));
            site.args.push_back({Type::kVoid, 0});
            continue;
        }
        Operand o = expression(kid);
        if (o.type == Type::kVoid)
            fail(n->kids[k], "Cannot use data of type void in this context.");
        if (o.type == Type::kEmptyArray)
            o = converted(n->kids[k], o, Type::kStrings);
        const auto [mutates, calls] = effectsAfter(n, k);
        o = kept(o, mutates, calls);
        site.args.push_back({o.type, o.reg});
    }
    offset_ = n->offset;
    const Operand out = temp(Type::kDyn);
    emit(OP_CALLD, out.reg, 0, 0, addSite(std::move(site)));
    return out;
}

}  // namespace mirk::mel

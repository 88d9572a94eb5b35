// Statements, variables and registers.
#include "mel/compiler.h"

#include <bit>
#include <cmath>

#include "mel/codegen.h"
#include "mel/parser.h"

namespace mirk::mel {

Codegen::Codegen(UnitState& unit, std::string name, bool top) : unit_(unit), fn_(std::make_shared<Body>()), top_(top)
{
    fn_->name = std::move(name);
}

void Codegen::fail(const Node* n, const std::string& message) const { throw errorAt(*unit_.source, n->offset, message); }

// ---- code and registers

int Codegen::emit(OpCode op, int a, int b, int c, int i)
{
    if (op == OP_MOV && fn_->types[size_t(a)] == Type::kInt)
        op = OP_MOVI;   // no wider than what was written: the processor would wait
    fn_->code.push_back({uint16_t(op), uint16_t(a), uint16_t(b), uint16_t(c), i});
    fn_->offsets.push_back(offset_);
    return here() - 1;
}

uint16_t Codegen::newRegister(Type t)
{
    const size_t reg = fn_->start.size();
    if (reg + 3 > UINT16_MAX)
        throw errorAt(*unit_.source, offset_, "The procedure or statement is too large.");
    fn_->start.resize(reg + size_t(width(t)), Slot{});
    fn_->types.resize(fn_->start.size(), t == Type::kVector ? Type::kFloat : t);
    for (size_t k = reg; k < fn_->start.size(); ++k)
        fn_->start[k].p = nullptr;
    if (isHeap(t))
        fn_->heap.push_back(uint16_t(reg));
    return uint16_t(reg);
}

/// A register for the time of the current statement.
Operand Codegen::temp(Type t)
{
    auto&   spare = free_[t];
    Operand o{t};
    o.temp = true;
    if (spare.empty())
        o.reg = newRegister(t);
    else
    {
        o.reg = spare.back();
        spare.pop_back();
    }
    temps_.emplace_back(t, o.reg);
    return o;
}

void Codegen::freeTemps(size_t mark)
{
    for (; temps_.size() > mark; temps_.pop_back())
        free_[temps_.back().first].push_back(temps_.back().second);
}

Operand Codegen::intConstant(int32_t value)
{
    auto [it, fresh] = ints_.try_emplace(value);
    if (fresh)
    {
        it->second = newRegister(Type::kInt);
        fn_->start[it->second].i = value;
    }
    Operand o{Type::kInt, it->second};
    o.constant = true;
    o.number = value;
    return o;
}

Operand Codegen::floatConstant(double value)
{
    auto [it, fresh] = floats_.try_emplace(std::bit_cast<uint64_t>(value));
    if (fresh)
    {
        it->second = newRegister(Type::kFloat);
        fn_->start[it->second].d = value;
    }
    Operand o{Type::kFloat, it->second};
    o.constant = true;
    o.number = value;
    return o;
}

/// A number of the text. Whoever takes a number's value from the tree instead makes it part of the code.
Operand Codegen::number(const Node* n)
{
    const bool isFloat = n->kind == Kind::kFloatLit;
    const auto less = [](const Literal& l, uint32_t at) { return l.begin < at; };
    for (uint32_t sign = 0; sign < 2; ++sign)   // the word of a negative number starts at its sign
    {
        const auto it = std::lower_bound(unit_.literals.begin(), unit_.literals.end(), n->offset + sign, less);
        if (it == unit_.literals.end() || it->begin != n->offset + sign || it->isFloat != isFloat || it->value != std::fabs(n->number))
            continue;
        it->parameter = true;
        return parameter(size_t(it - unit_.literals.begin()), isFloat ? Type::kFloat : Type::kInt, std::signbit(n->number));
    }
    return isFloat || n->number > 2147483647.0 ? floatConstant(n->number) : intConstant(int32_t(n->number));
}

/// A constant of its own register, which equal numbers do not share.
Operand Codegen::parameter(size_t literal, Type t, bool negate)
{
    auto [it, fresh] = parameters_.try_emplace({literal, t == Type::kFloat ? 1 : 0});
    if (fresh)
    {
        it->second = newRegister(t);
        fn_->parameters.push_back({it->second, uint32_t(literal), t == Type::kFloat, negate});
    }
    Operand o{t, it->second};
    o.constant = true;
    o.literal = int(literal);
    o.negate = negate;
    return o;
}

Operand Codegen::textConstant(const std::string& value)
{
    auto [it, fresh] = texts_.try_emplace(value);
    if (fresh)
    {
        it->second = newRegister(Type::kInt);   // not kString: the function owns the text, not the frame
        fn_->types.back() = Type::kString;
        Str* s = new Str(value);
        addRef(s);
        fn_->texts.push_back(s);
        fn_->start[it->second].p = s;
    }
    Operand o{Type::kString, it->second};
    o.constant = true;
    return o;
}

/// The default of a scalar type.
Operand Codegen::zero(Type t)
{
    switch (t)
    {
    case Type::kInt:    return intConstant(0);
    case Type::kFloat:  return floatConstant(0);
    case Type::kString: return textConstant("");
    case Type::kVector:
    {
        Operand o = temp(Type::kVector);
        emit(OP_F2V, o.reg, floatConstant(0).reg);
        return o;
    }
    default: return temp(t);
    }
}

std::shared_ptr<const Function> Codegen::finish()
{
    emit(OP_RETV);
    fn_->code.shrink_to_fit();
    fn_->steps = fused(fn_->code);
    fn_->simple = fn_->heap.empty() && fn_->bound.empty();
    auto f = std::make_shared<Function>();
    f->source = unit_.source;
    f->procs = std::move(procs_);
    f->start = fn_->start;
    setParameters(*fn_, unit_.literals, f->start);
    f->body = std::move(fn_);
    return f;
}

std::vector<Instr> fused(const std::vector<Instr>& code)
{
    struct Row { OpCode fused; OpCode parts[3]; int count; };
    static constexpr Row rows[] = {   // longer ones first
        {OP_ADDI_INCI_JLTI, {OP_ADDI, OP_INCI, OP_JLTI}, 3},
        {OP_SETAI_INCI_JLTI, {OP_SETAI, OP_INCI, OP_JLTI}, 3},
        {OP_INCI_JLTI, {OP_INCI, OP_JLTI}, 2},
        {OP_ADDI_RET, {OP_ADDI, OP_RET}, 2},
        {OP_ADDI_ADDI, {OP_ADDI, OP_ADDI}, 2},
        {OP_MULI_ADDI, {OP_MULI, OP_ADDI}, 2},
        {OP_GETAF_GETAF, {OP_GETAF, OP_GETAF}, 2},
        {OP_GETAF_MOV, {OP_GETAF, OP_MOV}, 2},
        {OP_MOV_GETAF, {OP_MOV, OP_GETAF}, 2},
        {OP_SETAF_SETAF, {OP_SETAF, OP_SETAF}, 2},
        {OP_MULF_ADDF, {OP_MULF, OP_ADDF}, 2},
    };
    // the end of a counted loop: it counts what it compares, and leads back
    const auto ends = [&](size_t pc) { return code[pc].a == code[pc - 1].a && code[pc].i <= int32_t(pc); };
    std::vector<Instr> steps = code;
    for (size_t pc = 0; pc < code.size(); ++pc)
        for (const Row& row : rows)
        {
            const size_t n = size_t(row.count);
            if (pc + n <= code.size() && std::equal(row.parts, row.parts + n, &code[pc], [](OpCode op, const Instr& in) { return in.op == op; }) &&
                (row.parts[n - 1] != OP_JLTI || ends(pc + n - 1)))
            {
                steps[pc].op = row.fused;
                break;
            }
        }
    return steps;
}

void setParameters(const Body& body, std::span<const Literal> literals, std::vector<Slot>& start)
{
    for (const Parameter& p : body.parameters)
    {
        const double v = p.negate ? -literals[p.literal].value : literals[p.literal].value;
        if (p.isFloat)
            start[p.reg].d = v;
        else
            start[p.reg].i = int32_t(v);
    }
}

// ---- variables

Variable* Codegen::find(const std::string& name)
{
    for (size_t k = scopes_.size(); k-- > 0;)
        if (auto it = scopes_[k].find(name); it != scopes_[k].end())
            return &it->second;
    if (top_)
        if (Global* g = symbols().global(name))
            return &bind(*g);
    return nullptr;
}

Variable& Codegen::declareLocal(const Node* n, const std::string& name, Type t)
{
    auto [it, fresh] = scopes_.back().try_emplace(name);
    if (fresh)
        it->second = {t, newRegister(t), -1};
    else if (it->second.type != t)
        fail(n, "Invalid redeclaration of variable \"$" + name + "\" as a different type.");
    return it->second;
}

Variable& Codegen::declareGlobal(const Node* n, const std::string& name, Type t)
{
    Global* g = symbols().global(name);
    if (!g)
    {
        g = &symbols().declare(name, t);
        unit_.declared.push_back(g);
    }
    else if (g->type != t)
    {
        const Type now = heldType(*g);
        // generated texts reuse the names of top-level variables for data of another type; elsewhere it is a mistake
        if (!atTop() && now != t)
            fail(n, "Invalid redeclaration of variable \"$" + name + "\" as a different type.");
        unit_.replaced.emplace_back(g, symbols().retype(*g, t, now == t));
        globals_.erase(g);
    }
    unit_.uses(*g, t, atTop());
    Variable& v = bind(*g);
    if (!atTop())
        scopes_.back()[name] = v;
    return v;
}

/// Declared by its first assignment.
Variable& Codegen::declareImplicit(const Node* n, const std::string& name, Type t)
{
    if (t == Type::kVoid)
        fail(n, "The value for \"$" + name + "\" has no type.");
    if (t == Type::kEmptyArray)
        fail(n, "The type of \"$" + name + "\" is unknown: declare the array first.");
    return atTop() ? declareGlobal(n, name, t) : declareLocal(n, name, t);
}

void UnitState::uses(Global& global, Type type, bool declared)
{
    for (Unit::UsedGlobal& u : unit->globals)
        if (u.global == &global)
        {
            unit->reusable &= u.type == type;
            u.declared |= declared;
            return;
        }
    unit->globals.push_back({&global, type, declared});
}

Variable& Codegen::bind(Global& g)
{
    auto [it, fresh] = globals_.try_emplace(&g);
    if (fresh)
    {
        it->second = {g.type, newRegister(g.type), int(fn_->bound.size())};
        fn_->bound.push_back({&g, g.type, it->second.reg, false});
        unit_.uses(g, g.type, false);
    }
    return it->second;
}

// ---- statements

void Codegen::statement(const Node* n)
{
    const size_t mark = temps_.size();
    offset_ = n->offset;
    statementBody(n);
    freeTemps(mark);
}

void Codegen::statementBody(const Node* n)
{
    switch (n->kind)
    {
    case Kind::kExprStmt: discard(n->kids[0]); break;
    case Kind::kDecl:     declaration(n); break;
    case Kind::kBlock:    scoped(n); break;
    case Kind::kIf:       ifStatement(n); break;
    case Kind::kWhile:    whileStatement(n); break;
    case Kind::kDo:       doStatement(n); break;
    case Kind::kFor:      forStatement(n); break;
    case Kind::kForIn:    forInStatement(n); break;
    case Kind::kSwitch:   switchStatement(n); break;
    case Kind::kBreak:
    case Kind::kContinue: jumpOut(n); break;
    case Kind::kReturn:   returnStatement(n); break;
    default: break;
    }
}

void Codegen::scoped(const Node* n)
{
    scopes_.emplace_back();
    for (const Node* kid : n->kids)
        statement(kid);
    scopes_.pop_back();
}

void Codegen::declaration(const Node* n)
{
    for (const Node* v : n->kids)
        declare(n, v);
}

void Codegen::declare(const Node* decl, const Node* v)
{
    const Node *size = v->kids[0], *size2 = v->kids[1], *init = v->kids[2];
    const bool  global = decl->flag || atTop();
    Operand     initial;   // before the name is known: `int $x = $x` speaks of an outer one
    if (init && !global)
        initial = infer(init) == Type::kEmptyArray ? Operand{Type::kEmptyArray} : expression(init);
    const bool known = global && symbols().global(v->text);
    Variable   var = global ? declareGlobal(v, v->text, v->type) : declareLocal(v, v->text, v->type);
    offset_ = v->offset;
    if (global && size && size->kind == Kind::kIntLit && v->type != Type::kMatrix)
        number(size);   // has no effect, so no code depends on it
    if (v->type == Type::kMatrix)
    {
        if (!known)
            emit(OP_NEWM, var.reg, int(size->number), int(size2->number));
        written(var);
    }
    else if (isArray(v->type) && !global && !(init && !initial.temp))
    {
        Operand room;
        if (size)
            room = value(size, Type::kInt);
        emit(OP_FRESH, var.reg, room.reg, size != nullptr, int(v->type));
    }
    if (!init)
    {
        if (!global && !isArray(v->type) && v->type != Type::kMatrix)
            convertInto(v, zero(v->type), v->type, var.reg);
        return;
    }
    if (global)
    {
        into(init, var.type, var.reg);
        written(var);
    }
    else
        convertInto(init, initial, var.type, var.reg);
}

void Codegen::ifStatement(const Node* n)
{
    std::vector<int> ends;
    size_t           k = 0;
    for (; k + 1 < n->kids.size(); k += 2)
    {
        const size_t mark = temps_.size();
        offset_ = n->kids[k]->offset;
        const std::vector<int> otherwise = condition(n->kids[k], false);
        freeTemps(mark);
        statement(n->kids[k + 1]);
        if (k + 2 < n->kids.size())
            ends.push_back(emit(OP_JMP));
        patch(otherwise);
    }
    if (k < n->kids.size())
        statement(n->kids[k]);
    patch(ends);
}

void Codegen::endLoop()
{
    patch(loops_.back().breaks);
    loops_.pop_back();
}

void Codegen::jumpOut(const Node* n)
{
    const bool isContinue = n->kind == Kind::kContinue;
    for (size_t k = loops_.size(); k-- > 0;)
    {
        if (isContinue && loops_[k].isSwitch)
            continue;
        (isContinue ? loops_[k].continues : loops_[k].breaks).push_back(emit(OP_JMP));
        return;
    }
    fail(n, isContinue ? "continue outside a loop." : "break outside a loop or switch.");
}

// Loops test at the bottom: one jump a turn.
void Codegen::whileStatement(const Node* n)
{
    beginLoop();
    const int entry = emit(OP_JMP), top = landing_ = here();
    statement(n->kids[1]);
    patch(loops_.back().continues);
    patch(entry);
    offset_ = n->kids[0]->offset;
    for (int jump : condition(n->kids[0], true))
        fn_->code[size_t(jump)].i = top;
    endLoop();
}

void Codegen::doStatement(const Node* n)
{
    beginLoop();
    const int top = landing_ = here();
    statement(n->kids[0]);
    patch(loops_.back().continues);
    offset_ = n->kids[1]->offset;
    for (int jump : condition(n->kids[1], true))
        fn_->code[size_t(jump)].i = top;
    endLoop();
}

void Codegen::listItem(const Node* n)
{
    if (n->kind == Kind::kDecl)
        declaration(n);
    else
        discard(n);
}

void Codegen::forStatement(const Node* n)
{
    const Node *init = n->kids[0], *tests = n->kids[1], *step = n->kids[2];
    bool        declares = false;
    for (const Node* item : init->kids)
        declares |= item->kind == Kind::kDecl;
    if (declares)
        scopes_.emplace_back();   // otherwise a counter made here stays visible behind the loop
    for (const Node* item : init->kids)
        listItem(item);
    beginLoop();
    const int entry = emit(OP_JMP), top = landing_ = here();
    statement(n->kids[3]);
    patch(loops_.back().continues);
    for (const Node* item : step->kids)
    {
        const size_t mark = temps_.size();
        offset_ = item->offset;
        listItem(item);
        freeTemps(mark);
    }
    patch(entry);
    if (tests->kids.empty())
        emit(OP_JMP, 0, 0, 0, top);
    for (size_t k = 0; k < tests->kids.size(); ++k)
    {
        offset_ = tests->kids[k]->offset;
        if (k + 1 < tests->kids.size())   // of several tests the last one counts
        {
            discard(tests->kids[k]);
            continue;
        }
        for (int jump : condition(tests->kids[k], true))
            fn_->code[size_t(jump)].i = top;
    }
    endLoop();
    if (declares)
        scopes_.pop_back();
}

void Codegen::forInStatement(const Node* n)
{
    const Node* name = n->kids[0];
    Operand     source = expression(n->kids[1]);
    if (!isArray(source.type) && source.type != Type::kDyn)
        fail(n->kids[1], std::string("An array is needed here, not ") + typeName(source.type) + ".");
    const bool dyn = source.type == Type::kDyn;
    const bool declares = name->type != Type::kVoid;
    if (declares)
        scopes_.emplace_back();
    const Type elements = dyn || source.type == Type::kEmptyArray ? Type::kDyn : elementType(source.type);
    Variable   var;
    if (declares)
        var = declareLocal(name, name->text, name->type);
    else if (Variable* known = find(name->text))
        var = *known;
    else
        var = declareImplicit(name, name->text, elements);
    if (source.type != Type::kEmptyArray)
    {
        Operand array = temp(source.type);   // what the body does to the variable does not touch the loop
        if (dyn)
            move(source.type, array.reg, source);
        else
            emit(source.temp ? OP_SWAPA : OP_COPYA, array.reg, source.reg, 0, int(source.type));
        const Operand at = temp(Type::kInt), count = temp(Type::kInt);
        emit(OP_MOV, at.reg, intConstant(0).reg);
        emit(dyn ? OP_SIZED : OP_SIZEA, count.reg, array.reg);
        beginLoop();
        const int entry = emit(OP_JMP), top = landing_ = here();
        const Element e{array, at, {}};
        if (var.type == Type::kDyn)
            emit(OP_MOVS, var.reg, converted(name, load(name, e), Type::kDyn).reg);
        else
            convertInto(name, load(name, e), var.type, var.reg);
        written(var);
        statement(n->kids[2]);
        patch(loops_.back().continues);
        emit(OP_INCI, at.reg, 0, 0, 1);
        patch(entry);
        emit(OP_JLTI, at.reg, count.reg, 0, top);
        endLoop();
    }
    if (declares)
        scopes_.pop_back();
}

void Codegen::switchStatement(const Node* n)
{
    const Operand    what = kept(expression(n->kids[0]), true, true);
    std::vector<int> entries(n->kids.size(), -1);
    loops_.emplace_back().isSwitch = true;
    int none = -1;
    for (size_t k = 1; k < n->kids.size(); ++k)
        if (const Node* v = n->kids[k]->kids[0])
        {
            offset_ = v->offset;
            const Operand equal = converted(v, binaryOperation(v, kEq, what, expression(v)), Type::kInt);
            entries[k] = emit(OP_JNZ, equal.reg);
        }
    none = emit(OP_JMP);
    bool hasDefault = false;
    scopes_.emplace_back();
    for (size_t k = 1; k < n->kids.size(); ++k)
    {
        if (n->kids[k]->kids[0])
            patch(entries[k]);
        else
        {
            patch(none);
            hasDefault = true;
        }
        for (size_t s = 1; s < n->kids[k]->kids.size(); ++s)
            statement(n->kids[k]->kids[s]);
    }
    scopes_.pop_back();
    if (!hasDefault)
        patch(none);
    endLoop();
}

void Codegen::returnStatement(const Node* n)
{
    if (!inProc_)
        fail(n, "return outside a procedure.");
    if (n->kids.empty())
    {
        if (fn_->returns != Type::kVoid)
            fail(n, std::string("The procedure \"") + fn_->name + "\" returns " + typeName(fn_->returns) + ".");
        emit(OP_RETV);
        return;
    }
    if (fn_->returns == Type::kVoid)
        fail(n, "The procedure \"" + fn_->name + "\" returns no value.");
    const Operand o = value(n->kids[0], fn_->returns);
    emit(OP_RET, o.reg);
}

// ---- functions

std::shared_ptr<const Function> Codegen::procedure(const Node* n)
{
    inProc_ = true;
    fn_->returns = n->type;
    std::vector<Type> types;
    for (size_t k = 0; k + 1 < n->kids.size(); ++k)
    {
        const Node* p = n->kids[k];
        if (scopes_.back().count(p->text))
            fail(p, "The parameter \"$" + p->text + "\" appears twice.");
        const Variable& v = declareLocal(p, p->text, p->type);
        fn_->params.emplace_back(v.type, v.reg);
        types.push_back(v.type);
    }
    fn_->signature = signatureOf(n->type, types);
    for (const Node* s : n->kids.back()->kids)
        statement(s);
    return finish();
}

std::shared_ptr<const Function> Codegen::topStatement(const Node* n, bool wantResult)
{
    offset_ = n->offset;
    const Node* shown = n->kind == Kind::kDecl && n->kids.size() == 1 && n->kids[0]->kids[2] ? n->kids[0] : nullptr;
    if (n->kind == Kind::kProc)
    {
        const auto body = Codegen(unit_, n->text, false).procedure(n);
        emit(OP_DEFP, 0, 0, 0, 0);
        procs_.emplace_back(unit_.procs[n->text].slot, body);
    }
    else if (wantResult && n->kind == Kind::kExprStmt && !(n->kids[0]->kind == Kind::kIncrement))
    {
        const Operand o = expression(n->kids[0]);
        if (o.type != Type::kVoid && o.type != Type::kEmptyArray)
        {
            fn_->returns = o.type;
            emit(OP_RET, o.reg);
        }
    }
    else
    {
        statement(n);
        if (wantResult && shown)
        {
            const Variable v = *find(shown->text);
            fn_->returns = v.type;
            emit(OP_RET, v.reg);
        }
    }
    return finish();
}

// ---- texts

namespace {

/// Names of procedures are known in the whole text, whatever their order.
void declareProcs(UnitState& state, const std::vector<Node*>& nodes)
{
    for (const Node* n : nodes)
    {
        if (n->kind != Kind::kProc)
            continue;
        ProcInfo info;
        info.returns = n->type;
        for (size_t k = 0; k + 1 < n->kids.size(); ++k)
            info.params.push_back(n->kids[k]->type);
        if (n->flag)
            info.slot = &symbols().proc(n->text);
        else if (!state.source->isFile)
            info.slot = &symbols().interactive(n->text);
        else if (auto it = state.unit->locals.find(n->text); it != state.unit->locals.end())
            info.slot = it->second;
        else
            info.slot = state.unit->locals[n->text] = &symbols().local(n->text);
        if (!nativesOf(n->text).empty() && !info.slot->function)
            ++symbols().epoch;   // texts that were compiled for the built-in function
        state.procs[n->text] = std::move(info);
    }
}

}  // namespace

std::shared_ptr<const Unit> compile(std::shared_ptr<const Source> source, std::vector<Literal>& literals)
{
    Arena                    arena;
    const std::vector<Node*> nodes = parse(*source, arena);
    UnitState                state{source, std::make_shared<Unit>(), {}, {}, {}, literals};
    declareProcs(state, nodes);
    size_t last = nodes.size();
    while (last > 0 && nodes[last - 1]->kind == Kind::kEmpty)
        --last;
    try
    {
        for (size_t k = 0; k < last; ++k)
            if (nodes[k]->kind != Kind::kEmpty)
                state.unit->statements.push_back(Codegen(state, "", true).topStatement(nodes[k], k + 1 == last));
    }
    catch (...)
    {
        for (; !state.replaced.empty(); state.replaced.pop_back())
            symbols().restore(*state.replaced.back().first, state.replaced.back().second);
        for (Global* g : state.declared)
            symbols().undeclare(*g);
        throw;
    }
    for (auto& [global, before] : state.replaced)
        Symbols::drop(before);
    state.unit->hasResult = !state.unit->statements.empty() && state.unit->statements.back()->body->returns != Type::kVoid;
    return state.unit;
}

}  // namespace mirk::mel

// Expressions: types are found bottom-up, conversions are explicit instructions.
#include "mel/codegen.h"

namespace mirk::mel {

namespace {

bool isComparison(Op op) { return op >= kEq && op <= kGe; }

const char* opText(Op op)
{
    static const char* const names[] = {"+", "-", "*", "/", "%", "^", "==", "!=", "<", "<=", ">", ">=", "&&", "||", "!", "-", "="};
    return names[op];
}

/// The array of a list that holds nothing but numbers; none for other lists.
Value literalNumbers(const Node* n, Type t)
{
    if (t != Type::kInts && t != Type::kFloats)
        return {};
    auto all = make<Buffer<double>>();
    for (const Node* kid : n->kids)
        if (kid->kind == Kind::kIntLit || kid->kind == Kind::kFloatLit)
            all->push(kid->number);
        else
            return {};
    return convertTo(Value(std::move(all)), t);
}

/// Instructions that do nothing but write `a` anew, so that they can write elsewhere as well.
bool onlyWritesA(uint16_t op)
{
    return (op <= OP_FROMD && op != OP_MOVV) || (op >= OP_ADDI && op <= OP_MKV && op != OP_INCI) || op == OP_CONCAT ||
           (op >= OP_EQI && op <= OP_NEV) || (op >= OP_GETAI && op <= OP_GETAS) || op == OP_SIZEA ||
           (op >= OP_MATH1 && op <= OP_CALLN);
}

}  // namespace

// ---- types

/// The type of `l op r` where neither is typed at run time.
Type Codegen::operationType(Op op, Type l, Type r)
{
    if (isComparison(op) || op == kAnd || op == kOr)
        return Type::kInt;
    if (l == Type::kDyn || r == Type::kDyn)
        return op == kAdd && (l == Type::kString || r == Type::kString) ? Type::kString : Type::kDyn;
    if (l == Type::kString || r == Type::kString)
        return Type::kString;
    if (l == Type::kMatrix || r == Type::kMatrix)
        return Type::kMatrix;
    if (l == Type::kVector && r == Type::kVector && op == kMul)
        return Type::kFloat;
    if (l == Type::kVector || r == Type::kVector)
        return Type::kVector;
    return l == Type::kFloat || r == Type::kFloat ? Type::kFloat : Type::kInt;
}

Type Codegen::common(const Node* at, Type a, Type b)
{
    if (a == b || b == Type::kEmptyArray)
        return a;
    if (a == Type::kEmptyArray)
        return b;
    if (a == Type::kDyn || b == Type::kDyn)
        return Type::kDyn;
    if (isArray(a) || isArray(b) || a == Type::kVoid || b == Type::kVoid || a == Type::kMatrix || b == Type::kMatrix)
        fail(at, std::string("Data of type ") + typeName(a) + " and of type " + typeName(b) + " do not go together.");
    for (Type t : {Type::kString, Type::kVector, Type::kFloat})
        if (a == t || b == t)
            return t;
    return Type::kInt;
}

/// The type that an expression will have, without code.
Type Codegen::infer(const Node* n)
{
    switch (n->kind)
    {
    case Kind::kIntLit:    return Type::kInt;
    case Kind::kFloatLit:
    case Kind::kComponent: return Type::kFloat;
    case Kind::kStrLit:    return Type::kString;
    case Kind::kVectorLit: return Type::kVector;
    case Kind::kMatrixLit: return Type::kMatrix;
    case Kind::kCast:      return n->type;
    case Kind::kVar:
    {
        const Variable* v = find(n->text);
        return v ? v->type : Type::kVoid;
    }
    case Kind::kIndex:
    {
        const Type base = infer(n->kids[0]);
        return base == Type::kMatrix ? Type::kFloat : elementType(base);
    }
    case Kind::kArrayLit:
    {
        if (n->kids.empty())
            return Type::kEmptyArray;
        Type t = infer(n->kids[0]);
        for (const Node* kid : n->kids)
            t = common(kid, t, infer(kid));
        return t == Type::kDyn ? t : arrayType(t);
    }
    case Kind::kUnary: return n->op == kNot ? Type::kInt : infer(n->kids[0]);
    case Kind::kBinary:
    {
        // long sums lean to the left: walked without recursion
        std::vector<const Node*> spine;
        for (; n->kind == Kind::kBinary; n = n->kids[0])
            spine.push_back(n);
        Type t = infer(n);
        for (; !spine.empty(); spine.pop_back())
            t = operationType(spine.back()->op, t, infer(spine.back()->kids[1]));
        return t;
    }
    case Kind::kTernary:   return common(n, infer(n->kids[1]), infer(n->kids[2]));
    case Kind::kAssign:
    {
        const Type target = n->kids[0]->kind == Kind::kVar && !find(n->kids[0]->text) ? Type::kVoid : infer(n->kids[0]);
        return target == Type::kVoid ? infer(n->kids[1]) : target;
    }
    case Kind::kIncrement: return infer(n->kids[0]);
    case Kind::kCall:      return callType(n);
    default:               return Type::kVoid;
    }
}

// ---- moving and converting

void Codegen::move(Type t, int to, const Operand& from)
{
    if (to == from.reg)
        return;
    if (isArray(t))
    {
        emit(from.temp ? OP_SWAPA : OP_COPYA, to, from.reg, 0, int(t));
        return;
    }
    if (t == Type::kMatrix)
    {
        emit(OP_COPYM, to, from.reg);
        return;
    }
    if (from.temp && here() != landing_ && !fn_->code.empty())
        if (Instr& last = fn_->code.back(); last.a == from.reg && onlyWritesA(last.op))
        {
            last.a = uint16_t(to);
            return;
        }
    emit(isHeap(t) ? OP_MOVS : t == Type::kVector ? OP_MOVV : OP_MOV, to, from.reg);
}

Operand Codegen::converted(const Node* at, Operand o, Type t)
{
    if (o.type == t)
        return o;
    const auto fits = [&] {
        if (o.type == Type::kVoid || t == Type::kVoid)
            return false;
        if (t == Type::kDyn || o.type == Type::kDyn)
            return true;
        if (o.type == Type::kEmptyArray)
            return isArray(t);
        if (isArray(o.type) != isArray(t))
            return false;
        if (isArray(t))
            return (t == Type::kInts && o.type == Type::kFloats) || (t == Type::kFloats && o.type == Type::kInts);
        return (t != Type::kMatrix || o.type == Type::kVector) && o.type != Type::kMatrix;   // a vector is a row
    };
    if (!fits())
        fail(at, o.type == Type::kVoid ? std::string("Cannot use data of type void in this context.")
                                       : std::string("Cannot convert data of type ") + typeName(o.type) + " to type " + typeName(t) + ".");
    if (o.constant && o.type == Type::kInt && t == Type::kFloat)
        return o.literal >= 0 ? parameter(size_t(o.literal), t, o.negate) : floatConstant(o.number);
    const Operand out = temp(t);
    if (o.type == Type::kEmptyArray)
    {
        if (t == Type::kDyn)
            emit(OP_TOD, out.reg, out.reg, 0, int(Type::kVoid));
        else
            emit(OP_FRESH, out.reg, 0, 0, int(t));
        return out;
    }
    if (t == Type::kDyn)
        emit(OP_TOD, out.reg, o.reg, 0, int(o.type));
    else if (o.type == Type::kDyn)
        emit(OP_FROMD, out.reg, o.reg, o.temp, int(t));
    else if (t == Type::kVector && o.type != Type::kString)
        emit(OP_F2V, out.reg, converted(at, o, Type::kFloat).reg);
    else if (o.type == Type::kInt && t == Type::kFloat)
        emit(OP_I2F, out.reg, o.reg);
    else if (o.type == Type::kFloat && t == Type::kInt)
        emit(OP_F2I, out.reg, o.reg);
    else if (t == Type::kString && o.type != Type::kMatrix)
        emit(o.type == Type::kInt ? OP_I2S : o.type == Type::kFloat ? OP_F2S : OP_V2S, out.reg, o.reg);
    else if (t == Type::kFloat)
        emit(o.type == Type::kString ? OP_S2F : OP_V2F, out.reg, o.reg, 0, 0);
    else if (t == Type::kInt)
        emit(OP_F2I, out.reg, converted(at, o, Type::kFloat).reg);
    else
        emit(OP_CONV, out.reg, o.reg, int(o.type), int(t));
    return out;
}

void Codegen::convertInto(const Node* at, Operand o, Type t, int reg) { move(t, reg, converted(at, o, t)); }

void Codegen::into(const Node* n, Type t, int reg) { convertInto(n, expression(n), t, reg); }

/// A private copy if what comes next may change the variable behind the operand.
Operand Codegen::kept(Operand o, bool mutated, bool called)
{
    if (o.temp || o.constant || o.type == Type::kVoid || o.type == Type::kEmptyArray || isArray(o.type))
        return o;
    if (!mutated && !(called && o.global))
        return o;
    const Operand copy = temp(o.type);
    emit(isHeap(o.type) ? OP_MOVS : o.type == Type::kVector ? OP_MOVV : OP_MOV, copy.reg, o.reg);
    return copy;
}

// ---- expressions

Operand Codegen::expression(const Node* n)
{
    const uint32_t outer = offset_;
    offset_ = n->offset;
    Operand o;
    switch (n->kind)
    {
    case Kind::kIntLit:
    case Kind::kFloatLit:  o = number(n); break;
    case Kind::kStrLit:    o = textConstant(n->text); break;
    case Kind::kVar:       o = variable(n); break;
    case Kind::kIndex:     o = index(n); break;
    case Kind::kComponent: o = component(n); break;
    case Kind::kVectorLit: o = vectorLiteral(n); break;
    case Kind::kMatrixLit: o = matrixLiteral(n); break;
    case Kind::kArrayLit:  o = arrayLiteral(n); break;
    case Kind::kUnary:     o = unary(n); break;
    case Kind::kBinary:    o = binary(n); break;
    case Kind::kTernary:   o = ternary(n); break;
    case Kind::kAssign:    o = assign(n); break;
    case Kind::kIncrement: o = increment(n, false); break;
    case Kind::kCall:      o = call(n); break;
    case Kind::kCast:      o = converted(n, expression(n->kids[0]), n->type); break;
    default: break;
    }
    offset_ = outer;
    return o;
}

/// An expression as a statement.
void Codegen::discard(const Node* n)
{
    offset_ = n->offset;
    if (n->kind == Kind::kIncrement)
        increment(n, true);
    else
        expression(n);
}

Operand Codegen::variable(const Node* n)
{
    const Variable* v = find(n->text);
    if (!v)
        fail(n, "\"$" + n->text + "\" is an undeclared variable.");
    Operand o{v->type, v->reg};
    o.global = v->bound >= 0;
    return o;
}

Operand Codegen::component(const Node* n)
{
    Operand o = converted(n, expression(n->kids[0]), Type::kVector);
    o.type = Type::kFloat;
    o.reg = uint16_t(o.reg + n->op);
    // a part of three registers: as a temporary it must not be renamed
    o.temp = false;
    return o;
}

Operand Codegen::vectorLiteral(const Node* n)
{
    Operand part[3];
    for (size_t k = 0; k < 3; ++k)
    {
        bool mutates = false, calls = false;
        for (size_t m = k + 1; m < 3; ++m)
        {
            mutates |= n->kids[m]->mutates;
            calls |= n->kids[m]->calls;
        }
        part[k] = kept(value(n->kids[k], Type::kFloat), mutates, calls);
    }
    const Operand out = temp(Type::kVector);
    emit(OP_MKV, out.reg, part[0].reg, part[1].reg, part[2].reg);
    return out;
}

Operand Codegen::matrixLiteral(const Node* n)
{
    const Operand out = temp(Type::kMatrix);
    const int     rows = int(n->number), columns = int(n->kids.size()) / rows;
    emit(OP_MKM, out.reg, rows, columns);
    for (int k = 0; k < rows * columns; ++k)
    {
        const Operand v = value(n->kids[size_t(k)], Type::kFloat);
        emit(OP_SETM, out.reg, intConstant(k / columns).reg, intConstant(k % columns).reg, v.reg);
    }
    return out;
}

Operand Codegen::arrayLiteral(const Node* n)
{
    const Type t = infer(n);
    if (t == Type::kEmptyArray)
        return {Type::kEmptyArray};
    if (t == Type::kVoid)
        fail(n, "An array cannot hold these elements.");
    const Operand out = temp(t);
    if (t == Type::kDyn)
    {
        emit(OP_TOD, out.reg, out.reg, 0, int(Type::kVoid));
        for (size_t k = 0; k < n->kids.size(); ++k)
            emit(OP_SETD, out.reg, intConstant(int(k)).reg, value(n->kids[k], Type::kDyn).reg);
        return out;
    }
    if (const Value numbers = literalNumbers(n, t); !numbers.isNone())
    {
        Site site;
        site.literals.push_back(numbers);
        emit(OP_LOADA, out.reg, int(t), 0, addSite(std::move(site)));
        return out;
    }
    emit(OP_FRESH, out.reg, 0, 0, int(t));
    const Type   element = elementType(t);
    const OpCode append = t == Type::kInts ? OP_APPI : t == Type::kFloats ? OP_APPF : t == Type::kVectors ? OP_APPV : OP_APPS;
    for (const Node* kid : n->kids)
    {
        const size_t mark = temps_.size();
        emit(append, out.reg, value(kid, element).reg);
        freeTemps(mark);
    }
    return out;
}

Operand Codegen::unary(const Node* n)
{
    Operand o = expression(n->kids[0]);
    offset_ = n->offset;
    if (n->op == kNot)
    {
        if (o.type != Type::kInt && o.type != Type::kFloat && o.type != Type::kVector)
            o = o.type == Type::kDyn ? o : converted(n, o, Type::kFloat);
        const Operand out = temp(Type::kInt);
        if (o.type == Type::kInt)
            emit(OP_NOTI, out.reg, o.reg);
        else if (o.type == Type::kFloat)
            emit(OP_NOTF, out.reg, o.reg);
        else
        {
            emit(o.type == Type::kVector ? OP_VTOB : OP_D2B, out.reg, o.reg);
            emit(OP_NOTI, out.reg, out.reg);
        }
        return out;
    }
    if (o.type == Type::kDyn || o.type == Type::kMatrix)
        return binaryOperation(n, kMul, o, intConstant(-1));
    if (!isNumber(o.type) && o.type != Type::kVector)
        fail(n, std::string("Illegal operation \"-\" on data of type ") + typeName(o.type) + ".");
    const Operand out = temp(o.type);
    emit(o.type == Type::kInt ? OP_NEGI : o.type == Type::kFloat ? OP_NEGF : OP_NEGV, out.reg, o.reg);
    return out;
}

Operand Codegen::binary(const Node* n)
{
    if (n->op == kAnd || n->op == kOr)
        return logical(n);
    // long sums lean to the left: walked without recursion
    std::vector<const Node*> spine;
    const Node*              first = n;
    for (; first->kind == Kind::kBinary && first->op != kAnd && first->op != kOr; first = first->kids[0])
        spine.push_back(first);
    Operand left = expression(first);
    for (; !spine.empty(); spine.pop_back())
    {
        const Node* b = spine.back();
        left = kept(left, b->kids[1]->mutates, b->kids[1]->calls);
        const Operand right = expression(b->kids[1]);
        offset_ = b->offset;
        left = binaryOperation(b, b->op, left, right);
    }
    return left;
}

Operand Codegen::binaryOperation(const Node* at, Op op, Operand l, Operand r)
{
    const auto illegal = [&](Type t) {
        fail(at, t == Type::kVoid ? std::string("Cannot use data of type void in this context.")
                                  : std::string("Illegal operation \"") + opText(op) + "\" on data of type " + typeName(t) + ".");
    };
    for (const Operand& o : {l, r})
        if (o.type == Type::kVoid || isArray(o.type))
            illegal(o.type);
    const bool text = l.type == Type::kString || r.type == Type::kString;
    if ((l.type == Type::kDyn || r.type == Type::kDyn) && !(text && op == kAdd))
        return dynOperation(at, op, l, r);
    if (text && isComparison(op))
        return compareText(at, op, converted(at, l, Type::kString), converted(at, r, Type::kString));
    if (text)
    {
        if (op != kAdd)
            illegal(Type::kString);
        l = converted(at, l, Type::kString);
        r = converted(at, r, Type::kString);
        const Operand out = temp(Type::kString);
        emit(OP_CONCAT, out.reg, l.reg, r.reg);
        return out;
    }
    if (l.type == Type::kMatrix || r.type == Type::kMatrix)
        return matrixOperation(at, op, l, r);
    if (l.type == Type::kVector || r.type == Type::kVector)
        return vectorOperation(at, op, l, r);
    if (op == kCross)
        illegal(l.type);

    const bool ints = l.type == Type::kInt && r.type == Type::kInt;
    l = converted(at, l, ints ? Type::kInt : Type::kFloat);
    r = converted(at, r, ints ? Type::kInt : Type::kFloat);
    if (op == kGt || op == kGe)
    {
        std::swap(l, r);
        op = op == kGt ? kLt : kLe;
    }
    static const OpCode table[][2] = {{OP_ADDF, OP_ADDI}, {OP_SUBF, OP_SUBI}, {OP_MULF, OP_MULI}, {OP_DIVF, OP_DIVI}, {OP_MODF, OP_MODI},
                                      {OP_MOV, OP_MOV},   {OP_EQF, OP_EQI},   {OP_NEF, OP_NEI},   {OP_LTF, OP_LTI},   {OP_LEF, OP_LEI}};
    const Operand out = temp(isComparison(op) || ints ? Type::kInt : Type::kFloat);
    emit(table[op][ints], out.reg, l.reg, r.reg);
    return out;
}

Operand Codegen::compareText(const Node* at, Op op, Operand l, Operand r)
{
    if (op == kGt || op == kGe)
    {
        std::swap(l, r);
        op = op == kGt ? kLt : kLe;
    }
    const Operand out = temp(Type::kInt);
    emit(op == kEq ? OP_EQS : op == kNe ? OP_NES : op == kLt ? OP_LTS : OP_LES, out.reg, l.reg, r.reg);
    return out;
}

Operand Codegen::vectorOperation(const Node* at, Op op, Operand l, Operand r)
{
    const bool vectors = l.type == Type::kVector && r.type == Type::kVector;
    if (op == kMul && !vectors)
    {
        if (r.type == Type::kVector)
            std::swap(l, r);
        const Operand out = temp(Type::kVector);
        emit(OP_MULVF, out.reg, l.reg, converted(at, r, Type::kFloat).reg);
        return out;
    }
    if (op == kDiv && l.type == Type::kVector && !vectors)
    {
        const Operand out = temp(Type::kVector);
        emit(OP_DIVVF, out.reg, l.reg, converted(at, r, Type::kFloat).reg);
        return out;
    }
    if (op >= kLt && op <= kGe)   // by length
        return binaryOperation(at, op, converted(at, l, Type::kFloat), converted(at, r, Type::kFloat));
    l = converted(at, l, Type::kVector);
    r = converted(at, r, Type::kVector);
    const Operand out = temp(op == kMul ? Type::kFloat : isComparison(op) ? Type::kInt : Type::kVector);
    switch (op)
    {
    case kAdd:   emit(OP_ADDV, out.reg, l.reg, r.reg); break;
    case kSub:   emit(OP_SUBV, out.reg, l.reg, r.reg); break;
    case kMul:   emit(OP_DOTV, out.reg, l.reg, r.reg); break;
    case kCross: emit(OP_CROSSV, out.reg, l.reg, r.reg); break;
    case kEq:    emit(OP_EQV, out.reg, l.reg, r.reg); break;
    case kNe:    emit(OP_NEV, out.reg, l.reg, r.reg); break;
    default:     emit(OP_BINV, out.reg, l.reg, r.reg, op); break;   // / and %, component by component
    }
    return out;
}

Operand Codegen::matrixOperation(const Node* at, Op op, Operand l, Operand r)
{
    const bool numberLeft = l.type != Type::kMatrix && l.type != Type::kVector;
    if (op == kCross || op == kAnd || op >= kLt || (numberLeft && (op == kDiv || op == kMod)))
        fail(at, std::string("Illegal operation \"") + opText(op) + "\" on data of type matrix.");
    const Operand ld = converted(at, l, Type::kDyn), rd = converted(at, r, Type::kDyn);
    const Operand out = temp(Type::kDyn);
    emit(OP_BINM, out.reg, ld.reg, rd.reg, op);
    return converted(at, out, isComparison(op) ? Type::kInt : Type::kMatrix);
}

Operand Codegen::dynOperation(const Node* at, Op op, Operand l, Operand r)
{
    const Operand ld = converted(at, l, Type::kDyn), rd = converted(at, r, Type::kDyn);
    const Operand out = temp(Type::kDyn);
    emit(OP_BINDYN, out.reg, ld.reg, rd.reg, op);
    return isComparison(op) ? converted(at, out, Type::kInt) : out;
}

// ---- conditions

Operand Codegen::logical(const Node* n)
{
    const Operand          out = temp(Type::kInt);
    const std::vector<int> no = condition(n, false);
    emit(OP_MOV, out.reg, intConstant(1).reg);
    const int end = emit(OP_JMP);
    patch(no);
    emit(OP_MOV, out.reg, intConstant(0).reg);
    patch(end);
    return out;
}

/// Jumps that are taken when the condition is `jumpIf`; otherwise execution goes on behind them.
std::vector<int> Codegen::condition(const Node* n, bool jumpIf)
{
    if (n->kind == Kind::kUnary && n->op == kNot)
        return condition(n->kids[0], !jumpIf);
    if (n->kind == Kind::kBinary && (n->op == kAnd || n->op == kOr))
    {
        // `a && b && c` leans to the left: its parts one after the other
        std::vector<const Node*> parts;
        const Node*              first = n;
        for (; first->kind == Kind::kBinary && first->op == n->op; first = first->kids[0])
            parts.push_back(first->kids[1]);
        parts.push_back(first);
        const bool       decides = n->op == kOr;   // a part with this value settles the whole
        std::vector<int> settled;
        for (; parts.size() > 1; parts.pop_back())
            for (int jump : condition(parts.back(), decides))
                settled.push_back(jump);
        std::vector<int> out = condition(parts[0], jumpIf);
        if (decides == jumpIf)
            out.insert(out.end(), settled.begin(), settled.end());
        else
            patch(settled);
        return out;
    }
    if (n->kind == Kind::kBinary && isComparison(n->op))
    {
        Operand l = kept(expression(n->kids[0]), n->kids[1]->mutates, n->kids[1]->calls);
        Operand r = expression(n->kids[1]);
        offset_ = n->offset;
        if (isNumber(l.type) && isNumber(r.type))
        {
            const Type t = l.type == Type::kInt && r.type == Type::kInt ? Type::kInt : Type::kFloat;
            return {fusedJump(n->op, jumpIf, converted(n, l, t), converted(n, r, t))};
        }
        return {emit(jumpIf ? OP_JNZ : OP_JZ, binaryOperation(n, n->op, l, r).reg)};
    }
    Operand o = expression(n);
    offset_ = n->offset;
    if (o.type != Type::kInt)
    {
        Operand b = temp(Type::kInt);
        if (o.type == Type::kVector)
            emit(OP_VTOB, b.reg, o.reg);
        else if (o.type == Type::kDyn)
            emit(OP_D2B, b.reg, o.reg);
        else
            emit(OP_FTOB, b.reg, converted(n, o, Type::kFloat).reg);
        o = b;
    }
    return {emit(jumpIf ? OP_JNZ : OP_JZ, o.reg)};
}

int Codegen::fusedJump(Op op, bool jumpIf, const Operand& l, const Operand& r)
{
    int a = l.reg, b = r.reg;
    if (op == kGt || op == kGe)
    {
        std::swap(a, b);
        op = op == kGt ? kLt : kLe;
    }
    if (op == kEq || op == kNe)
    {
        const bool equal = (op == kEq) == jumpIf;
        return l.type == Type::kInt ? emit(equal ? OP_JEQI : OP_JNEI, a, b) : emit(equal ? OP_JEQF : OP_JNEF, a, b);
    }
    if (l.type == Type::kFloat)   // not the opposite comparison: NaN
        return emit(op == kLt ? (jumpIf ? OP_JLTF : OP_JNLTF) : (jumpIf ? OP_JLEF : OP_JNLEF), a, b);
    if (jumpIf)
        return emit(op == kLt ? OP_JLTI : OP_JLEI, a, b);
    return emit(op == kLt ? OP_JLEI : OP_JLTI, b, a);
}

Operand Codegen::ternary(const Node* n)
{
    const Type t = common(n, infer(n->kids[1]), infer(n->kids[2]));
    if (t == Type::kVoid)
        fail(n, "Cannot use data of type void in this context.");
    const std::vector<int> no = condition(n->kids[0], false);
    if (t == Type::kEmptyArray)
        return {t};
    const Operand out = temp(t);
    const auto    branch = [&](const Node* kid) {
        if (t == Type::kMatrix)   // the register may still hold one of another size
            emit(OP_MOVS, out.reg, value(kid, t).reg);
        else
            into(kid, t, out.reg);
    };
    branch(n->kids[1]);
    const int end = emit(OP_JMP);
    patch(no);
    branch(n->kids[2]);
    patch(end);
    return out;
}

// ---- elements

Operand Codegen::index(const Node* n)
{
    const Element e = element(n, nullptr);
    offset_ = n->offset;
    return load(n, e);
}

/// The array and index of `$a[i]`; `other` is what is evaluated before the element is used.
Codegen::Element Codegen::element(const Node* n, const Node* other)
{
    Element e;
    e.base = expression(n->kids[0]);
    if (!isArray(e.base.type) && e.base.type != Type::kDyn && e.base.type != Type::kMatrix)
        fail(n, e.base.type == Type::kVoid ? std::string("Cannot use data of type void in this context.")
                                           : std::string("Data of type ") + typeName(e.base.type) + " has no elements.");
    if (e.base.type == Type::kEmptyArray)
        fail(n, "An empty array has no elements.");
    const bool matrix = e.base.type == Type::kMatrix;
    if (matrix != (n->kids.size() == 3))
        fail(n, matrix ? "A matrix takes two indices." : "An array takes one index.");
    const bool mutates = other && other->mutates, calls = other && other->calls;
    e.first = value(n->kids[1], Type::kInt);
    e.first = kept(e.first, mutates || (matrix && n->kids[2]->mutates), calls || (matrix && n->kids[2]->calls));
    if (matrix)
        e.second = kept(value(n->kids[2], Type::kInt), mutates, calls);
    return e;
}

Type Codegen::elementTypeOf(const Element& e) const
{
    return e.base.type == Type::kMatrix ? Type::kFloat : elementType(e.base.type);
}

Operand Codegen::load(const Node* at, const Element& e)
{
    const Operand out = temp(elementTypeOf(e));
    switch (e.base.type)
    {
    case Type::kInts:    emit(OP_GETAI, out.reg, e.base.reg, e.first.reg); break;
    case Type::kFloats:  emit(OP_GETAF, out.reg, e.base.reg, e.first.reg); break;
    case Type::kVectors: emit(OP_GETAV, out.reg, e.base.reg, e.first.reg); break;
    case Type::kStrings: emit(OP_GETAS, out.reg, e.base.reg, e.first.reg); break;
    case Type::kMatrix:  emit(OP_GETM, out.reg, e.base.reg, e.first.reg, e.second.reg); break;
    default:             emit(OP_INDEXD, out.reg, e.base.reg, e.first.reg); break;
    }
    return out;
}

void Codegen::store(const Node* at, const Element& e, const Operand& v)
{
    switch (e.base.type)
    {
    case Type::kInts:    emit(OP_SETAI, e.base.reg, e.first.reg, v.reg); break;
    case Type::kFloats:  emit(OP_SETAF, e.base.reg, e.first.reg, v.reg); break;
    case Type::kVectors: emit(OP_SETAV, e.base.reg, e.first.reg, v.reg); break;
    case Type::kStrings: emit(OP_SETAS, e.base.reg, e.first.reg, v.reg); break;
    case Type::kMatrix:  emit(OP_SETM, e.base.reg, e.first.reg, e.second.reg, v.reg); break;
    default:             emit(OP_SETD, e.base.reg, e.first.reg, v.reg); break;
    }
}

/// Elements of arrays change the object itself, but matrices and run-time-typed values are copied on writing.
void Codegen::markElementWritten(const Node* base)
{
    if (const Variable* v = find(base->text))
        written(*v);
}

// ---- assignments

Operand Codegen::assign(const Node* n) { return n->kids[0]->kind == Kind::kVar ? assignVariable(n) : assignElement(n); }

Operand Codegen::assignVariable(const Node* n)
{
    const Node*     target = n->kids[0];
    const Variable* known = find(target->text);
    if (!known && n->op != kNoOp)
        fail(target, "\"$" + target->text + "\" is an undeclared variable.");
    Operand right;
    if (n->op == kNoOp)
        right = expression(n->kids[1]);
    else
    {
        const Operand left = kept(variable(target), n->kids[1]->mutates, n->kids[1]->calls);
        right = expression(n->kids[1]);
        offset_ = n->offset;
        if (n->op == kAdd && left.type == Type::kString && left.reg == known->reg && right.type != Type::kVoid && !isArray(right.type))
        {
            written(*known);
            emit(OP_APPEND, left.reg, converted(n, right, Type::kString).reg);
            return left;
        }
        right = binaryOperation(n, n->op, left, right);
    }
    offset_ = n->offset;
    if (right.type == Type::kVoid)
        fail(n->kids[1], "Cannot use data of type void in this context.");
    known = find(target->text);   // the right side may have declared it
    const Variable v = known ? *known : declareImplicit(target, target->text, right.type);
    written(v);
    if (v.type == Type::kDyn)
        emit(OP_ASSIGND, v.reg, converted(n, right, Type::kDyn).reg);
    else
        convertInto(n, right, v.type, v.reg);
    Operand o{v.type, v.reg};
    o.global = v.bound >= 0;
    return o;
}

Operand Codegen::assignElement(const Node* n)
{
    const Node* target = n->kids[0];
    const Node* base = target->kids[0];
    if (base->kind != Kind::kVar)
        fail(target, "Only a variable can be assigned.");
    if (!find(base->text))
    {
        const Type element = infer(n->kids[1]);
        if (n->op != kNoOp || target->kids.size() != 2)
            fail(base, "\"$" + base->text + "\" is an undeclared variable.");
        const Type array = element == Type::kDyn ? element : arrayType(element);
        if (array == Type::kVoid)
            fail(base, "The type of \"$" + base->text + "\" is unknown: declare the array first.");
        const Variable v = declareImplicit(base, base->text, array);
        if (v.bound < 0 && isArray(array))
            emit(OP_FRESH, v.reg, 0, 0, int(array));
    }
    const Element e = element(target, n->kids[1]);
    const Type    t = elementTypeOf(e);
    markElementWritten(base);
    Operand right;
    if (n->op == kNoOp)
        right = expression(n->kids[1]);
    else
    {
        const Operand left = load(target, e);
        right = expression(n->kids[1]);
        offset_ = n->offset;
        right = binaryOperation(n, n->op, left, right);
    }
    const Operand v = converted(n->kids[1], right, t);
    offset_ = target->offset;
    store(n, e, v);
    return v;
}

Operand Codegen::increment(const Node* n, bool discarded)
{
    const Node* target = n->kids[0];
    const int   by = int(n->number);
    if (target->kind == Kind::kIndex)
    {
        const Element e = element(target, nullptr);
        const Operand old = load(target, e);
        offset_ = n->offset;
        const Operand now = converted(n, binaryOperation(n, kAdd, old, intConstant(by)), old.type);
        markElementWritten(target->kids[0]);
        store(n, e, now);
        return n->flag || discarded ? now : old;
    }
    const Variable* v = find(target->text);
    if (!v)
        fail(target, "\"$" + target->text + "\" is an undeclared variable.");
    if (!isNumber(v->type) && v->type != Type::kDyn)
        fail(n, std::string("Illegal operation \"") + (by > 0 ? "++" : "--") + "\" on data of type " + typeName(v->type) + ".");
    written(*v);
    Operand o{v->type, v->reg};
    o.global = v->bound >= 0;
    const Operand old = n->flag || discarded ? o : kept(o, true, true);
    if (v->type == Type::kInt)
        emit(OP_INCI, v->reg, 0, 0, by);
    else if (v->type == Type::kFloat)
        emit(OP_ADDF, v->reg, v->reg, floatConstant(by).reg);
    else
        emit(OP_ASSIGND, v->reg, converted(n, binaryOperation(n, kAdd, o, intConstant(by)), Type::kDyn).reg);
    return n->flag || discarded ? o : old;
}

}  // namespace mirk::mel

#include "mel/machine.h"

#include <cmath>
#include <new>
#include <optional>
#include <unordered_set>

#include "command/value_text.h"
#include "mel/dynamic.h"
#include "mel/interpreter.h"
#include "mel/native.h"
#include "mel/native_tier.h"
#include "mel/symbols.h"

namespace mirk::mel {

using command::Error;
using command::intFromDouble;

namespace {

constexpr size_t kStackSlots = size_t(1) << 22;   // 32 MB, mapped as it is used
constexpr size_t kMaxFrames = 50000;

int32_t wrap(int64_t v) { return int32_t(uint32_t(uint64_t(v))); }

// Of two NaNs the processor gives the first, and a compiler may swap operands: machine code would show another sign.
#if defined(__x86_64__)
inline double plus(double a, double b)
{
    asm("addsd %1, %0" : "+x"(a) : "xm"(b));
    return a;
}
inline double times(double a, double b)
{
    asm("mulsd %1, %0" : "+x"(a) : "xm"(b));
    return a;
}
#else
inline double plus(double a, double b) { return a + b; }
inline double times(double a, double b) { return a * b; }
#endif
inline double dotted(const Vec3& u, const Vec3& v) { return plus(plus(times(u.x, v.x), times(u.y, v.y)), times(u.z, v.z)); }
inline double length(const Vec3& v) { return std::sqrt(dotted(v, v)); }

[[noreturn]] void divideByZero() { throw Error("Divide by zero."); }

}  // namespace

Machine& machine()
{
    static Machine* one = new Machine;   // a frame may still be unwinding while the process ends
    return *one;
}

Machine::Machine()
    : stack_(new Slot[kStackSlots]), top_(stack_.get()), end_(top_ + kStackSlots), frames_(new Frame[kMaxFrames + 1]), frame_(frames_.get())
{
}
Machine::~Machine() = default;

// ---- frames

inline void Machine::push(const Function& f)
{
    const size_t need = f.start.size();
    if (frameCount() >= kMaxFrames || size_t(end_ - top_) < need) [[unlikely]]
        throw Error("Stack overflow: procedures call each other too deeply.");
    Slot* const base = top_;
    const Slot* const start = f.start.data();
    for (size_t k = 0; k < need; ++k)
        base[k] = start[k];
    top_ += need;
    const Body* const body = f.body.get();
    *++frame_ = {&f, body, base, body->steps.data()};
    if (!body->bound.empty())
        readGlobals(*frame_);
}

inline void Machine::pop()
{
    const Frame& f = *frame_--;
    for (uint16_t r : f.body->heap)
        release(f.base[r].p);
    top_ = f.base;
}

/// The code before stays as long as a frame may run it.
void Machine::define(ProcSlot& slot, const std::shared_ptr<const Function>& function)
{
    if (slot.function == function)
        return;
    if (slot.function)
        retired_.push_back(std::move(slot.function));
    slot.function = function;
    slot.current = function.get();
    if (retired_.size() < maxRetired_)
        return;
    std::unordered_set<const Function*> running;
    for (const Frame* f = frame_; f != frames_.get(); --f)
        running.insert(f->function);
    std::erase_if(retired_, [&](const auto& f) { return !running.count(f.get()); });
    maxRetired_ = std::max<size_t>(256, retired_.size() * 2);
}

void Machine::writeGlobals(Frame& f)
{
    if (f.written)
        return;
    f.written = true;
    for (const Bound& b : f.body->bound)
    {
        if (!b.written || isArray(b.type))
            continue;
        Slot* from = f.base + b.reg;
        if (b.global->type != b.type)
            fromValue(toValue(b.type, from), b.global->type, b.global->value);
        else if (isHeap(b.type))
            put(b.global->value[0], from->p);
        else
            std::copy(from, from + width(b.type), b.global->value);
    }
}

void Machine::readGlobals(Frame& f)
{
    f.written = false;
    for (const Bound& b : f.body->bound)
    {
        Slot* to = f.base + b.reg;
        if (b.global->type != b.type)
            fromValue(toValue(b.global->type, b.global->value), b.type, to);
        else if (isHeap(b.type))
            put(*to, b.global->value[0].p);
        else
            std::copy(b.global->value, b.global->value + width(b.type), to);
    }
}

// ---- entering

Value Machine::call(std::shared_ptr<const Function> f, std::span<const Value> args)
{
    if (depth >= kMaxDepth)
        throw Error("Stack overflow: scripts run each other too deeply.");
    const size_t bottom = frameCount();
    const Entry  entry(*this);
    const Body& fn = *f->body;
    if (args.size() != fn.params.size())
        throw Error("Wrong number of arguments on call to " + fn.name + ".");
    Value result;
    push(*f);
    try
    {
        for (size_t k = 0; k < args.size(); ++k)
            fromValue(args[k], fn.params[k].first, frame_->base + fn.params[k].second);
    }
    catch (...)
    {
        pop();
        throw;
    }
    run(bottom, result);
    return result;
}

inline void Machine::callProc(const Site& site, Slot* from)
{
    const Function& f = *site.proc->current;
    push(f);
    Slot* const to = frame_->base;
    const auto* param = frame_->body->params.data();
    for (const Site::Arg& arg : site.args)
    {
        const auto [type, reg] = *param++;
        Slot* a = from + arg.reg;
        if (type == Type::kInt)
            to[reg].i = a->i;
        else if (type == Type::kFloat)
            to[reg].d = a->d;
        else if (isArray(type))
        {
            // by reference: the same object
            if (!a->p)
                freshArray(type, *a, 0);
            put(to[reg], a->p);
        }
        else if (isHeap(type))
            put(to[reg], a->p);
        else
            std::copy(a, a + width(type), to + reg);
    }
}

/// Whether to try machine code at the start of a frame that was entered often.
bool Machine::entersNative(const Body& body)
{
    body.calls = 0;
    return nativeCode(body, interruptFlag);
}

/// Makes machine code anew when a procedure that became part of it has been redefined, but not for ever.
void Machine::renewNative(const Body& body)
{
    if (!body.native->stale())
        return;
    body.native.reset();
    body.nativeTried = ++body.remakes > 20;
}

// ---- errors

/// Finds who catches the error that is in flight, and puts it to the right place; otherwise removes the frames down to
/// `bottom` and throws on.
void Machine::handle(size_t bottom)
{
    bool                 stop = false;
    std::optional<ScriptError> error;
    const Frame&         f = *frame_;
    const size_t         at = size_t(f.ip - f.body->steps.data());
    const auto located = [&](const std::string& text) { return errorAt(*f.function->source, f.function->offset(at), text); };
    try
    {
        throw;
    }
    catch (const ScriptError& e)
    {
        error = e;
        stop = e.interrupted;
    }
    catch (const std::bad_alloc&)
    {
        error = located("Out of memory.");
    }
    catch (const std::exception& e)
    {
        error = located(e.what());
    }
    for (; frameCount() > bottom; pop())
    {
        Frame&       frame = *frame_;
        const size_t pc = size_t(frame.ip - frame.body->steps.data());
        try
        {
            writeGlobals(frame);
        }
        catch (const std::exception&)
        {
            // a variable that was declared anew as another type meanwhile keeps its newer value
        }
        if (stop)
            continue;
        for (const Handler& h : frame.body->handlers)
            if (pc >= h.from && pc < h.to)
            {
                readGlobals(frame);
                frame.base[h.result].i = 1;
                frame.ip = frame.body->steps.data() + h.target;
                if (!h.quiet)
                    message(Severity::kError, error->what());
                return;
            }
    }
    throw *error;
}

void Machine::run(size_t bottom, Value& result)
{
    for (;;)
    {
        try
        {
            execute(bottom, result);
            return;
        }
        catch (...)
        {
            handle(bottom);
        }
    }
}

void Machine::checkInterrupt()
{
    if (!interruptFlag.exchange(false))
        return;
    const Frame& f = *frame_;
    ScriptError  e = errorAt(*f.function->source, f.function->offset(size_t(f.ip - f.body->steps.data())), "Interrupted.");
    e.interrupted = true;
    throw e;
}

// ---- the loop

// Every instruction that can throw or call stores its place in the frame first (SAVE).
void Machine::execute(size_t bottom, Value& result)
{
    static const void* const labels[] = {
#define X(name) &&L_##name,
        MIRK_MEL_OPS(X)
        MIRK_MEL_FUSED(X)
#undef X
    };

    // taken in place of the labels for one instruction, whatever it is
    static const void* const traps[] = {
#define X(name) &&L_enterNative,
        MIRK_MEL_OPS(X)
        MIRK_MEL_FUSED(X)
#undef X
    };

    Frame*             fp;
    Frame* const       last = frames_.get() + bottom + 1;   // its return ends the run
    const Instr*       ip;
    Slot*              r;
    const Body*        body;
    const Instr*       code;
    const Site*        sites;
    const void* const* table = labels;
    const int32_t      hot = hotTurns();
    int32_t            turns = hot;

#define LOAD_FRAME()                                  \
    do                                                \
    {                                                 \
        fp = frame_;                                  \
        const Frame& f_ = *fp;                        \
        body = f_.body;                               \
        ip = f_.ip;                                   \
        r = f_.base;                                  \
        code = body->steps.data();                    \
        sites = body->sites.data();                   \
    } while (0)
#define A r[ip->a]
#define B r[ip->b]
#define C r[ip->c]
#define SAVE() (fp->ip = ip)
#define GO() goto* table[ip->op]
#define NEXT()   \
    do           \
    {            \
        ++ip;    \
        GO();    \
    } while (0)
#define BACK()                                                        \
    do                                                                \
    {                                                                 \
        if (interruptFlag.load(std::memory_order_relaxed)) [[unlikely]] \
        {                                                             \
            SAVE();                                                   \
            checkInterrupt();                                         \
        }                                                             \
        if (--turns <= 0) [[unlikely]]                                \
        {                                                             \
            turns = hot;                                              \
            if (nativeCode(*body, interruptFlag))                     \
                table = traps;                                        \
        }                                                             \
    } while (0)
#define JUMP()                           \
    do                                   \
    {                                    \
        const Instr* to_ = code + ip->i; \
        if (to_ <= ip)                   \
            BACK();                      \
        ip = to_;                        \
        GO();                            \
    } while (0)
#define JUMP_IF(test) \
    do                \
    {                 \
        if (test)     \
            JUMP();   \
        NEXT();       \
    } while (0)

    LOAD_FRAME();
    if (body->native)
        table = traps;
    GO();

// Goes on in machine code if there is some for this place. It comes back at an instruction that is run here; behind that
// one it may be entered again.
L_enterNative:
{
    table = labels;
    const NativeCode* native = body->native.get();
    if (!native || !nativeEnabled())
        GO();
    const void* at = native->entries[size_t(ip - code)];
    if (!at || frameCount() + 1 >= kMaxFrames || size_t(end_ - top_) < native->furtherSlots)
    {
        turns = 1;   // at the next turn of a loop, then
        GO();
    }
    for (const auto& [type, reg] : native->arrays)
        if (!r[reg].p)
            freshArray(type, r[reg], 0);
    ip = code + native->run(r, at);
    if (ip->op == OP_CALLP && !native->taken.empty())
        renewNative(*body);
    table = traps;
    goto* labels[ip->op];
}

L_MOV:  A.d = B.d; NEXT();
L_MOVI: A.i = B.i; NEXT();
L_MOVV: putVec(&A, vec(&B)); NEXT();
L_MOVS: put(A, B.p); NEXT();

L_I2F:  A.d = B.i; NEXT();
L_F2I:  A.i = intFromDouble(B.d); NEXT();
L_V2F:  A.d = length(vec(&B)); NEXT();
L_F2V:  { const double d = B.d; putVec(&A, {d, d, d}); } NEXT();
L_I2S:  put(A, new Str(std::to_string(B.i))); NEXT();
L_F2S:  put(A, new Str(command::numberText(B.d))); NEXT();
L_V2S:  put(A, new Str(command::vectorText(vec(&B)))); NEXT();
L_S2F:  A.d = command::leadingNumber(text(B)); NEXT();
L_FTOB: A.i = B.d != 0; NEXT();
L_VTOB: { const Vec3 v = vec(&B); A.i = v.x != 0 || v.y != 0 || v.z != 0; } NEXT();
L_TOD:
{
    Slot box{};
    box.p = nullptr;
    fromValue(toValue(Type(ip->i), &B), Type::kDyn, &box);
    put(A, box.p);
    release(box.p);
    NEXT();
}
L_FROMD:
{
    SAVE();
    Dyn& from = object<Dyn>(B);
    if (ip->c && from.refs == 1)
        fromValue(std::move(from.v), Type(ip->i), &A);   // a temporary: its buffer moves on
    else
        fromValue(from.v, Type(ip->i), &A);
    NEXT();
}
L_D2B:  { const bool b = dynValue(B).asBool(); A.i = b; } NEXT();
L_CONV: SAVE(); fromValue(toValue(Type(ip->c), &B), Type(ip->i), &A); NEXT();

L_ADDI: A.i = wrap(int64_t(B.i) + C.i); NEXT();
L_SUBI: A.i = wrap(int64_t(B.i) - C.i); NEXT();
L_MULI: A.i = wrap(int64_t(B.i) * C.i); NEXT();
L_DIVI: if (C.i == 0) [[unlikely]] { SAVE(); divideByZero(); } A.i = wrap(int64_t(B.i) / C.i); NEXT();
L_MODI: if (C.i == 0) [[unlikely]] { SAVE(); divideByZero(); } A.i = wrap(int64_t(B.i) % C.i); NEXT();
L_NEGI: A.i = wrap(-int64_t(B.i)); NEXT();
L_NOTI: A.i = B.i == 0; NEXT();
L_INCI: A.i = wrap(int64_t(A.i) + ip->i); NEXT();

L_ADDF: A.d = plus(B.d, C.d); NEXT();
L_SUBF: A.d = B.d - C.d; NEXT();
L_MULF: A.d = times(B.d, C.d); NEXT();
L_DIVF: if (C.d == 0) [[unlikely]] { SAVE(); divideByZero(); } A.d = B.d / C.d; NEXT();
L_MODF: if (C.d == 0) [[unlikely]] { SAVE(); divideByZero(); } A.d = std::fmod(B.d, C.d); NEXT();
L_NEGF: A.d = -B.d; NEXT();
L_NOTF: A.i = B.d == 0; NEXT();

L_ADDV: { const Vec3 u = vec(&B), v = vec(&C); putVec(&A, {plus(u.x, v.x), plus(u.y, v.y), plus(u.z, v.z)}); } NEXT();
L_SUBV: { const Vec3 u = vec(&B), v = vec(&C); putVec(&A, {u.x - v.x, u.y - v.y, u.z - v.z}); } NEXT();
L_MULVF: { const Vec3 u = vec(&B); const double s = C.d; putVec(&A, {times(u.x, s), times(u.y, s), times(u.z, s)}); } NEXT();
L_DIVVF:
{
    const Vec3   u = vec(&B);
    const double s = C.d;
    if (s == 0)
    {
        SAVE();
        divideByZero();
    }
    putVec(&A, {u.x / s, u.y / s, u.z / s});
    NEXT();
}
L_DOTV: { const Vec3 u = vec(&B), v = vec(&C); A.d = dotted(u, v); } NEXT();
L_CROSSV: { const Vec3 u = vec(&B), v = vec(&C); putVec(&A, {times(u.y, v.z) - times(u.z, v.y), times(u.z, v.x) - times(u.x, v.z), times(u.x, v.y) - times(u.y, v.x)}); } NEXT();
L_BINV: SAVE(); putVec(&A, vectorArithmetic(Op(ip->i), vec(&B), vec(&C))); NEXT();
L_NEGV: { const Vec3 u = vec(&B); putVec(&A, {-u.x, -u.y, -u.z}); } NEXT();
L_MKV:  { const Vec3 v{B.d, C.d, r[ip->i].d}; putVec(&A, v); } NEXT();

L_CONCAT:
{
    const std::string &l = text(B), &m = text(C);
    Str*               s = new Str;
    s->s.reserve(l.size() + m.size());
    s->s.append(l).append(m);
    put(A, s);
    NEXT();
}
L_APPEND:
{
    if (A.p && A.p->refs == 1)
        static_cast<Str*>(A.p)->s += text(B);
    else
        put(A, new Str(text(A) + text(B)));
    NEXT();
}

L_EQI: A.i = B.i == C.i; NEXT();
L_NEI: A.i = B.i != C.i; NEXT();
L_LTI: A.i = B.i < C.i; NEXT();
L_LEI: A.i = B.i <= C.i; NEXT();
L_EQF: A.i = B.d == C.d; NEXT();
L_NEF: A.i = B.d != C.d; NEXT();
L_LTF: A.i = B.d < C.d; NEXT();
L_LEF: A.i = B.d <= C.d; NEXT();
L_EQS: A.i = text(B) == text(C); NEXT();
L_NES: A.i = text(B) != text(C); NEXT();
L_LTS: A.i = text(B) < text(C); NEXT();
L_LES: A.i = text(B) <= text(C); NEXT();
L_EQV: { const Vec3 u = vec(&B), v = vec(&C); A.i = u.x == v.x && u.y == v.y && u.z == v.z; } NEXT();
L_NEV: { const Vec3 u = vec(&B), v = vec(&C); A.i = !(u.x == v.x && u.y == v.y && u.z == v.z); } NEXT();

L_JMP:   JUMP();
L_JZ:    JUMP_IF(A.i == 0);
L_JNZ:   JUMP_IF(A.i != 0);
L_JEQI:  JUMP_IF(A.i == B.i);
L_JNEI:  JUMP_IF(A.i != B.i);
L_JLTI:  JUMP_IF(A.i < B.i);
L_JLEI:  JUMP_IF(A.i <= B.i);
L_JEQF:  JUMP_IF(A.d == B.d);
L_JNEF:  JUMP_IF(A.d != B.d);
L_JLTF:  JUMP_IF(A.d < B.d);
L_JLEF:  JUMP_IF(A.d <= B.d);
L_JNLTF: JUMP_IF(!(A.d < B.d));
L_JNLEF: JUMP_IF(!(A.d <= B.d));

L_GETAI: SAVE(); A.i = object<IntArray>(B).get(C.i); NEXT();
L_GETAF: SAVE(); A.d = object<FloatArray>(B).get(C.i); NEXT();
L_GETAV: SAVE(); putVec(&A, object<VectorArray>(B).get(C.i)); NEXT();
L_GETAS: SAVE(); put(A, object<StringArray>(B).get(C.i)); NEXT();
L_SETAI: SAVE(); object<IntArray>(A).set(B.i, C.i); NEXT();
L_SETAF: SAVE(); object<FloatArray>(A).set(B.i, C.d); NEXT();
L_SETAV: SAVE(); object<VectorArray>(A).set(B.i, vec(&C)); NEXT();
L_SETAS: SAVE(); object<StringArray>(A).set(B.i, ownText(C)); NEXT();
L_APPI:  object<IntArray>(A).push(B.i); NEXT();
L_APPF:  object<FloatArray>(A).push(B.d); NEXT();
L_APPV:  object<VectorArray>(A).push(vec(&B)); NEXT();
L_APPS:  { StringArray& a = object<StringArray>(A); a.set(int64_t(a.size()), ownText(B)); } NEXT();
L_SIZEA: A.i = B.p ? int32_t(static_cast<Array*>(B.p)->size()) : 0; NEXT();
L_LOADA: SAVE(); fromValue(sites[ip->i].literals[0], Type(ip->b), &A); NEXT();
L_FRESH: SAVE(); freshArray(Type(ip->i), A, ip->c ? B.i : 0); NEXT();
L_COPYA: SAVE(); assignArray(Type(ip->i), A, B); NEXT();
L_SWAPA: swapArray(Type(ip->i), A, B); NEXT();

L_NEWM: L_MKM: SAVE(); put(A, newMatrix(ip->b, ip->c)); NEXT();
L_GETM: SAVE(); A.d = *matrixCell(object<Mat>(B).m, C.i, r[ip->i].i); NEXT();
L_SETM:
{
    SAVE();
    if (object<Mat>(A).refs > 1)
    {
        Mat* own = new Mat;
        own->m = object<Mat>(A).m;
        put(A, own);
    }
    *matrixCell(object<Mat>(A).m, B.i, C.i) = r[ip->i].d;
    NEXT();
}
L_BINM: SAVE(); fromValue(matrixArithmetic(Op(ip->i), dynValue(B), dynValue(C)), Type::kDyn, &A); NEXT();
L_COPYM: SAVE(); assignMatrix(A, B); NEXT();

L_INDEXD: SAVE(); fromValue(elementOf(dynValue(B), C.i), Type::kDyn, &A); NEXT();
L_SETD:
{
    SAVE();
    if (object<Dyn>(A).refs > 1)
        fromValue(dynValue(A), Type::kDyn, &A);
    setElement(object<Dyn>(A).v, B.i, dynValue(C));
    NEXT();
}
L_ASSIGND:
{
    SAVE();
    const Type now = typeOf(dynValue(A)), given = typeOf(dynValue(B));
    if (now == Type::kVoid || now == given)
        put(A, B.p);
    else
        fromValue(convertTo(dynValue(B), now), Type::kDyn, &A);
    NEXT();
}
L_SIZED: { const int32_t n = sizeOf(dynValue(B), ip->c != 0); A.i = n; } NEXT();
L_BINDYN: SAVE(); fromValue(dynamicArithmetic(Op(ip->i), dynValue(B), dynValue(C)), Type::kDyn, &A); NEXT();

L_MATH1: A.d = sites[ip->i].native->math1(B.d); NEXT();
L_MATH2: A.d = sites[ip->i].native->math2(B.d, C.d); NEXT();
L_MINI:  A.i = std::min(B.i, C.i); NEXT();
L_MAXI:  A.i = std::max(B.i, C.i); NEXT();
L_ABSI:  A.i = B.i < 0 ? wrap(-int64_t(B.i)) : B.i; NEXT();
L_MINF:  A.d = std::min(B.d, C.d); NEXT();
L_MAXF:  A.d = std::max(B.d, C.d); NEXT();
L_ABSF:  A.d = std::fabs(B.d); NEXT();
L_SQRTF: A.d = std::sqrt(B.d); NEXT();

// ---- neighbours in one go

#define STEP(what) what; ++ip
L_INCI_JLTI:
{
    const int32_t counted = wrap(int64_t(A.i) + ip->i);
    A.i = counted;
    ++ip;
    JUMP_IF(counted < B.i);
}
L_SETAI_INCI_JLTI:
{
    STEP(SAVE(); object<IntArray>(A).set(B.i, C.i));
    const int32_t counted = wrap(int64_t(A.i) + ip->i);
    A.i = counted;
    ++ip;
    JUMP_IF(counted < B.i);
}
L_ADDI_INCI_JLTI:   // may be all of a loop: then it stays here
{
    const Instr* const first = ip;
    Slot *const        sum = &A, *const left = &B, *const right = &C, *const counter = r + ip[1].a, *const limit = r + ip[2].b;
    const int32_t      step = ip[1].i;
    ip += 2;
    const Instr* const to = code + ip->i;
    do
    {
        sum->i = wrap(int64_t(left->i) + right->i);
        const int32_t counted = wrap(int64_t(counter->i) + step);
        counter->i = counted;
        if (counted >= limit->i)
            NEXT();
        BACK();
    } while (to == first && table == labels);
    ip = to;
    GO();
}
L_ADDI_RET:        STEP(A.i = wrap(int64_t(B.i) + C.i)); goto L_RET;
L_ADDI_ADDI:       STEP(A.i = wrap(int64_t(B.i) + C.i)); A.i = wrap(int64_t(B.i) + C.i); NEXT();
L_MULI_ADDI:       STEP(A.i = wrap(int64_t(B.i) * C.i)); A.i = wrap(int64_t(B.i) + C.i); NEXT();
L_GETAF_GETAF:     STEP(SAVE(); A.d = object<FloatArray>(B).get(C.i)); SAVE(); A.d = object<FloatArray>(B).get(C.i); NEXT();
L_GETAF_MOV:       STEP(SAVE(); A.d = object<FloatArray>(B).get(C.i)); A.d = B.d; NEXT();
L_MOV_GETAF:       STEP(A.d = B.d); SAVE(); A.d = object<FloatArray>(B).get(C.i); NEXT();
L_SETAF_SETAF:     STEP(SAVE(); object<FloatArray>(A).set(B.i, C.d)); SAVE(); object<FloatArray>(A).set(B.i, C.d); NEXT();
L_MULF_ADDF:       STEP(A.d = times(B.d, C.d)); A.d = plus(B.d, C.d); NEXT();
#undef STEP

// ---- calls

L_CALLP:
{
    SAVE();
    if (interruptFlag.load(std::memory_order_relaxed)) [[unlikely]]
        checkInterrupt();
    const Site& site = sites[ip->i];
    if (!body->bound.empty())
        writeGlobals(*fp);
    const Function* callee = site.proc->current;
    if (callee && callee->body->signature == site.signature) [[likely]]
    {
        const Body& entered = *callee->body;
        callProc(site, r);
        LOAD_FRAME();
        if (entered.native || (++entered.calls >= hot && entersNative(entered)))
            table = traps;
        GO();
    }
    callSlow(site, r, ip->a);
    if (!body->bound.empty())
        readGlobalsKeeping(site.result, ip->a);
    NEXT();
}
L_CALLD:
{
    SAVE();
    if (interruptFlag.load(std::memory_order_relaxed)) [[unlikely]]
        checkInterrupt();
    ip = callCommand(sites[ip->i], r, ip);
    NEXT();
}
L_CALLN:
{
    SAVE();
    const Site& site = sites[ip->i];
    const bool  globals = site.native->runsScript && !body->bound.empty();
    if (globals)
        writeGlobals(*fp);
    NativeCall c(r, site, ip->a);
    site.native->function(c);
    if (globals)
        readGlobalsKeeping(site.result, ip->a);
    NEXT();
}
L_RET:
    if (body->simple && fp != last && fp[-1].body->bound.empty() && (body->returns == Type::kInt || body->returns == Type::kFloat)) [[likely]]
    {
        const Slot*  value = &A;
        const Frame& caller = fp[-1];
        Slot*        out = caller.base + caller.ip->a;
        if (body->returns == Type::kInt)
            out->i = value->i;
        else
            out->d = value->d;
        frame_ = fp - 1;
        top_ = r;
        LOAD_FRAME();
        if (body->native)
            table = traps;
        NEXT();
    }
L_RETV:
{
    SAVE();
    if (!body->bound.empty())
        writeGlobals(*fp);
    const bool  gives = ip->op == OP_RET;
    const Type  type = body->returns;
    Slot* const value = &r[ip->a];
    if (fp == last)
    {
        if (gives)
            result = toValue(type, value);
        else if (type != Type::kVoid)
        {
            Slot none[3] = {};
            result = toValue(type, none);
            if (isHeap(type))
                release(none[0].p);
        }
        pop();
        return;
    }
    Frame&         caller = fp[-1];
    const uint16_t out = caller.ip->a;
    if (!caller.body->bound.empty())
        readGlobals(caller);
    if (gives && type == Type::kInt)
        caller.base[out].i = value->i;
    else if (gives && type == Type::kFloat)
        caller.base[out].d = value->d;
    else if (type != Type::kVoid)
        giveResult(type, caller.base + out, gives ? value : nullptr);
    pop();
    LOAD_FRAME();
    if (body->native)
        table = traps;
    NEXT();
}
L_DEFP:
{
    for (const auto& [slot, function] : fp->function->procs)
        define(*slot, function);
    NEXT();
}
}

/// Reads the globals again after a call whose result is already in its register (which may be one of them).
void Machine::readGlobalsKeeping(Type result, uint16_t reg)
{
    Frame& f = *frame_;
    if (result == Type::kVoid)
        return readGlobals(f);
    Slot  keep[3] = {};
    Slot* at = f.base + reg;
    if (isHeap(result))
        put(keep[0], at->p);
    else
        std::copy(at, at + width(result), keep);
    readGlobals(f);
    if (isHeap(result))
    {
        put(*at, keep[0].p);
        release(keep[0].p);
    }
    else
        std::copy(keep, keep + width(result), at);
}

/// Moves the result of a frame that ends into the caller's register; no value gives the default.
void Machine::giveResult(Type type, Slot* out, Slot* value)
{
    if (isArray(type))
    {
        if (!value)
            freshArray(type, *out, 0);
        else if (value->p && value->p->refs == 1)
            swapArray(type, *out, *value);
        else
            assignArray(type, *out, *value);
    }
    else if (isHeap(type))
        put(*out, value ? value->p : nullptr);
    else
        for (int k = 0; k < width(type); ++k)
            if (value)
                out[k] = value[k];
            else
                out[k].p = nullptr;
}

}  // namespace mirk::mel

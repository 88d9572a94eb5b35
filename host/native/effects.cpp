// The registers of each instruction.
#include "native/analysis.h"

#include "mel/native.h"

namespace mirk::mel::native {

void Effects::use(uint16_t reg, Type t)
{
    if (t == Type::kInt || t == Type::kFloat || t == Type::kVector)
        for (int k = 0; k < width(t); ++k)
            uses.push_back(uint16_t(reg + k));
}

void Effects::def(uint16_t reg, Type t)
{
    if (t == Type::kInt || t == Type::kFloat || t == Type::kVector)
        for (int k = 0; k < width(t); ++k)
            defs.push_back(uint16_t(reg + k));
}

bool isJump(uint16_t op) { return op >= OP_JMP && op <= OP_JNLEF; }

bool readsElement(uint16_t op) { return op == OP_GETAI || op == OP_GETAF || op == OP_GETAV; }

bool isPure(uint16_t op)
{
    switch (op)
    {
    case OP_MOV: case OP_MOVI: case OP_MOVV: case OP_I2F: case OP_F2I: case OP_V2F: case OP_F2V: case OP_FTOB: case OP_VTOB:
    case OP_ADDI: case OP_SUBI: case OP_MULI: case OP_NEGI: case OP_NOTI: case OP_INCI:
    case OP_ADDF: case OP_SUBF: case OP_MULF: case OP_NEGF: case OP_NOTF:
    case OP_ADDV: case OP_SUBV: case OP_MULVF: case OP_DOTV: case OP_CROSSV: case OP_NEGV: case OP_MKV:
    case OP_EQI: case OP_NEI: case OP_LTI: case OP_LEI: case OP_EQF: case OP_NEF: case OP_LTF: case OP_LEF: case OP_EQV: case OP_NEV:
    case OP_SIZEA: case OP_MATH1: case OP_MATH2: case kInit:
    case OP_MINI: case OP_MAXI: case OP_ABSI: case OP_MINF: case OP_MAXF: case OP_ABSF: case OP_SQRTF:
        return true;
    default:
        return false;
    }
}

bool covered(const Body& body, const Instr& in)
{
    const auto plain = [&](uint16_t reg) { return isArray(body.types[reg]) && body.types[reg] != Type::kStrings; };
    switch (in.op)
    {
    case OP_MOV:
    case OP_MOVI:
        return body.types[in.a] == body.types[in.b] && isNumber(body.types[in.a]);
    case OP_SIZEA:
        return plain(in.b);
    case kGuard:
    case OP_DIVI: case OP_MODI: case OP_DIVF: case OP_MODF: case OP_DIVVF:
    case OP_GETAI: case OP_GETAF: case OP_GETAV: case OP_SETAI: case OP_SETAF: case OP_SETAV:
        return true;
    case OP_CALLN:
    {
        const Site& site = body.sites[size_t(in.i)];
        const auto  number = [](Type t) { return isNumber(t) || t == Type::kVector; };
        for (const Site::Arg& a : site.args)
            if (!number(a.type))
                return false;
        return !site.native->runsScript && number(site.result);
    }
    default:
        return isPure(in.op) || isJump(in.op);
    }
}

namespace {

constexpr Type I = Type::kInt, F = Type::kFloat, V = Type::kVector, N = Type::kVoid;

/// Types of a, b, c; a is written unless `reads`.
struct Row { uint16_t op; Type a, b, c; bool reads = false; };

// clang-format off
constexpr Row kRows[] = {
    {OP_MOVV, V, V, N},  {OP_I2F, F, I, N},   {OP_F2I, I, F, N},   {OP_V2F, F, V, N},   {OP_F2V, V, F, N},  {OP_I2S, N, I, N},
    {OP_F2S, N, F, N},   {OP_V2S, N, V, N},   {OP_S2F, F, N, N},   {OP_FTOB, I, F, N},  {OP_VTOB, I, V, N}, {OP_D2B, I, N, N},
    {OP_ADDI, I, I, I},  {OP_SUBI, I, I, I},  {OP_MULI, I, I, I},  {OP_DIVI, I, I, I},  {OP_MODI, I, I, I}, {OP_NEGI, I, I, N},
    {OP_NOTI, I, I, N},  {OP_ADDF, F, F, F},  {OP_SUBF, F, F, F},  {OP_MULF, F, F, F},  {OP_DIVF, F, F, F}, {OP_MODF, F, F, F},
    {OP_NEGF, F, F, N},  {OP_NOTF, I, F, N},  {OP_ADDV, V, V, V},  {OP_SUBV, V, V, V},  {OP_MULVF, V, V, F}, {OP_DIVVF, V, V, F},
    {OP_DOTV, F, V, V},  {OP_CROSSV, V, V, V}, {OP_BINV, V, V, V}, {OP_NEGV, V, V, N},  {OP_MKV, V, F, F},
    {OP_EQI, I, I, I},   {OP_NEI, I, I, I},   {OP_LTI, I, I, I},   {OP_LEI, I, I, I},   {OP_EQF, I, F, F},  {OP_NEF, I, F, F},
    {OP_LTF, I, F, F},   {OP_LEF, I, F, F},   {OP_EQS, I, N, N},   {OP_NES, I, N, N},   {OP_LTS, I, N, N},  {OP_LES, I, N, N},
    {OP_EQV, I, V, V},   {OP_NEV, I, V, V},   {OP_JZ, I, N, N, true}, {OP_JNZ, I, N, N, true},
    {OP_JEQI, I, I, N, true}, {OP_JNEI, I, I, N, true}, {OP_JLTI, I, I, N, true}, {OP_JLEI, I, I, N, true},
    {OP_JEQF, F, F, N, true}, {OP_JNEF, F, F, N, true}, {OP_JLTF, F, F, N, true}, {OP_JLEF, F, F, N, true},
    {OP_JNLTF, F, F, N, true}, {OP_JNLEF, F, F, N, true},
    {OP_GETAI, I, N, I}, {OP_GETAF, F, N, I}, {OP_GETAV, V, N, I}, {OP_GETAS, N, N, I}, {OP_SETAI, N, I, I}, {OP_SETAF, N, I, F},
    {OP_SETAV, N, I, V}, {OP_SETAS, N, I, N}, {OP_APPI, N, I, N},  {OP_APPF, N, F, N},  {OP_APPV, N, V, N}, {OP_SIZEA, I, N, N},
    {OP_GETM, F, N, I},  {OP_SETM, N, I, I},  {OP_INDEXD, N, N, I}, {OP_SETD, N, I, N}, {OP_SIZED, I, N, N},
    {OP_MATH1, F, F, N}, {OP_MATH2, F, F, F}, {OP_MINI, I, I, I},  {OP_MAXI, I, I, I},  {OP_ABSI, I, I, N}, {OP_MINF, F, F, F},
    {OP_MAXF, F, F, F},  {OP_ABSF, F, F, N},  {OP_SQRTF, F, F, N},
};
// clang-format on

const Row* rowOf(uint16_t op)
{
    static const auto table = [] {
        std::vector<const Row*> all(kInit + 1, nullptr);
        for (const Row& r : kRows)
            all[r.op] = &r;
        return all;
    }();
    return table[op];
}

}  // namespace

Effects effectsOf(const Body& body, const Instr& in)
{
    Effects e;
    if (const Row* r = rowOf(in.op))
    {
        if (r->reads)
            e.use(in.a, r->a);
        else
            e.def(in.a, r->a);
        e.use(in.b, r->b);
        e.use(in.c, r->c);
    }
    const auto calls = [&](bool result) {
        const Site& site = body.sites[size_t(in.i)];
        for (const Site::Arg& a : site.args)
            e.use(a.reg, a.type);
        if (result)
            e.def(in.a, site.result);
    };
    switch (in.op)
    {
    case OP_MOV:
    case OP_MOVI:
        e.def(in.a, body.types[in.a]);
        e.use(in.b, body.types[in.b]);
        break;
    case kInit: e.def(in.a, body.types[in.a]); break;
    case OP_INCI:
        e.use(in.a);
        e.def(in.a);
        break;
    case OP_TOD:   e.use(in.b, Type(in.i)); break;
    case OP_FROMD: e.def(in.a, Type(in.i)); break;
    case OP_CONV:
        e.use(in.b, Type(in.c));
        e.def(in.a, Type(in.i));
        break;
    case OP_MKV:
    case OP_SETM:
        e.use(uint16_t(in.i), F);
        break;
    case OP_GETM:  e.use(uint16_t(in.i), I); break;
    case OP_FRESH: if (in.c) e.use(in.b); break;
    case OP_CALLP:
    case OP_CALLN: calls(true); break;
    case OP_CALLD: calls(false); break;
    case OP_RET:   e.use(in.a, body.returns); break;
    default: break;
    }
    return e;
}

}  // namespace mirk::mel::native

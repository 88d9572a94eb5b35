// The machine's code. Registers are numbered within a frame; constants are registers that a frame starts with.
// Suffixes tell types: I int, F float, V vector (three registers), S string, D run-time typed.
#pragma once
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "mel/error.h"
#include "mel/literals.h"
#include "mel/objects.h"

namespace mirk::mel {

// a, b, c: registers; i: immediate or jump target
#define MIRK_MEL_OPS(X) \
    X(MOV) X(MOVI) X(MOVV) X(MOVS) \
    X(I2F) X(F2I) X(V2F) X(F2V) X(I2S) X(F2S) X(V2S) X(S2F) X(FTOB) X(VTOB) X(TOD) X(FROMD) X(D2B) X(CONV) \
    X(ADDI) X(SUBI) X(MULI) X(DIVI) X(MODI) X(NEGI) X(NOTI) X(INCI) \
    X(ADDF) X(SUBF) X(MULF) X(DIVF) X(MODF) X(NEGF) X(NOTF) \
    X(ADDV) X(SUBV) X(MULVF) X(DIVVF) X(DOTV) X(CROSSV) X(BINV) X(NEGV) X(MKV) \
    X(CONCAT) X(APPEND) \
    X(EQI) X(NEI) X(LTI) X(LEI) X(EQF) X(NEF) X(LTF) X(LEF) X(EQS) X(NES) X(LTS) X(LES) X(EQV) X(NEV) \
    X(JMP) X(JZ) X(JNZ) \
    X(JEQI) X(JNEI) X(JLTI) X(JLEI) X(JEQF) X(JNEF) X(JLTF) X(JLEF) X(JNLTF) X(JNLEF) \
    X(GETAI) X(GETAF) X(GETAV) X(GETAS) X(SETAI) X(SETAF) X(SETAV) X(SETAS) \
    X(APPI) X(APPF) X(APPV) X(APPS) X(SIZEA) X(LOADA) X(FRESH) X(COPYA) X(SWAPA) \
    X(NEWM) X(MKM) X(GETM) X(SETM) X(BINM) X(COPYM) X(INDEXD) X(SETD) X(ASSIGND) X(SIZED) X(BINDYN) \
    X(MATH1) X(MATH2) X(MINI) X(MAXI) X(ABSI) X(MINF) X(MAXF) X(ABSF) X(SQRTF) \
    X(CALLP) X(CALLD) X(CALLN) X(RET) X(RETV) X(DEFP)

// What the machine runs in place of the first of usual neighbours: all of them in one go. The others stay behind it, for
// jumps that lead there.
#define MIRK_MEL_FUSED(X) \
    X(INCI_JLTI) X(ADDI_INCI_JLTI) X(SETAI_INCI_JLTI) X(ADDI_RET) \
    X(ADDI_ADDI) X(MULI_ADDI) X(GETAF_GETAF) X(GETAF_MOV) X(MOV_GETAF) X(SETAF_SETAF) X(MULF_ADDF)

enum OpCode : uint16_t
{
#define X(name) OP_##name,
    MIRK_MEL_OPS(X)
    MIRK_MEL_FUSED(X)
#undef X
};

struct Instr
{
    uint16_t op, a, b, c;
    int32_t  i;
};

struct Function;

/// Where a procedure's name leads now. Callers keep the slot, so a redefinition reaches them.
struct ProcSlot
{
    std::string                     name;
    std::shared_ptr<const Function> function;   ///< null: not defined (yet)
    const Function*                 current = nullptr;   ///< the same, where machine code looks
    bool                            local = false;
};

/// A variable that outlives frames. Arrays keep their object for good.
struct Global
{
    std::string name;
    Type        type = Type::kVoid;
    Slot        value[3] = {};
};

/// A global as a frame sees it: scalars are copied into registers at the start and written back before anything that
/// could look at them; arrays are the same object.
struct Bound
{
    Global*  global;
    Type     type;
    uint16_t reg;
    bool     written;
};

class NativeCall;
class NativeCode;
struct Native;

/// One place of a call.
struct Site
{
    struct Arg { Type type; uint16_t reg; };

    std::vector<Arg>   args;               ///< kVoid: the next one of `literals`, so that long lists of numbers take no registers
    std::vector<Value> literals;           ///< or the one array that LOADA makes
    std::string      name;                 ///< of a procedure or command found at run time
    ProcSlot*        proc = nullptr;       ///< a procedure whose signature was known
    uint64_t         signature = 0;        ///< what it was compiled for
    const Native*    native = nullptr;
    Type             result = Type::kVoid; ///< of a known procedure
};

/// A `catch`: errors of [from, to) go on at `target`; the result register says whether there was one.
struct Handler
{
    uint32_t from, to, target;
    uint16_t result;
    bool     quiet;
};

/// A number of the text that the code does not depend on: texts that differ only in such numbers share their code.
struct Parameter
{
    uint16_t reg;
    uint32_t literal;    ///< which number of the text
    bool     isFloat, negate;
};

/// What the functions of equal texts share.
struct Body
{
    Body();
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;
    ~Body();

    std::string                   name;
    std::vector<Instr>            code;
    std::vector<Instr>            steps;      ///< the code as the machine runs it: the same places, neighbours fused
    bool                          simple = false;   ///< frames own no objects and see no globals
    std::vector<uint32_t>         offsets;    ///< where in the first text each instruction comes from
    std::vector<Slot>             start;      ///< the registers of a fresh frame: constants, else zero
    std::vector<Type>             types;      ///< of the registers; the parts of a vector are floats
    std::vector<Parameter>        parameters; ///< constants that are numbers of the text
    std::vector<uint16_t>         heap;       ///< registers that own an object
    std::vector<Bound>            bound;
    std::vector<Site>             sites;
    std::vector<Handler>          handlers;   ///< inner before outer
    std::vector<std::pair<Type, uint16_t>> params;
    Type                          returns = Type::kVoid;
    uint64_t                      signature = 0;
    std::vector<Str*>             texts;      ///< constants, owned

    mutable std::unique_ptr<NativeCode> native;   ///< once it was hot
    mutable bool                  nativeTried = false;
    mutable int32_t               calls = 0, remakes = 0;
};

/// How positions of the first text of a body move in another one, whose numbers have other lengths.
struct Shifts
{
    std::vector<uint32_t> begins;   ///< of the numbers in the first text
    std::vector<int32_t>  behind;   ///< what to add behind each of them

    uint32_t moved(uint32_t offset) const;
};

/// A procedure or one top-level statement, compiled.
struct Function
{
    std::shared_ptr<const Body>   body;
    std::shared_ptr<const Source> source;
    std::shared_ptr<const Shifts> shifts;     ///< null for the first text
    std::vector<Slot>             start;      ///< that of the body with the numbers of this text
    std::vector<std::pair<ProcSlot*, std::shared_ptr<const Function>>> procs;   ///< what DEFP defines

    const std::string& name() const { return body->name; }
    /// The place in `source` of an instruction.
    uint32_t offset(size_t pc) const { return shifts ? shifts->moved(body->offsets[pc]) : body->offsets[pc]; }
};

/// A compiled text.
struct Unit
{
    std::vector<std::shared_ptr<const Function>> statements;
    bool                                         hasResult = false;   ///< the last one gives the text's value
    std::unordered_map<std::string, ProcSlot*> locals;   ///< procedures of this file alone

    // what the code was compiled for
    struct UsedGlobal { Global* global; Type type; bool declared; };   ///< declared: takes the type anew
    struct UsedProc   { ProcSlot* slot; uint64_t signature; };
    std::vector<UsedGlobal> globals;
    std::vector<UsedProc>   procs;
    bool                    reusable = true;
};

/// Writes the numbers of a text into the registers of a fresh frame.
void setParameters(const Body& body, std::span<const Literal> literals, std::vector<Slot>& start);

/// The code with neighbours fused.
std::vector<Instr> fused(const std::vector<Instr>& code);

/// Number of a parameter list and result, for comparing.
uint64_t signatureOf(Type returns, const std::vector<Type>& params);

}  // namespace mirk::mel

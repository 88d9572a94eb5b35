// The code generator: one pass over the tree, which finds types on the way. Shared by the files that compile
// statements (compiler.cpp), expressions (expressions.cpp) and calls (calls.cpp).
#pragma once
#include <map>

#include "mel/ast.h"
#include "mel/literals.h"
#include "mel/native.h"
#include "mel/symbols.h"

namespace mirk::mel {

/// Where a value stands.
struct Operand
{
    Type     type = Type::kVoid;
    uint16_t reg = 0;
    bool     temp = false;       ///< nobody else knows the register
    bool     constant = false;
    bool     global = false;     ///< a bound global: calls may change it
    double   number = 0;         ///< of a numeric constant
    int      literal = -1;       ///< the constant is a parameter: this number of the text
    bool     negate = false;     ///< ... with its sign turned
};

struct Variable
{
    Type     type = Type::kVoid;
    uint16_t reg = 0;
    int      bound = -1;         ///< index in Function::bound
};

/// A procedure as callers in this text see it.
struct ProcInfo
{
    ProcSlot*         slot = nullptr;
    Type              returns = Type::kVoid;
    std::vector<Type> params;
};

/// What is shared by the functions of one text.
struct UnitState
{
    std::shared_ptr<const Source>             source;
    std::shared_ptr<Unit>                     unit;
    std::unordered_map<std::string, ProcInfo> procs;
    std::vector<Global*>                      declared;
    std::vector<std::pair<Global*, Global>>   replaced;   ///< variables that got another type, as they were
    std::vector<Literal>&                     literals;

    void uses(Global& global, Type type, bool declared);
};

/// Generates one function: a procedure or a top-level statement.
class Codegen
{
public:
    Codegen(UnitState& unit, std::string name, bool top);

    std::shared_ptr<const Function> procedure(const Node* n);
    /// `wantResult`: the statement's value is returned.
    std::shared_ptr<const Function> topStatement(const Node* n, bool wantResult);

private:
    // compiler.cpp
    [[noreturn]] void fail(const Node* n, const std::string& message) const;
    int      emit(OpCode op, int a = 0, int b = 0, int c = 0, int i = 0);
    int      here() const { return int(fn_->code.size()); }
    void     patch(int instruction) { fn_->code[size_t(instruction)].i = landing_ = here(); }
    void     patch(const std::vector<int>& all) { for (int i : all) patch(i); }
    uint16_t newRegister(Type t);
    Operand  temp(Type t);
    void     freeTemps(size_t mark);
    Operand  intConstant(int32_t value);
    Operand  floatConstant(double value);
    Operand  number(const Node* n);
    Operand  parameter(size_t literal, Type t, bool negate);
    Operand  textConstant(const std::string& value);
    Operand  zero(Type t);
    std::shared_ptr<const Function> finish();

    Variable* find(const std::string& name);
    Variable& declareLocal(const Node* n, const std::string& name, Type t);
    Variable& declareImplicit(const Node* n, const std::string& name, Type t);
    Variable& declareGlobal(const Node* n, const std::string& name, Type t);
    Variable& bind(Global& g);
    void      written(const Variable& v) { if (v.bound >= 0) fn_->bound[size_t(v.bound)].written = true; }
    bool      atTop() const { return top_ && scopes_.size() == 1; }

    void statement(const Node* n);
    void statementBody(const Node* n);
    void declaration(const Node* n);
    void declare(const Node* decl, const Node* v);
    void ifStatement(const Node* n);
    void whileStatement(const Node* n);
    void doStatement(const Node* n);
    void forStatement(const Node* n);
    void forInStatement(const Node* n);
    void switchStatement(const Node* n);
    void returnStatement(const Node* n);
    void scoped(const Node* n);
    void listItem(const Node* n);
    void beginLoop() { loops_.emplace_back(); }
    void endLoop();
    void jumpOut(const Node* n);

    // expressions.cpp
    Type    infer(const Node* n);
    Type    common(const Node* at, Type a, Type b);
    Operand expression(const Node* n);
    void    discard(const Node* n);
    /// Evaluates into a register of the type.
    void    into(const Node* n, Type t, int reg);
    Operand converted(const Node* at, Operand o, Type t);
    void    convertInto(const Node* at, Operand o, Type t, int reg);
    void    move(Type t, int to, const Operand& from);
    Operand value(const Node* n, Type t) { return converted(n, expression(n), t); }
    Operand kept(Operand o, bool mutated, bool called);
    std::vector<int> condition(const Node* n, bool jumpIf);
    int     fusedJump(Op op, bool jumpIf, const Operand& l, const Operand& r);

    Operand variable(const Node* n);
    Operand index(const Node* n);
    Operand component(const Node* n);
    Operand vectorLiteral(const Node* n);
    Operand matrixLiteral(const Node* n);
    Operand arrayLiteral(const Node* n);
    Operand unary(const Node* n);
    Operand binary(const Node* n);
    Operand binaryOperation(const Node* at, Op op, Operand l, Operand r);
    Operand vectorOperation(const Node* at, Op op, Operand l, Operand r);
    Operand compareText(const Node* at, Op op, Operand l, Operand r);
    Operand matrixOperation(const Node* at, Op op, Operand l, Operand r);
    Operand dynOperation(const Node* at, Op op, Operand l, Operand r);
    Operand logical(const Node* n);
    Operand ternary(const Node* n);
    Operand assign(const Node* n);
    Operand assignVariable(const Node* n);
    Operand assignElement(const Node* n);
    Operand increment(const Node* n, bool discarded);
    struct Element { Operand base, first, second; };
    Element element(const Node* n, const Node* other);
    Operand load(const Node* at, const Element& e);
    void    store(const Node* at, const Element& e, const Operand& v);
    Type    elementTypeOf(const Element& e) const;
    void    markElementWritten(const Node* base);
    static Type operationType(Op op, Type l, Type r);

    // calls.cpp
    Operand call(const Node* n);
    Type    callType(const Node* n);
    const ProcInfo* knownProc(const std::string& name);
    const Native*   chooseNative(const Node* n, const std::vector<Type>& types, std::string* why);
    Operand catchCall(const Node* n);
    Operand sizeCall(const Node* n);
    Operand clearCall(const Node* n);
    Operand procCall(const Node* n, const ProcInfo& proc);
    Operand nativeCall(const Node* n, const Native& native);
    Operand dynamicCall(const Node* n);
    Operand argument(const Node* n, size_t k, Type t, std::vector<std::pair<const Node*, Operand>>& back);
    void    giveBack(const std::vector<std::pair<const Node*, Operand>>& back);
    int     addSite(Site site);

    using Scope = std::unordered_map<std::string, Variable>;
    struct Loop { std::vector<int> breaks, continues; bool isSwitch = false; };

    UnitState&                               unit_;
    std::shared_ptr<Body>                    fn_;
    std::vector<std::pair<ProcSlot*, std::shared_ptr<const Function>>> procs_;
    bool                                     top_;
    bool                                     inProc_ = false;
    uint32_t                                 offset_ = 0;
    int                                      landing_ = -1;   ///< the last place that a jump leads to
    std::vector<Scope>                       scopes_{1};
    std::vector<Loop>                        loops_;
    std::map<Type, std::vector<uint16_t>>    free_;
    std::vector<std::pair<Type, uint16_t>>   temps_;
    std::unordered_map<int32_t, uint16_t>    ints_;
    std::unordered_map<uint64_t, uint16_t>   floats_;
    std::map<std::pair<size_t, int>, uint16_t> parameters_;
    std::unordered_map<std::string, uint16_t> texts_;
    std::unordered_map<Global*, Variable>    globals_;
};

}  // namespace mirk::mel

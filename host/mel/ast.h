// Syntax trees. Nodes live in an arena that goes when compiling ends, so nothing here owns anything.
#pragma once
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace mirk::mel {

/// The static types. kDyn is a value whose type shows only at run time (what a command returns); kEmptyArray is `{}`.
enum class Type : uint8_t { kVoid, kInt, kFloat, kString, kVector, kMatrix, kInts, kFloats, kStrings, kVectors, kDyn, kEmptyArray };

inline bool isArray(Type t) { return (t >= Type::kInts && t <= Type::kVectors) || t == Type::kEmptyArray; }
inline bool isNumber(Type t) { return t == Type::kInt || t == Type::kFloat; }
const char* typeName(Type t);
Type        arrayType(Type element);
Type        elementType(Type array);

enum class Kind : uint8_t
{
    // expressions
    kIntLit, kFloatLit, kStrLit, kVar, kIndex, kComponent, kVectorLit, kMatrixLit, kArrayLit, kUnary, kBinary, kTernary,
    kAssign, kIncrement, kCall, kCast,
    // statements
    kExprStmt, kDecl, kBlock, kIf, kWhile, kDo, kFor, kForIn, kSwitch, kCase, kBreak, kContinue, kReturn, kProc, kEmpty, kList,
};

enum Op : uint8_t
{
    kAdd, kSub, kMul, kDiv, kMod, kCross, kEq, kNe, kLt, kLe, kGt, kGe, kAnd, kOr, kNot, kNeg, kNoOp,
};

/// One node. What the fields mean for each kind:
///   kVar, kCall, kProc: `text` is the name; kComponent: `op` is 0, 1, 2 for x, y, z;
///   kIndex: base, index [, second index]; kMatrixLit: rows of `number` elements each;
///   kAssign: target, value, `op` for compound forms; kIncrement: `number` is +1 or -1, `flag` set for the prefix form;
///   kDecl: variables, each a kVar with `type`, kids: size or null, initializer or null; `flag` set for global;
///   kIf: condition, body, condition, body, ... [, else]; kFor: init, conditions, step as kList, body;
///   kForIn: variable, array, body; kSwitch: value, kCase...: value or null, statements; kProc: parameters..., body;
///   `flag` of kCall: written as a command.
struct Node
{
    Kind               kind;
    Type               type = Type::kVoid;
    Op                 op = kNoOp;
    bool               flag = false;
    bool               mutates = false;   ///< assigns somewhere inside
    bool               calls = false;     ///< calls something inside
    uint32_t           offset = 0;
    double             number = 0;
    std::string        text;
    std::vector<Node*> kids;
};

using Arena = std::deque<Node>;

}  // namespace mirk::mel

// Operations that are too rare for instructions of their own: matrices, values typed at run time.
#pragma once
#include "mel/ast.h"
#include "mel/objects.h"

namespace mirk::mel {

/// All throw command::Error where kinds or sizes do not fit.
Value   dynamicArithmetic(Op op, const Value& l, const Value& r);
Value   matrixArithmetic(Op op, const Value& l, const Value& r);
Vec3    vectorArithmetic(Op op, const Vec3& l, const Vec3& r);
Value   elementOf(const Value& array, int32_t index);
void    setElement(Value& array, int32_t index, const Value& element);
/// Elements of an array, 1 for a scalar, 0 for none; with `text` the length of a string.
int32_t sizeOf(const Value& v, bool text);
/// The string in a register, never null.
Str*    ownText(Slot& s);
void    freshArray(Type type, Slot& s, int32_t room);
Mat*    newMatrix(int rows, int columns);
double* matrixCell(command::Matrix& m, int32_t row, int32_t column);
/// Copies into a matrix variable, whose size is fixed.
void    assignMatrix(Slot& to, Slot& from);

}  // namespace mirk::mel

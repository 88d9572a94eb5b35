#include "arrays/arrayBlend.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <type_traits>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

enum Operation : short { kBlend, kAdd, kMinus, kMultiply, kDivide };

bool isVector(const ArrayView& array) { return array.kind == MFn::kVectorArrayData; }

/// The wider kind of the two: vector over double over int.
OutArray::Kind wider(const ArrayView& a, const ArrayView& b)
{
    if (isVector(a) || isVector(b))
        return OutArray::kVectors;
    return a.kind == MFn::kIntArrayData && b.kind == MFn::kIntArrayData ? OutArray::kInts : OutArray::kDoubles;
}

/// True if each element of one has an element of the other, or each vector three scalars.
bool lengthsFit(const ArrayView& a, const ArrayView& b)
{
    if (a.length == b.length)
        return true;
    return isVector(a) != isVector(b) && a.valueCount() == b.valueCount();
}

/// `in1[i] op in2[i]` for n values of the result; a side of one scalar a vector gives it three times.
template <bool kSpread1, bool kSpread2, class A, class B, class Out, class Op>
void combine(const A* in1, const B* in2, Out* out, std::size_t n, Op op)
{
    if constexpr (!kSpread1 && !kSpread2) {
        for (std::size_t i = 0; i < n; ++i)
            out[i] = steps::stored<Out>(op(in1[i], in2[i]));
    } else {
        for (std::size_t i = 0; i < n; i += 3)
            for (std::size_t c = 0; c < 3; ++c)
                out[i + c] = steps::stored<Out>(op(in1[kSpread1 ? i / 3 : i + c], in2[kSpread2 ? i / 3 : i + c]));
    }
}

/// Calls f with the operation as a function of two doubles. Two ints go through doubles as well: a zero divisor and
/// results out of range are then no trap.
template <class F>
void withOperation(short operation, double blend, F&& f)
{
    switch (operation) {
    case kAdd:      return f([](double a, double b) { return a + b; });
    case kMinus:    return f([](double a, double b) { return a - b; });
    case kMultiply: return f([](double a, double b) { return a * b; });
    case kDivide:   return f([](double a, double b) { return a / b; });
    default:        return f([blend, rest = 1.0 - blend](double a, double b) { return a * blend + b * rest; });
    }
}

template <class Op>
void apply(Op op, const ArrayView& in1, const ArrayView& in2, unsigned int length, OutArray& out)
{
    const std::size_t n = std::size_t(length) * (isVector(in1) || isVector(in2) ? 3 : 1);
    const bool        spread1 = in1.valueCount() < n, spread2 = in2.valueCount() < n;
    withValues(in1, [&](const auto* a) {
        withValues(in2, [&](const auto* b) {
            using A = std::decay_t<decltype(*a)>;
            using B = std::decay_t<decltype(*b)>;
            constexpr bool ints = std::is_same_v<A, int> && std::is_same_v<B, int>;
            std::conditional_t<ints, int, double>* first = nullptr;
            out.resize(length, first);
            if (spread1)
                combine<true, false>(a, b, first, n, op);
            else if (spread2)
                combine<false, true>(a, b, first, n, op);
            else
                combine<false, false>(a, b, first, n, op);
        });
    });
}

} // namespace

MStatus arrayBlend::initialize()
{
    const auto  kinds = {MFnData::kIntArray, MFnData::kDoubleArray, MFnData::kVectorArray};
    const attr::Row rows[] = {
        attr::generic(aInArray1, "inArray1", "ia1", kinds, attr::kInput),
        attr::generic(aInArray2, "inArray2", "ia2", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        attr::enumeration(aOperation, "operation", "o",
                          {{"Blend", kBlend}, {"Add", kAdd}, {"Minus", kMinus}, {"Multiply", kMultiply}, {"Divide", kDivide}},
                          kBlend, attr::kControl),
        attr::within(attr::numeric(aBlend, "blend", "b", MFnNumericData::kDouble, 0.5, attr::kControl), 0.0, 1.0),
    };
    return attr::declare(rows);
}

MStatus arrayBlend::compute(const MPlug& plug, MDataBlock& block)
{
    if (plug != aOutArray)                                               // plug test; the node state is not looked at
        return MS::kUnknownParameter;

    const auto  kinds = {MFn::kIntArrayData, MFn::kDoubleArrayData, MFn::kVectorArrayData};
    const ArrayView in1 = viewArray(block, aInArray1, kinds);            // work
    const ArrayView in2 = viewArray(block, aInArray2, kinds);
    const short     operation = block.inputValue(aOperation).asShort();
    const bool      blends = operation <= kBlend || operation > kDivide;
    if (in1.kind == MFn::kInvalid || in2.kind == MFn::kInvalid) {
        warn(plug, ": Invalid input types.");
        return MS::kSuccess;
    }
    if (!lengthsFit(in1, in2)) {
        warn(plug, ": Both arrays need to be of an equal length.");
        return MS::kSuccess;
    }
    if (blends && in1.kind != in2.kind) {
        warn(plug, ": Blend operation requires both input data types to be the same.");
        return MS::kSuccess;
    }
    const unsigned int length = isVector(in2) ? in2.length : in1.length;
    OutArray           out(wider(in1, in2));
    withOperation(operation, block.inputValue(aBlend).asDouble(),
                  [&](auto op) { apply(op, in1, in2, length, out); });
    return out.publish(block, aOutArray);                                // write
}

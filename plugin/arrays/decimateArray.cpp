#include "arrays/decimateArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

MStatus decimateArray::initialize()
{
    const auto kinds = {MFnData::kIntArray, MFnData::kFloatArray, MFnData::kDoubleArray, MFnData::kVectorArray};
    const auto     step = [](MObject& attribute, const char* longName, const char* shortName, double value) {
        return attr::atLeast(attr::numeric(attribute, longName, shortName, MFnNumericData::kInt, value, attr::kControl), 1.0);
    };
    const attr::Row rows[] = {
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa",   // points come in over connections of generic attributes
                      {MFnData::kIntArray, MFnData::kFloatArray, MFnData::kDoubleArray, MFnData::kVectorArray,
                       MFnData::kPointArray}, attr::kOutput),
        attr::compound(aStep, "step", "stp", {step(aStepA, "stepA", "stpa", 1.0), step(aStepB, "stepB", "stpb", 2.0)},
                       attr::kControl),
    };
    return attr::declare(rows);
}

MStatus decimateArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;
    const ArrayView in = viewArray(block, aInArray);
    if (in.kind == MFn::kInvalid)                                        // another kind: the old value stays
        return MS::kSuccess;

    MDataHandle step = block.inputValue(aStep);                          // work
    int&        keep = step.child(aStepA).asInt();                       // put right in the block as well
    int&        of = step.child(aStepB).asInt();
    keep = std::max(keep, 1);
    of = std::max(of, keep);
    const unsigned int length = std::max(in.length / unsigned(of) * unsigned(keep), 1u);

    OutArray out = OutArray::like(in);
    withValues(in, [&](auto* from) {
        std::remove_const_t<std::remove_pointer_t<decltype(from)>>* to = nullptr;
        out.resize(length, to);
        if (in.length == 0) {                                            // one zero, a point at the origin
            std::fill_n(to, in.stride, 0);
            if (in.kind == MFn::kPointArrayData)
                to[3] = 1;
        }
        steps::decimate(from, in.length, in.stride, std::size_t(keep), std::size_t(of), to, length);
    });
    return out.publish(block, aOutArray);                                // write
}

#include "arrays/colorAndAlphaToRgba.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

MStatus colorAndAlphaToRgba::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::typed(aInRgbPP, "inRgbPP", "irgbpp", MFnData::kVectorArray, attr::kInput),
        attr::typed(aInAlphaPP, "inAlphaPP", "iapp", MFnData::kDoubleArray, attr::kInput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", MFnData::kDoubleArray, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus colorAndAlphaToRgba::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutRgbaPP)                                              // plug test
        return MS::kUnknownParameter;
    if (!block.inputValue(aEnvelope).asBool())                           // switch: the old value stays
        return MS::kSuccess;

    const ArrayView rgb = viewArray(block, aInRgbPP, {MFn::kVectorArrayData});   // work
    const ArrayView alpha = viewArray(block, aInAlphaPP, {MFn::kDoubleArrayData});
    if (rgb.length != alpha.length)
        warn(plug, ": Input color and alpha arrays have different length. Result will be unpredictable.");
    const unsigned int count = std::max(rgb.length, alpha.length);
    if (!lengthFits(plug, count, 4))
        return publishEmpty(block, aOutRgbaPP, OutArray::kDoubles);
    OutArray out(OutArray::kDoubles);
    double*  rgba = out.resize(4 * count);
    for (unsigned int i = 0; i < count; ++i) {
        rgba = i < rgb.length ? std::copy_n(rgb.doubles + 3 * std::size_t(i), 3, rgba) : std::fill_n(rgba, 3, 0.0);
        *rgba++ = i < alpha.length ? alpha.doubles[i] : 0.0;
    }
    return out.publish(block, aOutRgbaPP);                               // write
}

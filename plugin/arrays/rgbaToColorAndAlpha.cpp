#include "arrays/rgbaToColorAndAlpha.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

MStatus rgbaToColorAndAlpha::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::generic(aInRgbaPP, "inRgbaPP", "irgbapp", {MFnData::kDoubleArray}, attr::kInput),
        attr::typed(aOutRgbPP, "outRgbPP", "orgbpp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutAlphaPP, "outAlphaPP", "oapp", MFnData::kDoubleArray, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus rgbaToColorAndAlpha::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutRgbPP && plug != aOutAlphaPP)                        // plug test: one run fills both
        return MS::kUnknownParameter;
    if (!block.inputValue(aEnvelope).asBool())                           // switch: the old values stay
        return MS::kSuccess;

    const ArrayView in = viewArray(block, aInRgbaPP, {MFn::kDoubleArrayData});   // work
    const bool      whole = in.length % 4 == 0;
    if (!whole)
        warn(plug, ": Cannot split RGBA PP data to color and alpha. Length of the inRgbaPP array should divide by 4 "
                   "without reminder.");
    const unsigned int count = whole ? in.length / 4 : 0;
    OutArray           colors(OutArray::kVectors), alphas(OutArray::kDoubles);
    double *           rgb = colors.resize(count), *alpha = alphas.resize(count);
    const double*      rgba = in.doubles;
    for (unsigned int i = 0; i < count; ++i, rgba += 4) {
        rgb = std::copy_n(rgba, 3, rgb);
        alpha[i] = rgba[3];
    }
    const MStatus status = colors.publish(block, aOutRgbPP);             // write
    return status ? alphas.publish(block, aOutAlphaPP) : status;
}

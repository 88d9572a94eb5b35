#include "arrays/arrayToArray.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include <string>
#include <vector>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

enum OutData : short { kVectors, kPoints };

} // namespace

MStatus arrayToArray::initialize()
{
    const auto kinds = {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kPointArray};
    std::vector<attr::Row> rows = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl)};
    for (int input = 0; input < 4; ++input) {
        const std::string n = std::to_string(input + 1);
        rows.push_back(attr::generic(aInArray[input], ("inArray" + n).c_str(), ("ia" + n).c_str(), kinds, attr::kInput));
    }
    for (int input = 0; input < 4; ++input) {
        for (int channel = 0; channel < 4; ++channel) {
            const std::string n = std::to_string(input + 1);
            const bool        on = input == 0 ? channel < 3 : input == 1 && channel == 3;
            rows.push_back(attr::numeric(aRead[input][channel], ("read" + std::string(1, "XYZW"[channel]) + n).c_str(),
                                         ("r" + std::string(1, "xyzw"[channel]) + n).c_str(), MFnNumericData::kBoolean,
                                         on, attr::kControl));
        }
    }
    rows.push_back(attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput));
    rows.push_back(attr::enumeration(aOutDataType, "outDataType", "odt",
                                     {{"vectors (xyz / rgb)", kVectors}, {"points (xyzw / rgba)", kPoints}}, kVectors,
                                     attr::kControl));
    return attr::declare(rows.data(), rows.size());
}

MStatus arrayToArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kSuccess;
    if (!block.inputValue(aEnvelope).asBool())                           // switch: the old value stays
        return MS::kSuccess;

    ArrayView       arrays[4];                                           // work
    steps::Channels sources[4];
    unsigned int    length = 0;
    for (int input = 0; input < 4; ++input) {
        if (!MPlug(thisMObject(), aInArray[input]).isConnected())
            continue;
        arrays[input] = viewArray(block, aInArray[input],
                                  {MFn::kDoubleArrayData, MFn::kVectorArrayData, MFn::kPointArrayData});
        sources[input] = {arrays[input].doubles, arrays[input].length, arrays[input].stride, {}};
        for (int channel = 0; channel < 4; ++channel)
            sources[input].reads[channel] = block.inputValue(aRead[input][channel]).asBool();
        length = std::max(length, arrays[input].length);
    }
    const bool points = block.inputValue(aOutDataType).asShort() == kPoints;
    OutArray   out(points ? OutArray::kPoints : OutArray::kVectors);
    steps::gatherChannels(sources, 4, points ? 4 : 3, out.resize(length), length);
    return out.publish(block, aOutArray);                                // write
}

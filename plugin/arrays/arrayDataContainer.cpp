#include "arrays/arrayDataContainer.h"

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnAttribute.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "arrays/arraySteps.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

/// The array cached for a frame; null if there is none.
MObject cachedFrame(MDataBlock& block, const MObject& cache, int frame)
{
    MArrayDataHandle frames = block.outputArrayValue(cache);
    if (frame < 0 || !frames.jumpToElement(unsigned(frame)))
        return MObject::kNullObj;
    return frames.outputValue().data();
}

void cacheFrame(MDataBlock& block, const MObject& cache, int frame, const MObject& array)
{
    if (frame < 0)   // there is no element for it
        return;
    MArrayDataHandle  frames = block.outputArrayValue(cache);
    MArrayDataBuilder builder = frames.builder();
    builder.addElement(unsigned(frame)).set(array);
    frames.set(builder);
}

} // namespace

MStatus arrayDataContainer::initialize()
{
    const auto kinds = {MFnData::kDoubleArray, MFnData::kVectorArray};
    const auto     real = [](MObject& attribute, const char* longName, const char* shortName, double value) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kDouble, value, attr::kControl);
    };
    const attr::Row cache = attr::generic(aCache, "cache", "cache", kinds, attr::kInput);
    MFnAttribute(aCache).setUsesArrayDataBuilder(true);
    const attr::Row rows[] = {
        real(aInTime, "inTime", "it", 0.0),
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::generic(aOutArray, "outArray", "oa", kinds, attr::kOutput),
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::enumeration(aMode, "mode", "m", {{"plus", 0}, {"minus", 1}, {"min", 2}, {"max", 3}}, 0, attr::kControl),
        attr::softRange(real(aSink, "sink", "s", 0.0), -1.0, 1.0),
        attr::softRange(real(aBaseValue, "baseValue", "bv", 0.0), -1.0, 1.0),
        attr::numeric(aClamp, "clamp", "c", MFnNumericData::kBoolean, 1.0, attr::kControl),
        real(aClampMin, "clampMin", "cmn", 0.0),
        real(aClampMax, "clampMax", "cmx", 1.0),
        real(aStartTime, "startTime", "st", 0.0),
        real(aEndTime, "endTime", "et", 0.0),
        attr::notConnectable(attr::hidden(attr::multi(cache))),
        attr::numeric(aFrameCache, "frameCache", "fd", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus arrayDataContainer::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug != aOutArray)                                               // plug test
        return MS::kUnknownParameter;
    if (!block.inputValue(aEnvelope).asBool())                           // switch: the old value stays
        return MS::kSuccess;

    const double time = block.inputValue(aInTime).asDouble();            // work
    const int    frame = steps::toInt(time);
    const bool   caches = block.inputValue(aFrameCache).asBool();
    MDataHandle  out = block.outputValue(aOutArray);
    if (caches) {
        const MObject cached = cachedFrame(block, aCache, frame);
        if (!cached.isNull())
            return out.set(cached);
    }
    MObject result = out.data();
    if (MPlug(thisMObject(), aInArray).isConnected())
        result = nextState(plug, block, time, result);
    if (result.isNull())
        return MS::kSuccess;
    const MStatus status = out.set(result);                              // write
    if (caches)
        cacheFrame(block, aCache, frame, result);
    return status;
}

MObject arrayDataContainer::nextState(const MPlug& plug, MDataBlock& block, double time, const MObject& previous)
{
    const ArrayView in = viewArray(block, aInArray, {MFn::kDoubleArrayData, MFn::kVectorArrayData});
    if (in.kind == MFn::kInvalid)
        return previous;
    ArrayView old = viewArray(previous);
    const bool running = time > block.inputValue(aStartTime).asDouble() && time <= block.inputValue(aEndTime).asDouble();
    if (!running || (old.kind == MFn::kVectorArrayData && in.kind == MFn::kDoubleArrayData))
        return in.data;
    if (old.kind != in.kind)
        old = ArrayView();
    if (old.length != in.length)
        warn(plug, ": Length of input array varies. Result may be unpredictable.");

    steps::Sink sink;
    sink.sink = block.inputValue(aSink).asDouble();
    sink.base = block.inputValue(aBaseValue).asDouble();
    sink.clamp = block.inputValue(aClamp).asBool();
    sink.min = block.inputValue(aClampMin).asDouble();
    sink.max = block.inputValue(aClampMax).asDouble();
    OutArray next = OutArray::like(in);
    double*  values = next.resize(std::max(old.length, in.length));
    steps::accumulate(sink, steps::Mix(block.inputValue(aMode).asShort()), old.doubles, old.valueCount(), in.doubles,
                      in.valueCount(), values);
    return next.data();
}

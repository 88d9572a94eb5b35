#include "arrays/arrayToDynArrays.h"

#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MStringArray.h>
#include <maya/MVectorArray.h>

#include <string>

#include "core/attr.h"
#include "core/node.h"
#include "core/text.h"

namespace {

/// Copies an array into the channel of a name. Other kinds of data, and a channel that has another kind, change nothing.
void store(MFnArrayAttrsData& arrays, const MString& name, MObject array)
{
    const auto copy = [&](auto values, auto channel) {
        MStatus status;
        auto    to = (arrays.*channel)(name, &status);
        if (status)
            values.copyTo(to);
    };
    switch (array.apiType()) {
    case MFn::kIntArrayData:    return copy(MFnIntArrayData(array), &MFnArrayAttrsData::intArray);
    case MFn::kDoubleArrayData: return copy(MFnDoubleArrayData(array), &MFnArrayAttrsData::doubleArray);
    case MFn::kVectorArrayData: return copy(MFnVectorArrayData(array), &MFnArrayAttrsData::vectorArray);
    case MFn::kStringArrayData: return copy(MFnStringArrayData(array), &MFnArrayAttrsData::stringArray);
    default:                    return;
    }
}

/// The channel of a name as an array of its own; null if there is none.
MObject taken(const MFnArrayAttrsData& arrays, const MString& name)
{
    MFnArrayAttrsData::Type type = MFnArrayAttrsData::kInvalid;
    if (!arrays.checkArrayExist(name, type))
        return MObject::kNullObj;
    switch (type) {
    case MFnArrayAttrsData::kVectorArray: return MFnVectorArrayData().create(arrays.getVectorData(name));
    case MFnArrayAttrsData::kDoubleArray: return MFnDoubleArrayData().create(arrays.getDoubleData(name));
    case MFnArrayAttrsData::kIntArray:    return MFnIntArrayData().create(arrays.getIntData(name));
    case MFnArrayAttrsData::kStringArray: return MFnStringArrayData().create(arrays.getStringData(name));
    default:                              return MObject::kNullObj;
    }
}

MString joined(const MStringArray& names)
{
    MString text;
    for (unsigned int i = 0; i < names.length(); ++i)
        text += i > 0 ? MString(" ") + names[i] : names[i];
    return text;
}

/// Each name that exists fills the next element that is there.
void takeOut(const MFnArrayAttrsData& arrays, const MString& names, const MPlug& elements)
{
    unsigned int next = 0;
    for (const std::string& name : split(names.asChar(), ' ')) {
        const MObject array = taken(arrays, name.c_str());
        if (!array.isNull() && next < elements.numElements())
            elements.elementByPhysicalIndex(next++).setMObject(array);
    }
}

} // namespace

MStatus arrayToDynArrays::initialize()
{
    const auto kinds = {MFnData::kIntArray, MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kStringArray};
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::generic(aInArray, "inArray", "ia", kinds, attr::kInput),
        attr::typed(aInDynArrays, "inDynamicArrays", "ida", MFnData::kDynArrayAttrs, attr::kInput),
        attr::typed(aOutDynArrays, "outDynamicArrays", "oda", MFnData::kDynArrayAttrs, attr::kOutput),
        attr::multi(attr::generic(aOutArrays, "outArrays", "oa", kinds, attr::kOutput)),
        attr::text(aName, "name", "n", attr::kStored),
        attr::text(aExistingNames, "existingNames", "exn", attr::kOutput),
        attr::text(aOutputNames, "outputNames", "on", attr::kStored),
    };
    return attr::declare(rows);
}

MStatus arrayToDynArrays::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutDynArrays, &aOutArrays, &aExistingNames}))  // plug test: one run fills all
        return MS::kUnknownParameter;

    MDataHandle out = block.outputValue(aOutDynArrays);                  // copy through: the source's own stay as they are
    out.copy(block.inputValue(aInDynArrays));
    MObject           data = out.data();
    MFnArrayAttrsData arrays;
    if (data.apiType() == MFn::kDynArrayAttrsData)
        arrays.setObject(data);
    else
        data = arrays.create();

    if (block.inputValue(aEnvelope).asBool()) {                          // switch, work
        const MString name = block.inputValue(aName).asString();
        if (name.length() > 0)
            store(arrays, name, block.inputValue(aInArray).data());
        MPlug(thisMObject(), aExistingNames).setString(joined(arrays.list()));
        takeOut(arrays, block.inputValue(aOutputNames).asString(), MPlug(thisMObject(), aOutArrays));
    }
    return out.set(data);                                                // write
}

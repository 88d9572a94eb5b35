#include "arrays/arrayExpression.h"

#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <cmath>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace texts = arrayExpressionText;
using texts::Kind;

namespace {

std::string numberText(double value)
{
    MString text;
    text = value;
    return text.asChar();
}

Kind kindOf(MFn::Type type)
{
    switch (type) {
    case MFn::kIntArrayData:    return Kind::kInts;
    case MFn::kDoubleArrayData:
    case MFn::kFloatArrayData:  return Kind::kReals;
    case MFn::kVectorArrayData: return Kind::kVectors;
    default:                    return Kind::kNone;
    }
}

/// Lowest, highest and sum of the elements; of vectors, of their lengths. Floats are not looked at and keep the start
/// values, and a product that starts at 0 stays there: both are what texts in scenes know.
texts::Statistics statistics(const ArrayView& array)
{
    double min = 999999999.999, max = -999999999.999, sum = 0.0;
    if (array.kind != MFn::kFloatArrayData) {
        for (std::size_t i = 0; i < array.length; ++i) {
            const double* v = array.doubles + i * array.stride;
            const double  value = array.ints ? array.ints[i]
                                  : array.stride == 3 ? std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]) : v[0];
            min = std::min(min, value);
            max = std::max(max, value);
            sum += value;
        }
    }
    return {numberText(min), numberText(max), numberText(sum), numberText(0.0)};
}

MDoubleArray doublesOf(int input, char component = 0)
{
    MDoubleArray values;
    MGlobal::executeCommand(texts::readBack(input, Kind::kReals, component).c_str(), values, false, false);
    return values;
}

const double* first(const MDoubleArray& values) { return values.length() > 0 ? &values[0] : nullptr; }

OutArray vectorsOf(int input)
{
    const MDoubleArray x = doublesOf(input, 'x'), y = doublesOf(input, 'y'), z = doublesOf(input, 'z');
    OutArray           out(OutArray::kVectors);
    double*            to = out.resize(x.length());
    for (unsigned int i = 0; i < x.length(); ++i, to += 3) {   // x sets the length; what y and z lack reads as 0
        to[0] = x[i];
        to[1] = y[i];
        to[2] = z[i];
    }
    return out;
}

/// What the interpreter holds for an input, as an array of the input's own type.
OutArray resultOf(int input, MFn::Type type)
{
    if (type == MFn::kVectorArrayData)
        return vectorsOf(input);
    if (type == MFn::kIntArrayData) {
        MIntArray values;
        MGlobal::executeCommand(texts::readBack(input, Kind::kInts).c_str(), values, false, false);
        OutArray out(OutArray::kInts);
        if (int* to = out.resizeInts(values.length()))
            values.get(to);
        return out;
    }
    const MDoubleArray values = doublesOf(input);
    if (type == MFn::kFloatArrayData) {
        OutArray out(OutArray::kFloats);
        if (float* to = out.resizeFloats(values.length()))
            std::copy(first(values), first(values) + values.length(), to);
        return out;
    }
    OutArray out(OutArray::kDoubles);
    if (double* to = out.resize(values.length()))
        values.get(to);
    return out;
}

/// Silences the echo of commands while it lives.
class QuietEcho
{
public:
    QuietEcho()
    {
        MGlobal::executeCommand("commandEcho -q -st", state_, false, false);
        MGlobal::executeCommand("commandEcho -st 0", false, false);
    }
    ~QuietEcho()
    {
        if (state_ == 1)
            MGlobal::executeCommand("commandEcho -st 1", false, false);
    }

private:
    int state_ = 0;
};

} // namespace

MStatus arrayExpression::initialize()
{
    const std::initializer_list<MFnData::Type> arrays = {MFnData::kIntArray, MFnData::kFloatArray,
                                                         MFnData::kDoubleArray, MFnData::kVectorArray};
    const attr::Row rows[] = {
        attr::generic(aInArray[0], "inArray", "ia", arrays, attr::kInput),
        attr::generic(aInArray[1], "inArray2", "ia2", arrays, attr::kInput),
        attr::generic(aInArray[2], "inArray3", "ia3", arrays, attr::kInput),
        attr::generic(aInArray[3], "inArray4", "ia4", arrays, attr::kInput),
        attr::generic(aInArray[4], "inArray5", "ia5", arrays, attr::kInput),
        attr::numeric(aInTime, "inTime", "it", MFnNumericData::kDouble, 0.0, attr::kControl),
        attr::generic(aOutArray[0], "outArray", "oa", arrays, attr::kOutput),
        attr::generic(aOutArray[1], "outArray2", "oa2", arrays, attr::kOutput),
        attr::generic(aOutArray[2], "outArray3", "oa3", arrays, attr::kOutput),
        attr::generic(aOutArray[3], "outArray4", "oa4", arrays, attr::kOutput),
        attr::generic(aOutArray[4], "outArray5", "oa5", arrays, attr::kOutput),
        attr::hidden(attr::text(aStartBlock, "startBlock", "sb", texts::defaultStartBlock(), attr::kStored)),
        attr::hidden(attr::text(aExpression, "expression", "exp", texts::defaultExpression(), attr::kStored)),
        attr::hidden(attr::text(aEndBlock, "endBlock", "eb", texts::defaultEndBlock(), attr::kStored)),
        attr::numeric(aAdditional, "additionalLocalVariables", "alv", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus arrayExpression::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutArray[0], &aOutArray[1], &aOutArray[2], &aOutArray[3], &aOutArray[4]}))   // plug test
        return MS::kSuccess;
    bool connected[texts::kInputCount];
    for (int k = 0; k < texts::kInputCount; ++k)
        connected[k] = MPlug(thisMObject(), aInArray[k]).isConnected();
    if (std::none_of(std::begin(connected), std::end(connected), [](bool on) { return on; }))   // connection test
        return MS::kSuccess;

    texts::Source source;                                                // work
    MFn::Type     types[texts::kInputCount] = {};
    source.withStatistics = block.inputValue(aAdditional).asBool();
    for (int k = 0; k < texts::kInputCount; ++k) {
        if (connected[k])
            passOn(block, k, source, types[k]);
    }
    source.node = nodeName(MPlug(thisMObject(), aInArray[0])).asChar();
    source.time = numberText(block.inputValue(aInTime).asDouble());
    source.startBlock = block.inputValue(aStartBlock).asString().asChar();
    source.expression = block.inputValue(aExpression).asString().asChar();
    source.endBlock = block.inputValue(aEndBlock).asString().asChar();

    const QuietEcho quiet;
    MGlobal::executeCommand(texts::text(source).c_str(), false, false);
    for (int k = 0; k < texts::kInputCount; ++k) {                       // write
        if (kindOf(types[k]) != Kind::kNone)
            resultOf(k, types[k]).publish(block, aOutArray[k]);
    }
    return MS::kSuccess;
}

void arrayExpression::passOn(MDataBlock& block, int input, texts::Source& source, MFn::Type& type) const
{
    const MObject data = block.inputValue(aInArray[input]).data();
    type = data.apiType();
    texts::Input& in = source.inputs[static_cast<std::size_t>(input)];
    in.kind = kindOf(type);
    if (in.kind == Kind::kNone)
        return;
    block.outputValue(aOutArray[input]).set(data);   // the text reads the array from the output
    in.plug = MPlug(thisMObject(), aOutArray[input]).name().asChar();
    if (source.withStatistics)
        in.statistics = statistics(viewArray(data));
}

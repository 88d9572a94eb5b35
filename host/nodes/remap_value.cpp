// remapValue: a number through a ramp of numbers and a ramp of colours.
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatVector.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MRampAttribute.h>

#include "nodes/anim_types.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::nodes {
namespace {

class RemapValue : public MPxNode
{
public:
    static void*   creator() { return new RemapValue; }
    static MStatus initialize()
    {
        input = number("inputValue", "i", Number::kFloat, 0, kKey);
        inputMin = number("inputMin", "imn", Number::kFloat, 0, kKey);
        inputMax = number("inputMax", "imx", Number::kFloat, 1, kKey);
        outputMin = number("outputMin", "omn", Number::kFloat, 0, kKey);
        outputMax = number("outputMax", "omx", Number::kFloat, 1, kKey);
        value = MRampAttribute::createCurveRamp("value", "vl");
        color = MRampAttribute::createColorRamp("color", "cl");
        outValue = number("outValue", "ov", Number::kFloat, 0, kOut);
        outColor = triple("outColor", "oc", Number::kFloat, 0, kOut | kColor, "RGB");
        add({input, inputMin, inputMax, outputMin, outputMax, value, color, outValue, outColor});
        affects({input, inputMin, inputMax, outputMin, outputMax, value, color}, {outValue, outColor});
        return MS::kSuccess;
    }

    void postConstructor() override
    {
        MFloatArray ends;
        MIntArray   linear(2, MRampAttribute::kLinear);
        ends.append(0), ends.append(1);
        MColorArray colors;
        colors.append(MColor(0, 0, 0)), colors.append(MColor(1, 1, 1));
        MRampAttribute(thisMObject(), value).setRamp(ends, ends, linear);
        MRampAttribute(thisMObject(), color).setRamp(colors, ends, linear);
    }

    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        const MObject out = plug.attribute();
        if (out != outValue && plug != outColor && !(plug.isChild() && plug.parent() == outColor))
            return MS::kUnknownParameter;
        const auto  read = [&](const MObject& attribute) { return block.inputValue(attribute).asFloat(); };
        const float low = read(inputMin), range = read(inputMax) - low;
        const float position = range != 0 ? (read(input) - low) / range : 0;
        const float outLow = read(outputMin), outRange = read(outputMax) - outLow;

        float  v = 0;
        MColor c;
        MRampAttribute(thisMObject(), value).getValueAtPosition(position, v);
        MRampAttribute(thisMObject(), color).getColorAtPosition(position, c);
        block.outputValue(outValue).setFloat(outLow + v * outRange);
        block.outputValue(outColor).set3Float(outLow + c.r * outRange, outLow + c.g * outRange, outLow + c.b * outRange);
        block.setClean(outValue);
        block.setClean(outColor);
        return MS::kSuccess;
    }

private:
    static inline MObject input, inputMin, inputMax, outputMin, outputMax, value, color, outValue, outColor;
};

}  // namespace

void registerRemapValue()
{
    registerRow({"remapValue", "node", 0x524D5641, MFn::kRemapValue, RemapValue::creator, RemapValue::initialize, "", "utility/general"});
}

}  // namespace mirk::nodes

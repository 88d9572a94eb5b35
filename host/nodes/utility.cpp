// time, network and the conversions between units.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>

#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::nodes {
namespace {

class Time : public MPxNode
{
public:
    static void*   creator() { return new Time; }
    static MStatus initialize()
    {
        add({unit("outTime", "o", Unit::kTime, 1.0 / 24, kKey)});
        return MS::kSuccess;
    }
};

class Network : public MPxNode
{
public:
    static void*   creator() { return new Network; }
    static MStatus initialize()
    {
        add({nodes::message("affects", "afs", kMulti | kLoose), nodes::message("affectedBy", "afb", kMulti | kLoose)});
        return MS::kSuccess;
    }
};

/// Of no use once one end is loose.
class Conversion : public MPxNode
{
protected:
    Conversion()
    {
        setExistWithoutInConnections(false);
        setExistWithoutOutConnections(false);
    }
};

/// output = input * conversionFactor.
class UnitConversion : public Conversion
{
public:
    static void*   creator() { return new UnitConversion; }
    static MStatus initialize()
    {
        aInput = number("input", "i", Number::kDouble);
        aOutput = number("output", "o", Number::kDouble, 0, kOut);
        aFactor = number("conversionFactor", "cf", Number::kDouble, 1);
        add({aInput, aOutput, aFactor});
        affects({aInput, aFactor}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        block.outputValue(aOutput).setDouble(block.inputValue(aInput).asDouble() * block.inputValue(aFactor).asDouble());
        block.setClean(plug);
        return MS::kSuccess;
    }
    static inline MObject aInput, aOutput, aFactor;
};

// factors of time conversions count in these, as scene files have them
constexpr double kTicksPerSecond = 6000;

class TimeToUnit : public Conversion
{
public:
    static void*   creator() { return new TimeToUnit; }
    static MStatus initialize()
    {
        aInput = unit("input", "i", Unit::kTime);
        aOutput = number("output", "o", Number::kDouble, 0, kOut);
        aFactor = number("conversionFactor", "cf", Number::kDouble, 1);
        add({aInput, aOutput, aFactor});
        affects({aInput, aFactor}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        const double seconds = block.inputValue(aInput).asTime().as(MTime::kSeconds);
        block.outputValue(aOutput).setDouble(seconds * kTicksPerSecond * block.inputValue(aFactor).asDouble());
        block.setClean(plug);
        return MS::kSuccess;
    }
    static inline MObject aInput, aOutput, aFactor;
};

class UnitToTime : public Conversion
{
public:
    static void*   creator() { return new UnitToTime; }
    static MStatus initialize()
    {
        aInput = number("input", "i", Number::kDouble);
        aOutput = unit("output", "o", Unit::kTime, 0, kOut);
        aFactor = number("conversionFactor", "cf", Number::kDouble, 1);
        add({aInput, aOutput, aFactor});
        affects({aInput, aFactor}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        const double ticks = block.inputValue(aInput).asDouble() * block.inputValue(aFactor).asDouble();
        block.outputValue(aOutput).setMTime(MTime(ticks / kTicksPerSecond, MTime::kSeconds));
        block.setClean(plug);
        return MS::kSuccess;
    }
    static inline MObject aInput, aOutput, aFactor;
};

}  // namespace

void registerUtilityTypes()
{
    const Row rows[] = {
        {"time", "node", 0x54494D45, MFn::kTime, Time::creator, Time::initialize},
        {"network", "node", 0x4E54574B, MFn::kDependencyNode, Network::creator, Network::initialize},
        {"unitConversion", "node", 0x554E4954, MFn::kUnitConversion, UnitConversion::creator, UnitConversion::initialize},
        {"timeToUnitConversion", "node", 0x54324E54, MFn::kTimeToUnitConversion, TimeToUnit::creator, TimeToUnit::initialize},
        {"unitToTimeConversion", "node", 0x4E543254, MFn::kUnitToTimeConversion, UnitToTime::creator, UnitToTime::initialize},
    };
    for (const Row& row : rows)
        registerRow(row);
}

}  // namespace mirk::nodes

// Arithmetic that is a command: angles between vectors, values from one unit to another.
#include <cmath>
#include <numbers>

#include <maya/MEulerRotation.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include "command/cmd_util.h"

namespace mirk::command {

namespace {

constexpr double kDegree = std::numbers::pi / 180;

MVector vectorOf(const Call& call, const char* flag)
{
    const Call::Use* use = call.use(flag);
    if (!use)
        fail(std::string("angleBetween: -") + flag + " has to be given");
    return {use->args[0].asFloat(), use->args[1].asFloat(), use->args[2].asFloat()};
}

constexpr Flag kAngleBetween[] = {{"v1", "vector1", "fff"}, {"v2", "vector2", "fff"}, {"er", "euler"}};

/// Degrees: the Euler angles that turn one vector into the other, or the axis and the angle about it.
Value angleBetween(Call& call)
{
    const MQuaternion turn(vectorOf(call, "vector1"), vectorOf(call, "vector2"));
    if (call.has("euler"))
    {
        const MEulerRotation e = turn.asEulerRotation();
        return std::vector<double>{e.x / kDegree, e.y / kDegree, e.z / kDegree};
    }
    MVector axis;
    double  angle = 0;
    turn.getAxisAngle(axis, angle);
    return std::vector<double>{axis.x, axis.y, axis.z, angle / kDegree};
}

struct Unit { const char *name, *longName; char kind; double size; };

/// In millimetres and degrees.
constexpr Unit kUnits[] = {
    {"mm", "millimeter", 'l', 1}, {"cm", "centimeter", 'l', 10}, {"m", "meter", 'l', 1000}, {"km", "kilometer", 'l', 1000000},
    {"in", "inch", 'l', 25.4}, {"ft", "foot", 'l', 304.8}, {"yd", "yard", 'l', 914.4}, {"mi", "mile", 'l', 1609344},
    {"deg", "degree", 'a', 1}, {"rad", "radian", 'a', 1 / kDegree}, {"min", "minute", 'a', 1.0 / 60}, {"sec", "second", 'a', 1.0 / 3600},
};

const Unit& unitOf(const std::string& name)
{
    for (const Unit& u : kUnits)
        if (name == u.name || name == u.longName)
            return u;
    fail("convertUnit: \"" + name + "\" is no unit of lengths or angles");
}

constexpr Flag kConvertUnit[] = {{"f", "fromUnit", "s"}, {"t", "toUnit", "s"}};

/// A text, as it has always been: the number, with the unit's name behind if it is no length in the current unit.
Value convertUnit(Call& call)
{
    if (call.args.size() != 1)
        fail("convertUnit: one value has to be given");
    const std::string text = call.args[0].asString();
    const size_t      digits = text.find_last_of("0123456789.") + 1;
    const std::string own = text.substr(digits);
    const std::string ui = execute("currentUnit", std::vector<Value>{"-query", "-linear"}).asString();
    const Unit&       from = unitOf(call.str("fromUnit", own.empty() ? ui : own));
    const Unit&       to = unitOf(call.str("toUnit", from.kind == 'l' ? ui : "deg"));
    if (from.kind != to.kind)
        fail(std::string("convertUnit: ") + from.longName + " and " + to.longName + " measure different things");
    const double value = Value(text).asFloat();
    return numberText(from.size == to.size ? value : value * from.size / to.size) + (std::string(to.name) == ui ? "" : to.name);
}

const Command kCommands[] = {
    {"angleBetween", kAngleBetween, angleBetween, false, false},
    {"convertUnit", kConvertUnit, convertUnit, false},
};

const bool g_added = (add(kCommands), true);

}  // namespace

}  // namespace mirk::command

#include "command/units_text.h"
#include "command/value_text.h"

#include <cmath>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>

#include "command/cmd_util.h"

namespace mirk::command {

std::string linearUnitName(bool full)
{
    switch (MDistance::uiUnit())
    {
    case MDistance::kInches:      return full ? "inch" : "in";
    case MDistance::kFeet:        return full ? "foot" : "ft";
    case MDistance::kYards:       return full ? "yard" : "yd";
    case MDistance::kMiles:       return full ? "mile" : "mi";
    case MDistance::kMillimeters: return full ? "millimeter" : "mm";
    case MDistance::kKilometers:  return full ? "kilometer" : "km";
    case MDistance::kMeters:      return full ? "meter" : "m";
    default:                      return full ? "centimeter" : "cm";
    }
}

std::string angularUnitName(bool full)
{
    const bool radians = MAngle::uiUnit() == MAngle::kRadians;
    return full ? (radians ? "radian" : "degree") : (radians ? "rad" : "deg");
}

std::string timeUnitName()
{
    switch (MTime::uiUnit())
    {
    case MTime::kHours:        return "hour";
    case MTime::kMinutes:      return "min";
    case MTime::kSeconds:      return "sec";
    case MTime::kMilliseconds: return "millisec";
    case MTime::k15FPS:        return "game";
    case MTime::k25FPS:        return "pal";
    case MTime::k30FPS:        return "ntsc";
    case MTime::k48FPS:        return "show";
    case MTime::k50FPS:        return "palf";
    case MTime::k60FPS:        return "ntscf";
    case MTime::k24FPS:        return "film";
    default:                   return numberText(MTime(1, MTime::kSeconds).as(MTime::uiUnit())) + "fps";
    }
}

bool readWithUnit(const std::string& text, double& number)
{
    constexpr double kDegree = 3.14159265358979323846 / 180;
    const struct { const char* name; double radians, centimetres; } units[] = {
        {"deg", kDegree, 0}, {"rad", 1, 0}, {"mm", 0, 0.1}, {"cm", 0, 1}, {"m", 0, 100}, {"km", 0, 100000}, {"in", 0, 2.54}, {"ft", 0, 30.48}, {"yd", 0, 91.44}};
    const size_t unitAt = std::min(text.find_first_not_of("0123456789.+-eE"), text.size());
    bool         plain = false;
    const double value = leadingNumber(text.substr(0, unitAt), &plain);
    for (const auto& u : units)
        if (plain && unitAt > 0 && text.compare(unitAt, std::string::npos, u.name) == 0)
        {
            number = u.radians != 0 ? MAngle(value * u.radians, MAngle::kRadians).as(MAngle::uiUnit())
                                    : MDistance(value * u.centimetres, MDistance::kCentimeters).as(MDistance::uiUnit());
            return true;
        }
    return false;
}

double exactUi(const Attribute& attr, double value)
{
    const double shown = toUi(attr, value);
    if (!std::isfinite(shown) || fromUi(attr, shown) == value)
        return shown;
    double below = shown, above = shown;
    for (int i = 0; i < 8; ++i)
    {
        below = std::nextafter(below, -HUGE_VAL);
        above = std::nextafter(above, HUGE_VAL);
        if (fromUi(attr, below) == value)
            return below;
        if (fromUi(attr, above) == value)
            return above;
    }
    return shown;
}

}  // namespace mirk::command

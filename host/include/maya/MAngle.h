#pragma once
#include <iosfwd>

#include <maya/MStatus.h>

/// An angle in one of several units.
class MAngle
{
public:
    enum Unit {
        kInvalid = 0,
        kRadians = 1,
        kDegrees,
        kAngMinutes,
        kAngSeconds,
        kLast
    };

    MAngle() : MAngle(0.0, internalUnit()) {}
    MAngle(double value, Unit unit = kRadians) : value_(value), unit_(valid(unit)) {}

    double value() const { return value_; }
    Unit   unit() const { return unit_; }
    double as(Unit unit) const;
    double asUnits(Unit unit) const { return as(unit); }
    double asRadians() const { return as(kRadians); }
    double asDegrees() const { return as(kDegrees); }
    double asAngMinutes() const { return as(kAngMinutes); }
    double asAngSeconds() const { return as(kAngSeconds); }
    MStatus setValue(double value) { value_ = value; return MStatus(); }
    /// The value is then meant in `unit`. kInvalidParameter for what is no unit.
    MStatus setUnit(Unit unit);

    /// The unit of the user interface and of scripts.
    static Unit    uiUnit();
    static MStatus setUIUnit(Unit unit);
    /// The unit in which values are stored: radians.
    static Unit    internalUnit() { return kRadians; }
    static double  internalToUI(double value);
    static double  uiToInternal(double value);

    bool operator==(const MAngle& other) const { return as(internalUnit()) == other.as(internalUnit()); }
    bool operator!=(const MAngle& other) const { return !(*this == other); }

private:
    static Unit valid(Unit unit) { return unit > kInvalid && unit < kLast ? unit : internalUnit(); }

    double value_;
    Unit   unit_;
};

std::ostream& operator<<(std::ostream& os, const MAngle& angle);

#pragma once
#include <iosfwd>

#include <maya/MStatus.h>

/// A length in one of several units.
class MDistance
{
public:
    enum Unit {
        kInvalid = 0,
        kInches = 1,
        kFeet,
        kYards,
        kMiles,
        kMillimeters,
        kCentimeters,
        kKilometers,
        kMeters,
        kLast
    };

    MDistance() : MDistance(0.0, internalUnit()) {}
    MDistance(double value, Unit unit = kCentimeters) : value_(value), unit_(valid(unit)) {}

    double value() const { return value_; }
    Unit   unit() const { return unit_; }
    double as(Unit unit) const;
    double asUnits(Unit unit) const { return as(unit); }
    double asInches() const { return as(kInches); }
    double asFeet() const { return as(kFeet); }
    double asYards() const { return as(kYards); }
    double asMiles() const { return as(kMiles); }
    double asMillimeters() const { return as(kMillimeters); }
    double asCentimeters() const { return as(kCentimeters); }
    double asKilometers() const { return as(kKilometers); }
    double asMeters() const { return as(kMeters); }
    MStatus setValue(double value) { value_ = value; return MStatus(); }
    /// The value is then meant in `unit`. kInvalidParameter for what is no unit.
    MStatus setUnit(Unit unit);

    /// The unit of the user interface and of scripts.
    static Unit    uiUnit();
    static MStatus setUIUnit(Unit unit);
    /// The unit in which values are stored: centimetres.
    static Unit    internalUnit() { return kCentimeters; }
    static double  internalToUI(double value);
    static double  uiToInternal(double value);

    bool operator==(const MDistance& other) const { return as(internalUnit()) == other.as(internalUnit()); }
    bool operator!=(const MDistance& other) const { return !(*this == other); }

private:
    static Unit valid(Unit unit) { return unit > kInvalid && unit < kLast ? unit : internalUnit(); }

    double value_;
    Unit   unit_;
};

std::ostream& operator<<(std::ostream& os, const MDistance& distance);

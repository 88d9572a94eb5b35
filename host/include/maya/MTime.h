#pragma once
#include <iosfwd>

#include <maya/MStatus.h>

/// A moment or a length of time in one of many units.
class MTime
{
public:
    enum Unit {
        kInvalid = 0,
        kHours = 1,
        kMinutes = 2,
        kSeconds = 3,
        kMilliseconds = 4,
        k15FPS = 5,
        kGames = k15FPS,
        k24FPS = 6,
        kFilm = k24FPS,
        k25FPS = 7,
        kPALFrame = k25FPS,
        k30FPS = 8,
        kNTSCFrame = k30FPS,
        k48FPS = 9,
        kShowScan = k48FPS,
        k50FPS = 10,
        kPALField = k50FPS,
        k60FPS = 11,
        kNTSCField = k60FPS,
        k2FPS = 12,
        k3FPS, k4FPS, k5FPS, k6FPS, k8FPS, k10FPS, k12FPS, k16FPS, k20FPS, k40FPS, k75FPS, k80FPS, k100FPS, k120FPS,
        k125FPS, k150FPS, k200FPS, k240FPS, k250FPS, k300FPS, k375FPS, k400FPS, k500FPS, k600FPS, k750FPS, k1200FPS,
        k1500FPS, k2000FPS, k3000FPS, k6000FPS,
        k23_976FPS, k29_97FPS, k29_97DF, k47_952FPS, k59_94FPS, k44100FPS, k48000FPS, k90FPS,
        kUserDef,
        kLast
    };
    typedef double MTick;

    MTime() : MTime(0.0, kFilm) {}
    MTime(double value, Unit unit = kFilm) : value_(value), unit_(valid(unit)) {}

    double value() const { return value_; }
    Unit   unit() const { return unit_; }
    double as(Unit unit) const;
    double asUnits(Unit unit) const { return as(unit); }
    MStatus setValue(double value) { value_ = value; return MStatus(); }
    /// The value is then meant in `unit`. kInvalidParameter for what is no unit.
    MStatus setUnit(Unit unit);

    /// The unit of the user interface and of scripts.
    static Unit    uiUnit();
    static MStatus setUIUnit(Unit unit);
    static MTick   ticksPerSecond() { return 141120000.0; }

    /// Numbers are in this time's unit; times are converted to it.
    MTime  operator+(const MTime& other) const { return MTime(value_ + other.as(unit_), unit_); }
    MTime  operator-(const MTime& other) const { return MTime(value_ - other.as(unit_), unit_); }
    MTime  operator+(double value) const { return MTime(value_ + value, unit_); }
    MTime  operator-(double value) const { return MTime(value_ - value, unit_); }
    MTime  operator*(double factor) const { return MTime(value_ * factor, unit_); }
    MTime  operator/(double divisor) const { return MTime(value_ / divisor, unit_); }
    MTime& operator+=(const MTime& other) { return *this = *this + other; }
    MTime& operator-=(const MTime& other) { return *this = *this - other; }
    MTime& operator+=(double value) { value_ += value; return *this; }
    MTime& operator-=(double value) { value_ -= value; return *this; }
    MTime& operator*=(double factor) { value_ *= factor; return *this; }
    MTime& operator/=(double divisor) { value_ /= divisor; return *this; }
    MTime& operator++() { value_ += 1; return *this; }
    MTime  operator++(int) { MTime old(*this); value_ += 1; return old; }
    MTime& operator--() { value_ -= 1; return *this; }
    MTime  operator--(int) { MTime old(*this); value_ -= 1; return old; }

    /// Equal to the nearest tick.
    bool operator==(const MTime& other) const;
    bool operator!=(const MTime& other) const { return !(*this == other); }
    bool operator<(const MTime& other) const;
    bool operator>(const MTime& other) const { return other < *this; }
    bool operator<=(const MTime& other) const { return !(other < *this); }
    bool operator>=(const MTime& other) const { return !(*this < other); }

private:
    static Unit valid(Unit unit) { return unit > kInvalid && unit < kUserDef ? unit : uiUnit(); }

    double value_;
    Unit   unit_;
};

inline MTime  operator*(double factor, const MTime& time) { return time * factor; }
std::ostream& operator<<(std::ostream& os, const MTime& time);

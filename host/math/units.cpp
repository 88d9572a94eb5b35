// Times, angles and distances: conversion between units, and the units of the user interface.
#include <atomic>
#include <cmath>
#include <iterator>
#include <ostream>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>

namespace {

std::atomic<MTime::Unit>     timeUnit{MTime::kFilm};
std::atomic<MAngle::Unit>    angleUnit{MAngle::kDegrees};
std::atomic<MDistance::Unit> distanceUnit{MDistance::kCentimeters};

constexpr double kPerSecond[] = {
    1.0, 1.0 / 3600, 1.0 / 60, 1, 1000, 15, 24, 25, 30, 48, 50, 60,
    2, 3, 4, 5, 6, 8, 10, 12, 16, 20, 40, 75, 80, 100, 120,
    125, 150, 200, 240, 250, 300, 375, 400, 500, 600, 750, 1200,
    1500, 2000, 3000, 6000,
    24000.0 / 1001, 30000.0 / 1001, 30000.0 / 1001, 48000.0 / 1001, 60000.0 / 1001, 44100, 48000, 90};
static_assert(std::size(kPerSecond) == MTime::kUserDef);

constexpr double kRadiansIn[] = {1, 1, M_PI / 180, M_PI / (180 * 60), M_PI / (180 * 3600)};
static_assert(std::size(kRadiansIn) == MAngle::kLast);

constexpr double kCentimetresIn[] = {1, 2.54, 30.48, 91.44, 160934.4, 0.1, 1, 100000, 100};
static_assert(std::size(kCentimetresIn) == MDistance::kLast);

template <class U, size_t N>
bool isUnit(U unit, const double (&)[N])
{
    return int(unit) > 0 && int(unit) < int(N);
}

template <class U, class Target, size_t N>
MStatus assign(U unit, const double (&table)[N], Target& target)
{
    if (!isUnit(unit, table))
        return MStatus::kInvalidParameter;
    target = unit;
    return MStatus();
}

/// `size` has how much of a common unit each unit is.
template <class U, size_t N>
double convert(double value, U from, U to, const double (&size)[N])
{
    return from == to || !isUnit(to, size) ? value : value * size[from] / size[to];
}

double ticks(const MTime& time)
{
    return std::round(time.as(MTime::kSeconds) * MTime::ticksPerSecond());  // rounding errors make no other time
}

}  // namespace

double MTime::as(Unit unit) const
{
    if (unit == unit_ || !isUnit(unit, kPerSecond))
        return value_;
    const double value = value_ * kPerSecond[unit] / kPerSecond[unit_], whole = std::round(value);
    // whole frames stay whole on the way through seconds: what is off by less than their rounding is meant to be whole
    return std::abs(value - whole) <= 8e-16 * std::abs(whole) ? whole : value;
}

MStatus     MTime::setUnit(Unit unit) { return assign(unit, kPerSecond, unit_); }
MTime::Unit MTime::uiUnit() { return timeUnit; }
MStatus     MTime::setUIUnit(Unit unit) { return assign(unit, kPerSecond, timeUnit); }
bool        MTime::operator==(const MTime& other) const { return ticks(*this) == ticks(other); }
bool        MTime::operator<(const MTime& other) const { return ticks(*this) < ticks(other); }

double       MAngle::as(Unit unit) const { return convert(value_, unit_, unit, kRadiansIn); }
MStatus      MAngle::setUnit(Unit unit) { return assign(unit, kRadiansIn, unit_); }
MAngle::Unit MAngle::uiUnit() { return angleUnit; }
MStatus      MAngle::setUIUnit(Unit unit) { return assign(unit, kRadiansIn, angleUnit); }
double       MAngle::internalToUI(double value) { return MAngle(value, internalUnit()).as(uiUnit()); }
double       MAngle::uiToInternal(double value) { return MAngle(value, uiUnit()).as(internalUnit()); }

double          MDistance::as(Unit unit) const { return convert(value_, unit_, unit, kCentimetresIn); }
MStatus         MDistance::setUnit(Unit unit) { return assign(unit, kCentimetresIn, unit_); }
MDistance::Unit MDistance::uiUnit() { return distanceUnit; }
MStatus         MDistance::setUIUnit(Unit unit) { return assign(unit, kCentimetresIn, distanceUnit); }
double          MDistance::internalToUI(double value) { return MDistance(value, internalUnit()).as(uiUnit()); }
double          MDistance::uiToInternal(double value) { return MDistance(value, uiUnit()).as(internalUnit()); }

std::ostream& operator<<(std::ostream& os, const MTime& time) { return os << time.value(); }
std::ostream& operator<<(std::ostream& os, const MAngle& angle) { return os << angle.value(); }
std::ostream& operator<<(std::ostream& os, const MDistance& distance) { return os << distance.value(); }

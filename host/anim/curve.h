// Animation curves: keys with tangents, the curve between them, and how it goes on outside. Plain arithmetic.
#pragma once
#include <cstddef>
#include <vector>

namespace mirk::anim {

/// The numbers are those of scene files.
enum class Tangent : int {
    kFixed = 1, kLinear = 2, kFlat = 3, kStep = 5, kSlow = 6, kFast = 7, kSpline = 9, kClamped = 10, kPlateau = 16, kStepNext = 17, kAuto = 18,
};
enum class Infinity : int { kConstant = 0, kLinear = 1, kCycle = 3, kCycleRelative = 4, kOscillate = 5 };

/// A tangent: its kind and its vector, which points forward on either side. On weighted curves the vector is three
/// times that from the key to the Bezier control point (from the control point to the key, on the way in); otherwise
/// only its direction counts and its length is 1.
struct Handle
{
    Tangent type = Tangent::kAuto;
    double  x = 1, y = 0;
};

struct Key
{
    double time = 0, value = 0;   ///< seconds or a plain number; the value in internal units
    Handle in, out;
    bool   tangentsLocked = true, weightsLocked = true, breakdown = false;
};

struct Curve
{
    std::vector<Key> keys;        ///< by time
    bool             weighted = false;
    Infinity         pre = Infinity::kConstant, post = Infinity::kConstant;
};

/// Computes the vectors of all tangents but the fixed ones from the keys around.
///
/// linear: to the neighbour. flat: level. spline: slope of the chord between the two neighbours. clamped: as spline, but
/// level beside a neighbour of the same value. auto and plateau: as spline, but level at the ends, at peaks and at
/// valleys, and nowhere so steep that the curve passes the value of a neighbour. At the ends of the curve linear, spline
/// and clamped have the slope to the one neighbour; a lone key is level.
void solveTangents(Curve& curve);

/// Value at a time; 0 without keys. Within `tolerance` of a key it is the key's value exactly.
///
/// Between keys the curve is the cubic Hermite interpolant of the two slopes, or, if weighted, the Bezier curve of the
/// tangents' control points, with tangents shortened that reach past the other key, so that time runs forward on it.
double evaluate(const Curve& curve, double time, double tolerance = 0);

/// Slope (value per time) at a time between the first and the last key.
double slopeAt(const Curve& curve, double time);

/// Index of the key at a time, within the tolerance; -1 if there is none.
int findKey(const Curve& curve, double time, double tolerance = 0);
/// Index of the first key past the time.
std::size_t upperBound(const Curve& curve, double time);

/// Turns weighting on or off; fixed tangents keep their direction.
void setWeighted(Curve& curve, bool on);
/// Makes the tangent of a key a fixed one. On curves without weights only the direction counts, and the other tangent
/// of a locked key follows.
void setTangent(Curve& curve, std::size_t key, bool incoming, double x, double y);

}  // namespace mirk::anim

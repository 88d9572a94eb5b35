// The volume of a bounding object, once for all that test points against it or draw it: which points are inside, how far
// from its middle, and where it pulls and turns them. Plain numbers; the host is not met here.
//
// A volume is a unit sphere, a unit cube or a capsule in the local frame of its matrix, or a cloud of spheres in world
// space. Distances are relative: 0 in the middle, 1 at the surface. Points are row vectors: p' = p * matrix.
#pragma once
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace volume {

struct Vec
{
    double x = 0.0, y = 0.0, z = 0.0;
};

inline Vec    operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec    operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec    operator*(Vec a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline double lengthSquared(Vec a) { return a.x * a.x + a.y * a.y + a.z * a.z; }
inline double length(Vec a) { return std::sqrt(lengthSquared(a)); }

/// A vector of length 1; one too short to have a direction (squared length up to 1e-20) stays as it is.
Vec normalized(Vec v);

/// Rows of a 4x4 matrix.
struct Matrix
{
    double m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    /// True if it keeps w, as all but perspective matrices do.
    bool affine() const { return m[0][3] == 0.0 && m[1][3] == 0.0 && m[2][3] == 0.0 && m[3][3] == 1.0; }
    Vec  row(int i) const { return {m[i][0], m[i][1], m[i][2]}; }
};

/// A direction through the matrix: its translation has no effect.
Vec transformVector(Vec v, const Matrix& matrix);
/// A point (w = 1) through the matrix. Its new w divides it if it is not 1, unless `homogeneous` is false.
Vec transformPoint(Vec p, const Matrix& matrix, bool homogeneous = true);

/// A box along the axes; it starts empty. The border belongs to it. A NaN coordinate adds nothing.
struct Box
{
    Vec low{kMost, kMost, kMost};
    Vec high{-kMost, -kMost, -kMost};

    static constexpr double kMost = std::numeric_limits<double>::infinity();

    bool empty() const { return !(low.x <= high.x && low.y <= high.y && low.z <= high.z); }
    void add(Vec p);
    void add(const Box& box);
    bool contains(Vec p) const
    {
        return p.x >= low.x && p.x <= high.x && p.y >= low.y && p.y <= high.y && p.z >= low.z && p.z <= high.z;
    }
    bool meets(const Box& b) const
    {
        return low.x <= b.high.x && b.low.x <= high.x && low.y <= b.high.y && b.low.y <= high.y &&
               low.z <= b.high.z && b.low.z <= high.z;
    }
};

enum class Kind : short { kSphere = 0, kCube = 1, kCapsule = 2, kCloud = 3 };
/// The direction that a volume gives to normals.
enum class Direction : short { kAlongX = 0, kAlongY = 1, kAlongZ = 2, kAwayFromCenter = 3 };

/// An upright barrel closed by two half ellipsoids. Offsets are heights above and below the origin.
struct Capsule
{
    double top = 1.0, bottom = 1.0;
    Vec    topScale{1.0, 1.0, 1.0}, bottomScale{1.0, 1.0, 1.0};
};

/// The part of a capsule that holds a point.
enum class Region : char { kNone, kBarrel, kTopCap, kBottomCap };

/// What distances say of a point that is outside.
constexpr double kOutside = -1.0;

/// A bounding object as consumers see it. One that is not connected is switched off: it has this struct's defaults.
struct Volume
{
    double    envelope = 0.0;              ///< 0, or above 0 if it is on
    Kind      kind = Kind::kSphere;
    bool      contained = false;           ///< for components: inside only with all of their points
    Matrix    matrix, inverse;
    bool      flat = false;                ///< the matrix is singular: nothing is inside
    Vec       origin;                      ///< of the matrix, in world space
    Capsule   capsule;
    Direction direction = Direction::kAlongX;
    std::size_t cloudBegin = 0, cloudEnd = 0;   ///< its points in the concatenated cloud
    Box       box;                         ///< around it in world space, a little too large rather than too small
};

/// Sets `box` of a sphere, cube or capsule from the rest. It is unbounded under a perspective matrix.
void setBox(Volume& volume);

/// Distance of a point in the local frame, or kOutside. A NaN is outside.
double sphereDistance(Vec local);
double cubeDistance(Vec local);
double capsuleDistance(const Capsule& capsule, Vec local, Region* region = nullptr);

/// How far a point in the local frame is from the axis. The radii go from the bottom's to the top's along the barrel.
/// Without height they are not numbers: a capsule whose offsets are both 0 has no barrel.
inline double barrelDistance(const Capsule& c, double px, double py, double pz)
{
    const double t = (c.top - py) / (c.top + c.bottom);
    const double rx = c.topScale.x + (c.bottomScale.x - c.topScale.x) * t;
    const double rz = c.topScale.z + (c.bottomScale.z - c.topScale.z) * t;
    const double x = px / rx, z = pz / rz;
    return std::sqrt(x * x + z * z);
}

/// Distance of a point in world space from a sphere, cube or capsule, or kOutside.
double distance(const Volume& volume, Vec point);
/// The same measure without end: points outside have distances above 1. For a capsule it follows the barrel between the
/// offsets and the nearer cap beyond them. Infinite where there is no such number.
double openDistance(const Volume& volume, Vec point);

/// Distance of a point from a sphere of a cloud, |point - center| / radius, or kOutside. A radius of 0 reaches nothing.
double cloudDistance(Vec point, Vec center, double radius);

/// Where a sphere, cube or capsule pulls the point: its origin, or the nearest place on a capsule's axis. False if the
/// point is in no region of the capsule. `homogeneous` as for transformPoint.
bool target(const Volume& volume, Vec point, bool homogeneous, Vec& at);
/// The same for a point that is known to be inside, at less cost.
Vec targetInside(const Volume& volume, Vec point);
/// The direction that a sphere, cube or capsule gives at the point. `direction` stays what it was if the point is in no
/// region of the capsule.
void directionAt(const Volume& volume, Vec point, Vec& direction);

/// The spheres of all clouds, one after the other: a volume has those from cloudBegin up to cloudEnd.
struct Cloud
{
    std::vector<Vec>                   positions, normals;
    std::vector<double>                radii, weights;
    std::vector<std::array<double, 4>> rgba;
};

/// The box around spheres, those of radius 0 left out.
Box cloudBox(const Vec* centers, const double* radii, std::size_t count);

} // namespace volume

// The small steps of scatter: places and chances drawn in the sequence of rand(), the spacing of points, projectors and the camera.
// Places are single precision throughout, as the throws are; the order of the draws is part of the result.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace scatter_ {

struct Float3
{
    float x = 0.0f, y = 0.0f, z = 0.0f;
    float  operator[](int axis) const { return (&x)[axis]; }
    float& operator[](int axis) { return (&x)[axis]; }
};

struct Double3
{
    double x = 0.0, y = 0.0, z = 0.0;
};

/// Row vectors: p * M, the translation in the last row.
struct Matrix
{
    double m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

/// Axis aligned, scene units.
struct Box
{
    double low[3] = {0, 0, 0}, high[3] = {0, 0, 0};
};

/// Widens the flat dimensions of a box by 1 on each side; true if there was one. Flat is all that is not above 0.0001.
bool widenFlat(Box& box);

/// The sequence of srand(seed) and rand(). With the GNU library it is kept without their shared state, so that nobody else
/// who draws disturbs it.
class Draws
{
public:
    explicit Draws(int seed);
    Draws(const Draws&) = delete;
    Draws& operator=(const Draws&) = delete;

    int next();
    /// The next number in 0 to 1.
    float unit() { return static_cast<float>(next()) * 4.656613e-10f; }

private:
#if defined(__GLIBC__)
    random_data        state_ = {};
    std::array<char, 128> numbers_ = {};   ///< the size by which the library's own generator starts
#endif
};

/// Where a throw starts and where it goes. The length of the direction is whatever it comes to.
struct Aim
{
    Float3 source, direction;
};

/// Draws sources from a box and directions from a cube about the origin, both taken through a matrix.
class RandomAim
{
public:
    RandomAim(const Box& box, const Matrix& matrix);
    /// Six numbers: x, y, z of the source, then of the direction.
    Aim draw(Draws& draws) const;

private:
    float size_[3], low_[3], matrix_[4][4];
};

/// v of length 1, by an estimate of the reciprocal square root and one Newton step; v itself if its squared length is
/// not above 1e-20.
Float3 direction(const Float3& v);

/// The chance in 0 to 1 that a mask gives to a triangle: the mean of its three vertices.
float chance(const float* mask, const int vertices[3]);

/// Degrees between two vectors, 0 to 180.0000002; 0 where one of them has no length.
double degreesBetween(const Double3& a, const Double3& b);

/// The points accepted so far, to be asked whether one of them is too near. The answers are those of comparing with
/// every point; each takes about the logarithm of their number, whatever the distance.
class Spacing
{
public:
    void add(const Float3& point);
    /// True if some point is at `distance` or nearer. Distances are of double precision.
    bool anyWithin(const Float3& point, float distance) const;

private:
    static constexpr std::size_t kBucket = 16;
    /// Points in order of a balanced tree of splits without stored nodes; run k is empty or holds kBucket << k points.
    using Run = std::vector<Float3>;
    std::vector<Run>    runs_;
    std::vector<Float3> recent_;    ///< fewer than kBucket
    std::vector<Float3> odd_;       ///< not finite: no order holds them
};

/// True if a colour keeps its point: one number that is below red, green or blue.
bool keptByColor(const Double3& rgb, Draws& draws);

/// Where a projector sees a point: in its unit square about the origin, x and y, whatever the depth.
struct ProjectedUv
{
    bool   inside = false;
    double u = 0.0, v = 0.0;   ///< 0 to 1, of points inside
};
ProjectedUv project(const Float3& point, const Matrix& worldToProjector);

/// The order of the projectors, 1 to 20. It decides which one takes which draws.
extern const std::array<int, 20> kProjectorOrder;

/// What a camera shows, from the values of its shape: millimetres for the focal length, inches for film.
struct Camera
{
    float scale = 0, horizontalAperture = 0, verticalAperture = 0, horizontalOffset = 0, verticalOffset = 0, nearClip = 0,
          farClip = 0, focalLength = 0, squeeze = 0;
    float expand = 0;     ///< added to the half widths, scene units
    Matrix world;         ///< without scale
};

/// The six sides of what a camera shows.
class Frustum
{
public:
    explicit Frustum(const Camera& camera);
    /// On the inner side of all six, or on them.
    bool contains(const Float3& point) const;

private:
    struct Side { Double3 corner, normal; };   ///< the normal leads out
    std::array<Side, 6> sides_;
};

} // namespace scatter_

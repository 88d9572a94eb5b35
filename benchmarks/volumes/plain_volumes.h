// Weights, colours and positions from volumes in plain loops over points and volumes, without the host.
#pragma once
#include <cstddef>
#include <vector>

namespace plain {

/// A volume of uniform size without rotation: spheres, cubes and capsules of unit sizes in their frame.
struct Volume
{
    int    kind;         ///< 0 sphere, 1 cube, 2 capsule
    double x, y, z;
    double size;
};

/// What the loop reads and fills, allocated beforehand: `count` points.
struct Transfer
{
    static constexpr int kSlots = 5;

    std::size_t         count;
    std::vector<float>  points;                     ///< 3 each
    std::vector<double> weights, rgba, positions;   ///< 1, 4, 4 each
    std::vector<double> d;                          ///< kSlots each
    std::vector<int>    bound, used;                ///< kSlots each, 1 each

    explicit Transfer(std::size_t points);
};

/// The influences alone.
void findInfluences(const std::vector<Volume>& volumes, Transfer& t);
/// Influences, then weights, colours and positions by linear ramps and a linear kernel.
void transfer(const std::vector<Volume>& volumes, Transfer& t);

/// Points of a cloud with one radius.
struct Spheres
{
    std::vector<double> centers;   ///< 3 each
    double              radius;
};

/// The influences of the first `points` points.
void findInfluences(const Spheres& cloud, std::size_t points, Transfer& t);

} // namespace plain

// What scatter does around its rays, as plain loops over flat arrays.
#pragma once
#include <cstddef>
#include <vector>

#include "../spatial/plain_spatial.h"

namespace plain {

/// Rays from a box, drawn from rand() seeded with `seed`: six calls a ray.
void drawRays(unsigned int seed, const double (&low)[3], const double (&high)[3], std::vector<Ray>& rays);

/// How many points are left when each is dropped that has one of those before within `spacing`: a grid of lists.
std::size_t spaced(const std::vector<float>& points, float spacing);

} // namespace plain

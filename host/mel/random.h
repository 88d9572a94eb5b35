// Random numbers and gradient noise of the language.
#pragma once
#include <cstdint>

#include "command/value.h"

namespace mirk::mel {

/// Restarts the one sequence that rand, gauss and sphrand draw from.
void          seedRandom(int32_t seed);
int32_t       randomSeed();
/// Uniform in [0, 1).
double        randomUnit();
/// Normal distribution around 0 with deviation 1.
double        randomGauss();
/// Uniform in the unit ball.
command::Vec3 randomInSphere();

/// Gradient noise in about [-1, 1], 0 at whole coordinates; and its gradient.
double        noise(const command::Vec3& p, command::Vec3* gradient = nullptr);

}  // namespace mirk::mel

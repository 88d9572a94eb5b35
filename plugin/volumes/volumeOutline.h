// Lines that show a volume.
#pragma once
#include <vector>

#include "volumes/volume.h"

namespace volume {

/// Strips of points on the surface of a sphere, cube or capsule, in its local frame; curves take `segments` lines a full
/// turn.
std::vector<std::vector<Vec>> outline(const Volume& volume, int segments = 48);

} // namespace volume

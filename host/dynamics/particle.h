// Particle shapes: arrays with a value a particle, of which those named in twos (position0 and position ...) are the
// state at the start and the present one. Without a solver the present state is that at the start, unless it was set or
// is driven.
#pragma once
#include <string>
#include <vector>

#include "data/data.h"
#include "graph/node.h"

namespace mirk::dynamics {

bool isParticle(const Node& node);
/// Number of particles: the length of `position`. Evaluates.
size_t count(Node& particle);

/// The cell of a per-particle attribute, up to date; null if the shape has none of that name that holds an array of
/// vectors, of numbers.
Cell* vectorCell(Node& particle, const std::string& attribute);
Cell* doubleCell(Node& particle, const std::string& attribute);
/// Its values; empty if there are none.
std::vector<MVector> vectors(Node& particle, const std::string& attribute);
std::vector<double>  doubles(Node& particle, const std::string& attribute);
/// Names of the per-particle attributes of either kind, in the order of the node.
std::vector<std::string> perParticleNames(Node& particle, bool vectors);

/// Write the state at the start if the attribute has one and the present is not driven, else the attribute itself.
/// Undoable. An error for an attribute of another kind.
void setVectors(Node& particle, const std::string& attribute, const std::vector<MVector>& values);
void setDoubles(Node& particle, const std::string& attribute, const std::vector<double>& values);

/// A shape with its transform, at rest. `type` is "particle" or "nParticle".
Node* create(const std::string& type, const std::string& transformName, const std::string& shapeName, const std::vector<MVector>& positions);
/// More particles behind those that are there: they get the next ids, mass 1 and 0 in every other array.
void  append(Node& particle, const std::vector<MVector>& positions, const std::vector<MVector>& velocities);

/// Object space, min then max; false without particles.
bool box(Node& particle, double box[6]);

void registerTypes();

}  // namespace mirk::dynamics

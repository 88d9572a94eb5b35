// Components by direction: normals or velocities against a given direction and against each other. No host header.
#pragma once
#include <vector>

#include "volumes/componentMarks.h"

/// Three numbers an item.
using Triples = std::vector<double>;

/// The factor from degrees to radians here: saved scenes rely on its inexactness (180 degrees reach past pi).
constexpr float kComponentDegrees = 0.01746f;

/// Angle between two vectors in radians; 0 if one of them is zero.
double angleBetween(const double* a, const double* b);

/// An angle range in radians, ends included.
struct AngleRange
{
    float min, max;
};
/// Vectors whose angle to the direction lies in the range. None for a direction shorter than 0.0001.
Marks alongDirection(const Triples& vectors, const double direction[3], AngleRange range);

/// Neighbours of a vertex whose vector is within `angle` (radians) of the vertex's own.
Marks inBetweenVertices(const MeshTables& mesh, const Triples& vectors, float angle);
/// The same over edges for faces; a face that has such a neighbour is marked as well.
Marks inBetweenFaces(const MeshTables& mesh, const Triples& normals, float angle);
/// Along a row: an item is marked if it is within `angle` of the one before it. `stride` vectors stand for an item.
Marks inBetweenRow(const Triples& vectors, int count, int stride, float angle);

/// Edges between two faces whose normals have an angle in the range.
Marks edgesByAngle(const MeshTables& mesh, const Triples& faceNormals, AngleRange range);

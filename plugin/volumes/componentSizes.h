// Components by size: short edges, small faces, polygon shapes, weights. No host header.
#pragma once
#include <vector>

#include "volumes/componentMarks.h"

/// Edges whose vertices are at most `threshold` apart. `points` has `dimension` (up to 3) numbers a vertex; a vertex that
/// has none of its own, marked in `missing` unless that is empty, makes its edges drop out.
Marks shortEdges(const MeshTables& mesh, const std::vector<double>& points, int dimension, const Marks& missing,
                 double threshold);
/// Points of a row, three numbers each, that are at most `threshold` from the one before or after.
Marks shortRow(const std::vector<double>& points, double threshold);

/// Faces whose edges are together at most `threshold` long.
Marks facesByPerimeter(const MeshTables& mesh, const std::vector<double>& points, double threshold);
/// Values at most the threshold.
Marks upTo(const std::vector<double>& values, double threshold);

/// Limits of the numbers of vertices and edges; negative: none.
struct PolygonLimits
{
    int minVertices = -1, maxVertices = -1, minEdges = -1, maxEdges = -1;
};
Marks facesByCount(const MeshTables& mesh, const PolygonLimits& limits);

/// The first `count` weights above the threshold; missing ones are 0.
Marks byWeight(const double* weights, std::size_t length, int count, double threshold);

#include "volumes/componentSizes.h"

#include <cmath>

namespace {

double distance(const double* a, const double* b, int dimension)
{
    double squared = 0.0;
    for (int i = 0; i < dimension; ++i)
        squared += (b[i] - a[i]) * (b[i] - a[i]);
    return std::sqrt(squared);
}

bool within(int value, int min, int max)
{
    return value >= (min < 0 ? 0 : min) && value <= (max < 0 ? 999999999 : max);
}

} // namespace

Marks shortEdges(const MeshTables& mesh, const std::vector<double>& points, int dimension, const Marks& missing,
                 double threshold)
{
    Marks      edges(static_cast<std::size_t>(mesh.edgeCount), 0);
    const auto step = static_cast<std::size_t>(dimension);
    for (std::size_t e = 0; e < edges.size(); ++e) {
        const auto a = static_cast<std::size_t>(mesh.edgeVertices[2 * e]);
        const auto b = static_cast<std::size_t>(mesh.edgeVertices[2 * e + 1]);
        if (missing.empty() || (!missing[a] && !missing[b]))
            edges[e] = distance(&points[step * a], &points[step * b], dimension) <= threshold;
    }
    return edges;
}

Marks shortRow(const std::vector<double>& points, double threshold)
{
    Marks marks(points.size() / 3, 0);
    for (std::size_t i = 0; i + 1 < marks.size(); ++i)
        if (distance(&points[3 * i], &points[3 * i + 3], 3) <= threshold)
            marks[i] = marks[i + 1] = 1;
    return marks;
}

Marks facesByPerimeter(const MeshTables& mesh, const std::vector<double>& points, double threshold)
{
    std::vector<double> perimeters(static_cast<std::size_t>(mesh.faceCount()), 0.0);
    for (std::size_t face = 0; face < perimeters.size(); ++face) {
        for (int c = mesh.faceFirst[face]; c < mesh.faceFirst[face + 1]; ++c) {
            const auto edge = static_cast<std::size_t>(mesh.cornerEdges[static_cast<std::size_t>(c)]);
            const auto a = static_cast<std::size_t>(mesh.edgeVertices[2 * edge]);
            const auto b = static_cast<std::size_t>(mesh.edgeVertices[2 * edge + 1]);
            perimeters[face] += distance(&points[3 * a], &points[3 * b], 3);
        }
    }
    return upTo(perimeters, threshold);
}

Marks upTo(const std::vector<double>& values, double threshold)
{
    Marks marks(values.size(), 0);
    for (std::size_t i = 0; i < values.size(); ++i)
        marks[i] = values[i] <= threshold;
    return marks;
}

Marks facesByCount(const MeshTables& mesh, const PolygonLimits& limits)
{
    Marks faces(static_cast<std::size_t>(mesh.faceCount()), 0);
    for (std::size_t face = 0; face < faces.size(); ++face) {
        const int sides = mesh.faceFirst[face + 1] - mesh.faceFirst[face];   // as many edges as vertices
        faces[face] = within(sides, limits.minVertices, limits.maxVertices) &&
                      within(sides, limits.minEdges, limits.maxEdges);
    }
    return faces;
}

Marks byWeight(const double* weights, std::size_t length, int count, double threshold)
{
    Marks marks(static_cast<std::size_t>(count), 0);
    for (std::size_t i = 0; i < marks.size(); ++i)
        marks[i] = (i < length ? weights[i] : 0.0) > threshold;
    return marks;
}

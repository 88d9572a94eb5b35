#include "volumes/componentNormals.h"

#include <cmath>

namespace {

constexpr double kNoAngle = 0.0001;         // radians; below it two directions are the same
constexpr double kShortDirection = 0.0001;

double length(const double* v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

double flattened(double angle) { return angle < kNoAngle ? 0.0 : angle; }

bool near(const double* a, const double* b, float angle) { return flattened(angleBetween(a, b)) <= angle; }

const double* at(const Triples& vectors, std::size_t i) { return &vectors[3 * i]; }

/// Calls f(edge, faces of the edge) for all edges.
template <class F>
void eachEdge(const MeshTables& mesh, F&& f)
{
    const PositionLists    corners = positionsIn(mesh.cornerEdges, mesh.edgeCount);
    const std::vector<int> faceOf = cornerFaces(mesh);
    std::vector<int>       faces;
    for (std::size_t e = 0; e + 1 < corners.first.size(); ++e) {
        faces.clear();
        for (int i = corners.first[e]; i < corners.first[e + 1]; ++i)
            faces.push_back(faceOf[static_cast<std::size_t>(corners.items[static_cast<std::size_t>(i)])]);
        f(e, faces);
    }
}

} // namespace

double angleBetween(const double* a, const double* b)
{
    const double cross[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    return std::atan2(length(cross), a[0] * b[0] + a[1] * b[1] + a[2] * b[2]);
}

Marks alongDirection(const Triples& vectors, const double direction[3], AngleRange range)
{
    Marks marks(vectors.size() / 3, 0);
    if (!(length(direction) >= kShortDirection))
        return marks;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const double angle = flattened(angleBetween(at(vectors, i), direction));
        marks[i] = angle >= range.min && angle <= range.max;
    }
    return marks;
}

Marks inBetweenVertices(const MeshTables& mesh, const Triples& vectors, float angle)
{
    Marks marks(vectors.size() / 3, 0);
    for (std::size_t e = 0; e + 1 < mesh.edgeVertices.size(); e += 2) {
        const auto a = static_cast<std::size_t>(mesh.edgeVertices[e]);
        const auto b = static_cast<std::size_t>(mesh.edgeVertices[e + 1]);
        if (a < marks.size() && b < marks.size() && near(at(vectors, a), at(vectors, b), angle))
            marks[a] = marks[b] = 1;   // each is the other's neighbour
    }
    return marks;
}

Marks inBetweenFaces(const MeshTables& mesh, const Triples& normals, float angle)
{
    Marks marks(static_cast<std::size_t>(mesh.faceCount()), 0);
    eachEdge(mesh, [&](std::size_t, const std::vector<int>& faces) {
        for (std::size_t i = 0; i < faces.size(); ++i) {
            for (std::size_t j = i + 1; j < faces.size(); ++j) {
                const auto a = static_cast<std::size_t>(faces[i]), b = static_cast<std::size_t>(faces[j]);
                if (a != b && near(at(normals, a), at(normals, b), angle))
                    marks[a] = marks[b] = 1;
            }
        }
    });
    return marks;
}

Marks inBetweenRow(const Triples& vectors, int count, int stride, float angle)
{
    Marks      marks(static_cast<std::size_t>(count), 0);
    const auto step = static_cast<std::size_t>(stride);
    for (std::size_t i = 1; i < marks.size() && 3 * (i * step + 1) <= vectors.size(); ++i)
        marks[i] = near(at(vectors, (i - 1) * step), at(vectors, i * step), angle);
    return marks;
}

Marks edgesByAngle(const MeshTables& mesh, const Triples& faceNormals, AngleRange range)
{
    Marks marks(static_cast<std::size_t>(mesh.edgeCount), 0);
    eachEdge(mesh, [&](std::size_t edge, const std::vector<int>& faces) {
        if (faces.size() != 2)
            return;
        const double angle = angleBetween(at(faceNormals, static_cast<std::size_t>(faces[0])),
                                          at(faceNormals, static_cast<std::size_t>(faces[1])));
        marks[edge] = angle >= range.min && angle <= range.max;
    });
    return marks;
}

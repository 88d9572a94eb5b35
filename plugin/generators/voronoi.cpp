#include "generators/voronoi.h"

#include <Wm5Delaunay2.h>
#include <Wm5Delaunay3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace voronoi {

namespace {

constexpr float  kEpsilon = 1e-4f;        // of the dimension of a set of points
constexpr double kShortest = 1e-20;       // squared length from which a vector is made a unit vector
constexpr double kDegrees = 57.2957795;

/// Vertices of the triangulation, of `N` coordinates, in memory that the triangulation does not own.
template <int N>
struct Vertices
{
    struct Free { void operator()(float* p) const { std::free(p); } };

    std::unique_ptr<float[], Free> coordinates;
    std::vector<int>               point;   // by vertex

    explicit Vertices(std::size_t most)
        : coordinates(static_cast<float*>(std::malloc(std::max<std::size_t>(most, 1) * N * sizeof(float))))
    {
        point.reserve(most);
    }
    int    count() const { return static_cast<int>(point.size()); }
    float* at(std::size_t vertex) const { return coordinates.get() + N * vertex; }
    void   add(const float* given, int index)
    {
        if (!coordinates || !std::all_of(given, given + N, [](float c) { return std::isfinite(c); }))
            return;
        std::copy(given, given + N, at(point.size()));
        point.push_back(index);
    }
};

/// Where the library compares points: whole steps from the corner of their box, cut off.
template <int N>
using GridPoint = std::array<std::int64_t, N>;

template <int N, class Information>
GridPoint<N> gridPoint(const float* vertex, const Information& box, float steps)
{
    const float  scale = 1.0f / box.mMaxRange;
    GridPoint<N> out{};
    for (int k = 0; k < N; ++k)
        out[k] = static_cast<std::int64_t>((vertex[k] - box.mMin[k]) * scale * steps);
    return out;
}

std::int64_t determinant(const GridPoint<3>& a, const GridPoint<3>& b, const GridPoint<3>& c)
{
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
}
std::int64_t determinant(const GridPoint<2>& a, const GridPoint<2>& b) { return a[0] * b[1] - a[1] * b[0]; }

/// Six times the volume of the simplex that the triangulation begins with, on the grid; above 0 as it has to be.
template <class Information>
std::int64_t firstSimplex(const std::array<GridPoint<3>, 4>& at, const Information& box)
{
    const auto from = [&](int k) { return GridPoint<3>{at[k][0] - at[0][0], at[k][1] - at[0][1], at[k][2] - at[0][2]}; };
    return determinant(from(1), from(2), from(3)) * (box.mExtremeCCW ? 1 : -1);
}
template <class Information>
std::int64_t firstSimplex(const std::array<GridPoint<2>, 3>& at, const Information& box)
{
    const auto from = [&](int k) { return GridPoint<2>{at[k][0] - at[0][0], at[k][1] - at[0][1]}; };
    return determinant(from(1), from(2)) * (box.mExtremeCCW ? 1 : -1);
}

/// Puts the vertices onto the grid if the library, which otherwise does so comparison by comparison, would lose its way:
/// when different vertices meet on the grid, and when the simplex it begins with is flat there.
template <int N, class Vector>
void makeSafe(Vertices<N>& vertices, float steps)
{
    typename Vector::Information box;
    Vector::GetInformation(vertices.count(), reinterpret_cast<const Vector*>(vertices.coordinates.get()), kEpsilon, box);
    if (box.mDimension < N || !(box.mMaxRange > 0) || !std::isfinite(1.0f / box.mMaxRange))
        return;
    const int                                  count = vertices.count();
    std::vector<std::pair<GridPoint<N>, int>> onGrid(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        onGrid[static_cast<std::size_t>(i)] = {gridPoint<N>(vertices.at(static_cast<std::size_t>(i)), box, steps), i};
    std::array<GridPoint<N>, N + 1> extremes;
    for (int k = 0; k <= N; ++k)
        extremes[static_cast<std::size_t>(k)] = onGrid[static_cast<std::size_t>(box.mExtreme[k])].first;
    bool safe = firstSimplex(extremes, box) > 0;
    const std::vector<std::pair<GridPoint<N>, int>> places = onGrid;
    std::sort(onGrid.begin(), onGrid.end());
    for (std::size_t i = 1; i < onGrid.size() && safe; ++i)
        safe = onGrid[i].first != onGrid[i - 1].first ||
               std::equal(vertices.at(static_cast<std::size_t>(onGrid[i].second)),
                          vertices.at(static_cast<std::size_t>(onGrid[i].second)) + N,
                          vertices.at(static_cast<std::size_t>(onGrid[i - 1].second)));
    for (std::size_t i = 0; i < places.size() && !safe; ++i)
        std::transform(places[i].first.begin(), places[i].first.end(), vertices.at(i),
                       [](std::int64_t step) { return static_cast<float>(step); });
}

/// 1 / sqrt(x) from the processor's estimate and one Newton step.
float reciprocalRoot(float x)
{
#if defined(__SSE__)
    const float estimate = _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(x)));
    return estimate * (1.5f - 0.5f * x * estimate * estimate);
#else
    return 1.0f / std::sqrt(x);
#endif
}

void normalize(float v[3])
{
    const float lengthSq = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
    if (lengthSq > static_cast<float>(kShortest)) {
        const float scale = reciprocalRoot(lengthSq);
        for (int k = 0; k < 3; ++k)
            v[k] *= scale;
    }
}

} // namespace

void addPairs(const int* corners, int simplexCount, int cornerCount, const std::vector<int>& vertexPoint,
              Neighbors& neighbors)
{
    for (int s = 0; s < simplexCount; ++s, corners += cornerCount)
        for (int a = 0; a < cornerCount; ++a) {
            std::vector<int>& list = neighbors[vertexPoint[static_cast<std::size_t>(corners[a])]];
            for (int b = 0; b < cornerCount; ++b) {
                const int point = vertexPoint[static_cast<std::size_t>(corners[b])];
                if (a != b && std::find(list.begin(), list.end(), point) == list.end())
                    list.push_back(point);
            }
        }
}

Space neighborsInSpace(const std::vector<double>& points)
{
    Space             space;
    const std::size_t pointCount = points.size() / 3;
    Vertices<3>       vertices(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
        const float narrow[3] = {static_cast<float>(points[3 * i]), static_cast<float>(points[3 * i + 1]),
                                 static_cast<float>(points[3 * i + 2])};
        vertices.add(narrow, static_cast<int>(i));
    }
    if (vertices.count() < 3)
        return space;
    using Vector = Wm5::Vector3<float>;
    makeSafe<3, Vector>(vertices, 1024.0f);
    Wm5::Delaunay3<float> delaunay(vertices.count(), reinterpret_cast<Vector*>(vertices.coordinates.get()), kEpsilon,
                                   false, Wm5::Query::QT_INT64);
    space.dimension = delaunay.GetDimension();
    if (space.dimension == 3)
        addPairs(delaunay.GetIndices(), delaunay.GetNumSimplices(), 4, vertices.point, space.neighbors);
    if (space.dimension == 2)
        for (int k = 0; k < 3; ++k) {
            space.plane.origin[k] = delaunay.GetPlaneOrigin()[k];
            for (int d : {0, 1})
                space.plane.directions[d][k] = delaunay.GetPlaneDirection(d)[k];
        }
    return space;
}

void planeFrame(const Plane& plane, float frame[4][4])
{
    const float* x = plane.directions[0];
    const float* y = plane.directions[1];
    const float  z[3] = {x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2], x[0] * y[1] - x[1] * y[0]};
    const float* rows[4] = {x, y, z, plane.origin};
    for (int r = 0; r < 4; ++r) {
        std::copy(rows[r], rows[r] + 3, frame[r]);
        frame[r][3] = r == 3 ? 1.0f : 0.0f;
        if (r < 3)
            normalize(frame[r]);
    }
}

Neighbors neighborsInPlane(const std::vector<double>& points, const float toPlane[4][4])
{
    Neighbors         neighbors;
    const std::size_t pointCount = points.size() / 3;
    Vertices<2>       vertices(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
        float p[3], inPlane[2];
        for (int k = 0; k < 3; ++k)
            p[k] = static_cast<float>(points[3 * i + static_cast<std::size_t>(k)]);
        for (int k = 0; k < 2; ++k)
            inPlane[k] = p[0] * toPlane[0][k] + p[1] * toPlane[1][k] + p[2] * toPlane[2][k] + toPlane[3][k];
        vertices.add(inPlane, static_cast<int>(i));
    }
    if (vertices.count() < 3)
        return neighbors;
    using Vector = Wm5::Vector2<float>;
    makeSafe<2, Vector>(vertices, 65536.0f);
    Wm5::Delaunay2<float> delaunay(vertices.count(), reinterpret_cast<Vector*>(vertices.coordinates.get()), kEpsilon,
                                   false, Wm5::Query::QT_INT64);
    if (delaunay.GetDimension() == 2)
        addPairs(delaunay.GetIndices(), delaunay.GetNumSimplices(), 3, vertices.point, neighbors);
    return neighbors;
}

Cut cutBetween(const double point[3], const double neighbor[3], double distance)
{
    const double share = std::max(distance, 0.0) + 0.5;
    double       v[3], lengthSq = 0;
    Cut          cut;
    for (int k = 0; k < 3; ++k) {
        v[k] = point[k] - neighbor[k];
        lengthSq += v[k] * v[k];
        cut.center[k] = v[k] * share + neighbor[k];
    }
    if (lengthSq > kShortest)
        for (double& c : v)
            c /= std::sqrt(lengthSq);
    cut.rotate[0] = std::asin(std::clamp(v[1], -1.0, 1.0)) * -kDegrees;
    cut.rotate[1] = std::atan2(v[0], v[2]) * kDegrees;
    return cut;
}

double lengthScale(int unit)
{
    constexpr double scales[] = {0.394, 0.033, 0.011, 1.0, 10.0, 1.0, 1.0, 0.01};
    return unit >= 1 && unit <= 8 ? scales[unit - 1] : 1.0;
}

} // namespace voronoi

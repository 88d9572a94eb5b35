// Which Voronoi cells touch, and the planes between them: laws, and the nearest two points of many places.
#include "generators/voronoi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace {

using voronoi::Neighbors;

constexpr double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();

/// As the node calls it, with the inverse of the frame of a plane through the origin along two axes.
Neighbors planar(const std::vector<double>& points)
{
    const float toPlane[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    return voronoi::neighborsInPlane(points, toPlane);
}

void expectConsistent(const Neighbors& neighbors, std::size_t pointCount)
{
    for (const auto& [point, others] : neighbors) {
        EXPECT_TRUE(point >= 0 && std::size_t(point) < pointCount);
        EXPECT_EQ(std::set<int>(others.begin(), others.end()).size(), others.size()) << "a neighbour comes once";
        for (int other : others) {
            ASSERT_TRUE(neighbors.count(other));
            const std::vector<int>& back = neighbors.at(other);
            EXPECT_EQ(std::count(back.begin(), back.end(), point), 1) << point << " and " << other;
        }
    }
}

/// The nearest two points of any place have cells that touch.
void expectNearestTwoTouch(const Neighbors& neighbors, const std::vector<double>& points, bool flat, std::mt19937& random)
{
    std::uniform_real_distribution<double> place(0, 1024);
    for (int k = 0; k < 3000; ++k) {
        const double q[3] = {place(random), place(random), flat ? 0 : place(random)};
        int          best = -1, second = -1;
        double       bestSq = kInf, secondSq = kInf;
        for (int i = 0; std::size_t(3 * i) < points.size(); ++i) {
            double distanceSq = 0;
            for (int c = 0; c < 3; ++c)
                distanceSq += (points[3 * i + c] - q[c]) * (points[3 * i + c] - q[c]);
            if (distanceSq < bestSq)
                second = best, secondSq = bestSq, best = i, bestSq = distanceSq;
            else if (distanceSq < secondSq)
                second = i, secondSq = distanceSq;
        }
        const std::vector<int>& others = neighbors.at(best);
        EXPECT_EQ(std::count(others.begin(), others.end(), second), 1) << best << " and " << second;
    }
}

TEST(Voronoi, NearestTwoPointsOfAPlaceTouch)
{
    std::mt19937 random(7);
    for (int count : {5, 20, 200})
        for (bool flat : {false, true}) {
            std::vector<double> points{0, 0, 0, 1024, 1024, flat ? 0.0 : 1024.0};   // whole steps of the grid: exact
            for (int i = 2; i < count; ++i)
                for (int c = 0; c < 3; ++c)
                    points.push_back(flat && c == 2 ? 0.0 : double(random() % 1025));
            const voronoi::Space space = voronoi::neighborsInSpace(points);
            EXPECT_EQ(space.dimension, flat ? 2 : 3);
            const Neighbors neighbors = flat ? planar(points) : space.neighbors;
            EXPECT_EQ(neighbors.size(), points.size() / 3);
            expectConsistent(neighbors, points.size() / 3);
            expectNearestTwoTouch(neighbors, points, flat, random);
        }
}

TEST(Voronoi, SimplicesGivePairsOnceAndInOrder)
{
    Neighbors neighbors;
    const int corners[] = {0, 1, 2, 3, 3, 1, 2, 4};   // two tetrahedra with a common face
    voronoi::addPairs(corners, 2, 4, {10, 11, 12, 13, 14}, neighbors);
    const Neighbors expected{{10, {11, 12, 13}}, {11, {10, 12, 13, 14}}, {12, {10, 11, 13, 14}}, {13, {10, 11, 12, 14}}, {14, {13, 11, 12}}};
    EXPECT_EQ(neighbors, expected);
}

TEST(Voronoi, PointsWithoutACellHaveNoEntry)
{
    const std::vector<double> corners{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::vector<double>       points{kNan, 0, 0};
    points.insert(points.end(), corners.begin(), corners.end());
    points.insert(points.end(), {1, 0, 0, 0, kInf, 0, 1e39, 0, 0});   // a duplicate; no single-precision numbers
    const voronoi::Space space = voronoi::neighborsInSpace(points);
    EXPECT_EQ(space.dimension, 3);
    ASSERT_EQ(space.neighbors.size(), 4u);
    for (int point : {1, 2, 3, 4})
        EXPECT_EQ(space.neighbors.at(point).size(), 3u);
}

TEST(Voronoi, DimensionsWithoutCells)
{
    struct Case { const char* what; std::vector<double> points; int dimension; };
    std::vector<double> line, same;
    for (int i = 0; i < 10; ++i) {
        line.insert(line.end(), {1.0 * i, 2.0 * i, -3.0 * i});
        same.insert(same.end(), {1, 2, 3});
    }
    const Case cases[] = {
        {"none", {}, 0}, {"one", {1, 2, 3}, 0}, {"two", {1, 2, 3, 4, 5, 6}, 0}, {"a line", line, 1}, {"one place", same, 0},
        {"three", {0, 0, 0, 1, 0, 0, 0, 1, 0}, 2}, {"no places", {kNan, 0, 0, 0, kNan, 0, 0, 0, kNan, kInf, 0, 0}, 0},
    };
    for (const Case& c : cases) {
        const voronoi::Space space = voronoi::neighborsInSpace(c.points);
        EXPECT_EQ(space.dimension, c.dimension) << c.what;
        EXPECT_TRUE(space.neighbors.empty()) << c.what;
        EXPECT_EQ(planar(c.points).size(), c.dimension == 2 ? 3u : 0u) << c.what;
    }
}

/// Sets that a triangulation on a coarse grid stumbles over: clusters, thin sets, twins a last digit apart.
TEST(Voronoi, AwkwardSetsOfPoints)
{
    std::mt19937                           random(11);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int k = 0; k < 600; ++k) {
        std::vector<double> points;
        const int           kind = k % 6, count = 3 + int(random() % 60);
        const double        thin = std::pow(10.0, -double(random() % 6));
        for (int i = 0; i < count; ++i) {
            double p[3] = {unit(random), unit(random), unit(random)};
            if (kind == 0)
                p[2] *= thin;
            if (kind == 1)
                for (double& c : p)
                    c *= i % 2 ? 1 : thin;
            if (kind == 2)
                for (double& c : p)
                    c = std::round(c * 2);
            if (kind == 3)
                for (double& c : p)
                    c = std::pow(10.0, c * 38) * (random() % 2 ? 1 : -1);
            if (kind == 4 && i > 2)
                for (int c = 0; c < 3; ++c)
                    p[c] = points[std::size_t(c)] * (1 + 1e-7 * int(random() % 5)) + (random() % 3 ? 0 : 1e-3 * unit(random));
            if (kind == 5) {   // an ellipsoid, thin
                const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
                p[0] /= length, p[1] /= length, p[2] *= thin / length;
            }
            points.insert(points.end(), p, p + 3);
        }
        const voronoi::Space space = voronoi::neighborsInSpace(points);
        expectConsistent(space.neighbors, points.size() / 3);
        float frame[4][4];
        voronoi::planeFrame(space.plane, frame);
        expectConsistent(voronoi::neighborsInPlane(points, frame), points.size() / 3);
    }
}

TEST(Voronoi, FrameOfAPlane)
{
    voronoi::Plane plane{{1, 2, 3}, {{0, 3, 4}, {-2, 0, 0}}};
    float          f[4][4];
    voronoi::planeFrame(plane, f);
    const float expected[4][4] = {{0, 0.6f, 0.8f, 0}, {-1, 0, 0, 0}, {0, -0.8f, 0.6f, 0}, {1, 2, 3, 1}};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(f[r][c], expected[r][c], 1e-6) << r << c;
}

TEST(Voronoi, CutsStandBetweenThePoints)
{
    std::mt19937                           random(3);
    std::uniform_real_distribution<double> place(-5, 5), share(0, 0.5);
    for (int k = 0; k < 200; ++k) {
        double a[3], b[3], v[3], length = 0;
        for (int c = 0; c < 3; ++c) {
            a[c] = place(random), b[c] = k % 10 == c ? a[c] : place(random);
            v[c] = a[c] - b[c], length += v[c] * v[c];
        }
        length = std::sqrt(length);
        const double       distance = k % 3 ? share(random) : 0;
        const voronoi::Cut cut = voronoi::cutBetween(a, b, distance);
        // z turned about x, then about y
        const double x = cut.rotate[0] * M_PI / 180, y = cut.rotate[1] * M_PI / 180;
        const double n[3] = {std::cos(x) * std::sin(y), -std::sin(x), std::cos(x) * std::cos(y)};
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(n[c], v[c] / length, 1e-7);
            EXPECT_NEAR(cut.center[c], (a[c] + b[c]) / 2 + distance * v[c], 1e-12);
        }
    }
    const double zero[3] = {0, 0, 0}, up[3] = {0, 2, 0};
    EXPECT_DOUBLE_EQ(voronoi::cutBetween(up, zero, -3).center[1], 1);   // negative counts as 0
    EXPECT_NEAR(voronoi::cutBetween(up, zero, 0).rotate[0], -90, 1e-6);
    for (double angle : voronoi::cutBetween(up, up, 0).rotate)          // one place: nothing to divide by
        EXPECT_DOUBLE_EQ(angle, 0);
}

TEST(Voronoi, LengthScaleOfUnits)
{
    const double expected[] = {1, 0.394, 0.033, 0.011, 1, 10, 1, 1, 0.01, 1};
    for (int unit = 0; unit < 10; ++unit)
        EXPECT_DOUBLE_EQ(voronoi::lengthScale(unit), expected[unit]) << unit;
    EXPECT_DOUBLE_EQ(voronoi::lengthScale(-1), 1);
}

} // namespace

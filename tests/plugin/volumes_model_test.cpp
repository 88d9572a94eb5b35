// Volumes against numbers worked out by hand; searching by blocks and trees against the plain loop.
#include "volumes/influence.h"
#include "volumes/volume.h"
#include "volumes/volumeOutline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace volume;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Scale along the axes, then a move.
Volume placed(Kind kind, Vec scale, Vec move)
{
    Volume       v;
    const double s[3] = {scale.x, scale.y, scale.z}, t[3] = {move.x, move.y, move.z};
    v.envelope = 1.0;
    v.kind = kind;
    for (int i = 0; i < 3; ++i) {
        v.matrix.m[i][i] = s[i];
        v.inverse.m[i][i] = 1.0 / s[i];
        v.matrix.m[3][i] = t[i];
        v.inverse.m[3][i] = -t[i] / s[i];
    }
    v.origin = move;
    setBox(v);
    return v;
}

/// Turned about an axis through two others, with a shear: nothing is along the world's axes any more.
Volume turned(Kind kind, std::mt19937& random)
{
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    Volume       v = placed(kind, {0.4 + 0.3 * real(random), 0.5 + 0.3 * real(random), 0.45 + 0.3 * real(random)}, {});
    const double a = 3.0 * real(random), c = std::cos(a), s = std::sin(a);
    const int    p = std::uniform_int_distribution<int>(0, 2)(random), q = (p + 1) % 3;
    // rows of the matrix turn from the right, columns of the inverse from the left by the opposite angle
    for (int i = 0; i < 3; ++i) {
        const double mp = v.matrix.m[i][p], mq = v.matrix.m[i][q];
        v.matrix.m[i][p] = c * mp - s * mq, v.matrix.m[i][q] = s * mp + c * mq;
    }
    for (int j = 0; j < 3; ++j) {
        const double ip = v.inverse.m[p][j], iq = v.inverse.m[q][j];
        v.inverse.m[p][j] = c * ip - s * iq, v.inverse.m[q][j] = s * ip + c * iq;
    }
    const Vec move{real(random), real(random), real(random)};
    v.matrix.m[3][0] = move.x, v.matrix.m[3][1] = move.y, v.matrix.m[3][2] = move.z;
    const Vec back = transformVector({-move.x, -move.y, -move.z}, v.inverse);
    v.inverse.m[3][0] = back.x, v.inverse.m[3][1] = back.y, v.inverse.m[3][2] = back.z;
    v.origin = move;
    v.capsule = {0.7, 0.9, {0.8, 0.5, 0.6}, {1.1, 0.9, 0.7}};
    setBox(v);
    return v;
}

} // namespace

TEST(Volume, DistanceInSpheresAndCubes)
{
    struct Case { const char* when; Kind kind; Vec local; double d; };
    const Case cases[] = {
        {"3-4-5 in a sphere", Kind::kSphere, {0.3, 0.0, -0.4}, 0.5},
        {"on the surface", Kind::kSphere, {0.6, 0.8, 0.0}, 1.0},
        {"just past it", Kind::kSphere, {0.6, 0.8, 0.01}, kOutside},
        {"NaN", Kind::kSphere, {kNan, 0.0, 0.0}, kOutside},
        {"of a cube the largest coordinate", Kind::kCube, {0.3, -0.75, 0.5}, 0.75},
        {"a corner", Kind::kCube, {1.0, -1.0, 1.0}, 1.0},
        {"past one side", Kind::kCube, {0.0, 1.0000001, 0.0}, kOutside},
        {"the middle", Kind::kCube, {0.0, 0.0, 0.0}, 0.0},
        {"so near that the length counts", Kind::kCube, {3e-7, 4e-7, 0.0}, 5e-7},
        {"NaN", Kind::kCube, {0.0, kNan, 0.0}, kOutside},
    };
    for (const Case& c : cases) {
        EXPECT_NEAR(c.kind == Kind::kSphere ? sphereDistance(c.local) : cubeDistance(c.local), c.d, 1e-15) << c.when;
        // the same point in a volume that is scaled and moved
        const Volume v = placed(c.kind, {2.0, 4.0, 0.5}, {1.0, -2.0, 3.0});
        EXPECT_NEAR(distance(v, transformPoint(c.local, v.matrix)), c.d, 1e-12) << c.when;
    }
}

TEST(Volume, RegionsOfACapsule)
{
    struct Case { const char* when; Capsule capsule; Vec at; Region region; double d; };
    const Capsule plain{2.0, 1.0, {1.0, 0.5, 2.0}, {3.0, 0.25, 1.0}};
    const Capsule wideBottom{0.1, 1.0, {0.2, 0.1, 0.2}, {1.0, 5.0, 1.0}};
    const Case    cases[] = {
        // a third of the way down from 2 to -1: rx = 1 + 2/3, rz = 2 - 1/3
        {"barrel", plain, {0.5, 1.0, 0.5}, Region::kBarrel, std::sqrt(0.09 + 0.09)},
        {"the height does not count in a barrel", plain, {0.0, 1.9, 0.0}, Region::kBarrel, 0.0},
        {"y = t is barrel", plain, {0.5, 2.0, 0.0}, Region::kBarrel, 0.5},
        {"just above is cap", plain, {0.0, 2.25, 0.0}, Region::kTopCap, 0.5},
        {"top cap, all axes", plain, {0.2, 2.1, 0.4}, Region::kTopCap, std::sqrt(0.04 + 0.04 + 0.04)},
        {"corner of the top cap's box", plain, {0.9, 2.4, 0.0}, Region::kNone, kOutside},
        {"above", plain, {0.0, 2.6, 0.0}, Region::kNone, kOutside},
        {"bottom cap", plain, {1.5, -1.125, 0.0}, Region::kBottomCap, std::sqrt(0.25 + 0.25)},
        {"beside the barrel", plain, {0.0, 0.5, 2.1}, Region::kNone, kOutside},
        {"within the wider radius, past the local one", plain, {2.5, 1.9, 0.0}, Region::kNone, kOutside},
        // the top cap's range refuses, the bottom cap's reaches up to +b
        {"bottom cap far up", wideBottom, {0.5, 0.5, 0.0}, Region::kBottomCap, std::sqrt(0.25 + 0.09)},
        {"no barrel without height", {0.0, 0.0, {1, 1, 1}, {1, 1, 1}}, {0.0, 0.0, 0.0}, Region::kNone, kOutside},
        {"caps alone", {0.0, 0.0, {1, 1, 1}, {1, 1, 1}}, {0.0, 0.5, 0.0}, Region::kTopCap, 0.5},
        {"no width", {1.0, 1.0, {0, 1, 1}, {0, 1, 1}}, {0.0, 0.0, 0.0}, Region::kNone, kOutside},
        {"NaN", plain, {0.0, kNan, 0.0}, Region::kNone, kOutside},
    };
    for (const Case& c : cases) {
        Region region = Region::kBarrel;
        EXPECT_NEAR(capsuleDistance(c.capsule, c.at, &region), c.d, 1e-12) << c.when;
        EXPECT_EQ(region, c.region) << c.when;
    }
}

TEST(Volume, CloudSpheres)
{
    EXPECT_DOUBLE_EQ(cloudDistance({3, 0, 0}, {1, 0, 0}, 4.0), 0.5);
    EXPECT_DOUBLE_EQ(cloudDistance({3, 0, 0}, {1, 0, 0}, 2.0), 1.0);
    EXPECT_EQ(cloudDistance({3, 0, 0}, {1, 0, 0}, 1.9), kOutside);
    EXPECT_EQ(cloudDistance({1, 0, 0}, {1, 0, 0}, 0.0), kOutside);
    EXPECT_EQ(cloudDistance({1, 0, 0}, {1, 0, 0}, -1.0), kOutside);
    const Vec    centers[] = {{0, 0, 0}, {100, 0, 0}, {5, 1, 0}};
    const double radii[] = {1.0, 0.0, 2.0};
    const Box    box = cloudBox(centers, radii, 3);   // radius 0 has no part in it
    EXPECT_EQ(box.low.x, -1.0);
    EXPECT_EQ(box.high.x, 7.0);
    EXPECT_EQ(box.high.y, 3.0);
    EXPECT_TRUE(cloudBox(centers, radii + 1, 1).empty());
}

TEST(Volume, TargetsAndDirections)
{
    const Volume sphere = placed(Kind::kSphere, {2, 2, 2}, {1, 2, 3});
    Volume       capsule = placed(Kind::kCapsule, {2, 2, 2}, {10, 0, 0});
    capsule.direction = Direction::kAwayFromCenter;
    Vec at;
    ASSERT_TRUE(target(sphere, {2, 2, 3}, true, at));
    EXPECT_EQ(at.y, 2.0);
    struct Case { const char* when; Vec point, target, direction; };
    const Case cases[] = {   // offsets 1 and radii 1 in a frame twice the size
        {"barrel: the axis at its height", {11, 1, 0}, {10, 1, 0}, {1, 0, 0}},
        {"top cap", {10.5, 3, 0}, {10, 2, 0}, {0.5, 1, 0}},
        {"bottom cap", {10, -3.5, 0.5}, {10, -2, 0}, {0, -1.5, 0.5}},
    };
    for (const Case& c : cases) {
        Vec direction{7, 7, 7};
        ASSERT_TRUE(target(capsule, c.point, true, at)) << c.when;
        EXPECT_NEAR(length(at - c.target), 0.0, 1e-12) << c.when;
        EXPECT_NEAR(length(targetInside(capsule, c.point) - c.target), 0.0, 1e-12) << c.when;
        directionAt(capsule, c.point, direction);
        EXPECT_NEAR(length(direction - c.direction), 0.0, 1e-12) << c.when;
    }
    Vec kept{7, 7, 7};
    EXPECT_FALSE(target(capsule, {20, 0, 0}, true, at));
    directionAt(capsule, {20, 0, 0}, kept);
    EXPECT_EQ(kept.x, 7.0);
    capsule.direction = Direction::kAlongY;
    directionAt(capsule, {20, 0, 0}, kept);
    EXPECT_EQ(kept.y, 2.0);   // scaled as the matrix is
    EXPECT_NEAR(openDistance(sphere, {7, 2, 3}), 3.0, 1e-12);
    EXPECT_NEAR(openDistance(capsule, {10, 6, 0}), 2.0, 1e-12);   // of the top cap
}

TEST(Volume, PerspectiveMatricesDivide)
{
    Volume v = placed(Kind::kSphere, {1, 1, 1}, {0, 0, 0});
    v.inverse.m[3][3] = 2.0;   // w = 2
    v.matrix.m[3][3] = 0.5;
    setBox(v);
    EXPECT_NEAR(distance(v, {1.0, 0.0, 0.0}), 0.5, 1e-15);
    EXPECT_TRUE(v.box.contains({1e30, 0.0, 0.0}));
}

TEST(Volume, OutlinesLieOnTheSurface)
{
    std::mt19937 random(5);
    for (const Kind kind : {Kind::kSphere, Kind::kCube, Kind::kCapsule}) {
        const Volume v = turned(kind, random);
        for (const auto& strip : outline(v)) {
            for (const Vec& p : strip)
                EXPECT_NEAR(openDistance(v, transformPoint(p, v.matrix)), 1.0, 1e-9) << int(kind);
        }
    }
}

namespace {

/// What the plain loops over volumes, points and spheres find, with the slots that they fill.
InfluenceTable plainLoop(const std::vector<Volume>& volumes, const Cloud& cloud, const std::vector<Vec>& points,
                         int stride)
{
    InfluenceTable table(stride, int(points.size()));
    for (std::size_t v = 0; v < volumes.size(); ++v) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (volumes[v].kind != Kind::kCloud) {
                const double d = distance(volumes[v], points[i]);
                if (d != kOutside)
                    table.offer(int(i), d, int(v), -1);
                continue;
            }
            for (std::size_t j = volumes[v].cloudBegin; j < volumes[v].cloudEnd; ++j) {
                const double d = cloudDistance(points[i], cloud.positions[j], cloud.radii[j]);
                if (d != kOutside)
                    table.offer(int(i), d, int(v), int(j));
            }
        }
    }
    return table;
}

struct Scene
{
    std::vector<Volume> volumes;
    Cloud               cloud;
    std::vector<Vec>    points;
};

Scene randomScene(unsigned seed, int pointCount)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    Scene s;
    for (int i = 0; i < 12; ++i) {
        if (i % 4 == 3) {   // a cloud: radii of all sizes, some that hold nothing
            Volume v;
            v.envelope = 1.0;
            v.kind = Kind::kCloud;
            v.cloudBegin = s.cloud.positions.size();
            for (int j = 0; j < 300; ++j) {
                s.cloud.positions.push_back({real(random), real(random), real(random)});
                s.cloud.radii.push_back(j % 50 == 0 ? 0.0 : j % 51 == 0 ? -1.0 : std::pow(10.0, real(random) - 1.0));
            }
            s.cloud.positions.back().x = kNan;
            v.cloudEnd = s.cloud.positions.size();
            v.box = cloudBox(&s.cloud.positions[v.cloudBegin], &s.cloud.radii[v.cloudBegin], 299);
            s.volumes.push_back(v);
        } else {
            s.volumes.push_back(turned(static_cast<Kind>(i % 4), random));
        }
    }
    for (int i = 0; i < pointCount; ++i)
        s.points.push_back({2.0 * real(random), 2.0 * real(random), 2.0 * real(random)});
    s.points[7] = {kNan, 0.0, 0.0};
    return s;
}

} // namespace

TEST(InfluenceSearch, SameTableAsThePlainLoop)
{
    for (const int stride : {1, 3, 40}) {
        const Scene           s = randomScene(unsigned(stride), 700);
        const InfluenceTable  expected = plainLoop(s.volumes, s.cloud, s.points, stride);
        const Box             everywhere{{-9, -9, -9}, {9, 9, 9}};
        const InfluenceSearch search(s.volumes, s.cloud, everywhere);
        int                   reached = 0;
        for (std::size_t from = 0; from < s.points.size(); from += PointBlock::kCapacity) {
            PointBlock block;
            for (; block.count < PointBlock::kCapacity && from + std::size_t(block.count) < s.points.size();
                 ++block.count) {
                const Vec p = s.points[from + std::size_t(block.count)];
                block.x[block.count] = p.x, block.y[block.count] = p.y, block.z[block.count] = p.z;
            }
            block.bound();
            InfluenceTable   table(stride, block.count);
            std::vector<int> near;
            Candidates       found;
            search.volumesNear(block.box, near);
            for (const int v : near) {
                search.find(v, block, found);
                for (std::size_t k = 0; k < found.size(); ++k)
                    table.offer(found.point[k], found.d[k], v, found.cloud[k]);
            }
            for (int i = 0; i < block.count; ++i) {
                const int at = int(from) + i;
                ASSERT_EQ(table.count(i), expected.count(at)) << at;
                reached += table.count(i) > 0;
                for (int k = 0; k < table.count(i); ++k) {
                    const auto a = std::size_t(table.first(i) + k), b = std::size_t(expected.first(at) + k);
                    EXPECT_EQ(table.d[a], expected.d[b]);
                    EXPECT_EQ(table.bound[a], expected.bound[b]);
                    EXPECT_EQ(table.cloud[a], expected.cloud[b]);
                }
            }
        }
        EXPECT_GT(reached, 100);
        EXPECT_LT(reached, 690);
    }
}

TEST(InfluenceTable, FullTablesReplaceTheFirstFartherOne)
{
    InfluenceTable table(3, 1);
    int            order[6];
    for (const double d : {0.5, 0.9, 0.2})
        table.offer(0, d, 0, -1);
    EXPECT_EQ(table.offer(0, 0.9, 1, -1), -1);          // none is farther
    EXPECT_EQ(table.offer(0, 0.4, 2, -1), 0);           // 0.5 goes, though 0.9 is farther
    ASSERT_EQ(table.ordered(0, order), 3);              // 0.4, 0.9, 0.2
    EXPECT_EQ(order[0], 1);                             // farther than the one in front: goes there
    EXPECT_EQ(order[1], 0);
    EXPECT_EQ(order[2], 2);
}

TEST(InfluenceSearch, CloudsAwayFromThePointsReachNothing)
{
    Scene                 s = randomScene(3, 300);
    const Box             far{{50, 50, 50}, {60, 60, 60}};
    const InfluenceSearch search(s.volumes, s.cloud, far);
    PointBlock            block;
    block.count = 1;
    block.x[0] = block.y[0] = block.z[0] = 0.0;
    block.bound();
    std::vector<int> near;
    search.volumesNear(block.box, near);
    for (const int v : near)
        EXPECT_NE(s.volumes[std::size_t(v)].kind, Kind::kCloud);
}

// Cutting and closing meshes: what the sides of a cut add up to, what stays closed, which pieces faces give.
#include <fstream>
#include <iterator>

#include "io/obj.h"
#include "mesh/cut_laws.h"

namespace mirk::test {
namespace {

struct Whole { const char* name; Ref<MeshBody> mesh; };

std::vector<Whole> solids()
{
    return {{"cube", primitives::cube(2, 2, 2, 1, 1, 1)}, {"divided cube", primitives::cube(1, 2, 3, 4, 3, 5)},
            {"cylinder with whole caps", primitives::cylinder(1, 2, 24, 3, 0)}, {"torus", primitives::torus(1, 0.4, 24, 12)},
            {"sphere", primitives::sphere(1, 20, 12)}, {"icosphere", icosphere(3)}};
}

TEST(Cut, BothSidesAddUpToTheWhole)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-0.9, 0.9);
    for (const Whole& w : solids())
        for (int i = 0; i < 40; ++i) {
            // every fourth plane is one of the grid's, which passes through vertices and along edges
            const Vec3 n = i % 4 ? randomDirection(random) : Vec3(i % 3 == 0, i % 3 == 1, i % 3 == 2);
            const Vec3 c = i % 4 ? Vec3(place(random), place(random), place(random)) : Vec3(0, 0, 0);
            const Ref<MeshBody> a = front(w.mesh, dropping(c, n)), b = front(w.mesh, dropping(c, n * -1.0));
            EXPECT_EQ(openEdges(*a), 0) << w.name << i;
            EXPECT_EQ(openEdges(*b), 0) << w.name << i;
            EXPECT_NEAR(volume(*a) + volume(*b), volume(*w.mesh), 1e-4 * volume(*w.mesh)) << w.name << i;
            EXPECT_NEAR(uvArea(*a) + uvArea(*b), uvArea(*w.mesh), 1e-4 * std::fabs(uvArea(*w.mesh))) << w.name << i;
            EXPECT_EQ(unusedVertices(*a) + unusedVertices(*b), 0) << w.name << i;
        }
}

/// The border that a cut tells is the one that is found by numbering all edges.
void expectBorder(const MeshBody& m, const char* name)
{
    const Topology& t = m.topology();
    std::vector<int> counts;
    for (int f = 0; f < t.faceCount(); ++f)
        counts.push_back(t.faceSize(f));
    const auto fresh = Topology::create(t.vertexCount(), counts.data(), counts.size(), t.connects().data(), t.connects().size());
    ASSERT_TRUE(fresh) << name;
    EXPECT_EQ(std::vector<int>(t.border().begin(), t.border().end()), std::vector<int>(fresh->border().begin(), fresh->border().end())) << name;
}

TEST(Cut, TellsTheBorder)
{
    std::mt19937 random(8);
    std::vector<Whole> all = solids();
    all.push_back({"sheet", primitives::plane(2, 2, 7, 5)});
    all.push_back({"open tube", cutByPlane(*cutByPlane(*primitives::cylinder(1, 2, 12, 4, 0), dropping({0, -0.9, 0}, {0, 1, 0})), dropping({0, 0.9, 0}, {0, -1, 0}))});
    for (Whole w : all)
        for (int i = 0; i < 12 && w.mesh->faceCount(); ++i) {
            const Vec3 n = randomDirection(random);
            if (const Ref<MeshBody> next = cutByPlane(*w.mesh, dropping(n * -0.4, n)))
                w.mesh = next;
            expectBorder(*w.mesh, w.name);
            if (const Ref<MeshBody> closed = i % 3 == 2 ? closeBorder(*w.mesh) : Ref<MeshBody>()) {
                w.mesh = closed;
                expectBorder(*w.mesh, w.name);
            }
        }
}

TEST(Cut, ThousandsInAChain)
{
    std::mt19937  random(9);
    Ref<MeshBody> now = icosphere(3);
    for (int i = 0; i < 2500; ++i) {
        const Vec3          n = randomDirection(random);
        const double        reach = 1 - 0.3 * (i + 1) / 2500;   // shaves all over what is left
        const Ref<MeshBody> left = front(now, dropping(n * -reach, n)), chip = front(now, dropping(n * -reach, n * -1.0));
        ASSERT_EQ(i % 25 ? 0 : openEdges(*left), 0) << i;
        ASSERT_NEAR(volume(*left) + (chip == now ? 0 : volume(*chip)), volume(*now), 1e-4 * volume(*now)) << i;
        now = left;
    }
    // between the balls of the last reach and of the first
    EXPECT_GT(volume(*now), 4.18879 * 0.7 * 0.7 * 0.7 * 0.999);
    EXPECT_LT(volume(*now), 4.18879 * 0.8 * 0.8 * 0.8);
}

TEST(Cut, ScannedMesh)
{
    const char*            path = "/usr/share/glmark2/models/bunny.obj";
    std::ifstream          in(path, std::ios::binary);
    std::vector<NamedMesh> meshes;
    std::string            error;
    if (!in || !parseObj({std::istreambuf_iterator<char>(in), {}}, path, meshes, error) || meshes.empty())
        GTEST_SKIP() << "no " << path;
    Ref<MeshBody> whole = meshes[0].body;
    if (const Ref<MeshBody> closed = closeBorder(*whole))
        whole = closed;
    std::mt19937 random(10);
    float        box[6];
    whole->bounds(box);
    const Vec3 middle((box[0] + box[3]) / 2.0, (box[1] + box[4]) / 2.0, (box[2] + box[5]) / 2.0);
    for (int i = 0; i < 8; ++i) {
        const Vec3 n = randomDirection(random);
        const Ref<MeshBody> a = front(whole, dropping(middle, n)), b = front(whole, dropping(middle, n * -1.0));
        EXPECT_EQ(a->topology().border().size() + b->topology().border().size(), 0u);
        EXPECT_NEAR(volume(*a) + volume(*b), volume(*whole), 1e-4 * std::fabs(volume(*whole)));
    }
}

TEST(Cut, RingsAndNestedLoops)
{
    const Ref<MeshBody> ring = primitives::torus(1, 0.4, 40, 20);
    const Ref<MeshBody> open = cutByPlane(*ring, dropping({0, 0, 0}, {1, 0, 0}));
    ASSERT_TRUE(open);
    const Ref<MeshBody> half = closeBorder(*open);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->faceCount() - open->faceCount(), 2);   // through both sides of the ring
    EXPECT_NEAR(volume(*half), volume(*ring) / 2, 1e-4);
    // across the axis the section is an annulus: the inner face turns the other way
    for (const double y : {0.0, 0.1, -0.17}) {
        const Ref<MeshBody> a = front(ring, dropping({0, y, 0}, {0, 1, 0})), b = front(ring, dropping({0, y, 0}, {0, -1, 0}));
        EXPECT_NEAR(volume(*a) + volume(*b), volume(*ring), 1e-4) << y;
        EXPECT_EQ(openEdges(*a) + openEdges(*b), 0) << y;
    }
    // the annulus lives through further cuts
    const Ref<MeshBody> bowl = front(ring, dropping({0, 0.05, 0}, {0, 1, 0}));
    EXPECT_NEAR(volume(*front(bowl, dropping({0, 0, 0}, {1, 0, 0.3}))), volume(*bowl) / 2, 1e-3);
}

/// Three teeth of one by two on a back of five by one.
const Points kComb = {{0, 0, 0}, {5, 0, 0}, {5, 3, 0}, {4, 3, 0}, {4, 1, 0}, {3, 1, 0}, {3, 3, 0}, {2, 3, 0}, {2, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}};

TEST(Cut, ConcaveFacesGiveSeveralPieces)
{
    struct Case { const char* where; double y; int up; std::vector<int> sizes; };
    const Case cases[] = {
        {"through the teeth, above", 2, 1, {4, 4, 4}},
        {"through the teeth, below", 2, -1, {12}},
        {"along edges, above", 1, 1, {4, 4, 4}},
        {"along edges, below", 1, -1, {8}},
        {"through the back, above", 0.5, 1, {12}},
        {"touching the tips, above", 3, 1, {}},
        {"touching the tips, below", 3, -1, {12}},
    };
    for (const bool flipped : {false, true}) {
        std::vector<int> face;
        for (int i = 0; i < 12; ++i)
            face.push_back(flipped ? 11 - i : i);
        const Ref<MeshBody> comb = bodyFrom(kComb, {face});
        for (const Case& c : cases) {
            Ref<MeshBody> out = front(comb, dropping({0, c.y, 0}, {0, double(c.up), 0}), false);
            std::vector<int> sizes;
            for (int f = 0; f < out->faceCount(); ++f)
                sizes.push_back(out->topology().faceSize(f));
            EXPECT_EQ(sizes, c.sizes) << c.where << flipped;
            const double below = c.y <= 1 ? 5 * c.y : 5 + 3 * (c.y - 1);   // by hand
            EXPECT_NEAR(surfaceArea(*out), c.up > 0 ? 11 - below : below, 1e-5) << c.where << flipped;
        }
        PlaneCut split = dropping({0, 2, 0}, {0, 1, 0});
        split.behind = PlaneCut::keep;
        const Ref<MeshBody> both = cutByPlane(*comb, split);
        EXPECT_EQ(both->faceCount(), 4);
        EXPECT_EQ(both->vertexCount(), 18);
    }
}

TEST(Cut, KeepsBothSidesOrMovesOneApart)
{
    const Ref<MeshBody> cube = primitives::cube(2, 2, 2, 1, 1, 1);
    PlaneCut            cut = dropping({0, 0, 0}, {1, 0, 0});
    cut.behind = PlaneCut::keep;
    const Ref<MeshBody> split = cutByPlane(*cube, cut);
    EXPECT_EQ(split->faceCount(), 10);
    EXPECT_EQ(split->vertexCount(), 12);
    EXPECT_EQ(openEdges(*split), 0);
    EXPECT_NEAR(volume(*split), 8, 1e-6);
    EXPECT_FALSE(cutByPlane(*split, cut));   // a second cut finds the edges there

    cut.behind = PlaneCut::moveApart;
    cut.offset = {-3, 0.5, 0};
    for (const Ref<MeshBody>& from : {cube, split}) {
        const Ref<MeshBody> apart = cutByPlane(*from, cut);
        EXPECT_EQ(apart->faceCount(), 10);
        EXPECT_EQ(apart->vertexCount(), 16);
        EXPECT_EQ(openEdges(*apart), 8);
        float box[6];
        apart->bounds(box);
        EXPECT_EQ(box[0], -4);
        EXPECT_EQ(box[3], 1);
        EXPECT_EQ(box[4], 1.5f);
        const Ref<MeshBody> closed = closeBorder(*apart);
        EXPECT_EQ(closed->faceCount(), 12);
        EXPECT_NEAR(volume(*closed), 8, 1e-5);
    }

    ElementSet some(6);
    some.insert(0);   // the front, at z = 1
    cut.behind = PlaneCut::keep;
    const Ref<MeshBody> one = cutByPlane(*cube, cut, &some);
    EXPECT_EQ(one->faceCount(), 7);
    EXPECT_EQ(one->vertexCount(), 10);
    cut.behind = PlaneCut::drop;
    EXPECT_NEAR(surfaceArea(*cutByPlane(*cube, cut, &some)), 22, 1e-6);
}

TEST(Cut, FacesInThePlaneBelongToTheSideTheyBound)
{
    const Ref<MeshBody> cube = primitives::cube(2, 2, 2, 2, 2, 2);
    EXPECT_FALSE(cutByPlane(*cube, dropping({0, -1, 0}, {0, 1, 0})));             // the bottom is this side's
    EXPECT_EQ(cutByPlane(*cube, dropping({0, 1, 0}, {0, 1, 0}))->vertexCount(), 0);   // the top is not
    const Ref<MeshBody> sheet = primitives::plane(1, 1, 2, 2);   // faces +y
    EXPECT_FALSE(cutByPlane(*sheet, dropping({0, 0, 0}, {0, -1, 0})));
    EXPECT_EQ(cutByPlane(*sheet, dropping({0, 0, 0}, {0, 1, 0}))->faceCount(), 0);
}

TEST(Cut, WhatChangesNothing)
{
    const Ref<MeshBody> cube = primitives::cube(2, 2, 2, 1, 1, 1);
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(cutByPlane(*cube, dropping({-2, 0, 0}, {1, 0, 0})));
    EXPECT_FALSE(cutByPlane(*cube, dropping({NAN, 0, 0}, {1, 0, 0})));
    EXPECT_FALSE(cutByPlane(*cube, dropping({0, 0, 0}, {1, NAN, 0})));
    EXPECT_FALSE(cutByPlane(*cube, dropping({0, 0, 0}, {0, 0, 0})));
    EXPECT_FALSE(cutByPlane(*cube, dropping({0, inf, 0}, {1, 0, 0})));
    EXPECT_FALSE(cutByPlane(*make<MeshBody>(), dropping({0, 0, 0}, {1, 0, 0})));
    EXPECT_FALSE(closeBorder(*cube));
    EXPECT_FALSE(closeBorder(*make<MeshBody>()));
    const Ref<MeshBody> none = cutByPlane(*cube, dropping({2, 0, 0}, {1, 0, 0}));
    EXPECT_EQ(none->vertexCount() + none->faceCount(), 0);
    // loose points go with the rest, a face with a point nowhere stays
    const Ref<MeshBody> odd = bodyFrom({{-1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {5, 5, 5}, {NAN, 0, 0}}, {{0, 1, 2}, {0, 2, 4}});
    const Ref<MeshBody> cut = cutByPlane(*odd, dropping({0, 0, 0}, {1, 0, 0}));
    EXPECT_EQ(cut->faceCount(), 2);
    EXPECT_EQ(cut->topology().faceSize(0), 4);
    EXPECT_EQ(cut->vertexCount(), 6);
}

/// Meshes of anything: repeated vertices and points, faces through each other, numbers that are none.
Ref<MeshBody> garbage(std::mt19937& random, int most, bool finite)
{
    const auto below = [&](int n) { return int(random() % unsigned(n)); };
    Points points;
    for (int i = 3 + below(12); i > 0; --i) {
        points.push_back({below(5) - 2.0, below(5) - 2.0, below(3) - 1.0});
        if (!finite && below(8) == 0) {
            const double odd[] = {NAN, std::numeric_limits<float>::infinity(), 3e38, -3e38, 1e-42, 1e6};
            points.back()[size_t(below(3))] = odd[below(6)];
        }
    }
    Faces faces(size_t(1 + below(14)));
    for (auto& f : faces)
        for (int k = 3 + below(most - 2); k > 0; --k)
            f.push_back(below(int(points.size())));
    const Ref<MeshBody> m = bodyFrom(points, faces);
    auto ids = make<Buffer<int>>();
    for (int c = 0; c < m->cornerCount(); ++c)
        ids->push(below(6) - 1);
    m->writeUVSet(0).uvs = make<Buffer<F2>>(5, F2{0.5f, 0.25f});
    m->assignUVs(0, ids);
    const int colors = m->addColorSet("");
    const MColor red(1, 0, 0, 1);
    const int corner = below(m->cornerCount());
    m->setCornerColors(colors, &red, &corner, 1);
    m->setEdgeSmooth(below(m->edgeCount()), false);
    return m;
}

Vec3 areaSum(const MeshBody& m)
{
    Vec3 sum;
    for (int f = 0; f < m.faceCount(); ++f)
        sum += areaVector(m.topology(), m.points(), f);
    return sum;
}

TEST(Cut, Garbage)
{
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        const bool          triangles = i % 3 == 0, finite = i % 3 < 2;
        const Ref<MeshBody> m = garbage(random, triangles ? 3 : 9, finite);
        const Vec3 n = i % 2 ? randomDirection(random) : Vec3(0, 1, 0), c(int(random() % 3) - 1.0, int(random() % 3) - 1.0, 0);
        const Ref<MeshBody> a = front(m, dropping(c, n), false), b = front(m, dropping(c, n * -1.0), false);
        for (int v : a->topology().connects())
            ASSERT_TRUE(!finite || dot(pointOf(*a, v) - c, n) > -3e-6) << i;
        if (triangles) {
            const Vec3 off = areaSum(*a) + areaSum(*b) - areaSum(*m);
            ASSERT_NEAR(length(off), 0, 1e-4) << i;
        }
        PlaneCut other = dropping(c, n);
        other.behind = i % 5 ? PlaneCut::keep : PlaneCut::moveApart;
        ElementSet some(m->faceCount());
        for (int f = 0; f < m->faceCount(); f += 2)
            some.insert(f);
        for (const Ref<MeshBody>& each : {a, cutByPlane(*m, other), cutByPlane(*m, other, &some), cutByPlane(*m, dropping(c, n), &some), m})
            if (each) {
                closeBorder(*each);
                each->cornerNormals();
                ASSERT_EQ(each->uvSets().sets[0].ids->size(), size_t(each->cornerCount()));
            }
    }
}

}  // namespace
}  // namespace mirk::test

// Merging, deleting, uniting, separating, triangulating and turning: by laws, by a slow second way, and small meshes by hand.
#include <numeric>

#include "mesh/cut_laws.h"
#include "mesh/face_ops.h"
#include "mesh/loops.h"
#include "mesh/merge.h"
#include "mesh/unite.h"

namespace mirk::test {
namespace {

ElementSet some(int count, const std::vector<int>& which)
{
    ElementSet out(count);
    out.insertAll(which);
    return out;
}
ElementSet vertices(const MeshBody& m, const std::vector<int>& which) { return some(m.vertexCount(), which); }
ElementSet faces(const MeshBody& m, const std::vector<int>& which) { return some(m.faceCount(), which); }
ElementSet all(int count) { return ElementSet(count, true); }

std::vector<std::vector<int>> faceLists(const MeshBody& m)
{
    std::vector<std::vector<int>> out;
    for (int f = 0; f < m.faceCount(); ++f)
        out.emplace_back(m.topology().face(f).begin(), m.topology().face(f).end());
    return out;
}

std::vector<float> pointList(const MeshBody& m) { return {m.points(), m.points() + 3 * m.vertexCount()}; }

std::vector<int> uvIds(const MeshBody& m, int set = 0)
{
    std::vector<int> out;
    for (int c = 0; c < m.cornerCount(); ++c)
        out.push_back(m.uvSets().sets[size_t(set)].id(c));
    return out;
}

int euler(const MeshBody& m) { return m.vertexCount() - m.edgeCount() + m.faceCount(); }

int hardCount(const MeshBody& m)
{
    int n = 0;
    for (int e = 0; e < m.edgeCount(); ++e)
        n += !m.edgeSmooth(e);
    return n;
}

/// Parts, points, faces, UVs and hard edges of two meshes are the same.
void expectSame(const MeshBody& a, const MeshBody& b, const char* what)
{
    EXPECT_EQ(faceLists(a), faceLists(b)) << what;
    EXPECT_EQ(pointList(a), pointList(b)) << what;
    EXPECT_EQ(uvIds(a), uvIds(b)) << what;
    for (int c = 0; c < std::min(a.cornerCount(), b.cornerCount()); ++c)
        EXPECT_EQ(a.cornerHard(c), b.cornerHard(c)) << what << c;
}

// ---- merging -----------------------------------------------------------------------------------------------------

/// Every pair is looked at; repeated until nothing changes.
std::vector<int> slowClusters(const std::vector<double>& p, double distance)
{
    const size_t     n = p.size() / 3;
    std::vector<int> root(n);
    std::iota(root.begin(), root.end(), 0);
    for (bool changed = true; changed;) {
        changed = false;
        for (size_t i = 0; i < n; ++i)
            for (size_t j = 0; j < n; ++j) {
                const double d = std::hypot(p[3 * i] - p[3 * j], p[3 * i + 1] - p[3 * j + 1], p[3 * i + 2] - p[3 * j + 2]);
                if (d <= std::max(distance, 0.0) && root[j] > root[i])
                    root[j] = root[i], changed = true;
            }
    }
    return root;
}

TEST(MergeVertices, ClustersAsByLookingAtEveryPair)
{
    std::mt19937 random(3);
    std::normal_distribution<double> place;
    for (const double distance : {0.0, -1.0, 1e-40, 0.01, 0.05, 0.1, 0.2, 0.5, 3.0, 1e30, 1e308})
        for (const double far : {0.0, 1e6}) {
            std::vector<double> p;
            for (int i = 0; i < 400; ++i)
                for (int k = 0; k < 3; ++k)
                    p.push_back(i % 7 == 6 ? p[size_t(3 * (i - 4) + k)] : place(random) * (k == 2 ? 0.1 : 1) + far * (k == 0));
            p[30] = NAN, p[61] = INFINITY, p[92] = -INFINITY;
            Buffer<int>            root = clusters(p.data(), 400, distance);
            const std::vector<int> slow = slowClusters(p, distance);
            ASSERT_FALSE(root.empty());
            EXPECT_EQ(std::vector<int>(root.begin(), root.end()), slow) << distance << " " << far;
        }
    const double negativeZero[] = {0.0, 1, 2, -0.0, 1, 2};
    EXPECT_FALSE(clusters(negativeZero, 2, 0).empty());
    EXPECT_TRUE(clusters(negativeZero, 2, NAN).empty());
    const double line[] = {0, 0, 0, double(0.1f), 0, 0, 1e9, 0, 0};
    EXPECT_FALSE(clusters(line, 3, 0.1).empty()) << "a tenth in single precision is no more than a tenth";
}

TEST(MergeVertices, LooseFacesCloseToACube)
{
    const Ref<MeshBody> cube = primitives::cube(1, 1, 1, 1, 1, 1);
    std::vector<UnitePart> parts;
    std::vector<Ref<MeshBody>> sides;
    for (int f = 0; f < 6; ++f) {
        sides.push_back(extractFaces(*cube, std::vector<int>{f}));
        parts.push_back({sides.back().get(), {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
    }
    const Ref<MeshBody> loose = unite(parts, UniteUVs::byName);
    ASSERT_EQ(loose->vertexCount(), 24);
    EXPECT_EQ(loose->topology().shells().count(), 6);
    for (const double distance : {0.0, 0.3}) {
        const Ref<MeshBody> closed = mergeVertices(*loose, all(24), distance, false, {});
        ASSERT_TRUE(closed);
        EXPECT_EQ(closed->vertexCount(), 8);
        EXPECT_EQ(openEdges(*closed), 0);
        EXPECT_EQ(euler(*closed), 2);
        EXPECT_DOUBLE_EQ(volume(*closed), 1);
        EXPECT_EQ(hardCount(*closed), 12) << "the sides' edges were hard";
        EXPECT_EQ(uvIds(*closed), uvIds(*loose)) << "corners keep their UVs";
        EXPECT_FALSE(mergeVertices(*closed, all(8), distance, false, {})) << "nothing is left to merge";
    }
    EXPECT_EQ(mergeVertices(*loose, all(24), 2, false, {})->vertexCount(), 0) << "no face is left, and no vertex";
}

TEST(MergeVertices, EdgesShrinkAndFacesSplit)
{
    MObject   data = twoQuads();   // 0 1 4 3 and 1 2 5 4
    MeshBody& m = bodyOf(data);
    m.setEdgeSmooth(m.topology().edgeBetween(3, 0), false);
    m.setEdgeSmooth(m.topology().edgeBetween(4, 3), false);
    const Ref<MeshBody> side = mergeVertices(m, vertices(m, {0, 3}), 1, false, {});
    EXPECT_EQ(faceLists(*side), (std::vector<std::vector<int>>{{0, 1, 3}, {1, 2, 4, 3}}));
    EXPECT_FLOAT_EQ(side->points()[1], 0.5f) << "in the middle";
    EXPECT_FALSE(side->edgeSmooth(side->topology().edgeBetween(3, 0)));
    EXPECT_EQ(hardCount(*side), 1) << "the hard edge between the two is gone";
    EXPECT_FALSE(mergeVertices(m, vertices(m, {0, 3}), 0.9, false, {}));
    EXPECT_EQ(mergeVertices(m, vertices(m, {0, 3}), 0, true, {})->vertexCount(), 5) << "two always merge if asked for";
    EXPECT_FALSE(mergeVertices(m, vertices(m, {0, 3, 4}), 0, true, {}));
    const double stretch[4][4] = {{0.1, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 1, 0}, {5, 0, 0, 1}};
    EXPECT_EQ(mergeVertices(m, all(6), 0.5, false, SpaceMatrix(stretch))->faceCount(), 0) << "measured after the matrix, rows collapse";
    // neighbours across a diagonal: the first quad is pinched to two loops of two vertices and goes
    EXPECT_EQ(faceLists(*mergeVertices(m, vertices(m, {0, 4}), 9, false, {})), (std::vector<std::vector<int>>{{1, 2, 3, 0}}));
    //   5  4      1 and 4 become one: what lies between is a triangle of its own
    //  0    3
    //   1  2
    const Ref<MeshBody> hexagon = bodyFrom({{0, 0, 0}, {1, -1, 0}, {2, -1, 0}, {3, 0, 0}, {2, 1, 0}, {1, 1, 0}}, {{0, 1, 2, 3, 4, 5}});
    EXPECT_EQ(faceLists(*mergeVertices(*hexagon, vertices(*hexagon, {1, 4}), 9, false, {})), (std::vector<std::vector<int>>{{1, 2, 3}, {0, 1, 4}}));
}

TEST(MergeVertices, PointsThatAreNoNumbersStay)
{
    const Ref<MeshBody> m = bodyFrom({{NAN, 0, 0}, {NAN, 0, 0}, {0, 1, 0}, {0, 1, 0}, {INFINITY, 2, 0}}, {{0, 1, 2}, {1, 2, 4}, {0, 1, 4, 3}});
    EXPECT_EQ(mergeVertices(*m, all(5), 0, false, {})->vertexCount(), 4);
}

// ---- deleting ----------------------------------------------------------------------------------------------------

/// The mesh with `n` more vertices on every edge, each a bit off the edge.
Ref<MeshBody> dotted(const MeshBody& m, int n)
{
    Points           points;
    Faces            faces;
    const Topology&  t = m.topology();
    for (int v = 0; v < m.vertexCount(); ++v)
        points.push_back({m.points()[3 * v], m.points()[3 * v + 1], m.points()[3 * v + 2]});
    const int first = m.vertexCount();
    for (const EdgeTable::Edge& e : t.edges().edges)
        for (int k = 1; k <= n; ++k) {
            const Vec3 p = pointOf(m, e.a) + (pointOf(m, e.b) - pointOf(m, e.a)) * (double(k) / (n + 1)) + Vec3(0.01, 0.02, 0);
            points.push_back({p.x, p.y, p.z});
        }
    for (int f = 0; f < m.faceCount(); ++f) {
        faces.emplace_back();
        for (int c = t.first(f); c < t.first(f + 1); ++c) {
            const int e = t.edges().ofCorner[size_t(c)], v = t.connects()[size_t(c)];
            faces.back().push_back(v);
            for (int k = 0; k < n; ++k)
                faces.back().push_back(first + e * n + (t.edges().edges[size_t(e)].a == v ? k : n - 1 - k));
        }
    }
    return bodyFrom(points, faces);
}

TEST(DeleteVertices, DotsOnEdgesGoAndTheMeshIsAsBefore)
{
    for (const Ref<MeshBody>& m : {icosphere(1), primitives::torus(1, 0.3, 7, 5), primitives::cube(1, 1, 1, 2, 3, 1)}) {
        const Ref<MeshBody> clean = bodyFrom([&] {
            Points p;
            for (int v = 0; v < m->vertexCount(); ++v)
                p.push_back({m->points()[3 * v], m->points()[3 * v + 1], m->points()[3 * v + 2]});
            return p;
        }(), faceLists(*m));
        for (const int n : {1, 4}) {
            const Ref<MeshBody> d = dotted(*m, n);
            ASSERT_EQ(euler(*d), euler(*m));
            const Ref<MeshBody> back = deleteVertices(*d, all(d->vertexCount()));
            ASSERT_TRUE(back);
            expectSame(*back, *clean, "all dots");
            d->setEdgeSmooth(d->topology().edgeBetween(m->vertexCount(), m->topology().edges().edges[0].a), false);
            const Ref<MeshBody> rest = deleteVertices(*d, vertices(*d, {m->vertexCount()}));
            EXPECT_EQ(rest->vertexCount(), d->vertexCount() - 1);
            EXPECT_EQ(euler(*rest), euler(*d));
            EXPECT_EQ(openEdges(*rest), 0);
            EXPECT_EQ(hardCount(*rest), 1);
        }
        EXPECT_FALSE(deleteVertices(*m, all(m->vertexCount()))) << "three edges and more meet everywhere";
    }
}

TEST(DeleteVertices, WhatFacesNeedStays)
{
    const Ref<MeshBody> triangle = bodyFrom({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
    EXPECT_FALSE(deleteVertices(*triangle, all(3)));
    const Ref<MeshBody> square = bodyFrom({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2, 3}});
    EXPECT_EQ(faceLists(*deleteVertices(*square, all(4))), (std::vector<std::vector<int>>{{0, 1, 2}})) << "the first one goes";
    const Ref<MeshBody> row = Ref<MeshBody>(&bodyOf(twoQuads()));
    EXPECT_EQ(faceLists(*deleteVertices(*row, all(6))), (std::vector<std::vector<int>>{{0, 2, 1}, {0, 3, 2}})) << "one corner a quad; 1 and 4 have three edges";
    // two faces over the same two vertices, 0 and 1: were both 2 and 4 to go, one edge would be there twice
    const Ref<MeshBody> lens = bodyFrom({{0, 0, 0}, {1, 0, 0}, {0.5, 1, 0}, {0.5, 2, 0}, {0.5, -1, 0}, {0.5, -2, 0}, {0.5, 0, 3}},
                                        {{0, 2, 1, 3}, {1, 2, 0, 6}, {0, 5, 1, 4}, {1, 6, 0, 4}});
    const Ref<MeshBody> less = deleteVertices(*lens, vertices(*lens, {2, 4}));
    EXPECT_EQ(less->vertexCount(), 6);
    EXPECT_EQ(euler(*less), euler(*lens));
}

TEST(DeleteFaces, TakesTheirVertices)
{
    const Ref<MeshBody> m = primitives::cube(1, 1, 1, 2, 2, 2);
    const Ref<MeshBody> half = deleteFaces(*m, faces(*m, {0, 1, 2, 3}));
    EXPECT_EQ(half->faceCount(), 20);
    EXPECT_EQ(half->vertexCount(), 25) << "the middle of the side";
    EXPECT_EQ(openEdges(*half), 8);
    EXPECT_EQ(deleteFaces(*m, all(24))->vertexCount(), 0);
    EXPECT_FALSE(deleteFaces(*m, faces(*m, {})));
}

// ---- uniting and separating --------------------------------------------------------------------------------------

UnitePart part(const Ref<MeshBody>& m, double x = 0, double scale = 1)
{
    return {m.get(), {{scale, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {x, 0, 0, 1}}};
}

TEST(Unite, PartsComeBackAsShells)
{
    const std::vector<Ref<MeshBody>> given = {primitives::cube(1, 1, 1, 2, 1, 1), primitives::torus(1, 0.3, 6, 5), icosphere(1), primitives::cone(1, 1, 7, 2, 0)};
    std::vector<UnitePart>           parts;
    const Ref<MeshBody>              empty = make<MeshBody>();
    for (const auto& m : given)
        parts.push_back(part(m)), parts.push_back(part(empty));
    const Ref<MeshBody> whole = unite(parts, UniteUVs::byName);
    const FaceShells&   shells = whole->topology().shells();
    ASSERT_EQ(shells.count(), 4);
    for (int s = 0; s < 4; ++s)
        expectSame(*extractFaces(*whole, (*shells.faces)[s]), *given[size_t(s)], "shell");
    EXPECT_EQ(unite({}, UniteUVs::byName)->vertexCount(), 0);
    parts = {part(given[0]), part(given[0], 10, -2)};
    EXPECT_NEAR(volume(*unite(parts, UniteUVs::byName)), 1 - 2, 1e-6) << "a mirrored part is turned inside out";
}

TEST(Unite, SetsNormalsAndEdges)
{
    Ref<MeshBody> a = primitives::plane(1, 1, 1, 1), b = primitives::plane(1, 1, 1, 1), c = primitives::plane(1, 1, 1, 1);
    b->writeUVSet(0).name = "second";
    b->writeColorSets().current = b->addColorSet("paint");
    const MColor red(1, 0, 0, 1), blue(0, 0, 1, 1);
    const int    corner = 2, vertex = 1;
    b->setCornerColors(0, &red, &corner, 1);
    c->writeColorSets().current = c->addColorSet("paint");
    c->setVertexColors(0, &blue, &vertex, 1);
    c->setEdgeSmooth(1, false);
    const F3 slanted{{0.6f, 0.8f, 0}};
    b->lockVertexNormals(&slanted, &vertex, 1);
    c->lockCornerNormals(&slanted, &corner, 1);
    const std::vector<UnitePart> parts = {part(a), part(b, 5, 2), part(c, 9)};

    const Ref<MeshBody> m = unite(parts, UniteUVs::byName);
    ASSERT_EQ(m->uvSets().sets.size(), 2u);
    EXPECT_EQ(m->uvSets().sets[0].name + m->uvSets().sets[1].name, "map1second");
    const std::vector<int> ids = uvIds(*a), none(4, -1);
    std::vector<int>       first = ids, second = none;
    first.insert(first.end(), none.begin(), none.end());
    for (int i : ids)
        first.push_back(i + 4);
    second.insert(second.end(), ids.begin(), ids.end());
    second.insert(second.end(), none.begin(), none.end());
    EXPECT_EQ(uvIds(*m, 0), first);
    EXPECT_EQ(uvIds(*m, 1), second);
    EXPECT_EQ(unite(parts, UniteUVs::apart)->uvSets().sets[2].name, "map11");

    ASSERT_EQ(m->colorSets().sets.size(), 1u);
    const ColorSet& paint = m->colorSets().sets[0];
    for (int i = 0; i < 12; ++i) {
        const bool isRed = i == 6, isBlue = i >= 8 && m->topology().connects()[size_t(i)] == 9;
        expectColor(paint.ofCorner(m->topology(), i), isRed ? 1 : isBlue ? 0 : -1, isRed || isBlue ? 0 : -1, isRed ? 0 : isBlue ? 1 : -1, isRed || isBlue ? 1 : -1);
    }
    EXPECT_EQ(hardCount(*m), 1);
    EXPECT_FALSE(m->edgeSmooth(9)) << "edge 1 of the third";
    EXPECT_TRUE(m->normalLocked(10));
    EXPECT_EQ(m->locked()->vertexLocked[5], 1);
    // a normal goes through the inverse transpose: x by 1/2, then unit length
    EXPECT_NEAR(m->locked()->vertex[5].v[0] / m->locked()->vertex[5].v[1], 0.3 / 0.8, 1e-6);
}

// ---- triangles, sides, runs --------------------------------------------------------------------------------------

TEST(Triangulate, AreaVolumeAndHardEdgesStay)
{
    for (const Ref<MeshBody>& m : {primitives::cube(1, 2, 3, 2, 2, 2), primitives::cylinder(1, 2, 11, 2, 0), primitives::torus(1, 0.2, 8, 6)}) {
        int wanted = 0;
        for (int f = 0; f < m->faceCount(); ++f)
            wanted += m->topology().faceSize(f) - 2;
        const Ref<MeshBody> t = triangulateFaces(*m, all(m->faceCount()));
        EXPECT_EQ(t->faceCount(), wanted);
        EXPECT_EQ(t->cornerCount(), 3 * wanted);
        EXPECT_EQ(euler(*t), euler(*m));
        EXPECT_EQ(openEdges(*t), 0);
        EXPECT_EQ(hardCount(*t), hardCount(*m));
        EXPECT_NEAR(uvArea(*t), uvArea(*m), 1e-5);
        EXPECT_FALSE(triangulateFaces(*t, all(wanted)));
    }
    const Ref<MeshBody> cube = primitives::cube(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(triangulateFaces(*cube, faces(*cube, {1}))->faceCount(), 7);
}

TEST(Reverse, TwiceIsAsBefore)
{
    Ref<MeshBody> m = primitives::cylinder(1, 2, 9, 3, 2);
    const F3      up{{0, 0.6f, 0.8f}};
    const int     corner = 7, vertex = 4;
    m->lockCornerNormals(&up, &corner, 1);
    m->lockVertexNormals(&up, &vertex, 1);
    const Ref<MeshBody> turned = reverseFaces(*m, all(m->faceCount()));
    EXPECT_NEAR(volume(*turned), -volume(*m), 1e-6);
    EXPECT_EQ(hardCount(*turned), hardCount(*m));
    EXPECT_EQ(turned->locked()->vertex[4].v[1], -0.6f);
    const Ref<MeshBody> back = reverseFaces(*turned, all(m->faceCount()));
    expectSame(*back, *m, "twice");
    EXPECT_EQ(back->locked()->corner[7].v[2], 0.8f);
    EXPECT_EQ(back->normalLocked(7), true);
    EXPECT_EQ(faceLists(*reverseFaces(*m, faces(*m, {0})))[1], faceLists(*m)[1]);
}

TEST(Reverse, ConformTurnsTheFewer)
{
    std::mt19937 random(5);
    for (const Ref<MeshBody>& m : {icosphere(2), primitives::torus(1, 0.3, 12, 8)}) {
        ElementSet few(m->faceCount());
        for (int i = 0; i < m->faceCount() / 3; ++i)
            few.insert(int(random() % unsigned(m->faceCount())));
        const Ref<MeshBody> mixed = reverseFaces(*m, few);
        EXPECT_LT(volume(*mixed), volume(*m) * 0.9);
        const Ref<MeshBody> again = conformFaces(*mixed, all(m->faceCount()));
        EXPECT_NEAR(volume(*again), volume(*m), 1e-5);
        EXPECT_FALSE(conformFaces(*again, all(m->faceCount())));
    }
}

TEST(EdgeRuns, LoopsRingsAndBorders)
{
    const Ref<MeshBody> plane = primitives::plane(1, 1, 4, 3), torus = primitives::torus(1, 0.2, 8, 6);
    const Topology&     t = plane->topology();
    //  a grid of 5 x 4 vertices, 5 in a row
    const int middle = t.edgeBetween(6, 7), border = t.edgeBetween(0, 1);
    EXPECT_EQ(edgeLoop(t, middle), (std::vector<int>{t.edgeBetween(8, 9), t.edgeBetween(7, 8), middle, t.edgeBetween(5, 6)}));
    EXPECT_EQ(edgeRing(t, middle).size(), 4u) << "one a row of vertices";
    EXPECT_EQ(edgeBorder(t, border).size(), 14u);
    EXPECT_EQ(edgeLoop(t, border).size(), 14u);
    EXPECT_TRUE(edgeBorder(t, middle).empty());
    for (int e = 0; e < torus->edgeCount(); ++e) {
        const size_t loop = edgeLoop(torus->topology(), e).size();
        EXPECT_EQ(loop + edgeRing(torus->topology(), e).size(), loop == 6 ? 14u : loop == 8 ? 14u : 0u) << "8 around and 6 along, or the other way";
    }
}

// ---- anything at all ---------------------------------------------------------------------------------------------

TEST(PolyOperations, GarbageMakesNoHarm)
{
    std::mt19937 random(11);
    const auto   upTo = [&](int n) { return int(random() % unsigned(n)); };
    for (int round = 0; round < 400; ++round) {
        const int n = 3 + upTo(12);
        Points    points;
        Faces     garbage;
        for (int v = 0; v < n; ++v)
            points.push_back({upTo(9) ? upTo(4) * 0.5 : NAN, upTo(4) * 0.5, upTo(19) ? upTo(3) : 1e38});
        for (int f = 1 + upTo(14); f > 0; --f) {
            garbage.emplace_back();
            for (int k = 3 + upTo(5); k > 0; --k)
                garbage.back().push_back(upTo(n));
        }
        Ref<MeshBody> m = bodyFrom(points, garbage);
        m->setEdgeSmooth(upTo(m->edgeCount()), false);
        m->addColorSet("c");
        for (int step = 0; step < 6 && m->faceCount(); ++step) {
            ElementSet v(m->vertexCount()), f(m->faceCount());
            for (int k = upTo(n); k >= 0; --k)
                v.insert(upTo(m->vertexCount())), f.insert(upTo(m->faceCount()));
            const std::vector<UnitePart> twice = {part(m), part(m, 1, -1)};
            Ref<MeshBody> next;
            switch (upTo(8)) {
            case 0: next = mergeVertices(*m, v, upTo(3) * 0.6, false, {}); break;
            case 1: next = deleteVertices(*m, v); break;
            case 2: next = deleteFaces(*m, f); break;
            case 3: next = reverseFaces(*m, f); break;
            case 4: next = triangulateFaces(*m, f); break;
            case 5: next = conformFaces(*m, f); break;
            case 6: next = extractFaces(*m, (*m->topology().shells().faces)[0]); break;
            default: next = m->faceCount() < 100 ? unite(twice, UniteUVs(upTo(2))) : nullptr; break;
            }
            if (!next)
                continue;
            m = next;
            ASSERT_EQ(m->hardEdges() ? int(m->hardEdges()->size()) : m->edgeCount(), m->edgeCount());
            for (int e = 0; e < m->edgeCount(); ++e) {
                edgeLoop(m->topology(), e), edgeRing(m->topology(), e), edgeBorder(m->topology(), e);
                ASSERT_GE(m->topology().edges().edges[size_t(e)].a, 0);
            }
        }
    }
}

}  // namespace
}  // namespace mirk::test

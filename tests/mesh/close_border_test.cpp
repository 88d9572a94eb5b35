// Holes closed: which loops there are, how the new faces turn, what is shared.
#include "mesh/cut_laws.h"

namespace mirk::test {
namespace {

std::vector<std::vector<int>> newFaces(const MeshBody& before, const MeshBody& after)
{
    std::vector<std::vector<int>> out;
    for (int f = before.faceCount(); f < after.faceCount(); ++f)
        out.emplace_back(after.topology().face(f).begin(), after.topology().face(f).end());
    return out;
}

using Loops = std::vector<std::vector<int>>;

TEST(CloseBorder, Loops)
{
    const Points tetra = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    struct Case { const char* what; Points points; Faces faces; Loops loops; };
    const Case cases[] = {
        {"a triangle gets a back", {tetra[0], tetra[1], tetra[2]}, {{0, 1, 2}}, {{0, 2, 1}}},
        {"an open tetrahedron", tetra, {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}}, {{2, 0, 3}}},
        {"a bow tie is two loops", {{0, 0, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0}, {1, 1, 0}}, {{0, 1, 2}, {0, 3, 4}}, {{0, 2, 1}, {0, 4, 3}}},
        {"faces that disagree close with most of them", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}},
         {{0, 1, 4}, {1, 2, 4}, {3, 2, 4}, {3, 0, 4}}, {{0, 3, 2, 1}}},
        {"an edge of three faces is none", {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}}, {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}}, {}},
        {"a face that uses a vertex twice", {tetra[0], tetra[1], tetra[2]}, {{0, 1, 2, 2}}, {{0, 2, 1}}},
    };
    for (const Case& c : cases) {
        const Ref<MeshBody> m = bodyFrom(c.points, c.faces), closed = closeBorder(*m);
        if (c.loops.empty() && !closed)
            continue;
        ASSERT_TRUE(closed) << c.what;
        Loops got = newFaces(*m, *closed);
        ASSERT_EQ(got.size(), c.loops.size()) << c.what;
        for (size_t i = 0; i < got.size(); ++i) {
            std::rotate(got[i].begin(), std::find(got[i].begin(), got[i].end(), c.loops[i][0]), got[i].end());
            EXPECT_EQ(got[i], c.loops[i]) << c.what;
        }
    }
}

TEST(CloseBorder, OneOfTwoEnds)
{
    const Ref<MeshBody> tube = primitives::cylinder(1, 2, 12, 1, 0);   // the caps are the last two faces
    const Ref<MeshBody> open = cutByPlane(*cutByPlane(*tube, dropping({0, -0.5, 0}, {0, 1, 0})), dropping({0, 0.5, 0}, {0, -1, 0}));
    const Topology&     t = open->topology();
    EXPECT_EQ(t.border().size(), 24u);
    for (const int corner : {t.border()[0], t.border()[23]}) {
        ElementSet edges(t.edgeCount());
        edges.insert(t.edges().ofCorner[size_t(corner)]);
        const Ref<MeshBody> closed = closeBorder(*open, &edges);
        ASSERT_TRUE(closed);
        const Loops loops = newFaces(*open, *closed);
        ASSERT_EQ(loops.size(), 1u);
        EXPECT_EQ(loops[0].size(), 12u);
        EXPECT_NE(std::find(loops[0].begin(), loops[0].end(), t.connects()[size_t(corner)]), loops[0].end());
        EXPECT_EQ(closed->topology().border().size(), 12u);
        EXPECT_EQ(closed->pointBuffer(), open->pointBuffer());   // shared
    }
    ElementSet none(t.edgeCount());
    EXPECT_FALSE(closeBorder(*open, &none));
    EXPECT_NEAR(volume(*closeBorder(*open)), volume(*tube) / 2, 1e-5);
}

}  // namespace
}  // namespace mirk::test

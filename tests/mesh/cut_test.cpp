// Cutting and closing meshes: what both sides of a cut add up to, what stays closed, what is carried over.
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

}  // namespace
}  // namespace mirk::test

#include <cmath>
#include <set>

#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

std::vector<int> faceOf(const MeshBody& b, int f)
{
    const auto face = b.topology().face(f);
    return {face.begin(), face.end()};
}

void expectPoint(const MeshBody& b, int v, double x, double y, double z)
{
    const float* p = b.points() + 3 * v;
    expectVector(MVector(p[0], p[1], p[2]), x, y, z, ("vertex " + std::to_string(v)).c_str());
}

}  // namespace

TEST(Primitives, CubeOrder)
{
    const Ref<MeshBody> b = primitives::cube(1, 1, 1, 1, 1, 1);
    const double h = 0.5;
    const double points[8][3] = {{-h, -h, h}, {h, -h, h}, {-h, h, h}, {h, h, h}, {-h, h, -h}, {h, h, -h}, {-h, -h, -h}, {h, -h, -h}};
    for (int v = 0; v < 8; ++v)
        expectPoint(*b, v, points[v][0], points[v][1], points[v][2]);
    const Faces faces = {{0, 1, 3, 2}, {2, 3, 5, 4}, {4, 5, 7, 6}, {6, 7, 1, 0}, {1, 7, 5, 3}, {6, 0, 2, 4}};
    for (int f = 0; f < 6; ++f)
        EXPECT_EQ(faceOf(*b, f), faces[size_t(f)]);
    EXPECT_EQ(b->uvSets().sets[0].uvs->size(), 14u);
}

TEST(Primitives, SphereOrder)
{
    const Ref<MeshBody> b = primitives::sphere(1, 20, 20);
    const double ring = std::sin(M_PI / 20), y = -std::cos(M_PI / 20);
    expectPoint(*b, 0, ring * std::cos(M_PI / 10), y, -ring * std::sin(M_PI / 10));
    expectPoint(*b, 4, 0, y, -ring);
    expectPoint(*b, 19, ring, y, 0);
    expectPoint(*b, 380, 0, -1, 0);
    expectPoint(*b, 381, 0, 1, 0);
    EXPECT_EQ(faceOf(*b, 0), (std::vector<int>{0, 1, 21, 20}));
    EXPECT_EQ(faceOf(*b, 19), (std::vector<int>{19, 0, 20, 39}));
    EXPECT_EQ(faceOf(*b, 360), (std::vector<int>{1, 0, 380}));
    EXPECT_EQ(faceOf(*b, 380), (std::vector<int>{360, 361, 381}));
}

TEST(Primitives, PlaneOrder)
{
    const Ref<MeshBody> b = primitives::plane(4, 2, 2, 1);
    expectPoint(*b, 0, -2, 0, 1);
    expectPoint(*b, 2, 2, 0, 1);
    expectPoint(*b, 3, -2, 0, -1);
    EXPECT_EQ(faceOf(*b, 1), (std::vector<int>{1, 2, 5, 4}));
}

// What hangs on a mesh and is carried over when it is cut and closed. Values are set as linear functions of the place, so
// that what is right afterwards can be told anywhere.
#include "data/component.h"
#include "mesh/cut_laws.h"

namespace mirk::test {
namespace {

F2     uvAt(const Vec3& p) { return {float(p.x + 2 * p.y), float(p.z - p.x)}; }
MColor colorAt(const Vec3& p) { return {float(0.5 + p.x / 4), float(0.5 + p.y / 4), float(0.5 + p.z / 4), float(1 - p.x / 8)}; }

/// UVs, and colours in each layout.
void paint(MeshBody& m)
{
    m.writeUVSets().sets.emplace_back().name = "place";
    auto uvs = make<Buffer<F2>>();
    std::vector<MColor> colors, cornerColors;
    std::vector<int>    vertices, corners;
    auto ids = make<Buffer<int>>(m.topology().connects());
    for (int v = 0; v < m.vertexCount(); ++v) {
        uvs->push(uvAt(pointOf(m, v)));
        colors.push_back(colorAt(pointOf(m, v)));
        vertices.push_back(v);
    }
    for (int c = 0; c < m.cornerCount(); ++c) {
        cornerColors.push_back(colors[size_t((*ids)[size_t(c)])]);
        corners.push_back(c);
    }
    m.writeUVSet(1).uvs = uvs;
    m.assignUVs(1, ids);
    m.writeUVSets().current = 1;
    m.setVertexColors(m.addColorSet("vertex"), colors.data(), vertices.data(), vertices.size());
    m.setCornerColors(m.addColorSet("corner"), cornerColors.data(), corners.data(), corners.size());
    const int indexed = m.addColorSet("indexed");
    m.setColorTable(indexed, make<Buffer<MColor>>(colors.data(), colors.size()));
    m.assignColors(indexed, ids);
    m.writeColorSets().current = 1;
}

TEST(MeshRebuild, ValuesStayWhereTheyWere)
{
    std::mt19937 random(4);
    for (const Ref<MeshBody>& whole : {primitives::cube(2, 2, 2, 3, 3, 3), primitives::torus(1, 0.4, 16, 8)}) {
        auto now = make<MeshBody>(*whole);
        paint(*now);
        for (int i = 0; i < 6; ++i) {
            const Vec3 n = randomDirection(random);
            now = front(now, dropping(n * -0.5, n));
        }
        const Topology& t = now->topology();
        EXPECT_EQ(now->uvSets().current, 1);
        EXPECT_EQ(now->colorSets().current, 1);
        ASSERT_EQ(now->colorSets().sets.size(), 3u);
        int mapped = 0;
        for (int c = 0; c < now->cornerCount(); ++c) {
            const Vec3   p = pointOf(*now, t.connects()[size_t(c)]);
            const MColor expected = colorAt(p);
            const UVSet& uv = now->uvSets().sets[1];
            if (const int id = uv.id(c); id >= 0) {
                ++mapped;
                EXPECT_NEAR((*uv.uvs)[size_t(id)].u, uvAt(p).u, 1e-5);
                EXPECT_NEAR((*uv.uvs)[size_t(id)].v, uvAt(p).v, 1e-5);
            }
            for (const ColorSet& s : now->colorSets().sets) {
                const MColor got = s.ofCorner(t, c);
                const bool   cap = uv.id(c) < 0;   // only colours of vertices reach the new faces
                EXPECT_EQ(isUnset(got), cap && s.layout != ColorSet::kPerVertex) << s.name;
                if (!isUnset(got))
                    EXPECT_NEAR(std::fabs(got.r - expected.r) + std::fabs(got.g - expected.g) + std::fabs(got.b - expected.b) + std::fabs(got.a - expected.a), 0, 2e-5) << s.name;
            }
        }
        EXPECT_GT(mapped, 50);
        // no seam where there was none: a UV a vertex, and none that is not used
        EXPECT_LE(now->uvSets().sets[1].uvs->size(), size_t(now->vertexCount()));
        std::vector<char> used(now->uvSets().sets[1].uvs->size(), 0);
        for (int id : *now->uvSets().sets[1].ids)
            if (id >= 0)
                used[size_t(id)] = 1;
        EXPECT_EQ(std::count(used.begin(), used.end(), 0), 0);
    }
}

/// On how many of the six sides of the box a point lies, as bits.
int sidesOf(const Vec3& p, const double half[3])
{
    const double v[3] = {p.x, p.y, p.z};
    int bits = 0;
    for (int k = 0; k < 3; ++k)
        for (int s = 0; s < 2; ++s)
            bits |= (std::fabs(v[k] - (s ? half[k] : -half[k])) < 1e-6) << (2 * k + s);
    return bits;
}

TEST(MeshRebuild, EdgesThatWereHardAndNewOnes)
{
    const double half[3] = {0.5, 1, 1.5};
    Ref<MeshBody> now = primitives::cube(1, 2, 3, 3, 2, 4);
    now = front(now, dropping({0.1, 0, 0}, {1, 0.4, 0.2}));
    now = front(now, dropping({0, 0.2, 0}, {0.1, -1, 0.3}));   // goes through the first new face
    const Topology& t = now->topology();
    const auto      onPlane = [](const Vec3& p, Vec3 c, Vec3 n) { return std::fabs(dot(p - c, n)) < 1e-5; };
    int hard = 0;
    for (int e = 0; e < t.edgeCount(); ++e) {
        const Vec3 a = pointOf(*now, t.edges().edges[size_t(e)].a), b = pointOf(*now, t.edges().edges[size_t(e)].b);
        int planes = sidesOf(a, half) & sidesOf(b, half);
        planes |= (onPlane(a, {0.1, 0, 0}, {1, 0.4, 0.2}) && onPlane(b, {0.1, 0, 0}, {1, 0.4, 0.2})) << 6;
        planes |= (onPlane(a, {0, 0.2, 0}, {0.1, -1, 0.3}) && onPlane(b, {0, 0.2, 0}, {0.1, -1, 0.3})) << 7;
        const bool expected = (planes & (planes - 1)) != 0;   // in two of the outer planes
        EXPECT_EQ(!now->edgeSmooth(e), expected) << e;
        hard += expected;
    }
    EXPECT_GT(hard, 20);
    // afterwards edges change one by one as ever
    MeshBody own(*now);
    const int first = [&] { int e = 0; while (own.edgeSmooth(e)) ++e; return e; }();
    own.setEdgeSmooth(first, true);
    EXPECT_TRUE(own.edgeSmooth(first));
    EXPECT_FALSE(now->edgeSmooth(first));
}

Ref<Component> component(MFn::Type type, const std::vector<int>& elements)
{
    const Ref<Component> c = makeComponent(type);
    addElements(*c, elements.data(), elements.size());
    return c;
}

TEST(MeshRebuild, GroupsAndMatrix)
{
    auto now = make<MeshBody>(*primitives::cube(2, 2, 2, 2, 2, 2));
    std::vector<int> top, left, sharp;
    for (int f = 0; f < now->faceCount(); ++f)
        if (now->faceNormals()[size_t(f)].v[1] > 0.5f)
            top.push_back(f);
    for (int v = 0; v < now->vertexCount(); ++v)
        if (pointOf(*now, v).x < -0.5)
            left.push_back(v);
    for (int e = 0; e < now->edgeCount(); ++e)
        if (!now->edgeSmooth(e))
            sharp.push_back(e);
    const Ref<Component> all = makeComponent(MFn::kMeshPolygonComponent);
    all->complete = true;
    now->groups = {{1, component(MFn::kMeshPolygonComponent, top)}, {2, component(MFn::kMeshVertComponent, left)},
                   {3, component(MFn::kMeshEdgeComponent, sharp)}, {4, all}};
    now->identity = false;
    now->matrix[3][0] = 7;
    const Ref<MeshBody> cut = cutByPlane(*now, dropping({0, 0, 0.3}, {0.2, 0, -1}));
    EXPECT_FALSE(cut->identity);
    EXPECT_EQ(cut->matrix[3][0], 7);
    ASSERT_EQ(cut->groups.size(), 4u);
    EXPECT_TRUE(cut->groups[3].component->complete);
    for (int f = 0; f < cut->faceCount(); ++f)
        EXPECT_EQ(cut->groups[0].component->has(f), cut->faceNormals()[size_t(f)].v[1] > 0.5f);
    for (int v = 0; v < cut->vertexCount(); ++v)
        EXPECT_EQ(cut->groups[1].component->has(v), pointOf(*cut, v).x < -0.5);
    for (int e = 0; e < cut->edgeCount(); ++e)
        EXPECT_EQ(cut->groups[2].component->has(e), !cut->edgeSmooth(e));
    EXPECT_EQ(now->groups[0].component->indices, top);   // the old ones are not touched
    // the new face counts to the group of the face beside its first edge
    const Ref<MeshBody> closed = closeBorder(*cut);
    const int           first = closed->topology().first(closed->faceCount() - 1);
    const int           edge = closed->topology().edges().ofCorner[size_t(first)];
    const int           beside = closed->topology().cornerFaces()[size_t(closed->topology().edgeCorners()[edge][0])];
    EXPECT_EQ(closed->groups[0].component->has(closed->faceCount() - 1), closed->groups[0].component->has(beside));
}

TEST(MeshRebuild, LockedNormals)
{
    auto now = make<MeshBody>(*primitives::plane(2, 2, 1, 1));   // one square in xz
    const F3  leaning{{0.6f, 0.8f, 0}}, other{{0, 0.8f, 0.6f}};
    const int vertices[] = {0, 1}, corner = now->topology().cornerAt(0, 2);
    const F3  two[] = {leaning, other};
    now->lockVertexNormals(two, vertices, 2);
    now->lockCornerNormals(&leaning, &corner, 1);
    const Ref<MeshBody> cut = cutByPlane(*now, dropping({0, 0, 0}, {1, 0, 0}));   // 0 and 1 are the row at +z
    ASSERT_EQ(cut->faceCount(), 1);
    for (int c = 0; c < 4; ++c) {
        const Vec3 p = pointOf(*cut, cut->topology().connects()[size_t(c)]);
        const bool between = std::fabs(p.x) < 1e-6;
        EXPECT_EQ(cut->normalLocked(c), p.z > 0) << c;   // the blend of a locked and a free corner is free
        if (p.z < 0)
            continue;
        const F3 n = cut->cornerNormals().at(c);
        EXPECT_NEAR(n.v[0], between ? 0.3 / std::sqrt(0.82) : other.v[0], 1e-6);
        EXPECT_NEAR(n.v[1], between ? 0.8 / std::sqrt(0.82) : other.v[1], 1e-6);
    }
}

TEST(MeshRebuild, NewFacesHaveNormalsOfTheirOwn)
{
    auto tube = make<MeshBody>(*cutByPlane(*primitives::cylinder(1, 2, 8, 1, 0), dropping({0, 0, 0}, {0, 1, 0})));
    std::vector<F3>  up(size_t(tube->vertexCount()), F3{{0, 1, 0}});
    std::vector<int> all;
    for (int v = 0; v < tube->vertexCount(); ++v)
        all.push_back(v);
    tube->lockVertexNormals(up.data(), all.data(), all.size());
    const Ref<MeshBody> closed = closeBorder(*tube);
    ASSERT_EQ(closed->faceCount(), tube->faceCount() + 1);
    for (int c = 0; c < closed->cornerCount(); ++c) {
        const bool lid = c >= tube->cornerCount();
        EXPECT_EQ(closed->normalLocked(c), !lid);
        EXPECT_NEAR(closed->cornerNormals().at(c).v[1], lid ? -1 : 1, 1e-6);
    }
}

TEST(MeshRebuild, RefusesPlansThatDoNotFit)
{
    const Ref<MeshBody> cube = primitives::cube(1, 1, 1, 1, 1, 1);
    std::string         why;
    MeshPlan            odd;
    odd.vertexSource.push(0);
    EXPECT_FALSE(rebuild(*cube, std::move(odd), &why));
    EXPECT_NE(why, "");
    MeshPlan broken;
    broken.keptVertices = 8;
    broken.points = cube->pointBuffer();
    broken.counts.push(3);
    broken.faceSource.push(0);
    for (int v : {0, 1, 99}) {
        broken.connects.push(v);
        broken.cornerSource.push(v ? 1 : 0);
        broken.edgeSource.push(-1);
    }
    EXPECT_FALSE(rebuild(*cube, std::move(broken), &why));
    EXPECT_NE(why.find("99"), std::string::npos) << why;
}

}  // namespace
}  // namespace mirk::test

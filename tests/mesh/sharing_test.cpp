#include <thread>

#include <maya/MFloatArray.h>
#include <maya/MItMeshVertex.h>

#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

MObject shareOf(const MObject& mesh) { return wrap(objectAs<MeshData>(mesh)->share()); }

}  // namespace

TEST(MeshSharing, AWriterGetsItsOwnCopyOfTheOnePart)
{
    const MObject mesh = dataOf(primitives::plane(1, 1, 4, 4));
    MFnMesh original(mesh);
    MVector before;
    original.getVertexNormal(12, false, before);
    const MObject shared = shareOf(mesh);
    MFnMesh share(shared);
    const MeshBody &a = bodyOf(mesh), &b = bodyOf(shared);
    EXPECT_EQ(a.points(), b.points());
    EXPECT_EQ(&a.vertexNormals(false), &b.vertexNormals(false)) << "normals are computed once for both";

    share.setPoint(12, MPoint(0, 1, 0));
    EXPECT_NE(a.points(), b.points());
    EXPECT_EQ(&a.topology(), &b.topology());
    EXPECT_EQ(a.uvSets().sets[0].uvs.get(), b.uvSets().sets[0].uvs.get());
    EXPECT_EQ(&a.colorSets(), &b.colorSets());
    MPoint p;
    original.getPoint(12, p);
    expectVector(p, 0, 0, 0, "original point");
    MVector n;
    original.getVertexNormal(0, false, n);
    expectVector(n, 0, 1, 0, "original normal");
    share.getVertexNormal(0, false, n);
    expectVector(n, 0, 1, 0, "untouched corner");
    MFloatVectorArray faces;
    share.getVertexNormal(7, false, n);
    EXPECT_GT(std::fabs(n.z) + std::fabs(n.x), 0.1) << "the copy's own normals";

    const float* own = b.points();
    share.setPoint(3, MPoint(0, 2, 0));
    EXPECT_EQ(b.points(), own) << "one copy, not one a write";
}

TEST(MeshSharing, EveryKindOfWriteLeavesTheOther)
{
    struct Case { const char* what; void (*write)(MFnMesh&); };
    const Case cases[] = {
        {"colour", [](MFnMesh& f) { MColor c(1, 0, 0, 1); f.setVertexColor(c, 0); }},
        {"face colour", [](MFnMesh& f) { MColor c(1, 0, 0, 1); f.setFaceColor(c, 0); }},
        {"UV", [](MFnMesh& f) { f.setUV(0, 9, 9); }},
        {"UV assignment", [](MFnMesh& f) { f.assignUV(0, 0, 3); }},
        {"UV set", [](MFnMesh& f) { MString n("other"); f.createUVSetDataMesh(n); f.setCurrentUVSetName(n); }},
        {"edge", [](MFnMesh& f) { f.setEdgeSmoothing(0, true); }},
        {"normal", [](MFnMesh& f) { MVector n(1, 0, 0); f.setVertexNormal(n, 0); }},
        {"points", [](MFnMesh& f) { MPointArray p(8, MPoint(1, 2, 3)); f.setPoints(p); }},
        {"mesh", [](MFnMesh& f) { f.createInPlace(0, 0, MPointArray(), MIntArray(), MIntArray()); }},
    };
    const auto state = [](const MFnMesh& f) {
        std::string s = std::to_string(f.numVertices()) + std::to_string(f.isEdgeSmooth(0));
        MColorArray colors;
        f.getFaceVertexColors(colors);
        MFloatArray u, v;
        f.getUVs(u, v);
        MIntArray counts, ids;
        f.getAssignedUVs(counts, ids);
        MVector n;
        f.getFaceVertexNormal(0, 0, n);
        MPoint p;
        f.getPoint(0, p);
        for (unsigned i = 0; i < colors.length(); ++i)
            s += std::to_string(colors[i].r);
        for (unsigned i = 0; i < u.length(); ++i)
            s += std::to_string(u[i]);
        for (unsigned i = 0; i < ids.length(); ++i)
            s += std::to_string(ids[i]);
        return s + f.currentUVSetName().asChar() + std::to_string(n.x) + std::to_string(p.x);
    };
    for (const Case& c : cases) {
        const MObject mesh = dataOf(primitives::cube(1, 1, 1, 1, 1, 1));
        MFnMesh original(mesh);
        MColor green(0, 1, 0, 1);
        original.setVertexColor(green, 5);
        MFnMesh share(shareOf(mesh));
        const std::string before = state(original);
        ASSERT_EQ(state(share), before) << c.what;
        c.write(share);
        EXPECT_EQ(state(original), before) << c.what;
        EXPECT_NE(state(share), before) << c.what;
    }
}

TEST(MeshSharing, TwoShellsOnOneBodySeeEachOthersWrites)
{
    const MObject mesh = dataOf(primitives::cube(1, 1, 1, 1, 1, 1));
    const MObject seen = wrap(objectAs<MeshData>(mesh)->transformedView());
    MFnMesh(seen).setPoint(0, MPoint(7, 0, 0));
    MPoint p;
    MFnMesh(mesh).getPoint(0, p);
    expectVector(p, 7, 0, 0);
    build(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
    EXPECT_EQ(MFnMesh(seen).numVertices(), 3);
}

TEST(MeshSharing, AShareTakenDuringAnIterationIsNotWritten)
{
    const MObject mesh = dataOf(primitives::cube(1, 1, 1, 1, 1, 1));
    MItMeshVertex it(mesh);
    it.setPosition(MPoint(5, 5, 5));
    const MObject shared = shareOf(mesh);
    it.setPosition(MPoint(6, 6, 6));
    MPoint p;
    MFnMesh(shared).getPoint(0, p);
    expectVector(p, 5, 5, 5);
}

TEST(MeshSharing, ConcurrentFirstReadersAgree)
{
    for (int round = 0; round < 20; ++round) {
        const Ref<MeshBody> body = primitives::sphere(1, 40, 20);
        const void* seen[4][4] = {};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                const MeshBody own(*body);
                seen[t][0] = &own.vertexNormals(true);
                seen[t][1] = &own.tangents(0);
                seen[t][2] = &own.triangles();
                seen[t][3] = &own.topology().vertexEdges();
            });
        for (auto& t : threads)
            t.join();
        for (int t = 1; t < 4; ++t)
            for (int k = 0; k < 4; ++k)
                EXPECT_EQ(seen[t][k], seen[0][k]);
    }
}

TEST(MeshSharing, TheSameFacesMadeAgain)
{
    const Ref<MeshBody> plane = primitives::plane(1, 1, 90, 90);   // large enough to be worth it
    const MIntArray     counts(unsigned(plane->faceCount()), 4);
    const Buffer<int>&  corners = plane->topology().connects();
    const auto make = [&](const MIntArray& sizes, const std::vector<int>& connects) {
        const MObject data = wrap(mirk::make<MeshData>());
        MFnMesh().create(plane->vertexCount(), int(sizes.length()), MPointArray(unsigned(plane->vertexCount())), sizes,
                         ints(connects), data);
        return data;
    };
    std::vector<int> connects(corners.begin(), corners.end());
    const MObject    first = make(counts, connects), second = make(counts, connects);
    EXPECT_EQ(&bodyOf(first).topology(), &bodyOf(second).topology());

    std::swap(connects[connects.size() - 1], connects[connects.size() - 2]);
    const MObject other = make(counts, connects);
    EXPECT_NE(&bodyOf(first).topology(), &bodyOf(other).topology());
    EXPECT_EQ(bodyOf(other).topology().connects()[connects.size() - 1], connects.back());

    MIntArray sizes = counts;   // as many faces and corners, shared out in another way
    sizes[5000] = 5, sizes[5001] = 3;
    const MObject uneven = make(sizes, connects);
    EXPECT_EQ(bodyOf(uneven).topology().faceSize(5000), 5);
    EXPECT_EQ(bodyOf(other).topology().faceSize(5000), 4);

    for (const size_t place : {size_t(3), size_t(20000), connects.size() - 1})   // ids out of range, wherever they stand
        for (const int id : {-1, plane->vertexCount()}) {
            std::vector<int> wrong = connects;
            wrong[place] = id;
            EXPECT_EQ(MFnMesh(make(counts, wrong)).numVertices(), 0) << place;
        }
}

TEST(MeshSharing, IdsOfManyUVs)
{
    const MObject data = dataOf(primitives::plane(1, 1, 40, 40));
    MFnMesh       fn(data);
    MIntArray     counts, ids, found;
    ASSERT_TRUE(fn.getAssignedUVs(counts, ids));
    for (const unsigned place : {0u, 2000u, ids.length() - 1}) {
        MIntArray changed = ids;
        changed[place] = -1;                       // no UV for this corner
        EXPECT_TRUE(fn.assignUVs(counts, changed)) << place;
        EXPECT_TRUE(fn.getAssignedUVs(counts, found));
        EXPECT_EQ(found.length(), ids.length() - 1);
        fn.getVertices(counts, found);
        for (const int id : {-2, fn.numUVs()}) {
            changed[place] = id;
            EXPECT_FALSE(fn.assignUVs(counts, changed)) << place << ": " << id;
        }
    }
}

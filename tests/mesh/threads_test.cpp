// Two readers of one mesh: tables that are built at the first question are built once and seen whole by both.
#include <atomic>
#include <functional>
#include <thread>

#include <maya/MItMeshVertex.h>

#include "mesh_helpers.h"

namespace mirk::test {
namespace {

/// Sums over everything that is derived from points and topology.
double derived(MObject data)
{
    MFnMesh           fn(data);
    MFloatVectorArray weighted, plain, tangents;
    MIntArray         counts, triangles, faces;
    double            sum = fn.numEdges();
    fn.getVertexNormals(true, weighted);
    fn.getVertexNormals(false, plain);
    fn.getTangents(tangents);
    fn.getTriangles(counts, triangles);
    for (unsigned i = 0; i < weighted.length(); ++i)
        sum += weighted[i].x + 2 * plain[i].y;
    for (unsigned i = 0; i < tangents.length(); ++i)
        sum += tangents[i].z;
    for (unsigned i = 0; i < triangles.length(); ++i)
        sum += triangles[i] * 0.125;
    for (MItMeshVertex it(data); !it.isDone(); it.next()) {
        it.getConnectedFaces(faces);
        sum += faces.length() + it.index();
    }
    return sum;
}

TEST(MeshThreads, ReadersOfOneMeshBuildItsTablesOnce)
{
    const auto sphere = [] { return dataOf(primitives::sphere(1, 24, 16)); };
    const double expected = derived(sphere());
    for (int round = 0; round < 20; ++round) {
        const MObject    fresh = sphere();
        MObject          shared = dataOf(Ref<MeshBody>(&bodyOf(fresh)));   // one body behind two data objects
        std::atomic<int> waiting{2};
        double           sums[2] = {0, 0};
        const auto       read = [&](MObject data, double& sum) {
            for (--waiting; waiting > 0;) {}
            sum = derived(data);
        };
        std::thread first(read, fresh, std::ref(sums[0])), second(read, shared, std::ref(sums[1]));
        first.join();
        second.join();
        EXPECT_EQ(sums[0], expected);
        EXPECT_EQ(sums[1], expected);
    }
}

TEST(MeshThreads, AWriterOfACopyLeavesReadersAlone)
{
    MObject      shared = dataOf(primitives::sphere(1, 24, 16));
    const double expected = derived(shared);
    for (int round = 0; round < 20; ++round) {
        MObject     copy = dataOf(make<MeshBody>(bodyOf(shared)));
        double      sum = 0;
        std::thread reader([&] { sum = derived(shared); });
        std::thread writer([&] {
            MFnMesh fn(copy);
            for (int v = 0; v < fn.numVertices(); ++v)
                fn.setPoint(v, MPoint(v, round, 0));
        });
        reader.join();
        writer.join();
        EXPECT_EQ(sum, expected);
    }
}

}  // namespace
}  // namespace mirk::test

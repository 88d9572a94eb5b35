// The mesh function set on faces of many sides and its iterators: every count against the others, every table against a
// search, edits and their undoing, and what must be refused.
#include "mesh/mesh_helpers.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>

using namespace mirk::test;

namespace {

/// A house seen from the front, with a triangle and a quad beside its pentagon, and an L of six corners below:
///
///        2
///      /   \        6 ---- 7        pentagon 0 1 3 2 4, quad 1 5 6 3, triangle 5 7 6, L 8 9 1 0 10 11
///     4     3 ---- /    /
///     |     |     |   /
///     0 --- 1 --- 5
///     |     |
///    10     9 ...
const Points housePoints = {{0, 0, 0}, {2, 0, 0}, {1, 3, 0}, {2, 2, 0}, {0, 2, 0}, {4, 0, 0}, {4, 2, 0}, {6, 2, 0},
                            {3, -2, 0}, {1, -1, 0}, {-1, -1, 0}, {0, -2, 0}};
const Faces  houseFaces = {{0, 1, 3, 2, 4}, {1, 5, 6, 3}, {5, 7, 6}, {11, 8, 9, 1, 0, 10}};

MObject house() { return meshOf(housePoints, houseFaces); }

double polygonArea(const std::vector<int>& face)
{
    double twice = 0;   // by the trapezoids under the edges
    for (size_t i = 0; i < face.size(); ++i) {
        const auto &a = housePoints[size_t(face[i])], &b = housePoints[size_t(face[(i + 1) % face.size()])];
        twice += a[0] * b[1] - b[0] * a[1];
    }
    return twice / 2;
}

using EdgeKey = std::pair<int, int>;
EdgeKey key(int a, int b) { return {std::min(a, b), std::max(a, b)}; }

/// Edges in order of first appearance, and the faces of each.
std::vector<std::pair<EdgeKey, std::vector<int>>> slowEdges(const Faces& faces)
{
    std::vector<std::pair<EdgeKey, std::vector<int>>> edges;
    for (size_t f = 0; f < faces.size(); ++f)
        for (size_t i = 0; i < faces[f].size(); ++i) {
            const EdgeKey k = key(faces[f][i], faces[f][(i + 1) % faces[f].size()]);
            auto it = std::find_if(edges.begin(), edges.end(), [&](const auto& e) { return e.first == k; });
            if (it == edges.end())
                it = edges.insert(edges.end(), {k, {}});
            it->second.push_back(int(f));
        }
    return edges;
}

}  // namespace

TEST(NgonLaws, CountsAgree)
{
    MFnMesh fn(house());
    EXPECT_EQ(fn.numVertices(), 12);
    EXPECT_EQ(fn.numPolygons(), 4);
    EXPECT_EQ(fn.numFaceVertices(), 5 + 4 + 3 + 6);
    EXPECT_EQ(fn.numEdges(), int(slowEdges(houseFaces).size()));
    EXPECT_EQ(fn.numVertices() - fn.numEdges() + fn.numPolygons(), 1) << "a disk";
    MIntArray counts, vertices, triangleCounts, triangles;
    EXPECT_TRUE(fn.getVertices(counts, vertices) && fn.getTriangles(triangleCounts, triangles));
    int at = 0;
    for (int f = 0; f < 4; ++f) {
        MIntArray face;
        EXPECT_TRUE(fn.getPolygonVertices(f, face));
        EXPECT_EQ(list(face), houseFaces[size_t(f)]);
        EXPECT_EQ(fn.polygonVertexCount(f), counts[unsigned(f)]);
        EXPECT_EQ(triangleCounts[unsigned(f)], counts[unsigned(f)] - 2);
        EXPECT_EQ(fn.isPolygonConvex(f), f != 3) << f;
        EXPECT_TRUE(fn.onBoundary(f));
        double area = 0;   // the triangles cover the face and stay in it, also where it is not convex
        for (int t = 0; t < triangleCounts[unsigned(f)]; ++t, ++at) {
            int three[3];
            EXPECT_TRUE(fn.getPolygonTriangleVertices(f, t, three));
            std::vector<int> corner;
            for (int k = 0; k < 3; ++k) {
                EXPECT_EQ(three[k], triangles[unsigned(3 * at + k)]);
                corner.push_back(three[k]);
            }
            EXPECT_GT(polygonArea(corner), 0) << "wound as the face";
            area += polygonArea(corner);
        }
        EXPECT_NEAR(area, polygonArea(houseFaces[size_t(f)]), 1e-9);
        int three[3];
        EXPECT_EQ(fn.getPolygonTriangleVertices(f, triangleCounts[unsigned(f)], three), MS::kInvalidParameter);
        MVector n;
        EXPECT_TRUE(fn.getPolygonNormal(f, n));
        expectVector(n, 0, 0, 1);
    }
}

TEST(NgonLaws, EdgesAgainstASearch)
{
    const MObject data = house();
    MFnMesh       fn(data);
    const auto    edges = slowEdges(houseFaces);
    int           i = 0;
    MItMeshEdge   it(data);
    ASSERT_EQ(it.count(), int(edges.size()));
    for (; !it.isDone(); it.next(), ++i) {
        const auto& [ends, faces] = edges[size_t(i)];
        int2 v;
        EXPECT_EQ(it.index(), i);
        EXPECT_TRUE(fn.getEdgeVertices(i, v));
        EXPECT_EQ(key(v[0], v[1]), ends) << i;
        EXPECT_EQ(v[0], it.index(0));
        EXPECT_EQ(it.index(2), -1);
        MIntArray found;
        EXPECT_EQ(it.getConnectedFaces(found), int(faces.size()));
        std::vector<int> sorted = list(found);
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(sorted, faces) << i;
        EXPECT_EQ(it.onBoundary(), faces.size() == 1) << i;
        const auto &a = housePoints[size_t(ends.first)], &b = housePoints[size_t(ends.second)];
        double length = 0;
        EXPECT_TRUE(it.getLength(length));
        EXPECT_NEAR(length, std::hypot(a[0] - b[0], a[1] - b[1]), 1e-6);
        expectVector(it.center(), (a[0] + b[0]) / 2, (a[1] + b[1]) / 2, 0);
        std::set<int> touching;
        for (size_t j = 0; j < edges.size(); ++j)
            if (int(j) != i && (edges[j].first.first == ends.first || edges[j].first.first == ends.second ||
                                edges[j].first.second == ends.first || edges[j].first.second == ends.second))
                touching.insert(int(j));
        it.getConnectedEdges(found);
        sorted = list(found);
        EXPECT_EQ(std::set<int>(sorted.begin(), sorted.end()), touching) << i;
        for (int f = 0; f < 4; ++f)
            EXPECT_EQ(it.connectedToFace(f), std::count(faces.begin(), faces.end(), f) > 0);
        for (int e = 0; e < int(edges.size()); ++e)
            EXPECT_EQ(it.connectedToEdge(e), touching.count(e) > 0) << i << " " << e;
    }
    int before = -1;
    EXPECT_TRUE(it.setIndex(3, before));
    EXPECT_EQ(it.index(), 3);
    EXPECT_FALSE(it.setIndex(int(edges.size()), before));
    EXPECT_FALSE(it.setIndex(-1, before));
}

TEST(NgonLaws, FacesAndVerticesAgainstASearch)
{
    const MObject  data = house();
    const auto     edges = slowEdges(houseFaces);
    MItMeshPolygon face(data);
    for (int f = 0; !face.isDone(); face.next(), ++f) {
        const std::vector<int>& corners = houseFaces[size_t(f)];
        MIntArray found;
        face.getEdges(found);
        ASSERT_EQ(found.length(), corners.size());
        std::set<int> over;
        for (unsigned k = 0; k < found.length(); ++k) {   // an edge of a face starts at the vertex of its place
            EXPECT_EQ(edges[size_t(found[k])].first, key(corners[k], corners[(k + 1) % corners.size()]));
            for (const int g : edges[size_t(found[k])].second)
                if (g != f)
                    over.insert(g);
        }
        face.getConnectedFaces(found);
        const std::vector<int> sorted = list(found);
        EXPECT_EQ(std::set<int>(sorted.begin(), sorted.end()), over) << f;
        int n = 0;
        EXPECT_TRUE(face.numConnectedFaces(n));
        EXPECT_EQ(n, int(over.size()));
        double area = 0;
        EXPECT_TRUE(face.getArea(area));
        EXPECT_NEAR(area, polygonArea(corners), 1e-6);
        EXPECT_TRUE(face.isPlanar() && !face.isLamina() && !face.zeroArea());
        for (size_t k = 0; k < corners.size(); ++k) {
            EXPECT_EQ(face.vertexIndex(int(k)), corners[k]);
            expectVector(face.point(int(k)), housePoints[size_t(corners[k])][0], housePoints[size_t(corners[k])][1], 0);
        }
        EXPECT_EQ(face.vertexIndex(int(corners.size())), -1);
        EXPECT_EQ(face.vertexIndex(-1), -1);
    }
    MItMeshVertex vertex(data);
    for (int v = 0; !vertex.isDone(); vertex.next(), ++v) {
        std::set<int> faces, around, neighbours;
        bool          open = false;
        for (size_t f = 0; f < houseFaces.size(); ++f)
            if (std::count(houseFaces[f].begin(), houseFaces[f].end(), v))
                faces.insert(int(f));
        for (size_t e = 0; e < edges.size(); ++e)
            if (edges[e].first.first == v || edges[e].first.second == v) {
                around.insert(int(e));
                neighbours.insert(edges[e].first.first + edges[e].first.second - v);
                open = open || edges[e].second.size() == 1;
                int other = -1;
                EXPECT_TRUE(vertex.getOppositeVertex(other, int(e)));
                EXPECT_EQ(other, edges[e].first.first + edges[e].first.second - v);
            }
        MIntArray found;
        const auto same = [&](const std::set<int>& wanted, const char* what) {
            const std::vector<int> got = list(found);
            EXPECT_EQ(std::set<int>(got.begin(), got.end()), wanted) << what << " of " << v;
            EXPECT_EQ(got.size(), wanted.size());
        };
        vertex.getConnectedFaces(found);
        same(faces, "faces");
        vertex.getConnectedEdges(found);
        same(around, "edges");
        vertex.getConnectedVertices(found);
        same(neighbours, "vertices");
        EXPECT_EQ(vertex.onBoundary(), open) << v;
        for (int f = 0; f < 4; ++f)
            EXPECT_EQ(vertex.connectedToFace(f), faces.count(f) > 0);
    }
    int corner = 0;
    for (MItMeshFaceVertex it(data); !it.isDone(); it.next(), ++corner)
        EXPECT_EQ(it.vertId(), houseFaces[size_t(it.faceId())][size_t(it.faceVertId())]);
    EXPECT_EQ(corner, 18);
}

TEST(NgonLaws, HardEdgesSplitNormalsWhereTheyAreHard)
{
    // a roof: two quads that meet at the ridge 1 - 4, each at 45 degrees
    const MObject data = meshOf({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {0, 0, -1}, {1, 1, -1}, {2, 0, -1}}, {{0, 1, 4, 3}, {1, 2, 5, 4}});
    MFnMesh fn(data);
    const double s = std::sqrt(0.5);
    int ridge = -1;
    for (int e = 0; e < fn.numEdges(); ++e) {
        int2 v;
        fn.getEdgeVertices(e, v);
        if (key(v[0], v[1]) == key(1, 4))
            ridge = e;
    }
    const auto at = [&](int face, int vertex) {
        MVector n;
        EXPECT_TRUE(fn.getFaceVertexNormal(face, vertex, n));
        return n;
    };
    EXPECT_TRUE(fn.setEdgeSmoothing(ridge, true) && fn.cleanupEdgeSmoothing());
    EXPECT_TRUE(fn.isEdgeSmooth(ridge));
    expectVector(at(0, 1), 0, 1, 0, "the mean");
    expectVector(at(1, 4), 0, 1, 0, "the mean");
    expectVector(at(0, 0), -s, s, 0, "the outer ones are their face's");
    const int smooth = fn.numNormals();
    EXPECT_TRUE(fn.setEdgeSmoothing(ridge, false) && fn.cleanupEdgeSmoothing());
    EXPECT_FALSE(fn.isEdgeSmooth(ridge));
    expectVector(at(0, 1), -s, s, 0, "each its own");
    expectVector(at(1, 1), s, s, 0, "each its own");
    EXPECT_GT(fn.numNormals(), smooth);

    MFloatVectorArray normals;
    MIntArray         counts, ids, faceIds;
    EXPECT_TRUE(fn.getNormals(normals) && fn.getNormalIds(counts, ids));
    ASSERT_EQ(ids.length(), 8u);
    EXPECT_TRUE(fn.getFaceNormalIds(1, faceIds));
    for (unsigned k = 0; k < 4; ++k) {
        EXPECT_EQ(faceIds[k], ids[4 + k]);
        expectVector(normals[unsigned(faceIds[k])], s, s, 0);
    }
    const MIntArray both = ints({ridge, 99}), flags = ints({1, 1});
    EXPECT_EQ(fn.setEdgeSmoothings(both, flags), MS::kInvalidParameter);
    EXPECT_FALSE(fn.isEdgeSmooth(ridge)) << "nothing is half done";
    EXPECT_EQ(fn.setEdgeSmoothings(ints({ridge}), flags), MS::kInvalidParameter);
    EXPECT_FALSE(fn.isEdgeSmooth(99));
}

TEST(NgonLaws, LockedNormalsByVertexAndByCorner)
{
    const MObject data = twoQuads();
    MFnMesh fn(data);
    MVector x(1, 0, 0), y(0, 1, 0), n;
    EXPECT_TRUE(fn.setVertexNormal(x, 1));
    EXPECT_TRUE(fn.setFaceVertexNormal(y, 1, 4));
    const auto at = [&](int face, int vertex) {
        EXPECT_TRUE(fn.getFaceVertexNormal(face, vertex, n));
        return n;
    };
    expectVector(at(0, 1), 1, 0, 0);
    expectVector(at(1, 1), 1, 0, 0);
    expectVector(at(0, 4), 0, 0, 1);
    expectVector(at(1, 4), 0, 1, 0);
    MIntArray ids;
    EXPECT_TRUE(fn.getFaceNormalIds(1, ids));   // 1 2 5 4
    EXPECT_TRUE(fn.isNormalLocked(unsigned(ids[0])) && fn.isNormalLocked(unsigned(ids[3])) && !fn.isNormalLocked(unsigned(ids[1])));
    MIntArray vertices = ints({1}), corners = ints({4}), faces = ints({1});
    EXPECT_TRUE(fn.unlockVertexNormals(vertices));
    expectVector(at(0, 1), 0, 0, 1, "free again");
    EXPECT_TRUE(fn.unlockFaceVertexNormals(faces, corners));
    expectVector(at(1, 4), 0, 0, 1, "free again");
    EXPECT_TRUE(fn.lockVertexNormals(vertices));
    MPoint up(1, 0, 5);
    EXPECT_TRUE(fn.setPoint(1, up));
    expectVector(at(0, 1), 0, 0, 1, "locked as it stood");
    EXPECT_GT(std::abs(at(0, 0).z - 1), 1e-3) << "others follow";
    MIntArray bad = ints({1, 77});
    EXPECT_EQ(fn.unlockVertexNormals(bad), MS::kInvalidParameter);
    expectVector(at(0, 1), 0, 0, 1, "nothing is half done");
    EXPECT_EQ(fn.setFaceVertexNormal(x, 0, 2), MS::kInvalidParameter) << "2 is no corner of face 0";
    EXPECT_EQ(fn.setFaceVertexNormal(x, 5, 2), MS::kInvalidParameter);
    EXPECT_EQ(fn.setVertexNormal(x, -1), MS::kInvalidParameter);
    MVectorArray two;
    two.append(x);
    two.append(y);
    EXPECT_EQ(fn.setVertexNormals(two, vertices), MS::kInvalidParameter) << "lengths differ";
}

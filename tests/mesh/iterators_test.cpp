#include <climits>
#include <set>

#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>

#include "data/component.h"
#include "mesh/target.h"
#include "mesh/walk.h"
#include "mesh_helpers.h"

using namespace mirk;
using namespace mirk::test;

namespace {

MObject component(MFn::Type type, std::vector<int> elements)
{
    auto c = makeComponent(type);
    addElements(*c, elements.data(), elements.size() / size_t(c->dimensions()));
    return wrap(c);
}

std::vector<int> walked(MeshWalk::Kind kind, const MObject& mesh, const MObject& comp)
{
    MeshWalk walk(kind);
    EXPECT_TRUE(walk.open(MeshTarget::of(mesh), comp));
    std::vector<int> indices;
    for (; !walk.done(); walk.step())
        indices.push_back(walk.index());
    return indices;
}

}  // namespace

TEST(MeshIterators, VertexNeighbours)
{
    MItMeshVertex it(twoQuads());
    EXPECT_EQ(it.count(), 6);
    int previous = -1;
    ASSERT_TRUE(it.setIndex(4, previous));
    EXPECT_EQ(previous, 0);
    MIntArray found;
    it.getConnectedFaces(found);
    EXPECT_EQ(list(found), (std::vector<int>{0, 1}));
    it.getConnectedEdges(found);
    EXPECT_EQ(list(found), (std::vector<int>{1, 2, 6}));
    it.getConnectedVertices(found);
    EXPECT_EQ(list(found), (std::vector<int>{1, 3, 5}));
    int other = -1;
    EXPECT_TRUE(it.getOppositeVertex(other, 6));
    EXPECT_EQ(other, 5);
    EXPECT_EQ(it.getOppositeVertex(other, 0), MS::kInvalidParameter);
    EXPECT_TRUE(it.onBoundary());
    EXPECT_FALSE(it.connectedToFace(2));

    MItMeshVertex inner(dataOf(primitives::plane(1, 1, 2, 2)));
    inner.setIndex(4, previous);
    EXPECT_FALSE(inner.onBoundary());
}

TEST(MeshIterators, PastTheEndAndWithoutAMeshNothingHappens)
{
    MStatus status;
    MItMeshVertex none(wrap(make<StringData>("no mesh")), &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_TRUE(none.isDone());
    EXPECT_TRUE(MItMeshPolygon(MObject::kNullObj).isDone());

    MItMeshVertex it(twoQuads());
    while (!it.isDone())
        it.next();
    MIntArray list;
    MVector n;
    MColor c;
    float2 uv;
    for (MItMeshVertex* i : {&it, &none}) {
        EXPECT_EQ(i->next(), MS::kFailure);
        i->position(MSpace::kObject, &status);
        EXPECT_EQ(status, MS::kFailure);
        EXPECT_EQ(i->getNormal(n), MS::kFailure);
        EXPECT_EQ(i->getColor(c), MS::kFailure);
        EXPECT_EQ(i->getUV(uv), MS::kFailure);
        EXPECT_EQ(i->getConnectedFaces(list), MS::kFailure);
        EXPECT_EQ(i->setPosition(MPoint()), MS::kFailure);
        EXPECT_TRUE(i->currentItem().isNull());
        EXPECT_NE(i->setIndex(INT_MAX, list[0]), MS::kSuccess);
    }
    it.reset();
    EXPECT_EQ(it.index(), 0);
}

TEST(MeshIterators, AMeshThatShrinksUnderTheWalk)
{
    const MObject mesh = dataOf(primitives::sphere(1, 8, 8));
    MItMeshVertex vertex(mesh);
    MItMeshPolygon face(mesh);
    int previous;
    vertex.setIndex(50, previous);
    face.setIndex(60, previous);
    build(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
    MStatus status;
    vertex.position(MSpace::kObject, &status);
    EXPECT_EQ(status, MS::kFailure);
    MIntArray vertices;
    EXPECT_EQ(face.getVertices(vertices), MS::kFailure);
}

TEST(MeshIterators, ComponentsSelectWhatExists)
{
    const MObject mesh = twoQuads();
    EXPECT_EQ(walked(MeshWalk::vertices, mesh, component(MFn::kMeshVertComponent, {5, 1, 99})), (std::vector<int>{1, 5}));
    EXPECT_EQ(walked(MeshWalk::faces, mesh, component(MFn::kMeshPolygonComponent, {1})), (std::vector<int>{1}));
    EXPECT_EQ(walked(MeshWalk::edges, mesh, component(MFn::kMeshEdgeComponent, {})), (std::vector<int>{}));
    auto all = makeComponent(MFn::kMeshEdgeComponent);
    all->complete = true;
    EXPECT_EQ(walked(MeshWalk::edges, mesh, wrap(all)).size(), 7u);
    MeshWalk walk(MeshWalk::vertices);
    EXPECT_EQ(walk.open(MeshTarget::of(mesh), component(MFn::kMeshEdgeComponent, {1})), MS::kInvalidParameter);
    EXPECT_TRUE(walk.done());
}

TEST(MeshIterators, ItemsUseOneComponentAgainUnlessItIsKept)
{
    MItMeshVertex it(twoQuads());
    const void* first = ObjectAccess::get(it.currentItem());
    it.next();
    const MObject kept = it.currentItem();
    EXPECT_EQ(ObjectAccess::get(kept), first);
    EXPECT_TRUE(objectAs<Component>(kept)->has(1));
    EXPECT_FALSE(objectAs<Component>(kept)->has(0));
    it.next();
    EXPECT_TRUE(objectAs<Component>(it.currentItem())->has(2));
    EXPECT_TRUE(objectAs<Component>(kept)->has(1)) << "a kept item is left alone";
}

TEST(MeshIterators, NormalsStandStillWhileTheWalkMovesPoints)
{
    const MObject mesh = dataOf(primitives::plane(2, 2, 2, 2));
    MItMeshVertex it(mesh);
    for (; !it.isDone(); it.next()) {
        MVector n;
        it.getNormal(n);
        expectVector(n, 0, 1, 0);
        it.setPosition(it.position() + MVector(0, it.index() * it.index(), 0));
    }
    it.reset();
    it.updateSurface();
    MVector n;
    it.getNormal(n);
    EXPECT_LT(n.y, 0.9);
    MFnMesh(mesh).getVertexNormal(0, false, n);
    EXPECT_LT(n.y, 0.9);
}

TEST(MeshIterators, PolygonMeasures)
{
    // an arrow of area 2 and a unit square beside it, in a plane tilted by the 3-4-5 triangle
    const MObject mesh = meshOf({{0, 0, 0}, {3, 1, 0}, {0, 2, 0}, {1, 1, 0}, {5, 0, 0}, {6, 0, 0}, {6, 0.6, 0.8}, {5, 0.6, 0.8}},
                                {{0, 1, 2, 3}, {4, 5, 6, 7}});
    MItMeshPolygon it(mesh);
    double area = 0;
    ASSERT_TRUE(it.getArea(area));
    EXPECT_NEAR(area, 2, 1e-6);
    EXPECT_FALSE(it.isConvex());
    EXPECT_TRUE(it.isPlanar());
    EXPECT_NE(it.getUVArea(area), MS::kSuccess);
    EXPECT_FALSE(it.hasUVs());
    expectVector(it.center(), 1, 1, 0);
    it.next();
    it.getArea(area);
    EXPECT_NEAR(area, 1, 1e-6);
    MVector n;
    it.getNormal(n);
    expectVector(n, 0, -0.8, 0.6);
    EXPECT_TRUE(it.isConvex());
    EXPECT_EQ(it.vertexIndex(3), 7);
    EXPECT_EQ(it.vertexIndex(4), -1);

    MItMeshPolygon plane(dataOf(primitives::plane(1, 1, 2, 5)));
    ASSERT_TRUE(plane.getUVArea(area));
    EXPECT_NEAR(area, 0.1, 1e-6);
    MIntArray faces;
    plane.getConnectedFaces(faces);
    EXPECT_EQ(list(faces), (std::vector<int>{1, 2}));
    MIntArray vertices;
    plane.getConnectedVertices(vertices);
    EXPECT_EQ(list(vertices), (std::vector<int>{2, 5, 6, 7})) << "edge neighbours of the first face's vertices";
    EXPECT_TRUE(plane.onBoundary());
}

TEST(MeshIterators, EdgesAndFaceVertices)
{
    const MObject mesh = twoQuads();
    MItMeshEdge edge(mesh);
    int previous;
    edge.setIndex(1, previous);
    double length = 0;
    edge.getLength(length);
    EXPECT_NEAR(length, 1, 1e-6);
    expectVector(edge.center(), 1, 0.5, 0);
    MIntArray found;
    EXPECT_EQ(edge.getConnectedFaces(found), 2);
    EXPECT_EQ(edge.getConnectedEdges(found), 4);
    EXPECT_FALSE(edge.onBoundary());
    EXPECT_TRUE(edge.isSmooth());
    edge.setSmoothing(false);
    EXPECT_FALSE(MFnMesh(mesh).isEdgeSmooth(1));

    std::vector<std::array<int, 3>> corners;
    for (MItMeshFaceVertex it(mesh); !it.isDone(); it.next())
        corners.push_back({it.faceId(), it.vertId(), it.faceVertId()});
    ASSERT_EQ(corners.size(), 8u);
    EXPECT_EQ(corners[5], (std::array<int, 3>{1, 2, 1}));
}

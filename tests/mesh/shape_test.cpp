// Mesh function sets and iterators on shapes in the scene, and along DAG paths to them.
#include <maya/MDagPath.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlug.h>

#include "data/component.h"
#include "graph/node.h"
#include "graph/scene.h"
#include "mesh_helpers.h"
#include "nodes/builtin.h"

using namespace mirk;
using namespace mirk::test;

namespace {

class MeshShapes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        registerBuiltinNodes();
        newScene();
        const MPointArray points = pointArray({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
        transform = fn.create(4, 1, points, ints({4}), ints({0, 1, 2, 3}), MObject::kNullObj, &status);
        ASSERT_TRUE(status);
        ASSERT_TRUE(MDagPath::getAPathTo(transform, path));
        ASSERT_TRUE(path.extendToShape());
    }
    void move(double x)
    {
        const Node& node = *objectAs<Node>(transform);
        MPlug(transform, wrap(node.findAttribute("translateX"))).setValue(x);
    }

    MFnMesh  fn;
    MStatus  status;
    MObject  transform;
    MDagPath path;
};

}  // namespace

TEST_F(MeshShapes, CreateMakesAShapeBelowANewTransform)
{
    EXPECT_TRUE(transform.hasFn(MFn::kTransform));
    EXPECT_TRUE(path.node().hasFn(MFn::kMesh));
    EXPECT_EQ(fn.object(), path.node()) << "the function set is on the shape";
    EXPECT_EQ(fn.numVertices(), 4);
    EXPECT_TRUE(fn.parent(0) == transform);
    MFnMesh other;
    MObject second = other.create(4, 0, MPointArray(4), MIntArray(), MIntArray(), transform, &status);
    ASSERT_TRUE(status);
    EXPECT_TRUE(second.hasFn(MFn::kMesh));
    other.create(4, 0, MPointArray(4), MIntArray(), MIntArray(), path.node(), &status);
    EXPECT_NE(status, MS::kSuccess) << "a shape is no parent";
}

TEST_F(MeshShapes, ThePathGivesWorldSpaceAndFollowsTheTransform)
{
    MFnMesh along(path, &status);
    ASSERT_TRUE(status);
    MPoint p;
    for (double x : {10.0, 20.0}) {
        move(x);
        along.getPoint(1, p, MSpace::kWorld);
        expectVector(p, x + 1, 0, 0, "world");
        along.getPoint(1, p, MSpace::kObject);
        expectVector(p, 1, 0, 0, "object");
    }
    EXPECT_EQ(along.dagPath(), path);
    along.setPoint(1, MPoint(25, 0, 0), MSpace::kWorld);
    fn.getPoint(1, p);
    expectVector(p, 5, 0, 0, "the shape has changed");
    MColor red(1, 0, 0, 1);
    along.setVertexColor(red, 0);
    EXPECT_EQ(MFnMesh(path.node()).numColorSets(), 1);

    MFnMesh nowhere(MDagPath(), &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(nowhere.numVertices(&status), 0);
}

TEST_F(MeshShapes, IteratorsAlongAPathTakeComponents)
{
    move(3);
    auto two = makeComponent(MFn::kMeshVertComponent);
    const int elements[] = {1, 3};
    addElements(*two, elements, 2);
    MItMeshVertex it(path, wrap(two), &status);
    ASSERT_TRUE(status);
    EXPECT_EQ(it.count(), 2);
    expectVector(it.position(MSpace::kWorld), 4, 0, 0);
    it.setPosition(MPoint(4, -1, 0), MSpace::kWorld);
    it.next();
    EXPECT_EQ(it.index(), 3);
    MPoint p;
    fn.getPoint(1, p);
    expectVector(p, 1, -1, 0);
    MItMeshPolygon faces(path, wrap(two), &status);
    EXPECT_NE(status, MS::kSuccess) << "vertices are no faces";
    EXPECT_TRUE(faces.isDone());
}

TEST_F(MeshShapes, ACopyInDataIsPrivate)
{
    const MObject data = wrap(make<MeshData>());
    MFnMesh copy;
    copy.copy(path.node(), data, &status);
    ASSERT_TRUE(status);
    copy.setPoint(0, MPoint(9, 9, 9));
    MPoint p;
    fn.getPoint(0, p);
    expectVector(p, 0, 0, 0);
}

// Hierarchy: creation, names, instances, matrices and boxes that follow the scene, and taking all of it back.
#include "dag_fixture.h"

#include "dag/copy.h"

using namespace dag_test;

namespace {

struct DagEdit : SceneTest {};

TEST_F(DagEdit, NewSceneHasItsCameras)
{
    const struct { const char* name; Point at; bool ortho; } cameras[] = {
        {"persp", {28, 21, 28}, false}, {"top", {0, 1000.1, 0}, true}, {"front", {0, 0, 1000.1}, true}, {"side", {1000.1, 0, 0}, true}};
    for (const auto& c : cameras) {
        Node* transform = scene().first(c.name);
        ASSERT_TRUE(transform) << c.name;
        EXPECT_EQ(origin(transform), c.at) << c.name;
        EXPECT_EQ(get(transform->dag->children.front(), "orthographic"), c.ortho) << c.name;
        EXPECT_THROW(dag::deleteNode(*transform), command::Error) << c.name;
    }
    ASSERT_TRUE(scene().first("time1"));
}

TEST_F(DagEdit, ShapesGetTransformsAndNames)
{
    Node* mesh = make("mesh");
    EXPECT_EQ(dag::fullName(dag::firstPath(*mesh)), "|polySurface1|polySurfaceShape1");
    Node* named = make("locator", "handleShape");
    EXPECT_EQ(dag::fullName(dag::firstPath(*named)), "|handle|handleShape");
    Node* below = make("nurbsCurve", "", scene().first("handle"));
    EXPECT_EQ(below->name, "handleShape1");   // the sibling has the plain name
    EXPECT_THROW(make("shape"), command::Error);
    EXPECT_THROW(make("transform", "x", mesh), command::Error);
    EXPECT_EQ(scene().first("x"), nullptr);
}

TEST_F(DagEdit, NamesAreUniqueAmongSiblingsOnly)
{
    Node *a = make("transform", "a"), *b = make("transform", "b");
    Node *x1 = make("transform", "x", a), *x2 = make("transform", "x", b);
    EXPECT_EQ(x1->name, "x");
    EXPECT_EQ(x2->name, "x");
    EXPECT_EQ(make("transform", "x", a)->name, "x1");
    EXPECT_EQ(dag::shortestName(*x1), "a|x");
    EXPECT_EQ(dag::shortestName(*a), "a");
    Node* top = make("transform", "x");
    EXPECT_EQ(dag::shortestName(*top), "|x");
    EXPECT_EQ(make("network", "a")->name, "a1");   // outside the DAG a name stands alone
    dag::reparent(*x2, nullptr, *a);
    EXPECT_EQ(x2->name, "x2");
    dag::renameNode(*x2, "x");
    EXPECT_EQ(x2->name, "x2");
    EXPECT_THROW(dag::renameNode(*x2, "1 2"), command::Error);
}

TEST_F(DagEdit, MatricesFollowValuesAndParents)
{
    Node *a = make("transform", "a"), *b = make("transform", "b", a), *c = make("transform", "c", b);
    set(a, "tx", 1);
    set(b, "ty", 2);
    set(c, "tz", 3);
    EXPECT_EQ(origin(c), (Point{1, 2, 3}));
    set(a, "tx", 10);
    EXPECT_EQ(origin(c), (Point{10, 2, 3}));
    Node* other = make("transform", "other");
    set(other, "tx", -5);
    dag::reparent(*b, nullptr, *other);
    EXPECT_EQ(origin(c), (Point{-5, 2, 3}));
    dag::reparent(*b, nullptr, dag::world());
    EXPECT_EQ(origin(c), (Point{0, 2, 3}));
    // a quarter turn about z takes x to y
    set(b, "rz", 1.5707963267948966);
    set(c, "tx", 4);
    EXPECT_NEAR(origin(c)[1], 6, 1e-12);
    set(c, "inheritsTransform", 0);
    EXPECT_EQ(origin(c), (Point{4, 0, 3}));
}

TEST_F(DagEdit, TransformPiecesAreMultipliedInOrder)
{
    Node* t = make("transform");
    // scaled by 2 about x = 1, then a quarter turn about z about the origin, then moved: 0 -> -1 -> (0, -1) -> (5, -1)
    set(t, "sx", 2);
    set(t, "spx", 1);
    set(t, "rz", 1.5707963267948966);
    set(t, "tx", 5);
    const Point p = origin(t);
    EXPECT_NEAR(p[0], 5, 1e-12);
    EXPECT_NEAR(p[1], -1, 1e-12);
}

TEST_F(DagEdit, JointsTakeTheParentsScaleBack)
{
    Node *a = make("joint"), *b = make("joint", "", a);
    set(a, "sx", 3);
    set(b, "tx", 2);
    edit::connect(cell(a, "scale"), cell(b, "inverseScale"));
    Cell& world = *cell(b, "worldMatrix").element(0);
    eval::pull(world);
    EXPECT_DOUBLE_EQ(world.own.matrix[12], 6);   // its place is scaled
    EXPECT_DOUBLE_EQ(world.own.matrix[0], 1);    // its axes are not
    set(b, "segmentScaleCompensate", 0);
    eval::pull(world);
    EXPECT_DOUBLE_EQ(world.own.matrix[0], 3);
}

TEST_F(DagEdit, InstancesHaveAMatrixEach)
{
    Node *a = make("transform", "a"), *b = make("transform", "b"), *shape = make("locator", "s", a);
    dag::addInstance(*shape, *b);
    set(a, "tx", 1);
    set(b, "tx", 2);
    EXPECT_EQ(origin(shape, 0)[0], 1);
    EXPECT_EQ(origin(shape, 1)[0], 2);
    set(b, "tx", 7);
    EXPECT_EQ(origin(shape, 1)[0], 7);
    // the group above both doubles nothing, an instance of a parent does
    Node* top = make("transform", "upper");
    dag::addInstance(*a, *top);
    EXPECT_EQ(dag::allPaths(*shape).size(), 3u);
    EXPECT_EQ(dag::instanceNumber(dag::allPaths(*shape)[2]), 2u);
    EXPECT_EQ(dag::partialName(dag::find("upper|a|s").at(0)), "upper|a|s");
    EXPECT_THROW(dag::addInstance(*top, *a), command::Error);
    dag::removeInstance(*shape, *a);
    EXPECT_EQ(dag::fullName(dag::firstPath(*shape)), "|b|s");
    EXPECT_THROW(dag::removeInstance(*shape, *b), command::Error);
    const Ref<Node> keep(shape);
    dag::deleteNode(*b);
    EXPECT_FALSE(shape->inScene);
}

TEST_F(DagEdit, DeletingAParentSparesInstancesElsewhere)
{
    Node *a = make("transform", "a"), *b = make("transform", "b"), *shape = make("locator", "s", a);
    dag::addInstance(*shape, *b);
    dag::deleteNode(*a);
    EXPECT_TRUE(shape->inScene);
    EXPECT_EQ(dag::allPaths(*shape).size(), 1u);
}

TEST_F(DagEdit, CyclesAndClashesAreRefused)
{
    Node *a = make("transform", "a"), *b = make("transform", "b", a), *s = make("locator", "s", b);
    EXPECT_THROW(dag::reparent(*a, nullptr, *b), command::Error);
    EXPECT_THROW(dag::reparent(*a, nullptr, *a), command::Error);
    EXPECT_THROW(dag::reparent(*s, nullptr, dag::world()), command::Error);
    EXPECT_THROW(dag::reparent(*b, nullptr, *s), command::Error);
    EXPECT_EQ(dag::fullName(dag::firstPath(*s)), "|a|b|s");
}

TEST_F(DagEdit, EverythingCanBeTakenBackAndDoneAgain)
{
    Node *a, *b, *s;
    { undo::Scope scope("make"); a = make("transform", "a"); b = make("transform", "b"); s = make("locator", "s", a); set(a, "tx", 4); }
    { undo::Scope scope("parent"); dag::reparent(*a, nullptr, *b); }
    { undo::Scope scope("delete"); dag::deleteNode(*b); }
    EXPECT_FALSE(s->inScene);
    undo::undoOne();
    EXPECT_EQ(dag::fullName(dag::firstPath(*s)), "|b|a|s");
    EXPECT_EQ(origin(s)[0], 4);
    undo::undoOne();
    EXPECT_EQ(dag::fullName(dag::firstPath(*s)), "|a|s");
    undo::undoOne();
    EXPECT_EQ(scene().first("a"), nullptr);
    while (undo::redoOne()) {}
    EXPECT_EQ(scene().first("b"), nullptr);
    undo::undoOne();
    EXPECT_EQ(dag::fullName(dag::firstPath(*s)), "|b|a|s");
}

TEST_F(DagEdit, BoxesFollowWhatIsBelow)
{
    Node *group = make("transform", "group"), *a = make("transform", "a", group), *cube = make("polyCube"), *mesh = make("mesh", "", a);
    edit::connect(cell(cube, "output"), cell(mesh, "inMesh"));
    EXPECT_EQ(get(group, "boundingBoxMaxX"), 0.5);
    set(cube, "width", 4);
    EXPECT_EQ(get(group, "boundingBoxMaxX"), 2);
    set(a, "tx", 10);
    EXPECT_EQ(get(group, "boundingBoxMinX"), 8);
    EXPECT_EQ(get(group, "boundingBoxCenterX"), 10);
    EXPECT_EQ(get(a, "boundingBoxSizeX"), 4);
    set(mesh, "intermediateObject", 1);
    EXPECT_EQ(get(group, "boundingBoxMaxX"), 0);
    dag::deleteNode(*a);
    EXPECT_EQ(get(group, "boundingBoxSizeX"), 0);
}

TEST_F(DagEdit, CopiesAreTheirOwn)
{
    Node *a = make("transform", "a"), *s = make("locator", "s", a);
    set(a, "tx", 3);
    set(s, "localPositionY", 2);
    Node* copy = dag::duplicate(*a);
    EXPECT_EQ(copy->name, "a1");
    ASSERT_EQ(copy->dag->children.size(), 1u);
    EXPECT_EQ(get(copy->dag->children[0], "worldPosition[0].worldPositionX"), 3);
    EXPECT_EQ(get(copy->dag->children[0], "worldPosition[0].worldPositionY"), 2);
    set(s, "localPositionY", 9);
    EXPECT_EQ(get(copy->dag->children[0], "localPositionY"), 2);
    Node* shared = dag::duplicate(*a, {.instanceLeaf = true});
    EXPECT_EQ(shared->dag->children[0], s);
}

}  // namespace

// Components, component lists and the object groups of geometry data.
#include <gtest/gtest.h>

#include <set>

#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>

#include "data/component.h"
#include "data/mobject.h"

using namespace mirk;

namespace {

MIntArray ints(std::initializer_list<int> list)
{
    MIntArray a;
    for (int i : list)
        a.append(i);
    return a;
}

MObject vertices(std::initializer_list<int> list, MFn::Type type = MFn::kMeshVertComponent)
{
    MFnSingleIndexedComponent fn;
    MObject                   object = fn.create(type);
    fn.addElements(ints(list));
    return object;
}

std::vector<int> elements(const MObject& object)
{
    MIntArray a;
    MFnSingleIndexedComponent(object).getElements(a);
    std::vector<int> out;
    for (unsigned i = 0; i < a.length(); ++i)
        out.push_back(a[i]);
    return out;
}

using V = std::vector<int>;

}  // namespace

TEST(Component, ElementsComeBackSortedAndOnce)
{
    MFnSingleIndexedComponent fn;
    fn.create(MFn::kMeshMapComponent);
    fn.addElements(ints({7, 3, 3, 12}));
    fn.addElement(5);
    fn.addElement(12);
    EXPECT_EQ(elements(fn.object()), (V{3, 5, 7, 12}));
    EXPECT_EQ(fn.element(2), 7);
    EXPECT_EQ(fn.element(4), -1);
    EXPECT_EQ(fn.addElement(-1), MS::kInvalidParameter);
    EXPECT_EQ(fn.elementCount(), 4);

    MFnDoubleIndexedComponent surface;
    surface.create(MFn::kSurfaceCVComponent);
    surface.addElements(ints({2, 0, 2}), ints({1, 5, 0}));
    int u = 0, v = 0;
    EXPECT_EQ(surface.getElement(1, u, v), MS::kSuccess);
    EXPECT_EQ(u, 2);
    EXPECT_EQ(v, 0);
    EXPECT_EQ(surface.addElements(ints({1}), ints({1, 2})), MS::kInvalidParameter);
    EXPECT_EQ(surface.elementCount(), 3);
}

TEST(Component, KindsAreNotMixed)
{
    MStatus                   status;
    MFnSingleIndexedComponent single;
    EXPECT_TRUE(single.create(MFn::kSurfaceCVComponent, &status).isNull());
    EXPECT_TRUE(single.create(MFn::kMesh, &status).isNull());
    MFnDoubleIndexedComponent fn(vertices({1}), &status);
    EXPECT_NE(status, MS::kSuccess);
}

TEST(Component, CompleteStandsForAll)
{
    MFnDoubleIndexedComponent fn;
    fn.create(MFn::kSurfaceCVComponent);
    fn.setCompleteData(2, 3);
    EXPECT_TRUE(fn.isComplete());
    EXPECT_EQ(fn.elementCount(), 6);
    int u = 0, v = 0;
    fn.getElement(4, u, v);
    EXPECT_EQ(u * 10 + v, 11);
    EXPECT_EQ(fn.getElement(6, u, v), MS::kInvalidParameter);
    EXPECT_EQ(fn.addElement(0, 0), MS::kFailure);
}

TEST(Component, LookUpAgreesWithASet)
{
    // dense single indices, sparse single indices, pairs: three kinds of table
    unsigned state = 1;
    const auto random = [&state](int below) { return int((state = state * 1664525u + 1013904223u) >> 8) % below; };
    for (const auto& [type, range] : {std::pair(MFn::kMeshVertComponent, 300), std::pair(MFn::kMeshVertComponent, 16000000),
                                      std::pair(MFn::kSurfaceCVComponent, 40)}) {
        const Ref<Component>    c = makeComponent(type);
        std::set<std::pair<int, int>> truth;
        std::vector<int>        list;
        for (int i = 0; i < 200; ++i) {
            const std::pair<int, int> e(random(range), c->dimensions() == 2 ? random(range) : 0);
            truth.insert(e);
            list.push_back(e.first);
            if (c->dimensions() == 2)
                list.push_back(e.second);
        }
        addElements(*c, list.data(), 200);
        EXPECT_EQ(c->count(), truth.size());
        for (const auto& [a, b] : truth)
            EXPECT_TRUE(c->has(a, b));
        for (int i = 0; i < 500; ++i) {
            const int a = random(range), b = c->dimensions() == 2 ? random(range) : 0;
            EXPECT_EQ(c->has(a, b), truth.count({a, b}) == 1);
        }
        EXPECT_FALSE(c->has(-1));
    }
}

TEST(ComponentList, AddMergesRemoveTakesOut)
{
    MFnComponentListData fn;
    fn.create();
    MObject a = vertices({1, 2}), b = vertices({9, 2}), faces = vertices({2}, MFn::kMeshPolygonComponent);
    fn.add(a);
    fn.add(b);
    fn.add(faces);
    ASSERT_EQ(fn.length(), 2u);
    EXPECT_EQ(elements(fn[0]), (V{1, 2, 9}));
    EXPECT_EQ(elements(a), (V{1, 2}));   // the list has its own
    EXPECT_TRUE(fn.has(vertices({1, 9})));
    EXPECT_FALSE(fn.has(vertices({1, 3})));
    EXPECT_FALSE(fn.has(vertices({1}, MFn::kMeshPolygonComponent)));
    EXPECT_FALSE(fn.has(vertices({})));

    fn.remove(vertices({2, 77}));
    EXPECT_EQ(elements(fn[0]), (V{1, 9}));
    fn.remove(fn[0]);   // an element of the list itself
    EXPECT_EQ(fn.length(), 1u);
    EXPECT_EQ(fn.remove(5u), MS::kInvalidParameter);
    EXPECT_TRUE(fn[3].isNull());
    MObject none;
    EXPECT_EQ(fn.add(none), MS::kInvalidParameter);
}

TEST(ObjectGroups, LiveInTheGeometryAndSharesHaveTheirOwn)
{
    MFnNurbsCurveData fn;
    fn.create();
    fn.addObjectGroup(7);
    MObject first = vertices({1, 4}, MFn::kCurveCVComponent), second = vertices({2}, MFn::kCurveCVComponent);
    EXPECT_EQ(fn.addObjectGroupComponent(8, first), MS::kFailure);
    EXPECT_EQ(fn.objectGroupType(7), MFn::kInvalid);
    fn.addObjectGroupComponent(7, first);
    const MObject      held = fn.objectGroupComponent(7);
    const MObject      shared = wrap(objectAs<Data>(fn.object())->share());
    fn.addObjectGroupComponent(7, second);
    EXPECT_EQ(elements(fn.objectGroupComponent(7)), (V{1, 2, 4}));
    EXPECT_EQ(elements(held), (V{1, 4}));
    EXPECT_EQ(elements(MFnGeometryData(shared).objectGroupComponent(7)), (V{1, 4}));

    MObject wrong = vertices({1});
    EXPECT_EQ(fn.addObjectGroupComponent(7, wrong), MS::kInvalidParameter);
    fn.removeObjectGroupComponent(7, first);
    EXPECT_EQ(elements(fn.objectGroupComponent(7)), (V{2}));
    EXPECT_EQ(fn.changeObjectGroupId(7, 3), MS::kSuccess);
    EXPECT_FALSE(fn.hasObjectGroup(7));
    EXPECT_EQ(fn.objectGroup(0), 3u);

    MObject           source = shared;
    fn.copyObjectGroups(source);
    EXPECT_EQ(fn.objectGroupCount(), 2u);
    EXPECT_EQ(fn.removeObjectGroup(99), MS::kFailure);
}

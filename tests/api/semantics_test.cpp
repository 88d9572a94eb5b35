// What nodes rely on in plugs, data blocks, handles and values, seen through the public classes alone.
#include <cmath>
#include <functional>

#include <maya/MAngle.h>
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include "../support/host_fixture.h"
#include "graph/node.h"

namespace {

/// out = in + 1; everything else is what a test does in `hook`.
class probe : public MPxNode
{
public:
    static void* creator() { return new probe; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOut)
            return MS::kUnknownParameter;
        ++computes;
        if (const auto look = hook)   // it may take itself away
            look(block);
        block.outputValue(aOut).set(block.inputValue(aIn).asDouble() + 1);
        block.setClean(plug);
        return MS::kSuccess;
    }
    static inline MObject aIn, aMulti, aMesh, aAngle, aDistance, aTime, aOut, aOutMulti, aOutArrays, aOutMesh;
    static inline std::function<void(MDataBlock&)> hook;
    static inline int computes = 0;
};

MStatus probe::initialize()
{
    MFnNumericAttribute n;
    MFnTypedAttribute   t;
    MFnUnitAttribute    u;
    addAttribute(aIn = n.create("in", "i", MFnNumericData::kDouble, 2.5));
    aMulti = n.create("multi", "m", MFnNumericData::kDouble);
    n.setArray(true);
    n.setIndexMatters(false);
    addAttribute(aMulti);
    addAttribute(aMesh = t.create("mesh", "ms", MFnData::kMesh));
    addAttribute(aAngle = u.create("angle", "an", MFnUnitAttribute::kAngle));
    addAttribute(aDistance = u.create("distance", "ds", MFnUnitAttribute::kDistance));
    addAttribute(aTime = u.create("time", "tm", MFnUnitAttribute::kTime));
    aOutMulti = n.create("outMulti", "om", MFnNumericData::kDouble);
    n.setArray(true);
    n.setUsesArrayDataBuilder(true);
    n.setStorable(false);
    addAttribute(aOutMulti);
    aOutArrays = t.create("outArrays", "oar", MFnData::kDoubleArray);
    t.setArray(true);
    t.setUsesArrayDataBuilder(true);
    t.setStorable(false);
    addAttribute(aOutArrays);
    aOutMesh = t.create("outMesh", "oms", MFnData::kMesh);
    t.setStorable(false);
    addAttribute(aOutMesh);
    addAttribute(aOut = n.create("out", "o", MFnNumericData::kDouble));
    n.setWritable(false);
    n.setStorable(false);
    for (const MObject& in : {aIn, aMulti, aMesh, aAngle, aDistance, aTime})
        attributeAffects(in, aOut);
    return MS::kSuccess;
}

class Semantics : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        static const bool registered = [] {
            auto type = std::make_unique<mirk::NodeType>();
            type->name = "semanticsProbe";
            type->id = 0x7f1a0;
            type->creator = probe::creator;
            type->inherit(mirk::registerBaseType());
            mirk::typeBeingBuilt() = type.get();
            const bool ok = probe::initialize() == MS::kSuccess;
            mirk::typeBeingBuilt() = nullptr;
            return ok && mirk::registerNodeType(std::move(type));
        }();
        ASSERT_TRUE(registered);
        probe::hook = nullptr;
        probe::computes = 0;
        mel("createNode semanticsProbe -n p; createNode semanticsProbe -n q;");
    }
    void TearDown() override
    {
        probe::hook = nullptr;
        Host::TearDown();
    }

    static MPlug plug(const std::string& name)
    {
        MSelectionList list;
        MPlug          plug;
        EXPECT_TRUE(list.add(MString(name.c_str())) && list.getPlug(0, plug)) << name;
        return plug;
    }
    /// Runs `look` in a compute of p.
    static void inCompute(const std::function<void(MDataBlock&)>& look)
    {
        mel("setAttr p.i " + std::to_string(++changes_));
        probe::hook = [look](MDataBlock& block) {
            probe::hook = nullptr;   // not in the nodes that this one asks
            look(block);
        };
        const int before = probe::computes;
        plug("p.out").asDouble();
        EXPECT_GT(probe::computes, before);
        probe::hook = nullptr;
    }

private:
    static inline int changes_ = 0;
};

}  // namespace

TEST_F(Semantics, InputsAreUpToDateAndOutputsAreWhatWasLeft)
{
    EXPECT_EQ(plug("p.out").asDouble(), 3.5);   // the default and one
    mel("connectAttr p.out q.in; setAttr p.in 10");
    double input = 0, output = 0;
    probe::hook = [&](MDataBlock& block) {
        if (block.inputValue(probe::aIn).asDouble() > 10.5) {   // q
            input = block.inputValue(probe::aIn).asDouble();
            output = block.outputValue(probe::aOut).asDouble();
        }
    };
    EXPECT_EQ(plug("q.out").asDouble(), 12);
    EXPECT_EQ(input, 11);
    EXPECT_EQ(output, 0);       // never computed before
    EXPECT_EQ(probe::computes, 3);
    plug("q.out").asDouble();
    EXPECT_EQ(probe::computes, 3);
}

TEST_F(Semantics, AskingAnOutputInsideComputeEvaluatesNothing)
{
    mel("connectAttr q.out p.m[0]");
    probe::computes = 0;
    inCompute([](MDataBlock& block) {
        EXPECT_EQ(probe::computes, 1);
        block.outputArrayValue(probe::aMulti).outputValue().asDouble();
        EXPECT_EQ(probe::computes, 1);
        MArrayDataHandle in = block.inputArrayValue(probe::aMulti);
        EXPECT_EQ(in.inputValue().asDouble(), 3.5);
    });
}

TEST_F(Semantics, ElementsByLogicalAndByPhysicalIndex)
{
    mel("setAttr p.m[7] 70; setAttr p.m[2] 20; setAttr p.m[31] 310");
    inCompute([](MDataBlock& block) {
        MArrayDataHandle in = block.inputArrayValue(probe::aMulti);
        EXPECT_EQ(in.elementCount(), 3u);
        EXPECT_EQ(in.elementIndex(), 2u);   // a fresh handle stands on the first
        EXPECT_EQ(in.inputValue().asDouble(), 20);
        EXPECT_EQ(in.jumpToElement(31), MS::kSuccess);
        EXPECT_EQ(in.inputValue().asDouble(), 310);
        EXPECT_NE(in.jumpToElement(3), MS::kSuccess);
        EXPECT_EQ(in.jumpToArrayElement(1), MS::kSuccess);
        EXPECT_EQ(in.elementIndex(), 7u);
        EXPECT_NE(in.jumpToArrayElement(3), MS::kSuccess);
        EXPECT_EQ(in.next(), MS::kSuccess);
        EXPECT_EQ(in.elementIndex(), 31u);
        EXPECT_NE(in.next(), MS::kSuccess);
    });

    MPlug     multi = plug("p.multi");
    MIntArray indices;
    EXPECT_EQ(multi.getExistingArrayAttributeIndices(indices), 3u);
    EXPECT_EQ(indices[1], 7);
    EXPECT_EQ(multi.elementByPhysicalIndex(1).logicalIndex(), 7u);
    EXPECT_EQ(multi[2].asDouble(), 310);
    MStatus status;
    EXPECT_TRUE(multi.elementByPhysicalIndex(3, &status).isNull());
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(multi.numElements(), 3u);
    EXPECT_EQ(multi.elementByLogicalIndex(4).asDouble(), 0);
    multi.elementByLogicalIndex(4).setDouble(40);
    EXPECT_EQ(multi.numElements(), 4u);
    EXPECT_STREQ(multi.elementByLogicalIndex(4).name().asChar(), "p.multi[4]");
}

TEST_F(Semantics, BuilderDropsWhatIsNotAddedAgain)
{
    const auto build = [](std::initializer_list<unsigned> indices, bool present) {
        inCompute([=](MDataBlock& block) {
            MArrayDataHandle  out = block.outputArrayValue(probe::aOutMulti);
            MArrayDataBuilder builder = present ? out.builder() : MArrayDataBuilder(&block, probe::aOutMulti, 0);
            for (unsigned i : indices)
                builder.addElement(i).setDouble(10 * i);
            EXPECT_EQ(out.set(builder), MS::kSuccess);
            out.setAllClean();
        });
        MIntArray now;
        plug("p.outMulti").getExistingArrayAttributeIndices(now);
        std::vector<int> list;
        for (unsigned i = 0; i < now.length(); ++i)
            list.push_back(now[i]);
        return list;
    };
    EXPECT_EQ(build({5, 1}, false), (std::vector<int>{1, 5}));
    EXPECT_EQ(build({3}, true), (std::vector<int>{1, 3, 5}));
    EXPECT_EQ(build({4}, false), (std::vector<int>{4}));
    inCompute([](MDataBlock& block) {
        MStatus status;
        block.outputArrayValue(probe::aMulti).builder(&status);
        EXPECT_NE(status, MS::kSuccess);   // does not say setUsesArrayDataBuilder
    });
}

TEST_F(Semantics, DataOfABuilderIsTakenOverAndOutlivesIt)
{
    for (const unsigned count : {3u, 1u}) {
        inCompute([=](MDataBlock& block) {
            MArrayDataHandle  out = block.outputArrayValue(probe::aOutArrays);
            MArrayDataBuilder builder(&block, probe::aOutArrays, 0);
            for (unsigned i = 0; i < count; ++i)
                EXPECT_EQ(builder.addElement(i).set(MFnDoubleArrayData().create(MDoubleArray(2, 10.0 * i))), MS::kSuccess);
            EXPECT_EQ(out.set(builder), MS::kSuccess);
        });
        const MPlug arrays = plug("p.outArrays");
        ASSERT_EQ(arrays.numElements(), count);
        MObject data = arrays.elementByLogicalIndex(count - 1).asMObject();
        EXPECT_EQ(MFnDoubleArrayData(data)[1], 10.0 * (count - 1));
    }
}

TEST_F(Semantics, NextAvailableTakesTheFirstFreeElement)
{
    mel("connectAttr -na q.out p.multi; connectAttr -na q.in p.multi; disconnectAttr q.out p.multi[0]; connectAttr -na q.angle p.multi;");
    EXPECT_EQ(num("isConnected q.in p.multi[1]"), 1);
    EXPECT_EQ(num("isConnected -iuc q.angle p.multi[0]"), 1);
}

TEST_F(Semantics, UnitsAreInternalInsideAndTheUsersOutside)
{
    mel("setAttr p.angle 180; setAttr p.distance 3; setAttr p.time 48; currentUnit -linear m;");
    inCompute([](MDataBlock& block) {
        EXPECT_DOUBLE_EQ(block.inputValue(probe::aAngle).asDouble(), M_PI);
        EXPECT_DOUBLE_EQ(block.inputValue(probe::aAngle).asAngle().asDegrees(), 180);
        EXPECT_DOUBLE_EQ(block.inputValue(probe::aDistance).asDouble(), 3);
        EXPECT_DOUBLE_EQ(block.inputValue(probe::aDistance).asDistance().asMeters(), 0.03);
        EXPECT_DOUBLE_EQ(block.inputValue(probe::aTime).asTime().as(MTime::k24FPS), 48);
    });
    EXPECT_DOUBLE_EQ(num("getAttr p.distance"), 0.03);
    mel("currentUnit -linear cm");
    EXPECT_DOUBLE_EQ(plug("p.angle").asDouble(), M_PI);
    EXPECT_DOUBLE_EQ(plug("p.time").asMTime().as(MTime::kSeconds), 2);
    plug("p.angle").setMAngle(MAngle(45, MAngle::kDegrees));
    EXPECT_DOUBLE_EQ(num("getAttr p.angle"), 45);
    plug("p.angle").setDouble(M_PI / 2);
    EXPECT_DOUBLE_EQ(num("getAttr p.angle"), 90);
}

TEST_F(Semantics, MeshesInTheirSpaceAndInWorldSpace)
{
    mel("polyPlane -n pl -w 2 -h 2 -sx 1 -sy 1 -ch 0; setAttr pl.t 0 5 0; setAttr pl.s 2 1 1; connectAttr plShape.worldMesh p.mesh");
    inCompute([](MDataBlock& block) {
        MDataHandle in = block.inputValue(probe::aMesh);
        MPoint      object, world;
        MFnMesh     own(in.asMesh()), transformed(in.asMeshTransformed());
        own.getPoint(0, object, MSpace::kObject);
        EXPECT_EQ(object, MPoint(-1, 0, 1));
        EXPECT_EQ(transformed.getPoint(0, world, MSpace::kWorld), MS::kSuccess);
        EXPECT_EQ(world, MPoint(-2, 5, 1));
        EXPECT_EQ(in.geometryTransformMatrix()(3, 1), 5);

        MDataHandle out = block.outputValue(probe::aOutMesh);
        out.copy(in);
        MFnMesh edit(out.asMeshTransformed());
        edit.setPoint(0, MPoint(-4, 7, 1), MSpace::kWorld);
        MFnMesh(out.asMesh()).getPoint(0, object);
        EXPECT_EQ(object, MPoint(-2, 2, 1));       // seen through the block's own data
        MFnMesh(in.asMesh()).getPoint(0, object);
        EXPECT_EQ(object, MPoint(-1, 0, 1));       // and not in the input

        MPointArray all;
        MItGeometry points(out, false);
        EXPECT_EQ(points.exactCount(), 4);
        points.allPositions(all);
        EXPECT_EQ(all[0], MPoint(-2, 2, 1));
    });
}

TEST_F(Semantics, RowVectorsAndNormals)
{
    const double rows[4][4] = {{0, 2, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {5, 6, 7, 1}};
    const MMatrix m(rows);
    EXPECT_EQ(MPoint(1, 0, 0) * m, MPoint(5, 8, 7));
    EXPECT_EQ(MVector(1, 0, 0) * m, MVector(0, 2, 0));
    MVector normal = MVector(1, 1, 0).transformAsNormal(m);   // x scaled by 2 and turned to y, y to -x
    normal.normalize();
    EXPECT_TRUE(normal.isEquivalent(MVector(-1, 0.5, 0).normal(), 1e-12));
    mel("createNode transform -n a; createNode transform -n b -p a; setAttr a.rz 90; setAttr b.tx 3");
    const std::vector<double> world = nums("getAttr b.wm");
    EXPECT_NEAR(world[13], 3, 1e-12);       // child first, then the parent
    MPoint p(2, 4, 6, 2);
    EXPECT_EQ(p.cartesianize(), MPoint(1, 2, 3));
}

TEST_F(Semantics, PlugsTellTheirConnections)
{
    mel("connectAttr p.out q.in; connectAttr p.out q.m[3]");
    MPlugArray found;
    EXPECT_TRUE(plug("q.in").connectedTo(found, true, false));
    ASSERT_EQ(found.length(), 1u);
    EXPECT_STREQ(found[0].name().asChar(), "p.out");
    EXPECT_TRUE(found[0] == probe::aOut);
    EXPECT_FALSE(plug("q.in").connectedTo(found, false, true));
    EXPECT_EQ(found.length(), 0u);
    EXPECT_TRUE(plug("p.out").connectedTo(found, false, true));
    EXPECT_EQ(found.length(), 2u);
    MPlug multi = plug("q.multi");
    EXPECT_FALSE(multi.isConnected());       // its element is
    EXPECT_EQ(multi.numConnectedElements(), 1u);
    EXPECT_EQ(multi.evaluateNumElements(), 1u);
    EXPECT_TRUE(multi.elementByLogicalIndex(3) == probe::aMulti);
}

TEST_F(Semantics, CommandsGiveTheirLastValue)
{
    int          whole = 0;
    double       number = 0;
    MDoubleArray numbers;
    MStringArray strings;
    EXPECT_EQ(MGlobal::executeCommand("int $i = 3; $i + 4;", whole), MS::kSuccess);
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(MGlobal::executeCommand("createNode transform -n x; getAttr x.sx;", number), MS::kSuccess);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(MGlobal::executeCommand("string $s[] = {\"a\", \"b\"};", strings), MS::kSuccess);
    ASSERT_EQ(strings.length(), 2u);
    EXPECT_STREQ(strings[1].asChar(), "b");
    EXPECT_EQ(MGlobal::executeCommand("float $g[] = {1, 2.5};", numbers), MS::kSuccess);
    ASSERT_EQ(numbers.length(), 2u);
    EXPECT_EQ(numbers[1], 2.5);
    MString text;
    text += 2.0;
    text += " ";
    text += 0.1 + 0.2;
    EXPECT_STREQ(text.asChar(), "2 0.30000000000000004");
}

TEST_F(Semantics, NodeState)
{
    EXPECT_EQ(plug("p.nodeState").attribute(), MPxNode::state);
    mel("setAttr p.nds 2");
    inCompute([](MDataBlock& block) { EXPECT_EQ(block.outputValue(MPxNode::state).asShort(), 2); });
    EXPECT_EQ(str("getAttr -asString p.nodeState"), "Blocking");
}

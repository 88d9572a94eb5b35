// Plugs that hold data: what they accept, what they refuse and leave alone, and numbers in generic ones.
#include "../support/host_fixture.h"

#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

namespace {

class DataPlugs : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode transform -n t;");
        MSelectionList list;
        MObject        node;
        ASSERT_TRUE(list.add("t") && list.getDependNode(0, node));
        fn.setObject(node);
    }
    MPlug added(const MObject& attribute)
    {
        EXPECT_TRUE(fn.addAttribute(attribute));
        return MPlug(fn.object(), attribute);
    }
    MFnDependencyNode fn;
};

}  // namespace

TEST_F(DataPlugs, GenericOnesTakeNumbersAndDataTheyAccept)
{
    MFnGenericAttribute g;
    const MObject       attr = g.create("any", "an");
    g.addNumericDataAccept(MFnNumericData::kDouble);
    g.addDataAccept(MFnData::kString);
    MPlug any = added(attr);
    EXPECT_TRUE(any.setValue(2.5));
    EXPECT_EQ(any.asDouble(), 2.5);
    MFnStringData text;
    EXPECT_TRUE(any.setValue(text.create("word")));
    EXPECT_EQ(std::string(MFnStringData(any.asMObject()).string().asChar()), "word");
    MFnDoubleArrayData numbers;
    EXPECT_FALSE(any.setValue(numbers.create(MDoubleArray(3, 1.0)))) << "not among what it accepts";
    EXPECT_EQ(std::string(MFnStringData(any.asMObject()).string().asChar()), "word");
}

TEST_F(DataPlugs, TypedOnesKeepWhatTheyHave)
{
    MFnTypedAttribute t;
    MPlug array = added(t.create("numbers", "nb", MFnData::kDoubleArray));
    MFnDoubleArrayData data;
    EXPECT_TRUE(array.setValue(data.create(MDoubleArray(4, 0.5))));
    EXPECT_FALSE(array.setValue(3.0)) << "one number is no array";
    MFnMatrixData matrix;
    EXPECT_FALSE(array.setValue(matrix.create(MMatrix())));
    MDataHandle handle = array.asMDataHandle();
    handle.set(MMatrix());
    array.destructHandle(handle);
    ASSERT_FALSE(array.asMObject().isNull());
    EXPECT_EQ(MFnDoubleArrayData(array.asMObject()).length(), 4u);
    EXPECT_EQ(nums("getAttr t.numbers").size(), 4u);
}

TEST_F(DataPlugs, TuplesOfTheirOwnLength)
{
    MFnNumericAttribute n;
    MPlug three = added(n.create("three", "th", MFnNumericData::k3Double)), two = added(n.create("two", "tw", MFnNumericData::k2Double));
    MFnNumericData d;
    const MObject  triple = d.create(MFnNumericData::k3Double);
    EXPECT_TRUE(d.setData3Double(1, 2, 3));
    EXPECT_TRUE(three.setValue(triple));
    EXPECT_EQ(nums("getAttr t.three"), (std::vector<double>{1, 2, 3}));
    EXPECT_FALSE(two.setValue(triple)) << "three do not go into two";
    EXPECT_EQ(nums("getAttr t.two"), (std::vector<double>{0, 0}));
    MFnMatrixAttribute m;
    MPlug              matrix = added(m.create("mx", "mx"));
    EXPECT_FALSE(matrix.setValue(triple));
    EXPECT_EQ(nums("getAttr t.mx")[0], 1);
    double a = 0, b = 0, c = 0;
    EXPECT_TRUE(MFnNumericData(three.asMObject()).getData3Double(a, b, c));
    EXPECT_EQ(c, 3);
}

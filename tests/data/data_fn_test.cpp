// Data function sets: what shares storage and what does not.
#include <gtest/gtest.h>

#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnPluginData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MMatrix.h>
#include <maya/MStringArray.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVectorArray.h>

#include "data/mobject.h"
#include "data/plugin_data.h"

using namespace mirk;

namespace {

MDoubleArray numbers(unsigned n)
{
    MDoubleArray a(n);
    for (unsigned i = 0; i < n; ++i)
        a[i] = i + 0.5;
    return a;
}

Ref<Data> shareOf(const MObject& object) { return objectAs<Data>(object)->share(); }

}  // namespace

TEST(ArrayData, AliasWritesThroughAndItsCopyDoesNot)
{
    MFnDoubleArrayData fn;
    MDoubleArray       source = numbers(3);
    fn.create(source);
    source[0] = 99;   // the data owns a copy
    EXPECT_EQ(fn[0u], 0.5);

    MDoubleArray alias = fn.array();
    alias[1] = 7;
    alias.append(8);
    EXPECT_EQ(fn.length(), 4u);
    EXPECT_EQ(fn[1u], 7);

    MDoubleArray copied = alias, taken;
    copied[1] = -1;
    fn.copyTo(taken);
    taken[1] = -2;
    EXPECT_EQ(fn[1u], 7);

    fn.set(20, 2);   // the alias shows what the object holds
    EXPECT_EQ(alias[2], 20);
    fn.set(numbers(2));
    EXPECT_EQ(alias.length(), 2u);
    fn.set(alias);   // its own storage
    EXPECT_EQ(fn.length(), 2u);
}

TEST(ArrayData, ReadingASharedArrayCopiesNothingAndSettingDetaches)
{
    MFnVectorArrayData fn;
    fn.create(MVectorArray(1000, MVector(1, 2, 3)));
    const Ref<Data> shared = shareOf(fn.object());
    auto*           mine = objectAs<VectorArrayData>(fn.object());
    auto*           other = dynamic_cast<VectorArrayData*>(shared.get());
    EXPECT_EQ(fn.array()[999].y, 2);
    EXPECT_EQ(mine->buffer.get(), other->buffer.get());

    fn.set(MVector(9, 9, 9), 0);
    EXPECT_EQ(other->buffer->data()[0].x, 1);
    EXPECT_EQ(std::as_const(fn)[0].x, 9);
}

TEST(ArrayData, BadIndicesAndWrongObjects)
{
    MFnDoubleArrayData fn;
    fn.create(numbers(2));
    EXPECT_EQ(fn.set(1.0, 2u), MS::kInvalidParameter);
    EXPECT_EQ(std::as_const(fn)[5], 0.0);
    fn[1000000] = 3;
    EXPECT_EQ(fn.length(), 2u);

    MStatus            status;
    MFnVectorArrayData wrong(fn.object(), &status);
    EXPECT_NE(status, MS::kSuccess);
    EXPECT_EQ(wrong.length(&status), 0u);
    EXPECT_EQ(status, MS::kFailure);
    EXPECT_EQ(wrong.set(MVectorArray(2)), MS::kFailure);
    EXPECT_EQ(wrong.array().length(), 0u);
}

TEST(ArrayData, Strings)
{
    MStringArray words;
    words.append("one");
    words.append("");
    MFnStringArrayData fn;
    fn.create(words);
    const Ref<Data> shared = shareOf(fn.object());
    fn.array()[1] = "two";
    fn.set("three", 0);
    EXPECT_EQ(std::as_const(fn)[0], "three");
    EXPECT_EQ(dynamic_cast<StringArrayData*>(shared.get())->buffer->data()[0], "one");
}

TEST(ValueData, StringKeepsEveryByte)
{
    MFnStringData fn;
    const MString text("a\0b", 3);
    fn.create(text);
    EXPECT_EQ(fn.string().length(), 3u);
    fn.set("x");
    EXPECT_EQ(fn.string(), "x");
}

TEST(ValueData, MatrixRemembersATransformation)
{
    MTransformationMatrix t;
    t.setTranslation(MVector(1, 2, 3), MSpace::kTransform);
    MFnMatrixData fn;
    fn.create(t);
    EXPECT_TRUE(fn.isTransformation());
    EXPECT_EQ(fn.matrix()(3, 1), 2);
    const MObject shared = wrap(shareOf(fn.object()));
    fn.set(MMatrix());
    EXPECT_FALSE(fn.isTransformation());
    EXPECT_EQ(fn.transformation().getTranslation(MSpace::kTransform), MVector());
    EXPECT_TRUE(MFnMatrixData(shared).isTransformation());
}

TEST(ValueData, NumbersOfTheirTypeOnly)
{
    MFnNumericData fn;
    fn.create(MFnNumericData::k3Float);
    EXPECT_TRUE(fn.object().hasFn(MFn::kData3Float));
    EXPECT_TRUE(fn.object().hasFn(MFn::kNumericData));
    EXPECT_EQ(fn.setData3Float(1, 2, 3), MS::kSuccess);
    EXPECT_EQ(fn.setData3Double(4, 5, 6), MS::kFailure);
    float a, b, c;
    EXPECT_EQ(fn.getData3Float(a, b, c), MS::kSuccess);
    EXPECT_EQ(c, 3);

    fn.create(MFnNumericData::kShort);
    fn.setData(1e6);
    int value = 0;
    fn.getData(value);
    EXPECT_EQ(value, 32767);
    MStatus status;
    EXPECT_TRUE(fn.create(MFnNumericData::kInvalid, &status).isNull());
    EXPECT_EQ(status, MS::kInvalidParameter);
}

namespace {

struct Counter : MPxData
{
    int  value = 0;
    void copy(const MPxData& o) override { value = static_cast<const Counter&>(o).value; }
    MTypeId typeId() const override { return 0x7f321; }
    MString name() const override { return "counterData"; }
    static void* creator() { return new Counter; }
};

}  // namespace

TEST(PluginData, RegisteredTypesOnlyAndSharesAreCopies)
{
    MStatus       status;
    MFnPluginData fn;
    EXPECT_TRUE(fn.create(MTypeId(0x7f321), &status).isNull());
    ASSERT_TRUE(registerDataType("counterData", 0x7f321, Counter::creator));
    EXPECT_FALSE(registerDataType("counterData", 0x7f322, Counter::creator));
    EXPECT_FALSE(registerDataType("otherData", 0x7f321, Counter::creator));
    fn.create(MTypeId(0x7f321), &status);
    ASSERT_EQ(status, MS::kSuccess);
    static_cast<Counter*>(fn.data())->value = 5;
    MFnPluginData other(wrap(shareOf(fn.object())));
    static_cast<Counter*>(fn.data())->value = 6;
    EXPECT_EQ(static_cast<const Counter*>(other.constData())->value, 5);
    EXPECT_TRUE(deregisterDataType(0x7f321));
    EXPECT_FALSE(deregisterDataType(0x7f321));
}

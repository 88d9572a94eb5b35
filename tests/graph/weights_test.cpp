// Long multis inside multis, as deformers keep their weights: built and read. What is quadratic does not end here.
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"

namespace {

class Weights : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode network -n n");
        MFnNumericAttribute  number;
        MFnCompoundAttribute compound;
        const MObject weights = number.create("weights", "w", MFnNumericData::kFloat, 1.0);
        number.setArray(true);
        number.setUsesArrayDataBuilder(true);
        const MObject list = compound.create("weightList", "wl");
        compound.addChild(weights);
        compound.setArray(true);
        compound.setUsesArrayDataBuilder(true);
        EXPECT_TRUE(MFnDependencyNode(scene::plug("n.message").node()).addAttribute(list));
        mel("setAttr n.weightList[0].weights[0] 0.5");
    }
    static MArrayDataHandle weights()
    {
        MDataHandle inner = scene::plug("n.weightList[0].weights").asMDataHandle();
        return MArrayDataHandle(inner);
    }
};

}  // namespace

TEST_F(Weights, BuiltAndRead)
{
    constexpr unsigned count = 100000;
    MArrayDataHandle   array = weights();
    MArrayDataBuilder  builder = array.builder();
    builder.growArray(count);
    for (unsigned i = 0; i < count; ++i)
        builder.addElement(i).setFloat(float(i) * 0.25f);
    EXPECT_TRUE(array.set(builder));
    EXPECT_EQ(array.elementCount(), count);

    double sum = 0;
    array.jumpToArrayElement(0);
    do
        sum += array.inputValue().asFloat();
    while (array.next());
    EXPECT_DOUBLE_EQ(sum, 0.25 * (double(count) * (count - 1) / 2));
    for (const unsigned at : {0u, 77u, count - 1}) {
        EXPECT_TRUE(array.jumpToElement(at));
        EXPECT_EQ(array.elementIndex(), at);
    }
    EXPECT_FALSE(array.jumpToElement(count));
}

TEST_F(Weights, SparseOnesAreFoundByIndex)
{
    MArrayDataHandle  array = weights();
    MArrayDataBuilder builder = array.builder();
    for (const unsigned i : {9u, 4u, 1000000u})
        builder.addElement(i).setFloat(float(i));
    array.set(builder);
    EXPECT_EQ(array.elementCount(), 4u);
    for (const unsigned i : {4u, 9u, 1000000u}) {
        EXPECT_TRUE(array.jumpToElement(i)) << i;
        EXPECT_EQ(array.inputValue().asFloat(), float(i));
    }
    EXPECT_FALSE(array.jumpToElement(1));   // the second element is number 4
    EXPECT_FALSE(array.jumpToElement(3));
}

// Arrays by name: who sees what is written, and how such data travels.
#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MIntArray.h>
#include <maya/MStringArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "../plugin/scene.h"
#include "../support/host_fixture.h"

using DynArrays = mirk::test::Host;

TEST_F(DynArrays, ChannelsByNameAndKind)
{
    MFnArrayAttrsData fn;
    MObject           data = fn.create();
    EXPECT_TRUE(data.hasFn(MFn::kDynArrayAttrsData) && data.hasFn(MFn::kData));
    MVectorArray position = fn.vectorArray("position");
    position.append(MVector(1, 2, 3));
    position.append(MVector(4, 5, 6));
    fn.doubleArray("mass").append(7);
    fn.intArray("id").append(8);
    fn.stringArray("name").append("x");

    // what was written stands in the data; a second look sees it, a copy stays as it is
    MFnArrayAttrsData other(data);
    MVectorArray      copy = other.getVectorData("position");
    fn.vectorArray("position")[1] = MVector(0, 0, 9);
    EXPECT_EQ(position[1].z, 9);
    EXPECT_EQ(copy[1].z, 6);
    EXPECT_EQ(other.getStringData("name")[0], "x");
    EXPECT_EQ(other.count(), 4u);
    const MStringArray names = other.list();
    EXPECT_EQ(names[0], "position");
    EXPECT_EQ(names[3], "name");

    MFnArrayAttrsData::Type type;
    EXPECT_TRUE(fn.checkArrayExist("id", type));
    EXPECT_EQ(type, MFnArrayAttrsData::kIntArray);
    EXPECT_FALSE(fn.checkArrayExist("Id", type));
    EXPECT_EQ(type, MFnArrayAttrsData::kInvalid);
    MStatus status;
    EXPECT_EQ(fn.getDoubleData("id", &status).length(), 0u);
    EXPECT_EQ(status, MS::kInvalidParameter);
    fn.doubleArray("id", &status).append(1);
    EXPECT_EQ(status, MS::kInvalidParameter);
    EXPECT_EQ(fn.getIntData("id").length(), 1u);
    EXPECT_TRUE(fn.clear());
    EXPECT_EQ(other.count(), 0u);
    EXPECT_FALSE(MFnArrayAttrsData(scene::plug("persp.tx").attribute(), &status).clear());
}

TEST_F(DynArrays, AcrossAConnection)
{
    mel("createNode network -n a; createNode network -n b; addAttr -ln d -dt \"dataDynArrayAttrs\" a;"
        "addAttr -ln d -dt \"dataDynArrayAttrs\" b; connectAttr a.d b.d");
    MFnArrayAttrsData fn;
    MObject           data = fn.create();
    fn.doubleArray("mass").append(7);
    EXPECT_TRUE(scene::plug("a.d").setMObject(data));
    MObject through = scene::plug("b.d").asMObject();
    MFnArrayAttrsData far(through);
    EXPECT_EQ(far.getDoubleData("mass")[0], 7);
    far.doubleArray("mass")[0] = 8;   // the far side writes its own
    EXPECT_EQ(fn.getDoubleData("mass")[0], 7);
    EXPECT_EQ(str("getAttr -type b.d"), "dataDynArrayAttrs");
    EXPECT_NE(melError("getAttr b.d"), "");

    const std::string path = file("dyn.ma");
    mel("file -rename \"" + path + "\"; file -save -type \"mayaAscii\"; file -f -new; file -o \"" + path + "\"");
    EXPECT_EQ(str("getAttr -type a.d"), "dataDynArrayAttrs");
}

// Plugs as a plug-in of somebody else uses them: their names, the trees they stand in, values, elements and locks.
#include "../support/host_fixture.h"

#include <climits>
#include <cmath>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnAttribute.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>

namespace {

class Plugs : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("createNode transform -n t; createNode remapValue -n r; createNode plusMinusAverage -n pma; createNode multiplyDivide -n md;"
            "setAttr r.vl[2].vlp 0.5; setAttr r.vl[5].vlp 0.75; setAttr pma.i3[4].i3x 1; select -cl;");
    }
    static MPlug plug(const std::string& name)
    {
        MSelectionList list;
        MPlug          p;
        EXPECT_TRUE(list.add(MString(name.c_str())) && list.getPlug(0, p)) << name;
        return p;
    }
    static MObject node(const char* name)
    {
        MSelectionList list;
        MObject        o;
        EXPECT_TRUE(list.add(MString(name)) && list.getDependNode(0, o)) << name;
        return o;
    }
    static std::string text(const MString& s) { return s.asChar(); }
};

}  // namespace

TEST_F(Plugs, NamesInEveryForm)
{
    struct Case { const char *plug, *brief, *whole, *briefPath, *longPath; };
    const Case cases[] = {
        {"t.tx", "tx", "t.translateX", "t.tx", "translate.translateX"},
        {"t.t", "t", "t.translate", "t", "translate"},
        {"r.vl[2]", "vl[2]", "r.value[2]", "vl[2]", "value[2]"},
        {"r.vl[2].vlp", "vl[2].vlp", "r.value[2].value_Position", "vl[2].vlp", "value[2].value_Position"},
        {"pma.i3[4].i3y", "i3[4].i3y", "pma.input3D[4].input3Dy", "i3[4].i3y", "input3D[4].input3Dy"},
    };
    for (const Case& c : cases) {
        const MPlug p = plug(c.plug);
        EXPECT_EQ(text(p.partialName()), c.brief);
        EXPECT_EQ(text(p.partialName(true)), std::string(c.plug).substr(0, std::string(c.plug).find('.') + 1) + c.brief);
        EXPECT_EQ(text(p.partialName(true, true, true, false, false, true)), c.whole);
        EXPECT_EQ(text(p.partialName(false, true, true, false, true)), c.briefPath);
        EXPECT_EQ(text(p.partialName(false, true, true, false, true, true)), c.longPath);
        EXPECT_TRUE(plug(text(p.name())) == p) << "a name leads back: " << p.name().asChar();
        EXPECT_TRUE(plug(text(p.partialName(true, true, true, false, true))) == p);
    }
    MFnDependencyNode t(node("t"));
    EXPECT_TRUE(t.setAlias("sideways", "translateX", plug("t.tx"), true));
    EXPECT_EQ(text(plug("t.tx").partialName(true, true, true, true)), "t.sideways");
    EXPECT_EQ(text(plug("t.tx").partialName(true, true, true, false)), "t.tx");
    EXPECT_EQ(text(t.plugsAlias(plug("t.tx"))), "sideways");
    MObject attr;
    EXPECT_TRUE(t.findAlias("sideways", attr) && attr == plug("t.tx").attribute());
    MStringArray pairs;
    EXPECT_TRUE(t.getAliasList(pairs));
    EXPECT_EQ(pairs.length(), 2u);
    EXPECT_TRUE(plug("t.sideways") == plug("t.tx"));
    EXPECT_TRUE(t.setAlias("sideways", "translateX", plug("t.tx"), false));
    EXPECT_FALSE(t.findAlias("sideways", attr));
}

TEST_F(Plugs, TreesOfCompoundsAndElements)
{
    struct Case { const char* plug; bool array, element, compound, child; unsigned children, elements; };
    const Case cases[] = {
        {"t.t", false, false, true, false, 3, 0},       {"t.tx", false, false, false, true, 0, 0},
        {"r.vl", true, false, false, false, 3, 4},      {"r.vl[2]", false, true, true, false, 3, 0},
        {"r.vl[2].vlp", false, false, false, true, 0, 0}, {"pma.i1", true, false, false, false, 0, 0},
    };
    for (const Case& c : cases) {
        const MPlug p = plug(c.plug);
        EXPECT_EQ(p.isArray(), c.array) << c.plug;
        EXPECT_EQ(p.isElement(), c.element) << c.plug;
        EXPECT_EQ(p.isCompound(), c.compound) << c.plug;
        EXPECT_EQ(p.isChild(), c.child) << c.plug;
        EXPECT_EQ(p.numElements(), c.elements) << c.plug;
        if (p.isCompound()) {
            EXPECT_EQ(p.numChildren(), c.children) << c.plug;
        }
    }
    EXPECT_TRUE(plug("t.tx").parent() == plug("t.t"));
    EXPECT_TRUE(plug("r.vl[2].vlp").parent() == plug("r.vl[2]"));
    EXPECT_TRUE(plug("r.vl[2]").array() == plug("r.vl"));
    EXPECT_TRUE(plug("t.t").child(plug("t.tz").attribute()) == plug("t.tz"));
    MStatus s;
    EXPECT_TRUE(plug("t.t").child(3, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_TRUE(plug("t.t").child(plug("t.rx").attribute(), &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_TRUE(plug("t.t").parent(&s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    plug("t.tx").array(&s);
    EXPECT_NE(s, MS::kSuccess);
    plug("t.tx").elementByLogicalIndex(0, &s);
    EXPECT_NE(s, MS::kSuccess);
    plug("t.tx").logicalIndex(&s);
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_TRUE(plug("r.vl[2]") == plug("r.vl").attribute()) << "an element is of its attribute";
    EXPECT_FALSE(plug("r.vl[2]") == plug("r.vl[5]"));
}

TEST_F(Plugs, SparseElements)
{
    MPlug     multi = plug("pma.i1");
    MIntArray indices;
    for (const int i : {7, 1, 100000})
        EXPECT_TRUE(multi.elementByLogicalIndex(unsigned(i)).setValue(i * 2.0));
    EXPECT_EQ(multi.numElements(), 3u);
    EXPECT_EQ(multi.getExistingArrayAttributeIndices(indices), 3u);
    EXPECT_EQ(indices[0], 1);
    EXPECT_EQ(indices[1], 7);
    EXPECT_EQ(indices[2], 100000);
    EXPECT_EQ(multi[1].asDouble(), 14) << "by place";
    EXPECT_EQ(multi[1].logicalIndex(), 7u);
    MStatus s;
    EXPECT_TRUE(multi.elementByPhysicalIndex(3, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_TRUE(multi.elementByLogicalIndex(UINT_MAX, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_EQ(multi.numElements(), 3u) << "a bad index makes nothing";

    mel("connectAttr md.ox pma.i1[50]; connectAttr md.oy pma.i1[3];");
    EXPECT_EQ(multi.numConnectedElements(), 2u);
    EXPECT_EQ(multi.connectionByPhysicalIndex(0).logicalIndex(), 3u);
    EXPECT_EQ(multi.connectionByPhysicalIndex(1).logicalIndex(), 50u);
    EXPECT_TRUE(multi.connectionByPhysicalIndex(2, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_FALSE(multi.isConnected()) << "its elements are, it is not";
    EXPECT_EQ(multi.evaluateNumElements(), 5u);

    // a plug whose index is still open
    MPlug open(node("r"), plug("r.vl[2].vlp").attribute());
    EXPECT_FALSE(open.isNetworked());
    EXPECT_TRUE(open.selectAncestorLogicalIndex(5, plug("r.vl").attribute()));
    EXPECT_EQ(open.asDouble(), 0.75);
    EXPECT_TRUE(open == plug("r.vl[5].vlp"));
}

TEST_F(Plugs, ValuesConvertAndUnitsDoNot)
{
    MPlug p = plug("t.tx");
    EXPECT_TRUE(p.setValue(2.75));
    EXPECT_EQ(p.asInt(), 2) << "cut";
    EXPECT_EQ(p.asFloat(), 2.75f);
    EXPECT_TRUE(p.asBool());
    p.setValue(-2.75);
    EXPECT_EQ(p.asInt(), -2) << "towards zero";
    p.setValue(MDistance(1, MDistance::kInches));
    EXPECT_DOUBLE_EQ(p.asDouble(), 2.54);
    EXPECT_DOUBLE_EQ(p.asMDistance().asInches(), 1);
    MPlug rx = plug("t.rx");
    rx.setValue(MAngle(180, MAngle::kDegrees));
    EXPECT_DOUBLE_EQ(rx.asDouble(), M_PI);
    EXPECT_DOUBLE_EQ(rx.asMAngle().asDegrees(), 180);
    EXPECT_DOUBLE_EQ(num("getAttr t.rx"), 180);

    mel("addAttr -ln word -dt \"string\" t; addAttr -ln kind -at \"enum\" -en \"red=1:green=5:blue\" t; addAttr -ln mx -at matrix t;"
        "addAttr -ln when -at time t; addAttr -ln big -at long t;");
    MPlug word = plug("t.word");
    EXPECT_TRUE(word.setValue("two words"));
    EXPECT_EQ(text(word.asString()), "two words");
    MStatus s;
    word.asDouble(&s);
    EXPECT_NE(s, MS::kSuccess) << "a text is no number";
    MPlug kind = plug("t.kind");
    EXPECT_TRUE(kind.setValue(short(5)));
    EXPECT_EQ(kind.asShort(), 5);
    EXPECT_EQ(str("getAttr -asString t.kind"), "green");
    MPlug when = plug("t.when");
    EXPECT_TRUE(when.setValue(MTime(12, MTime::kFilm)));
    EXPECT_DOUBLE_EQ(when.asMTime().as(MTime::kSeconds), 0.5);
    MPlug big = plug("t.big");
    EXPECT_TRUE(big.setValue(INT_MAX));
    EXPECT_EQ(big.asInt(), INT_MAX);
    MMatrix m;
    m[3][0] = 4;
    MFnMatrixData data;
    EXPECT_TRUE(plug("t.mx").setValue(data.create(m)));
    EXPECT_EQ(MFnMatrixData(plug("t.mx").asMObject()).matrix()[3][0], 4);
    EXPECT_EQ(nums("getAttr t.mx")[12], 4);
    EXPECT_FALSE(plug("t.tx").setValue(data.object())) << "a matrix is no number";
    EXPECT_DOUBLE_EQ(plug("t.tx").asDouble(), 2.54);

    mel("setAttr t.s 2 3 4;");
    EXPECT_FALSE(plug("t.s").setValue(9.0)) << "three numbers are not one";
    EXPECT_DOUBLE_EQ(plug("t.sx").asDouble(), 2) << "nothing is half done";
    EXPECT_FALSE(word.setValue(3));
    EXPECT_EQ(text(word.asString()), "two words");

    MPlug none;
    EXPECT_TRUE(none.isNull());
    EXPECT_FALSE(none.setValue(1.0));
    EXPECT_EQ(none.asDouble(&s), 0);
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_EQ(text(none.name(&s)), "");
}

TEST_F(Plugs, LocksConnectionsAndDefaults)
{
    MPlug tx = plug("t.tx"), t = plug("t.t");
    EXPECT_TRUE(tx.isDefaultValue());
    EXPECT_TRUE(tx.setValue(1.0) && !tx.isDefaultValue() && !t.isDefaultValue());
    EXPECT_TRUE(tx.setValue(0.0) && tx.isDefaultValue());
    EXPECT_TRUE(t.setLocked(true));
    EXPECT_TRUE(tx.isLocked()) << "by its parent";
    EXPECT_FALSE(tx.setValue(5.0));
    EXPECT_EQ(tx.asDouble(), 0);
    EXPECT_TRUE(t.setLocked(false) && tx.setValue(5.0));
    EXPECT_TRUE(tx.isKeyable() && tx.setKeyable(false) && !tx.isKeyable());
    EXPECT_TRUE(tx.setChannelBox(true) && tx.isChannelBoxFlagSet());
    EXPECT_TRUE(plug("t.ty").isKeyable()) << "that of another is its own";

    mel("connectAttr md.o t.t; connectAttr t.sx md.i1x; connectAttr t.sx md.i1y;");
    EXPECT_TRUE(t.isDestination() && !t.isSource());
    EXPECT_TRUE(t.source() == plug("md.o"));
    MPlugArray ends;
    EXPECT_TRUE(plug("t.sx").destinations(ends));
    EXPECT_EQ(ends.length(), 2u);
    EXPECT_FALSE(plug("t.sx").connectedTo(ends, true, false));
    EXPECT_EQ(ends.length(), 0u);
    EXPECT_EQ(plug("t.s").numConnectedChildren(), 1u);
    MPlugArray all;
    EXPECT_TRUE(MFnDependencyNode(node("md")).getConnections(all));
    EXPECT_EQ(all.length(), 3u);
    EXPECT_TRUE(all[7].isNull());
}

TEST_F(Plugs, AttributesThatAreAddedAndTakenAway)
{
    MFnDependencyNode     fn(node("t"));
    MFnNumericAttribute   n;
    MFnEnumAttribute      e;
    MFnCompoundAttribute  c;
    MObject x = n.create("gripX", "gx", MFnNumericData::kDouble, 3), y = n.create("gripY", "gy", MFnNumericData::kInt);
    EXPECT_TRUE(n.setMin(-2) && n.setMax(8) && n.setSoftMax(4));
    MObject grip = c.create("grip", "g");
    EXPECT_TRUE(c.addChild(x) && c.addChild(y));
    EXPECT_EQ(c.numChildren(), 2u);
    EXPECT_TRUE(fn.addAttribute(grip));
    EXPECT_EQ(num("getAttr t.gripX"), 3);
    EXPECT_EQ(fn.attributeClass(grip), MFnDependencyNode::kLocalDynamicAttr);
    EXPECT_EQ(fn.attributeClass(fn.attribute("translate")), MFnDependencyNode::kNormalAttr);
    EXPECT_TRUE(plug("t.gx").isDynamic() && !plug("t.tx").isDynamic());
    EXPECT_EQ(num("attributeQuery -node t -rangeExists gripY"), 1);
    melError("setAttr t.gripY 9");
    EXPECT_EQ(num("getAttr t.gripY"), 0);
    EXPECT_FALSE(fn.addAttribute(grip)) << "it is there already";
    MObject again = n.create("gripX", "other", MFnNumericData::kDouble);
    EXPECT_FALSE(fn.addAttribute(again)) << "the long name is taken";
    again = n.create("other", "tx", MFnNumericData::kDouble);
    EXPECT_FALSE(fn.addAttribute(again)) << "the short name is taken";
    const MPlug held = plug("t.gx");
    EXPECT_TRUE(fn.removeAttribute(grip));
    EXPECT_FALSE(fn.hasAttribute("gripX"));
    held.asDouble();   // whatever it gives, it is no crash
    MObject fixed = fn.attribute("translateX");
    EXPECT_FALSE(fn.removeAttribute(fixed)) << "a type's own attributes stay";
    EXPECT_TRUE(fn.hasAttribute("translateX"));

    MObject kind = e.create("kind", "k", 5);
    EXPECT_TRUE(e.addField("red", 1) && e.addField("green", 5));
    short low = 0, high = 0;
    EXPECT_TRUE(e.getMin(low) && e.getMax(high));
    EXPECT_EQ(low, 1);
    EXPECT_EQ(high, 5);
    MStatus s;
    EXPECT_EQ(text(e.fieldName(5)), "green");
    EXPECT_EQ(e.fieldIndex("red"), 1);
    e.fieldIndex("mauve", &s);
    EXPECT_NE(s, MS::kSuccess);
    e.fieldName(3, &s);
    EXPECT_NE(s, MS::kSuccess);
    MString name;
    EXPECT_TRUE(e.getDefault(name));
    EXPECT_EQ(text(name), "green");
    EXPECT_FALSE(e.setDefault("mauve"));
    EXPECT_TRUE(e.setDefault("red"));
    EXPECT_EQ(e.defaultValue(), 1);
}

TEST_F(Plugs, FunctionSetsReadTheAttributesOfNodes)
{
    MFnDependencyNode fn(node("t"));
    MFnNumericAttribute v(fn.attribute("visibility"));
    EXPECT_EQ(v.unitType(), MFnNumericData::kBoolean);
    MFnUnitAttribute tx(fn.attribute("translateX")), rx(fn.attribute("rotateX"));
    EXPECT_EQ(tx.unitType(), MFnUnitAttribute::kDistance);
    EXPECT_EQ(rx.unitType(), MFnUnitAttribute::kAngle);
    EXPECT_TRUE(tx.parent() == fn.attribute("translate"));
    MStatus s;
    MFnEnumAttribute wrong(fn.attribute("translateX"), &s);
    EXPECT_NE(s, MS::kSuccess) << "no enumeration";
    EXPECT_FALSE(wrong.addField("a", 1));
    MFnTypedAttribute mesh(MFnDependencyNode(node("r")).attribute("value"), &s);
    EXPECT_NE(s, MS::kSuccess) << "no data";
    MFnAttribute multi(plug("r.vl").attribute());
    EXPECT_TRUE(multi.isArray());
    EXPECT_TRUE(fn.findPlug("nothing", false, &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    EXPECT_TRUE(fn.attribute("nothing", &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    // every attribute by number, and back by name
    for (unsigned i = 0; i < fn.attributeCount(); ++i) {
        const MObject a = fn.attribute(i);
        ASSERT_FALSE(a.isNull()) << i;
        EXPECT_TRUE(fn.attribute(MFnAttribute(a).name()) == a);
        EXPECT_TRUE(fn.attribute(MFnAttribute(a).shortName()) == a);
    }
    EXPECT_TRUE(fn.attribute(fn.attributeCount(), &s).isNull());
    EXPECT_NE(s, MS::kSuccess);
    MFnDependencyNode md(node("md"));
    MObjectArray      hit;
    EXPECT_TRUE(md.getAffectedAttributes(md.attribute("input1X"), hit));
    bool x = false;
    for (unsigned i = 0; i < hit.length(); ++i)
        x = x || hit[i] == md.attribute("outputX");
    EXPECT_TRUE(x);
    EXPECT_TRUE(md.getAffectedByAttributes(md.attribute("outputX"), hit));
    EXPECT_GE(hit.length(), 3u) << "two inputs and the operation";
}

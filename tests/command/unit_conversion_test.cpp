// Connections between plugs of different units, and what stands between them.
#include <cmath>

#include <maya/MAngle.h>
#include <maya/MDGModifier.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include "../support/host_fixture.h"

namespace {

class UnitConversion : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        fill();
    }
    static void fill()
    {
        mel("file -new -force");
        mel("createNode transform -n t; createNode transform -n u; createNode network -n n;");
        mel("addAttr -ln d -at \"double\" n; addAttr -ln e -at \"double\" n; addAttr -ln i -at long n;"
            "addAttr -ln a -at doubleAngle n; addAttr -ln l -at doubleLinear n; addAttr -ln w -at time n;");
    }
    static double count(const char* type) { return num(std::string("size(`ls -type ") + type + "`)"); }
    static MPlug plug(const char* name)
    {
        MSelectionList list;
        MPlug          plug;
        list.add(name);
        list.getPlug(0, plug);
        return plug;
    }
};

using Strings = std::vector<std::string>;

}  // namespace

TEST_F(UnitConversion, NumbersMeetInTheUsersUnits)
{
    struct Case { const char* when; const char* source; const char* value; const char* target; const char* node; double factor, result; };
    const double degree = 180 / M_PI;
    const Case   cases[] = {
        {"angle to number", "t.rx", "90", "n.d", "unitConversion", degree, 90},
        {"number to angle", "n.d", "90", "t.rx", "unitConversion", 1 / degree, 90},
        {"angle to length", "t.rx", "30", "t.ty", "unitConversion", degree, 30},
        {"time to number", "time1.outTime", "12", "n.d", "timeToUnitConversion", 24.0 / 6000, 12},
        {"time to whole number", "time1.outTime", "12", "n.i", "timeToUnitConversion", 24.0 / 6000, 12},
        {"time to angle", "n.w", "12", "t.rz", "timeToUnitConversion", 24.0 / 6000 / degree, 12},
        {"number to time", "n.d", "12", "n.w", "unitToTimeConversion", 250, 12},
        {"length to number", "t.tx", "4", "n.d", "", 1, 4},
        {"time to time", "time1.outTime", "7", "n.w", "", 1, 7},
        {"angle to angle", "t.rx", "7", "n.a", "", 1, 7},
    };
    for (const Case& c : cases)
    {
        fill();
        mel(std::string("connectAttr ") + c.source + " " + c.target);
        const Strings between = strings(std::string("listConnections ") + c.target);
        mel(std::string("setAttr ") + c.source + " " + c.value);
        EXPECT_NEAR(num(std::string("getAttr ") + c.target), c.result, 1e-9) << c.when;
        if (*c.node)
        {
            EXPECT_EQ(between, Strings{std::string(c.node) + "1"}) << c.when;
            EXPECT_NEAR(num(std::string("getAttr ") + c.node + "1.conversionFactor"), c.factor, 1e-12) << c.when;
        }
        EXPECT_EQ(num(std::string("isConnected ") + c.source + " " + c.target), *c.node ? 0 : 1) << c.when;
        EXPECT_EQ(num(std::string("isConnected -iuc ") + c.source + " " + c.target), 1) << c.when;
        const Strings behind = strings(std::string("listConnections -p 1 -scn 1 ") + c.target);
        ASSERT_EQ(behind.size(), 1u) << c.when;
        EXPECT_EQ(num("isConnected -iuc " + behind[0] + " " + c.target), 1) << c.when;
    }
}

TEST_F(UnitConversion, FactorFollowsTheUnitsOfTheMoment)
{
    mel("currentUnit -linear m; connectAttr t.tx n.d; setAttr t.tx 3");
    EXPECT_DOUBLE_EQ(num("getAttr n.d"), 3);
    EXPECT_NEAR(num("getAttr unitConversion1.conversionFactor"), 0.01, 1e-15);
    mel("currentUnit -linear cm");
    EXPECT_DOUBLE_EQ(num("getAttr n.d"), 3);   // made for metres, stays so
}

TEST_F(UnitConversion, TuplesGoPartByPart)
{
    mel("connectAttr t.r u.t; setAttr t.r 10 20 30");
    EXPECT_NEAR(num("getAttr u.tx"), 10, 1e-12);
    EXPECT_NEAR(num("getAttr u.tz"), 30, 1e-12);
    mel("disconnectAttr t.r u.t");
    EXPECT_EQ(count("unitConversion"), 0);
    mel("connectAttr t.t u.t");
    EXPECT_EQ(num("isConnected t.t u.t"), 1);   // same units: one connection
}

TEST_F(UnitConversion, GoesWithItsLastConnection)
{
    mel("connectAttr t.rx n.d; disconnectAttr t.rx n.d");
    EXPECT_EQ(count("unitConversion"), 0);
    EXPECT_EQ(num("isConnected -iuc t.rx n.d"), 0);
    mel("undo");
    EXPECT_EQ(num("isConnected -iuc t.rx n.d"), 1);
    mel("setAttr t.rx 5");
    EXPECT_NEAR(num("getAttr n.d"), 5, 1e-12);

    mel("connectAttr -f t.tx n.d");
    EXPECT_EQ(count("unitConversion"), 0);
    mel("connectAttr -f t.rx n.d; delete t");
    EXPECT_EQ(count("unitConversion"), 0);
    EXPECT_EQ(num("objExists n"), 1);
}

TEST_F(UnitConversion, RefusedConnectionsLeaveNothing)
{
    mel("connectAttr t.rx n.d");
    EXPECT_NE(melError("connectAttr n.d t.rx").find("cycle"), std::string::npos);
    EXPECT_NE(melError("connectAttr t.ry n.d").find("n.d"), std::string::npos);
    mel("setAttr -lock 1 n.e");
    EXPECT_NE(melError("connectAttr t.ry n.e").find("locked"), std::string::npos);
    EXPECT_EQ(count("unitConversion"), 1);
}

TEST_F(UnitConversion, SavedScenesComeBackTheSame)
{
    mel("connectAttr t.rx n.d; connectAttr time1.outTime n.e");
    const std::string path = file("units.ma");
    mel("file -rename \"" + path + "\"; file -save -type mayaAscii; file -new -force; file -open -force \"" + path + "\"");
    EXPECT_EQ(count("unitConversion"), 1);
    EXPECT_EQ(count("timeToUnitConversion"), 1);
    mel("setAttr t.rx 45; currentTime 9");
    EXPECT_NEAR(num("getAttr n.d"), 45, 1e-9);
    EXPECT_NEAR(num("getAttr n.e"), 9, 1e-9);
}

TEST_F(UnitConversion, ModifiersPutThemInToo)
{
    MDGModifier modifier;
    modifier.connect(plug("t.rx"), plug("n.d"));
    ASSERT_EQ(modifier.doIt(), MS::kSuccess);
    plug("t.rx").setMAngle(MAngle(60, MAngle::kDegrees));
    EXPECT_NEAR(plug("n.d").asDouble(), 60, 1e-12);
    ASSERT_EQ(modifier.undoIt(), MS::kSuccess);
    EXPECT_EQ(count("unitConversion"), 0);
    EXPECT_FALSE(plug("n.d").isConnected());
}

TEST_F(UnitConversion, WorldMatrixByItsPlainName)
{
    mel("setAttr t.t 1 2 3; parent u t; setAttr u.tx 10");
    const std::vector<double> m = nums("getAttr u.worldMatrix");
    ASSERT_EQ(m.size(), 16u);
    EXPECT_EQ(m[12], 11);
    EXPECT_EQ(m[14], 0);   // parenting kept it in place
    EXPECT_EQ(str("getAttr -type u.worldMatrix"), "matrix");
    EXPECT_EQ(py("len(__import__('maya.cmds').cmds.getAttr('persp.worldMatrix'))").asInt(), 16);
}

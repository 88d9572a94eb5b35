// Keys, sets and particles as Python scripts use them: ranges as tuples, lists in and out.
#include "../support/host_fixture.h"

namespace {

class AnimationFromPython : public mirk::test::Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        py("from maya import cmds\ng = cmds.group(empty=True, name='g')");
    }
    /// repr of an expression.
    static std::string show(const std::string& expression) { return py("repr(" + expression + ")").asString(); }
};

}  // namespace

TEST_F(AnimationFromPython, Keys)
{
    EXPECT_EQ(show("cmds.setKeyframe('g', attribute='tx', time=[1, 5, 9], value=2)"), "3");
    EXPECT_EQ(show("cmds.setKeyframe('g.ty', t=3, v=7, itt='linear', ott='step')"), "1");
    EXPECT_EQ(show("cmds.keyframe('g.tx', query=True, timeChange=True)"), "[1.0, 5.0, 9.0]");
    EXPECT_EQ(show("cmds.keyframe('g', q=True, keyframeCount=True, time=(2, 6))"), "2");
    EXPECT_EQ(show("cmds.keyframe('g', at='tx', q=True, tc=True, time=(5, 9))"), "[5.0, 9.0]");
    EXPECT_EQ(show("cmds.keyframe('g.tx', q=True, tc=True, index=(0, 1))"), "[1.0, 5.0]");
    EXPECT_EQ(show("cmds.keyframe('g.tx', q=True, vc=True, time=(5,))"), "[2.0]");
    py("cmds.keyframe('g.tx', edit=True, relative=True, timeChange=10, time=(5, 9))");
    EXPECT_EQ(show("cmds.keyframe('g.tx', q=True, tc=True)"), "[1.0, 15.0, 19.0]");
    EXPECT_EQ(show("cmds.keyTangent('g.ty', q=True, inTangentType=True, outTangentType=True)"), "['linear', 'step']");
    EXPECT_EQ(show("cmds.cutKey('g', time=(10, 20), clear=True)"), "1");
    EXPECT_EQ(show("cmds.findKeyframe('g', which='last')"), "3.0");
    py("cmds.setInfinity('g.tx', preInfinite='linear', postInfinite='cycle')");
    EXPECT_EQ(show("cmds.setInfinity('g.tx', q=True, preInfinite=True)"), "['linear']");
    py("cmds.select('g'); cmds.setKeyframe(at=['rx', 'ry'], t=4)");   // what is selected
    EXPECT_EQ(show("cmds.objExists('g_rotateY')"), "True");
}

TEST_F(AnimationFromPython, ObjectsAroundAndBelow)
{
    py("c = cmds.group(empty=True, name='c', parent='g')\ncam = cmds.createNode('camera', parent='c')");
    EXPECT_EQ(show("cmds.setKeyframe('g', hierarchy='below', at='tz')"), "2");
    EXPECT_EQ(show("cmds.setKeyframe('c', hierarchy='both', at='ty')"), "2");
    EXPECT_EQ(show("cmds.setKeyframe('c', at='focalLength')"), "1");              // of the shape
    EXPECT_NE(melError("setKeyframe -shape 0 -at focalLength c"), "");
    py("cmds.setAttr('g.sx', lock=True)");
    EXPECT_EQ(show("cmds.setKeyframe('g.sx')"), "0");
    EXPECT_NE(said(mirk::message::kWarning).find("g.scaleX"), std::string::npos);
    py("cmds.connectAttr('c.tx', 'g.sy')");
    EXPECT_EQ(show("cmds.setKeyframe('g.sy')"), "0");
}

TEST_F(AnimationFromPython, SetsAndParticles)
{
    py("cmds.polyPlane(name='p', sx=2, sy=2)");
    EXPECT_EQ(show("cmds.sets('p.f[0:1]', 'g', name='s')"), "'s'");
    EXPECT_EQ(show("cmds.sets('p.f[3]', add='s')"), "'s'");
    EXPECT_EQ(show("cmds.sets('s', q=True)"), "['p.f[0:1]', 'p.f[3]', 'g']");
    EXPECT_EQ(show("cmds.sets('p.f[0]', isMember='s')"), "True");
    EXPECT_EQ(show("cmds.sets('s', q=True, size=True)"), "2");
    EXPECT_EQ(show("cmds.particle(p=[(0, 0, 0), (1, 2, 3)], name='d')"), "['d', 'dShape']");
    EXPECT_EQ(show("cmds.particle('d', q=True, count=True)"), "2");
    EXPECT_EQ(show("cmds.getAttr('dShape.position')"), "[(0.0, 0.0, 0.0), (1.0, 2.0, 3.0)]");
}

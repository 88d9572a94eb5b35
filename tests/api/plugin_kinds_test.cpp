// What plug-ins register: every kind of node, commands with undo, and what stays when a plug-in goes.
#include "../dag/dag_fixture.h"

#include <maya/MArgDatabase.h>
#include <maya/MBoundingBox.h>
#include <maya/MDGModifier.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDagModifier.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPxCommand.h>
#include <maya/MPxDeformerNode.h>
#include <maya/MPxEmitterNode.h>
#include <maya/MPxFieldNode.h>
#include <maya/MPxFluidEmitterNode.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>
#include <maya/MSelectionList.h>

#include "command/plugin_loader.h"
#include "command/startup.h"
#include "data/mobject.h"
#include "mesh/mesh.h"

using namespace dag_test;

namespace {

template <class Base>
class plain : public Base
{
public:
    static void*   creator() { return new plain; }
    static MStatus initialize() { return MS::kSuccess; }
};

/// Doubles its input; answers nothing else.
class doubler : public MPxNode
{
public:
    static void*   creator() { return new doubler; }
    static MStatus initialize()
    {
        MFnNumericAttribute fn;
        in = fn.create("in", "in", MFnNumericData::kDouble);
        out = fn.create("out", "out", MFnNumericData::kDouble);
        addAttribute(in);
        addAttribute(out);
        return attributeAffects(in, out);
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        block.outputValue(out).setDouble(2 * block.inputValue(in).asDouble());
        return MS::kSuccess;
    }
    static inline MObject in, out;
};

class boxed : public MPxLocatorNode
{
public:
    static void*   creator() { return new boxed; }
    static MStatus initialize() { return MS::kSuccess; }
    MStatus        compute(const MPlug&, MDataBlock&) override { return MS::kUnknownParameter; }
    bool           isBounded() const override { return true; }
    MBoundingBox   boundingBox() const override { return MBoundingBox(MPoint(0, 0, 0), MPoint(3, 1, 1)); }
};

class lift : public MPxDeformerNode
{
public:
    static void*   creator() { return new lift; }
    static MStatus initialize() { return MS::kSuccess; }
    MStatus        deform(MDataBlock& block, MItGeometry& iter, const MMatrix&, unsigned index) override
    {
        for (; !iter.isDone(); iter.next()) {
            MPoint p = iter.position();
            p.y += weightValue(block, index, unsigned(iter.index()));
            iter.setPosition(p);
        }
        return MS::kSuccess;
    }
};

class maker : public MPxCommand
{
public:
    static void*   creator() { return new maker; }
    static MSyntax newSyntax()
    {
        MSyntax s;
        s.addFlag("-n", "-name", MSyntax::kString);
        s.addFlag("-x", "-fail");
        s.enableQuery();
        s.setObjectType(MSyntax::kSelectionList, 0, 1);
        return s;
    }
    MStatus doIt(const MArgList& args) override
    {
        MStatus      status;
        MArgDatabase data(syntax(), args, &status);
        if (!status)
            return status;
        if (data.isQuery()) {
            setResult(42);
            return MS::kSuccess;
        }
        MObject node = modifier_.createNode("network");
        MString name;
        if (data.getFlagArgument("-n", 0, name))
            modifier_.renameNode(node, name);
        if (data.isFlagSet("-fail")) {
            displayError("maker: asked to fail");
            return MS::kFailure;
        }
        status = redoIt();
        setResult(MFnDependencyNode(node).name());
        return status;
    }
    MStatus redoIt() override { return modifier_.doIt(); }
    MStatus undoIt() override { return modifier_.undoIt(); }
    bool    isUndoable() const override { return true; }

private:
    MDGModifier modifier_;
};

struct PluginKinds : SceneTest
{
    static void SetUpTestSuite() { startHost(); }
    void SetUp() override
    {
        SceneTest::SetUp();
        object = make<Plugin>();
        object->name = "kinds";
        handle = wrap(object);
    }
    void TearDown() override
    {
        newScene();
        MFnPlugin fn(handle);
        for (NodeType* t : std::vector<NodeType*>(object->types))
            fn.deregisterNode(t->id);
        fn.deregisterCommand("maker");
    }
    template <class T, class... A>
    static Ref<T> make(A&&... a) { return mirk::make<T>(std::forward<A>(a)...); }
    using SceneTest::make;

    Ref<Plugin> object;
    MObject     handle;
};

TEST_F(PluginKinds, EveryKindCanBeRegisteredAndCreated)
{
    MFnPlugin fn(handle, "somebody", "1.0", "Any");
    const struct { const char* name; void* (*creator)(); MPxNode::Type kind; MFn::Type type; MFn::Type also; const char* attribute; } kinds[] = {
        {"kDepend", plain<MPxNode>::creator, MPxNode::kDependNode, MFn::kPluginDependNode, MFn::kDependencyNode, "nodeState"},
        {"kLocator", plain<MPxLocatorNode>::creator, MPxNode::kLocatorNode, MFn::kPluginLocatorNode, MFn::kShape, "localPosition"},
        {"kDeformer", plain<MPxDeformerNode>::creator, MPxNode::kDeformerNode, MFn::kPluginDeformerNode, MFn::kWeightGeometryFilt, "weightList"},
        {"kFilter", plain<MPxGeometryFilter>::creator, MPxNode::kGeometryFilter, MFn::kPluginGeometryFilter, MFn::kGeometryFilt, "envelope"},
        {"kManip", plain<MPxManipContainer>::creator, MPxNode::kManipContainer, MFn::kPluginManipContainer, MFn::kTransform, "translate"},
        {"kField", plain<MPxFieldNode>::creator, MPxNode::kFieldNode, MFn::kPluginFieldNode, MFn::kField, "magnitude"},
        {"kEmitter", plain<MPxEmitterNode>::creator, MPxNode::kEmitterNode, MFn::kPluginEmitterNode, MFn::kEmitter, "rate"},
        {"kFluid", plain<MPxFluidEmitterNode>::creator, MPxNode::kFluidEmitterNode, MFn::kPluginEmitterNode, MFn::kFluidEmitter, "fluidDropoff"},
    };
    unsigned id = 0x7f100;
    for (const auto& k : kinds) {
        ASSERT_TRUE(fn.registerNode(k.name, ++id, k.creator, plain<MPxNode>::initialize, k.kind)) << k.name;
        Node* node = make(k.name);
        EXPECT_EQ(node->apiType(), k.type) << k.name;
        EXPECT_TRUE(node->hasFn(k.also)) << k.name;
        EXPECT_TRUE(node->findAttribute(k.attribute)) << k.name;
        EXPECT_TRUE(node->user) << k.name;
        EXPECT_EQ(node->user->type(), k.kind) << k.name;
        EXPECT_STREQ(MFnDependencyNode(wrap(node)).pluginName().asChar(), "kinds");
    }
    EXPECT_FALSE(fn.registerNode("kSpring", ++id, plain<MPxNode>::creator, nullptr, MPxNode::kSpringNode));
    EXPECT_FALSE(fn.registerNode("kDepend", ++id, plain<MPxNode>::creator, nullptr));           // name taken
    EXPECT_FALSE(fn.registerNode("transform", 0x7f1ff, plain<MPxNode>::creator, nullptr));
    EXPECT_TRUE(fn.registerNode("kDepend", 0x7f101, plain<MPxNode>::creator, nullptr));          // again: takes its place
    EXPECT_FALSE(fn.deregisterNode(0x7f102)) << "a node of the type exists";
}

TEST_F(PluginKinds, HostAnswersWhatTheClassDoesNot)
{
    MFnPlugin fn(handle);
    ASSERT_TRUE(fn.registerNode("boxed", 0x7f120, boxed::creator, boxed::initialize, MPxNode::kLocatorNode));
    Node* shape = make("boxed");
    set(shape->dag->parents[0], "tx", 4);
    set(shape, "localPositionX", 1);
    EXPECT_EQ(get(shape, "worldPosition[0].worldPositionX"), 5);
    EXPECT_EQ(get(shape->dag->parents[0], "boundingBoxMaxX"), 7);
    EXPECT_EQ(shape->name, "boxedShape1");
}

TEST_F(PluginKinds, DeformersGetPointsAndWeights)
{
    MFnPlugin fn(handle);
    ASSERT_TRUE(fn.registerNode("lift", 0x7f121, lift::creator, lift::initialize, MPxNode::kDeformerNode));
    Node *cube = make("polyCube"), *node = make("lift"), *shape = make("mesh");
    edit::connect(cell(cube, "output"), cell(node, "input[2].inputGeometry"));
    edit::connect(cell(node, "outputGeometry[2]"), cell(shape, "inMesh"));
    set(node, "weightList[2].weights[0]", 0.25);
    const auto y = [&](int vertex) { return dynamic_cast<MeshSource*>(shape)->meshForRead()->body->points()[3 * vertex + 1]; };
    EXPECT_EQ(y(0), -0.25f);
    EXPECT_EQ(y(1), 0.5f);   // no weight is full weight
    set(node, "envelope", 0);
    EXPECT_EQ(y(1), -0.5f);
    set(node, "envelope", 1);
    set(node, "nodeState", 1);
    EXPECT_EQ(y(1), -0.5f);
}

TEST_F(PluginKinds, CommandsRunFailAndAreTakenBack)
{
    MFnPlugin fn(handle);
    ASSERT_TRUE(fn.registerCommand("maker", maker::creator, maker::newSyntax));
    EXPECT_FALSE(fn.registerCommand("ls", maker::creator));
    undo::flush();
    MString made;
    ASSERT_TRUE(MGlobal::executeCommand("maker -name bench", made, false, true));
    EXPECT_STREQ(made.asChar(), "bench");
    ASSERT_TRUE(scene().first("bench"));
    undo::undoOne();
    EXPECT_FALSE(scene().first("bench"));
    undo::redoOne();
    EXPECT_TRUE(scene().first("bench"));

    int answer = 0;
    ASSERT_TRUE(MGlobal::executeCommand("maker -q", answer));
    EXPECT_EQ(answer, 42);
    const size_t before = scene().nodes().size();
    for (const char* bad : {"maker -fail", "maker -nothing", "maker -name", "maker nobody", "maker persp top"}) {
        EXPECT_FALSE(MGlobal::executeCommand(bad)) << bad;
        EXPECT_EQ(scene().nodes().size(), before) << bad;
    }
    const std::vector<command::Value> fails{"-fail"};
    try {
        command::execute("maker", fails);
        FAIL();
    } catch (const command::Error& e) {
        EXPECT_STREQ(e.what(), "maker: asked to fail");   // what the class said, once
    }
}

TEST_F(PluginKinds, ScriptsWithoutUndoLeaveNoTrace)
{
    undo::flush();
    MGlobal::executeCommand("createNode network -n quiet", false, false);
    EXPECT_TRUE(scene().first("quiet"));
    EXPECT_EQ(undo::undoName(), "");
    MGlobal::executeCommand("createNode network -n loud", false, true);
    EXPECT_NE(undo::undoName(), "");
    EXPECT_FALSE(MGlobal::executeCommand("createNode nothing"));
}

TEST_F(PluginKinds, ModifiersDoUndoAndDoAgain)
{
    MFnPlugin fn(handle);
    ASSERT_TRUE(fn.registerNode("doubler", 0x7f122, doubler::creator, doubler::initialize));
    MDagModifier modifier;
    const MObject a = static_cast<MDGModifier&>(modifier).createNode("doubler"), b = static_cast<MDGModifier&>(modifier).createNode("doubler");
    const MObject group = modifier.createNode("transform"), child = modifier.createNode("transform", group);
    modifier.renameNode(group, "made");
    modifier.connect(MPlug(a, doubler::out), MPlug(b, doubler::in));
    modifier.newPlugValueDouble(MPlug(a, doubler::in), 5);
    EXPECT_FALSE(scene().first("doubler1"));
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(modifier.doIt());
        EXPECT_EQ(MPlug(b, doubler::out).asDouble(), 20);
        EXPECT_EQ(MFnDagNode(child).fullPathName(), MString("|made|transform2"));
        ASSERT_TRUE(modifier.undoIt());
        EXPECT_FALSE(scene().first("made"));
        EXPECT_FALSE(scene().first("doubler1"));
    }
    ASSERT_TRUE(modifier.doIt());
    modifier.connect(MPlug(a, doubler::out), MPlug(a, doubler::in));   // a cycle
    EXPECT_FALSE(modifier.doIt());
    EXPECT_EQ(MPlug(b, doubler::out).asDouble(), 20);
}

}  // namespace

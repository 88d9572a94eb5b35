// objectSet, partition, groupId and groupParts.
#include <algorithm>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnGeometryData.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>

#include "graph/access.h"
#include "graph/scene.h"
#include "nodes/anim_types.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/pass_on.h"

namespace mirk::nodes {
namespace {

class ObjectSet : public MPxNode
{
public:
    static void*   creator() { return new ObjectSet; }
    static MStatus initialize()
    {
        const auto limit = [](const char* l, const char* s) { return number(l, s, Number::kBoolean, 0, kHide); };
        add({nodes::message("dagSetMembers", "dsm", kMulti | kLoose), nodes::message("dnSetMembers", "dnsm", kMulti | kLoose),
             number("memberWireframeColor", "mwc", Number::kShort, -1), typed("annotation", "an", MFnData::kString),
             number("isLayer", "il", Number::kBoolean), limit("verticesOnlySet", "vo"), limit("edgesOnlySet", "eo"), limit("facetsOnlySet", "fo"),
             limit("editPointsOnlySet", "epo"), limit("renderableOnlySet", "ro"), nodes::message("partition", "pa"),
             nodes::message("groupNodes", "gn", kMulti | kLoose), nodes::message("usedBy", "ub", kMulti | kLoose),
             number("hiddenInOutliner", "hio", Number::kBoolean)});
        return MS::kSuccess;
    }
};

/// The set of what a shader is on.
class ShadingEngine : public MPxNode
{
public:
    static void*   creator() { return new ShadingEngine; }
    static MStatus initialize()
    {
        add({triple("surfaceShader", "ss", Number::kFloat, 0, kReset, "RGB"), triple("volumeShader", "vs", Number::kFloat, 0, kReset, "RGB"),
             triple("displacementShader", "ds", Number::kFloat, 0, kReset)});
        return MS::kSuccess;
    }
};

class Partition : public MPxNode
{
public:
    static void*   creator() { return new Partition; }
    static MStatus initialize()
    {
        add({nodes::message("sets", "st", kMulti | kLoose), number("partitionType", "pt", Number::kShort), typed("annotation", "an", MFnData::kString)});
        return MS::kSuccess;
    }
};

/// A number that no other group of the scene has.
class GroupId : public MPxNode
{
public:
    static void*   creator() { return new GroupId; }
    static MStatus initialize()
    {
        aId = number("groupId", "id", Number::kInt, 0, kOut);
        add({aId});
        return MS::kSuccess;
    }
    void postConstructor() override
    {
        const Node* self = UserNodeAccess::node(*this);
        int         highest = 0;
        for (Node* node : scene().nodes())
            if (node != self && node->type == self->type)
                highest = std::max(highest, int(node->cell(node->findAttribute("groupId"))->number()));
        MPlug(thisMObject(), aId).setInt(highest + 1);
    }
    static inline MObject aId;
};

/// Writes its components as a group into the geometry that passes through.
class GroupParts : public MPxNode
{
public:
    static void*   creator() { return new GroupParts; }
    static MStatus initialize()
    {
        aInput = typed("inputGeometry", "ig", MFnData::kAny, kNoStore);
        aId = number("groupId", "gi", Number::kInt);
        aComponents = typed("inputComponents", "ic", MFnData::kComponentList);
        aRemove = typed("inputRemoveComponent", "irc", MFnData::kComponentList);
        aOutput = typed("outputGeometry", "og", MFnData::kAny, kOut);
        add({aInput, aId, aComponents, aRemove, aOutput});
        affects({aInput, aId, aComponents, aRemove, state}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        const int id = block.inputValue(aId).asInt();
        auto*     data = passOn<GeometryData>(block, aInput, aOutput);
        if (!data || id <= 0)
            return MS::kSuccess;
        MFnGeometryData fn(block.outputValue(aOutput).data());
        if (fn.hasObjectGroup(unsigned(id)))
            fn.removeObjectGroup(unsigned(id));
        fn.addObjectGroup(unsigned(id));
        edit(fn, unsigned(id), block.inputValue(aComponents).data(), true);
        edit(fn, unsigned(id), block.inputValue(aRemove).data(), false);
        return MS::kSuccess;
    }

private:
    /// A group holds one kind of component: that of the first one.
    static void edit(MFnGeometryData& geometry, unsigned id, const MObject& components, bool in)
    {
        if (components.isNull())
            return;
        MFnComponentListData list(components);
        for (unsigned i = 0; i < list.length(); ++i) {
            MObject component = list[i];
            if (in)
                geometry.addObjectGroupComponent(id, component);
            else
                geometry.removeObjectGroupComponent(id, component);
        }
    }
    static inline MObject aInput, aId, aComponents, aRemove, aOutput;
};

}  // namespace

void registerSetTypes()
{
    const Row rows[] = {
        {"objectSet", "node", 0x4F425354, MFn::kSet, ObjectSet::creator, ObjectSet::initialize, "set"},
        {"partition", "node", 0x5052544E, MFn::kPartition, Partition::creator, Partition::initialize},
        {"groupId", "node", 0x47504944, MFn::kGroupId, GroupId::creator, GroupId::initialize},
        {"groupParts", "node", 0x47525050, MFn::kGroupParts, GroupParts::creator, GroupParts::initialize},
    };
    for (const Row& row : rows)
        registerRow(row);
    registerRow({"shadingEngine", "objectSet", 0x53484144, MFn::kShadingEngine, ShadingEngine::creator, ShadingEngine::initialize, "shadingEngine"});
}

}  // namespace mirk::nodes

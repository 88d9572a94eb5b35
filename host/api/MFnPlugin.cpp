#include <maya/MFnPlugin.h>

#include <algorithm>
#include <filesystem>

#include <maya/MSyntax.h>

#include "api/api.h"
#include "command/plugin_loader.h"
#include "command/user_command.h"
#include "data/plugin_data.h"
#include "graph/scene.h"
#include "nodes/builtin.h"

using namespace mirk;

namespace {

Plugin* pluginOf(const MObject& object) { return objectAs<Plugin>(object); }

MString text(const std::string& s) { return MString(s.c_str()); }

template <class F>
MString field(const MObject& object, MStatus* s, F get)
{
    const Plugin* p = pluginOf(object);
    return reported(s, p ? MS::kSuccess : MS::kFailure, p ? text(get(*p)) : MString());
}

MStatus refuse(const std::string& why)
{
    message::error(why);
    return MS::kFailure;
}

std::unique_ptr<NodeType> newType(const Plugin& plugin, const MString& name, const MTypeId& id, void* (*creator)(), MPxNode::Type kind,
                                  NodeType* base, const MString* classification)
{
    auto type = std::make_unique<NodeType>();
    type->name = name.asChar();
    type->id = id.id();
    type->kind = kind;
    type->creator = creator;
    type->plugin = plugin.name;
    type->apiType = base->apiType;
    if (classification)
        type->classification = classification->asChar();
    type->inherit(base);
    return type;
}

}  // namespace

MFnPlugin::MFnPlugin() = default;

MFnPlugin::MFnPlugin(MObject& object, const char* vendor, const char* version, const char* requiredApiVersion, MStatus* s)
{
    Plugin* plugin = pluginOf(object);
    if (plugin) {
        object_ = object;
        const auto keep = [](std::string& place, const char* given) {
            if (given && std::string(given) != "Unknown" && std::string(given) != "Any")
                place = given;
        };
        keep(plugin->vendor, vendor);
        keep(plugin->version, version);
        keep(plugin->apiVersion, requiredApiVersion);
    }
    report(s, plugin ? MS::kSuccess : MS::kInvalidParameter);
}

MFn::Type MFnPlugin::type() const { return MFn::kPlugin; }
MString   MFnPlugin::vendor(MStatus* s) const { return field(object_, s, [](const Plugin& p) { return p.vendor; }); }
MString   MFnPlugin::version(MStatus* s) const { return field(object_, s, [](const Plugin& p) { return p.version; }); }
MString   MFnPlugin::apiVersion(MStatus* s) const { return field(object_, s, [](const Plugin& p) { return p.apiVersion; }); }
MString   MFnPlugin::name(MStatus* s) const { return field(object_, s, [](const Plugin& p) { return p.name; }); }
MString   MFnPlugin::loadPath(MStatus* s) const
{
    return field(object_, s, [](const Plugin& p) { return std::filesystem::path(p.path).parent_path().string(); });
}

MStatus MFnPlugin::setName(const MString& newName, bool)
{
    Plugin* p = pluginOf(object_);
    if (!p || newName.length() == 0)
        return MS::kInvalidParameter;
    p->name = newName.asChar();
    return MS::kSuccess;
}

MStatus MFnPlugin::setVersion(const MString& newVersion)
{
    Plugin* p = pluginOf(object_);
    if (!p)
        return MS::kFailure;
    p->version = newVersion.asChar();
    return MS::kSuccess;
}

MStatus MFnPlugin::registerNode(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction,
                                MInitializeFunction initFunction, MPxNode::Type kind, const MString* classification)
{
    Plugin* plugin = pluginOf(object_);
    if (!plugin || !creatorFunction || typeName.length() == 0 || typeId.id() == 0)
        return MS::kInvalidParameter;
    NodeType* base = nodes::baseOfKind(kind);
    if (!base)
        return refuse("Cannot register the node type " + std::string(typeName.asChar()) + ": this host has no base for its kind.");
    auto type = newType(*plugin, typeName, typeId, creatorFunction, kind, base, classification);
    NodeType* const outer = typeBeingBuilt();
    typeBeingBuilt() = type.get();
    const MStatus status = initFunction ? initFunction() : MStatus(MS::kSuccess);
    typeBeingBuilt() = outer;
    if (!status)
        return refuse("Cannot register the node type " + std::string(typeName.asChar()) + ": its initialize failed.");
    std::string why;
    NodeType*   old = findNodeType(typeId.id());
    NodeType*   added = registerNodeType(std::move(type), &why);
    if (!added)
        return refuse("Cannot register the node type " + std::string(typeName.asChar()) + ": " + why + ".");
    std::erase(plugin->types, old);
    plugin->types.push_back(added);
    return MS::kSuccess;
}

MStatus MFnPlugin::deregisterNode(const MTypeId& typeId)
{
    Plugin*   plugin = pluginOf(object_);
    NodeType* type = findNodeType(typeId.id());
    if (!plugin || !type || std::find(plugin->types.begin(), plugin->types.end(), type) == plugin->types.end())
        return MS::kInvalidParameter;
    for (const Node* node : scene().nodes())
        if (node->type == type)
            return refuse("Cannot deregister the node type " + type->name + ": the node " + node->name + " is of this type.");
    deregisterNodeType(type);
    std::erase(plugin->types, type);
    return MS::kSuccess;
}

MStatus MFnPlugin::registerCommand(const MString& commandName, MCreatorFunction creatorFunction, MCreateSyntaxFunction createSyntaxFunction)
{
    Plugin* plugin = pluginOf(object_);
    if (!plugin || !creatorFunction || commandName.length() == 0)
        return MS::kInvalidParameter;
    const std::string name = commandName.asChar();
    if (const command::Command* taken = command::find(name)) {
        const bool own = std::any_of(plugin->commands.begin(), plugin->commands.end(), [&](const auto& c) { return &c->row == taken; });
        if (!own)
            return refuse("Cannot register the command " + name + ": the name is taken.");
    }
    plugin->commands.push_back(std::make_unique<UserCommand>(name, creatorFunction, createSyntaxFunction));
    command::add(plugin->commands.back()->row);
    return MS::kSuccess;
}

MStatus MFnPlugin::deregisterCommand(const MString& commandName)
{
    Plugin* plugin = pluginOf(object_);
    if (!plugin)
        return MS::kFailure;
    const command::Command* row = command::find(commandName.asChar());
    for (const auto& c : plugin->commands)
        if (&c->row == row) {
            command::remove(c->name);   // the row itself stays: a running call may still read it
            return MS::kSuccess;
        }
    return MS::kInvalidParameter;
}

MStatus MFnPlugin::registerData(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction, MPxData::Type type)
{
    Plugin* plugin = pluginOf(object_);
    if (!plugin || !creatorFunction)
        return MS::kInvalidParameter;
    if (!registerDataType(typeName.asChar(), typeId.id(), creatorFunction, type))
        return refuse("Cannot register the data type " + std::string(typeName.asChar()) + ": its name or id is taken.");
    plugin->dataTypes.push_back(typeId.id());
    return MS::kSuccess;
}

MStatus MFnPlugin::deregisterData(const MTypeId& typeId)
{
    Plugin* plugin = pluginOf(object_);
    if (!plugin || std::erase(plugin->dataTypes, typeId.id()) == 0)
        return MS::kInvalidParameter;
    deregisterDataType(typeId.id());
    return MS::kSuccess;
}

MObject MFnPlugin::findPlugin(const MString& pluginName) { return wrap(plugins::find(pluginName.asChar())); }

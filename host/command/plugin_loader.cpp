#include "command/plugin_loader.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

#include <maya/MFnPlugin.h>

#include "command/registry.h"
#include "command/user_command.h"
#include "data/mobject.h"
#include "data/plugin_data.h"
#include "graph/scene.h"
#include "graph/undo.h"

namespace mirk {

Plugin::Plugin() = default;
Plugin::~Plugin() = default;

namespace plugins {
namespace {

namespace fs = std::filesystem;
using command::Error;
using EntryPoint = MStatus (*)(MObject);

struct State
{
    std::vector<Ref<Plugin>> loaded;
    std::vector<Ref<Plugin>> known;     // once opened, kept for their libraries
    std::vector<std::string> path;
    bool                     pathSet = false;
};

State& state()
{
    static State* s = new State;
    return *s;
}

std::string stem(const std::string& file)
{
    const fs::path p(file);
    return p.extension() == ".so" ? p.stem().string() : p.filename().string();
}

std::vector<std::string> pathFromEnvironment()
{
    std::vector<std::string> folders;
    for (const char* variable : {"MIRK_PLUG_IN_PATH", "MAYA_PLUG_IN_PATH"}) {
        const char*       value = std::getenv(variable);
        const std::string text = value ? value : "";
        for (size_t at = 0; at < text.size();) {
            const size_t end = std::min(text.find(':', at), text.size());
            if (end > at)
                folders.push_back(text.substr(at, end - at));
            at = end + 1;
        }
    }
    // the toolkit stands beside the host
    Dl_info here;
    if (dladdr(reinterpret_cast<void*>(&stem), &here) && here.dli_fname)
        folders.push_back(fs::path(here.dli_fname).parent_path().string());
    return folders;
}

/// The library's file; empty if there is none.
std::string findFile(const std::string& wanted)
{
    std::vector<fs::path> tried{wanted, wanted + ".so"};
    if (wanted.find('/') == std::string::npos)
        for (const std::string& folder : path())
            for (const char* ending : {"", ".so"})
                tried.push_back(fs::path(folder) / (wanted + ending));
    std::error_code ignored;
    for (const fs::path& p : tried)
        if (fs::is_regular_file(p, ignored))
            return fs::absolute(p, ignored).lexically_normal().string();
    return "";
}

EntryPoint entry(void* library, const char* mangled, const char* plain)
{
    void* symbol = dlsym(library, mangled);
    if (!symbol)
        symbol = dlsym(library, plain);
    return reinterpret_cast<EntryPoint>(symbol);
}

EntryPoint initializer(void* l) { return entry(l, "_Z16initializePlugin7MObject", "initializePlugin"); }
EntryPoint finisher(void* l) { return entry(l, "_Z18uninitializePlugin7MObject", "uninitializePlugin"); }

void takeBack(Plugin& plugin)
{
    for (auto t = plugin.types.rbegin(); t != plugin.types.rend(); ++t)
        deregisterNodeType(*t);
    plugin.types.clear();
    for (const auto& c : plugin.commands)
        command::remove(c->name);
    for (unsigned id : plugin.dataTypes)
        deregisterDataType(id);
    plugin.dataTypes.clear();
}

/// Runs an entry point; the reason if it fails.
std::string call(EntryPoint point, Plugin& plugin)
{
    undo::Scope scope("plug-in", false);
    std::string why;
    try {
        if (const MStatus status = point(mirk::wrap(&plugin)); !status)
            why = status.errorString().asChar();
    } catch (const std::exception& e) {
        why = e.what();
    }
    scope.take();
    return why;
}

bool usesType(const Node& node, const Plugin& plugin)
{
    return std::find(plugin.types.begin(), plugin.types.end(), node.type) != plugin.types.end();
}

/// A type that holds a node's attributes without its code.
NodeType* unknownTypeFor(NodeType* type)
{
    static auto& made = *new std::unordered_map<NodeType*, NodeType*>;   // types are kept for ever
    NodeType*& unknown = made[type];
    if (unknown)
        return unknown;
    unknown = new NodeType(*type);
    unknown->name = type->shape ? "unknownDag" : type->dag ? "unknownTransform" : "unknown";
    unknown->apiType = type->shape ? MFn::kUnknownDag : type->dag ? MFn::kUnknownTransform : MFn::kUnknown;
    unknown->creator = nullptr;
    unknown->plugin.clear();
    for (size_t slot = unknown->ownFirst; slot < unknown->computed.size(); ++slot)
        unknown->computed[slot] = 0;   // values stay as they are
    return unknown;
}

void makeUnknown(Plugin& plugin)
{
    for (Node* node : scene().nodes()) {
        if (!usesType(*node, plugin))
            continue;
        node->unknownType = node->type->name;
        node->type = unknownTypeFor(node->type);
        node->dependsOnDirtyCall = node->ownDependsOn = node->ownPassive = false;
        node->user.reset();
    }
}

}  // namespace

std::vector<std::string> path()
{
    if (!state().pathSet)
        setPath(pathFromEnvironment());
    return state().path;
}

void setPath(std::vector<std::string> folders)
{
    state().path = std::move(folders);
    state().pathSet = true;
}

std::vector<Plugin*> loaded()
{
    std::vector<Plugin*> list;
    for (const auto& p : state().loaded)
        list.push_back(p.get());
    return list;
}

Plugin* find(const std::string& nameOrPath)
{
    const bool isPath = nameOrPath.find('/') != std::string::npos;
    const std::string file = isPath ? findFile(nameOrPath) : "";
    for (const auto& p : state().loaded)
        if (isPath ? p->path == file : p->name == nameOrPath || p->name == stem(nameOrPath))
            return p.get();
    return nullptr;
}

std::vector<std::string> typesInUse(const Plugin& plugin)
{
    std::vector<std::string> names;
    for (const Node* node : scene().nodes())
        if (usesType(*node, plugin) && std::find(names.begin(), names.end(), node->type->name) == names.end())
            names.push_back(node->type->name);
    return names;
}

Plugin& load(const std::string& pathOrName, const std::string& name)
{
    if (Plugin* known = find(pathOrName))
        return *known;
    const std::string file = findFile(pathOrName);
    if (file.empty())
        throw Error("Plug-in, \"" + pathOrName + "\", was not found on the plug-in path.");
    Ref<Plugin> plugin;
    for (const auto& p : state().known)
        if (p->path == file)
            plugin = p;
    if (!plugin) {
        plugin = make<Plugin>();
        plugin->path = file;
        plugin->library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!plugin->library)
            throw Error("Plug-in \"" + pathOrName + "\" cannot be opened: " + dlerror());
        state().known.push_back(plugin);
    }
    plugin->name = name.empty() ? stem(file) : name;
    const EntryPoint begin = initializer(plugin->library);
    if (!begin || !finisher(plugin->library))
        throw Error("Plug-in \"" + pathOrName + "\" has no entry points: initializePlugin and uninitializePlugin are missing in " + file + ".");
    state().loaded.push_back(plugin);   // its scripts may ask for it
    plugin->loaded = true;
    if (const std::string why = call(begin, *plugin); !why.empty()) {
        takeBack(*plugin);
        plugin->loaded = false;
        std::erase(state().loaded, plugin);
        throw Error("Plug-in \"" + plugin->name + "\" could not be initialized: " + why);
    }
    return *plugin;
}

void unload(const std::string& nameOrPath, bool force)
{
    Plugin* found = find(nameOrPath);
    if (!found)
        throw Error("Plug-in, \"" + nameOrPath + "\", is not loaded.");
    Ref<Plugin>                    plugin(found);
    const std::vector<std::string> used = typesInUse(*plugin);
    if (!used.empty() && !force) {
        std::string list;
        for (const std::string& t : used)
            list += (list.empty() ? "" : ", ") + t;
        throw Error("Plug-in \"" + plugin->name + "\" cannot be unloaded because it is still in use: nodes of type " + list + ".");
    }
    makeUnknown(*plugin);
    undo::flush();
    const std::string why = call(finisher(plugin->library), *plugin);
    plugin->loaded = false;
    std::erase(state().loaded, plugin);
    if (!why.empty())
        throw Error("Plug-in \"" + plugin->name + "\" was unloaded, but its uninitializePlugin failed: " + why);
}

}  // namespace plugins
}  // namespace mirk

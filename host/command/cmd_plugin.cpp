// loadPlugin, unloadPlugin, pluginInfo.
#include "command/cmd_util.h"
#include "command/message.h"
#include "command/plugin_loader.h"
#include "command/user_command.h"
#include "graph/node.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

constexpr Flag kLoad[] = {{"qt", "quiet"}, {"n", "name", "s"}, {"a", "allPlugins"}, {"rc", "removeCallback", "s"}, {"ac", "addCallback", "s"}};

/// Nodes whose type has just come (back) stay unknown: their class was not there when they were made.
void tellOfUnknownNodes(const Plugin& plugin)
{
    Strings left;
    for (const Node* n : scene().nodes())
        if (!n->unknownType.empty())
            if (const NodeType* t = findNodeType(n->unknownType); t && t->plugin == plugin.name)
                left.push_back(nodeName(*n));
    if (!left.empty())
        message::warning("The plug-in '" + plugin.name + "' has the types of " + std::to_string(left.size()) + " unknown node" +
                         (left.size() > 1 ? "s" : "") + " ('" + left[0] + (left.size() > 1 ? "' ...)" : "')") +
                         ": save the scene and open it again to have them made anew.");
}

Value loadPlugin(Call& call)
{
    const Strings names = call.names();
    if (names.empty())
        fail("loadPlugin: a plug-in has to be given");
    Strings out;
    for (const std::string& name : names)
    {
        const Plugin& plugin = plugins::load(name, call.str("name"));
        out.push_back(plugin.name);
        tellOfUnknownNodes(plugin);
    }
    return Value(out);
}

constexpr Flag kUnload[] = {{"f", "force"}, {"rc", "removeCallback", "s"}, {"ac", "addCallback", "s"}};

Value unloadPlugin(Call& call)
{
    const Strings names = call.names();
    if (names.empty())
        fail("unloadPlugin: a plug-in has to be given");
    for (const std::string& name : names)
        plugins::unload(name, call.has("force"));
    return Value(names);
}

constexpr Flag kInfo[] = {
    {"a", "autoload", "b", kAll}, {"av", "apiVersion", "", kQuery}, {"c", "command", "", kQuery}, {"d", "data", "", kQuery}, {"dn", "dependNode", "", kQuery},
    {"dni", "dependNodeId", "", kQuery}, {"l", "loaded", "", kQuery}, {"ls", "listPlugins", "", kQuery}, {"n", "name", "", kQuery}, {"p", "path", "", kQuery}, {"r", "registered", "", kQuery},
    {"v", "version", "", kQuery}, {"vd", "vendor", "", kQuery}, {"iu", "pluginsInUse", "", kQuery}, {"uo", "unloadOk", "", kQuery}, {"u", "userNamed", "", kQuery}, {"rm", "remove", "", kAll},
    {"lp", "loadPluginPrefs", "", kAll}, {"sp", "savePluginPrefs", "", kAll}, {"ac", "activatedAddOns", "", kQuery},
};

Value pluginInfo(Call& call)
{
    if (!call.isQuery())
        return {};
    Strings list;
    if (call.has("listPlugins") || call.has("pluginsInUse"))
    {
        for (Plugin* p : plugins::loaded())
            if (call.has("listPlugins"))
                list.push_back(p->name);
            else if (!plugins::typesInUse(*p).empty())
                list.insert(list.end(), {p->name, p->version});
        return list.empty() ? Value() : Value(list);
    }
    const Strings names = call.names();
    if (names.empty())
        fail("pluginInfo: a plug-in has to be given");
    Plugin* p = plugins::find(names[0]);
    if (call.has("loaded") || call.has("registered"))
        return call.truth = true, Value(p != nullptr);
    if (call.has("autoload") || call.has("userNamed"))
        return call.truth = true, Value(false);
    if (!p)
        fail("The plug-in '" + names[0] + "' is not loaded");
    if (call.has("unloadOk"))
        return call.truth = true, Value(plugins::typesInUse(*p).empty());
    const struct { const char* flag; const std::string& text; } texts[] = {
        {"name", p->name}, {"path", p->path}, {"version", p->version}, {"vendor", p->vendor}, {"apiVersion", p->apiVersion}};
    for (const auto& t : texts)
        if (call.has(t.flag))
            return Value(t.text);
    if (call.has("dependNode"))
        for (const NodeType* t : p->types)
            list.push_back(t->name);
    if (call.has("command"))
        for (const auto& c : p->commands)
            list.push_back(c->name);
    if (call.has("data"))
        for (unsigned id : p->dataTypes)
            list.push_back(numberText(id));
    return list.empty() ? Value() : Value(list);
}

const Command kCommands[] = {
    {"loadPlugin", kLoad, loadPlugin, false},
    {"unloadPlugin", kUnload, unloadPlugin, false},
    {"pluginInfo", kInfo, pluginInfo, false},
};

}  // namespace

void registerPluginCommands() { add(kCommands); }

}  // namespace mirk::command

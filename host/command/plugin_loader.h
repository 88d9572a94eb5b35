// Loading and unloading plug-ins. A library once opened stays open: nodes and undo steps may still call its code.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "data/object.h"

namespace mirk {

class NodeType;
struct UserCommand;

/// A plug-in as its entry points see it, through MFnPlugin.
class Plugin : public Object
{
public:
    Plugin();
    ~Plugin() override;
    MFn::Type apiType() const override { return MFn::kPlugin; }

    std::string name, path;               ///< "mirk", "/folder/mirk.so"
    std::string vendor = "Unknown", version = "Unknown", apiVersion = "Any";
    void*       library = nullptr;
    bool        loaded = false;
    std::vector<NodeType*> types;         ///< registered and not deregistered, in order
    std::vector<std::unique_ptr<UserCommand>> commands;
    std::vector<unsigned>  dataTypes;
};

namespace plugins {

/// Loads a plug-in by path or by name (looked up on the plug-in path, ".so" may be left out), and by `name` if one is
/// given. A plug-in that is loaded is returned as it is. Errors name the plug-in; what it had registered until then is
/// taken back.
Plugin& load(const std::string& pathOrName, const std::string& name = "");
/// Refused while nodes of its types are in the scene. With `force` these become unknown nodes, which keep values and
/// connections. Empties the undo queue.
void    unload(const std::string& nameOrPath, bool force = false);
/// By name, with or without ".so", or by path; null if it is not loaded.
Plugin* find(const std::string& nameOrPath);
std::vector<Plugin*> loaded();            ///< in order of loading
/// Nodes in the scene whose types the plug-in registered, by type.
std::vector<std::string> typesInUse(const Plugin& plugin);

void setPath(std::vector<std::string> folders);
std::vector<std::string> path();

}  // namespace plugins
}  // namespace mirk

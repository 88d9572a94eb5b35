// The built-in node types and what a new scene holds.
#pragma once
#include <string>

#include "graph/node.h"

namespace mirk {

/// Registers all built-in node types and joins DAG, selection and scene; once, at start-up.
void registerBuiltinNodes();
/// Empties the scene and makes the default nodes: time1 and the cameras persp, top, front and side.
/// Flushes the undo queue.
void newScene();

namespace nodes {

/// A row of a family's table.
struct Row
{
    const char* name;
    const char* base;
    unsigned    id;              ///< 0 for abstract types
    MFn::Type   apiType;
    void*     (*creator)();      ///< null: the type is abstract
    MStatus   (*initialize)();   ///< null: no attributes of its own
    const char* prefix = "";     ///< of new nodes' names, if it is not the type's name
    const char* classification = "";
    Node*     (*make)(NodeType*, std::string) = nullptr;
};

enum class Role { plain, dag, shape };

/// Registers one row; `prepare` may set what the row has no column for before attributes are added.
NodeType* registerRow(const Row& row, Role role = Role::plain, void (*prepare)(NodeType&) = nullptr);

// the families, in the order they need each other
void registerDagTypes();
void registerShapeTypes();
void registerUtilityTypes();
void registerMathTypes();
void registerPluginKinds();
void registerPolygonMakers();
void registerNurbsMakers();

/// The type that a class of a plug-in kind is built on; null for kinds that cannot be registered.
NodeType* baseOfKind(MPxNode::Type kind);

}  // namespace nodes
}  // namespace mirk

// How operations reach polygon objects: as a node between the history of a shape and the shape or, where there is no
// history and none is wanted, as a change of the mesh that is stored.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "command/cmd_util.h"
#include "mesh/mesh.h"

namespace mirk::command {

struct PolyTarget
{
    Node*                  shape;
    Ref<ComponentListData> components;   ///< null: the whole mesh
};

/// The meshes a command works on, each once, with the components named of each; an error if there are none.
std::vector<PolyTarget> polyTargets(const Call& call);

/// Sets the attributes of an operation's node; its input is connected, or holds the mesh, by then.
using SetUp = std::function<void(Node&)>;

/// Puts a new node of a type derived from polyModifier in front of the shape. Without history the stored mesh moves into
/// an intermediate shape named "...Orig"; offsets of the shape's points move in front of the node (polyTweak).
Node& insertModifier(const PolyTarget& target, const std::string& nodeType, const std::string& name, const SetUp& setUp = {});
/// insertModifier if the shape has history or `history` asks for it; else the stored mesh changes and the result is null.
Node* applyModifier(const PolyTarget& target, const std::string& nodeType, const std::string& name, bool history, const SetUp& setUp = {});
/// As an operation's node would change a mesh: of a node that is in no scene afterwards.
Ref<MeshData> modified(Ref<MeshData> mesh, const PolyTarget& target, const std::string& nodeType, const SetUp& setUp = {});

/// A shape's mesh for an operation's input: the plug that gives it. See insertModifier for what is made for it.
Cell& historyOf(Node& shape);

}  // namespace mirk::command

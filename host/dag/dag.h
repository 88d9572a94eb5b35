// The DAG: transforms and shapes, instances, paths, world matrices.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "data/data.h"
#include "graph/node.h"

namespace mirk {

/// The DAG side of a node. The world node is the only one without a parent.
class Dag
{
public:
    explicit Dag(Node& node) : node(node) {}
    Node&              node;
    std::vector<Node*> parents;    ///< several for an instance, in order of instancing
    std::vector<Node*> children;   ///< in order of the outliner
};

/// A path from below the world to a node. Invalid when empty or when a node has left the scene.
struct Path
{
    std::vector<Ref<Node>> nodes;   ///< from the top transform to the node itself

    Node* node() const { return nodes.empty() ? nullptr : nodes.back().get(); }
    bool  valid() const;
    bool  operator==(const Path& o) const { return nodes == o.nodes; }
};

namespace dag {

Node& world();

/// Makes a DAG node under a parent (null: the world). A shape without a given transform gets one of its own, named
/// as the host names it (pCube1 / pCubeShape1). Returns the node asked for. As the primitive edits: undoable.
Node* createNode(NodeType* type, const std::string& name = "", Node* parent = nullptr);
void  reparent(Node& child, Node* oldParent, Node& newParent);   ///< one instance; refused for cycles and name clashes (renamed)
void  addInstance(Node& child, Node& newParent);
void  removeInstance(Node& child, Node& parent);
void  reorder(Node& child, Node& parent, size_t place);

/// Takes any node out of the scene; with a DAG node goes all that stands below it and nowhere else.
void  deleteNode(Node& node);
/// Gives a node a name. In the DAG a name has to be unique among siblings only; a taken one gets a number.
void  renameNode(Node& node, const std::string& name);

std::vector<Path> allPaths(Node& node);
Path  firstPath(Node& node);
/// All DAG nodes below, depth first, in outliner order; instances once a path.
void  descend(const Path& from, const std::function<bool(const Path&)>& visit);   ///< false: do not go below
/// By full or partial name ("|a|b", "b", "a|b"); empty if there is none, all that match otherwise.
std::vector<Path> find(const std::string& name);
std::string fullName(const Path& path);        ///< "|a|b"
std::string partialName(const Path& path);     ///< shortest that is unique
/// Shortest unique name of any node: what commands print.
std::string shortestName(Node& node);

/// World matrix down to and including / without the last node. Row vectors; evaluates.
void  inclusiveMatrix(const Path& path, double out[4][4]);
void  exclusiveMatrix(const Path& path, double out[4][4]);
unsigned instanceNumber(const Path& path);
bool  isInstanced(Node& node);                 ///< stands on more than one path
/// The same path after the scene has changed: a chain that broke is found again from its end; empty if the node is gone.
Path  refreshed(const Path& path);
/// Called when nodes have moved in the DAG, so that what depends on their place gets dirty. Set by the node types.
extern void (*onMoved)(Node& node);
/// Forgets the world's children; for a new scene, when all nodes are gone.
void  clear();

}  // namespace dag

/// What a name given to a command stands for: a node (with its path in the DAG), a plug, or components of a shape.
struct Item
{
    Ref<Node>      node;
    Path           path;         ///< empty outside the DAG
    Cell*          plug = nullptr;
    Ref<Component> component;    ///< on the shape at `path`
    std::string    attribute;    ///< text behind the dot for components as given ("vtx[0:3]")

    bool operator==(const Item& o) const { return node == o.node && path == o.path && plug == o.plug && component == o.component; }
};

namespace names {

/// Resolves a name with wildcards ("pCube*", "*.tx", "pCube1.vtx[0:3]", "|a|b.cv[*][0]"). Empty if nothing matches.
std::vector<Item> resolve(const std::string& text);
/// Exactly one, or command::Error: "No object matches name: x" / "More than one object matches name: x".
Item one(const std::string& text);
Node& node(const std::string& text);
Cell& plug(const std::string& text, bool create = true);
/// The item as commands print it; of components the first run of indices only.
std::string text(const Item& item);
/// Components give one text for each run of indices ("a.vtx[0:3]", "a.vtx[7]").
std::vector<std::string> texts(const Item& item);
/// How many components of a type a shape has, in each direction; false if the shape has none of the type.
/// Set by the node types.
extern bool (*componentExtent)(Node& shape, MFn::Type type, int extent[3]);
/// True if the text has shell-like wildcards; whether a name matches them ('*' and '?').
bool isPattern(const std::string& text);
bool matches(const std::string& pattern, const std::string& name);

}  // namespace names

namespace selection {
const std::vector<Item>& get();
void set(std::vector<Item> items);      ///< undoable, as the next ones
void add(const Item& item);
void remove(const Item& item);
}  // namespace selection

}  // namespace mirk

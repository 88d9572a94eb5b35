// Primitive edits of the graph: each checks, does its work, spreads dirt and records its inverse. Everything that
// changes a scene goes through these. Errors: command::Error with one clear message, and nothing is changed.
#pragma once
#include <string>

#include "graph/node.h"

namespace mirk::edit {

/// Makes a node of a type and puts it into the scene. `name` may end in '#' for the next free number; a name that is
/// taken gets a number. For DAG types use dag::createNode, which places it.
Node* createNode(NodeType* type, const std::string& name = "");
/// Takes the node out of the scene: connections first. Default and locked nodes are refused.
void  deleteNode(Node& node);
void  renameNode(Node& node, const std::string& name);

/// Connects; an existing source is refused unless `force`. Kinds that do not fit and plug cycles are refused.
void connect(Cell& source, Cell& target, bool force = false);
/// Throws what connect would throw.
void checkConnect(Cell& source, Cell& target, bool force = false);
/// Breaks one connection; applies the target's disconnect behaviour.
void disconnect(Cell& source, Cell& target);
/// Why a connection is not possible; empty if it is.
std::string whyNot(const Attribute& source, const Attribute& target);
/// True if `out` depends on `in`, both of one node: by the node's own word, else by what its type declares.
bool dependsOn(Cell& out, Cell& in);
/// True if the cell is driven by a connection that does not let it be set by hand.
bool isDriven(Cell& cell);
/// True if dirt on `target` would reach `source`.
bool wouldCycle(Cell& source, Cell& target);

/// Runs `write`, which changes values of the cell or below, as one undoable edit that spreads dirt.
/// Locked cells are refused unless `evenLocked`.
template <class F> void change(Cell& cell, F&& write);
void beforeChange(Cell& cell);      ///< checks locks, records the old value
void afterChange(Cell& cell);       ///< marks clean and set, spreads
void setNumber(Cell& cell, double value, int component = 0);
void setData(Cell& cell, Ref<Data> value);

Cell& addElement(Cell& multi, int index);   ///< the element, made if missing; undo takes it out again
void removeElement(Cell& element);  ///< with its connections
/// What a data block does to an element that gets no value: it goes, or holds its default if something is connected.
void dropElement(Cell& element);
void addDynamic(Node& node, Ref<Attribute> top);
void deleteDynamic(Node& node, Attribute& top);
void setFlag(Cell& cell, Cell::Flag flag, bool on);   ///< lock, keyable and channel-box overrides
void setAlias(Node& node, const std::string& plugPath, const std::string& alias);   ///< "" removes

/// The next free name for a base ("pCube#", "pCube1", "node").
std::string freeName(const std::string& wanted, Node* besides = nullptr);
bool validName(const std::string& name);

template <class F>
void change(Cell& cell, F&& write)
{
    beforeChange(cell);
    write();
    afterChange(cell);
}

}  // namespace mirk::edit

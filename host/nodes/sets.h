// Object sets: who is in them. A whole object joins by its instObjGroups or its message, components by an object group of
// their shape that a groupId node gives a number; a plug joins by itself.
#pragma once
#include <vector>

#include "dag/dag.h"

namespace mirk::sets {

bool isSet(const Node& node);

/// What the set holds, DAG members first, in the order of its attributes. Components come as one item a type and shape.
std::vector<Item> members(Node& set);
/// Members of sets among them replaced by what those hold, to any depth.
std::vector<Item> flattened(Node& set);

/// True if the item is a member: of components all of them, be it as part of a whole shape.
bool contains(Node& set, const Item& item);
/// True if the item or some of its components are members.
bool touches(Node& set, const Item& item);

/// Adds an item; components join those of their shape. Errors: a kind that the set is restricted against, the set itself,
/// and what belongs to another set of the same partition, which `force` takes out of there. Undoable.
void add(Node& set, const Item& item, bool force = false);
/// Takes an item out, of components those named; what is no member is left alone. Undoable.
void remove(Node& set, const Item& item);
void clear(Node& set);

/// All sets that hold the item, in order of creation.
std::vector<Node*> setsOf(const Item& item);

// Lists of items, components counted element by element.
std::vector<Item> intersection(const std::vector<Item>& a, const std::vector<Item>& b);
std::vector<Item> difference(const std::vector<Item>& a, const std::vector<Item>& b);

/// The set is from now on in the partition. An error if it has a member in common with another set there.
void joinPartition(Node& set, Node& partition);
std::vector<Node*> setsIn(Node& partition);

}  // namespace mirk::sets

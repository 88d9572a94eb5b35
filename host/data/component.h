// Work on components: sets of indices that are kept ascending and unique, so that elements come back in order
// whatever the order they were added in.
#pragma once
#include "data/data.h"

namespace mirk {

/// Number of indices an element of the component type has (1 to 3), 0 if it is no component type.
int componentDimensions(MFn::Type type);
/// An empty component; null if the type is none of a component.
Ref<Component> makeComponent(MFn::Type type);
Ref<Component> copyComponent(const Component& component);

/// Adds `count` elements of `dimensions` numbers each; they are sorted once.
void addElements(Component& component, const int* elements, size_t count);
/// Takes elements out. A complete component is made explicit first, as far as its count is known.
void removeElements(Component& component, const int* elements, size_t count);
/// Elements as they stand, or those a complete component stands for by its own count.
std::vector<int> allElements(const Component& component);
/// Elements held, or the count a complete component was given.
size_t elementCount(const Component& component);
/// True if every element of `part` is in `whole`; components of different types have nothing in common.
bool   containsAll(const Component& whole, const Component& part);
bool   sameElements(const Component& a, const Component& b);

/// Merges into the element of the same type, or appends a copy of its own.
void mergeInto(ComponentListData& list, const Component& component);
/// Takes the elements out of all list elements of the same type; those that become empty go.
void removeFrom(ComponentListData& list, const Component& component);

}  // namespace mirk

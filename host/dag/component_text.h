// Components as text: "vtx[0:3]", "f[*]", "cv[1][0:2]".
#pragma once
#include <string>
#include <vector>

#include "data/data.h"

namespace mirk {

enum class ComponentOf { any, mesh, curve, surface, lattice };

/// True if the text begins with a component name followed by a bracket ("vtx[", "f[" ...).
bool isComponentText(const std::string& text);

/// Reads a component. `[*]`, `[]` and a missing bracket mean all of that direction. An open range ("[3:]") and `[*]` in
/// one of several directions end at `extent`, which also cuts what lies outside; null: indices stay as they are and
/// a direction that is open but not complete is refused. `of` decides what "cv" is; `any` goes by the brackets.
/// Null and a reason for text that is no component.
Ref<Component> parseComponent(const std::string& text, ComponentOf of, const int* extent, std::string* why = nullptr);

/// The component type a text names; MFn::kInvalid if none.
MFn::Type componentTypeOf(const std::string& text, ComponentOf of);

/// One text for each run of consecutive indices, in order; a complete component gives "vtx[*]". With `extent` a component
/// that holds all of them gives its full range ("vtx[0:7]").
std::vector<std::string> componentTexts(const Component& component, const int* extent = nullptr);

}  // namespace mirk

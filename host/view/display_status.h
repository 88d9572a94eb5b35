// How the viewport shows an object: by selection, templates and display overrides.
#pragma once
#include "dag/dag.h"
#include "view/draw_list.h"

namespace mirk::view {

/// As MHWRender::DisplayStatus.
int displayStatus(const Path& path);

/// The colour of an object's lines: that of its status, or while it is dormant the one it asks for.
Color wireframeColor(const Path& path);

/// False if a switch on this node alone hides it and what is below.
bool showsItself(Node& node);

/// An attribute as a number, after evaluation; `otherwise` if the node has none of that name.
double attributeValue(Node& node, const char* name, double otherwise = 0);

}  // namespace mirk::view

// What the key commands share: which attributes and curves they work on, which keys of a curve, tangents by name.
#pragma once
#include <vector>

#include "anim/curve_node.h"
#include "command/cmd_util.h"

namespace mirk::command {

/// An attribute that can have keys, and the curve that drives it; for a curve that was named itself no attribute.
struct KeyTarget
{
    Cell* plug = nullptr;
    Node* curve = nullptr;
};

/// The objects of a call, or what is selected. A plug stands for itself or its parts, a curve for itself, a node for
/// its attributes named with -attribute or, without that, all its keyable ones, those of its shapes too.
/// With `animated` only what has a curve.
std::vector<KeyTarget> keyTargets(const Call& call, bool animated);
/// The curves among them, each once.
std::vector<Node*> keyCurves(const Call& call);

/// The keys a call speaks of: those in one of its -time (or -float) ranges, or of its -index ranges; all without these.
/// "a:b" is a range, "a:" and ":b" are open, ":" is everything, a number is itself. Ascending.
std::vector<size_t> chosenKeys(const Call& call, Node& curve);

anim::Tangent tangentNamed(const std::string& name);   ///< errors for unknown ones
std::string   tangentName(anim::Tangent kind);

/// Values of a curve in the user's units and back; times of its input likewise.
double shownValue(Node& curve, double value);
double innerValue(Node& curve, double shown);
double shownTime(Node& curve, double time);

}  // namespace mirk::command

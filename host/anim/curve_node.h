// Animation curves as nodes: their keys in attributes, and the way from a plug to the curve that drives it.
#pragma once
#include "anim/curve.h"
#include "graph/node.h"

namespace mirk::anim {

/// In the order of MFnAnimCurve::AnimCurveType: from time or a plain number to an angle, a length, a time, a number.
enum class CurveKind : int { kTA, kTL, kTT, kTU, kUA, kUL, kUT, kUU };

constexpr bool   fromTime(CurveKind kind) { return kind <= CurveKind::kTU; }
/// Times closer than this are the same key: half a tick.
constexpr double tolerance(CurveKind kind) { return fromTime(kind) ? 0.5 / 141120000.0 : 0; }

bool      isCurve(const Node& node);
CurveKind kindOf(const Node& curve);
/// The kind that animates an attribute over time or over a number.
CurveKind kindFor(const Attribute& attribute, bool overTime = true);

/// The curve as the node's attributes say, tangents solved. Valid until they change.
const Curve& curveOf(Node& curve);
/// Writes keys, weighting and infinities; only what differs. Undoable.
void store(Node& curve, const Curve& keys);

/// A new curve; time curves are connected to the scene's time.
Node* createCurve(CurveKind kind, const std::string& name = "");
/// The curve that drives a plug, a unit conversion between them or not; null if there is none.
Node* curveDriving(const Cell& plug);
/// A new curve that drives the plug, named after it. Undoable. Throws what a connection would.
Node* animate(Cell& plug);

Cell& inputOf(Node& curve);
Cell& outputOf(Node& curve);

/// The kinds that new keys get: those that `keyTangent -global` sets.
struct DefaultTangents { Tangent in = Tangent::kAuto, out = Tangent::kAuto; };
DefaultTangents& defaultTangents();

/// Sets the value at a time: changes the key there, or makes one with the given kinds.
/// @return index of the key
size_t setKey(Curve& curve, double time, double value, double tolerance, DefaultTangents kinds);
/// A new key that leaves the curve's shape as it is; nothing if there is a key already.
void   insertKey(Curve& curve, double time, double tolerance);

void registerCurveTypes();

}  // namespace mirk::anim

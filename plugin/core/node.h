// What every compute does before and beside its own work: the node-state gate, plug and connection tests, and messages
// that carry the node's name.
#pragma once
#include <initializer_list>

#include <maya/MDataBlock.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>

/// Values of MPxNode::state.
enum NodeState : short { kNormal = 0, kHasNoEffect = 1, kBlocking = 2 };

/// The node's state; the value that is set, nothing is evaluated.
short nodeState(MDataBlock& block);

/// True if the plug is one of these attributes.
bool isAnyOf(const MPlug& plug, std::initializer_list<const MObject*> attributes);

/// The node's name as messages give it: the plug's name up to the first full stop.
MString nodeName(const MPlug& plug);

/// Shows a warning that begins with the node's name. It never stops an evaluation.
void warn(const MPlug& plug, const MString& text);

#pragma once
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

class MAngle;
class MDistance;
class MPlug;
class MString;
class MTime;
class MTypeId;

namespace mirk { struct ModifierOps; class Node; class NodeType; }

/// Collects edits of the graph, does them at doIt() and takes them back at undoIt(). Nodes are made at once, but stand
/// in the scene only after doIt().
class MDGModifier
{
public:
    MDGModifier();
    virtual ~MDGModifier();
    MDGModifier(const MDGModifier&) = delete;
    MDGModifier& operator=(const MDGModifier&) = delete;

    MObject createNode(const MTypeId& typeId, MStatus* ReturnStatus = nullptr);
    MObject createNode(const MString& type, MStatus* ReturnStatus = nullptr);
    MStatus deleteNode(const MObject& node);
    MStatus renameNode(const MObject& node, const MString& newName);
    MStatus setNodeLockState(const MObject& node, bool newState);

    MStatus connect(const MPlug& source, const MPlug& dest);
    MStatus connect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode, const MObject& destAttr);
    MStatus disconnect(const MPlug& source, const MPlug& dest);
    MStatus disconnect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode, const MObject& destAttr);

    MStatus addAttribute(const MObject& node, const MObject& attribute);
    MStatus removeAttribute(const MObject& node, const MObject& attribute);
    MStatus removeMultiInstance(const MPlug& plug, bool breakConnections);

    MStatus newPlugValue(const MPlug& plug, const MObject& value);
    MStatus newPlugValueBool(const MPlug& plug, bool value);
    MStatus newPlugValueChar(const MPlug& plug, char value);
    MStatus newPlugValueShort(const MPlug& plug, short value);
    MStatus newPlugValueInt(const MPlug& plug, int value);
    MStatus newPlugValueInt64(const MPlug& plug, MInt64 value);
    MStatus newPlugValueFloat(const MPlug& plug, float value);
    MStatus newPlugValueDouble(const MPlug& plug, double value);
    MStatus newPlugValueMAngle(const MPlug& plug, const MAngle& value);
    MStatus newPlugValueMDistance(const MPlug& plug, const MDistance& value);
    MStatus newPlugValueMTime(const MPlug& plug, const MTime& value);
    MStatus newPlugValueString(const MPlug& plug, const MString& value);

    MStatus commandToExecute(const MString& command);
    MStatus pythonCommandToExecute(const MString& command);

    /// Does what was added since the last doIt(), or again what undoIt() took back. What fails is left out and reported
    /// by the status; the rest is done.
    MStatus doIt();
    MStatus undoIt();

protected:
    mirk::ModifierOps* ops_;
};

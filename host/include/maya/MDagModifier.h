#pragma once
#include <maya/MDGModifier.h>

/// Edits of the DAG beside those of the graph.
class MDagModifier : public MDGModifier
{
public:
    MDagModifier() = default;

    /// A node below `parent`, or below the world. A shape without parent gets a transform, which is then returned.
    MObject createNode(const MTypeId& typeId, const MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MObject createNode(const MString& type, const MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    /// Moves the node, by its first path, below another parent or the world.
    MStatus reparentNode(const MObject& node, const MObject& newParent = MObject::kNullObj);
};

// Sets of components as the host's data: component lists, the marker that stands for an empty one, and object groups.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFn.h>
#include <maya/MFnComponentListData.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include "volumes/componentMarks.h"

/// What the indices of a selection mean: a kind of component and how many there are. CVs of a surface are counted with V
/// running fastest, `columns` in a row.
struct ComponentSpace
{
    ComponentKind kind = ComponentKind::kVertex;
    int           count = 0;
    int           columns = 1;
};

MFn::Type componentType(ComponentKind kind);
/// False for a type that is none of ours.
bool      kindOf(MFn::Type type, ComponentKind& kind);

/// A component of the marked ones.
MObject makeComponent(const ComponentSpace& space, const Marks& marks);
/// What stands for "nothing selected" where a list must have an element: a component with one index far outside.
MObject emptyMarker(const ComponentSpace& space);
bool    isEmptyComponent(const MObject& component);
/// The elements of a component of the space's kind; those outside, and components of another kind, mark nothing.
Marks   marksOf(const MObject& component, const ComponentSpace& space);
/// The marks of all components of a list.
Marks   marksOf(const MFnComponentListData& list, const ComponentSpace& space);
/// The component itself, or the indices that a complete one of the space's kind stands for: what counts itself by the
/// geometry it meets cannot be taken apart.
MObject counted(const MObject& component, const ComponentSpace& space);

/// The first component of a list; null if it has none or is no list.
MObject firstOf(const MObject& list);
/// The component list at an attribute as a list: the value of its source if it has one, else the one in the block.
/// Indices and particles come as mesh vertices. Null if there is nothing of these kinds.
MObject readComponents(MDataBlock& block, const MPlug& plug);
/// The same for data that was read already.
MObject asVertexList(const MObject& data);

/// Adds every component of the second list to the first.
void mergeCompLists(MFnComponentListData& to, const MObject& from);

/// Makes an object group of the geometry hold this component and nothing else. Nothing for data without groups.
void writeObjectGroup(MObject geometry, unsigned int id, MObject component);

// Curves and surfaces have no normals or UVs of their own: they borrow those of a mesh that the host's own nodes make.
#pragma once
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

/// A ribbon along the curve at the plug: a new mesh data object with two vertices for each control vertex, in sequence.
/// Null if the host could not make one. The host nodes that make it live only during the call, which therefore belongs
/// to the main thread.
MObject tessellatedCurve(const MPlug& curve);

/// The same for a surface: one mesh vertex for each control vertex, in the order of the geometry iterator.
MObject tessellatedSurface(const MPlug& surface);

/// The pieces of the above, for a node whose temporary nodes are others. Nothing is undoable or shown.
namespace tessellation {

/// Makes a node without selecting it and gives its name.
MString createNode(const char* type);
/// `assignment`: the attribute with a leading full stop, a blank and the value.
void set(const MString& node, const char* assignment);
void connect(const MString& fromPlug, const MString& toPlug);
/// A tessellator set to one vertex a control vertex, not connected yet.
MString createTessellator();
/// A new mesh data object with the tessellator's result; null if there is none.
MObject copyOfPolygon(const MString& tessellator);
void deleteNodes(const MString& names);

} // namespace tessellation

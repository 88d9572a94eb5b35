// Curves and surfaces have no normals or UVs of their own: they borrow those of a mesh that the host's own nodes make.
#pragma once
#include <maya/MObject.h>
#include <maya/MPlug.h>

/// A ribbon along the curve at the plug: a new mesh data object with two vertices for each control vertex, in sequence.
/// Null if the host could not make one. The host nodes that make it live only during the call, which therefore belongs
/// to the main thread.
MObject tessellatedCurve(const MPlug& curve);

/// The same for a surface: one mesh vertex for each control vertex, in the order of the geometry iterator.
MObject tessellatedSurface(const MPlug& surface);

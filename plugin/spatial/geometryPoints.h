// Points of any geometry as plain arrays, and the points that a component selects.
#pragma once
#include <vector>

#include <maya/MDataHandle.h>
#include <maya/MObject.h>

/// Points of a mesh, curve or surface in world space, or of a vector array: three values each. Empty for anything else.
std::vector<double> worldPoints(MDataHandle& geometry);

/// The same way back, into a copy that the node owns; a vector array is replaced by a new one.
void setWorldPoints(MDataHandle& geometry, const std::vector<double>& points);

/// Indices of a single-indexed component; of a complete one 0 to pointCount - 1. False if it is of another kind.
bool appendIndices(const MObject& component, int pointCount, std::vector<int>& indices);

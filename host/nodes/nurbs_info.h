// What curve and surface shapes tell of their geometry: form, degree, spans and the range of the parameter.
#pragma once
#include <maya/MObject.h>

#include "nodes/geometry_shape.h"

namespace mirk::nodes {

/// Add the outputs to the type that is being built; `inputs` affect them.
void addCurveInfo(std::initializer_list<MObject> inputs);
void addSurfaceInfo(std::initializer_list<MObject> inputs);
/// False if the cell is none of them.
bool computeNurbsInfo(GeometryShape& shape, Cell& cell);

}  // namespace mirk::nodes

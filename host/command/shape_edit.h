// Geometry of shapes as commands change it: undoable, in the shape's stored geometry or, where history makes the
// geometry, as offsets on top of it.
#pragma once
#include <functional>

#include <maya/MPoint.h>

#include "command/cmd_util.h"
#include "mesh/mesh.h"

namespace mirk::command {

/// The cell of a geometry shape that holds what is not computed: its input if that was set, else its stored geometry.
/// Null if `shape` is no mesh, curve or surface.
Cell* geometryCell(Node& shape);
/// True if the shape's input is connected.
bool  hasHistory(Node& shape);
/// The mesh of a shape, or of the shape below a transform; an error that names the node if there is none.
Node& meshShapeOf(const Item& item);
Ref<MeshData> readMesh(Node& shape);
/// Changes the mesh of a shape without history as one undoable edit.
void  editMesh(Node& shape, const std::function<void(MeshBody&)>& change);
/// Replaces the geometry of a shape without history.
void  setGeometry(Node& shape, Ref<Data> data);

/// Points in object space (CVs divided by their weights, surface CVs with V fastest).
std::vector<MPoint> shapePoints(Node& shape);
void setShapePoints(Node& shape, const std::vector<int>& indices, const std::vector<MPoint>& points);
/// Indices into shapePoints that a component stands for: of faces and edges their vertices.
std::vector<int> pointIndices(Node& shape, const Component& component);
/// Elements of a mesh component, counted on the mesh and cut to it: vertices, edges or faces.
std::vector<int> elementsOf(const MeshBody& mesh, const Component& component);

}  // namespace mirk::command

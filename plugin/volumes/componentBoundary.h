// Components at the border of a geometry. No host header.
#pragma once
#include "volumes/componentMarks.h"

/// Edges of fewer than two faces, the vertices of such edges and vertices without edges, faces with such an edge.
Marks boundaryEdges(const MeshTables& mesh);
Marks boundaryVertices(const MeshTables& mesh);
Marks boundaryFaces(const MeshTables& mesh);
/// The outer rows and columns of a grid, columns running fastest.
Marks boundaryGrid(int rows, int columns);
/// The two ends of a row.
Marks boundaryRow(int count);

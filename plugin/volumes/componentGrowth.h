// Selections that grow from seeds, ring by ring. No host header.
#pragma once
#include "volumes/componentMarks.h"

/// The marks and what is at most `depth` steps away from them; nothing for a depth of 0 and less. Vertices step over
/// edges, edges over their vertices, faces over their edges, the points of a row to the next ones.
Marks grownVertices(const MeshTables& mesh, const Marks& seeds, int depth);
Marks grownEdges(const MeshTables& mesh, const Marks& seeds, int depth);
Marks grownFaces(const MeshTables& mesh, const Marks& seeds, int depth);
Marks grownRow(const Marks& seeds, int depth);

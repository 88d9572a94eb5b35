// The flat tables of a mesh, read from the host in bulk.
#pragma once
#include <maya/MObject.h>
#include <maya/MString.h>

#include "volumes/componentMarks.h"

/// Vertices and faces of a mesh; nothing for an object that is no mesh.
MeshTables readFaces(const MObject& mesh);
/// Fills the edges of tables that have none yet.
void addEdges(const MObject& mesh, MeshTables& tables);
/// Fills the UVs of a set, those of the current one without a name.
void addUVs(const MObject& mesh, const MString& uvSet, MeshTables& tables);

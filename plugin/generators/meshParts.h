// The arrays of one mesh, as nodes that merge and cut meshes pass them on.
#pragma once
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MString.h>

/// Points in object space. What is not asked for, or not there, is empty.
struct MeshParts
{
    MFloatPointArray points;
    MIntArray        counts, connects;   ///< corners of each face; the vertex of each corner
    MColorArray      colors;             ///< current colour set, one a corner
    MIntArray        smooth;             ///< one an edge, 0 for hard ones
    MFloatArray      u, v;               ///< current UV set
    MIntArray        uvCounts, uvIds;    ///< one a face: all of its corners or 0; ids of those that have some
};

struct WantedParts
{
    bool colors = false, smooth = false, uvs = false;
};

/// Nothing but empty arrays if the object is no mesh.
MeshParts readParts(const MObject& mesh, const WantedParts& wanted);

/// New mesh data of these points, faces, UVs and edges; colours are left to the caller. Empty if there are no points;
/// null if the arrays do not fit together.
MObject meshFrom(const MeshParts& parts);

/// Sets each edge of a mesh, in edge order. Edges past the end of the array stay as they are.
void setSmooth(const MObject& mesh, const MIntArray& smooth);

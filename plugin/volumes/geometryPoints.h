// The points that a transfer works on: of a mesh, a curve, a surface or an array of positions, in world space, and the
// subset of them.
#pragma once
#include <vector>

#include <maya/MColorArray.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnData.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>

#include "core/arrays.h"
#include "volumes/transfer.h"

/// What is asked for beside the points.
struct GeometryWishes
{
    bool    normals = false, colors = false;
    MString colorSet;               ///< empty: the current one
};

/// Points read from a geometry. `input` looks into the other members and lives with them.
struct GeometryPoints
{
    MFnData::Type       kind = MFnData::kInvalid;   ///< of the four kinds; else there is nothing to work on
    TransferInput       input;
    MObject             mesh;                       ///< keeps the points of a mesh alive
    ArrayView           vectors;
    MPointArray         controlPoints;
    std::vector<double> normals;
    MColorArray         colors;

    GeometryPoints() = default;
    GeometryPoints(const GeometryPoints&) = delete;
    GeometryPoints& operator=(const GeometryPoints&) = delete;
};

/// Reads the geometry at the plug. Curves and surfaces are tessellated for normals and colours. A surface whose
/// tessellation does not fit gives a warning and has nothing to work on.
void readGeometry(MDataBlock& block, const MPlug& inGeometry, const GeometryWishes& wishes, GeometryPoints& out);

/// The attributes of a subset.
struct SubsetAttributes
{
    const MObject &mode, &components, &groupId;
};

/// One entry a point, not 0 for selected ones; empty if all points are.
std::vector<char> selectedPoints(MDataBlock& block, const MPlug& inGeometry, const GeometryPoints& points,
                                 const SubsetAttributes& subset);

/// The box around the points, or around the selected ones.
volume::Box boxOf(const TransferInput& points, const std::vector<char>& selected);

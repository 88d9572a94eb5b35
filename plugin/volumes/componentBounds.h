// Components inside bounding objects. No host header.
#pragma once
#include <vector>

#include "volumes/componentMarks.h"
#include "volumes/volume.h"

/// Bounding objects in order. The spheres of all clouds stand together: they are tested where the first bound is a cloud,
/// and nowhere else.
struct ComponentBounds
{
    std::vector<volume::Volume> volumes;
    std::vector<volume::Vec>    centers;
    std::vector<double>         radii;
};

/// Points, three numbers each, that are inside a sphere, cube or capsule.
Marks pointsInside(const std::vector<double>& xyz, const volume::Volume& volume);
/// Points that at least one of the spheres reaches.
Marks pointsInside(const std::vector<double>& xyz, const std::vector<volume::Vec>& centers,
                   const std::vector<double>& radii);

/// The components of a kind, `count` of them, that a bound takes in: with all of their points if it is `contained`, else
/// with one at least. A cloud does not look at `contained`. `xyz` are the points of the geometry; `mesh` has the tables
/// that the kind asks for.
Marks componentsInside(const MeshTables& mesh, ComponentKind kind, int count, const std::vector<double>& xyz,
                       const ComponentBounds& bounds);

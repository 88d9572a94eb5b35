// The points of a bounding object's cloud, gathered from a mesh, a curve, a surface and particles.
#pragma once
#include <vector>

#include <maya/MDataBlock.h>
#include <maya/MObject.h>

struct CloudSourceAttributes;

/// The cloud under construction: 4, 3, 1, 1 and 4 numbers a point.
struct CloudPoints
{
    std::vector<double> positions, normals, radii, weights, rgba;
};

/// What points get whose source does not say.
struct CloudDefaults
{
    double radius = 1.0, weight = 1.0;
    double rgba[4] = {1.0, 1.0, 1.0, 1.0};
    double velocity[3] = {0.0, 1.0, 0.0};
};

/// Each appends the points of one source: nothing if its input is not connected, switched off or has no points. Curves and
/// surfaces are tessellated while the node computes, for their normals.
void gatherMesh(MDataBlock&, const MObject& node, const CloudSourceAttributes&, const CloudDefaults&, CloudPoints&);
void gatherCurve(MDataBlock&, const MObject& node, const CloudSourceAttributes&, const CloudDefaults&, CloudPoints&);
void gatherSurface(MDataBlock&, const MObject& node, const CloudSourceAttributes&, const CloudDefaults&, CloudPoints&);
void gatherParticles(MDataBlock&, const MObject& node, const CloudSourceAttributes&, const CloudDefaults&, CloudPoints&);

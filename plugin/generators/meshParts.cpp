#include "generators/meshParts.h"

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>

#include <algorithm>

namespace {

/// Only whole faces can be assigned: the corners of a face that has UVs in part are left out.
void dropPartialFaces(MeshParts& parts)
{
    unsigned int from = 0, to = 0;
    for (unsigned int f = 0; f < parts.uvCounts.length(); ++f) {
        const int count = parts.uvCounts[f];
        if (count == parts.counts[f])
            for (int k = 0; k < count; ++k)
                parts.uvIds[to++] = parts.uvIds[from + unsigned(k)];
        else
            parts.uvCounts[f] = 0;
        from += unsigned(count);
    }
    parts.uvIds.setLength(to);
}

} // namespace

MeshParts readParts(const MObject& mesh, const WantedParts& wanted)
{
    MeshParts parts;
    MStatus   status;
    MFnMesh   fn(mesh, &status);
    if (!status || fn.numVertices() == 0)
        return parts;
    fn.getPoints(parts.points);
    fn.getVertices(parts.counts, parts.connects);
    if (wanted.colors && fn.numColorSets() != 0)
        fn.getFaceVertexColors(parts.colors);
    if (wanted.smooth) {
        parts.smooth.setLength(static_cast<unsigned int>(fn.numEdges()));
        for (unsigned int e = 0; e < parts.smooth.length(); ++e)
            parts.smooth[e] = fn.isEdgeSmooth(int(e));
    }
    if (wanted.uvs && fn.numUVs() != 0) {
        const MString set = fn.currentUVSetName();
        fn.getUVs(parts.u, parts.v, &set);
        fn.getAssignedUVs(parts.uvCounts, parts.uvIds, &set);
        dropPartialFaces(parts);
    }
    return parts;
}

MObject meshFrom(const MeshParts& parts)
{
    MFnMeshData data;
    MFnMesh     fn;
    MObject     owner = data.create();
    MStatus     status;
    const auto  points = static_cast<int>(parts.points.length()), faces = static_cast<int>(parts.counts.length());
    if (parts.u.length() > 0) {
        fn.create(points, faces, parts.points, parts.counts, parts.connects, parts.u, parts.v, owner, &status);
        if (status)
            status = fn.assignUVs(parts.uvCounts, parts.uvIds);
    } else {
        fn.create(points, faces, parts.points, parts.counts, parts.connects, owner, &status);
    }
    if (!status)
        return MObject::kNullObj;
    if (parts.smooth.length() > 0)
        setSmooth(owner, parts.smooth);
    return owner;
}

void setSmooth(const MObject& mesh, const MIntArray& smooth)
{
    MFnMesh   fn(mesh);
    MIntArray edges(std::min(smooth.length(), static_cast<unsigned int>(fn.numEdges())));
    for (unsigned int e = 0; e < edges.length(); ++e)
        edges[e] = int(e);
    if (edges.length() == smooth.length()) {
        fn.setEdgeSmoothings(edges, smooth);
    } else {
        for (unsigned int e = 0; e < edges.length(); ++e)
            fn.setEdgeSmoothing(int(e), smooth[e] != 0);
    }
    fn.cleanupEdgeSmoothing();
}

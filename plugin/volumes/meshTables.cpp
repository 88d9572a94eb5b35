#include "volumes/meshTables.h"

#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>

#include <algorithm>

namespace {

std::vector<int> toVector(const MIntArray& array)
{
    const int* first = array.length() > 0 ? &array[0] : nullptr;
    return std::vector<int>(first, first + array.length());
}

} // namespace

MeshTables readFaces(const MObject& mesh)
{
    MeshTables    tables;
    MObject       object = mesh;
    const MFnMesh fn(object);
    MIntArray     counts, vertices;
    if (!fn.getVertices(counts, vertices))
        return tables;
    tables.vertexCount = std::max(fn.numVertices(), 0);
    tables.cornerVertices = toVector(vertices);
    tables.faceFirst.resize(counts.length() + std::size_t(1));
    const MIntArray& sizes = counts;
    for (unsigned int face = 0; face < sizes.length(); ++face)
        tables.faceFirst[face + 1] = tables.faceFirst[face] + sizes[face];
    return tables;
}

void addEdges(const MObject& mesh, MeshTables& tables)
{
    if (tables.edgeCount > 0 || tables.vertexCount == 0)
        return;
    MObject       object = mesh;
    const MFnMesh fn(object);
    tables.edgeCount = std::max(fn.numEdges(), 0);
    tables.edgeVertices.resize(2 * static_cast<std::size_t>(tables.edgeCount), 0);
    for (int edge = 0; edge < tables.edgeCount; ++edge) {
        int2 ends = {0, 0};
        fn.getEdgeVertices(edge, ends);
        std::copy_n(ends, 2, tables.edgeVertices.begin() + 2 * static_cast<std::ptrdiff_t>(edge));
    }
    tables.cornerEdges.assign(tables.cornerVertices.size(), 0);
    MIntArray edges;
    for (MItMeshPolygon face(object); !face.isDone(); face.next()) {
        face.getEdges(edges);
        const MIntArray&  found = edges;
        const std::size_t first = static_cast<std::size_t>(tables.faceFirst[face.index()]);
        for (unsigned int k = 0; k < found.length() && first + k < tables.cornerEdges.size(); ++k)
            tables.cornerEdges[first + k] = found[k];
    }
}

void addUVs(const MObject& mesh, const MString& uvSet, MeshTables& tables)
{
    MObject        object = mesh;
    const MFnMesh  fn(object);
    const MString* set = uvSet.length() > 0 ? &uvSet : nullptr;
    MIntArray      counts, ids;
    tables.cornerUVs.assign(tables.cornerVertices.size(), -1);
    tables.uvCount = 0;
    if (!fn.getAssignedUVs(counts, ids, set))
        return;
    tables.uvCount = std::max(set ? fn.numUVs(*set) : fn.numUVs(), 0);
    const MIntArray &sizes = counts, &uvs = ids;
    unsigned int     next = 0;
    for (unsigned int face = 0; face < sizes.length() && face + 1 < tables.faceFirst.size(); ++face) {
        const auto first = static_cast<std::size_t>(tables.faceFirst[face]);
        const bool whole = sizes[face] == tables.faceFirst[face + 1] - tables.faceFirst[face];
        for (int k = 0; k < sizes[face] && next < uvs.length(); ++k, ++next)
            if (whole)
                tables.cornerUVs[first + static_cast<std::size_t>(k)] = uvs[next];
        for (std::size_t c = first; !whole && sizes[face] > 0 && c < static_cast<std::size_t>(tables.faceFirst[face + 1]); ++c)
            fn.getPolygonUVid(static_cast<int>(face), static_cast<int>(c - first), tables.cornerUVs[c], set);
    }
    for (int& uv : tables.cornerUVs)
        uv = uv < tables.uvCount ? uv : -1;
}

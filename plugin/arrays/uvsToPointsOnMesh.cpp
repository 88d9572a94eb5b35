#include "arrays/uvsToPointsOnMesh.h"

#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <vector>

#include "arrays/uvIndex.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

enum UvsFrom : short { kInputMesh, kInputArray };

/// The first UV of each vertex, flat; 0, 0 for a vertex without one.
std::vector<double> vertexUvs(MObject mesh, const MString* set)
{
    std::vector<double> uvs;
    for (MItMeshVertex vertex(mesh); !vertex.isDone(); vertex.next()) {
        float2 uv = {};
        vertex.getUV(uv, set);
        uvs.insert(uvs.end(), {uv[0], uv[1]});
    }
    return uvs;
}

std::vector<double> arrayUvs(const ArrayView& array)
{
    return array.length > 0 ? std::vector<double>(array.doubles, array.doubles + array.length) : std::vector<double>();
}

/// The box of each polygon's UVs, with everything that the lookup's tolerance lets in.
std::vector<UvBox> polygonBoxes(const MFnMesh& mesh, const MString* set, float tolerance)
{
    std::vector<UvBox> boxes;
    MFloatArray        u, v;
    MIntArray          counts, ids;
    mesh.getUVs(u, v, set);
    mesh.getAssignedUVs(counts, ids, set);
    for (unsigned int face = 0, corner = 0; face < counts.length(); ++face) {
        UvBox box;
        for (int k = 0; k < counts[face]; ++k, ++corner)
            box.add(u[unsigned(ids[corner])], v[unsigned(ids[corner])]);
        box.grow(tolerance);
        boxes.push_back(box);
    }
    return boxes;
}

/// Moves each point to where its UV lies on the first polygon, in polygon order, that the host finds it on.
void lookUp(const MFnMesh& mesh, const std::vector<double>& uvs, const MString* set, float tolerance, MPointArray& points)
{
    const UvIndex polygons(polygonBoxes(mesh, set, tolerance));
    for (unsigned int i = 0; i < points.length(); ++i) {
        float2 uv = {static_cast<float>(uvs[2 * i]), static_cast<float>(uvs[2 * i + 1])};
        MPoint found;
        if (polygons.first(uv[0], uv[1], [&](int polygon) {
                return mesh.getPointAtUV(polygon, found, uv, MSpace::kWorld, set, tolerance) == MS::kSuccess;
            }) >= 0)
            points[i] = found;
    }
}

} // namespace

MStatus uvsToPointsOnMesh::initialize()
{
    const auto kinds = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, MFnData::kVectorArray};
    const attr::Row rows[] = {
        attr::generic(aInGeo, "inGeometry", "ig", kinds, attr::kInput),
        attr::generic(aInRefMesh, "inReferenceMesh", "irm", {MFnData::kMesh}, attr::kInput),
        attr::typed(aInMapPP, "inMapPP", "impp", MFnData::kDoubleArray, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", kinds, attr::kOutput),
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::enumeration(aMeshUvsFrom, "meshUVsFrom", "muvf", {{"Input Mesh", kInputMesh}, {"Input Array", kInputArray}},
                          kInputMesh, attr::kControl),
        attr::text(aUvSet, "uvSet", "uvs", attr::kStored),
        attr::text(aRefUvSet, "referenceUvSet", "ruvs", attr::kStored),   // not read: uvSet serves both meshes
        attr::numeric(aTolerance, "tolerance", "tol", MFnNumericData::kFloat, 0.01, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus uvsToPointsOnMesh::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (state != kHasNoEffect && plug != aOutGeo)                        // plug test
        return MS::kSuccess;
    MDataHandle outGeo = block.outputValue(aOutGeo);                     // copy through
    outGeo.copy(block.inputValue(aInGeo));
    if (state == kHasNoEffect || !block.inputValue(aEnvelope).asBool())  // switch
        return MS::kSuccess;
    const bool isMesh = outGeo.type() == MFnData::kMesh;                 // connection test
    if (!MPlug(thisMObject(), aInGeo).isConnected() || !MPlug(thisMObject(), aInRefMesh).isConnected() ||
        (!isMesh && !MPlug(thisMObject(), aInMapPP).isConnected()))
        return MS::kSuccess;
    MObject reference = block.inputValue(aInRefMesh).asMeshTransformed();
    if (reference.isNull() || MFnMesh(reference).numPolygons() == 0)
        return MS::kSuccess;

    const ArrayView vectors = viewArray(outGeo.data());                  // work
    MPointArray     points;
    if (vectors.kind == MFn::kInvalid && outGeo.type() != MFnData::kInvalid)
        MItGeometry(outGeo).allPositions(points, MSpace::kObject);
    const unsigned int pointCount = vectors.kind == MFn::kVectorArrayData ? vectors.length : points.length();
    if (pointCount == 0)
        return MS::kSuccess;
    const MString             name = block.inputValue(aUvSet).asString();
    const MString*            set = name.length() > 0 ? &name : nullptr;
    const bool                own = isMesh && block.inputValue(aMeshUvsFrom).asShort() == kInputMesh;
    const std::vector<double> uvs = own ? vertexUvs(outGeo.asMesh(), set)
                                        : arrayUvs(viewArray(block, aInMapPP, {MFn::kDoubleArrayData}));
    if (uvs.size() != 2 * std::size_t(pointCount)) {
        warn(plug, ": point/uv count missmatch.");
        return MS::kSuccess;
    }
    if (vectors.kind != MFn::kInvalid)                                   // vectors stay the copy: no output takes their
        return MS::kSuccess;                                             // new places
    const float tolerance = std::max(0.001f, block.inputValue(aTolerance).asFloat());
    lookUp(MFnMesh(reference), uvs, set, tolerance, points);

    return MItGeometry(outGeo, false).setAllPositions(points, MSpace::kObject);   // write: world places as object ones
}

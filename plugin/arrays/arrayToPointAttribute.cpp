#include "arrays/arrayToPointAttribute.h"

#include <maya/MColorArray.h>
#include <maya/MDataHandle.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <numeric>

#include "arrays/pointColor.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/subset.h"

namespace {

/// True if the array holds three numbers for each point, as vectors or flat. `fits` is set to false if it is of a kind
/// that could, but has another length.
bool isXyz(const ArrayView& array, unsigned int pointCount, bool& fits)
{
    const bool vectors = array.kind == MFn::kVectorArrayData;
    if (!vectors && array.kind != MFn::kDoubleArrayData)
        return false;
    fits = array.length == (vectors ? pointCount : 3 * pointCount);
    return fits;
}

/// Writes the colours of all vertices, or of all faces: a face takes the colour of its first vertex.
void setColors(MFnMesh& mesh, MColorArray& colors, bool promoteToFaces)
{
    MIntArray ids;
    if (!promoteToFaces) {
        ids.setLength(colors.length());
        int* id = colors.length() > 0 ? &ids[0] : nullptr;
        std::iota(id, id + colors.length(), 0);
        mesh.setVertexColors(colors, ids);
        return;
    }
    const int   faceCount = mesh.numPolygons();
    MColorArray faceColors;
    MIntArray   vertices;
    for (int face = 0; face < faceCount; ++face) {
        mesh.getPolygonVertices(face, vertices);
        if (vertices.length() == 0)
            continue;
        faceColors.append(colors[static_cast<unsigned int>(vertices[0])]);
        ids.append(face);
    }
    mesh.setFaceColors(faceColors, ids);
}

} // namespace

MStatus arrayToPointAttribute::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aActive, "active", "act", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::generic(aInGeo, "inGeometry", "ig", {MFnData::kMesh, MFnData::kNurbsCurve}, attr::kInput),
        attr::generic(aInPosPP, "inPositionPP", "ippp", {MFnData::kDoubleArray, MFnData::kVectorArray}, attr::kInput),
        attr::generic(aInNormalPP, "inNormalPP", "inpp", {MFnData::kDoubleArray, MFnData::kVectorArray}, attr::kInput),
        attr::generic(aInRgbaPP, "inRgbaPP", "irgbapp", {MFnData::kDoubleArray, MFnData::kVectorArray}, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", {MFnData::kMesh, MFnData::kNurbsCurve}, attr::kOutput),
        attr::typed(aInComp, "inComponents", "ic", MFnData::kComponentList, attr::kInput),
        attr::enumeration(aUseComp, "useComponents", "uc", attr::kSubsetFields, 0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::numeric(aPositions, "positions", "pos", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aNormals, "normals", "nml", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aColors, "colors", "clr", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aClamp, "clamp", "c", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aClampMin, "clampMin", "cmn", MFnNumericData::kDouble, 0.0, attr::kControl),
        attr::numeric(aClampMax, "clampMax", "cmx", MFnNumericData::kDouble, 1.0, attr::kControl),
        attr::numeric(aSolidAlpha, "solidAlpha", "sa", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aPromoteToFaces, "promoteToFaces", "ptf", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus arrayToPointAttribute::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kHasNoEffect) {
        block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));
        return MS::kSuccess;
    }
    if (state == kBlocking || plug != aOutGeo)                           // plug test
        return MS::kUnknownParameter;
    if (!MPlug(thisMObject(), aInGeo).isConnected())                     // connection test
        return MS::kSuccess;

    MDataHandle outGeo = block.outputValue(aOutGeo);                     // copy through
    outGeo.copy(block.inputValue(aInGeo));
    if (!block.inputValue(aActive).asBool())                             // switch
        return MS::kSuccess;

    const bool   isMesh = outGeo.type() == MFnData::kMesh;               // work
    MObject      meshObject = isMesh ? outGeo.asMeshTransformed() : MObject::kNullObj;
    const auto   mode = static_cast<SubsetMode>(block.inputValue(aUseComp).asShort());
    const int    groupId = block.inputValue(aGroupId).asInt();
    const Subset subset(block, mode, {MPlug(thisMObject(), aInComp), outGeo.data(), groupId});
    if (!isMesh) {
        if (outGeo.type() == MFnData::kNurbsCurve && wants(block, aPositions, aInPosPP))
            writePositions(block, outGeo, subset, static_cast<unsigned int>(MItGeometry(outGeo).count()));
        return MS::kSuccess;
    }
    MFnMesh mesh(meshObject);
    if (wants(block, aPositions, aInPosPP))
        writePositions(block, outGeo, subset, static_cast<unsigned int>(mesh.numVertices()));
    if (wants(block, aNormals, aInNormalPP))
        writeNormals(block, mesh, subset);
    if (wants(block, aColors, aInRgbaPP))
        writeColors(block, mesh, subset);
    return outGeo.set(meshObject);                                       // write
}

bool arrayToPointAttribute::wants(MDataBlock& block, const MObject& switchAttribute, const MObject& array) const
{
    return MPlug(thisMObject(), array).isConnected() && block.inputValue(switchAttribute).asBool();
}

void arrayToPointAttribute::writePositions(MDataBlock& block, MDataHandle& geometry, const Subset& subset,
                                           unsigned int pointCount)
{
    const ArrayView array = viewArray(block, aInPosPP);
    bool            fits = true;
    if (!isXyz(array, pointCount, fits)) {
        if (!fits)
            warn(MPlug(thisMObject(), aInGeo), ": inPositionPP array length does not match the point count.");
        return;
    }
    MPointArray points;
    MIntArray   ids;
    if (subset.all()) {
        points.setLength(pointCount);   // every one is replaced
    } else {
        MItGeometry(geometry).allPositions(points, MSpace::kWorld);
        ids = subset.indices(points.length());
    }
    const auto      replace = [&](unsigned int i) {
        const double* xyz = array.doubles + 3 * static_cast<std::size_t>(i);
        points[i] = MPoint(xyz[0], xyz[1], xyz[2]);
    };
    if (subset.all()) {
        for (unsigned int i = 0; i < pointCount; ++i)
            replace(i);
    }
    for (unsigned int k = 0; k < ids.length(); ++k)
        replace(static_cast<unsigned int>(ids[k]));

    if (geometry.type() == MFnData::kMesh) {
        MObject mesh = geometry.asMeshTransformed();
        MFnMesh(mesh).setPoints(points, MSpace::kWorld);
    } else {
        MItGeometry(geometry, false).setAllPositions(points, MSpace::kWorld);
    }
}

void arrayToPointAttribute::writeNormals(MDataBlock& block, MFnMesh& mesh, const Subset& subset)
{
    const auto      pointCount = static_cast<unsigned int>(mesh.numVertices());
    const ArrayView array = viewArray(block, aInNormalPP);
    bool            fits = true;
    if (!isXyz(array, pointCount, fits)) {
        if (!fits)
            warn(MPlug(thisMObject(), aInGeo), ": inNormalPP array length does not match the point count.");
        return;
    }
    MIntArray    ids = subset.indices(pointCount);
    MVectorArray normals;
    normals.setLength(ids.length());
    for (unsigned int k = 0; k < ids.length(); ++k) {
        const double* xyz = array.doubles + 3 * static_cast<std::size_t>(ids[k]);
        normals[k] = MVector(xyz[0], xyz[1], xyz[2]);
    }
    if (ids.length() > 0)
        mesh.setVertexNormals(normals, ids, MSpace::kWorld);
}

void arrayToPointAttribute::writeColors(MDataBlock& block, MFnMesh& mesh, const Subset& subset)
{
    using pointColor::Layout;
    const auto       pointCount = static_cast<unsigned int>(mesh.numVertices());
    const ArrayView  array = viewArray(block, aInRgbaPP);
    pointColor::Rule rule;
    if (array.kind == MFn::kVectorArrayData)
        rule.layout = array.length == pointCount ? Layout::kXyz : Layout::kNone;
    else if (array.kind == MFn::kDoubleArrayData)
        rule.layout = pointColor::layoutOfDoubles(array.length, pointCount, true);
    else
        return;
    if (rule.layout == Layout::kNone) {
        warn(MPlug(thisMObject(), aInGeo), ": inRgbaPP array length does not match the point count.");
        return;
    }
    rule.clamp = block.inputValue(aClamp).asBool();
    rule.min = block.inputValue(aClampMin).asDouble();
    rule.max = block.inputValue(aClampMax).asDouble();
    rule.solidAlpha = block.inputValue(aSolidAlpha).asBool();

    MColorArray colors;
    if (!subset.all() || rule.layout == Layout::kRgb)   // else every channel is replaced
        mesh.getVertexColors(colors);
    const unsigned int present = std::min(colors.length(), pointCount);
    colors.setLength(pointCount);
    for (unsigned int i = present; i < pointCount; ++i)
        colors[i] = MColor(-1.0f, -1.0f, -1.0f, -1.0f);   // the host's value for no colour
    const auto color = [&](unsigned int i) {
        MColor&                at = colors[i];
        const pointColor::Rgba c = pointColor::at(array.doubles, i, rule, at.a);
        at = MColor(c.r, c.g, c.b, c.a);
    };
    const MIntArray ids = subset.all() ? MIntArray() : subset.indices(pointCount);
    for (unsigned int i = 0; subset.all() && i < pointCount; ++i)
        color(i);
    for (unsigned int k = 0; k < ids.length(); ++k)
        color(static_cast<unsigned int>(ids[k]));
    if (pointCount > 0)
        setColors(mesh, colors, block.inputValue(aPromoteToFaces).asBool());
}

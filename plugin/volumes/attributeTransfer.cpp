#include "volumes/attributeTransfer.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MColorArray.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include <numeric>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"
#include "volumes/geometryPoints.h"
#include "volumes/readVolumes.h"
#include "volumes/transfer.h"

namespace {

enum Update : short { kGeometryAndArrays = 0, kGeometryOnly = 1, kArraysOnly = 2 };

} // namespace

/// What one run fills: the arrays it publishes, and what goes into the geometry.
struct TransferResults
{
    bool     arrays = true, geometry = true;   ///< by `update`
    OutArray positions{OutArray::kPoints}, weights{OutArray::kDoubles}, rgba{OutArray::kDoubles},
        normals{OutArray::kVectors}, radii{OutArray::kDoubles}, particles{OutArray::kVectors};

    MFloatPointArray    vertices;
    MPointArray         controlPoints;
    MColorArray         colors;
    MVectorArray        vertexNormals;
    std::vector<double> rgbaBefore;            ///< input colours of other layouts, as four values a point
    std::vector<ArrayView> inputs;             ///< keeps the arrays read alive

    MStatus publish(MDataBlock& block) const
    {
        using Node = attributeTransfer;
        positions.publish(block, Node::aOutPosPP);
        weights.publish(block, Node::aOutWgtPP);
        rgba.publish(block, Node::aOutRgbaPP);
        normals.publish(block, Node::aOutNormalPP);
        return radii.publish(block, Node::aOutRadiusPP);
    }
};

namespace {

/// Makes room for everything that the settings and the kind of geometry ask for.
TransferOutput makeRoom(const TransferSettings& on, const GeometryPoints& points, TransferResults& to)
{
    const auto     n = static_cast<unsigned int>(points.input.count);
    const bool     isMesh = points.kind == MFnData::kMesh, particles = points.kind == MFnData::kVectorArray;
    TransferOutput out;
    if (to.arrays) {
        out.points = on.position && !particles ? to.positions.resize(n) : nullptr;
        out.weights = on.weight ? to.weights.resize(n) : nullptr;
        out.rgba = on.color ? to.rgba.resize(4 * n) : nullptr;
        out.radii = on.radius ? to.radii.resize(n) : nullptr;
        out.normals = on.normal ? to.normals.resize(n) : nullptr;
    }
    if (!to.geometry || n == 0)
        return out;
    if (on.position && isMesh) {
        to.vertices.setLength(n);
        out.local = &to.vertices[0].x;
    }
    if (on.position && particles)
        out.vectors = to.particles.resize(n);
    if (on.color && isMesh) {
        to.colors.setLength(n);
        out.colors = &to.colors[0].r;
    }
    if (on.position && !isMesh && !particles && !out.points)
        out.points = to.positions.resize(n);   // for the CVs; an array that nobody asked for is emptied again
    if (on.normal && isMesh && !out.normals)
        out.normals = to.normals.resize(n);
    return out;
}

void writeMesh(MDataHandle& outGeo, const TransferSettings& on, const GeometryPoints& points, const double* normals,
               TransferResults& from)
{
    const auto n = static_cast<unsigned int>(points.input.count);
    MObject    object = outGeo.asMeshTransformed();
    MFnMesh    mesh(object);
    MIntArray  ids;
    ids.setLength(n);
    if (n > 0)
        std::iota(&ids[0], &ids[0] + n, 0);
    if (on.position)
        mesh.setPoints(from.vertices, MSpace::kObject);
    if (on.color)
        mesh.setVertexColors(from.colors, ids);
    if (on.normal) {   // back by the way they came, so that a normal that nothing turned is what it was
        from.vertexNormals.setLength(n);
        for (unsigned int i = 0; i < n; ++i) {
            const double*     v = normals + 3 * std::size_t{i};
            const volume::Vec l = transformVector({v[0], v[1], v[2]}, points.input.toLocal);
            from.vertexNormals[i] = MVector(l.x, l.y, l.z);
        }
        mesh.setVertexNormals(from.vertexNormals, ids, MSpace::kObject);
    }
    outGeo.set(object);
}

void writeControlPoints(MDataHandle& outGeo, const double* xyzw, unsigned int count)
{
    MPointArray points;
    points.setLength(count);
    for (unsigned int i = 0; i < count; ++i, xyzw += 4)
        points[i] = MPoint(xyzw[0], xyzw[1], xyzw[2], xyzw[3]);
    MItGeometry(outGeo, false).setAllPositions(points, MSpace::kWorld);
}

} // namespace

MStatus attributeTransfer::initialize()
{
    const auto boolean = MFnNumericData::kBoolean;
    const auto doubles = MFnData::kDoubleArray;
    const auto vectors = MFnData::kVectorArray;
    const auto points = MFnData::kPointArray;
    const auto flag = [&](MObject& attribute, const char* longName, const char* shortName, bool value) {
        return attr::numeric(attribute, longName, shortName, boolean, value, attr::kControl);
    };
    const attr::Row rows[] = {
        flag(aEnvelope, "envelope", "en", true),
        attr::generic(aInGeo, "inGeometry", "ig",
                      {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, vectors}, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og",
                      {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, vectors}, attr::kOutput),
        attr::generic(aInWgtPP, "inWeightPP", "iwpp", {doubles}, attr::kInput),
        attr::generic(aInRgbaPP, "inRgbaPP", "irgbapp", {doubles, vectors, points}, attr::kInput),
        attr::generic(aInNormalPP, "inNormalPP", "inpp", {doubles, vectors}, attr::kInput),
        attr::generic(aInRadiusPP, "inRadiusPP", "irpp", {doubles}, attr::kInput),
        attr::generic(aOutPosPP, "outPositionPP", "oppp", {vectors, points}, attr::kOutput),
        attr::typed(aOutWgtPP, "outWeightPP", "owpp", doubles, attr::kOutput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", doubles, attr::kOutput),
        attr::typed(aOutNormalPP, "outNormalPP", "onpp", vectors, attr::kOutput),
        attr::typed(aOutRadiusPP, "outRadiusPP", "orpp", doubles, attr::kOutput),
        attr::enumeration(aUpdate, "update", "u",
                          {{"Output Geometry and Arrays", kGeometryAndArrays}, {"Output Geometry", kGeometryOnly},
                           {"Output Arrays", kArraysOnly}}, 0, attr::kControl),
        attr::enumeration(aUseComp, "useComponents", "uc",
                          {{"None", 0}, {"Input Components List", 1}, {"Input Object Group", 2}}, 0, attr::kControl),
        attr::generic(aInComp, "inComponents", "ic", {MFnData::kComponentList, MFnData::kIntArray}, attr::kInput),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::text(aColorSet, "colorSet", "clrs", attr::kControl),
        attr::softMax(attr::atLeast(attr::numeric(aMaxInfluences, "maxInfluences", "mi", MFnNumericData::kInt, 5.0,
                                                  attr::kControl), 1.0), 10.0),
        flag(aPosition, "position", "pos", false),
        flag(aWeight, "weight", "wgt", false),
        flag(aColor, "color", "clr", false),
        flag(aNormal, "normal", "nml", false),
        flag(aRadius, "radius", "rds", false),
        flag(aMerge, "merge", "m", true),
        flag(aBlend, "blend", "b", true),
        attr::curveRamp(aKernel, "kernel", "k", attr::kControl),
        flag(aAlphaModulate, "alphaModulate", "am", true),
        flag(aSolidAlpha, "solidAlpha", "sa", false),
        aBounds.row(),
    };
    return attr::declare(rows);
}

void attributeTransfer::postConstructor()
{
    fillRamp(thisMObject(), aKernel,
             {CurveKey{0.0f, 1.0f, MRampAttribute::kSmooth}, CurveKey{1.0f, 0.0f, MRampAttribute::kLinear}});
}

MStatus attributeTransfer::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kHasNoEffect)
        return MS::kSuccess;
    if (state == kBlocking || !isAnyOf(plug, {&aOutGeo, &aOutPosPP, &aOutWgtPP, &aOutRgbaPP, &aOutNormalPP,
                                              &aOutRadiusPP}))           // plug test
        return MS::kUnknownParameter;

    block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));           // copy through
    TransferResults results;
    if (MPlug(thisMObject(), aInGeo).isConnected() && block.inputValue(aEnvelope).asBool())   // connection, switch
        run(block, results);                                             // work
    return results.publish(block);                                       // write, even if empty
}

TransferSettings attributeTransfer::readSettings(MDataBlock& block) const
{
    const auto       flag = [&](const MObject& attribute) { return block.inputValue(attribute).asBool(); };
    TransferSettings on;
    on.position = flag(aPosition);
    on.weight = flag(aWeight);
    on.color = flag(aColor);
    on.normal = flag(aNormal);
    on.radius = flag(aRadius);
    on.merge = flag(aMerge);
    on.blend = flag(aBlend);
    on.alphaModulate = flag(aAlphaModulate);
    on.solidAlpha = flag(aSolidAlpha);
    on.maxInfluences = block.inputValue(aMaxInfluences).asInt();
    return on;
}

void attributeTransfer::run(MDataBlock& block, TransferResults& results)
{
    const MPlug    inGeo(thisMObject(), aInGeo);
    const MPlug    multi(thisMObject(), aBounds.elements);
    const short    update = block.inputValue(aUpdate).asShort();
    GeometryPoints points;
    TransferSettings on = readSettings(block);
    results.arrays = update == kGeometryAndArrays || update == kArraysOnly;
    results.geometry = update == kGeometryAndArrays || update == kGeometryOnly;

    readGeometry(block, inGeo, {on.normal, on.color, block.inputValue(aColorSet).asString()}, points);
    if (points.kind == MFnData::kInvalid)
        return;
    on.particles = points.kind == MFnData::kVectorArray;
    readArrays(block, on, points, results);
    const std::vector<char> selected = selectedPoints(block, inGeo, points, {aUseComp, aInComp, aGroupId});
    // one decision for all points, that of the last one: saved scenes rely on it
    on.process = selected.empty() || selected.back() != 0;

    TransferVolumes volumes;
    volumes.kernel = Ramp(thisMObject(), aKernel);
    readVolumes(block, multi, aBounds, CloudUse::kAll, {on.position, on.weight, on.color, on.normal, on.radius},
                volumes);
    results.geometry = results.geometry && !volumes.volumes.empty();
    on.weight = on.weight && results.arrays;
    on.radius = on.radius && results.arrays;

    const TransferOutput out = makeRoom(on, points, results);
    transfer(volumes, hasCloud(volumes.volumes) ? boxOf(points.input, selected) : volume::Box(), on, points.input, out);

    MDataHandle outGeo = block.outputValue(aOutGeo);
    if (results.geometry && points.kind == MFnData::kMesh)
        writeMesh(outGeo, on, points, out.normals, results);
    else if (results.geometry && on.particles && on.position)
        results.particles.publish(block, aOutGeo);
    else if (results.geometry && on.position && out.points)
        writeControlPoints(outGeo, out.points, static_cast<unsigned int>(points.input.count));
    if (!results.arrays) {
        results.positions.resize(0);
        results.normals.resize(0);
    }
}

/// The values before, in place where the layout allows it. Wrong lengths warn and read as zeros.
void attributeTransfer::readArrays(MDataBlock& block, const TransferSettings& on, GeometryPoints& points,
                                   TransferResults& kept) const
{
    const MPlug       inGeo(thisMObject(), aInGeo);
    TransferInput&    in = points.input;
    const std::size_t n = in.count;
    const auto        view = [&](const MObject& attribute) -> const ArrayView& {
        kept.inputs.push_back(viewArray(block, attribute));
        return kept.inputs.back();
    };
    const auto connected = [&](const MObject& attribute) { return MPlug(thisMObject(), attribute).isConnected(); };

    if (on.radius && connected(aInRadiusPP)) {
        const ArrayView& array = view(aInRadiusPP);
        if (array.kind == MFn::kDoubleArrayData && array.length != n)
            warn(inGeo, ": inRadiusPP array length does not match the inGeometry point count.");
        else if (array.kind == MFn::kDoubleArrayData)
            in.radii = array.doubles;
    }
    if (on.weight && connected(aInWgtPP)) {
        const ArrayView& array = view(aInWgtPP);
        if (array.kind == MFn::kDoubleArrayData && array.length > n) {   // a shorter one passes without a word
            warn(inGeo, ": inWeightPP array length does not match the inGeometry point count.");
        } else if (array.kind == MFn::kDoubleArrayData) {
            in.weights = array.doubles;
            in.weightCount = array.length;
        }
    }
    if (on.color) {
        const ArrayView& array = view(aInRgbaPP);
        const bool       flat = array.kind == MFn::kDoubleArrayData;
        if (flat && array.length == 4 * n) {
            in.rgba = array.doubles;
            in.colors = nullptr;
        } else if (array.kind == MFn::kDoubleArrayData || array.kind == MFn::kVectorArrayData ||
                   array.kind == MFn::kPointArrayData) {
            in.colors = nullptr;
            if (array.length == n) {
                kept.rgbaBefore.resize(4 * n);
                for (std::size_t i = 0; i < n; ++i) {
                    for (std::size_t k = 0; k < 3; ++k)
                        kept.rgbaBefore[4 * i + k] = array.doubles[array.stride * i + (flat ? 0 : k)];
                    kept.rgbaBefore[4 * i + 3] = 1.0;
                }
                in.rgba = kept.rgbaBefore.data();
            } else {
                warn(inGeo, ": inRgbaPP array length does not match the point count.");
            }
        }
    }
    if (on.normal) {
        const ArrayView& array = view(aInNormalPP);
        if (array.kind == MFn::kDoubleArrayData) {
            in.normals = array.length == 3 * n ? array.doubles : nullptr;
            if (array.length != 3 * n)
                warn(inGeo, ": inVelocityPP array length mismatch.");
        } else if (array.kind == MFn::kVectorArrayData) {
            in.normals = array.length == n ? array.doubles : nullptr;
            if (array.length != n)
                warn(inGeo, ": inNormalPP array length does not match the inGeometry point count.");
        }
    }
}

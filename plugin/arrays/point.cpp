#include "arrays/point.h"

#include <maya/MColorArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include <algorithm>

#include "arrays/pointData.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/subset.h"

using namespace pointText;

/// What one evaluation works with.
struct PointRun
{
    MSpace::Space space = MSpace::kObject;
    MObject       geometry;        ///< the working copy, which becomes the output
    PointConstants constants;      ///< what both inputs share
    PointData     in, in2;
    bool          hasSecond = false;
    PointSubset   subset;
    PointMap      map;
    MString       uvSet;
    MBoundingBox  box, subsetBox;
    MDoubleArray  results[kBlockCount];
    const double* values[kBlockCount] = {};   ///< of the results that have the right length

    const PointData& second() const { return hasSecond ? in2 : in; }
    /// Whether each position has a turn of the loop, in order.
    bool replacesAll() const { return subset.all && subset.turns >= in.count && in.positionCount == in.count; }
};

namespace {

/// The values of a result, if there are as many as the block asks for: the one sign of an expression that worked.
const double* accepted(const MDoubleArray& result, Block which, unsigned int turns)
{
    const auto length = static_cast<std::size_t>(resultFactor(which)) * turns;
    static const double none = 0.0;
    if (result.length() != length)
        return nullptr;
    return length > 0 ? &result[0] : &none;
}

/// Calls f(point, turn) for each point of the subset that has a turn of the loop.
template <class F>
void eachPoint(const PointSubset& subset, F&& f)
{
    for (unsigned int k = 0; k < std::min(subset.idCount, subset.turns); ++k)
        f(static_cast<std::size_t>(subset.id[k]), std::size_t(k));
}

MObject workingCopy(MDataHandle& geometry, MSpace::Space space)
{
    const bool world = space == MSpace::kWorld;
    switch (geometry.type()) {
    case MFnData::kMesh: {
        MObject copy = MFnMeshData().create();
        MFnMesh().copy(world ? geometry.asMeshTransformed() : geometry.asMesh(), copy);
        return copy;
    }
    case MFnData::kNurbsCurve: {
        MObject copy = MFnNurbsCurveData().create();
        MFnNurbsCurve().copy(world ? geometry.asNurbsCurveTransformed() : geometry.asNurbsCurve(), copy);
        return copy;
    }
    case MFnData::kNurbsSurface: {
        MObject copy = MFnNurbsSurfaceData().create();
        MFnNurbsSurface().copy(world ? geometry.asNurbsSurfaceTransformed() : geometry.asNurbsSurface(), copy);
        return copy;
    }
    default: return MObject::kNullObj;
    }
}

/// U and V of some UV ids as pairs; 0, 0 for an id that the table does not have.
OutArray pairsOf(const PointData& data, const PointMap& map)
{
    const MFloatArray &us = data.us, &vs = data.vs;
    OutArray           out(OutArray::kDoubles);
    double*            to = out.resize(2 * map.count);
    for (unsigned int k = 0; k < map.count; ++k, to += 2) {
        to[0] = us[static_cast<unsigned int>(map.id[k])];
        to[1] = vs[static_cast<unsigned int>(map.id[k])];
    }
    return out;
}

OutArray allPairs(const PointData& data)
{
    const MFloatArray &us = data.us, &vs = data.vs;
    OutArray           out(OutArray::kDoubles);
    double*            to = out.resize(2 * us.length());
    if (us.length() == 0)
        return out;
    const float *u = &us[0], *v = &vs[0];   // of one length
    for (unsigned int k = 0; k < us.length(); ++k, to += 2) {
        to[0] = u[k];
        to[1] = v[k];
    }
    return out;
}

/// Positions after the block; empty if its text failed or it is off.
OutArray newPositions(const PointRun& run, const double* result)
{
    OutArray out(OutArray::kVectors);
    if (!result)
        return out;
    double* const to = out.resize(run.in.positionCount);
    if (run.replacesAll()) {
        std::copy(result, result + 3 * std::size_t(run.in.positionCount), to);
        return out;
    }
    for (unsigned int i = 0; i < run.in.positionCount; ++i)
        std::copy(run.in.at(i), run.in.at(i) + 3, to + 3 * std::size_t(i));
    eachPoint(run.subset, [&](std::size_t i, std::size_t turn) {
        if (i < run.in.positionCount)
            std::copy(result + 3 * turn, result + 3 * turn + 3, to + 3 * i);
    });
    return out;
}

/// Moves the points of the working copy. A point that the text moved has weight 1, the others keep theirs.
void applyPositions(PointRun& run, const double* result)
{
    const PointData& in = run.in;
    if (in.kind == MFnData::kMesh) {
        MFloatPointArray narrow;   // narrowed once, as a mesh stores them
        narrow.setLength(in.positionCount);
        MFloatPoint* const to = in.positionCount > 0 ? &narrow[0] : nullptr;
        const auto         put = [](MFloatPoint& point, const double* p) {
            point.x = float(p[0]);
            point.y = float(p[1]);
            point.z = float(p[2]);
            point.w = 1.0f;
        };
        if (!run.replacesAll()) {
            for (unsigned int i = 0; i < in.positionCount; ++i)
                put(to[i], in.at(i));
        }
        eachPoint(run.subset, [&](std::size_t i, std::size_t turn) {
            if (i < in.positionCount)
                put(to[i], result + 3 * turn);
        });
        MFnMesh(run.geometry).setPoints(narrow, run.space);
        return;
    }
    MPointArray points(reinterpret_cast<const MPoint*>(in.xyzw), in.positionCount);
    eachPoint(run.subset, [&](std::size_t i, std::size_t turn) {
        const double* p = result + 3 * turn;
        if (i < in.positionCount)
            points[static_cast<unsigned int>(i)] = MPoint(p[0], p[1], p[2]);
    });
    if (in.kind == MFnData::kNurbsCurve)
        MFnNurbsCurve(run.geometry).setCVs(points, run.space);
    else
        MFnNurbsSurface(run.geometry).setCVs(points, run.space);
}

/// A per-point array from before the block, with the subset's values replaced; empty without a result.
OutArray newValues(const PointRun& run, const ArrayView& before, const double* result)
{
    OutArray out(OutArray::kDoubles);
    if (!result)
        return out;
    double* const to = fit(before, 1, run.in.count, out);
    eachPoint(run.subset, [&](std::size_t i, std::size_t turn) { to[i] = result[turn]; });
    return out;
}

OutArray newColors(const PointRun& run, const double* result)
{
    OutArray out(OutArray::kDoubles);
    if (!result)
        return out;
    double* const to = out.resize(4 * run.in.count);
    std::copy(run.in.colors, run.in.colors + 4 * std::size_t(run.in.count), to);
    eachPoint(run.subset, [&](std::size_t i, std::size_t turn) {
        for (std::size_t c = 0; c < 4; ++c)
            to[4 * i + c] = static_cast<float>(result[4 * turn + c]);
    });
    return out;
}

/// The subset's points as far as the loop had turns for them.
MIntArray writtenIds(const PointRun& run)
{
    const unsigned int count = std::min(run.subset.idCount, run.subset.turns);
    return count > 0 ? MIntArray(run.subset.id, count) : MIntArray();
}

void applyColors(PointRun& run, const double* result)
{
    MIntArray   ids = writtenIds(run);
    MColorArray colors;
    colors.setLength(ids.length());
    for (unsigned int k = 0; k < ids.length(); ++k) {
        const double* c = result + 4 * std::size_t(k);
        colors[k] = MColor(float(c[0]), float(c[1]), float(c[2]), float(c[3]));
    }
    if (ids.length() > 0)
        MFnMesh(run.geometry).setVertexColors(colors, ids);
}

OutArray newNormals(const PointRun& run, const double* result)
{
    OutArray out(OutArray::kVectors);
    if (!result)
        return out;
    double* const to = out.resize(run.in.count);
    std::copy(run.in.normal, run.in.normal + 3 * std::size_t(run.in.count), to);
    eachPoint(run.subset, [&](std::size_t i, std::size_t turn) {
        std::copy(result + 3 * turn, result + 3 * turn + 3, to + 3 * i);
    });
    return out;
}

void applyNormals(PointRun& run, const double* result)
{
    MIntArray    ids = writtenIds(run);
    MVectorArray normals(reinterpret_cast<const MVector*>(result), ids.length());
    if (ids.length() > 0)
        MFnMesh(run.geometry).setVertexNormals(normals, ids, run.space);
}

void writeMap(PointRun& run, const double* result)
{
    for (unsigned int k = 0; k < run.map.count; ++k) {
        run.in.us[static_cast<unsigned int>(run.map.id[k])] = static_cast<float>(result[2 * std::size_t(k)]);
        run.in.vs[static_cast<unsigned int>(run.map.id[k])] = static_cast<float>(result[2 * std::size_t(k) + 1]);
    }
}

std::string numberText(double value)
{
    MString text;
    text = value;
    return text.asChar();
}

Box boxText(const MBoundingBox& box)
{
    const MPoint center = box.center();
    return {{numberText(box.width()), numberText(box.height()), numberText(box.depth())},
            {numberText(center.x), numberText(center.y), numberText(center.z)}};
}

} // namespace

MStatus point::initialize()
{
    const auto boolean = MFnNumericData::kBoolean;
    const auto doubles = MFnData::kDoubleArray, vectors = MFnData::kVectorArray, points = MFnData::kPointArray,
               ints = MFnData::kIntArray;
    const auto geometry = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface};
    const auto enable = [&](Block which, const char* name, const char* brief) {
        return attr::numeric(aEnable[which], name, brief, boolean, 0.0, attr::kControl);
    };
    const auto apply = [&](Block which, const char* name, const char* brief) {
        return attr::numeric(aApply[which], name, brief, boolean, 1.0, attr::kControl);
    };
    const auto body = [&](Block which, const char* name, const char* brief) {
        return attr::text(aText[which], name, brief, defaultBody(which), attr::kStored);
    };
    const attr::Row rows[] = {
        attr::multi(attr::compound(aInMsgList, "inMessageList", "iml",
                                   {attr::message(aInMsg, "inMessage", "im", attr::kInput)}, attr::kInput)),
        attr::generic(aInGeo, "inGeometry", "ig", geometry, attr::kInput),
        attr::generic(aInGeo2, "inGeometry2", "ig2", geometry, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometry, attr::kOutput),
        attr::typed(aInComp, "inComponents", "ic", MFnData::kComponentList, attr::kInput),
        attr::enumeration(aUseComp, "useComponents", "uc", attr::kSubsetFields, 0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::numeric(aTime, "currentTime", "ctm", MFnNumericData::kDouble, 0.0, attr::kControl),
        attr::enumeration(aCoordSystem, "coordinateSystem", "cs", attr::kSpaceFields, 1, attr::kControl),
        attr::text(aColorSet, "colorSet", "clrs", attr::kStored),
        attr::text(aColorSet2, "colorSet2", "clrs2", attr::kStored),
        attr::text(aUvSet, "uvSet", "uvs", "map1", attr::kStored),
        attr::text(aUvSet2, "uvSet2", "uvs2", "map1", attr::kStored),
        attr::text(aStartBlock, "stringStartBlock", "ssb", defaultStartBlock(), attr::kStored),
        enable(kPositions, "enablePosition", "ep"), apply(kPositions, "applyChangesPosition", "acp"),
        body(kPositions, "stringPosition", "sp"),
        enable(kWeights, "enableWeight", "ew"), body(kWeights, "stringWeight", "sw"),
        enable(kColors, "enableColor", "ec"), apply(kColors, "applyChangesColor", "acc"),
        body(kColors, "stringColor", "sc"),
        enable(kNormals, "enableNormal", "en"), apply(kNormals, "applyChangesNormal", "acn"),
        body(kNormals, "stringNormal", "sn"),
        enable(kRadii, "enableRadius", "er"), body(kRadii, "stringRadius", "sr"),
        enable(kMap, "enableMap", "em"), apply(kMap, "applyChangesMap", "acm"), body(kMap, "stringMap", "sm"),
        attr::text(aEndBlock, "stringEndBlock", "seb", defaultEndBlock(), attr::kStored),
        attr::typed(aInWgtPP, "inWeightPP", "iwpp", doubles, attr::kInput),
        attr::typed(aInWgtPP2, "inWeightPP2", "iwpp2", doubles, attr::kInput),
        attr::typed(aInRgbaPP, "inRgbaPP", "irgbapp", doubles, attr::kInput),
        attr::typed(aInRgbaPP2, "inRgbaPP2", "irgbapp2", doubles, attr::kInput),
        attr::typed(aInNormalPP, "inNormalPP", "inpp", vectors, attr::kInput),
        attr::typed(aInNormalPP2, "inNormalPP2", "inpp2", vectors, attr::kInput),
        attr::typed(aInRadiusPP, "inRadiusPP", "irpp", doubles, attr::kInput),
        attr::typed(aInRadiusPP2, "inRadiusPP2", "irpp2", doubles, attr::kInput),
        attr::typed(aOutIdPP, "outIdPP", "oipp", ints, attr::kOutput),
        attr::generic(aOutPosPP, "outPositionPP", "oppp", {points, vectors}, attr::kOutput),
        attr::typed(aOutWgtPP, "outWeightPP", "owpp", doubles, attr::kOutput),
        attr::typed(aOutRadiusPP, "outRadiusPP", "orpp", doubles, attr::kOutput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", doubles, attr::kOutput),
        attr::typed(aOutNormalPP, "outNormalPP", "onpp", vectors, attr::kOutput),
        attr::typed(aOutMapPP, "outMapPP", "ompp", doubles, attr::kOutput),
        attr::typed(aOutSharedMapPP, "outSharedMapPP", "osmpp", doubles, attr::kOutput),
        attr::typed(aOutIdForMapPP, "outIdForMapPP", "oifmpp", ints, attr::kOutput),
        attr::typed(aOutIdPM, "outIdPM", "oipm", ints, attr::kOutput),
        attr::typed(aOutPosPP2, "outPositionPP2", "oppp2", points, attr::kOutput),
        attr::typed(aOutRgbaPP2, "outRgbaPP2", "orgbapp2", doubles, attr::kOutput),
        attr::typed(aOutNormalPP2, "outNormalPP2", "onpp2", vectors, attr::kOutput),
        attr::typed(aOutMapPP2, "outMapPP2", "ompp2", doubles, attr::kOutput),
        attr::typed(aOutSharedMapPP2, "outSharedMapPP2", "osmpp2", doubles, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus point::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                 // node state
    if (state == kHasNoEffect) {
        block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));
        return MS::kSuccess;
    }
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (!actsOn(plug, block))                                             // plug test
        return MS::kSuccess;
    if (!MPlug(thisMObject(), aInGeo).isConnected())                      // connection test
        return MS::kSuccess;

    PointRun run;                                                         // work
    if (!gather(block, run))
        return MS::kSuccess;
    publish(block, run);                                                  // the texts read these arrays
    runBlocks(block, run);
    return write(block, run);                                             // write
}

/// Arrays answer while their block is on; the geometry always does. All other outputs are filled along with these.
bool point::actsOn(const MPlug& plug, MDataBlock& block) const
{
    struct { Block which; std::initializer_list<const MObject*> outputs; } const rows[] = {
        {kPositions, {&aOutPosPP, &aOutPosPP2}},
        {kWeights, {&aOutWgtPP}},
        {kColors, {&aOutRgbaPP, &aOutRgbaPP2}},
        {kNormals, {&aOutNormalPP, &aOutNormalPP2}},
        {kRadii, {&aOutRadiusPP}},
        {kMap, {&aOutMapPP, &aOutSharedMapPP, &aOutMapPP2, &aOutSharedMapPP2}},
    };
    for (const auto& row : rows) {
        if (isAnyOf(plug, row.outputs))
            return block.inputValue(aEnable[row.which]).asBool();
    }
    return plug == aOutGeo;
}

bool point::gather(MDataBlock& block, PointRun& run) const
{
    const MObject self = thisMObject();
    const auto    text = [&](const MObject& attribute) { return block.inputValue(attribute).asString(); };
    MDataHandle   geometry = block.inputValue(aInGeo);
    run.space = block.inputValue(aCoordSystem).asShort() == 0 ? MSpace::kWorld : MSpace::kObject;
    run.geometry = workingCopy(geometry, run.space);
    if (run.geometry.isNull())
        return false;
    run.uvSet = text(aUvSet);
    const PointInput first = {MPlug(self, aInGeo), MPlug(self, aInRgbaPP), MPlug(self, aInNormalPP),
                              text(aColorSet), run.uvSet, "inGeometry", "inNormalPP"};
    const PointInput second = {MPlug(self, aInGeo2), MPlug(self, aInRgbaPP2), MPlug(self, aInNormalPP2),
                               text(aColorSet2), text(aUvSet2), "inGeometry2", "inNormalPP2"};
    if (!openPoints(block, first, run.space, run.in) ||
        (second.geometry.isConnected() && !openPoints(block, second, run.space, run.in2)))
        return false;
    run.hasSecond = run.in2.count > 0;
    readPoints(block, first, run.space, run.constants, run.in);
    if (run.hasSecond)
        readPoints(block, second, run.space, run.constants, run.in2);

    const auto   mode = static_cast<SubsetMode>(block.inputValue(aUseComp).asShort());
    const int    groupId = block.inputValue(aGroupId).asInt();
    const Subset subset(block, mode, {MPlug(self, aInComp), geometry.data(), groupId});
    gatherSubset(geometry, subset, subset.componentCount(run.in.count), run.in, run.constants, run.subset);
    if (block.inputValue(aEnable[kMap]).asBool())
        gatherMap(run.in, run.uvSet, subset.all(), run.subset, run.map);
    run.box = run.in.box;
    run.subsetBox = subset.all() ? run.box : boxOf(run.in, run.subset);
    return true;
}

void point::publish(MDataBlock& block, const PointRun& run) const
{
    const OutArray none(OutArray::kDoubles);
    run.subset.ids.publish(block, aOutIdPP);
    run.in.positions.publish(block, aOutPosPP);
    run.in.rgba.publish(block, aOutRgbaPP);
    (run.hasSecond ? run.in2.rgba : none).publish(block, aOutRgbaPP2);
    run.in.normals.publish(block, aOutNormalPP);
    pairsOf(run.in, run.map).publish(block, aOutMapPP);
    run.in.sharedMap.publish(block, aOutSharedMapPP);
    run.map.points.publish(block, aOutIdForMapPP);
    run.map.ids.publish(block, aOutIdPM);
    run.second().positions.publish(block, aOutPosPP2);   // without a second input these are the first one's
    run.second().normals.publish(block, aOutNormalPP2);
    pairsOf(run.second(), run.map).publish(block, aOutMapPP2);
    (run.hasSecond ? run.in2.sharedMap : none).publish(block, aOutSharedMapPP2);
}

void point::runBlocks(MDataBlock& block, PointRun& run) const
{
    const bool isMesh = run.in.kind == MFnData::kMesh;
    for (const Block which : {kPositions, kWeights, kColors, kNormals, kRadii, kMap}) {
        if (!block.inputValue(aEnable[which]).asBool() || (which == kMap && !isMesh))
            continue;
        run.results[which] = evaluate(which, block, run);
        const unsigned int turns = which == kMap ? run.map.count : run.subset.turns;
        const double*      values = run.values[which] = accepted(run.results[which], which, turns);
        if (values && which == kMap)
            writeMap(run, values);
        if (!values || which == kWeights || which == kRadii || !block.inputValue(aApply[which]).asBool())
            continue;
        if (which == kPositions)
            applyPositions(run, values);
        else if (which == kColors && isMesh)
            applyColors(run, values);
        else if (which == kNormals && isMesh)
            applyNormals(run, values);
        else if (which == kMap)
            MFnMesh(run.geometry).setUVs(run.in.us, run.in.vs, run.uvSet.length() > 0 ? &run.uvSet : nullptr);
    }
}

MStatus point::write(MDataBlock& block, const PointRun& run) const
{
    newPositions(run, run.values[kPositions]).publish(block, aOutPosPP);   // vectors now, they were points before
    newColors(run, run.values[kColors]).publish(block, aOutRgbaPP);
    newValues(run, viewArray(block, aInWgtPP), run.values[kWeights]).publish(block, aOutWgtPP);
    newNormals(run, run.values[kNormals]).publish(block, aOutNormalPP);
    allPairs(run.in).publish(block, aOutMapPP);
    newValues(run, viewArray(block, aInRadiusPP), run.values[kRadii]).publish(block, aOutRadiusPP);
    return block.outputValue(aOutGeo).set(run.geometry);
}

/// Defines the block's procedure and calls it. What the artist's text does wrong is the interpreter's to say: whatever
/// comes back, be it from an earlier definition, is judged by its length alone.
MDoubleArray point::evaluate(Block which, MDataBlock& block, const PointRun& run) const
{
    MDoubleArray result;
    MGlobal::executeCommand(definition(which, source(which, block, run)).c_str(), false, false);
    MGlobal::executeCommand((procedure(which) + "()").c_str(), result, false, false);
    return result;
}

Source point::source(Block which, MDataBlock& block, const PointRun& run) const
{
    const auto         text = [&](const MObject& attribute) { return block.inputValue(attribute).asString().asChar(); };
    const bool         isMap = which == kMap;
    const unsigned int turns = isMap ? run.map.count : run.subset.turns;
    Source             s;
    s.node = nodeName(MPlug(thisMObject(), aInGeo)).asChar();
    s.pointCount = numberText(run.in.count);
    s.pointCount2 = numberText(run.hasSecond ? run.in2.count : 0);
    s.count = numberText(turns);
    s.outputSize = numberText(static_cast<double>(outputFactor(which)) * turns);
    s.time = numberText(block.inputValue(aTime).asDouble());
    s.box = boxText(run.box);
    s.subsetBox = boxText(run.subsetBox);
    s.ids = plugName(isMap ? aOutIdForMapPP : aOutIdPP);
    s.mapIds = plugName(aOutIdPM);
    s.positions = plugName(aOutPosPP);
    s.positions2 = plugName(aOutPosPP2);
    s.colors = plugName(aOutRgbaPP);
    s.colors2 = plugName(aOutRgbaPP2);
    s.weights = plugName(aInWgtPP);
    s.weights2 = plugName(aInWgtPP2);
    s.normals = plugName(aOutNormalPP);
    s.normals2 = plugName(aOutNormalPP2);
    s.radii = plugName(aInRadiusPP);
    s.radii2 = plugName(aInRadiusPP2);
    s.map = plugName(isMap ? aOutMapPP : aOutSharedMapPP);
    s.map2 = plugName(isMap ? aOutMapPP2 : aOutSharedMapPP2);
    s.startBlock = text(aStartBlock);
    s.body = text(aText[which]);
    s.endBlock = text(aEndBlock);
    return s;
}

std::string point::plugName(const MObject& attribute) const
{
    return MPlug(thisMObject(), attribute).name().asChar();
}

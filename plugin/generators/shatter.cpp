#include "generators/shatter.h"

#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>

#include <ctime>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "generators/borrowedScene.h"

namespace {

enum Mode : short { kSolid = 0, kSurface = 1 };

/// What is the same for all cuts of one run.
struct Settings
{
    double distance = 0;
    double scale = 1;        ///< of lengths in commands
    bool   cleanup = false, solid = true;
};

voronoi::Neighbors touchingCells(const std::vector<double>& points)
{
    voronoi::Space space = voronoi::neighborsInSpace(points);
    if (space.dimension != 2)
        return std::move(space.neighbors);
    float frame[4][4];
    voronoi::planeFrame(space.plane, frame);
    return voronoi::neighborsInPlane(points, MFloatMatrix(frame).inverse().matrix);
}

/// "a b c" as commands take three numbers.
MString triple(double a, double b, double c)
{
    MString text;
    text += a;
    text += " ";
    text += b;
    text += " ";
    text += c;
    return text;
}

/// A polygon node behind the plug `c`, working on the components of that text. `c` becomes its output.
void append(BorrowedScene& scene, MString& c, const char* type, const char* components)
{
    const MString node = scene.createNode(type);
    scene.connect(c, node + ".inputPolymesh");
    scene.run("setAttr -type componentList " + node + ".inputComponents 1 \"" + components + "\"");
    c = node + ".output";
}

void appendCut(BorrowedScene& scene, MString& c, const voronoi::Cut& cut, double scale)
{
    const MString node = scene.createNode("polyCut"), set = "setAttr " + node;
    scene.connect(c, node + ".inputPolymesh");
    scene.run(set + ".cutPlaneCenter " + triple(cut.center[0] * scale, cut.center[1] * scale, cut.center[2] * scale));
    scene.run(set + ".cutPlaneRotate " + triple(cut.rotate[0], cut.rotate[1], 0));
    if (scale != 1) {
        scene.run(set + ".cutPlaneWidth " + scale);
        scene.run(set + ".cutPlaneHeight " + scale);
        scene.run(set + ".extractOffset " + triple(0.5 * scale, 0.5 * scale, 0.5 * scale));
    }
    scene.run(set + ".deleteFaces 1");
    scene.run("setAttr -type componentList " + node + ".inputComponents 1 \"f[*]\"");
    c = node + ".output";
}

/// One chain of cuts a cell; the plugs at their ends, in the order of the points.
MStringArray cutCells(BorrowedScene& scene, const MString& source, const std::vector<double>& points,
                      const voronoi::Neighbors& neighbors, const Settings& settings)
{
    MSelectionList shards;
    for (const auto& [point, others] : neighbors) {
        MString c = source;
        for (int other : others) {
            const voronoi::Cut cut = voronoi::cutBetween(&points[3 * std::size_t(point)], &points[3 * std::size_t(other)],
                                                         settings.distance);
            appendCut(scene, c, cut, settings.scale);
            if (settings.cleanup) {
                append(scene, c, "polyMergeVert", "vtx[*]");
                append(scene, c, "polyDelVertex", "vtx[*]");
            }
            if (settings.solid)
                append(scene, c, "polyCloseBorder", "e[*]");
        }
        if (!scene.ok())
            break;
        shards.add(c);
    }
    MStringArray names;
    shards.getSelectionStrings(names);
    return names;
}

/// One mesh of all shards; null if a command failed.
MObject unite(BorrowedScene& scene, const MStringArray& shards)
{
    const MString node = scene.createNode("polyUnite");
    scene.run("setAttr " + node + ".mergeUVSets 1");
    for (unsigned int k = 0; k < shards.length() && scene.ok(); ++k) {
        const MString mesh = scene.createMesh(), element = MString("[") + int(k) + "]";
        scene.connect(shards[k], mesh + ".inMesh");
        scene.connect(mesh + ".worldMatrix", node + ".inputMat" + element);
        scene.connect(mesh + ".outMesh", node + ".inputPoly" + element);
    }
    if (!scene.ok())
        return MObject::kNullObj;
    MSelectionList list;
    MPlug          output;
    MObject        united;
    if (list.add(node + ".output") && list.getPlug(0, output))
        united = output.asMObject();
    if (!united.hasFn(MFn::kMesh)) {
        scene.fail(node + ".output");
        return MObject::kNullObj;
    }
    return united;
}

} // namespace

MStatus shatter::initialize()
{
    using attr::atLeast;
    using attr::softMax;
    const attr::Row rows[] = {
        attr::generic(aInGeo, "inGeometry", "ig", {MFnData::kMesh}, attr::kInput),
        attr::generic(aInPosPP, "inPositionPP", "ippp", {MFnData::kVectorArray, MFnData::kNurbsCurve}, attr::kInput),
        attr::matrix(aInWorldInverseMatrix, "inWorldInverseMatrix", "iwim", attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "ogeo", {MFnData::kMesh}, attr::kOutput),
        attr::numeric(aAutoEvaluate, "autoEvaluate", "ae", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::enumeration(aShatterMode, "shatterMode", "sm", {{"solid", kSolid}, {"surface", kSurface}}, kSolid, attr::kControl),
        softMax(atLeast(attr::numeric(aDistance, "distance", "d", MFnNumericData::kDouble, 0.0, attr::kControl), 0.0), 2.0),
        attr::numeric(aCleanup, "cleanup", "c", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aStripPointColors, "stripPointColors", "spc", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::numeric(aPrintStatus, "printStatus", "ps", MFnNumericData::kBoolean, 1.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus shatter::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (plug != aOutGeo)                                                 // plug test
        return MS::kUnknownParameter;
    if (state == kHasNoEffect) {
        block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));
        return MS::kSuccess;
    }

    MObject    mesh = block.inputValue(aInGeo).asMeshTransformed();
    const bool cooks = block.inputValue(aAutoEvaluate).asBool() && MPlug(thisMObject(), aInGeo).isConnected() &&
                       MPlug(thisMObject(), aInPosPP).isConnected() && !mesh.isNull();
    if (cooks) {                                                         // work
        const std::vector<double> points = cellPoints(block);
        const voronoi::Neighbors  neighbors = points.size() < 9 ? voronoi::Neighbors() : touchingCells(points);
        if (MObject shards; !neighbors.empty() && !(shards = cook(block, points, neighbors)).isNull())
            mesh = shards;
    }
    block.outputValue(aOutGeo).set(mesh);                                // write
    return MS::kSuccess;
}

/// The centres of the cells in the space of the mesh.
std::vector<double> shatter::cellPoints(MDataBlock& block) const
{
    MDataHandle         handle = block.inputValue(aInPosPP);
    std::vector<double> points;
    const ArrayView     vectors = viewArray(handle.data());
    if (vectors.kind == MFn::kVectorArrayData)
        points.assign(vectors.doubles, vectors.doubles + vectors.valueCount());
    else if (MObject curve = handle.asNurbsCurveTransformed(); curve.hasFn(MFn::kNurbsCurve)) {
        MPointArray cvs;
        MFnNurbsCurve(curve).getCVs(cvs, MSpace::kWorld);
        for (unsigned int i = 0; i < cvs.length(); ++i)
            points.insert(points.end(), {cvs[i].x, cvs[i].y, cvs[i].z});
    }
    if (!MPlug(thisMObject(), aInWorldInverseMatrix).isConnected())
        return points;
    const MMatrix toMesh = block.inputValue(aInWorldInverseMatrix).asMatrix();
    for (std::size_t i = 0; i + 2 < points.size(); i += 3) {
        const MPoint p = MPoint(points[i], points[i + 1], points[i + 2]) * toMesh;
        points[i] = p.x;
        points[i + 1] = p.y;
        points[i + 2] = p.z;
    }
    return points;
}

/// The mesh of all shards, cut by nodes that are gone afterwards; null after an error, which is shown.
MObject shatter::cook(MDataBlock& block, const std::vector<double>& points, const voronoi::Neighbors& neighbors) const
{
    const MPlug       in(thisMObject(), aInGeo);
    const MString     name = nodeName(in);
    const std::time_t start = std::time(nullptr);
    const bool        tells = block.inputValue(aPrintStatus).asBool(), strips = block.inputValue(aStripPointColors).asBool();
    const Settings    settings{block.inputValue(aDistance).asDouble(), voronoi::lengthScale(MDistance::uiUnit()),
                               block.inputValue(aCleanup).asBool(), block.inputValue(aShatterMode).asShort() == kSolid};
    MPlugArray        sources;
    in.connectedTo(sources, true, false);
    if (sources.length() == 0)
        return MObject::kNullObj;
    if (tells)
        MGlobal::displayInfo(name + ": Cooking geometry ...");

    MObject      united;
    MString      failure;
    unsigned int shardCount = 0;
    {
        BorrowedScene      scene;
        const MStringArray shards = cutCells(scene, sources[0].name(), points, neighbors, settings);
        shardCount = shards.length();
        united = scene.ok() ? unite(scene, shards) : MObject::kNullObj;
        failure = scene.failure();
        scene.deleteNodes();
        if (strips && !united.isNull())
            MFnMesh(united).clearColors();
    }
    if (united.isNull()) {
        MGlobal::displayError(name + ": Cannot shatter the geometry, which is passed on as it is: '" + failure + "' failed.");
        return united;
    }
    if (tells)
        MGlobal::displayInfo(name + ": " + int(shardCount) + " shard(s) created in " +
                             std::difftime(std::time(nullptr), start) + " seconds.");
    return united;
}

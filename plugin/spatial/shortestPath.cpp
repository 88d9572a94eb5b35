#include "spatial/shortestPath.h"

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MComputation.h>
#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <algorithm>
#include <utility>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "spatial/geometryPoints.h"

namespace {

enum Mode : short { kOneToOne = 0, kAllToAll = 1, kExpression = 2 };

std::vector<float> objectPoints(const MFnMesh& mesh)
{
    MFloatPointArray points;
    mesh.getPoints(points, MSpace::kObject);
    std::vector<float> xyz;
    xyz.reserve(3 * static_cast<std::size_t>(points.length()));
    for (unsigned int i = 0; i < points.length(); ++i)
        xyz.insert(xyz.end(), {points[i].x, points[i].y, points[i].z});
    return xyz;
}

/// Indices of the first component of the list; what else is in it does not count.
std::vector<int> firstIndices(MObject list, int vertexCount)
{
    std::vector<int> indices;
    if (list.apiType() != MFn::kComponentListData)
        return indices;
    MFnComponentListData fn(list);
    if (fn.length() > 0)
        appendIndices(fn[0], vertexCount, indices);
    return indices;
}

/// A list of one component.
MObject componentsOf(MFn::Type type, const std::vector<int>& indices)
{
    MFnSingleIndexedComponent fn;
    MObject                   component = fn.create(type);
    if (!indices.empty())
        fn.addElements(MIntArray(indices.data(), static_cast<unsigned int>(indices.size())));
    MFnComponentListData list;
    MObject              data = list.create();
    list.add(component);
    return data;
}

MStatus writeInts(MDataBlock& block, const MObject& attribute, const std::vector<int>& values)
{
    OutArray out(OutArray::kInts);
    std::copy(values.begin(), values.end(), out.resizeInts(static_cast<unsigned int>(values.size())));
    return out.publish(block, attribute);
}

/// A polyline through the points of a path.
MObject curveOf(const int* vertices, int count, const std::vector<float>& points)
{
    MFnNurbsCurveData data;
    MObject           owner = data.create();
    if (count < 2)
        return owner;
    MPointArray  cvs;
    MDoubleArray knots;
    for (int i = 0; i < count; ++i) {
        const float* p = &points[3 * static_cast<std::size_t>(vertices[i])];
        cvs.append(MPoint(p[0], p[1], p[2]));
        knots.append(i);
    }
    MFnNurbsCurve().create(cvs, knots, 1, MFnNurbsCurve::kOpen, false, false, owner);
    return owner;
}

/// All vertices to all others may take hours: the user may end it, and keeps the paths found until then.
class Interruption
{
public:
    /// Asked before each pair. The first few cost too little to be ended.
    bool isRequested()
    {
        constexpr std::size_t kFew = 8;
        if (pairs_ == kFew)
            computation_.beginComputation(false, true, false);
        ended_ = pairs_ >= kFew && computation_.isInterruptRequested();
        pairs_ += !ended_;
        return ended_;
    }
    void tell(const MPlug& plug)
    {
        computation_.endComputation();
        MString text(": Interrupted after ");
        text += static_cast<double>(pairs_);
        if (ended_)
            warn(plug, text + " pairs. The paths that were found are kept.");
    }

private:
    MComputation computation_;
    std::size_t  pairs_ = 0;
    bool         ended_ = false;
};

} // namespace

MStatus shortestPath::initialize()
{
    using attr::atLeast;
    const attr::Row rows[] = {
        attr::numeric(aActive, "active", "act", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::enumeration(aMode, "mode", "mode",
                          {{"inputs - one to one", kOneToOne}, {"inputs - all to all", kAllToAll}, {"expression", kExpression}},
                          kOneToOne, attr::kControl),
        attr::text(aExpression, "expression", "exp", attr::kStored),
        attr::numeric(aIntersecting, "intersecting", "isect", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::numeric(aObstacles, "obstacles", "obst", MFnNumericData::kBoolean, 0.0, attr::kControl),
        atLeast(attr::numeric(aMaxSteps, "maxSteps", "mstp", MFnNumericData::kInt, -1.0, attr::kControl), -1.0),
        atLeast(attr::numeric(aMaxDistance, "maxDistance", "mdst", MFnNumericData::kFloat, -1.0, attr::kControl), -1.0),
        attr::numeric(aTravel, "travel", "tvl", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aColors, "colors", "clrs", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::text(aColorSet, "colorSet", "clrSet", attr::kStored),
        attr::generic(aInMesh, "inMesh", "im", {MFnData::kMesh}, attr::kInput),
        attr::typed(aInStartComp, "inStartComponents", "iscmp", MFnData::kComponentList, attr::kInput),
        attr::typed(aInEndComp, "inEndComponents", "iecmp", MFnData::kComponentList, attr::kInput),
        attr::generic(aInMaxStepPP, "inMaxStepPP", "imspp", {MFnData::kIntArray}, attr::kInput),
        attr::generic(aInMaxDistancePP, "inMaxDistancePP", "imdpp", {MFnData::kDoubleArray}, attr::kInput),
        attr::generic(aInObstacleComp, "inObstacleVertexComponents", "iovc", {MFnData::kComponentList, MFnData::kIntArray},
                      attr::kInput),
        attr::typed(aOutVertexComp, "outVertexComponents", "ovc", MFnData::kComponentList, attr::kOutput),
        attr::typed(aOutEdgeComp, "outEdgeComponents", "oec", MFnData::kComponentList, attr::kOutput),
        attr::typed(aOutCounts, "outCounts", "ocnts", MFnData::kIntArray, attr::kOutput),
        attr::typed(aOutIndexPP, "outIndexPP", "oidxpp", MFnData::kIntArray, attr::kOutput),
        attr::typed(aOutPosPP, "outPositionPP", "oppp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutStepPP, "outStepPP", "ostppp", MFnData::kIntArray, attr::kOutput),
        attr::typed(aOutDistancePP, "outDistancePP", "odstpp", MFnData::kDoubleArray, attr::kOutput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", MFnData::kDoubleArray, attr::kOutput),
        attr::typed(aOutIndexPE, "outIndexPE", "oidxpe", MFnData::kIntArray, attr::kOutput),
        attr::multi(attr::generic(aOutCurves, "outCurves", "ocrvs", {MFnData::kNurbsCurve}, attr::kOutput)),
    };
    return attr::declare(rows);
}

MStatus shortestPath::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutPosPP, &aOutStepPP, &aOutDistancePP, &aOutVertexComp, &aOutEdgeComp, &aOutCounts, &aOutIndexPP,
                        &aOutRgbaPP, &aOutIndexPE, &aOutCurves}))        // plug test: one run fills all
        return MS::kUnknownParameter;

    MDataHandle        inMesh = block.inputValue(aInMesh);               // work
    const bool         hasMesh = inMesh.type() == MFnData::kMesh;
    MFnMesh            mesh(hasMesh ? inMesh.asMeshTransformed() : MObject::kNullObj);
    std::vector<float> points;
    paths::Paths       found;
    if (hasMesh && block.inputValue(aActive).asBool()) {                 // switch
        points = objectPoints(mesh);
        updateGraph(mesh, points);
        const int               vertexCount = graph_.vertexCount();
        const std::vector<char> blocked = obstacles(block, vertexCount);
        const paths::Rule       rule{block.inputValue(aIntersecting).asBool(), block.inputValue(aTravel).asBool()};
        const auto              exists = [&](int v) { return v >= 0 && v < vertexCount; };
        Interruption            interruption;
        eachPair(block, vertexCount, [&](int start, int end, const paths::Limits& limits) {
            if (interruption.isRequested())
                return false;
            if (exists(start) && exists(end) && start != end)
                paths::publish(graph_, finder_.find(graph_, start, end, blocked), rule, limits, found);
            return true;
        });
        interruption.tell(plug);
    }

    block.outputValue(aOutVertexComp).set(componentsOf(MFn::kMeshVertComponent, found.vertices));   // write
    block.outputValue(aOutEdgeComp).set(componentsOf(MFn::kMeshEdgeComponent, found.edges));
    writeInts(block, aOutCounts, found.counts);
    writeInts(block, aOutIndexPP, found.vertices);
    writeInts(block, aOutStepPP, found.steps);
    writeInts(block, aOutIndexPE, found.edges);
    OutArray positions(OutArray::kVectors), distances(OutArray::kDoubles);
    double*  to = positions.resize(static_cast<unsigned int>(found.vertices.size()));
    for (const int v : found.vertices)
        to = std::copy_n(&points[3 * static_cast<std::size_t>(v)], 3, to);
    positions.publish(block, aOutPosPP);
    std::copy(found.distances.begin(), found.distances.end(),
              distances.resize(static_cast<unsigned int>(found.distances.size())));
    distances.publish(block, aOutDistancePP);
    writeColors(block, hasMesh ? &mesh : nullptr, found.vertices);
    writeCurves(found, points);
    return MS::kSuccess;
}

void shortestPath::updateGraph(MFnMesh& mesh, const std::vector<float>& points)
{
    const int counts[3] = {mesh.numVertices(), mesh.numEdges(), mesh.numPolygons()};
    if (counts[0] > 0 && counts[1] > 0 && counts[2] > 0 && std::equal(counts, counts + 3, counts_))
        return;
    std::copy(counts, counts + 3, counts_);
    std::vector<std::pair<int, int>> edges(static_cast<std::size_t>(counts[1]));
    for (int e = 0; e < counts[1]; ++e) {
        int2 ends = {0, 0};
        mesh.getEdgeVertices(e, ends);
        edges[static_cast<std::size_t>(e)] = {ends[0], ends[1]};
    }
    graph_ = paths::EdgeGraph(points, edges);
}

/// One flag a vertex; empty without obstacles. They are no part of the graph, so that any change of them counts at once.
std::vector<char> shortestPath::obstacles(MDataBlock& block, int vertexCount)
{
    std::vector<char> flags;
    if (!block.inputValue(aObstacles).asBool())
        return flags;
    const MObject    data = block.inputValue(aInObstacleComp).data();
    std::vector<int> indices = firstIndices(data, vertexCount);
    if (const ArrayView view = viewArray(data); view.ints)
        indices.assign(view.ints, view.ints + view.length);
    flags.resize(static_cast<std::size_t>(vertexCount));
    for (const int v : indices)
        if (v >= 0 && v < vertexCount)
            flags[static_cast<std::size_t>(v)] = 1;
    return flags;
}

/// The pairs of the mode in their order, each with its limits.
void shortestPath::eachPair(MDataBlock& block, int vertexCount, const Visit& visit)
{
    paths::Limits limits;
    limits.maxSteps = block.inputValue(aMaxSteps).asInt();
    limits.maxDistance = block.inputValue(aMaxDistance).asFloat();
    const short mode = block.inputValue(aMode).asShort();
    if (mode == kExpression) {
        for (const paths::Pair& p : paths::parsePairs(block.inputValue(aExpression).asString().asChar()))
            if (!visit(p.start, p.end, {p.hasSteps ? p.maxSteps : limits.maxSteps,
                                        p.hasDistance ? p.maxDistance : limits.maxDistance}))
                return;
        return;
    }
    const std::vector<int> starts = firstIndices(block.inputValue(aInStartComp).data(), vertexCount);
    const std::vector<int> ends = firstIndices(block.inputValue(aInEndComp).data(), vertexCount);
    const ArrayView        maxSteps = viewArray(block, aInMaxStepPP), maxDistances = viewArray(block, aInMaxDistancePP);
    std::size_t            pair = 0;
    const auto             next = [&](int start, int end) {
        if (maxSteps.ints && pair < maxSteps.length)   // stays in force for the pairs after the end of the array
            limits.maxSteps = maxSteps.ints[pair];
        if (maxDistances.kind == MFn::kDoubleArrayData && pair < maxDistances.length)
            limits.maxDistance = maxDistances.doubles[pair];
        ++pair;
        return visit(start, end, limits);
    };
    if (mode == kOneToOne) {
        for (std::size_t i = 0; i < std::min(starts.size(), ends.size()); ++i)
            if (!next(starts[i], ends[i]))
                return;
    } else if (mode == kAllToAll) {
        for (const int start : starts)
            for (const int end : ends)
                if (!next(start, end))
                    return;
    }
}

void shortestPath::writeColors(MDataBlock& block, const MFnMesh* mesh, const std::vector<int>& vertices)
{
    OutArray    rgba(OutArray::kDoubles);
    MColorArray colors;
    if (mesh && block.inputValue(aColors).asBool()) {
        const MString set = block.inputValue(aColorSet).asString();
        mesh->getVertexColors(colors, set.length() > 0 ? &set : nullptr);
    }
    if (colors.length() > 0 && !vertices.empty()) {
        double* to = rgba.resize(4 * static_cast<unsigned int>(vertices.size()));
        for (const int v : vertices) {
            const MColor& c = colors[static_cast<unsigned int>(v)];
            for (const float channel : {c.r, c.g, c.b, c.a})
                *to++ = channel;
        }
    }
    rgba.publish(block, aOutRgbaPP);
}

/// One curve a path, to the connected elements in their order; elements without a path, or with one of a single point,
/// get a curve without points, so that none keeps that of an earlier run.
void shortestPath::writeCurves(const paths::Paths& found, const std::vector<float>& points)
{
    MPlug              curves(thisMObject(), aOutCurves);
    const unsigned int elements = curves.numConnectedElements();
    const int*         vertices = found.vertices.data();
    for (unsigned int i = 0; i < elements; ++i) {
        const int count = i < found.counts.size() ? found.counts[i] : 0;
        curves.connectionByPhysicalIndex(i).setMObject(curveOf(vertices, count, points));
        vertices += count;
    }
}

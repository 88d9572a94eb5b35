#include "spatial/resolvePointCollisions.h"

#include <maya/MDataHandle.h>
#include <maya/MFnComponentListData.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "spatial/geometryPoints.h"
#include "spatial/pointRelaxation.h"

namespace {

constexpr int kMostIterations = 10000;   // an evaluation has to end

} // namespace

MStatus resolvePointCollisions::initialize()
{
    const auto geometry = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, MFnData::kVectorArray};
    using attr::atLeast;
    const attr::Row rows[] = {
        attr::generic(aInGeo, "inGeometry", "ig", geometry, attr::kInput),
        attr::generic(aInComp, "inComponents", "ic", {MFnData::kComponentList, MFnData::kIntArray}, attr::kInput),
        attr::typed(aInRadiusPP, "inRadiusPP", "irdspp", MFnData::kDoubleArray, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometry, attr::kOutput),
        attr::numeric(aActive, "active", "act", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::enumeration(aUseComp, "useComponents", "uc", {{"None", 0}, {"Input Components List", 1}}, 0, attr::kControl),
        attr::hidden(atLeast(attr::numeric(aMaxPointsPerLeaf, "maxPointsPerLeaf", "mppl", MFnNumericData::kInt, 50.0, attr::kStored), 4.0)),
        atLeast(attr::numeric(aRadius, "radius", "rds", MFnNumericData::kFloat, 1.0, attr::kControl), 0.001),
        attr::softMax(atLeast(attr::numeric(aIterations, "iterations", "itr", MFnNumericData::kInt, 2.0, attr::kControl), 1.0), 100.0),
        attr::numeric(aMutual, "mutual", "mtl", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aRadiusAffectsMass, "radiusAffectsMass", "ram", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus resolvePointCollisions::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking || plug != aOutGeo)                           // plug test
        return MS::kUnknownParameter;
    if (!MPlug(thisMObject(), aInGeo).isConnected())                     // connection test
        return MS::kSuccess;

    MDataHandle outGeo = block.outputValue(aOutGeo);                     // copy through
    outGeo.copy(block.inputValue(aInGeo));
    if (state == kHasNoEffect || !block.inputValue(aActive).asBool())    // switch
        return MS::kSuccess;

    std::vector<double> points = worldPoints(outGeo);                    // work
    if (points.empty())
        return MS::kSuccess;
    const std::size_t count = points.size() / 3;
    relaxation::Rule  rule;
    rule.maxPointsPerLeaf = std::max(4, block.inputValue(aMaxPointsPerLeaf).asInt());
    rule.mutual = block.inputValue(aMutual).asBool();

    const double        radius = block.inputValue(aRadius).asFloat();
    const ArrayView     factors = viewArray(block, aInRadiusPP);
    const bool          ofPoints = factors.kind == MFn::kDoubleArrayData && factors.length > 0;
    std::vector<double> radii(count, ofPoints ? 0.0 : radius);
    for (std::size_t i = 0; ofPoints && i < std::min<std::size_t>(count, factors.length); ++i)
        radii[i] = factors.doubles[i] * radius;
    if (ofPoints && block.inputValue(aRadiusAffectsMass).asBool())
        for (const double r : radii)
            rule.largestRadius = std::max(rule.largestRadius, r);

    const bool             subset = block.inputValue(aUseComp).asShort() == 1;
    const std::vector<int> ids = subset ? selected(block, outGeo, static_cast<int>(count)) : std::vector<int>();
    const int              iterations = std::clamp(block.inputValue(aIterations).asInt(), 1, kMostIterations);
    for (int round = 0; round < iterations; ++round) {
        const std::vector<double> before = points;
        relaxation::relax(points, radii, subset ? &ids : nullptr, rule);
        if (points == before)   // and so it would stay
            break;
    }

    setWorldPoints(outGeo, points);                                      // write
    return MS::kSuccess;
}

/// The points that inComponents names; none if nothing is connected.
std::vector<int> resolvePointCollisions::selected(MDataBlock& block, MDataHandle& geometry, int pointCount)
{
    std::vector<int> ids;
    if (!MPlug(thisMObject(), aInComp).isConnected())
        return ids;
    MObject data = block.inputValue(aInComp).data();
    if (const ArrayView view = viewArray(data); view.ints)
        return {view.ints, view.ints + view.length};
    if (data.apiType() != MFn::kComponentListData)
        return ids;
    MFnComponentListData list(data);
    if (list.length() == 0)
        return ids;
    if (appendIndices(list[0], pointCount, ids)) {
        for (unsigned int i = 1; i < list.length(); ++i)
            appendIndices(list[i], pointCount, ids);
        return ids;
    }
    if (geometry.type() == MFnData::kVectorArray)   // no components of its own
        return ids;
    for (MItGeometry it(geometry); !it.isDone(); it.next())
        if (list.has(it.currentItem()))
            ids.push_back(it.index());
    return ids;
}

#include "spatial/kdTree.h"

#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MEvaluationNode.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "spatial/geometryPoints.h"
#include "spatial/neighborMeans.h"

namespace {

/// The entries of a per-query array, padded with zeros or cut to the number of queries.
template <class T>
std::vector<T> fitted(const T* values, unsigned int length, std::size_t count)
{
    std::vector<T> result(count, T(0));
    if (values)
        std::copy_n(values, std::min<std::size_t>(length, count), result.begin());
    return result;
}

} // namespace

MStatus kdTree::initialize()
{
    const auto geometry = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, MFnData::kVectorArray};
    const auto data = {MFnData::kIntArray, MFnData::kFloatArray, MFnData::kDoubleArray, MFnData::kVectorArray};
    using attr::atLeast;
    const attr::Row rows[] = {
        attr::generic(aInGeo, "inGeometry", "ig", geometry, attr::kInput),
        attr::generic(aInDataPP, "inDataPP", "idpp", data, attr::kInput),
        attr::generic(aInGeo2, "inGeometry2", "ig2", geometry, attr::kInput),
        attr::typed(aInCountPP, "inCountPP", "icntpp", MFnData::kIntArray, attr::kInput),
        attr::typed(aInRadiusPP, "inRadiusPP", "irdspp", MFnData::kDoubleArray, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometry, attr::kOutput),
        attr::generic(aOutGeo2, "outGeometry2", "og2", geometry, attr::kOutput),
        attr::generic(aOutDataPP, "outDataPP", "odpp", data, attr::kOutput),
        attr::typed(aOutAvgPosPP, "outAveragePositionPP", "oavgpospp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutCountPP, "outCountPP", "ocntpp", MFnData::kIntArray, attr::kOutput),
        attr::typed(aOutIdPP, "outIdPP", "oidpp", MFnData::kIntArray, attr::kOutput),
        attr::typed(aOutDistancePP, "outDistancePP", "odstpp", MFnData::kDoubleArray, attr::kOutput),
        attr::numeric(aActive, "active", "act", MFnNumericData::kBoolean, 1.0, attr::kControl),
        atLeast(attr::numeric(aMaxPointsPerLeaf, "maxPointsPerLeaf", "mppl", MFnNumericData::kInt, 50.0, attr::kControl), 1.0),
        atLeast(attr::numeric(aCount, "count", "cnt", MFnNumericData::kInt, 5.0, attr::kControl), 1.0),
        atLeast(attr::numeric(aRadius, "radius", "rds", MFnNumericData::kFloat, -1.0, attr::kControl), -1.0),
        attr::numeric(aOutputMappingData, "outputMappingData", "omd", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aIgnoreOverlapping, "ignoreOverlappingPoints", "iop", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus kdTree::setDependentsDirty(const MPlug& plug, MPlugArray& affected)
{
    if (isAnyOf(plug, {&aInGeo, &aInGeo2}))
        geometryChanged_ = true;
    return MPxNode::setDependentsDirty(plug, affected);
}

MStatus kdTree::preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode)
{
    if (evaluationNode.dirtyPlugExists(aInGeo) || evaluationNode.dirtyPlugExists(aInGeo2))
        geometryChanged_ = true;
    return MPxNode::preEvaluation(context, evaluationNode);
}

MStatus kdTree::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutGeo, &aOutGeo2, &aOutDataPP, &aOutAvgPosPP, &aOutCountPP, &aOutIdPP, &aOutDistancePP}))
        return MS::kUnknownParameter;                                    // plug test: one run fills all

    block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));           // copy through
    block.outputValue(aOutGeo2).copy(block.inputValue(aInGeo2));
    if (state == kHasNoEffect || !block.inputValue(aActive).asBool())    // switch
        return MS::kSuccess;

    updateTree(block);                                                   // work
    if (treePoints_.empty() || queries_.empty())
        return writeEmpty(block);
    const std::size_t         queryCount = queries_.size() / 3;
    const bool                perQueryCount = MPlug(thisMObject(), aInCountPP).isConnected();
    const bool                perQueryRadius = MPlug(thisMObject(), aInRadiusPP).isConnected();
    const ArrayView           countView = viewArray(block, aInCountPP), radiusView = viewArray(block, aInRadiusPP);
    const std::vector<int>    counts = fitted(countView.ints, countView.length, perQueryCount ? queryCount : 0);
    const double* const       factors = radiusView.kind == MFn::kDoubleArrayData ? radiusView.doubles : nullptr;
    const std::vector<double> radii = fitted(factors, radiusView.length, perQueryRadius ? queryCount : 0);

    neighbors::Rule rule;
    rule.treeCount = treePoints_.size() / 3;
    rule.count = block.inputValue(aCount).asInt();
    rule.radius = block.inputValue(aRadius).asFloat();
    rule.skipOverlapping = block.inputValue(aIgnoreOverlapping).asBool();
    rule.counts = perQueryCount ? counts.data() : nullptr;
    rule.radii = perQueryRadius ? radii.data() : nullptr;

    OutArray                averages(OutArray::kVectors);
    double*                 mean = averages.resize(static_cast<unsigned int>(queryCount));
    const neighbors::Result found =
        neighbors::find(*tree_, treePoints_.data(), queries_.data(), queryCount, rule, mean);

    averages.publish(block, aOutAvgPosPP);                               // write
    OutArray outCounts(OutArray::kInts), ids(OutArray::kInts), distances(OutArray::kDoubles);
    std::copy(found.counts.begin(), found.counts.end(), outCounts.resizeInts(static_cast<unsigned int>(queryCount)));
    if (block.inputValue(aOutputMappingData).asBool() && !found.ids.empty()) {
        const auto total = static_cast<unsigned int>(found.ids.size());
        std::copy(found.ids.begin(), found.ids.end(), ids.resizeInts(total));
        std::copy(found.distances.begin(), found.distances.end(), distances.resize(total));
    }
    outCounts.publish(block, aOutCountPP);
    ids.publish(block, aOutIdPP);
    distances.publish(block, aOutDistancePP);
    writeMeans(block, found);
    return MS::kSuccess;
}

/// The tree stands as long as its points and leaf size do.
void kdTree::updateTree(MDataBlock& block)
{
    const bool otherTime = !block.context().isNormal();
    const int  leafSize = block.inputValue(aMaxPointsPerLeaf).asInt();
    if (geometryChanged_ || otherTime) {
        MDataHandle         tree = block.outputValue(aOutGeo), queries = block.outputValue(aOutGeo2);
        std::vector<double> points = worldPoints(tree);
        queries_ = worldPoints(queries);
        if (points != treePoints_)
            tree_.reset();
        treePoints_ = std::move(points);
    }
    geometryChanged_ = otherTime;   // what was kept belongs to that other time
    if (!tree_ || leafSize != leafSize_)
        tree_ = std::make_unique<PointTree>(treePoints_.data(), treePoints_.size() / 3, leafSize);
    leafSize_ = leafSize;
}

/// inDataPP over the neighbours, in the type it has; an empty double array without it.
void kdTree::writeMeans(MDataBlock& block, const neighbors::Result& found)
{
    const ArrayView data = viewArray(block, aInDataPP);
    const auto      queryCount = static_cast<unsigned int>(found.counts.size());
    OutArray        none(OutArray::kDoubles);
    if (!MPlug(thisMObject(), aInDataPP).isConnected()) {
        none.publish(block, aOutDataPP);
        return;
    }
    switch (data.kind) {
    case MFn::kIntArrayData: {
        OutArray out(OutArray::kInts);
        neighbors::means(found, data.ints, data.length, 1, out.resizeInts(queryCount));
        out.publish(block, aOutDataPP);
        break;
    }
    case MFn::kFloatArrayData: {
        OutArray out(OutArray::kFloats);
        neighbors::means(found, data.floats, data.length, 1, out.resizeFloats(queryCount));
        out.publish(block, aOutDataPP);
        break;
    }
    case MFn::kDoubleArrayData:
    case MFn::kVectorArrayData: {
        OutArray out(data.stride == 3 ? OutArray::kVectors : OutArray::kDoubles);
        neighbors::means(found, data.doubles, data.length, data.stride, out.resize(queryCount));
        out.publish(block, aOutDataPP);
        break;
    }
    default: none.publish(block, aOutDataPP);
    }
}

MStatus kdTree::writeEmpty(MDataBlock& block)
{
    OutArray(OutArray::kVectors).publish(block, aOutAvgPosPP);
    OutArray(OutArray::kInts).publish(block, aOutCountPP);
    OutArray(OutArray::kInts).publish(block, aOutIdPP);
    OutArray(OutArray::kDoubles).publish(block, aOutDistancePP);
    writeMeans(block, {});
    return MS::kSuccess;
}

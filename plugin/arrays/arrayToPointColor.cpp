#include "arrays/arrayToPointColor.h"

#include <maya/MColorArray.h>
#include <maya/MDataHandle.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>

#include "arrays/pointColor.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/subset.h"

using pointColor::Layout;

namespace {

/// How the array makes colours; `known` is false for kinds of data that are passed over without a word.
/// Three doubles a point are refused here.
Layout layoutOf(const ArrayView& array, unsigned int pointCount, bool& known)
{
    known = true;
    switch (array.kind) {
    case MFn::kPointArrayData:  return array.length == pointCount ? Layout::kXyzw : Layout::kNone;
    case MFn::kVectorArrayData: return array.length == pointCount ? Layout::kXyz : Layout::kNone;
    case MFn::kDoubleArrayData: return pointColor::layoutOfDoubles(array.length, pointCount, false);
    default:                    known = false; return Layout::kNone;
    }
}

/// Vertices in the subset, ascending.
MIntArray selectedVertices(MDataHandle& geometry, const Subset& subset, unsigned int pointCount)
{
    if (subset.all())
        return subset.indices(pointCount);
    MIntArray ids;
    int       i = 0;
    for (MItGeometry it(geometry); !it.isDone() && static_cast<unsigned int>(i) < pointCount; it.next(), ++i) {
        if (subset.has(it.currentItem()))
            ids.append(i);
    }
    return ids;
}

} // namespace

MStatus arrayToPointColor::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::typed(aInGeo, "inGeometry", "ig", MFnData::kMesh, attr::kInput),
        attr::generic(aInRgbaPP, "inRgbaPP", "irgbapp",
                      {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kPointArray}, attr::kInput),
        attr::typed(aOutGeo, "outGeometry", "og", MFnData::kMesh, attr::kOutput),
        attr::typed(aInComp, "inComponents", "ic", MFnData::kComponentList, attr::kInput),
        attr::enumeration(aUseComp, "useComponents", "uc", attr::kSubsetFields, 0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::numeric(aClamp, "clamp", "c", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aClampMin, "clampMin", "cmn", MFnNumericData::kDouble, 0.0, attr::kControl),
        attr::numeric(aClampMax, "clampMax", "cmx", MFnNumericData::kDouble, 1.0, attr::kControl),
        attr::numeric(aSolidAlpha, "solidAlpha", "sa", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus arrayToPointColor::compute(const MPlug& plug, MDataBlock& block)
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
    if (!block.inputValue(aEnvelope).asBool())                           // switch
        return MS::kSuccess;

    MObject    meshObject = outGeo.asMeshTransformed();                  // work
    MFnMesh    mesh(meshObject);
    const auto pointCount = static_cast<unsigned int>(mesh.numVertices());

    const ArrayView  array = viewArray(block, aInRgbaPP);
    bool             known = true;
    pointColor::Rule rule;
    rule.layout = layoutOf(array, pointCount, known);
    if (rule.layout == Layout::kNone) {
        if (known)
            warn(MPlug(thisMObject(), aInGeo), ": inRgbaPP array length does not match the point count.");
        return outGeo.set(meshObject);
    }
    rule.clamp = block.inputValue(aClamp).asBool();
    rule.min = block.inputValue(aClampMin).asDouble();
    rule.max = block.inputValue(aClampMax).asDouble();
    rule.solidAlpha = block.inputValue(aSolidAlpha).asBool();

    const auto   mode = static_cast<SubsetMode>(block.inputValue(aUseComp).asShort());
    const int    groupId = block.inputValue(aGroupId).asInt();
    const Subset subset(block, mode, {MPlug(thisMObject(), aInComp), outGeo.data(), groupId});
    MIntArray    ids = selectedVertices(outGeo, subset, pointCount);
    MColorArray  colors;
    colors.setLength(ids.length());
    for (unsigned int k = 0; k < ids.length(); ++k) {
        const pointColor::Rgba c = pointColor::at(array.doubles, static_cast<std::size_t>(ids[k]), rule, 0.0f);
        colors[k] = MColor(c.r, c.g, c.b, c.a);
    }
    if (ids.length() > 0)
        mesh.setVertexColors(colors, ids);
    return outGeo.set(meshObject);                                       // write
}

#include "arrays/transformsToArrays.h"

#include <maya/MEulerRotation.h>
#include <maya/MFnMatrixData.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MTransformationMatrix.h>

#include <algorithm>
#include <vector>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"

namespace {

/// Not quite 180 / pi: saved scenes rely on it.
constexpr double kDegrees = 57.29582;

/// Flat values for each of the outputs.
struct Columns
{
    std::vector<double> positions, rotations, scales, weights, rgba, radii;
};

bool hasSource(const MPlug& plug)
{
    MPlugArray sources;
    return plug.connectedTo(sources, true, false) && sources.length() > 0;
}

/// Translation, rotation in the order given and scale of a matrix.
void appendTransform(const MMatrix& matrix, MTransformationMatrix::RotationOrder order, Columns& out)
{
    MTransformationMatrix transform(matrix);
    transform.reorderRotation(order);
    const MVector position = transform.getTranslation(MSpace::kWorld);
    double        scale[3] = {1.0, 1.0, 1.0}, rotation[3] = {};
    transform.getRotation(rotation, order, MSpace::kWorld);
    transform.getScale(scale, MSpace::kWorld);
    for (int c = 0; c < 3; ++c) {
        out.positions.push_back(position[unsigned(c)]);
        out.rotations.push_back(rotation[c] * kDegrees);
        out.scales.push_back(scale[c]);
    }
}

MStatus publish(MDataBlock& block, const MObject& attribute, OutArray::Kind kind, const std::vector<double>& values)
{
    OutArray     out(kind);
    const size_t length = kind == OutArray::kVectors ? values.size() / 3 : values.size();
    std::copy(values.begin(), values.end(), out.resize(static_cast<unsigned int>(length)));
    return out.publish(block, attribute);
}

} // namespace

MStatus transformsToArrays::initialize()
{
    const auto real = [](MObject& attribute, const char* longName, const char* shortName) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kFloat, 1.0, attr::kControl);
    };
    const attr::Row color = attr::tuple(aInColor, "inColor", "ic",
                                        {real(aInColorRgb[0], "inColorR", "icr"), real(aInColorRgb[1], "inColorG", "icg"),
                                         real(aInColorRgb[2], "inColorB", "icb")}, attr::kControl);
    const attr::Row inMatrix = attr::matrix(aInMatrix, "inMatrix", "im", attr::kInput);
    const attr::Row order = attr::numeric(aInRotateOrder, "inRotateOrder", "iro", MFnNumericData::kInt, 0.0, attr::kControl);
    const attr::Row weight = real(aInWeight, "inWeight", "iw"), alpha = real(aInAlpha, "inAlpha", "ia"),
                    radius = real(aInRadius, "inRadius", "ir");
    const attr::Row rows[] = {
        attr::multi(attr::compound(aInTransforms, "inTransforms", "it", {inMatrix, order, weight, color, alpha, radius},
                                   attr::kStored)),
        attr::typed(aOutPositionPP, "outPositionPP", "oppp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutRotationPP, "outRotationPP", "orpp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutScalePP, "outScalePP", "ospp", MFnData::kVectorArray, attr::kOutput),
        attr::typed(aOutWeightPP, "outWeightPP", "owpp", MFnData::kDoubleArray, attr::kOutput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", MFnData::kDoubleArray, attr::kOutput),
        attr::typed(aOutRadiusPP, "outRadiusPP", "oradpp", MFnData::kDoubleArray, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus transformsToArrays::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutPositionPP, &aOutRotationPP, &aOutScalePP, &aOutWeightPP, &aOutRgbaPP, &aOutRadiusPP}))
        return MS::kUnknownParameter;                                    // plug test: one run fills all

    const MPlug transforms(thisMObject(), aInTransforms);                // work
    MIntArray   indices;
    Columns     out;
    auto        order = MTransformationMatrix::kXYZ;                     // an order out of range leaves it as it is
    transforms.getExistingArrayAttributeIndices(indices);
    for (unsigned int i = 0; i < indices.length(); ++i) {
        const MPlug element = transforms.elementByLogicalIndex(unsigned(indices[i]));
        const MPlug matrix = element.child(aInMatrix);
        if (!hasSource(matrix))
            continue;
        const int rotateOrder = element.child(aInRotateOrder).asInt();
        if (rotateOrder >= 0 && rotateOrder <= 5)
            order = MTransformationMatrix::RotationOrder(rotateOrder + 1);
        MObject data = matrix.asMObject();
        appendTransform(MFnMatrixData(data).matrix(), order, out);
        out.weights.push_back(element.child(aInWeight).asFloat());
        const MPlug color = element.child(aInColor);
        for (const MObject& channel : aInColorRgb)
            out.rgba.push_back(color.child(channel).asFloat());
        out.rgba.push_back(element.child(aInAlpha).asFloat());
        out.radii.push_back(element.child(aInRadius).asFloat());
    }

    publish(block, aOutPositionPP, OutArray::kVectors, out.positions);   // write
    publish(block, aOutRotationPP, OutArray::kVectors, out.rotations);
    publish(block, aOutScalePP, OutArray::kVectors, out.scales);
    publish(block, aOutWeightPP, OutArray::kDoubles, out.weights);
    publish(block, aOutRgbaPP, OutArray::kDoubles, out.rgba);
    return publish(block, aOutRadiusPP, OutArray::kDoubles, out.radii);
}

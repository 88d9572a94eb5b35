#include "volumes/boundingObject.h"

#include <maya/MDataHandle.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"
#include "volumes/boundElement.h"
#include "volumes/cloudSources.h"

namespace {

using attr::kControl;
using attr::kInput;
using attr::kOutput;
using attr::kStored;

const MFnNumericData::Type kBoolean = MFnNumericData::kBoolean, kDouble = MFnNumericData::kDouble,
                           kFloat = MFnNumericData::kFloat, kInt = MFnNumericData::kInt;

attr::Row capScale(MObject& whole, MObject& x, MObject& y, MObject& z, const char* longName, const char* shortName)
{
    const auto axis = [&](MObject& part, const char* upper, const char* lower) {
        return attr::atLeast(attr::numeric(part, (MString(longName) + upper).asChar(),
                                           (MString(shortName) + lower).asChar(), kDouble, 1.0, kControl), 0.0);
    };
    return attr::compound(whole, longName, shortName, {axis(x, "X", "x"), axis(y, "Y", "y"), axis(z, "Z", "z")},
                          kControl);
}

/// `partShort` begins the channels' short names.
attr::Row color(MObject& whole, MObject (&parts)[3], const char* longName, const char* shortName,
                const char* partShort, const double (&rgb)[3])
{
    const auto channel = [&](int i, const char* upper, const char* lower) {
        return attr::numeric(parts[i], (MString(longName) + upper).asChar(), (MString(partShort) + lower).asChar(),
                             kFloat, rgb[i], kControl);
    };
    const attr::Row row = attr::tuple(whole, longName, shortName,
                                      {channel(0, "R", "r"), channel(1, "G", "g"), channel(2, "B", "b")}, kControl);
    MFnNumericAttribute(whole).setUsedAsColor(true);
    return row;
}

attr::Row controlRow()
{
    using Node = boundingObject;
    return attr::compound(Node::aControlData, "controlData", "cd", {
        attr::numeric(Node::aEnvelope, "envelope", "en", kBoolean, 1.0, kControl),
        attr::enumeration(Node::aType, "type", "tp",
                          {{"Sphere", 0}, {"Cube", 1}, {"Capsule", 2}, {"Input Geometry", 3}}, 0, kControl),
        attr::numeric(Node::aContained, "contained", "cnt", kBoolean, 1.0, kControl),
        attr::atLeast(attr::numeric(Node::aTopCapOffset, "topCapOffset", "tso", kDouble, 1.0, kControl), 0.0),
        capScale(Node::aTopCapScale, Node::aTopCapScaleX, Node::aTopCapScaleY, Node::aTopCapScaleZ, "topCapScale",
                 "ts"),
        attr::atLeast(attr::numeric(Node::aBottomCapOffset, "bottomCapOffset", "bso", kDouble, 1.0, kControl), 0.0),
        capScale(Node::aBottomCapScale, Node::aBottomCapScaleX, Node::aBottomCapScaleY, Node::aBottomCapScaleZ,
                 "bottomCapScale", "bs"),
        attr::enumeration(Node::aNormal, "normal", "nml",
                          {{"Along X Axis", 0}, {"Along Y Axis", 1}, {"Along Z Axis", 2}, {"Away From Center", 3}}, 0,
                          kControl),
    }, kStored);
}

/// The bundle that consumers connect: matrix, controls, cloud. Their own attributes stand in the same order.
attr::Row outDataRow()
{
    using Node = boundingObject;
    const attr::Row matrix = attr::matrix(Node::aOutParentMatrix, "outParentMatrix", "opm", kOutput);
    const attr::Row control = controlRow();
    const attr::Row cloud = attr::compound(
        Node::aDataPP, "dataPP", "dpp",
        {attr::typed(Node::aPositionPP, "positionPP", "ppp", MFnData::kPointArray, kOutput),
         attr::typed(Node::aNormalPP, "normalPP", "npp", MFnData::kVectorArray, kOutput),
         attr::typed(Node::aRadiusPP, "radiusPP", "rpp", MFnData::kDoubleArray, kOutput),
         attr::typed(Node::aWeightPP, "weightPP", "wpp", MFnData::kDoubleArray, kOutput),
         attr::typed(Node::aRgbaPP, "rgbaPP", "rgbapp", MFnData::kDoubleArray, kOutput)},
        kOutput);
    return attr::compound(Node::aOutData, "outData", "od", {matrix, control, cloud}, kStored);
}

attr::Row fromZero(MObject& attribute, const char* longName, const char* shortName, double softMax)
{
    return attr::softMax(attr::atLeast(attr::numeric(attribute, longName, shortName, kDouble, 1.0, kControl), 0.0),
                         softMax);
}

attr::Row overrideRow()
{
    using Node = boundingObject;
    return attr::compound(Node::aOverrideData, "overrideData", "ord", {
        attr::curveRamp(Node::aPositionFalloff, "positionFalloff", "pgtf", kStored),
        attr::curveRamp(Node::aWeightFalloff, "weightFalloff", "wgtf", kStored),
        attr::colorRamp(Node::aColorFalloff, "colorFalloff", "clrf", kStored),
        attr::curveRamp(Node::aAlphaFalloff, "alphaFalloff", "af", kStored),
        attr::curveRamp(Node::aNormalFalloff, "normalFalloff", "nf", kStored),
        attr::curveRamp(Node::aRadiusFalloff, "radiusFalloff", "rf", kStored),
        fromZero(Node::aPointRadius, "pointRadius", "pr", 10.0),
        fromZero(Node::aPointWeight, "pointWeight", "pw", 1.0),
        color(Node::aPointColor, Node::aPointColorRGB, "pointColor", "pcl", "pc", {1.0, 1.0, 1.0}),
        attr::softRange(attr::numeric(Node::aPointAlpha, "pointAlpha", "pa", kFloat, 1.0, kControl), 0.0, 1.0),
    }, kStored);
}

attr::Row flag(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::numeric(attribute, longName, shortName, kBoolean, 1.0, kControl);
}

attr::Row doubles(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::typed(attribute, longName, shortName, MFnData::kDoubleArray, kInput);
}

attr::Row group(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::numeric(attribute, longName, shortName, kInt, -1.0, kControl);
}

attr::Row meshRow(CloudSourceAttributes& at)
{
    return attr::compound(at.all, "inMeshData", "imd", {
        flag(at.enable, "useInMesh", "rim"),
        attr::typed(at.points, "inMesh", "inm", MFnData::kMesh, kInput),
        attr::enumeration(at.mode, "inMeshUseComponents", "umc", attr::kSubsetFields, 0, kControl),
        group(at.groupId, "inMeshObjectGroupId", "imog"),
        attr::typed(at.components, "inMeshComponents", "imc", MFnData::kComponentList, kInput),
        doubles(at.radius, "inMeshRadiusPP", "imr"),
        flag(at.useRadius, "inMeshUseRadiusPP", "umr"),
        doubles(at.weight, "inMeshWeightPP", "imw"),
        flag(at.useWeight, "inMeshUseWeightPP", "umw"),
        attr::text(at.color, "inMeshColorSet", "imcs", kStored),
        flag(at.useColor, "inMeshUseRgbaPP", "umrgba"),
    }, kStored);
}

/// A curve or a surface: the same attributes under names that go with the kind.
struct ControlPointNames
{
    const char* kind;                                                            ///< Curve, Surface
    const char *all, *enable, *points, *mode, *groupId, *components;             ///< short names
    const char *radius, *useRadius, *weight, *useWeight, *rgba, *useRgba;
};

attr::Row controlPointRow(CloudSourceAttributes& at, const ControlPointNames& n, MFnData::Type type)
{
    const MString in = MString("in") + n.kind;
    const auto    name = [&](const char* ending) { return in + ending; };
    return attr::compound(at.all, name("Data").asChar(), n.all, {
        flag(at.enable, (MString("useIn") + n.kind).asChar(), n.enable),
        attr::typed(at.points, in.asChar(), n.points, type, kInput),
        attr::enumeration(at.mode, name("UseComponents").asChar(), n.mode, attr::kSubsetFields, 0, kControl),
        group(at.groupId, name("ObjectGroupId").asChar(), n.groupId),
        attr::typed(at.components, name("Components").asChar(), n.components, MFnData::kComponentList, kInput),
        doubles(at.radius, name("RadiusPP").asChar(), n.radius),
        flag(at.useRadius, name("UseRadiusPP").asChar(), n.useRadius),
        doubles(at.weight, name("WeightPP").asChar(), n.weight),
        flag(at.useWeight, name("UseWeightPP").asChar(), n.useWeight),
        attr::generic(at.color, name("RgbaPP").asChar(), n.rgba,
                      {MFnData::kDoubleArray, MFnData::kVectorArray, MFnData::kPointArray}, kInput),
        flag(at.useColor, name("UseRgbaPP").asChar(), n.useRgba),
    }, kStored);
}

attr::Row particleRow(CloudSourceAttributes& at)
{
    return attr::compound(at.all, "inParticleData", "ipd", {
        flag(at.enable, "useInParticle", "rip"),
        attr::typed(at.points, "inParticlePositionPP", "ipp", MFnData::kVectorArray, kInput),
        attr::enumeration(at.mode, "inParticleUseComponents", "upc", {{"None", 0}, {"Input Component List", 1}}, 0,
                          kControl),
        attr::generic(at.components, "inParticleComponents", "ipc", {MFnData::kComponentList, MFnData::kIntArray},
                      kInput),
        doubles(at.radius, "inParticleRadiusPP", "ipr"),
        flag(at.useRadius, "inParticleUseRadiusPP", "upr"),
        doubles(at.weight, "inParticleWeightPP", "ipw"),
        flag(at.useWeight, "inParticleUseWeightPP", "upw"),
        attr::typed(at.color, "inParticleRgbPP", "iprgb", MFnData::kVectorArray, kInput),
        flag(at.useColor, "inParticleUseRgbPP", "uprgb"),
        doubles(at.opacity, "inParticleOpacityPP", "ipo"),
        flag(at.useOpacity, "inParticleUseOpacityPP", "upo"),
        attr::typed(at.velocity, "inParticleVelocityPP", "ipv", MFnData::kVectorArray, kInput),
        flag(at.useVelocity, "inParticleUseVelocityPP", "upv"),
    }, kStored);
}

void publish(MDataBlock& block, const MObject& attribute, OutArray::Kind kind, unsigned int stride,
             const std::vector<double>& values)
{
    OutArray array(kind);
    double*  to = array.resize(static_cast<unsigned int>(values.size() / stride));
    std::copy(values.begin(), values.end(), to);
    array.publish(block, attribute);
}

} // namespace

MStatus boundingObject::initialize()
{
    const attr::Row rows[] = {
        outDataRow(),
        overrideRow(),
        color(aDisplayColor, aDisplayColorRGB, "displayColor", "dc", "dc", {0.0, 0.35, 0.65}),
        flag(aDisplayPointVolumes, "displayPointCloudBoundingVolumes", "dpcbv"),
        flag(aColorPointVolumes, "colorPointCloudBoundingVolumes", "cpcbv"),
        attr::matrix(aInSkinMatrix, "inSkinInfluenceWorldMatrix", "isiwm", kStored),
        attr::matrix(aInParentMatrix, "inParentMatrix", "ipm", kStored),
        meshRow(aMesh),
        controlPointRow(aCurve,
                        {"Curve", "icd", "ric", "inc", "ucc", "icog", "icc", "icr", "ucr", "icw", "ucw", "icrgba",
                         "ucrgba"}, MFnData::kNurbsCurve),
        controlPointRow(aSurface,
                        {"Surface", "isd", "ris", "ins", "rsc", "isog", "isfc", "isr", "usr", "isw", "usw", "isrgba",
                         "usrgba"}, MFnData::kNurbsSurface),
        particleRow(aParticle),
    };
    MStatus status = attr::declare(rows);
    for (const MObject* in : {&aControlData, &aDisplayColor, &aDisplayPointVolumes, &aColorPointVolumes,
                              &aOverrideData, &aInSkinMatrix, &aInParentMatrix, &aMesh.all, &aCurve.all,
                              &aSurface.all, &aParticle.all}) {
        for (const MObject* out : {&aOutData, &aOutParentMatrix, &aDataPP, &aPositionPP, &aNormalPP, &aRadiusPP,
                                   &aWeightPP, &aRgbaPP}) {
            if (status)
                status = attributeAffects(*in, *out);
        }
    }
    return status ? MPxManipContainer::addToManipConnectTable(id) : status;
}

void boundingObject::postConstructor()
{
    const MObject node = thisMObject();
    for (const MObject* ramp : {&aPositionFalloff, &aWeightFalloff, &aNormalFalloff, &aRadiusFalloff})
        fillRamp(node, *ramp, {CurveKey{0.0f, 1.0f}, CurveKey{1.0f, 0.0f}});
    fillRamp(node, aColorFalloff, {ColorKey{0.0f, MColor(1.0f, 1.0f, 1.0f)}});
    fillRamp(node, aAlphaFalloff, {CurveKey{0.0f, 1.0f}});
}

MStatus boundingObject::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kHasNoEffect)
        return MS::kSuccess;
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutData, &aOutParentMatrix, &aDataPP, &aPositionPP, &aNormalPP, &aRadiusPP, &aWeightPP,
                        &aRgbaPP}))                                      // plug test
        return MS::kSuccess;

    block.outputValue(aOutParentMatrix).set(block.inputValue(aInParentMatrix).asMatrix());
    block.inputValue(aInSkinMatrix);   // pulled, not used

    CloudPoints cloud;                                                   // work
    if (block.inputValue(aEnvelope).asBool() &&
        block.inputValue(aType).asShort() == static_cast<short>(volume::Kind::kCloud))
        cloud = gatherCloud(block);

    publish(block, aPositionPP, OutArray::kPoints, 4, cloud.positions);  // write, also empty ones
    publish(block, aNormalPP, OutArray::kVectors, 3, cloud.normals);
    publish(block, aRadiusPP, OutArray::kDoubles, 1, cloud.radii);
    publish(block, aWeightPP, OutArray::kDoubles, 1, cloud.weights);
    publish(block, aRgbaPP, OutArray::kDoubles, 1, cloud.rgba);
    return MS::kSuccess;
}

CloudPoints boundingObject::gatherCloud(MDataBlock& block) const
{
    const MObject node = thisMObject();
    CloudDefaults defaults;
    defaults.radius = block.inputValue(aPointRadius).asDouble();
    defaults.weight = block.inputValue(aPointWeight).asDouble();
    MDataHandle rgb = block.inputValue(aPointColor);
    for (int k = 0; k < 3; ++k)
        defaults.rgba[k] = rgb.child(aPointColorRGB[k]).asFloat();
    defaults.rgba[3] = block.inputValue(aPointAlpha).asFloat();
    const MVector up = MVector(0.0, 1.0, 0.0) * block.outputValue(aOutParentMatrix).asMatrix();
    up.get(defaults.velocity);

    CloudPoints cloud;   // the order of the sources is that of the points
    gatherMesh(block, node, aMesh, defaults, cloud);
    gatherCurve(block, node, aCurve, defaults, cloud);
    gatherSurface(block, node, aSurface, defaults, cloud);
    gatherParticles(block, node, aParticle, defaults, cloud);
    return cloud;
}

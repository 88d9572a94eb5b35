// The attribute table of a component group.
#include <maya/MFnNumericAttribute.h>

#include "core/attr.h"
#include "volumes/group.h"

namespace {

using attr::kControl;
using attr::kInput;
using attr::kOutput;
using attr::kStored;

attr::Row flag(MObject& attribute, const char* longName, const char* shortName, bool value = false)
{
    return attr::numeric(attribute, longName, shortName, MFnNumericData::kBoolean, value, kControl);
}

attr::Row integer(MObject& attribute, const char* longName, const char* shortName, int value)
{
    return attr::numeric(attribute, longName, shortName, MFnNumericData::kInt, value, kControl);
}

attr::Row real(MObject& attribute, const char* longName, const char* shortName, double value)
{
    return attr::numeric(attribute, longName, shortName, MFnNumericData::kDouble, value, kControl);
}

attr::Row degrees(MObject& attribute, const char* longName, const char* shortName, double value)
{
    return attr::numeric(attribute, longName, shortName, MFnNumericData::kFloat, value, kControl);
}

attr::Row halfTurn(attr::Row row) { return attr::within(row, 0, 180); }

attr::Row threshold(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::softMax(attr::atLeast(real(attribute, longName, shortName, 0.0), 0), 10);
}

attr::Row limit(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::softMax(attr::atLeast(integer(attribute, longName, shortName, -1), -1), 30);
}

attr::Row atMost(attr::Row row, double max)
{
    MFnNumericAttribute(*row.attribute).setMax(max);
    return row;
}

/// The switches of the operations and what each goes by.
attr::Row operationRow()
{
    using Node = group;
    return attr::compound(
        Node::aOperation, "operation", "op",
        {
            flag(Node::aOpPattern, "opPattern", "oppat", true),
            flag(Node::aOpRange, "opRange", "oprng"),
            flag(Node::aOpNormalVelocity, "opNormalVelocity", "opnv"),
            flag(Node::aOpDepth, "opDepth", "opdep"),
            flag(Node::aOpEdgeLength, "opEdgeLength", "opel"),
            flag(Node::aOpFaceArea, "opFaceArea", "opfa"),
            flag(Node::aOpFacePerimeter, "opFacePerimeter", "opfp"),
            flag(Node::aOpWeightMap, "opWeightMap", "opwm"),
            flag(Node::aOpAngle, "opAngle", "opan"),
            flag(Node::aOpNgons, "opNgons", "opng"),
            attr::text(Node::aPattern, "pattern", "p", kStored),
            attr::tuple(Node::aRange, "range", "r",
                        {attr::atLeast(integer(Node::aRangeStart, "rangeStart", "rs", 0), 0),
                         atMost(integer(Node::aRangeEnd, "rangeEnd", "re", -1), 0)}, kControl),
            attr::tuple(Node::aStep, "step", "st",
                        {attr::atLeast(integer(Node::aStepA, "stepA", "sta", 1), 1),
                         attr::atLeast(integer(Node::aStepB, "stepB", "stb", 2), 1)}, kControl),
            attr::enumeration(Node::aMode, "mode", "m", {{"Direction", 0}, {"In-Between Angle", 1}}, 0, kControl),
            attr::tuple(Node::aDirection, "direction", "dir",
                        {real(Node::aDirectionX, "directionX", "dirx", 0.0),
                         real(Node::aDirectionY, "directionY", "diry", 1.0),
                         real(Node::aDirectionZ, "directionZ", "dirz", 0.0)}, kControl),
            halfTurn(degrees(Node::aSpreadAngleMin, "spreadAngleMin", "sdamin", 0.0)),
            halfTurn(degrees(Node::aSpreadAngleMax, "spreadAngleMax", "sdamax", 180.0)),
            halfTurn(degrees(Node::aInBetweenAngle, "inBetweenAngle", "iba", 0.0)),
            flag(Node::aUseInComp, "useInComponents", "usi", true),
            attr::text(Node::aInitialComp, "initialComponents", "ilc", kStored),
            attr::softMax(attr::atLeast(integer(Node::aDepth, "depth", "dpt", 0), 0), 10),
            attr::enumeration(Node::aSpace, "space", "sp", {{"XYZ", 0}, {"UV", 1}}, 0, kControl),
            threshold(Node::aLengthThreshold, "lengthThreshold", "lt"),
            threshold(Node::aAreaThreshold, "areaThreshold", "at"),
            threshold(Node::aPerimeterThreshold, "perimeterThreshold", "pt"),
            real(Node::aWeightThreshold, "weightThreshold", "wgtt", 0.5),
            degrees(Node::aAngleMin, "angleMin", "amin", 0.0),
            degrees(Node::aAngleMax, "angleMax", "amax", 180.0),
            limit(Node::aMinVertexCount, "minVertexCount", "minvc"),
            limit(Node::aMaxVertexCount, "maxVertexCount", "maxvc"),
            limit(Node::aMinEdgeCount, "minEdgeCount", "minec"),
            limit(Node::aMaxEdgeCount, "maxEdgeCount", "maxec")
        },
        kStored);
}

} // namespace

MStatus group::initialize()
{
    const auto geometries = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, MFnData::kVectorArray};
    const auto components = {MFnData::kComponentList, MFnData::kIntArray};
    const attr::Row rows[] = {
        flag(aEnvelope, "envelope", "en", true),
        integer(aInMessage, "inMessage", "ims", 0),
        attr::message(aOutMessage, "outMessage", "oms", kOutput),
        attr::generic(aInGeo, "inGeometry", "ig", geometries, kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometries, kOutput),
        attr::generic(aInComp, "inComponents", "ic", components, kInput),
        attr::generic(aOutComp, "outComponents", "oc", components, kOutput),
        attr::generic(aInVelocityPP, "inVelocityPP", "ivpp", {MFnData::kVectorArray, MFnData::kDoubleArray}, kInput),
        attr::typed(aInWgtPP, "inWeightPP", "iwpp", MFnData::kDoubleArray, kInput),
        attr::typed(aInitStateComp, "initStateComponents", "isc", MFnData::kComponentList, kInput),
        attr::enumeration(aCompType, "componentType", "ct",
                          {{"mesh vertex", 0}, {"mesh edge", 1}, {"mesh face", 2}, {"mesh map", 3}, {"curve cv", 4},
                           {"surface cv", 5}, {"particle", 6}}, 0, kControl),
        flag(aFilterInput, "filterInput", "fi"),
        attr::enumeration(aCombine, "combine", "c", {{"None", 0}, {"Union", 1}, {"Subtract", 2}, {"Intersect", 3}}, 0,
                          kControl),
        operationRow(),
        attr::enumeration(aCoordSystem, "coordinateSystem", "cs", attr::kSpaceFields, 0, kControl),
        attr::text(aUvSet, "uvSet", "uvs", kStored),
        real(aCurrentTime, "currentTime", "ctm", 0.0),
        attr::text(aStartFrames, "startFrames", "saf", kStored),
        attr::text(aResetFrames, "resetFrames", "raf", kStored),
        flag(aOutputObjGroup, "outputObjectGroup", "oog"),
        integer(aGroupId, "groupId", "gid", -1),
        attr::enumeration(aMirror, "mirror", "mr", {{"None", 0}, {"Replace", 1}, {"Union", 2}}, 0, kControl),
        attr::enumeration(aMirrorDirection, "mirrorDirection", "md",
                          {{"both ways", 0}, {"positive to negative", 1}, {"negative to positive", 2}}, 0, kControl),
        attr::softMax(attr::atLeast(real(aRadius, "radius", "rds", -1.0), 0.001), 10),
        attr::matrix(aMirrorMatrix, "mirrorMatrix", "mm", kInput),
        flag(aOutputMirrorData, "outputMirrorData", "omd"),
        attr::typed(aOutMirrorIds, "outMirrorIds", "omids", MFnData::kIntArray, kOutput),
        attr::enumeration(aBoundary, "boundary", "b",
                          {{"None", 0}, {"Replace", 1}, {"Union", 2}, {"Subtract", 3}, {"Intersect", 4}}, 0, kControl),
        flag(aInvert, "invert", "i"),
        aBounds.row(),
    };
    return attr::declare(rows);
}

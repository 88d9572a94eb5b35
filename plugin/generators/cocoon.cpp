#include "generators/cocoon.h"

#include <maya/MColorArray.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include <algorithm>
#include <string>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"
#include "generators/linkGeometry.h"

namespace {

using attr::kControl;

constexpr double kTubeScale = 0.001;   // of a thickness in units of the scene
const char       kAxes[3][3] = {"Xx", "Yy", "Zz"};

attr::Row array(MObject& attribute, const char* longName, const char* shortName, MFnData::Type type)
{
    return attr::typed(attribute, longName, shortName, type, attr::kInput);
}

attr::Row colors(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::generic(attribute, longName, shortName, {MFnData::kDoubleArray, MFnData::kVectorArray}, attr::kInput);
}

attr::Row result(MObject& attribute, const char* longName, const char* shortName, MFnData::Type type)
{
    return attr::typed(attribute, longName, shortName, type, attr::kOutput);
}

attr::Row flag(MObject& attribute, const char* longName, const char* shortName, bool value = false)
{
    return attr::numeric(attribute, longName, shortName, MFnNumericData::kBoolean, value ? 1.0 : 0.0, kControl);
}

attr::Row real(MObject& attribute, const char* longName, const char* shortName, double value,
               MFnNumericData::Type type = MFnNumericData::kFloat)
{
    return attr::numeric(attribute, longName, shortName, type, value, kControl);
}

/// A colour that starts black.
attr::Row color(MObject& whole, MObject (&parts)[3], const char* longName, const char* shortName)
{
    const auto channel = [&](int i, const char* upper, const char* lower) {
        return real(parts[i], (MString(longName) + upper).asChar(), (MString(shortName) + lower).asChar(), 0.0);
    };
    const attr::Row row = attr::tuple(whole, longName, shortName,
                                      {channel(0, "R", "r"), channel(1, "G", "g"), channel(2, "B", "b")}, kControl);
    MFnNumericAttribute(whole).setUsedAsColor(true);
    return row;
}

attr::Row positionFlag(int axis)
{
    const std::string longName = std::string("usePositionDisplacement") + kAxes[axis][0];
    return flag(cocoon::aUsePositionDisplacement[axis], longName.c_str(), (std::string("upd") + kAxes[axis][1]).c_str());
}

attr::Row positionRamp(int axis)
{
    const std::string longName = std::string("positionDisplacement") + kAxes[axis][0];
    return attr::curveRamp(cocoon::aPositionDisplacement[axis], longName.c_str(),
                           (std::string("pd") + kAxes[axis][1]).c_str(), attr::kStored);
}

/// Adds `count` colours: of an array of doubles, four each, or of vectors with an alpha of 1. What is missing is that of
/// black.
void addColors(const ArrayView& array, std::size_t count, std::vector<double>& rgba)
{
    const unsigned int channels = array.kind == MFn::kVectorArrayData ? 3 : 4;
    const std::size_t  values = array.doubles ? array.valueCount() : 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (unsigned int c = 0; c < 4; ++c) {
            const std::size_t at = i * channels + c;
            rgba.push_back(c < channels && at < values ? array.doubles[at] : c == 3 ? 1.0 : 0.0);
        }
    }
}

/// Adds `count` values of an array, what is missing as `padding`.
void addNumbers(const ArrayView& array, std::size_t count, double padding, std::vector<double>& numbers)
{
    const std::size_t given = std::min<std::size_t>(count, array.length);
    numbers.insert(numbers.end(), array.doubles, array.doubles + given);
    numbers.insert(numbers.end(), count - given, padding);
}

/// `value` of a ramp at segments + 1 places from 0 to 1.
std::vector<double> along(const Ramp& ramp, int segments, double plus)
{
    std::vector<double> values;
    for (int s = 0; s <= segments; ++s)
        values.push_back(ramp.value(static_cast<float>(s) / static_cast<float>(segments)) + plus);
    return values;
}

void readColor(MDataBlock& block, const MObject& color, const MObject (&parts)[3], const MObject& alpha, double (&rgba)[4])
{
    MDataHandle whole = block.inputValue(color);
    for (int c = 0; c < 3; ++c)
        rgba[c] = whole.child(parts[c]).asFloat();
    rgba[3] = block.inputValue(alpha).asFloat();
}

/// A mesh of faces with `corners` corners each; data without a mesh for nothing.
MObject meshOf(const web::Pieces& pieces, int corners)
{
    MFnMeshData data;
    MObject     owner = data.create();
    if (pieces.corners.empty())
        return owner;
    const auto             count = static_cast<unsigned int>(pieces.pointCount());
    const MFloatPointArray points(reinterpret_cast<const float(*)[4]>(pieces.xyzw.data()), count);
    MColorArray            colors(reinterpret_cast<const float(*)[4]>(pieces.rgba.data()), count);
    const auto             total = static_cast<unsigned int>(pieces.corners.size());
    const MIntArray        counts(total / static_cast<unsigned int>(corners), corners);
    const MIntArray        connects(pieces.corners.data(), total);
    MIntArray              ids(count, 0);
    for (unsigned int i = 0; i < count; ++i)
        ids[i] = static_cast<int>(i);
    MFnMesh mesh;
    mesh.create(static_cast<int>(count), static_cast<int>(counts.length()), points, counts, connects, owner);
    mesh.setVertexColors(colors, ids);
    return owner;
}

} // namespace

MStatus cocoon::initialize()
{
    using attr::atLeast;
    using attr::softMax;
    const auto      vectors = MFnData::kVectorArray, doubles = MFnData::kDoubleArray, ints = MFnData::kIntArray;
    const attr::Row inputs[] = {
        array(aInPosPP, "inPositionPP", "ippp", vectors),
        array(aInRefPosPP, "inRefPositionPP", "irppp", vectors),
        colors(aInRgbaPP, "inRgbaPP", "irgbapp"),
        array(aInThicknessPP, "inThicknessPP", "itpp", doubles),
        array(aInPosPP2, "inPositionPP2", "ippp2", vectors),
        colors(aInRgbaPP2, "inRgbaPP2", "irgbapp2"),
        array(aInThicknessPP2, "inThicknessPP2", "itpp2", doubles),
        array(aInCountPP, "inCountPP", "icntpp", ints),
        array(aInIdPP, "inIdPP", "iidpp", ints),
        array(aInShortestPathCounts, "inShortestPathCounts", "ispc", ints),
    };
    for (const attr::Row& row : inputs)
        MFnAttribute(*row.attribute).setDisconnectBehavior(MFnAttribute::kReset);

    const attr::Row rows[] = {
        inputs[0], inputs[1], inputs[2], inputs[3], inputs[4], inputs[5], inputs[6], inputs[7], inputs[8], inputs[9],
        attr::hidden(attr::numeric(aForceEvaluate, "forceEvaluate", "frcevl", MFnNumericData::kBoolean, 0.0, attr::kOutput)),
        result(aOutLinksMesh, "outLinksMesh", "olm", MFnData::kMesh),
        result(aOutFacesMesh, "outFacesMesh", "ofm", MFnData::kMesh),
        result(aOutPosPP, "outPositionPP", "oppp", vectors),
        result(aOutDirectionPP, "outDirectionPP", "odpp", vectors),
        result(aOutRgbaPP, "outRgbaPP", "orgbapp", doubles),
        result(aOutThicknessPP, "outThicknessPP", "otpp", doubles),
        result(aOutScalePP, "outScalePP", "ospp", vectors),
        flag(aActive, "active", "ac", true),
        atLeast(real(aMinDistance, "minDistance", "mnd", 0.0, MFnNumericData::kDouble), 0.0),
        atLeast(real(aMaxDistance, "maxDistance", "mxd", 1.0, MFnNumericData::kDouble), 0.0),
        softMax(atLeast(real(aMaxConnections, "maxConnectionsPerPoint", "mcpp", 3.0, MFnNumericData::kInt), -1.0), 20.0),
        flag(aAntialiased, "antialiasedLinks", "aal"),
        softMax(atLeast(real(aSegments, "segments", "seg", 1.0, MFnNumericData::kShort), 1.0), 50.0),
        flag(aInputColorLinks, "useInputColorForLinks", "uincl", true),
        color(aLinksColor, aLinksColorRgb, "linksColor", "lclr"),
        real(aLinksAlpha, "linksAlpha", "lalp", 1.0),
        flag(aInputColorFaces, "useInputColorForFaces", "uincf", true),
        color(aFacesColor, aFacesColorRgb, "facesColor", "fclr"),
        real(aFacesAlpha, "facesAlpha", "falp", 1.0),
        flag(aUseInputThickness, "useInputThickness", "uint", true),
        softMax(atLeast(real(aThicknessMultiplier, "thicknessMultiplier", "tm", 1.0), 0.0), 5.0),
        flag(aUseThicknessDisplacement, "useThicknessDisplacement", "utd"),
        attr::curveRamp(aThicknessDisplacement, "thicknessDisplacement", "td", attr::kStored),
        positionFlag(0), positionRamp(0), positionFlag(1), positionRamp(1), positionFlag(2), positionRamp(2),
        real(aMinSurfaceArea, "minSurfaceArea", "mnsa", 0.0),
        real(aMaxSurfaceArea, "maxSurfaceArea", "mxsa", 999999.9f),
        softMax(atLeast(real(aDensity, "density", "den", 1.0), 0.0), 1.0),
        real(aSeed, "seed", "sd", 12345.0, MFnNumericData::kInt),
        flag(aDrawLinks, "drawLinks", "dln", true),
        flag(aDrawFaces, "drawFaces", "dfc"),
        flag(aLinksMesh, "linksMesh", "lnkm"),
        flag(aLinksInstances, "linksInstances", "lnki"),
        flag(aLinksMeshInstances, "linksMeshInstances", "lnkmi"),
        flag(aFacesMesh, "facesMesh", "fcsm"),
        flag(aColors, "colors", "clrs"),
        flag(aUvs, "uvs", "uvs"),
        flag(aEdges, "edges", "edges"),
    };
    return attr::declare(rows);
}

/// Ramps that leave a link as it is: 0.5 is no shift.
void cocoon::postConstructor()
{
    fillRamp(thisMObject(), aThicknessDisplacement, {CurveKey{0.0f, 1.0f}});
    for (const MObject& ramp : aPositionDisplacement)
        fillRamp(thisMObject(), ramp, {CurveKey{0.0f, 0.5f}});
}

MStatus cocoon::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aForceEvaluate, &aOutLinksMesh, &aOutFacesMesh, &aOutPosPP, &aOutDirectionPP, &aOutRgbaPP,
                        &aOutThicknessPP, &aOutScalePP}))                // plug test: one run fills all
        return MS::kUnknownParameter;

    const bool isNow = block.context().isNormal();   // evaluations at other times are not what the viewport shows
    if (isNow)
        drawn_.clear();
    block.outputValue(aForceEvaluate).set(true);

    const auto   on = [&](const MObject& attribute) { return block.inputValue(attribute).asBool(); };
    web::Strands strands;                                                // work
    web::Pieces  faces, linksMesh;
    const bool   drawLinks = on(aDrawLinks), drawFaces = on(aDrawFaces), facesMesh = on(aFacesMesh);
    const bool   tubesToo = on(aLinksMesh), instancesToo = on(aLinksInstances) || on(aLinksMeshInstances);
    const double multiplier = block.inputValue(aThicknessMultiplier).asFloat();
    if (on(aActive)) {                                                   // switch
        const web::Points points = readPoints(block);
        const web::Links  links = findLinks(block, viewArray(block, aInPosPP, {MFn::kVectorArrayData}).length, points);
        if (links.tooMany)
            warn(plug, ": More than 268435456 links, none is made. Lower maxDistance or set maxConnectionsPerPoint.");
        const web::StrandStyle style = strandStyle(block);
        const std::size_t      segments = links.size() * static_cast<std::size_t>(style.segments);
        if ((drawLinks || tubesToo || instancesToo) && lengthFits(plug, segments, tubesToo ? 32 : 8))
            strands = web::subdivide(points, links, style);
        if (tubesToo)
            linksMesh = web::tubes(strands, kTubeScale * multiplier);
        if ((drawFaces || facesMesh) && lengthFits(plug, links.size(), 12))
            faces = makeFaces(block, points, links);
        if (isNow)
            keepForDrawing(drawLinks ? strands : web::Strands(), faces, drawFaces, multiplier);
    }

    block.outputValue(aOutLinksMesh).set(meshOf(linksMesh, 4));          // write, also empty ones
    block.outputValue(aOutFacesMesh).set(meshOf(facesMesh ? faces : web::Pieces(), 3));
    return writeInstances(block, instancesToo ? strands : web::Strands());
}

/// Both sets, the second behind the first.
web::Points cocoon::readPoints(MDataBlock& block) const
{
    web::Points  points;
    const bool   thick = block.inputValue(aUseInputThickness).asBool();
    const double multiplier = block.inputValue(aThicknessMultiplier).asFloat();
    const auto   add = [&](const MObject& positions, const MObject& colors, const MObject& thickness) {
        const ArrayView   at = viewArray(block, positions, {MFn::kVectorArrayData});
        const std::size_t count = at.length;
        points.xyz.insert(points.xyz.end(), at.doubles, at.doubles + at.valueCount());
        addColors(viewArray(block, colors, {MFn::kDoubleArrayData, MFn::kVectorArrayData}), count, points.rgba);
        addNumbers(thick ? viewArray(block, thickness, {MFn::kDoubleArrayData}) : ArrayView(), count, multiplier,
                   points.thickness);
    };
    add(aInPosPP, aInRgbaPP, aInThicknessPP);
    add(aInPosPP2, aInRgbaPP2, aInThicknessPP2);
    return points;
}

/// By the chains of shortest paths, else to the second set, else among all points by their distance.
web::Links cocoon::findLinks(MDataBlock& block, std::size_t firstCount, const web::Points& points) const
{
    const auto view = [&](const MObject& attribute) { return viewArray(block, attribute); };
    const auto isPresent = [&](const MObject& attribute, const ArrayView& array) {
        return array.length > 0 || MPlug(thisMObject(), attribute).isConnected();
    };
    if (const ArrayView lengths = view(aInShortestPathCounts); isPresent(aInShortestPathCounts, lengths))
        return web::linksOfChains(lengths.ints, lengths.ints ? lengths.length : 0, firstCount);
    if (const ArrayView second = view(aInPosPP2); isPresent(aInPosPP2, second)) {
        const ArrayView counts = view(aInCountPP), ids = view(aInIdPP);
        if (!counts.ints || counts.length != firstCount || !ids.ints)
            return {};
        return web::linksToSecond(counts.ints, firstCount, ids.ints, ids.length, points.count() - firstCount);
    }
    const ArrayView reference = viewArray(block, aInRefPosPP, {MFn::kVectorArrayData});
    const web::Band band{block.inputValue(aMinDistance).asDouble(), block.inputValue(aMaxDistance).asDouble(),
                         block.inputValue(aMaxConnections).asInt()};
    return web::linksWithin(points.xyz.data(), points.count(), reference.doubles, reference.length, band);
}

/// Every ramp is read once, at the places that all links share.
web::StrandStyle cocoon::strandStyle(MDataBlock& block) const
{
    web::StrandStyle style;
    style.segments = std::max(1, static_cast<int>(block.inputValue(aSegments).asShort()));
    style.inputColor = block.inputValue(aInputColorLinks).asBool();
    readColor(block, aLinksColor, aLinksColorRgb, aLinksAlpha, style.rgba);
    if (block.inputValue(aUseThicknessDisplacement).asBool())
        style.thickness = along(Ramp(thisMObject(), aThicknessDisplacement), style.segments, 0.0);
    for (int axis = 0; axis < 3; ++axis)
        if (block.inputValue(aUsePositionDisplacement[axis]).asBool())
            style.shift[axis] = along(Ramp(thisMObject(), aPositionDisplacement[axis]), style.segments, -0.5);
    return style;
}

web::Pieces cocoon::makeFaces(MDataBlock& block, const web::Points& points, const web::Links& links) const
{
    web::FaceRule rule;
    rule.seed = block.inputValue(aSeed).asInt();
    rule.density = block.inputValue(aDensity).asFloat();
    rule.minArea = block.inputValue(aMinSurfaceArea).asFloat();
    rule.maxArea = block.inputValue(aMaxSurfaceArea).asFloat();
    double color[4];
    readColor(block, aFacesColor, aFacesColorRgb, aFacesAlpha, color);
    const bool inputColor = block.inputValue(aInputColorFaces).asBool();
    return web::trianglePieces(points, web::spannedTriangles(points, links, rule), inputColor ? nullptr : color);
}

void cocoon::keepForDrawing(const web::Strands& strands, const web::Pieces& faces, bool facesToo, double multiplier)
{
    web::eachSegment(strands, [&](std::size_t begin, std::size_t end) {
        for (const std::size_t place : {begin, end}) {
            for (std::size_t k = 0; k < 3; ++k)
                drawn_.linkPoints.push_back(static_cast<float>(strands.xyz[3 * place + k]));
            for (std::size_t c = 0; c < 4; ++c)
                drawn_.linkColors.push_back(static_cast<float>(strands.rgba[4 * place + c]));
        }
        const double thickness = 0.5 * (strands.thickness[begin] + strands.thickness[end]);
        drawn_.linkWidths.push_back(static_cast<float>(thickness * multiplier));   // a pixel where a tube has 0.001
    });
    for (std::size_t i = 0; facesToo && i < faces.pointCount(); ++i)
        drawn_.facePoints.insert(drawn_.facePoints.end(), &faces.xyzw[4 * i], &faces.xyzw[4 * i] + 3);
    if (facesToo)
        drawn_.faceColors = faces.rgba;
}

MStatus cocoon::writeInstances(MDataBlock& block, const web::Strands& strands) const
{
    const auto          count = static_cast<unsigned int>(strands.segmentCount());
    OutArray            positions(OutArray::kVectors), directions(OutArray::kVectors), scales(OutArray::kVectors);
    OutArray            thickness(OutArray::kDoubles), rgba(OutArray::kDoubles);
    web::InstanceArrays out{positions.resize(count), directions.resize(count), scales.resize(count),
                            thickness.resize(count), rgba.resize(4 * count)};
    web::instances(strands, out);
    positions.publish(block, aOutPosPP);
    directions.publish(block, aOutDirectionPP);
    scales.publish(block, aOutScalePP);
    thickness.publish(block, aOutThicknessPP);
    return rgba.publish(block, aOutRgbaPP);
}

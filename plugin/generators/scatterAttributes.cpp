// The attributes of scatter.
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnNumericAttribute.h>

#include <string>
#include <vector>

#include "core/attr.h"
#include "generators/scatter.h"

namespace {

using attr::kControl;
using attr::kInput;
using attr::kOutput;
using attr::kStored;

const MFnNumericData::Type kBoolean = MFnNumericData::kBoolean, kDouble = MFnNumericData::kDouble,
                           kFloat = MFnNumericData::kFloat, kInt = MFnNumericData::kInt;

/// `partShort` begins the channels' short names; `ending` is the number of a projector.
attr::Row color(MObject& whole, MObject (&parts)[3], const std::string& longName, const std::string& shortName,
                const std::string& partShort, const double (&rgb)[3], const std::string& ending = "")
{
    const auto channel = [&](int i, const char* upper, const char* lower) {
        return attr::numeric(parts[i], (longName + upper + ending).c_str(), (partShort + lower + ending).c_str(), kFloat,
                             rgb[i], kControl);
    };
    const attr::Row row = attr::tuple(whole, (longName + ending).c_str(), (shortName + ending).c_str(),
                                      {channel(0, "R", "r"), channel(1, "G", "g"), channel(2, "B", "b")}, kControl);
    MFnNumericAttribute(whole).setUsedAsColor(true);
    return row;
}

attr::Row flag(MObject& attribute, const std::string& longName, const std::string& shortName, bool on)
{
    return attr::numeric(attribute, longName.c_str(), shortName.c_str(), kBoolean, on, kControl);
}

attr::Row distance(MObject& attribute, const char* longName, const char* shortName, double value)
{
    return attr::softMax(attr::atLeast(attr::numeric(attribute, longName, shortName, kFloat, value, kControl), value), 10.0);
}

attr::Row cameraValue(MObject& attribute, const char* longName, const char* shortName)
{
    return attr::numeric(attribute, longName, shortName, kFloat, 0.0, kControl);
}

attr::Row connectedGeometry(MObject& attribute, const char* longName, const char* shortName)
{
    const attr::Row row = attr::generic(attribute, longName, shortName, {MFnData::kMesh}, kInput);
    MFnGenericAttribute(attribute).setDisconnectBehavior(MFnAttribute::kReset);
    return row;
}

attr::Row projections()
{
    MFnCompoundAttribute group;
    scatter::aProjections = group.create("textureProjectionsList", "tpl");
    for (int i = 0; i < scatter::kProjectors; ++i) {
        ScatterTextureAttributes& at = scatter::aProjector[i];
        const std::string         n = std::to_string(i + 1);
        const attr::Row           rows[] = {
            flag(at.active, "active" + n, "atv" + n, true),
            attr::matrix(at.matrix, ("inProjectionWorldMatrix" + n).c_str(), ("ipwm" + n).c_str(), kStored),
            color(at.color, at.colorRGB, "inColor", "iclr", "ic", {1.0, 1.0, 1.0}, n),
            flag(at.contained, "contained" + n, "cntd" + n, false),
        };
        for (const attr::Row& row : rows)
            group.addChild(*row.attribute);
    }
    return {&scatter::aProjections, kStored};
}

} // namespace

MStatus scatter::initialize()
{
    const attr::Row rows[] = {
        connectedGeometry(aInGeo, "inGeometry", "ig"),
        attr::matrix(aInWorldMatrix, "inWorldMatrix", "iwm", kInput),
        attr::generic(aInPosPP, "inPositionPP", "ippp", {MFnData::kVectorArray}, kInput),
        attr::generic(aOutPosPP, "outPositionPP", "oppp", {MFnData::kVectorArray}, kOutput),
        attr::numeric(aOutCount, "outCount", "ocnt", kInt, 0.0, kOutput),
        attr::generic(aOutGeo, "outGeometry", "ogeo", {MFnData::kMesh}, kOutput),
        flag(aEnvelope, "envelope", "en", true),
        attr::enumeration(aMode, "scatterMode", "sm", {{"volume", 0}, {"surface", 1}, {"both", 2}}, 0, kControl),
        attr::atLeast(attr::numeric(aDensity, "pointDensity", "pd", kInt, 2000.0, kControl), 0.0),
        attr::atLeast(attr::numeric(aMaxPoints, "maxNumberOfPoints", "mnop", kInt, 10000.0, kControl), 0.0),
        attr::numeric(aSeed, "seed", "sd", kInt, 12345.0, kControl),
        attr::softMax(attr::within(attr::numeric(aTolerance, "tolerance", "tl", kDouble, 25.0, kControl), 0.0, 180.0),
                      90.0),
        distance(aSurfaceOffset, "surfaceOffset", "so", 0.0),
        distance(aMaxDistance, "maxDistanceFromSurface", "mdfs", -1.0),
        distance(aSpacing, "minPointToPointDistance", "mppd", 0.0),
        flag(aUseDensityMask, "useVertexColorsAsMask", "uvcm", false),
        attr::text(aDensityColorSet, "colorSet", "clrs", kStored),
        flag(aUseSpacingMask, "useVertexColorsAsPntToPntDistMask", "uvcdm", false),
        attr::text(aSpacingColorSet, "colorSetMinPntToPntDist", "csmptpd", kStored),
        flag(aTexture.active, "active", "a", false),
        attr::text(aUVSet, "uvSet", "uvs", kStored),
        color(aTexture.color, aTexture.colorRGB, "inColor", "iclr", "ic", {1.0, 1.0, 1.0}),
        projections(),
        flag(aUseCamera, "useCamera", "uc", false),
        attr::matrix(aCameraMatrix, "cameraInWorldMatrix", "ciwm", kInput),
        cameraValue(aCameraScale, "cameraScale", "cs"),
        cameraValue(aCameraHorizontalAperture, "cameraHorizontalFilmAperture", "chfa"),
        cameraValue(aCameraVerticalAperture, "cameraVerticalFilmAperture", "cvfa"),
        cameraValue(aCameraHorizontalOffset, "cameraHorizontalFilmOffset", "chfo"),
        cameraValue(aCameraVerticalOffset, "cameraVerticalFilmOffset", "cvfo"),
        cameraValue(aCameraNearClip, "cameraNearClipPlane", "cncp"),
        cameraValue(aCameraFarClip, "cameraFarClipPlane", "cfcp"),
        cameraValue(aCameraFocalLength, "cameraFocalLength", "cfl"),
        cameraValue(aCameraSqueeze, "cameraLensSqueezeRatio", "clsr"),
        attr::atLeast(attr::numeric(aCameraExpand, "cameraFrustumExpand", "cfe", kFloat, 0.0, kControl), 0.0),
        flag(aDisplay, "display", "d", true),
        attr::within(attr::numeric(aPointSize, "pointSize", "psz", kInt, 4.0, kControl), 0.0, 10.0),
        color(aPointColor, aPointColorRGB, "pointColor", "pclr", "pclr", {0.75, 0.0, 0.0}),
    };
    return attr::declare(rows);
}

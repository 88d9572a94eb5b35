// What a bounding object looks like: its shape in lines, or a sphere around every point of its cloud. Placed as consumers
// place it, by its own matrix, even if that is not the one of the transform above.
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMatrixData.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MUIDrawManager.h>

#include <algorithm>

#include "core/arrays.h"
#include "volumes/boundElement.h"
#include "volumes/boundingObject.h"
#include "volumes/volumeOutline.h"

using volume::Vec;

/// Nothing is kept from preparing to drawing but that there is something to draw.
class BoundingObjectData : public MUserData
{
public:
    BoundingObjectData() : MUserData(false) {}
};

namespace {

MPoint toPoint(Vec v) { return MPoint(v.x, v.y, v.z); }

/// From the space in which the volume stands to that of the object: of its own matrix for a shape, the world for a cloud.
volume::Matrix toObject(const volume::Volume& volume, const MMatrix& worldToObject)
{
    if (volume.kind == volume::Kind::kCloud)
        return toMatrix(worldToObject);
    return toMatrix(MMatrix(volume.matrix.m) * worldToObject);
}

struct DrawnCloud
{
    ArrayView positions, radii, rgba;
    explicit DrawnCloud(const MObject& node)
        : positions(viewArray(MPlug(node, boundingObject::aPositionPP).asMObject())),
          radii(viewArray(MPlug(node, boundingObject::aRadiusPP).asMObject())),
          rgba(viewArray(MPlug(node, boundingObject::aRgbaPP).asMObject()))
    {
    }
    unsigned int count() const { return std::min({positions.length, radii.length, rgba.length / 4}); }
    Vec          center(unsigned int i) const
    {
        const double* p = positions.doubles + std::size_t{4} * i;
        return {p[0], p[1], p[2]};
    }
};

MBoundingBox boxOf(const boundingObject& node, const MMatrix& worldToObject)
{
    const volume::Volume volume = node.volumeNow();
    const volume::Matrix matrix = toObject(volume, worldToObject);
    volume::Box          box;
    if (volume.kind == volume::Kind::kCloud) {
        const DrawnCloud cloud(node.thisMObject());
        for (unsigned int i = 0; i < cloud.count(); ++i) {
            const double r = cloud.radii.doubles[i];
            box.add(cloud.center(i) - Vec{r, r, r});
            box.add(cloud.center(i) + Vec{r, r, r});
        }
    } else {
        for (const std::vector<Vec>& strip : outline(volume))
            for (const Vec& p : strip)
                box.add(p);
    }
    if (box.empty())
        return MBoundingBox();
    MBoundingBox out(toPoint(box.low), toPoint(box.high));
    out.transformUsing(MMatrix(matrix.m));
    return out;
}

void drawShape(const volume::Volume& volume, const volume::Matrix& matrix, MHWRender::MUIDrawManager& to)
{
    for (const std::vector<Vec>& strip : outline(volume)) {
        MPointArray points;
        for (const Vec& p : strip)
            points.append(toPoint(transformPoint(p, matrix)));
        to.lineStrip(points, false);
    }
}

/// All spheres as one list of lines; the more there are, the coarser they get.
void drawSpheres(const DrawnCloud& cloud, const volume::Matrix& matrix, const MColor* color,
                 MHWRender::MUIDrawManager& to)
{
    const int      segments = cloud.count() <= 1000 ? 24 : cloud.count() <= 20000 ? 12 : 6;
    volume::Volume unit;
    const auto     circles = outline(unit, segments);
    MPointArray    points;
    MColorArray    colors;
    for (unsigned int i = 0; i < cloud.count(); ++i) {
        const double* c = cloud.rgba.doubles + std::size_t{4} * i;
        const MColor  own(static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]));
        for (const std::vector<Vec>& circle : circles) {
            for (std::size_t k = 0; k + 1 < circle.size(); ++k) {
                for (const Vec& p : {circle[k], circle[k + 1]}) {
                    points.append(toPoint(transformPoint(cloud.center(i) + p * cloud.radii.doubles[i], matrix)));
                    colors.append(color ? *color : own);
                }
            }
        }
    }
    to.mesh(MHWRender::MUIDrawManager::kLines, points, nullptr, &colors);
}

void drawPoints(const DrawnCloud& cloud, const volume::Matrix& matrix, MHWRender::MUIDrawManager& to)
{
    MPointArray points;
    for (unsigned int i = 0; i < cloud.count(); ++i)
        points.append(toPoint(transformPoint(cloud.center(i), matrix)));
    to.setPointSize(4.0f);
    to.points(points, false);
}

} // namespace

volume::Volume boundingObject::volumeNow() const
{
    const MObject  node = thisMObject();
    const auto     number = [&](const MObject& attribute) { return MPlug(node, attribute).asDouble(); };
    volume::Volume volume;
    volume.envelope = MPlug(node, aEnvelope).asBool() ? 1.0 : 0.0;
    volume.kind = static_cast<volume::Kind>(MPlug(node, aType).asShort());
    volume.contained = MPlug(node, aContained).asBool();
    volume.capsule = {number(aTopCapOffset), number(aBottomCapOffset),
                      {number(aTopCapScaleX), number(aTopCapScaleY), number(aTopCapScaleZ)},
                      {number(aBottomCapScaleX), number(aBottomCapScaleY), number(aBottomCapScaleZ)}};
    volume.direction = static_cast<volume::Direction>(MPlug(node, aNormal).asShort());
    const MObject data = MPlug(node, aInParentMatrix).asMObject();
    const MMatrix matrix = data.isNull() ? MMatrix() : MFnMatrixData(data).matrix();
    volume.matrix = toMatrix(matrix);
    volume.flat = matrix.isSingular();
    volume.inverse = toMatrix(matrix.inverse());
    volume.origin = volume.matrix.row(3);
    return volume;
}

MBoundingBox boundingObject::boundingBox() const
{
    MDagPath path;
    MDagPath::getAPathTo(thisMObject(), path);
    return boxOf(*this, path.inclusiveMatrixInverse());
}

BoundingObjectDrawOverride::BoundingObjectDrawOverride(const MObject& node)
    : MPxDrawOverride(node, [](const MHWRender::MDrawContext&, const MUserData*) {})
{
}

MBoundingBox BoundingObjectDrawOverride::boundingBox(const MDagPath& object, const MDagPath&) const
{
    const auto* node = dynamic_cast<boundingObject*>(MFnDependencyNode(object.node()).userNode());
    return node ? boxOf(*node, object.inclusiveMatrixInverse()) : MBoundingBox();
}

MUserData* BoundingObjectDrawOverride::prepareForDraw(const MDagPath&, const MDagPath&,
                                                      const MHWRender::MFrameContext&, MUserData* oldData)
{
    auto* data = dynamic_cast<BoundingObjectData*>(oldData);
    return data ? data : new BoundingObjectData;
}

void BoundingObjectDrawOverride::addUIDrawables(const MDagPath& object, MHWRender::MUIDrawManager& to,
                                                const MHWRender::MFrameContext&, const MUserData* data)
{
    if (!data)
        return;
    const MObject shape = object.node();
    const auto*   node = dynamic_cast<boundingObject*>(MFnDependencyNode(shape).userNode());
    if (!node)
        return;
    const auto   channel = [&](int i) { return MPlug(shape, boundingObject::aDisplayColorRGB[i]).asFloat(); };
    const bool   dormant = MHWRender::MGeometryUtilities::displayStatus(object) == MHWRender::kDormant;
    const MColor color = dormant ? MColor(channel(0), channel(1), channel(2))
                                 : MHWRender::MGeometryUtilities::wireframeColor(object);
    const volume::Volume volume = node->volumeNow();
    const volume::Matrix matrix = toObject(volume, object.inclusiveMatrixInverse());

    to.beginDrawable(MHWRender::MUIDrawManager::kAutomatic);
    to.setColor(color);
    if (volume.kind != volume::Kind::kCloud) {
        drawShape(volume, matrix, to);
    } else {
        const DrawnCloud cloud(shape);
        const bool       ownColors = dormant && MPlug(shape, boundingObject::aColorPointVolumes).asBool();
        if (MPlug(shape, boundingObject::aDisplayPointVolumes).asBool())
            drawSpheres(cloud, matrix, ownColors ? nullptr : &color, to);
        drawPoints(cloud, matrix, to);
    }
    to.endDrawable();
}

#include "generators/scatter.h"

#include <maya/MBoundingBox.h>
#include <maya/MColorArray.h>
#include <maya/MComputation.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MMatrix.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "core/arrays.h"
#include "core/node.h"
#include "generators/scatterTextures.h"
#include "generators/scatterThrows.h"

using namespace scatter_;

namespace {

Matrix toMatrix(const MMatrix& from)
{
    Matrix to;
    from.get(to.m);
    return to;
}

/// The mesh in world space, and the places on it by the world matrix.
class MeshSurface final : public Surface
{
public:
    /// `nearby`: nearest places will be asked for. With a singular matrix there are none.
    MeshSurface(const MFnMesh& mesh, MObject& data, const MMatrix& world, bool nearby)
        : mesh_(mesh), accel_(MFnMesh::autoUniformGridParams()), world_(world)
    {
        if (nearby)
            intersector_.create(data, world);
    }

    bool hit(const Aim& ray, float maxParam, Hit& hit) const override
    {
        const MFloatPoint  source(ray.source.x, ray.source.y, ray.source.z);
        const MFloatVector along(ray.direction.x, ray.direction.y, ray.direction.z);
        MFloatPoint        at;
        if (!mesh_.closestIntersection(source, along, nullptr, nullptr, false, MSpace::kWorld, maxParam, false, &accel_, at,
                                       nullptr, &hit.face, &hit.triangle, nullptr, nullptr, 1e-6f))
            return false;
        hit.point = {at.x, at.y, at.z};
        return true;
    }

    Double3 faceNormal(int face) const override
    {
        MVector normal;
        mesh_.getPolygonNormal(face, normal, MSpace::kWorld);
        return {normal.x, normal.y, normal.z};
    }

    bool triangleVertices(const Hit& hit, int vertices[3]) const override
    {
        return bool(mesh_.getPolygonTriangleVertices(hit.face, hit.triangle, vertices));
    }

    bool nearest(const Float3& p, Float3& nearest) const override
    {
        MPointOnMesh place;
        if (!intersector_.isCreated() || !intersector_.getClosestPoint(MPoint(p.x, p.y, p.z), place))
            return false;
        const MPoint at = MPoint(place.getPoint()) * world_;
        nearest = {static_cast<float>(at.x), static_cast<float>(at.y), static_cast<float>(at.z)};
        return true;
    }

private:
    const MFnMesh&                mesh_;
    mutable MMeshIsectAccelParams accel_;
    MMeshIntersector              intersector_;
    MMatrix                       world_;
};

/// That of the shape which the mesh comes from, in the shape's own space; else that of the points as they come.
Box boxOf(const MPlug& inGeometry, const MFnMesh& mesh)
{
    MPlugArray   sources;
    MBoundingBox bounds;
    if (inGeometry.connectedTo(sources, true, false) && sources.length() > 0 && sources[0].node().hasFn(MFn::kMesh)) {
        bounds = MFnDagNode(sources[0].node()).boundingBox();
    } else {
        MPointArray points;
        mesh.getPoints(points, MSpace::kWorld);
        for (unsigned int i = 0; i < points.length(); ++i)
            if (std::isfinite(points[i].x) && std::isfinite(points[i].y) && std::isfinite(points[i].z))
                bounds.expand(points[i]);
    }
    const MPoint low = bounds.min(), high = bounds.max();
    return {{low.x, low.y, low.z}, {high.x, high.y, high.z}};
}

/// Red of the vertices, not below 0; 1 where the set has no colours.
std::vector<float> maskOf(MDataBlock& block, const MFnMesh& mesh, const MObject& use, const MObject& colorSet)
{
    if (!block.inputValue(use).asBool())
        return {};
    const MString      name = block.inputValue(colorSet).asString();
    std::vector<float> mask(static_cast<std::size_t>(std::max(mesh.numVertices(), 0)), 1.0f);
    MColorArray        colors;
    if (!mesh.getVertexColors(colors, name.length() ? &name : nullptr))
        return mask;
    const MColorArray& read = colors;
    for (unsigned int i = 0; i < read.length() && i < mask.size(); ++i)
        mask[i] = read[i].r < 0.0f ? 0.0f : read[i].r;
    return mask;
}

std::optional<Frustum> frustumOf(MDataBlock& block, const MObject& node)
{
    if (!MPlug(node, scatter::aCameraMatrix).isConnected() || !block.inputValue(scatter::aUseCamera).asBool())
        return std::nullopt;
    const auto            value = [&](const MObject& attribute) { return block.inputValue(attribute).asFloat(); };
    MTransformationMatrix placed(block.inputValue(scatter::aCameraMatrix).asMatrix());
    const double          one[3] = {1.0, 1.0, 1.0};
    placed.setScale(one, MSpace::kWorld);
    Camera camera;
    camera.scale = value(scatter::aCameraScale);
    camera.horizontalAperture = value(scatter::aCameraHorizontalAperture);
    camera.verticalAperture = value(scatter::aCameraVerticalAperture);
    camera.horizontalOffset = value(scatter::aCameraHorizontalOffset);
    camera.verticalOffset = value(scatter::aCameraVerticalOffset);
    camera.nearClip = value(scatter::aCameraNearClip);
    camera.farClip = value(scatter::aCameraFarClip);
    camera.focalLength = value(scatter::aCameraFocalLength);
    camera.squeeze = value(scatter::aCameraSqueeze);
    camera.expand = value(scatter::aCameraExpand);
    camera.world = toMatrix(placed.asMatrix());
    return Frustum(camera);
}

std::vector<Float3> givenPoints(MDataBlock& block)
{
    const ArrayView     view = viewArray(block, scatter::aInPosPP, {MFn::kVectorArrayData});
    std::vector<Float3> points(view.length);
    for (std::size_t i = 0; i < points.size(); ++i)
        for (int k = 0; k < 3; ++k)
            points[i][k] = static_cast<float>(view.doubles[3 * i + static_cast<std::size_t>(k)]);
    return points;
}

Rules rulesOf(MDataBlock& block, bool flat)
{
    Rules rules;
    rules.mode = flat ? Mode::kSurface : static_cast<Mode>(block.inputValue(scatter::aMode).asShort());
    rules.throwCount = std::max(block.inputValue(scatter::aDensity).asInt(), 0);
    rules.maxCount = std::max(block.inputValue(scatter::aMaxPoints).asInt(), 0);
    rules.tolerance = block.inputValue(scatter::aTolerance).asDouble();
    rules.surfaceOffset = block.inputValue(scatter::aSurfaceOffset).asFloat();
    rules.spacing = block.inputValue(scatter::aSpacing).asFloat();
    if (rules.mode != Mode::kSurface) {
        const float distance = block.inputValue(scatter::aMaxDistance).asFloat();
        rules.maxDistance = distance < 0.0f ? 9999999.0f : distance;
    }
    return rules;
}

/// Of the throws; short runs are over before anybody could want to end them.
class Interruption
{
public:
    explicit Interruption(const MPlug& plug) : plug_(plug) {}
    ~Interruption()
    {
        if (begun_)
            computation_.endComputation();
    }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool isRequested()
    {
        if (!begun_)
            computation_.beginComputation(false, true, false);
        begun_ = true;
        if (!computation_.isInterruptRequested())
            return false;
        warn(plug_, ": Interrupted. The points that were found are kept.");
        return true;
    }

private:
    const MPlug& plug_;
    MComputation computation_;
    bool         begun_ = false;
};

/// All that the points are made of is read before the first draw: where the generator is shared, what is evaluated
/// upstream may use it too.
Cloud scatterPoints(const MPlug& plug, MDataBlock& block)
{
    const MObject node = plug.node();
    MDataHandle input = block.inputValue(scatter::aInGeo);
    if (input.type() != MFnData::kMesh)
        return {};
    MObject data = input.asMeshTransformed();
    MFnMesh mesh(data);
    if (mesh.numPolygons() <= 0)
        return {};
    const MMatrix world = MPlug(node, scatter::aInWorldMatrix).isConnected()
                              ? block.inputValue(scatter::aInWorldMatrix).asMatrix() : MMatrix();
    Box        box = boxOf(MPlug(node, scatter::aInGeo), mesh);
    const bool flat = widenFlat(box);
    Rules      rules = rulesOf(block, flat);
    rules.densityMask = maskOf(block, mesh, scatter::aUseDensityMask, scatter::aDensityColorSet);
    rules.spacingMask = maskOf(block, mesh, scatter::aUseSpacingMask, scatter::aSpacingColorSet);
    const bool                given = MPlug(node, scatter::aInPosPP).isConnected();
    const std::vector<Float3> sources = given ? givenPoints(block) : std::vector<Float3>();
    if (given) {
        rules.sources = sources.data();
        rules.throwCount = rules.maxCount = static_cast<int>(sources.size());
    }
    const std::optional<Frustum> frustum = frustumOf(block, node);
    const Textures               textures = readTextures(block, node);
    const MeshSurface surface(mesh, data, world, given || (rules.mode != Mode::kSurface && rules.surfaceOffset > 0.0f));

    Interruption interruption(plug);
    rules.stopsHere = [&] { return interruption.isRequested(); };
    Draws draws(block.inputValue(scatter::aSeed).asInt());
    Cloud cloud = throwPoints(surface, RandomAim(box, toMatrix(world)), rules, draws);
    if (!lengthFits(plug, cloud.points.size(), 3))
        return {};
    filterByTextures(textures, node, mesh, cloud, draws);
    if (frustum)
        cloud.filter([&](std::size_t i) { return frustum->contains(cloud.points[i]); });
    return cloud;
}

} // namespace

MStatus scatter::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutPosPP, &aOutGeo, &aOutCount}))              // plug test: one run fills all
        return MS::kUnknownParameter;

    Cloud cloud;                                                         // switch, connection test, work
    if (state != kHasNoEffect && block.inputValue(aEnvelope).asBool() && MPlug(thisMObject(), aInGeo).isConnected())
        cloud = scatterPoints(plug, block);

    block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));           // write, even if empty
    const auto count = static_cast<unsigned int>(cloud.points.size());
    OutArray   positions(OutArray::kVectors);
    double*    to = positions.resize(count);
    for (const Float3& p : cloud.points)
        for (int k = 0; k < 3; ++k)
            *to++ = p[k];
    positions.publish(block, aOutPosPP);
    if (block.context().isNormal())
        MPlug(thisMObject(), aOutCount).setInt(static_cast<int>(count));
    else
        block.outputValue(aOutCount).setInt(static_cast<int>(count));    // a plug would write the present one
    return MS::kSuccess;
}

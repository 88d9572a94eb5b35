#include "volumes/cloudSources.h"

#include <maya/MColorArray.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MItGeometry.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <cmath>

#include "core/arrays.h"
#include "core/node.h"
#include "core/subset.h"
#include "core/tessellation.h"
#include "volumes/boundingObject.h"

namespace {

/// One array of values a point, or what stands for it.
class PerPoint
{
public:
    /// `channels` values a point; an array of another kind counts as none.
    PerPoint(const ArrayView& array, const double* instead, unsigned int channels = 1)
        : array_(array.stride == channels ? array : ArrayView()), instead_(instead) {}

    bool given() const { return array_.doubles != nullptr; }
    /// Value `k` of the point: past the array's end 0, without an array the default.
    double at(unsigned int i, unsigned int k = 0) const
    {
        if (!given())
            return instead_[k];
        return i < array_.length ? array_.doubles[std::size_t{array_.stride} * i + k] : 0.0;
    }

private:
    ArrayView     array_;
    const double* instead_;
};

/// The array at `attribute` if the switch is on. A connected one of another length than wanted gives a warning.
ArrayView readPerPoint(MDataBlock& block, const MObject& node, const MObject& attribute, const MObject& use,
                       unsigned int wanted, unsigned int pointStride, const MString& geometry)
{
    if (!block.inputValue(use).asBool())
        return {};
    ArrayView    array = viewArray(block, attribute);
    const MPlug  plug(node, attribute);
    const bool   flat = array.kind == MFn::kDoubleArrayData;
    if (array.length * (flat ? 1 : pointStride) != wanted * pointStride && plug.isConnected()) {
        warn(plug, MString(": ") + plug.partialName(false, false, false, false, false, true) +
                       " array length does not match the " + geometry +
                       " point count. Result will be unpredictable.");
    }
    return array;
}

PerPoint numbers(MDataBlock& block, const MObject& node, const MObject& attribute, const MObject& use,
                 unsigned int count, const MString& geometry, const double& instead)
{
    return {readPerPoint(block, node, attribute, use, count, 1, geometry), &instead};
}

/// Colours of a curve or surface: four doubles a point, or vectors or points with alpha 1.
class Colors
{
public:
    Colors(const ArrayView& array, const double (&instead)[4]) : array_(array), instead_(instead) {}

    void at(unsigned int i, double (&rgba)[4]) const
    {
        if (!array_.doubles) {
            std::copy(instead_, instead_ + 4, rgba);
            return;
        }
        const bool        flat = array_.kind == MFn::kDoubleArrayData;
        const std::size_t next = std::size_t{i} * (flat ? 4 : array_.stride);
        const std::size_t end = std::size_t{array_.length} * (flat ? 1 : array_.stride);
        for (std::size_t k = 0; k < (flat ? 4 : 3); ++k)
            rgba[k] = next + k < end ? array_.doubles[next + k] : 0.0;
        if (!flat)
            rgba[3] = i < array_.length ? 1.0 : 0.0;
    }

private:
    ArrayView     array_;
    const double* instead_;
};

void add(CloudPoints& to, const MPoint& p, double nx, double ny, double nz, double radius, double weight,
         const double (&rgba)[4])
{
    MPoint at = p;
    if (at.w != 1.0)
        at.cartesianize();
    to.positions.insert(to.positions.end(), {at.x, at.y, at.z, 1.0});
    to.normals.insert(to.normals.end(), {nx, ny, nz});
    to.radii.push_back(std::fabs(radius));
    to.weights.push_back(weight);
    to.rgba.insert(to.rgba.end(), rgba, rgba + 4);
}

/// True if the source takes part.
bool isOn(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at)
{
    return MPlug(node, at.points).isConnected() && block.inputValue(at.enable).asBool();
}

Subset subsetOf(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at, const MObject& geometry)
{
    const auto mode = static_cast<SubsetMode>(block.inputValue(at.mode).asShort());
    return Subset(block, mode, {MPlug(node, at.components), geometry, block.inputValue(at.groupId).asInt()});
}

/// Calls f(index) for each point of the geometry that the subset holds.
template <class F>
void eachSelected(MDataHandle& geometry, const Subset& subset, unsigned int count, F&& f)
{
    if (subset.all()) {
        for (unsigned int i = 0; i < count; ++i)
            f(i);
        return;
    }
    unsigned int i = 0;
    for (MItGeometry it(geometry); !it.isDone() && i < count; it.next(), ++i) {
        if (subset.has(it.currentItem()))
            f(i);
    }
}

MFloatVectorArray vertexNormals(const MObject& mesh)
{
    MFloatVectorArray normals;
    MFnMesh(mesh).getVertexNormals(false, normals, MSpace::kWorld);
    return normals;
}

/// A curve or surface: CVs, and the normals of the tessellation's vertices one after the other.
void gatherControlPoints(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at, const MString& name,
                         const MObject& tessellation, const CloudDefaults& defaults, CloudPoints& to)
{
    MDataHandle geometry = block.inputValue(at.points);
    MPointArray points;
    MItGeometry(geometry).allPositions(points, MSpace::kWorld);
    const unsigned int       count = points.length();
    const MFloatVectorArray  normals = vertexNormals(tessellation);
    const Subset             subset = subsetOf(block, node, at, geometry.data());
    const PerPoint           radius = numbers(block, node, at.radius, at.useRadius, count, name, defaults.radius);
    const PerPoint           weight = numbers(block, node, at.weight, at.useWeight, count, name, defaults.weight);
    const Colors             color(readPerPoint(block, node, at.color, at.useColor, count, 4, name), defaults.rgba);
    eachSelected(geometry, subset, count, [&](unsigned int i) {
        double rgba[4];
        color.at(i, rgba);
        const MFloatVector n = i < normals.length() ? normals[i] : MFloatVector(0, 0, 0);
        add(to, points[i], n.x, n.y, n.z, radius.at(i), weight.at(i), rgba);
    });
}

bool sourceOf(const MObject& node, const MObject& attribute, MPlug& source)
{
    MPlugArray sources;
    if (!MPlug(node, attribute).connectedTo(sources, true, false) || sources.length() == 0)
        return false;
    source = sources[0];
    return true;
}

bool noPoints(MDataHandle& geometry, MFnData::Type kind)
{
    return geometry.type() != kind || MItGeometry(geometry).count() == 0;
}

/// The particles that take part: all, or those of an int array or a component. Those past the count are left out.
std::vector<unsigned int> particleIndices(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at,
                                          unsigned int count)
{
    std::vector<unsigned int> out;
    if (block.inputValue(at.mode).asShort() != static_cast<short>(SubsetMode::kComponentList)) {
        for (unsigned int i = 0; i < count; ++i)
            out.push_back(i);
        return out;
    }
    MPlug   source;
    MObject data = sourceOf(node, at.components, source) ? source.asMObject() : block.inputValue(at.components).data();
    MIntArray ids;
    if (data.apiType() == MFn::kIntArrayData) {
        MFnIntArrayData(data).copyTo(ids);
    } else {
        if (data.apiType() == MFn::kComponentListData) {
            MFnComponentListData list(data);
            data = list.length() > 0 ? list[0] : MObject::kNullObj;
        }
        MFnSingleIndexedComponent component;
        if (!data.isNull() && component.setObject(data) == MS::kSuccess)
            component.getElements(ids);
    }
    for (unsigned int k = 0; k < ids.length(); ++k) {
        if (ids[k] >= 0 && static_cast<unsigned int>(ids[k]) < count)
            out.push_back(static_cast<unsigned int>(ids[k]));
    }
    return out;
}

} // namespace

void gatherMesh(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at, const CloudDefaults& defaults,
                CloudPoints& to)
{
    if (!isOn(block, node, at))
        return;
    MDataHandle geometry = block.inputValue(at.points);
    if (noPoints(geometry, MFnData::kMesh))
        return;
    const MObject mesh = geometry.asMeshTransformed();
    MFnMesh       fn(mesh);
    MPointArray   points;
    fn.getPoints(points, MSpace::kWorld);
    const unsigned int      count = points.length();
    const MFloatVectorArray normals = vertexNormals(mesh);
    const Subset            subset = subsetOf(block, node, at, geometry.data());
    const PerPoint          radius = numbers(block, node, at.radius, at.useRadius, count, "inMesh", defaults.radius);
    const PerPoint          weight = numbers(block, node, at.weight, at.useWeight, count, "inMesh", defaults.weight);
    MColorArray             colors;
    if (block.inputValue(at.useColor).asBool()) {
        const MString set = block.inputValue(at.color).asString();
        fn.getVertexColors(colors, set.length() > 0 ? &set : nullptr);
    }
    eachSelected(geometry, subset, count, [&](unsigned int i) {
        double rgba[4] = {defaults.rgba[0], defaults.rgba[1], defaults.rgba[2], defaults.rgba[3]};
        if (i < colors.length()) {
            const MColor& c = colors[i];
            const bool    unset = c.r == -1.0f && c.g == -1.0f && c.b == -1.0f && c.a == -1.0f;
            for (unsigned int k = 0; k < 4; ++k)
                rgba[k] = unset ? 0.0 : c[k];
        }
        const MFloatVector n = i < normals.length() ? normals[i] : MFloatVector(0, 0, 0);
        add(to, points[i], n.x, n.y, n.z, radius.at(i), weight.at(i), rgba);
    });
}

void gatherCurve(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at, const CloudDefaults& defaults,
                 CloudPoints& to)
{
    MPlug source;
    if (!isOn(block, node, at) || !sourceOf(node, at.points, source))
        return;
    MDataHandle geometry = block.inputValue(at.points);
    if (!noPoints(geometry, MFnData::kNurbsCurve))
        gatherControlPoints(block, node, at, "inCurve", tessellatedCurve(source), defaults, to);
}

void gatherSurface(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at,
                   const CloudDefaults& defaults, CloudPoints& to)
{
    MPlug source;
    if (!isOn(block, node, at) || !sourceOf(node, at.points, source))
        return;
    MDataHandle geometry = block.inputValue(at.points);
    if (noPoints(geometry, MFnData::kNurbsSurface))
        return;
    const MFnNurbsSurface surface(geometry.asNurbsSurface());
    const MObject         mesh = tessellatedSurface(source);
    const int             wanted = surface.numCVsInU() * surface.numCVsInV();
    if (mesh.isNull() || MFnMesh(mesh).numVertices() != wanted) {
        warn(MPlug(node, at.points), ": The geometry at the \"inSurface\" input is a periodic nurbs surface. Rebuild "
                                     "using the \"End Conditions\" / \"Multiple Knots\" options.");
        return;
    }
    gatherControlPoints(block, node, at, "inSurface", mesh, defaults, to);
}

void gatherParticles(MDataBlock& block, const MObject& node, const CloudSourceAttributes& at,
                     const CloudDefaults& defaults, CloudPoints& to)
{
    if (!isOn(block, node, at))
        return;
    const ArrayView positions = viewArray(block, at.points);
    if (positions.length == 0 || positions.kind != MFn::kVectorArrayData)
        return;
    const unsigned int              count = positions.length;
    const std::vector<unsigned int> indices = particleIndices(block, node, at, count);
    if (indices.empty())
        return;
    const auto read = [&](const MObject& attribute, const MObject& use, const double* instead,
                          unsigned int channels = 1) {
        return PerPoint(readPerPoint(block, node, attribute, use, count, 1, "inParticle"), instead, channels);
    };
    const PerPoint radius = read(at.radius, at.useRadius, &defaults.radius);
    const PerPoint velocity = read(at.velocity, at.useVelocity, defaults.velocity, 3);
    const PerPoint weight = read(at.weight, at.useWeight, &defaults.weight);
    const PerPoint color = read(at.color, at.useColor, defaults.rgba, 3);
    // read under the switch of the colours; useOpacity has no effect, and scenes rely on it
    const PerPoint opacity = read(at.opacity, at.useColor, &defaults.rgba[3]);
    for (const unsigned int i : indices) {
        const double* p = positions.doubles + std::size_t{3} * i;
        const double  rgba[4] = {color.at(i, 0), color.at(i, 1), color.at(i, 2), opacity.at(i)};
        add(to, MPoint(p[0], p[1], p[2]), velocity.at(i, 0), velocity.at(i, 1), velocity.at(i, 2), radius.at(i),
            weight.at(i), rgba);
    }
}

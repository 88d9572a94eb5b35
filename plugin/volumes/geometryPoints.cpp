#include "volumes/geometryPoints.h"

#include <maya/MFloatVectorArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MItGeometry.h>
#include <maya/MMatrix.h>
#include <maya/MPlugArray.h>
#include <maya/MPoint.h>

#include "core/node.h"
#include "core/subset.h"
#include "core/tessellation.h"
#include "volumes/boundElement.h"

namespace {

bool sourceOf(const MPlug& plug, MPlug& source)
{
    MPlugArray sources;
    if (!plug.connectedTo(sources, true, false) || sources.length() == 0)
        return false;
    source = sources[0];
    return true;
}

/// Object-space normals of the vertices through the matrix; as many as there are points.
void takeNormals(const MObject& mesh, const volume::Matrix& matrix, std::size_t count, GeometryPoints& out)
{
    MFloatVectorArray normals;
    MFnMesh(mesh).getVertexNormals(false, normals, MSpace::kObject);
    out.normals.assign(3 * count, 0.0);
    for (unsigned int i = 0; i < normals.length() && i < count; ++i) {
        const MFloatVector& n = normals[i];
        const volume::Vec   v = transformVector({n.x, n.y, n.z}, matrix);
        double*             to = &out.normals[3 * std::size_t{i}];
        to[0] = v.x, to[1] = v.y, to[2] = v.z;
    }
    out.input.normals = out.normals.data();
}

void takeColors(const MObject& mesh, const MString& set, std::size_t count, GeometryPoints& out)
{
    MFnMesh(mesh).getVertexColors(out.colors, set.length() > 0 ? &set : nullptr);
    if (out.colors.length() >= count && count > 0)
        out.input.colors = &out.colors[0].r;
}

void readMesh(MDataHandle& geometry, const GeometryWishes& wishes, GeometryPoints& out)
{
    const MMatrix matrix = geometry.geometryTransformMatrix();
    out.mesh = geometry.asMeshTransformed();
    const MFnMesh fn(out.mesh);
    out.input.count = static_cast<std::size_t>(fn.numVertices());
    out.input.local = fn.getRawPoints();
    out.input.toWorld = toMatrix(matrix);
    out.input.toLocal = toMatrix(matrix.inverse());
    if (wishes.normals)
        takeNormals(out.mesh, out.input.toWorld, out.input.count, out);
    if (wishes.colors)
        takeColors(out.mesh, wishes.colorSet, out.input.count, out);
}

/// False if the surface's tessellation does not fit it.
bool readControlPoints(MDataHandle& geometry, const MPlug& plug, const GeometryWishes& wishes, GeometryPoints& out)
{
    MItGeometry(geometry).allPositions(out.controlPoints, MSpace::kWorld);
    const std::size_t count = out.controlPoints.length();
    out.input.count = count;
    out.input.points = count > 0 ? &out.controlPoints[0].x : nullptr;
    out.input.pointStride = 4;
    MPlug source;
    if (!(wishes.normals || wishes.colors) || count == 0 || !sourceOf(plug, source))
        return true;
    MObject mesh;
    if (out.kind == MFnData::kNurbsCurve) {
        mesh = tessellatedCurve(source);
    } else {
        const MFnNurbsSurface surface(geometry.asNurbsSurface());
        mesh = tessellatedSurface(source);
        if (mesh.isNull() || MFnMesh(mesh).numVertices() != surface.numCVsInU() * surface.numCVsInV())
            return false;
    }
    if (wishes.normals)
        takeNormals(mesh, {}, count, out);
    if (wishes.colors)
        takeColors(mesh, wishes.colorSet, count, out);
    return true;
}

void markAll(const MIntArray& ids, std::vector<char>& selected)
{
    for (unsigned int k = 0; k < ids.length(); ++k) {
        if (ids[k] >= 0 && static_cast<std::size_t>(ids[k]) < selected.size())
            selected[static_cast<std::size_t>(ids[k])] = 1;
    }
}

/// Indices of a component of the one kind that fits the points.
void markComponent(MObject component, const GeometryPoints& points, std::vector<char>& selected)
{
    MFn::Type wanted = MFn::kInvalid;
    switch (points.kind) {
    case MFnData::kMesh:       wanted = MFn::kMeshVertComponent; break;
    case MFnData::kNurbsCurve: wanted = MFn::kCurveCVComponent; break;
    default:                   break;
    }
    if (component.isNull() || (wanted != MFn::kInvalid && component.apiType() != wanted))
        return;
    MFnSingleIndexedComponent fn;
    if (fn.setObject(component) != MS::kSuccess)
        return;
    if (fn.isComplete()) {
        selected.assign(selected.size(), 1);
        return;
    }
    MIntArray ids;
    fn.getElements(ids);
    markAll(ids, selected);
}

MObject componentData(MDataBlock& block, const MPlug& plug)
{
    MPlug source;
    return sourceOf(plug, source) ? source.asMObject() : block.inputValue(plug).data();
}

} // namespace

void readGeometry(MDataBlock& block, const MPlug& inGeometry, const GeometryWishes& wishes, GeometryPoints& out)
{
    MDataHandle geometry = block.inputValue(inGeometry);
    out.kind = geometry.type();
    switch (out.kind) {
    case MFnData::kMesh:
        readMesh(geometry, wishes, out);
        return;
    case MFnData::kNurbsCurve:
    case MFnData::kNurbsSurface:
        if (readControlPoints(geometry, inGeometry, wishes, out))
            return;
        warn(inGeometry, ": inGeometry is periodic nurbs surface. Rebuild using \"End Conditions\" / \"Multiple "
                         "Knots\" options.");
        break;
    case MFnData::kVectorArray:
        out.vectors = viewArray(geometry.data());
        out.input.count = out.vectors.length;
        out.input.points = out.vectors.doubles;
        out.input.pointStride = 3;
        return;
    default: break;
    }
    out.kind = MFnData::kInvalid;
    out.input = {};
}

std::vector<char> selectedPoints(MDataBlock& block, const MPlug& inGeometry, const GeometryPoints& points,
                                 const SubsetAttributes& at)
{
    const auto  mode = static_cast<SubsetMode>(block.inputValue(at.mode).asShort());
    const MPlug components(inGeometry.node(), at.components);
    if (mode == SubsetMode::kAll)
        return {};
    std::vector<char> selected(points.input.count, 0);
    const bool        particles = points.kind == MFnData::kVectorArray;
    if (particles && mode == SubsetMode::kObjectGroup) {
        warn(inGeometry, ": Object groups are not supported for particles. Use componentList instead.");
        return selected;
    }
    if (mode == SubsetMode::kComponentList) {
        MObject data = componentData(block, components);
        if (data.apiType() == MFn::kIntArrayData) {
            MIntArray ids;
            MFnIntArrayData(data).copyTo(ids);
            if (points.kind != MFnData::kNurbsSurface)   // one index does not name a CV of a surface
                markAll(ids, selected);
            return selected;
        }
    }
    MDataHandle  geometry = block.inputValue(inGeometry);
    const Subset subset(block, mode, {components, geometry.data(), block.inputValue(at.groupId).asInt()});
    if (points.kind != MFnData::kNurbsSurface) {
        markComponent(subset.component(), points, selected);
        return selected;
    }
    std::size_t i = 0;
    for (MItGeometry it(geometry); !it.isDone() && i < selected.size(); it.next(), ++i)
        selected[i] = subset.has(it.currentItem());
    return selected;
}

volume::Box boxOf(const TransferInput& points, const std::vector<char>& selected)
{
    volume::Box        box;
    volume::PointBlock block;
    if (selected.empty()) {
        for (std::size_t from = 0; from < points.count; from += volume::PointBlock::kCapacity) {
            loadBlock(points, from, volume::PointBlock::kCapacity, block);
            box.add(block.box);
        }
        return box;
    }
    for (std::size_t i = 0; i < points.count; ++i) {
        if (selected[i])
            box.add(points.at(i));
    }
    return box;
}

#include "volumes/componentGeometry.h"

#include <maya/MFloatVectorArray.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>

#include "core/node.h"
#include "core/tessellation.h"
#include "volumes/meshTables.h"

namespace {

constexpr short kParticleType = 6;

/// The data as it is seen in the space.
MObject inSpace(MDataHandle& handle, MFnData::Type form, MSpace::Space space)
{
    const bool world = space == MSpace::kWorld;
    switch (form) {
    case MFnData::kMesh:         return world ? handle.asMeshTransformed() : handle.asMesh();
    case MFnData::kNurbsCurve:   return world ? handle.asNurbsCurveTransformed() : handle.asNurbsCurve();
    case MFnData::kNurbsSurface: return world ? handle.asNurbsSurfaceTransformed() : handle.asNurbsSurface();
    default:                     return MObject::kNullObj;
    }
}

/// The plug to tessellate from; null without a connection.
MPlug sourceOf(const MPlug& plug)
{
    MPlugArray sources;
    return plug.connectedTo(sources, true, false) && sources.length() > 0 ? sources[0] : MPlug();
}

int vertexCountOf(const MObject& mesh)
{
    MObject object = mesh;
    return mesh.isNull() ? 0 : std::max(MFnMesh(object).numVertices(), 0);
}

void store(std::vector<double>& to, std::size_t i, double x, double y, double z)
{
    to[3 * i] = x;
    to[3 * i + 1] = y;
    to[3 * i + 2] = z;
}

std::vector<double> toTriples(const MPointArray& points)
{
    std::vector<double> xyz(3 * static_cast<std::size_t>(points.length()));
    for (unsigned int i = 0; i < points.length(); ++i) {
        MPoint p = points[i];
        if (p.w != 1.0)
            p.cartesianize();
        store(xyz, i, p.x, p.y, p.z);
    }
    return xyz;
}

/// Three numbers a particle, zeros where there is nothing. Doubles are flat vectors if there are three a particle, else
/// one number stands for all three.
std::vector<double> toVelocities(const ArrayView& array, std::size_t particles)
{
    std::vector<double> xyz(3 * particles, 0.0);
    const std::size_t   length = array.doubles ? std::size_t(array.length) * array.stride : 0;
    if (array.stride == 3 || length == 3 * particles) {
        std::copy_n(array.doubles, std::min(length, xyz.size()), xyz.begin());
        return xyz;
    }
    for (std::size_t i = 0; i < std::min(length, particles); ++i)
        std::fill_n(xyz.begin() + 3 * static_cast<std::ptrdiff_t>(i), 3, array.doubles[i]);
    return xyz;
}

/// True if the mesh has the set that is asked for, or a current one.
bool hasUVSet(const MPlug& plug, const MFnMesh& mesh, const MString& uvSet)
{
    if (uvSet.length() == 0) {
        const bool any = mesh.currentUVSetName().length() > 0;
        if (!any)
            warn(plug, ": Cannot find a current uvSet.");
        return any;
    }
    MStringArray names;
    mesh.getUVSetNames(names);
    for (unsigned int i = 0; i < names.length(); ++i)
        if (names[i] == uvSet)
            return true;
    warn(plug, ": Cannot find uvSet named \"" + uvSet + "\".");
    return false;
}

} // namespace

ComponentGeometry::ComponentGeometry(const MPlug& plug, MDataHandle& handle, short kind, MSpace::Space space,
                                     const MString& uvSet, const ArrayView& velocities)
    : handle_(handle), form_(handle.type()), space_(space), uvSet_(uvSet)
{
    const bool known = kind >= 0 && kind < kParticleType;
    components_.kind = known ? static_cast<ComponentKind>(kind) : ComponentKind::kVertex;
    switch (form_) {
    case MFnData::kMesh:
        if (known)
            readMesh(plug, uvSet);
        break;
    case MFnData::kNurbsCurve:   readCurve(plug); break;
    case MFnData::kNurbsSurface: readSurface(plug); break;
    case MFnData::kVectorArray:  readParticles(velocities); break;
    default:                     break;
    }
}

void ComponentGeometry::readMesh(const MPlug& plug, const MString& uvSet)
{
    mesh_ = inSpace(handle_, form_, space_);
    const MFnMesh mesh(mesh_);
    switch (components_.kind) {
    case ComponentKind::kVertex: components_.count = mesh.numVertices(); break;
    case ComponentKind::kEdge:   components_.count = mesh.numEdges(); break;
    case ComponentKind::kFace:   components_.count = mesh.numPolygons(); break;
    case ComponentKind::kMap:
        if (!hasUVSet(plug, mesh, uvSet))
            uvSet_ = MString();
        components_.count = withUVs().uvCount;
        break;
    default: break;
    }
    components_.count = std::max(components_.count, 0);
}

void ComponentGeometry::readCurve(const MPlug& plug)
{
    MObject             object = inSpace(handle_, form_, space_);
    const MFnNurbsCurve curve(object);
    if (components_.kind == ComponentKind::kCurveCV)
        components_.count = std::max(curve.numCVs(), 0);
    const MPlug source = sourceOf(plug);
    if (components_.count > 0 && !source.isNull())
        mesh_ = tessellatedCurve(source);
}

void ComponentGeometry::readSurface(const MPlug& plug)
{
    MObject               object = inSpace(handle_, form_, space_);
    const MFnNurbsSurface surface(object);
    const int rows = std::max(surface.numCVsInU(), 0), columns = std::max(surface.numCVsInV(), 0);
    const MPlug source = sourceOf(plug);
    if (rows * columns == 0 || source.isNull())
        return;
    mesh_ = tessellatedSurface(source);
    if (vertexCountOf(mesh_) != rows * columns) {
        refusal_ = kPeriodicSurface;
        warn(plug, ": Geometry at the input is a periodic nurbs surface. Rebuild using the \"End Conditions\" / "
                   "\"Multiple Knots\" options.");
        return;
    }
    components_.columns = columns;
    if (components_.kind == ComponentKind::kSurfaceCV)
        components_.count = rows * columns;
}

void ComponentGeometry::readParticles(const ArrayView& velocities)
{
    const ArrayView   positions = viewArray(handle_.data());
    const std::size_t particles = positions.doubles ? positions.length : 0;
    if (velocities.kind != MFn::kVectorArrayData && velocities.kind != MFn::kDoubleArrayData) {
        refusal_ = kNoVelocities;
        return;
    }
    velocities_ = toVelocities(velocities, particles);
    if (particles == 0)
        return;

    // a polygon takes three points: the first one stands in for what is missing
    const auto  count = static_cast<unsigned int>(std::max<std::size_t>(particles, 3));
    MPointArray points(count);
    MIntArray   corners(count, 0);
    velocities_.resize(3 * static_cast<std::size_t>(count));
    for (unsigned int i = 0; i < count; ++i) {
        const std::size_t from = i < particles ? i : 0;
        const double*     p = positions.doubles + 3 * from;
        points[i] = MPoint(p[0], p[1], p[2]);
        corners[i] = static_cast<int>(i);
        if (from != i)
            std::copy_n(velocities_.begin(), 3, velocities_.begin() + 3 * static_cast<std::ptrdiff_t>(i));
    }
    MFnMeshData data;
    mesh_ = data.create();
    MFnMesh().create(static_cast<int>(count), 1, points, MIntArray(1, static_cast<int>(count)), corners, mesh_);
    switch (components_.kind) {
    case ComponentKind::kVertex:
    case ComponentKind::kEdge:   components_.count = static_cast<int>(count); break;
    case ComponentKind::kFace:   components_.count = 1; break;
    default:                     break;
    }
}

void ComponentGeometry::needTables()
{
    if (tables_.vertexCount == 0 && !mesh_.isNull())
        tables_ = readFaces(mesh_);
}

const MeshTables& ComponentGeometry::faces()
{
    needTables();
    return tables_;
}

const MeshTables& ComponentGeometry::withEdges()
{
    needTables();
    if (!mesh_.isNull())
        addEdges(mesh_, tables_);
    return tables_;
}

const MeshTables& ComponentGeometry::withUVs()
{
    needTables();
    if (!hasUVs_ && !mesh_.isNull())
        addUVs(mesh_, uvSet_, tables_);
    hasUVs_ = true;
    return tables_;
}

void ComponentGeometry::needFor(ComponentKind kind)
{
    needTables();
    if (kind == ComponentKind::kEdge)
        withEdges();
    else if (kind == ComponentKind::kMap)
        withUVs();
}

Marks ComponentGeometry::ofVertices(const Marks& vertices)
{
    needFor(kind());
    return fromVertices(tables_, kind(), count(), vertices);
}

Marks ComponentGeometry::ofEdges(const Marks& edges)
{
    needFor(kind());
    withEdges();
    return fromEdges(tables_, kind(), count(), edges);
}

Marks ComponentGeometry::ofFaces(const Marks& faces)
{
    needFor(kind());
    return fromFaces(tables_, kind(), count(), faces);
}

std::vector<double> ComponentGeometry::vertexPoints() const
{
    if (mesh_.isNull())
        return {};
    MObject       object = mesh_;
    const MFnMesh mesh(object);
    if (space_ == MSpace::kObject || MFnGeometryData(object).matrixIsIdentity()) {   // read them where they are
        const float* raw = mesh.getRawPoints();
        const auto   length = raw ? 3 * static_cast<std::size_t>(mesh.numVertices()) : 0;
        return std::vector<double>(raw, raw + length);
    }
    MPointArray points;
    mesh.getPoints(points, space_);
    return toTriples(points);
}

std::vector<double> ComponentGeometry::points() const
{
    if (form_ != MFnData::kNurbsCurve && form_ != MFnData::kNurbsSurface)
        return vertexPoints();
    MPointArray points;
    MItGeometry(handle_).allPositions(points, space_);
    return toTriples(points);
}

std::vector<double> ComponentGeometry::vertexVectors() const
{
    if (particles())
        return velocities_;
    MFloatVectorArray normals;
    MObject           mesh = mesh_;
    if (!mesh.isNull())
        MFnMesh(mesh).getVertexNormals(false, normals, space_);
    const MFloatVectorArray& at = normals;
    std::vector<double>      xyz(3 * static_cast<std::size_t>(at.length()));
    for (unsigned int i = 0; i < at.length(); ++i)
        store(xyz, i, at[i].x, at[i].y, at[i].z);
    if (form_ == MFnData::kNurbsSurface)
        repairNormals(xyz);
    return xyz;
}

/// Where a surface's normals cancel out, at poles, its tangents still tell where it faces.
void ComponentGeometry::repairNormals(std::vector<double>& normals) const
{
    constexpr double kTooShort = 1e-20;   // squared
    MObject          object = mesh_;
    const MFnMesh    mesh(object);
    MItMeshVertex    vertex(object);
    MIntArray        faces;
    for (std::size_t i = 0; 3 * i < normals.size(); ++i) {
        double* n = &normals[3 * i];
        int     previous = 0;
        if (n[0] != 0.0 || n[1] != 0.0 || n[2] != 0.0 || !vertex.setIndex(static_cast<int>(i), previous))
            continue;
        MVector sum;
        vertex.getConnectedFaces(faces);
        for (unsigned int k = 0; k < faces.length(); ++k) {
            MVector tangent, binormal;
            mesh.getFaceVertexTangent(faces[k], static_cast<int>(i), tangent, space_);
            mesh.getFaceVertexBinormal(faces[k], static_cast<int>(i), binormal, space_);
            sum += tangent ^ binormal;
        }
        if (sum * sum > kTooShort)
            sum = sum / sum.length();
        store(normals, i, sum.x, sum.y, sum.z);
    }
}

std::vector<double> ComponentGeometry::faceNormals() const
{
    std::vector<double> normals;
    for (MItMeshPolygon face(mesh_); !face.isDone(); face.next()) {
        MVector n;
        face.getNormal(n, space_);
        normals.insert(normals.end(), {n.x, n.y, n.z});
    }
    return normals;
}

std::vector<double> ComponentGeometry::faceAreas() const
{
    std::vector<double> areas;
    for (MItMeshPolygon face(mesh_); !face.isDone(); face.next()) {
        areas.push_back(0.0);
        face.getArea(areas.back(), space_);
    }
    return areas;
}

std::vector<double> ComponentGeometry::vertexUVs(Marks& missing) const
{
    const MString*      set = uvSet_.length() > 0 ? &uvSet_ : nullptr;
    std::vector<double> uvs;
    missing.clear();
    for (MItMeshVertex vertex(mesh_); !vertex.isDone(); vertex.next()) {
        float2 uv = {0.0f, 0.0f};
        missing.push_back(!vertex.getUV(uv, set));
        uvs.insert(uvs.end(), {uv[0], uv[1]});
    }
    return uvs;
}

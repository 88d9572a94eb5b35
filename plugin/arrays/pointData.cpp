#include "arrays/pointData.h"

#include <maya/MColorArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <numeric>

#include "core/node.h"
#include "core/subset.h"
#include "core/tessellation.h"

namespace {

/// A ribbon along the profile's own normal, without the rebuilding that other nodes do first. Only the tessellator is
/// deleted: that each evaluation leaves its extrude node in the scene is how this node has always behaved.
MObject ribbonOf(const MPlug& curve)
{
    using namespace tessellation;
    const MString extrude = createNode("extrude");
    set(extrude, ".extrudeType 0");
    set(extrude, ".useProfileNormal 1");
    const MString tessellator = createTessellator();
    connect(extrude + ".outputSurface ", tessellator + ".inputSurface");
    connect(curve.name(), extrude + ".profile");
    const MObject mesh = copyOfPolygon(tessellator);
    deleteNodes(tessellator);
    return mesh;
}

MObject readingMesh(MDataHandle& geometry, MFnData::Type kind, MSpace::Space space, const MPlug& input)
{
    if (kind == MFnData::kMesh)
        return space == MSpace::kWorld ? geometry.asMeshTransformed() : geometry.asMesh();
    MPlugArray sources;
    if (!input.connectedTo(sources, true, false) || sources.length() == 0)
        return MObject::kNullObj;
    return kind == MFnData::kNurbsCurve ? ribbonOf(sources[0]) : tessellatedSurface(sources[0]);
}

bool isPeriodicSurface(MDataHandle& geometry, unsigned int vertexCount)
{
    MFnNurbsSurface surface(geometry.asNurbsSurface());
    return static_cast<unsigned int>(surface.numCVsInU() * surface.numCVsInV()) != vertexCount;
}

/// Box around points, of which there is at least one. Six plain numbers, so that they stay in registers.
class Bounds
{
public:
    Bounds(double x, double y, double z) : lowX_(x), lowY_(y), lowZ_(z), highX_(x), highY_(y), highZ_(z) {}

    void add(double x, double y, double z)
    {
        lowX_ = std::min(lowX_, x);
        lowY_ = std::min(lowY_, y);
        lowZ_ = std::min(lowZ_, z);
        highX_ = std::max(highX_, x);
        highY_ = std::max(highY_, y);
        highZ_ = std::max(highZ_, z);
    }
    MBoundingBox box() const { return {MPoint(lowX_, lowY_, lowZ_), MPoint(highX_, highY_, highZ_)}; }

private:
    double lowX_, lowY_, lowZ_, highX_, highY_, highZ_;
};

void writePoints(const MPointArray& points, PointData& data)
{
    data.positionCount = points.length();
    double* to = data.positions.resize(data.positionCount);
    data.xyzw = to;
    if (to)
        points.get(reinterpret_cast<double(*)[4]>(to));
    const unsigned int count = std::min(data.count, data.positionCount);
    if (count == 0)
        return;
    Bounds bounds(to[0], to[1], to[2]);
    for (unsigned int i = 1; i < count; ++i, to += 4)
        bounds.add(to[4], to[5], to[6]);
    data.box = bounds.box();
}

void readPositions(MDataHandle& geometry, MSpace::Space space, PointData& data)
{
    MPointArray points;
    if (data.kind == MFnData::kNurbsCurve) {
        const MObject curve = space == MSpace::kWorld ? geometry.asNurbsCurveTransformed() : geometry.asNurbsCurve();
        MFnNurbsCurve(curve).getCVs(points, space);
        return writePoints(points, data);
    }
    MFnMesh mesh(data.mesh);
    if (space == MSpace::kWorld && !MFnGeometryData(data.mesh).matrixIsIdentity()) {
        mesh.getPoints(points, space);
        return writePoints(points, data);
    }
    const float* from = mesh.getRawPoints();   // nothing to transform: straight from where they are
    double*      to = data.positions.resize(data.count);
    data.positionCount = data.count;
    data.xyzw = to;
    if (data.count == 0)
        return;
    Bounds bounds(from[0], from[1], from[2]);
    for (unsigned int i = 0; i < data.count; ++i, from += 3, to += 4) {
        const double x = from[0], y = from[1], z = from[2];
        to[0] = x;
        to[1] = y;
        to[2] = z;
        to[3] = 1.0;
        bounds.add(x, y, z);
    }
    data.box = bounds.box();
}

void put(double*& to, double r, double g, double b, double a)
{
    to[0] = static_cast<float>(r);
    to[1] = static_cast<float>(g);
    to[2] = static_cast<float>(b);
    to[3] = static_cast<float>(a);
    to += 4;
}

/// From the array if it is connected: a value a point is grey, everything else goes by fours. From the mesh otherwise.
/// What is missing is black and opaque.
void readColors(MDataBlock& block, const PointInput& input, PointConstants& constants, PointData& data)
{
    const bool  connected = input.colors.isConnected();
    MColorArray colors;
    if (!connected && data.kind == MFnData::kMesh) {
        const MColor black(0.0f, 0.0f, 0.0f, 1.0f);
        MFnMesh(data.mesh).getVertexColors(colors, input.colorSet.length() > 0 ? &input.colorSet : nullptr, &black);
    }
    if (!connected && colors.length() == 0) {
        data.rgba = constants.black(data.count, data.colors);
        return;
    }
    double*      to = data.rgba.resize(4 * data.count);
    unsigned int done = 0;
    data.colors = to;
    if (connected) {
        const ArrayView array = viewArray(block, input.colors.attribute());
        const double*   v = array.doubles;
        const bool      grey = array.length == data.count;
        const unsigned  present = std::min(data.count, grey ? array.length : array.length / 4);
        for (; v && done < present; ++done, v += grey ? 1 : 4)
            grey ? put(to, v[0], v[0], v[0], v[0]) : put(to, v[0], v[1], v[2], v[3]);
    } else {
        const MColorArray& c = colors;
        for (; done < std::min(data.count, c.length()); ++done)
            put(to, c[done].r, c[done].g, c[done].b, c[done].a);
    }
    for (; done < data.count; ++done)
        put(to, 0.0, 0.0, 0.0, 1.0);
}

void readNormals(MDataBlock& block, const PointInput& input, MSpace::Space space, PointData& data)
{
    if (input.normals.isConnected()) {
        const ArrayView array = viewArray(block, input.normals.attribute());
        if (array.length != data.count)
            warn(input.geometry, MString(": ") + input.normalsName +
                                     " has length different than the number of points of " + input.name + ".");
        data.normal = fit(array, 3, data.count, data.normals);
        return;
    }
    MFloatVectorArray vertices;   // the same values that a walk over the vertices reads one by one
    MFnMesh(data.mesh).getVertexNormals(false, vertices, space);
    double* to = data.normals.resize(data.count);
    data.normal = to;
    vertices.setLength(data.count * data.step);   // as many as there are, so that no index is looked at below
    if (data.count == 0)
        return;
    const MFloatVector* at = &vertices[0];
    for (unsigned int i = 0; i < data.count; ++i, to += 3, at += data.step) {
        to[0] = at->x;
        to[1] = at->y;
        to[2] = at->z;
    }
}

/// The UV table, and one U, V a point: 0, 0 for a point without.
void readUVs(const MString& uvSetName, PointData& data)
{
    const MFnMesh  mesh(data.mesh);
    const bool     current = uvSetName.length() == 0 || mesh.currentUVSetName() == uvSetName;
    const MString* uvSet = current ? nullptr : &uvSetName;   // a name is looked up for each vertex
    mesh.getUVs(data.us, data.vs, uvSet);
    double*       to = data.sharedMap.resize(2 * data.count);
    MItMeshVertex vertex(data.mesh);
    for (unsigned int i = 0; i < data.count; ++i, to += 2) {
        float2 uv = {0.0f, 0.0f};
        if (!vertex.getUV(uv, uvSet))
            uv[0] = uv[1] = 0.0f;
        to[0] = uv[0];
        to[1] = uv[1];
        for (unsigned int k = 0; k < data.step; ++k)
            vertex.next();
    }
}

} // namespace

OutArray PointConstants::ids(unsigned int count, const int*& first)
{
    if (count != idCount_) {
        ids_ = OutArray(OutArray::kInts);
        int* to = ids_.resizeInts(idCount_ = count);
        std::iota(to, to + count, 0);
        firstId_ = to;
    }
    first = firstId_;
    return ids_;
}

OutArray PointConstants::black(unsigned int count, const double*& first)
{
    if (count != blackCount_) {
        black_ = OutArray(OutArray::kDoubles);
        double* to = black_.resize(4 * (blackCount_ = count));
        firstBlack_ = to;
        for (unsigned int i = 0; i < count; ++i)
            put(to, 0.0, 0.0, 0.0, 1.0);
    }
    first = firstBlack_;
    return black_;
}

bool openPoints(MDataBlock& block, const PointInput& input, MSpace::Space space, PointData& data)
{
    MDataHandle         geometry = block.inputValue(input.geometry.attribute());
    const MFnData::Type kind = geometry.type();
    if (kind != MFnData::kMesh && kind != MFnData::kNurbsCurve && kind != MFnData::kNurbsSurface)
        return true;
    data.kind = kind;
    data.mesh = readingMesh(geometry, kind, space, input.geometry);
    data.step = kind == MFnData::kNurbsCurve ? 2 : 1;
    const auto vertexCount = static_cast<unsigned int>(data.mesh.isNull() ? 0 : MFnMesh(data.mesh).numVertices());
    if (kind == MFnData::kNurbsSurface && isPeriodicSurface(geometry, vertexCount)) {
        warn(input.geometry, MString(": ") + input.name + " is periodic nurbs surface. "
                             "Rebuild using \"End Conditions\" / \"Multiple Knots\" options.");
        return false;
    }
    data.count = vertexCount / data.step;
    return true;
}

void readPoints(MDataBlock& block, const PointInput& input, MSpace::Space space, PointConstants& constants,
                PointData& data)
{
    if (data.mesh.isNull())
        return;
    MDataHandle geometry = block.inputValue(input.geometry.attribute());
    readPositions(geometry, space, data);
    readColors(block, input, constants, data);
    readNormals(block, input, space, data);
    readUVs(input.uvSet, data);
}

void gatherSubset(MDataHandle& geometry, const Subset& subset, unsigned int componentCount, const PointData& data,
                  PointConstants& constants, PointSubset& out)
{
    out.turns = componentCount;
    out.all = subset.all();
    if (out.all) {
        out.idCount = data.count;
        out.ids = constants.ids(data.count, out.id);
        return;
    }
    std::vector<int> members;
    unsigned int     i = 0;
    for (MItGeometry it(geometry); !it.isDone() && i < data.count; it.next(), ++i) {
        if (subset.has(it.currentItem()))
            members.push_back(static_cast<int>(i));
    }
    out.idCount = static_cast<unsigned int>(members.size());
    int* to = out.ids.resizeInts(out.idCount);
    out.id = to;
    std::copy(members.begin(), members.end(), to);
}

void gatherMap(const PointData& data, const MString& uvSetName, bool all, const PointSubset& subset, PointMap& out)
{
    if (data.mesh.isNull())
        return;
    const MString*   uvSet = uvSetName.length() > 0 ? &uvSetName : nullptr;
    std::vector<int> user(data.us.length(), -1);
    MItMeshVertex    vertex(data.mesh);
    MIntArray        ids;
    int              previous = 0;
    for (unsigned int k = 0; k < subset.idCount; ++k) {   // ascending: the last point that uses an id stays
        if (!vertex.setIndex(subset.id[k] * static_cast<int>(data.step), previous) || !vertex.getUVIndices(ids, uvSet))
            continue;
        for (unsigned int j = 0; j < ids.length(); ++j) {
            if (ids[j] >= 0 && static_cast<std::size_t>(ids[j]) < user.size())
                user[static_cast<std::size_t>(ids[j])] = subset.id[k];
        }
    }
    const auto inPlay = [&](int point) { return all || point >= 0; };
    out.count = static_cast<unsigned int>(std::count_if(user.begin(), user.end(), inPlay));
    int *id = out.ids.resizeInts(out.count), *point = out.points.resizeInts(out.count);
    out.id = id;
    for (std::size_t k = 0; k < user.size(); ++k) {
        if (inPlay(user[k])) {
            *id++ = static_cast<int>(k);
            *point++ = std::max(user[k], 0);
        }
    }
}

MBoundingBox boxOf(const PointData& data, const PointSubset& subset)
{
    MBoundingBox box;
    for (unsigned int k = 0; k < subset.idCount; ++k) {
        const auto i = static_cast<unsigned int>(subset.id[k]);
        if (i < data.positionCount)
            box.expand(MPoint(data.at(i)[0], data.at(i)[1], data.at(i)[2]));
    }
    return box;
}

double* fit(const ArrayView& array, unsigned int stride, unsigned int length, OutArray& out)
{
    double* const to = out.resize(length);
    if (!to)
        return nullptr;
    const bool        fits = array.doubles && array.stride == stride;
    const std::size_t present = fits ? std::size_t(stride) * std::min(array.length, length) : 0;
    std::copy(array.doubles, array.doubles + present, to);
    std::fill(to + present, to + std::size_t(stride) * length, 0.0);
    return to;
}

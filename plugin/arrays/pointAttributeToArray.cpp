#include "arrays/pointAttributeToArray.h"

#include <maya/MColorArray.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>

#include <algorithm>
#include <vector>

#include "arrays/pointFrames.h"
#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/subset.h"
#include "core/tessellation.h"

/// Which kinds of data are asked for.
struct PointSwitches
{
    bool position, rotation, normal, binormal, tangent, color, map;

    bool any() const { return position || rotation || normal || binormal || tangent || color || map; }
};

/// The arrays of one run, in the order in which they are published.
struct PointArrays
{
    OutArray     ids{OutArray::kDoubles}, positions{OutArray::kVectors}, rotations{OutArray::kVectors},
        normals{OutArray::kVectors}, binormals{OutArray::kVectors}, tangents{OutArray::kVectors},
        rgba{OutArray::kDoubles}, mapCounts{OutArray::kDoubles}, mapIds{OutArray::kDoubles}, map{OutArray::kDoubles},
        sharedMap{OutArray::kDoubles};
    unsigned int count = 0;   ///< positions
};

namespace {

/// The points as the loops see them. A point stands at mesh vertex `index * step`. It is read, or keeps its place with
/// zeros, or is dropped.
class Points
{
public:
    enum Entry : unsigned char { kDropped, kBlank, kRead };

    MObject       mesh;             ///< the geometry itself, or its tessellation
    MFnData::Type kind = MFnData::kMesh;
    unsigned int  count = 0;
    unsigned int  step = 1;         ///< a curve's ribbon has two vertices a point
    std::vector<Entry> entries;     ///< empty: all are read

    unsigned int read() const { return entries.empty() ? count : number(kRead); }
    unsigned int kept() const { return entries.empty() ? count : count - number(kDropped); }

    /// Calls f(point, is it read) for each point that is not dropped.
    template <class F>
    void each(F&& f) const
    {
        for (unsigned int i = 0; i < count; ++i) {
            if (entries.empty() || entries[i] != kDropped)
                f(i, entries.empty() || entries[i] == kRead);
        }
    }

private:
    unsigned int number(Entry entry) const
    {
        return static_cast<unsigned int>(std::count(entries.begin(), entries.end(), entry));
    }
};

void store(double*& out, double x, double y, double z)
{
    out[0] = x;
    out[1] = y;
    out[2] = z;
    out += 3;
}

/// Ids of a mesh are indices; those of a curve are indices halved, 0, 0, 1, 1 and so on, as they always were; a surface
/// has two a point, U and V.
void gatherIds(const Points& points, MDataHandle& geometry, OutArray& ids)
{
    if (points.kind != MFnData::kNurbsSurface) {
        double*   out = ids.resize(points.kept());
        const int shift = points.kind == MFnData::kNurbsCurve ? 1 : 0;
        points.each([&](unsigned int i, bool) { *out++ = i >> shift; });
        return;
    }
    double*      out = ids.resize(2 * points.kept());
    MItGeometry  iterator(geometry);
    unsigned int next = 0;
    points.each([&](unsigned int i, bool) {
        for (; next < i; ++next)
            iterator.next();
        MObject                   item = iterator.currentItem();
        MFnDoubleIndexedComponent component(item);
        int                       u = 0, v = 0;
        component.getElement(0, u, v);
        *out++ = u;
        *out++ = v;
    });
}

void gatherPositions(const Points& points, MSpace::Space space, OutArray& positions)
{
    MFnMesh mesh(points.mesh);
    double* out = positions.resize(points.kept());
    if (space == MSpace::kObject || MFnGeometryData(points.mesh).matrixIsIdentity()) {   // read them where they are
        const float* raw = mesh.getRawPoints();
        points.each([&](unsigned int i, bool read) {
            const float* p = raw + 3 * static_cast<std::size_t>(i * points.step);
            read ? store(out, p[0], p[1], p[2]) : store(out, 0.0, 0.0, 0.0);
        });
        return;
    }
    MPointArray vertices;
    mesh.getPoints(vertices, space);
    const MPointArray& at = vertices;
    points.each([&](unsigned int i, bool read) {
        if (!read)
            return store(out, 0.0, 0.0, 0.0);
        const MPoint& p = at[i * points.step];
        store(out, p.x, p.y, p.z);
    });
}

void gatherColors(const Points& points, const MString& colorSet, OutArray& rgba)
{
    MColorArray colors;   // empty if there is no such set
    MFnMesh     mesh(points.mesh);
    mesh.getVertexColors(colors, colorSet.length() > 0 ? &colorSet : nullptr);
    double*            out = rgba.resize(4 * points.kept());
    const MColorArray& at = colors;
    const MColor       black(0.0f, 0.0f, 0.0f, 0.0f);
    points.each([&](unsigned int i, bool read) {
        const unsigned int vertex = i * points.step;
        MColor             color = read && vertex < at.length() ? at[vertex] : black;
        if (color.r == -1.0f && color.g == -1.0f && color.b == -1.0f && color.a == -1.0f)
            color = black;   // the host's value for a vertex without colour
        *out++ = color.r;
        *out++ = color.g;
        *out++ = color.b;
        *out++ = color.a;
    });
}

/// How many UVs the point publishes; 0 if it has none.
unsigned int uvCountAt(MItMeshVertex& vertex, const Points& points, unsigned int point, const MString* set)
{
    int previous = 0, count = 0;
    if (!vertex.setIndex(static_cast<int>(point * points.step), previous) || !vertex.numUVs(count, set) || count < 1)
        return 0;
    return points.kind == MFnData::kNurbsCurve ? 1 : static_cast<unsigned int>(count);
}

/// All UVs of each point, and its shared one. A point that keeps its place with zeros counts no UV and has no other
/// entry, one without UVs has no entry at all; a curve's point has its first UV only.
void gatherMap(const Points& points, const MString& uvSet, PointArrays& out)
{
    const MString* set = uvSet.length() > 0 ? &uvSet : nullptr;
    MItMeshVertex  vertex(points.mesh);
    unsigned int   counted = 0, total = 0, mapped = 0;
    std::vector<unsigned int> uvCounts(points.count);
    points.each([&](unsigned int i, bool read) {
        const unsigned int count = uvCounts[i] = read ? uvCountAt(vertex, points, i, set) : 0;
        counted += !read || count > 0;
        mapped += count > 0;
        total += count;
    });

    MFloatArray us, vs;
    MFnMesh(points.mesh).getUVs(us, vs, set);
    double*   counts = out.mapCounts.resize(counted);
    double*   ids = out.mapIds.resize(total);
    double*   pairs = out.map.resize(2 * total);
    double*   shared = out.sharedMap.resize(2 * mapped);
    MIntArray uvIds;
    points.each([&](unsigned int i, bool read) {
        const unsigned int count = uvCounts[i];
        if (!read || count > 0)
            *counts++ = count;
        if (count == 0)
            return;
        int previous = 0;
        vertex.setIndex(static_cast<int>(i * points.step), previous);
        vertex.getUVIndices(uvIds, set);
        for (unsigned int k = 0; k < count; ++k) {
            const int  id = k < uvIds.length() ? uvIds[k] : 0;
            const auto at = static_cast<unsigned int>(id);
            *ids++ = id;
            *pairs++ = us[at];
            *pairs++ = vs[at];
        }
        float2 uv = {static_cast<float>(pairs[-2]), static_cast<float>(pairs[-1])};
        if (uvIds.length() > 1)   // a single UV is the shared one
            vertex.getUV(uv, set);
        *shared++ = uv[0];
        *shared++ = uv[1];
    });
}

/// Vertex normals alone, all at once: the same values that the walk of gatherFrames reads one by one.
void gatherVertexNormals(const Points& points, MSpace::Space space, OutArray& normals)
{
    MFloatVectorArray vertices;
    MFnMesh           mesh(points.mesh);
    mesh.getVertexNormals(false, vertices, space);
    double*                  out = normals.resize(points.kept());
    const MFloatVectorArray& at = vertices;
    points.each([&](unsigned int i, bool read) {
        if (!read)
            return store(out, 0.0, 0.0, 0.0);
        const MFloatVector& n = at[i * points.step];
        store(out, n.x, n.y, n.z);
    });
}

/// Everything that lives on the frame carried from point to point; a switch that is off costs nothing.
void gatherFrames(const Points& points, const PointSwitches& on, const FrameSettings& settings, PointArrays& out)
{
    const unsigned int kept = points.kept();
    double* rotation = on.rotation ? out.rotations.resize(points.read()) : nullptr;
    double* normal = on.normal ? out.normals.resize(kept) : nullptr;
    double* binormal = on.binormal ? out.binormals.resize(kept) : nullptr;
    double* tangent = on.tangent ? out.tangents.resize(kept) : nullptr;
    PointFrames frames(points.mesh, settings);
    const auto  keep = [](double*& to, const MVector& v) { store(to, v.x, v.y, v.z); };
    points.each([&](unsigned int i, bool read) {
        if (!read) {   // a rotation keeps no place: that array is shorter then
            for (double** array : {&normal, &binormal, &tangent}) {
                if (*array)
                    store(*array, 0.0, 0.0, 0.0);
            }
            return;
        }
        frames.moveTo(static_cast<int>(i * points.step));
        if (on.rotation)
            keep(rotation, frames.rotation());
        if (on.normal)
            keep(normal, frames.normal());
        if (on.binormal)
            keep(binormal, frames.binormal());
        if (on.tangent)
            keep(tangent, frames.tangent());
    });
}

/// The mesh whose vertices stand for the points; null if the geometry has none.
MObject workingMesh(MDataHandle& geometry, MFnData::Type kind, MSpace::Space space, const MPlug& input)
{
    if (kind == MFnData::kMesh)
        return space == MSpace::kWorld ? geometry.asMeshTransformed() : geometry.asMesh();
    MPlugArray sources;
    if (!input.connectedTo(sources, true, false) || sources.length() == 0)
        return MObject::kNullObj;
    return kind == MFnData::kNurbsCurve ? tessellatedCurve(sources[0]) : tessellatedSurface(sources[0]);
}

std::vector<Points::Entry> entriesOf(const Subset& subset, MDataHandle& geometry, unsigned int count, bool prune)
{
    std::vector<Points::Entry> entries(count, prune ? Points::kDropped : Points::kBlank);
    unsigned int               i = 0;
    for (MItGeometry it(geometry); !it.isDone() && i < count; it.next(), ++i) {
        if (subset.has(it.currentItem()))
            entries[i] = Points::kRead;
    }
    return entries;
}

int offsetValue(MDataBlock& block, const MObject& attribute)
{
    return std::max(0, block.inputValue(attribute).asInt());
}

FrameSettings frameSettings(MDataBlock& block, MSpace::Space space, const MString& uvSet)
{
    using Node = pointAttributeToArray;
    FrameSettings settings;
    settings.space = space;
    settings.uvSet = uvSet;
    settings.rotationOrder = std::clamp<int>(block.inputValue(Node::aRotationOrder).asShort(), 0, 5);
    settings.normal = {block.inputValue(Node::aAvgNormals).asBool(), offsetValue(block, Node::aNormalOffset)};
    settings.binormal = {block.inputValue(Node::aAvgBinormals).asBool(), offsetValue(block, Node::aBinormalOffset)};
    settings.tangent = {block.inputValue(Node::aAvgTangents).asBool(), offsetValue(block, Node::aTangentOffset)};
    return settings;
}

/// Indices that select elements of a vector array: an int array, or particles as a component or as the first
/// component of a list.
MIntArray particleIndices(MObject data)
{
    MIntArray indices;
    if (data.apiType() == MFn::kIntArrayData)
        MFnIntArrayData(data).copyTo(indices);
    if (data.apiType() == MFn::kComponentListData) {
        MFnComponentListData list(data);
        data = list.length() > 0 ? list[0] : MObject::kNullObj;
    }
    if (data.apiType() == MFn::kDynParticleSetComponent)
        MFnSingleIndexedComponent(data).getElements(indices);
    return indices;
}

} // namespace

MStatus pointAttributeToArray::initialize()
{
    const auto boolean = MFnNumericData::kBoolean;
    const auto doubles = MFnData::kDoubleArray;
    const auto vectors = MFnData::kVectorArray;
    const attr::Row rows[] = {
        attr::generic(aInGeo, "inGeometry", "ig",
                      {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface, vectors}, attr::kInput),
        attr::generic(aInComp, "inComponents", "ic", {MFnData::kComponentList, MFnData::kIntArray}, attr::kInput),
        attr::enumeration(aUseComp, "useComponents", "uc", attr::kSubsetFields, 0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::numeric(aPrune, "prune", "p", boolean, 1.0, attr::kControl),
        attr::enumeration(aCoordSystem, "coordinateSystem", "cs", attr::kSpaceFields, 0, attr::kControl),
        attr::numeric(aPosition, "pointPosition", "pp", boolean, 0.0, attr::kControl),
        attr::numeric(aRotation, "pointRotation", "pr", boolean, 0.0, attr::kControl),
        attr::numeric(aNormal, "pointNormal", "pn", boolean, 0.0, attr::kControl),
        attr::numeric(aBinormal, "pointBinormal", "pb", boolean, 0.0, attr::kControl),
        attr::numeric(aTangent, "pointTangent", "pt", boolean, 0.0, attr::kControl),
        attr::numeric(aColor, "pointColor", "pc", boolean, 0.0, attr::kControl),
        attr::numeric(aMap, "mapData", "md", boolean, 0.0, attr::kControl),
        attr::text(aColorSet, "colorSet", "clrs", attr::kStored),
        attr::text(aUvSet, "uvSet", "uvs", attr::kStored),
        attr::enumeration(aRotationOrder, "rotationOrder", "ro",
                          {{"normal, tangent, binormal", 0}, {"normal, binormal, tangent", 1},
                           {"tangent, normal, binormal", 2}, {"tangent, binormal, normal", 3},
                           {"binormal, normal, tangent", 4}, {"binormal, tangent, normal", 5}},
                          0, attr::kControl),
        attr::numeric(aAvgNormals, "averagedNormals", "an", boolean, 1.0, attr::kControl),
        attr::numeric(aAvgTangents, "averagedTangents", "at", boolean, 1.0, attr::kControl),
        attr::numeric(aAvgBinormals, "averagedBinormals", "ab", boolean, 1.0, attr::kControl),
        attr::numeric(aNormalOffset, "normalIdOffset", "nio", MFnNumericData::kInt, 0.0, attr::kControl),
        attr::numeric(aBinormalOffset, "binormalIdOffset", "bio", MFnNumericData::kInt, 0.0, attr::kControl),
        attr::numeric(aTangentOffset, "tangentIdOffset", "tio", MFnNumericData::kInt, 0.0, attr::kControl),
        attr::typed(aOutIdPP, "outIdPP", "oipp", doubles, attr::kOutput),
        attr::typed(aOutPosPP, "outPositionPP", "oppp", vectors, attr::kOutput),
        attr::typed(aOutRotPP, "outRotationPP", "orpp", vectors, attr::kOutput),
        attr::typed(aOutNormalPP, "outNormalPP", "onpp", vectors, attr::kOutput),
        attr::typed(aOutBinormalPP, "outBinormalPP", "obpp", vectors, attr::kOutput),
        attr::typed(aOutTangentPP, "outTangentPP", "otpp", vectors, attr::kOutput),
        attr::typed(aOutRgbaPP, "outRgbaPP", "orgbapp", doubles, attr::kOutput),
        attr::typed(aOutMapCountPP, "outMapCountPP", "omcpp", doubles, attr::kOutput),
        attr::typed(aOutMapIdPP, "outMapIdPP", "omipp", doubles, attr::kOutput),
        attr::typed(aOutMapPP, "outMapPP", "ompp", doubles, attr::kOutput),
        attr::typed(aOutSharedMapPP, "outSharedMapPP", "osmpp", doubles, attr::kOutput),
        attr::numeric(aOutCount, "outCount", "ocnt", MFnNumericData::kInt, 0.0, attr::kOutput),
    };
    for (const MObject* offset : {&aNormalOffset, &aBinormalOffset, &aTangentOffset}) {
        MFnNumericAttribute fn(*offset);
        fn.setMin(0.0);
        fn.setSoftMax(10.0);
    }
    for (const MObject* input : {&aInGeo, &aInComp})
        MFnAttribute(*input).setDisconnectBehavior(MFnAttribute::kReset);
    return attr::declare(rows);
}

MStatus pointAttributeToArray::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                            // node state
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutIdPP, &aOutPosPP, &aOutRotPP, &aOutNormalPP, &aOutBinormalPP, &aOutTangentPP, &aOutRgbaPP,
                        &aOutMapCountPP, &aOutMapIdPP, &aOutMapPP, &aOutSharedMapPP, &aOutCount}))   // plug test
        return MS::kUnknownParameter;

    MDataHandle         geometry = block.inputValue(aInGeo);   // pulled even if nothing is switched on
    const auto          isOn = [&](const MObject& attribute) { return block.inputValue(attribute).asBool(); };
    const PointSwitches on = {isOn(aPosition), isOn(aRotation), isOn(aNormal), isOn(aBinormal),
                              isOn(aTangent), isOn(aColor),    isOn(aMap)};
    PointArrays         out;
    if (on.any())                                                                 // work
        gather(block, geometry, on, out);

    out.ids.publish(block, aOutIdPP);                                             // write
    out.positions.publish(block, aOutPosPP);
    out.rotations.publish(block, aOutRotPP);
    out.normals.publish(block, aOutNormalPP);
    out.binormals.publish(block, aOutBinormalPP);
    out.tangents.publish(block, aOutTangentPP);
    out.rgba.publish(block, aOutRgbaPP);
    out.mapCounts.publish(block, aOutMapCountPP);
    out.mapIds.publish(block, aOutMapIdPP);
    out.map.publish(block, aOutMapPP);
    out.sharedMap.publish(block, aOutSharedMapPP);
    MPlug(thisMObject(), aOutCount).setInt(static_cast<int>(out.count));
    return MS::kSuccess;
}

void pointAttributeToArray::gather(MDataBlock& block, MDataHandle& geometry, const PointSwitches& on,
                                   PointArrays& out) const
{
    const MPlug         input(thisMObject(), aInGeo);
    const MFnData::Type kind = geometry.type();
    if (kind == MFnData::kVectorArray)
        return gatherVectors(block, geometry.data(), out);
    if (kind != MFnData::kMesh && kind != MFnData::kNurbsCurve && kind != MFnData::kNurbsSurface)
        return;

    const MSpace::Space space = block.inputValue(aCoordSystem).asShort() == 0 ? MSpace::kWorld : MSpace::kObject;
    Points              points;
    points.kind = kind;
    points.mesh = workingMesh(geometry, kind, space, input);
    if (points.mesh.isNull())
        return;
    points.step = kind == MFnData::kNurbsCurve ? 2 : 1;
    points.count = static_cast<unsigned int>(MItGeometry(geometry).count());
    const auto vertexCount = static_cast<unsigned int>(MFnMesh(points.mesh).numVertices());
    if (kind == MFnData::kNurbsSurface && points.count != vertexCount) {
        warn(input, ": The geometry at the input is a periodic nurbs surface. "
                    "Rebuild using the \"End Conditions\" / \"Multiple Knots\" options.");
        return;
    }
    points.count = std::min(points.count, (vertexCount + points.step - 1) / points.step);

    const MString colorSet = block.inputValue(aColorSet).asString();
    const MString uvSet = uvSetInUse(points.mesh, block.inputValue(aUvSet).asString());
    const short useComponents = block.inputValue(aUseComp).asShort();
    if (useComponents == 2)   // the text speaks of vector arrays whatever the input is
        warn(input, ": Object groups are not supported for vector arrays. Use components list instead.");
    if (useComponents == 1) {
        const Subset subset(block, SubsetMode::kComponentList, {MPlug(thisMObject(), aInComp), geometry.data()});
        points.entries = entriesOf(subset, geometry, points.count, block.inputValue(aPrune).asBool());
    }

    if (on.position) {
        gatherIds(points, geometry, out.ids);
        gatherPositions(points, space, out.positions);
        out.count = points.kept();
    }
    const FrameSettings settings = frameSettings(block, space, uvSet);
    PointSwitches       frames = on;
    if (on.normal && settings.normal.averaged) {
        gatherVertexNormals(points, space, out.normals);
        frames.normal = false;
    }
    if (frames.rotation || frames.normal || frames.binormal || frames.tangent)
        gatherFrames(points, frames, settings, out);
    if (on.color)
        gatherColors(points, colorSet, out.rgba);
    if (on.map)
        gatherMap(points, uvSet, out);
}

void pointAttributeToArray::gatherVectors(MDataBlock& block, const MObject& vectors, PointArrays& out) const
{
    const ArrayView array = viewArray(vectors);
    const short     useComponents = block.inputValue(aUseComp).asShort();
    if (useComponents == 0) {
        out.count = array.length;
        double* to = out.positions.resize(array.length);
        std::copy(array.doubles, array.doubles + 3 * static_cast<std::size_t>(array.length), to);
        return;
    }
    if (useComponents == 2) {
        warn(MPlug(thisMObject(), aInGeo),
             ": Object groups are not supported for particles. Use components list instead.");
        return;
    }
    MPlugArray sources;
    if (!MPlug(thisMObject(), aInComp).connectedTo(sources, true, false) || sources.length() == 0)
        return;
    MIntArray    indices = particleIndices(sources[0].asMObject());
    unsigned int inside = 0;
    for (unsigned int k = 0; k < indices.length(); ++k) {
        if (indices[k] >= 0 && static_cast<unsigned int>(indices[k]) < array.length)
            indices[inside++] = indices[k];
    }
    out.count = inside;
    double* to = out.positions.resize(inside);
    for (unsigned int k = 0; k < inside; ++k) {
        const double* xyz = array.doubles + 3 * static_cast<std::size_t>(indices[k]);
        store(to, xyz[0], xyz[1], xyz[2]);
    }
}

MString pointAttributeToArray::uvSetInUse(const MObject& mesh, const MString& uvSet) const
{
    const MPlug input(thisMObject(), aInGeo);
    MFnMesh     fn(mesh);
    if (uvSet.length() == 0) {
        if (fn.currentUVSetName().length() == 0)
            warn(input, ": Cannot find a current uvSet.");
        return uvSet;
    }
    MStringArray names;
    fn.getUVSetNames(names);
    for (unsigned int i = 0; i < names.length(); ++i) {
        if (names[i] == uvSet)
            return uvSet;
    }
    warn(input, MString(": Cannot find uvSet named \"") + uvSet + "\".");
    return MString();
}

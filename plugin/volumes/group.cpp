#include "volumes/group.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnParticleSystem.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MIntArray.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <cmath>

#include "core/arrays.h"
#include "core/node.h"
#include "volumes/componentBoundary.h"
#include "volumes/componentBounds.h"
#include "volumes/componentGeometry.h"
#include "volumes/componentLists.h"
#include "volumes/componentMirror.h"
#include "volumes/componentPattern.h"
#include "volumes/groupOperations.h"

namespace {

enum Combine : short { kCombineNone = 0, kUnion = 1, kSubtract = 2, kIntersect = 3 };
enum Boundary : short { kBoundaryNone = 0, kBoundaryReplace = 1, kBoundaryUnion = 2, kBoundarySubtract = 3,
                        kBoundaryIntersect = 4 };
enum Mirror : short { kMirrorNone = 0, kMirrorReplace = 1, kMirrorUnion = 2 };
constexpr short kParticleComponents = 6;

bool anyMarked(const Marks& marks) { return std::find(marks.begin(), marks.end(), 1) != marks.end(); }

void addTo(MFnComponentListData& list, const ComponentSpace& space, const Marks& marks)
{
    if (!anyMarked(marks))   // no list has an element without indices
        return;
    MObject component = makeComponent(space, marks);
    list.add(component);
}

void removeFrom(MFnComponentListData& list, const ComponentSpace& space, const Marks& marks)
{
    if (anyMarked(marks))
        list.remove(makeComponent(space, marks));
}

/// The component of the input that takes part: its first one, unless the filter drops it.
MObject takenInput(MDataBlock& block, const ComponentGeometry& geometry, const MObject& input)
{
    const MObject first = firstOf(input);
    if (first.isNull() || isEmptyComponent(first))
        return MObject::kNullObj;
    const bool fits = first.apiType() == componentType(geometry.kind()) &&
                      (geometry.kind() != ComponentKind::kMap || geometry.form() == MFnData::kMesh);
    if (block.inputValue(group::aFilterInput).asBool() && !fits)
        return MObject::kNullObj;
    return counted(first, geometry.components());
}

void keepCommon(MFnComponentListData& list, const ComponentSpace& space, const MObject& input)
{
    Marks       common = marksOf(list, space);
    const Marks other = marksOf(input, space);
    for (std::size_t i = 0; i < common.size(); ++i)
        common[i] &= other[i];
    list.clear();
    addTo(list, space, common);
}

Marks boundaryOf(ComponentGeometry& geometry)
{
    const ComponentSpace& space = geometry.components();
    if (space.count == 0)
        return {};
    switch (space.kind) {
    case ComponentKind::kEdge:      return boundaryEdges(geometry.withEdges());
    case ComponentKind::kFace:      return boundaryFaces(geometry.withEdges());
    case ComponentKind::kCurveCV:   return boundaryRow(space.count);
    case ComponentKind::kSurfaceCV: return boundaryGrid(space.count / space.columns, space.columns);
    default:                        return geometry.ofVertices(boundaryVertices(geometry.withEdges()));
    }
}

void reduceToBoundary(ComponentGeometry& geometry, short mode, MFnComponentListData& list)
{
    const ComponentSpace& space = geometry.components();
    Marks                 border = boundaryOf(geometry);
    if (mode == kBoundaryIntersect) {
        const Marks before = marksOf(list, space);
        for (std::size_t i = 0; i < border.size(); ++i)
            border[i] &= before[i];
    }
    if (mode == kBoundaryReplace || mode == kBoundaryIntersect)
        list.clear();
    if (mode == kBoundarySubtract)
        removeFrom(list, space, border);
    else
        addTo(list, space, border);
}

void invert(const ComponentSpace& space, MFnComponentListData& list)
{
    Marks marks = marksOf(list, space);
    for (unsigned char& mark : marks)
        mark = !mark;
    list.clear();
    addTo(list, space, marks);
}

/// The plane of the matrix: through its origin, across its X axis. False if it has no such axis.
bool planeOf(const MMatrix& matrix, MirrorPlane& plane)
{
    const MTransformationMatrix frame(matrix);
    const MVector               origin = frame.getTranslation(MSpace::kWorld);
    const MVector               axis = (MVector(1.0, 0.0, 0.0) * frame.asRotateMatrix()).normal();
    plane = {{origin.x, origin.y, origin.z}, {axis.x, axis.y, axis.z}};
    return std::fabs(axis.length() - 1.0) < 1e-6;
}

/// The vertices or control vertices that selected components stand on.
Marks toPoints(ComponentGeometry& geometry, const Marks& marks)
{
    switch (geometry.kind()) {
    case ComponentKind::kEdge: return verticesOfEdges(geometry.withEdges(), marks);
    case ComponentKind::kFace: {
        const MeshTables& mesh = geometry.faces();
        return itemsOfFaces(mesh, mesh.cornerVertices, mesh.vertexCount, marks);
    }
    default: return marks;
    }
}

/// Components all of whose points are selected.
Marks fromPoints(ComponentGeometry& geometry, const Marks& points)
{
    switch (geometry.kind()) {
    case ComponentKind::kEdge: return edgesWithBoth(geometry.withEdges(), points);
    case ComponentKind::kFace: return facesWithAll(geometry.faces(), geometry.faces().cornerVertices, points);
    default:                   return points;
    }
}

/// Velocities of particles: those at the input, else those of the particle shape that the geometry comes from. No array
/// for other geometry, and if there are none.
ArrayView particleVelocities(MDataBlock& block, const MPlug& inGeo, MFnData::Type geometry)
{
    if (geometry != MFnData::kVectorArray)
        return {};
    const ArrayView given = viewArray(block, group::aInVelocityPP);
    if (given.kind == MFn::kVectorArrayData || given.kind == MFn::kDoubleArrayData)
        return given;
    MPlug              root = inGeo;
    MItDependencyGraph upstream(root, MFn::kParticle, MItDependencyGraph::kUpstream, MItDependencyGraph::kDepthFirst,
                                MItDependencyGraph::kNodeLevel);
    if (upstream.isDone())
        return {};
    MVectorArray velocities;
    MFnParticleSystem(upstream.currentItem()).velocity(velocities);
    return viewArray(MFnVectorArrayData().create(velocities));
}

MStatus publishInts(MDataBlock& block, const MObject& attribute, const std::vector<int>& values)
{
    OutArray array(OutArray::kInts);
    std::copy(values.begin(), values.end(), array.resizeInts(static_cast<unsigned int>(values.size())));
    return array.publish(block, attribute);
}

} // namespace

MStatus group::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                       // node state
    if (state == kHasNoEffect) {
        block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));
        block.outputValue(aOutComp).copy(block.inputValue(aInComp));
        return MS::kSuccess;
    }
    if (state == kBlocking || !isAnyOf(plug, {&aOutMessage, &aOutGeo, &aOutComp, &aOutMirrorIds}))   // plug test
        return MS::kUnknownParameter;
    const MPlug inGeo(thisMObject(), aInGeo);
    if (!inGeo.isConnected())                                                   // connection test
        return MS::kSuccess;

    MDataHandle outGeo = block.outputValue(aOutGeo);                            // copy through
    outGeo.copy(block.inputValue(aInGeo));
    publishInts(block, aOutMirrorIds, {});

    const auto        space = block.inputValue(aCoordSystem).asShort() == 0 ? MSpace::kWorld : MSpace::kObject;   // work
    ComponentGeometry geometry(inGeo, outGeo, block.inputValue(aCompType).asShort(), space,
                               block.inputValue(aUvSet).asString(), particleVelocities(block, inGeo, outGeo.type()));
    if (geometry.refusal() == ComponentGeometry::kNoVelocities) {
        warn(plug, ": Cannot find particle shape node on the input. Please supply velocity data to the inVelocityPP "
                   "attribute.");
        return MS::kSuccess;
    }
    const MObject input = readComponents(block, MPlug(thisMObject(), aInComp));
    if (geometry.refusal() == ComponentGeometry::kPeriodicSurface)
        return publish(block, geometry, input);
    if (!block.inputValue(aEnvelope).asBool()) {                                // switch
        MFnComponentListData list;
        const MObject        data = list.create();
        if (MObject first = firstOf(input); !first.isNull())
            list.add(first);
        return publish(block, geometry, data);
    }
    const MObject selected = select(block, geometry, input);
    const int     groupId = block.inputValue(aGroupId).asInt();
    if (block.inputValue(aOutputObjGroup).asBool() && groupId >= 0)             // write
        writeObjectGroup(outGeo.data(), static_cast<unsigned int>(groupId), firstOf(selected));
    return publish(block, geometry, selected);
}

MObject group::select(MDataBlock& block, ComponentGeometry& geometry, const MObject& input)
{
    const ComponentSpace& space = geometry.components();
    const short           combine = block.inputValue(aCombine).asShort();
    MObject               taken = takenInput(block, geometry, input);
    MFnComponentListData  list;
    const MObject         data = list.create();
    if (!taken.isNull() && (combine == kUnion || combine == kSubtract))
        list.add(taken);

    const Marks marks = runOperations(block, geometry, firstOf(input), MPlug(thisMObject(), aInWgtPP));
    combine == kSubtract ? removeFrom(list, space, marks) : addTo(list, space, marks);
    addBounded(block, geometry, combine, list);
    if (combine == kIntersect)
        keepCommon(list, space, taken);

    mirror(block, geometry, list);
    const short boundary = block.inputValue(aBoundary).asShort();
    if (boundary > kBoundaryNone && boundary <= kBoundaryIntersect)
        reduceToBoundary(geometry, boundary, list);
    if (block.inputValue(aInvert).asBool())
        invert(space, list);
    accumulate(block, geometry, list);
    if (list.length() == 0) {
        MObject marker = emptyMarker(space);
        list.add(marker);
    }
    return data;
}

/// Components inside the bounding objects join the list, or leave it.
void group::addBounded(MDataBlock& block, ComponentGeometry& geometry, short combine, MFnComponentListData& list)
{
    ComponentBounds bounds;
    if (geometry.count() == 0 || !readBounds(block, bounds))
        return;
    const ComponentSpace& space = geometry.components();
    if (space.kind == ComponentKind::kMap)
        geometry.withUVs();
    const MeshTables& mesh = space.kind == ComponentKind::kEdge ? geometry.withEdges() : geometry.faces();
    const Marks       inside = componentsInside(mesh, space.kind, space.count, geometry.points(), bounds);
    combine == kSubtract ? removeFrom(list, space, inside) : addTo(list, space, inside);
}

/// False if none is switched on.
bool group::readBounds(MDataBlock& block, ComponentBounds& bounds)
{
    const MPlug      multi(thisMObject(), aBounds.elements);
    MArrayDataHandle elements = block.inputArrayValue(aBounds.elements);
    bool             any = false;
    for (unsigned int i = 0; i < elements.elementCount(); ++i) {
        BoundElement element = readBound(elements, i, multi, aBounds);
        bounds.volumes.push_back(element.volume);
        any = any || element.volume.envelope > 0.0;
        if (element.volume.kind != volume::Kind::kCloud || element.volume.envelope != 1.0)
            continue;
        MDataHandle     data = element.handle.child(aBounds.data);
        const ArrayView points = viewArray(data.child(aBounds.positionPP).data());
        const ArrayView radii = viewArray(data.child(aBounds.radiusPP).data());
        if (!points.doubles || radii.kind != MFn::kDoubleArrayData || radii.length != points.length)
            continue;
        for (unsigned int k = 0; k < points.length; ++k) {
            const double* p = points.doubles + std::size_t{points.stride} * k;
            bounds.centers.push_back({p[0], p[1], p[2]});
        }
        bounds.radii.insert(bounds.radii.end(), radii.doubles, radii.doubles + radii.length);
    }
    return any;
}

/// The selection's mirror image takes its place or joins it. It goes by points: edges and faces are in the image with all
/// of their vertices.
void group::mirror(MDataBlock& block, ComponentGeometry& geometry, MFnComponentListData& list)
{
    const short mode = block.inputValue(aMirror).asShort();
    if (mode != kMirrorReplace && mode != kMirrorUnion)
        return;
    const MPlug matrix(thisMObject(), aMirrorMatrix);
    if (!matrix.isConnected())
        return warn(matrix, ": No mirror matrix provided.");
    if (geometry.kind() == ComponentKind::kMap)
        return warn(matrix, ": Mirroring is not supported for mesh UVs.");
    MirrorPlane plane;
    if (!planeOf(block.inputValue(aMirrorMatrix).asMatrix(), plane))
        return;

    const ComponentSpace&     space = geometry.components();
    const std::vector<double> points = geometry.points();
    const std::vector<int>    selected = indicesOf(toPoints(geometry, marksOf(list, space)));
    const std::vector<int>    images = mirrorImages(
        points, selected, plane,
        {static_cast<MirrorDirection>(block.inputValue(aMirrorDirection).asShort()), block.inputValue(aRadius).asDouble()});
    Marks reflected(points.size() / 3, 0);
    for (int image : images)
        if (image >= 0)
            reflected[static_cast<std::size_t>(image)] = 1;
    if (mode == kMirrorReplace)
        list.clear();
    addTo(list, space, fromPoints(geometry, reflected));
    if (block.inputValue(aOutputMirrorData).asBool())
        publishInts(block, aOutMirrorIds, images);
}

/// Over time: what was selected before stays selected, up to a frame that resets.
void group::accumulate(MDataBlock& block, const ComponentGeometry& geometry, MFnComponentListData& list)
{
    const std::string resets = block.inputValue(aResetFrames).asString().asChar();
    if (resets.find_first_not_of(" \t\n") == std::string::npos)
        return;
    const double frame = block.inputValue(aCurrentTime).asDouble();
    if (resets != "*" && namesFrame(resets, frame)) {
        list.clear();
    } else {
        const MObject before = asVertexList(block.outputValue(aOutComp).data());
        MFnComponentListData inside;   // markers of earlier runs stay behind
        const MObject        data = inside.create();
        mergeCompLists(inside, before);
        addTo(list, geometry.components(), marksOf(inside, geometry.components()));
    }
    if (resets != "*" && namesFrame(block.inputValue(aStartFrames).asString().asChar(), frame))
        mergeCompLists(list, readComponents(block, MPlug(thisMObject(), aInitStateComp)));
}

MStatus group::publish(MDataBlock& block, const ComponentGeometry& geometry, const MObject& list)
{
    MObject first = firstOf(list);
    MObject data = list;
    if (first.isNull()) {
        MFnComponentListData marked;
        data = marked.create();
        first = emptyMarker(geometry.components());
        marked.add(first);
    }
    if (!geometry.particles() || block.inputValue(aCompType).asShort() != kParticleComponents)
        return block.outputValue(aOutComp).set(data);
    first = counted(first, geometry.components());
    MIntArray                 ids;
    MFnSingleIndexedComponent single;
    if (single.setObject(first) == MS::kSuccess && !single.isComplete())
        single.getElements(ids);
    MFnIntArrayData array;
    return block.outputValue(aOutComp).set(array.create(ids));
}

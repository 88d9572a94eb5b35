#include <maya/MItMeshVertex.h>

#include <set>

#include "mesh/walk.h"

using namespace mirk;

MItMeshVertex::MItMeshVertex(const MObject& object, MStatus* ReturnStatus)
    : walk_(std::make_unique<MeshWalk>(MeshWalk::vertices))
{
    const MStatus status = reset(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MItMeshVertex::~MItMeshVertex() = default;

bool MItMeshVertex::isDone(MStatus* s) { report(s); return walk_->done(); }

MStatus MItMeshVertex::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}

MStatus MItMeshVertex::reset() { walk_->rewind(); return MS::kSuccess; }
MStatus MItMeshVertex::reset(const MObject& object) { return walk_->open(MeshTarget::of(object), MObject::kNullObj); }
int     MItMeshVertex::count(MStatus* s) { report(s); return walk_->count(); }

int MItMeshVertex::index(MStatus* s)
{
    const int i = walk_->index();
    report(s, i < 0 ? MS::kFailure : MS::kSuccess);
    return i;
}

MStatus MItMeshVertex::setIndex(int newIndex, int& prevIndex) { return walk_->goTo(newIndex, prevIndex); }

MObject MItMeshVertex::currentItem(MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}

MStatus MItMeshVertex::updateSurface()
{
    const MStatus status = walk_->refresh();
    if (status)
        walk_->changed();
    return status;
}

MStatus MItMeshVertex::geomChanged() { return walk_->refresh(); }

// position and normal

MPoint MItMeshVertex::position(MSpace::Space space, MStatus* s)
{
    const int v = walk_->index();
    report(s, v < 0 ? MS::kFailure : MS::kSuccess);
    return v < 0 ? MPoint() : walk_->point(v, space);
}

MStatus MItMeshVertex::setPosition(const MPoint& point, MSpace::Space space)
{
    const int v = walk_->index();
    return v < 0 ? MS::kFailure : walk_->setPoint(v, point, space);
}

MStatus MItMeshVertex::translateBy(const MVector& vector, MSpace::Space space)
{
    const int v = walk_->index();
    return v < 0 ? MS::kFailure : walk_->setPoint(v, walk_->point(v, space) + vector, space);
}

MStatus MItMeshVertex::getNormal(MVector& normal, MSpace::Space space)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    normal = toNormal(walk_->vertexNormal(v), walk_->matrix(space));
    return MS::kSuccess;
}

namespace {

/// The corner of the current vertex in a face; -1 if it is none of its faces.
int cornerIn(const MeshWalk& walk, int face)
{
    const int v = walk.index();
    return v >= 0 && within(face, walk.body().faceCount()) ? walk.topology().cornerAt(face, v) : -1;
}

std::span<const int> cornersOf(const MeshWalk& walk, int vertex) { return walk.topology().vertexCorners()[vertex]; }

}  // namespace

MStatus MItMeshVertex::getNormal(MVector& normal, int face, MSpace::Space space)
{
    const int corner = cornerIn(*walk_, face);
    if (corner < 0)
        return walk_->refusal();
    normal = toNormal(walk_->cornerNormal(corner), walk_->matrix(space));
    return MS::kSuccess;
}

MStatus MItMeshVertex::getNormals(MVectorArray& normals, MSpace::Space space)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    const auto corners = cornersOf(*walk_, v);
    MVector* out = room(normals, corners.size());
    for (int c : corners)
        *out++ = toNormal(walk_->cornerNormal(c), walk_->matrix(space));
    return MS::kSuccess;
}

// neighbours

MStatus MItMeshVertex::getConnectedFaces(MIntArray& faces)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    const auto corners = cornersOf(*walk_, v);
    const Buffer<int>& faceOf = walk_->topology().cornerFaces();
    int* out = room(faces, corners.size());
    unsigned n = 0;
    for (int c : corners)
        if (!n || out[n - 1] != faceOf[c])
            out[n++] = faceOf[c];
    faces.setLength(n);
    return MS::kSuccess;
}

MStatus MItMeshVertex::getConnectedEdges(MIntArray& edges)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    const auto from = walk_->topology().vertexEdges()[v];
    std::copy(from.begin(), from.end(), room(edges, from.size()));
    return MS::kSuccess;
}

MStatus MItMeshVertex::getConnectedVertices(MIntArray& vertices)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    const Topology& t = walk_->topology();
    const auto edges = t.vertexEdges()[v];
    int* out = room(vertices, edges.size());
    for (int e : edges) {
        const EdgeTable::Edge edge = t.edges().edges[e];
        *out++ = edge.a == v ? edge.b : edge.a;
    }
    return MS::kSuccess;
}

MStatus MItMeshVertex::numConnectedFaces(int& count)
{
    MIntArray faces;
    const MStatus status = getConnectedFaces(faces);
    if (status)
        count = int(faces.length());
    return status;
}

MStatus MItMeshVertex::numConnectedEdges(int& count)
{
    const int v = walk_->index();
    if (v < 0)
        return MS::kFailure;
    count = int(walk_->topology().vertexEdges()[v].size());
    return MS::kSuccess;
}

bool MItMeshVertex::connectedToFace(int face, MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    return cornerIn(*walk_, face) >= 0;
}

bool MItMeshVertex::connectedToEdge(int edge, MStatus* s)
{
    const int v = walk_->index();
    report(s, v < 0 ? MS::kFailure : MS::kSuccess);
    if (v < 0 || !within(edge, walk_->body().edgeCount()))
        return false;
    const EdgeTable::Edge e = walk_->topology().edges().edges[edge];
    return e.a == v || e.b == v;
}

MStatus MItMeshVertex::getOppositeVertex(int& vertex, int edge)
{
    MStatus status;
    if (!connectedToEdge(edge, &status))
        return status ? MS::kInvalidParameter : MS::kFailure;
    const EdgeTable::Edge e = walk_->topology().edges().edges[edge];
    vertex = e.a == walk_->index() ? e.b : e.a;
    return MS::kSuccess;
}

bool MItMeshVertex::onBoundary(MStatus* s)
{
    const int v = walk_->index();
    report(s, v < 0 ? MS::kFailure : MS::kSuccess);
    if (v < 0)
        return false;
    const auto edges = walk_->topology().vertexEdges()[v];
    return edges.empty() || std::any_of(edges.begin(), edges.end(), [&](int e) { return walk_->topology().onBoundary(e); });
}

// UVs

MStatus MItMeshVertex::getUV(float2& uv, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    const auto ids = set->ofVertex(walk_->topology())[walk_->index()];
    if (ids.empty())
        return MS::kFailure;
    uv[0] = (*set->uvs)[ids[0]].u;
    uv[1] = (*set->uvs)[ids[0]].v;
    return MS::kSuccess;
}

MStatus MItMeshVertex::getUV(int face, float2& uv, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    const int corner = cornerIn(*walk_, face);
    if (!set || corner < 0)
        return walk_->refusal();
    const int id = set->id(corner);
    if (id < 0)
        return MS::kFailure;
    uv[0] = (*set->uvs)[id].u;
    uv[1] = (*set->uvs)[id].v;
    return MS::kSuccess;
}

MStatus MItMeshVertex::getUVs(MFloatArray& u, MFloatArray& v, MIntArray& faces, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    const Topology& t = walk_->topology();
    const auto distinct = set->ofVertex(t)[walk_->index()];
    const auto corners = cornersOf(*walk_, walk_->index());
    room(u, 0);
    room(v, 0);
    room(faces, 0);
    const auto put = [&](int c) {
        u.append((*set->uvs)[set->id(c)].u);
        v.append((*set->uvs)[set->id(c)].v);
        faces.append(t.cornerFaces()[c]);
    };
    for (int pass = 0; pass < 2; ++pass) {
        size_t next = 0;   // of the distinct ones, which stand in the order of their first use
        for (int c : corners) {
            const int id = set->id(c);
            const bool first = next < distinct.size() && id == distinct[next];
            next += first;
            if (id >= 0 && first == (pass == 0))
                put(c);
        }
    }
    return MS::kSuccess;
}

MStatus MItMeshVertex::getUVIndices(MIntArray& indices, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    const auto ids = set->ofVertex(walk_->topology())[walk_->index()];
    std::copy(ids.begin(), ids.end(), room(indices, ids.size()));
    return MS::kSuccess;
}

MStatus MItMeshVertex::numUVs(int& count, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    count = int(set->ofVertex(walk_->topology())[walk_->index()].size());
    return MS::kSuccess;
}

// colours

bool MItMeshVertex::hasColor(MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    const ColorSet* set = walk_->colorSet(nullptr);
    return set && !isUnset(set->ofVertices(walk_->topology())[walk_->index()]);
}

bool MItMeshVertex::hasColor(int face, MStatus* s)
{
    const int corner = cornerIn(*walk_, face);
    if (s)
        *s = corner < 0 ? walk_->refusal() : MStatus(MS::kSuccess);
    const ColorSet* set = walk_->colorSet(nullptr);
    return set && corner >= 0 && set->id(walk_->topology(), corner) >= 0;
}

MStatus MItMeshVertex::getColor(MColor& color, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    if (set)
        color = set->ofVertices(walk_->topology())[walk_->index()];
    else if (walk_->index() >= 0)
        color = unsetColor;
    return set ? MStatus() : walk_->withoutColors(name);
}

MStatus MItMeshVertex::getColor(MColor& color, int face, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    const int corner = cornerIn(*walk_, face);
    if (corner < 0)
        return walk_->refusal();
    color = set ? set->ofCorner(walk_->topology(), corner) : unsetColor;
    return set ? MStatus() : walk_->withoutColors(name);
}

MStatus MItMeshVertex::getColors(MColorArray& colors, const MString* name)
{
    const int v = walk_->index();
    const ColorSet* set = walk_->colorSet(name);
    if (v < 0 || (!set && !walk_->withoutColors(name)))
        return walk_->refusal();
    const Topology& t = walk_->topology();
    const auto corners = cornersOf(*walk_, v);
    const bool any = set && !isUnset(set->ofVertices(t)[v]);
    MColor* out = room(colors, corners.size());
    for (int c : corners) {
        const MColor& color = set ? set->ofCorner(t, c) : unsetColor;
        *out++ = !isUnset(color) ? color : any ? MColor(0, 0, 0, 1) : MColor(-1, -1, -1, 1);
    }
    return MS::kSuccess;
}

MStatus MItMeshVertex::numColors(int& count, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    if (!set && !walk_->withoutColors(name))
        return walk_->refusal();
    std::set<int> ids;
    if (set)
        for (int c : cornersOf(*walk_, walk_->index()))
            if (const int id = set->id(walk_->topology(), c); id >= 0)
                ids.insert(id);
    count = int(ids.size());
    return MS::kSuccess;
}

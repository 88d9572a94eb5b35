#include <maya/MItMeshEdge.h>

#include "mesh/walk.h"

using namespace mirk;

MItMeshEdge::MItMeshEdge(const MObject& object, MStatus* ReturnStatus)
    : walk_(std::make_unique<MeshWalk>(MeshWalk::edges))
{
    const MStatus status = reset(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MItMeshEdge::~MItMeshEdge() = default;

bool MItMeshEdge::isDone(MStatus* s) { report(s); return walk_->done(); }

MStatus MItMeshEdge::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}

MStatus MItMeshEdge::reset() { walk_->rewind(); return MS::kSuccess; }
MStatus MItMeshEdge::reset(const MObject& object) { return walk_->open(MeshTarget::of(object), MObject::kNullObj); }

MObject MItMeshEdge::currentItem(MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}

MStatus MItMeshEdge::updateSurface()
{
    const MStatus status = walk_->refresh();
    if (status)
        walk_->changed();
    return status;
}

MStatus MItMeshEdge::geomChanged() { return walk_->refresh(); }

int MItMeshEdge::count(MStatus* s) { report(s); return walk_->count(); }

int MItMeshEdge::index(MStatus* s)
{
    const int i = walk_->index();
    report(s, i < 0 ? MS::kFailure : MS::kSuccess);
    return i;
}

MStatus MItMeshEdge::setIndex(int newIndex, int& prevIndex) { return walk_->goTo(newIndex, prevIndex); }

namespace {

/// The vertex at an end of the current edge; -1 if there is none.
int endOf(const MeshWalk& walk, int which)
{
    const int e = walk.index();
    if (e < 0 || !within(which, 2))
        return -1;
    const EdgeTable::Edge edge = walk.topology().edges().edges[e];
    return which ? edge.b : edge.a;
}

/// Reports whether there is a current edge, and gives it.
int current(const MeshWalk& walk, MStatus* s)
{
    const int e = walk.index();
    report(s, e < 0 ? MS::kFailure : MS::kSuccess);
    return e;
}

}  // namespace

int MItMeshEdge::index(int vertexNum, MStatus* s)
{
    const int v = endOf(*walk_, vertexNum);
    if (s)
        *s = v < 0 ? walk_->refusal() : MStatus(MS::kSuccess);
    return v;
}

MPoint MItMeshEdge::point(int vertexNum, MSpace::Space space, MStatus* s)
{
    const int v = index(vertexNum, s);
    return v < 0 ? MPoint() : walk_->point(v, space);
}

MStatus MItMeshEdge::setPoint(const MPoint& point, unsigned int vertexNum, MSpace::Space space)
{
    const int v = vertexNum < 2 ? endOf(*walk_, int(vertexNum)) : -1;
    return v < 0 ? walk_->refusal() : walk_->setPoint(v, point, space);
}

MPoint MItMeshEdge::center(MSpace::Space space, MStatus* s)
{
    if (current(*walk_, s) < 0)
        return MPoint();
    const MPoint a = walk_->point(endOf(*walk_, 0), space), b = walk_->point(endOf(*walk_, 1), space);
    return MPoint((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

MStatus MItMeshEdge::getLength(double& length, MSpace::Space space) const
{
    if (walk_->index() < 0)
        return MS::kFailure;
    length = walk_->point(endOf(*walk_, 0), space).distanceTo(walk_->point(endOf(*walk_, 1), space));
    return MS::kSuccess;
}

bool MItMeshEdge::isSmooth(MStatus* s) const
{
    const int e = current(*walk_, s);
    return e >= 0 && walk_->body().edgeSmooth(e);
}

MStatus MItMeshEdge::setSmoothing(bool smooth)
{
    const int e = walk_->index();
    MeshBody* body = e < 0 ? nullptr : walk_->write();
    if (!body || !within(e, body->edgeCount()))
        return MS::kFailure;
    body->setEdgeSmooth(e, smooth);
    walk_->changed();
    return MS::kSuccess;
}

bool MItMeshEdge::onBoundary(MStatus* s)
{
    const int e = current(*walk_, s);
    return e >= 0 && walk_->topology().onBoundary(e);
}

int MItMeshEdge::getConnectedFaces(MIntArray& faces, MStatus* s)
{
    const int e = current(*walk_, s);
    if (e < 0)
        return 0;
    const auto corners = walk_->topology().edgeCorners()[e];
    int* out = room(faces, corners.size());
    for (int c : corners)
        *out++ = walk_->topology().cornerFaces()[c];
    return int(corners.size());
}

int MItMeshEdge::getConnectedEdges(MIntArray& edges, MStatus* s)
{
    const int e = current(*walk_, s);
    if (e < 0)
        return 0;
    edges.clear();
    for (int end = 0; end < 2; ++end)
        for (int other : walk_->topology().vertexEdges()[endOf(*walk_, end)])
            if (other != e)
                edges.append(other);
    return int(edges.length());
}

MStatus MItMeshEdge::numConnectedFaces(int& count) const
{
    const int e = walk_->index();
    if (e < 0)
        return MS::kFailure;
    count = int(walk_->topology().edgeCorners()[e].size());
    return MS::kSuccess;
}

MStatus MItMeshEdge::numConnectedEdges(int& count) const
{
    if (walk_->index() < 0)
        return MS::kFailure;
    const Lists& edges = walk_->topology().vertexEdges();
    count = int(edges[endOf(*walk_, 0)].size() + edges[endOf(*walk_, 1)].size()) - 2;
    return MS::kSuccess;
}

bool MItMeshEdge::connectedToFace(int face, MStatus* s)
{
    const int e = current(*walk_, s);
    if (e < 0)
        return false;
    for (int c : walk_->topology().edgeCorners()[e])
        if (walk_->topology().cornerFaces()[c] == face)
            return true;
    return false;
}

bool MItMeshEdge::connectedToEdge(int edge, MStatus* s)
{
    const int e = current(*walk_, s);
    if (e < 0 || e == edge || !within(edge, walk_->body().edgeCount()))
        return false;
    const EdgeTable::Edge a = walk_->topology().edges().edges[e], b = walk_->topology().edges().edges[edge];
    return a.a == b.a || a.a == b.b || a.b == b.a || a.b == b.b;
}

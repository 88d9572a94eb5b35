#include <maya/MItMeshFaceVertex.h>

#include "mesh/walk.h"

using namespace mirk;

MItMeshFaceVertex::MItMeshFaceVertex(const MObject& object, MStatus* ReturnStatus)
    : walk_(std::make_unique<MeshWalk>(MeshWalk::corners))
{
    const MStatus status = reset(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MItMeshFaceVertex::~MItMeshFaceVertex() = default;

bool MItMeshFaceVertex::isDone(MStatus* s) { report(s); return walk_->done(); }

MStatus MItMeshFaceVertex::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}

MStatus MItMeshFaceVertex::reset() { walk_->rewind(); return MS::kSuccess; }
MStatus MItMeshFaceVertex::reset(const MObject& object) { return walk_->open(MeshTarget::of(object), MObject::kNullObj); }

MObject MItMeshFaceVertex::currentItem(MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}

MStatus MItMeshFaceVertex::updateSurface()
{
    const MStatus status = walk_->refresh();
    if (status)
        walk_->changed();
    return status;
}

MStatus MItMeshFaceVertex::geomChanged() { return walk_->refresh(); }

namespace {

/// Reports whether there is a current corner, and gives it.
int current(const MeshWalk& walk, MStatus* s)
{
    const int c = walk.index();
    report(s, c < 0 ? MS::kFailure : MS::kSuccess);
    return c;
}

}  // namespace

MStatus MItMeshFaceVertex::setIndex(int face, int local, int& prevFace, int& prevLocal)
{
    if (walk_->index() < 0 && walk_->count() == 0)
        return MS::kFailure;
    const Topology& t = walk_->topology();
    if (!within(face, t.faceCount()) || !within(local, t.faceSize(face)))
        return MS::kInvalidParameter;
    int previous = -1;
    const MStatus status = walk_->goTo(t.first(face) + local, previous);
    if (status && previous >= 0) {
        prevFace = t.cornerFaces()[previous];
        prevLocal = previous - t.first(prevFace);
    }
    return status;
}

int MItMeshFaceVertex::faceId(MStatus* s) const
{
    const int c = current(*walk_, s);
    return c < 0 ? -1 : walk_->topology().cornerFaces()[c];
}

int MItMeshFaceVertex::vertId(MStatus* s) const
{
    const int c = current(*walk_, s);
    return c < 0 ? -1 : walk_->topology().connects()[c];
}

int MItMeshFaceVertex::faceVertId(MStatus* s) const
{
    const int c = current(*walk_, s);
    return c < 0 ? -1 : c - walk_->topology().first(walk_->topology().cornerFaces()[c]);
}

MPoint MItMeshFaceVertex::position(MSpace::Space space, MStatus* s) const
{
    const int c = current(*walk_, s);
    return c < 0 ? MPoint() : walk_->point(walk_->topology().connects()[c], space);
}

MStatus MItMeshFaceVertex::getNormal(MVector& normal, MSpace::Space space) const
{
    const int c = walk_->index();
    if (c < 0)
        return MS::kFailure;
    normal = toNormal(walk_->cornerNormal(c), walk_->matrix(space));
    return MS::kSuccess;
}

namespace {

MVector vectorOf(const MeshWalk& walk, Buffer<F3> Tangents::*part, MSpace::Space space, const MString* name, MStatus* s)
{
    const int c = current(walk, s);
    const int set = c < 0 ? -1 : uvSetOf(walk.body(), name);
    if (c >= 0 && set < 0)
        report(s, MS::kInvalidParameter);
    if (set < 0)
        return MVector();
    return toVector(walk.matrix(space).directionOut((walk.body().tangents(set).*part)[c]));
}

}  // namespace

MVector MItMeshFaceVertex::getTangent(MSpace::Space space, const MString* set, MStatus* s) const
{
    return vectorOf(*walk_, &Tangents::tangents, space, set, s);
}

MVector MItMeshFaceVertex::getBinormal(MSpace::Space space, const MString* set, MStatus* s) const
{
    return vectorOf(*walk_, &Tangents::binormals, space, set, s);
}

int MItMeshFaceVertex::normalId(MStatus* s) const
{
    const int c = current(*walk_, s);
    return c < 0 ? -1 : walk_->body().cornerNormals().ids[c];
}

int MItMeshFaceVertex::tangentId(MStatus* s) const { return current(*walk_, s); }

bool MItMeshFaceVertex::hasUVs(MStatus* s) const { return hasUVs(MString(), s); }

bool MItMeshFaceVertex::hasUVs(const MString& name, MStatus* s) const
{
    const int c = current(*walk_, s);
    const UVSet* set = walk_->uvSet(&name);
    return set && set->id(c) >= 0;
}

MStatus MItMeshFaceVertex::getUV(float2& uv, const MString* name) const
{
    int id = -1;
    const MStatus status = getUVIndex(id, name);
    if (status) {
        const F2 w = (*walk_->uvSet(name)->uvs)[id];
        uv[0] = w.u;
        uv[1] = w.v;
    }
    return status;
}

MStatus MItMeshFaceVertex::getUVIndex(int& index, const MString* name) const
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    const int id = set->id(walk_->index());
    if (id < 0)
        return MS::kFailure;
    index = id;
    return MS::kSuccess;
}

bool MItMeshFaceVertex::hasColor(MStatus* s) const
{
    const int c = current(*walk_, s);
    const ColorSet* set = walk_->colorSet(nullptr);
    return set && set->id(walk_->topology(), c) >= 0;
}

MStatus MItMeshFaceVertex::getColor(MColor& color, const MString* name) const
{
    const ColorSet* set = walk_->colorSet(name);
    if (walk_->index() >= 0)
        color = set ? set->ofCorner(walk_->topology(), walk_->index()) : unsetColor;
    return set ? MStatus() : walk_->withoutColors(name);
}

MStatus MItMeshFaceVertex::getColorIndex(int& index, const MString* name) const
{
    const ColorSet* set = walk_->colorSet(name);
    if (walk_->index() >= 0)
        index = set ? set->id(walk_->topology(), walk_->index()) : -1;
    return set ? MStatus() : walk_->withoutColors(name);
}

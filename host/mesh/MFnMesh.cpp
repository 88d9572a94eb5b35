// MFnMesh: what it works on, creation, counts, points, faces and edges.
#include <maya/MFnMesh.h>

#include <climits>

#include "data/mobject.h"
#include "mesh/api.h"
#include "mesh/target.h"

using namespace mirk;

MFnMesh::MFnMesh(const MObject& object, MStatus* ReturnStatus)
{
    const MStatus status = MFnMesh::setObject(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MFnMesh::~MFnMesh() = default;

MFn::Type MFnMesh::type() const { return MFn::kMesh; }

MStatus MFnMesh::setObject(MObject& object) { return setObject(static_cast<const MObject&>(object)); }

MStatus MFnMesh::setObject(const MObject& object) { return bind(object, MeshTarget::of(object)); }

MStatus MFnMesh::bind(const MObject& object, std::shared_ptr<MeshTarget> target)
{
    if (!target)
        return MS::kInvalidParameter;
    object_ = object;
    path_ = MDagPath();
    target_ = std::move(target);
    return MS::kSuccess;
}

const MeshBody* MFnMesh::read(MStatus* ReturnStatus) const
{
    const MeshBody* body = target_ ? target_->read() : nullptr;
    report(ReturnStatus, body ? MS::kSuccess : MS::kFailure);
    return body;
}

MeshBody* MFnMesh::write() const { return target_ ? target_->write() : nullptr; }

MStatus MFnMesh::updateSurface()
{
    if (!target_)
        return MS::kFailure;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::syncObject() { return updateSurface(); }

namespace {

/// Points and faces of a call to create; null if they do not fit together.
template <class Points>
Ref<MeshBody> makeBody(int vertexCount, int faceCount, const Points& points, const MIntArray& counts,
                       const MIntArray& connects)
{
    if (vertexCount < 0 || faceCount < 0 || points.length() < unsigned(vertexCount)
        || counts.length() < unsigned(faceCount))
        return {};
    Ref<Topology> topology = Topology::create(vertexCount, begin(counts), size_t(faceCount), begin(connects),
                                              connects.length());
    if (!topology)
        return {};
    auto xyz = make<Buffer<float>>(size_t(vertexCount) * 3);
    float* out = xyz->data();
    const auto* p = begin(points);
    for (int i = 0; i < vertexCount; ++i, ++p, out += 3)
        out[0] = float(p->x), out[1] = float(p->y), out[2] = float(p->z);
    auto body = make<MeshBody>();
    body->reset(std::move(xyz), std::move(topology));
    return body;
}

bool setTable(MeshBody& body, const MFloatArray& u, const MFloatArray& v)
{
    if (u.length() != v.length())
        return false;
    auto         uvs = make<Buffer<F2>>(u.length());
    F2*          out = uvs->data();
    const float* us = begin(u);
    const float* vs = begin(v);
    for (unsigned i = 0; i < u.length(); ++i)
        out[i] = {us[i], vs[i]};
    body.writeUVSet(0).uvs = std::move(uvs);
    return true;
}

/// Hands a new mesh to its owner; gives what create returns, and what the function set works on.
MObject hand(Ref<MeshBody> body, const MObject& parentOrOwner, MObject& mesh, MStatus* status)
{
    report(status);
    if (auto* data = objectAs<MeshData>(parentOrOwner)) {
        data->body->assign(*body, true);
        mesh = parentOrOwner;
        return parentOrOwner;
    }
    Ref<Object> shape, made;
    if (createMeshShape)
        made = createMeshShape(ObjectAccess::get(parentOrOwner), make<MeshData>(std::move(body)), shape);
    if (!made)
        report(status, MS::kFailure);
    mesh = wrap(shape);
    return wrap(made);
}

template <class Points>
MObject createMesh(MFnMesh& fn, int vertexCount, int faceCount, const Points& points, const MIntArray& counts,
                   const MIntArray& connects, const MFloatArray* u, const MFloatArray* v, const MObject& owner,
                   MStatus* status)
{
    Ref<MeshBody> body = makeBody(vertexCount, faceCount, points, counts, connects);
    if (!body || (u && !setTable(*body, *u, *v))) {
        report(status, MS::kFailure);
        return MObject::kNullObj;
    }
    MObject mesh;
    MObject result = hand(std::move(body), owner, mesh, status);
    if (!mesh.isNull())
        fn.setObject(mesh);
    return result;
}

}  // namespace

MObject MFnMesh::create(int nv, int np, const MPointArray& points, const MIntArray& counts, const MIntArray& connects,
                        MObject owner, MStatus* ReturnStatus)
{
    return createMesh(*this, nv, np, points, counts, connects, nullptr, nullptr, owner, ReturnStatus);
}

MObject MFnMesh::create(int nv, int np, const MFloatPointArray& points, const MIntArray& counts,
                        const MIntArray& connects, MObject owner, MStatus* ReturnStatus)
{
    return createMesh(*this, nv, np, points, counts, connects, nullptr, nullptr, owner, ReturnStatus);
}

MObject MFnMesh::create(int nv, int np, const MPointArray& points, const MIntArray& counts, const MIntArray& connects,
                        const MFloatArray& u, const MFloatArray& v, MObject owner, MStatus* ReturnStatus)
{
    return createMesh(*this, nv, np, points, counts, connects, &u, &v, owner, ReturnStatus);
}

MObject MFnMesh::create(int nv, int np, const MFloatPointArray& points, const MIntArray& counts,
                        const MIntArray& connects, const MFloatArray& u, const MFloatArray& v, MObject owner,
                        MStatus* ReturnStatus)
{
    return createMesh(*this, nv, np, points, counts, connects, &u, &v, owner, ReturnStatus);
}

MStatus MFnMesh::createInPlace(int nv, int np, const MPointArray& points, const MIntArray& counts,
                               const MIntArray& connects)
{
    const Ref<MeshBody> body = makeBody(nv, np, points, counts, connects);
    MeshBody* mine = body ? write() : nullptr;
    if (!mine)
        return MS::kFailure;
    mine->assign(*body, false);
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::createInPlace(int nv, int np, const MFloatPointArray& points, const MIntArray& counts,
                               const MIntArray& connects)
{
    const Ref<MeshBody> body = makeBody(nv, np, points, counts, connects);
    MeshBody* mine = body ? write() : nullptr;
    if (!mine)
        return MS::kFailure;
    mine->assign(*body, false);
    target_->changed();
    return MS::kSuccess;
}

MObject MFnMesh::copy(const MObject& source, MObject owner, MStatus* ReturnStatus)
{
    const std::shared_ptr<MeshTarget> from = MeshTarget::of(source);
    const MeshBody* body = from ? from->read() : nullptr;
    if (!body) {
        report(ReturnStatus, from ? MS::kFailure : MS::kInvalidParameter);
        return MObject::kNullObj;
    }
    auto mine = make<MeshBody>(*body);
    if (from->data()->transformed)
        mine->bakeMatrix();
    MObject mesh;
    MObject result = hand(std::move(mine), owner, mesh, ReturnStatus);
    if (!mesh.isNull())
        setObject(mesh);
    return result;
}

MObject MFnMesh::addPolygon(const MPointArray& points, bool merge, double tolerance, MObject owner,
                            MStatus* ReturnStatus)
{
    const unsigned n = points.length();
    MIntArray face(n), counts(1, int(n));
    report(ReturnStatus, MS::kFailure);
    if (n < 3 || n > INT_MAX / 2)
        return MObject::kNullObj;
    const MeshBody* old = owner.isNull() ? read() : nullptr;
    if (!old) {
        for (unsigned i = 0; i < n; ++i)
            face[i] = int(i);
        return create(int(n), 1, points, counts, face, owner, ReturnStatus);
    }
    MeshBody* body = write();
    if (!body)
        return MObject::kNullObj;
    std::vector<float> added;
    const int before = body->vertexCount();
    for (unsigned i = 0; i < n; ++i) {
        const float p[3] = {float(points[i].x), float(points[i].y), float(points[i].z)};
        face[i] = -1;
        for (int v = 0; merge && v < before && face[i] < 0; ++v)
            if (length(Vec3(p) - Vec3(body->points() + 3 * v)) <= tolerance)
                face[i] = v;
        if (face[i] < 0) {
            face[i] = before + int(added.size() / 3);
            added.insert(added.end(), p, p + 3);
        }
    }
    if (!body->append(added.data(), int(added.size() / 3), &face[0], int(n)))
        return MObject::kNullObj;
    target_->changed();
    report(ReturnStatus);
    return object_;
}

// counts

int MFnMesh::numVertices(MStatus* s) const { auto* b = read(s); return b ? b->vertexCount() : 0; }
int MFnMesh::numEdges(MStatus* s) const { auto* b = read(s); return b ? b->edgeCount() : 0; }
int MFnMesh::numPolygons(MStatus* s) const { auto* b = read(s); return b ? b->faceCount() : 0; }
int MFnMesh::numFaceVertices(MStatus* s) const { auto* b = read(s); return b ? b->cornerCount() : 0; }

int MFnMesh::polygonVertexCount(int face, MStatus* s) const
{
    const MeshBody* b = read(s);
    if (!b)
        return 0;
    if (!within(face, b->faceCount())) {
        report(s, MS::kInvalidParameter);
        return 0;
    }
    return b->topology().faceSize(face);
}

// points

namespace {

template <class P, class A>
MStatus readPoints(const MeshBody* b, MeshTarget* target, A& array, MSpace::Space space)
{
    if (!b)
        return MS::kFailure;
    const SpaceMatrix& m = target->matrix(space, *b);
    const float* p = b->points();
    P* out = room(array, size_t(b->vertexCount()));
    for (P* end = out + b->vertexCount(); out != end; ++out, p += 3) {
        *out = P(p[0], p[1], p[2]);
        if (m.active())
            m.pointOut(p, &out->x);
    }
    return MS::kSuccess;
}

template <class A>
MStatus writePoints(MeshBody* b, MeshTarget* target, const A& array, MSpace::Space space)
{
    if (!b)
        return MS::kFailure;
    if (array.length() != unsigned(b->vertexCount()))
        return MS::kInvalidParameter;
    const SpaceMatrix& m = target->matrix(space, *b);
    if (!m.invertible())
        return MS::kFailure;
    const auto* p = begin(array);
    auto buffer = b->pointBuffer()->refCount() > 1 ? make<Buffer<float>>(size_t(b->vertexCount()) * 3)
                                                   : Ref<Buffer<float>>();   // shared: no need to copy the old ones
    float* out = buffer ? buffer->data() : b->writePoints();
    const unsigned n = array.length();
    if (m.active()) {
        for (unsigned i = 0; i < n; ++i, ++p, out += 3)
            m.pointIn(&p->x, out);
    } else {
        for (unsigned i = 0; i < n; ++i, ++p, out += 3)
            out[0] = float(p->x), out[1] = float(p->y), out[2] = float(p->z);
    }
    if (buffer)
        b->replacePoints(std::move(buffer));
    target->changed();
    return MS::kSuccess;
}

}  // namespace

MStatus MFnMesh::getPoints(MPointArray& a, MSpace::Space space) const
{
    return readPoints<MPoint>(read(), target_.get(), a, space);
}

MStatus MFnMesh::getPoints(MFloatPointArray& a, MSpace::Space space) const
{
    return readPoints<MFloatPoint>(read(), target_.get(), a, space);
}

MStatus MFnMesh::setPoints(const MPointArray& a, MSpace::Space space) { return writePoints(write(), target_.get(), a, space); }

MStatus MFnMesh::setPoints(const MFloatPointArray& a, MSpace::Space space)
{
    return writePoints(write(), target_.get(), a, space);
}

MStatus MFnMesh::getPoint(int v, MPoint& pos, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(v, b->vertexCount()))
        return MS::kInvalidParameter;
    pos = toPoint(b->points() + 3 * v, target_->matrix(space, *b));
    return MS::kSuccess;
}

MStatus MFnMesh::setPoint(int v, const MPoint& pos, MSpace::Space space)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!within(v, b->vertexCount()))
        return MS::kInvalidParameter;
    const SpaceMatrix& m = target_->matrix(space, *b);
    if (!m.invertible())
        return MS::kFailure;
    m.pointIn(&pos.x, b->writePoints() + 3 * v);
    target_->changed();
    return MS::kSuccess;
}

const float* MFnMesh::getRawPoints(MStatus* s) const { auto* b = read(s); return b ? b->points() : nullptr; }

// faces and edges

MStatus MFnMesh::getPolygonVertices(int face, MIntArray& list) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(face, b->faceCount()))
        return MS::kInvalidParameter;
    const auto vertices = b->topology().face(face);
    std::copy(vertices.begin(), vertices.end(), room(list, vertices.size()));
    return MS::kSuccess;
}

MStatus MFnMesh::getVertices(MIntArray& counts, MIntArray& list) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    const Topology& t = b->topology();
    int* count = room(counts, size_t(t.faceCount()));
    for (int f = 0; f < t.faceCount(); ++f)
        count[f] = t.faceSize(f);
    std::copy(t.connects().begin(), t.connects().end(), room(list, t.connects().size()));
    return MS::kSuccess;
}

MStatus MFnMesh::getTriangles(MIntArray& counts, MIntArray& vertices) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    const Topology& t = b->topology();
    const Buffer<int>& corners = b->triangles();
    int* count = room(counts, size_t(t.faceCount()));
    for (int f = 0; f < t.faceCount(); ++f)
        count[f] = t.faceSize(f) - 2;
    int* out = room(vertices, corners.size());
    for (int c : corners)
        *out++ = t.connects()[c];
    return MS::kSuccess;
}

MStatus MFnMesh::getPolygonTriangleVertices(int face, int triangle, int vertexList[3]) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    const Topology& t = b->topology();
    if (!within(face, t.faceCount()) || !within(triangle, t.faceSize(face) - 2))
        return MS::kInvalidParameter;
    for (int k = 0; k < 3; ++k)
        vertexList[k] = t.connects()[b->triangles()[3 * size_t(firstTriangle(t, face) + triangle) + size_t(k)]];
    return MS::kSuccess;
}

MStatus MFnMesh::getEdgeVertices(int edge, int2& vertexList) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(edge, b->edgeCount()))
        return MS::kInvalidParameter;
    const EdgeTable::Edge e = b->topology().edges().edges[edge];
    vertexList[0] = e.a;
    vertexList[1] = e.b;
    return MS::kSuccess;
}

bool MFnMesh::isPolygonConvex(int face, MStatus* s) const
{
    const MeshBody* b = read(s);
    if (!b)
        return false;
    if (!within(face, b->faceCount())) {
        report(s, MS::kInvalidParameter);
        return false;
    }
    return convexFace(b->topology(), b->points(), face);
}

bool MFnMesh::onBoundary(int face, MStatus* s) const
{
    const MeshBody* b = read(s);
    if (!b)
        return false;
    const Topology& t = b->topology();
    if (!within(face, t.faceCount())) {
        report(s, MS::kInvalidParameter);
        return false;
    }
    for (int c = t.first(face); c < t.first(face + 1); ++c)
        if (t.onBoundary(t.edges().ofCorner[c]))
            return true;
    return false;
}

bool MFnMesh::isEdgeSmooth(int edge, MStatus* s) const
{
    const MeshBody* b = read(s);
    if (!b)
        return false;
    if (!within(edge, b->edgeCount())) {
        report(s, MS::kInvalidParameter);
        return false;
    }
    return b->edgeSmooth(edge);
}

MStatus MFnMesh::setEdgeSmoothing(int edge, bool smooth)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!within(edge, b->edgeCount()))
        return MS::kInvalidParameter;
    b->setEdgeSmooth(edge, smooth);
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setEdgeSmoothings(const MIntArray& edges, const MIntArray& smooths)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (edges.length() != smooths.length())
        return MS::kInvalidParameter;
    for (unsigned i = 0; i < edges.length(); ++i)
        if (!within(edges[i], b->edgeCount()))
            return MS::kInvalidParameter;
    for (unsigned i = 0; i < edges.length(); ++i)
        b->setEdgeSmooth(edges[i], smooths[i] != 0);
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::cleanupEdgeSmoothing() { return updateSurface(); }

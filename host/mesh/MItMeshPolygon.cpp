#include <maya/MItMeshPolygon.h>

#include <climits>
#include <set>

#include "mesh/walk.h"

using namespace mirk;

MItMeshPolygon::MItMeshPolygon(const MObject& object, MStatus* ReturnStatus)
    : walk_(std::make_unique<MeshWalk>(MeshWalk::faces))
{
    const MStatus status = reset(object);
    if (ReturnStatus)
        *ReturnStatus = status;
}

MItMeshPolygon::~MItMeshPolygon() = default;

bool MItMeshPolygon::isDone(MStatus* s) { report(s); return walk_->done(); }

MStatus MItMeshPolygon::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}

MStatus MItMeshPolygon::reset() { walk_->rewind(); return MS::kSuccess; }
MStatus MItMeshPolygon::reset(const MObject& object) { return walk_->open(MeshTarget::of(object), MObject::kNullObj); }

MObject MItMeshPolygon::currentItem(MStatus* s)
{
    report(s, walk_->index() < 0 ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}

MStatus MItMeshPolygon::updateSurface()
{
    const MStatus status = walk_->refresh();
    if (status)
        walk_->changed();
    return status;
}

MStatus MItMeshPolygon::geomChanged() { return walk_->refresh(); }

int MItMeshPolygon::count(MStatus* s) { report(s); return walk_->count(); }

unsigned int MItMeshPolygon::index(MStatus* s)
{
    const int i = walk_->index();
    report(s, i < 0 ? MS::kFailure : MS::kSuccess);
    return unsigned(i);
}

MStatus MItMeshPolygon::setIndex(int newIndex, int& prevIndex) { return walk_->goTo(newIndex, prevIndex); }

namespace {

int current(const MeshWalk& walk, MStatus* s)
{
    const int f = walk.index();
    report(s, f < 0 ? MS::kFailure : MS::kSuccess);
    return f;
}

std::span<const int> verticesOf(const MeshWalk& walk) { return walk.topology().face(walk.index()); }

/// The corner of the current face at a place; -1 if there is none.
int cornerAt(const MeshWalk& walk, int place)
{
    const int f = walk.index();
    return f >= 0 && within(place, walk.topology().faceSize(f)) ? walk.topology().first(f) + place : -1;
}

int cornerAt(const MeshWalk& walk, int place, MStatus* s)
{
    const int c = cornerAt(walk, place);
    if (s)
        *s = c < 0 ? walk.refusal() : MStatus(MS::kSuccess);
    return c;
}

/// The corners of the current face, which exists.
std::pair<int, int> cornersOf(const MeshWalk& walk)
{
    return {walk.topology().first(walk.index()), walk.topology().first(walk.index() + 1)};
}

MStatus copyTo(const std::set<int>& from, MIntArray& to)
{
    std::copy(from.begin(), from.end(), room(to, from.size()));
    return MS::kSuccess;
}

}  // namespace

unsigned int MItMeshPolygon::polygonVertexCount(MStatus* s)
{
    const int f = current(*walk_, s);
    return f < 0 ? 0 : unsigned(walk_->topology().faceSize(f));
}

int MItMeshPolygon::vertexIndex(int place, MStatus* s)
{
    const int c = cornerAt(*walk_, place, s);
    return c < 0 ? -1 : walk_->topology().connects()[c];
}

MStatus MItMeshPolygon::getVertices(MIntArray& vertices)
{
    if (walk_->index() < 0)
        return MS::kFailure;
    const auto from = verticesOf(*walk_);
    std::copy(from.begin(), from.end(), room(vertices, from.size()));
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getEdges(MIntArray& edges)
{
    if (walk_->index() < 0)
        return MS::kFailure;
    const auto [first, end] = cornersOf(*walk_);
    const int* from = walk_->topology().edges().ofCorner.data();
    std::copy(from + first, from + end, room(edges, size_t(end - first)));
    return MS::kSuccess;
}

// points

MPoint MItMeshPolygon::center(MSpace::Space space, MStatus* s)
{
    if (current(*walk_, s) < 0)
        return MPoint();
    MVector sum;
    for (int v : verticesOf(*walk_))
        sum += MVector(walk_->point(v, space));
    return MPoint(sum / double(verticesOf(*walk_).size()));
}

MPoint MItMeshPolygon::point(int place, MSpace::Space space, MStatus* s)
{
    const int c = cornerAt(*walk_, place, s);
    return c < 0 ? MPoint() : walk_->point(walk_->topology().connects()[c], space);
}

void MItMeshPolygon::getPoints(MPointArray& points, MSpace::Space space, MStatus* s)
{
    if (current(*walk_, s) < 0)
        return;
    MPoint* out = room(points, verticesOf(*walk_).size());
    for (int v : verticesOf(*walk_))
        *out++ = walk_->point(v, space);
}

MStatus MItMeshPolygon::setPoint(const MPoint& point, unsigned int place, MSpace::Space space)
{
    const int c = place > unsigned(INT_MAX) ? -1 : cornerAt(*walk_, int(place));
    return c < 0 ? walk_->refusal() : walk_->setPoint(walk_->topology().connects()[c], point, space);
}

MStatus MItMeshPolygon::setPoints(MPointArray& points, MSpace::Space space)
{
    if (walk_->index() < 0)
        return MS::kFailure;
    const auto vertices = verticesOf(*walk_);
    if (points.length() != vertices.size())
        return MS::kInvalidParameter;
    for (size_t i = 0; i < vertices.size(); ++i)
        if (const MStatus status = walk_->setPoint(vertices[i], points[unsigned(i)], space); !status)
            return status;
    return MS::kSuccess;
}

// normals and area

MStatus MItMeshPolygon::getNormal(MVector& normal, MSpace::Space space)
{
    const int f = walk_->index();
    if (f < 0)
        return MS::kFailure;
    normal = toNormal(unit(areaVector(walk_->topology(), walk_->body().points(), f)), walk_->matrix(space));
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getNormal(unsigned int place, MVector& normal, MSpace::Space space)
{
    const int c = place > unsigned(INT_MAX) ? -1 : cornerAt(*walk_, int(place));
    if (c < 0)
        return walk_->refusal();
    normal = toNormal(walk_->cornerNormal(c), walk_->matrix(space));
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getNormals(MVectorArray& normals, MSpace::Space space)
{
    if (walk_->index() < 0)
        return MS::kFailure;
    const auto [first, end] = cornersOf(*walk_);
    MVector* out = room(normals, size_t(end - first));
    for (int c = first; c < end; ++c)
        *out++ = toNormal(walk_->cornerNormal(c), walk_->matrix(space));
    return MS::kSuccess;
}

unsigned int MItMeshPolygon::normalIndex(int place, MStatus* s) const
{
    const int c = cornerAt(*walk_, place, s);
    return c < 0 ? 0 : unsigned(walk_->body().cornerNormals().ids[c]);
}

unsigned int MItMeshPolygon::tangentIndex(int place, MStatus* s) const
{
    const int c = cornerAt(*walk_, place, s);
    return c < 0 ? 0 : unsigned(c);
}

MStatus MItMeshPolygon::numTriangles(int& count) const
{
    if (walk_->index() < 0)
        return MS::kFailure;
    count = walk_->topology().faceSize(walk_->index()) - 2;
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getTriangle(int triangle, MPointArray& points, MIntArray& vertices, MSpace::Space space) const
{
    const int f = walk_->index();
    if (f < 0 || !within(triangle, walk_->topology().faceSize(f) - 2))
        return walk_->refusal();
    const int* corners = walk_->body().triangles().data() + 3 * size_t(firstTriangle(walk_->topology(), f) + triangle);
    MPoint* point = room(points, 3);
    int* vertex = room(vertices, 3);
    for (int k = 0; k < 3; ++k) {
        vertex[k] = walk_->topology().connects()[corners[k]];
        point[k] = walk_->point(vertex[k], space);
    }
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getTriangles(MPointArray& points, MIntArray& vertices, MSpace::Space space) const
{
    int count = 0;
    if (!numTriangles(count))
        return MS::kFailure;
    const size_t n = 3 * size_t(count);
    const int* corners = walk_->body().triangles().data() + 3 * size_t(firstTriangle(walk_->topology(), walk_->index()));
    MPoint* point = room(points, n);
    int* vertex = room(vertices, n);
    for (size_t i = 0; i < n; ++i) {
        vertex[i] = walk_->topology().connects()[corners[i]];
        point[i] = walk_->point(vertex[i], space);
    }
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getArea(double& area, MSpace::Space space)
{
    int count = 0;
    if (!numTriangles(count))
        return MS::kFailure;
    const int* corners = walk_->body().triangles().data() + 3 * size_t(firstTriangle(walk_->topology(), walk_->index()));
    const auto at = [&](int i) { return walk_->point(walk_->topology().connects()[corners[i]], space); };
    area = 0;
    for (int t = 0; t < 3 * count; t += 3) {
        const MPoint a = at(t), b = at(t + 1), c = at(t + 2);
        area += ((b - a) ^ (c - a)).length() / 2;
    }
    return MS::kSuccess;
}

bool MItMeshPolygon::zeroArea(MStatus* s)
{
    double area = 0;
    return current(*walk_, s) >= 0 && getArea(area) && area < 1e-10;
}

bool MItMeshPolygon::isConvex(MStatus* s)
{
    const int f = current(*walk_, s);
    return f >= 0 && convexFace(walk_->topology(), walk_->body().points(), f);
}

bool MItMeshPolygon::isPlanar(MStatus* s)
{
    const int f = current(*walk_, s);
    if (f < 0)
        return false;
    const float* points = walk_->body().points();
    const auto vertices = verticesOf(*walk_);
    const Vec3 normal(unit(areaVector(walk_->topology(), points, f)).v), origin(points + 3 * vertices[0]);
    double size = 0, off = 0;
    for (int v : vertices) {
        const Vec3 d = Vec3(points + 3 * v) - origin;
        size = std::max(size, length(d));
        off = std::max(off, std::fabs(dot(d, normal)));
    }
    return off <= 1e-5 * size;   // points are single precision
}

bool MItMeshPolygon::isLamina(MStatus* s)
{
    const int f = current(*walk_, s);
    if (f < 0)
        return false;
    const Topology& t = walk_->topology();
    std::set<int> others;
    for (int c = t.first(f); c < t.first(f + 1); ++c) {
        std::set<int> here;
        for (int other : t.edgeCorners()[t.edges().ofCorner[c]])
            if (const int g = t.cornerFaces()[other]; g != f && t.faceSize(g) == t.faceSize(f) && (c == t.first(f) || others.count(g)))
                here.insert(g);
        others = std::move(here);
    }
    return !others.empty();
}

// neighbours

MStatus MItMeshPolygon::getConnectedFaces(MIntArray& faces)
{
    const int f = walk_->index();
    if (f < 0)
        return MS::kFailure;
    const Topology& t = walk_->topology();
    std::set<int> found;
    for (int c = t.first(f); c < t.first(f + 1); ++c)
        for (int other : t.edgeCorners()[t.edges().ofCorner[c]])
            found.insert(t.cornerFaces()[other]);
    found.erase(f);
    return copyTo(found, faces);
}

MStatus MItMeshPolygon::getConnectedEdges(MIntArray& edges)
{
    const int f = walk_->index();
    if (f < 0)
        return MS::kFailure;
    const Topology& t = walk_->topology();
    std::set<int> found;
    for (int v : verticesOf(*walk_))
        for (int e : t.vertexEdges()[v])
            found.insert(e);
    for (int c = t.first(f); c < t.first(f + 1); ++c)
        found.erase(t.edges().ofCorner[c]);
    return copyTo(found, edges);
}

MStatus MItMeshPolygon::getConnectedVertices(MIntArray& vertices)
{
    MIntArray edges;
    if (!getConnectedEdges(edges))
        return MS::kFailure;
    std::set<int> found;
    for (unsigned i = 0; i < edges.length(); ++i) {
        const EdgeTable::Edge e = walk_->topology().edges().edges[edges[i]];
        found.insert({e.a, e.b});
    }
    for (int v : verticesOf(*walk_))
        found.erase(v);
    return copyTo(found, vertices);
}

MStatus MItMeshPolygon::numConnectedFaces(int& count) const
{
    MIntArray faces;
    const MStatus status = const_cast<MItMeshPolygon*>(this)->getConnectedFaces(faces);
    if (status)
        count = int(faces.length());
    return status;
}

bool MItMeshPolygon::isConnectedToFace(int face, MStatus* s)
{
    MIntArray faces;
    if (current(*walk_, s) < 0)
        return false;
    getConnectedFaces(faces);
    for (unsigned i = 0; i < faces.length(); ++i)
        if (faces[i] == face)
            return true;
    return false;
}

bool MItMeshPolygon::isConnectedToEdge(int edge, MStatus* s)
{
    MIntArray edges;
    if (current(*walk_, s) < 0)
        return false;
    getConnectedEdges(edges);
    for (unsigned i = 0; i < edges.length(); ++i)
        if (edges[i] == edge)
            return true;
    return false;
}

bool MItMeshPolygon::isConnectedToVertex(int vertex, MStatus* s)
{
    MIntArray vertices;
    if (current(*walk_, s) < 0)
        return false;
    getConnectedVertices(vertices);
    for (unsigned i = 0; i < vertices.length(); ++i)
        if (vertices[i] == vertex)
            return true;
    return false;
}

bool MItMeshPolygon::onBoundary(MStatus* s)
{
    const int f = current(*walk_, s);
    if (f < 0)
        return false;
    const Topology& t = walk_->topology();
    for (int c = t.first(f); c < t.first(f + 1); ++c)
        if (t.onBoundary(t.edges().ofCorner[c]))
            return true;
    return false;
}

// UVs

bool MItMeshPolygon::hasUVs(MStatus* s) { return hasUVs(MString(), s); }

bool MItMeshPolygon::hasUVs(const MString& name, MStatus* s)
{
    const UVSet* set = walk_->uvSet(&name);
    if (s)
        *s = set ? MStatus(MS::kSuccess) : walk_->refusal();
    if (!set)
        return false;
    const auto [first, end] = cornersOf(*walk_);
    for (int c = first; c < end; ++c)
        if (set->id(c) < 0)
            return false;
    return true;
}

MStatus MItMeshPolygon::getUVIndex(int place, int& index, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    const int c = cornerAt(*walk_, place);
    if (!set || c < 0)
        return walk_->refusal();
    const int id = set->id(c);
    if (id < 0)
        return MS::kFailure;
    index = id;
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getUV(int place, float2& uv, const MString* name)
{
    int id = -1;
    const MStatus status = getUVIndex(place, id, name);
    if (status) {
        const F2 w = (*walk_->uvSet(name)->uvs)[id];
        uv[0] = w.u;
        uv[1] = w.v;
    }
    return status;
}

MStatus MItMeshPolygon::getUVs(MFloatArray& u, MFloatArray& v, const MString* name)
{
    const UVSet* set = walk_->uvSet(name);
    if (!set)
        return walk_->refusal();
    const auto [first, end] = cornersOf(*walk_);
    for (int c = first; c < end; ++c)
        if (set->id(c) < 0)
            return MS::kFailure;
    float* us = room(u, size_t(end - first));
    float* vs = room(v, size_t(end - first));
    for (int c = first; c < end; ++c) {
        *us++ = (*set->uvs)[set->id(c)].u;
        *vs++ = (*set->uvs)[set->id(c)].v;
    }
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getUVArea(double& area, const MString* name)
{
    MFloatArray u, v;
    const MStatus status = getUVs(u, v, name);
    if (!status)
        return status;
    double twice = 0;
    for (unsigned i = 0, n = u.length(); i < n; ++i)
        twice += double(u[i]) * v[(i + 1) % n] - double(u[(i + 1) % n]) * v[i];
    area = std::fabs(twice) / 2;
    return MS::kSuccess;
}

bool MItMeshPolygon::zeroUVArea(MStatus* s)
{
    double area = 0;
    const MStatus status = getUVArea(area);
    if (s)
        *s = status;
    return status && area < 1e-10;
}

// colours

bool MItMeshPolygon::hasColor(MStatus* s)
{
    MColor color;
    current(*walk_, s);
    return getColor(color) && !isUnset(color);
}

bool MItMeshPolygon::hasColor(int place, MStatus* s)
{
    const int c = cornerAt(*walk_, place, s);
    const ColorSet* set = walk_->colorSet(nullptr);
    return set && c >= 0 && set->id(walk_->topology(), c) >= 0;
}

MStatus MItMeshPolygon::numColors(int& count, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    if (!set && !walk_->withoutColors(name))
        return walk_->refusal();
    std::set<int> ids;
    if (set) {
        const auto [first, end] = cornersOf(*walk_);
        for (int c = first; c < end; ++c)
            if (const int id = set->id(walk_->topology(), c); id >= 0)
                ids.insert(id);
    }
    count = int(ids.size());
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getColor(MColor& color, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    if (!set) {
        if (walk_->index() >= 0)
            color = unsetColor;
        return walk_->withoutColors(name);
    }
    MColor sum(0, 0, 0, 0);
    int count = 0;
    const auto [first, end] = cornersOf(*walk_);
    for (int c = first; c < end; ++c)
        if (const int id = set->id(walk_->topology(), c); id >= 0) {
            sum += (*set->table)[id];
            ++count;
        }
    color = count ? sum / float(count) : unsetColor;
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getColor(MColor& color, int place)
{
    const int c = cornerAt(*walk_, place);
    if (c < 0)
        return walk_->refusal();
    const ColorSet* set = walk_->colorSet(nullptr);
    color = set ? set->ofCorner(walk_->topology(), c) : unsetColor;
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getColors(MColorArray& colors, const MString* name)
{
    const ColorSet* set = walk_->colorSet(name);
    if (!set && !walk_->withoutColors(name))
        return walk_->refusal();
    const auto [first, end] = cornersOf(*walk_);
    MColor* out = room(colors, size_t(end - first));
    for (int c = first; c < end; ++c)
        *out++ = set ? set->ofCorner(walk_->topology(), c) : unsetColor;
    return MS::kSuccess;
}

MStatus MItMeshPolygon::getColorIndex(int place, int& index, const MString* name)
{
    const int c = cornerAt(*walk_, place);
    const ColorSet* set = walk_->colorSet(name);
    if (c < 0 || (!set && !walk_->withoutColors(name)))
        return walk_->refusal();
    index = set ? set->id(walk_->topology(), c) : -1;
    return MS::kSuccess;
}

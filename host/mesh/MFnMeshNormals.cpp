// MFnMesh: normals, tangents and binormals.
#include <maya/MFnMesh.h>

#include "mesh/api.h"
#include "mesh/target.h"

using namespace mirk;

namespace {

enum class Kind { normal, direction };

/// Values of `from`, taken to a space, into an array of vectors.
void putAll(const Buffer<F3>& from, const SpaceMatrix& m, Kind kind, MFloatVectorArray& array)
{
    MFloatVector* out = room(array, from.size());
    for (const F3& v : from) {
        const F3 w = kind == Kind::normal ? m.normalOut(v) : m.directionOut(v);
        *out++ = MFloatVector(w.v);
    }
}

}  // namespace

int MFnMesh::numNormals(MStatus* s) const { auto* b = read(s); return b ? int(b->cornerNormals().table.size()) : 0; }

MStatus MFnMesh::getVertexNormals(bool weighted, MFloatVectorArray& normals, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    putAll(b->vertexNormals(weighted), target_->matrix(space, *b), Kind::normal, normals);
    return MS::kSuccess;
}

MStatus MFnMesh::getVertexNormal(int v, MVector& normal, MSpace::Space space) const
{
    return getVertexNormal(v, false, normal, space);
}

MStatus MFnMesh::getVertexNormal(int v, bool weighted, MVector& normal, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(v, b->vertexCount()))
        return MS::kInvalidParameter;
    normal = toNormal(b->vertexNormals(weighted)[v], target_->matrix(space, *b));
    return MS::kSuccess;
}

MStatus MFnMesh::getNormals(MFloatVectorArray& normals, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    putAll(b->cornerNormals().table, target_->matrix(space, *b), Kind::normal, normals);
    return MS::kSuccess;
}

MStatus MFnMesh::getNormalIds(MIntArray& counts, MIntArray& ids) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    const Topology& t = b->topology();
    int* count = room(counts, size_t(t.faceCount()));
    for (int f = 0; f < t.faceCount(); ++f)
        count[f] = t.faceSize(f);
    const Buffer<int>& from = b->cornerNormals().ids;
    std::copy(from.begin(), from.end(), room(ids, from.size()));
    return MS::kSuccess;
}

MStatus MFnMesh::getFaceNormalIds(int face, MIntArray& normals) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(face, b->faceCount()))
        return MS::kInvalidParameter;
    const int first = b->topology().first(face), n = b->topology().faceSize(face);
    const int* ids = b->cornerNormals().ids.data() + first;
    std::copy(ids, ids + n, room(normals, size_t(n)));
    return MS::kSuccess;
}

MStatus MFnMesh::getFaceVertexNormal(int face, int vertex, MVector& normal, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    const int corner = within(face, b->faceCount()) ? b->topology().cornerAt(face, vertex) : -1;
    if (corner < 0)
        return MS::kInvalidParameter;
    normal = toNormal(b->cornerNormals().at(corner), target_->matrix(space, *b));
    return MS::kSuccess;
}

MStatus MFnMesh::getFaceVertexNormals(int face, MFloatVectorArray& normals, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(face, b->faceCount()))
        return MS::kInvalidParameter;
    const SpaceMatrix& m = target_->matrix(space, *b);
    const Topology& t = b->topology();
    MFloatVector* out = room(normals, size_t(t.faceSize(face)));
    for (int c = t.first(face); c < t.first(face + 1); ++c)
        *out++ = MFloatVector(m.normalOut(b->cornerNormals().at(c)).v);
    return MS::kSuccess;
}

MStatus MFnMesh::getPolygonNormal(int face, MVector& normal, MSpace::Space space) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    if (!within(face, b->faceCount()))
        return MS::kInvalidParameter;
    normal = toNormal(b->faceNormals()[face], target_->matrix(space, *b));
    return MS::kSuccess;
}

// tangents and binormals

namespace {

using Part = Buffer<F3> Tangents::*;

MStatus cornerVector(const MeshBody* b, MeshTarget* target, Part part, int face, int vertex, MVector& result,
                     MSpace::Space space, const MString* uvSet)
{
    if (!b)
        return MS::kFailure;
    const int corner = within(face, b->faceCount()) ? b->topology().cornerAt(face, vertex) : -1;
    const int set = uvSetOf(*b, uvSet);
    if (corner < 0 || set < 0)
        return MS::kInvalidParameter;
    result = toVector(target->matrix(space, *b).directionOut((b->tangents(set).*part)[corner]));
    return MS::kSuccess;
}

MStatus faceVectors(const MeshBody* b, MeshTarget* target, Part part, int face, MFloatVectorArray& result,
                    MSpace::Space space, const MString* uvSet)
{
    if (!b)
        return MS::kFailure;
    const int set = uvSetOf(*b, uvSet);
    if (!within(face, b->faceCount()) || set < 0)
        return MS::kInvalidParameter;
    const SpaceMatrix& m = target->matrix(space, *b);
    const Topology& t = b->topology();
    MFloatVector* out = room(result, size_t(t.faceSize(face)));
    for (int c = t.first(face); c < t.first(face + 1); ++c)
        *out++ = MFloatVector(m.directionOut((b->tangents(set).*part)[c]).v);
    return MS::kSuccess;
}

MStatus allVectors(const MeshBody* b, MeshTarget* target, Part part, MFloatVectorArray& result, MSpace::Space space,
                   const MString* uvSet)
{
    if (!b)
        return MS::kFailure;
    const int set = uvSetOf(*b, uvSet);
    if (set < 0)
        return MS::kInvalidParameter;
    putAll(b->tangents(set).*part, target->matrix(space, *b), Kind::direction, result);
    return MS::kSuccess;
}

}  // namespace

MStatus MFnMesh::getFaceVertexTangent(int face, int vertex, MVector& v, MSpace::Space space, const MString* set) const
{
    return cornerVector(read(), target_.get(), &Tangents::tangents, face, vertex, v, space, set);
}

MStatus MFnMesh::getFaceVertexBinormal(int face, int vertex, MVector& v, MSpace::Space space, const MString* set) const
{
    return cornerVector(read(), target_.get(), &Tangents::binormals, face, vertex, v, space, set);
}

MStatus MFnMesh::getFaceVertexTangents(int face, MFloatVectorArray& v, MSpace::Space space, const MString* set) const
{
    return faceVectors(read(), target_.get(), &Tangents::tangents, face, v, space, set);
}

MStatus MFnMesh::getFaceVertexBinormals(int face, MFloatVectorArray& v, MSpace::Space space, const MString* set) const
{
    return faceVectors(read(), target_.get(), &Tangents::binormals, face, v, space, set);
}

MStatus MFnMesh::getTangents(MFloatVectorArray& v, MSpace::Space space, const MString* set) const
{
    return allVectors(read(), target_.get(), &Tangents::tangents, v, space, set);
}

MStatus MFnMesh::getBinormals(MFloatVectorArray& v, MSpace::Space space, const MString* set) const
{
    return allVectors(read(), target_.get(), &Tangents::binormals, v, space, set);
}

int MFnMesh::getTangentId(int face, int vertex, MStatus* s) const
{
    const MeshBody* b = read(s);
    const int corner = b && within(face, b->faceCount()) ? b->topology().cornerAt(face, vertex) : -1;
    if (b && corner < 0)
        report(s, MS::kInvalidParameter);
    return corner;
}

// setting and locking

namespace {

/// Ids of vertices, all of which exist; false if one does not.
bool allWithin(const MIntArray& ids, int n)
{
    for (unsigned i = 0; i < ids.length(); ++i)
        if (!within(ids[i], n))
            return false;
    return true;
}

/// The corners at pairs of face and vertex; false if there is no such corner.
bool cornersOf(const Topology& t, const MIntArray& faces, const MIntArray& vertices, std::vector<int>& corners)
{
    if (faces.length() != vertices.length())
        return false;
    corners.resize(faces.length());
    for (unsigned i = 0; i < faces.length(); ++i) {
        corners[i] = within(faces[i], t.faceCount()) ? t.cornerAt(faces[i], vertices[i]) : -1;
        if (corners[i] < 0)
            return false;
    }
    return true;
}

std::vector<F3> toObject(const MVectorArray& normals, const SpaceMatrix& m)
{
    std::vector<F3> result(normals.length());
    for (unsigned i = 0; i < normals.length(); ++i)
        result[i] = m.normalIn(toF3(normals[i]));
    return result;
}

}  // namespace

MStatus MFnMesh::setVertexNormal(MVector& normal, int vertex, MSpace::Space space, MDGModifier*)
{
    MVectorArray normals(1, normal);
    MIntArray vertices(1, vertex);
    return setVertexNormals(normals, vertices, space);
}

MStatus MFnMesh::setVertexNormals(MVectorArray& normals, MIntArray& vertices, MSpace::Space space, MDGModifier*)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (normals.length() != vertices.length() || !allWithin(vertices, b->vertexCount()))
        return MS::kInvalidParameter;
    const std::vector<F3> values = toObject(normals, target_->matrix(space, *b));
    b->lockVertexNormals(values.data(), begin(vertices), values.size());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setFaceVertexNormal(MVector& normal, int face, int vertex, MSpace::Space space, MDGModifier*)
{
    MVectorArray normals(1, normal);
    MIntArray faces(1, face), vertices(1, vertex);
    return setFaceVertexNormals(normals, faces, vertices, space);
}

MStatus MFnMesh::setFaceVertexNormals(MVectorArray& normals, MIntArray& faces, MIntArray& vertices, MSpace::Space space)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    std::vector<int> corners;
    if (normals.length() != faces.length() || !cornersOf(b->topology(), faces, vertices, corners))
        return MS::kInvalidParameter;
    const std::vector<F3> values = toObject(normals, target_->matrix(space, *b));
    b->lockCornerNormals(values.data(), corners.data(), corners.size());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::lockVertexNormals(MIntArray& vertices)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!allWithin(vertices, b->vertexCount()))
        return MS::kInvalidParameter;
    std::vector<int> corners;
    std::vector<F3> values;
    for (unsigned i = 0; i < vertices.length(); ++i)
        for (int c : b->topology().vertexCorners()[vertices[i]]) {
            corners.push_back(c);
            values.push_back(b->cornerNormals().at(c));
        }
    b->lockCornerNormals(values.data(), corners.data(), corners.size());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::unlockVertexNormals(MIntArray& vertices)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!allWithin(vertices, b->vertexCount()))
        return MS::kInvalidParameter;
    b->unlockVertices(begin(vertices), vertices.length());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::lockFaceVertexNormals(MIntArray& faces, MIntArray& vertices)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    std::vector<int> corners;
    if (!cornersOf(b->topology(), faces, vertices, corners))
        return MS::kInvalidParameter;
    std::vector<F3> values;
    for (int c : corners)
        values.push_back(b->cornerNormals().at(c));
    b->lockCornerNormals(values.data(), corners.data(), corners.size());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::unlockFaceVertexNormals(MIntArray& faces, MIntArray& vertices)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    std::vector<int> corners;
    if (!cornersOf(b->topology(), faces, vertices, corners))
        return MS::kInvalidParameter;
    b->unlockCorners(corners.data(), corners.size());
    target_->changed();
    return MS::kSuccess;
}

bool MFnMesh::isNormalLocked(unsigned int normal, MStatus* s) const
{
    const MeshBody* b = read(s);
    if (!b)
        return false;
    const CornerNormals& normals = b->cornerNormals();
    if (normal >= normals.table.size()) {
        report(s, MS::kInvalidParameter);
        return false;
    }
    for (int c = 0; b->locked() && c < b->cornerCount(); ++c)
        if (normals.ids[c] == int(normal))
            return b->normalLocked(c);
    return false;
}

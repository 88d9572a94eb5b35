// MFnMesh: UV sets and UVs.
#include <maya/MFnMesh.h>

#include <numeric>

#include "mesh/api.h"
#include "mesh/target.h"
#include "mesh/uv_place.h"

using namespace mirk;

int MFnMesh::numUVSets(MStatus* s) const { auto* b = read(s); return b ? int(b->uvSets().sets.size()) : 0; }

namespace {

const UVSet* setOf(const MeshBody* b, const MString* name)
{
    const int set = b ? uvSetOf(*b, name) : -1;
    return set < 0 ? nullptr : &b->uvSets().sets[size_t(set)];
}

MStatus missing(const MeshBody* b) { return b ? MS::kInvalidParameter : MS::kFailure; }

/// The corner of a face by its place in it; -1 if there is none.
int cornerOf(const MeshBody& b, int face, int local)
{
    return within(face, b.faceCount()) && within(local, b.topology().faceSize(face)) ? b.topology().first(face) + local
                                                                                     : -1;
}

}  // namespace

int MFnMesh::numUVs(MStatus* s) const
{
    const MeshBody* b = read(s);
    const UVSet* set = setOf(b, nullptr);
    return set ? int(set->uvs->size()) : 0;
}

int MFnMesh::numUVs(const MString& name, MStatus* s) const
{
    const MeshBody* b = read(s);
    const UVSet* set = setOf(b, &name);
    if (b && !set)
        report(s, MS::kInvalidParameter);
    return set ? int(set->uvs->size()) : 0;
}

// sets

MStatus MFnMesh::createUVSetDataMesh(MString& name)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    const std::string wanted = name.length() ? name.asChar() : "uvSet";
    std::string made = wanted;
    for (int i = 1; b->findUVSet(made) >= 0; ++i)
        made = wanted + std::to_string(i);
    b->writeUVSets().sets.emplace_back().name = made;
    name = MString(made.c_str());
    target_->changed();
    return MS::kSuccess;
}

MString MFnMesh::createUVSetWithName(const MString& name, MDGModifier*, const MUintArray*, MStatus* status)
{
    MString made = name;
    const MStatus result = createUVSetDataMesh(made);
    if (status)
        *status = result;
    return result ? made : MString();
}

MStatus MFnMesh::renameUVSet(const MString& from, const MString& to, MDGModifier*)
{
    MeshBody* b = write();
    const int set = b ? b->findUVSet(from.asChar()) : -1;
    if (set < 0 || !to.length() || b->findUVSet(to.asChar()) >= 0)
        return missing(b);
    b->writeUVSet(set).name = to.asChar();
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::deleteUVSet(const MString& name, MDGModifier*)
{
    MeshBody* b = write();
    const int set = b ? b->findUVSet(name.asChar()) : -1;
    if (set < 1)   // the first one stays
        return missing(b);
    UVSets& all = b->writeUVSets();
    all.sets.erase(all.sets.begin() + set);
    if (all.current == set)
        all.current = 0;
    else if (all.current > set)
        --all.current;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setCurrentUVSetName(const MString& name, MDGModifier*)
{
    MeshBody* b = write();
    const int set = b ? b->findUVSet(name.asChar()) : -1;
    if (set < 0)
        return missing(b);
    b->writeUVSets().current = set;
    target_->changed();
    return MS::kSuccess;
}

MString MFnMesh::currentUVSetName(int, MStatus* s) const
{
    const MeshBody* b = read(s);
    return b ? MString(setOf(b, nullptr)->name.c_str()) : MString();
}

MStatus MFnMesh::getUVSetNames(MStringArray& names) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    names.clear();
    for (const UVSet& set : b->uvSets().sets)
        names.append(MString(set.name.c_str()));
    return MS::kSuccess;
}

// the table

MStatus MFnMesh::getUVs(MFloatArray& u, MFloatArray& v, const MString* name) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    if (!set)
        return missing(b);
    float* us = room(u, set->uvs->size());
    float* vs = room(v, set->uvs->size());
    for (const F2& w : *set->uvs) {
        *us++ = w.u;
        *vs++ = w.v;
    }
    return MS::kSuccess;
}

MStatus MFnMesh::setUVs(const MFloatArray& u, const MFloatArray& v, const MString* name)
{
    MeshBody* b = write();
    const UVSet* set = setOf(b, name);
    if (!set)
        return missing(b);
    if (u.length() != v.length())
        return MS::kInvalidParameter;
    if (u.length() < set->uvs->size())
        return MS::kFailure;
    auto uvs = make<Buffer<F2>>(u.length());
    for (unsigned i = 0; i < u.length(); ++i)
        (*uvs)[i] = {u[i], v[i]};
    // moved UVs leave the lists of each vertex's UVs as they are
    b->writeUVSets().sets[size_t(uvSetOf(*b, name))].uvs = std::move(uvs);
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::getUV(int id, float& u, float& v, const MString* name) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    if (!set || !within(id, int(set->uvs->size())))
        return missing(b);
    u = (*set->uvs)[id].u;
    v = (*set->uvs)[id].v;
    return MS::kSuccess;
}

MStatus MFnMesh::setUV(int id, float u, float v, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? uvSetOf(*b, name) : -1;
    if (set < 0 || id < 0 || id > 1 << 28)
        return missing(b);
    Buffer<F2>& uvs = detach(b->writeUVSets().sets[size_t(set)].uvs);
    while (uvs.size() <= size_t(id))
        uvs.push({0, 0});
    uvs[id] = {u, v};
    target_->changed();
    return MS::kSuccess;
}

// assignment

MStatus MFnMesh::getPolygonUV(int face, int local, float& u, float& v, const MString* name) const
{
    int id = -1;
    const MStatus status = getPolygonUVid(face, local, id, name);
    return status ? getUV(id, u, v, name) : status;
}

MStatus MFnMesh::getPolygonUVid(int face, int local, int& id, const MString* name) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    const int corner = set ? cornerOf(*b, face, local) : -1;
    if (corner < 0)
        return missing(b);
    const int found = set->id(corner);
    if (found < 0)
        return MS::kFailure;
    id = found;
    return MS::kSuccess;
}

namespace {

/// True if every corner of every face gets an id.
bool allAssigned(const Topology& t, const MIntArray& counts, size_t idCount)
{
    if (idCount != size_t(t.cornerCount()))
        return false;
    const int* count = begin(counts);
    const int* offsets = t.offsets().data();
    int        differs = 0;
    for (int f = 0; f < t.faceCount(); ++f)
        differs |= (offsets[f + 1] - offsets[f]) ^ count[f];
    return !differs;
}

}  // namespace

MStatus MFnMesh::assignUVs(const MIntArray& counts, const MIntArray& ids, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? uvSetOf(*b, name) : -1;
    if (set < 0 || counts.length() != unsigned(b->faceCount()))
        return missing(b);
    const Topology& t = b->topology();
    if (allAssigned(t, counts, ids.length())) {
        if (!b->assignUVs(set, make<Buffer<int>>(begin(ids), ids.length())))
            return MS::kInvalidParameter;
        target_->changed();
        return MS::kSuccess;
    }
    auto assigned = make<Buffer<int>>(size_t(t.cornerCount()), -1);
    unsigned next = 0;
    for (int f = 0; f < t.faceCount(); ++f) {
        const int n = counts[unsigned(f)];
        if (n == 0)
            continue;
        if (n != t.faceSize(f) || unsigned(n) > ids.length() - next)
            return MS::kInvalidParameter;
        for (int k = 0; k < n; ++k)
            (*assigned)[t.first(f) + k] = ids[next++];
    }
    if (next != ids.length() || !b->assignUVs(set, std::move(assigned)))
        return MS::kInvalidParameter;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::assignUV(int face, int local, int id, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? uvSetOf(*b, name) : -1;
    const int corner = set < 0 ? -1 : cornerOf(*b, face, local);
    if (corner < 0 || !within(id, int(b->uvSets().sets[size_t(set)].uvs->size())))
        return missing(b);
    UVSet& s = b->writeUVSet(set);
    if (!s.ids)
        s.ids = make<Buffer<int>>(size_t(b->cornerCount()), -1);
    detach(s.ids)[corner] = id;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::getAssignedUVs(MIntArray& counts, MIntArray& ids, const MString* name) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    if (!set)
        return missing(b);
    const Topology& t = b->topology();
    int* count = room(counts, size_t(t.faceCount()));
    room(ids, 0);
    for (int f = 0; f < t.faceCount(); ++f) {
        count[f] = 0;
        for (int c = t.first(f); c < t.first(f + 1); ++c)
            if (const int id = set->id(c); id >= 0) {
                ids.append(id);
                ++count[f];
            }
    }
    return MS::kSuccess;
}

MStatus MFnMesh::clearUVs(const MString* name)
{
    MeshBody* b = write();
    const int set = b ? uvSetOf(*b, name) : -1;
    if (set < 0)
        return missing(b);
    UVSet& s = b->writeUVSet(set);
    s.uvs = make<Buffer<F2>>();
    s.ids = nullptr;
    target_->changed();
    return MS::kSuccess;
}

// places

MStatus MFnMesh::getPointAtUV(int face, MPoint& point, float2& uv, MSpace::Space space, const MString* name,
                              float tolerance) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    if (!set || !within(face, b->faceCount()))
        return missing(b);
    const Topology& t = b->topology();
    for (int c = t.first(face); c < t.first(face + 1); ++c)
        if (set->id(c) < 0)
            return MS::kFailure;

    const int*  corners = b->triangles().data() + 3 * firstTriangle(t, face);
    const int   count = t.faceSize(face) - 2;
    UVPlace     best;
    int         bestTriangle = -1;
    for (int k = 0; k < count && best.distanceSq > 0; ++k) {
        const int*    c = corners + 3 * k;
        const UVPlace place = placeInTriangle({uv[0], uv[1]}, (*set->uvs)[set->id(c[0])], (*set->uvs)[set->id(c[1])],
                                              (*set->uvs)[set->id(c[2])]);
        if (place.distanceSq < best.distanceSq) {
            best = place;
            bestTriangle = k;
        }
    }
    if (bestTriangle < 0 || !(best.distanceSq <= double(tolerance) * tolerance))
        return MS::kFailure;
    double p[3] = {};
    for (int k = 0; k < 3; ++k) {
        const float* vertex = b->points() + 3 * size_t(t.connects()[corners[3 * bestTriangle + k]]);
        for (int d = 0; d < 3; ++d)
            p[d] += best.weights[k] * vertex[d];
    }
    target_->matrix(space, *b).pointOut(p, p);
    point = MPoint(p[0], p[1], p[2]);
    return MS::kSuccess;
}

MStatus MFnMesh::getUvShellsIds(MIntArray& shells, unsigned int& count, const MString* name) const
{
    const MeshBody* b = read();
    const UVSet* set = setOf(b, name);
    if (!set)
        return missing(b);
    std::vector<int> parent(set->uvs->size());
    std::iota(parent.begin(), parent.end(), 0);
    const auto root = [&](int i) {
        for (; parent[size_t(i)] != i; i = parent[size_t(i)])
            parent[size_t(i)] = parent[size_t(parent[size_t(i)])];
        return i;
    };
    const Topology& t = b->topology();
    for (int f = 0; set->ids && f < t.faceCount(); ++f) {
        int first = -1;   // the UVs of a face belong together
        for (int c = t.first(f); c < t.first(f + 1); ++c)
            if (const int id = set->id(c); id >= 0) {
                if (first < 0)
                    first = id;
                const int a = root(first), z = root(id);
                parent[size_t(std::max(a, z))] = std::min(a, z);
            }
    }
    int* out = room(shells, parent.size());
    count = 0;
    for (size_t i = 0; i < parent.size(); ++i) {
        const int r = root(int(i));   // the smallest of its shell: numbered already, unless it is this one
        out[i] = size_t(r) == i ? int(count++) : out[r];
    }
    return MS::kSuccess;
}

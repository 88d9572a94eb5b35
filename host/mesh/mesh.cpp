#include "mesh/mesh.h"

#include <cmath>

#include "mesh/space.h"

namespace mirk {

Ref<Object> (*createMeshShape)(Object*, Ref<MeshData>, Ref<Object>&) = nullptr;

MeshBody::MeshBody()
    : points_(make<Buffer<float>>()), topology_(make<Topology>()), uvSets_(make<UVSets>()),
      colorSets_(make<ColorSets>()), surface_(make<Surface>()), shading_(make<Shading>()),
      tangents_(make<TangentCache>())
{
}

MeshBody::TangentCache::~TangentCache()
{
    for (Entry* e = head.load(std::memory_order_acquire); e;)
        delete std::exchange(e, e->next);
}

bool MeshBody::reset(Ref<Buffer<float>> points, Ref<Topology> topology)
{
    if (!points || !topology || points->size() != size_t(topology->vertexCount()) * 3)
        return false;
    dropSurface();
    points_ = std::move(points);
    topology_ = std::move(topology);
    uvSets_ = make<UVSets>();
    colorSets_ = make<ColorSets>();
    hard_ = nullptr;
    hardCorners_ = nullptr;
    locked_ = nullptr;
    return true;
}

void MeshBody::assign(const MeshBody& o, bool withGroups)
{
    points_ = o.points_;
    topology_ = o.topology_;
    uvSets_ = o.uvSets_;
    colorSets_ = o.colorSets_;
    hard_ = o.hard_;
    hardCorners_ = o.hardCorners_;
    locked_ = o.locked_;
    surface_ = o.surface_;
    shading_ = o.shading_;
    tangents_ = o.tangents_;
    if (withGroups && &o != this) {
        groups = o.groups;
        identity = o.identity;
        std::memcpy(matrix, o.matrix, sizeof matrix);
    }
}

bool MeshBody::replacePoints(Ref<Buffer<float>> points)
{
    if (!points || points->size() != points_->size())
        return false;
    dropSurface();
    points_ = std::move(points);
    return true;
}

void MeshBody::bakeMatrix()
{
    if (identity)
        return;
    const SpaceMatrix space(matrix);
    float* p = writePoints();
    for (int i = 0; i < vertexCount(); ++i, p += 3)
        space.pointOut(p, p);
    if (locked_) {
        LockedNormals& l = detach(locked_);
        for (F3& n : l.vertex)
            n = space.normalOut(n);
        for (F3& n : l.corner)
            n = space.normalOut(n);
    }
    identity = true;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            matrix[i][j] = i == j;
}

namespace {

template <class T>
Ref<Buffer<T>> grown(const Buffer<T>& from, size_t size, const T& fill)
{
    auto to = make<Buffer<T>>(from);
    to->resize(size);
    std::fill(to->begin() + from.size(), to->end(), fill);
    return to;
}

template <class T>
void grow(Buffer<T>& b, size_t size)
{
    const size_t old = b.size();
    if (!old)
        return;
    b.resize(size);
    std::fill(b.begin() + old, b.end(), T{});
}

}  // namespace

bool MeshBody::append(const float* newPoints, int newVertices, const int* face, int size)
{
    const int vertices = vertexCount() + newVertices;
    const size_t corners = size_t(cornerCount()) + size_t(size);
    std::vector<int> counts(size_t(faceCount()) + 1, size), connects(topology_->connects().begin(), topology_->connects().end());
    for (int f = 0; f < faceCount(); ++f)
        counts[size_t(f)] = topology_->faceSize(f);
    connects.insert(connects.end(), face, face + size);
    Ref<Topology> topology = Topology::create(vertices, counts.data(), counts.size(), connects.data(), connects.size());
    if (!topology)
        return false;
    dropSurface();
    hardByEdge();
    for (UVSet& s : detach(uvSets_).sets) {
        s.derived = make<UVSet::Tables>();
        if (s.ids)
            s.ids = grown(*s.ids, corners, -1);
    }
    for (size_t i = 0; i < colorSets_->sets.size(); ++i) {
        ColorSet& s = writeColorSet(int(i));
        if (s.layout != ColorSet::kIndexed) {
            toCornerColors(s);
            s.table = grown(*s.table, corners, unsetColor);
        } else if (s.ids) {
            s.ids = grown(*s.ids, corners, -1);
        }
    }
    topology_ = std::move(topology);
    points_ = grown(*points_, size_t(vertices) * 3, 0.0f);
    std::copy(newPoints, newPoints + size_t(newVertices) * 3, points_->end() - size_t(newVertices) * 3);
    if (hard_)   // old edges keep their numbers
        hard_ = grown(*hard_, size_t(edgeCount()), uint8_t(0));
    if (locked_) {
        LockedNormals& l = detach(locked_);
        grow(l.vertex, size_t(vertices));
        grow(l.vertexLocked, size_t(vertices));
        grow(l.corner, corners);
        grow(l.cornerLocked, corners);
    }
    return true;
}

const query::Tree& MeshBody::tree() const
{
    const Buffer<int>& corners = triangles();
    return surface_->tree.get([&] { return make<query::Tree>(points(), *topology_, corners); });
}

void MeshBody::dropTree() const
{
    if (treeBuilt())
        surface_ = make<Surface>();   // others that share the parts keep theirs
}

void MeshBody::bounds(float box[6]) const
{
    std::fill(box, box + 6, 0.0f);
    const float* p = points();
    bool         any = false;
    for (int i = 0; i < vertexCount(); ++i, p += 3) {
        // one that is not finite would hide where all the others are
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2]))
            continue;
        for (int k = 0; k < 3; ++k) {
            box[k] = any ? std::min(box[k], p[k]) : p[k];
            box[k + 3] = any ? std::max(box[k + 3], p[k]) : p[k];
        }
        any = true;
    }
}

const Buffer<uint8_t>& MeshBody::hardOfCorners() const
{
    return hardCorners_->edges.get([this] {
        auto flags = make<Buffer<uint8_t>>(size_t(edgeCount()), uint8_t(0));
        for (size_t c = 0; c < hardCorners_->corners.size(); ++c)
            (*flags)[size_t(topology_->edges().ofCorner[c])] |= hardCorners_->corners[c];
        return flags;
    });
}

void MeshBody::hardByEdge()
{
    if (!hardCorners_)
        return;
    hard_ = make<Buffer<uint8_t>>(hardOfCorners());
    hardCorners_ = nullptr;
}

void MeshBody::setEdgeSmooth(int edge, bool smooth)
{
    if (edgeSmooth(edge) == smooth)
        return;
    dropShading();
    hardByEdge();
    if (!hard_)
        hard_ = make<Buffer<uint8_t>>(size_t(edgeCount()), uint8_t(0));
    detach(hard_)[edge] = !smooth;
}

void MeshBody::setAllEdges(bool smooth)
{
    dropShading();
    hardCorners_ = nullptr;
    hard_ = smooth ? Ref<Buffer<uint8_t>>() : make<Buffer<uint8_t>>(size_t(edgeCount()), uint8_t(1));
}

void MeshBody::setHardCorners(Ref<HardCorners> flags)
{
    dropShading();
    hard_ = nullptr;
    hardCorners_ = std::move(flags);
}

bool MeshBody::normalLocked(int corner) const
{
    if (!locked_)
        return false;
    return (!locked_->cornerLocked.empty() && locked_->cornerLocked[corner])
           || (!locked_->vertexLocked.empty() && locked_->vertexLocked[topology_->connects()[corner]]);
}

namespace {

void makeRoom(Buffer<F3>& normals, Buffer<uint8_t>& flags, size_t n)
{
    if (flags.size() == n)
        return;
    normals.resize(n);
    flags.resize(n);
    std::fill(normals.begin(), normals.end(), F3{});
    std::fill(flags.begin(), flags.end(), uint8_t(0));
}

}  // namespace

void MeshBody::lockVertexNormals(const F3* normals, const int* vertices, size_t count)
{
    if (!count)
        return;
    dropShading();
    LockedNormals& l = detach(locked_);
    makeRoom(l.vertex, l.vertexLocked, size_t(vertexCount()));
    for (size_t i = 0; i < count; ++i) {
        l.vertex[vertices[i]] = normals[i];
        l.vertexLocked[vertices[i]] = 1;
        if (!l.cornerLocked.empty())
            for (int c : topology_->vertexCorners()[vertices[i]])
                l.cornerLocked[c] = 0;
    }
}

void MeshBody::lockCornerNormals(const F3* normals, const int* corners, size_t count)
{
    if (!count)
        return;
    dropShading();
    LockedNormals& l = detach(locked_);
    makeRoom(l.corner, l.cornerLocked, size_t(cornerCount()));
    for (size_t i = 0; i < count; ++i) {
        l.corner[corners[i]] = normals[i];
        l.cornerLocked[corners[i]] = 1;
    }
}

void MeshBody::unlockVertices(const int* vertices, size_t count)
{
    if (!locked_)
        return;
    dropShading();
    LockedNormals& l = detach(locked_);
    for (size_t i = 0; i < count; ++i) {
        if (!l.vertexLocked.empty())
            l.vertexLocked[vertices[i]] = 0;
        if (!l.cornerLocked.empty())
            for (int c : topology_->vertexCorners()[vertices[i]])
                l.cornerLocked[c] = 0;
    }
}

void MeshBody::unlockCorners(const int* corners, size_t count)
{
    if (!locked_ || !count)
        return;
    // a vertex's own normal is handed to its other corners first
    const CornerNormals now = cornerNormals();
    dropShading();
    LockedNormals& l = detach(locked_);
    makeRoom(l.corner, l.cornerLocked, size_t(cornerCount()));
    for (size_t i = 0; i < count && !l.vertexLocked.empty(); ++i) {
        const int v = topology_->connects()[corners[i]];
        if (!l.vertexLocked[v])
            continue;
        l.vertexLocked[v] = 0;
        for (int c : topology_->vertexCorners()[v]) {
            l.corner[c] = now.at(c);
            l.cornerLocked[c] = 1;
        }
    }
    for (size_t i = 0; i < count; ++i)
        l.cornerLocked[corners[i]] = 0;
}

Ref<Data> MeshData::share() const
{
    auto shell = make<MeshData>(make<MeshBody>(*body));
    shell->transformed = transformed;
    return shell;
}

Ref<GeometryData> MeshData::transformedView() const
{
    auto shell = make<MeshData>(body);
    shell->transformed = true;
    return shell;
}

}  // namespace mirk

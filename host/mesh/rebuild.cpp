#include "mesh/rebuild.h"

#include <algorithm>

#include "data/component.h"

namespace mirk {

namespace {

F2 mix(const F2& a, const F2& b, float t) { return {a.u + (b.u - a.u) * t, a.v + (b.v - a.v) * t}; }

MColor mix(const MColor& a, const MColor& b, float t)
{
    if (isUnset(a) || isUnset(b))
        return isUnset(a) ? b : a;
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
}

F3 mixUnit(const F3& a, const F3& b, float t) { return unit(Vec3(a.v) * (1.0 - double(t)) + Vec3(b.v) * double(t)); }

/// New elements of one kind: kept ones, then those with a source.
struct Sources
{
    int                            kept;
    const Buffer<int>&             list;
    const Buffer<MeshPlan::Blend>& blends;

    size_t size() const { return size_t(kept) + list.size(); }

    /// A table with one entry an element; `fill` where there is no source.
    template <class T, class Mix>
    void gather(const Buffer<T>& from, Buffer<T>& to, const T& fill, Mix&& mixed) const
    {
        to.resize(size());
        std::copy(from.begin(), from.begin() + kept, to.begin());
        T* out = to.begin() + kept;
        for (int s : list) {
            if (s >= 0)
                *out++ = from[size_t(s)];
            else if (s == MeshPlan::none)
                *out++ = fill;
            else {
                const MeshPlan::Blend& b = blends[size_t(MeshPlan::blendAt(s))];
                *out++ = mixed(from[size_t(b.a)], from[size_t(b.b)], b.t);
            }
        }
    }
};

/// Carries a table of values and the ids by which corners name them.
template <class T>
class IndexedTable
{
public:
    IndexedTable(const Sources& corners, const Buffer<int>& connects, size_t vertexCount)
        : corners_(corners), connects_(connects), vertexCount_(vertexCount)
    {
    }

    /// `allKept`: all old corners are still there, so that no value becomes useless.
    void carry(Ref<Buffer<T>>& table, Ref<Buffer<int>>& ids, bool allKept)
    {
        const Buffer<int>& from = *ids;
        auto               to = make<Buffer<int>>(corners_.size());
        std::copy(from.begin(), from.begin() + corners_.kept, to->begin());
        blended_.clear();
        int* out = to->begin() + corners_.kept;
        for (size_t i = 0; i < corners_.list.size(); ++i) {
            const int s = corners_.list[i];
            *out++ = s >= 0 ? from[size_t(s)] : s == MeshPlan::none ? -1 : ends(from, s, int(i));
        }
        const size_t old = table->size();
        Buffer<T>    values(table->data(), blended_.empty() ? 0 : old);
        if (!allKept)
            compact(table, *to);
        if (!blended_.empty())
            blend(values, table, *to);
        ids = std::move(to);
    }

private:
    struct Blended { int corner, a, b; float t; };   // of the corner the place in the list
    struct Known { int a, b; float t; int id, next; };

    /// The id if both ends have the same, -1 if one has none; else a note for later.
    int ends(const Buffer<int>& from, int source, int corner)
    {
        const MeshPlan::Blend& b = corners_.blends[size_t(MeshPlan::blendAt(source))];
        const int              ia = from[size_t(b.a)], ib = from[size_t(b.b)];
        if (ia < 0 || ib < 0)
            return -1;
        if (ia != ib)
            blended_.push({corner, ia, ib, b.t});
        return ia == ib ? ia : -1;
    }

    /// Drops the values that no corner names; the others keep their order.
    static void compact(Ref<Buffer<T>>& table, Buffer<int>& ids)
    {
        Buffer<int> place(table->size(), 0);
        for (int id : ids)
            if (id >= 0)
                place[size_t(id)] = 1;
        int used = 0;
        for (int& p : place)
            p = p ? used++ : -1;
        if (size_t(used) == table->size())
            return;
        auto smaller = make<Buffer<T>>(size_t(used));
        for (size_t i = 0; i < place.size(); ++i)
            if (place[i] >= 0)
                (*smaller)[size_t(place[i])] = (*table)[i];
        for (int& id : ids)
            if (id >= 0)
                id = place[size_t(id)];
        table = std::move(smaller);
    }

    /// One new value for all corners of a vertex between the same two.
    void blend(const Buffer<T>& values, Ref<Buffer<T>>& table, Buffer<int>& ids)
    {
        Buffer<int>   head(vertexCount_, -1);
        Buffer<Known> known;
        Buffer<T>&    out = detach(table);
        out.reserve(out.size() + blended_.size());
        for (const Blended& b : blended_) {
            int& first = head[size_t(connects_[size_t(b.corner)])];
            int  k = first;
            while (k >= 0 && (known[size_t(k)].a != b.a || known[size_t(k)].b != b.b || known[size_t(k)].t != b.t))
                k = known[size_t(k)].next;
            if (k < 0) {
                k = int(known.size());
                known.push({b.a, b.b, b.t, int(out.size()), first});
                out.push(mix(values[size_t(b.a)], values[size_t(b.b)], b.t));
                first = k;
            }
            ids[size_t(corners_.kept + b.corner)] = known[size_t(k)].id;
        }
    }

    const Sources&     corners_;
    const Buffer<int>& connects_;
    size_t             vertexCount_;
    Buffer<Blended>    blended_;
};

}  // namespace

/// The parts of a mesh, one after the other.
struct MeshRebuild
{
    const MeshBody& old;
    const MeshPlan& plan;
    MeshBody&       to;
    Sources         vertices{plan.keptVertices, plan.vertexSource, plan.vertexBlends};
    Sources         corners{plan.keptCorners, plan.cornerSource, plan.cornerBlends};

    bool allCornersKept() const { return plan.keptCorners == old.cornerCount(); }

    void surface(Ref<Topology> topology)
    {
        to.points_ = plan.points;
        to.topology_ = std::move(topology);
        if (plan.border)
            to.topology_->publishBorder(plan.border);
    }

    void uvSets()
    {
        to.uvSets_ = make<UVSets>(*old.uvSets_);
        IndexedTable<F2> table(corners, plan.connects, vertices.size());
        for (UVSet& s : to.uvSets_->sets) {
            s.derived = make<UVSet::Tables>();
            if (s.ids)
                table.carry(s.uvs, s.ids, allCornersKept());
        }
    }

    void colorSets()
    {
        if (old.colorSets_->sets.empty()) {
            to.colorSets_ = old.colorSets_;
            return;
        }
        to.colorSets_ = make<ColorSets>(*old.colorSets_);
        IndexedTable<MColor> indexed(corners, plan.connects, vertices.size());
        const auto mixed = [](const MColor& a, const MColor& b, float t) { return mix(a, b, t); };
        for (ColorSet& s : to.colorSets_->sets) {
            s.derived = make<ColorSet::Tables>();
            if (s.layout == ColorSet::kIndexed) {
                if (s.ids)
                    indexed.carry(s.table, s.ids, allCornersKept());
                continue;
            }
            auto table = make<Buffer<MColor>>();
            (s.layout == ColorSet::kPerVertex ? vertices : corners).gather(*s.table, *table, unsetColor, mixed);
            s.table = std::move(table);
        }
    }

    /// Normals and their flags; a normal that is not locked is zero.
    static void locks(const Sources& sources, const Buffer<F3>& normals, const Buffer<uint8_t>& flags, Buffer<F3>& toNormals,
                      Buffer<uint8_t>& toFlags)
    {
        if (flags.empty())
            return;
        sources.gather(normals, toNormals, F3{}, mixUnit);
        sources.gather(flags, toFlags, uint8_t(0), [](uint8_t a, uint8_t b, float) { return uint8_t(a & b); });
    }

    void lockedNormals()
    {
        if (!old.locked_)
            return;
        auto l = make<LockedNormals>();
        locks(vertices, old.locked_->vertex, old.locked_->vertexLocked, l->vertex, l->vertexLocked);
        locks(corners, old.locked_->corner, old.locked_->cornerLocked, l->corner, l->cornerLocked);
        freeNewCorners(*l);
        to.locked_ = std::move(l);
    }

    /// At a locked vertex that a new corner has come to, the others take the lock over.
    void freeNewCorners(LockedNormals& l) const
    {
        if (l.vertexLocked.empty())
            return;
        const Buffer<int>& connects = to.topology().connects();
        const auto isNew = [this](size_t c) {
            return c >= size_t(plan.keptCorners) && plan.cornerSource[c - size_t(plan.keptCorners)] == MeshPlan::none;
        };
        Buffer<uint8_t> freed;
        for (size_t c = size_t(plan.keptCorners); c < connects.size(); ++c)
            if (isNew(c) && l.vertexLocked[size_t(connects[c])]) {
                if (freed.empty()) {
                    freed.resize(l.vertexLocked.size());
                    std::fill(freed.begin(), freed.end(), uint8_t(0));
                }
                freed[size_t(connects[c])] = 1;
            }
        if (freed.empty())
            return;
        if (l.cornerLocked.empty()) {
            l.corner.resize(connects.size());
            l.cornerLocked.resize(connects.size());
            std::fill(l.corner.begin(), l.corner.end(), F3{});
            std::fill(l.cornerLocked.begin(), l.cornerLocked.end(), uint8_t(0));
        }
        for (size_t c = 0; c < connects.size(); ++c)
            if (const size_t v = size_t(connects[c]); freed[v] && !isNew(c) && !l.cornerLocked[c]) {
                l.corner[c] = l.vertex[v];
                l.cornerLocked[c] = 1;
            }
        for (size_t v = 0; v < freed.size(); ++v)
            l.vertexLocked[v] = l.vertexLocked[v] && !freed[v];
    }

    void hardEdges()
    {
        if (!old.anyHard() && plan.hard.empty())
            return;
        auto h = make<HardCorners>();
        h->corners.resize(corners.size());
        uint8_t* flags = h->corners.data();
        std::fill(flags, flags + corners.size(), uint8_t(0));
        if (old.anyHard()) {
            if (old.hardCorners_)
                carryHard([from = old.hardCorners_->corners.data()](int c) { return from[c]; }, flags);
            else
                carryHard([this, of = old.topology().edges().ofCorner.data()](int c) { return (*old.hard_)[size_t(of[c])]; }, flags);
        }
        for (int c : plan.hard)
            flags[c] = 1;
        if (!plan.hard.empty() || std::find(flags, flags + corners.size(), uint8_t(1)) != flags + corners.size())
            to.hardCorners_ = std::move(h);
    }

    template <class Hard>
    void carryHard(Hard&& hard, uint8_t* flags) const
    {
        for (int c = 0; c < plan.keptCorners; ++c)
            flags[c] = hard(c);
        flags += plan.keptCorners;
        for (int e : plan.edgeSource)
            *flags++ = e >= 0 ? hard(e) : uint8_t(0);
    }

    void faceMembers(const Component& from, Component& members) const
    {
        for (int f = 0; f < to.faceCount(); ++f) {
            const int source = f < plan.keptFaces ? f : plan.faceSource[size_t(f - plan.keptFaces)];
            if (source >= 0 && from.has(source))
                members.indices.push_back(f);
        }
    }

    void vertexMembers(const Component& from, Component& members) const
    {
        Buffer<uint8_t> was(size_t(old.vertexCount())), is;
        for (int v = 0; v < old.vertexCount(); ++v)
            was[size_t(v)] = from.has(v);
        vertices.gather(was, is, uint8_t(0), [](uint8_t a, uint8_t b, float) { return uint8_t(a & b); });
        for (size_t v = 0; v < is.size(); ++v)
            if (is[v])
                members.indices.push_back(int(v));
    }

    void edgeMembers(const Component& from, Component& members) const
    {
        const EdgeTable &before = old.topology().edges(), &now = to.topology().edges();
        Buffer<uint8_t>  in(size_t(now.count()), 0);
        for (int c = 0; c < to.cornerCount(); ++c) {
            const int source = c < plan.keptCorners ? c : plan.edgeSource[size_t(c - plan.keptCorners)];
            if (source >= 0 && from.has(before.ofCorner[size_t(source)]))
                in[size_t(now.ofCorner[size_t(c)])] = 1;
        }
        for (size_t e = 0; e < in.size(); ++e)
            if (in[e])
                members.indices.push_back(int(e));
    }

    void vertexFaceMembers(const Component& from, Component& members) const
    {
        for (size_t i = 0; i + 1 < from.indices.size(); i += 2)
            if (from.indices[i] < plan.keptVertices && from.indices[i + 1] < plan.keptFaces)
                members.indices.insert(members.indices.end(), {from.indices[i], from.indices[i + 1]});
    }

    Ref<Component> members(const Component& from) const
    {
        const bool     face = from.apiType() == MFn::kMeshPolygonComponent, vertex = from.apiType() == MFn::kMeshVertComponent;
        const bool     edge = from.apiType() == MFn::kMeshEdgeComponent, corner = from.apiType() == MFn::kMeshVtxFaceComponent;
        Ref<Component> c = copyComponent(from);
        if (from.complete) {
            if (from.completeCount[0] > 0 && (face || vertex || edge))
                c->completeCount[0] = face ? to.faceCount() : vertex ? to.vertexCount() : to.edgeCount();
            return c;
        }
        if (!face && !vertex && !edge && !corner)
            return c;
        c->indices.clear();
        if (face)
            faceMembers(from, *c);
        else if (vertex)
            vertexMembers(from, *c);
        else if (edge)
            edgeMembers(from, *c);
        else
            vertexFaceMembers(from, *c);
        c->changed();
        return c;
    }

    void groups()
    {
        to.identity = old.identity;
        std::memcpy(to.matrix, old.matrix, sizeof to.matrix);
        to.groups.reserve(old.groups.size());
        for (const GeometryBody::Group& g : old.groups)
            to.groups.push_back({g.id, g.component ? members(*g.component) : g.component});
    }
};

namespace {

bool fits(const MeshBody& old, const MeshPlan& plan)
{
    const size_t corners = plan.connects.size(), faces = plan.counts.size();
    return plan.points && plan.points->size() == 3 * (size_t(plan.keptVertices) + plan.vertexSource.size())
           && corners == plan.cornerSource.size() && corners == plan.edgeSource.size() && faces == plan.faceSource.size()
           && plan.keptVertices >= 0 && plan.keptVertices <= old.vertexCount() && plan.keptFaces >= 0
           && plan.keptFaces <= old.faceCount() && plan.keptCorners == old.topology().first(plan.keptFaces);
}

}  // namespace

Ref<MeshBody> rebuild(const MeshBody& old, MeshPlan&& plan, std::string* why)
{
    if (!fits(old, plan)) {
        if (why)
            *why = "the sources do not fit the elements";
        return {};
    }
    const int  vertices = int(plan.points->size() / 3);
    const int *counts = plan.counts.data(), *connects = plan.connects.data();
    Ref<Topology> topology = plan.keptFaces
        ? Topology::extended(old.topology(), plan.keptFaces, vertices, counts, plan.counts.size(), connects, plan.connects.size(), why)
        : Topology::create(vertices, counts, plan.counts.size(), connects, plan.connects.size(), why);
    if (!topology)
        return {};
    auto body = make<MeshBody>();
    MeshRebuild part{old, plan, *body};
    part.surface(std::move(topology));
    part.uvSets();
    part.colorSets();
    part.lockedNormals();
    part.hardEdges();
    part.groups();
    return body;
}

}  // namespace mirk

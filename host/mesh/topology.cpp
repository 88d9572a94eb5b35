#include "mesh/topology.h"

#include <climits>
#include <cstring>
#include <mutex>
#include <vector>

namespace mirk {

namespace {

/// Lists of item numbers by key: a counting sort, so that each list is ascending. Keys outside [0, n) do not occur.
template <class Key>
Ref<Lists> listsByKey(int n, size_t itemCount, int keysPerItem, Key key)
{
    auto lists = make<Lists>();
    lists->first.resize(size_t(n) + 1);
    int* first = lists->first.data();
    std::fill(first, first + n + 1, 0);
    for (size_t i = 0; i < itemCount; ++i)
        for (int k = 0; k < keysPerItem; ++k)
            ++first[key(i, k) + 1];
    for (int i = 0; i < n; ++i)
        first[i + 1] += first[i];
    lists->items.resize(itemCount * size_t(keysPerItem));
    Buffer<int> cursor(lists->first.data(), size_t(n));
    for (size_t i = 0; i < itemCount; ++i)
        for (int k = 0; k < keysPerItem; ++k)
            lists->items[size_t(cursor[key(i, k)]++)] = int(i);
    return lists;
}

/// Edge numbers by their two vertices: open addressing, at most half full. The first place to look is near that of the
/// neighbouring vertices; the next ones are scattered, so that a vertex of many edges costs no more than others.
class EdgeHash
{
public:
    EdgeHash(size_t most, int vertexCount)
    {
        size_t size = 16;
        while (size < most * 2)
            size *= 2;
        slots_.resize(size);
        std::fill(slots_.begin(), slots_.end(), -1);
        mask_ = size - 1;
        while ((size_t(vertexCount) << (shift_ + 1)) <= size && shift_ < 8)
            ++shift_;
    }
    /// The slot of edge (a, b): holds its number, or -1 for the caller to fill.
    int& slot(const Buffer<EdgeTable::Edge>& edges, int a, int b)
    {
        const uint64_t low = uint64_t(std::min(a, b)), high = uint64_t(std::max(a, b));
        const uint64_t mixed = (low << 32 | high) * 0x9e3779b97f4a7c15ull;
        const size_t step = size_t(mixed >> 20) | 1;   // odd: reaches all slots
        size_t i = ((low << shift_) + (mixed >> (64 - shift_ - 1)) / 2) & mask_;
        for (;; i = (i + step) & mask_) {
            const int e = slots_[i];
            if (e < 0 || (edges[e].a == a && edges[e].b == b) || (edges[e].a == b && edges[e].b == a))
                return slots_[i];
        }
    }

private:
    Buffer<int> slots_;
    size_t      mask_;
    unsigned    shift_ = 0;
};

Ref<EdgeTable> buildEdges(const Topology& t)
{
    auto table = make<EdgeTable>();
    table->ofCorner.resize(size_t(t.cornerCount()));
    EdgeHash hash(size_t(t.cornerCount()), t.vertexCount());
    table->edges.reserve(size_t(t.cornerCount()) / 2 + size_t(t.cornerCount()) / 16);
    for (int f = 0; f < t.faceCount(); ++f)
        for (int c = t.first(f); c < t.first(f + 1); ++c) {
            const int a = t.connects()[c], b = t.connects()[t.next(c, f)];
            int& slot = hash.slot(table->edges, a, b);
            if (slot < 0) {
                slot = table->count();
                table->edges.push({a, b});
            }
            table->ofCorner[c] = slot;
        }
    return table;
}

bool refuse(std::string* why, std::string reason)
{
    if (why)
        *why = std::move(reason);
    return false;
}

constexpr size_t kRun = 1024;   // compared without branches

/// True if all of `n` numbers pass `bad(i) == 0`.
template <class Bad>
bool none(size_t n, Bad bad)
{
    size_t i = 0;
    for (; i + kRun <= n; i += kRun) {
        unsigned any = 0;
        for (size_t k = 0; k < kRun; ++k)
            any |= bad(i + k);
        if (any)
            return false;
    }
    for (; i < n; ++i)
        if (bad(i))
            return false;
    return true;
}

bool check(int vertexCount, const int* counts, size_t faceCount, const int* connects, size_t cornerCount,
           std::string* why)
{
    if (vertexCount < 0 || faceCount > INT_MAX - 1 || cornerCount > INT_MAX - 1)
        return refuse(why, "counts out of range");
    size_t total = 0;
    for (size_t f = 0; f < faceCount; ++f) {
        if (counts[f] < 3)
            return refuse(why, "face " + std::to_string(f) + " has " + std::to_string(counts[f]) + " vertices");
        total += size_t(counts[f]);
    }
    if (total != cornerCount)
        return refuse(why, "the faces have " + std::to_string(total) + " vertices, but " + std::to_string(cornerCount)
                               + " are given");
    if (none(cornerCount, [&](size_t c) { return unsigned(unsigned(connects[c]) >= unsigned(vertexCount)); }))
        return true;
    for (size_t f = 0, c = 0; f < faceCount; ++f)
        for (const size_t end = c + size_t(counts[f]); c < end; ++c)
            if (connects[c] < 0 || connects[c] >= vertexCount)
                return refuse(why, "face " + std::to_string(f) + " names vertex " + std::to_string(connects[c]) + " of "
                                       + std::to_string(vertexCount));
    return true;
}

/// Large topologies in use. A mesh that is made again with the same faces gets the same topology, and with it all that
/// was derived from it. Those that nobody else holds go when the next topology is made.
class InUse
{
public:
    Ref<Topology> find(int vertexCount, const int* counts, size_t faceCount, const int* connects, size_t cornerCount)
    {
        std::lock_guard lock(mutex_);
        std::erase_if(held_, [](const Ref<Topology>& t) { return t->unique(); });
        if (cornerCount < kLarge)
            return {};
        for (const Ref<Topology>& t : held_) {
            const int* offsets = t->offsets().data();
            if (t->vertexCount() == vertexCount && size_t(t->faceCount()) == faceCount
                && size_t(t->cornerCount()) == cornerCount
                && none(faceCount, [&](size_t f) { return unsigned((offsets[f + 1] - offsets[f]) ^ counts[f]); })
                && std::memcmp(t->connects().data(), connects, cornerCount * sizeof(int)) == 0)
                return t;
        }
        return {};
    }
    void add(const Ref<Topology>& t)
    {
        if (size_t(t->cornerCount()) < kLarge)
            return;
        std::lock_guard lock(mutex_);
        if (held_.size() == kMost)
            held_.erase(held_.begin());
        held_.push_back(t);
    }

private:
    static constexpr size_t kLarge = 1 << 14, kMost = 8;   // corners; topologies

    std::mutex                 mutex_;
    std::vector<Ref<Topology>> held_;
};

InUse& inUse()
{
    static InUse* all = new InUse;   // never destroyed: static meshes may outlive it
    return *all;
}

}  // namespace

Topology::Topology() : offsets_(1, 0) {}

Ref<Topology> Topology::create(int vertexCount, const int* counts, size_t faceCount, const int* connects,
                               size_t cornerCount, std::string* why)
{
    if (Ref<Topology> same = inUse().find(vertexCount, counts, faceCount, connects, cornerCount))
        return same;
    Ref<Topology> t = extended(Topology(), 0, vertexCount, counts, faceCount, connects, cornerCount, why);
    if (t)
        inUse().add(t);
    return t;
}

Ref<Topology> Topology::extended(const Topology& base, int baseFaces, int vertexCount, const int* counts, size_t faceCount,
                                 const int* connects, size_t cornerCount, std::string* why)
{
    if (!check(vertexCount, counts, faceCount, connects, cornerCount, why))
        return {};
    const size_t baseCorners = size_t(base.first(baseFaces)), faces = size_t(baseFaces) + faceCount;
    if (vertexCount < base.vertexCount() && baseFaces) {
        refuse(why, "faces are kept, but not all vertices");
        return {};
    }
    if (faces > INT_MAX - 1 || baseCorners + cornerCount > INT_MAX - 1) {
        refuse(why, "counts out of range");
        return {};
    }
    auto t = make<Topology>();
    t->vertexCount_ = vertexCount;
    t->offsets_.resize(faces + 1);
    std::copy_n(base.offsets_.data(), baseFaces + 1, t->offsets_.data());
    for (size_t f = 0; f < faceCount; ++f)
        t->offsets_[size_t(baseFaces) + f + 1] = t->offsets_[size_t(baseFaces) + f] + counts[f];
    t->connects_.resize(baseCorners + cornerCount);
    std::copy_n(base.connects_.data(), baseCorners, t->connects_.data());
    std::copy_n(connects, cornerCount, t->connects_.data() + baseCorners);
    return t;
}

int Topology::cornerAt(int face, int vertex) const
{
    for (int c = first(face); c < first(face + 1); ++c)
        if (connects_[c] == vertex)
            return c;
    return -1;
}

const EdgeTable& Topology::edges() const
{
    return edges_.get([this] { return buildEdges(*this); });
}

const Buffer<int>& Topology::cornerFaces() const
{
    return cornerFaces_.get([this] {
        auto faces = make<Buffer<int>>(connects_.size());
        for (int f = 0; f < faceCount(); ++f)
            std::fill(faces->data() + first(f), faces->data() + first(f + 1), f);
        return faces;
    });
}

const Lists& Topology::vertexCorners() const
{
    return vertexCorners_.get([this] {
        return listsByKey(vertexCount_, connects_.size(), 1, [this](size_t c, int) { return connects_[c]; });
    });
}

const Lists& Topology::vertexEdges() const
{
    return vertexEdges_.get([this] {
        const auto& e = edges().edges;
        return listsByKey(vertexCount_, e.size(), 2, [&e](size_t i, int k) { return k ? e[i].b : e[i].a; });
    });
}

const Lists& Topology::edgeCorners() const
{
    return edgeCorners_.get([this] {
        const EdgeTable& e = edges();
        return listsByKey(e.count(), e.ofCorner.size(), 1, [&e](size_t c, int) { return e.ofCorner[c]; });
    });
}

const Buffer<int>& Topology::border() const
{
    return border_.get([this] {
        const EdgeTable& e = edges();
        Buffer<int> uses(size_t(e.count()), 0);
        for (int edge : e.ofCorner)
            ++uses[size_t(edge)];
        auto corners = make<Buffer<int>>();
        for (int c = 0; c < cornerCount(); ++c)
            if (uses[size_t(e.ofCorner[size_t(c)])] == 1)
                corners->push(c);
        return corners;
    });
}

const FaceShells& Topology::shells() const
{
    return shells_.get([this] {
        const size_t n = size_t(vertexCount_);
        Buffer<int>  root(n), number(n, -1);
        for (size_t v = 0; v < n; ++v)
            root[v] = int(v);
        const auto find = [&root](int v) {
            while (root[size_t(v)] != v)
                v = root[size_t(v)] = root[size_t(root[size_t(v)])];
            return v;
        };
        for (int f = 0; f < faceCount(); ++f)
            for (int v : face(f))
                root[size_t(find(v))] = find(face(f)[0]);
        auto shells = make<FaceShells>();
        int  count = 0;
        shells->ofFace.resize(size_t(faceCount()));
        for (int f = 0; f < faceCount(); ++f) {
            int& n = number[size_t(find(face(f)[0]))];
            if (n < 0)
                n = count++;
            shells->ofFace[size_t(f)] = n;
        }
        const Buffer<int>& ofFace = shells->ofFace;
        shells->faces = listsByKey(count, ofFace.size(), 1, [&ofFace](size_t f, int) { return ofFace[f]; });
        return shells;
    });
}

int Topology::edgeBetween(int a, int b) const
{
    if (a < 0 || a >= vertexCount_)
        return -1;
    const EdgeTable& table = edges();
    for (int e : vertexEdges()[a])
        if (table.edges[e].a == b || table.edges[e].b == b)
            if (table.edges[e].a != table.edges[e].b || a == b)
                return e;
    return -1;
}

}  // namespace mirk

// Clusters by grids of cells: four distances wide, with all pairs of close cells, while few points share a cell; else so
// small that the points of one cell always belong together, which makes dense points cost no more than sparse ones. Cells
// are named by doubles: far out, where a cell is less than the step between two floats, only equal coordinates share one,
// as it should be.
#include "mesh/merge.h"

#include <array>
#include <bit>
#include <cmath>

#include "mesh/face_plan.h"

namespace mirk {

namespace {

struct CellKey
{
    double x, y, z;
    bool operator==(const CellKey&) const = default;
};

CellKey plus(const CellKey& k, const int step[3]) { return {k.x + step[0], k.y + step[1], k.z + step[2]}; }

/// Cells with the points in them as chains: open addressing, at most half full.
class CellTable
{
public:
    struct Slot
    {
        CellKey key;
        int     head = -1, count = 0;
    };

    explicit CellTable(size_t most)
    {
        size_t size = 16;
        while (size < most * 2)
            size *= 2;
        slots.resize(size);
    }
    Slot& at(const CellKey& key) { return slots[place(key)]; }

    /// Puts a point into its cell; the one that was there last, or -1.
    int add(const CellKey& key, int point)
    {
        Slot&     s = at(key);
        const int last = s.head;
        s.key = key;
        s.head = point;
        ++s.count;
        return last;
    }

    std::vector<Slot> slots;

private:
    size_t place(const CellKey& key) const
    {
        uint64_t h = std::bit_cast<uint64_t>(key.x) * 0x9e3779b97f4a7c15ull;
        h = (h ^ (h >> 29) ^ std::bit_cast<uint64_t>(key.y)) * 0xbf58476d1ce4e5b9ull;
        h = (h ^ (h >> 32) ^ std::bit_cast<uint64_t>(key.z)) * 0x94d049bb133111ebull;
        size_t i = size_t(h ^ (h >> 31)) & (slots.size() - 1);
        while (slots[i].head >= 0 && !(slots[i].key == key))
            i = (i + 1) & (slots.size() - 1);
        return i;
    }
};

class Clusters
{
public:
    Clusters(const double* points, int count) : points_(points), root_(size_t(count))
    {
        for (int i = 0; i < count; ++i)
            root_[size_t(i)] = i;
    }

    void joinEqual()
    {
        CellTable cells(root_.size());
        for (int i = 0; i < count(); ++i) {
            const double* p = at(i);
            const int     other = finite(i) ? cells.add({p[0] + 0.0, p[1] + 0.0, p[2] + 0.0}, i) : -1;   // -0 is 0
            if (other >= 0)
                join(i, other);
        }
    }

    void joinNear(double distance)
    {
        const double     wide = distance * 4, limit = distance * (1 + 1e-6);
        CellTable        cells(root_.size());
        std::vector<int> next(root_.size(), -1);
        for (int i = 0; i < count(); ++i)
            if (finite(i))
                next[size_t(i)] = cells.add(key(i, wide), i);
        double pairs = 0;
        for (const CellTable::Slot& s : cells.slots)
            pairs += double(s.count) * s.count;
        if (pairs > 32.0 * count())
            return joinDense(cells, wide, distance, limit * limit);
        for (int i = 0; i < count(); ++i)
            closeCells(cells, i, wide, [&](const CellTable::Slot& s) {
                for (int j = s.head; j >= 0; j = next[size_t(j)])
                    if (j < i && distanceSq(i, j) <= limit * limit)
                        join(i, j);
            });
    }

    /// Empty if nothing was joined.
    Buffer<int> result()
    {
        bool any = false;
        for (int i = 0; i < count(); ++i)
            any |= find(i) != i;
        for (int i = 0; any && i < count(); ++i)
            root_[size_t(i)] = find(i);
        return any ? Buffer<int>(root_) : Buffer<int>();
    }

private:
    int           count() const { return int(root_.size()); }
    const double* at(int i) const { return points_ + 3 * size_t(i); }
    bool          finite(int i) const   // and small enough for a cell number
    {
        return std::abs(at(i)[0]) < 1e200 && std::abs(at(i)[1]) < 1e200 && std::abs(at(i)[2]) < 1e200;
    }
    CellKey       key(int i, double cell) const
    {
        const double* p = at(i);
        return {std::floor(p[0] / cell) + 0.0, std::floor(p[1] / cell) + 0.0, std::floor(p[2] / cell) + 0.0};
    }

    int find(int i)
    {
        while (root_[size_t(i)] != i)
            i = root_[size_t(i)] = root_[size_t(root_[size_t(i)])];
        return i;
    }
    void join(int a, int b)
    {
        a = find(a), b = find(b);
        root_[size_t(std::max(a, b))] = std::min(a, b);
    }

    double distanceSq(int i, int j) const
    {
        const double x = at(i)[0] - at(j)[0], y = at(i)[1] - at(j)[1], z = at(i)[2] - at(j)[2];
        return x * x + y * y + z * z;
    }

    /// The point's own cell, and those beyond the sides that it is closer to than a quarter of a cell.
    template <class Visit>
    void closeCells(CellTable& cells, int i, double cell, Visit&& visit)
    {
        if (!finite(i))
            return;
        const CellKey own = key(i, cell);
        int           side[3];
        for (int k = 0; k < 3; ++k) {
            const double part = at(i)[k] / cell - (&own.x)[k];
            side[k] = part < 0.26 ? -1 : part > 0.74 ? 1 : 0;
        }
        for (int mask = 0; mask < 8; ++mask) {
            const int step[3] = {mask & 1 ? side[0] : 0, mask & 2 ? side[1] : 0, mask & 4 ? side[2] : 0};
            bool      wanted = true;
            for (int k = 0; k < 3; ++k)
                wanted &= !(mask >> k & 1) || side[k] != 0;
            const CellKey other = plus(own, step);
            if (!wanted || (mask && other == own))
                continue;
            if (const CellTable::Slot& s = cells.at(other); s.head >= 0)
                visit(s);
        }
    }

    /// Where many points share a cell: cells so small that all points of one belong together.
    void joinDense(CellTable& wideCells, double wide, double distance, double limitSq)
    {
        std::vector<int> candidates;
        for (int i = 0; i < count(); ++i) {
            int near = 0;
            closeCells(wideCells, i, wide, [&](const CellTable::Slot& s) { near += s.count; });
            if (near > 1)
                candidates.push_back(i);
        }
        const double     cell = distance / 1.73206;   // its diagonal is the distance
        CellTable        cells(candidates.size());
        std::vector<int> next(root_.size(), -1);
        for (int i : candidates)
            if (const int other = next[size_t(i)] = cells.add(key(i, cell), i); other >= 0)
                join(i, other);
        for (const bool far : {false, true}) {   // what near cells have joined needs no search
            std::vector<std::array<int, 3>> steps;
            for (int x = 0; x <= 2; ++x)
                for (int y = -2; y <= 2; ++y)
                    for (int z = -2; z <= 2; ++z)
                        if ((x > 0 || y > 0 || (y == 0 && z > 0)) && (std::max({x, std::abs(y), std::abs(z)}) == 2) == far)
                            steps.push_back({x, y, z});
            for (const CellTable::Slot& s : cells.slots)
                for (size_t k = 0; k < steps.size() && s.head >= 0; ++k) {
                    const int other = cells.at(plus(s.key, steps[k].data())).head;
                    if (other >= 0 && find(other) != find(s.head) && anyPair(s.head, other, limitSq, next))
                        join(s.head, other);
                }
        }
    }

    bool anyPair(int a, int b, double limitSq, const std::vector<int>& next) const
    {
        for (int i = a; i >= 0; i = next[size_t(i)])
            for (int j = b; j >= 0; j = next[size_t(j)])
                if (distanceSq(i, j) <= limitSq)
                    return true;
        return false;
    }

    const double* points_;
    Buffer<int>   root_;
};

/// A corner of a face under way: its edge may start at a later corner, where edges between have shrunk.
struct MergedCorner { int vertex, source, edge; };

/// Writes the faces of a mesh over merged vertices.
class MergedFaces
{
public:
    MergedFaces(const MeshBody& mesh, const Buffer<int>& root)
        : mesh_(mesh), root_(root), plan_(mesh), seen_(size_t(mesh.vertexCount()), -1)
    {
    }

    void add(int f)
    {
        const Topology& t = mesh_.topology();
        corners_.clear();
        for (int c = t.first(f); c < t.first(f + 1); ++c) {
            const int v = root_[size_t(t.connects()[size_t(c)])];
            if (!corners_.empty() && corners_.back().vertex == v)
                corners_.back().edge = c;
            else
                corners_.push_back({v, c, c});
        }
        while (corners_.size() > 1 && corners_.back().vertex == corners_.front().vertex)
            corners_.pop_back();
        bool repeats = false;
        for (const MergedCorner& c : corners_) {
            repeats |= seen_[size_t(c.vertex)] == f;
            seen_[size_t(c.vertex)] = f;
        }
        repeats ? split(f) : emit(f, corners_);
    }

    FacePlan& plan() { return plan_; }

private:
    void emit(int f, std::span<const MergedCorner> loop)
    {
        if (loop.size() < 3)
            return;
        for (const MergedCorner& c : loop)
            plan_.corner(c.vertex, c.source, c.edge);
        plan_.endFace(f);
    }

    /// Each time the face comes back to a vertex, what lies between is a face of its own.
    void split(int f)
    {
        std::vector<MergedCorner> path;
        spot_.resize(root_.size());
        for (const MergedCorner& c : corners_) {
            size_t& spot = spot_[size_t(c.vertex)];
            if (spot >= path.size() || path[spot].vertex != c.vertex)
                spot = path.size();
            const size_t k = spot;
            emit(f, std::span<const MergedCorner>(path).subspan(k));
            path.resize(k);
            path.push_back(c);
        }
        emit(f, path);
    }

    const MeshBody&           mesh_;
    const Buffer<int>&        root_;
    FacePlan                  plan_;
    Buffer<int>               seen_;   // the last face that visited a vertex
    std::vector<size_t>       spot_;   // where a path that is split has it
    std::vector<MergedCorner> corners_;
};

/// Points with those of each cluster at their mean; `gone` marks what merged into another.
Buffer<float> meanPoints(const MeshBody& mesh, const Buffer<int>& root, Buffer<uint8_t>& gone)
{
    const size_t   n = root.size();
    Buffer<float>  points(mesh.points(), n * 3);
    Buffer<double> sum(n * 3, 0.0);
    Buffer<int>    members(n, 0);
    for (size_t v = 0; v < n; ++v) {
        const size_t r = size_t(root[v]);
        gone[v] = r != v;
        ++members[r];
        for (size_t k = 0; k < 3; ++k)
            sum[3 * r + k] += double(mesh.points()[3 * v + k]);
    }
    for (size_t v = 0; v < n; ++v)
        for (size_t k = 0; k < 3 && members[v] > 1; ++k)
            points[3 * v + k] = float(sum[3 * v + k] / members[v]);
    return points;
}

/// The lowest vertex of each vertex's cluster; empty if all stay.
Buffer<int> mergedVertices(const MeshBody& mesh, const ElementSet& vertices, double distance, bool alwaysTwo, const SpaceMatrix& space)
{
    const std::vector<int> named = vertices.sorted();
    Buffer<double>         points(named.size() * 3);
    for (size_t i = 0; i < named.size(); ++i)
        space.pointOut(mesh.points() + 3 * size_t(named[i]), points.data() + 3 * i);
    Buffer<int> root = alwaysTwo && named.size() == 2 ? Buffer<int>(2, 0) : clusters(points.data(), int(named.size()), distance);
    if (root.empty() || named.size() == size_t(mesh.vertexCount()))
        return root;
    Buffer<int> all(size_t(mesh.vertexCount()));
    for (int v = 0; v < mesh.vertexCount(); ++v)
        all[size_t(v)] = v;
    for (size_t i = 0; i < named.size(); ++i)
        all[size_t(named[i])] = named[size_t(root[i])];
    return all;
}

}  // namespace

Buffer<int> clusters(const double* points, int count, double distance)
{
    if (count < 2 || std::isnan(distance))
        return {};
    Clusters c(points, count);
    if (distance > 1e-30)
        c.joinNear(std::min(distance, 1e60));
    else
        c.joinEqual();
    return c.result();
}

Ref<MeshBody> mergeVertices(const MeshBody& mesh, const ElementSet& vertices, double distance, bool alwaysTwo, const SpaceMatrix& space)
{
    const Buffer<int> root = mergedVertices(mesh, vertices, distance, alwaysTwo, space);
    if (root.empty())
        return {};
    MergedFaces faces(mesh, root);
    for (int f = 0; f < mesh.faceCount(); ++f)
        faces.add(f);
    Buffer<uint8_t>     gone(root.size());
    const Buffer<float> points = meanPoints(mesh, root, gone);
    return faces.plan().finish(points.data(), gone.data());
}

}  // namespace mirk

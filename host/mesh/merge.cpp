// Clusters by a grid of cells that are as small as the distance allows: points of one cell always belong together, so
// that dense points cost no more than sparse ones. Cells are named by doubles: far out, where a cell is less than the
// step between two floats, only equal coordinates share one, as it should be.
#include "mesh/merge.h"

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
        const double           cell = distance / 1.73206;   // its diagonal is the distance
        const std::vector<int> candidates = notAlone(distance);
        CellTable              cells(candidates.size());
        std::vector<int>       next(root_.size(), -1);
        for (int i : candidates)
            if (const int other = next[size_t(i)] = cells.add(key(i, cell), i); other >= 0)
                join(i, other);
        const double limit = distance * (1 + 1e-6);
        for (const bool far : {false, true})   // what near cells have joined needs no search
            for (const CellTable::Slot& s : cells.slots)
                if (s.head >= 0)
                    joinNeighbours(cells, s, far, limit * limit, next);
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

    /// Points that have others within some distances of them, seen on a coarse grid: of most meshes few.
    std::vector<int> notAlone(double distance)
    {
        const double cell = distance * 4;
        CellTable    cells(root_.size());
        for (int i = 0; i < count(); ++i)
            if (finite(i))
                cells.add(key(i, cell), i);
        std::vector<int> out;
        for (int i = 0; i < count(); ++i) {
            if (!finite(i))
                continue;
            const CellKey own = key(i, cell);
            bool          alone = cells.at(own).count == 1;
            int           step[3], side[3];   // the neighbours on whose side the point lies close
            for (int k = 0; k < 3; ++k) {
                const double part = at(i)[k] / cell - (&own.x)[k];
                side[k] = part < 0.26 ? -1 : part > 0.74 ? 1 : 0;
            }
            for (int mask = 1; mask < 8 && alone; ++mask) {
                bool wanted = true;
                for (int k = 0; k < 3; ++k) {
                    step[k] = mask >> k & 1 ? side[k] : 0;
                    wanted &= !(mask >> k & 1) || side[k] != 0;
                }
                alone = !wanted || cells.at(plus(own, step)).head < 0 || plus(own, step) == own;
            }
            if (!alone)
                out.push_back(i);
        }
        return out;
    }

    void joinNeighbours(CellTable& cells, const CellTable::Slot& s, bool far, double limitSq, const std::vector<int>& next)
    {
        int d[3];
        for (d[0] = 0; d[0] <= 2; ++d[0])
            for (d[1] = -2; d[1] <= 2; ++d[1])
                for (d[2] = -2; d[2] <= 2; ++d[2]) {
                    const bool behind = d[0] == 0 && (d[1] < 0 || (d[1] == 0 && d[2] <= 0));
                    const bool isFar = d[0] == 2 || d[1] == 2 || d[1] == -2 || d[2] == 2 || d[2] == -2;
                    if (behind || isFar != far)
                        continue;
                    const int other = cells.at(plus(s.key, d)).head;
                    if (other >= 0 && find(other) != find(s.head) && anyPair(s.head, other, limitSq, next))
                        join(s.head, other);
                }
    }

    bool anyPair(int a, int b, double limitSq, const std::vector<int>& next) const
    {
        for (int i = a; i >= 0; i = next[size_t(i)])
            for (int j = b; j >= 0; j = next[size_t(j)]) {
                const double x = at(i)[0] - at(j)[0], y = at(i)[1] - at(j)[1], z = at(i)[2] - at(j)[2];
                if (x * x + y * y + z * z <= limitSq)
                    return true;
            }
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

// The steps of a cut: the side of each vertex, faces taken over or clipped, vertices numbered, the border found.
#include "mesh/cut.h"

#include <algorithm>
#include <cmath>

#include "mesh/clip_face.h"
#include "mesh/rebuild.h"

namespace mirk {

namespace {

constexpr int8_t kFront = 1, kOn = 0, kBehind = -1, kNowhere = 2;

bool finite(const Vec3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

/// Points where edges cross the plane, one an edge.
class Crossings
{
public:
    struct Point { int low, high; float t; };   ///< t from the vertex of the lower number

    Crossings() : slots_(64, -1) {}

    const Buffer<Point>& points() const { return points_; }
    /// The crossing's number; `make` gives its t if it is new.
    template <class Make>
    int find(int a, int b, Make&& make)
    {
        const int low = std::min(a, b), high = std::max(a, b);
        if (points_.size() * 2 >= slots_.size())
            grow();
        int& slot = place(low, high);
        if (slot < 0) {
            slot = int(points_.size());
            points_.push({low, high, make(low, high)});
        }
        return slot;
    }

private:
    int& place(int low, int high)
    {
        const size_t mask = slots_.size() - 1;
        const uint64_t mixed = (uint64_t(uint32_t(low)) << 32 | uint32_t(high)) * 0x9e3779b97f4a7c15ull;
        for (size_t i = size_t(mixed >> 32) & mask;; i = (i + 1) & mask)
            if (const int k = slots_[i]; k < 0 || (points_[size_t(k)].low == low && points_[size_t(k)].high == high))
                return slots_[i];
    }
    void grow()
    {
        slots_.resize(slots_.size() * 4);
        std::fill(slots_.begin(), slots_.end(), -1);
        for (size_t k = 0; k < points_.size(); ++k)
            place(points_[k].low, points_[k].high) = int(k);
    }

    Buffer<int>   slots_;
    Buffer<Point> points_;
};

class Cutter
{
public:
    Cutter(const MeshBody& mesh, const PlaneCut& cut, const ElementSet* faces)
        : mesh_(mesh), t_(mesh.topology()), cut_(cut), faces_(faces && !faces->all() ? faces : nullptr)
    {
    }

    Ref<MeshBody> run()
    {
        const double size = length(cut_.normal);
        if (!finite(cut_.center) || !finite(cut_.normal) || !(size > 0) || !std::isfinite(size) || !finite(cut_.offset))
            return {};
        normal_ = cut_.normal * (1 / size);
        takeSides();
        if (!touches())
            return {};
        takeFaces();
        if (!changed_)
            return {};
        numberVertices();
        if (cut_.behind == PlaneCut::moveApart)
            moveApart();
        if (cut_.behind == PlaneCut::drop && !faces_ && borderFollows_)
            findBorder();
        return rebuild(mesh_, std::move(plan_));
    }

private:
    bool drops() const { return cut_.behind == PlaneCut::drop; }

    void takeSides()
    {
        const int    n = t_.vertexCount();
        const float* p = mesh_.points();
        distance_.resize(size_t(n));
        side_.resize(size_t(n));
        float largest = 0;
        for (int i = 0; i < 3 * n; ++i) {
            const float a = std::fabs(p[i]);
            largest = std::max(largest, a <= std::numeric_limits<float>::max() ? a : 0.0f);
        }
        const Vec3   c = cut_.center, m = normal_;
        const double near = double(largest) * (1.0 / (1 << 21));
        for (int v = 0; v < n; ++v, p += 3) {
            const double d = (p[0] - c.x) * m.x + (p[1] - c.y) * m.y + (p[2] - c.z) * m.z;
            distance_[size_t(v)] = d;
            side_[size_t(v)] = d > near ? kFront : d < -near ? kBehind : kOn;
            if (!(std::fabs(d) <= std::numeric_limits<double>::max()))
                side_[size_t(v)] = kNowhere;
        }
        for (int8_t s : side_)
            sides_ |= 1u << (s + 1);
    }

    /// False if all vertices lie on sides where nothing is done.
    bool touches() const
    {
        const bool front = sides_ & 4, on = sides_ & 2, behind = sides_ & 1;
        return cut_.behind == PlaneCut::keep ? front && behind : behind || on;
    }

    void takeFaces()
    {
        const int faces = t_.faceCount();
        plan_.counts.reserve(size_t(faces) + 16);
        plan_.connects.reserve(size_t(t_.cornerCount()) + 64);
        plan_.cornerSource.reserve(size_t(t_.cornerCount()) + 64);
        plan_.faceSource.reserve(size_t(faces) + 16);
        const int* connects = t_.connects().data();
        const int* offsets = t_.offsets().data();
        const int8_t* side = side_.data();
        int        run = 0;   // faces from here to the present one are taken over as they are
        for (int f = 0; f < faces; ++f) {
            int low = 2, high = -2;
            for (int c = offsets[f]; c < offsets[f + 1]; ++c) {
                const int s = side[connects[c]];
                low = std::min(low, s);
                high = std::max(high, s);
            }
            if (low == kFront && high == kFront)
                continue;
            takeRun(run, f);
            run = f + 1;
            takeFace(f, low, high);
        }
        takeRun(run, faces);
    }

    void takeRun(int from, int to)
    {
        if (from == to)
            return;
        const int    first = t_.first(from), corners = t_.first(to) - first;
        const size_t at = plan_.connects.size(), faceAt = plan_.counts.size();
        plan_.connects.resize(at + size_t(corners));
        plan_.cornerSource.resize(at + size_t(corners));
        std::copy_n(t_.connects().data() + first, corners, plan_.connects.data() + at);
        for (int i = 0; i < corners; ++i)
            plan_.cornerSource[at + size_t(i)] = first + i;
        plan_.counts.resize(faceAt + size_t(to - from));
        plan_.faceSource.resize(faceAt + size_t(to - from));
        for (int f = from; f < to; ++f) {
            plan_.counts[faceAt + size_t(f - from)] = t_.faceSize(f);
            plan_.faceSource[faceAt + size_t(f - from)] = f;
        }
    }

    /// A face that is not all in front.
    void takeFace(int f, int low, int high)
    {
        if (high == kNowhere || (faces_ && !faces_->has(f))) {
            borderFollows_ &= high != kNowhere;
            return takeRun(f, f + 1);
        }
        if (low == kBehind && high == kFront)
            return clip(f);
        const bool behind = low == kBehind || (high == kOn && dot(areaVector(t_, mesh_.points(), f), normal_) >= 0);
        if (behind && drops()) {
            changed_ = true;
            return;
        }
        if (behind && cut_.behind == PlaneCut::moveApart) {
            changed_ = true;
            apart_.push(int(plan_.counts.size()));
        }
        const size_t at = plan_.connects.size();
        takeRun(f, f + 1);
        if (low == kOn && drops())
            noteEdgesOn(at);
    }

    void clip(int f)
    {
        changed_ = true;
        clipper_.clear();
        for (int c = t_.first(f); c < t_.first(f + 1); ++c) {
            const int next = t_.next(c, f), a = t_.connects()[size_t(c)], b = t_.connects()[size_t(next)];
            clipper_.add({a, side_[size_t(a)], c, c});
            if (side_[size_t(a)] * side_[size_t(b)] == -1) {
                plan_.cornerBlends.push(a < b ? MeshPlan::Blend{c, next, 0} : MeshPlan::Blend{next, c, 0});
                const int k = crossing(a, b);
                plan_.cornerBlends[plan_.cornerBlends.size() - 1].t = crossings_.points()[size_t(k)].t;
                clipper_.add({t_.vertexCount() + k, kOn, MeshPlan::blend(int(plan_.cornerBlends.size()) - 1), c});
            }
        }
        if (clipper_.needsLine())
            clipper_.setLine(cross(normal_, areaVector(t_, mesh_.points(), f)), [this](int v) { return Vec3(point(v)); });
        takePieces(f, kFront);
        if (!drops())
            takePieces(f, kBehind);
    }

    void takePieces(int f, int side)
    {
        borderFollows_ &= clipper_.pieces(side, [&](const Buffer<ClipNode>& piece, const Buffer<int>& edges) {
            const size_t at = plan_.connects.size();
            if (side == kBehind && cut_.behind == PlaneCut::moveApart)
                apart_.push(int(plan_.counts.size()));
            plan_.counts.push(int(piece.size()));
            plan_.faceSource.push(f);
            for (size_t i = 0; i < piece.size(); ++i) {
                plan_.connects.push(piece[i].vertex);
                plan_.cornerSource.push(piece[i].source);
                if (edges[i] != piece[i].source)
                    otherEdges_.push({int(at + i), edges[i]});
            }
            if (drops())
                noteEdgesOn(at);
        });
    }

    int crossing(int a, int b)
    {
        return crossings_.find(a, b, [this](int low, int high) {
            const double t = distance_[size_t(low)] / (distance_[size_t(low)] - distance_[size_t(high)]);
            const float *p = mesh_.points() + 3 * low, *q = mesh_.points() + 3 * high;
            for (int k = 0; k < 3; ++k)
                newPoints_.push(float(p[k] + t * (double(q[k]) - p[k])));
            return float(t);
        });
    }

    const float* point(int v) const
    {
        return v < t_.vertexCount() ? mesh_.points() + 3 * v : newPoints_.data() + 3 * (v - t_.vertexCount());
    }
    bool on(int v) const { return v >= t_.vertexCount() || side_[size_t(v)] == kOn; }

    /// Notes the edges in the plane of the last face, whose corners begin at `at`.
    void noteEdgesOn(size_t at)
    {
        const size_t end = plan_.connects.size();
        for (size_t c = at; c < end; ++c) {
            const int a = plan_.connects[c], b = plan_.connects[c + 1 < end ? c + 1 : at];
            if (on(a) && on(b) && a != b)
                edgesOn_.push({std::min(a, b), std::max(a, b), int(c), a < b});
        }
    }

    /// Old vertices keep their order, new ones follow. The numbers in the plan become those of the new mesh.
    void numberVertices()
    {
        const size_t old = size_t(t_.vertexCount()), all = old + crossings_.points().size();
        Buffer<int>  place(all, drops() ? -1 : 0);
        for (int v : plan_.connects)
            place[size_t(v)] = 0;
        size_t used = 0;
        for (int& p : place)
            if (p == 0)
                p = int(used++);
        plan_.points->resize(used * 3);
        plan_.vertexSource.resize(used);
        float* out = plan_.points->data();
        for (size_t v = 0; v < all; ++v) {
            if (place[v] < 0)
                continue;
            std::copy_n(point(int(v)), 3, out + 3 * size_t(place[v]));
            plan_.vertexSource[size_t(place[v])] = v < old ? int(v) : MeshPlan::blend(int(v - old));
        }
        for (const Crossings::Point& p : crossings_.points())
            plan_.vertexBlends.push({p.low, p.high, p.t});
        for (int& v : plan_.connects)
            v = place[size_t(v)];
        plan_.edgeSource.resize(plan_.connects.size());
        std::copy(plan_.cornerSource.begin(), plan_.cornerSource.end(), plan_.edgeSource.begin());
        for (const OtherEdge& e : otherEdges_)
            plan_.edgeSource[size_t(e.corner)] = e.edge;
    }

    /// Faces told apart get vertices of their own where they share them with the rest, and move.
    void moveApart()
    {
        const size_t    vertices = plan_.vertexSource.size();
        Buffer<uint8_t> apart(plan_.counts.size(), 0), stays(vertices, 0);
        for (int f : apart_)
            apart[size_t(f)] = 1;
        const auto each = [&](uint8_t which, auto&& visit) {
            size_t c = 0;
            for (size_t f = 0; f < plan_.counts.size(); c += size_t(plan_.counts[f]), ++f)
                for (int k = 0; apart[f] == which && k < plan_.counts[f]; ++k)
                    visit(plan_.connects[c + size_t(k)]);
        };
        each(0, [&](int v) { stays[size_t(v)] = 1; });
        Buffer<int> moved(vertices, -1);
        each(1, [&](int& v) {
            int& to = moved[size_t(v)];
            if (to < 0) {
                to = v;
                if (stays[size_t(v)]) {
                    to = int(plan_.vertexSource.size());
                    plan_.vertexSource.push(plan_.vertexSource[size_t(v)]);
                    for (int k = 0; k < 3; ++k)
                        plan_.points->push((*plan_.points)[3 * size_t(v) + size_t(k)]);
                }
                float* p = plan_.points->data() + 3 * size_t(to);
                for (int k = 0; k < 3; ++k)
                    p[k] = float(p[k] + (k == 0 ? cut_.offset.x : k == 1 ? cut_.offset.y : cut_.offset.z));
            }
            v = to;
        });
    }

    /// Edges with a point in front border the new mesh where they bordered the old one; those in the plane where no
    /// other face runs the other way.
    void findBorder()
    {
        auto               border = make<Buffer<int>>();
        const Buffer<int>& before = t_.border();
        if (!before.empty()) {
            Buffer<uint8_t> was(size_t(t_.cornerCount()), 0), in(plan_.connects.size(), 0);
            for (int c : before)
                was[size_t(c)] = 1;
            for (const EdgeOn& e : edgesOn_)
                in[size_t(e.corner)] = 1;
            for (size_t c = 0; c < in.size(); ++c)
                if (!in[c] && plan_.edgeSource[c] >= 0 && was[size_t(plan_.edgeSource[c])])
                    border->push(int(c));
        }
        std::sort(edgesOn_.begin(), edgesOn_.end(), [](const EdgeOn& a, const EdgeOn& b) {
            return a.low != b.low ? a.low < b.low : a.high != b.high ? a.high < b.high : a.corner < b.corner;
        });
        for (size_t i = 0, end; i < edgesOn_.size(); i = end) {
            int surplus = 0;
            for (end = i; end < edgesOn_.size() && edgesOn_[end].low == edgesOn_[i].low && edgesOn_[end].high == edgesOn_[i].high; ++end)
                surplus += edgesOn_[end].up ? 1 : -1;
            for (size_t k = i; k < end && surplus; ++k)
                if (edgesOn_[k].up == (surplus > 0)) {
                    border->push(edgesOn_[k].corner);
                    surplus += surplus > 0 ? -1 : 1;
                }
        }
        std::sort(border->begin(), border->end());
        plan_.border = std::move(border);
    }

    struct OtherEdge { int corner, edge; };
    struct EdgeOn { int low, high, corner; bool up; };

    const MeshBody&   mesh_;
    const Topology&   t_;
    const PlaneCut&   cut_;
    const ElementSet* faces_;
    Vec3              normal_;
    Buffer<double>    distance_;
    Buffer<int8_t>    side_;
    unsigned          sides_ = 0;        ///< that have vertices, as bits: behind, on, in front, nowhere
    Crossings         crossings_;
    Buffer<float>     newPoints_;
    FaceClipper       clipper_;
    MeshPlan          plan_;
    Buffer<OtherEdge> otherEdges_;   ///< corners whose edge is not that of their source
    Buffer<EdgeOn>    edgesOn_;      ///< edges in the plane, vertices not yet numbered anew
    Buffer<int>       apart_;        ///< new faces that move
    bool              changed_ = false, borderFollows_ = true;
};

}  // namespace

Ref<MeshBody> cutByPlane(const MeshBody& mesh, const PlaneCut& cut, const ElementSet* faces)
{
    return Cutter(mesh, cut, faces).run();
}

}  // namespace mirk

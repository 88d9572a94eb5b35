#include "mesh/close_border.h"

#include <algorithm>

#include "mesh/rebuild.h"

namespace mirk {

namespace {

struct BorderEdge { int from, to, corner; };

/// Walks along edges, never twice along one, and takes out a loop wherever the walk meets itself. Where it comes to an
/// end it goes back, so that all loops of what lies behind the end are found.
class LoopWalk
{
public:
    /// `directed`: edges are passed from `from` to `to` only.
    LoopWalk(const Buffer<BorderEdge>& edges, bool directed) : edges_(edges), used_(edges.size(), 0)
    {
        for (size_t e = 0; e < edges.size(); ++e) {
            starts_.push({edges[e].from, int(e)});
            if (!directed)
                starts_.push({edges[e].to, int(e)});
        }
        std::sort(starts_.begin(), starts_.end(), [](const Start& a, const Start& b) {
            return a.vertex != b.vertex ? a.vertex < b.vertex : a.edge < b.edge;
        });
        for (size_t i = 0; i < starts_.size(); ++i)
            if (i == 0 || starts_[i].vertex != starts_[i - 1].vertex)
                vertices_.push({starts_[i].vertex, int(i), -1});
    }

    /// Calls loop(edges, vertices): the edges in order and the vertex at which each was entered.
    template <class Loop>
    void run(Loop&& loop)
    {
        for (size_t e = 0; e < edges_.size(); ++e)
            if (!used_[e])
                walkFrom(edges_[e].from, loop);
    }

private:
    struct Start { int vertex, edge; };
    struct Vertex { int vertex, next, place; };   ///< next start to try; place on the path, -1 for none

    /// Place in vertices_; -1 for a vertex where no edge begins.
    int find(int vertex) const
    {
        const Vertex* v = std::lower_bound(vertices_.begin(), vertices_.end(), vertex, [](const Vertex& a, int b) { return a.vertex < b; });
        return v != vertices_.end() && v->vertex == vertex ? int(v - vertices_.begin()) : -1;
    }
    int nextEdge(int at)
    {
        Vertex& v = vertices_[size_t(at)];
        for (; size_t(v.next) < starts_.size() && starts_[size_t(v.next)].vertex == v.vertex; ++v.next)
            if (const int e = starts_[size_t(v.next)].edge; !used_[size_t(e)])
                return e;
        return -1;
    }

    template <class Loop>
    void walkFrom(int vertex, Loop&& loop)
    {
        for (int at = find(vertex);;) {
            const int e = at < 0 ? -1 : nextEdge(at);
            if (e < 0) {
                if (path_.empty())
                    return;
                at = entered_[entered_.size() - 1];   // a dead end
                shorten(path_.size() - 1);
                continue;
            }
            const BorderEdge& edge = edges_[size_t(e)];
            used_[size_t(e)] = 1;
            vertices_[size_t(at)].place = int(path_.size());
            path_.push(e);
            entered_.push(at);
            at = find(edge.from == vertices_[size_t(at)].vertex ? edge.to : edge.from);
            if (at < 0 || vertices_[size_t(at)].place < 0)
                continue;
            const size_t first = size_t(vertices_[size_t(at)].place);
            names_.clear();
            for (size_t i = first; i < entered_.size(); ++i)
                names_.push(vertices_[size_t(entered_[i])].vertex);
            loop(path_.data() + first, names_.data(), names_.size());
            shorten(first);
            if (path_.empty())
                return;
        }
    }
    void shorten(size_t size)
    {
        for (size_t i = size; i < entered_.size(); ++i)
            vertices_[size_t(entered_[i])].place = -1;
        path_.resize(size);
        entered_.resize(size);
    }

    const Buffer<BorderEdge>& edges_;
    Buffer<uint8_t>           used_;
    Buffer<Start>             starts_;
    Buffer<Vertex>            vertices_;
    Buffer<int>               path_, entered_, names_;   // entered_: places of vertices
};

class Closer
{
public:
    Closer(const MeshBody& mesh, const ElementSet* edges)
        : mesh_(mesh), t_(mesh.topology()), edges_(edges && !edges->all() ? edges : nullptr)
    {
    }

    Ref<MeshBody> run()
    {
        const Buffer<int>& border = t_.border();
        if (border.empty())
            return {};
        findLoops(border);
        if (loopSizes_.empty())
            return {};
        makePlan(border);
        return rebuild(mesh_, std::move(plan_));
    }

private:
    /// A border is short: no table of all corners is made for it.
    int faceOf(int corner) const
    {
        const Buffer<int>& first = t_.offsets();
        return int(std::upper_bound(first.begin(), first.end(), corner) - first.begin()) - 1;
    }

    void findLoops(const Buffer<int>& border)
    {
        Buffer<BorderEdge> open;
        for (int c : border) {
            const int from = t_.connects()[size_t(c)], to = t_.connects()[size_t(t_.next(c, faceOf(c)))];
            if (from != to)
                open.push({from, to, c});
        }
        Buffer<BorderEdge> left;
        Buffer<uint8_t>    closed(open.size(), 0);
        LoopWalk(open, true).run([&](const int* edges, const int* vertices, size_t size) {
            addLoop(open, edges, vertices, size, closed);
        });
        for (size_t e = 0; e < open.size(); ++e)
            if (!closed[e])
                left.push(open[e]);
        if (left.empty())
            return;
        closed.resize(left.size());
        std::fill(closed.begin(), closed.end(), uint8_t(0));
        LoopWalk(left, false).run([&](const int* edges, const int* vertices, size_t size) {
            addLoop(left, edges, vertices, size, closed);
        });
    }

    void addLoop(const Buffer<BorderEdge>& all, const int* edges, const int* vertices, size_t size, Buffer<uint8_t>& closed)
    {
        bool named = !edges_;
        int  along = 0;
        for (size_t i = 0; i < size; ++i) {
            closed[size_t(edges[i])] = 1;
            along += all[size_t(edges[i])].from == vertices[i] ? 1 : -1;
            named = named || edges_->has(t_.edges().ofCorner[size_t(all[size_t(edges[i])].corner)]);
        }
        if (size < 3 || !named || along == 0)
            return;
        // the new face's corner k lies at loopVertices_; the border edge from there on is loopCorners_
        for (size_t i = 0; i < size; ++i) {
            loopVertices_.push(along > 0 ? vertices[(size - i) % size] : vertices[i]);
            loopCorners_.push(all[size_t(edges[along > 0 ? size - 1 - i : i])].corner);
        }
        loopSizes_.push(int(size));
    }

    void makePlan(const Buffer<int>& border)
    {
        const size_t corners = size_t(t_.cornerCount()), added = loopVertices_.size();
        plan_.points = mesh_.pointBuffer();
        plan_.keptVertices = t_.vertexCount();
        plan_.keptCorners = t_.cornerCount();
        plan_.keptFaces = t_.faceCount();
        for (int size : loopSizes_)
            plan_.counts.push(size);
        plan_.connects.resize(added);
        std::copy(loopVertices_.begin(), loopVertices_.end(), plan_.connects.begin());
        plan_.cornerSource.resize(added);
        plan_.edgeSource.resize(added);
        std::fill(plan_.cornerSource.begin(), plan_.cornerSource.end(), int(MeshPlan::none));
        std::copy(loopCorners_.begin(), loopCorners_.end(), plan_.edgeSource.begin());
        size_t at = 0;
        for (int size : loopSizes_) {
            plan_.faceSource.push(faceOf(loopCorners_[at]));
            at += size_t(size);
        }
        for (size_t i = 0; i < added; ++i) {
            plan_.hard.push(int(corners + i));
            plan_.hard.push(loopCorners_[i]);
        }
        std::sort(loopCorners_.begin(), loopCorners_.end());
        auto rest = make<Buffer<int>>(border.size());
        rest->resize(size_t(std::set_difference(border.begin(), border.end(), loopCorners_.begin(), loopCorners_.end(), rest->begin())
                            - rest->begin()));
        plan_.border = std::move(rest);
    }

    const MeshBody&   mesh_;
    const Topology&   t_;
    const ElementSet* edges_;
    MeshPlan          plan_;
    Buffer<int>       loopSizes_, loopVertices_, loopCorners_;
};

}  // namespace

Ref<MeshBody> closeBorder(const MeshBody& mesh, const ElementSet* edges) { return Closer(mesh, edges).run(); }

}  // namespace mirk

#include "mesh/clip_face.h"

#include <algorithm>

namespace mirk {

bool FaceClipper::needsLine() const
{
    int fronts = 0;
    for (size_t i = 0; i < nodes_.size(); ++i) {
        const ClipNode &a = nodes_[i], &b = nodes_[size_t(after(int(i)))];
        if (a.side == 0 && b.side == 0)
            return true;
        fronts += a.side == 0 && b.side == 1;
    }
    if (fronts > 1)
        return true;
    int behinds = 0;
    for (size_t i = 0; i < nodes_.size(); ++i)
        behinds += nodes_[i].side == 0 && nodes_[size_t(after(int(i)))].side == -1;
    return behinds > 1;
}

void FaceClipper::findRuns(int side)
{
    const int n = int(nodes_.size());
    edgeSide_.resize(size_t(n));
    int start = 0;   // a node off the plane: each edge along the plane has one before it to follow
    while (start < n && nodes_[size_t(start)].side == 0)
        ++start;
    runs_.clear();
    at_ = 0;
    if (start == n)
        return;
    int8_t last = nodes_[size_t(start)].side;
    for (int k = 0, i = start; k < n; ++k, i = after(i)) {
        const int    j = after(i);
        const int8_t a = nodes_[size_t(i)].side, b = nodes_[size_t(j)].side;
        if (a || b)
            last = a ? a : b;
        else if (along_[size_t(j)] != along_[size_t(i)])   // the inside lies to the left of the walk
            last = along_[size_t(j)] > along_[size_t(i)] ? 1 : -1;
        edgeSide_[size_t(i)] = last;
    }
    // the walk begins where an edge of this side follows one of the other
    int first = -1;
    for (int i = 0; i < n && first < 0; ++i)
        if (edgeSide_[size_t(after(i))] == side && edgeSide_[size_t(i)] != side)
            first = after(i);
    if (first < 0)
        return;
    for (int k = 0, i = first; k < n;) {
        if (edgeSide_[size_t(i)] != side) {
            ++k;
            i = after(i);
            continue;
        }
        Run run{i, i, int(runs_.size()), false};
        for (; k < n && edgeSide_[size_t(i)] == side; ++k)
            i = after(i);
        run.end = i;
        runs_.push(run);
    }
    if (runs_.size() > 1)
        joinRuns(side);
}

void FaceClipper::joinRuns(int side)
{
    begins_.clear();
    ends_.clear();
    for (int i = 0; i < int(runs_.size()); ++i) {
        begins_.push(i);
        ends_.push(i);
    }
    const auto place = [&](int node) { return along_[size_t(node)] * side; };
    std::sort(begins_.begin(), begins_.end(), [&](int a, int b) {
        const double x = place(runs_[size_t(a)].begin), y = place(runs_[size_t(b)].begin);
        return x != y ? x < y : a < b;
    });
    std::sort(ends_.begin(), ends_.end(), [&](int a, int b) {
        const double x = place(runs_[size_t(a)].end), y = place(runs_[size_t(b)].end);
        return x != y ? x < y : a < b;
    });
    for (size_t i = 0; i < runs_.size(); ++i)
        runs_[size_t(ends_[i])].next = begins_[i];
}

/// Follows runs around until the first one comes again. Nodes where one run ends and the next begins stand once.
bool FaceClipper::nextPiece(int side)
{
    for (;; ++at_) {
        if (at_ >= runs_.size())
            return false;
        if (runs_[at_].taken)
            continue;
        piece_.clear();
        edges_.clear();
        bool off = false;
        for (Run* run = &runs_[at_]; !run->taken; run = &runs_[size_t(run->next)]) {
            run->taken = true;
            int i = run->begin;
            do {
                piece_.push(nodes_[size_t(i)]);
                edges_.push(nodes_[size_t(i)].edge);
                off |= nodes_[size_t(i)].side == side;
                i = after(i);
            } while (i != run->end);
            if (nodes_[size_t(i)].vertex != nodes_[size_t(runs_[size_t(run->next)].begin)].vertex) {
                piece_.push(nodes_[size_t(i)]);
                edges_.push(-1);
            }
        }
        if (off)
            return true;   // what lies in the plane alone has no inside
    }
}

}  // namespace mirk

// One face clipped by a plane: the polygons of either side, from the walk around the face.
#pragma once
#include "data/buffer.h"
#include "mesh/vector3.h"

namespace mirk {

/// A point on the walk around a face: a corner, or a crossing of an edge with the plane.
struct ClipNode
{
    int    vertex;
    int8_t side;     ///< 1 in front, 0 on the plane, -1 behind; neighbours are never 1 and -1
    int    source;   ///< of the corner, as in MeshPlan
    int    edge;     ///< old corner on whose edge the walk goes on from here
};

/// The walk is cut into runs along one side, which begin and end on the plane. Just beside the plane the inside of a
/// simple face lies between the end of one run and the nearest beginning of another, so ends and beginnings are sorted
/// along the line of the cut and joined in that order. For faces that are not simple or not flat some pieces may
/// overlap, but they still add up to the face.
class FaceClipper
{
public:
    void clear() { nodes_.clear(); along_.clear(); }
    void add(const ClipNode& node) { nodes_.push(node); }
    /// True if the walk leaves the plane more than twice or runs along it: setLine is needed then.
    bool needsLine() const;
    /// `direction` of the cut in the face: plane normal x face normal. `point` gives a vertex's point.
    template <class Point>
    void setLine(const Vec3& direction, Point&& point)
    {
        along_.resize(nodes_.size());
        for (size_t i = 0; i < nodes_.size(); ++i)
            along_[i] = nodes_[i].side == 0 ? dot(direction, point(nodes_[i].vertex)) : 0;
    }

    /// Calls take(corners, edges) with each polygon of a side (1 or -1): its corners, and for each the old corner on
    /// whose edge the edge from there lies, -1 for the cut. False if one had less than three corners and was left out.
    template <class Take>
    bool pieces(int side, Take&& take)
    {
        findRuns(side);
        bool all = true;
        while (nextPiece(side))
            if (piece_.size() >= 3)
                take(std::as_const(piece_), std::as_const(edges_));
            else
                all = false;
        return all;
    }

private:
    struct Run { int begin, end; int next; bool taken; };

    void findRuns(int side);
    void joinRuns(int side);
    bool nextPiece(int side);
    int  after(int i) const { return i + 1 == int(nodes_.size()) ? 0 : i + 1; }

    Buffer<ClipNode> nodes_, piece_;
    Buffer<int>      edges_;
    Buffer<double>   along_;       ///< of nodes on the plane, place along the line
    Buffer<int8_t>   edgeSide_;    ///< of the edge from each node
    Buffer<Run>      runs_;
    Buffer<int>      begins_, ends_;
    size_t           at_ = 0;
};

}  // namespace mirk

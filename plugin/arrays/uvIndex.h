// Finds boxes in a plane by a point in them: which polygons may lie under a UV.
#pragma once
#include <vector>

/// A box of UVs; empty while the bounds are the wrong way round.
struct UvBox
{
    float uMin = 1.0f, vMin = 1.0f, uMax = 0.0f, vMax = 0.0f;

    bool empty() const { return !(uMin <= uMax && vMin <= vMax); }
    bool has(float u, float v) const { return u >= uMin && u <= uMax && v >= vMin && v <= vMax; }
    void add(float u, float v);           ///< values that are no finite number are passed over
    void add(const UvBox& other);
    void grow(float by);
};

/// A tree over boxes with finite bounds, numbered from 0. Empty boxes hold no point.
class UvIndex
{
public:
    explicit UvIndex(std::vector<UvBox> boxes);

    /// The lowest number of a box that holds the point and that `accepts(number)` is true for; -1 if there is none.
    /// `accepts` may be asked in any order, and for few of the boxes only. Once it was true, only lower numbers follow.
    template <class F>
    int first(float u, float v, F&& accepts) const
    {
        int              best = -1;
        std::vector<int> open;
        open.reserve(64);
        if (!nodes_.empty())
            open.push_back(0);
        while (!open.empty()) {
            const Node& node = nodes_[std::size_t(open.back())];
            open.pop_back();
            if ((best >= 0 && node.lowest >= best) || !node.box.has(u, v))
                continue;
            if (node.count == 0) {   // the child with the lower number on top
                const Node &left = nodes_[std::size_t(node.from)], &right = nodes_[std::size_t(node.from) + 1];
                const int   lower = left.lowest <= right.lowest ? 0 : 1;
                open.push_back(node.from + 1 - lower);
                open.push_back(node.from + lower);
                continue;
            }
            for (int i = node.from; i < node.from + node.count; ++i) {
                const int number = numbers_[std::size_t(i)];
                if (best >= 0 && number >= best)
                    break;
                if (boxes_[std::size_t(number)].has(u, v) && accepts(number)) {
                    best = number;
                    break;
                }
            }
        }
        return best;
    }

private:
    /// Leaf: `count` entries of numbers_ from `from` on, ascending. Else `from` and the next one are its children.
    struct Node
    {
        UvBox box;
        int   from = 0, count = 0, lowest = 0;
    };

    void split(std::size_t node);

    std::vector<UvBox> boxes_;
    std::vector<int>   numbers_;
    std::vector<Node>  nodes_;
};

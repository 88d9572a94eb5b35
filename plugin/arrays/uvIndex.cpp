#include "arrays/uvIndex.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kLeaf = 8;

} // namespace

void UvBox::add(float u, float v)
{
    if (!std::isfinite(u) || !std::isfinite(v))
        return;
    if (empty())
        *this = {u, v, u, v};
    else
        *this = {std::min(uMin, u), std::min(vMin, v), std::max(uMax, u), std::max(vMax, v)};
}

void UvBox::add(const UvBox& other)
{
    if (other.empty())
        return;
    add(other.uMin, other.vMin);
    add(other.uMax, other.vMax);
}

void UvBox::grow(float by)
{
    if (empty())
        return;
    // rounded outwards, so that a point just within `by` is not lost
    const auto out = [by](float bound, float direction) {
        const float moved = std::nextafter(bound + direction * by, direction * HUGE_VALF);
        return std::clamp(moved, std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
    };
    *this = {out(uMin, -1.0f), out(vMin, -1.0f), out(uMax, 1.0f), out(vMax, 1.0f)};
}

UvIndex::UvIndex(std::vector<UvBox> boxes) : boxes_(std::move(boxes))
{
    for (std::size_t i = 0; i < boxes_.size(); ++i)
        if (!boxes_[i].empty())
            numbers_.push_back(static_cast<int>(i));
    if (numbers_.empty())
        return;
    nodes_.reserve(numbers_.size() / 2 + 1);
    nodes_.push_back({UvBox(), 0, static_cast<int>(numbers_.size()), 0});
    for (std::size_t i = 0; i < nodes_.size(); ++i)
        split(i);
}

void UvIndex::split(std::size_t at)
{
    Node       node = nodes_[at];
    const auto first = numbers_.begin() + node.from, last = first + node.count;
    for (auto i = first; i != last; ++i)
        node.box.add(boxes_[std::size_t(*i)]);
    node.lowest = *std::min_element(first, last);
    if (node.count <= kLeaf) {
        std::sort(first, last);
        nodes_[at] = node;
        return;
    }
    // halves of equal number along the longer side, by the boxes' middles
    const bool alongU = node.box.uMax - node.box.uMin >= node.box.vMax - node.box.vMin;
    const auto middle = [&](int i) {
        const UvBox& b = boxes_[std::size_t(i)];
        return alongU ? 0.5 * b.uMin + 0.5 * b.uMax : 0.5 * b.vMin + 0.5 * b.vMax;
    };
    const int half = node.count / 2;
    std::nth_element(first, first + half, last, [&](int a, int b) { return middle(a) < middle(b); });
    const int children = static_cast<int>(nodes_.size());
    nodes_.push_back({UvBox(), node.from, half, 0});
    nodes_.push_back({UvBox(), node.from + half, node.count - half, 0});
    node.from = children;
    node.count = 0;
    nodes_[at] = node;
}

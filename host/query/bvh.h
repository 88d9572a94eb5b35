// Hierarchy of boxes, and the module that builds it. The module holds the ray library and is opened at first need.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirk::query {

struct Box
{
    float lo[3], hi[3];
};

constexpr int kBranching = 8;

/// Eight children. Unused ones come last and have a box that nothing meets.
struct alignas(64) BvhNode
{
    float   bounds[6][kBranching];   ///< lo x, hi x, lo y, hi y, lo z, hi z
    int32_t child[kBranching];       ///< a node; or ~leaf
};

constexpr int kLeafSize = 4;   ///< boxes in a leaf, at most

struct Bvh
{
    struct Leaf { uint32_t item[kLeafSize]; int count; };

    std::vector<BvhNode> nodes;    ///< the first one is the root; empty for no boxes
    std::vector<Leaf>    leaves;   ///< indices of boxes
};

/// Builds it over finite boxes; false if the library refuses. Thread safe.
using BuildBvh = bool (*)(const Box* boxes, size_t count, Bvh& out);

/// The builder of the module; null, after one message with the reason, if the module cannot be opened.
BuildBvh bvhBuilder();

}  // namespace mirk::query

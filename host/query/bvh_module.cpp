// The builder of box hierarchies: Embree's, flattened into arrays.
#include <embree3/rtcore.h>

#include <limits>
#include <mutex>
#include <utility>

#include "query/bvh.h"

using namespace mirk::query;

namespace {

/// What the library is told to make; lives in the library's own memory while it builds.
struct Inner
{
    bool      leaf;
    unsigned  count;
    Inner*    child[kBranching];
    RTCBounds bounds[kBranching];
};

struct Leaf
{
    bool     leaf;
    unsigned count;
    unsigned item[kLeafSize];
};

void* createNode(RTCThreadLocalAllocator allocator, unsigned count, void*)
{
    auto* n = static_cast<Inner*>(rtcThreadLocalAlloc(allocator, sizeof(Inner), 16));
    n->leaf = false;
    n->count = count;
    return n;
}

void setChildren(void* node, void** children, unsigned count, void*)
{
    for (unsigned i = 0; i < count; ++i)
        static_cast<Inner*>(node)->child[i] = static_cast<Inner*>(children[i]);
}

void setBounds(void* node, const RTCBounds** bounds, unsigned count, void*)
{
    for (unsigned i = 0; i < count; ++i)
        static_cast<Inner*>(node)->bounds[i] = *bounds[i];
}

void* createLeaf(RTCThreadLocalAllocator allocator, const RTCBuildPrimitive* primitives, size_t count, void*)
{
    auto* l = static_cast<Leaf*>(rtcThreadLocalAlloc(allocator, sizeof(Leaf), 16));
    l->leaf = true;
    l->count = unsigned(count);
    for (size_t i = 0; i < count && i < kLeafSize; ++i)
        l->item[i] = primitives[i].primID;
    return l;
}

class Flattening
{
public:
    explicit Flattening(Bvh& out) : out_(out) {}

    void run(const Inner* root, const RTCBounds& all)
    {
        if (root->leaf) {   // a root of one child, so that every tree starts with a node
            out_.nodes.push_back(emptyNode());
            setChild(0, 0, all, addLeaf(root));
            return;
        }
        addNode(root);
        while (!open_.empty()) {
            const auto [from, to] = open_.back();
            open_.pop_back();
            for (unsigned i = 0; i < from->count; ++i)
                setChild(to, i, from->bounds[i], from->child[i]->leaf ? addLeaf(from->child[i]) : addNode(from->child[i]));
        }
    }

private:
    static BvhNode emptyNode()
    {
        constexpr float inf = std::numeric_limits<float>::infinity();
        BvhNode n{};
        for (int i = 0; i < 6; ++i)
            for (float& b : n.bounds[i])
                b = i % 2 ? -inf : inf;
        return n;
    }
    void setChild(size_t node, unsigned i, const RTCBounds& b, int32_t child)
    {
        BvhNode& n = out_.nodes[node];
        const float box[6] = {b.lower_x, b.upper_x, b.lower_y, b.upper_y, b.lower_z, b.upper_z};
        for (int k = 0; k < 6; ++k)
            n.bounds[k][i] = box[k];
        n.child[i] = child;
    }
    int32_t addNode(const Inner* from)
    {
        out_.nodes.push_back(emptyNode());
        open_.push_back({from, out_.nodes.size() - 1});
        return int32_t(out_.nodes.size() - 1);
    }
    int32_t addLeaf(const Inner* from)
    {
        const auto* leaf = reinterpret_cast<const Leaf*>(from);
        Bvh::Leaf to{};
        to.count = int(leaf->count);
        for (int i = 0; i < to.count; ++i)
            to.item[i] = leaf->item[i];
        out_.leaves.push_back(to);
        return ~int32_t(out_.leaves.size() - 1);
    }

    Bvh&                                        out_;
    std::vector<std::pair<const Inner*, size_t>> open_;
};

RTCDevice device()
{
    // one thread: the order of leaves does not hang on the machine, and no idle threads are kept
    static RTCDevice d = rtcNewDevice("threads=1");
    return d;
}

}  // namespace

extern "C" bool mirkBuildBvh(const Box* boxes, size_t count, Bvh& out)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    out = {};
    if (count == 0)
        return true;
    if (!device())
        return false;

    std::vector<RTCBuildPrimitive> primitives(count);
    constexpr float inf = std::numeric_limits<float>::infinity();
    RTCBounds all{inf, inf, inf, 0, -inf, -inf, -inf, 0};
    for (size_t i = 0; i < count; ++i) {
        const Box& b = boxes[i];
        primitives[i] = {b.lo[0], b.lo[1], b.lo[2], 0, b.hi[0], b.hi[1], b.hi[2], unsigned(i)};
        all.lower_x = std::min(all.lower_x, b.lo[0]);
        all.lower_y = std::min(all.lower_y, b.lo[1]);
        all.lower_z = std::min(all.lower_z, b.lo[2]);
        all.upper_x = std::max(all.upper_x, b.hi[0]);
        all.upper_y = std::max(all.upper_y, b.hi[1]);
        all.upper_z = std::max(all.upper_z, b.hi[2]);
    }
    RTCBVH bvh = rtcNewBVH(device());
    RTCBuildArguments arguments = rtcDefaultBuildArguments();
    arguments.maxBranchingFactor = kBranching;
    arguments.maxDepth = 64;
    arguments.sahBlockSize = kLeafSize;
    arguments.minLeafSize = kLeafSize;   // a fuller leaf costs no more than one triangle, and memory is what a ray waits for
    arguments.maxLeafSize = kLeafSize;
    arguments.bvh = bvh;
    arguments.primitives = primitives.data();
    arguments.primitiveCount = arguments.primitiveArrayCapacity = count;
    arguments.createNode = createNode;
    arguments.setNodeChildren = setChildren;
    arguments.setNodeBounds = setBounds;
    arguments.createLeaf = createLeaf;
    const void* root = rtcBuildBVH(&arguments);
    if (root)
        Flattening(out).run(static_cast<const Inner*>(root), all);
    rtcReleaseBVH(bvh);
    return root != nullptr;
}

#include "query/tree.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mesh/topology.h"

namespace mirk::query {

namespace {

constexpr float kFar = 1e15f;   // squares of what is nearer are no trouble in single precision

struct Corners { const float* p[3]; };

Corners cornersOf(const float* points, const Topology& t, const Buffer<int>& corners, int triangle)
{
    Corners c;
    for (size_t k = 0; k < 3; ++k)
        c.p[k] = points + 3 * size_t(t.connects()[size_t(corners[3 * size_t(triangle) + k])]);
    return c;
}

/// The box of a triangle; false if a coordinate is not finite.
bool boxOf(const Corners& c, Box& box)
{
    for (int axis = 0; axis < 3; ++axis) {
        const float a = c.p[0][axis], b = c.p[1][axis], d = c.p[2][axis];
        if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(d))
            return false;
        box.lo[axis] = std::min({a, b, d});
        box.hi[axis] = std::max({a, b, d});
    }
    return true;
}

float reach(const Box& b)
{
    float r = 0;
    for (int axis = 0; axis < 3; ++axis)
        r = std::max({r, std::fabs(b.lo[axis]), std::fabs(b.hi[axis])});
    return r;
}

}  // namespace

Tree::Tree(const float* points, const Topology& topology, const Buffer<int>& corners, const std::vector<int>* ids)
{
    const int all = int(corners.size() / 3);
    faces_.reserve(size_t(all));
    for (int f = 0; f < topology.faceCount(); ++f)
        for (int k = 0; k < topology.faceSize(f) - 2; ++k)
            faces_.push_back({f, k});

    std::vector<Box> boxes;
    std::vector<int> near, far;
    const int count = ids ? int(ids->size()) : all;
    for (int i = 0; i < count; ++i) {
        const int triangle = ids ? (*ids)[size_t(i)] : i;
        Box box;
        if (!boxOf(cornersOf(points, topology, corners, triangle), box))
            continue;
        if (reach(box) > kFar) {
            far.push_back(triangle);
            continue;
        }
        near.push_back(triangle);
        boxes.push_back(box);
        extent_ = std::max(extent_, reach(box));
        double sideSq = 0;
        for (int axis = 0; axis < 3; ++axis)
            sideSq += double(box.hi[axis] - box.lo[axis]) * (box.hi[axis] - box.lo[axis]);
        longestSide_ = std::max(longestSide_, sideSq);
    }
    longestSide_ = std::sqrt(longestSide_);
    count_ = near.size() + far.size();

    Bvh bvh;
    const BuildBvh build = boxes.empty() ? nullptr : bvhBuilder();
    if (build && build(boxes.data(), boxes.size(), bvh)) {
        nodes_ = std::move(bvh.nodes);
        blocks_.reserve(bvh.leaves.size());
        for (const Bvh::Leaf& leaf : bvh.leaves) {
            int inLeaf[kLeafSize];
            for (int k = 0; k < leaf.count; ++k)
                inLeaf[k] = near[leaf.item[k]];
            addTo(blocks_, points, topology, corners, inLeaf, leaf.count);
        }
    } else {
        far.insert(far.end(), near.begin(), near.end());   // slow, and still right
    }
    for (size_t i = 0; i < far.size(); i += kLeafSize)
        addTo(loose_, points, topology, corners, &far[i], int(std::min<size_t>(kLeafSize, far.size() - i)));
}

void Tree::addTo(std::vector<Block>& blocks, const float* points, const Topology& topology, const Buffer<int>& corners,
                 const int* ids, int count)
{
    Block b;
    std::fill_n(&b.v[0][0][0], 36, std::numeric_limits<float>::quiet_NaN());
    for (int lane = 0; lane < 4; ++lane) {
        b.id[lane] = lane < count ? ids[lane] : std::numeric_limits<int>::max();
        b.face[lane] = b.inFace[lane] = -1;
        if (lane >= count)
            continue;
        b.face[lane] = faceOf(ids[lane]);
        b.inFace[lane] = inFace(ids[lane]);
        const Corners c = cornersOf(points, topology, corners, ids[lane]);
        for (int vertex = 0; vertex < 3; ++vertex)
            for (int axis = 0; axis < 3; ++axis)
                b.v[vertex][axis][lane] = c.p[vertex][axis];
    }
    blocks.push_back(b);
}

size_t Tree::bytes() const
{
    return nodes_.size() * sizeof(BvhNode) + (blocks_.size() + loose_.size()) * sizeof(Block) + faces_.size() * sizeof(Place);
}

bool intersect(const Vec3 v[3], const Ray& ray, RayHit& hit)
{
    // Möller and Trumbore, Fast, Minimum Storage Ray/Triangle Intersection, 1997
    const Vec3   e1 = v[1] - v[0], e2 = v[2] - v[0], s = ray.origin - v[0];
    const Vec3   p = cross(ray.direction, e2), q = cross(s, e1);
    const double inverse = 1 / dot(e1, p);
    const double u = dot(s, p) * inverse, w = dot(ray.direction, q) * inverse, t = dot(e2, q) * inverse;
    const double low = -ray.tolerance;
    if (!(u >= low && w >= low && u + w <= 1 - low && t >= ray.tMin && t <= ray.tMax))
        return false;
    hit.t = t;
    hit.w[0] = 1 - u - w;
    hit.w[1] = u;
    hit.w[2] = w;
    hit.point = v[0] * hit.w[0] + v[1] * u + v[2] * w;
    return true;
}

double nearestToOrigin(const Vec3 v[3], double w[3])
{
    double best = std::numeric_limits<double>::infinity();
    for (int k = 0; k < 3; ++k) {   // sides first: they are right for degenerate triangles too
        const int    next = (k + 1) % 3;
        const Vec3   side = v[next] - v[k];
        const double lengthSq = dot(side, side), along = -dot(v[k], side);
        const double t = along > 0 ? (along < lengthSq ? along / lengthSq : 1.0) : 0.0;
        const Vec3   p = v[k] + side * t;
        const double d = dot(p, p);
        if (d < best) {
            best = d;
            w[k] = 1 - t;
            w[next] = t;
            w[(k + 2) % 3] = 0;
        }
    }
    const Vec3   n = cross(v[1] - v[0], v[2] - v[0]);
    const double a = dot(n, cross(v[1], v[2])), b = dot(n, cross(v[2], v[0])), c = dot(n, cross(v[0], v[1]));
    if (a > 0 && b > 0 && c > 0) {
        const double total = a + b + c, height = dot(n, v[0]);
        const double d = height * height / dot(n, n);
        if (d < best) {
            best = d;
            w[0] = a / total;
            w[1] = b / total;
            w[2] = c / total;
        }
    }
    return best;
}

}  // namespace mirk::query

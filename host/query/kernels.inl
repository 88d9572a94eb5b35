// The walks through the tree, eight boxes and four triangles at a time. Included once for each kind of processor, inside a
// namespace of its own; all give the same bits, as none contracts multiplications and additions.

using F4 = float __attribute__((vector_size(16)));
using F8 = float __attribute__((vector_size(32)));
using I8 = int __attribute__((vector_size(32)));
using D4 = double __attribute__((vector_size(32)));
using M4 = long long __attribute__((vector_size(32)));

MIRK_INLINE F8 load(const float* p) { return *reinterpret_cast<const F8*>(p); }
#if defined(MIRK_AVX2)
MIRK_INLINE D4 widen(const float* p) { return D4(_mm256_cvtps_pd(_mm_load_ps(p))); }
#else
MIRK_INLINE D4 widen(const float* p) { return __builtin_convertvector(*reinterpret_cast<const F4*>(p), D4); }
#endif
MIRK_INLINE F8 splat(float x) { return F8{x, x, x, x, x, x, x, x}; }
MIRK_INLINE D4 splat(double x) { return D4{x, x, x, x}; }

#if defined(MIRK_AVX2)
MIRK_INLINE unsigned lanesOf(M4 m) { return unsigned(_mm256_movemask_pd(__m256d(m))); }
MIRK_INLINE unsigned lanesOf(I8 m) { return unsigned(_mm256_movemask_ps(__m256(m))); }
MIRK_INLINE F8 lower(F8 a, F8 b) { return F8(_mm256_min_ps(__m256(a), __m256(b))); }
MIRK_INLINE F8 upper(F8 a, F8 b) { return F8(_mm256_max_ps(__m256(a), __m256(b))); }
#else
MIRK_INLINE unsigned lanesOf(M4 m) { return (m[0] & 1u) | (m[1] & 2u) | (m[2] & 4u) | (m[3] & 8u); }
MIRK_INLINE unsigned lanesOf(I8 m)
{
    unsigned lanes = 0;
    for (int i = 0; i < kBranching; ++i)
        lanes |= unsigned(m[i]) & (1u << i);
    return lanes;
}
MIRK_INLINE F8 lower(F8 a, F8 b) { return a < b ? a : b; }
MIRK_INLINE F8 upper(F8 a, F8 b) { return a > b ? a : b; }
#endif

struct D3 { D4 x, y, z; };

MIRK_INLINE D3 operator-(const D3& a, const D3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
MIRK_INLINE D3 operator+(const D3& a, const D3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
MIRK_INLINE D3 operator*(const D3& a, D4 s) { return {a.x * s, a.y * s, a.z * s}; }
MIRK_INLINE D4 dot(const D3& a, const D3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
MIRK_INLINE D3 cross(const D3& a, const D3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
MIRK_INLINE D3 splat(const Vec3& v) { return {splat(v.x), splat(v.y), splat(v.z)}; }
MIRK_INLINE D3 vertex(const Tree::Block& b, int k) { return {widen(b.v[k][0]), widen(b.v[k][1]), widen(b.v[k][2])}; }

MIRK_INLINE Vec3 vertexOf(const Tree::Block& b, int k, int lane) { return {b.v[k][0][lane], b.v[k][1][lane], b.v[k][2][lane]}; }

MIRK_INLINE void prefetch(const Tree& tree, int32_t child)
{
    const char* at = child >= 0 ? reinterpret_cast<const char*>(tree.nodes() + child)
                                : reinterpret_cast<const char*>(tree.blocks().data() + ~child);
    __builtin_prefetch(at);
    __builtin_prefetch(at + 64);
    __builtin_prefetch(at + 128);
    if (child >= 0)
        __builtin_prefetch(at + 192);
}

/// Children still to be looked at, the nearest on top.
struct Stack
{
    struct Entry { int32_t child; float distance; };
    Entry entry[1024];   // the builder goes no deeper than about 80 levels, seven entries each
    int   size = 0;

    MIRK_INLINE void push(int32_t child, float distance)
    {
        if (size < 1024)
            entry[size++] = {child, distance};
    }
    /// Pushes the lanes of a node, farthest first.
    MIRK_INLINE void push(const Tree& tree, const BvhNode& node, unsigned lanes, F8 distances)
    {
        const int from = size;
        for (; lanes; lanes &= lanes - 1) {
            const int i = __builtin_ctz(lanes);
            const float d = distances[i];
            prefetch(tree, node.child[i]);
            push(node.child[i], d);
            for (int k = size - 1; k > from && entry[k - 1].distance < entry[k].distance; --k)
                std::swap(entry[k - 1], entry[k]);
        }
    }
};

// ---- rays ----------------------------------------------------------------------------------------------------------

/// A ray for boxes: in single precision, of length 1, its origin shifted apart to both sides by the margin for rounding.
struct BoxRay
{
    float originNear[3], originFar[3], inverse[3];
    int   near[3];   ///< rows of BvhNode::bounds

    MIRK_INLINE BoxRay(const Vec3& o, const Vec3& d, float margin)
    {
        const double origin[3] = {o.x, o.y, o.z}, direction[3] = {d.x, d.y, d.z};
        for (int k = 0; k < 3; ++k) {
            const float along = float(direction[k]), at = float(origin[k]);
            const bool  back = along < 0;
            // a zero would give NaN where the origin lies in a plane of a box
            inverse[k] = 1.0f / (std::fabs(along) < 1e-18f ? (back ? -1e-18f : 1e-18f) : along);
            near[k] = 2 * k + back;
            originNear[k] = back ? at - margin : at + margin;
            originFar[k] = back ? at + margin : at - margin;
        }
    }
};

struct Hits4 { D4 t, u, v; M4 valid; };

MIRK_INLINE Hits4 intersect4(const Tree::Block& b, const Vec3& origin, const Vec3& direction, double tMin, double tMax,
                             double tolerance)
{
    const D3 v0 = vertex(b, 0), e1 = vertex(b, 1) - v0, e2 = vertex(b, 2) - v0;
    const D3 d = splat(direction), s = splat(origin) - v0, p = cross(d, e2), q = cross(s, e1);
    const D4 inverse = splat(1.0) / dot(e1, p);
    Hits4    h;
    h.u = dot(s, p) * inverse;
    h.v = dot(d, q) * inverse;
    h.t = dot(e2, q) * inverse;
    const D4 low = splat(-tolerance);
    h.valid = (h.u >= low) & (h.v >= low) & (h.u + h.v <= splat(1.0 + tolerance)) & (h.t >= splat(tMin))
              & (h.t <= splat(tMax));
    return h;
}

/// A ray of unit length, as the kernels want it.
struct UnitRay
{
    Vec3   direction;
    double length, tMin, tMax;   ///< of the given direction; limits in units of the space
    explicit UnitRay(const Ray& r)
    {
        const double largest = std::max({std::fabs(r.direction.x), std::fabs(r.direction.y), std::fabs(r.direction.z)});
        const Vec3   scaled = r.direction * (1 / largest);   // first, so that squares neither overflow nor vanish
        const double l = mirk::length(scaled);
        direction = scaled * (1 / l);
        length = largest * l;
        tMin = r.tMin * length;
        tMax = std::min(r.tMax * length, DBL_MAX);   // what overflows is no hit
    }
};

/// Calls `leaf(block, tMax)` for the blocks that the ray may meet, the nearer boxes first; `leaf` may lower tMax, and
/// returns false to stop.
template <class F>
MIRK_INLINE void walk(const Tree& tree, const Ray& ray, const UnitRay& unit, F leaf)
{
    double tMax = unit.tMax;
    for (const Tree::Block& b : tree.loose())
        if (!leaf(b, tMax))
            return;
    const double reach = std::max({std::fabs(ray.origin.x), std::fabs(ray.origin.y), std::fabs(ray.origin.z)});
    if (!tree.nodes())
        return;
    if (reach > 1e15) {   // too far out for boxes in single precision
        for (const Tree::Block& b : tree.blocks())
            if (!leaf(b, tMax))
                return;
        return;
    }
    const float margin = float(6e-7 * (reach + tree.extent()) + ray.tolerance * tree.longestSide() + 1e-30);
    const BoxRay box(ray.origin, unit.direction, margin);
    const F8 onx = splat(box.originNear[0]), ony = splat(box.originNear[1]), onz = splat(box.originNear[2]);
    const F8 ofx = splat(box.originFar[0]), ofy = splat(box.originFar[1]), ofz = splat(box.originFar[2]);
    const F8 ix = splat(box.inverse[0]), iy = splat(box.inverse[1]), iz = splat(box.inverse[2]);
    const int nx = box.near[0], ny = box.near[1], nz = box.near[2];
    const F8 start = splat(float(std::max(unit.tMin, 0.0) * 0.999999));
    float limit = float(std::min(tMax * 1.000001, 1e30));

    Stack stack;
    stack.push(0, 0);
    while (stack.size > 0) {
        const Stack::Entry top = stack.entry[--stack.size];
        if (top.distance > limit)
            continue;
        int32_t child = top.child;
        while (child >= 0) {
            const BvhNode& n = tree.nodes()[child];
            const F8 from = upper(upper((load(n.bounds[nx]) - onx) * ix, (load(n.bounds[ny]) - ony) * iy),
                                  upper((load(n.bounds[nz]) - onz) * iz, start));
            const F8 to = lower(lower((load(n.bounds[nx ^ 1]) - ofx) * ix, (load(n.bounds[ny ^ 1]) - ofy) * iy),
                                lower((load(n.bounds[nz ^ 1]) - ofz) * iz, splat(limit)));
            unsigned lanes = lanesOf(I8(from <= to * splat(1.000001f)));
            if (!lanes)
                break;
            if (!(lanes & (lanes - 1))) {   // one: no detour over the stack
                child = n.child[__builtin_ctz(lanes)];
                continue;
            }
            const unsigned others = lanes & (lanes - 1);
            if (!(others & (others - 1))) {   // two: the nearer one at once
                const int   a = __builtin_ctz(lanes), b = __builtin_ctz(others);
                const float da = from[a], db = from[b];
                const bool  second = db < da;
                const int   next = n.child[second ? b : a], later = n.child[second ? a : b];
                prefetch(tree, later);
                stack.push(later, second ? da : db);
                child = next;
                continue;
            }
            stack.push(tree, n, lanes, from);
            child = stack.entry[--stack.size].child;
        }
        if (child >= 0)
            continue;
        const double before = tMax;
        if (!leaf(tree.blocks()[size_t(~child)], tMax))
            return;
        if (tMax < before)
            limit = float(std::min(tMax * 1.000001, 1e30));
    }
}

MIRK_INLINE void take(RayHit& hit, const Hits4& h, const Tree::Block& b, int lane, double length)
{
    hit.t = h.t[lane] / length;
    hit.w[0] = 1 - h.u[lane] - h.v[lane];
    hit.w[1] = h.u[lane];
    hit.w[2] = h.v[lane];
    hit.triangle = b.id[lane];
    hit.face = b.face[lane];
    hit.inFace = b.inFace[lane];
    hit.point = vertexOf(b, 0, lane) * hit.w[0] + vertexOf(b, 1, lane) * hit.w[1] + vertexOf(b, 2, lane) * hit.w[2];
}

MIRK_INLINE bool wanted(const Ray& ray, int id) { return !ray.filter || ray.filter->has(id); }

bool closestHit(const Tree& tree, const Ray& ray, RayHit& hit)
{
    const UnitRay unit(ray);
    double best = DBL_MAX;
    hit.triangle = -1;
    walk(tree, ray, unit, [&](const Tree::Block& b, double& tMax) MIRK_LAMBDA {
        const Hits4 h = intersect4(b, ray.origin, unit.direction, unit.tMin, tMax, ray.tolerance);
        for (unsigned lanes = lanesOf(h.valid); lanes; lanes &= lanes - 1) {
            const int lane = __builtin_ctz(lanes);
            if ((h.t[lane] < best || (h.t[lane] == best && b.id[lane] < hit.triangle)) && wanted(ray, b.id[lane])) {
                take(hit, h, b, lane, unit.length);
                best = tMax = h.t[lane];
            }
        }
        return true;
    });
    return hit.triangle >= 0;
}

bool anyHit(const Tree& tree, const Ray& ray, RayHit& hit)
{
    const UnitRay unit(ray);
    hit.triangle = -1;
    walk(tree, ray, unit, [&](const Tree::Block& b, double& tMax) MIRK_LAMBDA {
        const Hits4 h = intersect4(b, ray.origin, unit.direction, unit.tMin, tMax, ray.tolerance);
        for (unsigned lanes = lanesOf(h.valid); lanes; lanes &= lanes - 1) {
            const int lane = __builtin_ctz(lanes);
            if (wanted(ray, b.id[lane])) {
                take(hit, h, b, lane, unit.length);
                return false;
            }
        }
        return true;
    });
    return hit.triangle >= 0;
}

void allHits(const Tree& tree, const Ray& ray, std::vector<RayHit>& hits)
{
    const UnitRay unit(ray);
    walk(tree, ray, unit, [&](const Tree::Block& b, double& tMax) MIRK_LAMBDA {
        const Hits4 h = intersect4(b, ray.origin, unit.direction, unit.tMin, tMax, ray.tolerance);
        for (unsigned lanes = lanesOf(h.valid); lanes; lanes &= lanes - 1) {
            const int lane = __builtin_ctz(lanes);
            if (wanted(ray, b.id[lane]))
                take(hits.emplace_back(), h, b, lane, unit.length);
        }
        return true;
    });
}

// ---- closest points ------------------------------------------------------------------------------------------------

/// Squared distance of the origin from a side, which may have no length.
MIRK_INLINE D4 sideDistanceSq(const D3& a, const D3& side)
{
    const D4 zero = splat(0.0), one = splat(1.0);
    const D4 lengthSq = dot(side, side), along = zero - dot(a, side);
    const D4 t = along > zero ? (along < lengthSq ? along / lengthSq : one) : zero;
    const D3 p = a + side * t;
    return dot(p, p);
}

/// The same as nearestToOrigin(), of four triangles.
MIRK_INLINE D4 distancesSq(const D3& a, const D3& b, const D3& c)
{
    const D3 ab = b - a, ac = c - a;
    const D4 sa = sideDistanceSq(a, ab), sb = sideDistanceSq(b, c - b), sc = sideDistanceSq(c, a - c);
    D4 best = sa < sb ? sa : sb;
    best = sc < best ? sc : best;
    const D3 n = cross(ab, ac);
    const D4 zero = splat(0.0), height = dot(n, a), plane = height * height / dot(n, n);
    const M4 inside = (dot(n, cross(b, c)) > zero) & (dot(n, cross(c, a)) > zero) & (dot(n, cross(a, b)) > zero)
                      & (plane < best);
    return inside ? plane : best;
}

MIRK_INLINE D3 through(const D3& v, const Metric& m)
{
    const auto at = [&](int k) MIRK_LAMBDA { return v.x * splat(m.m[0][k]) + v.y * splat(m.m[1][k]) + v.z * splat(m.m[2][k]); };
    return {at(0), at(1), at(2)};
}

struct Search
{
    Vec3   point;
    double best;                     ///< squared
    int    triangle = INT_MAX;
    const Tree::Block* block = nullptr;
    int    lane = 0;

    template <bool kMetric>
    MIRK_INLINE bool visit(const Tree::Block& b, const Metric* metric)
    {
        const D3 q = splat(point);
        D3 v0 = vertex(b, 0) - q, v1 = vertex(b, 1) - q, v2 = vertex(b, 2) - q;
        if (kMetric) {
            v0 = through(v0, *metric);
            v1 = through(v1, *metric);
            v2 = through(v2, *metric);
        }
        const D4 d = distancesSq(v0, v1, v2);
        bool better = false;
        for (unsigned lanes = lanesOf(M4(d <= splat(best))); lanes; lanes &= lanes - 1) {
            const int i = __builtin_ctz(lanes);
            if (d[i] < best || (d[i] == best && b.id[i] < triangle)) {
                best = d[i];
                triangle = b.id[i];
                block = &b;
                lane = i;
                better = true;
            }
        }
        return better;
    }
};

template <bool kMetric>
MIRK_INLINE void search(const Tree& tree, Search& s, const Metric* metric)
{
    for (const Tree::Block& b : tree.loose())
        s.visit<kMetric>(b, metric);
    const double reach = std::max({std::fabs(s.point.x), std::fabs(s.point.y), std::fabs(s.point.z)});
    if (!tree.nodes())
        return;
    if (reach > 1e15) {
        for (const Tree::Block& b : tree.blocks())
            s.visit<kMetric>(b, metric);
        return;
    }
    const double margin = 6e-7 * (reach + tree.extent()), shrink = kMetric ? 1 / metric->shrink : 1.0;
    const auto limitOf = [&](double distanceSq) MIRK_LAMBDA {
        const double d = std::sqrt(distanceSq) * shrink * 1.000001 + margin;
        return float(std::min(d * d, 1e38));
    };
    const F8 x = splat(float(s.point.x)), y = splat(float(s.point.y)), z = splat(float(s.point.z)), zero = splat(0.0f);
    float limit = limitOf(s.best);

    Stack stack;
    stack.push(0, 0);
    while (stack.size > 0) {
        const Stack::Entry top = stack.entry[--stack.size];
        if (top.distance > limit)
            continue;
        int32_t child = top.child;
        while (child >= 0) {
            const BvhNode& n = tree.nodes()[child];
            const F8 dx = upper(upper(load(n.bounds[0]) - x, x - load(n.bounds[1])), zero);
            const F8 dy = upper(upper(load(n.bounds[2]) - y, y - load(n.bounds[3])), zero);
            const F8 dz = upper(upper(load(n.bounds[4]) - z, z - load(n.bounds[5])), zero);
            const F8 d = dx * dx + dy * dy + dz * dz;
            const unsigned lanes = lanesOf(I8(d <= splat(limit)));
            if (!lanes)
                break;
            stack.push(tree, n, lanes, d);
            child = stack.entry[--stack.size].child;
        }
        if (child < 0 && s.visit<kMetric>(tree.blocks()[size_t(~child)], metric))
            limit = limitOf(s.best);
    }
}

bool nearest(const Tree& tree, const Vec3& point, double maxDistance, Nearest& result, const Metric* metric)
{
    Search s{point, std::min(maxDistance * maxDistance, DBL_MAX)};
    metric ? search<true>(tree, s, metric) : search<false>(tree, s, nullptr);
    if (!s.block)
        return false;
    Vec3 v[3], seen[3];
    for (int k = 0; k < 3; ++k) {
        v[k] = vertexOf(*s.block, k, s.lane);
        seen[k] = v[k] - point;
        if (metric) {
            const auto& m = metric->m;
            seen[k] = {seen[k].x * m[0][0] + seen[k].y * m[1][0] + seen[k].z * m[2][0],
                       seen[k].x * m[0][1] + seen[k].y * m[1][1] + seen[k].z * m[2][1],
                       seen[k].x * m[0][2] + seen[k].y * m[1][2] + seen[k].z * m[2][2]};
        }
    }
    nearestToOrigin(seen, result.w);
    result.point = v[0] * result.w[0] + v[1] * result.w[1] + v[2] * result.w[2];
    result.normal = mirk::cross(v[1] - v[0], v[2] - v[0]);
    result.distanceSq = s.best;
    result.triangle = s.triangle;
    return true;
}

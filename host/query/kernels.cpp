// Tree's queries, by the kernels that fit the processor.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "query/tree.h"

#define MIRK_INLINE inline __attribute__((always_inline))
#define MIRK_LAMBDA __attribute__((always_inline))

namespace mirk::query {

namespace {

namespace plain {
#include "query/kernels.inl"
}

#if defined(__x86_64__)
#pragma GCC push_options
#pragma GCC target("avx2")
#define MIRK_AVX2   // the compiler's own macro does not follow the pragma
namespace avx2 {
#include "query/kernels.inl"
}
#undef MIRK_AVX2
#pragma GCC pop_options
#else
namespace avx2 = plain;
#endif

bool hasAvx2()
{
#if defined(__x86_64__)
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
#else
    return false;
#endif
}

}  // namespace

bool Tree::closestHit(const Ray& ray, RayHit& hit) const
{
    return hasAvx2() ? avx2::closestHit(*this, ray, hit) : plain::closestHit(*this, ray, hit);
}

bool Tree::anyHit(const Ray& ray, RayHit& hit) const
{
    return hasAvx2() ? avx2::anyHit(*this, ray, hit) : plain::anyHit(*this, ray, hit);
}

void Tree::allHits(const Ray& ray, std::vector<RayHit>& hits) const
{
    hasAvx2() ? avx2::allHits(*this, ray, hits) : plain::allHits(*this, ray, hits);
}

bool Tree::nearest(const Vec3& point, double maxDistance, Nearest& result, const Metric* metric) const
{
    return hasAvx2() ? avx2::nearest(*this, point, maxDistance, result, metric)
                     : plain::nearest(*this, point, maxDistance, result, metric);
}

}  // namespace mirk::query

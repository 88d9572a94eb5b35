#include "generators/scatterSteps.h"

#include <algorithm>
#include <cmath>
#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace scatter_ {

namespace {

Double3 operator-(const Double3& a, const Double3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double  dot(const Double3& a, const Double3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Double3 cross(const Double3& a, const Double3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double distanceSq(const Float3& a, const Float3& b)
{
    const double x = double(a.x) - b.x, y = double(a.y) - b.y, z = double(a.z) - b.z;
    return x * x + y * y + z * z;
}

bool isFinite(const Float3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

float reciprocalRoot(float value)
{
#if defined(__SSE__)
    const float y = _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(value)));
#else
    const float y = 1.0f / std::sqrt(value);
#endif
    return y * (1.5f - 0.5f * value * y * y);
}

} // namespace

bool widenFlat(Box& box)
{
    bool flat = false;
    for (int k = 0; k < 3; ++k) {
        if (box.high[k] - box.low[k] > 0.0001)
            continue;
        box.low[k] -= 1.0;
        box.high[k] += 1.0;
        flat = true;
    }
    return flat;
}

#if defined(__GLIBC__)

Draws::Draws(int seed) { initstate_r(static_cast<unsigned int>(seed), numbers_.data(), numbers_.size(), &state_); }

int Draws::next()
{
    int32_t number = 0;
    random_r(&state_, &number);
    return number;
}

#else

Draws::Draws(int seed) { std::srand(static_cast<unsigned int>(seed)); }
int Draws::next() { return std::rand(); }

#endif

RandomAim::RandomAim(const Box& box, const Matrix& matrix)
{
    for (int k = 0; k < 3; ++k) {
        size_[k] = static_cast<float>(box.high[k] - box.low[k]);
        low_[k] = static_cast<float>(box.low[k]);
    }
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            matrix_[i][j] = static_cast<float>(matrix.m[i][j]);
}

Aim RandomAim::draw(Draws& draws) const
{
    float p[3], d[3];
    for (int k = 0; k < 3; ++k)
        p[k] = draws.unit() * size_[k] + low_[k];
    for (int k = 0; k < 3; ++k)
        d[k] = draws.unit() - 0.5f;
    Aim aim;
    for (int k = 0; k < 3; ++k) {
        aim.direction[k] = d[0] * matrix_[0][k] + d[1] * matrix_[1][k] + d[2] * matrix_[2][k];
        aim.source[k] = p[0] * matrix_[0][k] + p[1] * matrix_[1][k] + p[2] * matrix_[2][k] + matrix_[3][k];
    }
    return aim;
}

Float3 direction(const Float3& v)
{
    const float lengthSq = v.x * v.x + v.y * v.y + v.z * v.z;
    if (!(lengthSq > 1e-20f))
        return v;
    const float k = reciprocalRoot(lengthSq);
    return {v.x * k, v.y * k, v.z * k};
}

float chance(const float* mask, const int vertices[3])
{
    const float sum = mask[vertices[0]] + mask[vertices[1]] + mask[vertices[2]];
    return std::min(static_cast<float>(sum * 0.3333333333333333), 1.0f);
}

double degreesBetween(const Double3& a, const Double3& b)
{
    const Double3 c = cross(a, b);
    // a little more than 180 / pi: opposite vectors come out above a tolerance of 180, and points rest on that
    return std::atan2(std::sqrt(dot(c, c)), dot(a, b)) * 57.29577957;
}

// ---- spacing -------------------------------------------------------------------------------------------------------

namespace {

/// Sorts first to last into a tree: the middle point splits along the axis, the next axis splits its halves.
void arrange(Float3* first, Float3* last, std::size_t bucket, int axis)
{
    if (static_cast<std::size_t>(last - first) <= bucket)
        return;
    Float3* const middle = first + (last - first) / 2;
    std::nth_element(first, middle, last, [axis](const Float3& a, const Float3& b) { return a[axis] < b[axis]; });
    arrange(first, middle, bucket, (axis + 1) % 3);
    arrange(middle + 1, last, bucket, (axis + 1) % 3);
}

bool anyInRow(const Float3* first, const Float3* last, const Float3& point, double reachSq)
{
    for (; first != last; ++first)
        if (distanceSq(*first, point) <= reachSq)
            return true;
    return false;
}

bool anyInTree(const Float3* first, const Float3* last, std::size_t bucket, int axis, const Float3& point, double reachSq)
{
    if (static_cast<std::size_t>(last - first) <= bucket)
        return anyInRow(first, last, point, reachSq);
    const Float3* const middle = first + (last - first) / 2;
    if (distanceSq(*middle, point) <= reachSq)
        return true;
    const double across = double(point[axis]) - (*middle)[axis];
    const int    next = (axis + 1) % 3;
    const bool   below = across < 0.0;
    if (below ? anyInTree(first, middle, bucket, next, point, reachSq)
              : anyInTree(middle + 1, last, bucket, next, point, reachSq))
        return true;
    // rounding is monotone: no point beyond the split comes out nearer than the split itself
    if (!(across * across <= reachSq))
        return false;
    return below ? anyInTree(middle + 1, last, bucket, next, point, reachSq)
                 : anyInTree(first, middle, bucket, next, point, reachSq);
}

} // namespace

void Spacing::add(const Float3& point)
{
    if (!isFinite(point)) {
        odd_.push_back(point);
        return;
    }
    recent_.push_back(point);
    if (recent_.size() < kBucket)
        return;
    Run         carried = std::move(recent_);   // as in a binary counter: equal runs become one of twice the length
    std::size_t k = 0;
    for (; k < runs_.size() && !runs_[k].empty(); ++k) {
        carried.insert(carried.end(), runs_[k].begin(), runs_[k].end());
        runs_[k].clear();
    }
    if (k == runs_.size())
        runs_.emplace_back();
    arrange(carried.data(), carried.data() + carried.size(), kBucket, 0);
    runs_[k] = std::move(carried);
    recent_.clear();
}

bool Spacing::anyWithin(const Float3& point, float distance) const
{
    const double reachSq = double(distance) * distance;
    const auto   inRow = [&](const std::vector<Float3>& points) {
        return anyInRow(points.data(), points.data() + points.size(), point, reachSq);
    };
    for (std::size_t k = runs_.size(); k-- > 0;)   // where most points are first
        if (anyInTree(runs_[k].data(), runs_[k].data() + runs_[k].size(), kBucket, 0, point, reachSq))
            return true;
    return inRow(recent_) || inRow(odd_);
}

// ---- textures and camera -------------------------------------------------------------------------------------------

bool keptByColor(const Double3& rgb, Draws& draws)
{
    const double t = draws.next() * 4.656612870908988e-10;
    return t < rgb.x || t < rgb.y || t < rgb.z;
}

ProjectedUv project(const Float3& p, const Matrix& to)
{
    const double x = p.x * to.m[0][0] + p.y * to.m[1][0] + p.z * to.m[2][0] + to.m[3][0];
    const double y = p.x * to.m[0][1] + p.y * to.m[1][1] + p.z * to.m[2][1] + to.m[3][1];
    return {x >= -0.5 && x <= 0.5 && y >= -0.5 && y <= 0.5, x + 0.5, y + 0.5};
}

const std::array<int, 20> kProjectorOrder = {1, 2, 3, 4, 5, 6, 8, 10, 12, 13, 15, 16, 17, 18, 7, 9, 11, 14, 19, 20};

namespace {

Double3 transformed(const Double3& p, const Matrix& to)
{
    double out[3];
    for (int k = 0; k < 3; ++k)
        out[k] = p.x * to.m[0][k] + p.y * to.m[1][k] + p.z * to.m[2][k] + to.m[3][k];
    return {out[0], out[1], out[2]};
}

Double3 unit(const Double3& v)
{
    const double lengthSq = dot(v, v);
    if (!(lengthSq > 1e-20))
        return v;
    const double k = 1.0 / std::sqrt(lengthSq);
    return {v.x * k, v.y * k, v.z * k};
}

} // namespace

Frustum::Frustum(const Camera& camera)
{
    constexpr double kInchesPerMillimetre = 0.03937;
    constexpr double kOffset = -0.725716;   // inches of film at a focal length of 35 mm
    const double     inches = camera.focalLength * kInchesPerMillimetre, focal = inches == 0.0 ? 1.0 : inches;
    const double     across = double(camera.squeeze) * camera.scale / focal;
    const double     shiftX = camera.horizontalOffset * kOffset, shiftY = camera.verticalOffset * kOffset;

    Double3 corners[2][4];   // near and far; left bottom, right bottom, right top, left top
    for (int plane = 0; plane < 2; ++plane) {
        const double distance = plane ? camera.farClip : camera.nearClip;
        const double x = camera.horizontalAperture * across * distance * 0.5 + camera.expand;
        const double y = camera.verticalAperture * across * distance * 0.5 + camera.expand;
        const double signs[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        for (int k = 0; k < 4; ++k)
            corners[plane][k] = transformed({signs[k][0] * x - shiftX * distance, signs[k][1] * y - shiftY * distance,
                                             -distance}, camera.world);
    }
    const auto side = [](const Double3& corner, const Double3& a, const Double3& b) {
        return Side{corner, unit(cross(a - corner, b - corner))};
    };
    sides_[0] = side(corners[0][0], corners[0][1], corners[0][3]);   // near, towards the eye
    sides_[1] = side(corners[1][0], corners[1][3], corners[1][1]);   // far
    for (int k = 0; k < 4; ++k)                                      // bottom, right, top, left
        sides_[2 + k] = side(corners[1][k], corners[1][(k + 1) % 4], corners[0][k]);
}

bool Frustum::contains(const Float3& p) const
{
    for (const Side& side : sides_)
        if (!(dot(side.corner - Double3{p.x, p.y, p.z}, side.normal) >= 0.0))
            return false;
    return true;
}

} // namespace scatter_

#include "plain_volumes.h"

#include <algorithm>
#include <cmath>

namespace plain {

namespace {

struct Frame
{
    double m[4][3];   ///< world to local
};

struct Key
{
    float position, value;
};

/// A ramp of two linear entries, by search as for any number of them.
struct LinearRamp
{
    std::vector<Key> keys{{0.0f, 1.0f}, {1.0f, 0.0f}};

    float at(float p) const
    {
        if (p <= keys.front().position)
            return keys.front().value;
        for (std::size_t k = 1; k < keys.size(); ++k) {
            if (p < keys[k].position) {
                const float t = (p - keys[k - 1].position) / (keys[k].position - keys[k - 1].position);
                return keys[k - 1].value + t * (keys[k].value - keys[k - 1].value);
            }
        }
        return keys.back().value;
    }
};

double test(int kind, double x, double y, double z)
{
    if (kind == 1) {
        const double most = std::max({std::fabs(x), std::fabs(y), std::fabs(z)});
        return most <= 1.0 ? most : -1.0;
    }
    if (kind == 2)
        y = y > 1.0 ? y - 1.0 : y < -1.0 ? y + 1.0 : 0.0;
    const double d = std::sqrt(x * x + y * y + z * z);
    return d <= 1.0 ? d : -1.0;
}

void offer(Transfer& t, std::size_t i, double d, int bound)
{
    double* slots = &t.d[Transfer::kSlots * i];
    int*    bounds = &t.bound[Transfer::kSlots * i];
    if (t.used[i] < Transfer::kSlots) {
        slots[t.used[i]] = d;
        bounds[t.used[i]++] = bound;
        return;
    }
    for (int k = 0; k < Transfer::kSlots; ++k) {
        if (slots[k] > d) {
            slots[k] = d;
            bounds[k] = bound;
            return;
        }
    }
}

} // namespace

Transfer::Transfer(std::size_t n)
    : count(n), points(3 * n), weights(n), rgba(4 * n), positions(4 * n), d(kSlots * n), bound(kSlots * n), used(n)
{
}

void findInfluences(const std::vector<Volume>& volumes, Transfer& t)
{
    std::fill(t.used.begin(), t.used.end(), 0);
    for (std::size_t v = 0; v < volumes.size(); ++v) {
        const Volume& volume = volumes[v];
        const double  s = 1.0 / volume.size;
        const Frame   f{{{s, 0, 0}, {0, s, 0}, {0, 0, s}, {-s * volume.x, -s * volume.y, -s * volume.z}}};
        for (std::size_t i = 0; i < t.count; ++i) {
            const double x = t.points[3 * i], y = t.points[3 * i + 1], z = t.points[3 * i + 2];
            const double d = test(volume.kind, x * f.m[0][0] + y * f.m[1][0] + z * f.m[2][0] + f.m[3][0],
                                  x * f.m[0][1] + y * f.m[1][1] + z * f.m[2][1] + f.m[3][1],
                                  x * f.m[0][2] + y * f.m[1][2] + z * f.m[2][2] + f.m[3][2]);
            if (d >= 0.0)
                offer(t, i, d, static_cast<int>(v));
        }
    }
}

void transfer(const std::vector<Volume>& volumes, Transfer& t)
{
    findInfluences(volumes, t);
    const LinearRamp weight, pull, kernel;
    for (std::size_t i = 0; i < t.count; ++i) {
        double kernels = 0.0, w = 0.0, rgba[4] = {}, target[3] = {}, strength = 0.0;
        for (int k = 0; k < t.used[i]; ++k) {
            const auto    d = static_cast<float>(t.d[Transfer::kSlots * i + static_cast<std::size_t>(k)]);
            const Volume& v = volumes[static_cast<std::size_t>(t.bound[Transfer::kSlots * i + static_cast<std::size_t>(k)])];
            const double  kw = t.used[i] > 1 ? kernel.at(d) : 1.0;
            const double  g = kw * pull.at(d);
            const double  y = v.kind == 2 ? std::min(std::max<double>(t.points[3 * i + 1], v.y - v.size), v.y + v.size) : v.y;
            kernels += kw;
            w += kw * weight.at(d);
            for (double& c : rgba)
                c += kw;
            target[0] += g * v.x, target[1] += g * y, target[2] += g * v.z;
            strength += g;
        }
        const double share = t.used[i] > 1 ? (kernels > 0.0 ? 1.0 / kernels : 0.0) : 1.0;
        t.weights[i] = w * share;
        for (std::size_t k = 0; k < 4; ++k)
            t.rgba[4 * i + k] = rgba[k] * share;
        for (std::size_t k = 0; k < 3; ++k)
            t.positions[4 * i + k] = t.points[3 * i + k] * (1.0 - strength * share) + target[k] * share;
        t.positions[4 * i + 3] = 1.0;
    }
}

void findInfluences(const Spheres& cloud, std::size_t points, Transfer& t)
{
    std::fill(t.used.begin(), t.used.end(), 0);
    for (std::size_t i = 0; i < points; ++i) {
        const double x = t.points[3 * i], y = t.points[3 * i + 1], z = t.points[3 * i + 2];
        for (std::size_t j = 0; j < cloud.centers.size() / 3; ++j) {
            const double dx = x - cloud.centers[3 * j], dy = y - cloud.centers[3 * j + 1], dz = z - cloud.centers[3 * j + 2];
            const double l = std::sqrt(dx * dx + dy * dy + dz * dz);
            if (l <= cloud.radius)
                offer(t, i, l / cloud.radius, static_cast<int>(j));
        }
    }
}

} // namespace plain

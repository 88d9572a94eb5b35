#include "volumes/transfer.h"

#include <algorithm>
#include <cmath>

#include "core/parallel.h"

using volume::Vec;

namespace {

constexpr int kCapacity = volume::PointBlock::kCapacity;

/// Influences of a block with what each brings: columns as long as the table's.
struct Influences
{
    volume::InfluenceTable table;
    std::vector<double>    kernel, weight, alpha, radius, pull, turn;
    std::vector<Vec>       color, target;

    Influences(int slots, int points, const TransferSettings& on) : table(slots, points)
    {
        const std::size_t size = table.d.size();
        kernel.resize(size, 1.0);
        for (const auto& [wanted, column] : {std::pair(on.weight, &weight), std::pair(on.color, &alpha),
                                             std::pair(on.radius, &radius), std::pair(on.position, &pull),
                                             std::pair(on.normal, &turn)})
            column->resize(wanted ? size : 0);
        color.resize(on.color ? size : 0);
        target.resize(on.position ? size : 0);
    }
};

/// Values of the points of a block.
struct Values
{
    double weight[kCapacity], radius[kCapacity], rgba[4 * kCapacity], normal[3 * kCapacity];
    double length[kCapacity];    ///< of a particle's velocity before
    Vec    moved[kCapacity];
    bool   reached[kCapacity];
};

/// One thread's walk over blocks.
class Walk
{
public:
    Walk(const TransferVolumes& volumes, const volume::InfluenceSearch& search, const TransferSettings& settings,
         const TransferInput& in, const TransferOutput& out, int slots)
        : volumes_(volumes), search_(search), on_(settings), in_(in), out_(out),
          size_(blockSize(slots)), influences_(slots, size_, settings), order_(2 * static_cast<std::size_t>(slots))
    {
    }

    void block(std::size_t from)
    {
        loadBlock(in_, from, size_, block_);
        loadValues(from);
        near_.clear();
        if (on_.process)
            search_.volumesNear(block_, near_);
        std::fill(values_.reached, values_.reached + block_.count, false);
        if (!near_.empty()) {
            influences_.table.clear();
            for (const int v : near_)
                take(v);
            for (int i = 0; i < block_.count; ++i)
                blend(i);
        }
        store(from);
    }

private:
    void loadValues(std::size_t from);
    void take(int volume);
    void takeTargets(int volume);
    void blend(int i);
    void blendColor(int i, const int* order, int count, double kernels);
    void blendNormal(int i, const int* order, int count, double kernels);
    void store(std::size_t from);
    void storePoints(std::size_t from);

    /// Calls f(slot, the ramp there, sphere or -1) for each influence just taken.
    template <class F>
    void scatter(const Ramp& ramp, F&& f)
    {
        evaluate(ramp, at_, ramped_);
        for (std::size_t k = 0; k < slots_.size(); ++k)
            f(static_cast<std::size_t>(slots_[k]), static_cast<double>(ramped_[k]), sphere_[k]);
    }
    /// Of several influences: the sum of kernel * column over that of the kernel. 0 without any kernel.
    double mean(const std::vector<double>& column, const int* order, int count, double kernels) const
    {
        if (count == 1)
            return column[static_cast<std::size_t>(order[0])];
        double sum = 0.0;
        for (int k = 0; k < count; ++k)
            sum += influences_.kernel[static_cast<std::size_t>(order[k])] * column[static_cast<std::size_t>(order[k])];
        return kernels != 0.0 ? sum / kernels : 0.0;
    }

    const TransferVolumes&         volumes_;
    const volume::InfluenceSearch& search_;
    const TransferSettings&        on_;
    const TransferInput&           in_;
    const TransferOutput&          out_;
    int                            size_;
    Influences                     influences_;
    volume::PointBlock             block_;
    volume::Candidates             candidates_;
    Values                         values_;
    std::vector<int>               near_, order_;
    std::vector<int>               slots_, sphere_, point_;   ///< one volume's influences that got a slot
    std::vector<float>             at_, ramped_;
};

double blended(double old, double value) { return old * (1.0 - value) + value; }

void Walk::loadValues(std::size_t from)
{
    const int  count = block_.count;
    const bool cleared = !on_.merge;
    if (on_.weight) {
        for (int i = 0; i < count; ++i) {
            const std::size_t at = from + static_cast<std::size_t>(i);
            values_.weight[i] = !cleared && in_.weights && at < in_.weightCount ? in_.weights[at] : 0.0;
        }
    }
    if (on_.radius) {
        for (int i = 0; i < count; ++i)
            values_.radius[i] = !cleared && in_.radii ? in_.radii[from + static_cast<std::size_t>(i)] : 0.0;
    }
    if (on_.color) {
        double* to = values_.rgba;
        if (!cleared && in_.rgba) {
            std::copy_n(in_.rgba + 4 * from, 4 * count, to);
        } else if (!cleared && in_.colors) {
            const float* c = in_.colors + 4 * from;
            for (int i = 0; i < count; ++i, c += 4, to += 4) {
                const bool none = c[0] == -1.0f && c[1] == -1.0f && c[2] == -1.0f && c[3] == -1.0f;
                for (int k = 0; k < 4; ++k)
                    to[k] = none ? 0.0 : static_cast<double>(c[k]);
            }
        } else {
            for (int i = 0; i < count; ++i, to += 4) {
                to[0] = to[1] = to[2] = 0.0;
                to[3] = on_.solidAlpha ? 1.0 : 0.0;
            }
        }
    }
    if (on_.normal) {
        for (int i = 0; i < count; ++i) {
            const double* n = in_.normals ? in_.normals + 3 * (from + static_cast<std::size_t>(i)) : nullptr;
            const Vec     v = n ? Vec{n[0], n[1], n[2]} : Vec{};
            values_.length[i] = on_.particles ? length(v) : 1.0;
            const Vec old = cleared ? Vec{} : v;
            values_.normal[3 * i] = old.x, values_.normal[3 * i + 1] = old.y, values_.normal[3 * i + 2] = old.z;
        }
    }
}

/// Gives one volume's influences their slots and fills the columns there. A slot that is taken over later in the same
/// run is filled twice; the later one stays.
void Walk::take(int v)
{
    search_.find(v, block_, candidates_);
    slots_.clear();
    at_.clear();
    sphere_.clear();
    point_.clear();
    for (std::size_t k = 0; k < candidates_.size(); ++k) {
        const int slot =
            influences_.table.offer(candidates_.point[k], candidates_.d[k], v, candidates_.cloud[k]);
        if (slot < 0)
            continue;
        slots_.push_back(slot);
        at_.push_back(static_cast<float>(candidates_.d[k]));
        sphere_.push_back(candidates_.cloud[k]);
        point_.push_back(candidates_.point[k]);
    }
    if (slots_.empty())
        return;
    const Falloffs&      falloff = volumes_.falloffs[static_cast<std::size_t>(v)];
    const volume::Cloud& cloud = volumes_.cloud;
    if (influences_.table.stride() > 1)
        scatter(volumes_.kernel, [&](std::size_t s, double r, int) { influences_.kernel[s] = r < 0.0 ? 0.0 : r; });
    if (on_.weight)
        scatter(falloff.weight, [&](std::size_t s, double r, int j) {
            influences_.weight[s] = j < 0 ? r : r * cloud.weights[static_cast<std::size_t>(j)];
        });
    if (on_.radius)
        scatter(falloff.radius, [&](std::size_t s, double r, int j) {
            influences_.radius[s] = j < 0 ? r : r * cloud.radii[static_cast<std::size_t>(j)];
        });
    if (on_.normal)
        scatter(falloff.normal, [&](std::size_t s, double r, int) { influences_.turn[s] = r; });
    if (on_.color) {
        scatter(falloff.alpha, [&](std::size_t s, double r, int j) {
            influences_.alpha[s] = j < 0 ? r : r * cloud.rgba[static_cast<std::size_t>(j)][3];
        });
        const bool   flat = falloff.color.entryCount() <= 1;
        const MColor only = falloff.color.color(0.0f);
        for (std::size_t k = 0; k < slots_.size(); ++k) {
            Vec& to = influences_.color[static_cast<std::size_t>(slots_[k])];
            if (sphere_[k] >= 0) {
                const auto& c = cloud.rgba[static_cast<std::size_t>(sphere_[k])];
                to = {c[0], c[1], c[2]};
            } else {
                const MColor c = flat ? only : falloff.color.color(at_[k]);
                to = {c.r, c.g, c.b};
            }
        }
    }
    if (on_.position) {
        scatter(falloff.position, [&](std::size_t s, double r, int) { influences_.pull[s] = r; });
        takeTargets(v);
    }
}

void Walk::takeTargets(int v)
{
    const volume::Volume& volume = volumes_.volumes[static_cast<std::size_t>(v)];
    for (std::size_t k = 0; k < slots_.size(); ++k) {
        Vec& to = influences_.target[static_cast<std::size_t>(slots_[k])];
        if (sphere_[k] >= 0) {
            to = volumes_.cloud.positions[static_cast<std::size_t>(sphere_[k])];
        } else if (volume.kind != volume::Kind::kCapsule) {
            to = volume.origin;
        } else {
            // a point in no region adds no target but its strength all the same: it goes towards the world's origin
            Vec at;
            to = volume::target(volume, block_.at(point_[k]), !on_.particles, at) ? at : Vec{};
        }
    }
}

void Walk::blend(int i)
{
    const int count = influences_.table.count(i);
    if (count == 0)
        return;
    values_.reached[i] = true;
    const int* order = order_.data();
    influences_.table.ordered(i, order_.data());
    double kernels = 0.0;
    for (int k = 0; count > 1 && k < count; ++k)
        kernels += influences_.kernel[static_cast<std::size_t>(order[k])];

    if (on_.weight) {
        const double v = mean(influences_.weight, order, count, kernels);
        double&      weight = values_.weight[i];
        weight = on_.blend && weight != 0.0 ? blended(weight, v) : v;
    }
    if (on_.color)
        blendColor(i, order, count, kernels);
    if (on_.radius) {
        const double v = mean(influences_.radius, order, count, kernels);
        double&      radius = values_.radius[i];
        radius = on_.blend && radius != 0.0 ? blended(radius, v) : v;
        if (radius < 0.0)
            radius = 0.0;
    }
    if (on_.position) {
        Vec    sum;
        double strength = 0.0;
        for (int k = 0; k < count; ++k) {
            const auto   s = static_cast<std::size_t>(order[k]);
            const double g = count > 1 ? influences_.kernel[s] * influences_.pull[s] : influences_.pull[s];
            sum = sum + influences_.target[s] * g;
            strength += g;
        }
        if (count > 1) {
            sum = kernels > 0.0 ? Vec{sum.x / kernels, sum.y / kernels, sum.z / kernels} : Vec{};
            strength = kernels > 0.0 ? strength / kernels : 0.0;
        }
        values_.moved[i] = block_.at(i) * (1.0 - strength) + sum;
    }
    if (on_.normal)
        blendNormal(i, order, count, kernels);
}

void Walk::blendColor(int i, const int* order, int count, double kernels)
{
    Vec    color;
    double alpha = 0.0;
    for (int k = 0; k < count; ++k) {
        const auto   s = static_cast<std::size_t>(order[k]);
        const double kw = count > 1 ? influences_.kernel[s] : 1.0;
        const double a = influences_.alpha[s];
        color = color + influences_.color[s] * (on_.alphaModulate ? a * kw : kw);
        alpha += kw * a;
    }
    if (count > 1) {
        color = kernels != 0.0 ? Vec{color.x / kernels, color.y / kernels, color.z / kernels} : Vec{};
        alpha = kernels != 0.0 ? alpha / kernels : 0.0;
    }
    double*    rgba = values_.rgba + 4 * i;
    const bool mixes = on_.blend && (rgba[0] != 0.0 || rgba[1] != 0.0 || rgba[2] != 0.0 || rgba[3] != 0.0);
    rgba[0] = mixes ? blended(rgba[0], color.x) : color.x;
    rgba[1] = mixes ? blended(rgba[1], color.y) : color.y;
    rgba[2] = mixes ? blended(rgba[2], color.z) : color.z;
    rgba[3] = on_.solidAlpha ? 1.0 : mixes ? blended(rgba[3], alpha) : alpha;
}

void Walk::blendNormal(int i, const int* order, int count, double kernels)
{
    Vec    sum, direction;
    double strength = 0.0;
    for (int k = 0; k < count; ++k) {
        const auto   s = static_cast<std::size_t>(order[k]);
        const double share = count > 1 ? influences_.turn[s] * influences_.kernel[s] : influences_.turn[s];
        if (influences_.table.cloud[s] >= 0)
            direction = volumes_.cloud.normals[static_cast<std::size_t>(influences_.table.cloud[s])];
        else   // a capsule may leave the direction as the influence before left it
            directionAt(volumes_.volumes[static_cast<std::size_t>(influences_.table.bound[s])], block_.at(i), direction);
        sum = sum + direction * share;
        strength += share;
    }
    if (count > 1)
        strength = kernels != 0.0 ? strength / kernels : 0.0;
    sum = normalized(sum);
    double* n = values_.normal + 3 * i;
    Vec     result = sum;
    if (on_.blend) {
        const Vec old{n[0], n[1], n[2]};
        result = normalized((on_.particles ? normalized(old) : old) * (1.0 - strength) + sum * strength);
    }
    if (on_.particles)
        result = result * values_.length[i];
    n[0] = result.x, n[1] = result.y, n[2] = result.z;
}

void Walk::store(std::size_t from)
{
    const std::size_t count = static_cast<std::size_t>(block_.count);
    if (out_.weights)
        std::copy_n(values_.weight, count, out_.weights + from);
    if (out_.radii)
        std::copy_n(values_.radius, count, out_.radii + from);
    if (out_.normals)
        std::copy_n(values_.normal, 3 * count, out_.normals + 3 * from);
    if (out_.rgba) {
        double* to = out_.rgba + 4 * from;
        if (on_.process)
            std::copy_n(values_.rgba, 4 * count, to);
        for (std::size_t i = 0; !on_.process && i < count; ++i, to += 4) {   // not the colours before
            to[0] = to[1] = to[2] = 0.0;
            to[3] = on_.solidAlpha ? 1.0 : 0.0;
        }
    }
    if (out_.colors) {
        float* to = out_.colors + 4 * from;
        for (std::size_t k = 0; k < 4 * count; ++k)
            to[k] = static_cast<float>(values_.rgba[k]);
    }
    if (out_.points || out_.vectors || out_.local)
        storePoints(from);
}

void Walk::storePoints(std::size_t from)
{
    for (int i = 0; i < block_.count; ++i) {
        const std::size_t at = from + static_cast<std::size_t>(i);
        const bool        reached = values_.reached[i];
        const Vec         p = reached ? values_.moved[i] : block_.at(i);
        if (out_.points) {
            double* to = out_.points + 4 * at;
            if (!reached && in_.points && in_.pointStride == 4)
                std::copy_n(in_.points + 4 * at, 4, to);
            else
                to[0] = p.x, to[1] = p.y, to[2] = p.z, to[3] = 1.0;
        }
        if (out_.vectors) {
            double* to = out_.vectors + 3 * at;
            to[0] = p.x, to[1] = p.y, to[2] = p.z;
        }
        if (out_.local) {
            float* to = out_.local + 4 * at;
            if (reached) {
                const Vec l = transformPoint(p, in_.toLocal);
                to[0] = static_cast<float>(l.x), to[1] = static_cast<float>(l.y), to[2] = static_cast<float>(l.z);
            } else {
                std::copy_n(in_.local + 3 * at, 3, to);
            }
            to[3] = 1.0f;
        }
    }
}

} // namespace

Vec TransferInput::at(std::size_t i) const
{
    if (local) {
        const float* p = local + 3 * i;
        return transformPoint({p[0], p[1], p[2]}, toWorld);
    }
    const double* p = points + pointStride * i;
    const double  w = pointStride == 4 ? p[3] : 1.0;
    return w == 1.0 ? Vec{p[0], p[1], p[2]} : Vec{p[0] / w, p[1] / w, p[2] / w};
}

void loadBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block)
{
    const std::size_t count = std::min(in.count - from, static_cast<std::size_t>(std::min(most, kCapacity)));
    block.count = static_cast<int>(count);
    const auto& m = in.toWorld.m;
    const bool  plain = in.local && in.toWorld.affine();
    for (std::size_t i = 0; plain && i < count; ++i) {
        const float* p = in.local + 3 * (from + i);
        const double x = p[0], y = p[1], z = p[2];
        block.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        block.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        block.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
    for (std::size_t i = 0; !plain && i < count; ++i) {
        const Vec p = in.at(from + i);
        block.x[i] = p.x, block.y[i] = p.y, block.z[i] = p.z;
    }
    block.bound();
}

int slotsNeeded(int maxInfluences, const std::vector<volume::Volume>& volumes)
{
    std::size_t things = 1;
    for (const volume::Volume& v : volumes)
        things += v.kind == volume::Kind::kCloud ? v.cloudEnd - v.cloudBegin : 1;
    return static_cast<int>(std::min(static_cast<std::size_t>(std::max(1, maxInfluences)), things));
}

int blockSize(int slots) { return std::clamp(16384 / slots, 1, kCapacity); }

void evaluate(const Ramp& ramp, const std::vector<float>& at, std::vector<float>& values)
{
    values.resize(at.size());
    if (ramp.entryCount() <= 1)
        std::fill(values.begin(), values.end(), ramp.value(0.0f));
    else
        ramp.values(at.data(), at.size(), values.data());
}

void transfer(const TransferVolumes& volumes, const volume::Box& pointsBox, const TransferSettings& settings,
              const TransferInput& in, const TransferOutput& out)
{
    const volume::InfluenceSearch search(volumes.volumes, volumes.cloud, pointsBox);
    const int                     slots = slotsNeeded(settings.maxInfluences, volumes.volumes);
    const auto                    step = static_cast<std::size_t>(blockSize(slots));
    parallelFor((in.count + step - 1) / step, 64, [&](std::size_t first, std::size_t last) {
        Walk walk(volumes, search, settings, in, out, slots);
        for (std::size_t block = first; block < last; ++block)
            walk.block(block * step);
    });
}

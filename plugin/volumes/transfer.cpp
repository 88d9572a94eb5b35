#include "volumes/transfer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "core/parallel.h"

using volume::Vec;

namespace {

constexpr int kCapacity = volume::PointBlock::kCapacity;

/// What one influence brings to its point.
struct Brought
{
    double kernel = 1.0, weight = 0.0, alpha = 0.0, radius = 0.0, pull = 0.0, turn = 0.0;
    Vec    color, target;
};

/// One volume's influences that got a slot, and their ramps. Columns of ramps that are not wanted stay as they were
/// made: kernel 1, the others 0.
struct Batch
{
    std::vector<int>   slot, from;   ///< `from`: the candidate
    std::vector<float> at, kernel, weight, radius, turn, alpha, pull;

    void room(std::size_t count)
    {
        if (slot.size() >= count)
            return;
        slot.resize(count);
        from.resize(count);
        kernel.resize(count, 1.0f);
        for (std::vector<float>* column : {&at, &weight, &radius, &turn, &alpha, &pull})
            column->resize(count);
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

double blended(double old, double value) { return old * (1.0 - value) + value; }
Vec    over(Vec v, double divisor) { return {v.x / divisor, v.y / divisor, v.z / divisor}; }

void fillBlack(double* rgba, std::size_t count, bool solid)
{
    for (std::size_t i = 0; i < count; ++i, rgba += 4) {
        rgba[0] = rgba[1] = rgba[2] = 0.0;
        rgba[3] = solid ? 1.0 : 0.0;
    }
}

/// One thread's walk over blocks.
class Walk
{
public:
    Walk(const TransferVolumes& volumes, const volume::InfluenceSearch& search, const TransferSettings& settings,
         const TransferInput& in, const TransferOutput& out, int slots)
        : volumes_(volumes), search_(search), on_(settings), in_(in), out_(out), table_(slots, blockSize(slots)),
          brought_(table_.d.size()), order_(2 * static_cast<std::size_t>(slots))
    {
    }

    void block(std::size_t from, int most)
    {
        loadBlock(in_, from, most, block_);
        loadValues(from);
        std::fill(values_.reached, values_.reached + block_.count, false);
        near_.clear();
        if (on_.process)
            search_.volumesNear(block_.box, near_);
        if (!near_.empty()) {
            table_.clear();
            for (const int v : near_)
                take(v);
            for (int i = 0; i < block_.count; ++i)
                blend(i);
        }
        store(from);
    }

private:
    void loadValues(std::size_t from);
    void loadColors(std::size_t from, std::size_t count);
    void take(int volume);
    void takeCloud(std::size_t taken);
    void takeShape(int volume, std::size_t taken);
    void blend(int i);
    void blendNormal(int i, int count, double kernels);
    void mixColor(double* rgba, Vec color, double alpha) const;
    double mixed(double old, double value) const { return on_.blend && old != 0.0 ? blended(old, value) : value; }
    void store(std::size_t from);
    void storePoints(std::size_t from);
    void storeMoved(std::size_t from);

    const TransferVolumes&         volumes_;
    const volume::InfluenceSearch& search_;
    const TransferSettings&        on_;
    const TransferInput&           in_;
    const TransferOutput&          out_;
    volume::InfluenceTable         table_;
    std::vector<Brought>           brought_;   ///< one a slot
    volume::PointBlock             block_;
    volume::Candidates             candidates_;
    Values                         values_;
    std::vector<int>               near_, order_;
    Batch                          batch_;
};

void Walk::loadValues(std::size_t from)
{
    const auto count = static_cast<std::size_t>(block_.count);
    const bool kept = on_.merge;
    if (on_.weight) {
        const bool        any = kept && in_.weights && from < in_.weightCount;
        const std::size_t given = any ? std::min(count, in_.weightCount - from) : 0;
        if (any)
            std::copy_n(in_.weights + from, given, values_.weight);
        std::fill(values_.weight + given, values_.weight + count, 0.0);
    }
    if (on_.radius && kept && in_.radii)
        std::copy_n(in_.radii + from, count, values_.radius);
    else if (on_.radius)
        std::fill_n(values_.radius, count, 0.0);
    if (on_.color)
        loadColors(from, count);
    for (std::size_t i = 0; on_.normal && i < count; ++i) {
        const double* n = in_.normals ? in_.normals + 3 * (from + i) : nullptr;
        const Vec     v = n ? Vec{n[0], n[1], n[2]} : Vec{};
        values_.length[i] = on_.particles ? length(v) : 1.0;
        const Vec old = kept ? v : Vec{};
        values_.normal[3 * i] = old.x, values_.normal[3 * i + 1] = old.y, values_.normal[3 * i + 2] = old.z;
    }
}

void Walk::loadColors(std::size_t from, std::size_t count)
{
    double* to = values_.rgba;
    if (on_.merge && in_.rgba) {
        std::copy_n(in_.rgba + 4 * from, 4 * count, to);
    } else if (on_.merge && in_.colors) {
        const float* c = in_.colors + 4 * from;
        for (std::size_t i = 0; i < count; ++i, c += 4, to += 4) {
            const bool none = c[0] == -1.0f && c[1] == -1.0f && c[2] == -1.0f && c[3] == -1.0f;
            for (int k = 0; k < 4; ++k)
                to[k] = none ? 0.0 : static_cast<double>(c[k]);
        }
    } else {
        fillBlack(to, count, on_.solidAlpha);
    }
}

/// Gives one volume's influences their slots and fills those. A slot that is taken over later in the same run is filled
/// twice; the later one stays.
void Walk::take(int v)
{
    search_.find(v, block_, candidates_);
    batch_.room(candidates_.size());
    const std::size_t taken = table_.offer(candidates_, v, batch_.slot.data(), batch_.from.data());
    if (taken == 0)
        return;
    for (std::size_t k = 0; k < taken; ++k)
        batch_.at[k] = static_cast<float>(candidates_.d[static_cast<std::size_t>(batch_.from[k])]);
    const Falloffs& falloff = volumes_.falloffs[static_cast<std::size_t>(v)];
    const auto      ramp = [&](bool wanted, const Ramp& r, std::vector<float>& values) {
        if (wanted)
            evaluate(r, batch_.at.data(), taken, values.data());
    };
    ramp(table_.stride() > 1, volumes_.kernel, batch_.kernel);
    ramp(on_.weight, falloff.weight, batch_.weight);
    ramp(on_.radius, falloff.radius, batch_.radius);
    ramp(on_.normal, falloff.normal, batch_.turn);
    ramp(on_.color, falloff.alpha, batch_.alpha);
    ramp(on_.position, falloff.position, batch_.pull);
    Brought* const brought = brought_.data();
    const int*     slots = batch_.slot.data();
    for (std::size_t k = 0; k < taken; ++k) {
        Brought& b = brought[slots[k]];
        b.kernel = batch_.kernel[k] < 0.0f ? 0.0 : batch_.kernel[k];
        b.weight = batch_.weight[k];
        b.radius = batch_.radius[k];
        b.turn = batch_.turn[k];
        b.alpha = batch_.alpha[k];
        b.pull = batch_.pull[k];
    }
    if (volumes_.volumes[static_cast<std::size_t>(v)].kind == volume::Kind::kCloud)
        takeCloud(taken);
    else
        takeShape(v, taken);
}

/// What a cloud's points bring of their own.
void Walk::takeCloud(std::size_t taken)
{
    const volume::Cloud& cloud = volumes_.cloud;
    for (std::size_t k = 0; k < taken; ++k) {
        Brought&   b = brought_[static_cast<std::size_t>(batch_.slot[k])];
        const auto j = static_cast<std::size_t>(candidates_.cloud[static_cast<std::size_t>(batch_.from[k])]);
        b.weight = batch_.weight[k] * cloud.weights[j];   // set, not multiplied on: a slot may come twice in a batch
        b.radius = batch_.radius[k] * cloud.radii[j];
        b.alpha = batch_.alpha[k] * cloud.rgba[j][3];
        b.color = {cloud.rgba[j][0], cloud.rgba[j][1], cloud.rgba[j][2]};
        b.target = cloud.positions[j];
    }
}

void Walk::takeShape(int v, std::size_t taken)
{
    const volume::Volume& volume = volumes_.volumes[static_cast<std::size_t>(v)];
    const Ramp&           ramp = volumes_.falloffs[static_cast<std::size_t>(v)].color;
    const bool            flat = ramp.entryCount() <= 1;
    const bool            divides = on_.particles && !(volume.matrix.affine() && volume.inverse.affine());
    const MColor          only = ramp.color(0.0f);
    for (std::size_t k = 0; k < taken; ++k) {
        Brought& b = brought_[static_cast<std::size_t>(batch_.slot[k])];
        if (on_.color) {
            const MColor c = flat ? only : ramp.color(batch_.at[k]);
            b.color = {c.r, c.g, c.b};
        }
        b.target = volume.origin;
        if (!on_.position || volume.kind != volume::Kind::kCapsule)
            continue;
        const Vec at = block_.at(candidates_.point[static_cast<std::size_t>(batch_.from[k])]);
        if (!divides)
            b.target = targetInside(volume, at);
        else if (!volume::target(volume, at, false, b.target))
            b.target = {};   // no target, but the strength counts: the point goes towards the world's origin
    }
}

/// Sums over a point's influences; of several they are means by the kernel, and 0 without any of it.
void Walk::blend(int i)
{
    const int count = table_.count(i);
    if (count == 0)
        return;
    values_.reached[i] = true;
    if (count > 2)
        table_.ordered(i, order_.data());
    else   // two have the same sum either way
        order_[0] = table_.first(i), order_[1] = table_.first(i) + 1;
    const int*     order = order_.data();
    const Brought* brought = brought_.data();
    const bool     modulate = on_.alphaModulate;
    double kernels = 0.0, weight = 0.0, radius = 0.0, alpha = 0.0, strength = 0.0;
    Vec    color, target;
    for (int k = 0; k < count; ++k) {
        const Brought& b = brought[order[k]];
        const double   kw = count > 1 ? b.kernel : 1.0, g = kw * b.pull;
        kernels += kw;
        weight += kw * b.weight;
        radius += kw * b.radius;
        alpha += kw * b.alpha;
        color = color + b.color * (modulate ? b.alpha * kw : kw);
        target = target + b.target * g;
        strength += g;
    }
    if (count > 1 && kernels > 0.0) {
        weight /= kernels, radius /= kernels, alpha /= kernels, strength /= kernels;
        color = over(color, kernels);
        target = over(target, kernels);
    } else if (count > 1) {
        weight = radius = alpha = strength = 0.0;
        color = target = {};
    }

    if (on_.weight)
        values_.weight[i] = mixed(values_.weight[i], weight);
    if (on_.color)
        mixColor(values_.rgba + 4 * i, color, alpha);
    if (on_.radius)
        values_.radius[i] = std::max(0.0, mixed(values_.radius[i], radius));
    if (on_.position)
        values_.moved[i] = block_.at(i) * (1.0 - strength) + target;
    if (on_.normal)
        blendNormal(i, count, count > 1 ? kernels : 1.0);
}

void Walk::mixColor(double* rgba, Vec color, double alpha) const
{
    const bool mixes = on_.blend && (rgba[0] != 0.0 || rgba[1] != 0.0 || rgba[2] != 0.0 || rgba[3] != 0.0);
    rgba[0] = mixes ? blended(rgba[0], color.x) : color.x;
    rgba[1] = mixes ? blended(rgba[1], color.y) : color.y;
    rgba[2] = mixes ? blended(rgba[2], color.z) : color.z;
    rgba[3] = on_.solidAlpha ? 1.0 : mixes ? blended(rgba[3], alpha) : alpha;
}

/// The direction is a plain sum, the amount a mean by the kernel.
void Walk::blendNormal(int i, int count, double kernels)
{
    Vec    sum, direction;
    double strength = 0.0;
    for (int k = 0; k < count; ++k) {
        const auto   s = static_cast<std::size_t>(order_[static_cast<std::size_t>(k)]);
        const double share = count > 1 ? brought_[s].turn * brought_[s].kernel : brought_[s].turn;
        if (table_.cloud[s] >= 0)
            direction = volumes_.cloud.normals[static_cast<std::size_t>(table_.cloud[s])];
        else   // a capsule may leave the direction as the influence before left it
            directionAt(volumes_.volumes[static_cast<std::size_t>(table_.bound[s])], block_.at(i), direction);
        sum = sum + direction * share;
        strength += share;
    }
    strength = kernels > 0.0 ? strength / kernels : 0.0;
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
        if (on_.process)
            std::copy_n(values_.rgba, 4 * count, out_.rgba + 4 * from);
        else   // not the colours before
            fillBlack(out_.rgba + 4 * from, count, on_.solidAlpha);
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
    const auto count = static_cast<std::size_t>(block_.count);
    const bool hasW = in_.points && in_.pointStride == 4;
    double*    points = out_.points ? out_.points + 4 * from : nullptr;
    for (std::size_t i = 0; points && i < count; ++i, points += 4)
        points[0] = block_.x[i], points[1] = block_.y[i], points[2] = block_.z[i], points[3] = 1.0;
    if (out_.points && hasW)   // those that nothing reaches keep their w
        std::copy_n(in_.points + 4 * from, 4 * count, out_.points + 4 * from);
    double* vectors = out_.vectors ? out_.vectors + 3 * from : nullptr;
    for (std::size_t i = 0; vectors && i < count; ++i, vectors += 3)
        vectors[0] = block_.x[i], vectors[1] = block_.y[i], vectors[2] = block_.z[i];
    float*       local = out_.local ? out_.local + 4 * from : nullptr;
    const float* before = in_.local ? in_.local + 3 * from : nullptr;
    for (std::size_t i = 0; local && i < count; ++i, local += 4, before += 3)
        local[0] = before[0], local[1] = before[1], local[2] = before[2], local[3] = 1.0f;
    if (!near_.empty())
        storeMoved(from);
}

void Walk::storeMoved(std::size_t from)
{
    for (int i = 0; i < block_.count; ++i) {
        const std::size_t at = from + static_cast<std::size_t>(i);
        const Vec         p = values_.moved[i];
        if (!values_.reached[i])
            continue;
        if (double* to = out_.points ? out_.points + 4 * at : nullptr)
            to[0] = p.x, to[1] = p.y, to[2] = p.z, to[3] = 1.0;
        if (double* to = out_.vectors ? out_.vectors + 3 * at : nullptr)
            to[0] = p.x, to[1] = p.y, to[2] = p.z;
        if (float* to = out_.local ? out_.local + 4 * at : nullptr) {
            const Vec l = transformPoint(p, in_.toLocal);
            to[0] = static_cast<float>(l.x), to[1] = static_cast<float>(l.y), to[2] = static_cast<float>(l.z);
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

namespace {

bool isIdentity(const volume::Matrix& a)
{
    const volume::Matrix identity;
    return std::equal(&a.m[0][0], &a.m[0][0] + 16, &identity.m[0][0]);
}

/// The box of x, y, z triples, four points at a time in step with the registers.
volume::Box boxOfTriples(const float* xyz, std::size_t count)
{
    constexpr float most = std::numeric_limits<float>::infinity();
    float           low[12], high[12];
    std::fill(low, low + 12, most);
    std::fill(high, high + 12, -most);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4, xyz += 12) {
        for (int k = 0; k < 12; ++k) {
            low[k] = xyz[k] < low[k] ? xyz[k] : low[k];
            high[k] = xyz[k] > high[k] ? xyz[k] : high[k];
        }
    }
    volume::Box box;
    for (int k = 0; k < 12; k += 3) {
        box.low = {std::min<double>(box.low.x, low[k]), std::min<double>(box.low.y, low[k + 1]),
                   std::min<double>(box.low.z, low[k + 2])};
        box.high = {std::max<double>(box.high.x, high[k]), std::max<double>(box.high.y, high[k + 1]),
                    std::max<double>(box.high.z, high[k + 2])};
    }
    for (; i < count; ++i, xyz += 3)
        box.add(Vec{xyz[0], xyz[1], xyz[2]});
    return box;
}

} // namespace

void loadBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block)
{
    const std::size_t count = std::min(in.count - from, static_cast<std::size_t>(std::min(most, kCapacity)));
    block.count = static_cast<int>(count);
    const auto&  m = in.toWorld.m;
    const float* p = in.local ? in.local + 3 * from : nullptr;
    if (p && isIdentity(in.toWorld)) {
        for (std::size_t i = 0; i < count; ++i)
            block.x[i] = p[3 * i], block.y[i] = p[3 * i + 1], block.z[i] = p[3 * i + 2];
        block.box = {};
        for (int part = 0; part < block.partCount(); ++part, p += 3 * volume::PointBlock::kPart) {
            const int first = part * volume::PointBlock::kPart;
            const int points = std::min(block.count - first, volume::PointBlock::kPart);
            block.parts[part] = boxOfTriples(p, static_cast<std::size_t>(points));
            block.box.add(block.parts[part]);
        }
        return;
    }
    const bool plain = p && in.toWorld.affine();
    for (std::size_t i = 0; plain && i < count; ++i) {
        const double x = p[3 * i], y = p[3 * i + 1], z = p[3 * i + 2];
        block.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        block.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        block.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
    for (std::size_t i = 0; !plain && i < count; ++i) {
        const Vec at = in.at(from + i);
        block.x[i] = at.x, block.y[i] = at.y, block.z[i] = at.z;
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

void evaluate(const Ramp& ramp, const float* at, std::size_t count, float* values)
{
    if (ramp.entryCount() <= 1)
        std::fill(values, values + count, ramp.value(0.0f));
    else
        ramp.values(at, count, values);
}

void transfer(const TransferVolumes& volumes, const volume::Box& pointsBox, const TransferSettings& settings,
              const TransferInput& in, const TransferOutput& out)
{
    const volume::InfluenceSearch search(volumes.volumes, volumes.cloud, pointsBox);
    const int                     slots = slotsNeeded(settings.maxInfluences, volumes.volumes);
    const int                     size = blockSize(slots);
    const auto                    step = static_cast<std::size_t>(size);
    parallelFor((in.count + step - 1) / step, 64, [&](std::size_t first, std::size_t last) {
        const auto walk = std::make_unique<Walk>(volumes, search, settings, in, out, slots);
        for (std::size_t block = first; block < last; ++block)
            walk->block(block * step, size);
    });
}

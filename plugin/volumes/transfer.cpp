#include "volumes/transfer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "core/parallel.h"
#include "core/stream.h"

using volume::Vec;

namespace {

/// Coordinates that stand in the mesh as they are in the world, of points `first` up to `last` of a block with its count.
void loadStored(const TransferInput& in, std::size_t from, volume::PointBlock& block, int first, int last)
{
    const float* p = in.local + 3 * from;
    for (int i = first; i < last; ++i)
        block.x[i] = p[3 * i], block.y[i] = p[3 * i + 1], block.z[i] = p[3 * i + 2];
}

constexpr int kCapacity = volume::PointBlock::kCapacity;

/// Two numbers that go through the same sums.
using Two = double __attribute__((vector_size(16)));

/// The colour of an influence and the place it pulls to.
struct Place
{
    Two colorXY{}, colorZTargetZ{}, targetXY{};

    void setColor(double r, double g, double b) { colorXY = Two{r, g}, colorZTargetZ = Two{b, colorZTargetZ[1]}; }
    void setColor(const MColor& c) { setColor(c.r, c.g, c.b); }
    void setTarget(Vec t) { targetXY = Two{t.x, t.y}, colorZTargetZ = Two{colorZTargetZ[0], t.z}; }
    Vec  color() const { return {colorXY[0], colorXY[1], colorZTargetZ[0]}; }
    Vec  target() const { return {targetXY[0], targetXY[1], colorZTargetZ[1]}; }
};

/// One influence. Most share the place of their volume.
struct Brought
{
    Two          weightAlpha{}, radiusPull{}, kernelTurn{1.0, 0.0};
    const Place* place = nullptr;

    double kernel() const { return kernelTurn[0]; }
    double turn() const { return kernelTurn[1]; }
};

/// What the influences of a point come to.
struct Sum : Place
{
    Two weightAlpha{}, radiusPull{};

    /// Adds an influence of that share; `modulate` lets its alpha scale its colour.
    void add(Two weightAndAlpha, Two radiusAndPull, const Place& place, double share, bool modulate)
    {
        const double pull = share * radiusAndPull[1], paint = modulate ? weightAndAlpha[1] * share : share;
        weightAlpha += weightAndAlpha * share;
        radiusPull += radiusAndPull * share;
        colorXY += place.colorXY * paint;
        colorZTargetZ += place.colorZTargetZ * Two{paint, pull};
        targetXY += place.targetXY * pull;
    }
    void divide(double by)
    {
        weightAlpha /= by;
        radiusPull /= by;
        colorXY /= by;
        colorZTargetZ /= by;
        targetXY /= by;
    }
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
    int    reached[kCapacity], reachedCount = 0;   ///< points that something reaches
    double results[4 * kCapacity];   ///< points or colours on their way out
    float  singles[4 * kCapacity];
};

double blended(double old, double value) { return old * (1.0 - value) + value; }

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
          brought_(table_.d.size()), own_(table_.d.size()), order_(2 * static_cast<std::size_t>(slots)),
          stored_(in.stored()), far_(in.count * sizeof(double) >= stream::kLarge), places_(volumes.volumes.size())
    {
        for (std::size_t v = 0; v < places_.size(); ++v) {
            places_[v].setColor(volumes.falloffs[v].color.color(0.0f));
            places_[v].setTarget(volumes.volumes[v].origin);
        }
    }

    void block(std::size_t from, int most)
    {
        const bool loaded = boundBlock(in_, from, most, block_);
        near_.clear();
        if (on_.process)
            search_.volumesNear(block_.box, near_);
        loadValues(from);
        values_.reachedCount = 0;
        if (!near_.empty()) {
            if (!loaded)
                loadNear(from);
            if (near_.size() == 1 && !on_.normal && kindOf(near_[0]) != volume::Kind::kCloud)
                takeAlone(near_[0]);
            else
                takeAll();
        }
        store(from);
    }

private:
    volume::Kind kindOf(int v) const { return volumes_.volumes[static_cast<std::size_t>(v)].kind; }
    void takeAll()
    {
        table_.clear();
        for (const int v : near_)
            take(v);
        for (int i = 0; i < block_.count; ++i)
            blend(i);
    }
    void loadNear(std::size_t from);
    void loadValues(std::size_t from);
    void loadColors(std::size_t from, std::size_t count);
    void take(int volume);
    void takeAlone(int volume);
    void sample(int volume, std::size_t count);
    Vec  targetOf(const volume::Volume& volume, Vec at) const;
    void mix(int i, const Sum& sum);
    void takeCloud(std::size_t taken);
    void takeShape(int volume, std::size_t taken);
    void blend(int i);
    void blendNormal(int i, int count, double kernels);
    void mixColor(double* rgba, Vec color, double alpha) const;
    double mixed(double old, double value) const { return on_.blend && old != 0.0 ? blended(old, value) : value; }
    void store(std::size_t from);
    void storeColors(std::size_t from);
    void storePoints(std::size_t from);
    void storeLocal(std::size_t from);
    template <class T>
    void put(const T* values, std::size_t count, T* to) const
    {
        if (far_)
            stream::copy(values, count, to);
        else
            std::copy_n(values, count, to);
    }

    const TransferVolumes&         volumes_;
    const volume::InfluenceSearch& search_;
    const TransferSettings&        on_;
    const TransferInput&           in_;
    const TransferOutput&          out_;
    volume::InfluenceTable         table_;
    std::vector<Brought>           brought_;   ///< one a slot
    std::vector<Place>             own_;       ///< one a slot, for influences that do not share that of their volume
    volume::PointBlock             block_;
    volume::Candidates             candidates_;
    Values                         values_;
    std::vector<int>               near_, order_;
    Batch                          batch_;
    const bool                     stored_;    ///< no matrix between the points of the mesh and the world
    const bool                     far_;       ///< results go past the caches
    std::vector<Place>             places_;    ///< one a volume: its first colour and its origin
};

/// Coordinates from the first to the last part that a shape is near, as it is searched; of all parts for a cloud.
void Walk::loadNear(std::size_t from)
{
    constexpr int kPart = volume::PointBlock::kPart;
    int           first = block_.count, last = 0;
    for (int part = 0; part < block_.partCount(); ++part) {
        const bool wanted = std::any_of(near_.begin(), near_.end(), [&](int v) {
            return kindOf(v) == volume::Kind::kCloud ||
                   volumes_.volumes[static_cast<std::size_t>(v)].box.meets(block_.parts[part]);
        });
        if (wanted)
            first = std::min(first, part * kPart), last = std::min(block_.count, (part + 1) * kPart);
    }
    loadStored(in_, from, block_, first, last);
}

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
    if (table_.stride() > 1)
        evaluate(volumes_.kernel, batch_.at.data(), taken, batch_.kernel.data());
    sample(v, taken);
    Brought* const brought = brought_.data();
    const int*     slots = batch_.slot.data();
    for (std::size_t k = 0; k < taken; ++k) {
        Brought& b = brought[slots[k]];
        b.kernelTurn = Two{batch_.kernel[k] < 0.0f ? 0.0 : batch_.kernel[k], batch_.turn[k]};
        b.weightAlpha = Two{batch_.weight[k], batch_.alpha[k]};
        b.radiusPull = Two{batch_.radius[k], batch_.pull[k]};
    }
    if (kindOf(v) == volume::Kind::kCloud)
        takeCloud(taken);
    else
        takeShape(v, taken);
}

/// The volume's own ramps at the batch's distances.
void Walk::sample(int v, std::size_t count)
{
    const Falloffs& falloff = volumes_.falloffs[static_cast<std::size_t>(v)];
    const auto      ramp = [&](bool wanted, const Ramp& r, std::vector<float>& values) {
        if (wanted)
            evaluate(r, batch_.at.data(), count, values.data());
    };
    ramp(on_.weight, falloff.weight, batch_.weight);
    ramp(on_.radius, falloff.radius, batch_.radius);
    ramp(on_.normal, falloff.normal, batch_.turn);
    ramp(on_.color, falloff.alpha, batch_.alpha);
    ramp(on_.position, falloff.position, batch_.pull);
}

inline void Walk::mixColor(double* rgba, Vec color, double alpha) const
{
    const bool mixes = on_.blend && (rgba[0] != 0.0 || rgba[1] != 0.0 || rgba[2] != 0.0 || rgba[3] != 0.0);
    rgba[0] = mixes ? blended(rgba[0], color.x) : color.x;
    rgba[1] = mixes ? blended(rgba[1], color.y) : color.y;
    rgba[2] = mixes ? blended(rgba[2], color.z) : color.z;
    rgba[3] = on_.solidAlpha ? 1.0 : mixes ? blended(rgba[3], alpha) : alpha;
}

/// What influences give together meets what the point has.
inline void Walk::mix(int i, const Sum& sum)
{
    values_.reached[values_.reachedCount++] = i;
    if (on_.weight)
        values_.weight[i] = mixed(values_.weight[i], sum.weightAlpha[0]);
    if (on_.color)
        mixColor(values_.rgba + 4 * i, sum.color(), sum.weightAlpha[1]);
    if (on_.radius)
        values_.radius[i] = std::max(0.0, mixed(values_.radius[i], sum.radiusPull[0]));
    if (on_.position)
        values_.moved[i] = block_.at(i) * (1.0 - sum.radiusPull[1]) + sum.target();
}

/// The one volume near a block: its influences need no slots, have the full share and go straight to their points.
void Walk::takeAlone(int v)
{
    search_.find(v, block_, candidates_);
    const std::size_t count = candidates_.size();
    if (count == 0)
        return;
    batch_.room(count);
    for (std::size_t k = 0; k < count; ++k)
        batch_.at[k] = static_cast<float>(candidates_.d[k]);
    sample(v, count);
    const volume::Volume& volume = volumes_.volumes[static_cast<std::size_t>(v)];
    const Ramp&           ramp = volumes_.falloffs[static_cast<std::size_t>(v)].color;
    const bool            flat = !on_.color || ramp.entryCount() <= 1;
    const bool            follows = on_.position && volume.kind == volume::Kind::kCapsule;
    Place                 place = places_[static_cast<std::size_t>(v)];
    for (std::size_t k = 0; k < count; ++k) {
        const int i = candidates_.point[k];
        if (!flat)
            place.setColor(ramp.color(batch_.at[k]));
        if (follows)
            place.setTarget(targetOf(volume, block_.at(i)));
        Sum sum;
        sum.add(Two{batch_.weight[k], batch_.alpha[k]}, Two{batch_.radius[k], batch_.pull[k]}, place, 1.0,
                on_.alphaModulate);
        mix(i, sum);
    }
}

/// Where a capsule pulls a point that it reaches.
Vec Walk::targetOf(const volume::Volume& volume, Vec at) const
{
    Vec to;
    if (!on_.particles || (volume.matrix.affine() && volume.inverse.affine()))
        return targetInside(volume, at);
    // no target, but the strength counts: the point goes towards the world's origin
    return volume::target(volume, at, false, to) ? to : Vec{};
}

/// What a cloud's points bring of their own.
void Walk::takeCloud(std::size_t taken)
{
    const volume::Cloud& cloud = volumes_.cloud;
    for (std::size_t k = 0; k < taken; ++k) {
        Brought&   b = brought_[static_cast<std::size_t>(batch_.slot[k])];
        const auto j = static_cast<std::size_t>(candidates_.cloud[static_cast<std::size_t>(batch_.from[k])]);
        // set, not multiplied on: a slot may come twice in a batch
        b.weightAlpha = Two{batch_.weight[k] * cloud.weights[j], batch_.alpha[k] * cloud.rgba[j][3]};
        b.radiusPull[0] = batch_.radius[k] * cloud.radii[j];
        Place& own = own_[static_cast<std::size_t>(batch_.slot[k])];
        own.setColor(cloud.rgba[j][0], cloud.rgba[j][1], cloud.rgba[j][2]);
        own.setTarget(cloud.positions[j]);
        b.place = &own;
    }
}

void Walk::takeShape(int v, std::size_t taken)
{
    const volume::Volume& volume = volumes_.volumes[static_cast<std::size_t>(v)];
    const Ramp&           ramp = volumes_.falloffs[static_cast<std::size_t>(v)].color;
    const bool            flat = !on_.color || ramp.entryCount() <= 1;
    const bool            follows = on_.position && volume.kind == volume::Kind::kCapsule;
    const Place&          common = places_[static_cast<std::size_t>(v)];
    for (std::size_t k = 0; k < taken; ++k) {
        const auto slot = static_cast<std::size_t>(batch_.slot[k]);
        brought_[slot].place = &common;
        if (flat && !follows)
            continue;
        Place& own = own_[slot] = common;
        if (!flat)
            own.setColor(ramp.color(batch_.at[k]));
        if (follows)
            own.setTarget(targetOf(volume, block_.at(candidates_.point[static_cast<std::size_t>(batch_.from[k])])));
        brought_[slot].place = &own;
    }
}

/// Sums over a point's influences; of several they are means by the kernel, and 0 without any of it.
void Walk::blend(int i)
{
    const int count = table_.count(i);
    if (count == 0)
        return;
    if (count > 2)
        table_.ordered(i, order_.data());
    else   // two have the same sum either way
        order_[0] = table_.first(i), order_[1] = table_.first(i) + 1;
    const int*     order = order_.data();
    const Brought* brought = brought_.data();
    double         kernels = 0.0;
    Sum            sum;
    for (int k = 0; k < count; ++k) {
        const Brought& b = brought[order[k]];
        const double   share = count > 1 ? b.kernel() : 1.0;
        kernels += share;
        sum.add(b.weightAlpha, b.radiusPull, *b.place, share, on_.alphaModulate);
    }
    if (count > 1 && kernels > 0.0)
        sum.divide(kernels);
    else if (count > 1)
        sum = {};
    mix(i, sum);
    if (on_.normal)
        blendNormal(i, count, count > 1 ? kernels : 1.0);
}

/// The direction is a plain sum, the amount a mean by the kernel.
void Walk::blendNormal(int i, int count, double kernels)
{
    Vec    sum, direction;
    double strength = 0.0;
    for (int k = 0; k < count; ++k) {
        const auto   s = static_cast<std::size_t>(order_[static_cast<std::size_t>(k)]);
        const double share = count > 1 ? brought_[s].turn() * brought_[s].kernel() : brought_[s].turn();
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
        put(values_.weight, count, out_.weights + from);
    if (out_.radii)
        put(values_.radius, count, out_.radii + from);
    if (out_.normals)
        put(values_.normal, 3 * count, out_.normals + 3 * from);
    if (out_.rgba || out_.colors)
        storeColors(from);
    if (out_.points || out_.vectors)
        storePoints(from);
    if (out_.local)
        storeLocal(from);
}

void Walk::storeColors(std::size_t from)
{
    const std::size_t values = 4 * static_cast<std::size_t>(block_.count);
    if (out_.colors) {
        for (std::size_t k = 0; k < values; ++k)
            values_.singles[k] = static_cast<float>(values_.rgba[k]);
        put(values_.singles, values, out_.colors + 4 * from);
    }
    if (out_.rgba && !on_.process)   // not the colours before
        fillBlack(values_.rgba, values / 4, on_.solidAlpha);
    if (out_.rgba)
        put(values_.rgba, values, out_.rgba + 4 * from);
}

/// Positions in world space. Those that nothing reaches keep their w.
void Walk::storePoints(std::size_t from)
{
    const auto    count = static_cast<std::size_t>(block_.count);
    const bool    hasW = in_.points && in_.pointStride == 4;
    const float*  single = stored_ ? in_.local + 3 * from : nullptr;
    double* const points = values_.results;
    if (out_.points) {
        for (std::size_t i = 0; single && i < count; ++i) {
            double* p = points + 4 * i;
            p[0] = single[3 * i], p[1] = single[3 * i + 1], p[2] = single[3 * i + 2], p[3] = 1.0;
        }
        for (std::size_t i = 0; !single && !hasW && i < count; ++i) {
            double* p = points + 4 * i;
            p[0] = block_.x[i], p[1] = block_.y[i], p[2] = block_.z[i], p[3] = 1.0;
        }
        if (hasW)
            std::copy_n(in_.points + 4 * from, 4 * count, points);
        for (int k = 0; k < values_.reachedCount; ++k) {
            const Vec& to = values_.moved[values_.reached[k]];
            double*    p = points + 4 * values_.reached[k];
            p[0] = to.x, p[1] = to.y, p[2] = to.z, p[3] = 1.0;
        }
        put(points, 4 * count, out_.points + 4 * from);
    }
    if (out_.vectors) {
        const auto set = [&](int i, Vec p) { points[3 * i] = p.x, points[3 * i + 1] = p.y, points[3 * i + 2] = p.z; };
        for (int i = 0; i < block_.count; ++i)
            set(i, in_.at(from + static_cast<std::size_t>(i)));
        for (int k = 0; k < values_.reachedCount; ++k)
            set(values_.reached[k], values_.moved[values_.reached[k]]);
        put(points, 3 * count, out_.vectors + 3 * from);
    }
}

/// The same in object space, in single precision.
void Walk::storeLocal(std::size_t from)
{
    const auto   count = static_cast<std::size_t>(block_.count);
    const float* before = in_.local + 3 * from;
    float*       local = values_.singles;
    for (std::size_t i = 0; i < count; ++i, local += 4, before += 3)
        local[0] = before[0], local[1] = before[1], local[2] = before[2], local[3] = 1.0f;
    for (int k = 0; k < values_.reachedCount; ++k) {
        const Vec l = transformPoint(values_.moved[values_.reached[k]], in_.toLocal);
        float*    to = values_.singles + 4 * values_.reached[k];
        to[0] = static_cast<float>(l.x), to[1] = static_cast<float>(l.y), to[2] = static_cast<float>(l.z);
    }
    put(values_.singles, 4 * count, out_.local + 4 * from);
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

using Four = float __attribute__((vector_size(16)));

/// The box of x, y, z triples, four points at a time in step with the registers. A NaN coordinate adds nothing.
volume::Box boxOfTriples(const float* xyz, std::size_t count)
{
    constexpr float most = std::numeric_limits<float>::infinity();
    Four            lows[3], highs[3], at[3];
    std::fill_n(lows, 3, Four{most, most, most, most});
    std::fill_n(highs, 3, -lows[0]);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4, xyz += 12) {
        std::memcpy(at, xyz, sizeof at);
        for (int k = 0; k < 3; ++k) {
            lows[k] = at[k] < lows[k] ? at[k] : lows[k];
            highs[k] = at[k] > highs[k] ? at[k] : highs[k];
        }
    }
    float low[12], high[12];
    std::memcpy(low, lows, sizeof low);
    std::memcpy(high, highs, sizeof high);
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

int countFrom(const TransferInput& in, std::size_t from, int most)
{
    return static_cast<int>(std::min(in.count - from, static_cast<std::size_t>(std::min(most, kCapacity))));
}

} // namespace

bool TransferInput::stored() const { return local && isIdentity(toWorld); }

bool boundBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block)
{
    if (!in.stored()) {
        loadBlock(in, from, most, block);
        return true;
    }
    block.count = countFrom(in, from, most);
    block.box = {};
    for (int part = 0; part < block.partCount(); ++part) {
        const int first = part * volume::PointBlock::kPart;
        const int points = std::min(block.count - first, volume::PointBlock::kPart);
        block.parts[part] = boxOfTriples(in.local + 3 * (from + static_cast<std::size_t>(first)),
                                         static_cast<std::size_t>(points));
        block.box.add(block.parts[part]);
    }
    return false;
}

void loadBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block)
{
    block.count = countFrom(in, from, most);
    const auto   count = static_cast<std::size_t>(block.count);
    const auto&  m = in.toWorld.m;
    const float* p = in.local ? in.local + 3 * from : nullptr;
    if (in.stored()) {
        boundBlock(in, from, most, block);
        loadStored(in, from, block, 0, block.count);
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
        stream::finish();
    });
}

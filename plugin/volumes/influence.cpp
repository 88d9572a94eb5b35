#include "volumes/influence.h"

#include <algorithm>

#include "volumes/sphereTree.h"

namespace volume {

namespace {

constexpr int kCapacity = PointBlock::kCapacity;

struct Local
{
    double x[kCapacity], y[kCapacity], z[kCapacity];
};

/// Points from `first` up to `last` of a block.
struct Range
{
    int first, last;
};

/// The parts of the block from the first to the last one that the box meets.
Range partsNear(const PointBlock& block, const Box& box)
{
    Range parts{block.partCount(), 0};
    for (int part = 0; part < block.partCount(); ++part) {
        if (box.meets(block.parts[part]))
            parts = {std::min(parts.first, part), part + 1};
    }
    return {parts.first * PointBlock::kPart, std::min(block.count, parts.last * PointBlock::kPart)};
}

/// The same sums as transformPoint, over a range.
void toLocal(const Matrix& inverse, const PointBlock& block, Range r, Local& to)
{
    const auto& m = inverse.m;
    for (int i = r.first; i < r.last; ++i) {
        const double x = block.x[i], y = block.y[i], z = block.z[i];
        to.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        to.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        to.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
    if (inverse.affine())
        return;
    for (int i = r.first; i < r.last; ++i) {
        const Vec p = transformPoint(block.at(i), inverse);
        to.x[i] = p.x, to.y[i] = p.y, to.z[i] = p.z;
    }
}

void findInSphere(const Local& p, Range r, Candidates& out)
{
    double d[kCapacity];
    for (int i = r.first; i < r.last; ++i)
        d[i] = std::sqrt(p.x[i] * p.x[i] + p.y[i] * p.y[i] + p.z[i] * p.z[i]);
    out.setInside(d, r.first, r.last);
}

void findInCube(const Local& p, Range r, Candidates& out)
{
    double d[kCapacity];
    for (int i = r.first; i < r.last; ++i) {
        const double x = std::fabs(p.x[i]), y = std::fabs(p.y[i]), z = std::fabs(p.z[i]);
        const double xy = x > y ? x : y;
        const double largest = xy > z ? xy : z;
        d[i] = x <= 1.0 && y <= 1.0 && z <= 1.0 ? largest : kOutside;
    }
    out.setInside(d, r.first, r.last);
    for (std::size_t k = 0; k < out.size(); ++k) {
        const auto i = static_cast<std::size_t>(out.point[k]);
        if (out.d[k] <= 1e-6)   // so near the middle that the length decides
            out.d[k] = cubeDistance({p.x[i], p.y[i], p.z[i]});
    }
}

/// Points at the barrel's height are tested in bulk, those above and below it and within the width one by one.
void findInCapsule(const Capsule& c, const Local& p, Range r, Candidates& out)
{
    constexpr double cap = -2.0;   // for a cap to say
    const double x = std::max(c.bottomScale.x, c.topScale.x), z = std::max(c.bottomScale.z, c.topScale.z);
    const double wideX = std::max(std::fabs(c.topScale.x), std::fabs(c.bottomScale.x));
    const double wideZ = std::max(std::fabs(c.topScale.z), std::fabs(c.bottomScale.z));
    double       d[kCapacity];
    for (int i = r.first; i < r.last; ++i) {
        const double axis = barrelDistance(c, p.x[i], p.y[i], p.z[i]);
        const double px = p.x[i], py = p.y[i], pz = p.z[i];
        const bool   near = (px >= -x) & (px <= x) & (pz >= -z) & (pz <= z) & (axis <= 1.0);
        const bool   wide = (std::fabs(px) <= wideX) & (std::fabs(pz) <= wideZ);
        const double other = wide ? cap : kOutside, barrel = near ? axis : kOutside;
        d[i] = (py >= -c.bottom) & (py <= c.top) ? barrel : other;
    }
    for (int i = r.first; i < r.last; ++i) {
        if (d[i] == cap)
            d[i] = capsuleDistance(c, {p.x[i], p.y[i], p.z[i]});
    }
    out.setInside(d, r.first, r.last);
}

Box boxOf(const PointBlock& b, int first, int last)
{
    Box box;
    for (int i = first; i < last; ++i) {
        box.low.x = b.x[i] < box.low.x ? b.x[i] : box.low.x;
        box.low.y = b.y[i] < box.low.y ? b.y[i] : box.low.y;
        box.low.z = b.z[i] < box.low.z ? b.z[i] : box.low.z;
        box.high.x = b.x[i] > box.high.x ? b.x[i] : box.high.x;
        box.high.y = b.y[i] > box.high.y ? b.y[i] : box.high.y;
        box.high.z = b.z[i] > box.high.z ? b.z[i] : box.high.z;
    }
    return box;
}

} // namespace

void Candidates::setInside(const double* distances, int first, int last)
{
    if (const auto most = static_cast<std::size_t>(last - first); point.size() < most)
        makeRoom(most);
    int* const    points = point.data();
    double* const inside = d.data();
    std::size_t   found = 0;
    for (int i = first; i < last; ++i) {   // the next one overwrites what is not inside
        const double distance = distances[i];
        points[found] = i;
        inside[found] = distance;
        found += (distance >= 0.0) & (distance <= 1.0);
    }
    std::fill_n(cloud.data(), found, -1);
    size_ = found;
}

void PointBlock::bound()
{
    box = {};
    for (int part = 0; part < partCount(); ++part) {
        parts[part] = boxOf(*this, part * kPart, std::min(count, (part + 1) * kPart));
        box.add(parts[part]);
    }
}

InfluenceSearch::InfluenceSearch(const std::vector<Volume>& volumes, const Cloud& cloud, const Box& pointsBox)
    : volumes_(volumes), cloud_(cloud), trees_(volumes.size())
{
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        const Volume& v = volumes[i];
        if (!(v.envelope > 0.0) || v.box.empty())
            continue;
        if (v.kind == Kind::kCloud) {
            if (!v.box.meets(pointsBox))
                continue;
            trees_[i] = std::make_unique<SphereTree>(cloud, v.cloudBegin, v.cloudEnd);
        }
        near_.push_back(static_cast<int>(i));
    }
}

InfluenceSearch::~InfluenceSearch() = default;

void InfluenceSearch::volumesNear(const Box& box, std::vector<int>& out) const
{
    out.clear();
    for (const int i : near_) {
        if (volumes_[static_cast<std::size_t>(i)].box.meets(box))
            out.push_back(i);
    }
}

void InfluenceSearch::find(int volume, const PointBlock& block, Candidates& out) const
{
    out.clear();
    const Volume& v = volumes_[static_cast<std::size_t>(volume)];
    if (v.kind == Kind::kCloud) {
        const auto& tree = trees_[static_cast<std::size_t>(volume)];
        for (int i = 0; tree && i < block.count; ++i) {
            if (v.box.contains(block.at(i)))
                tree->find(block.at(i), i, out);
        }
        return;
    }
    const Range near = partsNear(block, v.box);
    if (near.first >= near.last)
        return;
    Local local;
    toLocal(v.inverse, block, near, local);
    switch (v.kind) {
    case Kind::kSphere:  findInSphere(local, near, out); break;
    case Kind::kCube:    findInCube(local, near, out); break;
    case Kind::kCapsule: findInCapsule(v.capsule, local, near, out); break;
    case Kind::kCloud:   break;
    }
}

InfluenceTable::InfluenceTable(int stride, int points)
    : stride_(std::max(1, stride)), count_(static_cast<std::size_t>(points))
{
    const std::size_t size = static_cast<std::size_t>(stride_) * count_.size();
    d.resize(size);
    bound.resize(size);
    cloud.resize(size);
}

int InfluenceTable::offer(int point, double distance, int volume, int sphere)
{
    int* const count = &count_[static_cast<std::size_t>(point)];
    const int  first = point * stride_, last = first + stride_;
    int        slot = first;
    if (*count < stride_) {
        slot = first + (*count)++;
    } else {
        while (slot < last && !(d[static_cast<std::size_t>(slot)] > distance))
            ++slot;
        if (slot == last)
            return -1;
    }
    const auto at = static_cast<std::size_t>(slot);
    d[at] = distance;
    bound[at] = volume;
    cloud[at] = sphere;
    return slot;
}

std::size_t InfluenceTable::offer(const Candidates& candidates, int volume, int* slots, int* which)
{
    const int* const    points = candidates.point.data();
    const int* const    spheres = candidates.cloud.data();
    const double* const distances = candidates.d.data();
    int* const          counts = count_.data();
    std::size_t         taken = 0;
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        const int point = points[k], used = counts[point];
        int       slot = point * stride_ + used;
        if (used < stride_) {
            counts[point] = used + 1;
            d[static_cast<std::size_t>(slot)] = distances[k];
            bound[static_cast<std::size_t>(slot)] = volume;
            cloud[static_cast<std::size_t>(slot)] = spheres[k];
        } else {
            slot = offer(point, distances[k], volume, spheres[k]);
        }
        slots[taken] = slot;
        which[taken] = static_cast<int>(k);
        taken += slot >= 0;
    }
    return taken;
}

void InfluenceTable::clear() { std::fill(count_.begin(), count_.end(), 0); }

int InfluenceTable::ordered(int point, int* order) const
{
    const int count = count_[point], first = point * stride_;
    int       front = stride_ - 1, back = stride_;   // the list grows both ways from the middle
    order[front] = first;
    for (int k = 1; k < count; ++k) {
        const int slot = first + k;
        if (d[slot] > d[order[front]])
            order[--front] = slot;
        else
            order[back++] = slot;
    }
    std::copy(order + front, order + back, order);
    return count;
}

} // namespace volume

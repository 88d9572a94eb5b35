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

/// The same sums as transformPoint, over the block.
void toLocal(const Matrix& inverse, const PointBlock& block, Local& to)
{
    const auto& m = inverse.m;
    for (int i = 0; i < block.count; ++i) {
        const double x = block.x[i], y = block.y[i], z = block.z[i];
        to.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        to.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        to.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
    if (inverse.affine())
        return;
    for (int i = 0; i < block.count; ++i) {
        const Vec p = transformPoint(block.at(i), inverse);
        to.x[i] = p.x, to.y[i] = p.y, to.z[i] = p.z;
    }
}

/// Appends the points whose distance is at most 1.
void collect(const double* d, int count, Candidates& out)
{
    int inside[kCapacity], found = 0;
    for (int i = 0; i < count; ++i) {
        inside[found] = i;
        found += d[i] <= 1.0;
    }
    for (int k = 0; k < found; ++k)
        out.add(inside[k], d[inside[k]], -1);
}

void findInSphere(const Local& p, int count, Candidates& out)
{
    double d[kCapacity];
    for (int i = 0; i < count; ++i)
        d[i] = std::sqrt(p.x[i] * p.x[i] + p.y[i] * p.y[i] + p.z[i] * p.z[i]);
    collect(d, count, out);
}

/// Points of the block that `holds` says may be inside; the exact function decides.
template <class Holds, class Distance>
void findExactly(const Local& p, int count, Candidates& out, Holds&& holds, Distance&& distance)
{
    int maybe[kCapacity], found = 0;
    for (int i = 0; i < count; ++i) {
        maybe[found] = i;
        found += holds(p.x[i], p.y[i], p.z[i]);
    }
    for (int k = 0; k < found; ++k) {
        const int    i = maybe[k];
        const double d = distance({p.x[i], p.y[i], p.z[i]});
        if (d != kOutside)
            out.add(i, d, -1);
    }
}

void findInCube(const Local& p, int count, Candidates& out)
{
    const auto holds = [](double x, double y, double z) {
        return (std::fabs(x) <= 1.0) & (std::fabs(y) <= 1.0) & (std::fabs(z) <= 1.0);
    };
    findExactly(p, count, out, holds, cubeDistance);
}

void findInCapsule(const Capsule& c, const Local& p, int count, Candidates& out)
{
    const double x = std::max(std::fabs(c.topScale.x), std::fabs(c.bottomScale.x));
    const double z = std::max(std::fabs(c.topScale.z), std::fabs(c.bottomScale.z));
    const auto   holds = [=](double px, double, double pz) { return (std::fabs(px) <= x) & (std::fabs(pz) <= z); };
    findExactly(p, count, out, holds, [&](Vec at) { return capsuleDistance(c, at); });
}

} // namespace

void PointBlock::bound()
{
    box = {};
    for (int i = 0; i < count; ++i) {
        box.low.x = x[i] < box.low.x ? x[i] : box.low.x;
        box.low.y = y[i] < box.low.y ? y[i] : box.low.y;
        box.low.z = z[i] < box.low.z ? z[i] : box.low.z;
        box.high.x = x[i] > box.high.x ? x[i] : box.high.x;
        box.high.y = y[i] > box.high.y ? y[i] : box.high.y;
        box.high.z = z[i] > box.high.z ? z[i] : box.high.z;
    }
}

void Candidates::clear()
{
    point.clear();
    cloud.clear();
    d.clear();
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

void InfluenceSearch::volumesNear(const PointBlock& block, std::vector<int>& out) const
{
    out.clear();
    for (const int i : near_) {
        if (volumes_[static_cast<std::size_t>(i)].box.meets(block.box))
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
    Local local;
    toLocal(v.inverse, block, local);
    switch (v.kind) {
    case Kind::kSphere:  findInSphere(local, block.count, out); break;
    case Kind::kCube:    findInCube(local, block.count, out); break;
    case Kind::kCapsule: findInCapsule(v.capsule, local, block.count, out); break;
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

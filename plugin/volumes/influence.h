// Which volumes reach which points. Points are taken in blocks: a volume whose box does not meet that of the block costs
// nothing more, and the tests run over whole blocks. The result is that of the plain loop over volumes and, for each,
// over points and their spheres in order.
#pragma once
#include <memory>
#include <vector>

#include "volumes/volume.h"

namespace volume {

class SphereTree;

/// Neighbouring points in world space, one coordinate after the other.
struct PointBlock
{
    static constexpr int kCapacity = 256;
    static constexpr int kPart = 64;             ///< points that have a box of their own

    int    count = 0;
    double x[kCapacity], y[kCapacity], z[kCapacity];
    Box    box, parts[kCapacity / kPart];

    Vec  at(int i) const { return {x[i], y[i], z[i]}; }
    int  partCount() const { return (count + kPart - 1) / kPart; }
    /// Sets the boxes from the points.
    void bound();
};

/// Points of a block that a volume reaches, by point; the spheres that reach one point by their place in the cloud.
/// `cloud` is -1 for a volume that is no cloud. Room past the size is kept.
class Candidates
{
public:
    std::vector<int>    point, cloud;
    std::vector<double> d;

    std::size_t size() const { return size_; }
    void        clear() { size_ = 0; }
    /// In place of what is there: the points from `first` up to `last` whose distance, `distances[point]`, is from 0 to 1.
    void        setInside(const double* distances, int first, int last);
    void add(int p, double distance, int sphere)
    {
        if (size_ == point.size())
            makeRoom(2 * size_ + PointBlock::kCapacity);
        point[size_] = p;
        cloud[size_] = sphere;
        d[size_++] = distance;
    }

private:
    void makeRoom(std::size_t count)
    {
        point.resize(count);
        cloud.resize(count);
        d.resize(count);
    }

    std::size_t size_ = 0;
};

/// A set of volumes made ready for many searches. It keeps the references. Searching is const and safe from many threads.
class InfluenceSearch
{
public:
    /// `pointsBox` is around all points that count: a cloud that does not meet it reaches nothing.
    InfluenceSearch(const std::vector<Volume>& volumes, const Cloud& cloud, const Box& pointsBox);
    ~InfluenceSearch();
    InfluenceSearch(const InfluenceSearch&) = delete;
    InfluenceSearch& operator=(const InfluenceSearch&) = delete;

    /// Volumes that can reach a point in the box, ascending.
    void volumesNear(const Box& box, std::vector<int>& out) const;
    /// Puts what one volume reaches in place of `out`.
    void find(int volume, const PointBlock& block, Candidates& out) const;
    /// True if some volume can be reached at all.
    bool any() const { return !near_.empty(); }

private:
    const std::vector<Volume>&               volumes_;
    const Cloud&                             cloud_;
    std::vector<int>                         near_;
    std::vector<std::unique_ptr<SphereTree>> trees_;   ///< by volume; null for those that are no cloud
};

/// The influences of the points of one block: up to `stride` slots a point.
class InfluenceTable
{
public:
    /// Room for `stride` slots (at least one) for each of `points` points.
    InfluenceTable(int stride, int points);

    void clear();
    /// Offers an influence to a point. It takes a free slot or, if there is none, that of the first influence that is
    /// farther, not of the farthest: results depend on it. Gives the slot's place in the columns, or -1.
    int offer(int point, double distance, int volume, int sphere);
    /// The same for all candidates of a volume. Those that got a slot come out as pairs of slot and candidate, in arrays
    /// with room for all; gives their number.
    std::size_t offer(const Candidates& candidates, int volume, int* slots, int* which);
    int  stride() const { return stride_; }
    int  first(int point) const { return point * stride_; }
    int  count(int point) const { return count_[point]; }
    /// Slots of a point in the order in which they are summed up: the first, then each one in front of the others if it
    /// is farther than the one in front, else behind them. `order` has room for twice `stride`; gives their number.
    int  ordered(int point, int* order) const;

    std::vector<double> d;              ///< columns, one entry a slot
    std::vector<int>    bound, cloud;

private:
    int              stride_;
    std::vector<int> count_;
};

} // namespace volume

#include "volumes/multiWeights.h"

#include <algorithm>
#include <cmath>

namespace {

/// One block after the other: its table, the weight of each slot, and for each point the sum of all weights that ever
/// got a slot. What is pushed out of the table stays in the sum, which results depend on.
class Blocks
{
public:
    Blocks(const TransferVolumes& volumes, const volume::InfluenceSearch& search, int slots)
        : volumes_(volumes), search_(search), table_(slots, blockSize(slots)), weights_(table_.d.size()),
          sums_(static_cast<std::size_t>(blockSize(slots))), order_(2 * static_cast<std::size_t>(slots))
    {
    }

    void fill(const volume::PointBlock& block)
    {
        table_.clear();
        std::fill(sums_.begin(), sums_.end(), 0.0);
        search_.volumesNear(block.box, near_);
        for (const int v : near_)
            take(v, block);
    }
    double sum(int point) const { return sums_[static_cast<std::size_t>(point)]; }

    /// The weights of a point's volumes, blended by the kernel; at most 1.
    double blended(int point)
    {
        const int count = table_.ordered(point, order_.data());
        if (count == 1)
            return std::min(weights_[static_cast<std::size_t>(order_[0])], 1.0);
        double sum = 0.0, kernels = 0.0;
        for (int k = 0; k < count; ++k) {
            const auto   slot = static_cast<std::size_t>(order_[static_cast<std::size_t>(k)]);
            const double kernel = std::max(0.0f, volumes_.kernel.value(static_cast<float>(table_.d[slot])));
            sum += kernel * weights_[slot];
            kernels += kernel;
        }
        return kernels != 0.0 ? std::min(sum / kernels, 1.0) : 0.0;
    }
    /// Calls f(volume, weight) for each slot of a point: its share of the sum, or 1 if there is but one slot.
    template <class F>
    void eachShare(int point, bool single, F&& f) const
    {
        const int first = table_.first(point);
        for (int slot = first; slot < first + table_.count(point); ++slot) {
            const auto at = static_cast<std::size_t>(slot);
            f(table_.bound[at], single ? 1.0 : weights_[at] / sum(point));
        }
    }

private:
    void take(int v, const volume::PointBlock& block)
    {
        search_.find(v, block, found_);
        at_.assign(found_.d.begin(), found_.d.begin() + static_cast<std::ptrdiff_t>(found_.size()));
        ramped_.resize(at_.size());
        evaluate(volumes_.falloffs[static_cast<std::size_t>(v)].weight, at_.data(), at_.size(), ramped_.data());
        for (std::size_t k = 0; k < found_.size(); ++k) {
            const int    sphere = found_.cloud[k];
            const double own = sphere < 0 ? 1.0 : volumes_.cloud.weights[static_cast<std::size_t>(sphere)];
            const double weight = static_cast<double>(ramped_[k]) * own;
            const int    slot = table_.offer(found_.point[k], found_.d[k], v, sphere);
            if (slot < 0)
                continue;
            weights_[static_cast<std::size_t>(slot)] = weight;
            sums_[static_cast<std::size_t>(found_.point[k])] += std::fabs(weight);
        }
    }

    const TransferVolumes&         volumes_;
    const volume::InfluenceSearch& search_;
    volume::InfluenceTable         table_;
    std::vector<double>            weights_, sums_;
    std::vector<int>               near_, order_;
    volume::Candidates             found_;
    std::vector<float>             at_, ramped_;
};

double distanceTo(const TransferVolumes& all, const volume::Volume& v, volume::Vec place)
{
    if (v.kind != volume::Kind::kCloud)
        return openDistance(v, place);
    double least = volume::Box::kMost;
    for (std::size_t j = v.cloudBegin; j < v.cloudEnd; ++j) {
        const double d = length(place - all.cloud.positions[j]) / all.cloud.radii[j];
        if (d >= 0.0 && d < least)
            least = d;
    }
    return least;
}

} // namespace

int closestVolume(const TransferVolumes& volumes, volume::Vec place)
{
    int    closest = -1;
    double least = 0.0;
    for (std::size_t i = 0; i < volumes.volumes.size(); ++i) {
        const volume::Volume& v = volumes.volumes[i];
        if (!(v.envelope > 0.0))
            continue;
        const double d = distanceTo(volumes, v, place);
        if (d < volume::Box::kMost && (closest < 0 || d < least)) {
            closest = static_cast<int>(i);
            least = d;
        }
    }
    return closest;
}

void multiWeights(const TransferVolumes& volumes, const volume::Box& pointsBox, const MultiWeightSettings& settings,
                  const TransferInput& in, const std::vector<char>& selected,
                  const std::function<void(std::size_t, int, double)>& write)
{
    const volume::InfluenceSearch search(volumes.volumes, volumes.cloud, pointsBox);
    const int                     slots = slotsNeeded(settings.maxInfluences, volumes.volumes);
    const bool                    single = settings.maxInfluences <= 1;
    Blocks                        blocks(volumes, search, slots);
    volume::PointBlock            block;
    for (std::size_t from = 0; from < in.count; from += static_cast<std::size_t>(block.count)) {
        loadBlock(in, from, blockSize(slots), block);
        blocks.fill(block);
        for (int i = 0; i < block.count; ++i) {
            const std::size_t point = from + static_cast<std::size_t>(i);
            const bool        isSelected = selected.empty() || selected[point];
            const bool        free = blocks.sum(i) == 0.0;
            if (!settings.perVolume) {
                if (isSelected || settings.unselectedToo)
                    write(point, 0, isSelected && !free ? blocks.blended(i) : 0.0);
            } else if (isSelected && !free) {
                blocks.eachShare(i, single, [&](int v, double weight) { write(point, v, weight); });
            } else if (isSelected && settings.freePoints == FreePoints::kFirst) {
                write(point, 0, 1.0);
            } else if (isSelected && settings.freePoints == FreePoints::kClosest) {
                const int closest = closestVolume(volumes, block.at(i));
                if (closest >= 0)
                    write(point, closest, 1.0);
            }
        }
    }
}

#include "generators/scatterThrows.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace scatter_ {

void Cloud::add(const Float3& point, const Hit& hit)
{
    points.push_back(point);
    hits.push_back(hit.point);
    faces.push_back(hit.face);
}

namespace {

struct Throw
{
    Aim  ray;
    Hit  hit;
    bool hits = false;
};

/// The throws by where they start, cell by cell: rays from about the same place meet the same part of the mesh.
void orderByPlace(const std::vector<Throw>& throws, std::vector<int>& order)
{
    constexpr int kCells = 16;   // an axis
    float         low[3], high[3];
    for (int k = 0; k < 3; ++k) {
        low[k] = std::numeric_limits<float>::max();
        high[k] = -low[k];
        for (const Throw& t : throws) {
            low[k] = std::min(low[k], t.ray.source[k]);
            high[k] = std::max(high[k], t.ray.source[k]);
        }
    }
    const auto cellOf = [&](const Throw& t) {
        int cell = 0;
        for (int k = 0; k < 3; ++k) {
            const float at = (t.ray.source[k] - low[k]) / (high[k] - low[k]) * float(kCells);
            cell = cell * kCells + (at > 0.0f ? at < float(kCells) ? int(at) : kCells - 1 : 0);   // NaN: 0
        }
        return cell;
    };
    std::vector<int> begin(kCells * kCells * kCells + 1, 0), cells(throws.size());
    for (std::size_t i = 0; i < throws.size(); ++i)
        ++begin[static_cast<std::size_t>(cells[i] = cellOf(throws[i])) + 1];
    std::partial_sum(begin.begin(), begin.end(), begin.begin());
    order.resize(throws.size());
    for (std::size_t i = 0; i < throws.size(); ++i)
        order[static_cast<std::size_t>(begin[static_cast<std::size_t>(cells[i])]++)] = static_cast<int>(i);
}

class Thrower
{
public:
    Thrower(const Surface& surface, const RandomAim& aim, const Rules& rules, Draws& draws)
        : surface_(surface), aim_(aim), rules_(rules), draws_(draws),
          masked_(!rules.densityMask.empty() || !rules.spacingMask.empty()),
          spaced_(rules.spacing > 0.0001f || !rules.spacingMask.empty())
    {
    }

    Cloud run()
    {
        int size = aimsAhead() ? 1024 : 1;   // small at first: what lies behind the last throw is looked up in vain
        for (int first = 0; first < rules_.throwCount && goesOn_;) {
            const int count = std::min(size, rules_.throwCount - first);
            runBlock(first, count);
            first += count;
            if (size > 1)
                size = std::min(2 * size, 32768);
        }
        return std::move(cloud_);
    }

private:
    /// Whether the numbers that aim a throw do not depend on what became of the throws before.
    bool aimsAhead() const { return rules_.sources || (rules_.densityMask.empty() && Draws::kCopies); }

    /// Aims all, finds the hits in an order that is kind to the cache, then takes them in theirs.
    void runBlock(int first, int count)
    {
        const Draws before = draws_;
        throws_.resize(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            throws_[static_cast<std::size_t>(i)].ray = rules_.sources ? Aim{rules_.sources[first + i], {}} : aim_.draw(draws_);
        if (count > 64)
            orderByPlace(throws_, order_);
        else
            order_.resize(throws_.size()), std::iota(order_.begin(), order_.end(), 0);
        for (const int i : order_)
            look(throws_[static_cast<std::size_t>(i)]);
        for (int i = 0; i < count && goesOn_; ++i) {
            take(throws_[static_cast<std::size_t>(i)]);
            if (goesOn_ || rules_.sources || i + 1 == count)
                continue;
            draws_ = before;   // who draws next goes on behind the last throw
            for (int k = 0; k <= i; ++k)
                aim_.draw(draws_);
        }
    }

    void look(Throw& t) const
    {
        t.hits = false;
        if (rules_.sources) {
            Float3 to;
            if (!surface_.nearest(t.ray.source, to))
                return;
            t.ray.direction = direction({to.x - t.ray.source.x, to.y - t.ray.source.y, to.z - t.ray.source.z});
        }
        t.hits = surface_.hit(t.ray, rules_.maxDistance, t.hit);
    }

    void take(const Throw& t)
    {
        int vertices[3] = {0, 0, 0};
        if (!t.hits || (masked_ && !surface_.triangleVertices(t.hit, vertices)))
            return;
        if (rules_.mode != Mode::kSurface && fromInside(t.ray, t.hit)) {
            if (!farEnough(t.ray.source) || !offer(t.ray.source, t.hit, vertices))
                return;
        }
        // equal, not at least: a maximum of 0 that the first source has passed no longer stops anything
        goesOn_ = count_ != rules_.maxCount;
        if (goesOn_ && rules_.mode != Mode::kVolume && offer(t.hit.point, t.hit, vertices))
            goesOn_ = count_ != rules_.maxCount;
    }

    /// A ray from inside leaves through a face that looks the same way.
    bool fromInside(const Aim& ray, const Hit& hit) const
    {
        const Double3 along{ray.direction.x, ray.direction.y, ray.direction.z};
        return !(degreesBetween(along, surface_.faceNormal(hit.face)) > rules_.tolerance);
    }

    bool farEnough(const Float3& source) const
    {
        if (!(rules_.surfaceOffset > 0.0001f))
            return true;
        Float3 to;
        if (!surface_.nearest(source, to))
            return false;
        const double x = double(to.x) - source.x, y = double(to.y) - source.y, z = double(to.z) - source.z;
        return std::sqrt(x * x + y * y + z * z) >= rules_.surfaceOffset;
    }

    /// Takes the point unless the masks or the spacing refuse it. False if the throw ends here: the density mask.
    /// A point refused for its spacing counts as one towards the maximum.
    bool offer(const Float3& point, const Hit& hit, const int vertices[3])
    {
        if (!rules_.densityMask.empty() && draws_.unit() > chance(rules_.densityMask.data(), vertices))
            return false;
        ++count_;
        const float distance = spacingAt(vertices);
        if (distance > 0.0001f && accepted_.anyWithin(point, distance))
            return true;
        cloud_.add(point, hit);
        if (spaced_)
            accepted_.add(point);
        return true;
    }

    float spacingAt(const int vertices[3]) const
    {
        if (rules_.spacingMask.empty())
            return rules_.spacing;
        const float* mask = rules_.spacingMask.data();
        const float  sum = mask[vertices[0]] + mask[vertices[1]] + mask[vertices[2]];
        return static_cast<float>(sum * (rules_.spacing * 0.3333333333333333));
    }

    const Surface&   surface_;
    const RandomAim& aim_;
    const Rules&     rules_;
    Draws&           draws_;
    const bool       masked_, spaced_;
    bool             goesOn_ = true;
    long long        count_ = 0;       ///< both kinds of points may count in a throw
    std::vector<Throw> throws_;        ///< of the present block
    std::vector<int>   order_;
    Spacing            accepted_;
    Cloud              cloud_;
};

} // namespace

Cloud throwPoints(const Surface& surface, const RandomAim& aim, const Rules& rules, Draws& draws)
{
    return Thrower(surface, aim, rules, draws).run();
}

} // namespace scatter_

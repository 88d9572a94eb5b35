#include "generators/scatterThrows.h"

#include <algorithm>
#include <cmath>

namespace scatter_ {

void Cloud::add(const Float3& point, const Hit& hit)
{
    points.push_back(point);
    hits.push_back(hit.point);
    faces.push_back(hit.face);
}

namespace {

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
        constexpr int kBetween = 1 << 14;   // some hundredths of a second
        for (int i = 0; i < rules_.throwCount && goesOn_; ++i) {
            if (i % kBetween == kBetween - 1 && rules_.stopsHere && rules_.stopsHere())
                break;
            throwOnce(i);
            goesOn_ = goesOn_ && cloud_.points.size() <= rules_.mostPoints;
        }
        return std::move(cloud_);
    }

private:
    bool aimed(int i, Aim& ray)
    {
        if (!rules_.sources) {
            ray = aim_.draw(draws_);
            return true;
        }
        Float3 to;
        ray.source = rules_.sources[i];
        if (!surface_.nearest(ray.source, to))
            return false;
        ray.direction = direction({to.x - ray.source.x, to.y - ray.source.y, to.z - ray.source.z});
        return true;
    }

    void throwOnce(int i)
    {
        Aim ray;
        Hit hit;
        int vertices[3] = {0, 0, 0};
        if (!aimed(i, ray) || !surface_.hit(ray, rules_.maxDistance, hit) ||
            (masked_ && !surface_.triangleVertices(hit, vertices)))
            return;
        if (rules_.mode != Mode::kSurface && fromInside(ray, hit)) {
            if (!farEnough(ray.source) || !offer(ray.source, hit, vertices))
                return;
        }
        // equal, not at least: a maximum of 0 that the first source has passed no longer stops anything
        goesOn_ = count_ != rules_.maxCount;
        if (goesOn_ && rules_.mode != Mode::kVolume && offer(hit.point, hit, vertices))
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
    Spacing            accepted_;
    Cloud              cloud_;
};

} // namespace

Cloud throwPoints(const Surface& surface, const RandomAim& aim, const Rules& rules, Draws& draws)
{
    return Thrower(surface, aim, rules, draws).run();
}

} // namespace scatter_

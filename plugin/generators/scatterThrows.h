// The throws of scatter: rays through a box against a surface, and which of their sources and hits become points.
#pragma once
#include <functional>
#include <vector>

#include "generators/scatterSteps.h"

namespace scatter_ {

struct Hit
{
    Float3 point;
    int    face = -1, triangle = -1;   ///< the triangle counts within its face
};

/// What is thrown at: a mesh in world space.
class Surface
{
public:
    virtual ~Surface() = default;
    /// The first hit of the ray within `maxParam` lengths of its direction.
    virtual bool hit(const Aim& ray, float maxParam, Hit& hit) const = 0;
    virtual Double3 faceNormal(int face) const = 0;
    /// The vertices of the hit triangle; false if there are none.
    virtual bool triangleVertices(const Hit& hit, int vertices[3]) const = 0;
    /// The point of the surface that is nearest to p; false if there is none.
    virtual bool nearest(const Float3& p, Float3& nearest) const = 0;
};

/// More points than this are not made: the run ends with one more.
constexpr std::size_t kMostPoints = (std::size_t(1) << 28) / 3;

enum class Mode : short { kVolume, kSurface, kBoth };

struct Rules
{
    Mode                mode = Mode::kVolume;
    int                 throwCount = 0;            ///< not below 0
    int                 maxCount = 0;              ///< points, and points refused for their spacing
    const Float3*       sources = nullptr;         ///< throwCount given points, thrown at the nearest place of the surface
    double              tolerance = 25.0;          ///< degrees
    float               surfaceOffset = 0.0f;
    float               maxDistance = 9999999.0f;  ///< in lengths of the direction
    float               spacing = 0.0f;
    std::vector<float>  densityMask, spacingMask;  ///< one entry a vertex; empty: not in use
    std::size_t         mostPoints = kMostPoints;
    std::function<bool()> stopsHere;               ///< asked now and then in a long run, true ends it
};

/// Points in the order of the throws, each with the hit that it comes from.
struct Cloud
{
    std::vector<Float3> points, hits;
    std::vector<int>    faces;

    void add(const Float3& point, const Hit& hit);
    /// Keeps the points of which keep(i) says so, asked in order.
    template <class Keep>
    void filter(Keep keep);
};

/// Ends early with more than `mostPoints`. Draws six numbers a throw without given sources, and one for each point that meets a density mask.
Cloud throwPoints(const Surface& surface, const RandomAim& aim, const Rules& rules, Draws& draws);

template <class Keep>
void Cloud::filter(Keep keep)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!keep(i))
            continue;
        points[kept] = points[i];
        hits[kept] = hits[i];
        faces[kept++] = faces[i];
    }
    points.resize(kept);
    hits.resize(kept);
    faces.resize(kept);
}

} // namespace scatter_

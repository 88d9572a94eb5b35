// Rays and closest points on the triangles of one mesh.
//
// The hierarchy is walked in single precision with margins for its rounding; triangles are tested in double precision,
// so answers are those of double arithmetic on the stored points. Everything is in the space of the points.
#pragma once
#include <cstdint>
#include <vector>

#include "mesh/vector3.h"
#include "data/object.h"
#include "query/bvh.h"

namespace mirk {
class Topology;
template <class T> class Buffer;
}

namespace mirk::query {

/// Which triangles may answer.
struct TriangleFilter
{
    virtual bool has(int triangle) const = 0;

protected:
    ~TriangleFilter() = default;
};

/// Hits count from `tMin` to `tMax`, in lengths of `direction`, both included. A ray that passes a triangle outside
/// counts as a hit as long as its barycentric coordinates are not under -tolerance.
struct Ray
{
    Vec3   origin, direction;   ///< direction: any length but zero
    double tMin = 0, tMax = 0;
    double tolerance = 1e-6;
    const TriangleFilter* filter = nullptr;
};

struct RayHit
{
    double t = 0;
    double w[3] = {};      ///< barycentric coordinates: weights of the triangle's vertices
    Vec3   point;
    int    triangle = -1;
    int    face = -1, inFace = -1;   ///< of hits in a tree; -1 of a triangle that was tested alone
};

struct Nearest
{
    double distanceSq = 0;
    double w[3] = {};
    Vec3   point;
    Vec3   normal;         ///< of the triangle, twice its area long
    int    triangle = -1;
};

/// Linear part of a matrix by which distances are measured: a row vector v has length |v * m|.
struct Metric
{
    double m[3][3];
    double shrink;   ///< |v * m| >= shrink * |v| for every v
};

/// Hits and nearest points of one triangle.
bool   intersect(const Vec3 v[3], const Ray& ray, RayHit& hit);
/// Weights of the point of a triangle that is nearest to the zero point; its squared distance.
double nearestToOrigin(const Vec3 v[3], double w[3]);

/// Immutable; all methods may be called from several threads. Triangles with a point that is not finite do not exist for
/// it. Among equally near answers the lowest triangle wins.
class Tree : public Counted<Tree>
{
public:
    /// Over the triangles of a mesh (see triangulate()): all, or those with these ids.
    Tree(const float* points, const Topology& topology, const Buffer<int>& corners, const std::vector<int>* ids = nullptr);

    bool closestHit(const Ray& ray, RayHit& hit) const;
    bool anyHit(const Ray& ray, RayHit& hit) const;
    /// Adds all hits, in no order.
    void allHits(const Ray& ray, std::vector<RayHit>& hits) const;
    /// No further away than `maxDistance`. Without a metric distances are those of the space of the points.
    bool nearest(const Vec3& point, double maxDistance, Nearest& result, const Metric* metric = nullptr) const;

    int    faceOf(int triangle) const { return faces_[size_t(triangle)].face; }
    /// The triangle's number in its face.
    int    inFace(int triangle) const { return faces_[size_t(triangle)].triangle; }
    size_t triangleCount() const { return count_; }
    size_t nodeCount() const { return nodes_.size(); }
    size_t bytes() const;

    /// Up to four triangles, coordinate by coordinate, with all that a hit tells of them: three lines of the cache.
    /// Unused lanes are NaN and have no id.
    struct alignas(64) Block
    {
        float   v[3][3][4];   ///< [vertex][axis][lane]
        int32_t id[4];
        int32_t face[4], inFace[4];
    };
    // for the kernels
    const BvhNode* nodes() const { return nodes_.data(); }
    const std::vector<Block>& blocks() const { return blocks_; }
    const std::vector<Block>& loose() const { return loose_; }
    float  extent() const { return extent_; }
    double longestSide() const { return longestSide_; }

private:
    void addTo(std::vector<Block>& blocks, const float* points, const Topology& topology, const Buffer<int>& corners,
               const int* ids, int count);

    std::vector<BvhNode> nodes_;
    std::vector<Block>   blocks_;
    std::vector<Block>   loose_;         // too far out for single precision: tested each time
    struct Place { int face, triangle; };
    std::vector<Place>   faces_;         // of all triangles
    float                extent_ = 0;    // largest coordinate
    double               longestSide_ = 0;
    size_t               count_ = 0;
};

}  // namespace mirk::query
